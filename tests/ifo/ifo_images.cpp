#include "ifo/ifo_images.h"

#include <algorithm>
#include <fstream>

#include "platform/bytes.h"

namespace tarvex::test {

std::vector<std::uint8_t> MakeSamplePgc() {
  std::vector<std::uint8_t> pgc(318, 0);
  ByteWriter w(pgc);
  w.put_be32(0x00, 0x00000202);  // 2 programs, 2 cells
  w.put_be32(0x04, 0x012345D9);  // 01:23:45, frame byte: rate bits 11, tens 1, units 9
  w.put_be32(0x08, 0x00000001);  // prohibited user operations
  w.put_be16(0x0C, 0x8000);      // audio stream 1
  w.put_be32(0x1C, 0x80000000);  // sub-picture stream 1
  w.put_be16(0x9C, 2);           // next
  w.put_be16(0x9E, 1);           // previous
  w.put_be16(0xA0, 3);           // go up
  w.put_u8(0xA2, 255);           // still time
  w.put_u8(0xA3, 0x01);          // play back mode
  w.put_be32(0xA4, 0x00108080);  // colour 0: Y 16, Cr 128, Cb 128
  w.put_be32(0xA4 + 4 * 15, 0x00EB8080);
  w.put_be16(0xE4, 236);  // command table
  w.put_be16(0xE6, 260);  // program map
  w.put_be16(0xE8, 262);  // cell playback
  w.put_be16(0xEA, 310);  // cell position
  // Command table: 1 pre, 1 post, 0 cell commands, end address 23.
  w.put_be16(236, 1);
  w.put_be16(238, 1);
  w.put_be16(240, 0);
  w.put_be16(242, 23);
  w.put_be32(244, 0x7100000F);
  w.put_be32(248, 0x00010000);
  w.put_be32(252, 0x30020000);
  w.put_be32(256, 0x00010000);
  // Program map.
  w.put_u8(260, 1);
  w.put_u8(261, 2);
  // Cell playback: cell 1 and 2.
  w.put_be32(262, 0x02000506);
  w.put_be32(266, 0x000010C0);
  w.put_be32(270, 0);
  w.put_be32(274, 0);
  w.put_be32(278, 100);
  w.put_be32(282, 150);
  w.put_be32(286, 0x00000000);
  w.put_be32(290, 0x00002001);
  w.put_be32(294, 151);
  w.put_be32(298, 160);
  w.put_be32(302, 300);
  w.put_be32(306, 301);
  // Cell position.
  w.put_be32(310, 0x00010001);
  w.put_be32(314, 0x00010002);
  return pgc;
}

std::vector<std::uint8_t> MakeVmgImage(const std::vector<std::uint8_t>& first_play) {
  std::vector<std::uint8_t> image(first_play.empty() ? 2048 : 4096, 0);
  ByteWriter w(image);
  w.put_bytes(0, ByteView(reinterpret_cast<const std::uint8_t*>("DVDVIDEO-VMG"), 12));
  w.put_be32(12, 2);   // vmg_ea
  w.put_be32(28, 0);   // vmgi_ea
  w.put_u8(33, 0x11);  // version 1.1
  w.put_be32(34, 0x00010000);
  w.put_be16(38, 1);
  w.put_be16(40, 1);
  w.put_be16(42, 0x0100);  // side bits 8-9 = 1
  w.put_be16(44, 0);
  w.put_be16(62, 1);
  w.put_bytes(64, ByteView(reinterpret_cast<const std::uint8_t*>("TARVEX"), 6));
  w.put_be32(96, 0x01020304);
  w.put_be32(100, 0x0A0B0C0D);
  w.put_be32(128, first_play.empty() ? 1023 : 1023 + first_play.size());
  w.put_be32(132, first_play.empty() ? 0 : 1024);
  w.put_be32(192, 1);  // menu VOB at sector 1
  w.put_be16(256, 0x5010);
  w.put_u8(259, 2);
  w.put_be32(260, 0x61626364);
  w.put_u8(341, 1);
  w.put_u8(342, 0x11);
  if (!first_play.empty()) w.put_bytes(1024, ByteView(first_play));
  return image;
}

std::vector<std::uint8_t> MakeVtsImage() {
  std::vector<std::uint8_t> image(2048, 0);
  ByteWriter w(image);
  w.put_bytes(0, ByteView(reinterpret_cast<const std::uint8_t*>("DVDVIDEO-VTS"), 12));
  w.put_be32(0x0C, 0x00000201);  // vts_ea 513
  w.put_be32(0x1C, 0);           // vtsi_ea
  w.put_u8(0x21, 0x11);
  w.put_be32(0x22, 0x0000000F);
  w.put_be32(0x80, 2047);
  w.put_be32(0xC0, 0);  // no menu VOB
  w.put_be32(0xC4, 1);  // title VOB at sector 1
  w.put_be16(0x100, 0x5010);
  w.put_u8(0x103, 0);
  w.put_be16(0x200, 0x4D01);
  w.put_u8(0x203, 1);
  w.put_be32(0x204, 0x40000000);
  w.put_be32(0x208, 0x656E0000);
  w.put_u8(0x255, 1);
  w.put_be32(0x256, 0x01006465);
  w.put_be16(0x25A, 0x0000);
  return image;
}

std::uint32_t AppendTable(std::vector<std::uint8_t>& image,
                          const std::vector<std::uint8_t>& table) {
  image.resize((image.size() + 2047) / 2048 * 2048, 0);
  std::uint32_t sector = static_cast<std::uint32_t>(image.size() / 2048);
  image.insert(image.end(), table.begin(), table.end());
  return sector;
}

void PlaceTable(std::vector<std::uint8_t>& image, std::size_t start_field, std::uint32_t sector,
                const std::vector<std::uint8_t>& table) {
  std::size_t at = std::size_t{sector} * 2048;
  std::size_t end = (at + table.size() + 2047) / 2048 * 2048;
  if (image.size() < end) image.resize(end, 0);
  ByteWriter(image).put_be32(start_field, sector);
  std::copy(table.begin(), table.end(), image.begin() + static_cast<std::ptrdiff_t>(at));
}

std::vector<std::uint8_t> WithTableAt(std::vector<std::uint8_t> image, std::size_t start_field,
                                      std::uint32_t sector,
                                      const std::vector<std::uint8_t>& table) {
  PlaceTable(image, start_field, sector, table);
  return image;
}

std::vector<std::uint8_t> WithTables(
    std::vector<std::uint8_t> image,
    const std::vector<std::pair<std::size_t, std::vector<std::uint8_t>>>& tables) {
  for (const auto& [offset, table] : tables) {
    std::uint32_t sector = AppendTable(image, table);
    ByteWriter(image).put_be32(offset, sector);
  }
  return image;
}

void WriteText(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
}

}  // namespace tarvex::test
