#include "ifo/layouts.h"

#include <stdexcept>
#include <string>

namespace tarvex {

namespace {

// A big-endian number read as a decimal value; nothing reports these fields line by line.
constexpr FieldDesc Number(const char* key, std::uint16_t offset, std::uint16_t width) {
  FieldDesc field = DecimalNumber(key, offset, width, nullptr);
  field.style = ReportStyle::kNone;
  return field;
}

constexpr FieldDesc Bytes(const char* key, std::uint16_t offset, std::uint16_t width) {
  return {.key = key,
          .offset = offset,
          .width = width,
          .store = Store::kBytes,
          .form = SourceForm::kHexBytes,
          .load = LoadRule::kHexBytes};
}

constexpr FieldDesc kTableHeader[] = {Number("ns", 0, 2), Number("ea", 4, 4)};

constexpr FieldDesc kCellPlayback[] = {
    Bytes("cat", 0, 4),        Bytes("pbtm", 4, 4),       Number("fvobu_sa", 8, 4),
    Number("filvu_ea", 12, 4), Number("lvobu_sa", 16, 4), Number("lvobu_ea", 20, 4),
};

constexpr FieldDesc kCellPosition[] = {Number("vobid", 0, 2), Number("cellid", 3, 1)};

constexpr FieldDesc kCellAddress[] = {Number("vob_idn", 0, 2), Number("c_idn", 2, 1),
                                      Number("cp_sa", 4, 4), Number("cp_ea", 8, 4)};

constexpr FieldDesc kPartOfTitle[] = {Number("pgcn", 0, 2), Number("pgn", 3, 1)};

constexpr FieldDesc kChainPointer[] = {Number("pgc_cat", 0, 4), Number("pgci_sa", 4, 4)};

constexpr FieldDesc kLanguageUnitPointer[] = {
    {.key = "lcd",
     .offset = 0,
     .width = 2,
     .store = Store::kText,
     .form = SourceForm::kText,
     .load = LoadRule::kText},
    Number("exst", 3, 1),
    Number("lu_sa", 4, 4),
};

constexpr FieldDesc kTimeMap[] = {Number("tmu", 0, 1), Number("map_en_ns", 2, 2)};

constexpr FieldDesc kPgcSubTables[] = {Number("cmdt_sa", 0xE4, 2), Number("pgmap_sa", 0xE6, 2),
                                       Number("c_pbit_sa", 0xE8, 2), Number("c_posit_sa", 0xEA, 2)};

constexpr FieldDesc kCommandTable[] = {Number("cmdt_pre_ns", 0, 2), Number("cmdt_post_ns", 2, 2),
                                       Number("cmdt_cmds_ns", 4, 2), Number("cmdt_ea", 6, 2)};

}  // namespace

std::span<const FieldDesc> TableHeaderLayout() {
  return kTableHeader;
}
std::span<const FieldDesc> CellPlaybackLayout() {
  return kCellPlayback;
}
std::span<const FieldDesc> CellPositionLayout() {
  return kCellPosition;
}
std::span<const FieldDesc> CellAddressLayout() {
  return kCellAddress;
}
std::span<const FieldDesc> PartOfTitleLayout() {
  return kPartOfTitle;
}
std::span<const FieldDesc> ChainPointerLayout() {
  return kChainPointer;
}
std::span<const FieldDesc> LanguageUnitPointerLayout() {
  return kLanguageUnitPointer;
}
std::span<const FieldDesc> TimeMapLayout() {
  return kTimeMap;
}
std::span<const FieldDesc> PgcSubTableLayout() {
  return kPgcSubTables;
}
std::span<const FieldDesc> CommandTableLayout() {
  return kCommandTable;
}

const FieldDesc& LayoutField(std::span<const FieldDesc> layout, std::string_view key) {
  for (const FieldDesc& field : layout) {
    if (key == field.key) return field;
  }
  throw std::logic_error("no IFO field " + std::string(key));
}

std::uint32_t DiscFieldValue(ByteView bytes, const FieldDesc& field, std::uint32_t i) {
  if (field.store == Store::kHost32) return bytes.be32(FieldOffset(field, i));
  return FieldValue(bytes, field, i);
}

std::uint32_t DiscValue(ByteView bytes, std::span<const FieldDesc> layout, std::string_view key,
                        std::uint32_t i) {
  return DiscFieldValue(bytes, LayoutField(layout, key), i);
}

ByteView DiscFieldBytes(ByteView bytes, std::span<const FieldDesc> layout, std::string_view key,
                        std::uint32_t i) {
  const FieldDesc& field = LayoutField(layout, key);
  ByteView item = bytes.sub(FieldOffset(field, i), field.width);
  return item;
}

}  // namespace tarvex
