#!/usr/bin/env bash
# Builds the libFuzzer targets with clang under AddressSanitizer + UndefinedBehaviorSanitizer
# and runs each for a bounded time on a seed corpus of the test and example models.
# Usage: tools/run-fuzz.sh [SECONDS per target, default 60]
# BUILD_DIR names the build folder (default: build-fuzz). A crash leaves its input in
# BUILD_DIR/artifacts and makes the script fail.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${BUILD_DIR:-$root/build-fuzz}
seconds=${1:-60}
# Line tables are enough for a crash's trace, and build faster than full debugging information.
CC=clang CXX=clang++ cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O2 -g1 -DNDEBUG" -DMODELBRIDGE_FUZZ=ON \
    -DMODELBRIDGE_SANITIZE=ON -DMODELBRIDGE_TESTS=OFF >/dev/null
cmake --build "$build_dir" -j"$(nproc)" --target fuzz_import fuzz_parser fuzz_merge

seeds="$build_dir/seeds"
rm -rf "$seeds"
mkdir -p "$seeds" "$build_dir/artifacts"
find "$root/examples/models" "$root/tests" "$root/../shared/corpus/xmi" "$root/../shared/corpus/xmi2" -type f \
    \( -name '*.xmi' -o -name '*.xml' -o -name '*.uml' \) -size -200k 2>/dev/null | while read -r file; do
    cp "$file" "$seeds/$(echo "$file" | md5sum | cut -c1-16).xmi"
done
echo "$(ls "$seeds" | wc -l) seed files"

for target in import parser merge; do
    corpus="$build_dir/corpus-$target"
    mkdir -p "$corpus"
    # The merge reads a record, a user's file and a model in one input: seeds of its own.
    seeded="$seeds"
    [ "$target" = merge ] && seeded="$root/tests/fuzz/merge-seeds"
    echo "== fuzz_$target for $seconds s"
    "$build_dir/tests/fuzz/fuzz_$target" "$corpus" "$seeded" -max_total_time="$seconds" -max_len=65536 \
        -timeout=60 -rss_limit_mb=4096 -print_final_stats=1 -artifact_prefix="$build_dir/artifacts/$target-" 2>&1 |
        grep -E "^#[0-9]+ +DONE|stat::number_of_executed_units|ERROR|SUMMARY|Test unit written" || true
    if ls "$build_dir/artifacts/$target-"* >/dev/null 2>&1; then
        echo "fuzz_$target found a failing input: $(ls "$build_dir/artifacts/$target-"*)"
        exit 1
    fi
done
echo "== fuzzing found nothing"
