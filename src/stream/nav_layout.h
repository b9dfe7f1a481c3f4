// Where the fields of a navigation pack lie: the PCI and DSI packets and their fields, shared
// by the details view and by the readers that check navigation packs against the IFO tables.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarvex {

// Where the packets of a navigation pack lie (offsets from the start of the record).
inline constexpr std::size_t kPciStartCode = 38;
inline constexpr std::size_t kPciLength = 42;
inline constexpr std::size_t kPciSubStream = 44;
inline constexpr std::size_t kPciData = 45;
// The DSI packet follows the PCI packet directly: its start code lies at 38 + L + 6.
inline constexpr std::size_t kDsiAfterPciLength = kPciStartCode + 6;

// PCI fields (offsets from the PCI data).
inline constexpr std::size_t kPciNvPckLbn = 0;
inline constexpr std::size_t kPciVobuCat = 4;
inline constexpr std::size_t kPciVobuUopCtl = 8;
inline constexpr std::size_t kPciVobuSPtm = 12;
inline constexpr std::size_t kPciVobuEPtm = 16;
inline constexpr std::size_t kPciVobuSeEPtm = 20;
inline constexpr std::size_t kPciCEltm = 24;
inline constexpr std::size_t kPciNsmlAngles = 60;  // 9 x 4 bytes
inline constexpr std::size_t kPciHliSs = 96;
inline constexpr std::size_t kPciHliSPtm = 98;
inline constexpr std::size_t kPciHliEPtm = 102;
inline constexpr std::size_t kPciBtnSlEPtm = 106;
inline constexpr std::size_t kPciBtnMd = 110;
inline constexpr std::size_t kPciBtnOfn = 112;
inline constexpr std::size_t kPciBtnNs = 113;
inline constexpr std::size_t kPciNslBtnNs = 114;
inline constexpr std::size_t kPciFoslBtnn = 116;
inline constexpr std::size_t kPciFoacBtnn = 117;
inline constexpr std::size_t kPciBtnColit = 118;  // 3 x (selection, action) colour words
inline constexpr std::size_t kPciButtons = 142;   // 18 x 18 bytes
inline constexpr std::size_t kButtonSize = 18;
inline constexpr int kButtonCount = 18;

// DSI fields (offsets from the DSI data).
inline constexpr std::size_t kDsiNvPckScr = 0;
inline constexpr std::size_t kDsiNvPckLbn = 4;
inline constexpr std::size_t kDsiVobuEa = 8;
inline constexpr std::size_t kDsiVobu1stRefEa = 12;
inline constexpr std::size_t kDsiVobu2ndRefEa = 16;
inline constexpr std::size_t kDsiVobu3rdRefEa = 20;
inline constexpr std::size_t kDsiVobuVobIdn = 24;
inline constexpr std::size_t kDsiVobuCIdn = 27;
inline constexpr std::size_t kDsiCEltm = 28;
inline constexpr std::size_t kDsiSmlPbiCategory = 32;
inline constexpr std::size_t kDsiIlvuEa = 34;
inline constexpr std::size_t kDsiNxtIlvuSa = 38;
inline constexpr std::size_t kDsiNxtIlvuSz = 42;
inline constexpr std::size_t kDsiVobVSPtm = 44;
inline constexpr std::size_t kDsiVobVEPtm = 48;
inline constexpr std::size_t kDsiVobAStpPtm = 52;        // 8 x (4 + 4)
inline constexpr std::size_t kDsiVobAGapLen = 116;       // 8 x (4 + 4)
inline constexpr std::size_t kDsiSmlAgl = 180;           // 9 x (4 + 2)
inline constexpr std::size_t kDsiVobuSri = 234;          // 42 x 4
inline constexpr std::size_t kDsiSynciAudio = 402;       // 8 x 2
inline constexpr std::size_t kDsiSynciSubPicture = 418;  // 32 x 4

// VOBU search entries: the low 30 bits are the relative address; all ones means none.
inline constexpr std::uint32_t kSriAddressMask = 0x3FFFFFFF;
inline constexpr int kSriNextWithVideo = 0;
inline constexpr int kSriNextFirstStep = 1;  // 1..19: 120 s down to 0.5 s
inline constexpr int kSriNextPossibleVideo = 20;
inline constexpr int kSriPreviousPossibleVideo = 21;
inline constexpr int kSriPreviousSmallestStep = 22;  // 22..40: 0.5 s up to 120 s
inline constexpr int kSriPreviousWithVideo = 41;

}  // namespace tarvex
