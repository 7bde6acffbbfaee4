#!/usr/bin/env bash
# Builds the Python wheel: a Release build of the library, then the package with the library
# inside it. `pip install DIR/modelbridge-*.whl` installs it into any Python of 3.9 or later on
# this platform, offline.
# Usage: tools/build-wheel.sh DIR   (BUILD_DIR names the build folder, default build-wheel/)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
out=${1:?usage: tools/build-wheel.sh DIR}
build_dir=${BUILD_DIR:-$root/build-wheel}
echo "build-wheel: building the library in $build_dir" >&2
cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE=Release -DMODELBRIDGE_TESTS=OFF >/dev/null
cmake --build "$build_dir" -j"$(nproc)" --target ModelBridge >/dev/null
mkdir -p "$out"
wheel=$(python3 "$root/tools/modelbridge_wheel.py" "$build_dir" "$out")
echo "build-wheel: $wheel" >&2
echo "$wheel"
