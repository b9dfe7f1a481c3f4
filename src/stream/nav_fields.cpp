#include "stream/nav_fields.h"

#include <algorithm>

#include "stream/nav_layout.h"

namespace tarvex {

NavPackFields DecodeNavPack(ByteView record) {
  NavPackFields f;
  ByteView pci = record.sub(kPciData);
  f.pci_lbn = pci.be32(kPciNvPckLbn);
  f.vobu_s_ptm = pci.be32(kPciVobuSPtm);
  f.vobu_e_ptm = pci.be32(kPciVobuEPtm);
  f.vobu_se_e_ptm = pci.be32(kPciVobuSeEPtm);
  f.buttons = pci.u8(kPciBtnNs);
  // The DSI packet follows the PCI packet: its start code at 38 + L + 6, its data 7 bytes on.
  ByteView dsi = record.sub(kDsiAfterPciLength + record.be16(kPciLength) + 7);
  f.dsi_lbn = dsi.be32(kDsiNvPckLbn);
  f.vobu_ea = dsi.be32(kDsiVobuEa);
  f.vob_id = dsi.be16(kDsiVobuVobIdn);
  f.cell_id = dsi.u8(kDsiVobuCIdn);
  f.next_vobu = dsi.be32(kDsiVobuSri + 4 * kSriNextPossibleVideo);
  f.previous_vobu = dsi.be32(kDsiVobuSri + 4 * kSriPreviousPossibleVideo);
  f.sml_category = dsi.be16(kDsiSmlPbiCategory);
  f.ilvu_ea = dsi.be32(kDsiIlvuEa);
  f.next_ilvu_sa = dsi.be32(kDsiNxtIlvuSa);
  f.next_ilvu_size = dsi.be16(kDsiNxtIlvuSz);
  return f;
}

ByteView NavButtonCommand(ByteView record, std::uint32_t n) {
  return record.sub(kPciData + kPciButtons + kButtonSize * n + 10, 8);
}

namespace {

NavButton DecodeButton(ByteView b, std::uint32_t number) {
  NavButton button;
  button.number = number;
  button.color_group = b.u8(0) >> 6;
  button.x0 = static_cast<std::uint16_t>(((b.u8(0) & 0x3F) << 4) | (b.u8(1) >> 4));
  button.x1 = static_cast<std::uint16_t>(((b.u8(1) & 0x03) << 8) | b.u8(2));
  button.auto_action = b.u8(3) >> 6;
  button.y0 = static_cast<std::uint16_t>(((b.u8(3) & 0x3F) << 4) | (b.u8(4) >> 4));
  button.y1 = static_cast<std::uint16_t>(((b.u8(4) & 0x03) << 8) | b.u8(5));
  button.up = b.u8(6) & 0x3F;
  button.down = b.u8(7) & 0x3F;
  button.left = b.u8(8) & 0x3F;
  button.right = b.u8(9) & 0x3F;
  for (std::size_t i = 0; i < 8; ++i) button.command[i] = b.u8(10 + i);
  return button;
}

}  // namespace

HighlightInfo DecodeHighlight(ByteView record) {
  HighlightInfo h;
  ByteView pci = record.sub(kPciData);
  h.status = pci.be16(kPciHliSs) & 3;
  h.button_modes = pci.be16(kPciBtnMd);
  h.offset = pci.u8(kPciBtnOfn);
  h.count = pci.u8(kPciBtnNs) & 0x3F;
  h.selectable = pci.u8(kPciNslBtnNs) & 0x3F;
  h.forced_select = pci.u8(kPciFoslBtnn) & 0x3F;
  h.forced_action = pci.u8(kPciFoacBtnn) & 0x3F;
  for (std::size_t i = 0; i < h.colors.size(); ++i) h.colors[i] = pci.be32(kPciBtnColit + 4 * i);
  std::uint32_t count = h.count > kMaxButtons ? kMaxButtons : h.count;
  for (std::uint32_t n = 0; n < count; ++n) {
    h.buttons.push_back(DecodeButton(pci.sub(kPciButtons + kButtonSize * n, kButtonSize), n + 1));
  }
  return h;
}

std::vector<NavButton> DecodeButtonGroup(ByteView record, std::uint32_t group,
                                         std::uint32_t groups) {
  ByteView pci = record.sub(kPciData);
  std::uint32_t per_group = groups >= 1 && groups <= 3 ? kMaxButtons / groups : kMaxButtons;
  std::uint32_t first = group >= 1 && group <= 3 ? (group - 1) * per_group : 0;
  std::uint32_t count = std::min<std::uint32_t>(pci.u8(kPciBtnNs) & 0x3F, per_group);
  std::vector<NavButton> buttons;
  for (std::uint32_t n = 0; n < count; ++n) {
    buttons.push_back(
        DecodeButton(pci.sub(kPciButtons + kButtonSize * (first + n), kButtonSize), n + 1));
  }
  return buttons;
}

}  // namespace tarvex
