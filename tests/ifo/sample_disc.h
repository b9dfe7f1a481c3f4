// The sample disc (tools/make-sample-disc.sh) for the golden tests that read its IFOs:
// where it is, opening one of its IFOs, and its disassembly/assembly round trip.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/test_support.h"

namespace tarvex::test {

// The sample disc's VIDEO_TS folder, ending in '/'.
std::string SampleDir();

// Whether both sample IFOs have been built.
bool SampleAvailable();

// Opens the sample IFO name and shows its overview.
void OpenSample(Fixture& f, const std::string& name);

// A sample IFO disassembled and assembled again: the original and the assembled bytes and the
// messages shown on the way.
struct SampleRoundTrip {
  std::vector<std::uint8_t> original;
  std::vector<std::uint8_t> assembled;
  std::vector<std::string> messages;
};
// Disassembles the sample IFO to ini and assembles the source next to copies of the sample's
// VOBs.
SampleRoundTrip RunSampleRoundTrip(const std::string& ifo, const std::string& ini);

// The bytes of two files that differ, by offset: {a, b}.
std::map<std::size_t, std::pair<int, int>> Differences(const std::vector<std::uint8_t>& a,
                                                       const std::vector<std::uint8_t>& b);

// The sector of a table in an IFO, located by the start sector field at field of sector 0;
// empty when the start sector is 0 or the sector lies beyond the file.
std::vector<std::uint8_t> TableSector(const std::vector<std::uint8_t>& ifo, std::size_t field);

}  // namespace tarvex::test
