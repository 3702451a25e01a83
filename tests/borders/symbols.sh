#!/usr/bin/env bash
# symbols.sh check|update LIBRARY: compares the library's exported symbols with the kept list, or
# writes the list anew. Instances of templates and the names of the standard library do not count:
# which of them a compiler puts out of line is its own affair.
set -euo pipefail
list=$(dirname "$0")/symbols.txt
exported() {
    nm -D --defined-only --format=posix "$1" | cut -d' ' -f1 | c++filt | sort -u |
        grep -E '^[^(<]*(\(|$)|^[^(]*operator<' | grep -vE '(^| for )std::|^decltype' || true
}
case $1 in
check) diff "$list" <(exported "$2") ;;
update) exported "$2" >"$list" ;;
esac
