// The table-module interface: every IFO table kind is one module offering the same six
// operations, and the drivers reach the modules only through the registry below. A module
// that has nothing to do in one operation leaves it empty (nullptr).
//
// Adding a table kind: write src/ifo/<table>.{h,cpp} with a `const TableModule` for its
// TableId, keep its image and loaded entries in a struct of IfoState (ifo/ifo_state.h), take
// its start sector from VmgiMatState or TitleSetStartSector, and list the module in
// registry.cpp. The drivers and the information tables already call every kind in the
// right order.
#pragma once

#include <cstdint>

#include "app/context.h"
#include "platform/file_io.h"

namespace tarvex {

// Every table kind of both IFO kinds, in the order the details prefixes are compared.
enum class TableId : std::uint8_t {
  kVtsiMat,
  kVtsPttSrpt,
  kVtsPgcit,
  kVtsmPgciUt,
  kVtsmLu,
  kVtsTmapt,
  kVtsmCAdt,
  kVtsmVobuAdmap,
  kVtsCAdt,
  kVtsVobuAdmap,
  kVmgiMat,
  kVmgPttSrpt,
  kVmgmPgciUt,
  kVmgmLu,
  kVmgMait,
  kVmgAtrt,
  kVmgTxtdt,
  kVmgmCAdt,
  kVmgmVobuAdmap,
  kCount,
};

struct TableSize {
  std::uint32_t sectors = 0;
  std::uint32_t bytes = 0;
};

struct TableModule {
  TableId id;
  // Takes the start sector from the information table; adds the absence line and returns 0
  // when it is 0, otherwise reads the header, adds the heading line and returns the header
  // value (end address or count).
  std::uint32_t (*OpenTable)(AppContext& ctx, File& ifo);
  // Adds the table's report lines.
  void (*ReportTable)(AppContext& ctx);
  // Writes the table's IfoSource keys.
  void (*DisassembleTable)(AppContext& ctx);
  // Reads the table's section of the IfoSource into memory.
  void (*LoadTableSource)(AppContext& ctx);
  // Size as it will be written (both 0 when nothing was loaded).
  TableSize (*MeasureTable)(AppContext& ctx);
  // Writes the loaded table big-endian, pads it to a sector and frees the loaded entries.
  void (*EmitTable)(AppContext& ctx, File& out);
};

// The module of a table kind, or nullptr while that kind has no module.
const TableModule* FindTableModule(TableId id);

// Operation wrappers that do nothing for a kind without a module or without that operation.
std::uint32_t OpenTable(AppContext& ctx, TableId id, File& ifo);
void ReportTable(AppContext& ctx, TableId id);
void DisassembleTable(AppContext& ctx, TableId id);
void LoadTableSource(AppContext& ctx, TableId id);
TableSize MeasureTable(AppContext& ctx, TableId id);
void EmitTable(AppContext& ctx, TableId id, File& out);

// The absence line "** NAME IFO File: There is no DESCRIPTION" and the heading line
// "NAME IFO File: DESCRIPTION" shared by most tables.
void AddAbsenceLine(AppContext& ctx, const char* name, const char* description);
void AddHeadingLine(AppContext& ctx, const char* name, const char* description);
// "ERROR: Could not aquire memory for " + name.
void AddAllocationFailureLine(AppContext& ctx, const char* name);

}  // namespace tarvex
