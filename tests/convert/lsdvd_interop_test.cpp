// The IFOs this system assembles must open in libdvdread: the sample disc's IFOs are
// disassembled, assembled again beside copies of its VOBs, and the folder is read with
// Debian's lsdvd, which reads the IFOs (there are no backup files beside them to fall back
// to). Fails when lsdvd (installed by tools/install-deps.sh with the test packages) or the
// sample is missing.
#include <gtest/gtest.h>

#include <filesystem>

#include "convert/drivers.h"
#include "ifo/ifo_drivers.h"
#include "ifo/sample_disc.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

// Disassembles the sample IFO and assembles it into out_dir/ifo.
void Reassemble(const std::string& ifo, const std::string& out_dir) {
  Fixture f;
  test::OpenSample(f, ifo);
  std::string source = test::DisassembleIfoTo(f, ifo + ".INI");
  f.ctx->batch.asm_path = source;
  f.ctx->batch.obj_path = out_dir + "/" + ifo;
  AssembleBatch(*f.ctx);
  EXPECT_TRUE(f.ui.Messages().empty()) << ifo;
}

TEST(LsdvdInteropTest, ReassembledSampleDiscReadsLikeTheSampleDisc) {
  ASSERT_TRUE(test::HaveTool("lsdvd")) << "lsdvd missing";
  ASSERT_TRUE(File::Exists(test::SampleDir() + "VTS_01_0.IFO")) << "the sample disc is missing";
  test::TempDir work;
  std::string disc = work.file("disc");
  std::string video_ts = disc + "/VIDEO_TS";
  std::filesystem::create_directories(video_ts);
  for (const char* vob : {"VIDEO_TS.VOB", "VTS_01_0.VOB", "VTS_01_1.VOB"}) {
    std::filesystem::copy_file(test::SampleDir() + vob, video_ts + "/" + vob);
  }
  Reassemble("VIDEO_TS.IFO", video_ts);
  Reassemble("VTS_01_0.IFO", video_ts);

  std::string out = test::CaptureCommand("lsdvd -x " + test::ShellQuote(disc) + " 2>&1");
  EXPECT_EQ(out.find("Invalid IFO"), std::string::npos) << out;
  EXPECT_EQ(out.find("Can't open"), std::string::npos) << out;
  // The sample's one title: 8 s in three chapters of one cell each, three audio streams
  // (AC-3 "en", LPCM "fr", MPEG "de") and one sub-picture stream, as made.
  EXPECT_NE(out.find("Title: 01, Length: 00:00:08.000 Chapters: 03, Cells: 03, Audio streams: "
                     "03, Subpictures: 01"),
            std::string::npos)
      << out;
  EXPECT_NE(out.find("Chapter: 02, Length: 00:00:03.000, Start Cell: 02"), std::string::npos)
      << out;
  EXPECT_NE(out.find("Audio: 2, Language: fr - Francais, Format: lpcm"), std::string::npos) << out;
  EXPECT_NE(out.find("Subtitle: 01, Language: en - English"), std::string::npos) << out;
}

}  // namespace
}  // namespace tarvex
