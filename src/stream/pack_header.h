// The pack header lines that every details printer starts with, and the system header lines
// of navigation packs.
#pragma once

#include "platform/bytes.h"
#include "state/context.h"

namespace tarvex {

// "pack_start_code %lx", the SCR line and the program_mux_rate line.
void ShowPackHeaderLines(AppContext& ctx, ByteView record);

// A " " line, then the system header at offset 14 read at fixed offsets, with exactly four
// stream entries whatever header_length says.
void ShowSystemHeaderLines(AppContext& ctx, ByteView record);

}  // namespace tarvex
