#!/usr/bin/env python3
"""python_distributed.py [SHAPEFILE]: what a task of kzgis.distributed costs, and when it pays.

PYTHONPATH is where the module was built.  A local cluster of two workers; what is measured is what
the numbers of docs/distributed.md come from.
"""
import os
import sys
import time

import distributed

import kzgis
import kzgis.distributed as kd


def clock(work):
    best, result = float("inf"), None
    for _ in range(3):
        begin = time.perf_counter()
        result = work()
        best = min(best, time.perf_counter() - begin)
    return best, result


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    path = sys.argv[1] if len(sys.argv) > 1 else here + "/../data/ne/ne_50m_countries.shp"
    with kzgis.Shapefile(path) as file:
        read, records = clock(lambda: list(file))
        vertices = sum(len(record.points) for record in records)
        count = len(file)

    def alone():
        return [kzgis.triangulate(r, split_crossings=True, least_angle=20) for r in records]

    work, _ = clock(alone)
    plain, _ = clock(lambda: kzgis.triangulate_many(records, jobs=1, split_crossings=True))
    print(f"{count} records, {vertices} vertices: read {read:.3f} s, triangulated {plain:.3f} s, "
          f"with a least angle {work:.3f} s ({1e6 * work / vertices:.2f} us a vertex)")
    begin = time.perf_counter()
    with distributed.LocalCluster(
        n_workers=2, threads_per_worker=1, dashboard_address=":0", silence_logs=50
    ) as cluster, distributed.Client(cluster) as client:
        client.run(lambda: __import__("kzgis").__name__)
        print(f"a local cluster stands after {time.perf_counter() - begin:.2f} s")
        nothing, _ = clock(lambda: client.gather(client.map(lambda i: i, range(1000), pure=False)))
        print(f"a task that does nothing: {nothing:.3f} ms")  # of a thousand: seconds are ms
        for tasks in (1, 2, 8, 32, 128):
            size = max(1, os.path.getsize(path) // tasks)

            def bag():  # a new one each time: a scheduler remembers results
                return kd.triangulate(path, task_bytes=size, split_crossings=True, least_angle=20)

            spent, _ = clock(lambda: bag().map(lambda result: len(result[1])).sum().compute())
            whole, _ = clock(lambda: bag().compute())
            count = bag().npartitions
            print(f"{count:4} tasks: counted {spent:.3f} s, meshes fetched {whole:.3f} s")


if __name__ == "__main__":
    main()
