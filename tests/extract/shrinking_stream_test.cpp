// Extraction from a stream that another program shortens while it is read: the run ends
// before the first record the stream lost, finishes every file it made, and shows one
// "File read error!" box naming the stream; no later run of the Extract command starts.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <functional>

#include "app/commands.h"
#include "extract/extract.h"
#include "extract/record_reader.h"
#include "extract_test_support.h"
#include "platform/format.h"

namespace tarvex {
namespace {

using namespace test;  // NOLINT

// Records in one block of the extraction's reader: the streams below are longer than two
// blocks, so that one block is read before the stream is shortened and one after.
constexpr std::size_t kBlock = RecordReader::kDefaultBlockSize / 2048;
// The length the streams are shortened to: inside the second block, cutting one record.
constexpr std::size_t kKeptRecords = kBlock + kBlock / 2;
constexpr std::size_t kCutLength = kKeptRecords * 2048 + 1000;

// A scripted UI that runs a step (shortening the stream, say) when a save chooser is shown
// for the nth time (1 = the first).
class ShrinkingUi : public ScriptedUi {
 public:
  std::optional<std::string> ChooseSaveFile(const ChooserRequest& request) override {
    auto answer = ScriptedUi::ChooseSaveFile(request);
    if (++choosers_ == at_chooser && step) step();
    return answer;
  }
  int at_chooser = 1;
  std::function<void()> step;

 private:
  int choosers_ = 0;
};

struct ShrinkRun {
  ShrinkRun() : ctx(ui) { std::filesystem::create_directory(dir.file("out")); }
  void Open(const std::vector<Record>& records) {
    WriteFileBytes(stream(), Concat(records));
    ctx.open.file_handle = File::OpenRead(stream());
    ctx.open.file_type = kFileVob;
    ctx.open.file_path = stream();
    ctx.open.record_count = static_cast<std::uint32_t>(records.size());
  }
  // The stream is shortened to length bytes when the nth save chooser is shown.
  void ShortenAtChooser(int nth, std::size_t length) {
    ui.at_chooser = nth;
    ui.step = [this, length] {
      ASSERT_EQ(::truncate(stream().c_str(), static_cast<off_t>(length)), 0);
    };
  }
  void Answer(const std::string& name) { ui.chooser_answers.push_back(out(name)); }
  // Opens the records, answers the save choosers with out/NAME in turn and shortens the
  // stream to length bytes when the nth of them is shown.
  void Prepare(const std::vector<Record>& records, std::initializer_list<const char*> names,
               int nth, std::size_t length = kCutLength) {
    Open(records);
    for (const char* name : names) Answer(name);
    ShortenAtChooser(nth, length);
  }
  std::string stream() const { return dir.file("in.vob"); }
  std::string out(const std::string& name) const { return dir.file("out") + "/" + name; }
  Bytes file(const std::string& name) const { return ReadFileBytes(out(name)); }
  std::vector<std::string> files() const { return FilesIn(dir.file("out")); }
  std::vector<std::string> ReadErrorOnly() const { return {"File read error!: " + stream()}; }
  TempDir dir;
  ShrinkingUi ui;
  AppContext ctx;
};

std::uint32_t Le32(const Bytes& b, std::size_t at) {
  return b[at] | b[at + 1] << 8 | b[at + 2] << 16 | static_cast<std::uint32_t>(b[at + 3]) << 24;
}

Bytes Swapped(Bytes b) {
  for (std::size_t i = 0; i + 1 < b.size(); i += 2) std::swap(b[i], b[i + 1]);
  return b;
}

// A stream of n records: record i is make(i, a seed of its own).
template <typename Make>
std::vector<Record> Records(std::size_t n, Make make) {
  std::vector<Record> records;
  for (std::size_t i = 0; i < n; ++i) records.push_back(make(i, static_cast<std::uint32_t>(i)));
  return records;
}

// LPCM stream 0 and AC-3 stream 1 packs taking turns, n records in all.
std::vector<Record> AudioStream(std::size_t n) {
  return Records(n, [](std::size_t i, std::uint32_t seed) {
    return i % 2 == 0 ? LpcmPack(0xA0, 0x01, seed) : Ac3Pack(0x81, seed);
  });
}

TEST(ShrinkingStreamExtract, AudioFilesHoldEveryRecordReadAndWavHeadersArePatched) {
  ShrinkRun run;
  std::vector<Record> records = AudioStream(2 * kBlock + 10);
  // Shortened while record 1 is written, after the first block was read.
  run.Prepare(records, {"audio00.WAV", "audio01.AC3"}, 2);
  ExtractAudio(run.ctx);

  EXPECT_EQ(run.ui.Messages(), run.ReadErrorOnly());
  EXPECT_TRUE(run.ctx.report.empty());
  Bytes samples, ac3;
  for (std::size_t i = 0; i < kKeptRecords; ++i) {
    Bytes& to = i % 2 == 0 ? samples : ac3;
    Bytes payload = i % 2 == 0 ? Swapped(Slice(records[i], 35, 2047)) : Slice(records[i], 32);
    to.insert(to.end(), payload.begin(), payload.end());
  }
  Bytes wav = run.file("audio00.WAV");
  ASSERT_EQ(wav.size(), 44 + samples.size());
  EXPECT_EQ(Le32(wav, 4), samples.size() - 8);
  EXPECT_EQ(Le32(wav, 40), samples.size() - 36);
  EXPECT_EQ(Slice(wav, 44, wav.size()), samples);
  EXPECT_EQ(run.file("audio01.AC3"), ac3);
  // The walk stopped at the record the stream lost; the file is left behind the last one read.
  EXPECT_EQ(run.ctx.open.file_handle.Tell(), static_cast<std::int64_t>(kKeptRecords * 2048));
}

// Video packs, with a navigation pack every eighth record.
std::vector<Record> VideoStream(std::size_t n) {
  return Records(n, [](std::size_t i, std::uint32_t seed) {
    return i % 8 == 7 ? NavPack() : VideoPack(seed);
  });
}

TEST(ShrinkingStreamExtract, VideoFileHoldsThePayloadsOfTheRecordsRead) {
  ShrinkRun run;
  std::vector<Record> records = VideoStream(2 * kBlock + 10);
  // Shortened when the file is chosen: the copy pass reads one block whole, the next short.
  run.Prepare(records, {"movie.M2V"}, 1);
  ExtractVideo(run.ctx);

  EXPECT_EQ(run.ui.Messages(), run.ReadErrorOnly());
  EXPECT_TRUE(run.ctx.report.empty());
  Bytes expected;
  for (std::size_t i = 0; i < kKeptRecords; ++i) {
    if (i % 8 == 7) continue;
    Bytes payload = Slice(records[i], 28);
    expected.insert(expected.end(), payload.begin(), payload.end());
  }
  EXPECT_EQ(run.files(), (std::vector<std::string>{"movie.M2V"}));
  EXPECT_EQ(run.file("movie.M2V"), expected);
}

// Sub-picture units of two packs (PTS, then none) with a video pack after each, n records.
std::vector<Record> SubPictureStream(std::size_t n) {
  return Records(n, [](std::size_t i, std::uint32_t seed) {
    return i % 3 == 2 ? VideoPack(seed) : SubPicturePack(0x20, i % 3 == 0, seed);
  });
}

// The units the first `kept` records of SubPictureStream() begin.
std::size_t UnitsIn(std::size_t kept) {
  return (kept + 2) / 3;
}

// The last numbered file of those units, as the records hold it.
Bytes LastUnit(const std::vector<Record>& records, std::size_t kept) {
  std::size_t first = (UnitsIn(kept) - 1) * 3;  // the record that began the last unit
  Bytes unit = Slice(records[first], 29);
  if (first + 1 < kept) {
    Bytes more = Slice(records[first + 1], 24);
    unit.insert(unit.end(), more.begin(), more.end());
  }
  return unit;
}

TEST(ShrinkingStreamExtract, SubPictureUnitsUpToTheLostRecordAreWrittenAndClosed) {
  ShrinkRun run;
  std::vector<Record> records = SubPictureStream(2 * kBlock + 10);
  run.Prepare(records, {"sp.SUP"}, 1);
  ExtractSubPictures(run.ctx);

  EXPECT_EQ(run.ui.Messages(), run.ReadErrorOnly());
  std::size_t units = UnitsIn(kKeptRecords);
  ASSERT_EQ(run.files().size(), units);
  EXPECT_EQ(run.file(Format("sp00%04d.sup", {units})), LastUnit(records, kKeptRecords));
}

TEST(ShrinkingStreamExtract, FirstPackSearchShowsTheReadErrorInsteadOfTheEndOfFileLine) {
  ShrinkRun run;
  run.Open({NavPack(), Ac3Pack(0x80, 1), NavPack()});
  run.ctx.extract.stream_length = 4 * 2048;  // the stream had a fourth record when OK was pressed
  ExtractVideo(run.ctx);
  EXPECT_EQ(run.ui.Messages(), run.ReadErrorOnly());
  EXPECT_TRUE(run.ctx.report.empty());
  EXPECT_TRUE(run.ui.Choosers().empty());
  EXPECT_TRUE(run.files().empty());
}

ExtractRequest Ticked(bool audio, bool video, bool subpictures) {
  ExtractRequest ticked;
  ticked.extract_audio = audio ? 1 : 0;
  ticked.extract_video = video ? 1 : 0;
  ticked.extract_subpictures = subpictures ? 1 : 0;
  return ticked;
}

TEST(ShrinkingStreamExtract, CommandStartsNoRunAfterTheOneThatFoundTheStreamShortened) {
  ShrinkRun run;
  std::vector<Record> records = AudioStream(2 * kBlock + 10);
  records.push_back(VideoPack(1));
  records.push_back(SubPicturePack(0x20, true, 2));
  run.Prepare(records, {"audio00.WAV", "audio01.AC3"}, 1);
  ExtractCommand(run.ctx, Ticked(true, true, true));

  EXPECT_EQ(run.ui.Messages(), run.ReadErrorOnly());
  EXPECT_EQ(run.ui.Choosers().size(), 2u);  // the audio files only
  EXPECT_EQ(run.files(), (std::vector<std::string>{"audio00.WAV", "audio01.AC3"}));
  EXPECT_EQ(run.ctx.extract.extract_video, 0);
  EXPECT_EQ(run.ctx.extract.extract_subpictures, 0);
}

TEST(ShrinkingStreamExtract, StreamShortenedAfterTheAudioRunReadItStopsTheVideoRun) {
  ShrinkRun run;
  // Small enough for one block: the audio run has read it all when its chooser shortens it.
  Record a = Ac3Pack(0x80, 1);
  run.Prepare({a, NavPack(), NavPack(), NavPack(), NavPack(), VideoPack(2)},
              {"audio00.AC3", "movie.M2V"}, 1, 4 * 2048);
  ExtractCommand(run.ctx, Ticked(true, true, false));

  // The video run expects the length the stream had when the command began.
  EXPECT_EQ(run.ui.Messages(), run.ReadErrorOnly());
  EXPECT_EQ(run.ui.Choosers().size(), 1u);
  EXPECT_EQ(run.files(), (std::vector<std::string>{"audio00.AC3"}));
  EXPECT_EQ(run.file("audio00.AC3"), Slice(a, 32));
  EXPECT_TRUE(run.ctx.report.empty());
}

TEST(ShrinkingStreamExtract, StreamTruncatedByItsOwnOutputIsNoReadErrorForTheNextRun) {
  ShrinkRun run;
  Record a = Ac3Pack(0x80, 1);
  std::vector<Record> records = AudioStream(2 * kBlock + 10);
  records.insert(records.begin(), a);
  run.Open(records);
  // The AC-3 file of stream 0 is the stream itself: making it truncates the stream, and the
  // audio run then finds no more records, as record-by-record reading would.
  run.ui.chooser_answers.push_back(run.stream());
  run.Answer("movie.M2V");
  ExtractCommand(run.ctx, Ticked(true, true, false));

  EXPECT_TRUE(run.ui.Messages().empty());
  EXPECT_EQ(ReadFileBytes(run.stream()), Slice(a, 32));
  // The video run reads the stream as the audio run left it: a record of AC-3 payload bytes.
  ASSERT_FALSE(run.ctx.report.empty());
  EXPECT_EQ(run.ctx.report.lines()[0], "Illegal sector type, aborting extract operation!");
}

#ifdef TARVEX_CLI_PATH

// tarvex-cli on a stream shortened while the command runs. The test shortens it at a known
// point: the stills run fails to make a file whose name is longer than the pipe that takes
// standard error can hold, so the process waits inside that message box (after the command
// took the stream's length, before the sub-picture run reads the stream) until the test,
// having shortened the stream, reads the pipe.
TEST(ShrinkingStreamCliExtract, ReadErrorOnStandardErrorExitStatusOneAndClosedFiles) {
  TempDir dir;
  ::setenv("XDG_CONFIG_HOME", dir.file("config").c_str(), 1);
  std::filesystem::create_directory(dir.file("out"));
  std::string stream = dir.file("in.vob");
  std::vector<Record> records = SubPictureStream(2 * kBlock + 10);
  WriteFileBytes(stream, Concat(records));

  int err[2];
  ASSERT_EQ(::pipe2(err, O_CLOEXEC), 0);
  ::fcntl(err[1], F_SETPIPE_SZ, 4096);
  int capacity = ::fcntl(err[1], F_GETPIPE_SZ);
  ASSERT_GT(capacity, 0);
  std::string stills = dir.file("out") + "/" + std::string(capacity + 1000, 's') + ".M2V";
  std::string name = stills.substr(0, stills.size() - 4) + "0001.m2v";

  std::vector<std::string> args = {TARVEX_CLI_PATH, "extract",           stream,
                                   "--stills",      "--subpictures",     "--stills-out",
                                   stills,          "--subpictures-out", dir.file("out/sp.SUP")};
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, err[1], 2);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  pid_t pid = 0;
  int spawned = ::posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  ::close(err[1]);
  ASSERT_EQ(spawned, 0);

  // The first bytes of the stills box: the process now waits for the pipe.
  pollfd ready = {err[0], POLLIN, 0};
  ASSERT_EQ(::poll(&ready, 1, 120000), 1);
  ASSERT_EQ(::truncate(stream.c_str(), static_cast<off_t>(kCutLength)), 0);
  std::string text;
  char buf[4096];
  for (ssize_t n; (n = ::read(err[0], buf, sizeof buf)) != 0;) {
    if (n > 0) text.append(buf, static_cast<std::size_t>(n));
    if (n < 0 && errno != EINTR) break;
  }
  ::close(err[0]);
  int status = 0;
  ASSERT_EQ(::waitpid(pid, &status, 0), pid);

  ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_EQ(text, "File system error!: " + name + "\nFile read error!: " + stream + "\n");
  std::size_t units = UnitsIn(kKeptRecords);
  EXPECT_EQ(FilesIn(dir.file("out")).size(), units);
  EXPECT_EQ(ReadFileBytes(dir.file("out") + Format("/sp00%04d.sup", {units})),
            LastUnit(records, kKeptRecords));
}

#endif

}  // namespace
}  // namespace tarvex
