// The details view of one record: pack and PES headers and the elementary-stream details.
#pragma once

#include "state/context.h"

namespace tarvex {

// Clears the list and shows the details of record page_end.
void ShowRecordDetails(AppContext& ctx);

}  // namespace tarvex
