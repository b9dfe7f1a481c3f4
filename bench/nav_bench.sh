#!/usr/bin/env bash
# Navigation speed: authors a disc of 99 titles and a title menu (bench/make-nav-disc.sh), then
# times, in the same run,
#   - tarvex-cli play DISC           (the navigation machine from first play with the default
#                                     keys: every title's cell once, back to the menu, a loop),
#   - tarvex-cli graph DISC          (the navigation graph as DOT),
#   - tarvex-cli graph DISC --svg F  (the same graph laid out and drawn by Graphviz's library)
# and reports each one's median wall time over REPEAT runs (default 5) and peak memory; then,
# since /usr/bin/time counts hundredths of a second, play and graph again over 20 runs each.
# Goals: play and graph under 0.2 s each.
#
# Usage: bench/nav_bench.sh
# Environment: TARVEX_CLI (default build/tarvex-cli; use a Release build), BENCH_TMP (default
#   $TMPDIR or /tmp), BENCH_KEEP=1 keeps the temporary folder, REPEAT.
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
cli=${TARVEX_CLI:-$here/build/tarvex-cli}
for tool in "$cli" /usr/bin/time; do
  command -v "$tool" >/dev/null || { echo "missing $tool" >&2; exit 1; }
done

work=$(mktemp -d "${BENCH_TMP:-${TMPDIR:-/tmp}}/tarvex-nav-bench.XXXXXX")
[ "${BENCH_KEEP:-0}" = 1 ] || trap 'rm -rf "$work"' EXIT

disc=$work/disc
"$here/bench/make-nav-disc.sh" "$disc"
# The IFOs are what navigation reads (MB/s below is over them).
bytes=$(cat "$disc"/VIDEO_TS/*.IFO | wc -c)
cat "$disc"/VIDEO_TS/* > /dev/null  # into the page cache
echo "play: $("$cli" play "$disc" 2>&1 | tail -n 1)"
echo "graph: $("$cli" graph "$disc" | grep -c -- '->') edges"

REPEAT=${REPEAT:-5}
cleanup='rm -f "$work/graph.svg"'
source "$here/bench/timing.sh"  # run NAME COMMAND...

run play "$cli" play "$disc"
run graph "$cli" graph "$disc"
run graph-svg "$cli" graph "$disc" --svg "$work/graph.svg"

# Mean milliseconds a run, process start included.
mean_ms() {
  local t0 r
  t0=$(date +%s%N)
  for ((r = 0; r < 20; r++)); do "$@" > /dev/null 2>&1; done
  awk -v n=$(( $(date +%s%N) - t0 )) 'BEGIN { printf "%.1f", n / 20 / 1e6 }'
}
play_ms=$(mean_ms "$cli" play "$disc")
graph_ms=$(mean_ms "$cli" graph "$disc")
svg_ms=$(mean_ms "$cli" graph "$disc" --svg "$work/graph.svg")
verify_ms=$(mean_ms "$cli" verify "$disc" --ifo-only)
echo "play        = $play_ms ms a run (goal < 200)"
echo "graph       = $graph_ms ms a run (goal < 200)"
echo "graph --svg = $svg_ms ms a run"
echo "verify --ifo-only = $verify_ms ms a run (the navigation checks included)"
# What the navigation checks add, measured inside one process (bench/nav_checks_bench.cpp):
# the disc loaded and its IFOs checked, without and with the navigation analysis.
checks=$(dirname "$cli")/bench/nav_checks_bench
if [ -x "$checks" ]; then
  "$checks" "$disc" 50 | tee "$work/checks.txt"
  added=$(awk '/with the navigation checks/ { w = $5 } /load and check/ { p = $6 }
               END { printf "%.3f", w - p }' "$work/checks.txt")
  awk -v a="$added" -v v="$verify_ms" \
    'BEGIN { printf "navigation checks: %.3f ms of the command'"'"'s %.1f ms (%.1f %%, goal under 10 %%)\n", a, v, 100 * a / v }'
fi
awk -v p="$play_ms" -v g="$graph_ms" 'BEGIN { exit !(p < 200 && g < 200) }' ||
  { echo "nav_bench: a goal is missed" >&2; exit 1; }
