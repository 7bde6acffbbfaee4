#!/usr/bin/env bash
# The size of the test suite against the code it tests, in lines of committed source files
# (C++, C, Python, shell, the grammar, CMake): everything outside tests/ and bench/ counts as
# code, except the generated parse tables; tests/ counts as tests. Data, models, manual pages
# and documents count as neither. Fails when the tests pass LIMIT percent of the code
# (default 40).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
limit=${1:-40}
cd "$root"
lines() { xargs -0 cat -- | wc -l; }
sources=('*.cpp' '*.h' '*.hpp' '*.c' '*.py' '*.py.in' '*.sh' '*.grammar' '*CMakeLists.txt' '*.cmake' '*.cmake.in')
code=$(git ls-files -z -- "${sources[@]}" ':!tests/' ':!bench/' ':!Generated/GrcParse.cpp' | lines)
tests=$(git ls-files -z -- "${sources[@]/#/tests/}" | lines)
share=$((100 * tests / code))
echo "tests: $tests lines, code: $code lines, tests are ${share}% of the code (limit ${limit}%)"
[ $((100 * tests)) -le $((limit * code)) ]
