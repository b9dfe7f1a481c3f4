// Details of a navigation pack: pack and system header, PCI and DSI.
#pragma once

#include "platform/bytes.h"
#include "state/context.h"

namespace tarvex {

void ShowNavPackDetails(AppContext& ctx, ByteView record);

}  // namespace tarvex
