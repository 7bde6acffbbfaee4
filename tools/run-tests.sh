#!/usr/bin/env bash
# Builds the library and its tests, then runs every test.
# Usage: tools/run-tests.sh [extra CMake arguments, e.g. -DMODELBRIDGE_SANITIZE=ON]
# BUILD_DIR names the build folder (default: build); TESTS, a regular expression, runs only the
# tests whose names match it; TARGETS, a list of targets, builds only those (and what they need).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${BUILD_DIR:-$root/build}
cmake -S "$root" -B "$build_dir" -DMODELBRIDGE_TESTS=ON "$@"
cmake --build "$build_dir" -j"$(nproc)" ${TARGETS:+--target $TARGETS}
ctest --test-dir "$build_dir" --output-on-failure -j"$(nproc)" ${TESTS:+-R "$TESTS"}
