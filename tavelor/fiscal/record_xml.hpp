// SPDX-License-Identifier: MIT
// Records and events as the XML that the law describes, and back.
#pragma once

#include <string>
#include <string_view>

#include "tavelor/fiscal/event.hpp"
#include "tavelor/fiscal/record.hpp"

namespace tavelor::fiscal {

/// The namespaces of the tax office's schemas: of a record, of a message of records, of an event.
inline constexpr std::string_view kRecordNamespace =
    "https://www2.agenciatributaria.gob.es/static_files/common/internet/dep/aplicaciones/es/aeat/"
    "tike/cont/ws/SuministroInformacion.xsd";
inline constexpr std::string_view kMessageNamespace =
    "https://www2.agenciatributaria.gob.es/static_files/common/internet/dep/aplicaciones/es/aeat/"
    "tike/cont/ws/SuministroLR.xsd";  ///< the same, of a message
inline constexpr std::string_view kEventNamespace =
    "https://www2.agenciatributaria.gob.es/static_files/common/internet/dep/aplicaciones/es/aeat/"
    "tike/cont/ws/EventosSIF.xsd";  ///< the same, of an event

/// One line without a declaration, to be put into a message as it is: "<RegistroAlta xmlns=..". The
/// same record always gives the same bytes.
std::string xmlOf(const Registration& record);
/// "<RegistroAnulacion xmlns=..".
std::string xmlOf(const Cancellation& record);
/// Of either.
std::string xmlOf(const Record& record);
/// "<RegistroEvento xmlns=..", without the signature that the schema wants at its end.
std::string xmlOf(const Event& event);

/// A text as it stands between tags.
std::string escaped(std::string_view text);

/// Reads what xmlOf() writes; a signature at its end is passed over. Raises 5, with line and
/// column, for XML that does not read, for an element that is missing, out of its place or unknown,
/// and for a value that its element does not take.
Record readRecord(std::string_view xml);
/// The same of an event, but for its own data, of which nothing is read.
Event readEvent(std::string_view xml);

}  // namespace tavelor::fiscal
