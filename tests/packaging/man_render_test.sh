#!/usr/bin/env bash
# Each manual page renders without a single groff warning (groff -man -ww -z).
# Usage: man_render_test.sh PAGE...
set -uo pipefail
if ! command -v groff >/dev/null; then
  echo "FAIL: groff is not installed (tools/install-deps.sh test installs it)"
  exit 1
fi
status=0
for page in "$@"; do
  warnings=$(groff -man -ww -z "$page" 2>&1)
  if [ $? -ne 0 ] || [ -n "$warnings" ]; then
    echo "$page: groff warns:"
    echo "$warnings"
    status=1
  else
    echo "$page: renders without warnings"
  fi
done
exit $status
