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
check_outside_hosts "$prefix" "$prefix/lib" "$prefix/lib/python3/dist-packages" "$prefix"

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
if echo "$symbols" | grep -E "XMLLex::advance|Parser::resynchronise|resolvePath|appendUtf8|_GLOBAL__sub|^ *T (intToString|join|startProfiler|seqText)\(" ; then
    echo "internal symbols are exported" >&2
    exit 1
fi
# The installed program finds the library beside it.
"$prefix/bin/modelbridge-gen" --version >/dev/null || { echo "the installed program can't find its library" >&2; exit 1; }
# A host of the importer built as C++17 is told why it fails.
if echo '#include "Generated/XMLImporter.h"' | c++ -std=c++17 -x c++ -fsyntax-only -I"$prefix/include/ModelBridge" - 2>"$prefix/cxx17.log"; then
    echo "the importer's headers compile as C++17" >&2
    exit 1
fi
grep -q "need C++20" "$prefix/cxx17.log" || { echo "no clear error for C++17:" >&2; head -5 "$prefix/cxx17.log" >&2; exit 1; }
echo "install check passed: CMake and pkg-config hosts run, $(echo "$symbols" | wc -l) symbols exported"
