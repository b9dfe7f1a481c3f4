// The fields of a navigation pack that say where its VOBU lies and what it belongs to, decoded
// at the offsets of stream/nav_layout.h.
#pragma once

#include <cstdint>

#include "platform/bytes.h"

namespace tarvex {

struct NavPackFields {
  std::uint32_t pci_lbn = 0, dsi_lbn = 0;
  std::uint32_t vobu_s_ptm = 0, vobu_e_ptm = 0, vobu_se_e_ptm = 0;
  std::uint32_t vobu_ea = 0;
  std::uint16_t vob_id = 0;
  std::uint8_t cell_id = 0;
  std::uint32_t next_vobu = 0, previous_vobu = 0;  // VOBU search entries 20 and 21, whole
  std::uint8_t buttons = 0;                        // btn_ns
};

// A VOBU search entry's address bits; this value means "does not exist".
inline constexpr std::uint32_t kVobuSearchAddress = 0x3FFFFFFF;

// Decodes a navigation pack record (the DSI found after the PCI packet's length, kept inside
// the record).
NavPackFields DecodeNavPack(ByteView record);
// The 8 command bytes of button n (from 0) of a navigation pack's PCI.
ByteView NavButtonCommand(ByteView record, std::uint32_t n);

}  // namespace tarvex
