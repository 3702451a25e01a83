#!/usr/bin/env bash
# pkgconfig.sh COMPILER LIBDIR WORKDIR: builds and runs the consumer by pkg-config alone.
set -euo pipefail
compiler=$1 libdir=$2 work=$3
export PKG_CONFIG_PATH=$libdir/pkgconfig
mkdir -p "$work"
cd "$(dirname "$0")"
read -ra flags <<<"$(pkg-config --cflags --libs zintar)"

for standard in c++20 c++2b; do
    "$compiler" -std=$standard consumer/main.cpp "${flags[@]}" -Wl,-rpath,"$libdir" \
        -o "$work/consumer"
    "$work/consumer"
done

# Containers of another layout are refused.
if "$compiler" -std=c++20 -D_GLIBCXX_DEBUG -fsyntax-only consumer/main.cpp "${flags[@]}" \
    2>"$work/told"; then
    echo "Checked containers were accepted" >&2
    exit 1
fi
grep -m1 error "$work/told" | grep "Zintar was built without _GLIBCXX_DEBUG"

# The standard stays the consumer's own choice; an older one gets a sentence.
"$compiler" -std=c++2b -fsyntax-only -include /dev/stdin -x c++ /dev/null "${flags[@]}" <<'END'
#include <zintar/zintar.h>
static_assert(__cplusplus > 202002L);
END
if "$compiler" -std=c++17 -fsyntax-only consumer/main.cpp "${flags[@]}" 2>"$work/told"; then
    echo "C++17 was accepted" >&2
    exit 1
fi
grep -m1 error "$work/told" | grep "Zintar needs C++20"
