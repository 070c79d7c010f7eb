#!/usr/bin/env bash
# Runs every capture in cases/ through scribora-replay. A capture holds header lines
#   args: OPTIONS (@reports: the capture's own file, else it is read from standard input)
#   status: 2     a usage error: one line on stderr, nothing on stdout
#   stderr: N...  the line numbers the skipped lines are named by on stderr
#   skip: PREFIX  output lines with this prefix are not compared
# then report lines, then "expect:" and the events and messages in write order.
set -u
replay=$(realpath "$1")
cd "$(dirname "$0")/cases" || exit 1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() {
    echo "FAIL: $name: $1"
    failures=$((failures + 1))
}
header() { sed -n "s/^$1: *//p" "$file"; }

for file in *.txt; do
    name=${file%.txt}
    # Header lines become comments, so that line numbers stay those of the capture.
    sed -e '/^expect:$/,$d' -e 's/^\(args\|status\|stderr\|skip\):.*/#/' "$file" >"$work/reports"
    sed -e '1,/^expect:$/d' -e '/^#/d' "$file" >"$work/expected"
    read -ra args <<<"$(header args | tr '\n' ' ')"
    args=("${args[@]/#@reports/$work/reports}")
    "$replay" "${args[@]}" <"$work/reports" >"$work/out" 2>"$work/err"
    status=$?
    if [ "$(header status)" = 2 ]; then
        [ "$status" = 2 ] || fail "status $status, not 2"
        [ "$(wc -l <"$work/err")" = 1 ] || fail "not one line on stderr: $(cat "$work/err")"
        [ -s "$work/out" ] && fail "output on stdout"
        continue
    fi
    [ "$status" = 0 ] || fail "status $status: $(cat "$work/err")"
    lines=$(header stderr)
    [ "$(grep -o 'line [0-9]*' "$work/err" | cut -d' ' -f2 | xargs)" = "$lines" ] &&
        [ "$(wc -w <<<"$lines")" = "$(wc -l <"$work/err")" ] ||
        fail "stderr does not name exactly line(s) '$lines': $(cat "$work/err")"
    skip=$(header skip)
    if [ -n "$skip" ]; then grep -v "^$skip" "$work/out"; else cat "$work/out"; fi >"$work/compared"
    diff -u --label expected --label printed "$work/expected" "$work/compared" ||
        fail "events and messages differ"
done
echo "$failures failure(s)"
[ "$failures" -eq 0 ]
