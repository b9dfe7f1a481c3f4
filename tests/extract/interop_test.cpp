// Checks the extracted streams against Debian's ffmpeg and ffprobe on the sample disc's title
// VOB: the M2V must equal ffmpeg's copy of the video stream byte for byte, every audio file
// must be read by ffprobe with the source stream's parameters, and the 16-bit WAV samples must
// equal ffmpeg's decoding of the LPCM stream. Fails when ffmpeg, ffprobe or the sample is
// missing (tools/install-deps.sh installs them with the test packages). TARVEX_INTEROP_VOB
// names another VOB to check instead; it needs a 16-bit LPCM stream too.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>

#include "extract/extract.h"
#include "extract/payload.h"
#include "extract_test_support.h"
#include "platform/format.h"
#include "stream/sector_type.h"

namespace tarvex {
namespace {

using namespace test;  // NOLINT

std::string SampleVob() {
  if (const char* v = std::getenv("TARVEX_INTEROP_VOB")) return v;
  return std::string(TARVEX_SOURCE_DIR) + "/samples/disc/VIDEO_TS/VTS_01_1.VOB";
}

using Fields = std::map<std::string, std::string>;

// ffprobe's streams as key=value maps.
std::vector<Fields> Probe(const std::string& path) {
  std::string out = CaptureCommand(
      "ffprobe -v error -show_entries "
      "stream=index,id,codec_name,sample_rate,channels,bits_per_sample,bits_per_raw_sample "
      "-of compact=p=0 " +
      ShellQuote(path));
  std::vector<Fields> streams;
  std::istringstream lines(out);
  std::string line;
  while (std::getline(lines, line)) {
    if (line.find("index=") != 0) continue;
    Fields f;
    std::istringstream parts(line);
    std::string kv;
    while (std::getline(parts, kv, '|')) {
      auto eq = kv.find('=');
      if (eq != std::string::npos) f[kv.substr(0, eq)] = kv.substr(eq + 1);
    }
    streams.push_back(f);
  }
  return streams;
}

// Answers the audio choosers with DIR/<default name> and the video chooser with DIR/video.M2V.
class InteropUi : public ScriptedUi {
 public:
  explicit InteropUi(std::string dir) : dir_(std::move(dir)) {}
  std::optional<std::string> ChooseSaveFile(const ChooserRequest& request) override {
    ScriptedUi::ChooseSaveFile(request);
    if (request.purpose == ChooserPurpose::kVideo) return dir_ + "/video.M2V";
    return dir_ + "/" + request.default_name;
  }

 private:
  std::string dir_;
};

class Interop : public ::testing::Test {
 protected:
  void SetUp() override {
    vob_ = SampleVob();
    ASSERT_TRUE(HaveTool("ffmpeg")) << "ffmpeg missing";
    ASSERT_TRUE(HaveTool("ffprobe")) << "ffprobe missing";
    ASSERT_TRUE(File::Exists(vob_)) << "sample " << vob_ << " missing";
  }
  void Extract(void (*run)(AppContext&)) {
    InteropUi ui(dir_.path());
    AppContext ctx(ui);
    ctx.open.file_handle = File::OpenRead(vob_);
    ctx.open.file_type = kFileVob;
    ctx.open.file_path = vob_;
    ctx.open.record_count = static_cast<std::uint32_t>(ctx.open.file_handle.Length() >> 11);
    run(ctx);
    lines_ = ctx.report.lines();
  }
  std::string vob_;
  TempDir dir_;
  std::vector<std::string> lines_;
};

// ffmpeg's copy skips the 0xFF stuffing bytes at the end of a PES header; the extraction
// writes them (its header walk adds up the optional fields and does not skip stuffing). The
// M2V must equal ffmpeg's copy byte for byte once exactly those header stuffing bytes are
// taken out, and must equal it outright when the sample's video packs carry no stuffing.
TEST_F(Interop, VideoEqualsFfmpegStreamCopyByteForByteApartFromHeaderStuffing) {
  Extract(ExtractVideo);
  EXPECT_TRUE(lines_.empty()) << lines_.front();
  std::string ref = dir_.file("ffmpeg.m2v");
  CaptureCommand("ffmpeg -v error -y -i " + ShellQuote(vob_) + " -map 0:v -c copy -f mpeg2video " +
                 ShellQuote(ref));
  Bytes ours = ReadFileBytes(dir_.file("video.M2V"));
  Bytes theirs = ReadFileBytes(ref);
  ASSERT_FALSE(theirs.empty());

  // Our output with the header stuffing bytes of every video pack left out.
  Bytes stream = ReadFileBytes(vob_);
  Bytes without_stuffing;
  std::size_t stuffing = 0, written = 0;
  std::uint32_t stream_number = 0;
  for (std::size_t pos = 0; pos + 2048 <= stream.size(); pos += 2048) {
    ByteView record(stream.data() + pos, 2048);
    if (GetSectorType(record, stream_number) != kSectorVideo) continue;
    VideoPayload payload = LocateVideoPayload(record);
    ByteRange range = PayloadBytes(2048, payload.start, payload.length);
    std::size_t header_end = 23 + record.u8(22);
    for (std::size_t i = range.offset; i < range.offset + range.size; ++i) {
      if (i < header_end) {
        EXPECT_EQ(record.u8(i), 0xFF) << "record " << pos / 2048 << " byte " << i;
        ++stuffing;
      } else {
        without_stuffing.push_back(record.u8(i));
      }
    }
    ASSERT_LE(range.offset, header_end) << "record " << pos / 2048;
    written += range.size;
  }
  EXPECT_EQ(ours.size(), written);
  EXPECT_EQ(without_stuffing.size(), theirs.size());
  EXPECT_TRUE(without_stuffing == theirs);
  if (stuffing == 0) {
    EXPECT_TRUE(ours == theirs);
  }
  RecordProperty("header_stuffing_bytes", static_cast<int>(stuffing));
}

TEST_F(Interop, EveryAudioFileIsReadWithTheSourceStreamsParameters) {
  Extract(ExtractAudio);
  EXPECT_TRUE(lines_.empty());
  int checked = 0;
  for (const Fields& source : Probe(vob_)) {
    std::string id = source.count("id") ? source.at("id") : "";
    std::string codec = source.count("codec_name") ? source.at("codec_name") : "";
    unsigned long number = std::strtoul(id.c_str(), nullptr, 16);
    std::string name;
    if (codec == "ac3" && number >= 0x80 && number <= 0x87) {
      name = Format("audio%02d.AC3", {number & 7});
    } else if (codec == "pcm_dvd" && number >= 0xA0 && number <= 0xA7) {
      name = Format("audio%02d.WAV", {number & 7});
    } else if ((codec == "mp2" || codec == "mp1" || codec == "mp3") && number >= 0x1C0 &&
               number <= 0x1C7) {
      name = Format("audio%02d.MPA", {number & 7});
    } else {
      continue;
    }
    SCOPED_TRACE(name);
    auto ours = Probe(dir_.file(name));
    ASSERT_EQ(ours.size(), 1u);
    const Fields& f = ours[0];
    EXPECT_EQ(f.at("sample_rate"), source.at("sample_rate"));
    EXPECT_EQ(f.at("channels"), source.at("channels"));
    if (codec == "pcm_dvd") {
      EXPECT_EQ(f.at("codec_name"), "pcm_s" + source.at("bits_per_raw_sample") + "le");
    } else {
      EXPECT_EQ(f.at("codec_name"), codec);
    }
    ++checked;
  }
  EXPECT_GT(checked, 0);
}

TEST_F(Interop, WavSamplesEqualFfmpegsDecodingOfTheLpcmStream) {
  Extract(ExtractAudio);
  int checked = 0;
  for (const Fields& source : Probe(vob_)) {
    if (source.count("codec_name") == 0 || source.at("codec_name") != "pcm_dvd") continue;
    if (source.at("bits_per_raw_sample") != "16") continue;
    unsigned long number = std::strtoul(source.at("id").c_str(), nullptr, 16);
    std::string name = Format("audio%02d.WAV", {number & 7});
    SCOPED_TRACE(name);
    std::string raw = dir_.file(name + ".raw");
    CaptureCommand("ffmpeg -v error -y -i " + ShellQuote(vob_) + " -map 0:i:" + source.at("id") +
                   " -f s16le -acodec pcm_s16le " + ShellQuote(raw));
    Bytes wav = ReadFileBytes(dir_.file(name));
    Bytes decoded = ReadFileBytes(raw);
    ASSERT_GT(wav.size(), 44u);
    ASSERT_FALSE(decoded.empty());
    Bytes samples(wav.begin() + 44, wav.end());
    EXPECT_EQ(samples.size(), decoded.size());
    EXPECT_TRUE(samples == decoded);
    ++checked;
  }
  EXPECT_GT(checked, 0) << "no 16-bit LPCM stream in " << vob_;
}

}  // namespace
}  // namespace tarvex
