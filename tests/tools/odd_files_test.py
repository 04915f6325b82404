#!/usr/bin/env python3
"""odd_files_test.py KZGIS DATA_DIR MEMORY_MIB: inputs and outputs that are no ordinary files.

Whatever stands where a file is expected, the command ends soon and without much memory,
says one line on standard error that begins with "kzgis: ", answers 1 or 2, and leaves no
output behind, whole or half.  MEMORY_MIB bounds its address space, for safety; 0 for a
sanitizer's program, whose time and memory say nothing, and which starts so slowly that of all pairs
of a way to read a file and an oddity it gets every third.
"""
import gzip
import os
import pathlib
import resource
import shutil
import struct
import subprocess
import sys
import tempfile

KZGIS = sys.argv[1]
DATA = pathlib.Path(sys.argv[2])
MEMORY_MIB = int(sys.argv[3])
TIMEOUT_S = 20  # a sanitizer's program on a busy machine; what hangs, hangs for ever
MOST_RESIDENT_MIB = 64  # a map of a sound file takes 13
MOST_CPU_S = 1.0        # it takes 0.1
NOBODY = 65534

PACKED_AS = ["--theme", "river", "--continent", "europe", "--level", "@RANK"]

# Each way to read a file: the arguments, IN and OUT standing for the files; the ending of
# what it writes, or None; a sound input; and of its parts those that it opens.
SHAPE_PARTS = [".shp"]  # the index can be done without: see odd_indexes
WAYS = [
    (["info", "IN.shp"], None, "ne/ne_110m_lakes", SHAPE_PARTS),
    (["info", "IN.cbd"], None, "BANK_FILE", [".cbd"]),
    (["map", "IN.shp", "-o", "OUT"], ".svg", "ne/ne_110m_lakes", SHAPE_PARTS),
    (["map", "--bank", "IN", "-o", "OUT"], ".png", "BANK", [""]),
    (["info", "IN.dem"], None, "dem/st_helens_crater", [".dem"]),
    (["dem", "IN.dem", "-o", "OUT"], ".png", "dem/st_helens_crater", [".dem"]),
    (["info", "IN.dem.gz"], None, "dem/st_helens", [".dem.gz"]),
    (["dem", "IN.dem.gz", "-o", "OUT"], ".asc", "dem/st_helens", [".dem.gz"]),
    (["triangulate", "IN.shp", "-o", "OUT"], ".obj", "ne/ne_110m_lakes", SHAPE_PARTS),
    (["triangulate", "IN.shp", "--records", "8:", "--extrude", "@scalerank", "-o", "OUT"], ".ply",
     "ne/ne_50m_lakes_with_islands", [".dbf"]),
    (["project", "--to", "mercator", "IN.csv", "-o", "OUT"], ".csv", "TABLE", [".csv"]),
    (["pack", "IN.shp", "OUT", *PACKED_AS], "", "wdb/riv", [*SHAPE_PARTS, ".dbf"]),
]

problems = []
pairs = 0


def is_chosen():
    """Whether the next pair is tried."""
    global pairs
    pairs += 1
    return MEMORY_MIB > 0 or pairs % 3 == 0


def limit_memory():
    if MEMORY_MIB:
        resource.setrlimit(resource.RLIMIT_AS, (MEMORY_MIB << 20, resource.RLIM_INFINITY))


def run(arguments, stdout=subprocess.DEVNULL, as_nobody=False):
    """The finished run; None when it does not end."""
    who = {"user": NOBODY, "group": NOBODY, "extra_groups": []} if as_nobody else {}
    try:
        return subprocess.run([KZGIS, *arguments], stdin=subprocess.DEVNULL, stdout=stdout,
                              stderr=subprocess.PIPE, timeout=TIMEOUT_S, check=False,
                              preexec_fn=limit_memory, **who)
    except subprocess.TimeoutExpired:
        return None


def expect_refused(what, arguments, directory, **how):
    """Runs; expects one line, exit code 1 or 2, the directory as it was; returns the line."""
    before = sorted(directory.rglob("*"))
    used_before = resource.getrusage(resource.RUSAGE_CHILDREN)
    done = run(arguments, **how)
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    if done is None:
        problems.append(f"{what}: does not end")
        return None
    said = done.stderr.decode("utf-8", "replace")
    if done.returncode not in (1, 2):
        problems.append(f"{what}: exit code {done.returncode}: {said[:300]}")
    elif not said.startswith("kzgis: ") or said.count("\n") != 1 or not said.endswith("\n"):
        problems.append(f"{what}: says {said[:600]!r}")
    elif "out of memory" in said or "std::" in said:
        problems.append(f"{what}: is taken for something large: {said!r}")
    if MEMORY_MIB:
        # The largest child so far: this one, when it grew.
        resident_mib = used.ru_maxrss >> 10
        if used.ru_maxrss > used_before.ru_maxrss and resident_mib > MOST_RESIDENT_MIB:
            problems.append(f"{what}: takes {resident_mib} MiB")
        cpu_s = (used.ru_utime + used.ru_stime) - (used_before.ru_utime + used_before.ru_stime)
        if cpu_s > MOST_CPU_S:
            problems.append(f"{what}: takes {cpu_s:.1f} s")
    left = [str(p) for p in sorted(directory.rglob("*")) if p not in before]
    # pack makes its directories before their files.
    left = [p for p in left if not (arguments[0] == "pack" and os.path.isdir(p))]
    if left:
        problems.append(f"{what}: leaves {left}")
        for path in left:
            os.unlink(path)
    return said


def make_sound_inputs(directory):
    """The inputs that are no sample files: a bank, one of its files, a table."""
    bank = directory / "bank"
    subprocess.run([KZGIS, "pack", DATA / "wdb/pby.shp", bank], stdout=subprocess.DEVNULL,
                   check=True)
    shutil.copy(next(bank.rglob("*.cbd")), directory / "bank_file.cbd")
    (directory / "table.csv").write_text("48.2,16.37\n", encoding="ascii")


def put_sound(sound, made, base):
    """Copies a sound input to files or a directory named after `base`."""
    if sound == "BANK":
        shutil.copytree(made / "bank", base)
        return
    names = {"BANK_FILE": "bank_file", "TABLE": "table"}
    source = made / names[sound] if sound in names else DATA / sound
    for file in source.parent.glob(source.name + ".*"):
        shutil.copy(file, f"{base}{file.name.removeprefix(source.name)}")


def remove(path):
    if path.is_dir() and not path.is_symlink():
        shutil.rmtree(path)
    else:
        path.unlink(missing_ok=True)


def link_to(target):
    return lambda path: os.symlink(target, path)


ODD = {
    "missing": lambda path: None,
    "a directory": os.mkdir,
    "a pipe": os.mkfifo,
    "an empty file": lambda path: path.touch(),
    "one byte": lambda path: path.write_bytes(b"\n\xff"),
    "/dev/zero": link_to("/dev/zero"),
    "/dev/full": link_to("/dev/full"),
    "a link to nowhere": link_to("/nowhere/at/all"),
    "a link to itself": lambda path: os.symlink(path, path),
    "a file that is not to be read": lambda path: (path.write_bytes(b"x" * 200), path.chmod(0)),
}


def is_legal(way, odd):
    """What is unusual, and no reason to refuse."""
    # A stream like standard input: a pipe, empty, or one bad line among others.
    return way[0][0] == "project" and odd in ("a pipe", "an empty file", "one byte")


def fill(arguments, base, out):
    return [a.replace("IN", str(base)).replace("OUT", str(out)) for a in arguments]


def name_of(way):
    return " ".join(way[0][:2])


def odd_inputs(made):
    for way in WAYS:
        arguments, ending, sound, parts = way
        for part in parts:
            for odd, make in ODD.items():
                if is_legal(way, odd) or not is_chosen():
                    continue
                with tempfile.TemporaryDirectory() as tmp:
                    directory = pathlib.Path(tmp)
                    directory.chmod(0o777)
                    base = directory / "in"
                    put_sound(sound, made, base)
                    path = pathlib.Path(f"{base}{part}")
                    remove(path)
                    make(path)
                    forbidden = odd == "a file that is not to be read"
                    as_nobody = forbidden and os.geteuid() == 0
                    if as_nobody and not NOBODY_CAN_RUN:
                        continue
                    expect_refused(f"{name_of(way)}: {part} is {odd}",
                                   fill(arguments, base, directory / f"out{ending}"), directory,
                                   as_nobody=as_nobody)


def odd_indexes(made):
    """A shapefile is read without an index, and one that cannot be used is named."""
    for way in WAYS:
        arguments, ending, sound, parts = way
        if ".shp" not in parts:
            continue
        for odd, make in ODD.items():
            if not is_chosen():
                continue
            with tempfile.TemporaryDirectory() as tmp:
                directory = pathlib.Path(tmp)
                directory.chmod(0o777)
                base, out = directory / "in", directory / f"out{ending}"
                put_sound(sound, made, base)
                index = directory / "in.shx"
                remove(index)
                make(index)
                forbidden = odd == "a file that is not to be read"
                if forbidden and os.geteuid() == 0 and not NOBODY_CAN_RUN:
                    continue
                none = odd in ("missing", "a link to nowhere")
                what = f"{name_of(way)}: the index is {odd}"
                done = run(fill(arguments, base, out), as_nobody=forbidden and os.geteuid() == 0)
                if done is None:
                    problems.append(f"{what}: does not end")
                    continue
                said = done.stderr.decode("utf-8", "replace")
                right = said == "" if none else (said.startswith(f"kzgis: {index}: ") and
                                                 said.count("\n") == 1)
                if done.returncode != (0 if none else 1) or not right:
                    problems.append(f"{what}: exit code {done.returncode}, says {said!r}")
                if ending is not None and not out.exists():
                    problems.append(f"{what}: writes nothing")


def odd_parts_of_a_bank(made):
    """One file of a bank is named and left out: the rest of the bank is shown."""
    for odd, make in ODD.items():
        if odd in ("missing", "a link to nowhere"):  # a bank need not have every file
            continue
        for arguments in (["info", "IN"], ["map", "--bank", "IN", "-o", "OUT"]):
            with tempfile.TemporaryDirectory() as tmp:
                directory = pathlib.Path(tmp)
                directory.chmod(0o777)
                bank, out = directory / "in", directory / "out.png"
                put_sound("BANK", made, bank)
                part = bank / "namer.Map/pby.cbd"
                remove(part)
                make(part)
                forbidden = odd == "a file that is not to be read"
                if forbidden and os.geteuid() == 0 and not NOBODY_CAN_RUN:
                    continue
                what = f"{arguments[0]}: {part.name} in a bank is {odd}"
                expected = 1 + len(files_below(directory)) if arguments[0] == "map" else None
                done = run(fill(arguments, bank, out),
                           as_nobody=forbidden and os.geteuid() == 0)
                if done is None:
                    problems.append(f"{what}: does not end")
                    continue
                lines = done.stderr.decode("utf-8", "replace").splitlines()
                # The library may say what it thinks of the file, too.
                ours = [line for line in lines if not line.startswith("CIA: ")]
                if (done.returncode != 1 or len(ours) != 1 or
                        not ours[0].startswith(f"kzgis: {part}: ")):
                    problems.append(f"{what}: exit code {done.returncode}, says {lines}")
                if expected and (not out.exists() or len(files_below(directory)) != expected):
                    problems.append(f"{what}: leaves {files_below(directory)}")


def files_below(directory):
    return [path for path in directory.rglob("*") if not path.is_dir()]


def odd_names(made):
    for way in WAYS:
        arguments, ending, sound, _ = way
        for kind, name in {
            "empty": "",
            "4 KiB long": "n" * 4096,
            "deep": "d/" * 2048,
            "of several lines": "two\nlines\tand\x1b[31m colours",
            "no UTF-8": os.fsdecode(b"\xff\xfe\x80"),
            "full of variables": "$A<99999999999>$B<-1>$<0>${C}$",
            "a blank": " ",
        }.items():
            if not is_chosen():
                continue
            with tempfile.TemporaryDirectory() as tmp:
                directory = pathlib.Path(tmp)
                base = f"{directory}/{name}" if name else ""
                out = directory / f"out{ending}"
                expect_refused(f"{name_of(way)}: a name {kind}", fill(arguments, base, out),
                               directory)
                # The whole argument, without an ending behind it.
                bare = [name if "IN" in a else a.replace("OUT", str(out)) for a in arguments]
                expect_refused(f"{name_of(way)}: a bare name {kind}", bare, directory)


def odd_outputs(made):
    for way in WAYS:
        arguments, ending, sound, _ = way
        if ending is None:
            continue
        with tempfile.TemporaryDirectory() as tmp:
            directory = pathlib.Path(tmp)
            base = directory / "in"
            put_sound(sound, made, base)
            (directory / f"full{ending}").symlink_to("/dev/full")
            (directory / f"directory{ending}").mkdir()
            (directory / "plain").touch()
            for out in [f"{directory}/full{ending}", f"{directory}/nowhere/at/all{ending}",
                        f"{directory}/{'n' * 4096}{ending}", "", f"{directory}/plain/x{ending}",
                        f"{directory}/no\nwhere/x{ending}", f"{directory}/directory{ending}"]:
                if arguments[0] == "pack" and out.endswith(("all", "where/x", "directory")):
                    continue  # it makes directories
                if not is_chosen():
                    continue
                expect_refused(f"{name_of(way)}: into {out[:80]!r}",
                               fill(arguments, base, out), directory)
            if arguments[0] == "pack":
                continue
            to_standard = fill(arguments, base, "-")
            if ending != ".csv":
                to_standard += ["--format", ending[1:]]
            with open("/dev/full", "wb") as full:
                expect_refused(f"{name_of(way)}: standard output is full", to_standard, directory,
                               stdout=full)
    with open("/dev/full", "wb") as full, tempfile.TemporaryDirectory() as tmp:
        directory = pathlib.Path(tmp)
        for file in [DATA / "ne/ne_110m_lakes.shp", made / "bank", made / "bank_file.cbd"]:
            expect_refused(f"info {file}: standard output is full", ["info", str(file)], directory,
                           stdout=full)


def sound_inputs(made):
    """What the other runs change one thing of must be right itself."""
    for arguments, ending, sound, _ in WAYS:
        with tempfile.TemporaryDirectory() as tmp:
            base = pathlib.Path(tmp) / "in"
            put_sound(sound, made, base)
            done = run(fill(arguments, base, pathlib.Path(tmp) / f"out{ending}"))
            if done is None or done.returncode != 0:
                problems.append(f"{arguments}: {done}")


def bombs():
    """Compressed files that swell: 1 MB to 1 GiB, and 16 MiB, which may be level ground."""
    level_ground = gzip.compress(b" " * (16 << 20))
    for times, swells in ((64, True), (1, False)):
        with tempfile.TemporaryDirectory() as tmp:
            directory = pathlib.Path(tmp)
            path = directory / "a.dem.gz"
            path.write_bytes(level_ground * times)
            for arguments in (["info", str(path)],
                              ["dem", str(path), "-o", str(directory / "out.png")]):
                said = expect_refused(f"{arguments[0]}: a bomb", arguments, directory)
                told = said == (f"kzgis: {path}: more than 16 MiB, and 32 times its size, "
                                "uncompressed; if that is right, uncompress it with gunzip\n")
                if told != swells:
                    problems.append(f"{arguments[0]}: a bomb of {times} pieces: says {said!r}")


def more_than_memory():
    """A file that is rightly larger than the memory there is."""
    if not MEMORY_MIB:
        return
    with tempfile.TemporaryDirectory() as tmp:
        path = pathlib.Path(tmp) / "large.cbd"
        with open(path, "wb") as file:
            size = 2 * MEMORY_MIB << 20
            file.write(struct.pack("<III", 0x20770002, 20, (size - 20) // 28))
            file.truncate(size)
        done = run(["info", str(path)])
        if done is None or (done.returncode, done.stderr) != (1, b"kzgis: out of memory\n"):
            problems.append(f"a file larger than memory: {done}")


def can_nobody_run():
    try:
        done = run(["--version"], as_nobody=True)
    except OSError:
        return False
    return done is not None and done.returncode == 0


NOBODY_CAN_RUN = os.geteuid() == 0 and can_nobody_run()


def main():
    with tempfile.TemporaryDirectory() as tmp:
        made = pathlib.Path(tmp)
        make_sound_inputs(made)
        for group in (sound_inputs, odd_inputs, odd_indexes, odd_parts_of_a_bank, odd_names,
                      odd_outputs):
            group(made)
    bombs()
    more_than_memory()
    if problems:
        sys.exit("\n".join(problems))


main()
