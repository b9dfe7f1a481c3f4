#!/usr/bin/env bash
# rip throughput and memory: builds a disc whose title VOBs hold about 1 GiB (the sample's title
# repeated by bench/make-long-disc.py, split at 1 GiB, several titles of 84 copies each), then
# times, in the same run,
#   - cp of every title VOB of the disc into a folder      (the same bytes copied: the limit),
#   - tarvex-cli rip DISC --title T -o FILE, every title    (each title in play order: together
#                                                           the same bytes as the VOBs),
#   - the same from the disc's ISO image (genisoimage -dvd-video, read through libudfread)
# and reports each one's median wall time over REPEAT runs (default 5) and peak memory, every
# earlier output removed before each run. Goal: rip at most 1.2 x cp, in constant memory.
#
# Usage: bench/rip_bench.sh [MIN_MB]      (default 1024)
# Environment: TARVEX_CLI (default build/tarvex-cli; use a Release build), BENCH_TMP (default
#   $TMPDIR or /tmp), BENCH_KEEP=1 keeps the temporary folder, REPEAT.
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
min_mb=${1:-1024}
cli=${TARVEX_CLI:-$here/build/tarvex-cli}
for tool in "$cli" python3 genisoimage /usr/bin/time; do
  command -v "$tool" >/dev/null || { echo "missing $tool" >&2; exit 1; }
done

work=$(mktemp -d "${BENCH_TMP:-${TMPDIR:-/tmp}}/tarvex-rip-bench.XXXXXX")
[ "${BENCH_KEEP:-0}" = 1 ] || trap 'rm -rf "$work"' EXIT

disc=$work/disc
python3 "$here/bench/make-long-disc.py" "$here/samples/disc" "$disc" "$min_mb"
genisoimage -quiet -dvd-video -V RIP_BENCH -o "$work/disc.iso" "$disc"
# Written again in large pieces so that every source is held alike in the page cache (see
# bench/verify_bench.sh).
for f in "$disc"/VIDEO_TS/* "$work/disc.iso"; do
  dd if="$f" of="$f.new" bs=64M status=none && mv "$f.new" "$f"
done
vobs=("$disc"/VIDEO_TS/VTS_01_[1-9].VOB)
bytes=$(cat "${vobs[@]}" | wc -c)
titles=$("$cli" info "$disc" --json | python3 -c 'import json,sys; print(len(json.load(sys.stdin)["titles"]))')
echo "title VOBs: ${#vobs[@]} files, $bytes bytes; $titles titles"
cat "${vobs[@]}" "$work/disc.iso" > /dev/null  # warm the page cache

dest=$work/out
cleanup='rm -rf "$dest"; mkdir -p "$dest"'
rip_all() {  # DISC: every title into $dest
  local t
  for ((t = 1; t <= titles; t++)); do "$cli" rip "$1" --title "$t" -o "$dest/t$t.vob" || return 1; done
}
export -f rip_all
export cli titles dest

REPEAT=${REPEAT:-5}
source "$here/bench/timing.sh"  # run NAME COMMAND...

run cp cp "${vobs[@]}" "$dest/"
run rip bash -c 'rip_all "$1"' bash "$disc"
run rip-iso bash -c 'rip_all "$1"' bash "$work/disc.iso"
ripped=$(cat "$dest"/*.vob | wc -c)
[ "$ripped" = "$bytes" ] || { echo "the rips hold $ripped bytes, the VOBs $bytes" >&2; exit 1; }

awk -v r="${results[*]}" 'BEGIN {
  n = split(r, f, " ");
  for (i = 1; i <= n; i += 3) { t[f[i]] = f[i + 1]; m[f[i]] = f[i + 2] }
  printf "rip / cp: %.2f (goal <= 1.2), image rip / cp: %.2f, peak %.1f MB\n",
         t["rip"] / t["cp"], t["rip-iso"] / t["cp"], (m["rip"] > m["rip-iso"] ? m["rip"] : m["rip-iso"]) / 1024
}'
