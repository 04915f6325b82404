#!/usr/bin/env python3
"""run_case.py KZGIS CASE DATA_DIR: runs one command case and compares all it says.

A case is a text file of lines:
  # what it shows
  $ arguments of kzgis, as in a shell; DATA and TMP stand for directories; of several such
    lines the last is the case, the others prepare it and must succeed
  < a line of standard input
  > a line of standard output, whole; without > and ~ lines it must be silent
  ! a line of standard error, whole; without any, it must be silent
  ~ a regular expression that standard output must match somewhere
  file NAME: a line that file NAME in TMP holds, whole, in order
  exit CODE
"""
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile


def main():
    kzgis, case, data = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3]
    commands, stdin, stdout, stderr, patterns, files, code = [], [], [], [], [], {}, 0
    with tempfile.TemporaryDirectory() as tmp:

        def fill(text):
            return text.replace("DATA", data).replace("TMP", tmp)

        for line in case.read_text(encoding="utf-8").splitlines():
            mark, _, rest = line.partition(" ")
            if mark == "$":
                commands.append(shlex.split(fill(rest)))
            elif mark == "<":
                stdin.append(rest)
            elif mark == ">":
                stdout.append(fill(rest))
            elif mark == "!":
                stderr.append(fill(rest))
            elif mark == "~":
                patterns.append(fill(rest))
            elif mark == "file":
                name, _, text = rest.partition(": ")
                files.setdefault(name, []).append(fill(text))
            elif mark == "exit":
                code = int(rest)
            elif mark != "#" and line:
                sys.exit(f"{case}: cannot read '{line}'")
        for arguments in commands[:-1]:
            subprocess.run([kzgis, *arguments], stdout=subprocess.DEVNULL, timeout=120, check=True)
        run = subprocess.run(
            [kzgis, *commands[-1]],
            input="".join(line + "\n" for line in stdin),
            capture_output=True,
            encoding="utf-8",
            timeout=120,
            check=False,
        )
        problems = []
        if run.returncode != code:
            problems.append(f"exit code {run.returncode}, not {code}")
        if (stdout or not patterns) and run.stdout.splitlines() != stdout:
            problems.append("standard output differs")
        if run.stderr.splitlines() != stderr:
            problems.append("standard error differs")
        problems += [f"no match for {p}" for p in patterns if not re.search(p, run.stdout, re.M)]
        for name, lines in files.items():
            path = pathlib.Path(tmp, name)
            if not path.exists() or path.read_text(encoding="utf-8").splitlines() != lines:
                problems.append(f"{name} differs or is missing")
        left = [str(p) for p in pathlib.Path(tmp).iterdir() if ".part" in p.name]
        if left:
            problems.append(f"left behind: {left}")
    if problems:
        sys.exit(f"{case}: {'; '.join(problems)}\n--- stdout\n{run.stdout}--- stderr\n{run.stderr}")


main()
