#include "ifo/vobu_admap.h"

#include <optional>
#include <string>

#include "ifo/source.h"
#include "ifo/vtsi_mat.h"
#include "platform/bytes.h"
#include "platform/format.h"

namespace tarvex {

namespace {

constexpr std::uint32_t kHeaderBytes = 4;
constexpr std::uint32_t kEntryBytes = 4;
// All three maps carry the same heading description.
constexpr const char* kDescription = "Video Title Set Menu VOBU Address Map Table";

struct AdmapVariant {
  std::size_t slot;  // index into IfoState::vobu_admap
  const char* name;
  const char* section;            // the video manager's map shares the title set map's section
  const char* failure_name;       // named when its entries do not fit in memory
  const char* count_line;         // or nullptr
  bool entries_read_when_opened;  // the title set menu map reads its entries at open time
  std::uint32_t (*start_sector)(const AppContext& ctx);
};

std::uint32_t VmgmStart(const AppContext& ctx) {
  return ctx.ifo.vmgi_mat.vmgm_vobu_admap_sa;
}
std::uint32_t VtsmStart(const AppContext& ctx) {
  return TitleSetStartSector(ctx, kVtsmVobuAdmapSa);
}
std::uint32_t VtsStart(const AppContext& ctx) {
  return TitleSetStartSector(ctx, kVtsVobuAdmapSa);
}

constexpr AdmapVariant kVariants[] = {
    {0, "VMGM_VOBU_ADMAP", "vts_vobu_admap", "VMGM_VOBU_ADMAP",
     "VMGM VOBU Address Map Information: %d entries", false, VmgmStart},
    {1, "VTSM_VOBU_ADMAP", "vtsm_vobu_admap", "VTSM_VOBU_ADMAP", nullptr, true, VtsmStart},
    {2, "VTS_VOBU_ADMAP", "vts_vobu_admap", "VTSM_VOBU_ADMAP", nullptr, false, VtsStart},
};

// The entry bytes: (end address - 3), taken as a signed number (none when negative). Nothing
// when they exceed what the file holds after the end address: there is no room for them.
std::optional<std::vector<std::uint8_t>> ReadEntries(File& ifo, const VobuAdmapState& s) {
  std::int32_t bytes = static_cast<std::int32_t>(s.end_address - 3u);
  return ReadBoundedBlock(ifo, s.entries_pos, bytes);
}

std::uint32_t Open(AppContext& ctx, const AdmapVariant& v, File& ifo) {
  VobuAdmapState& s = ctx.ifo.vobu_admap[v.slot];
  s.open = false;
  s.entries_failed = false;
  s.entries.clear();
  std::uint32_t start = v.start_sector(ctx);
  if (start == 0) {
    AddAbsenceLine(ctx, v.name, kDescription);
    return 0;
  }
  std::int64_t pos = std::int64_t{start} * kSectorSize;
  std::vector<std::uint8_t> header = ReadFileBlock(ifo, pos, kHeaderBytes);
  AddHeadingLine(ctx, v.name, kDescription);
  s.end_address = ByteView(header).be32(0);
  s.entries_pos = pos + kHeaderBytes;
  s.open = true;
  if (v.entries_read_when_opened) {
    std::optional<std::vector<std::uint8_t>> entries = ReadEntries(ifo, s);
    if (entries) {
      s.entries = std::move(*entries);
    } else {
      s.entries_failed = true;
      AddAllocationFailureLine(ctx, v.failure_name);
    }
  }
  return s.end_address;
}

// The entries for a report or disassembly: those read at open time, or read afresh.
std::optional<std::vector<std::uint8_t>> Entries(AppContext& ctx, const AdmapVariant& v) {
  const VobuAdmapState& s = ctx.ifo.vobu_admap[v.slot];
  if (!s.open) return std::nullopt;
  if (v.entries_read_when_opened) {
    if (s.entries_failed) return std::nullopt;
    return s.entries;
  }
  return ReadEntries(ctx.open.file_handle, s);
}

void Report(AppContext& ctx, const AdmapVariant& v) {
  ctx.ClearReportList();
  std::optional<std::vector<std::uint8_t>> entries = Entries(ctx, v);
  if (!entries) {
    // The map read at open time already said so in the overview.
    if (ctx.ifo.vobu_admap[v.slot].open && !v.entries_read_when_opened) {
      AddAllocationFailureLine(ctx, v.failure_name);
    }
    return;
  }
  ByteView view(*entries);
  std::uint32_t count = static_cast<std::uint32_t>(entries->size() / kEntryBytes);
  if (v.count_line) ctx.AddReportLine(Format(v.count_line, {count}));
  for (std::uint32_t i = 0; i < count; ++i) {
    ctx.AddReportLine(Format("  VOBU %d starts at sector %d", {i + 1, view.be32(kEntryBytes * i)}));
  }
}

void Disassemble(AppContext& ctx, const AdmapVariant& v) {
  std::optional<std::vector<std::uint8_t>> entries = Entries(ctx, v);
  if (!entries) return;
  ByteView view(*entries);
  std::uint32_t count = static_cast<std::uint32_t>(entries->size() / kEntryBytes);
  for (std::uint32_t i = 0; i < count; ++i) {
    WriteSourceValue(ctx, v.section, Format("vobu_sa%04d", {i + 1}),
                     Format("%d", {view.be32(kEntryBytes * i)}));
  }
}

// Keys vobu_sa0001, vobu_sa0002, ... up to the first missing one.
void Load(AppContext& ctx, const AdmapVariant& v) {
  std::vector<std::uint32_t>& loaded = ctx.ifo.vobu_admap[v.slot].loaded;
  loaded.clear();
  std::string value;
  while (ReadSourceValue(ctx, v.section, Format("vobu_sa%04d", {loaded.size() + 1}), value)) {
    loaded.push_back(ParseDecimal(value));
  }
}

TableSize Measure(AppContext& ctx, const AdmapVariant& v) {
  const std::vector<std::uint32_t>& loaded = ctx.ifo.vobu_admap[v.slot].loaded;
  if (loaded.empty()) return {};
  std::uint32_t bytes = kHeaderBytes + kEntryBytes * static_cast<std::uint32_t>(loaded.size());
  return {SectorsFor(bytes), bytes};
}

void Emit(AppContext& ctx, const AdmapVariant& v, File& out) {
  std::vector<std::uint32_t>& loaded = ctx.ifo.vobu_admap[v.slot].loaded;
  if (loaded.empty()) return;
  std::vector<std::uint8_t> bytes;
  ByteAppender a(bytes);
  a.be32(TableEndAddress(kHeaderBytes, static_cast<std::uint32_t>(loaded.size()), kEntryBytes));
  for (std::uint32_t sector : loaded) a.be32(sector);
  WriteTableSectors(out, bytes);
  loaded.clear();
  loaded.shrink_to_fit();
}

// Each variant's module runs the one implementation above on the variant's data.
constexpr VariantOperations<AdmapVariant> kOperations = {Open, Report,  Disassemble,
                                                         Load, Measure, Emit};

}  // namespace

const TableModule kVmgmVobuAdmapModule =
    VariantModule<kOperations, kVariants, 0>(TableId::kVmgmVobuAdmap);
const TableModule kVtsmVobuAdmapModule =
    VariantModule<kOperations, kVariants, 1>(TableId::kVtsmVobuAdmap);
const TableModule kVtsVobuAdmapModule =
    VariantModule<kOperations, kVariants, 2>(TableId::kVtsVobuAdmap);

}  // namespace tarvex
