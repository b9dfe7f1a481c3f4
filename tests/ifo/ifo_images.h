// Synthetic IFO images and program chains for the IFO tests.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace tarvex::test {

// A program chain of 318 bytes: 2 programs, 2 cells, one pre and one post command, a program
// map, cell playback and cell position tables (values listed in ifo_images.cpp).
std::vector<std::uint8_t> MakeSamplePgc();

// A VIDEO_TS.IFO image of one sector (two with a first-play chain): identifier, version 1.1,
// category 0x00010000, volumes 1/1 side 0, 1 title set, provider "TARVEX", the first-play
// chain (when given) at byte 1024, and the given start sectors (all 0 by default).
std::vector<std::uint8_t> MakeVmgImage(const std::vector<std::uint8_t>& first_play = {});

// A VTS_01_0.IFO image of one sector: identifier, version 1.1, category 0, one title audio
// stream and one sub-picture stream, no tables.
std::vector<std::uint8_t> MakeVtsImage();

// Appends table at the next sector boundary of image (padding the image with zeros first)
// and returns the table's start sector.
std::uint32_t AppendTable(std::vector<std::uint8_t>& image, const std::vector<std::uint8_t>& table);
// Puts table at sector of image (growing the image to whole sectors as needed) and stores
// the sector, big-endian, in the start-sector field at start_field of sector 0.
void PlaceTable(std::vector<std::uint8_t>& image, std::size_t start_field, std::uint32_t sector,
                const std::vector<std::uint8_t>& table);

// PlaceTable on a copy of image, returned.
std::vector<std::uint8_t> WithTableAt(std::vector<std::uint8_t> image, std::size_t start_field,
                                      std::uint32_t sector, const std::vector<std::uint8_t>& table);

// An information table image (MakeVtsImage or MakeVmgImage) with each table appended in turn
// (AppendTable) and its start sector stored big-endian at the given offset of the image.
std::vector<std::uint8_t> WithTables(
    std::vector<std::uint8_t> image,
    const std::vector<std::pair<std::size_t, std::vector<std::uint8_t>>>& tables);

// Writes text to path (an IfoSource), LF line ends.
void WriteText(const std::string& path, const std::string& text);

}  // namespace tarvex::test
