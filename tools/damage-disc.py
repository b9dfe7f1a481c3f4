#!/usr/bin/env python3
"""Makes damaged copies of a DVD-Video disc folder, each with one fault at a known place.

Usage: tools/damage-disc.py [--list] SOURCE OUT CASE...
  SOURCE  a folder holding VIDEO_TS (default cases are worked out on samples/disc)
  OUT     CASE folders are made in OUT: OUT/CASE/VIDEO_TS/...
  CASE    case names (see --list), or "all"

The offsets below are those of the bundled sample disc (samples/disc), read from its IFO
reports ("tarvex-cli ifo FILE TABLE") and its navigation packs ("tarvex-cli details"): an IFO
fault is written into the IFO and its backup (BUP) alike, so that only the fault itself is
found. tests/disc/damage_test.cpp holds the finding each case must give.
"""
import os
import shutil
import sys

SECTOR = 2048

# VTS_01_0.IFO of the sample: VTS_PTT_SRPT at sector 1, VTS_PGCIT at 2, VTS_TMAPT at 4,
# VTS_C_ADT at 7, VTS_VOBU_ADMAP at 8. The title chain lies 16 bytes into VTS_PGCIT; its
# command table, program map, cell playback and cell position tables at 236, 276, 280, 352.
VTS_PTT = 1 * SECTOR
VTS_PGC = 2 * SECTOR + 16
VTS_TMAPT = 4 * SECTOR
VTS_C_ADT = 7 * SECTOR
VTS_ADMAP = 8 * SECTOR
# VIDEO_TS.IFO: TT_SRPT at sector 1, VTS_ATRT at sector 3 (record 1 at byte 12 of it).
TT_ENTRY = 1 * SECTOR + 8
ATRT_RECORD = 3 * SECTOR + 12
# Navigation packs of VTS_01_1.VOB: PCI data at 45; the PCI packet is 980 bytes long, so the
# DSI data starts at 38 + 980 + 6 + 7 = 1031; VOBU search entries 20 (next) and 21
# (previous) at DSI + 234 + 4 * 20 and + 4 * 21.
PCI = 45
DSI = 1031


class Disc:
    def __init__(self, folder):
        self.folder = folder

    def path(self, name):
        return os.path.join(self.folder, name)

    def patch(self, name, offset, data):
        with open(self.path(name), 'r+b') as f:
            f.seek(offset)
            f.write(bytes(data))

    def read(self, name, offset, size):
        with open(self.path(name), 'rb') as f:
            f.seek(offset)
            return f.read(size)

    def be32(self, name, offset):
        return int.from_bytes(self.read(name, offset, 4), 'big')

    def ifo(self, name, offset, data):
        """An IFO fault, in the IFO and its backup alike."""
        self.patch(name, offset, data)
        self.patch(name[:-3] + 'BUP', offset, data)


def be16(v):
    return v.to_bytes(2, 'big')


def be32(v):
    return v.to_bytes(4, 'big')


def record(n, offset=0):
    return n * SECTOR + offset


def scr_bytes(base, ext=0):
    """Bytes 4-9 of an MPEG-2 pack header for an SCR."""
    return bytes([0x40 | ((base >> 27) & 0x38) | 0x04 | ((base >> 28) & 0x03),
                  (base >> 20) & 0xFF,
                  ((base >> 12) & 0xF8) | 0x04 | ((base >> 13) & 0x03),
                  (base >> 5) & 0xFF,
                  ((base << 3) & 0xF8) | 0x04 | ((ext >> 7) & 0x03),
                  ((ext << 1) & 0xFE) | 0x01])


def mux_bytes(rate):
    return bytes([(rate >> 14) & 0xFF, (rate >> 6) & 0xFF, ((rate & 0x3F) << 2) | 0x03])


def vobu_length(d):
    start = d.be32('VTS_01_1.VOB', record(30, PCI + 12))
    d.patch('VTS_01_1.VOB', record(30, PCI + 16), be32(start + 100000))  # 1.11 s


def stream_undeclared(d):
    # Record 4 is an MPEG audio pack of stream 0xC2; it becomes stream 0xC5.
    d.patch('VTS_01_1.VOB', record(4, 17), [0xC5])


def atrt_attributes(d):
    # The title video attributes of the title set's VTS_ATRT record (byte 264): 43 00 -> 47 00.
    d.ifo('VIDEO_TS.IFO', ATRT_RECORD + 264, [0x47])


CASES = {
    # name: (what, function on the copy)
    'bup-missing': ('VTS_01_0.BUP removed', lambda d: os.remove(d.path('VTS_01_0.BUP'))),
    'bup-differs': ('byte 100 of VTS_01_0.BUP changed',
                    lambda d: d.patch('VTS_01_0.BUP', 100, [0xFF])),
    'file-size': ('100 bytes appended to VTS_01_1.VOB',
                  lambda d: open(d.path('VTS_01_1.VOB'), 'ab').write(bytes(100))),
    'vob-numbering': ('a VTS_01_3.VOB without VTS_01_2.VOB',
                      lambda d: open(d.path('VTS_01_3.VOB'), 'wb').write(
                          d.read('VTS_01_1.VOB', 0, SECTOR))),
    'file-extra': ('a VTS_02_1.VOB while the video manager counts one title set',
                   lambda d: open(d.path('VTS_02_1.VOB'), 'wb').write(
                       d.read('VTS_01_1.VOB', 0, SECTOR))),
    'file-unknown': ('a README.TXT in VIDEO_TS',
                     lambda d: open(d.path('README.TXT'), 'w').write('notes\n')),
    'identifier': ('VTS_01_0.IFO identifier DVDVIDEO-VTX',
                   lambda d: d.ifo('VTS_01_0.IFO', 11, b'X')),
    'end-address': ('VTS_EA 1291 -> 1280 (the files need 1291)',
                    lambda d: d.ifo('VTS_01_0.IFO', 0x0C, be32(1280))),
    'table-outside': ('VMGI_MAT TXTDT_MG start sector 0 -> 7 (the IFO has 6 sectors)',
                      lambda d: d.ifo('VIDEO_TS.IFO', 212, be32(7))),
    'table-end': ('VTS_C_ADT end address 43 -> 47 (not a whole cell entry)',
                  lambda d: d.ifo('VTS_01_0.IFO', VTS_C_ADT + 4, be32(47))),
    'title-set-count': ('VMG_NS 1 -> 2', lambda d: d.ifo('VIDEO_TS.IFO', 62, be16(2))),
    'atrt-attributes': ('VTS_ATRT title video attributes 4300 -> 4700', atrt_attributes),
    'tt-title-set': ('TT_SRPT title 1 in title set 2',
                     lambda d: d.ifo('VIDEO_TS.IFO', TT_ENTRY + 6, [2])),
    'tt-title': ('TT_SRPT title 1 is title 2 of its set',
                 lambda d: d.ifo('VIDEO_TS.IFO', TT_ENTRY + 7, [2])),
    'tt-start-sector': ('TT_SRPT title 1 start sector 40 -> 41',
                        lambda d: d.ifo('VIDEO_TS.IFO', TT_ENTRY + 8, be32(41))),
    'tt-chapters': ('TT_SRPT title 1 chapters 3 -> 4',
                    lambda d: d.ifo('VIDEO_TS.IFO', TT_ENTRY + 2, be16(4))),
    'ptt-target': ('VTS_PTT_SRPT title 1 part 2: program 2 -> 5',
                   lambda d: d.ifo('VTS_01_0.IFO', VTS_PTT + 12 + 4 + 3, [5])),
    'pgc-programs': ('title chain: 4 programs, 3 cells',
                     lambda d: d.ifo('VTS_01_0.IFO', VTS_PGC + 2, [4])),
    'pgc-program-map': ('title chain: program 2 enters at cell 3 (as program 3)',
                        lambda d: d.ifo('VTS_01_0.IFO', VTS_PGC + 276 + 1, [3])),
    'pgc-cell-sectors': ('title chain cell 2: last VOBU 783 -> 860 (beyond its last sector 859)',
                         lambda d: d.ifo('VTS_01_0.IFO', VTS_PGC + 280 + 24 + 16, be32(860))),
    'pgc-cell-position': ('title chain cell 2 plays VOB 1 cell 5',
                          lambda d: d.ifo('VTS_01_0.IFO', VTS_PGC + 352 + 4 + 3, [5])),
    'pgc-links': ('title chain: next chain 0 -> 5',
                  lambda d: d.ifo('VTS_01_0.IFO', VTS_PGC + 0x9C, be16(5))),
    'pgc-command': ('title chain pre command 3: jump to title 5',
                    lambda d: d.ifo('VTS_01_0.IFO', VTS_PGC + 236 + 8 + 16,
                                    [0x30, 0x02, 0, 0, 0, 5, 0, 0])),
    'pgc-time': ('title chain playback time 8 s -> 9 s',
                 lambda d: d.ifo('VTS_01_0.IFO', VTS_PGC + 6, [0x09])),
    'pgc-stream-control': ('title chain: audio stream 4 made available (3 declared)',
                           lambda d: d.ifo('VTS_01_0.IFO', VTS_PGC + 0x0C + 6, be16(0x8300))),
    'c-adt-vob-count': ('VTS_C_ADT counts 2 VOBs, its cells name VOB 1 only',
                        lambda d: d.ifo('VTS_01_0.IFO', VTS_C_ADT, be16(2))),
    'admap-navpack': ('VTS_VOBU_ADMAP entry 4: 155 -> 156',
                      lambda d: d.ifo('VTS_01_0.IFO', VTS_ADMAP + 4 + 12, be32(156))),
    'admap-order': ('VTS_VOBU_ADMAP entry 17: 1154 -> 1300 (beyond the 1246 sectors)',
                    lambda d: d.ifo('VTS_01_0.IFO', VTS_ADMAP + 4 + 64, be32(1300))),
    'tmapt-entry': ('VTS_TMAPT map 1 entry 1: 77 -> 78',
                    lambda d: d.ifo('VTS_01_0.IFO', VTS_TMAPT + 12 + 4, be32(78))),
    'nav-lbn': ('record 30: PCI nv_pck_lbn 30 -> 31',
                lambda d: d.patch('VTS_01_1.VOB', record(30, PCI), be32(31))),
    'nav-vobu-end': ('record 30: vobu_ea 46 -> 47',
                     lambda d: d.patch('VTS_01_1.VOB', record(30, DSI + 8), be32(47))),
    'nav-next-vobu': ('record 30: next VOBU 47 -> 48 sectors on',
                      lambda d: d.patch('VTS_01_1.VOB', record(30, DSI + 234 + 80),
                                        be32(0x80000000 | 48))),
    'nav-previous-vobu': ('record 77: previous VOBU 47 -> 46 sectors back',
                          lambda d: d.patch('VTS_01_1.VOB', record(77, DSI + 234 + 84),
                                            be32(0x80000000 | 46))),
    'button-command': ('VTS_01_0.VOB record 0: button 1 jumps to title 5 of the title set',
                       lambda d: d.patch('VTS_01_0.VOB', record(0, PCI + 142 + 10 + 5), [5])),
    'nav-cell': ('record 470 (in cell 2): vobu_c_idn 2 -> 3',
                 lambda d: d.patch('VTS_01_1.VOB', record(470, DSI + 27), [3])),
    'vobu-length': ('record 30: vobu_e_ptm 1.11 s after vobu_s_ptm', vobu_length),
    'mux-rate': ('record 40: program_mux_rate 25201',
                 lambda d: d.patch('VTS_01_1.VOB', record(40, 10), mux_bytes(25201))),
    'scr-order': ('record 40: SCR 0', lambda d: d.patch('VTS_01_1.VOB', record(40, 4), scr_bytes(0))),
    'first-pack': ('record 0: the navigation pack becomes a padding pack (00 00 01 BE at 38)',
                   lambda d: d.patch('VTS_01_1.VOB', record(0, 38), [0, 0, 1, 0xBE])),
    'vob-pack': ('record 100: no pack start code',
                 lambda d: d.patch('VTS_01_1.VOB', record(100), bytes(4))),
    'stream-missing': ('title chain: audio stream 2 (LPCM) plays as stream number 3',
                       lambda d: d.ifo('VTS_01_0.IFO', VTS_PGC + 0x0C + 2, be16(0x8300))),
    'stream-undeclared': ('record 4: MPEG audio stream 0xC2 -> 0xC5', stream_undeclared),
    'stream-count': ('VTSI_MAT: 9 audio streams declared',
                     lambda d: d.ifo('VTS_01_0.IFO', 0x203, [9])),
}


def main(argv):
    if len(argv) >= 1 and argv[0] == '--list':
        for name, (what, _) in CASES.items():
            print(f'{name:20} {what}')
        return 0
    if len(argv) < 3:
        print(__doc__, file=sys.stderr)
        return 2
    source, out, names = argv[0], argv[1], argv[2:]
    if names == ['all']:
        names = list(CASES)
    video_ts = os.path.join(source, 'VIDEO_TS')
    if not os.path.isdir(video_ts):
        video_ts = source
    for name in names:
        if name not in CASES:
            print(f'damage-disc.py: unknown case {name}', file=sys.stderr)
            return 2
        target = os.path.join(out, name, 'VIDEO_TS')
        shutil.rmtree(os.path.join(out, name), ignore_errors=True)
        shutil.copytree(video_ts, target)
        for f in os.listdir(target):
            os.chmod(os.path.join(target, f), 0o644)
        CASES[name][1](Disc(target))
    return 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1:]))
