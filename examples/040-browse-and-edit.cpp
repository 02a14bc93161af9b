// SPDX-License-Identifier: MIT
// What a bound form does: it listens, filters, sorts, edits, and meets a conflict.
#include <iostream>

#include "tavelor/platform/error.hpp"
#include "tavelor/reference/bancos.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace {

// [listener]
/// Stands for a grid: it is told of each move, and reads its data member anew when it must.
class Grid final : public tavelor::RecordClassEvents {
 public:
  explicit Grid(tavelor::ClsBancos& banks) : banks_(banks) { banks_.addListener(*this); }
  ~Grid() override { banks_.removeListener(*this); }
  Grid(const Grid&) = delete;
  Grid& operator=(const Grid&) = delete;

  void MoveComplete() override { ++moves; }
  void DataMemberChanged(std::string_view member) override {
    std::cout << "The grid reads " << member << " anew\n";
  }
  int moves = 0;

 private:
  tavelor::ClsBancos& banks_;
};
// [listener]

}  // namespace

int main() {
  try {
    tavelor::Apartment apartment(tavelor::Installation::create("shop"));
    tavelor::ClsBancos banks;
    Grid grid(banks);
    const auto text = [&](std::string_view column) {
      return banks.DataMember("Primary")->Field(column).Value().toText(apartment.locale());
    };
    for (const char* name : {"Caja Rural", "Banco del Mar", "Caja de Ahorros"}) {
      banks.CrearBanco("", name);
    }

    // [view]
    banks.IniciaRs("todos");
    const auto rows = banks.DataMember("Primary");
    rows->Filter("Descripción Like 'Caja*'");
    rows->Sort("Descripción DESC");
    std::cout << rows->RecordCount() << " rows, the first is " << text("Descripción") << '\n';
    // [view]
    grid.moves = 0;
    banks.MoveNext();
    std::cout << "A move tells the grid " << grid.moves << " time(s)\n";

    // [edit]
    rows->Field("Población").Value("Salamanca");
    std::cout << "In edit: " << banks.EditingRecord() << '\n';
    banks.Update();
    // [edit]

    // [conflict]
    tavelor::ClsBancos other;
    other.IniciaRs("todos");
    other.FindRecord("00001 ");
    other.DataMember("Primary")->Field("Teléfono").Value("923 000 000");
    other.Update();

    rows->Filter("");
    banks.MoveFirst();
    rows->Find("Código = '00001 '");
    rows->Field("Teléfono").Value("600 000 000");
    try {
      banks.Update();
    } catch (const tavelor::Error& error) {
      // The row is still pending here, and the other's number is still in the database.
      std::cout << "Error " << error.number() << '\n';
      rows->Resync(tavelor::Affect::kCurrent, tavelor::ResyncValues::kUnderlying);
      std::cout << "The other wrote "
                << rows->Field("Teléfono").UnderlyingValue().toText(apartment.locale()) << '\n';
      rows->CancelBatch();
      banks.Requery();
    }
    // [conflict]
    rows->Find("Código = '00001 '");
    std::cout << "The telephone is " << text("Teléfono") << '\n';
    return 0;
  } catch (const tavelor::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
