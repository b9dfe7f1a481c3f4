#include <gtest/gtest.h>

#include "extract/extract.h"
#include "extract_test_support.h"

namespace tarvex {
namespace {

using namespace test;  // NOLINT

// A scripted UI that answers the audio chooser with out/<default name>.
class DefaultNameUi : public ScriptedUi {
 public:
  explicit DefaultNameUi(std::string dir) : dir_(std::move(dir)) {}
  std::optional<std::string> ChooseSaveFile(const ChooserRequest& request) override {
    ScriptedUi::ChooseSaveFile(request);
    if (cancel_after-- == 0) return std::nullopt;
    if (!same_as_input.empty()) return same_as_input;
    return dir_ + "/" + request.default_name;
  }
  int cancel_after = -1;
  std::string same_as_input;

 private:
  std::string dir_;
};

struct AudioRun {
  AudioRun() : ui(fx.dir.file("out")), ctx(ui) {
    std::filesystem::create_directory(fx.dir.file("out"));
  }
  void Open(const std::vector<Record>& records) {
    Bytes bytes = Concat(records);
    OpenRaw(bytes);
  }
  void OpenRaw(const Bytes& bytes) {
    std::string path = fx.dir.file("in.vob");
    WriteFileBytes(path, bytes);
    ctx.open.file_handle = File::OpenRead(path);
    ctx.open.file_type = kFileVob;
    ctx.open.file_path = path;
    ctx.open.record_count = static_cast<std::uint32_t>(bytes.size() >> 11);
  }
  std::string out(const std::string& name) const { return fx.dir.file("out") + "/" + name; }
  std::vector<std::string> files() const { return FilesIn(fx.dir.file("out")); }
  Fixture fx;
  DefaultNameUi ui;
  AppContext ctx;
};

Bytes WavHeader48kStereo16(std::uint32_t n) {
  Bytes h = {'R', 'I', 'F', 'F', 0,  0, 0,   0,   'W', 'A',  'V',  'E', 'f', 'm',  't',
             ' ', 16,  0,   0,   0,  1, 0,   2,   0,   0x80, 0xBB, 0,   0,   0x70, 0x17,
             0,   0,   4,   0,   16, 0, 'd', 'a', 't', 'a',  0,    0,   0,   0};
  std::uint32_t riff = n - 8, data = n - 36;
  for (int i = 0; i < 4; ++i) {
    h[4 + i] = static_cast<std::uint8_t>(riff >> (8 * i));
    h[40 + i] = static_cast<std::uint8_t>(data >> (8 * i));
  }
  return h;
}

Bytes Swapped(Bytes b) {
  for (std::size_t i = 0; i + 1 < b.size(); i += 2) std::swap(b[i], b[i + 1]);
  return b;
}

TEST(ExtractAudioTest, StreamWithoutAudioCreatesNoFileAndLeavesReportEmpty) {
  AudioRun run;
  run.ctx.AddReportLine("old line");
  run.Open({NavPack(), VideoPack(1), SubPicturePack(0x20, true, 2), PaddingPack()});
  ExtractAudio(run.ctx);
  EXPECT_TRUE(run.ctx.report.empty());
  EXPECT_TRUE(run.files().empty());
  EXPECT_TRUE(run.ui.Choosers().empty());
  EXPECT_TRUE(run.ui.Messages().empty());
}

TEST(ExtractAudioTest, Ac3PayloadsAreWrittenWholeIntoOneFilePerStream) {
  AudioRun run;
  Record a = Ac3Pack(0x80, 1), b = Ac3Pack(0x81, 2), c = Ac3Pack(0x80, 3);
  run.Open({NavPack(), a, VideoPack(9), b, c});
  ExtractAudio(run.ctx);
  EXPECT_EQ(run.files(), (std::vector<std::string>{"audio00.AC3", "audio01.AC3"}));
  EXPECT_EQ(ReadFileBytes(run.out("audio00.AC3")), Join({Slice(a, 32), Slice(c, 32)}));
  EXPECT_EQ(ReadFileBytes(run.out("audio01.AC3")), Slice(b, 32));
  EXPECT_TRUE(run.ctx.report.empty());
}

TEST(ExtractAudioTest, ChooserGetsFilterDefaultNameAndOptionsOfThePackType) {
  AudioRun run;
  run.Open({Ac3Pack(0x83, 1), LpcmPack(0xA1, 0x01, 2), MpegAudioPack(0xC2, 3)});
  ExtractAudio(run.ctx);
  auto choosers = run.ui.Choosers();
  ASSERT_EQ(choosers.size(), 3u);
  EXPECT_EQ(choosers[0].purpose, ChooserPurpose::kAudioStream);
  EXPECT_EQ(choosers[0].filter, "AC3 Audio (*.AC3)|*.AC3|");
  EXPECT_EQ(choosers[0].default_name, "audio03.AC3");
  EXPECT_EQ(choosers[0].flags, 0x1004u);
  EXPECT_EQ(choosers[1].filter, "PCM Audio (*.WAV)|*.WAV|");
  EXPECT_EQ(choosers[1].default_name, "audio01.WAV");
  EXPECT_EQ(choosers[2].filter, "MPEG Audio (*.MPA)|*.MPA|");
  EXPECT_EQ(choosers[2].default_name, "audio02.MPA");
  EXPECT_EQ(choosers[2].purpose, ChooserPurpose::kAudioStream);
}

TEST(ExtractAudioTest, WaitCursorComesOnBeforeCreatingAndGoesOffAtTheEnd) {
  AudioRun run;
  run.Open({Ac3Pack(0x80, 1)});
  ExtractAudio(run.ctx);
  ASSERT_EQ(run.ui.events.size(), 3u);
  EXPECT_EQ(run.ui.events[0].kind, ScriptedUi::Kind::kSaveChooser);
  EXPECT_EQ(run.ui.events[1].kind, ScriptedUi::Kind::kWaitCursor);
  EXPECT_TRUE(run.ui.events[1].on);
  EXPECT_EQ(run.ui.events[2].kind, ScriptedUi::Kind::kWaitCursor);
  EXPECT_FALSE(run.ui.events[2].on);
}

TEST(ExtractAudioTest, MpegAudioPayloadFollowsThePesHeader) {
  AudioRun run;
  Record a = MpegAudioPack(0xC1, 5);
  SetPesLength(a, 1500);
  run.Open({a});
  ExtractAudio(run.ctx);
  EXPECT_EQ(ReadFileBytes(run.out("audio01.MPA")), Slice(a, 28, 1520));
}

TEST(ExtractAudioTest, WavFileHasHeaderPatchedLengthsAndSwappedSamples) {
  AudioRun run;
  Record a = LpcmPack(0xA0, 0x01, 1), b = LpcmPack(0xA0, 0x01, 2);
  Bytes samples = Join({Slice(a, 35, 2047), Slice(b, 35, 2047)});
  run.Open({a, b});
  ExtractAudio(run.ctx);
  Bytes wav = ReadFileBytes(run.out("audio00.WAV"));
  std::uint32_t n = 2 * 2012;
  ASSERT_EQ(wav.size(), 44u + n);
  // Worked out by hand: RIFF length N - 8, byte rate 48000 >> 3 = 6000 (70 17 00 00), block
  // align 2 x 2, data length N - 36.
  EXPECT_EQ(Slice(wav, 0, 44), WavHeader48kStereo16(n));
  EXPECT_EQ(Slice(wav, 44, wav.size()), Swapped(samples));
}

TEST(ExtractAudioTest, WavHeaderFor20BitSixChannels96kUsesThreeBytesPerChannel) {
  AudioRun run;
  Record a = LpcmPack(0xA2, 0x55, 1);  // 20 bits, 96 kHz, 6 channels
  run.Open({a});
  ExtractAudio(run.ctx);
  Bytes wav = ReadFileBytes(run.out("audio02.WAV"));
  ASSERT_EQ(wav.size(), 44u + 2012);
  // PCM, 6 channels, 96000 = 0x17700, 96000 >> 3 = 12000 = 0x2EE0, 6 x 3 = 18, 20 bits.
  Bytes expected_fmt = {1, 0, 6, 0, 0x00, 0x77, 0x01, 0, 0xE0, 0x2E, 0, 0, 18, 0, 20, 0};
  EXPECT_EQ(Slice(wav, 20, 36), expected_fmt);
}

TEST(ExtractAudioTest, TwentyBitSamplesAreSwappedPairwiseWithoutRegrouping) {
  AudioRun run;
  Record a = LpcmPack(0xA0, 0x41, 1);  // 20 bits
  run.Open({a});
  ExtractAudio(run.ctx);
  Bytes wav = ReadFileBytes(run.out("audio00.WAV"));
  EXPECT_EQ(Slice(wav, 44, wav.size()), Swapped(Slice(a, 35, 2047)));
  EXPECT_EQ(wav[34], 20);
  EXPECT_EQ(wav[32], 6);  // 2 channels x 3
}

TEST(ExtractAudioTest, TwoLpcmStreamsGetTwoWavFilesWithTheirOwnParameters) {
  AudioRun run;
  run.Open({LpcmPack(0xA0, 0x01, 1), LpcmPack(0xA1, 0x10, 2), LpcmPack(0xA0, 0x01, 3)});
  ExtractAudio(run.ctx);
  Bytes w0 = ReadFileBytes(run.out("audio00.WAV"));
  Bytes w1 = ReadFileBytes(run.out("audio01.WAV"));
  ASSERT_EQ(w0.size(), 44u + 2 * 2012);
  ASSERT_EQ(w1.size(), 44u + 2012);
  EXPECT_EQ(w0[22], 2);  // channels
  EXPECT_EQ(w1[22], 1);
  EXPECT_EQ(Slice(w0, 24, 28), (Bytes{0x80, 0xBB, 0, 0}));  // 48000
  EXPECT_EQ(Slice(w1, 24, 28), (Bytes{0x00, 0x77, 1, 0}));  // 96000
  EXPECT_EQ(Slice(w1, 28, 32), (Bytes{0xE0, 0x2E, 0, 0}));  // 12000
  EXPECT_EQ(Slice(w1, 4, 8), (Bytes{0xD4, 0x07, 0, 0}));    // 2012 - 8 = 2004
  EXPECT_EQ(Slice(w1, 40, 44), (Bytes{0xB8, 0x07, 0, 0}));  // 2012 - 36 = 1976
}

TEST(ExtractAudioTest, Ac3AndLpcmWithTheSameNumberShareOneFile) {
  AudioRun run;
  Record a = Ac3Pack(0x80, 1), b = LpcmPack(0xA0, 0x01, 2);
  run.Open({a, b});
  ExtractAudio(run.ctx);
  EXPECT_EQ(run.files(), (std::vector<std::string>{"audio00.AC3"}));
  EXPECT_EQ(run.ui.Choosers().size(), 1u);
  // The LPCM pack is swapped and appended; the file is no WAV file and gets no header.
  EXPECT_EQ(ReadFileBytes(run.out("audio00.AC3")),
            Join({Slice(a, 32), Swapped(Slice(b, 35, 2047))}));
}

TEST(ExtractAudioTest, LpcmFirstThenAc3KeepsTheWavHeaderCountingOnlyLpcmBytes) {
  AudioRun run;
  Record a = LpcmPack(0xA0, 0x01, 1), b = Ac3Pack(0x80, 2);
  run.Open({a, b});
  ExtractAudio(run.ctx);
  Bytes wav = ReadFileBytes(run.out("audio00.WAV"));
  ASSERT_EQ(wav.size(), 44u + 2012 + 2016);
  EXPECT_EQ(Slice(wav, 0, 44), WavHeader48kStereo16(2012));
  EXPECT_EQ(Slice(wav, 44 + 2012, wav.size()), Slice(b, 32));
}

TEST(ExtractAudioTest, ExtensionFlagWithoutPtsTakesPayloadHeaderAt31) {
  AudioRun run;
  // Classification reads the sub-stream id at 23 here; extraction takes it from 31.
  Record a = MakePesPack(0xBD, 0x01, {0x80, 0x60, 0xE8, 0, 0, 0, 0, 0},
                         Join({{0x80, 1, 0, 1}, Pattern(2048, 4)}));
  run.Open({a});
  ExtractAudio(run.ctx);
  EXPECT_EQ(ReadFileBytes(run.out("audio00.AC3")), Slice(a, 35));
}

TEST(ExtractAudioTest, OddLpcmLengthSwapsLastByteWithTheByteAfterThePayload) {
  AudioRun run;
  Record a = LpcmPack(0xA0, 0x01, 1);
  SetPesLength(a, 2026);  // payload 35 .. 2045, 2011 bytes
  run.Open({a});
  ExtractAudio(run.ctx);
  Bytes wav = ReadFileBytes(run.out("audio00.WAV"));
  ASSERT_EQ(wav.size(), 44u + 2011);
  Bytes expected = Swapped(Slice(a, 35, 2045));
  expected.push_back(a[2046]);
  EXPECT_EQ(Slice(wav, 44, wav.size()), expected);
}

TEST(ExtractAudioTest, PayloadRunningPastTheRecordIsCutAtTheRecordEnd) {
  AudioRun run;
  Record a = LpcmPack(0xA0, 0x01, 1);
  SetPesLength(a, 0xFFFF);  // the packet would end far beyond the record
  Record b = Ac3Pack(0x81, 2);
  SetPesLength(b, 0xFFFF);
  run.Open({a, b});
  ExtractAudio(run.ctx);
  Bytes wav = ReadFileBytes(run.out("audio00.WAV"));
  ASSERT_EQ(wav.size(), 44u + 2013);
  // 2013 bytes: the last one pairs with a byte outside the record, which reads as 0.
  Bytes expected = Swapped(Slice(a, 35, 2047));
  expected.push_back(0);
  EXPECT_EQ(Slice(wav, 44, wav.size()), expected);
  EXPECT_EQ(Slice(wav, 4, 8), (Bytes{0xD5, 0x07, 0, 0}));  // 2013 - 8 = 2005
  EXPECT_EQ(ReadFileBytes(run.out("audio01.AC3")), Slice(b, 32));
}

TEST(ExtractAudioTest, UnknownSubStreamReusesStartAndLengthOfThePreviousAudioPack) {
  AudioRun run;
  // MPEG audio stream 0xC9 is classified as MPEG audio but located as a private stream: its
  // "sub-stream id" is the first byte after the header, 0x11 (unknown), stream number 1.
  Record first = MakePesPack(0xC9, 0x80, Pts(), Join({{0x11}, Pattern(2048, 7)}));
  Record ac3 = Ac3Pack(0x81, 8);
  SetPesLength(ac3, 1000);  // start 32, length 988
  Record again = MakePesPack(0xC9, 0x80, Pts(), Join({{0x11}, Pattern(2048, 9)}));
  run.Open({first, ac3, again});
  ExtractAudio(run.ctx);
  auto choosers = run.ui.Choosers();
  ASSERT_EQ(choosers.size(), 1u);
  EXPECT_EQ(choosers[0].default_name, "audio01.MPA");
  // Before any audio pack start and length are 0: nothing is written for the first pack.
  EXPECT_EQ(ReadFileBytes(run.out("audio01.MPA")),
            Join({Slice(ac3, 32, 1020), Slice(again, 32, 1020)}));
}

TEST(ExtractAudioTest, CancelEndsTheRunAndLeavesWavUnpatched) {
  AudioRun run;
  run.ui.cancel_after = 1;  // the second chooser is cancelled
  Record a = LpcmPack(0xA0, 0x01, 1), b = Ac3Pack(0x81, 2), c = LpcmPack(0xA0, 0x01, 3);
  run.Open({a, b, c});
  ExtractAudio(run.ctx);
  EXPECT_EQ(run.ui.Choosers().size(), 2u);
  EXPECT_EQ(run.files(), (std::vector<std::string>{"audio00.WAV"}));
  Bytes wav = ReadFileBytes(run.out("audio00.WAV"));
  ASSERT_EQ(wav.size(), 44u + 2012);  // the third pack was never reached
  EXPECT_EQ(Slice(wav, 4, 8), (Bytes{0, 0, 0, 0}));
  EXPECT_EQ(Slice(wav, 40, 44), (Bytes{0, 0, 0, 0}));
  EXPECT_TRUE(run.ctx.report.empty());
  EXPECT_TRUE(run.ui.Messages().empty());
}

TEST(ExtractAudioTest, CancelAfterAc3KeepsWhatWasWritten) {
  AudioRun run;
  run.ui.cancel_after = 1;
  Record a = Ac3Pack(0x80, 1), b = MpegAudioPack(0xC1, 2);
  run.Open({a, a, b, a});
  ExtractAudio(run.ctx);
  EXPECT_EQ(ReadFileBytes(run.out("audio00.AC3")), Join({Slice(a, 32), Slice(a, 32)}));
}

TEST(ExtractAudioTest, CreationFailureShowsEmptyFileSystemErrorBox) {
  AudioRun run;
  run.Open({Ac3Pack(0x80, 1), Ac3Pack(0x81, 2)});
  std::filesystem::create_directory(run.out("audio00.AC3"));  // cannot be created as a file
  ExtractAudio(run.ctx);
  EXPECT_EQ(run.ui.Messages(), (std::vector<std::string>{"File system error!: "}));
  EXPECT_EQ(run.ui.Choosers().size(), 1u);  // the run ended
  ASSERT_GE(run.ui.events.size(), 4u);
  EXPECT_EQ(run.ui.events[1].kind, ScriptedUi::Kind::kWaitCursor);
  EXPECT_TRUE(run.ui.events[1].on);
  EXPECT_EQ(run.ui.events[3].kind, ScriptedUi::Kind::kWaitCursor);
  EXPECT_FALSE(run.ui.events[3].on);
  EXPECT_FALSE(File::Exists(run.out("audio01.AC3")));
}

TEST(ExtractAudioTest, IllegalSectorShowsErrorDumpAndLeavesFilesUnpatched) {
  AudioRun run;
  Record a = LpcmPack(0xA0, 0x01, 1);
  Record bad = IllegalPack();
  bad[100] = 0xAB;
  run.Open({a, NavPack(), bad, Ac3Pack(0x81, 2)});
  ExtractAudio(run.ctx);
  const auto& lines = run.ctx.report.lines();
  ASSERT_EQ(lines.size(), 4u + 130u);
  EXPECT_EQ(lines[0], "Illegal sector type, aborting extract operation!");
  EXPECT_EQ(lines[1], "Error at: offset 4096 sector number 2");
  EXPECT_EQ(lines[2], "Sector type found by get_sector_type: 00 0");
  EXPECT_EQ(lines[3], "Sector data:");
  EXPECT_EQ(lines[4], "Hex display of record 2 at file address 4096");
  EXPECT_EQ(lines[5], " ");
  EXPECT_EQ(lines[6].substr(0, 20), "0000 -> 00 00 01 BA ");
  EXPECT_EQ(lines[12].substr(0, 8 + 3 * 5), "0096 -> 00 00 00 00 AB ");
  EXPECT_EQ(run.ctx.open.page_end, 2u);
  Bytes wav = ReadFileBytes(run.out("audio00.WAV"));
  ASSERT_EQ(wav.size(), 44u + 2012);
  EXPECT_EQ(Slice(wav, 4, 8), (Bytes{0, 0, 0, 0}));
  EXPECT_FALSE(File::Exists(run.out("audio01.AC3")));
}

TEST(ExtractAudioTest, ChoosingTheStreamItselfTruncatesItAndEndsTheWalk) {
  AudioRun run;
  Record a = Ac3Pack(0x80, 1);
  std::vector<Record> records(3000, Ac3Pack(0x81, 2));  // 6 MB: more than the read-ahead
  records.insert(records.begin(), a);
  run.Open(records);
  // The chooser of stream 0 is answered with the open stream's own path: it is truncated,
  // so the walk finds no more records, as record-by-record reading would.
  run.ui.same_as_input = run.fx.dir.file("in.vob");
  ExtractAudio(run.ctx);
  EXPECT_EQ(run.ui.Choosers().size(), 1u);
  EXPECT_EQ(ReadFileBytes(run.fx.dir.file("in.vob")), Slice(a, 32));
  EXPECT_TRUE(run.ctx.report.empty());
}

TEST(ExtractAudioTest, ChoosingTheStreamItselfForLpcmWritesTheHeaderOfTheRecordRead) {
  Record a = LpcmPack(0xA0, 0x01, 1);
  std::vector<Record> records(3000, Ac3Pack(0x81, 2));  // more than one read-ahead window
  records.insert(records.begin(), a);
  // The WAV header a plain run writes for this record (its lengths are patched at the end).
  AudioRun plain;
  plain.Open({a});
  ExtractAudio(plain.ctx);
  Bytes expected = ReadFileBytes(plain.out("audio00.WAV"));
  // The same record, with the chooser answered by the open stream's own path: the file is
  // truncated when made, and the header still comes from the record as it was read.
  AudioRun run;
  run.Open(records);
  run.ui.same_as_input = run.fx.dir.file("in.vob");
  ExtractAudio(run.ctx);
  Bytes written = ReadFileBytes(run.fx.dir.file("in.vob"));
  ASSERT_GE(written.size(), 44u);
  ASSERT_GE(expected.size(), 44u);
  EXPECT_EQ(Slice(written, 0, 4), Slice(expected, 0, 4));    // "RIFF"
  EXPECT_EQ(Slice(written, 8, 40), Slice(expected, 8, 40));  // "WAVEfmt " .. "data"
}

TEST(ExtractAudioTest, StreamNumberIsLeftByTheLastClassification) {
  AudioRun run;
  run.Open({Ac3Pack(0x82, 1), VideoPack(2)});
  ExtractAudio(run.ctx);
  EXPECT_EQ(run.ctx.stream.stream_number, 0xE0u);
}

TEST(ExtractAudioTest, ShortLastRecordKeepsThePreviousRecordsBytesBehindIt) {
  AudioRun run;
  Record a = Ac3Pack(0x80, 1);
  Record b = Ac3Pack(0x81, 2);
  Bytes bytes = Join({a, Slice(b, 0, 100)});
  run.OpenRaw(bytes);
  ExtractAudio(run.ctx);
  EXPECT_EQ(ReadFileBytes(run.out("audio00.AC3")), Slice(a, 32));
  // Record 1 is read short: bytes 0..99 are its own, 100..2047 are still record 0's.
  EXPECT_EQ(ReadFileBytes(run.out("audio01.AC3")), Join({Slice(b, 32, 100), Slice(a, 100)}));
}

// The AC-3 file of a short record that follows the LPCM record a: its first 100 bytes are
// its own, the rest are record a's bytes as the swap left them (swapped_a).
Bytes ShortAc3AfterLpcm(const Record& a, const Bytes& swapped_a) {
  AudioRun run;
  Record b = Ac3Pack(0x81, 2);
  run.OpenRaw(Join({a, Slice(b, 0, 100)}));
  ExtractAudio(run.ctx);
  EXPECT_EQ(ReadFileBytes(run.out("audio01.AC3")),
            Join({Slice(b, 32, 100), Slice(swapped_a, 100)}));
  return ReadFileBytes(run.out("audio00.WAV"));
}

TEST(ExtractAudioTest, ShortRecordAfterLpcmKeepsTheSwappedBytes) {
  Record a = LpcmPack(0xA0, 0x01, 1);
  ShortAc3AfterLpcm(a, Join({Slice(a, 0, 35), Swapped(Slice(a, 35, 2047)), Slice(a, 2047)}));
}

TEST(ExtractAudioTest, ShortRecordKeepsTheOddSwapWithTheByteAfterThePayload) {
  Record a = LpcmPack(0xA0, 0x01, 1);
  SetPesLength(a, 2026);  // payload 35 .. 2045: its last byte swaps with byte 2046
  Bytes wav =
      ShortAc3AfterLpcm(a, Join({Slice(a, 0, 35), Swapped(Slice(a, 35, 2047)), Slice(a, 2047)}));
  EXPECT_EQ(wav.size(), 44u + 2011);
}

TEST(ExtractAudioTest, ShortRecordKeepsTheZeroedLastByteOfAnOddSwap) {
  Record a = LpcmPack(0xA0, 0x01, 1);
  SetPesLength(a, 0xFFFF);  // payload 35 .. 2047: the last byte's partner lies outside
  Bytes wav = ShortAc3AfterLpcm(a, Join({Slice(a, 0, 35), Swapped(Slice(a, 35, 2047)), Bytes{0}}));
  EXPECT_EQ(wav.size(), 44u + 2013);
}

TEST(ExtractAudioTest, EachRunStartsFromAZeroedBuffer) {
  AudioRun run;
  Record a = Ac3Pack(0x80, 1);
  run.OpenRaw(Slice(a, 0, 300));
  ExtractAudio(run.ctx);
  Bytes expected = Join({Slice(a, 32, 300), Bytes(2048 - 300, 0)});
  EXPECT_EQ(ReadFileBytes(run.out("audio00.AC3")), expected);
  // A second run on the same file gets the same bytes again.
  std::filesystem::remove(run.out("audio00.AC3"));
  ExtractAudio(run.ctx);
  EXPECT_EQ(ReadFileBytes(run.out("audio00.AC3")), expected);
}

TEST(ExtractAudioTest, ShortRecordErrorDumpCountsTheOffsetFromTheBytesRead) {
  AudioRun run;
  Record a = Ac3Pack(0x80, 1);
  Record bad = IllegalPack();
  run.OpenRaw(Join({a, a, Slice(bad, 0, 1000)}));
  // Record 2 holds 1000 bytes of the illegal pack and record 1's rest: still illegal.
  ExtractAudio(run.ctx);
  const auto& lines = run.ctx.report.lines();
  ASSERT_GE(lines.size(), 3u);
  EXPECT_EQ(lines[1], "Error at: offset 3048 sector number 1");  // 5096 - 2048
}

TEST(ExtractAudioTest, LargeStreamCrossingManyReadBlocksMatchesPackByPack) {
  AudioRun run;
  std::vector<Record> records;
  Bytes expected0, expected1;
  for (std::uint32_t i = 0; i < 1200; ++i) {  // 2.4 MB: more than two read blocks
    Record r = Ac3Pack(i % 3 == 0 ? 0x81 : 0x80, i);
    Bytes payload = Slice(r, 32);
    Bytes& e = i % 3 == 0 ? expected1 : expected0;
    e.insert(e.end(), payload.begin(), payload.end());
    records.push_back(std::move(r));
    if (i % 10 == 0) records.push_back(NavPack());
  }
  run.Open(records);
  ExtractAudio(run.ctx);
  EXPECT_EQ(ReadFileBytes(run.out("audio00.AC3")), expected0);
  EXPECT_EQ(ReadFileBytes(run.out("audio01.AC3")), expected1);
}

}  // namespace
}  // namespace tarvex
