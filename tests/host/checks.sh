# SPDX-License-Identifier: MIT
# Sourced by the suites beside it: small checks that say what went wrong and are counted.
export LC_ALL=C.UTF-8
failures=0
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

problem() {
    echo "FAIL: $*" >&2
    failures=$((failures + 1))
}

# expect_status NAME WANTED ACTUAL
expect_status() {
    [ "$3" = "$2" ] || problem "$1: exit status $3 instead of $2"
}

# expect_one_line NAME FILE: one line, and nothing more, was said.
expect_one_line() {
    [ "$(wc -l <"$2")" = 1 ] || problem "$1: expected one line, got: $(cat "$2")"
}

finish() {
    [ "$failures" = 0 ] || exit 1
    echo "all as expected"
}
