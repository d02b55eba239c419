"""Makes the seeds of the target font: one small font of each kind that FreeType reads.

Usage: font_seeds.py FOLDER [--check]

Writes files named after their kind; with --check, names those in the folder that are not as they would
be written, with exit status 1 when there is one. Each holds the letter A, a triangle or some pixels, and a glyph
for the characters that it lacks. An input of the target is the height in points, two bytes with the
low one first, and the font file. The same call writes the same bytes.
"""
import gzip
import pathlib
import struct
import sys

UNITS = 64  # of the em of the outline fonts

# ---- sfnt: TrueType, OpenType, WOFF -------------------------------------------------------------


def sfnt(tables, version=b"\0\1\0\0"):
    """A font file of tables, a dictionary from tag to bytes."""
    offset = 12 + 16 * len(tables)
    directory = version + struct.pack(">4H", len(tables), 16, 0, 0)
    body = b""
    for tag, data in sorted(tables.items()):
        directory += tag.encode() + struct.pack(">3L", 0, offset + len(body), len(data))
        body += data + b"\0" * (-len(data) % 4)
    return directory + body


def common_tables(ascent=UNITS):
    """What every sfnt has: two glyphs, of which the second is A."""
    head = struct.pack(">4L2H2Q4h2H3h", 0x10000, 0, 0, 0x5F0F3CF5, 0, UNITS, 0, 0, 0, 0, 48, 48,
                       0, 8, 2, 0, 0)
    hhea = struct.pack(">L3hH3h3h4h2h", 0x10000, ascent, 0, 0, 56, 0, 0, 48, 1, 0, 0, 0, 0, 0, 0,
                       0, 2)
    segments = struct.pack(">7H", 4, 32, 0, 4, 4, 1, 0)
    segments += struct.pack(">9H", 65, 0xFFFF, 0, 65, 0xFFFF, 0x10000 - 64, 1, 0, 0)
    return {
        "head": head,
        "hhea": hhea,
        "hmtx": struct.pack(">4h", 32, 0, 56, 4),
        "cmap": struct.pack(">4HL", 0, 1, 3, 1, 12) + segments,
    }


def truetype():
    """A TrueType font whose A is a triangle."""
    points = [(4, 0), (52, 0), (28, 48)]
    glyph = struct.pack(">5h2H", 1, 4, 0, 52, 48, 2, 0) + b"\1\1\1"
    previous = (0, 0)
    for axis in (0, 1):
        for point in points:
            glyph += struct.pack(">h", point[axis] - previous[axis])
            previous = (point[0], previous[1]) if axis == 0 else (previous[0], point[1])
    glyph += b"\0" * (-len(glyph) % 2)
    tables = common_tables()
    tables["maxp"] = struct.pack(">L14H", 0x10000, 2, 3, 1, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0)
    tables["loca"] = struct.pack(">3H", 0, 0, len(glyph) // 2)
    tables["glyf"] = glyph
    return sfnt(tables)


def bitmap_truetype():
    """A TrueType font without outlines: its A is 8 by 8 pixels at 16 pixels an em."""
    pixels = bytes([0x10, 0x10, 0x28, 0x28, 0x44, 0x7C, 0x82, 0x82])
    image = struct.pack(">2B2bB", 8, 8, 0, 8, 9) + pixels
    line = struct.pack(">2b10B", 12, -4, 9, *[0] * 9)
    subtable = struct.pack(">2HL", 1, 1, 8) + struct.pack(">2HL3L", 1, 1, 4, 0, len(image), 0)
    size = struct.pack(">4L", 56, len(subtable), 1, 0) + line + line
    size += struct.pack(">2H3Bb", 1, 1, 16, 16, 1, 1)
    tables = common_tables()
    tables["maxp"] = struct.pack(">LH", 0x5000, 2)
    tables["EBDT"] = struct.pack(">L", 0x20000) + image
    tables["EBLC"] = struct.pack(">2L", 0x20000, 1) + size + subtable
    return sfnt(tables)


def woff(font):
    """An sfnt as a web font, its tables uncompressed."""
    count = struct.unpack(">H", font[4:6])[0]
    directory, body = b"", b""
    start = 44 + 20 * count
    for i in range(count):
        tag, checksum, offset, length = struct.unpack(">4s3L", font[12 + 16 * i:28 + 16 * i])
        directory += struct.pack(">4s4L", tag, start + len(body), length, length, checksum)
        body += font[offset:offset + length] + b"\0" * (-length % 4)
    total = start + len(body)
    header = struct.pack(">4s4sL2HL2H5L", b"wOFF", font[:4], total, count, 0, len(font), 1, 0,
                         0, 0, 0, 0, 0)
    return header + directory + body


# ---- CFF ----------------------------------------------------------------------------------------


def number(value):
    """A number of CFF's dictionaries and Type 2 charstrings, in the form of three bytes."""
    return b"\x1c" + struct.pack(">h", value)


def index(items):
    if not items:
        return b"\0\0"
    offsets, end = b"", 1
    for item in [b""] + items:
        end += len(item)
        offsets += struct.pack(">H", end)
    return struct.pack(">HB", len(items), 2) + offsets + b"".join(items)


def cff():
    """A bare CFF font whose A is a triangle."""
    triangle = b"".join([number(4), number(0), b"\x15", number(48), number(0), b"\x05",
                         number(-24), number(48), b"\x05\x0e"])
    charstrings = index([b"\x0e", triangle])
    charset = b"\0" + struct.pack(">H", 34)  # glyph 1 has the standard name A
    private = number(20) + b"\x14"  # defaultWidthX
    header = b"\1\0\4\2" + index([b"Seed"])
    scale = b"\x1e\xa0\x15\x62\x5f"  # the number 0.015625
    matrix = scale + (number(0) + number(0)) + scale + (number(0) + number(0)) + b"\x0c\7"

    def top(first):
        places = [first, first + len(charset), first + len(charset) + len(charstrings)]
        entries = matrix + number(places[0]) + b"\x0f" + number(places[1]) + b"\x11"
        return index([entries + number(len(private)) + number(places[2]) + b"\x12"])

    rest = index([]) + index([])  # names and subroutines
    first = len(header) + len(top(0)) + len(rest)
    return header + top(first) + rest + charset + charstrings + private


def opentype():
    """The same in an sfnt."""
    tables = common_tables()
    tables["maxp"] = struct.pack(">LH", 0x5000, 2)
    tables["CFF "] = cff()
    return sfnt(tables, b"OTTO")


# ---- PostScript fonts ---------------------------------------------------------------------------


def encrypt(data, key):
    result = b""
    for byte in data:
        cipher = byte ^ (key >> 8)
        key = ((cipher + key) * 52845 + 22719) & 0xFFFF
        result += bytes([cipher])
    return result


def charstring(*commands):
    """A Type 1 charstring, encrypted: numbers of -107 to 107, and operators as bytes."""
    data = b"".join(c if isinstance(c, bytes) else bytes([c + 139]) for c in commands)
    return encrypt(b"\0\0\0\0" + data, 4330)


TRIANGLE = charstring(4, 56, b"\x0d", 0, 0, b"\x15", 48, 0, b"\x05", -24, 48, b"\x05\x09\x0e")
MISSING = charstring(0, 32, b"\x0d\x0e")


def type1_parts():
    clear = (b"%!PS-AdobeFont-1.0: Seed\n11 dict begin\n/FontType 1 def\n/FontName /Seed def\n"
             b"/PaintType 0 def\n/FontMatrix [0.015625 0 0 0.015625 0 0] def\n"
             b"/Encoding 256 array\n0 1 255 {1 index exch /.notdef put} for\ndup 65 /A put\n"
             b"readonly def\n/FontBBox {0 0 48 48} def\ncurrentdict end\ncurrentfile eexec\n")
    private = b"dup /Private 8 dict dup begin\n/RD {string currentfile exch readstring pop} def\n"
    private += b"/ND {def} def\n/NP {put} def\n/BlueValues [0 0 48 48] def\n/password 5839 def\n"
    private += b"2 index /CharStrings 2 dict dup begin\n"
    for name, glyph in ((b".notdef", MISSING), (b"A", TRIANGLE)):
        private += b"/%s %d RD %s ND\n" % (name, len(glyph), glyph)
    private += b"end\nend\nreadonly put\nput\ndup /FontName get exch definefont pop\n"
    private += b"mark currentfile closefile\n"
    return clear, encrypt(b"\0\0\0\0" + private, 55665), b"0" * 64 + b"\ncleartomark\n"


def type1():
    """A Type 1 font of hexadecimal text."""
    clear, private, end = type1_parts()
    return clear + private.hex().encode() + b"\n" + end


def type1_binary():
    """The same in binary segments."""
    font = b""
    for kind, part in zip((1, 2, 1), type1_parts()):
        font += struct.pack("<2BL", 128, kind, len(part)) + part
    return font + b"\x80\x03"


def cid():
    """A CID-keyed font of two glyphs and one dictionary."""
    glyphs = [TRIANGLE, MISSING]  # FreeType knows no characters of such fonts: it draws the first
    offset = 4 * (len(glyphs) + 1)  # behind the map of one byte for the dictionary, 3 for the place
    table, body = b"", b""
    for glyph in glyphs + [b""]:
        table += struct.pack(">L", offset + len(body))
        body += glyph
    data = table + body
    text = (b"%%!PS-Adobe-3.0 Resource-CIDFont\n/CIDInit /ProcSet findresource begin\n"
            b"16 dict begin\n/CIDFontName /Seed def\n/CIDFontType 0 def\n"
            b"/CIDSystemInfo 3 dict dup begin\n/Registry (Adobe) def\n/Ordering (Identity) def\n"
            b"/Supplement 0 def\nend def\n/FontBBox [0 0 48 48] def\n/CIDMapOffset 0 def\n"
            b"/FDBytes 1 def\n/GDBytes 3 def\n/CIDCount %d def\n/FDArray 1 array\n"
            b"dup 0\n%%ADOBeginFontDict\n10 dict begin\n/FontType 1 def\n/FontName /Seed0 def\n"
            b"/FontMatrix [0.015625 0 0 0.015625 0 0] def\n/PaintType 0 def\n"
            b"%%ADOBeginPrivateDict\n/Private 8 dict dup begin\n/BlueValues [0 0 48 48] def\n"
            b"/SubrMapOffset 0 def\n/SDBytes 0 def\n/SubrCount 0 def\n/lenIV 4 def\n"
            b"/password 5839 def\nend def\n%%ADOEndPrivateDict\ncurrentdict end\n"
            b"%%ADOEndFontDict\nput\ndef\n(Binary) %d StartData " % (len(glyphs), len(data)))
    return text + data + b"%%EndData\n"


def type42():
    """A Type 42 font around the TrueType one."""
    lines = truetype().hex().upper()
    wrapped = "\n".join(lines[i:i + 76] for i in range(0, len(lines), 76)).encode()
    return (b"%!PS-TrueTypeFont-65536-65536\n11 dict begin\n/FontName /Seed def\n/FontType 42 def\n"
            b"/FontMatrix [1 0 0 1 0 0] def\n/FontBBox [0 0 1 1] def\n/PaintType 0 def\n"
            b"/Encoding 256 array\n0 1 255 {1 index exch /.notdef put} for\ndup 65 /A put\n"
            b"readonly def\n/sfnts [<\n" + wrapped + b"00\n>] def\n"
            b"/CharStrings 2 dict dup begin\n/.notdef 0 def\n/A 1 def\nend readonly def\n"
            b"FontName currentdict end definefont pop\n"
            # FreeType wants as many bytes behind the wrapped font as are in it.
            b"%" + b"=" * len(truetype()) + b"\n")


# ---- PFR ----------------------------------------------------------------------------------------


def u24(value):
    return struct.pack(">L", value)[1:]


def pfr():
    """A portable font resource with the letter A alone."""
    glyph = b"\0" + struct.pack(">B2h", 0x55, 4, 0)  # no controls, move to a point
    glyph += struct.pack(">B2hB2hB", 0x15, 52, 0, 0x15, 28, 48, 0)  # two lines, the end
    physical = struct.pack(">3H4hB", 0, UNITS, UNITS, 0, 0, 48, 48, 4)  # proportional
    physical += u24(0) + b"\0" + struct.pack(">2B3H", 0, 0, 0, 0, 1)
    physical += struct.pack(">BhBH", 65, 56, len(glyph), 1)  # at 1: FreeType takes 0 for no glyph
    header_size, directory_size, logical_size = 58, 7, 18
    logical_at = header_size + directory_size
    physical_at = logical_at + logical_size
    glyphs_at = physical_at + len(physical)
    header = b"PFR0" + struct.pack(">6H", 4, 0x0D0A, header_size, directory_size, header_size,
                                   logical_size)
    header += u24(logical_size) + u24(logical_at)
    header += struct.pack(">H", len(physical)) + u24(len(physical)) + u24(physical_at)
    header += struct.pack(">H", len(glyph)) + u24(1 + len(glyph)) + u24(glyphs_at)
    header += b"\0" * 14 + struct.pack(">H2BH", 1, 0, 0, 1)
    directory = struct.pack(">2H", 1, logical_size) + u24(logical_at)
    logical = u24(256) + u24(0) + u24(0) + u24(256) + b"\0"
    logical += struct.pack(">H", len(physical)) + u24(physical_at)
    return header + directory + logical + physical + b"\0" + glyph


# ---- Bitmap fonts -------------------------------------------------------------------------------

LETTER = [0x10, 0x10, 0x28, 0x28, 0x44, 0x7C, 0x82, 0x82]  # 8 by 8 pixels, the top row first


def bdf(bitmap=True, box="8 8 0 0"):
    """A bitmap font as text.

    bitmap: whether A has one; without it FreeType gives the glyph a size and no pixels.
    """
    rows = "BITMAP\n" + "".join(f"{row:02X}\n" for row in LETTER) if bitmap else ""
    return ("STARTFONT 2.1\nFONT -s-s-m-r-normal--16-120-96-96-c-100-iso10646-1\nSIZE 12 96 96\n"
            "FONTBOUNDINGBOX 8 16 0 0\nSTARTPROPERTIES 2\nFONT_ASCENT 16\nFONT_DESCENT 0\n"
            f"ENDPROPERTIES\nCHARS 1\nSTARTCHAR A\nENCODING 65\nDWIDTH 9 0\nBBX {box}\n{rows}"
            "ENDCHAR\nENDFONT\n").encode()


def bdf_shortest():
    """The shortest font whose glyphs have a size and no pixels."""
    return ("STARTFONT 2.1\nFONT s\nSIZE 12 96 96\nFONTBOUNDINGBOX 8 16 0 0\n"
            "STARTPROPERTIES 2\nFONT_ASCENT 16\nFONT_DESCENT 0\nENDPROPERTIES\nCHARS 1\n"
            "STARTCHAR A\nENCODING 0\nDWIDTH 8 0\nBBX 8 16 0 0\nENDCHAR\nENDFONT\n").encode()


def pcf():
    """A compiled bitmap font, the low bytes first."""
    metrics = struct.pack("<5hH", 0, 8, 9, 8, 0, 0)
    accelerators = struct.pack("<L8B2lL", 0, *[0] * 8, 8, 0, 0) + metrics + metrics
    names, pairs = b"", b""
    values = {b"PIXEL_SIZE": 16, b"CHARSET_REGISTRY": b"ISO10646", b"CHARSET_ENCODING": b"1"}
    for name, value in values.items():
        is_text = isinstance(value, bytes)
        pairs += struct.pack("<LB", len(names), is_text)
        names += name + b"\0"
        pairs += struct.pack("<l", len(names) if is_text else value)
        names += value + b"\0" if is_text else b""
    pairs += b"\0" * (-len(values) % 4)
    properties = struct.pack("<2L", 0, len(values)) + pairs + struct.pack("<L", len(names)) + names
    table = struct.pack("<2L", 0, 1) + metrics
    rows = b"".join(bytes([row, 0, 0, 0]) for row in LETTER)  # padded to 4 bytes
    reversed_rows = bytes(int(f"{byte:08b}"[::-1], 2) for byte in rows)
    sizes = [len(rows) // 4, len(rows) // 2, len(rows), 2 * len(rows)]
    bitmaps = struct.pack("<3L4L", 2, 1, 0, *sizes) + reversed_rows
    encodings = struct.pack("<L5hH", 0, 65, 65, 0, 0, 65, 0)
    tables = [(1, 0, properties), (2, 0, accelerators), (4, 0, table), (8, 2, bitmaps),
              (32, 0, encodings)]
    offset = 8 + 16 * len(tables)
    directory, body = b"\1fcp" + struct.pack("<L", len(tables)), b""
    for kind, form, data in tables:
        data += b"\0" * (-len(data) % 4)
        directory += struct.pack("<4L", kind, form, len(data), offset + len(body))
        body += data
    return directory + body


def windows():
    """A bitmap font of Windows, version 2, without the program around it."""
    pixels = bytes(LETTER) * 2  # 8 by 16, one column of bytes
    header_size = 118
    table = header_size + 4 * 3  # widths and places of A, B and the end
    size = table + 2 * len(pixels)
    header = struct.pack("<HL60s", 0x200, size, b"Seed")
    header += struct.pack("<7H", 0, 12, 96, 96, 16, 0, 0) + struct.pack("<3BHB", 0, 0, 0, 400, 0)
    header += struct.pack("<2HB2H", 8, 16, 0, 8, 8) + struct.pack("<4BH", 65, 66, 1, 0, 2)
    header += struct.pack("<4LB", 0, 0, 0, table, 0)
    places = struct.pack("<6H", 8, table, 8, table + len(pixels), 0, 0)
    return header + places + pixels + pixels


# ---- Seeds --------------------------------------------------------------------------------------


def seeds():
    """Pairs of a name and an input."""
    outlines = {
        "truetype": truetype(), "woff": woff(truetype()), "cff": cff(), "opentype": opentype(),
        "type1": type1(), "type1-binary": type1_binary(), "cid": cid(), "type42": type42(),
        "pfr": pfr(),
    }
    bitmaps = {
        "truetype-bitmap": bitmap_truetype(), "bdf": bdf(), "bdf-no-bitmap": bdf(bitmap=False),
        "bdf-shortest": bdf_shortest(), "bdf-wide": bdf(box="300 8 0 0"), "pcf": pcf(),
        "pcf-gzip": gzip.compress(pcf(), mtime=0), "windows": windows(),
    }
    for name, font in outlines.items():
        yield name, struct.pack("<H", 12) + font
    for name in ("truetype", "opentype", "type1", "cid", "type42"):
        yield f"{name}-1", struct.pack("<H", 1) + outlines[name]
        yield f"{name}-300", struct.pack("<H", 300) + outlines[name]
    for name, font in bitmaps.items():
        yield name, struct.pack("<H", 12) + font


def main(folder, *options):
    folder = pathlib.Path(folder)
    if "--check" in options:
        stale = [name for name, data in seeds() if (folder / name).read_bytes() != data]
        print("\n".join(stale))
        return 1 if stale else 0
    for name, data in seeds():
        (folder / name).write_bytes(data)
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
