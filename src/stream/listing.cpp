#include "stream/listing.h"

namespace tarvex {

void list_page(AppContext&, std::uint32_t, std::uint32_t) {}
void ScrollLineDown(AppContext&, std::int32_t) {}
void ScrollLineUp(AppContext&, std::int32_t) {}
void ScrollPageDown(AppContext&, std::int32_t) {}
void ScrollPageUp(AppContext&, std::int32_t) {}
void ScrollThumbReleased(AppContext&, std::int32_t) {}
void ScrollEnded(AppContext&) {}
void SelectRecordForHex(AppContext&) {}

}  // namespace tarvex
