#include "disc/disc_test_support.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace tarvex::test {

std::string SampleDisc() {
  return std::string(TARVEX_SAMPLES_DIR) + "/disc";
}

std::string CopyDisc(const std::string& disc, const TempDir& dir, const std::string& name) {
  std::filesystem::path target = std::filesystem::path(dir.path()) / name / "VIDEO_TS";
  std::filesystem::create_directories(target);
  for (const auto& entry : std::filesystem::directory_iterator(disc + "/VIDEO_TS")) {
    std::filesystem::copy_file(entry.path(), target / entry.path().filename());
    std::filesystem::permissions(
        target / entry.path().filename(),
        std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  }
  return (std::filesystem::path(dir.path()) / name).string();
}

std::string CopySample(const TempDir& dir, const std::string& name) {
  return CopyDisc(SampleDisc(), dir, name);
}

void Patch(const std::string& path, std::size_t offset, const std::vector<std::uint8_t>& bytes) {
  std::fstream f(path, std::ios::in | std::ios::out | std::ios::binary);
  ASSERT_TRUE(f) << path;
  f.seekp(static_cast<std::streamoff>(offset));
  f.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

CliRun RunCli(const std::vector<std::string>& args) {
  CliRun run;
#ifdef TARVEX_CLI_PATH
  TempDir dir;
  std::string command = ShellQuote(TARVEX_CLI_PATH);
  for (const std::string& a : args) command += " " + ShellQuote(a);
  command += " </dev/null >" + ShellQuote(dir.file("out")) + " 2>" + ShellQuote(dir.file("err"));
  int status = std::system(command.c_str());
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  run.out = ReadFileText(dir.file("out"));
  run.err = ReadFileText(dir.file("err"));
#else
  (void)args;
#endif
  return run;
}

std::string Damage(const TempDir& dir, const std::string& name) {
  std::string tool = std::string(TARVEX_SOURCE_DIR) + "/tools/damage-disc.py";
  std::string command = "python3 " + ShellQuote(tool) + " " + ShellQuote(SampleDisc()) + " " +
                        ShellQuote(dir.path()) + " " + ShellQuote(name) + " >/dev/null";
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
  return dir.path() + "/" + name;
}

VerifyResult VerifyAt(const std::string& path, bool ifo_only) {
  std::string error;
  std::optional<Disc> disc = LoadDisc(path, error);
  EXPECT_TRUE(disc) << path << ": " << error;
  return disc ? VerifyDisc(*disc, {.ifo_only = ifo_only}) : VerifyResult{};
}

nlohmann::json ParseJson(const std::string& text) {
  try {
    return nlohmann::json::parse(text);
  } catch (const nlohmann::json::parse_error& e) {
    ADD_FAILURE() << "not JSON: " << e.what() << "\n" << text.substr(0, 400);
    return {};
  }
}

// A copy of the sample whose second audio stream (LPCM) plays through stream number 3: its
// chain's control word becomes 0x8300 and its packs carry sub-stream 0xA3. lsdvd still names
// it 0xa1 from its position; info follows the control.
std::string RemappedSample(const TempDir& dir) {
  std::string disc = CopySample(dir, "remapped");
  // VTS_PGCIT at sector 2, its chain 16 bytes in, audio control 2 at 0x0E of the chain.
  for (const char* ifo : {"VTS_01_0.IFO", "VTS_01_0.BUP"}) {
    Patch(disc + "/VIDEO_TS/" + ifo, 2 * 2048 + 16 + 0x0E, {0x83, 0x00});
  }
  std::string vob = disc + "/VIDEO_TS/VTS_01_1.VOB";
  std::vector<std::uint8_t> bytes = ReadFileBytes(vob);
  int changed = 0;
  for (std::size_t r = 0; r + 2048 <= bytes.size(); r += 2048) {
    // A private stream 1 packet at 14; its sub-stream id follows the PES header (9 bytes and
    // header_data_length at 22).
    if (bytes[r + 14] == 0 && bytes[r + 15] == 0 && bytes[r + 16] == 1 && bytes[r + 17] == 0xBD) {
      std::size_t sub = r + 23 + bytes[r + 22];
      if (bytes[sub] == 0xA1) {
        bytes[sub] = 0xA3;
        ++changed;
      }
    }
  }
  EXPECT_EQ(changed, 764);  // the LPCM packs counted in samples/README.md
  WriteFileBytes(vob, bytes);
  return disc;
}

}  // namespace tarvex::test
