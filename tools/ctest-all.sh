#!/usr/bin/env bash
# Runs CTest with the given arguments and fails when any test did not run: skipped (a test that
# asked to be skipped, for instance for want of a tool or a file), disabled, or not built. A
# test that cannot run is a failure here, so that a machine missing something never passes
# quietly.
# Usage: tools/ctest-all.sh CTEST-ARGUMENTS...   (for instance --test-dir build -j2)
set -uo pipefail

log=$(mktemp)
trap 'rm -f "$log"' EXIT
ctest "$@" 2>&1 | tee "$log"
status=${PIPESTATUS[0]}

# CTest ends its summary with "The following tests did not run:" and one line per test,
# "<number> - <name> (Skipped|Disabled|Not Run...)".
if grep -q 'The following tests did not run:' "$log"; then
  echo
  echo "ctest-all.sh: tests that did not run count as failures:"
  sed -n '/The following tests did not run:/,/^$/p' "$log" | tail -n +2
  [ "$status" -ne 0 ] || status=1
fi
if ! grep -qE '^[0-9]+% tests passed' "$log"; then
  echo "ctest-all.sh: CTest printed no summary (no tests found?)"
  [ "$status" -ne 0 ] || status=1
fi
exit "$status"
