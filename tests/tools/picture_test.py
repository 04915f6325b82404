#!/usr/bin/env python3
"""picture_test.py KZGIS DATA title|bank|dem: looks at the pixels of a picture.

Where something must be is worked out here, from the numbers in the file and a line of spherical
trigonometry; how light falls on a relief is GDAL's word.
"""
import gzip
import json
import math
import pathlib
import struct
import subprocess
import sys
import tempfile
import zlib


class Picture:
    """A PNG of 8 bits a channel, decoded after RFC 2083."""

    def __init__(self, path):
        data = pathlib.Path(path).read_bytes()
        place, packed = 8, b""
        while place < len(data):
            length, kind = struct.unpack_from(">I4s", data, place)
            chunk = data[place + 8:place + 8 + length]
            if kind == b"IHDR":
                self.width, self.height, depth, colours, *_ = struct.unpack(">IIBBBBB", chunk)
            elif kind == b"IDAT":
                packed += chunk
            place += 12 + length
        assert depth == 8 and colours in (2, 6)
        self.step = 3 if colours == 2 else 4
        raw, self.rows = zlib.decompress(packed), []
        above, stride = bytes(self.width * self.step), self.width * self.step
        for y in range(self.height):
            start = y * (stride + 1)
            above = self.unfiltered(raw[start], bytearray(raw[start + 1:start + 1 + stride]), above)
            self.rows.append(above)

    def unfiltered(self, kind, row, above):
        step = self.step
        for i in range(len(row) if kind else 0):
            left = row[i - step] if i >= step else 0
            up, corner = above[i], above[i - step] if i >= step else 0
            if kind == 1:
                guess = left
            elif kind == 2:
                guess = up
            elif kind == 3:
                guess = (left + up) // 2
            else:
                guess = min((abs(up - corner), 0, left), (abs(left - corner), 1, up),
                            (abs(left + up - 2 * corner), 2, corner))[2]
            row[i] = (row[i] + guess) & 255
        return row

    def at(self, x, y):
        return tuple(self.rows[y][x * self.step:x * self.step + 3])

    def marks(self, y):
        """The columns of a row that are not white."""
        return [x for x in range(self.width) if self.at(x, y) != (255, 255, 255)]


def shapes(path):
    """The points of each record (ESRI Shapefile Technical Description, 1998)."""
    data, place = pathlib.Path(path).read_bytes(), 100
    while place < len(data):
        words, kind = struct.unpack_from(">I", data, place + 4)[0], data[place + 8]
        if kind == 1:
            yield [struct.unpack_from("<2d", data, place + 12)]
        else:
            parts, points = struct.unpack_from("<2i", data, place + 44)
            numbers = struct.unpack_from(f"<{2 * points}d", data, place + 52 + 4 * parts)
            yield list(zip(numbers[::2], numbers[1::2]))
        place += 8 + 2 * words


def expect(fine, text):
    if not fine:
        sys.exit(text)


def correlation(pairs):
    n = len(pairs)
    mean_a, mean_b = sum(a for a, _ in pairs) / n, sum(b for _, b in pairs) / n
    both = sum((a - mean_a) * (b - mean_b) for a, b in pairs)
    return both / math.sqrt(sum((a - mean_a) ** 2 for a, _ in pairs)
                            * sum((b - mean_b) ** 2 for _, b in pairs))


def title(draw, data):
    """The title stands above the map, in the middle, and every place under its coordinates."""
    places = f"{data}/ne/ne_110m_places.shp"
    arguments = ["map", f"{data}/ne/ne_110m_coastline.shp", places, "--size", "800x440"]
    widths = []
    for text in ("", "Coasts", "CoastsCoasts"):
        picture = draw(*arguments, *(["--title", text] if text else []))
        rows = [picture.marks(y) for y in range(picture.height)]
        top = next(y for y, row in enumerate(rows) if len(row) > picture.width / 2)
        bottom = max(y for y, row in enumerate(rows) if len(row) > picture.width / 2)
        left, right = rows[(top + bottom) // 2][0], rows[(top + bottom) // 2][-1]
        ink = sorted({x for row in rows[:top] for x in row})
        expect(bool(ink) == bool(text), f"title '{text}': {len(ink)} columns of ink above the map")
        if text:
            widths.append(ink[-1] - ink[0] + 1)
            expect(abs(ink[0] + ink[-1] - left - right) <= 4, f"title '{text}' is off the middle")
        for ((lon, lat),) in shapes(places):
            x = left + (lon + 180) / 360 * (right - left)
            y = bottom - (lat + 90) / 180 * (bottom - top)
            around = [picture.at(round(x) + a, round(y) + b) for a in (-1, 0, 1) for b in (-1, 0, 1)]
            expect(any(red > green + 40 and red > blue + 40 for red, green, blue in around),
                   f"nothing at {lat}, {lon}")
    expect(1.9 < widths[1] / widths[0] < 2.1, f"titles of one and two words: {widths} pixels")


def bank(draw, data):
    """The rivers of a bank lie over the land, and the rest of the map is as without them."""
    size, (base_lat, base_lon) = 600, (math.radians(20), math.radians(90))
    arguments = ["map", f"{data}/ne/ne_110m_land.shp", "--to", "globe", "--base", "20,90",
                 "--graticule", "0", "--size", f"{size}x{size}"]
    without = draw(*arguments)
    picture = draw(*arguments, "--bank", draw.pack(f"{data}/wdb/riv.shp"))
    disc = [x for y in range(size) for x in without.marks(y)]
    radius, middle = (max(disc) - min(disc)) / 2, (max(disc) + min(disc)) / 2
    near, bluer, seen = set(), 0, 0
    for points in shapes(f"{data}/wdb/riv.shp"):
        before = None
        for lon, lat in ((math.radians(lon), math.radians(lat)) for lon, lat in points):
            depth = (math.sin(base_lat) * math.sin(lat)
                     + math.cos(base_lat) * math.cos(lat) * math.cos(lon - base_lon))
            x = middle + radius * math.cos(lat) * math.sin(lon - base_lon)
            y = middle - radius * (math.cos(base_lat) * math.sin(lat)
                                   - math.sin(base_lat) * math.cos(lat) * math.cos(lon - base_lon))
            steps = 1 if before is None else 1 + int(math.dist(before, (x, y)))
            for i in range(1, steps + 1) if depth > -0.05 else ():
                at_x, at_y = (x, y) if before is None else (
                    before[0] + (x - before[0]) * i / steps, before[1] + (y - before[1]) * i / steps)
                near |= {(round(at_x) + a, round(at_y) + b)
                         for a in range(-2, 3) for b in range(-2, 3)}
            before = (x, y)
            if depth > 0.2:
                place = round(x), round(y)
                (red, _, blue), (red_without, _, blue_without) = picture.at(*place), without.at(*place)
                seen += 1
                bluer += blue - red > blue_without - red_without
    changed = {(x, y) for y in range(size) if picture.rows[y] != without.rows[y]
               for x in range(size) if picture.at(x, y) != without.at(x, y)}
    expect(seen > 5000 and bluer > 0.9 * seen, f"{bluer} of {seen} points of rivers are drawn")
    expect(len(changed) > 5000 and changed <= near,
           f"{len(changed - near)} of {len(changed)} pixels changed away from rivers")


def dem(draw, data):
    """Light falls as GDAL's does, and the higher, the less green."""
    picture = draw("dem", f"{data}/dem/st_helens.dem.gz")
    grid, heights = draw.tmp / "grid.dem", draw.tmp / "heights"
    grid.write_bytes(gzip.decompress(pathlib.Path(f"{data}/dem/st_helens.dem.gz").read_bytes()))

    def gdal(*command):
        return subprocess.run(command, check=True, capture_output=True).stdout

    columns, rows = json.loads(gdal("gdalinfo", "-json", grid))["size"]
    gdal("gdal_translate", "-q", "-of", "ENVI", "-ot", "Int16", grid, heights)
    gdal("gdaldem", "hillshade", "-q", "-of", "ENVI", "-az", "315", "-alt", "45", grid,
         draw.tmp / "light")
    height_of = struct.unpack(f"<{rows * columns}h", heights.read_bytes())
    light_of = (draw.tmp / "light").read_bytes()

    # The map is the tallest thing between two white rows.
    blocks, start = [], None
    for y in range(picture.height + 1):
        white = y == picture.height or not picture.marks(y)
        if not white and start is None:
            start = y
        elif white and start is not None:
            blocks.append((y - start, start))
            start = None
    tall, top = max(blocks)
    marks = [x for y in range(top, top + tall) for x in picture.marks(y)]
    left, wide = min(marks), max(marks) - min(marks) + 1
    light, warmth = [], []
    for row in range(5, rows, 7):
        for column in range(20, columns - 20, 7):
            cell = row * columns + column
            red, green, blue = picture.at(left + int((column + 0.5) / columns * wide),
                                          top + int((row + 0.5) / rows * tall))
            if height_of[cell] > 0 and (red, green, blue) != (255, 255, 255):
                light.append((light_of[cell], red + green + blue))
                warmth.append((height_of[cell], (red - green) / (red + green)))
    expect(len(light) > 0.8 * rows * columns / 49 * (columns - 40) / columns, f"{len(light)} cells")
    expect(correlation(light) > 0.7, f"light goes with GDAL's by {correlation(light):.2f}")
    expect(correlation(warmth) > 0.8, f"colour goes with height by {correlation(warmth):.2f}")


class Drawing:
    """Runs the command in a directory of its own; it must say nothing."""

    def __init__(self, kzgis, tmp):
        self.kzgis, self.tmp = kzgis, pathlib.Path(tmp)

    def __call__(self, *arguments):
        path = str(self.tmp / "picture.png")
        run = subprocess.run([self.kzgis, *arguments, "-o", path], capture_output=True, text=True,
                             timeout=120, check=False)
        expect(run.returncode == 0 and not run.stdout + run.stderr, f"{arguments}: {run}")
        return Picture(path)

    def pack(self, layer):
        subprocess.run([self.kzgis, "pack", layer, self.tmp], check=True, capture_output=True)
        return str(self.tmp)


def main():
    kzgis, data, subject = sys.argv[1:]
    with tempfile.TemporaryDirectory() as tmp:
        {"title": title, "bank": bank, "dem": dem}[subject](Drawing(kzgis, tmp), data)


if __name__ == "__main__":
    main()
