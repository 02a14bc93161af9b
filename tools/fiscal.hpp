// SPDX-License-Identifier: MIT
// The parts of tavelor fiscal, a file each.
#pragma once

namespace CLI {
class App;
}

namespace tavelor::tools {

struct Common;

// Each adds its subcommand to that of tavelor fiscal.
void addFiscalSetup(CLI::App& fiscal, Common& common);
void addFiscalCheck(CLI::App& fiscal, Common& common);
void addFiscalSign(CLI::App& fiscal, Common& common);
void addFiscalExport(CLI::App& fiscal, Common& common);
void addFiscalLog(CLI::App& fiscal, Common& common);
void addFiscalCancel(CLI::App& fiscal, Common& common);
void addFiscalInvoice(CLI::App& fiscal, Common& common);
void addFiscalSend(CLI::App& fiscal, Common& common);
void addFiscalStatus(CLI::App& fiscal, Common& common);
void addFiscalCorrect(CLI::App& fiscal, Common& common);
void addFiscalFacturae(CLI::App& fiscal, Common& common);
void addFiscal347(CLI::App& fiscal, Common& common);

}  // namespace tavelor::tools
