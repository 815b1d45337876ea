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


def packbits(row):
    """PackBits: runs of two or more equal bytes as 257 - n, the rest as literals."""
    out, i, literal = bytearray(), 0, bytearray()
    while i < len(row):
        n = 1
        while i + n < len(row) and row[i + n] == row[i] and n < 128:
            n += 1
        if n >= 2:
            if literal:
                out += bytes((len(literal) - 1,)) + literal
                literal = bytearray()
            out += bytes((257 - n, row[i]))
        else:
            literal.append(row[i])
            if len(literal) == 128:
                out += bytes((127,)) + literal
                literal = bytearray()
        i += n
    if literal:
        out += bytes((len(literal) - 1,)) + literal
    return bytes(out)


def mono_rows(set_is_white):
    """The wheel in black and white, packed eight pixels a byte, most significant bit first."""
    _, rows = index_rows(1)
    return [pack([(v if set_is_white else 1 - v) for v in row], 1)[:(W + 7) // 8] for row in rows]


def crc16(data):
    crc = 0
    for b in data:
        crc ^= b << 8
        for _ in range(8):
            crc = ((crc << 1) ^ 0x1021 if crc & 0x8000 else crc << 1) & 0xFFFF
    return crc


def macpaint(name):
    """A MacPaint page with the wheel at its top left, behind a MacBinary II header."""
    rows = mono_rows(False)
    data = bytearray(512)
    for y in range(720):
        row = (rows[y] if y < H else b'') + bytes(72 - (len(rows[y]) if y < H else 0))
        data += packbits(row)
    head = bytearray(128)
    head[1] = len(name)
    head[2:2 + len(name)] = name.encode()
    head[65:73] = b'PNTGMPNT'
    head[83:87] = struct.pack('>I', len(data))
    head[122] = head[123] = 129
    head[124:126] = struct.pack('>H', crc16(head[:124]))
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(bytes(head) + bytes(data) + bytes(-len(data) % 128))


def msp(name):
    """Microsoft Paint version 2: a map of row lengths, rows of runs (0, n, v) and literals."""
    coded = []
    for row in mono_rows(True):
        out, i = bytearray(), 0
        while i < len(row):
            n = 1
            while i + n < len(row) and row[i + n] == row[i] and n < 255:
                n += 1
            out += bytes((0, n, row[i])) if n >= 3 else bytes((n,)) + bytes(row[i:i + n])
            i += n
        coded.append(bytes(out))
    words = [0x694C, 0x536E, W, H, 1, 1, 1, 1, W, H, 0, 0]
    checksum = 0
    for w in words:
        checksum ^= w
    head = struct.pack('<13H', *words, checksum) + bytes(6)
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(head + b''.join(struct.pack('<H', len(c)) for c in coded) + b''.join(coded))


def pfs_art(name):
    """PFS clip art: the edges of the picture, then rows padded to an even length."""
    rows = [r + bytes(len(r) % 2) for r in mono_rows(True)]
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(struct.pack('<4H', 0, W, 0, H) + b''.join(rows))


def sstv(name):
    """SSTV: 256 x 240 pixels of six-bit red, green and blue, the wheel stretched to fill it."""
    data = bytearray()
    for y in range(240):
        for x in range(256):
            data += bytes(c >> 2 for c in rgb_at(x * W // 256, y * H // 240))
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(data)


def dib(bits, w=W, h=H, icon=False):
    """A bitmap without a file header, of the wheel scaled to w x h: an icon's header counts the
    rows of its mask too, and the mask (all opaque) follows the picture."""
    def at(x, y):
        return rgb_at(x * W // w, y * H // h)
    if bits == 24:
        table = b''
        data = b''
        for y in reversed(range(h)):
            row = bytearray()
            for x in range(w):
                r, g, b = at(x, y)
                row += bytes((b, g, r))
            while len(row) % 4:
                row.append(0)
            data += row
    else:
        pal = palette(bits)
        table = b''.join(bytes((b, g, r, 0)) for r, g, b in pal)
        rows = [[nearest(pal, at(x, y)) for x in range(w)] for y in range(h)]
        data = b''.join(pack(r, bits) for r in reversed(rows))
    header = struct.pack('<IiiHHIIiiII', 40, w, 2 * h if icon else h, 1, bits, 0, 0, 0, 0, 0, 0)
    mask = bytes(((w + 31) // 32 * 4) * h) if icon else b''
    return header + table + data + mask


def write(name, data):
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(data)


def gem_row(row):
    """One row of GEM items: solid runs of 0x00 or 0xFF, bit strings for the rest."""
    out, i = bytearray(), 0
    while i < len(row):
        n = 1
        while i + n < len(row) and row[i + n] == row[i] and n < 127:
            n += 1
        if row[i] in (0, 255):
            out.append((0x80 if row[i] else 0) | n)
        else:
            n = 1
            while i + n < len(row) and row[i + n] not in (0, 255) and n < 255:
                n += 1
            out += bytes((0x80, n)) + bytes(row[i:i + n])
        i += n
    return bytes(out)


def gem(name):
    """GEM bit image, 8 planes with an XIMG palette; equal scanlines go out once, replicated."""
    pal, rows = index_rows(8)
    plane_bytes = (W + 7) // 8
    lines = []
    for row in rows:
        line = b''
        for p in range(8):
            line += pack([(v >> p) & 1 for v in row], 1)[:plane_bytes]
        lines.append(line)
    out, y = bytearray(), 0
    while y < H:
        n = 1
        while y + n < H and lines[y + n] == lines[y] and n < 255:
            n += 1
        if n > 1:
            out += bytes((0, 0, 0xFF, n))
        for p in range(8):
            out += gem_row(lines[y][p * plane_bytes:(p + 1) * plane_bytes])
        y += n
    head = struct.pack('>8H', 1, 11 + 3 * 256, 8, 1, 85, 85, W, H) + b'XIMG' + struct.pack('>H', 0)
    head += b''.join(struct.pack('>3H', *((c * 1000 + 127) // 255 for c in e)) for e in pal)
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(head + bytes(out))


def pictor(name):
    """PC Paint: four EGA planes of the 16-colour wheel, bottom row first, in one block of
    plain bytes (the marker byte never occurs in them)."""
    pal, rows = index_rows(4)
    data = bytearray()
    for plane in range(4):
        for row in reversed(rows):
            for x in range(0, W, 8):
                b = 0
                for k in range(8):
                    if (row[x + k] >> plane) & 1:
                        b |= 0x80 >> k
                data.append(b)
    marker = next(v for v in range(256) if v not in data)
    vga = b''.join(bytes((r >> 2, g >> 2, b >> 2)) for r, g, b in pal[:16])
    out = struct.pack('<HHHHHBBBHH', 0x1234, W, H, 0, 0, 0x31, 0xFF, ord('M'), 5, len(vga))
    out += vga + struct.pack('<HHHB', 1, len(data) + 5, len(data), marker) + data
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(out)


def halo(name):
    """Dr. Halo: the 8-bit wheel as literal runs, and its palette file beside it."""
    pal, rows = index_rows(8)
    out = bytearray(struct.pack('<HHH', W, H, 0))
    for row in rows:
        packed = bytes((W,)) + bytes(row) + b'\0'
        out += struct.pack('<H', len(packed)) + packed
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(out)
    table = bytearray()
    pos = 40
    for r, g, b in pal:
        if pos % 512 > 506:
            table += bytes(512 - pos % 512)
            pos += 512 - pos % 512
        table += struct.pack('<HHH', r, g, b)
        pos += 6
    head = b'AH' + struct.pack('<HHBBHHHHHH', 0, len(table), 0x0A, 0, 0, 0, len(pal) - 1, 255, 255,
                               255) + b'Dr. Halo'.ljust(20, b'\0')
    with open(os.path.join(HERE, os.path.splitext(name)[0] + '.pal'), 'wb') as f:
        f.write(head + table)


def wpg(name):
    """WordPerfect Graphics version 1: the 8-bit wheel after its colour map, rows as literal
    runs."""
    pal, rows = index_rows(8)

    def record(kind, data):
        return bytes((kind, 0xFF)) + struct.pack('<HH', 0x8000 | len(data) >> 16, len(data) & 0xFFFF) + data
    colours = struct.pack('<HH', 0, len(pal)) + b''.join(bytes(c) for c in pal)
    bitmap = struct.pack('<HHHHH', W, H, 8, 75, 75) + b''.join(bytes((W,)) + bytes(r) for r in rows)
    out = b'\xffWPC' + struct.pack('<IBBBBHH', 16, 1, 0x16, 1, 0, 0, 0)
    out += bytes((0x0F, 6, 1, 0)) + struct.pack('<HH', W * 16, H * 16)
    out += record(0x0E, colours) + record(0x0B, bitmap) + bytes((0x10, 0))
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(out)


def ico(name, images):
    """An icon file of (width, height, bits) images of the wheel."""
    parts = [dib(bits, w, h, icon=True) for w, h, bits in images]
    out = struct.pack('<HHH', 0, 1, len(parts))
    offset = 6 + 16 * len(parts)
    for (w, h, bits), part in zip(images, parts):
        out += struct.pack('<BBBBHHII', w % 256, h % 256, (1 << bits) % 256 if bits < 8 else 0, 0,
                           1, bits, len(part), offset)
        offset += len(part)
    write(name, out + b''.join(parts))


def icon_group(icons):
    """A group of (id, width, height, bits, data) icon resources."""
    out = struct.pack('<HHH', 0, 1, len(icons))
    for rid, w, h, bits, data in icons:
        out += struct.pack('<BBBBHHIH', w % 256, h % 256, (1 << bits) % 256 if bits < 8 else 0, 0,
                           1, bits, len(data), rid)
    return out


def library_resources():
    icons = [(1, 32, 24, 8), (2, 16, 12, 4)]
    icon_data = [(rid, w, h, bits, dib(bits, w, h, icon=True)) for rid, w, h, bits in icons]
    res = [(3, rid, data) for rid, w, h, bits, data in icon_data]
    res.append((14, 1, icon_group(icon_data)))
    res.append((2, 1, dib(8)))
    return res


def pe_library(name, resources):
    """A 32-bit library of one resource section: directories of types, numbers and languages."""
    rva = 0x1000
    types = sorted({t for t, _, _ in resources})
    by_type = {t: [(i, d) for tt, i, d in resources if tt == t] for t in types}
    at = 16 + 8 * len(types)
    name_dirs = {}
    for t in types:
        name_dirs[t] = at
        at += 16 + 8 * len(by_type[t])
    lang_dirs = at
    at += 24 * len(resources)
    entries_at = at
    at += 16 * len(resources)
    root = struct.pack('<IIHHHH', 0, 0, 0, 0, 0, len(types))
    root += b''.join(struct.pack('<II', t, 0x80000000 | name_dirs[t]) for t in types)
    names = langs = entries = data = b''
    k = 0
    for t in types:
        names += struct.pack('<IIHHHH', 0, 0, 0, 0, 0, len(by_type[t]))
        for rid, d in by_type[t]:
            names += struct.pack('<II', rid, 0x80000000 | (lang_dirs + 24 * k))
            langs += struct.pack('<IIHHHHII', 0, 0, 0, 0, 0, 1, 1033, entries_at + 16 * k)
            entries += struct.pack('<IIII', rva + at + len(data), len(d), 0, 0)
            data += d + bytes(-len(d) % 4)
            k += 1
    section = root + names + langs + entries + data
    section += bytes(-len(section) % 512)
    optional = bytearray(224)
    struct.pack_into('<H', optional, 0, 0x10B)
    struct.pack_into('<II', optional, 32, 0x1000, 0x200)
    struct.pack_into('<II', optional, 56, 0x1000 + len(section), 0x200)
    struct.pack_into('<H', optional, 68, 2)
    struct.pack_into('<I', optional, 92, 16)
    struct.pack_into('<II', optional, 112, rva, at)
    dos = b'MZ' + bytes(58) + struct.pack('<I', 64)
    head = dos + b'PE\0\0' + struct.pack('<HHIIIHH', 0x14C, 1, 0, 0, 0, 224, 0x2102) + optional
    head += struct.pack('<8sIIIIIIHHI', b'.rsrc', at, rva, len(section), 0x200, 0, 0, 0, 0,
                        0x40000040)
    write(name, head + bytes(0x200 - len(head)) + section)


def ne_library(name, resources):
    """A 16-bit library: its resource table counts offsets and lengths in 16-byte units."""
    types = sorted({t for t, _, _ in resources})
    table_size = 2 + 8 * len(types) + 12 * len(resources) + 3
    resident = bytes((5,)) + b'WHEEL' + bytes(3)
    data_at = (128 + table_size + len(resident) + 15) & ~15
    table = struct.pack('<H', 4)
    data = b''
    for t in types:
        items = [(i, d) for tt, i, d in resources if tt == t]
        table += struct.pack('<HHI', 0x8000 | t, len(items), 0)
        for rid, d in items:
            d += bytes(-len(d) % 16)
            table += struct.pack('<HHHHI', (data_at + len(data)) >> 4, len(d) >> 4, 0x30,
                                 0x8000 | rid, 0)
            data += d
    table += bytes(3)
    names = 64 + len(table)
    end = names + len(resident)
    ne = bytearray(64)
    ne[0:4] = b'NE\x05\x0a'
    struct.pack_into('<H', ne, 4, end)
    struct.pack_into('<HHHHH', ne, 0x22, 64, 64, names, end, end)
    ne[0x36] = 2
    out = b'MZ' + bytes(58) + struct.pack('<I', 64) + bytes(ne) + table + resident
    write(name, out + bytes(data_at - len(out)) + data)


def cdr(name):
    """A drawing whose "DISP" chunk holds its preview bitmap after a word of its own."""
    def chunk(tag, body):
        return tag + struct.pack('<I', len(body)) + body + bytes(len(body) % 2)
    body = chunk(b'vrsn', struct.pack('<H', 600)) + chunk(b'DISP', struct.pack('<I', 1) + dib(8))
    write(name, b'RIFF' + struct.pack('<I', 4 + len(body)) + b'CDR6' + body)


def windows_samples():
    bmp('wheel-rle8.rle', 8, rle=8)
    ico('wheels.ico', [(16, 12, 4), (32, 24, 8), (64, 48, 24)])
    pe_library('wheels.dll', library_resources())
    ne_library('wheels.vbx', library_resources())
    cdr('wheel.cdr')


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
    macpaint('wheel.mac')
    msp('wheel.msp')
    pfs_art('wheel.art')
    sstv('wheel.hrz')
    gem('wheel-8bit.img')
    pictor('wheel-ega.pic')
    halo('wheel-8bit.cut')
    wpg('wheel-8bit.wpg')
    windows_samples()
    photo_cd('wheel.pcd')
    text('poem.txt')
    self_displaying('wheel-viewer.exe', 'wheel-8bit.bmp')
    photo_paint6('wheel-photopaint6.cpt')
