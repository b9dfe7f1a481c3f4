// The folder a chooser starts in, remembered in the suite configuration file under a key of
// its own (kvln_path for the Open and Assemble choosers).
#pragma once

#include <string>

#include "platform/profile.h"

namespace tarvex {

// The remembered folder under key. When the key is missing (its value reads as "0..."),
// current is written under it and returned; an empty value is a remembered empty folder.
std::string ReadLastPath(ProfileStore& profiles, const std::string& current, const char* key);
// Remembers the folder of chosen_path (the text before its last separator) under key.
void WriteLastPath(ProfileStore& profiles, const std::string& chosen_path, const char* key);

}  // namespace tarvex
