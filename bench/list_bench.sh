#!/usr/bin/env bash
# Times the listing of every record of a large program stream against reading it with cat.
#
#   bench/list_bench.sh [VOB] [MEGABYTES]
#
# Builds a stream of at least MEGABYTES (default 1024, at least 512) by repeating VOB
# (default: the sample disc's title VOB) in a temporary folder, then times
#   cat FILE > /dev/null
#   list_all FILE        (every record through ListPage, page by page, lines discarded)
# and prints both times and their ratio. Both runs read a file already in the page cache.
set -euo pipefail

root="$(cd "$(dirname "$0")/.." && pwd)"
vob="${1:-$root/samples/disc/VIDEO_TS/VTS_01_1.VOB}"
megabytes="${2:-1024}"
if [[ ! -f "$vob" ]]; then
  echo "no such file: $vob" >&2
  exit 2
fi
if (( megabytes < 512 )); then megabytes=512; fi

build="$root/build-bench"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTARVEX_BENCH=ON \
  -DTARVEX_TESTS=OFF -DTARVEX_CLI=OFF > /dev/null
ninja -C "$build" list_all > /dev/null

tmp="$(mktemp -d)"
trap 'rm -rf "$tmp"' EXIT
big="$tmp/BIG.VOB"
want=$(( megabytes * 1024 * 1024 ))
# Whole copies of the VOB, so the stream stays a sequence of whole packs.
: > "$big"
size=0
vob_size=$(stat -c %s "$vob")
if (( vob_size == 0 )); then
  echo "empty file: $vob" >&2
  exit 2
fi
while (( size < want )); do
  cat "$vob" >> "$big"
  size=$(( size + vob_size ))
done
echo "stream: $big, $size bytes ($(( size / 2048 )) records) from $vob"

now() { date +%s.%N; }
cat "$big" > /dev/null  # into the page cache

t0=$(now); cat "$big" > /dev/null; t1=$(now)
"$build/bench/list_all" "$big"
t2=$(now)

awk -v c0="$t0" -v c1="$t1" -v l1="$t2" 'BEGIN {
  cat = c1 - c0; list = l1 - c1;
  printf "cat FILE > /dev/null: %.3f s\n", cat;
  printf "ListPage, every record: %.3f s\n", list;
  printf "ratio list/cat: %.1f\n", (cat > 0 ? list / cat : 0);
}'
