// Listing a page of records, paging with the scroll bar, and record selection for the hex view.
#pragma once

#include <cstdint>
#include <string_view>

#include "state/context.h"

namespace tarvex {

// Clears the list and lists records first .. end-1 (for an IFO: the IFO report).
void ListPage(AppContext& ctx, std::uint32_t first, std::uint32_t end);

// Scroll bar events, as the window sends them.
void ScrollLineDown(AppContext& ctx, std::int32_t current_position);
void ScrollLineUp(AppContext& ctx, std::int32_t current_position);
void ScrollPageDown(AppContext& ctx, std::int32_t current_position);
void ScrollPageUp(AppContext& ctx, std::int32_t current_position);
void ScrollThumbReleased(AppContext& ctx, std::int32_t position);
void ScrollEnded(AppContext& ctx);

// Back from a record view (hex or details) to the listing: the page ending one record after
// the viewed one, or the first page while page_end is below 16.
void ListPageAfterView(AppContext& ctx);

// The record number a listing line starts with: its first 6 characters ("%06d") read as a
// decimal number the way atol reads them, wrapping at 32 bits. Details and HEX both take the
// record to show from the selected line this way.
std::uint32_t RecordNumberOfLine(std::string_view line);

// The HEX command: toggles between the page and the hex view of the selected record.
void SelectRecordForHex(AppContext& ctx);

}  // namespace tarvex
