// Tests of files that cannot be read: a process whose euid is 0 reads any file whatever its
// permissions, through the capabilities CAP_DAC_OVERRIDE and CAP_DAC_READ_SEARCH. These helpers
// run the code under test in a child process without them, so that a file with mode 0 stops
// it as it stops every other user, whether the tests run as root or not.
#pragma once

#include <functional>
#include <string>

namespace tarvex::test {

// Drops CAP_DAC_OVERRIDE and CAP_DAC_READ_SEARCH from this process: from its effective,
// permitted and inheritable sets and its ambient set, and, when it runs as root, from its
// bounding set so that a program it executes does not get them back. Returns an empty text,
// or why the capabilities could not be dropped. Meant for a child process.
std::string DropFileAccessOverride();

// Runs fn in a child process that has dropped those capabilities and returns the text fn
// returned there, or "child: " and what went wrong.
std::string RunWithoutFileAccessOverride(const std::function<std::string()>& fn);

}  // namespace tarvex::test
