#!/usr/bin/env python3
"""stream_test.py KZGIS: what only shows on long input.

Memory does not grow with the number of lines, and the progress bar shows on a terminal
after half a second, and nowhere else.
"""
import os
import pty
import subprocess
import sys
import tempfile
import threading
import time

KZGIS = sys.argv[1]
COMMAND = [KZGIS, "project", "--to", "mercator"]


def peak_kib(lines):
    """Peak memory of a run over so many lines."""
    run = subprocess.Popen(COMMAND, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL)
    block = b"48.2,16.4,171\n" * 1000
    for _ in range(lines // 1000):
        run.stdin.write(block)
    run.stdin.close()
    _, status, usage = os.wait4(run.pid, 0)
    assert status == 0, status
    return usage.ru_maxrss


def feed_slowly(write):
    """Keeps a run busy for over a second."""
    for _ in range(12):
        write(b"48.2,16.4\n" * 20000)
        time.sleep(0.1)


def standard_error(terminal, output_to_terminal=False):
    """What a slow run says on standard error; on a terminal or in a pipe."""
    if terminal:
        ours, theirs = pty.openpty()
    else:
        ours, theirs = os.pipe()
    with tempfile.TemporaryFile() as sink:
        output = theirs if output_to_terminal else sink
        run = subprocess.Popen(COMMAND, stdin=subprocess.PIPE, stdout=output, stderr=theirs)
        os.close(theirs)
        said = bytearray()

        def listen():
            try:
                while block := os.read(ours, 65536):
                    said.extend(block)
            except OSError:
                pass  # a terminal whose other side is closed

        listener = threading.Thread(target=listen)
        listener.start()
        feed_slowly(run.stdin.write)
        run.stdin.close()
        assert run.wait() == 0
        listener.join()
        os.close(ours)
    return bytes(said)


few, many = peak_kib(1000), peak_kib(1000000)
assert many < few + 16384, f"1,000 lines take {few} KiB, 1,000,000 take {many} KiB"

bar = standard_error(terminal=True)
assert b"projecting" in bar, bar
assert bar.endswith(b"\r\x1b[K"), bar  # and it is wiped away
assert standard_error(terminal=False) == b""
assert b"projecting" not in standard_error(terminal=True, output_to_terminal=True)
