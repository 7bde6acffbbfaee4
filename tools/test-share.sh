#!/usr/bin/env bash
# The size of the test suite against the code it tests, in lines of committed source files
# (C++, C and Python): everything outside tests/ and bench/ counts as code, except the parse
# tables that tools/lalrgen writes; tests/ counts as tests. Build files, scripts, data, models,
# manual pages and documents count as neither. Fails when the tests pass LIMIT percent of the
# code (default 40).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
limit=${1:-40}
cd "$root"
lines() { xargs -0 cat -- | wc -l; }
sources=('*.cpp' '*.h' '*.hpp' '*.c' '*.py' '*.py.in')
code=$(git ls-files -z -- "${sources[@]}" ':!tests/' ':!bench/' ':!Generated/GrcParse.*' | lines)
tests=$(git ls-files -z -- "${sources[@]/#/tests/}" | lines)
echo "tests: $tests lines, code: $code lines, tests are $((1000 * tests / code / 10)).$((1000 * tests / code % 10))% of the code (limit ${limit}%)"
[ $((100 * tests)) -le $((limit * code)) ]
