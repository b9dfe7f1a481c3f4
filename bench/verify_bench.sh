#!/usr/bin/env bash
# verify throughput and memory: builds a disc whose title VOBs hold about 1 GiB (the sample's
# title repeated by bench/make-long-disc.py, split at 1 GiB, with every navigation pack and
# table rewritten so that the disc verifies clean), then times, in the same run,
#   - cat of every VOB of the disc > /dev/null       (reading alone: the physical limit),
#   - cat of the ISO image > /dev/null
#   - tarvex-cli verify DISC                         (IFOs and one pass over every VOB),
#   - tarvex-cli verify --ifo-only DISC              (the IFOs alone),
#   - tarvex-cli verify DISC.iso                     (the same disc as an ISO image, made by
#                                                     genisoimage -dvd-video, read through
#                                                     libudfread)
# and reports each one's median wall time over REPEAT runs (default 5) and peak memory.
# Goals: verify at most 2 x cat, peak memory under 32 MB, --ifo-only under 50 ms, the ISO at
# most 1.2 x the folder.
#
# Usage: bench/verify_bench.sh [MIN_MB]      (default 1024)
# Environment: TARVEX_CLI (default build/tarvex-cli; use a Release build), BENCH_TMP (default
#   $TMPDIR or /tmp), BENCH_KEEP=1 keeps the temporary folder, REPEAT.
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
min_mb=${1:-1024}
cli=${TARVEX_CLI:-$here/build/tarvex-cli}
for tool in "$cli" python3 genisoimage /usr/bin/time; do
  command -v "$tool" >/dev/null || { echo "missing $tool" >&2; exit 1; }
done

work=$(mktemp -d "${BENCH_TMP:-${TMPDIR:-/tmp}}/tarvex-verify-bench.XXXXXX")
[ "${BENCH_KEEP:-0}" = 1 ] || trap 'rm -rf "$work"' EXIT

disc=$work/disc
python3 "$here/bench/make-long-disc.py" "$here/samples/disc" "$disc" "$min_mb"
genisoimage -quiet -dvd-video -V VERIFY_BENCH -o "$work/disc.iso" "$disc"
# How fast cached pages copy out depends on how the file was written (a file written in small
# pieces is held in small pages and reads about half as fast as one written in large ones, cat
# included). Every file is written again in 64 MiB pieces so that the folder and the image
# start alike.
for f in "$disc"/VIDEO_TS/* "$work/disc.iso"; do
  dd if="$f" of="$f.new" bs=64M status=none && mv "$f.new" "$f"
done
vobs=("$disc"/VIDEO_TS/*.VOB)
bytes=$(cat "${vobs[@]}" | wc -c)
echo "VOBs: ${#vobs[@]} files, $bytes bytes; image: $(stat -c %s "$work/disc.iso") bytes"
echo "verify of the folder: $("$cli" verify "$disc" 2>&1 | tail -n 1)"
cat "${vobs[@]}" "$work/disc.iso" > /dev/null  # warm the page cache so every contender starts alike

REPEAT=${REPEAT:-5}
source "$here/bench/timing.sh"  # run NAME COMMAND...

run cat sh -c 'cat "$@" > /dev/null' sh "${vobs[@]}"
run cat-iso sh -c 'cat "$1" > /dev/null' sh "$work/disc.iso"
run verify "$cli" verify "$disc"
run iso "$cli" verify "$work/disc.iso"
run ifo-only "$cli" verify --ifo-only "$disc"
# /usr/bin/time counts hundredths of a second: --ifo-only is timed again over 50 runs.
t0=$(date +%s%N)
for ((r = 0; r < 50; r++)); do "$cli" verify --ifo-only "$disc" > /dev/null 2>&1; done
ifo_ms=$(awk -v n=$(( $(date +%s%N) - t0 )) 'BEGIN { printf "%.1f", n / 50 / 1e6 }')

awk -v r="${results[*]}" -v ifo_ms="$ifo_ms" 'BEGIN {
  n = split(r, f, " ");
  for (i = 1; i <= n; i += 3) { t[f[i]] = f[i + 1]; m[f[i]] = f[i + 2] }
  printf "verify / cat      = %.2f (goal <= 2)\n", t["verify"] / t["cat"];
  printf "verify peak       = %.1f MB (goal < 32)\n", m["verify"] / 1024;
  printf "iso / folder      = %.2f (goal <= 1.2)\n", t["iso"] / t["verify"];
  printf "iso / cat of iso  = %.2f\n", t["iso"] / t["cat-iso"];
  printf "iso peak          = %.1f MB\n", m["iso"] / 1024;
  printf "--ifo-only        = %s ms a run, process start included (goal < 50)\n", ifo_ms;
}'
