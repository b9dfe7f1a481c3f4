// The fields of a navigation pack that say where its VOBU lies and what it belongs to, decoded
// at the offsets of stream/nav_layout.h.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

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
  // Seamless playback of an interleaved block: the category (bit 14: the VOBU lies in an
  // interleaved unit), the unit's end and the next unit of the same angle, in sectors from
  // this navigation pack.
  std::uint16_t sml_category = 0;
  std::uint32_t ilvu_ea = 0, next_ilvu_sa = 0;
  std::uint16_t next_ilvu_size = 0;
};

// A VOBU search entry's address bits; this value means "does not exist".
inline constexpr std::uint32_t kVobuSearchAddress = 0x3FFFFFFF;

// One button of a navigation pack's highlight information.
struct NavButton {
  std::uint32_t number = 0;                      // from 1
  std::uint8_t color_group = 0;                  // btn_coln: 1-3, 0 none
  std::uint16_t x0 = 0, x1 = 0, y0 = 0, y1 = 0;  // the rectangle, inclusive
  std::uint8_t auto_action = 0;
  std::uint8_t up = 0, down = 0, left = 0, right = 0;  // neighbour buttons, 0 none
  std::array<std::uint8_t, 8> command{};
};

// The highlight information of a navigation pack's PCI.
struct HighlightInfo {
  std::uint16_t status = 0;        // hli_ss bits 1-0: 0 no highlight information
  std::uint16_t button_modes = 0;  // btn_md
  std::uint8_t offset = 0, count = 0, selectable = 0;  // btn_ofn, btn_ns, nsl_btn_ns
  std::uint8_t forced_select = 0, forced_action = 0;   // fosl_btnn, foac_btnn
  std::array<std::uint32_t, 6> colors{};  // btn_colit: per group, selection then action
  std::vector<NavButton> buttons;         // btn_ns of the 36 entries
  bool present() const { return (status & 3) != 0 && count != 0; }
  std::uint8_t groups() const { return static_cast<std::uint8_t>((button_modes >> 12) & 3); }
};
inline constexpr int kMaxButtons = 36;

// Decodes a navigation pack record (the DSI found after the PCI packet's length, kept inside
// the record).
NavPackFields DecodeNavPack(ByteView record);
// The 8 command bytes of button n (from 0) of a navigation pack's PCI.
ByteView NavButtonCommand(ByteView record, std::uint32_t n);
// The highlight information of a navigation pack record, its buttons in the order of the table
// (all btn_ns of them, at most 36).
HighlightInfo DecodeHighlight(ByteView record);
// The btn_ns buttons of button group g (1-3) of a highlight information of groups groups: the
// table gives each group 36 / groups entries, group 1 first.
std::vector<NavButton> DecodeButtonGroup(ByteView record, std::uint32_t group,
                                         std::uint32_t groups);

}  // namespace tarvex
