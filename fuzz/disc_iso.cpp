// Fuzz harness: an arbitrary small ISO image, read in memory through libudfread, then the disc
// model, info and verify.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "disc/info.h"
#include "disc/verify.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string error;
  std::unique_ptr<tarvex::DiscAccess> access =
      tarvex::OpenDiscImage(std::vector<std::uint8_t>(data, data + size), error);
  if (!access) return 0;
  std::optional<tarvex::Disc> disc = tarvex::LoadDisc(std::move(access), "fuzz", error);
  if (!disc) return 0;
  tarvex::DiscInfoJson(*disc);
  tarvex::VerifyResult result = tarvex::VerifyDisc(*disc);
  tarvex::VerifyJson("fuzz", result);
  return 0;
}
