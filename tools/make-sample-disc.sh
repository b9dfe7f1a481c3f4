#!/usr/bin/env bash
# Builds the small NTSC sample disc under samples/disc/VIDEO_TS from generated
# test patterns and tones, with Debian's ffmpeg, spumux and dvdauthor:
#   - title 1: 8 s of 720x480 MPEG-2 video, chapters at 0, 3 and 6 s,
#     audio stream 0 AC-3, audio stream 1 LPCM (16 bit, 48 kHz, stereo),
#     audio stream 2 MPEG-1 Layer II, sub-picture stream 0 with two units;
#   - a video manager menu with two buttons (play the title, play chapter 3),
#     and the same menu as the title set's root menu.
# Usage: tools/make-sample-disc.sh [OUTPUT_DIR]   (default: samples/disc)
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
out=${1:-$here/samples/disc}

for tool in ffmpeg spumux dvdauthor; do
  command -v "$tool" >/dev/null || { echo "missing $tool (apt-get install ffmpeg dvdauthor)" >&2; exit 1; }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

# Keep every tool's output free of dates, versions and random numbers.
export SOURCE_DATE_EPOCH=0 VIDEO_FORMAT=NTSC
ff=(ffmpeg -nostdin -hide_banner -loglevel error -y)
bitexact=(-fflags +bitexact -flags:v +bitexact -flags:a +bitexact -map_metadata -1 -map_chapters -1)
video=(-c:v mpeg2video -pix_fmt yuv420p -s 720x480 -r 30000/1001 -aspect 4:3 -g 15 -bf 2
       -b:v 400k -maxrate 2000k -minrate 0 -bufsize 1835008 -dc 8)

# ---- title: picture, three audio streams ---------------------------------
"${ff[@]}" \
  -f lavfi -i "testsrc=size=720x480:rate=30000/1001:duration=8" \
  -f lavfi -i "sine=frequency=440:sample_rate=48000:duration=8" \
  -f lavfi -i "sine=frequency=660:sample_rate=48000:duration=8:samples_per_frame=320" \
  -f lavfi -i "sine=frequency=880:sample_rate=48000:duration=8" \
  -map 0:v -map 1:a -map 2:a -map 3:a \
  "${video[@]}" \
  -ac 2 -ar 48000 \
  -c:a:0 ac3 -b:a:0 96k \
  -c:a:1 pcm_s16be \
  -c:a:2 mp2 -b:a:2 64k \
  "${bitexact[@]}" -f dvd -muxrate 10080000 -packetsize 2048 title-raw.mpg

# Each audio stream needs its own stream number (the low three bits of its
# stream id); the muxer numbers every coding from 0, so renumber LPCM to 1
# and MPEG audio to 2 before authoring.
python3 - title-raw.mpg title-av.mpg <<'PY'
import sys
data = bytearray(open(sys.argv[1], 'rb').read())
i = 0
while i + 4 <= len(data):
    if data[i:i+3] != b'\0\0\1':
        i += 1
        continue
    sid = data[i+3]
    if sid == 0xBA:                      # MPEG-2 pack header
        i += 14 + (data[i+13] & 7)
        continue
    if sid == 0xB9:
        break
    length = (data[i+4] << 8) | data[i+5]
    if sid == 0xBD:
        sub = i + 9 + data[i+8]
        if data[sub] == 0xA0:
            data[sub] = 0xA1
    elif sid == 0xC0:
        data[i+3] = 0xC2
    i += 6 + length
open(sys.argv[2], 'wb').write(data)
PY

# ---- subtitles: two sub-picture units ------------------------------------
# Images of at most four colours (transparent, fill, outline), drawn
# pixel-exact so that spumux keeps them as they are.
png() { # name then rectangles "x y w h rrggbb[aa]" drawn in order
  python3 - "$@" <<'PY'
import struct, sys, zlib
name, rects = sys.argv[1], [r.split() for r in sys.argv[2:]]
w, h = 720, 480
rows = [bytearray(w * 4) for _ in range(h)]
for x, y, rw, rh, colour in rects:
    x, y, rw, rh = int(x), int(y), int(rw), int(rh)
    pixel = bytes.fromhex(colour if len(colour) == 8 else colour + 'ff')
    for row in rows[y:y + rh]:
        row[x * 4:(x + rw) * 4] = pixel * rw
raw = b''.join(b'\0' + bytes(r) for r in rows)
def chunk(kind, body):
    return struct.pack('>I', len(body)) + kind + body + struct.pack('>I', zlib.crc32(kind + body))
with open(name, 'wb') as f:
    f.write(b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', struct.pack('>IIBBBBB', w, h, 8, 6, 0, 0, 0))
            + chunk(b'IDAT', zlib.compress(raw, 9)) + chunk(b'IEND', b''))
PY
}
png sub1.png "160 380 400 40 000000" "164 384 392 32 ffffff"
png sub2.png "240 360 240 60 000000" "246 366 228 48 ffffff" "300 380 120 20 ff0000"
cat > subs.xml <<'XML'
<subpictures>
  <stream>
    <spu start="00:00:01.00" end="00:00:02.50" image="sub1.png" force="no"/>
    <spu start="00:00:04.00" end="00:00:05.50" image="sub2.png"/>
  </stream>
</subpictures>
XML
spumux -s 0 subs.xml < title-av.mpg > title.mpg 2> spumux-title.log
grep -q " 0 subtitles skipped" spumux-title.log || { cat spumux-title.log >&2; exit 1; }

# ---- menu: background with two buttons, highlight and select overlays ----
"${ff[@]}" \
  -f lavfi -i "color=c=0x203060:s=720x480:rate=30000/1001:duration=1" \
  -f lavfi -i "anullsrc=channel_layout=stereo:sample_rate=48000" \
  -map 0:v -map 1:a -t 1 \
  -vf "drawbox=x=200:y=160:w=320:h=60:color=0xC0C0C0:t=fill,drawbox=x=200:y=280:w=320:h=60:color=0xC0C0C0:t=fill" \
  "${video[@]}" -c:a ac3 -b:a 96k -ac 2 \
  "${bitexact[@]}" -f dvd -muxrate 10080000 -packetsize 2048 menu-av.mpg
# Button frames: highlight in yellow, select in red.
frames() { # name colour
  png "$1" "192 152 336 76 $2" "200 160 320 60 00000000" "192 272 336 76 $2" "200 280 320 60 00000000"
}
frames highlight.png ffff00
frames select.png ff0000
cat > menu.xml <<'XML'
<subpictures>
  <stream>
    <spu start="00:00:00.00" end="00:00:00.00" highlight="highlight.png" select="select.png" force="yes">
      <button name="play" x0="192" y0="152" x1="528" y1="228" down="chap3"/>
      <button name="chap3" x0="192" y0="272" x1="528" y1="348" up="play"/>
    </spu>
  </stream>
</subpictures>
XML
spumux -s 0 menu.xml < menu-av.mpg > menu.mpg 2> spumux-menu.log
grep -q " 0 subtitles skipped" spumux-menu.log || { cat spumux-menu.log >&2; exit 1; }

# ---- author the disc -----------------------------------------------------
cat > disc.xml <<'XML'
<dvdauthor>
  <vmgm>
    <menus>
      <video format="ntsc" aspect="4:3"/>
      <pgc entry="title">
        <vob file="menu.mpg" pause="inf"/>
        <button name="play">jump title 1;</button>
        <button name="chap3">g0=3; jump title 1;</button>
      </pgc>
    </menus>
  </vmgm>
  <titleset>
    <menus>
      <video format="ntsc" aspect="4:3"/>
      <pgc entry="root">
        <vob file="menu.mpg" pause="inf"/>
        <button name="play">jump title 1;</button>
        <button name="chap3">jump title 1 chapter 3;</button>
      </pgc>
    </menus>
    <titles>
      <video format="ntsc" aspect="4:3"/>
      <audio format="ac3" lang="en"/>
      <audio format="pcm" lang="fr"/>
      <audio format="mp2" lang="de"/>
      <subpicture lang="en"/>
      <pgc>
        <pre>if (g0 == 3) { g0 = 0; jump chapter 3; }</pre>
        <vob file="title.mpg" chapters="0,0:03,0:06"/>
        <post>call vmgm menu entry title;</post>
      </pgc>
    </titles>
  </titleset>
</dvdauthor>
XML
dvdauthor -o dvd -x disc.xml > dvdauthor.log 2>&1 || { cat dvdauthor.log >&2; exit 1; }
if grep -q '^ERR' dvdauthor.log; then grep '^ERR' dvdauthor.log >&2; exit 1; fi

rm -rf "$out"
mkdir -p "$out"
cp -r dvd/VIDEO_TS "$out/"
ls -l "$out/VIDEO_TS"
du -sh "$out"
