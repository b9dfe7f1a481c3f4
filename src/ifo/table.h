// The table-module interface: every IFO table kind is one module offering the same six
// operations, and the drivers reach the modules only through the registry below. A module
// that has nothing to do in one operation leaves it empty (nullptr).
//
// Adding a table kind: write src/ifo/<table>.{h,cpp} with a `const TableModule` for its
// TableId, keep its image and loaded entries in a struct of IfoState (state/ifo_state.h), take
// its start sector from VmgiMatState or TitleSetStartSector, and list the module in
// registry.cpp. The drivers and the information tables already call every kind in the
// right order.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/file_io.h"
#include "state/context.h"

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

// The operations of a table kind that comes in variants, each taking the variant's data (names,
// keys, start sector...); nullptr for an operation the kind does not have.
template <typename Variant>
struct VariantOperations {
  std::uint32_t (*open)(AppContext& ctx, const Variant& v, File& ifo);
  void (*report)(AppContext& ctx, const Variant& v);
  void (*disassemble)(AppContext& ctx, const Variant& v);
  void (*load)(AppContext& ctx, const Variant& v);
  TableSize (*measure)(AppContext& ctx, const Variant& v);
  void (*emit)(AppContext& ctx, const Variant& v, File& out);
};

// Whether a variant operation is there (a call, so that the test of a known function address
// draws no warning).
template <typename F>
constexpr bool HasOperation(F* operation) {
  return operation != nullptr;
}

// The module of variant kIndex of kVariants: each operation runs the kind's implementation on
// that variant's data.
template <const auto& kOperations, const auto& kVariants, std::size_t kIndex>
constexpr TableModule VariantModule(TableId id) {
  constexpr const auto& ops = kOperations;
  constexpr const auto& kVariant = kVariants[kIndex];
  using Open = std::uint32_t (*)(AppContext&, File&);
  using Step = void (*)(AppContext&);
  using Measure = TableSize (*)(AppContext&);
  using Emit = void (*)(AppContext&, File&);
  return {
      .id = id,
      .OpenTable = HasOperation(ops.open)
                       ? Open{[](AppContext& c, File& f) { return ops.open(c, kVariant, f); }}
                       : nullptr,
      .ReportTable =
          HasOperation(ops.report) ? Step{[](AppContext& c) { ops.report(c, kVariant); }} : nullptr,
      .DisassembleTable = HasOperation(ops.disassemble)
                              ? Step{[](AppContext& c) { ops.disassemble(c, kVariant); }}
                              : nullptr,
      .LoadTableSource =
          HasOperation(ops.load) ? Step{[](AppContext& c) { ops.load(c, kVariant); }} : nullptr,
      .MeasureTable = HasOperation(ops.measure)
                          ? Measure{[](AppContext& c) { return ops.measure(c, kVariant); }}
                          : nullptr,
      .EmitTable = HasOperation(ops.emit)
                       ? Emit{[](AppContext& c, File& f) { ops.emit(c, kVariant, f); }}
                       : nullptr,
  };
}

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
