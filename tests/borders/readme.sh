#!/usr/bin/env bash
# readme.sh SOURCE BUILD COMPILER: configures as the front page says, on a machine that has nothing
# but the compiler and CMake. What needs a package is left out with a line that says so.
set -euo pipefail
source=$1 build=$2 compiler=$3
options=$(sed -n 's/^cmake -B build //p' "$source/README.md" | head -1)
[ -n "$options" ]
absent=()
for package in CLI11 nlohmann_json GTest benchmark; do
    absent+=("-DCMAKE_DISABLE_FIND_PACKAGE_$package=ON")
done
# shellcheck disable=SC2086
printed=$(cmake -S "$source" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
    "${absent[@]}" $options 2>&1) || { echo "$printed"; exit 1; }
grep -F "zintar-dump is left out, since CLI11 was not found" <<<"$printed"
targets=$(cmake --build "$build" --target help)
grep -q "^zintar: " <<<"$targets"
! grep -q "^zintar-dump: " <<<"$targets"
