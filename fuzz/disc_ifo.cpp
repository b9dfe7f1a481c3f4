// Fuzz harness: the disc model, info and verify on arbitrary IFO bytes. The input is
// [2-byte length A][A bytes: VIDEO_TS.IFO][2-byte length B][B bytes: VTS_01_0.IFO][the rest:
// VTS_01_1.VOB], held in memory as a VIDEO_TS folder.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "disc/info.h"
#include "disc/verify.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<std::uint8_t> vmg = tarvex::fuzz::Take(data, size);
  std::vector<std::uint8_t> vts = tarvex::fuzz::Take(data, size);
  std::vector<std::uint8_t> vob(data, data + size);
  std::vector<std::pair<std::string, std::vector<std::uint8_t>>> files;
  files.emplace_back("VIDEO_TS.IFO", vmg);
  files.emplace_back("VIDEO_TS.BUP", vmg);
  files.emplace_back("VTS_01_0.IFO", vts);
  files.emplace_back("VTS_01_0.BUP", std::move(vts));
  files.emplace_back("VTS_01_1.VOB", std::move(vob));
  std::string error;
  std::optional<tarvex::Disc> disc =
      tarvex::LoadDisc(tarvex::OpenMemoryDisc(std::move(files)), "fuzz", error);
  if (!disc) return 0;
  tarvex::DiscInfoJson(*disc);
  tarvex::DiscInfoText(*disc);
  tarvex::VerifyResult result = tarvex::VerifyDisc(*disc);
  tarvex::VerifyJson("fuzz", result);
  return 0;
}
