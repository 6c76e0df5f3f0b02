#!/usr/bin/env bash
# install-deps.sh GROUP…: installs the Debian packages of a group that are missing. Needs root or sudo only if any is.
set -eu

packages() {
    case $1 in
    build) echo g++ clang libclang-rt-14-dev cmake ninja-build make ccache pkg-config git python3 \
        libicu-dev libssl-dev libpcre2-dev libgtest-dev libcli11-dev libbenchmark-dev gdb ;;
    bench) echo libbenchmark-dev qtbase5-dev libglib2.0-dev librttr-dev libtbb-dev libabsl-dev libicu-dev ;;
    docs) echo doxygen ;;
    *) echo "unknown group: $1" >&2; exit 2 ;;
    esac
}

missing=()
for group in "$@"; do
    for package in $(packages "$group"); do
        dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -q '^installed$' || missing+=("$package")
    done
done
[ ${#missing[@]} -eq 0 ] && exit 0

root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "missing packages: ${missing[*]}; run as root or install sudo" >&2; exit 1; }
    root=(sudo)
fi
echo "installing: ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
"${root[@]}" apt-get update -qq
"${root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
