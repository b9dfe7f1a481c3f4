#!/usr/bin/env bash
# Pictures: times, in the same run,
#   - bitrate of one title over a disc whose title VOBs hold about 1 GiB (the sample's title
#     repeated by bench/make-long-disc.py, whose first title's parts are then pointed at every
#     chain in turn, so that title 1 plays all of them), against cat of the same VOBs;
#   - subpictures --png on a title with 1,500 sub-picture units (a 5-minute clip authored with
#     ffmpeg, spumux and dvdauthor: one unit of a 400 x 40 bar every 0.2 s);
#   - menus --png on the sample disc (two menus with two buttons each: five PNGs a menu).
# Each is the median wall time over REPEAT runs (default 3). Goals: bitrate at most 1.5 x cat,
# subpictures under 2 s, menus under 0.2 s a menu.
#
# Usage: bench/pictures_bench.sh [MIN_MB]      (default 1024)
# Environment: TARVEX_CLI (default build/tarvex-cli; use a Release build), BENCH_TMP (default
#   $TMPDIR or /tmp), BENCH_KEEP=1 keeps the temporary folder, REPEAT.
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
min_mb=${1:-1024}
cli=${TARVEX_CLI:-$here/build/tarvex-cli}
for tool in "$cli" python3 ffmpeg spumux dvdauthor /usr/bin/time; do
  command -v "$tool" >/dev/null || { echo "missing $tool" >&2; exit 1; }
done

work=$(mktemp -d "${BENCH_TMP:-${TMPDIR:-/tmp}}/tarvex-pictures-bench.XXXXXX")
[ "${BENCH_KEEP:-0}" = 1 ] || trap 'rm -rf "$work"' EXIT

# The long disc, written again in 64 MiB pieces (see verify_bench.sh).
disc=$work/disc
python3 "$here/bench/make-long-disc.py" "$here/samples/disc" "$disc" "$min_mb"
for f in "$disc"/VIDEO_TS/*; do dd if="$f" of="$f.new" bs=64M status=none && mv "$f.new" "$f"; done
# Title 1's parts: part k plays chain k (the last chain for the parts beyond the chains).
python3 - "$disc/VIDEO_TS/VTS_01_0.IFO" <<'PY'
import sys
path = sys.argv[1]
ifo = bytearray(open(path, 'rb').read())
ptt = int.from_bytes(ifo[0xC8:0xCC], 'big') * 2048
pgcit = int.from_bytes(ifo[0xCC:0xD0], 'big') * 2048
chains = int.from_bytes(ifo[pgcit:pgcit + 2], 'big')
first = ptt + int.from_bytes(ifo[ptt + 8:ptt + 12], 'big')
second = ptt + int.from_bytes(ifo[ptt + 12:ptt + 16], 'big')
for k, at in enumerate(range(first, second, 4)):
    ifo[at:at + 4] = min(k + 1, chains).to_bytes(2, 'big') + bytes([0, 1])
open(path, 'wb').write(ifo)
PY
vobs=("$disc"/VIDEO_TS/VTS_01_[1-9].VOB)

# The sub-picture disc: 1,500 units of one bar, 0.15 s each, one every 0.2 s.
spu=$work/spu
mkdir -p "$spu"
(
  cd "$spu"
  ffmpeg -v error -y -f lavfi -i testsrc=size=720x480:rate=30000/1001:duration=301 \
    -f lavfi -i anullsrc=r=48000:cl=stereo -t 301 -c:v mpeg2video -b:v 1M -g 15 -c:a ac3 -b:a 96k \
    -aspect 4:3 -muxrate 10080000 -packetsize 2048 -f dvd clip.mpg
  python3 - <<'PY'
import struct, zlib
w, h = 720, 480
rows = []
for y in range(h):
    row = bytearray(w * 4)
    if 400 <= y < 440:
        for x in range(160, 560):
            row[x * 4:x * 4 + 4] = b'\xff\xff\xff\xff' if y in (400, 439) or x in (160, 559) else b'\xff\x20\x20\xff'
    rows.append(b'\x00' + bytes(row))
def chunk(kind, data):
    return struct.pack('>I', len(data)) + kind + data + struct.pack('>I', zlib.crc32(kind + data))
png = b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', struct.pack('>IIBBBBB', w, h, 8, 6, 0, 0, 0))
png += chunk(b'IDAT', zlib.compress(b''.join(rows))) + chunk(b'IEND', b'')
open('bar.png', 'wb').write(png)
def t(s):
    return '%02d:%02d:%05.2f' % (s // 3600, s // 60 % 60, s % 60)
spus = ''.join('<spu start="%s" end="%s" image="bar.png"/>' % (t(0.5 + 0.2 * i), t(0.65 + 0.2 * i))
               for i in range(1500))
open('spu.xml', 'w').write('<subpictures><stream>' + spus + '</stream></subpictures>\n')
open('dvd.xml', 'w').write('<dvdauthor dest="out"><vmgm><menus><video format="ntsc"/></menus></vmgm>'
                           '<titleset><titles><video format="ntsc"/><subpicture lang="en"/>'
                           '<pgc><vob file="clip2.mpg"/></pgc></titles></titleset></dvdauthor>\n')
PY
  spumux -s 0 spu.xml <clip.mpg >clip2.mpg 2>spumux.log
  dvdauthor -x dvd.xml >dvdauthor.log 2>&1
)
units=$("$cli" subpictures "$spu/out" --title 1 --json | python3 -c 'import json, sys; print(len(json.load(sys.stdin)["units"]))')
title_bytes=$("$cli" bitrate "$disc" --title 1 --json |
  python3 -c 'import json, sys; print(sum(sum(i["bytes"].values()) for i in json.load(sys.stdin)["intervals"]))')
echo "long disc: ${#vobs[@]} title VOBs, title 1 counts $title_bytes bytes; sub-picture title: $units units"

bytes=$(cat "${vobs[@]}" | wc -c)
cat "${vobs[@]}" > /dev/null  # warm the page cache so every contender starts alike
source "$here/bench/timing.sh"  # run NAME COMMAND...

run cat sh -c 'cat "$@" > /dev/null' sh "${vobs[@]}"
run bitrate "$cli" bitrate "$disc" --title 1
cleanup="rm -rf '$work/png'"
run subpictures "$cli" subpictures "$spu/out" --title 1 --png "$work/png"
run menus "$cli" menus "$here/samples/disc" --png "$work/png"
menus=$("$cli" menus "$here/samples/disc" --json | python3 -c 'import json, sys; print(len(json.load(sys.stdin)))')

awk -v r="${results[*]}" -v menus="$menus" -v units="$units" 'BEGIN {
  n = split(r, f, " ");
  for (i = 1; i <= n; i += 3) { t[f[i]] = f[i + 1]; m[f[i]] = f[i + 2] }
  printf "bitrate / cat     = %.2f (goal <= 1.5)\n", t["bitrate"] / t["cat"];
  printf "subpictures       = %.2f s for %d units with PNGs (goal < 2)\n", t["subpictures"], units;
  printf "menus             = %.3f s a menu, %d menus (goal < 0.2)\n", t["menus"] / menus, menus;
}'
