// SPDX-License-Identifier: MIT
// All classes are there, each with its page, and each of their members with its test.
#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tests/classes/completeness/sources.hpp"
#include "tests/support/form.hpp"
#include "tests/support/shop.hpp"
#include "tests/support/typist.hpp"

namespace tavelor {
namespace {

using test::textsBelow;

const std::vector<std::string>& publicClasses() {
  static const std::vector<std::string> names = {"ClsBancos",
                                                 "ClsImpuestos",
                                                 "ClsDivisas",
                                                 "ClsFormasPago",
                                                 "ClsTiposDocumento",
                                                 "ClsTiposFactura",
                                                 "Emisores",
                                                 "ClsAlmacenes",
                                                 "ClsCajas",
                                                 "ClsTiposCliente",
                                                 "ClsSecciones",
                                                 "clsFamilias",
                                                 "clsIncidencias",
                                                 "Rutas",
                                                 "ClsTransportistas",
                                                 "ClsContactos",
                                                 "clsNumeradores",
                                                 "ClsTickets",
                                                 "ClsTicketsLineas",
                                                 "ClsTicketsCabecera",
                                                 "ClsTicketsComentarios",
                                                 "CollectionTickets",
                                                 "ClsRegTickets",
                                                 "ClsCierres",
                                                 "clsArticulos",
                                                 "ClsArticulosAlmacenes",
                                                 "ClsArticulosLotes",
                                                 "ClsArticulosMovAlmacen",
                                                 "ClsArticulosPrecios",
                                                 "ClsArticulosPreciosVentas",
                                                 "ClsArticulosCbarras",
                                                 "ClsArticulosComponentes",
                                                 "ClsArticulosComentarios",
                                                 "CollectionRegistros",
                                                 "ClsRegistros",
                                                 "ClsClientes",
                                                 "ClsClientesDirecciones",
                                                 "ClsClientesCentros",
                                                 "ClsClientesColaboradores",
                                                 "ClsClientesComentarios",
                                                 "ClsClientesApuntesConta",
                                                 "ClsProveedores",
                                                 "ClsProveedoresApuntesConta",
                                                 "ClsProveedoresComentarios",
                                                 "ClsEmpleados",
                                                 "ClsEmpleadosPuntos",
                                                 "ClsCitas"};
  return names;
}

/// IniciaRs has three shapes, but every class has it.
bool isFrameMember(const Member& slot) {
  if (slot.name == "IniciaRs") return true;
  try {
    return frameMember(slot.name).signature() == slot.signature();
  } catch (const Error&) {
    return false;
  }
}

/// Whether the text calls a member of that name: behind a dot, an arrow or colons, or by name.
bool calls(std::string_view text, const std::string& name) {
  const auto isWord = [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
  };
  for (std::size_t at = text.find(name); at != std::string_view::npos;
       at = text.find(name, at + 1)) {
    const std::size_t end = at + name.size();
    if (end < text.size() && isWord(text[end])) continue;
    const std::string_view before = text.substr(0, at);
    if (before.ends_with('.') || before.ends_with("->") || before.ends_with("::")) return true;
    // call("Name", or component().call(object, "Name",
    const std::string_view here = before.substr(before.find_last_of(";{") + 1);
    if (here.ends_with('"') && here.find("call(") != std::string_view::npos) return true;
  }
  return false;
}

TEST(Completeness, TheRegistryHoldsTheFortySevenPublicClasses) {
  std::vector<std::string> found;
  for (const Component* each : components()) found.push_back(each->name());
  EXPECT_THAT(found, testing::UnorderedElementsAreArray(publicClasses()));
  EXPECT_EQ(found.size(), 47U);
}

TEST(Completeness, EachClassHasItsPage) {
  const auto pages = textsBelow("docs", {".md"});
  for (const Component* each : components()) {
    EXPECT_TRUE(std::any_of(pages.begin(), pages.end(),
                            [&](const auto& page) {
                              return page.second.find("`" + each->name() + "`") !=
                                     std::string::npos;
                            }))
        << "no page in docs/ tells of " << each->name();
  }
}

// Members of the frame are tested on any class; a class's own in a file that names the class.
TEST(Completeness, EachMemberIsCalledByATest) {
  std::string all;
  std::map<std::string, std::string> files;
  for (const char* folder : {"tests/classes", "tests/frame"}) {
    for (auto& [file, text] : textsBelow(folder, {".cpp", ".hpp"})) {
      all += text;
      files[file] = std::move(text);
    }
  }
  for (const Component* each : components()) {
    std::string own;
    for (const auto& [file, text] : files) {
      if (text.find(each->name()) != std::string::npos) own += text;
    }
    for (const Member& slot : each->members()) {
      EXPECT_TRUE(calls(isFrameMember(slot) ? all : own, slot.name))
          << "no test calls " << each->name() << '.' << slot.name;
    }
  }
}

// ---- Every slot, called by name

constexpr const char* kDay = "31/12/2026";

/// What a slot is given. "1" reads as any number and as a code.
Variant argumentFor(const Parameter& parameter) {
  if (parameter.type == "Object" && parameter.name.starts_with("cl")) {
    return ObjectPtr(std::make_shared<test::Grid>(std::vector<GridColumn>{{}}));
  }
  if (parameter.type == "Object") return ObjectPtr(std::make_shared<test::TextBox>("Id", "1"));
  if (parameter.type == "Connection" || parameter.type == "Collection") return {};
  return parameter.name.starts_with("dt") ? kDay : "1";
}

bool isOfType(const Variant& value, const std::string& type) {
  if (type == "String") return value.isText();
  if (type == "Boolean") return value.type() == VariantType::kBoolean;
  if (type == "Integer") return value.type() == VariantType::kInt16;
  if (type == "Long") return value.type() == VariantType::kInt32;
  if (type == "Single") return value.type() == VariantType::kSingle;
  if (type == "Double") return value.type() == VariantType::kDouble;
  if (type == "Date") return value.type() == VariantType::kDate;
  return true;
}

// With what the interface says that it takes, a slot does its work or raises what the database, the
// record set or a file says about it; and it gives what the interface says that it gives.
TEST(Completeness, EachMemberTakesAndGivesByNameWhatItsSlotSays) {
  for (const Component* each : components()) {
    test::Shop shop;
    shop.apartment().setPromptHandler(std::make_shared<test::Typist>(kDay));
    for (const Member& slot : each->members()) {
      const std::unique_ptr<Object> object = each->make();
      std::vector<Variant> none;
      if (dynamic_cast<RecordClass*>(object.get()) != nullptr)
        each->call(*object, "IniciaRs", none);
      std::vector<Variant> arguments;
      for (const Parameter& parameter : slot.parameters) {
        arguments.push_back(argumentFor(parameter));
      }
      try {
        const Variant result = each->call(*object, slot.name, arguments);
        EXPECT_TRUE(isOfType(result, slot.result)) << each->name() << '.' << slot.signature();
        for (std::size_t i = 0; i < arguments.size(); ++i) {
          if (slot.parameters[i].direction == Parameter::Direction::kIn) continue;
          EXPECT_TRUE(isOfType(arguments[i], slot.parameters[i].type))
              << each->name() << '.' << slot.signature() << ": " << slot.parameters[i].name;
        }
      } catch (const Error& error) {
        for (const std::int32_t refusal :
             {errors::kTypeMismatch, errors::kMemberNotFound, errors::kWrongNumberOfArguments}) {
          EXPECT_NE(error.number(), refusal)
              << each->name() << '.' << slot.signature() << ": " << error.description();
        }
      }
    }
  }
}

}  // namespace
}  // namespace tavelor
