// tarvex_dvdread_rip DISC TITLE ANGLE OUT: a title ripped through libdvdread the way rippers
// built on it do, for the rip tests to compare with: the title's parts give its chains
// (VTS_PTT_SRPT), each chain's cells are read with DVDReadBlocks from the title VOBs (opened
// with DVDOpenFile), an angle block gives the cell of ANGLE, and an interleaved cell is read
// unit by unit, each unit's extent and the next one's start taken from the DSI of its first
// navigation pack as libdvdread decodes it. Tests only: the product never links libdvdread.
#include <dvdread/dvd_reader.h>
#include <dvdread/ifo_read.h>
#include <dvdread/nav_read.h>
#include <sys/types.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <vector>

namespace {

bool ReadRange(dvd_file_t* file, std::uint32_t first, std::uint32_t last, std::FILE* out) {
  std::vector<unsigned char> buf(512 * DVD_VIDEO_LB_LEN);
  for (std::uint32_t at = first; at <= last;) {
    std::uint32_t n = std::min<std::uint32_t>(512, last - at + 1);
    if (DVDReadBlocks(file, static_cast<int>(at), n, buf.data()) != static_cast<ssize_t>(n)) {
      std::fprintf(stderr, "DVDReadBlocks failed at %u\n", at);
      return false;
    }
    std::fwrite(buf.data(), DVD_VIDEO_LB_LEN, n, out);
    at += n;
  }
  return true;
}

bool ReadInterleaved(dvd_file_t* file, const cell_playback_t& cell, std::FILE* out) {
  unsigned char nav[DVD_VIDEO_LB_LEN];
  std::uint32_t unit = cell.first_sector;
  while (unit <= cell.last_sector) {
    if (DVDReadBlocks(file, static_cast<int>(unit), 1, nav) != 1) return false;
    dsi_t dsi;
    navRead_DSI(&dsi, nav + DSI_START_BYTE);
    std::uint32_t end = dsi.sml_pbi.ilvu_ea ? unit + dsi.sml_pbi.ilvu_ea : cell.last_sector;
    if (end > cell.last_sector) end = cell.last_sector;
    if (!ReadRange(file, unit, end, out)) return false;
    if (end == cell.last_sector) return true;
    if (dsi.sml_pbi.ilvu_sa == 0 || dsi.sml_pbi.ilvu_sa >= 0x7fffffff) return false;
    unit += dsi.sml_pbi.ilvu_sa;
  }
  return true;
}

bool ReadChain(dvd_file_t* file, const pgc_t* pgc, int angle, std::FILE* out) {
  for (int c = 0; c < pgc->nr_of_cells; ++c) {
    int cell = c;
    if (pgc->cell_playback[c].block_type == BLOCK_TYPE_ANGLE_BLOCK) {
      int first = c;
      while (c + 1 < pgc->nr_of_cells && pgc->cell_playback[c].block_mode != BLOCK_MODE_LAST_CELL)
        ++c;
      cell = first + angle - 1;
      if (cell > c) continue;
    }
    const cell_playback_t& p = pgc->cell_playback[cell];
    bool ok = p.interleaved ? ReadInterleaved(file, p, out)
                            : ReadRange(file, p.first_sector, p.last_sector, out);
    if (!ok) return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    std::fprintf(stderr, "usage: tarvex_dvdread_rip DISC TITLE ANGLE OUT\n");
    return 2;
  }
  int title = std::atoi(argv[2]), angle = std::atoi(argv[3]);
  dvd_reader_t* dvd = DVDOpen(argv[1]);
  if (dvd == nullptr) return 1;
  ifo_handle_t* vmg = ifoOpen(dvd, 0);
  if (vmg == nullptr || title < 1 || title > vmg->tt_srpt->nr_of_srpts) return 1;
  const title_info_t& info = vmg->tt_srpt->title[title - 1];
  ifo_handle_t* vts = ifoOpen(dvd, info.title_set_nr);
  if (vts == nullptr) return 1;
  dvd_file_t* file = DVDOpenFile(dvd, info.title_set_nr, DVD_READ_TITLE_VOBS);
  std::FILE* out = std::fopen(argv[4], "wb");
  if (file == nullptr || out == nullptr) return 1;
  const ttu_t& parts = vts->vts_ptt_srpt->title[info.vts_ttn - 1];
  std::set<int> seen;
  for (int p = 0; p < parts.nr_of_ptts; ++p) {
    int pgcn = parts.ptt[p].pgcn;
    if (!seen.insert(pgcn).second) continue;
    if (!ReadChain(file, vts->vts_pgcit->pgci_srp[pgcn - 1].pgc, angle, out)) return 1;
  }
  std::fclose(out);
  DVDCloseFile(file);
  ifoClose(vts);
  ifoClose(vmg);
  DVDClose(dvd);
  return 0;
}
