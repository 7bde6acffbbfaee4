#!/usr/bin/env bash
# Builds the Python wheel both ways (tools/build-wheel.sh, and `pip wheel .` through the build
# backend of pyproject.toml), installs each offline into a fresh virtual environment of the
# python3 on PATH, and reads the example model there end to end, with nothing of the build on
# the module's paths.
# Usage: tools/check-wheel.sh [BUILD_DIR]   (default build-wheel/; a Release build, reused)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${1:-$root/build-wheel}
say() { echo "check-wheel: $*"; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

use() {
    local wheel=$1 venv=$2
    say "installing $(basename "$wheel") into a fresh virtual environment of $(python3 --version)"
    python3 -m venv "$venv"
    env -u PYTHONPATH -u MODELBRIDGE_LIBRARY "$venv/bin/python" -m pip install --no-index --no-cache-dir \
        --disable-pip-version-check -q "$wheel"
    local read
    read=$(cd "$work" && env -u PYTHONPATH -u MODELBRIDGE_LIBRARY "$venv/bin/python" -c '
import sys, modelbridge
with modelbridge.parse(sys.argv[1]) as model:
    report = model.update(sys.argv[2])
    print(" ".join(model.classes), " ".join(f.outcome.value for f in report.files), sep="; ")
' "$root/examples/models/bank.xmi" "$venv-spec")
    [ "$read" = "Account Customer SavingsAccount; created created created" ] || {
        echo "check-wheel: FAILED: the installed module read: $read" >&2
        exit 1
    }
    [ -f "$venv-spec/Account.tv" ] || { echo "check-wheel: FAILED: no file written" >&2; exit 1; }
}

say "building the wheel with tools/build-wheel.sh"
wheel=$(BUILD_DIR=$build_dir "$root/tools/build-wheel.sh" "$work/dist")
use "$wheel" "$work/venv"
say "building the wheel with pip wheel, through the backend of pyproject.toml"
(cd "$root" && MODELBRIDGE_BUILD_DIR=$build_dir python3 -m pip wheel --no-index --no-deps --no-cache-dir \
    --disable-pip-version-check -q -w "$work/pip-dist" .)
use "$(echo "$work"/pip-dist/modelbridge-*.whl)" "$work/venv-pip"
say "passed: $(basename "$wheel"), installed and used both ways"
