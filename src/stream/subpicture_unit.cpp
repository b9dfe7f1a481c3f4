#include "stream/subpicture_unit.h"

namespace tarvex {

void decode_subpicture_unit(AppContext&, std::uint32_t) {}

}  // namespace tarvex
