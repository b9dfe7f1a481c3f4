// State of the IFO table modules: each module keeps its table image and counts here while an
// IFO is open or assembled.
#pragma once

namespace tarvex {

struct IfoState {};

}  // namespace tarvex
