// verify: the IFOs checked against each other and, unless only the IFOs are asked for, against
// the packs actually in the VOBs (one sequential pass over every VOB).
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "disc/findings.h"
#include "disc/model.h"

namespace tarvex {

struct VerifyOptions {
  bool ifo_only = false;
  // Checks of a layer above the disc model (the navigation analysis), run with the IFO checks.
  std::function<void(const Disc&, Findings&)> more_checks = {};
};

struct VerifyResult {
  std::vector<Finding> findings;
  std::size_t errors = 0, warnings = 0, infos = 0;
};

VerifyResult VerifyDisc(const Disc& disc, const VerifyOptions& options = {});

// One line per finding: "SEVERITY FILE[:TABLE[#ENTRY]|@RECORD] CHECK: message".
std::string VerifyText(const VerifyResult& result);
// {"disc", "findings": [...], "errors", "warnings", "infos"}.
std::string VerifyJson(const std::string& disc_path, const VerifyResult& result);
// The checks: "ID SEVERITY explanation" per line, or as JSON.
std::string ListChecksText();
std::string ListChecksJson();

}  // namespace tarvex
