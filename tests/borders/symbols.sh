#!/usr/bin/env bash
# symbols.sh check|update LIBRARY: compares the library's exported symbols with the kept list, or
# writes the list anew. Instances of the standard library's templates do not count.
set -euo pipefail
list=$(dirname "$0")/symbols.txt
exported() {
    nm -D --defined-only --format=posix "$1" | cut -d' ' -f1 | c++filt | sort -u |
        grep -vE '(^| for |^guard variable for )(std|__gnu_cxx)::|^(void|bool|std::[^ ]+)[^(]* (std|__gnu_cxx)::|^\(?decltype' || true
}
case $1 in
check) diff "$list" <(exported "$2") ;;
update) exported "$2" >"$list" ;;
esac
