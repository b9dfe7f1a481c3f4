// The damaged ranges of a GNU ddrescue mapfile mapped onto an image's files: one image.damaged
// finding per file and range at the record that holds the range's first damaged byte, naming
// for a VOB the title sets, titles, cells and title times it hits; a range that lies in no
// file is one finding of its own, at its first image sector.
#pragma once

#include <vector>

#include "archive/mapfile.h"
#include "disc/findings.h"
#include "disc/model.h"

namespace tarvex {

void AddDamageFindings(const Disc& disc, const std::vector<MapBlock>& damaged, Findings& out);

}  // namespace tarvex
