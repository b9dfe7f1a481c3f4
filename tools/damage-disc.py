#!/usr/bin/env python3
"""Makes damaged copies of a DVD-Video disc folder, each with one fault at a known place.

Usage: tools/damage-disc.py [--list] SOURCE OUT CASE...
  SOURCE  a folder holding VIDEO_TS (or VIDEO_TS itself)
  OUT     CASE folders are made in OUT: OUT/CASE/VIDEO_TS/...
  CASE    case names (see --list), or "all"

Every place is found through the disc's own tables: the tables through the start sectors of
VMGI_MAT and VTSI_MAT, the title chain (chain 1 of title set 1's VTS_PGCIT) through its search
pointer, its sub-tables through its own offsets, the navigation packs by reading the title
VOBs. An IFO fault is written into the IFO and its backup (BUP) alike, so that only the fault
itself is found. For each case made, one line goes to standard output: the case and the
finding it must give at least, "CHECK FILE[:TABLE[#ENTRY]|@RECORD]". A case the disc cannot
take (no menu VOB for a button, no navigation command to change...) is said on standard error
and left out.

On the bundled sample (samples/disc) the faults are those worked out by hand in
tests/disc/verify_test.cpp, which holds every finding each case gives there.
"""
import os
import shutil
import sys

SECTOR = 2048
VMG = 'VIDEO_TS.IFO'
VTS = 'VTS_01_0.IFO'
# A navigation pack: its PCI data at 45; the PCI packet is 980 bytes long, so the DSI data
# starts at 38 + 980 + 6 + 7 = 1031. VOBU search entries 20 (next) and 21 (previous) lie at
# DSI + 234 + 4 * 20 and + 4 * 21; button 1's command at PCI + 142 + 10.
PCI = 45
DSI = 1031
NEXT_VOBU = DSI + 234 + 80
PREVIOUS_VOBU = DSI + 234 + 84
BUTTON_1 = PCI + 142 + 10


class Unfit(Exception):
    """The disc has nothing this case can damage."""


def be16(v):
    return (v & 0xFFFF).to_bytes(2, 'big')


def be32(v):
    return (v & 0xFFFFFFFF).to_bytes(4, 'big')


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


def bcd(v):
    return ((v // 10) << 4) | (v % 10)


def unbcd(b):
    return (b >> 4) * 10 + (b & 15)


class Disc:
    """A copy of a disc's VIDEO_TS and the places of its tables."""

    def __init__(self, folder):
        self.folder = folder

    def path(self, name):
        return os.path.join(self.folder, name)

    def read(self, name, offset=0, size=None):
        with open(self.path(name), 'rb') as f:
            f.seek(offset)
            return f.read() if size is None else f.read(size)

    def u(self, name, offset, size):
        return int.from_bytes(self.read(name, offset, size), 'big')

    def patch(self, name, offset, data):
        with open(self.path(name), 'r+b') as f:
            f.seek(offset)
            f.write(bytes(data))

    def ifo(self, name, offset, data):
        """An IFO fault, in the IFO and its backup alike."""
        self.patch(name, offset, data)
        if os.path.exists(self.path(name[:-3] + 'BUP')):
            self.patch(name[:-3] + 'BUP', offset, data)

    # ---- tables ------------------------------------------------------------------------

    def table(self, name, key):
        """The byte offset of the table whose start sector the IFO keeps at key."""
        sector = self.u(name, key, 4)
        if sector == 0:
            raise Unfit(f'{name} has no table at its field 0x{key:X}')
        return sector * SECTOR

    def tt_entry(self, title=1):
        return self.table(VMG, 0xC4) + 8 + 12 * (title - 1)

    def chain(self, number=1):
        """The byte offset of a chain of VTS_PGCIT."""
        pgcit = self.table(VTS, 0xCC)
        if self.u(VTS, pgcit, 2) < number:
            raise Unfit(f'VTS_PGCIT has no chain {number}')
        return pgcit + self.u(VTS, pgcit + 8 + 8 * (number - 1) + 4, 4)

    def sub_table(self, key):
        """A sub-table of the title chain: 0xE4 commands, 0xE6 program map, 0xE8 cell
        playback, 0xEA cell positions."""
        pgc = self.chain()
        at = self.u(VTS, pgc + key, 2)
        if at == 0:
            raise Unfit(f'the title chain has no sub-table at its field 0x{key:X}')
        return pgc + at

    def programs(self):
        return self.u(VTS, self.chain() + 2, 1) & 0x7F

    def cells(self):
        return self.u(VTS, self.chain() + 3, 1)

    def cell_playback(self, cell):
        if self.cells() < cell:
            raise Unfit(f'the title chain has no cell {cell}')
        return self.sub_table(0xE8) + 24 * (cell - 1)

    # ---- VOBs --------------------------------------------------------------------------

    def title_vobs(self):
        names = []
        for part in range(1, 10):
            name = f'VTS_01_{part}.VOB'
            if not os.path.exists(self.path(name)):
                break
            names.append(name)
        if not names:
            raise Unfit('title set 1 has no title VOB')
        return names

    def records(self, name):
        """The whole records of a VOB, one after the other."""
        with open(self.path(name), 'rb') as f:
            while len(pack := f.read(SECTOR)) == SECTOR:
                yield pack

    @staticmethod
    def is_nav(pack):
        return pack[14:18] == b'\0\0\1\xbb' and pack[38:42] == b'\0\0\1\xbf'

    def navs(self, name='VTS_01_1.VOB'):
        return [r for r, pack in enumerate(self.records(name)) if self.is_nav(pack)]

    def nav(self, rank):
        navs = self.navs()
        if len(navs) <= rank:
            raise Unfit(f'VTS_01_1.VOB has no navigation pack {rank + 1}')
        return navs[rank]

    def plain_record(self, record):
        """The record, or the first after it that is no navigation pack."""
        for r, pack in enumerate(self.records('VTS_01_1.VOB')):
            if r >= record and not self.is_nav(pack):
                return r
        raise Unfit('VTS_01_1.VOB is too short')

    def stream_ids(self):
        """The stream ids of the title VOBs' packs (sub-stream ids for private stream 1)."""
        ids = set()
        for name in self.title_vobs():
            for pack in self.records(name):
                if pack[14:17] == b'\0\0\1':
                    ids.add(pack[23 + pack[22]] if pack[17] == 0xBD else pack[17])
        return ids


# ---- the cases -------------------------------------------------------------------------


def copy_record(d, name):
    with open(d.path(name), 'wb') as f:
        f.write(d.read('VTS_01_1.VOB', 0, SECTOR))


def vob_numbering(d):
    name = f'VTS_01_{len(d.title_vobs()) + 2}.VOB'
    copy_record(d, name)
    return f'file.vob-numbering {name}'


def vob_first_missing(d):
    vobs = d.title_vobs()
    name = f'VTS_01_{len(vobs) + 1}.VOB'
    os.rename(d.path(vobs[0]), d.path(name))
    return f'file.vob-numbering {vobs[1] if len(vobs) > 1 else name}'


def vob_missing(d):
    for name in d.title_vobs():
        os.remove(d.path(name))
    return 'file.missing VTS_01_1.VOB'


def file_extra(d):
    name = f'VTS_{d.u(VMG, 62, 2) + 1:02d}_1.VOB'
    copy_record(d, name)
    return f'file.extra {name}'


def file_size(d):
    last = d.title_vobs()[-1]
    with open(d.path(last), 'ab') as f:
        f.write(bytes(100))
    return f'file.size {last}'


def backup_address(d):
    # VTS_01_0.IFO and its backup padded with 7 sectors of zeros past the information part
    # (VTSI_EA unchanged), the VOBs after it moved on by 7 sectors and the title set by 14: a
    # player looking for the backup at VTS_EA - VTSI_EA reads 7 sectors before it.
    pad = 7
    for name in (VTS, VTS[:-3] + 'BUP'):
        if os.path.exists(d.path(name)):
            with open(d.path(name), 'ab') as f:
                f.write(bytes(pad * SECTOR))
    for key in (0xC0, 0xC4):  # VTSM_VOBS_SA (0 without a menu VOB), VTSTT_VOBS_SA
        if d.u(VTS, key, 4) != 0:
            d.ifo(VTS, key, be32(d.u(VTS, key, 4) + pad))
    d.ifo(VTS, 0x0C, be32(d.u(VTS, 0x0C, 4) + 2 * pad))
    # Titles of the title sets after it start 14 sectors later.
    for title in range(1, d.u(VMG, d.table(VMG, 0xC4), 2) + 1):
        at = d.tt_entry(title)
        if d.u(VMG, at + 6, 1) > 1:
            d.ifo(VMG, at + 8, be32(d.u(VMG, at + 8, 4) + 2 * pad))
    return f'ifo.backup-address {VTS}:VTSI_MAT'


def end_address(d):
    d.ifo(VTS, 0x0C, be32(d.u(VTS, 0x0C, 4) - 11))
    return f'ifo.end-address {VTS}:VTSI_MAT'


def table_outside(d):
    d.ifo(VMG, 212, be32(len(d.read(VMG)) // SECTOR + 1))
    return f'ifo.table-address {VMG}:TXTDT_MG'


def table_end(d):
    at = d.table(VTS, 0xE0) + 4
    d.ifo(VTS, at, be32(d.u(VTS, at, 4) + 4))
    return f'ifo.table-address {VTS}:VTS_C_ADT'


def title_set_count(d):
    d.ifo(VMG, 62, be16(d.u(VMG, 62, 2) + 1))
    return f'ifo.title-set-count {VMG}:VMGI_MAT'


def atrt_attributes(d):
    # Record 1's title video attributes: 8 bytes of end address and category, then a copy of
    # VTSI_MAT from 0x100, whose title video attributes lie at 0x200.
    atrt = d.table(VMG, 0xD0)
    at = atrt + d.u(VMG, atrt + 8, 4) + 8 + 0x100
    d.ifo(VMG, at, [d.u(VMG, at, 1) ^ 0x04])
    return f'vts_atrt.attributes {VMG}:VTS_ATRT#1'


def tt_field(offset, value, check):
    def damage(d):
        d.ifo(VMG, d.tt_entry() + offset, value(d))
        return f'{check} {VMG}:TT_SRPT#1'
    return damage


def titles_in_set(d):
    return d.u(VTS, d.table(VTS, 0xC8), 2)


def ptt_target(d):
    ptt = d.table(VTS, 0xC8)
    first = d.u(VTS, ptt + 8, 4)  # title 1's parts, up to title 2's or the table's end
    end = d.u(VTS, ptt + 12, 4) if titles_in_set(d) > 1 else d.u(VTS, ptt + 4, 4) + 1
    part = 2 if (end - first) // 4 >= 2 else 1
    d.ifo(VTS, ptt + first + 4 * (part - 1) + 3, [d.programs() + 2])
    return f'ptt.target {VTS}:VTS_PTT_SRPT#1'


def chain_fault(check, damage):
    def run(d):
        damage(d)
        return f'{check} {VTS}:VTS_PGCIT#1'
    return run


def program_map(d):
    pgmap = d.sub_table(0xE6)
    if d.programs() < 2:
        raise Unfit('the title chain has one program')
    entry = d.u(VTS, pgmap + 2, 1) if d.programs() >= 3 else d.u(VTS, pgmap, 1)
    d.ifo(VTS, pgmap + 1, [entry])


def cell_sectors(d):
    cell = d.cell_playback(2)
    d.ifo(VTS, cell + 16, be32(d.u(VTS, cell + 20, 4) + 1))


def cell_position(d):
    if d.cells() < 2:
        raise Unfit('the title chain has one cell')
    d.ifo(VTS, d.sub_table(0xEA) + 4 + 3, [d.cells() + 2])


def put_command(d, data):
    """Writes a command over the title chain's command 3 (or its last)."""
    table = d.sub_table(0xE4)
    count = sum(d.u(VTS, table + 2 * k, 2) for k in range(3))
    if count == 0:
        raise Unfit('the title chain has no navigation command')
    n = min(count, 3)
    d.ifo(VTS, table + 8 + 8 * (n - 1), data)


def command(d):
    put_command(d, [0x30, 0x02, 0, 0, 0, d.u(VMG, d.table(VMG, 0xC4), 2) + 4, 0, 0])


def command_set_link(d):
    # "g0 = 0; LinkPGCN" (a set carrying a link: type 3, link subtype 4) to the chain four
    # beyond the last.
    put_command(d, [0x71, 0x04, 0, 0, 0, 0] + list(be16(d.u(VTS, d.table(VTS, 0xCC), 2) + 4)))


# "g0 = g0; LinkTopPGC" highlighting button 40 (type 6: compare, set, always link by
# sub-instruction); a menu has at most 36 buttons.
SET_LINK_BUTTON_40 = [0xC1, 0x00, 0, 0, 0, 0, 40 << 2, 0x09]


def pgc_time(d):
    at = d.chain() + 6
    d.ifo(VTS, at, [bcd((unbcd(d.u(VTS, at, 1)) + 1) % 60)])


def stream_control(d):
    declared = d.u(VTS, 0x203, 1)
    if declared >= 8:
        raise Unfit('eight audio streams are declared')
    d.ifo(VTS, d.chain() + 0x0C + 2 * declared, be16(0x8000 | (declared << 8)))


# The stream id of audio coding c (bits 7-5 of the attributes) and stream number n.
AUDIO_BASE = {0: 0x80, 2: 0xC0, 3: 0xC0, 4: 0xA0, 6: 0x88}


def stream_missing(d):
    if d.u(VTS, 0x203, 1) < 2:
        raise Unfit('fewer than two audio streams are declared')
    at = d.chain() + 0x0C + 2
    control = d.u(VTS, at, 2)
    base = AUDIO_BASE.get(d.u(VTS, 0x204 + 8, 1) >> 5)
    if not control & 0x8000 or base is None:
        raise Unfit('audio stream 2 is not available or of no known coding')
    present = d.stream_ids()
    number = ((control >> 8) & 7) + 2
    while number < 8 and base + number in present:
        number += 1
    if number >= 8:
        raise Unfit('no free stream number for audio stream 2')
    d.ifo(VTS, at, be16(0x8000 | (number << 8)))


def audio_packs(d, mpeg):
    """(file, record, offset of the id) of the title VOBs' MPEG or AC-3 audio packs."""
    for name in d.title_vobs():
        for r, pack in enumerate(d.records(name)):
            if pack[14:17] != b'\0\0\1':
                continue
            if mpeg and 0xC0 <= pack[17] <= 0xC7:
                yield name, r, 17
            if not mpeg and pack[17] == 0xBD and 0x80 <= pack[23 + pack[22]] <= 0x87:
                yield name, r, 23 + pack[22]


def stream_undeclared(d):
    # The first MPEG audio pack (else AC-3) takes a stream id three numbers on that no pack has.
    present = d.stream_ids()
    found = next(audio_packs(d, True), None) or next(audio_packs(d, False), None)
    if found is None:
        raise Unfit('the title VOBs hold no MPEG or AC-3 audio')
    name, r, at = found
    old = d.u(name, r * SECTOR + at, 1)
    new = old + 3
    while (new & 0xF8) == (old & 0xF8) and new in present:
        new += 1
    if (new & 0xF8) != (old & 0xF8):
        raise Unfit('no free stream id')
    d.patch(name, r * SECTOR + at, [new])
    return f'stream.undeclared {name}@{r}'


def video_attributes(d):
    # Every sequence header of the title VOBs 16 pixels narrower (verify compares the first
    # complete one).
    changed = 0
    for name in d.title_vobs():
        for r, pack in enumerate(d.records(name)):
            if pack[14:17] != b'\0\0\1' or not 0xE0 <= pack[17] <= 0xEF:
                continue
            at = pack.find(b'\0\0\1\xb3', 23 + pack[22])
            if at < 0 or at + 6 > SECTOR:
                continue
            width = ((pack[at + 4] << 4) | (pack[at + 5] >> 4)) - 16
            d.patch(name, r * SECTOR + at + 4,
                    [(width >> 4) & 0xFF, ((width & 15) << 4) | (pack[at + 5] & 15)])
            changed += 1
    if changed == 0:
        raise Unfit('the title VOBs hold no sequence header')
    return f'stream.video-attributes {VTS}:VTSI_MAT'


def available_audio(d, codings):
    """The offset in VTSI_MAT of the first declared title audio stream of one of the codings
    that the title chain makes available and whose packs are in the title VOBs."""
    present = d.stream_ids()
    for i in range(min(d.u(VTS, 0x203, 1), 8)):
        at = 0x204 + 8 * i
        coding = d.u(VTS, at, 1) >> 5
        control = d.u(VTS, d.chain() + 0x0C + 2 * i, 2)
        if (coding in codings and control & 0x8000
                and AUDIO_BASE[coding] + ((control >> 8) & 7) in present):
            return at
    raise Unfit('no declared audio stream of the codings the case needs plays')


def title_attribute(d, at, value):
    """A byte of VTSI_MAT's title attributes, and of its copy in VTS_ATRT (record 1: 8 bytes,
    then VTSI_MAT from 0x100 on)."""
    d.ifo(VTS, at, [value])
    atrt = d.table(VMG, 0xD0)
    d.ifo(VMG, atrt + d.u(VMG, atrt + 8, 4) + 8 + at - 0x100, [value])


def audio_attributes(d):
    # An AC-3, MPEG or LPCM stream's sampling frequency (bits 5-4 of byte 1): 48 <-> 96 kHz.
    at = available_audio(d, (0, 2, 3, 4)) + 1
    old = d.u(VTS, at, 1)
    title_attribute(d, at, (old & 0xCF) | (0x10 if (old & 0x30) == 0 else 0))
    return f'stream.audio-attributes {VTS}:VTSI_MAT'


def audio_channels(d):
    # An AC-3, MPEG-1 or DTS stream's channels (bits 2-0 of byte 1, less one): one more (one
    # less from 8).
    at = available_audio(d, (0, 2, 6)) + 1
    old = d.u(VTS, at, 1)
    title_attribute(d, at, (old & 0xF8) | ((old & 7) + 1 if (old & 7) < 7 else 6))
    return f'stream.audio-channels {VTS}:VTSI_MAT'


def admap_navpack(d):
    at = d.table(VTS, 0xE4) + 4 + 4 * 3
    d.ifo(VTS, at, be32(d.u(VTS, at, 4) + 1))
    return f'vobu_admap.navpacks {VTS}:VTS_VOBU_ADMAP#4'


def admap_order(d):
    admap = d.table(VTS, 0xE4)
    entries = (d.u(VTS, admap, 4) - 3) // 4
    sectors = sum(os.path.getsize(d.path(n)) // SECTOR for n in d.title_vobs())
    d.ifo(VTS, admap + 4 * entries, be32(sectors + 54))
    return f'vobu_admap.order {VTS}:VTS_VOBU_ADMAP#{entries}'


def tmapt_entry(d):
    tmapt = d.table(VTS, 0xD4)
    at = tmapt + d.u(VTS, tmapt + 8, 4) + 4
    d.ifo(VTS, at, be32(d.u(VTS, at, 4) + 1))
    return f'tmapt.entry {VTS}:VTS_TMAPT#1'


def nav_field(rank, offset, change, check):
    def damage(d):
        record = d.nav(rank)
        at = record * SECTOR + offset
        d.patch('VTS_01_1.VOB', at, change(d.read('VTS_01_1.VOB', at, 4)))
        return f'{check} VTS_01_1.VOB@{record}'
    return damage


def add32(delta):
    return lambda old: be32(int.from_bytes(old, 'big') + delta)


def vobu_length(d):
    record = d.nav(1)
    start = d.u('VTS_01_1.VOB', record * SECTOR + PCI + 12, 4)
    d.patch('VTS_01_1.VOB', record * SECTOR + PCI + 16, be32(start + 100000))  # 1.11 s
    return f'nav.vobu-length VTS_01_1.VOB@{record}'


def nav_cell(d):
    # The second navigation pack of the title chain's cell 2 (its first when it has one).
    cell = d.cell_playback(2)
    first, last = d.u(VTS, cell + 8, 4), d.u(VTS, cell + 20, 4)
    navs = [r for r in d.navs() if first <= r <= last]
    if not navs:
        raise Unfit('cell 2 has no navigation pack in VTS_01_1.VOB')
    record = navs[1] if len(navs) > 1 else navs[0]
    at = record * SECTOR + DSI + 27
    d.patch('VTS_01_1.VOB', at, [d.u('VTS_01_1.VOB', at, 1) + 1])
    return f'nav.cell VTS_01_1.VOB@{record}'


def button_command(d):
    return first_button(d, lambda buttons: [0x30, 0x03, 0, 0, 0, titles_in_set(d) + 4, 0, 0])


def first_button(d, make):
    """Replaces button 1 of the first navigation pack with buttons of title set 1's menu VOB
    by make(buttons of the pack)."""
    name = 'VTS_01_0.VOB'
    if not os.path.exists(d.path(name)):
        raise Unfit('title set 1 has no menu VOB')
    for r, pack in enumerate(d.records(name)):
        if d.is_nav(pack) and pack[PCI + 113] > 0:  # btn_ns
            d.patch(name, r * SECTOR + BUTTON_1, make(pack[PCI + 113]))
            return f'nav.button-command {name}@{r}'
    raise Unfit('the menu VOB has no buttons')


def button_set_link(buttons):
    # "g0 = 0; LinkPGCN 32767": no menu language unit has that many chains.
    return [0x71, 0x04, 0, 0, 0, 0, 0x7F, 0xFF]


def button_highlight(buttons):
    # "g0 = g0; LinkNoLink" highlighting the button after the menu's last (type 4: set, then
    # link by sub-instruction as no comparison is made).
    if buttons >= 36:
        raise Unfit('the menu has 36 buttons')
    return [0x81, 0x00, 0, 0, 0, 0, (buttons + 1) << 2, 0x00]


def pack_field(record, offset, data, check):
    def damage(d):
        r = d.plain_record(record(d))
        d.patch('VTS_01_1.VOB', r * SECTOR + offset, data)
        return f'{check} VTS_01_1.VOB@{r}'
    return damage


def stream_count(d):
    d.ifo(VTS, 0x203, [9])
    return f'stream.count {VTS}:VTSI_MAT'


def bup_differs(d):
    d.patch('VTS_01_0.BUP', 100, [d.u('VTS_01_0.BUP', 100, 1) ^ 0xFF])
    return 'file.bup-differs VTS_01_0.BUP'


def remove_bup(d):
    os.remove(d.path('VTS_01_0.BUP'))
    return 'file.bup-missing VTS_01_0.BUP'


def readme(d):
    with open(d.path('README.TXT'), 'w') as f:
        f.write('notes\n')
    return 'file.unknown README.TXT'


def identifier(d):
    d.ifo(VTS, 11, b'X')
    return f'ifo.identifier {VTS}:VTSI_MAT'


def vob_unplayed(d):
    # Every chain of every language unit of VMGM_PGCI_UT loses its cells: programs, cells and
    # playback time 0. Nothing plays VIDEO_TS.VOB then.
    if not os.path.exists(d.path('VIDEO_TS.VOB')):
        raise Unfit('the video manager has no menu VOB')
    table = d.table(VMG, 0xC8)
    for unit in range(d.u(VMG, table, 2)):
        block = table + d.u(VMG, table + 8 + 8 * unit + 4, 4)
        for chain in range(d.u(VMG, block, 2)):
            d.ifo(VMG, block + d.u(VMG, block + 8 + 8 * chain + 4, 4) + 2, bytes(6))
    return 'vob.unplayed VIDEO_TS.VOB@0'


def first_pack(d):
    d.patch('VTS_01_1.VOB', 38, [0, 0, 1, 0xBE])
    return 'vob.first-pack VTS_01_1.VOB@0'


CASES = {
    # name: (what, function on the copy; returns the finding it must give at least)
    'bup-missing': ('VTS_01_0.BUP removed', remove_bup),
    'bup-differs': ('byte 100 of VTS_01_0.BUP changed', bup_differs),
    'file-size': ('100 bytes appended to the last title VOB of title set 1', file_size),
    'vob-numbering': ('a title VOB part two on from the last, the one between missing',
                      vob_numbering),
    'vob-first-missing': ('the first title VOB of title set 1 renamed to the part after the last',
                          vob_first_missing),
    'vob-missing': ('every title VOB of title set 1 removed', vob_missing),
    'file-extra': ('a title VOB of the title set after the last one the video manager counts',
                   file_extra),
    'file-unknown': ('a README.TXT in VIDEO_TS', readme),
    'identifier': ('VTS_01_0.IFO identifier DVDVIDEO-VTX', identifier),
    'end-address': ('VTS_EA 11 sectors less (the files need more)', end_address),
    'backup-address': ('VTS_01_0.IFO and its BUP padded with 7 sectors, the VOB start sectors '
                       'and VTS_EA moved on to match', backup_address),
    'table-outside': ('VMGI_MAT TXTDT_MG start sector one beyond the IFO', table_outside),
    'table-end': ('VTS_C_ADT end address 4 more (not a whole cell entry)', table_end),
    'title-set-count': ('VMG_NS one more', title_set_count),
    'atrt-attributes': ('VTS_ATRT record 1 title video attributes: bit 2 of byte 0 flipped',
                        atrt_attributes),
    'tt-title-set': ('TT_SRPT title 1 in the title set after the last',
                     tt_field(6, lambda d: [d.u(VMG, 62, 2) + 1], 'tt_srpt.title-set')),
    'tt-title': ('TT_SRPT title 1 is the title after the last of its set',
                 tt_field(7, lambda d: [titles_in_set(d) + 1], 'tt_srpt.title')),
    'tt-start-sector': ('TT_SRPT title 1 start sector one more',
                        tt_field(8, lambda d: be32(d.u(VMG, d.tt_entry() + 8, 4) + 1),
                                 'tt_srpt.start-sector')),
    'tt-chapters': ('TT_SRPT title 1 chapters one more',
                    tt_field(2, lambda d: be16(d.u(VMG, d.tt_entry() + 2, 2) + 1),
                             'tt_srpt.chapters')),
    'ptt-target': ('VTS_PTT_SRPT title 1 part 2: program two beyond the title chain\'s last',
                   ptt_target),
    'pgc-programs': ('title chain: one program more than cells',
                     chain_fault('pgc.structure',
                                 lambda d: d.ifo(VTS, d.chain() + 2, [d.cells() + 1]))),
    'pgc-program-map': ('title chain: program 2 enters at program 3\'s cell (1 with two programs)',
                        chain_fault('pgc.program-map', program_map)),
    'pgc-cell-sectors': ('title chain cell 2: last VOBU one beyond its last sector',
                         chain_fault('pgc.cell-sectors', cell_sectors)),
    'pgc-cell-position': ('title chain cell 2 plays a cell id two beyond the chain\'s cells',
                          chain_fault('pgc.cell-position', cell_position)),
    'pgc-links': ('title chain: next chain four beyond the last',
                  chain_fault('pgc.links',
                              lambda d: d.ifo(VTS, d.chain() + 0x9C,
                                              be16(d.u(VTS, d.table(VTS, 0xCC), 2) + 4)))),
    'pgc-command': ('title chain command 3 (or its last): jump to the title four beyond the last',
                    chain_fault('pgc.command', command)),
    'pgc-command-set-link': ('title chain command 3 (or its last): a set that links to the chain '
                             'four beyond the last', chain_fault('pgc.command', command_set_link)),
    'pgc-command-sub-link': ('title chain command 3 (or its last): compare, set and link to the '
                             'top of the chain highlighting button 40',
                             chain_fault('pgc.command',
                                         lambda d: put_command(d, SET_LINK_BUTTON_40))),
    'pgc-time': ('title chain playback time one second more', chain_fault('pgc.time', pgc_time)),
    'pgc-stream-control': ('title chain: the audio stream after the declared ones made available',
                           chain_fault('pgc.stream-control', stream_control)),
    'c-adt-vob-count': ('VTS_C_ADT counts one VOB more than its cells name',
                        lambda d: (d.ifo(VTS, d.table(VTS, 0xE0),
                                         be16(d.u(VTS, d.table(VTS, 0xE0), 2) + 1)),
                                   f'c_adt.order {VTS}:VTS_C_ADT')[1]),
    'admap-navpack': ('VTS_VOBU_ADMAP entry 4 one sector on', admap_navpack),
    'admap-order': ('VTS_VOBU_ADMAP last entry 54 sectors beyond the title VOBs', admap_order),
    'tmapt-entry': ('VTS_TMAPT map 1 entry 1 one sector on', tmapt_entry),
    'nav-lbn': ('navigation pack 2: PCI nv_pck_lbn one more',
                nav_field(1, PCI, add32(1), 'nav.lbn')),
    'nav-vobu-end': ('navigation pack 2: vobu_ea one more',
                     nav_field(1, DSI + 8, add32(1), 'nav.vobu-end')),
    'nav-next-vobu': ('navigation pack 2: next VOBU one sector further',
                      nav_field(1, NEXT_VOBU, add32(1), 'nav.next-vobu')),
    'nav-previous-vobu': ('navigation pack 3: previous VOBU one sector nearer',
                          nav_field(2, PREVIOUS_VOBU, add32(-1), 'nav.previous-vobu')),
    'button-command': ('VTS_01_0.VOB, its first navigation pack with buttons: button 1 jumps '
                       'to the title four beyond the last of the title set', button_command),
    'button-command-set-link': ('VTS_01_0.VOB, its first navigation pack with buttons: button 1 '
                                'sets a register and links to chain 32767',
                                lambda d: first_button(d, button_set_link)),
    'button-command-highlight': ('VTS_01_0.VOB, its first navigation pack with buttons: button 1 '
                                 'sets a register and highlights the button after the last',
                                 lambda d: first_button(d, button_highlight)),
    'nav-cell': ('the second navigation pack of the title chain\'s cell 2: vobu_c_idn one more',
                 nav_cell),
    'vobu-length': ('navigation pack 2: vobu_e_ptm 1.11 s after vobu_s_ptm', vobu_length),
    'mux-rate': ('the record 10 after navigation pack 2: program_mux_rate 25201',
                 pack_field(lambda d: d.nav(1) + 10, 10, mux_bytes(25201), 'vob.mux-rate')),
    'scr-order': ('the record 10 after navigation pack 2: SCR 0',
                  pack_field(lambda d: d.nav(1) + 10, 4, scr_bytes(0), 'vob.scr-order')),
    'first-pack': ('record 0: the navigation pack becomes a padding pack (00 00 01 BE at 38)',
                   first_pack),
    'vob-pack': ('record 100 (or the next that is no navigation pack): no pack start code',
                 pack_field(lambda d: 100, 0, bytes(4), 'vob.pack')),
    'vob-unplayed': ('VMGM_PGCI_UT: every menu chain without cells (programs, cells and time 0)',
                     vob_unplayed),
    'stream-missing': ('title chain: audio stream 2 plays through a stream number two on that '
                       'no pack has', chain_fault('stream.missing', stream_missing)),
    'stream-undeclared': ('the first MPEG audio pack (else AC-3) takes an id three on that no '
                          'pack has', stream_undeclared),
    'stream-count': ('VTSI_MAT: 9 audio streams declared', stream_count),
    'video-attributes': ('every sequence header of the title VOBs 16 pixels narrower',
                         video_attributes),
    'audio-attributes': ('VTSI_MAT and VTS_ATRT: the first title AC-3, MPEG or LPCM audio '
                         'stream that plays declared at the other sampling frequency (48/96 kHz)',
                         audio_attributes),
    'audio-channels': ('VTSI_MAT and VTS_ATRT: the first title AC-3, MPEG-1 or DTS audio '
                       'stream that plays declared with one channel more', audio_channels),
}


def main(argv):
    if len(argv) >= 1 and argv[0] == '--list':
        for name, (what, _) in CASES.items():
            print(f'{name:24} {what}')
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
    for name in names:
        target = os.path.join(out, name, 'VIDEO_TS')
        shutil.rmtree(os.path.join(out, name), ignore_errors=True)
        shutil.copytree(video_ts, target)
        for f in os.listdir(target):
            os.chmod(os.path.join(target, f), 0o644)
        try:
            print(f'{name} {CASES[name][1](Disc(target))}')
        except Unfit as e:
            shutil.rmtree(os.path.join(out, name))
            print(f'damage-disc.py: {name}: {e}', file=sys.stderr)
    return 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1:]))
