#!/usr/bin/env python3
"""stopped_test.py KZGIS DATA_DIR [full_disk]: output that could not be finished.

A signal in the middle of writing, a limit of file size and a full disk leave no half
output behind, keep what stood there before, and say so in one line.  The full disk is a
test of its own, which is skipped (exit code 77) where none can be mounted.
"""
import contextlib
import os
import pathlib
import resource
import signal
import subprocess
import sys
import tempfile
import time

KZGIS = sys.argv[1]
DATA = pathlib.Path(sys.argv[2])
TIMEOUT_S = 60

# Each way to write a file of some hundred KiB at least: the arguments and the ending.
WAYS = [
    (["triangulate", DATA / "ne/ne_50m_land.shp", "-o", "OUT"], ".obj"),
    (["triangulate", DATA / "ne/ne_50m_land.shp", "-o", "OUT"], ".stl"),
    (["map", DATA / "ne/ne_50m_land.shp", "-o", "OUT"], ".svg"),
    (["map", DATA / "ne/ne_50m_land.shp", "-o", "OUT"], ".png"),
    (["project", "--to", "mercator", "TABLE", "-o", "OUT"], ".csv"),
    (["project", "--to", "mercator", DATA / "ne/ne_50m_land.shp", "-o", "OUT"], ".geojson"),
    (["project", "--to", "mercator", DATA / "ne/ne_50m_land.shp", "-o", "OUT"], ".shp"),
    (["pack", DATA / "wdb/riv.shp", "OUT"], ""),
    # The limit stops the fourth of its five files, when three are whole.
    (["pack", DATA / "wdb/pby.shp", "OUT"], ""),
]

# Each way that makes its output in some tenths of a second at least; the large picture takes
# seconds.
SLOW_WAYS = [
    (["triangulate", DATA / "ne/ne_50m_land.shp", "-o", "OUT"], ".ply"),
    (["triangulate", DATA / "ne/ne_50m_land.shp", "-o", "OUT"], ".geojson"),
    (["map", DATA / "ne/ne_50m_land.shp", "--size", "6000x3000", "-o", "OUT"], ".png"),
    (["map", DATA / "ne/ne_50m_land.shp", "-o", "OUT"], ".pdf"),
    (["dem", DATA / "dem/st_helens.dem.gz", "-o", "OUT"], ".png"),
]
SKIPPED = 77

problems = []


def expect(condition, what):
    if not condition:
        problems.append(what)


def fill(arguments, table, out):
    return [KZGIS, *({"OUT": out, "TABLE": table}.get(a, a) for a in arguments)]


def files_in(directory):
    return sorted(p.name for p in directory.rglob("*") if p.is_file())


def temporary_files(directory):
    return [p for p in directory.rglob("*") if ".part" in p.name]


def wait_until(condition, otherwise):
    deadline = time.monotonic() + TIMEOUT_S
    while not condition():
        if time.monotonic() > deadline:
            problems.append(otherwise)
            return
        time.sleep(0.01)


def stop(run, number, output):
    """Sends the signal, and expects the run to end by it and to say so of its output."""
    run.send_signal(number)
    code = run.wait(TIMEOUT_S)
    said = run.stderr.read().decode()
    expect(code == -number, f"{output.name}, {number.name}: exit code {code}")
    expect(said == f"kzgis: {output}: not written: stopped by a signal\n",
           f"{output.name}, {number.name}: says {said!r}")


@contextlib.contextmanager
def writing(directory, **how):
    """A run that has begun to write OUT.csv and waits for more input."""
    run = subprocess.Popen([KZGIS, "project", "--to", "mercator", "-o", directory / "out.csv"],
                           stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                           stderr=subprocess.PIPE, **how)
    run.stdin.write(b"48.2,16.4\n" * 10000)
    run.stdin.flush()
    wait_until(lambda: any(p.stat().st_size > 100000 for p in temporary_files(directory)),
               "no temporary file appears")
    yield run
    run.stdin.close()
    run.stderr.close()


def signals_remove_the_temporary_file():
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        for former in (None, "former"):
            with tempfile.TemporaryDirectory() as tmp:
                directory = pathlib.Path(tmp)
                out = directory / "out.csv"
                if former:
                    out.write_text(former, encoding="ascii")
                with writing(directory) as run:
                    stop(run, number, out)
                expect(files_in(directory) == (["out.csv"] if former else []),
                       f"{number.name}: leaves {files_in(directory)}")
                expect(not former or out.read_text(encoding="ascii") == former,
                       f"{number.name}: the former file is lost")


def signal_in_the_middle(arguments, directory):
    """Exit code and standard error of a run that is interrupted once its temporary file is
    there; None when it was complete before the signal came."""
    with subprocess.Popen(arguments, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                          stderr=subprocess.PIPE) as run:
        while run.poll() is None and not temporary_files(directory):
            time.sleep(0.001)
        run.send_signal(signal.SIGINT)
        said = run.communicate(timeout=TIMEOUT_S)[1].decode()
    complete = any(name.startswith("out") for name in files_in(directory))
    return None if complete else (run.returncode, said)


def signals_stop_every_way():
    for arguments, ending in SLOW_WAYS:
        what = f"{arguments[0]} {ending}, interrupted"
        for _ in range(20):  # the first will do, unless this test itself was kept waiting
            with tempfile.TemporaryDirectory() as tmp:
                directory = pathlib.Path(tmp)
                out = directory / f"out{ending}"
                stopped = signal_in_the_middle(fill(arguments, None, out), directory)
                left = files_in(directory)
            if stopped:
                break
        expect(stopped == (-signal.SIGINT, f"kzgis: {out}: not written: stopped by a signal\n"),
               f"{what}: {stopped}")
        expect(left == [], f"{what}: leaves {left}")


def signals_remove_every_file_of_a_bank():
    """The last file of the bank is a pipe: the run waits for its reader, four files written."""
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        with tempfile.TemporaryDirectory() as tmp:
            bank = pathlib.Path(tmp) / "bank"
            (bank / "samer.Map").mkdir(parents=True)
            os.mkfifo(bank / "samer.Map/pby.cbd")
            with subprocess.Popen([KZGIS, "pack", DATA / "wdb/pby.shp", bank],
                                  stdout=subprocess.DEVNULL, stderr=subprocess.PIPE) as run:
                wait_until(lambda: sum(1 for p in temporary_files(bank) if p.stat().st_size) == 4,
                           "pack writes no four temporary files")
                stop(run, number, bank)
            expect(files_in(bank) == [], f"pack, {number.name}: leaves {files_in(bank)}")


def ignored_signals_stay_ignored():
    def ignore():
        signal.signal(signal.SIGHUP, signal.SIG_IGN)

    with tempfile.TemporaryDirectory() as tmp:
        directory = pathlib.Path(tmp)
        with writing(directory, preexec_fn=ignore) as run:
            run.send_signal(signal.SIGHUP)
            time.sleep(0.1)
            run.stdin.close()
            expect(run.wait(TIMEOUT_S) == 0, "SIGHUP ends a run that was told to ignore it")
        expect((directory / "out.csv").exists(), "no output after an ignored SIGHUP")


def expect_one_line(what, arguments, directory, reason, **how):
    done = subprocess.run(arguments, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                          stderr=subprocess.PIPE, timeout=TIMEOUT_S, check=False, **how)
    said = done.stderr.decode()
    expect(done.returncode == 1, f"{what}: exit code {done.returncode}")
    expect(said.startswith("kzgis: ") and said.endswith(f": could not be written whole: {reason}\n")
           and said.count("\n") == 1, f"{what}: says {said!r}")
    expect(files_in(directory) == [], f"{what}: leaves {files_in(directory)}")


def limits_of_file_size(table):
    def limit():
        resource.setrlimit(resource.RLIMIT_FSIZE, (20000, 20000))

    for arguments, ending in WAYS:
        with tempfile.TemporaryDirectory() as tmp:
            directory = pathlib.Path(tmp)
            expect_one_line(f"{arguments[0]} {ending}, 20 kB at most",
                            fill(arguments, table, directory / f"out{ending}"), directory,
                            "File too large", preexec_fn=limit)


def full_disks(table):
    """A disk of 16 KiB."""
    with tempfile.TemporaryDirectory() as tmp:
        mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=16k", "tmpfs", tmp],
                                 stderr=subprocess.DEVNULL, check=False).returncode == 0
        if not mounted:
            print("no disk can be mounted here")
            sys.exit(SKIPPED)
        try:
            for arguments, ending in WAYS:
                directory = pathlib.Path(tmp)
                expect_one_line(f"{arguments[0]} {ending}, disk full",
                                fill(arguments, table, directory / f"out{ending}"), directory,
                                "No space left on device")
        finally:
            subprocess.run(["umount", tmp], check=True)


def main():
    with tempfile.TemporaryDirectory() as tmp:
        table = pathlib.Path(tmp) / "table.csv"
        table.write_text("48.2,16.37\n" * 10000, encoding="ascii")
        if sys.argv[3:] == ["full_disk"]:
            full_disks(table)
        else:
            signals_remove_the_temporary_file()
            signals_stop_every_way()
            signals_remove_every_file_of_a_bank()
            ignored_signals_stay_ignored()
            limits_of_file_size(table)
    if problems:
        sys.exit("\n".join(problems))


main()
