#include "stream/nav_fields.h"

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
  return f;
}

ByteView NavButtonCommand(ByteView record, std::uint32_t n) {
  return record.sub(kPciData + kPciButtons + kButtonSize * n + 10, 8);
}

}  // namespace tarvex
