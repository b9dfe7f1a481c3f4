// State of the main window that outlives one event: whether the first paint has happened.
#pragma once

#include <cstdint>

namespace tarvex {

struct WindowState {
  std::int32_t first_paint_done = 0;  // 1 once the window was painted (the batch check ran)
};

}  // namespace tarvex
