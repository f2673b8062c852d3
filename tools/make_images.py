#!/usr/bin/env python3
"""Build-time generator of the editor's images.

Draws every image of resources/art as SVG, renders it with rsvg-convert and writes it as an RGBA
GdkPixdata record (<out>/<id>.gdkp); with --icons it also writes the Windows icon groups
(<out>/<id>.ico, each holding 16, 32, 48 and 256 pixel images). Only the standard library is used
besides rsvg-convert.

make_images.py ART_DIR OUT_DIR --ids ID... [--icons ID...]
"""

import argparse
import os
import struct
import subprocess
import sys
import zlib

GDKP_MAGIC = 0x47646B50
GDKP_RAW_RGBA = 0x01010002


def read_png_rgba(path):
    """Gives (width, height, rows of RGBA bytes) of an 8-bit RGBA or RGB PNG."""
    with open(path, "rb") as file:
        data = file.read()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        raise ValueError(f"{path}: not a PNG")
    offset = 8
    idat = b""
    width = height = colour_type = 0
    while offset < len(data):
        length, kind = struct.unpack(">I4s", data[offset:offset + 8])
        body = data[offset + 8:offset + 8 + length]
        offset += 12 + length
        if kind == b"IHDR":
            width, height, depth, colour_type, _, _, interlace = struct.unpack(">IIBBBBB", body)
            if depth != 8 or colour_type not in (2, 6) or interlace != 0:
                raise ValueError(f"{path}: unsupported PNG layout")
        elif kind == b"IDAT":
            idat += body
        elif kind == b"IEND":
            break
    channels = 4 if colour_type == 6 else 3
    stride = width * channels
    raw = zlib.decompress(idat)
    rows = []
    previous = bytearray(stride)
    for y in range(height):
        start = y * (stride + 1)
        filter_type = raw[start]
        line = bytearray(raw[start + 1:start + 1 + stride])
        for i in range(stride):
            left = line[i - channels] if i >= channels else 0
            up = previous[i]
            upper_left = previous[i - channels] if i >= channels else 0
            if filter_type == 1:
                line[i] = (line[i] + left) & 0xFF
            elif filter_type == 2:
                line[i] = (line[i] + up) & 0xFF
            elif filter_type == 3:
                line[i] = (line[i] + ((left + up) >> 1)) & 0xFF
            elif filter_type == 4:
                estimate = left + up - upper_left
                pa, pb, pc = abs(estimate - left), abs(estimate - up), abs(estimate - upper_left)
                predictor = left if pa <= pb and pa <= pc else (up if pb <= pc else upper_left)
                line[i] = (line[i] + predictor) & 0xFF
        previous = line
        if channels == 3:
            line = bytearray(b"".join(bytes(line[i:i + 3]) + b"\xff" for i in range(0, stride, 3)))
        rows.append(bytes(line))
    return width, height, rows


def write_pixdata(path, width, height, rows):
    """Writes a raw RGBA GdkPixdata record with straight alpha, top row first."""
    rowstride = 4 * width
    header = struct.pack(">6I", GDKP_MAGIC, 24 + rowstride * height, GDKP_RAW_RGBA, rowstride, width, height)
    with open(path, "wb") as file:
        file.write(header + b"".join(rows))


def ico_image_entry(width, height, rows, png_bytes):
    """One icon image: a 32-bit DIB with its AND mask, or the PNG itself at 256 pixels."""
    if width >= 256:
        return png_bytes
    info = struct.pack("<IiiHHIIiiII", 40, width, height * 2, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels = bytearray()
    for row in reversed(rows):
        for x in range(width):
            r, g, b, a = row[4 * x:4 * x + 4]
            pixels += bytes((b, g, r, a))
    mask_stride = ((width + 31) // 32) * 4
    mask = bytearray()
    for row in reversed(rows):
        bits = bytearray(mask_stride)
        for x in range(width):
            if row[4 * x + 3] == 0:
                bits[x // 8] |= 0x80 >> (x % 8)
        mask += bits
    return info + bytes(pixels) + bytes(mask)


def write_ico(path, images):
    """Writes an icon file from (size, rows, png bytes) triples."""
    directory = struct.pack("<HHH", 0, 1, len(images))
    offset = 6 + 16 * len(images)
    entries = b""
    blobs = b""
    for size, rows, png_bytes in images:
        blob = ico_image_entry(size, size, rows, png_bytes)
        dimension = 0 if size >= 256 else size
        entries += struct.pack("<BBBBHHII", dimension, dimension, 0, 0, 1, 32, len(blob), offset)
        offset += len(blob)
        blobs += blob
    with open(path, "wb") as file:
        file.write(directory + entries + blobs)


def render(svg_text, svg_path, png_path):
    with open(svg_path, "w", encoding="utf-8") as file:
        file.write(svg_text)
    subprocess.run([os.environ.get("RSVG_CONVERT", "rsvg-convert"), "--format=png", "--output", png_path, svg_path], check=True)


def scaled_svg(theme, width, height, view_width, view_height, body, defs):
    text = theme.svg(view_width, view_height, body, defs)
    return text.replace(f'width="{view_width}" height="{view_height}"', f'width="{width}" height="{height}"', 1)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("art_dir")
    parser.add_argument("out_dir")
    parser.add_argument("--ids", type=int, nargs="+", required=True)
    parser.add_argument("--icons", type=int, nargs="*", default=[])
    args = parser.parse_args()

    sys.path.insert(0, args.art_dir)
    import images  # noqa: E402 (the art lives beside the sources, not in this tool)
    import theme  # noqa: E402

    missing = sorted(set(args.ids) - set(images.IMAGES))
    unused = sorted(set(images.IMAGES) - set(args.ids))
    if missing or unused:
        sys.exit(f"make_images: the build lists {missing} without art, the art has {unused} unlisted")

    work_dir = os.path.join(args.out_dir, "svg")
    os.makedirs(work_dir, exist_ok=True)
    defs = theme.common_defs() + images.EXTRA_DEFS
    for image_id in args.ids:
        width, height, frame_count, draw = images.IMAGES[image_id]
        if height % frame_count != 0:
            sys.exit(f"make_images: image {image_id} is {height} high, not a whole number of {frame_count} frames")
        svg_path = os.path.join(work_dir, f"{image_id}.svg")
        png_path = os.path.join(work_dir, f"{image_id}.png")
        render(theme.svg(width, height, draw(), defs), svg_path, png_path)
        got_width, got_height, rows = read_png_rgba(png_path)
        if (got_width, got_height) != (width, height):
            sys.exit(f"make_images: image {image_id} rendered at {got_width} x {got_height}, not {width} x {height}")
        write_pixdata(os.path.join(args.out_dir, f"{image_id}.gdkp"), width, height, rows)

    for icon_id in args.icons:
        view_size, draw = images.ICONS[icon_id]
        entries = []
        for size in images.ICON_SIZES:
            svg_path = os.path.join(work_dir, f"icon{icon_id}_{size}.svg")
            png_path = os.path.join(work_dir, f"icon{icon_id}_{size}.png")
            render(scaled_svg(theme, size, size, view_size, view_size, draw(), defs), svg_path, png_path)
            _, _, rows = read_png_rgba(png_path)
            with open(png_path, "rb") as file:
                entries.append((size, rows, file.read()))
        write_ico(os.path.join(args.out_dir, f"{icon_id}.ico"), entries)


if __name__ == "__main__":
    main()
