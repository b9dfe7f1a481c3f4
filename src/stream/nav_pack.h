// Details of a navigation pack: pack and system header, PCI and DSI.
#pragma once

#include "app/context.h"
#include "platform/bytes.h"

namespace tarvex {

void ShowNavPackDetails(AppContext& ctx, ByteView record);

}  // namespace tarvex
