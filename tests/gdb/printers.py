#!/usr/bin/env python3
"""Runs gdb on a program and on a core file of it, and compares what it prints with what the program's source tells.

  printers.py GDB PRINTERS PROGRAM SOURCE
"""
import os
import re
import subprocess
import sys
import tempfile


def printed(gdb, printers, expressions, arguments, before):
    options = ["host-charset UTF-8", "print elements 40", "debuginfod enabled off", "width 0", "confirm off"]
    command = [gdb, "-nx", "-batch", "-q", *(f"-iex=set {o}" for o in options), "-x", printers]
    for line in before + [f"p {e}" for e in expressions]:
        command += ["-ex", line]
    environment = dict(os.environ, LC_ALL="C.UTF-8")
    done = subprocess.run(command + arguments, capture_output=True, encoding="utf-8", env=environment, timeout=120)
    lines = re.findall(r"^\$\d+ = (.*)$", done.stdout, re.M)
    if len(lines) != len(expressions):
        sys.exit(f"{len(lines)} values for {len(expressions)} expressions\n{done.stdout}\n{done.stderr}")
    return lines


def main():
    gdb, printers, program, source = sys.argv[1:]
    rows = re.findall(r"// p (.+?) => (.*)$", open(source, encoding="utf-8").read(), re.M)
    expressions = [expression for expression, _ in rows]
    failed = 0
    with tempfile.TemporaryDirectory() as folder:
        core = os.path.join(folder, "core")
        live = ["break stopHere", "run", "up", f"generate-core-file {core}"]
        for way, arguments, before in (("process", [program], live), ("core file", [program, core], ["up"])):
            for (expression, wanted), given in zip(rows, printed(gdb, printers, expressions, arguments, before)):
                if re.fullmatch(re.escape(wanted).replace("…", ".*"), given):
                    continue
                failed += 1
                print(f"{way}: {expression} is shown as\n  {given}\nexpected\n  {wanted}")
    print(f"{len(rows)} expressions, {failed} shown otherwise")
    return 1 if failed or not rows else 0


sys.exit(main())
