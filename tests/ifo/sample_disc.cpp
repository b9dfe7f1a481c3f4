#include "ifo/sample_disc.h"

#include <algorithm>
#include <filesystem>

#include "convert/drivers.h"
#include "ifo/ifo_drivers.h"
#include "platform/bytes.h"
#include "platform/file_io.h"

namespace tarvex::test {

std::string SampleDir() {
  return std::string(TARVEX_SAMPLES_DIR) + "/disc/VIDEO_TS/";
}

bool SampleAvailable() {
  return File::Exists(SampleDir() + "VIDEO_TS.IFO") && File::Exists(SampleDir() + "VTS_01_0.IFO");
}

void OpenSample(Fixture& f, const std::string& name) {
  OpenIfo(f, name, ReadFileBytes(SampleDir() + name));
}

SampleRoundTrip RunSampleRoundTrip(const std::string& ifo, const std::string& ini) {
  Fixture f;
  OpenSample(f, ifo);
  std::string source = DisassembleIfoTo(f, ini);
  std::filesystem::create_directory(f.dir.file("out"));
  for (const char* vob : {"VIDEO_TS.VOB", "VTS_01_0.VOB", "VTS_01_1.VOB"}) {
    std::filesystem::copy_file(SampleDir() + vob, f.dir.file("out/") + vob);
  }
  std::vector<std::uint8_t> assembled = AssembleBatchInto(f, source, ifo);
  return {ReadFileBytes(SampleDir() + ifo), assembled, f.ui.Messages()};
}

std::map<std::size_t, std::pair<int, int>> Differences(const std::vector<std::uint8_t>& a,
                                                       const std::vector<std::uint8_t>& b) {
  std::map<std::size_t, std::pair<int, int>> out;
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    if (a[i] != b[i]) out[i] = {a[i], b[i]};
  }
  return out;
}

std::vector<std::uint8_t> TableSector(const std::vector<std::uint8_t>& ifo, std::size_t field) {
  std::size_t at = std::size_t{ByteView(ifo).be32(field)} * 2048;
  if (at == 0 || at + 2048 > ifo.size()) return {};
  return {ifo.begin() + static_cast<std::ptrdiff_t>(at),
          ifo.begin() + static_cast<std::ptrdiff_t>(at + 2048)};
}

}  // namespace tarvex::test
