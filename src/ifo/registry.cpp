// The registry of table modules. A new table module adds its entry here; the drivers find it
// through FindTableModule and need no change.
#include <array>

#include "ifo/c_adt.h"
#include "ifo/pgci_ut.h"
#include "ifo/ptl_mait.h"
#include "ifo/table.h"
#include "ifo/tt_srpt.h"
#include "ifo/txtdt_mg.h"
#include "ifo/vmgi_mat.h"
#include "ifo/vobu_admap.h"
#include "ifo/vts_atrt.h"
#include "ifo/vts_pgcit.h"
#include "ifo/vts_ptt_srpt.h"
#include "ifo/vts_tmapt.h"
#include "ifo/vtsi_mat.h"
#include "platform/format.h"

namespace tarvex {

namespace {

// clang-format off
const TableModule* const kModules[] = {
    &kVmgiMatModule,
    &kVtsiMatModule,
    &kVmgmCAdtModule, &kVtsmCAdtModule, &kVtsCAdtModule,
    &kVmgmVobuAdmapModule, &kVtsmVobuAdmapModule, &kVtsVobuAdmapModule,
    &kVtsAtrtModule, &kPtlMaitModule, &kTxtdtMgModule,
    &kVtsPgcitModule, &kVtsmPgciUtModule, &kVtsmLuModule, &kVmgmPgciUtModule, &kVmgmLuModule,
    &kTtSrptModule, &kVtsPttSrptModule, &kVtsTmaptModule,
};
// clang-format on

}  // namespace

const TableModule* FindTableModule(TableId id) {
  for (const TableModule* module : kModules) {
    if (module->id == id) return module;
  }
  return nullptr;
}

std::uint32_t OpenTable(AppContext& ctx, TableId id, File& ifo) {
  const TableModule* m = FindTableModule(id);
  return m && m->OpenTable ? m->OpenTable(ctx, ifo) : 0;
}

void ReportTable(AppContext& ctx, TableId id) {
  const TableModule* m = FindTableModule(id);
  if (m && m->ReportTable) m->ReportTable(ctx);
}

void DisassembleTable(AppContext& ctx, TableId id) {
  const TableModule* m = FindTableModule(id);
  if (m && m->DisassembleTable) m->DisassembleTable(ctx);
}

void LoadTableSource(AppContext& ctx, TableId id) {
  const TableModule* m = FindTableModule(id);
  if (m && m->LoadTableSource) m->LoadTableSource(ctx);
}

TableSize MeasureTable(AppContext& ctx, TableId id) {
  const TableModule* m = FindTableModule(id);
  return m && m->MeasureTable ? m->MeasureTable(ctx) : TableSize{};
}

void EmitTable(AppContext& ctx, TableId id, File& out) {
  const TableModule* m = FindTableModule(id);
  if (m && m->EmitTable) m->EmitTable(ctx, out);
}

void AddAbsenceLine(AppContext& ctx, const char* name, const char* description) {
  ctx.AddReportLine(Format("** %s IFO File: There is no %s", {name, description}));
}

void AddHeadingLine(AppContext& ctx, const char* name, const char* description) {
  ctx.AddReportLine(Format("%s IFO File: %s", {name, description}));
}

void AddAllocationFailureLine(AppContext& ctx, const char* name) {
  ctx.AddReportLine(Format("ERROR: Could not aquire memory for %s", {name}));
}

}  // namespace tarvex
