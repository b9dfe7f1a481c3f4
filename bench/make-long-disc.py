#!/usr/bin/env python3
"""Builds a DVD-Video disc whose title VOBs hold at least MIN_MB MiB, for timing verify.

Usage: bench/make-long-disc.py SAMPLE OUT [MIN_MB]
  SAMPLE  the folder holding the sample's VIDEO_TS (samples/disc)
  OUT     the new disc: OUT/VIDEO_TS/...
  MIN_MB  size of the title VOBs, default 1024

The sample's title VOB (8 s, 3 cells, 17 VOBUs) is repeated. Copy k is VOB id k // 2 + 1; the
second copy of a VOB has its cells numbered 4 to 6 and its clock references moved on by 10 s,
so that the clock never goes back within a VOB. Every navigation pack gets its own sector,
VOB id and cell id; the VOBU pointers and end addresses are relative and stay. The title VOBs
are split at 1 GiB. Title set 1 gets one title per 84 copies (one chain of 252 cells and 84
programs, one chapter a copy) with new VTS_PTT_SRPT, VTS_PGCIT, VTS_C_ADT and VTS_VOBU_ADMAP
tables (no time map); the menus and the video manager's menus are the sample's. The result
verifies without findings, so the timing is that of a clean disc.
"""
import os
import shutil
import sys

SECTOR = 2048
PCI, DSI = 45, 1031
COPIES_PER_TITLE = 84
MAX_FILE_RECORDS = (1 << 30) // SECTOR
SCR_SHIFT = 10 * 90000  # 90 kHz ticks


def be16(v):
    return v.to_bytes(2, 'big')


def be32(v):
    return v.to_bytes(4, 'big')


def scr_base(p):
    b4, b5, b6, b7, b8 = p[4:9]
    return (((b4 >> 3) & 7) << 30) | ((b4 & 3) << 28) | (b5 << 20) | ((b6 >> 3) << 15) | \
        ((b6 & 3) << 13) | (b7 << 5) | (b8 >> 3)


def put_scr_base(p, base):
    ext_bits = p[8] & 0x03
    p[4] = 0x40 | ((base >> 27) & 0x38) | 0x04 | ((base >> 28) & 0x03)
    p[5] = (base >> 20) & 0xFF
    p[6] = ((base >> 12) & 0xF8) | 0x04 | ((base >> 13) & 0x03)
    p[7] = (base >> 5) & 0xFF
    p[8] = ((base << 3) & 0xF8) | 0x04 | ext_bits


def pad(table):
    return table + bytes(-len(table) % SECTOR)


class Sample:
    def __init__(self, video_ts):
        self.vob = bytearray(open(os.path.join(video_ts, 'VTS_01_1.VOB'), 'rb').read())
        self.ifo = bytearray(open(os.path.join(video_ts, 'VTS_01_0.IFO'), 'rb').read())
        self.records = len(self.vob) // SECTOR
        self.navs = [r for r in range(self.records)
                     if self.vob[r * SECTOR + 14:r * SECTOR + 18] == b'\x00\x00\x01\xbb'
                     and self.vob[r * SECTOR + 38:r * SECTOR + 42] == b'\x00\x00\x01\xbf']
        pgcit = self.table(0xCC)
        self.pgc = pgcit[int.from_bytes(pgcit[12:16], 'big'):]
        cells = self.pgc[3]
        pbit = int.from_bytes(self.pgc[0xE8:0xEA], 'big')
        self.cells = [bytes(self.pgc[pbit + 24 * c:pbit + 24 * c + 24]) for c in range(cells)]
        # The same copy with its clock moved on, for the second copy of a VOB.
        self.shifted = bytearray(self.vob)
        for r in range(self.records):
            p = memoryview(self.shifted)[r * SECTOR:r * SECTOR + 14]
            put_scr_base(p, scr_base(p) + SCR_SHIFT)

    def table(self, at):
        sector = int.from_bytes(self.ifo[at:at + 4], 'big')
        return self.ifo[sector * SECTOR:]

    def sized_table(self, at, end_at=4):
        """The table whose start sector is at at, its end address at end_at in it."""
        t = self.table(at)
        return bytes(t[:int.from_bytes(t[end_at:end_at + 4], 'big') + 1])


def write_vobs(sample, out, copies):
    names, files, written = [], None, MAX_FILE_RECORDS
    for k in range(copies):
        vob_id, second = k // 2 + 1, k % 2
        data = bytearray(sample.shifted if second else sample.vob)
        first = k * sample.records
        for r in sample.navs:
            at = r * SECTOR
            data[at + PCI:at + PCI + 4] = be32(first + r)
            data[at + DSI + 4:at + DSI + 8] = be32(first + r)
            data[at + DSI + 24:at + DSI + 26] = be16(vob_id)
            data[at + DSI + 27] += 3 * second
        view = memoryview(data)
        pos = 0
        while pos < len(data):
            if written == MAX_FILE_RECORDS:
                if files:
                    files.close()
                names.append(f'VTS_01_{len(names) + 1}.VOB')
                files = open(os.path.join(out, names[-1]), 'wb')
                written = 0
            n = min(MAX_FILE_RECORDS - written, (len(data) - pos) // SECTOR)
            files.write(view[pos:pos + n * SECTOR])
            pos += n * SECTOR
            written += n
    files.close()
    return names


def bcd(v):
    return ((v // 10) << 4) | (v % 10)


def chain(sample, first_copy, copies):
    """One title chain over copies first_copy .. first_copy + copies - 1."""
    cells, positions, pgmap = [], [], []
    for k in range(first_copy, first_copy + copies):
        offset = k * sample.records
        pgmap.append(3 * (k - first_copy) + 1)
        for c, cell in enumerate(sample.cells):
            e = bytearray(cell)
            for at in (8, 16, 20):
                e[at:at + 4] = be32(int.from_bytes(cell[at:at + 4], 'big') + offset)
            cells.append(bytes(e))
            positions.append(be16(k // 2 + 1) + bytes([0, 3 * (k % 2) + c + 1]))
    if len(pgmap) % 2:
        pgmap.append(0)
    header = bytearray(sample.pgc[:236])
    header[2], header[3] = copies, len(cells)
    seconds = 8 * copies  # each copy plays 8 s
    header[4:8] = bytes([bcd(seconds // 3600), bcd(seconds // 60 % 60), bcd(seconds % 60), 0xC0])
    header[0x9C:0xA4] = bytes(8)  # no next, previous or go-up chain
    pgmap_at = 236
    pbit_at = pgmap_at + len(pgmap)
    posit_at = pbit_at + 24 * len(cells)
    header[0xE4:0xEC] = be16(0) + be16(pgmap_at) + be16(pbit_at) + be16(posit_at)
    return bytes(header) + bytes(pgmap) + b''.join(cells) + b''.join(positions), copies


def title_set_ifo(sample, copies, title_sectors):
    chains = [chain(sample, f, min(COPIES_PER_TITLE, copies - f))
              for f in range(0, copies, COPIES_PER_TITLE)]
    n = len(chains)
    # VTS_PTT_SRPT: one unit per title, one part per program of its chain.
    units, parts, at = [], [], 8 + 4 * n
    for t, (_, programs) in enumerate(chains):
        units.append(be32(at))
        for p in range(programs):
            parts.append(be16(t + 1) + bytes([0, p + 1]))
        at += 4 * programs
    body = b''.join(units) + b''.join(parts)
    ptt = be16(n) + be16(0) + be32(8 + len(body) - 1) + body
    # VTS_PGCIT.
    pointers, at = [], 8 + 8 * n
    for t, (pgc, _) in enumerate(chains):
        pointers.append(be32(0x80000000 | ((t + 1) << 24)) + be32(at))
        at += len(pgc)
    body = b''.join(pointers) + b''.join(p for p, _ in chains)
    pgcit = be16(n) + be16(0) + be32(8 + len(body) - 1) + body
    # VTS_C_ADT and VTS_VOBU_ADMAP over every copy.
    cells, vobus = [], []
    for k in range(copies):
        offset = k * sample.records
        for c, cell in enumerate(sample.cells):
            first = int.from_bytes(cell[8:12], 'big') + offset
            last = int.from_bytes(cell[20:24], 'big') + offset
            cells.append(be16(k // 2 + 1) + bytes([3 * (k % 2) + c + 1, 0]) + be32(first) + be32(last))
        vobus += [be32(r + offset) for r in sample.navs]
    c_adt = be16((copies + 1) // 2) + be16(0) + be32(8 + 12 * len(cells) - 1) + b''.join(cells)
    admap = be32(4 + 4 * len(vobus) - 1) + b''.join(vobus)
    tables = [  # (start sector field, bytes or None)
        (0xC8, ptt), (0xCC, pgcit), (0xD0, sample.sized_table(0xD0)), (0xD4, None),
        (0xD8, sample.sized_table(0xD8)), (0xDC, sample.sized_table(0xDC, 0)),
        (0xE0, c_adt), (0xE4, admap)]
    mat = bytearray(sample.ifo[:SECTOR])
    ifo, sector = [], 1
    for field, table in tables:
        mat[field:field + 4] = be32(sector if table else 0)
        if table:
            ifo.append(pad(table))
            sector += len(ifo[-1]) // SECTOR
    menu = int.from_bytes(sample.ifo[0xC4:0xC8], 'big') - int.from_bytes(sample.ifo[0xC0:0xC4], 'big')
    mat[0x1C:0x20] = be32(sector - 1)                      # vtsi_ea
    mat[0xC0:0xC4] = be32(sector)                          # menu VOB after the IFO
    mat[0xC4:0xC8] = be32(sector + menu)                   # title VOBs after the menu
    mat[0x0C:0x10] = be32(2 * sector + menu + title_sectors - 1)  # vts_ea
    return bytes(mat) + b''.join(ifo), [programs for _, programs in chains]


def main(argv):
    if len(argv) < 2:
        print(__doc__, file=sys.stderr)
        return 2
    source = os.path.join(argv[0], 'VIDEO_TS')
    out = os.path.join(argv[1], 'VIDEO_TS')
    min_mb = int(argv[2]) if len(argv) > 2 else 1024
    shutil.rmtree(argv[1], ignore_errors=True)
    os.makedirs(out)
    for name in ('VIDEO_TS.IFO', 'VIDEO_TS.VOB', 'VTS_01_0.VOB'):
        shutil.copyfile(os.path.join(source, name), os.path.join(out, name))
    sample = Sample(source)
    copies = -(-min_mb * (1 << 20) // len(sample.vob))
    names = write_vobs(sample, out, copies)
    ifo, chapters = title_set_ifo(sample, copies, copies * sample.records)
    for name in ('VTS_01_0.IFO', 'VTS_01_0.BUP'):
        open(os.path.join(out, name), 'wb').write(ifo)
    # TT_SRPT (sector 1 of VIDEO_TS.IFO): one entry per title, all in title set 1.
    vmg = bytearray(open(os.path.join(out, 'VIDEO_TS.IFO'), 'rb').read())
    entry = vmg[SECTOR + 8:SECTOR + 20]
    tt = be16(len(chapters)) + be16(0) + be32(8 + 12 * len(chapters) - 1)
    for t, n in enumerate(chapters):
        tt += entry[0:2] + be16(n) + entry[4:7] + bytes([t + 1]) + entry[8:12]
    vmg[SECTOR:2 * SECTOR] = pad(tt)
    for name in ('VIDEO_TS.IFO', 'VIDEO_TS.BUP'):
        open(os.path.join(out, name), 'wb').write(vmg)
    print(f'{copies} copies of the sample title, {len(chapters)} titles, '
          f'{copies * len(sample.vob)} bytes in {", ".join(names)}')
    return 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1:]))
