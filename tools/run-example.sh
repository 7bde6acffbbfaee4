#!/usr/bin/env bash
# Builds the library and the sample host, then generates the Tarvane classes of the bundled
# example model into out/ (or the model and options given, into out/ unless they name a folder).
# Usage: tools/run-example.sh [MODEL.xmi] [more modelbridge-gen options]
# BUILD_DIR names the build folder (default: build).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${BUILD_DIR:-$root/build}
cmake -S "$root" -B "$build_dir" >/dev/null
cmake --build "$build_dir" -j"$(nproc)" --target modelbridge-gen
model=${1:-$root/examples/models/bank.xmi}
shift || true
# Into out/ unless the options name a folder, or ask for something else than writing.
for option in "$@"; do
    case $option in
    -o | --list | --list-outputs | --check | --dry-run | --diff) exec "$build_dir/examples/modelbridge-gen" "$model" "$@" ;;
    esac
done
mkdir -p "$root/out"
"$build_dir/examples/modelbridge-gen" "$model" -o "$root/out" "$@"
