// Demultiplexing of the open program stream into elementary-stream files.
#pragma once

#include "app/context.h"

namespace tarvex {

void ExtractAudio(AppContext& ctx);
void ExtractVideo(AppContext& ctx);
void ExtractStills(AppContext& ctx);
void ExtractSubPictures(AppContext& ctx);

}  // namespace tarvex
