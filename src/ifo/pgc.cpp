#include "ifo/pgc.h"

#include <algorithm>
#include <array>
#include <string>

#include "ifo/fields.h"
#include "ifo/layouts.h"
#include "ifo/nav_command.h"
#include "ifo/opened_table.h"
#include "ifo/source.h"
#include "platform/file_io.h"
#include "platform/format.h"

namespace tarvex {

namespace {

constexpr std::size_t kCmdtSa = 0xE4;
constexpr std::size_t kPgmapSa = 0xE6;
constexpr std::size_t kCPbitSa = 0xE8;
constexpr std::size_t kCPositSa = 0xEA;
constexpr std::uint32_t kMaxListEntries = 256;
constexpr const char* kMissingCaption = "Statement missing in vts_pgcit";
constexpr const char* kErrorCaption = "Statement error vts_pgcit";

void Add(AppContext& ctx, const std::string& indent, const std::string& text) {
  ctx.AddReportLine(indent + text);
}

void ReportCount(AppContext& ctx, ByteView pgc, const FieldDesc&, const std::string& indent) {
  Add(ctx, indent, Format("PGC: Number of Programs: %d", {pgc.u8(2) & 0x7F}));
  Add(ctx, indent, Format("PGC: Number of Cells: %d", {pgc.u8(3)}));
}

// The BCD digits of a playback time: hours, minutes, seconds, then the frame tens (bits 5-4)
// and units.
std::array<std::uint32_t, 8> TimeDigits(ByteView bytes, std::size_t off) {
  std::uint8_t h = bytes.u8(off), m = bytes.u8(off, 1), s = bytes.u8(off, 2), f = bytes.u8(off, 3);
  return {std::uint32_t{h} >> 4, h & 15u, std::uint32_t{m} >> 4, m & 15u,
          std::uint32_t{s} >> 4, s & 15u, (f >> 4) & 3u,         f & 15u};
}

void ReportPlaybackTime(AppContext& ctx, ByteView pgc, const FieldDesc& field,
                        const std::string& indent) {
  auto t = TimeDigits(pgc, field.offset);
  Add(ctx, indent,
      Format("PGC: Play Back Time: %d%d:%d%d:%d%d.%d%d",
             {t[0], t[1], t[2], t[3], t[4], t[5], t[6], t[7]}));
}

void ReportNavigation(AppContext& ctx, ByteView pgc, const FieldDesc&, const std::string& indent) {
  Add(ctx, indent, Format("PGC: Next PGC number: %d", {pgc.be16(0x9C)}));
  Add(ctx, indent, Format("PGC: Previous PGC number: %d", {pgc.be16(0x9E)}));
  Add(ctx, indent, Format("PGC: Go Up PGC number: %d", {pgc.be16(0xA0)}));
  Add(ctx, indent, Format("PGC: PG Play back mode: %x", {pgc.u8(0xA3)}));
  Add(ctx, indent, Format("PGC: Still time in seconds (255 = infinite): %d", {pgc.u8(0xA2)}));
}

void ReportPalette(AppContext& ctx, ByteView pgc, const FieldDesc& field,
                   const std::string& indent) {
  Add(ctx, indent, "PGC: Sub-Picture palette as YCrCb:");
  for (std::uint32_t c = 0; c < 16; ++c) {
    std::size_t off = FieldOffset(field, c);
    Add(ctx, indent,
        Format("  Color %d: %03d-%03d-%03d", {c, pgc.u8(off, 1), pgc.u8(off, 2), pgc.u8(off, 3)}));
  }
}

// The header fields that are reported, disassembled and assembled field by field.
constexpr FieldDesc kPgcHeader[] = {
    {.key = "cnt",
     .offset = 0x00,
     .width = 4,
     .store = Store::kBytes,
     .form = SourceForm::kHexBytes,
     .load = LoadRule::kHexBytes,
     .style = ReportStyle::kHook,
     .hook = ReportCount},
    {.key = "pb_tm",
     .offset = 0x04,
     .width = 4,
     .store = Store::kBytes,
     .form = SourceForm::kHexBytes,
     .load = LoadRule::kHexBytes,
     .style = ReportStyle::kHook,
     .hook = ReportPlaybackTime},
    {.key = "uop_ctl",
     .offset = 0x08,
     .width = 4,
     .store = Store::kBe32,
     .form = SourceForm::kHex32,
     .load = LoadRule::kHexValue,
     .style = ReportStyle::kValue,
     .report = "PGC: Prohibited user operations: %08x"},
    {.key = "ast_ctlt%02d",
     .offset = 0x0C,
     .width = 2,
     .store = Store::kBe16,
     .form = SourceForm::kHex16,
     .load = LoadRule::kHexValue,
     .style = ReportStyle::kValue,
     .report = "PGC: Audio stream %d status: %04x",
     .repeat = 8,
     .stride = 2},
    {.key = "spst_ctlt%02d",
     .offset = 0x1C,
     .width = 4,
     .store = Store::kBe32,
     .form = SourceForm::kHex32,
     .load = LoadRule::kHexValue,
     .style = ReportStyle::kValue,
     .report = "PGC: Sub-Picture stream %d status: %08x",
     .repeat = 32,
     .stride = 4},
    {.key = "nv_ctl",
     .offset = 0x9C,
     .width = 8,
     .store = Store::kBytes,
     .form = SourceForm::kHexWords,
     .load = LoadRule::kHexWords,
     .style = ReportStyle::kHook,
     .hook = ReportNavigation},
    {.key = "sp_plt%02d",
     .offset = 0xA4,
     .width = 4,
     .store = Store::kBe32,
     .form = SourceForm::kHex32,
     .load = LoadRule::kHexValue,
     .style = ReportStyle::kHook,
     .hook = ReportPalette,
     .repeat = 16,
     .stride = 4},
};

struct CommandKind {
  const char* report;  // "    There are %d ... Commands"
  const char* key;     // key after the prefix, with the command number
};

constexpr std::array<CommandKind, 3> kCommandKinds = {{
    {"    There are %d Pre Commands", "pre%d"},
    {"    There are %d Post Commands", "post%d"},
    {"    There are %d Cell Commands", "cell%d"},
}};

// Byte position (in pgc) of command n (from 0) of kind k.
std::size_t CommandPosition(ByteView pgc, std::size_t cmdt, int kind, std::uint32_t n) {
  std::size_t before = 0;
  for (int k = 0; k < kind; ++k) before += pgc.be16(cmdt + 2 * static_cast<std::size_t>(k));
  return cmdt + 8 + 8 * (before + n);
}

}  // namespace

void PgcReport(AppContext& ctx, int indent, ByteView base, std::size_t offset) {
  ByteView pgc = base.sub(offset);
  std::string pad(static_cast<std::size_t>(std::max(indent, 0)), ' ');
  ReportFields(ctx, pgc, kPgcHeader, pad);

  std::uint32_t programs = pgc.u8(2) & 0x7F;
  std::uint32_t cells = pgc.u8(3);

  std::size_t cmdt = pgc.be16(kCmdtSa);
  Add(ctx, pad, Format("PGC: Memory offset of PGC Command Table: %d", {cmdt}));
  if (cmdt == 0) {
    Add(ctx, pad, "    There is no PGC Command Table");
  } else {
    for (int kind = 0; kind < 3; ++kind) {
      std::uint32_t count = pgc.be16(cmdt + 2 * static_cast<std::size_t>(kind));
      Add(ctx, pad, Format(kCommandKinds[kind].report, {count}));
      for (std::uint32_t n = 0; n < count; ++n) {
        ByteView cmd = pgc.sub(CommandPosition(pgc, cmdt, kind, n), 8);
        std::uint8_t b[8];
        for (std::size_t k = 0; k < 8; ++k) b[k] = cmd.u8(k);
        std::string line = Format("      %d: %02x%02x%02x%02x%02x%02x%02x%02x",
                                  {n + 1, b[0], b[1], b[2], b[3], b[4], b[5], b[6], b[7]});
        std::vector<std::uint8_t> copy(b, b + 8);
        line += DescribeNavCommand(ByteView(copy));
        Add(ctx, pad, line);
      }
    }
  }

  std::size_t pgmap = pgc.be16(kPgmapSa);
  Add(ctx, pad, Format("PGC: Memory offset of PGC Program Map: %d", {pgmap}));
  if (pgmap != 0) {
    for (std::uint32_t p = 0; p < programs; ++p) {
      Add(ctx, pad, Format("    Entry cell number for Program %d: %d", {p + 1, pgc.u8(pgmap + p)}));
    }
  } else {
    Add(ctx, pad, "    There is no PGC Program Map");
    if (programs != 0) {
      Add(ctx, pad, Format("      This is an ERROR as there are %d programs", {programs}));
    }
  }

  std::size_t pbit = pgc.be16(kCPbitSa);
  Add(ctx, pad, Format("PGC: Memory offset of Cell Playback Information Table: %d", {pbit}));
  if (pbit != 0) {
    auto layout = CellPlaybackLayout();
    std::size_t category = LayoutField(layout, "cat").offset;
    for (std::uint32_t c = 0; c < cells; ++c) {
      ByteView e = pgc.sub(pbit + std::size_t{kCellPlaybackBytes} * c, kCellPlaybackBytes);
      std::uint32_t n = c + 1;
      Add(ctx, pad,
          Format("    Cell %d category: %x %x %d %d",
                 {n, e.u8(category), e.u8(category + 1), e.u8(category + 2), e.u8(category + 3)}));
      auto t = TimeDigits(e, LayoutField(layout, "pbtm").offset);
      Add(ctx, pad,
          Format("    Cell %d Play Back Time: %d%d:%d%d:%d%d.%d%d",
                 {n, t[0], t[1], t[2], t[3], t[4], t[5], t[6], t[7]}));
      Add(ctx, pad,
          Format("    Cell %d entry point sector: %d", {n, DiscValue(e, layout, "fvobu_sa")}));
      Add(ctx, pad,
          Format("    Cell %d first ILVU VOBU end sector: %d",
                 {n, DiscValue(e, layout, "filvu_ea")}));
      Add(ctx, pad,
          Format("    Cell %d start sector of last VOUB: %d",
                 {n, DiscValue(e, layout, "lvobu_sa")}));
      Add(ctx, pad,
          Format("    Cell %d last sector of this cell: %d",
                 {n, DiscValue(e, layout, "lvobu_ea")}));
    }
  } else {
    Add(ctx, pad, "    There is no PGC Playback Information Table");
    if (cells != 0) {
      Add(ctx, pad,
          Format("      This is an ERROR as there are %d cells in this program.", {cells}));
    }
  }

  std::size_t posit = pgc.be16(kCPositSa);
  Add(ctx, pad, Format("PGC: Memory offset of Cell Position Information Table: %d", {posit}));
  if (posit != 0) {
    auto layout = CellPositionLayout();
    for (std::uint32_t c = 0; c < cells; ++c) {
      ByteView e = pgc.sub(posit + std::size_t{kCellPositionBytes} * c, kCellPositionBytes);
      Add(ctx, pad,
          Format("    VOB ID number %d of this Cell %d",
                 {DiscValue(e, layout, "vobid"), DiscValue(e, layout, "cellid")}));
    }
  } else {
    Add(ctx, pad, "    There is no Cell Position Information Table");
    if (cells != 0) {
      Add(ctx, pad, Format("      This is an ERROR as there are %d cells", {cells}));
    }
  }
}

void PgcDisassemble(AppContext& ctx, ByteView base, std::size_t offset, std::string_view prefix,
                    std::string_view section) {
  ByteView pgc = base.sub(offset);
  DisassembleFields(ctx, pgc, kPgcHeader, section, prefix);
  std::string p(prefix);
  auto write = [&](const std::string& key, const std::string& value) {
    WriteSourceValue(ctx, section, p + key, value);
  };
  std::uint32_t programs = pgc.u8(2) & 0x7F;
  std::uint32_t cells = pgc.u8(3);

  std::size_t cmdt = pgc.be16(kCmdtSa);
  write("cmdt_sa", Format("%d", {cmdt}));
  if (cmdt != 0) {
    write("cmdt_pre_ns", Format("%d", {pgc.be16(cmdt)}));
    write("cmdt_post_ns", Format("%d", {pgc.be16(cmdt + 2)}));
    write("cmdt_cmds_ns", Format("%d", {pgc.be16(cmdt + 4)}));
    for (int kind = 0; kind < 3; ++kind) {
      std::uint32_t count = pgc.be16(cmdt + 2 * static_cast<std::size_t>(kind));
      for (std::uint32_t n = 0; n < count; ++n) {
        write(Format(kCommandKinds[kind].key, {n + 1}),
              HexBytes(pgc, CommandPosition(pgc, cmdt, kind, n), 8));
      }
    }
  }

  std::size_t pgmap = pgc.be16(kPgmapSa);
  write("pgmap_sa", Format("%d", {pgmap}));
  if (pgmap != 0) {
    for (std::uint32_t n = 0; n < programs; ++n) {
      write(Format("pgmap_prog_entry_cell%02d", {n + 1}), Format("%d", {pgc.u8(pgmap + n)}));
    }
  }

  std::size_t pbit = pgc.be16(kCPbitSa);
  write("c_pbit_sa", Format("%d", {pbit}));
  if (pbit != 0) {
    for (std::uint32_t c = 0; c < cells; ++c) {
      ByteView e = pgc.sub(pbit + std::size_t{kCellPlaybackBytes} * c, kCellPlaybackBytes);
      std::string cell = Format("c_pbit_cell%03d_", {c + 1});
      for (const FieldDesc& field : CellPlaybackLayout()) {
        write(cell + field.key, FormatSourceValue(e, field));
      }
    }
  }

  std::size_t posit = pgc.be16(kCPositSa);
  write("c_posit_sa", Format("%d", {posit}));
  if (posit != 0) {
    for (std::uint32_t c = 0; c < cells; ++c) {
      ByteView e = pgc.sub(posit + std::size_t{kCellPositionBytes} * c, kCellPositionBytes);
      std::string cell = Format("c_posit_cell%03d_", {c + 1});
      for (const FieldDesc& field : CellPositionLayout()) {
        write(cell + field.key, FormatSourceValue(e, field));
      }
    }
  }
}

void PgcAssemble(AppContext& ctx, std::string_view section, std::string_view prefix) {
  PgcAssembly& a = ctx.ifo.pgc;
  a = PgcAssembly{};
  std::string p(prefix);
  std::string value;
  auto read = [&](const std::string& key) { return ReadSourceValue(ctx, section, p + key, value); };
  auto missing = [&](const std::string& key) { ctx.ui.ShowMessage(p + key, kMissingCaption); };

  // Reads one cell entry: its first field ends the list when missing, a later missing field
  // gives the message and stays 0.
  auto read_entry = [&](const std::string& cell, std::span<const FieldDesc> layout, ByteWriter w) {
    if (!read(cell + layout[0].key)) return false;
    StoreSourceValue(w, layout[0], 0, value);
    for (const FieldDesc& field : layout.subspan(1)) {
      if (read(cell + field.key)) {
        StoreSourceValue(w, field, 0, value);
      } else {
        missing(cell + field.key);
      }
    }
    return true;
  };

  // Cell position list.
  for (std::uint32_t n = 1; n <= kMaxListEntries; ++n) {
    std::array<std::uint8_t, kCellPositionBytes> entry{};
    if (!read_entry(Format("c_posit_cell%03d_", {n}), CellPositionLayout(), ByteWriter(entry))) {
      break;
    }
    a.cell_position.push_back(entry);
  }

  // Cell playback list.
  for (std::uint32_t n = 1; n <= kMaxListEntries; ++n) {
    std::array<std::uint8_t, kCellPlaybackBytes> entry{};
    if (!read_entry(Format("c_pbit_cell%03d_", {n}), CellPlaybackLayout(), ByteWriter(entry))) {
      break;
    }
    a.cell_playback.push_back(entry);
  }

  // Program map, padded to an even length.
  for (std::uint32_t n = 1; n <= kMaxListEntries; ++n) {
    if (!read(Format("pgmap_prog_entry_cell%02d", {n}))) break;
    a.program_map.push_back(static_cast<std::uint8_t>(ParseDecimal(value)));
  }
  if (a.program_map.size() % 2 != 0) a.program_map.push_back(0);

  // Command table.
  std::array<std::uint16_t, 3> counts{};
  constexpr std::array<const char*, 3> kCountKeys = {"cmdt_pre_ns", "cmdt_post_ns", "cmdt_cmds_ns"};
  for (std::size_t k = 0; k < 3; ++k) {
    counts[k] = read(kCountKeys[k]) ? static_cast<std::uint16_t>(ParseDecimal(value)) : 0;
  }
  for (std::size_t k = 0; k < 3; ++k) {
    for (std::uint32_t n = 1; n <= counts[k]; ++n) {
      std::string key = Format(kCommandKinds[k].key, {n});
      if (!read(key)) {
        missing(key);
        continue;
      }
      std::vector<std::uint8_t> cmd = ParseHexBytes(value, 8);
      a.commands.insert(a.commands.end(), cmd.begin(), cmd.end());
    }
  }
  ByteWriter ch(a.command_header);
  ch.put_be16(0, counts[0]);
  ch.put_be16(2, counts[1]);
  ch.put_be16(4, counts[2]);
  ch.put_be16(6, 8u * (std::uint32_t{counts[0]} + counts[1] + counts[2]) + 7u);

  // Header.
  ByteWriter header(a.header);
  if (read("cnt")) {
    StoreSourceValue(header, kPgcHeader[0], 0, value);
  } else {
    missing("cnt");
  }
  std::uint32_t programs = a.header[2] & 0x7F;
  std::size_t map_length = a.program_map.size();
  if (programs != map_length && programs + 1 != map_length) {
    ctx.ui.ShowMessage(
        "Number of Programs in cnt not equal to number of programs defined in PGMAP_PROG ",
        kErrorCaption);
  }
  if (a.header[3] != a.cell_playback.size()) {
    ctx.ui.ShowMessage(
        Format("In [%s] at [%s] the number of Cells in cnt not equal to number "
               "of cells defined in C_PBIT. Cell count = %d and C_PBIT = %d ",
               {ctx.convert.source_path, section, a.header[3], a.cell_playback.size()}),
        kErrorCaption);
  }
  LoadFields(ctx, header, ByteView(a.header.data(), a.header.size()),
             std::span<const FieldDesc>(kPgcHeader).subspan(1), section, kMissingCaption, prefix);
}

std::uint16_t PgcLayout(AppContext& ctx) {
  PgcAssembly& a = ctx.ifo.pgc;
  ByteWriter header(a.header);
  std::uint16_t size = kPgcHeaderSize;
  std::uint16_t offsets[4] = {0, 0, 0, 0};
  if (!a.commands.empty()) {
    offsets[0] = size;
    size = static_cast<std::uint16_t>(size + 8 + a.commands.size());
  }
  if (!a.program_map.empty()) {
    offsets[1] = size;
    size = static_cast<std::uint16_t>(size + a.program_map.size());
  }
  if (!a.cell_playback.empty()) {
    offsets[2] = size;
    size = static_cast<std::uint16_t>(size + 24 * a.cell_playback.size());
  }
  if (!a.cell_position.empty()) {
    offsets[3] = size;
    size = static_cast<std::uint16_t>(size + 4 * a.cell_position.size());
  }
  header.put_be16(kCmdtSa, offsets[0]);
  header.put_be16(kPgmapSa, offsets[1]);
  header.put_be16(kCPbitSa, offsets[2]);
  header.put_be16(kCPositSa, offsets[3]);
  return size;
}

std::uint32_t PgcCopyOut(AppContext& ctx, std::span<std::uint8_t> buffer) {
  PgcAssembly& a = ctx.ifo.pgc;
  std::size_t pos = 0;
  bool overflow = false;
  auto put = [&](const std::uint8_t* data, std::size_t n) {
    if (overflow) return;
    if (n > buffer.size() - pos) {
      ctx.ui.ShowMessage("Internal error, data size exceeds buffer size", "EC101");
      overflow = true;
      return;
    }
    std::copy(data, data + n, buffer.begin() + static_cast<std::ptrdiff_t>(pos));
    pos += n;
  };
  put(a.header.data(), a.header.size());
  if (!a.commands.empty()) {
    put(a.command_header.data(), a.command_header.size());
    put(a.commands.data(), a.commands.size());
  }
  if (!a.program_map.empty()) put(a.program_map.data(), a.program_map.size());
  for (const auto& e : a.cell_playback) put(e.data(), e.size());
  for (const auto& e : a.cell_position) put(e.data(), e.size());
  a.cell_playback.clear();
  a.cell_position.clear();
  return static_cast<std::uint32_t>(pos);
}

std::vector<std::uint8_t> AssembleChainBytes(AppContext& ctx, std::string_view section,
                                             std::string_view prefix) {
  PgcAssemble(ctx, section, prefix);
  std::vector<std::uint8_t> bytes(PgcLayout(ctx), 0);
  PgcCopyOut(ctx, bytes);
  return bytes;
}

std::uint64_t ChainBudget(const OpenedTable& table) {
  constexpr std::int64_t kPointerBytes = 8;
  if (table.file == nullptr) return 0;
  return static_cast<std::uint64_t>(std::max<std::int64_t>(table.file->Length(), 0)) /
         kPointerBytes;
}

// A block of program chains: an 8-byte header and one 8-byte search pointer per chain.
namespace {
constexpr std::uint32_t kChainBlockHeader = 8;
constexpr std::uint32_t kChainPointer = 8;
}  // namespace

std::uint32_t ChainBlockBytes(const std::vector<LoadedPgc>& pgcs) {
  std::uint32_t bytes = kChainBlockHeader + kChainPointer * static_cast<std::uint32_t>(pgcs.size());
  for (const LoadedPgc& pgc : pgcs) bytes += static_cast<std::uint32_t>(pgc.bytes.size());
  return bytes;
}

void AppendChainBlock(ByteAppender& a, const std::vector<LoadedPgc>& pgcs,
                      std::uint32_t end_field) {
  auto count = static_cast<std::uint32_t>(pgcs.size());
  AppendCountedHeader(a, count, end_field);
  std::uint32_t offset = kChainBlockHeader + kChainPointer * count;
  for (const LoadedPgc& pgc : pgcs) {
    a.be32(pgc.category);
    a.be32(offset);
    offset += static_cast<std::uint32_t>(pgc.bytes.size());
  }
  for (const LoadedPgc& pgc : pgcs) a.bytes(ByteView(pgc.bytes));
}

std::span<const FieldDesc> PgcHeaderLayout() {
  return kPgcHeader;
}

}  // namespace tarvex
