#!/usr/bin/env bash
# Builds the Debian package (a Release build with the prefix /usr, then `cpack -G DEB`), checks
# its control data and contents, unpacks it into a fresh root, and builds and runs the outside
# hosts and the packaged program against that tree.
# Usage: tools/check-deb.sh [BUILD_DIR]   (default build-deb/; the package is left there)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${1:-$root/build-deb}
fail() {
    echo "package check: $*" >&2
    exit 1
}

cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
    -DMODELBRIDGE_TESTS=OFF >/dev/null
cmake --build "$build_dir" -j"$(nproc)" >/dev/null
rm -f "$build_dir"/modelbridge_*.deb
(cd "$build_dir" && cpack -G DEB >cpack.log 2>&1) || { cat "$build_dir/cpack.log" >&2; fail "cpack failed"; }
package=$(echo "$build_dir"/modelbridge_*.deb)
[ -f "$package" ] || fail "no package was built"

# Control data: name, the project's version, the libraries it needs, its own shared-library entry.
version=$(sed -n 's/^project(ModelBridge VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
major=${version%%.*}
[ "$(dpkg-deb -f "$package" Package)" = modelbridge ] || fail "the package is not named modelbridge"
[ "$(dpkg-deb -f "$package" Version)" = "$version" ] || fail "version $(dpkg-deb -f "$package" Version), not $version"
depends=$(dpkg-deb -f "$package" Depends)
for needed in libc6 libstdc++6; do
    grep -q "$needed " <<<"$depends" || fail "no dependency on $needed: $depends"
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
dpkg-deb -x "$package" "$work/root"
dpkg-deb -e "$package" "$work/control"
grep -qx "libModelBridge $major modelbridge (>= $version)" "$work/control/shlibs" || fail "shlibs: $(cat "$work/control/shlibs")"

# Contents: the library under its SONAME, headers, CMake package, pkg-config file, program, manual.
usr="$work/root/usr"
multiarch=$(gcc -print-multiarch)
libdir="$usr/lib/$multiarch"
for file in bin/modelbridge-gen include/ModelBridge/Generated/XMLImporter.h \
    "lib/$multiarch/cmake/ModelBridge/ModelBridgeConfig.cmake" "lib/$multiarch/pkgconfig/modelbridge.pc" \
    "lib/$multiarch/libModelBridge.so" share/man/man1/modelbridge-gen.1.gz include/modelbridge/modelbridge.hpp \
    include/modelbridge/modelbridge.h lib/python3/dist-packages/modelbridge/__init__.py; do
    [ -e "$usr/$file" ] || fail "$file is missing"
done
soname=$(objdump -p "$libdir/libModelBridge.so.$version" | awk '$1 == "SONAME" { print $2 }')
[ "$soname" = "libModelBridge.so.$major" ] || fail "SONAME $soname"
[ "$(readlink "$libdir/libModelBridge.so.$major")" = "libModelBridge.so.$version" ] || fail "no link by SONAME"
MANPAGER=cat MANWIDTH=80 man -l "$usr/share/man/man1/modelbridge-gen.1.gz" 2>/dev/null | grep -q "EXIT STATUS" \
    || fail "the manual page doesn't render"

# Hosts built against the unpacked tree, and the packaged program, run.
. "$root/tools/outside-hosts.sh"
check_outside_hosts "$usr" "$libdir" "$usr/lib/python3/dist-packages" "$work"
LD_LIBRARY_PATH="$libdir" "$usr/bin/modelbridge-gen" --version | grep -qx "libModelBridge $version" \
    || fail "the packaged program doesn't find the packaged library's version"
written=$(LD_LIBRARY_PATH="$libdir" "$usr/bin/modelbridge-gen" "$root/examples/models/bank.xmi" -q -o "$work/out")
[ "$(echo "$written" | wc -l)" = 3 ] || fail "the packaged program wrote: $written"
echo "package check passed: $(basename "$package"), depends on $depends"
