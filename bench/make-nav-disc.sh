#!/usr/bin/env bash
# Authors a disc for the navigation benchmarks (bench/nav_bench.sh) with ffmpeg, spumux and
# dvdauthor: one title set of 99 titles (the most a title set holds), each one chain playing its
# own copy of one 0.5 s clip, and a video manager title menu of four buttons:
#   button 1: jump title 1     button 2: jump title 33     button 3: jump title 66
#   button 4: g1 = 1; jump title 99
# First play jumps to the title menu. Title N's post command jumps to title N + 1; title 99's
# goes back to title 1 once when g1 is 1 (clearing it), else calls the title menu. Playing with
# the default keys thus enters every title's cell once and comes back to the menu: a loop.
# Usage: bench/make-nav-disc.sh OUTPUT_DIR      (writes OUTPUT_DIR/VIDEO_TS, replacing it)
set -euo pipefail

[ $# -eq 1 ] || { echo "usage: $0 OUTPUT_DIR" >&2; exit 2; }
mkdir -p "$1"
out=$(cd "$1" && pwd)
titles=99
for tool in ffmpeg spumux dvdauthor python3; do
  command -v "$tool" >/dev/null || { echo "missing $tool (tools/install-deps.sh sample)" >&2; exit 1; }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
export SOURCE_DATE_EPOCH=0 VIDEO_FORMAT=NTSC
ff=(ffmpeg -nostdin -hide_banner -loglevel error -y)
video=(-c:v mpeg2video -pix_fmt yuv420p -s 720x480 -r 30000/1001 -aspect 4:3 -g 15 -bf 2
       -b:v 400k -maxrate 2000k -minrate 0 -bufsize 1835008)
audio=(-c:a ac3 -b:a 96k -ac 2 -ar 48000)
mux=(-fflags +bitexact -map_metadata -1 -f dvd -muxrate 10080000 -packetsize 2048)

# ---- the clip every title plays ------------------------------------------
"${ff[@]}" -f lavfi -i "testsrc=size=720x480:rate=30000/1001:duration=0.5" \
  -f lavfi -i "sine=frequency=440:sample_rate=48000:duration=0.5" \
  -map 0:v -map 1:a "${video[@]}" "${audio[@]}" "${mux[@]}" clip.mpg

# ---- the menu: four grey buttons, yellow highlight, red select -----------
"${ff[@]}" -f lavfi -i "color=c=0x203060:s=720x480:rate=30000/1001:duration=1" \
  -f lavfi -i "anullsrc=channel_layout=stereo:sample_rate=48000" -map 0:v -map 1:a -t 1 \
  -vf "$(for y in 80 180 280 380; do printf 'drawbox=x=200:y=%d:w=320:h=60:color=0xC0C0C0:t=fill,' "$y"; done | sed 's/,$//')" \
  "${video[@]}" "${audio[@]}" "${mux[@]}" menu-av.mpg
# A 720x480 PNG of four button frames in one colour (transparent elsewhere).
python3 - <<'PY'
import struct, zlib
def png(name, colour):
    w, h = 720, 480
    rows = [bytearray(w * 4) for _ in range(h)]
    for y in (80, 180, 280, 380):
        for row in rows[y - 6:y] + rows[y + 60:y + 66]:
            row[194 * 4:526 * 4] = colour * 332
        for row in rows[y:y + 60]:
            row[194 * 4:200 * 4] = colour * 6
            row[520 * 4:526 * 4] = colour * 6
    raw = b''.join(b'\0' + bytes(r) for r in rows)
    def chunk(kind, body):
        return struct.pack('>I', len(body)) + kind + body + struct.pack('>I', zlib.crc32(kind + body))
    with open(name, 'wb') as f:
        f.write(b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', struct.pack('>IIBBBBB', w, h, 8, 6, 0, 0, 0))
                + chunk(b'IDAT', zlib.compress(raw, 9)) + chunk(b'IEND', b''))
png('highlight.png', bytes.fromhex('ffff00ff'))
png('select.png', bytes.fromhex('ff0000ff'))
PY
{
  echo '<subpictures><stream>'
  echo '  <spu start="00:00:00.00" end="00:00:00.00" highlight="highlight.png" select="select.png" force="yes">'
  for b in 1 2 3 4; do
    y=$((80 + (b - 1) * 100))
    echo "    <button name=\"b$b\" x0=\"192\" y0=\"$((y - 8))\" x1=\"528\" y1=\"$((y + 68))\"/>"
  done
  echo '  </spu>'
  echo '</stream></subpictures>'
} > menu.xml
spumux -s 0 menu.xml < menu-av.mpg > menu.mpg 2> spumux-menu.log ||
  { cat spumux-menu.log >&2; exit 1; }

# ---- author the disc -----------------------------------------------------
{
  cat <<'XML'
<dvdauthor>
  <vmgm>
    <fpc>jump vmgm menu entry title;</fpc>
    <menus>
      <video format="ntsc" aspect="4:3"/>
      <pgc entry="title">
        <vob file="menu.mpg" pause="inf"/>
        <button name="b1">jump title 1;</button>
        <button name="b2">jump title 33;</button>
        <button name="b3">jump title 66;</button>
        <button name="b4">g1 = 1; jump title 99;</button>
      </pgc>
    </menus>
  </vmgm>
  <titleset>
    <titles>
      <video format="ntsc" aspect="4:3"/>
      <audio format="ac3" lang="en"/>
XML
  for ((t = 1; t <= titles; t++)); do
    if ((t < titles)); then
      post="jump title $((t + 1));"
    else
      post="if (g1 == 1) { g1 = 0; jump title 1; } call vmgm menu entry title;"
    fi
    # A name of its own per title: dvdauthor writes a file named twice only once, and the titles
    # would share their cells.
    ln -f clip.mpg "clip$t.mpg"
    echo "      <pgc><vob file=\"clip$t.mpg\"/><post>$post</post></pgc>"
  done
  echo '    </titles>'
  echo '  </titleset>'
  echo '</dvdauthor>'
} > disc.xml
dvdauthor -o dvd -x disc.xml > dvdauthor.log 2>&1 || { cat dvdauthor.log >&2; exit 1; }
if grep -q '^ERR' dvdauthor.log; then grep '^ERR' dvdauthor.log >&2; exit 1; fi

rm -rf "$out/VIDEO_TS"
cp -r dvd/VIDEO_TS "$out/"
echo "$out/VIDEO_TS: $titles titles, $(du -sh "$out/VIDEO_TS" | cut -f1)"
