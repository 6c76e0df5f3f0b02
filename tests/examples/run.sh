#!/usr/bin/env bash
# run.sh PROGRAM EXPECTED: whether the program ends well and prints just that.
set -euo pipefail
said=$("$1")
diff -u "$2" <(printf '%s\n' "$said")
