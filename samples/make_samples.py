#!/usr/bin/env python3
"""Writes the small sample pictures in this folder: bitmaps of every depth and header kind.

Run it again only to change the samples; the files it makes are kept in the repository so that
the run command and the tests find them without it."""

import math
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))
W, H = 64, 48


def rgb_at(x, y):
    """A colour wheel on a grey ramp: every depth shows something recognisable."""
    cx, cy = x - W / 2 + 0.5, y - H / 2 + 0.5
    r = math.hypot(cx, cy) / (H / 2)
    if r > 1:
        g = int(255 * y / (H - 1))
        return g, g, g
    hue = (math.atan2(cy, cx) / (2 * math.pi)) % 1.0
    i, f = int(hue * 6), hue * 6 - int(hue * 6)
    q, t = int(255 * (1 - f)), int(255 * f)
    return [(255, t, 0), (q, 255, 0), (0, 255, t), (0, q, 255), (t, 0, 255), (255, 0, q)][i % 6]


def palette(bits):
    n = 1 << bits
    if bits == 1:
        return [(0, 0, 0), (255, 255, 255)]
    if bits == 4:
        base = [(0, 0, 0), (128, 0, 0), (0, 128, 0), (128, 128, 0), (0, 0, 128), (128, 0, 128),
                (0, 128, 128), (192, 192, 192), (128, 128, 128), (255, 0, 0), (0, 255, 0),
                (255, 255, 0), (0, 0, 255), (255, 0, 255), (0, 255, 255), (255, 255, 255)]
        return base
    return [(((i >> 5) & 7) * 255 // 7, ((i >> 2) & 7) * 255 // 7, (i & 3) * 255 // 3)
            for i in range(n)]


def nearest(pal, c):
    return min(range(len(pal)), key=lambda i: sum((a - b) ** 2 for a, b in zip(pal[i], c)))


def index_rows(bits):
    pal = palette(bits)
    return pal, [[nearest(pal, rgb_at(x, y)) for x in range(W)] for y in range(H)]


def pack(row, bits):
    out = bytearray()
    if bits == 8:
        out = bytearray(row)
    elif bits == 4:
        for x in range(0, len(row), 2):
            hi = row[x]
            lo = row[x + 1] if x + 1 < len(row) else 0
            out.append(hi << 4 | lo)
    else:
        for x in range(0, len(row), 8):
            b = 0
            for k in range(8):
                if x + k < len(row) and row[x + k]:
                    b |= 0x80 >> k
            out.append(b)
    while len(out) % 4:
        out.append(0)
    return bytes(out)


def bmp(name, bits, os2=False, rle=None):
    if bits == 24:
        pal = []
        data = b''
        for y in reversed(range(H)):
            row = bytearray()
            for x in range(W):
                r, g, b = rgb_at(x, y)
                row += bytes((b, g, r))
            while len(row) % 4:
                row.append(0)
            data += row
    else:
        pal, rows = index_rows(bits)
        if rle == 8:
            data = rle8(rows)
        elif rle == 4:
            data = rle4(rows)
        else:
            data = b''.join(pack(r, bits) for r in reversed(rows))
    entry = 3 if os2 else 4
    table = b''.join(bytes((b, g, r)) + (b'' if os2 else b'\0') for r, g, b in pal)
    header_size = 12 if os2 else 40
    offset = 14 + header_size + len(table)
    if os2:
        info = struct.pack('<IHHHH', 12, W, H, 1, bits)
    else:
        compression = {None: 0, 8: 1, 4: 2}[rle]
        info = struct.pack('<IiiHHIIiiII', 40, W, H, 1, bits, compression, len(data), 2835, 2835,
                           len(pal), 0)
    head = struct.pack('<2sIHHI', b'BM', offset + len(data), 0, 0, offset)
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(head + info + table + data)


def runs(row):
    x = 0
    while x < len(row):
        n = 1
        while x + n < len(row) and row[x + n] == row[x] and n < 255:
            n += 1
        yield row[x], n
        x += n


def rle8(rows):
    out = bytearray()
    for row in reversed(rows):
        for value, n in runs(row):
            out += bytes((n, value))
        out += b'\0\0'
    return bytes(out + b'\0\1')


def rle4(rows):
    out = bytearray()
    for row in reversed(rows):
        x = 0
        while x < len(row):
            a = row[x]
            b = row[x + 1] if x + 1 < len(row) else a
            n = 2 if x + 1 < len(row) else 1
            while x + n < len(row) and row[x + n] == (a if n % 2 == 0 else b) and n < 255:
                n += 1
            out += bytes((n, a << 4 | b))
            x += n
        out += b'\0\0'
    return bytes(out + b'\0\1')


def bga(name):
    """Two bitmaps chained in one array file: a 4-bit and an 8-bit one."""
    parts = []
    for bits in (4, 8):
        pal, rows = index_rows(bits)
        table = b''.join(bytes((b, g, r)) for r, g, b in pal)
        data = b''.join(pack(r, bits) for r in reversed(rows))
        parts.append((bits, table, data))
    out = bytearray()
    offsets, pos = [], 0
    for bits, table, data in parts:
        offsets.append(pos)
        pos += 40 + len(table) + len(data)
    for i, (bits, table, data) in enumerate(parts):
        nxt = offsets[i + 1] if i + 1 < len(parts) else 0
        data_offset = offsets[i] + 40 + len(table)
        out += struct.pack('<2sIIHH2sIHHII', b'BA', 40, nxt, 0, 0, b'BM', 26, 0, 0, data_offset, 12)
        out += struct.pack('<HHHH', W, H, 1, bits)
        out += table + data
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(out)


def wheel_at(x, y, w, h):
    """The colour wheel of rgb_at drawn at any size, for pictures larger than the bitmaps."""
    cx, cy = x - w / 2 + 0.5, y - h / 2 + 0.5
    r = math.hypot(cx, cy) / (h / 2)
    if r > 1:
        g = int(255 * y / (h - 1))
        return g, g, g
    hue = (math.atan2(cy, cx) / (2 * math.pi)) % 1.0
    i, f = int(hue * 6), hue * 6 - int(hue * 6)
    q, t = int(255 * (1 - f)), int(255 * f)
    return [(255, t, 0), (q, 255, 0), (0, 255, t), (0, q, 255), (t, 0, 255), (255, 0, q)][i % 6]


def photo_ycc(rgb):
    """8-bit PhotoYCC of a display RGB colour: luma scaled by 255 / 1.402, the chroma around 156
    and 137."""
    r, g, b = (v / 255 for v in rgb)
    luma = 0.299 * r + 0.587 * g + 0.114 * b
    clamp = lambda v: max(0, min(255, int(round(v))))
    return clamp(255 / 1.402 * luma), clamp(111.40 * (b - luma) + 156), clamp(135.64 * (r - luma) + 137)


def photo_cd(name):
    """A Photo CD image pack of the wheel: the signature sector, and Base/16, Base/4 and Base at
    their sectors, each pair of luma rows followed by a row of each chroma plane (averaged over
    squares of four)."""
    sector = 2048
    out = bytearray(96 * sector + 768 * 512 * 3 // 2)
    out[0x800:0x807] = b'PCD_IPI'
    for w, h, first in ((192, 128, 4), (384, 256, 23), (768, 512, 96)):
        ycc = [[photo_ycc(wheel_at(x, y, w, h)) for x in range(w)] for y in range(h)]
        at = first * sector
        for y in range(0, h, 2):
            for row in (ycc[y], ycc[y + 1]):
                out[at:at + w] = bytes(p[0] for p in row)
                at += w
            for plane in (1, 2):
                for x in range(0, w, 2):
                    out[at] = (ycc[y][x][plane] + ycc[y][x + 1][plane] + ycc[y + 1][x][plane] +
                               ycc[y + 1][x + 1][plane] + 2) // 4
                    at += 1
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(out)


def text(name):
    lines = ['Pixmill reads text files as pictures of their text.',
             '',
             '\tTabs stop every eight columns;',
             '\tcharacters the font lacks (caf\u00e9, \u00fcber) show as boxes.',
             '',
             '  0123456789 !"#$%&\'()*+,-./:;<=>?@[\\]^_`{|}~',
             '  ABCDEFGHIJKLMNOPQRSTUVWXYZ abcdefghijklmnopqrstuvwxyz']
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write('\r\n'.join(lines).encode('utf-8') + b'\r\n')


def self_displaying(name, picture):
    """A DOS program that says it is a picture and ends, with a bitmap stored after it."""
    message = b'This file holds a picture after its program.\r\n$'
    # push cs, pop ds, mov dx message, mov ah 9, int 21h, mov ax 4C00h, int 21h
    code = bytes((0x0E, 0x1F, 0xBA, 14, 0, 0xB4, 0x09, 0xCD, 0x21, 0xB8, 0x00, 0x4C, 0xCD, 0x21))
    body = code + message
    size = 32 + len(body)
    header = struct.pack('<2sHHHHHHHHHHHH', b'MZ', size % 512, (size + 511) // 512, 0, 2, 0,
                         0xFFFF, 0, 0x100, 0, 0, 0, 0x1C) + b'\0' * 6
    with open(os.path.join(HERE, picture), 'rb') as f:
        pic = f.read()
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(header + body + pic)


def photo_paint6(name):
    """A PHOTO-PAINT 6 file, which is a TIFF: the wheel as uncompressed RGB in one strip."""
    data = b''.join(bytes(wheel_at(x, y, W, H)) for y in range(H) for x in range(W))
    entries = [(256, 3, 1, W), (257, 3, 1, H), (258, 3, 3, 8 + 2 + 12 * 10 + 4),
               (259, 3, 1, 1), (262, 3, 1, 2), (273, 4, 1, 8 + 2 + 12 * 10 + 4 + 6),
               (277, 3, 1, 3), (278, 3, 1, H), (279, 4, 1, len(data)), (284, 3, 1, 1)]
    ifd = struct.pack('<H', len(entries))
    for tag, kind, count, value in entries:
        ifd += struct.pack('<HHI', tag, kind, count)
        ifd += struct.pack('<HH', value, 0) if kind == 3 and count == 1 else struct.pack('<I', value)
    out = b'II*\0' + struct.pack('<I', 8) + ifd + struct.pack('<I', 0) + struct.pack('<HHH', 8, 8, 8)
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(out + data)


if __name__ == '__main__':
    bmp('wheel-1bit.bmp', 1)
    bmp('wheel-4bit.bmp', 4)
    bmp('wheel-8bit.bmp', 8)
    bmp('wheel-24bit.bmp', 24)
    bmp('wheel-os2-8bit.bmp', 8, os2=True)
    bmp('wheel-os2-24bit.bmp', 24, os2=True)
    bmp('wheel-rle8.bmp', 8, rle=8)
    bmp('wheel-rle4.bmp', 4, rle=4)
    bmp('wheel-8bit.dib', 8)
    bga('wheels.bga')
    photo_cd('wheel.pcd')
    text('poem.txt')
    self_displaying('wheel-viewer.exe', 'wheel-8bit.bmp')
    photo_paint6('wheel-photopaint6.cpt')
