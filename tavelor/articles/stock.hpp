// SPDX-License-Identifier: MIT
// What the places that hold stock share: who has stock, and how its quantities are read and
// printed.
#pragma once

#include <memory>
#include <string>

namespace tavelor {

class Connection;
class Variant;
class clsArticulos;
using ConnectionPtr = std::shared_ptr<Connection>;

namespace stock {

/// Fills an empty connection with one of the main database.
void connect(ConnectionPtr& cnnActive);
/// Whether stock is kept of an article, which it never is of the free text. Fills the connection.
bool isKept(const clsArticulos& articles, const Variant& vId, ConnectionPtr& cnnActive);
/// The same, of an article that sales take off.
bool isSold(const clsArticulos& articles, const Variant& vId, ConnectionPtr& cnnActive);
/// Stock units in one purchase unit of an article. Raises 94 for Null.
double measure(const clsArticulos& articles, const Variant& vId, ConnectionPtr& cnnActive);

/// A text is read by the locale. Raises 94 for Null, 13 for what is no number.
double quantity(const Variant& value);
/// The same as stock units, of which `measure` make one unit of the quantity; negative where
/// `bSumar` is false. Raises 6 for a product that a double cannot hold.
double units(const Variant& value, bool bSumar, double measure = 1);
/// Rounded to the decimals of the shop's format of quantities. Raises 6 for what is not finite, as
/// do the two below.
double rounded(double quantity);

/// Printed for a statement without quotes: a decimal point, at most 6 decimals.
std::string bare(const Variant& quantity);
/// Printed for a place between quotes: as the locale prints it, all its digits.
std::string plain(double number);

}  // namespace stock

}  // namespace tavelor
