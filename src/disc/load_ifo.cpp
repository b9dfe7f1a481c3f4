#include "disc/load_ifo.h"

#include <algorithm>

#include "ifo/layouts.h"

namespace tarvex {

namespace {

// Enough for any real table, small enough that hostile counts cost little.
constexpr std::uint32_t kMaxCommands = 1024;
constexpr std::uint32_t kMaxChains = 999;  // program chains in one table
constexpr std::uint32_t kMaxLanguageUnits = 100;

std::uint32_t Header(ByteView table, std::string_view key) {
  return DiscValue(table, TableHeaderLayout(), key);
}

// How many items of size bytes fit in view after offset (the counts in a damaged table can
// claim more than the file holds).
std::uint32_t Fitting(ByteView view, std::size_t offset, std::size_t size, std::uint32_t count) {
  if (offset >= view.size()) return 0;
  return static_cast<std::uint32_t>(std::min<std::size_t>(count, (view.size() - offset) / size));
}

std::vector<NavCommand> ReadCommands(ByteView pgc, std::size_t at, std::uint32_t count) {
  std::vector<NavCommand> commands;
  count = std::min(Fitting(pgc, at, 8, count), kMaxCommands);
  for (std::uint32_t i = 0; i < count; ++i) {
    NavCommand c{};
    for (std::size_t k = 0; k < 8; ++k) c[k] = pgc.u8(at + 8 * i, k);
    commands.push_back(c);
  }
  return commands;
}

void ReadCells(ByteView pgc, Pgc& p) {
  std::uint32_t count = p.declared_cells;
  if (p.cell_playback_at == 0) return;
  count = Fitting(pgc, p.cell_playback_at, kCellPlaybackBytes, count);
  auto playback = CellPlaybackLayout();
  auto position = CellPositionLayout();
  for (std::uint32_t c = 0; c < count; ++c) {
    ByteView e = pgc.sub(p.cell_playback_at + std::size_t{kCellPlaybackBytes} * c);
    Cell cell;
    cell.number = c + 1;
    ByteView cat = DiscFieldBytes(e, playback, "cat");
    for (std::size_t k = 0; k < 4; ++k) cell.category[k] = cat.u8(k);
    cell.time = DecodePlaybackTime(DiscFieldBytes(e, playback, "pbtm"));
    cell.first_sector = DiscValue(e, playback, "fvobu_sa");
    cell.first_ilvu_end = DiscValue(e, playback, "filvu_ea");
    cell.last_vobu_start = DiscValue(e, playback, "lvobu_sa");
    cell.last_sector = DiscValue(e, playback, "lvobu_ea");
    if (p.cell_position_at != 0) {
      ByteView pos = pgc.sub(p.cell_position_at + std::size_t{kCellPositionBytes} * c);
      cell.vob_id = static_cast<std::uint16_t>(DiscValue(pos, position, "vobid"));
      cell.cell_id = static_cast<std::uint8_t>(DiscValue(pos, position, "cellid"));
    }
    p.cells.push_back(cell);
  }
}

}  // namespace

ByteView TableAt(ByteView ifo, std::uint32_t sector) {
  if (sector == 0) return {};
  return ifo.sub(std::size_t{sector} * 2048);
}

Pgc ReadPgc(ByteView table, std::uint32_t offset, std::uint32_t number, std::uint32_t category) {
  ByteView pgc = table.sub(offset);
  auto header = PgcHeaderLayout();
  Pgc p;
  p.number = number;
  p.offset = offset;
  p.category = category;
  ByteView cnt = DiscFieldBytes(pgc, header, "cnt");
  p.declared_programs = cnt.u8(2) & 0x7F;
  p.declared_cells = cnt.u8(3);
  p.time = DecodePlaybackTime(DiscFieldBytes(pgc, header, "pb_tm"));
  for (std::uint32_t i = 0; i < 8; ++i) {
    p.audio_control[i] = static_cast<std::uint16_t>(DiscValue(pgc, header, "ast_ctlt%02d", i));
  }
  for (std::uint32_t i = 0; i < 32; ++i) {
    p.subpicture_control[i] = DiscValue(pgc, header, "spst_ctlt%02d", i);
  }
  ByteView nav = DiscFieldBytes(pgc, header, "nv_ctl");
  p.next = nav.be16(0);
  p.previous = nav.be16(2);
  p.go_up = nav.be16(4);
  p.still_time = nav.u8(6);
  p.playback_mode = nav.u8(7);
  for (std::uint32_t i = 0; i < 16; ++i) p.palette[i] = DiscValue(pgc, header, "sp_plt%02d", i);
  auto sub = PgcSubTableLayout();
  p.commands_at = static_cast<std::uint16_t>(DiscValue(pgc, sub, "cmdt_sa"));
  p.program_map_at = static_cast<std::uint16_t>(DiscValue(pgc, sub, "pgmap_sa"));
  p.cell_playback_at = static_cast<std::uint16_t>(DiscValue(pgc, sub, "c_pbit_sa"));
  p.cell_position_at = static_cast<std::uint16_t>(DiscValue(pgc, sub, "c_posit_sa"));
  if (p.commands_at != 0) {
    ByteView cmdt = pgc.sub(p.commands_at);
    auto layout = CommandTableLayout();
    std::uint32_t pre = DiscValue(cmdt, layout, "cmdt_pre_ns");
    std::uint32_t post = DiscValue(cmdt, layout, "cmdt_post_ns");
    std::uint32_t cell = DiscValue(cmdt, layout, "cmdt_cmds_ns");
    std::size_t at = std::size_t{p.commands_at} + 8;
    p.pre = ReadCommands(pgc, at, pre);
    p.post = ReadCommands(pgc, at + 8 * std::size_t{pre}, post);
    p.cell_commands = ReadCommands(pgc, at + 8 * (std::size_t{pre} + post), cell);
  }
  if (p.program_map_at != 0) {
    std::uint32_t n = Fitting(pgc, p.program_map_at, 1, p.declared_programs);
    for (std::uint32_t i = 0; i < n; ++i) p.program_map.push_back(pgc.u8(p.program_map_at + i));
  }
  ReadCells(pgc, p);
  return p;
}

std::vector<Pgc> ReadChainBlock(ByteView block) {
  std::vector<Pgc> pgcs;
  std::uint32_t count = Fitting(block, kTableHeaderBytes, kChainPointerBytes, Header(block, "ns"));
  count = std::min(count, kMaxChains);
  auto pointer = ChainPointerLayout();
  for (std::uint32_t i = 0; i < count; ++i) {
    ByteView p = block.sub(kTableHeaderBytes + std::size_t{kChainPointerBytes} * i);
    pgcs.push_back(
        ReadPgc(block, DiscValue(p, pointer, "pgci_sa"), i + 1, DiscValue(p, pointer, "pgc_cat")));
  }
  return pgcs;
}

std::vector<LanguageUnit> ReadMenuUnits(ByteView table) {
  std::vector<LanguageUnit> units;
  std::uint32_t count =
      Fitting(table, kTableHeaderBytes, kLanguageUnitPointerBytes, Header(table, "ns"));
  count = std::min(count, kMaxLanguageUnits);
  auto pointer = LanguageUnitPointerLayout();
  std::size_t chains = 0;  // over all units: units that share their chains count each time
  for (std::uint32_t i = 0; i < count; ++i) {
    ByteView p = table.sub(kTableHeaderBytes + std::size_t{kLanguageUnitPointerBytes} * i);
    LanguageUnit unit;
    ByteView lcd = DiscFieldBytes(p, pointer, "lcd");
    unit.language = std::string{static_cast<char>(lcd.u8(0)), static_cast<char>(lcd.u8(1))};
    unit.existence = static_cast<std::uint8_t>(DiscValue(p, pointer, "exst"));
    unit.offset = DiscValue(p, pointer, "lu_sa");
    if (unit.offset != 0 && chains < kMaxChains) unit.pgcs = ReadChainBlock(table.sub(unit.offset));
    chains += unit.pgcs.size();
    units.push_back(std::move(unit));
  }
  return units;
}

void ReadCellAddresses(ByteView table, VobSet& set) {
  if (table.size() == 0) return;
  set.has_cell_table = true;
  set.vob_count = static_cast<std::uint16_t>(Header(table, "ns"));
  set.cell_table_end = Header(table, "ea");
  std::uint32_t declared =
      set.cell_table_end >= 7 ? (set.cell_table_end - 7) / kCellAddressBytes : 0;
  std::uint32_t count = Fitting(table, kTableHeaderBytes, kCellAddressBytes, declared);
  auto layout = CellAddressLayout();
  for (std::uint32_t i = 0; i < count; ++i) {
    ByteView e = table.sub(kTableHeaderBytes + std::size_t{kCellAddressBytes} * i);
    set.cells.push_back({static_cast<std::uint16_t>(DiscValue(e, layout, "vob_idn")),
                         static_cast<std::uint8_t>(DiscValue(e, layout, "c_idn")),
                         DiscValue(e, layout, "cp_sa"), DiscValue(e, layout, "cp_ea")});
  }
  set.Index();
}

void ReadVobuAddresses(ByteView table, VobSet& set) {
  if (table.size() == 0) return;
  set.has_admap = true;
  set.admap_end = table.be32(0);
  std::uint32_t declared = set.admap_end >= 3 ? (set.admap_end - 3) / 4 : 0;
  std::uint32_t count = Fitting(table, 4, 4, declared);
  set.vobu_starts.reserve(count);
  for (std::uint32_t i = 0; i < count; ++i) set.vobu_starts.push_back(table.be32(4 + 4 * i));
  set.Index();
}

}  // namespace tarvex

namespace tarvex {

namespace {

// The end address of a table: at 4 in the usual 8-byte header, at 0 in a VOBU address map,
// at 16 in the text data manager.
std::uint64_t TableEnd(ByteView ifo, const char* name, std::uint32_t sector) {
  ByteView table = TableAt(ifo, sector);
  std::string_view n(name);
  std::uint32_t ea = n.ends_with("VOBU_ADMAP") ? table.be32(0)
                     : n == "TXTDT_MG"         ? table.be32(16)
                                               : table.be32(4);
  return std::uint64_t{sector} * 2048 + ea + 1;
}

// A table and the information table's key of its start sector.
struct NamedTable {
  const char* name;
  const char* key;
};

std::vector<TableLocation> LocateTables(ByteView ifo, std::span<const FieldDesc> layout,
                                        std::span<const NamedTable> names) {
  std::vector<TableLocation> tables;
  for (const NamedTable& t : names) {
    std::uint32_t sector = DiscValue(ifo, layout, t.key);
    tables.push_back({t.name, sector, sector == 0 ? 0 : TableEnd(ifo, t.name, sector)});
  }
  return tables;
}

StreamDeclarations MenuStreams(ByteView ifo, std::span<const FieldDesc> layout,
                               const char* prefix) {
  std::string p(prefix);
  StreamDeclarations s;
  ByteView video = DiscFieldBytes(ifo, layout, p + "_v_atr");
  s.video_bytes = {video.u8(0), video.u8(1)};
  s.video = DecodeVideoAttributes(video);
  s.audio_count = static_cast<std::uint8_t>(DiscValue(ifo, layout, p + "_ast_ns"));
  s.subpicture_count = static_cast<std::uint8_t>(DiscValue(ifo, layout, p + "_spst_ns"));
  if (s.audio_count > 0)
    s.audio.push_back(DecodeAudioAttributes(DiscFieldBytes(ifo, layout, p + "_ast_atr")));
  if (s.subpicture_count > 0) {
    s.subpictures.push_back(
        DecodeSubpictureAttributes(DiscFieldBytes(ifo, layout, p + "_spst_atr")));
  }
  return s;
}

std::string Text(ByteView bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size() && bytes.u8(i) != 0; ++i) {
    text += static_cast<char>(bytes.u8(i));
  }
  return text;
}

std::vector<std::vector<PartOfTitle>> ReadParts(ByteView table, std::uint16_t& declared) {
  std::vector<std::vector<PartOfTitle>> titles;
  if (table.size() == 0) return titles;
  declared = static_cast<std::uint16_t>(Header(table, "ns"));
  std::uint32_t end = Header(table, "ea") + 1;
  std::uint32_t count = Fitting(table, kTableHeaderBytes, 4, declared);
  auto layout = PartOfTitleLayout();
  for (std::uint32_t t = 0; t < count; ++t) {
    std::uint32_t from = table.be32(kTableHeaderBytes + 4 * t);
    std::uint32_t to = t + 1 < count ? table.be32(kTableHeaderBytes + 4 * (t + 1)) : end;
    std::vector<PartOfTitle> parts;
    if (to > from) {
      std::uint32_t n = Fitting(table, from, kPartOfTitleBytes, (to - from) / kPartOfTitleBytes);
      n = std::min<std::uint32_t>(n, 999);
      for (std::uint32_t i = 0; i < n; ++i) {
        ByteView e = table.sub(from + std::size_t{kPartOfTitleBytes} * i);
        parts.push_back({static_cast<std::uint16_t>(DiscValue(e, layout, "pgcn")),
                         static_cast<std::uint8_t>(DiscValue(e, layout, "pgn"))});
      }
    }
    titles.push_back(std::move(parts));
  }
  return titles;
}

std::vector<TitleTimeMap> ReadTimeMaps(ByteView table) {
  std::vector<TitleTimeMap> maps;
  std::uint32_t count = Fitting(table, kTableHeaderBytes, 4, Header(table, "ns"));
  auto layout = TimeMapLayout();
  for (std::uint32_t m = 0; m < count; ++m) {
    ByteView map = table.sub(table.be32(kTableHeaderBytes + 4 * m));
    TitleTimeMap tm;
    tm.unit = static_cast<std::uint8_t>(DiscValue(map, layout, "tmu"));
    std::uint32_t n = Fitting(map, 4, 4, DiscValue(map, layout, "map_en_ns"));
    for (std::uint32_t e = 0; e < n; ++e) tm.entries.push_back(map.be32(4 + 4 * e));
    maps.push_back(std::move(tm));
  }
  return maps;
}

}  // namespace

void ReadVideoManager(ByteView ifo, VideoManager& vmg) {
  auto layout = VmgiMatLayout();
  vmg.id = Text(DiscFieldBytes(ifo, layout, "vmg_id"));
  vmg.present = vmg.id == "DVDVIDEO-VMG";
  vmg.provider = Text(DiscFieldBytes(ifo, layout, "pvr_id"));
  vmg.version = static_cast<std::uint8_t>(DiscValue(ifo, layout, "vern"));
  vmg.category = DiscValue(ifo, layout, "vmg_cat");
  vmg.title_set_count = static_cast<std::uint16_t>(DiscValue(ifo, layout, "vmg_ns"));
  vmg.vmg_ea = DiscValue(ifo, layout, "vmg_ea");
  vmg.vmgi_ea = DiscValue(ifo, layout, "vmgi_ea");
  vmg.vmgi_mat_ea = DiscValue(ifo, layout, "vmgi_mat_ea");
  vmg.first_play_at = DiscValue(ifo, layout, "fp_pgci_sa");
  vmg.menu_vobs_at = DiscValue(ifo, layout, "vmgm_vobs_sa");
  vmg.menu = MenuStreams(ifo, layout, "vmgm");
  constexpr NamedTable kTables[] = {{"TT_SRPT", "tt_srpt_sa"},
                                    {"VMGM_PGCI_UT", "vmgm_pgci_ut_sa"},
                                    {"PTL_MAIT", "ptl_mait_sa"},
                                    {"VTS_ATRT", "vts_atrt_sa"},
                                    {"TXTDT_MG", "txtdt_mg_sa"},
                                    {"VMGM_C_ADT", "vmgm_c_adt_sa"},
                                    {"VMGM_VOBU_ADMAP", "vmgm_vobu_admap_sa"}};
  vmg.tables = LocateTables(ifo, layout, kTables);
  if (vmg.first_play_at != 0) vmg.first_play = ReadPgc(ifo, vmg.first_play_at, 1, 0);

  ByteView tt = TableAt(ifo, vmg.tables[0].start_sector);
  if (tt.size() != 0) {
    vmg.declared_titles = static_cast<std::uint16_t>(Header(tt, "ns"));
    std::uint32_t count = Fitting(tt, kTableHeaderBytes, 12, vmg.declared_titles);
    auto entry = TtSrptEntryLayout();
    for (std::uint32_t i = 0; i < count; ++i) {
      ByteView e = tt.sub(kTableHeaderBytes + 12 * std::size_t{i});
      TitleEntry t;
      t.number = i + 1;
      t.playback_type = static_cast<std::uint8_t>(DiscValue(e, entry, "tt_pb_ty%02d"));
      t.angles = static_cast<std::uint8_t>(DiscValue(e, entry, "tt_agl_ns%02d"));
      t.chapters = static_cast<std::uint16_t>(DiscValue(e, entry, "tt_ptt_ns%02d"));
      t.parental = static_cast<std::uint16_t>(DiscValue(e, entry, "tt_ptl_id_fld%02d"));
      t.title_set = static_cast<std::uint8_t>(DiscValue(e, entry, "vtsn%02d"));
      t.title_in_set = static_cast<std::uint8_t>(DiscValue(e, entry, "vts_ttn%02d"));
      t.start_sector = DiscValue(e, entry, "vts_sa%02d");
      vmg.titles.push_back(t);
    }
  }
  vmg.menus = ReadMenuUnits(TableAt(ifo, vmg.tables[1].start_sector));
  ByteView atrt = TableAt(ifo, vmg.tables[3].start_sector);
  if (atrt.size() != 0) {
    vmg.atrt_count = static_cast<std::uint16_t>(Header(atrt, "ns"));
    std::uint32_t count = Fitting(atrt, kTableHeaderBytes, 4, vmg.atrt_count);
    for (std::uint32_t i = 0; i < count; ++i) {
      ByteView record = atrt.sub(atrt.be32(kTableHeaderBytes + 4 * i), 776);
      vmg.atrt_records.emplace_back(record.data(), record.data() + record.size());
    }
  }
  ReadCellAddresses(TableAt(ifo, vmg.tables[5].start_sector), vmg.menu_vobs);
  ReadVobuAddresses(TableAt(ifo, vmg.tables[6].start_sector), vmg.menu_vobs);
}

void ReadTitleSetIfo(ByteView ifo, TitleSet& ts) {
  auto layout = VtsiMatLayout();
  ts.present = Text(DiscFieldBytes(ifo, layout, "vts_id")) == "DVDVIDEO-VTS";
  ts.vts_ea = DiscValue(ifo, layout, "vts_ea");
  ts.vtsi_ea = DiscValue(ifo, layout, "vtsi_ea");
  ts.vtsi_mat_ea = DiscValue(ifo, layout, "vtsi_mat_ea");
  ts.category = DiscValue(ifo, layout, "vts_cat");
  ts.menu_vobs_at = DiscValue(ifo, layout, "vtsm_vobs_sa");
  ts.title_vobs_at = DiscValue(ifo, layout, "vtstt_vobs_sa");
  ts.menu = MenuStreams(ifo, layout, "vtsm");
  ByteView video = DiscFieldBytes(ifo, layout, "vts_v_atr");
  ts.title.video_bytes = {video.u8(0), video.u8(1)};
  ts.title.video = DecodeVideoAttributes(video);
  ts.title.audio_count = static_cast<std::uint8_t>(DiscValue(ifo, layout, "vts_ast_ns"));
  ts.title.subpicture_count = static_cast<std::uint8_t>(DiscValue(ifo, layout, "vts_spst_ns"));
  for (std::uint32_t i = 0; i < std::min<std::uint32_t>(ts.title.audio_count, 8); ++i) {
    ts.title.audio.push_back(
        DecodeAudioAttributes(DiscFieldBytes(ifo, layout, "vts_ast_atrt%02d", i)));
  }
  for (std::uint32_t i = 0; i < std::min<std::uint32_t>(ts.title.subpicture_count, 32); ++i) {
    ts.title.subpictures.push_back(
        DecodeSubpictureAttributes(DiscFieldBytes(ifo, layout, "vts_spst_atrt%02d", i)));
  }
  constexpr NamedTable kTables[] = {
      {"VTS_PTT_SRPT", "vts_ptt_srpt_sa"}, {"VTS_PGCIT", "vts_pgcit_sa"},
      {"VTSM_PGCI_UT", "vtsm_pgci_ut_sa"}, {"VTS_TMAPT", "vts_tmapt_sa"},
      {"VTSM_C_ADT", "vtsm_c_adt_sa"},     {"VTSM_VOBU_ADMAP", "vtsm_vobu_admap_sa"},
      {"VTS_C_ADT", "vts_c_adt_sa"},       {"VTS_VOBU_ADMAP", "vts_vobu_admap_sa"}};
  ts.tables = LocateTables(ifo, layout, kTables);
  ts.parts = ReadParts(TableAt(ifo, ts.tables[0].start_sector), ts.declared_titles);
  ByteView pgcit = TableAt(ifo, ts.tables[1].start_sector);
  if (pgcit.size() != 0) ts.pgcs = ReadChainBlock(pgcit);
  ts.menus = ReadMenuUnits(TableAt(ifo, ts.tables[2].start_sector));
  ByteView tmapt = TableAt(ifo, ts.tables[3].start_sector);
  if (tmapt.size() != 0) ts.time_maps = ReadTimeMaps(tmapt);
  ReadCellAddresses(TableAt(ifo, ts.tables[4].start_sector), ts.menu_vobs);
  ReadVobuAddresses(TableAt(ifo, ts.tables[5].start_sector), ts.menu_vobs);
  ReadCellAddresses(TableAt(ifo, ts.tables[6].start_sector), ts.title_vobs);
  ReadVobuAddresses(TableAt(ifo, ts.tables[7].start_sector), ts.title_vobs);
}

}  // namespace tarvex
