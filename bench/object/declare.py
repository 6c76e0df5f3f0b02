#!/usr/bin/env python3
"""Measures what declarations cost: compile time and room in the loaded image.

  bench/object/declare.py [--compiler CXX] [--classes N] [--methods N] [--per-file N] [--flags FLAGS]

Makes classes with methods of mixed signatures, compiles their declarations on one core, links them to a shared library
and compares it with one whose classes declare no methods. Exit status 1 if a limit is passed.
"""
import argparse
import os
import resource
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SIGNATURES = [
    ("int", "count{}", "()", "const", "return n;"),
    ("bool", "isEmpty{}", "()", "const", "return n == 0;"),
    ("const ZString&", "label{}", "()", "const", "return text;"),
    ("bool", "setLabel{}", "(const ZString&)", "", "return n++ != 0;"),
    ("bool", "setCount{}", "(const int&)", "", "return n++ != 0;"),
    ("ZString", "print{}", "(int)", "const", "return text;"),
    ("void", "move{}", "(real, real)", "", "++n;"),
    ("ZSelector", "name{}", "()", "const", "return {};"),
    ("int", "find{}", "(const ZString&, int, bool)", "const", "return n;"),
    ("real", "scale{}", "(const ZSelector&, real)", "const", "return n;"),
]


def tag(c, m):
    return f"Of{c}At{m}"


def declaration(c, picked, defined):
    lines = [f"class Declared{c} {{", "public:", f"    ORV_REFLECT(Declared{c});"]
    lines += [f"    {result} {name.format(tag(c, m))}{params} {quals};"
              for m, (result, name, params, quals, _) in enumerate(picked)]
    lines += ["    int n = 0;", "    ZString text;", "};"]
    if defined:
        for m, (result, name, params, quals, body) in enumerate(picked):
            lines.append(f"{result} Declared{c}::{name.format(tag(c, m))}{params} {quals} {{ {body} }}")
    return lines


def members(count):
    """The classes' own code, which counts for nothing."""
    lines = ['#include "core/ZSelector.h"', '#include "object/reflect.h"', '#include "text/ZString.h"', ""]
    for c in range(count):
        lines += declaration(c, [SIGNATURES[m % len(SIGNATURES)] for m in range(20)], True)
    return "\n".join(lines)


def compile(options, path, text):
    """Answers the seconds of processor time."""
    with open(path, "w") as out:
        out.write(text)
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run([options.compiler, "-std=c++20", *options.flags.split(), "-fno-exceptions", "-fPIC", "-I", ROOT,
                    "-fvisibility=hidden", "-fvisibility-inlines-hidden", "-c", path, "-o", path + ".o"], check=True)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def source(first, count, methods):
    lines = ['#include "object/glue.h"', '#include "core/ZSelector.h"', '#include "text/ZString.h"', ""]
    for c in range(first, first + count):
        picked = [SIGNATURES[m % len(SIGNATURES)] for m in range(20)]
        lines += declaration(c, picked, False) + ["namespace orv::glue {",
                  f"template <> struct Table<Declared{c}> : Declares<Declared{c}> {{"]
        if methods:
            lines.append("    static constexpr MethodRow methods[] = {")
            lines += [f"        ORV_METHOD({r}, {n.format(tag(c, m))}, {p}, {q}),"
                      for m, (r, n, p, q, _) in enumerate(picked[:methods])]
            lines.append("    };")
        lines += ["    static constexpr ClassInfo info = {};", "};", "}", f"ORV_DECLARE(Declared{c});", ""]
    return "\n".join(lines)


def loaded(library):
    rows = subprocess.run(["size", "-A", library], capture_output=True, text=True, check=True).stdout.splitlines()
    total = {}
    for row in rows:
        parts = row.split()
        if len(parts) == 3 and parts[1].isdigit() and int(parts[2]) > 0:
            total[parts[0]] = int(parts[1])
    return total


def build(folder, options, own, methods):
    objects, seconds = [own], 0.0
    for first in range(0, options.classes, options.per_file):
        path = os.path.join(folder, f"declared{methods}_{first}.cpp")
        seconds += compile(options, path, source(first, min(options.per_file, options.classes - first), methods))
        objects.append(path + ".o")
    library = os.path.join(folder, f"declared{methods}.so")
    subprocess.run([options.compiler, "-shared", "-Wl,-z,pack-relative-relocs", "-o", library, *objects], check=True)
    return seconds, loaded(library)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--compiler", default="g++")
    parser.add_argument("--classes", type=int, default=200)
    parser.add_argument("--methods", type=int, default=20)
    parser.add_argument("--per-file", type=int, default=20)
    parser.add_argument("--flags", default="-O2 -g1")
    parser.add_argument("--seconds", type=float, default=45)
    parser.add_argument("--bytes", type=float, default=220)
    parser.add_argument("--sections", action="store_true")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        own = os.path.join(folder, "members.cpp")
        compile(options, own, members(options.classes))
        _, without = build(folder, options, own + ".o", 0)
        seconds, with_methods = build(folder, options, own + ".o", options.methods)
    count = options.classes * options.methods
    if options.sections:
        for name in sorted(with_methods):
            print(f"{name:24} {(with_methods[name] - without.get(name, 0)) / count:8.1f}")
    per = (sum(with_methods.values()) - sum(without.values())) / count
    print(f"{count} methods in {options.classes} classes: {seconds:.1f} s of one core (at most {options.seconds:g}), "
          f"{per:.0f} bytes a method over all loaded sections (at most {options.bytes:g})")
    return seconds > options.seconds or per > options.bytes


sys.exit(main())
