// Paths on this platform: the separator, the home folder that stands for "c:\", the suite
// configuration file, and case-insensitive look-up of files the system names itself.
#pragma once

#include <string>
#include <string_view>

namespace tarvex {

inline constexpr char kPathSeparator = '/';

// The user's home directory ($HOME, or "/" when unset): the default folder of the choosers.
std::string HomeDirectory();
// $XDG_CONFIG_HOME/ambrix/ambrix.ini ($XDG_CONFIG_HOME defaults to ~/.config).
std::string ConfigFilePath();
// Creates the folder that holds path, with its parents, if missing.
void EnsureParentDirectory(const std::string& path);

// Index of the last separator in path, or npos.
std::size_t LastSeparator(std::string_view path);
// The text before the last separator (empty when there is none).
std::string DirectoryPart(std::string_view path);
// The text after the last separator (the whole path when there is none).
std::string NamePart(std::string_view path);

// A file the system builds the name of (for instance "vts_01_1.vob" beside an output file):
// the exact name when it exists, otherwise the first file of that folder whose name matches
// without regard to case, in name order; empty when none.
std::string FindFileIgnoringCase(const std::string& path);
// The same, but empty unless the file found can be accessed.
std::string FindExistingFileIgnoringCase(const std::string& path);
// The path with its extension (the text after the last '.' of its name) replaced, or the
// extension appended after a '.' when the name has none.
std::string ReplaceExtension(const std::string& path, std::string_view extension);

}  // namespace tarvex
