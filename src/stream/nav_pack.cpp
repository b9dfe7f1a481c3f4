#include "stream/nav_pack.h"

namespace tarvex {

void ShowNavPackDetails(AppContext&, ByteView) {}

}  // namespace tarvex
