#!/usr/bin/env python3
"""Writes a huge tiled BigTIFF whose tiles are those of a smaller file, over and over.

    repeat_tiff.py SOURCE COLUMNS ROWS OUTPUT [TOP]

SOURCE is tiled by 256, with overviews by halves. Of it a part of 128 x 64 tiles is stored once, with its overviews, and
the tile index of each level points at these tiles COLUMNS x ROWS times: every pixel is image data, the file stays small.
Below one tile the overviews of the part end; those that follow come whole from TOP, which was made of the last of them.
"""
import struct
import sys

PART_COLUMNS, PART_ROWS = 128, 64
TILE = 256
CELL, WEST, NORTH = 0.0005, -90.0, 82.0  # degrees

SUBFILE, WIDTH, HEIGHT, BITS, COMPRESSION, PHOTOMETRIC = 254, 256, 257, 258, 259, 262
SAMPLES, PLANAR, TILE_WIDTH, TILE_HEIGHT, OFFSETS, COUNTS = 277, 284, 322, 323, 324, 325
PIXEL_SCALE, TIE_POINT = 33550, 33922
COPIED = {BITS, COMPRESSION, PHOTOMETRIC, SAMPLES, PLANAR, TILE_WIDTH, TILE_HEIGHT, 339, 347, 530, 532}
GEO_KEYS = {34735, 34736, 34737}
FORMATS = {1: "B", 2: "s", 3: "H", 4: "I", 5: "II", 7: "B", 12: "d", 16: "Q", 18: "Q"}


class Level:
    """One image of a file: its tags, as (type, values), and where its tiles are."""

    def __init__(self, tags):
        self.tags = tags
        self.columns = -(-self.value(WIDTH) // TILE)
        self.rows = -(-self.value(HEIGHT) // TILE)

    def value(self, tag):
        return self.tags[tag][1][0]


def read_values(file, kind, count, inline, pointer_format):
    layout = "<" + (f"{count}s" if kind == 2 else FORMATS[kind] * count)
    size = struct.calcsize(layout)
    if size > len(inline):
        file.seek(struct.unpack(pointer_format, inline)[0])
        inline = file.read(size)
    return struct.unpack(layout, inline[:size])


def read_levels(file):
    magic, version = struct.unpack("<2sH", file.read(4))
    if magic != b"II" or version not in (42, 43):
        sys.exit(f"{file.name}: not a little-endian TIFF")
    big = version == 43
    pointer_format, count_format, entry_format = ("<Q", "<Q", "<HHQ8s") if big else ("<I", "<H", "<HHI4s")
    file.seek(8 if big else 4)
    pointer = struct.unpack(pointer_format, file.read(struct.calcsize(pointer_format)))[0]
    levels = []
    while pointer:
        file.seek(pointer)
        number = struct.unpack(count_format, file.read(struct.calcsize(count_format)))[0]
        entries = file.read(number * struct.calcsize(entry_format))
        pointer = struct.unpack(pointer_format, file.read(struct.calcsize(pointer_format)))[0]
        tags = {}
        for tag, kind, count, inline in struct.iter_unpack(entry_format, entries):
            if kind in FORMATS:
                tags[tag] = (kind, read_values(file, kind, count, inline, pointer_format))
        levels.append(Level(tags))
    return levels


def copy_tiles(source, level, columns, rows, output):
    """Copies the first tiles of each row; returns a list of rows of (offset, size)."""
    offsets, counts = level.tags[OFFSETS][1], level.tags[COUNTS][1]
    index = []
    for row in range(rows):
        index.append([])
        for column in range(columns):
            tile = row * level.columns + column
            source.seek(offsets[tile])
            index[-1].append((output.tell(), counts[tile]))
            output.write(source.read(counts[tile]))
    return index


def write_image(output, level, width, height, index, extra):
    """Writes an image file directory; returns where it is and where its link to the next one is."""
    tags = {tag: value for tag, value in level.tags.items() if tag in COPIED}
    tags.update(extra)
    tags[WIDTH] = (4, (width,))
    tags[HEIGHT] = (4, (height,))
    tags[OFFSETS] = (16, [offset for row in index for offset, _ in row])
    tags[COUNTS] = (4, [size for row in index for _, size in row])
    entries = b""
    for tag, (kind, values) in sorted(tags.items()):
        if kind == 2:
            data, count = values[0], len(values[0])
        else:
            count = len(values) // len(FORMATS[kind])
            data = struct.pack("<" + FORMATS[kind] * count, *values)
        if len(data) > 8:
            output.write(b"\0" * (-output.tell() % 8))
            place = output.tell()
            output.write(data)
            data = struct.pack("<Q", place)
        entries += struct.pack("<HHQ", tag, kind, count) + data.ljust(8, b"\0")
    output.write(b"\0" * (-output.tell() % 8))
    start = output.tell()
    output.write(struct.pack("<Q", len(tags)) + entries)
    link = output.tell()
    output.write(struct.pack("<Q", 0))
    return start, link


def main():
    source_path, columns, rows, output_path = sys.argv[1], int(sys.argv[2]), int(sys.argv[3]), sys.argv[4]
    top_path = sys.argv[5] if len(sys.argv) > 5 else None
    with open(output_path, "wb") as output:
        output.write(struct.pack("<2sHHHQ", b"II", 43, 8, 0, 0))
        images = []  # level, width, height, tile index
        with open(source_path, "rb") as source:
            part_columns, part_rows = PART_COLUMNS, PART_ROWS
            for level in read_levels(source):
                part = copy_tiles(source, level, part_columns, part_rows, output)
                index = [row * columns for row in part] * rows
                images.append((level, part_columns * columns * TILE, part_rows * rows * TILE, index))
                if part_columns % 2 or part_rows % 2:
                    break
                part_columns //= 2
                part_rows //= 2
        if top_path:
            with open(top_path, "rb") as top:
                for level in read_levels(top):
                    index = copy_tiles(top, level, level.columns, level.rows, output)
                    images.append((level, level.value(WIDTH), level.value(HEIGHT), index))

        geo = {tag: value for tag, value in images[0][0].tags.items() if tag in GEO_KEYS}
        geo[PIXEL_SCALE] = (12, (CELL, CELL, 0.0))
        geo[TIE_POINT] = (12, (0.0, 0.0, 0.0, WEST, NORTH, 0.0))
        link = 8
        for number, (level, width, height, index) in enumerate(images):
            extra = geo if number == 0 else {SUBFILE: (4, (1,))}
            start, next_link = write_image(output, level, width, height, index, extra)
            output.seek(link)
            output.write(struct.pack("<Q", start))
            output.seek(0, 2)
            link = next_link


if __name__ == "__main__":
    main()
