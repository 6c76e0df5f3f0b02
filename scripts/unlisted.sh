#!/usr/bin/env bash
# Finds sources, tests and benchmarks that no CMakeLists.txt lists. Exit status 1 if there are any.
set -eu
cd "$(dirname "$0")/.."
found=0
while read -r file; do
    folder=$(dirname "$file")
    listing=$folder/CMakeLists.txt
    name=${file##*/}
    while [ ! -f "$listing" ]; do
        name=$(basename "$folder")/$name
        folder=$(dirname "$folder")
        listing=$folder/CMakeLists.txt
    done
    grep -qE "(^|[ (/])${name//./\\.}([ )]|$)" "$listing" || grep -qE "(^|[ (])$(basename "$file" .cpp)([ )]|$)" "$listing" ||
        { echo "$file: not listed in $listing"; found=1; }
done < <(git ls-files -co --exclude-standard '*.cpp')
exit $found
