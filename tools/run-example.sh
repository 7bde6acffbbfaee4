#!/usr/bin/env bash
# Builds the library and the sample host, then generates the Tarvane classes of the bundled
# example model into out/.
# Usage: tools/run-example.sh [MODEL.xmi] [more modelbridge-gen options]
# BUILD_DIR names the build folder (default: build).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${BUILD_DIR:-$root/build}
cmake -S "$root" -B "$build_dir" >/dev/null
cmake --build "$build_dir" -j"$(nproc)" --target modelbridge-gen
model=${1:-$root/examples/models/bank.xmi}
shift || true
mkdir -p "$root/out"
"$build_dir/examples/modelbridge-gen" "$model" -o "$root/out" "$@"
