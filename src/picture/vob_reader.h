// Reads runs of sectors of a VOB set (the menu VOB, or title VOBs 1 to 9 as one sector space)
// in large blocks, across the files of the set.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "disc/model.h"
#include "platform/bytes.h"

namespace tarvex::picture {

class VobReader {
 public:
  VobReader(const Disc& disc, const VobSet& vobs) : disc_(disc), vobs_(vobs) {}

  // Calls visit with each sector first..last (inclusive) and its number, in order. False with
  // error set (the file and sector) when a sector lies in no file or cannot be read; the
  // sectors before it have been visited.
  bool ForEach(std::uint32_t first, std::uint32_t last,
               const std::function<void(std::uint32_t, ByteView)>& visit, std::string& error);
  // One sector; false with error set as above.
  bool Read(std::uint32_t sector, std::vector<std::uint8_t>& record, std::string& error);

 private:
  DiscFile* Open(const std::string& name);

  const Disc& disc_;
  const VobSet& vobs_;
  std::map<std::string, std::unique_ptr<DiscFile>> files_;
  // Page-aligned: the system copies cached pages into it at full speed only when the block
  // and the file offset share their alignment.
  struct AlignedFree {
    void operator()(std::uint8_t* p) const { ::operator delete[](p, std::align_val_t{4096}); }
  };
  std::unique_ptr<std::uint8_t[], AlignedFree> block_;
};

}  // namespace tarvex::picture
