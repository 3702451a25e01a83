#!/usr/bin/env bash
# mistake.sh COMPILER INCLUDE FILE NAME: compiles a mistake, which must be refused.
#
# FILE has a program, a line of equals signs, and the mistakes: "NAME | CODE | CODE", where the codes
# take the place of @1@ and @2@. Above them stands the sentence that the compiler must give first,
# and alone, in at most 12 lines of output; "expect at length" allows more lines and errors behind
# it, where the compiler itself has something to say. The name no_mistake stands for no code, which
# must compile, so that nothing fails for another reason.
set -uo pipefail
compiler=$1 include=$2 file=$3 name=$4

source=$(awk -v name="$name" '
    function put(place, code) {
        at = index(program, place)
        if (at)
            program = substr(program, 1, at - 1) code substr(program, at + length(place))
    }
    /^====$/ { behind = 1; next }
    !behind { program = program $0 "\n"; next }
    index($0, name " | ") == 1 { split($0, code, / \| /) }
    END { put("@1@", code[2]); put("@2@", code[3]); printf "%s", program }' "$file")
output=$("$compiler" -std=c++20 -fsyntax-only -I"$include" -x c++ - <<<"$source" 2>&1)
refused=$?

fail() { printf '%s\n%s\n' "$1" "$output"; exit 1; }

if [ "$name" = no_mistake ]; then
    [ $refused = 0 ] || fail "It does not compile without a mistake:"
    exit 0
fi
[ $refused != 0 ] || fail "It compiles."
expected=$(awk -v name="$name" '/^expect/ { head = $0 } index($0, name " | ") == 1 { print head }' "$file")
sentence=${expected#*: }
first=$(grep -m 1 'error: ' <<<"$output")
[[ $first == *"$sentence"* ]] || fail "Not told first: $sentence"
if [[ $expected == expect:* ]]; then
    errors=$(grep -c 'error: ' <<<"$output") lines=$(grep -vc 'error generated' <<<"$output")
    [ "$errors" = 1 ] && [ "$lines" -le 12 ] || fail "$errors errors in $lines lines:"
fi
