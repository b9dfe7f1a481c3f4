// Demultiplexing of the open program stream into elementary-stream files: every audio stream
// into its own AC-3, WAV or MPEG audio file, the video into one M2V file, menu stills into
// numbered M2V files and sub-picture units into numbered SUP files. Output files are asked for
// through the save chooser of the user interface; progress and errors go to the report list.
#pragma once

#include "state/context.h"

namespace tarvex {

void ExtractAudio(AppContext& ctx);
void ExtractVideo(AppContext& ctx);
void ExtractStills(AppContext& ctx);
void ExtractSubPictures(AppContext& ctx);

}  // namespace tarvex
