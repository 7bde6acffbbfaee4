#!/usr/bin/env bash
# Installs the library into a temporary prefix, builds a small host against it with CMake and
# with pkg-config, runs both on the example model, and checks the exported symbols.
# Usage: tools/check-install.sh BUILD_DIR
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=$1
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build_dir" --prefix "$prefix" >/dev/null
. "$root/tools/outside-hosts.sh"
check_outside_hosts "$prefix" "$prefix/lib" "$prefix"

# The public header brings a host what it uses and none of the reader, the tree or the writer.
internal=$(echo '#include "Generated/XMLImporter.h"' | c++ -std=c++20 -x c++ -fsyntax-only -H -I"$prefix/include/ModelBridge" - 2>&1 \
    | grep -E 'ModelBridge/(xml|xmi|output)/|XMLParser|XMLLex' || true)
if [ -n "$internal" ]; then
    echo "the public header pulls in internals:" >&2
    echo "$internal" >&2
    exit 1
fi

# The library exports its interface and none of its internals.
symbols=$(nm -D --defined-only -C "$prefix/lib/libModelBridge.so" | awk '{ $1 = ""; $2 = ""; print }')
echo "$symbols" | grep -q "XMLImporter::attemptParse"
echo "$symbols" | grep -q "Environment::open"
if echo "$symbols" | grep -E "XMLLex::advance|Parser::resynchronise|resolvePath|appendUtf8|_GLOBAL__sub" ; then
    echo "internal symbols are exported" >&2
    exit 1
fi
echo "install check passed: CMake and pkg-config hosts run, $(echo "$symbols" | wc -l) symbols exported"
