#!/usr/bin/env bash
# Shows how the public interface differs from the listing that is checked in: what the library exports, and the types,
# methods and properties that it registers. With --update the listing is written anew. Arguments: build folder.
set -euo pipefail
cd "$(dirname "$0")/.."
update=; [ "${1:-}" = --update ] && { update=1; shift; }
build=${1:-build/dev}
listing=docs/api.txt
fresh=$(mktemp)
trap 'rm -f "$fresh"' EXIT
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
elif { diff -U0 "$listing" "$fresh" || true; } | grep -E '^[-+]' | grep -vE '^(---|\+\+\+)'; then
  echo "The public interface differs from $listing; scripts/api-diff.sh --update takes it over."
else
  echo "The public interface is that of $listing."
fi
