#!/usr/bin/env bash
# pkgconfig.sh COMPILER LIBDIR WORKDIR: builds and runs the consumer by pkg-config alone.
set -euo pipefail
compiler=$1 libdir=$2 work=$3
export PKG_CONFIG_PATH=$libdir/pkgconfig
mkdir -p "$work"
# shellcheck disable=SC2046
"$compiler" "$(dirname "$0")/consumer/main.cpp" $(pkg-config --cflags --libs zintar) \
    -Wl,-rpath,"$libdir" -o "$work/consumer"
"$work/consumer"
