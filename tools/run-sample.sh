#!/usr/bin/env bash
# Installs what is missing, builds tarvex-cli and shows it at work on the bundled sample disc:
# the first page of the title VOB, the details of its first navigation pack and of its first
# video pack, the overview of the video manager IFO, then the whole disc: what is on it (info)
# and its check (verify).
# Usage: tools/run-sample.sh    (build directory: build-sample/)
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install-deps.sh build
echo "Building tarvex-cli in build-sample/ (log: build-sample/build.log) ..."
mkdir -p build-sample
if ! { cmake -S . -B build-sample -G Ninja -DCMAKE_BUILD_TYPE=Release -DTARVEX_TESTS=OFF &&
       ninja -C build-sample -j"${JOBS:-2}" tarvex-cli; } >build-sample/build.log 2>&1; then
  tail -n 40 build-sample/build.log
  echo "build failed; the whole log is build-sample/build.log" >&2
  exit 1
fi

cli=build-sample/tarvex-cli
disc=samples/disc/VIDEO_TS
status=0
run() {
  echo
  echo "\$ tarvex-cli $*"
  local rc=0
  "$cli" "$@" || rc=$?
  # 1 only says that a message box was shown; 2 and above are failures.
  if [ "$rc" -ge 2 ]; then
    echo "(exit status $rc)"
    status=1
  fi
}
run open "$disc/VTS_01_1.VOB"
run details "$disc/VTS_01_1.VOB" 0
run details "$disc/VTS_01_1.VOB" 1
run ifo "$disc/VIDEO_TS.IFO"
run info samples/disc
run verify samples/disc
exit $status
