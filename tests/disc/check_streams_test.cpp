// Declared sub-picture streams of a 16:9 title against the streams found in its chain's cell:
// the control of stream 1 below is 0x80000101 (available; 4:3 number 0, wide-screen 0,
// letterbox 1, pan-scan 1), so it plays as 0x20 wide and as 0x21 letterboxed and panned.
#include <gtest/gtest.h>

#include "disc/checks.h"

namespace tarvex {
namespace {

struct Title {
  StreamDeclarations declared;
  Pgc pgc;
  StreamPresence found;
};

Title WideTitle(std::uint8_t permitted_display) {
  Title t;
  t.declared.video.aspect = "16:9";
  t.declared.video.permitted_display = permitted_display;
  t.declared.subpictures.push_back({0, std::string("nl"), 0});
  t.pgc.number = 1;
  t.pgc.subpicture_control[0] = 0x80000101u;
  Cell cell;
  cell.number = 1;
  cell.vob_id = 1;
  cell.cell_id = 1;
  t.pgc.cells.push_back(cell);
  t.found.scanned = true;
  t.found.cells[{1, 1}];  // the cell is in the VOBs, with no sub-picture stream
  return t;
}

std::vector<std::string> Missing(const Title& t) {
  std::vector<DomainChain> chains = {{&t.pgc, 1, ""}};
  VobSetNames names{"VTS_01_0.IFO", "VTS_C_ADT", "VTS_VOBU_ADMAP", "VTS_PGCIT", "VTSI_MAT",
                    "title",        {}};
  Findings out;
  CheckStreams(Disc{}, chains, t.declared, t.found, names, out);
  std::vector<std::string> messages;
  for (const Finding& f : out.all()) {
    EXPECT_EQ(f.check, "stream.missing");
    EXPECT_EQ(f.table, "VTS_PGCIT");
    EXPECT_EQ(f.entry, 1u);
    messages.push_back(f.message);
  }
  return messages;
}

TEST(CheckStreams, DisplaysSharingAMissingIdGiveOneFinding) {
  // Permitted display formats 0: letterbox and pan-scan both play 0x21.
  EXPECT_EQ(Missing(WideTitle(0)),
            (std::vector<std::string>{
                "sub-picture stream 1 (nl, wide) plays as 0x20, which none of the chain's cells "
                "holds",
                "sub-picture stream 1 (nl, letterbox and pan-scan) plays as 0x21, which none of "
                "the chain's cells holds"}));
}

TEST(CheckStreams, EachDisplayOnItsOwnIdGivesItsOwnFinding) {
  // Permitted display formats 2: letterbox only.
  EXPECT_EQ(Missing(WideTitle(2)),
            (std::vector<std::string>{
                "sub-picture stream 1 (nl, wide) plays as 0x20, which none of the chain's cells "
                "holds",
                "sub-picture stream 1 (nl, letterbox) plays as 0x21, which none of the chain's "
                "cells holds"}));
}

TEST(CheckStreams, AStreamPresentUnderItsSharedIdIsNotMissing) {
  Title t = WideTitle(0);
  t.found.cells[{1, 1}].set(0x21);
  EXPECT_EQ(Missing(t), (std::vector<std::string>{
                            "sub-picture stream 1 (nl, wide) plays as 0x20, which none of the "
                            "chain's cells holds"}));
}

}  // namespace
}  // namespace tarvex
