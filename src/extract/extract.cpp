#include "extract/extract.h"

namespace tarvex {

void ExtractAudio(AppContext&) {}
void ExtractVideo(AppContext&) {}
void ExtractStills(AppContext&) {}
void ExtractSubPictures(AppContext&) {}

}  // namespace tarvex
