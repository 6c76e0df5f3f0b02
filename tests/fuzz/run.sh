#!/usr/bin/env bash
# run.sh BUILD_DIR SECONDS [NAME…]: runs each fuzzer, or those named, on a copy of its corpus for so many seconds. Exit
# status 1 if one found something: its input then lies in BUILD_DIR/tests/fuzz/found, for fuzz_NAME FILE to repeat.
set -u
if [ $# -lt 2 ]; then
  sed -n '2,3s/^# //p' "$0"
  exit 2
fi
build=$1/tests/fuzz seconds=$2
here=$(cd "$(dirname "$0")" && pwd)
shift 2
mkdir -p "$build/found"
failed=0
if [ $# -gt 0 ]; then set -- "${@/#/$build/fuzz_}"; else set -- "$build"/fuzz_*; fi
for program; do
  [ -x "$program" ] || { echo "no fuzzer $program"; exit 2; }
  name=$(basename "$program") name=${name#fuzz_}
  work=$(mktemp -d)
  mkdir -p "$here/corpus/$name"
  if "$program" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=4096 -verbosity=0 -print_final_stats=1 \
    -artifact_prefix="$build/found/$name-" "$work" "$here/corpus/$name" >"$work.log" 2>&1; then
    echo "$name: $(sed -n 's/^stat::number_of_executed_units: *//p' "$work.log") inputs, nothing found"
  else
    echo "$name: FAILED"
    tail -60 "$work.log"
    failed=1
  fi
  rm -rf "$work" "$work.log"
done
exit $failed
