#!/usr/bin/env python3
"""python_threads.py [SHAPEFILE]: triangulating in one, two and four threads, and processes.

PYTHONPATH is where the module was built.  Each thread calls `kzgis.triangulate` for one record
after the other; with the interpreter's lock given away meanwhile, the clock goes down with the
processors there are, and the processors' time stays what it was.  Processes, which share no lock,
show how many processors a busy host has left: threads are to be held against them.
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


def measure_processes(records, count):
    clock, children = time.perf_counter(), []
    for i in range(count):
        child = os.fork()
        if not child:
            for record in records[i::count]:
                triangulate(record)
            os._exit(0)
        children.append(child)
    for child in children:
        os.waitpid(child, 0)
    return time.perf_counter() - clock


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    path = sys.argv[1] if len(sys.argv) > 1 else here + "/../data/ne/ne_50m_countries.shp"
    with kzgis.Shapefile(path) as file:
        # The largest first, so that none is left to one thread at the end.
        records = sorted(file.sound(), key=lambda record: -len(record.points))
    records *= 10
    measure(records[:5], 2)  # pages and caches
    print("threads  triangles  clock s  processors s  speed  speed of processes")
    alone = alone_process = None
    for threads in (1, 2, 4):
        triangles, clock, processors = min(
            (measure(records, threads) for _ in range(3)), key=lambda found: found[1]
        )
        process = min(measure_processes(records, threads) for _ in range(3))
        alone, alone_process = alone or clock, alone_process or process
        print(
            f"{threads:7} {triangles:10} {clock:8.2f} {processors:13.2f} {alone / clock:6.2f}"
            f" {alone_process / process:19.2f}"
        )


if __name__ == "__main__":
    main()
