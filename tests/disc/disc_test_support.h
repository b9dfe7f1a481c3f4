// Helpers of the whole-disc tests: the sample disc, copies of it, running tarvex-cli and the
// damage tool, parsing JSON back.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "disc/verify.h"
#include "support/test_support.h"

namespace tarvex::test {

// samples/disc (the folder that holds VIDEO_TS).
std::string SampleDisc();
// A writable copy of the VIDEO_TS of disc (a folder holding one) as dir/name/VIDEO_TS;
// returns dir/name.
std::string CopyDisc(const std::string& disc, const TempDir& dir, const std::string& name);
// A copy of the sample's VIDEO_TS as dir/name/VIDEO_TS; returns dir/name.
std::string CopySample(const TempDir& dir, const std::string& name);
// Writes bytes at offset of an existing file.
void Patch(const std::string& path, std::size_t offset, const std::vector<std::uint8_t>& bytes);

struct CliRun {
  int status = -1;
  std::string out, err;
};
// Runs the built tarvex-cli with args (standard input from /dev/null); the tests that use it
// are built only with the command-line tool.
CliRun RunCli(const std::vector<std::string>& args);

// A copy of the sample (dir/remapped) whose second audio stream, LPCM, plays through stream
// number 3 (control 0x8300, packs with sub-stream 0xA3) instead of 1.
std::string RemappedSample(const TempDir& dir);
// Runs tools/damage-disc.py for one case into dir; returns the damaged disc's folder.
std::string Damage(const TempDir& dir, const std::string& name);

// Loads the disc at path (the test fails when it cannot) and verifies it.
VerifyResult VerifyAt(const std::string& path, bool ifo_only = false);

// Parses text as JSON (strict: the test fails on anything else).
nlohmann::json ParseJson(const std::string& text);

}  // namespace tarvex::test
