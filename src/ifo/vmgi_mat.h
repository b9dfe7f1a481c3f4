// The video manager information management table (VMGI_MAT), the first table of
// VIDEO_TS.IFO, with its first-play program chain.
#pragma once

#include <cstdint>
#include <string>

#include "ifo/table.h"
#include "platform/file_io.h"
#include "state/context.h"

namespace tarvex {

inline constexpr std::size_t kVmgiImageSize = 2292;
inline constexpr std::size_t kFirstPlayOffset = 1024;
inline constexpr std::uint32_t kFirstPlayMaxSize = 1268;

extern const TableModule kVmgiMatModule;

// Reads the table at byte 0, checks its identifier, adds the heading and opens the video
// manager's other tables. Returns 1 for a video manager, 0 otherwise.
std::uint32_t OpenVideoManager(AppContext& ctx, File& ifo);
// The field report (clears the report list first).
void ReportVideoManager(AppContext& ctx);
// Section "vmgi_mat" (and "fp_pgci"); deletes an existing IfoSource first.
void DisassembleVideoManager(AppContext& ctx);
// Builds and writes the whole VIDEO_TS.IFO from the IfoSource into out.
void AssembleVideoManager(AppContext& ctx, File& out, const std::string& output_path);

}  // namespace tarvex
