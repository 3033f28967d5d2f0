#!/usr/bin/env bash
# Drives `orv convert` as a user would: round trips through both forms, standard streams, and bad
# input that must leave an existing output file untouched.
set -u
orv=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
total=0
check() { # description, command...
  local what=$1; shift
  total=$((total + 1))
  if "$@"; then echo "ok: $what"; else echo "FAILED: $what"; failures=$((failures + 1)); fi
}

# Keys in the order objects keep them, so that the round trip can be compared byte for byte.
printf '{"name":"probe","nested":{"off":false,"on":true},"ratio":0.5,"size":3,"tags":["a","b"]}' > "$work/in.json"

check "JSON converts to the protobuf text form" "$orv" convert "$work/in.json" "$work/out.txt"
check "the protobuf text names the format version" grep -q version "$work/out.txt"
check "the protobuf text converts back to JSON" "$orv" convert "$work/out.txt" "$work/back.json"
check "the round trip keeps the object" diff <(tr -d '\n' < "$work/back.json") "$work/in.json"
check "standard input and output work" \
  bash -c "'$orv' convert --to json - - < '$work/in.json' | diff - '$work/back.json'"
check "--pretty indents" bash -c "'$orv' convert --pretty --to json '$work/in.json' - | grep -q '^    \"name\"'"

echo 'previous content' > "$work/keep.txt"
for bad in '{"a":' '{"a":1}}' '{"a":[1,2}' $'\xff\xfe' 'version { major: 9 }'; do
  printf '%s' "$bad" > "$work/bad.in"
  "$orv" convert "$work/bad.in" "$work/keep.txt" 2> "$work/err.txt"
  status=$?
  check "bad input '$bad' fails" test "$status" -ne 0
  check "bad input '$bad' is explained on stderr" test -s "$work/err.txt"
  check "bad input '$bad' leaves the old output" grep -qx 'previous content' "$work/keep.txt"
done
check "no temporary file is left behind" test -z "$(ls "$work" | grep 'keep.txt.')"

"$orv" convert "$work/missing.json" "$work/x.txt" 2>/dev/null
check "a missing input fails" test $? -eq 1
"$orv" convert --to yaml "$work/in.json" "$work/x.txt" 2>/dev/null
check "an unknown form is a usage error" test $? -eq 2
check "--help explains the command" bash -c "'$orv' convert --help | grep -q 'Protocol Buffers text form'"

echo "convert: $((total - failures)) passed, $failures failed"
exit $((failures > 0))
