#!/usr/bin/env python3
"""Checks that declarations which don't fit their class are refused: glue.refused.py COMPILER ROOT."""
import os
import subprocess
import sys
import tempfile

CLASS = """
#include "object/glue.h"
#include "core/ZArrayT.h"
struct Base { };
struct Holder : virtual Base {
    int width() const { return 0; }
    int height() { return 0; }
    bool set(const ZArrayT<int>&, unsigned) { return true; }
    void take(ZArrayT<int>) {}
    int own() const { return 0; }
    enum Mode { Idle };
    enum { First, Second };
};
namespace orv::glue {
template <> struct Table<Holder> : Declares<Holder> {
    %s
    static constexpr ClassInfo info = {};
};
}
ORV_DECLARE(Holder);
"""
METHODS = "static constexpr MethodRow methods[] = {%s};"
# What is declared, and what the compiler's message has to name; none for what is right.
ROWS = [
    (METHODS % "ORV_METHOD(int, width, (), const), ORV_METHOD(bool, set, (const ZArrayT<int>&, uint), )", None),
    (METHODS % "ORV_METHOD(bool, width, (), const)", "static_cast"),
    (METHODS % "ORV_METHOD(int, width, (int), const)", "static_cast"),
    (METHODS % "ORV_METHOD(int, width, (), )", "static_cast"),
    (METHODS % "ORV_METHOD(int, height, (), const)", "static_cast"),
    (METHODS % "ORV_METHOD(int, depth, (), const)", "depth"),
    (METHODS % "ORV_METHOD(bool, set, (const ZArrayT<int> &, uint), )", "parametersAreNotSpelledAsRegistered"),
    (METHODS % "ORV_METHOD(bool, set, (const ZArrayT<int>&, unsigned), )", "parametersAreNotSpelledAsRegistered"),
    (METHODS % "ORV_METHOD(int32_t, width, (), const)", "resultIsNotSpelledAsRegistered"),
    (METHODS % "ORV_METHOD(void, take, (ZArrayT<int>), )", "pass class values by const reference"),
    ('static constexpr PropertyRow properties[] = {ORV_PROPERTY(real, own, "")};', "getterHasAnotherType"),
    ("static constexpr EnumItemRow items[] = {ORV_ITEM(Mode, Busy)};", "Busy"),
    ("static constexpr FixedRow fixed[] = {ORV_FIXED(Second, int, width, (), const)};",
     "fixedRowsAreNotInTheOrderOfTheirIndexes"),
    ("using BaseTypes = Bases<Base>;", "baseIsVirtual"),
]


def main():
    compiler, root = sys.argv[1:3]
    failed = 0
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "refused.cpp")
        for declared, message in ROWS:
            with open(path, "w") as out:
                out.write(CLASS % declared)
            done = subprocess.run([compiler, "-std=c++20", "-fno-exceptions", "-fsyntax-only", "-I", root, path],
                                  capture_output=True, text=True, env={**os.environ, "LC_ALL": "C"})
            right = done.returncode == 0 if message is None else done.returncode != 0 and message in done.stderr
            if not right:
                failed += 1
                print(f"expected {message or 'success'}: {declared}\n{done.stderr[:2000]}")
    print(f"{len(ROWS) - failed} of {len(ROWS)} declarations treated as expected")
    return failed > 0


sys.exit(main())
