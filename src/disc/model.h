// The model of a whole DVD-Video disc: the video manager, the title sets with their titles,
// program chains, programs, cells and VOBUs, the menus, the stream attributes with the ids the
// streams really play through, the palettes. Built from the IFO bytes through the tables' own
// field descriptors (ifo/layouts.h); every count and offset is taken as found, so a damaged
// IFO gives a model with what could be read (and load findings), never a failure.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "disc/attributes.h"
#include "disc/disc_access.h"
#include "disc/findings.h"

namespace tarvex {

struct Cell {
  std::uint32_t number = 0;  // from 1 within its chain
  std::array<std::uint8_t, 4> category{};
  PlaybackTime time;
  std::uint32_t first_sector = 0;     // entry point: first VOBU start (C_FVOBU_SA)
  std::uint32_t first_ilvu_end = 0;   // C_FILVU_EA
  std::uint32_t last_vobu_start = 0;  // C_LVOBU_SA
  std::uint32_t last_sector = 0;      // C_LVOBU_EA
  std::uint16_t vob_id = 0;           // from the cell position table
  std::uint8_t cell_id = 0;
  std::uint8_t block_type() const { return (category[0] >> 4) & 3; }  // 1 = angle block
  // Byte 0: block mode (bits 7-6), block type (5-4), seamless play (3), interleaved (2), STC
  // discontinuity (1), seamless angle change (0).
  bool interleaved() const { return (category[0] & 0x04) != 0; }
  std::uint8_t still_time() const { return category[2]; }
  std::uint8_t command() const { return category[3]; }
};

using NavCommand = std::array<std::uint8_t, 8>;

struct Pgc {
  std::uint32_t number = 0;    // from 1 within its table (or language unit)
  std::uint32_t offset = 0;    // byte offset in its table
  std::uint32_t category = 0;  // from its search pointer
  std::uint32_t declared_programs = 0, declared_cells = 0;
  PlaybackTime time;
  std::array<std::uint16_t, 8> audio_control{};
  std::array<std::uint32_t, 32> subpicture_control{};
  std::uint16_t next = 0, previous = 0, go_up = 0;
  std::uint8_t still_time = 0, playback_mode = 0;
  std::array<std::uint32_t, 16> palette{};  // 0, Y, Cr, Cb
  std::uint16_t commands_at = 0, program_map_at = 0, cell_playback_at = 0, cell_position_at = 0;
  std::vector<NavCommand> pre, post, cell_commands;
  std::vector<std::uint8_t> program_map;  // entry cell of each program
  std::vector<Cell> cells;
  // Menu chains: bit 31 of the category marks an entry chain, bits 27-24 its menu.
  bool entry() const { return (category & 0x80000000u) != 0; }
  std::uint32_t menu_id() const { return (category >> 24) & 0x0F; }
};

struct LanguageUnit {
  std::string language;  // two characters as stored
  // The language as a code of two letters, nothing when the unit's code names none.
  std::optional<std::string> code() const {
    if (language.size() != 2) return std::nullopt;
    return SpecifiedLanguage(static_cast<std::uint8_t>(language[0]),
                             static_cast<std::uint8_t>(language[1]));
  }
  std::uint8_t existence = 0;
  std::uint32_t offset = 0;
  std::vector<Pgc> pgcs;
};

struct CellAddress {
  std::uint16_t vob_id = 0;
  std::uint8_t cell_id = 0;
  std::uint32_t first = 0, last = 0;
};

// A set of VOB files read as one sector space (the menu VOB, or the title VOBs 1 to 9).
struct VobSet {
  struct Part {
    std::string name;
    std::uint64_t size = 0;
    std::uint64_t first_sector = 0;  // in the set
  };
  std::vector<Part> parts;
  std::uint64_t sectors = 0;
  bool has_cell_table = false, has_admap = false;
  std::uint16_t vob_count = 0;  // header of the cell address table
  std::uint32_t cell_table_end = 0;
  std::vector<CellAddress> cells;
  std::uint32_t admap_end = 0;
  std::vector<std::uint32_t> vobu_starts;  // as the map holds them (in order on a sound disc)
  // A file of the set is missing (a gap in the numbering, or no file where the IFO has
  // cells), which the file checks report: sectors past it are not known, so the tables'
  // sector ranges are not held against the set's size.
  bool missing_files = false;
  // Whether a sector lies past the end of the set's files (never, when a file is missing).
  bool PastEnd(std::uint64_t sector) const { return !missing_files && sector >= sectors; }
  // The file and record of a sector of the set, or nothing beyond its end.
  std::optional<std::pair<std::string, std::uint64_t>> Locate(std::uint64_t sector) const;
  // The first entry of the cell address table for a VOB id and cell id, or nullptr.
  const CellAddress* FindCell(std::uint16_t vob_id, std::uint8_t cell_id) const;
  // Whether the VOBU address map has a VOBU starting at sector (in whatever order it is).
  bool IsVobuStart(std::uint32_t sector) const;
  // Builds the look-ups above once the tables are read: every navigation pack and every cell
  // of a chain is looked up, so a look-up must not walk a table a damaged IFO can make huge.
  void Index();

 private:
  std::vector<std::uint32_t> cells_by_id_;  // indices into cells by VOB id, cell id, index
  std::vector<std::uint32_t> sorted_vobu_starts_;
};

// Where a table lies in its IFO.
struct TableLocation {
  const char* name;  // "VTS_PGCIT", ...
  std::uint32_t start_sector = 0;
  std::uint64_t end_byte = 0;  // one past its last byte in the IFO, 0 when absent or unknown
};

struct PartOfTitle {
  std::uint16_t pgcn = 0;
  std::uint8_t pgn = 0;
};

struct TitleTimeMap {
  std::uint8_t unit = 0;
  std::vector<std::uint32_t> entries;  // bit 31 discontinuity, bits 30-0 sector
};

struct StreamDeclarations {
  VideoAttributes video;
  std::vector<AudioAttributes> audio;
  std::vector<SubpictureAttributes> subpictures;
  std::uint8_t audio_count = 0, subpicture_count = 0;  // as declared (may exceed the room)
  std::array<std::uint8_t, 2> video_bytes{};
};

struct TitleSet {
  std::uint32_t number = 0;
  std::string ifo_name, bup_name;
  bool present = false;  // its IFO was read and identified
  std::uint64_t ifo_size = 0;
  std::uint32_t vts_ea = 0, vtsi_ea = 0, vtsi_mat_ea = 0, category = 0;
  std::uint32_t menu_vobs_at = 0, title_vobs_at = 0;
  std::vector<TableLocation> tables;
  StreamDeclarations menu, title;
  std::vector<std::vector<PartOfTitle>> parts;  // per title of the set
  std::uint16_t declared_titles = 0;
  std::vector<Pgc> pgcs;
  std::vector<LanguageUnit> menus;
  std::vector<TitleTimeMap> time_maps;
  VobSet menu_vobs, title_vobs;
  std::uint64_t disc_start = 0;   // sector of its IFO from the start of VIDEO_TS.IFO
  std::vector<std::uint8_t> ifo;  // the IFO bytes (for the checks)
};

struct TitleEntry {
  std::uint32_t number = 0;
  std::uint8_t playback_type = 0, angles = 0;
  std::uint16_t chapters = 0, parental = 0;
  std::uint8_t title_set = 0, title_in_set = 0;
  std::uint32_t start_sector = 0;
};

struct VideoManager {
  // VIDEO_TS.IFO is on the disc: a folder copied from single title sets can lack it, and then
  // nothing of the video manager is known (not even its title numbers).
  bool ifo_found = false;
  bool present = false;  // its IFO was read and identified
  std::string id, provider;
  std::uint8_t version = 0;
  std::uint32_t category = 0;
  std::uint16_t title_set_count = 0;
  std::uint32_t vmg_ea = 0, vmgi_ea = 0, vmgi_mat_ea = 0, first_play_at = 0, menu_vobs_at = 0;
  std::uint64_t ifo_size = 0;
  std::vector<TableLocation> tables;
  std::optional<Pgc> first_play;
  std::uint16_t declared_titles = 0;
  std::vector<TitleEntry> titles;
  std::vector<LanguageUnit> menus;
  StreamDeclarations menu;
  VobSet menu_vobs;
  std::uint16_t atrt_count = 0;
  std::vector<std::vector<std::uint8_t>> atrt_records;  // 776 bytes each
  std::vector<std::uint8_t> ifo;
};

struct Disc {
  std::string path;  // as given
  std::string kind;  // "folder" or "iso"
  std::vector<DiscFileEntry> files;
  VideoManager vmg;
  std::vector<TitleSet> title_sets;  // title set n at index n - 1
  Findings load_findings;            // what could not be read
  std::shared_ptr<DiscAccess> access;

  const TitleSet* FindTitleSet(std::uint32_t number) const;
};

// Opens and reads a disc. A folder of title sets without VIDEO_TS.IFO is read too (its video
// manager is then not found). Nothing when it cannot be read at all (neither VIDEO_TS.IFO nor a
// title set IFO, an unreadable image): error then says why.
std::optional<Disc> LoadDisc(const std::string& path, std::string& error);
// Reads a disc from an open access (an image in memory, for instance).
std::optional<Disc> LoadDisc(std::shared_ptr<DiscAccess> access, const std::string& path,
                             std::string& error);

// A title as a viewer sees it: its entry, its title set, its parts and its chains.
struct TitleView {
  const TitleEntry* entry = nullptr;
  const TitleSet* title_set = nullptr;
  const std::vector<PartOfTitle>* parts = nullptr;
  const Pgc* pgc = nullptr;  // the chain of its first part
};
TitleView ViewTitle(const Disc& disc, const TitleEntry& entry);

// The titles of a disc: those of TT_SRPT or, without a video manager, each title of each title
// set in turn, numbered within its set (number = title_in_set; angles from the cells of its
// first chain's angle blocks).
std::vector<TitleEntry> DiscTitles(const Disc& disc);

}  // namespace tarvex
