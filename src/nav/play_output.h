// What play prints: the trace an author reads top to bottom, or one JSON object.
#pragma once

#include <string>

#include "disc/model.h"
#include "nav/machine.h"

namespace tarvex::nav {

// The trace: each chain entered, each command with its text and what it did, each cell played,
// each key consumed, the end with its reason. with_registers adds the registers each command
// changed.
std::string PlayText(const PlayResult& result, bool with_registers);

// {"disc", "keys", "cells", "commands", "end", "end_reason", "first_title"}.
std::string PlayJson(const Disc& disc, const PlayResult& result);

}  // namespace tarvex::nav
