// The overview of an open IFO: one heading line per table, the list cleared first.
#include "ifo/overview.h"

#include <gtest/gtest.h>

#include "ifo/ifo_drivers.h"
#include "ifo/ifo_images.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

using test::FirstLines;
using test::VmgImageOverviewHead;

TEST(IfoOverviewTest, VideoManagerShowsItsHeadingLines) {
  Fixture f;
  f.OpenBytes("VIDEO_TS.IFO", test::MakeVmgImage(), kFileIfo);
  f.ctx->AddReportLine("old line");
  ShowIfoOverview(*f.ctx);
  EXPECT_EQ(FirstLines(f, 2), VmgImageOverviewHead());
}

TEST(IfoOverviewTest, TitleSetShowsItsHeadingLines) {
  Fixture f;
  test::OpenIfo(f, "VTS_01_0.IFO", test::MakeVtsImage());
  EXPECT_EQ(FirstLines(f, 3), (std::vector<std::string>{
                                  "VTSI_MAT IFO File: Video Title Set Information Management Table",
                                  "** VTSM_VOB: There is no VTS Menu VOB",
                                  "VTS_VOB: VTS VOB starts at sector address: 1"}));
}

}  // namespace
}  // namespace tarvex
