#!/usr/bin/env python3
"""python_threads.py [SHAPEFILE]: triangulating in one, two and four threads of Python.

PYTHONPATH is where the module was built.  Each thread calls `kzgis.triangulate` for one record
after the other; with the interpreter's lock given away meanwhile, the clock goes down with the
processors there are, and the processors' time stays what it was.
"""
import concurrent.futures
import os
import sys
import time

import kzgis


def measure(records, threads):
    clock, processors = time.perf_counter(), time.process_time()
    with concurrent.futures.ThreadPoolExecutor(threads) as pool:
        triangles = sum(len(mesh) for mesh in pool.map(triangulate, records))
    return triangles, time.perf_counter() - clock, time.process_time() - processors


def triangulate(record):
    return kzgis.triangulate(record, split_crossings=True, least_angle=20)


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    path = sys.argv[1] if len(sys.argv) > 1 else here + "/../data/ne/ne_50m_countries.shp"
    with kzgis.Shapefile(path) as file:
        # The largest first, so that none is left to one thread at the end.
        records = sorted(file.sound(), key=lambda record: -len(record.points))
    records *= 10
    measure(records[:5], 2)  # pages and caches
    print("threads  triangles  clock s  processors s  speed")
    alone = None
    for threads in (1, 2, 4):
        triangles, clock, processors = min(
            (measure(records, threads) for _ in range(3)), key=lambda found: found[1]
        )
        alone = alone or clock
        print(f"{threads:7} {triangles:10} {clock:8.2f} {processors:13.2f} {alone / clock:6.2f}")


if __name__ == "__main__":
    main()
