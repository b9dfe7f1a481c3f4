// Reading the tables of an IFO into the disc model (used by LoadDisc).
#pragma once

#include <cstdint>

#include "disc/model.h"
#include "platform/bytes.h"

namespace tarvex {

// A program chain at offset of a table's bytes.
Pgc ReadPgc(ByteView table, std::uint32_t offset, std::uint32_t number, std::uint32_t category);
// A block of program chains: count, end address, (category, offset) pointers, the chains.
std::vector<Pgc> ReadChainBlock(ByteView block);
// A menu PGCI unit table with its language units.
std::vector<LanguageUnit> ReadMenuUnits(ByteView table);
// Cell address table and VOBU address map into a VOB set.
void ReadCellAddresses(ByteView table, VobSet& set);
void ReadVobuAddresses(ByteView table, VobSet& set);

// The information tables and everything they point to.
void ReadVideoManager(ByteView ifo, VideoManager& vmg);
void ReadTitleSetIfo(ByteView ifo, TitleSet& ts);

// The bytes of the table that starts at sector of ifo (to the end of the file; empty for 0 or
// a sector beyond it).
ByteView TableAt(ByteView ifo, std::uint32_t sector);

}  // namespace tarvex
