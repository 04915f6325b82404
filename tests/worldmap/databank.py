#!/usr/bin/env python3
"""Compares WorldMap and read_databank with decoders of its own on random data banks.

    databank.py DUMP_PROGRAM FIRST_SEED COUNT

Written from the tables of the file format and the rules of loading, not from the library.
Every seed makes one data bank and one load of it; the outputs, messages and progress
reports included, are compared whole.  A difference names its seed.
"""
import os
import random
import struct
import subprocess
import sys
import tempfile

TURN, HALF = 1296000, 648000
MAGIC = 0x20770002
CONTINENTS = ['africa', 'asia', 'europe', 'namer', 'samer']
NAMES = ['Africa', 'Asia', 'Europe', 'NoAm', 'SoAm']
FILES = ['bdy.cbd', 'pby.cbd', 'cil.cbd', 'riv.cbd']
THEMES = ['Geographic', 'Political', 'Coastal', 'River']


# ---- the decoder -----------------------------------------------------------------------

def wrap32(value):
    return (value + 2**31) % 2**32 - 2**31


def single(value):
    return struct.unpack('f', struct.pack('f', value))[0]


def cut(rise, reach, run, start):
    value = single(single(single(wrap32(rise * reach)) / single(wrap32(run))) + single(start))
    return int(value) if -2**31 <= value < 2**31 else -2**31


class Point:
    """A position from arc-seconds, kept in degrees."""

    def __init__(self, lat, lon):
        self.set(lat / 3600.0, lon / 3600.0)

    def set(self, lat, lon):
        while lon < 0:
            lon += 360.0
        while lon >= 360:
            lon -= 360.0
        self.lat, self.lon = min(max(lat, -90.0), 90.0), lon

    def square_distance(self, other):
        dlon, dlat = (other.lon - self.lon) * 3600.0, (other.lat - self.lat) * 3600.0
        return dlon * dlon + dlat * dlat


class Bytes:
    """A file; a field that is cut off by its end, and all after it, are not there."""

    def __init__(self, data):
        self.data, self.at = data, 0

    def field(self, code, old):
        size = struct.calcsize(code)
        if self.at + size > len(self.data):
            self.at = len(self.data)
            return old
        value, = struct.unpack_from(code, self.data, self.at)
        self.at += size
        return value + 1 if code == '<i' and value < 0 else value


class Loader:
    def __init__(self, box, precision, wanted):
        low, up = Point(0, 0), Point(0, 0)
        low.set(box[0], box[1])
        up.set(box[2], box[3])
        self.south, self.west = int(low.lat * 3600.0), int(low.lon * 3600.0)
        self.north, self.east = int(up.lat * 3600.0), int(up.lon * 3600.0)
        self.wraps = self.east < self.west
        self.limit = float(precision) ** 2
        self.wanted = wanted

    def selects(self, theme, entry):
        max_lat, min_lat, max_lon, min_lon, _, level = entry
        if not (min_lat < self.north and self.south < max_lat):
            return False
        if self.wraps:
            if not (0 < min_lon < self.east or self.west < min_lon < TURN):
                return False
        elif not (min_lon < self.east and self.west < max_lon):
            return False
        return (theme, level) in self.wanted

    def inside(self, lat, lon):
        if not self.south <= lat <= self.north:
            return False
        if self.wraps:
            return self.west <= lon <= TURN or 0 <= lon <= self.east
        return self.west <= lon <= self.east

    def load(self, theme, continent, data, lines, log):
        """Appends to lines and log; gives what the loader counts."""
        label = 'CIA: %s %s' % (THEMES[theme], NAMES[continent])

        def report(percent):
            log.append('@ %d %s' % (percent, label))

        f = Bytes(data)
        magic, offset, count = (f.field('<I', 0) for _ in range(3))
        if magic != MAGIC:
            log.append('CIA: File has bad magic number')
            return -1
        f.at = min(offset, len(data))
        entries = []
        while len(entries) < count and f.at + 28 <= len(data):
            f.field('<I', 0)
            max_lat, min_lat, max_lon, min_lon = (f.field('<i', 0) for _ in range(4))
            where = f.field('<I', 0)
            f.field('<H', 0)
            entries.append((max_lat, min_lat, max_lon % TURN if max_lon < 0 else max_lon,
                            min_lon % TURN if min_lon < 0 else min_lon, where, f.field('<H', 0)))
        step, percent = len(entries) // 10, 0
        start = [0, 0, 0, 0]  # longitude, latitude, N and the half-word of the last header
        left = len(data) + 65536  # points, of all segments
        for j, entry in enumerate(entries):
            if step == 0:
                report(100)
            elif j % step == 0:
                percent += 10
                report(percent)
            if not self.selects(theme, entry):
                continue
            f.at = min(entry[4], len(data))
            start[0] = f.field('<i', start[0])
            start[0] = start[0] % TURN if start[0] < 0 else start[0]
            start[1] = f.field('<i', start[1])
            f.field('<I', 0)
            start[2] = f.field('<I', start[2])
            start[3] = f.field('<H', start[3])
            left -= self.segment(f, start, min(start[2], left), lines)
        report(100)
        return len(lines)

    def segment(self, f, start, n, lines):
        lon, lat, _, word = start
        line, kept = [], None
        i = 1
        while i < n:
            if self.inside(lat, lon):
                point = Point(lat, lon)
                east = kept and HALF <= kept[1] < TURN and lon < HALF
                west = kept and kept[1] < HALF <= lon
                if line and self.wraps and (east or west):
                    line.append(Point(lat, TURN - 1 if east else 0))
                    lines.append(line)
                    line = [Point(lat, 0 if east else TURN - 1), point]
                    kept = lat, lon
                elif not line or line[-1].square_distance(point) >= self.limit or i == n - 1:
                    line.append(point)
                    kept = lat, lon
            elif line:
                klat, klon = kept
                if self.wraps:
                    pass
                elif lat > self.north:
                    lon = cut(lon - klon, self.north - klat, lat - klat, klon)
                    lat = self.north
                elif lat < self.south:
                    lon = cut(lon - klon, klat - self.south, klat - lat, klon)
                    lat = self.south
                elif lon > self.east:
                    lat = cut(lat - klat, self.east - klon, lon - klon, klat)
                    lon = self.east
                else:
                    lat = cut(lat - klat, klon - self.west, klon - lon, klat)
                    lon = self.west
                point = Point(lat, lon)
                if line[-1].square_distance(point) >= self.limit or i == n - 1:
                    line.append(point)
                break
            word = f.field('<H', word)
            if word & 0x4000:
                high, low = word >> 8, word & 255
                dlon = high - 256 if high >= 0x80 else high - 64
                dlat = low - 256 if low >= 0x80 else low
            else:
                first = word
                second = word = f.field('<H', word)
                third = word = f.field('<H', word)
                word = f.field('<H', word)
                dlon = self.part(first) * 65536 + second
                dlat = self.part(third) * 65536 + word
                if abs(dlon) > TURN or abs(dlat) > TURN:
                    dlon = dlat = 0
            if dlon < 0:
                dlon += TURN * (1 + (-dlon - 1) // TURN)
            lat, lon = wrap32(lat + dlat), wrap32(lon + dlon)
            lon = lon % TURN if lon >= TURN or lon < 0 else lon
            i += 1
        if len(line) >= 2:
            lines.append(line)
        return min(i, max(n, 1))

    @staticmethod
    def part(word):
        return (word | 0x4000) - 0x10000 if word >= 0x8000 else word


def expected(root, box, precision, wanted):
    loader = Loader(box, precision, wanted)
    log, collections = [], [[] for _ in FILES]
    for c, continent in enumerate(CONTINENTS):
        for theme, name in enumerate(FILES):
            if not any(o == theme and level < 16 for o, level in wanted):
                continue
            path = '%s\\%s.Map\\%s' % (root, continent, name)
            log.append('WorldMap::readData: Opening %s...' % path)
            # The progress report of 0 follows on the same line.
            log[-1] += '@ 0 CIA: %s %s' % (THEMES[theme], NAMES[c])
            try:
                with open(path.replace('\\', '/'), 'rb') as f:
                    count = loader.load(theme, c, f.read(), collections[theme], log)
            except FileNotFoundError:
                log += ['', 'CIA: Could not open file ' + path]
                count = 0
            log.append('Read %d polygons.' % count)
    for theme, lines in enumerate(collections):
        for line in lines:
            log.append((theme, [(p.lat, p.lon) for p in line]))
    return log


# ---- the decoder of whole segments ------------------------------------------------------

def in_box(box, lat, lon):
    """Whether a place lies in a box of degrees: as the double nearest to its own degrees."""
    south, west, north, east = box
    if not south <= lat / 3600.0 <= north:
        return False
    extra = 0
    while east + 360.0 * extra < west:
        extra += 1
    return any(west <= (lon + k * TURN) / 3600.0 and (lon + (k - extra) * TURN) / 3600.0 <= east
               for k in range(-4, 5))


class Whole:
    """The sound segments of one file, and whether all is well with it."""

    def __init__(self, data, levels):
        self.segments, self.sound = [], True
        f = Bytes(data)
        magic, offset, count = (f.field('<I', 0) for _ in range(3))
        if magic != MAGIC:
            self.sound = False
            return
        entries = max(0, len(data) - offset) // 28
        self.sound = offset <= len(data) and count <= entries
        self.left = len(data) + 65536
        for n in range(min(count, entries)):
            if self.left == 0:
                self.sound = False
                return
            at = offset + 28 * n
            ends = struct.unpack_from('<4i', data, at + 4)
            place, _, level = struct.unpack_from('<IHH', data, at + 20)
            self.sound = self.sound and level < 16
            if level not in levels:
                continue
            segment = self.walk(data, place)
            if segment is None:
                self.sound = False
                continue
            ends = [e + 1 if e < 0 else e for e in ends]
            ends[2:] = [e % TURN if e < 0 else e for e in ends[2:]]
            self.sound = self.sound and all(self.within(ends, *point) for point in segment)
            if len(segment) >= 2:
                self.segments.append((level, segment))

    @staticmethod
    def within(ends, lat, lon):
        north, south, east, west = ends
        after_west, before_east = west <= lon + 1, lon - 1 <= east
        lon_within = after_west and before_east if west <= east else after_west or before_east
        return south <= lat + 1 and lat - 1 <= north and lon_within

    def walk(self, data, at):
        """The points of a segment, or None when it is not sound; counts those it decodes."""
        if at + 18 > len(data):
            return None
        lon, lat, _, claimed, _ = struct.unpack_from('<iiIIH', data, at)
        lat, lon = (v + 1 if v < 0 else v for v in (lat, lon))
        lon = lon % TURN if lon < 0 else lon
        points, sound, at = [], claimed < 2 or lon <= TURN, at + 18
        # What a longitude past a turn comes to is WorldMap's affair: such a segment is none.
        lon = lon if not sound or lon < TURN else 0
        while len(points) < claimed - 1:
            if self.left == 0:
                return None
            self.left -= 1
            points.append((lat, lon))
            sound = sound and -324000 <= lat <= 324000
            if at + 2 > len(data):
                return None
            word, = struct.unpack_from('<H', data, at)
            if word & 0x4000:
                dlon = (word >> 8) - (256 if word >= 0x8000 else 64)
                dlat = (word & 255) - (256 if word & 128 else 0)
                at += 2
            else:
                if at + 8 > len(data):
                    return None
                a, b, c, d = struct.unpack_from('<4H', data, at)
                dlon, dlat = (((h | 0x4000) - 0x10000 if h >= 0x8000 else h) * 65536 + l
                              for h, l in ((a, b), (c, d)))
                if max(abs(dlon), abs(dlat)) > TURN:
                    dlon = dlat = 0
                at += 8
            lat, lon = wrap32(lat + dlat), (lon + dlon) % TURN
        return points if sound else None


def expected_whole(root, box, wanted):
    themes = {theme for theme, _ in wanted}
    levels = {level for _, level in wanted if level < 16}
    log = []
    for continent, name in enumerate(CONTINENTS):
        for theme, file in enumerate(FILES):
            path = os.path.join(root, name + '.Map', file)
            if theme not in themes or not os.path.exists(path):
                continue
            with open(path, 'rb') as f:
                whole = Whole(f.read(), levels)
            for level, segment in whole.segments:
                if any(in_box(box, *point) for point in segment):
                    log.append('whole %d %d %d:%s' % (continent, theme, level, ','.join(
                        ' %d %d' % point for point in segment)))
            if not whole.sound:
                log.append('damaged ' + path)
    # Segments first, as the dump has them.
    return [e for e in log if e[0] == 'w'] + [e for e in log if e[0] == 'd']


# ---- random data banks -----------------------------------------------------------------

def stored(value):
    """The four bytes that read back as value."""
    return struct.pack('<i', value - 1 if value < 0 else value)


def delta(r, dlon, dlat):
    if -64 <= dlon < 64 and -128 <= dlat < 128 and r.random() < 0.9:
        return struct.pack('<H', ((dlon + 64 if dlon >= 0 else dlon + 256) << 8) | dlat & 255)
    words = []
    for d in (dlon, dlat):
        words += [(d >> 16) & 0xBFFF, d & 0xFFFF]
    return struct.pack('<4H', *words)


def random_segment(r, box):
    """A walk that starts near the box, in steps of one size."""
    size = r.choice([1, 20, 60, 500, 20000, 200000, 1296000])
    lat = r.choice([box[0], box[2], r.uniform(box[0], box[2])]) * 3600 + r.gauss(0, size)
    lon = r.choice([box[1], box[3], 0, 360, r.uniform(0, 360)]) * 3600 + r.gauss(0, size)
    steps = r.choice([0, 1, 2, 3, 10, 60])
    drift = r.gauss(0, size), r.gauss(0, size)
    body = b''
    for _ in range(steps):
        if r.random() < 0.03:
            body += r.randbytes(2)
        d = [max(-TURN, min(TURN, int(v + r.gauss(0, size / 2)))) for v in drift]
        if r.random() < 0.1:
            d = [0, 0] if r.random() < 0.5 else [d[0], 0]
        body += delta(r, *d)
    claimed = steps + 1 + r.choice([0, 0, 0, 1, -1, 5, 300])
    if r.random() < 0.01:
        claimed = r.choice([0xFFFFFFFF, 0x80000000, 70000])
    lon = int(lon) % TURN
    if r.random() < 0.2:
        lon = r.choice([lon - TURN, TURN, lon + TURN, -1, 2**31 - 1, -2**31 + 1, lon])
    return (stored(lon) + stored(int(lat)) + r.randbytes(4) + struct.pack('<I', max(claimed, 0)) +
            r.randbytes(2) + body)


def random_file(r, box, levels):
    segments = [random_segment(r, box) for _ in range(r.choice([0, 1, 2, 5, 12, 25]))]
    dictionary, at, body = b'', 20, b''
    first = r.random() < 0.3  # the dictionary before the segments
    if first:
        at += 28 * len(segments)
    for s in segments:
        extents = [324000, -324000, TURN - 1, 1]
        if r.random() < 0.4:
            lats = sorted(r.choice([box[0], box[2], r.uniform(-90, 90)]) for _ in range(2))
            lons = sorted(r.choice([box[1], box[3], r.uniform(-180, 360)]) for _ in range(2))
            extents = [int(v * 3600) + r.choice([-1, 0, 1])
                       for v in (lats[1], lats[0], lons[1], lons[0])]
        where = at + len(body)
        if r.random() < 0.02:
            where = r.choice([2**32 - 1, 2**31, where + 100000, where + 2, 0])
        level = r.choice(levels + [r.choice([0, 15, 16, 17, 18, 65535])])
        dictionary += (r.randbytes(4) + b''.join(stored(e) for e in extents) +
                       struct.pack('<I', where) + r.randbytes(2) + struct.pack('<H', level))
        body += s
    count = len(segments)
    if r.random() < 0.05:
        count = r.choice([count + 1, 0xFFFFFFFF, count // 2])
    offset = 20 if first else 20 + len(body)
    data = struct.pack('<III', MAGIC, offset, count) + r.randbytes(8)
    data += dictionary + body if first else body + dictionary
    if r.random() < 0.25:  # damage
        data = bytearray(data)
        if r.random() < 0.5:
            del data[r.randrange(len(data)):]
        else:
            for _ in range(r.choice([1, 5])):
                data[r.randrange(len(data))] = r.choice([0, 0xFF, 0x80, r.randrange(256)])
        data = bytes(data)
    return data


def random_box(r):
    kind = r.random()
    if kind < 0.2:
        return -90.0, 0.0, 90.0, 359.99999
    south, west = r.uniform(-90, 89), r.uniform(-180, 359)
    height = r.choice([0.001, 0.1, 3, 40, 170])
    width = r.choice([0.001, 0.1, 3, 40, 300])
    if kind < 0.5:
        west = 360 - r.random() * width  # across longitude 0
    box = [south, west, min(south + height, 90.0), west + width]
    if r.random() < 0.3:
        box = [float(round(v)) for v in box]
    if r.random() < 0.05:
        box[3] = box[1]
    if box[1] > box[3] - 360.0 and r.random() < 0.5:
        box[3] -= 360.0  # the same end, as a map keeps it; east of it lies the western one
    return tuple(box)


def make_job(seed, directory):
    r = random.Random(seed)
    box = random_box(r)
    precision = r.choice([0, 0, 1, 2, 5, 60, 60, 600, 3600, -60, 30000, 2**31 - 1, -2**31])
    levels = [r.randrange(16) for _ in range(2)]
    themes = r.sample(range(4), r.choice([1, 1, 2]))
    wanted = {(o, level) for o in themes for level in levels if r.random() < 0.9}
    if r.random() < 0.1:
        wanted.add((r.randrange(4), r.choice([16, 17])))
    wanted.add((themes[0], levels[0]))
    root = os.path.join(directory, str(seed))
    for _ in range(r.choice([1, 2, 3])):
        folder = os.path.join(root, r.choice(CONTINENTS) + '.Map')
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, FILES[r.choice(themes)]), 'wb') as f:
            f.write(random_file(r, box, levels))
    line = ' '.join([root] + [repr(v) for v in box] + [str(precision)] +
                    ['%d:%d' % request for request in sorted(wanted)])
    return line, (root, box, precision, wanted)


def parsed(line):
    """A polyline as numbers, anything else as it stands."""
    if line[1:2] != ':':
        return line
    points = line[2:].strip().split(', ')
    return int(line[0]), [tuple(map(float, p.split())) for p in points]


def main():
    program, first, count = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
    totals = [0, 0]
    whole = 0
    with tempfile.TemporaryDirectory() as directory:
        jobs = [make_job(seed, directory) for seed in range(first, first + count)]
        run = subprocess.run([program], input='\n'.join(line for line, _ in jobs) + '\n',
                             capture_output=True, text=True, check=True)
        outputs = run.stdout.split('done\n')
        assert len(outputs) == count + 1, 'the dump program stopped early'
        for seed, output, (line, arguments) in zip(range(first, first + count), outputs, jobs):
            got = [parsed(text) for text in output.splitlines()]
            root, box, precision, wanted = arguments
            want = expected(*arguments) + expected_whole(root, box, wanted)
            if got != want:
                differing = [i for i, (a, b) in enumerate(zip(got, want)) if a != b]
                i = differing[0] if differing else min(len(got), len(want))
                print('seed %d: %s' % (seed, line))
                print('  line %d of %d/%d' % (i, len(got), len(want)))
                print('  WorldMap: %s' % (got[i:i + 1]))
                print('  expected: %s' % (want[i:i + 1]))
                return 1
            lines = [entry for entry in want if isinstance(entry, tuple)]
            whole += sum(1 for entry in want if entry[:5] == 'whole')
            totals[0] += len(lines)
            totals[1] += sum(len(points) for _, points in lines)
    print('%d loads agree: %d polylines, %d points; %d whole segments' % (count, *totals, whole))
    # A comparison of nothing must not pass.
    return 0 if min(totals[0], whole) >= count // 2 else 1


if __name__ == '__main__':
    sys.exit(main())
