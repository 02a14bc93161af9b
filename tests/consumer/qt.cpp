// SPDX-License-Identifier: MIT
// A small program on the installed Qt adapter. all_qt_headers.hpp is written by the check.
#include <QtCore/QCoreApplication>
#include <cstdio>
#include <memory>

#include "all_qt_headers.hpp"
#include "tavelor/reference/bancos.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/installation.hpp"

int main(int count, char** arguments) {
  const QCoreApplication application(count, arguments);
  tavelor::Apartment apartment(tavelor::Installation::create(arguments[1]));
  tavelor::ClsBancos banks;
  banks.CrearBanco("", "Banco de Ahorro");
  banks.IniciaRs("todos");
  tavelor::qt::RecordClassModel model(banks, "todos");
  const QString name = model.index(0, model.columnOf("Descripción")).data().toString();
  std::printf("%s\n", name.toUtf8().constData());
  return name == "Banco de Ahorro" ? 0 : 1;
}
