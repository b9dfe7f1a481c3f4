#!/usr/bin/env python3
"""Counts the kinds of 2048-byte packs in VOB files.

Usage: tools/count-pack-kinds.py FILE.VOB...
Each pack is classed by the first packet after its pack header (and system
header, if any): navigation (stream 0xBF), video (0xE0-0xEF), MPEG audio
(0xC0-0xDF), padding (0xBE), or a private stream 1 (0xBD) sub-stream:
AC-3 (0x80-0x87), DTS (0x88-0x8F), LPCM (0xA0-0xA7), sub-picture (0x20-0x3F).
"""
import collections
import sys

PACK = 2048


def first_packet(pack):
    if pack[:4] != b'\0\0\1\xba':
        return None, None, None
    pos = 14 + (pack[13] & 7)
    if pack[pos:pos + 4] == b'\0\0\1\xbb':
        pos += 6 + ((pack[pos + 4] << 8) | pack[pos + 5])
    if pack[pos:pos + 3] != b'\0\0\1':
        return None, None, None
    sid = pack[pos + 3]
    sub = None
    if sid == 0xBD:
        sub = pack[pos + 9 + pack[pos + 8]]
    return pos, sid, sub


def kind(pack):
    _, sid, sub = first_packet(pack)
    if sid is None:
        return 'unclassified'
    if sid == 0xBF:
        return 'navigation (0xBF)'
    if 0xE0 <= sid <= 0xEF:
        return 'video (0x%02X)' % sid
    if 0xC0 <= sid <= 0xDF:
        return 'MPEG audio (0x%02X)' % sid
    if sid == 0xBE:
        return 'padding (0xBE)'
    if sid == 0xBD:
        if 0x80 <= sub <= 0x87:
            return 'AC-3 (0xBD sub 0x%02X)' % sub
        if 0x88 <= sub <= 0x8F:
            return 'DTS (0xBD sub 0x%02X)' % sub
        if 0xA0 <= sub <= 0xA7:
            return 'LPCM (0xBD sub 0x%02X)' % sub
        if 0x20 <= sub <= 0x3F:
            return 'sub-picture (0xBD sub 0x%02X)' % sub
        return 'private 1 (0xBD sub 0x%02X)' % sub
    return 'other (0x%02X)' % sid


def main(paths):
    for path in paths:
        with open(path, 'rb') as f:
            data = f.read()
        counts = collections.Counter(kind(data[i:i + PACK]) for i in range(0, len(data), PACK))
        print('%s: %d packs' % (path, (len(data) + PACK - 1) // PACK))
        for name, count in sorted(counts.items()):
            print('  %-32s %6d' % (name, count))
    return 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1:]))
