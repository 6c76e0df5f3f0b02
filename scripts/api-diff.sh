#!/usr/bin/env bash
# Shows how the public interface differs from the listing that is checked in: what the library exports, and the types,
# methods and properties that it registers. With --update the listing is written anew. Arguments: build folder, and how
# many lines of each side are shown at most; the last lines tell how many there are.
set -euo pipefail
cd "$(dirname "$0")/.."
update=; [ "${1:-}" = --update ] && { update=1; shift; }
build=${1:-build/dev}
shown=${2:-100}
listing=docs/api.txt
fresh=$(mktemp)
changes=$(mktemp)
trap 'rm -f "$fresh" "$changes"' EXIT
{
  echo "# Exported"
  nm -DC --defined-only "$build/liborvcore.so" | cut -c18- | grep -E '^[TBDRVW] ' | cut -c3- |
    grep -vE '^(vtable|typeinfo|guard variable|VTT|construction vtable|non-virtual thunk)|^std::|\[clone' | LC_ALL=C sort -u
  echo
  echo "# Registered"
  "$build/tools/orv/orv" types --methods --properties
} >"$fresh"
if [ -n "$update" ]; then
  cat "$fresh" >"$listing"
  echo "$listing: $(grep -c . "$listing") lines"
  exit
fi
diff -U0 "$listing" "$fresh" | grep -E '^[-+]' | grep -vE '^(---|\+\+\+)' >"$changes" || true
if [ ! -s "$changes" ]; then
  echo "The public interface is that of $listing."
  exit
fi
# What is gone comes first: it breaks who uses it.
for side in - +; do
  grep -e "^$side" "$changes" | head -n "$shown" || true
  count=$(grep -c -e "^$side" "$changes" || true)
  [ "$count" -le "$shown" ] || echo "$side … $((count - shown)) more"
done
echo "The public interface differs from $listing: $(grep -c '^-' "$changes" || true) lines gone," \
  "$(grep -c '^+' "$changes" || true) new; scripts/api-diff.sh --update takes it over."
