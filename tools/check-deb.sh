#!/usr/bin/env bash
# Builds the Debian packages (a Release build with the prefix /usr, then `cpack -G DEB`): the
# library libmodelbridge1, libmodelbridge-dev, the program modelbridge and python3-modelbridge.
# Checks each one's control data, contents and dependencies on the others, unpacks all four
# into a fresh root, and builds and runs the outside hosts, the packaged program, its
# completion and the Python module there. Says what it does as it goes.
# Usage: tools/check-deb.sh [BUILD_DIR]   (default build-deb/; the packages are left there)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${1:-$root/build-deb}
say() { echo "check-deb: $*"; }
fail() {
    echo "check-deb: FAILED: $*" >&2
    exit 1
}

version=$(sed -n 's/^project(ModelBridge VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
major=${version%%.*}
lib=libmodelbridge$major

say "configuring a Release build with the prefix /usr in $build_dir"
cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
    -DMODELBRIDGE_TESTS=OFF >/dev/null
say "building the library and the program (a few minutes on two cores)"
cmake --build "$build_dir" -j"$(nproc)" >/dev/null
say "making the packages with cpack"
rm -f "$build_dir"/*.deb
(cd "$build_dir" && cpack -G DEB >cpack.log 2>&1) || { cat "$build_dir/cpack.log" >&2; fail "cpack failed"; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
multiarch=$(gcc -print-multiarch)
arch=$(dpkg --print-architecture)
declare -A depends
for package in "$lib" libmodelbridge-dev modelbridge python3-modelbridge; do
    file="$build_dir/${package}_${version}_$arch.deb"
    [ -f "$file" ] || fail "no package $package: $(cd "$build_dir" && echo *.deb)"
    [ "$(dpkg-deb -f "$file" Package)" = "$package" ] || fail "$file is not named $package"
    [ "$(dpkg-deb -f "$file" Version)" = "$version" ] || fail "$package: version $(dpkg-deb -f "$file" Version), not $version"
    depends[$package]=$(dpkg-deb -f "$file" Depends)
    dpkg-deb -c "$file" | awk '{ print $6 }' | grep -v '/$' | sed "s|^\./|$package /|" >>"$work/contents"
    say "$package: depends on ${depends[$package]}"
done

say "checking the dependencies between the packages"
needs() {
    grep -qF "$2" <<<"${depends[$1]}" || fail "$1 does not depend on '$2': ${depends[$1]}"
}
needs "$lib" "libc6 "
needs "$lib" "libstdc++6 "
needs libmodelbridge-dev "$lib (= $version)"
needs modelbridge "$lib (>= $version)"
needs modelbridge "libc6 "
needs python3-modelbridge "$lib (= $version)"
needs python3-modelbridge "python3 (>= 3.9)"
dpkg-deb -e "$build_dir/${lib}_${version}_$arch.deb" "$work/control"
grep -qx "libModelBridge $major $lib (>= $version)" "$work/control/shlibs" || fail "shlibs: $(cat "$work/control/shlibs")"

say "checking what each package holds"
holds() {
    grep -qx "$1 /usr/$2" "$work/contents" || fail "$1 does not hold /usr/$2"
}
holds "$lib" "lib/$multiarch/libModelBridge.so.$version"
holds "$lib" "lib/$multiarch/libModelBridge.so.$major"
holds libmodelbridge-dev "lib/$multiarch/libModelBridge.so"
holds libmodelbridge-dev "include/ModelBridge/Generated/XMLImporter.h"
holds libmodelbridge-dev "include/modelbridge/modelbridge.hpp"
holds libmodelbridge-dev "include/modelbridge/modelbridge.h"
holds libmodelbridge-dev "lib/$multiarch/cmake/ModelBridge/ModelBridgeConfig.cmake"
holds libmodelbridge-dev "lib/$multiarch/pkgconfig/modelbridge.pc"
holds modelbridge "bin/modelbridge-gen"
holds modelbridge "share/man/man1/modelbridge-gen.1.gz"
holds modelbridge "share/bash-completion/completions/modelbridge-gen"
holds python3-modelbridge "lib/python3/dist-packages/modelbridge/__init__.py"
holds python3-modelbridge "lib/python3/dist-packages/modelbridge/py.typed"
[ "$(grep -c "^$lib " "$work/contents")" = 2 ] || fail "$lib holds more than the library: $(grep "^$lib " "$work/contents")"
shared=$(awk '{ print $2 }' "$work/contents" | sort | uniq -d)
[ -z "$shared" ] || fail "files in two packages: $shared"

say "unpacking all four into a fresh root, $work/root"
for package in "$lib" libmodelbridge-dev modelbridge python3-modelbridge; do
    dpkg-deb -x "$build_dir/${package}_${version}_$arch.deb" "$work/root"
done
usr="$work/root/usr"
libdir="$usr/lib/$multiarch"
soname=$(objdump -p "$libdir/libModelBridge.so.$version" | awk '$1 == "SONAME" { print $2 }')
[ "$soname" = "libModelBridge.so.$major" ] || fail "SONAME $soname"
[ "$(readlink "$libdir/libModelBridge.so.$major")" = "libModelBridge.so.$version" ] || fail "no link by SONAME"
MANPAGER=cat MANWIDTH=80 man -l "$usr/share/man/man1/modelbridge-gen.1.gz" 2>/dev/null | grep -q "EXIT STATUS" \
    || fail "the manual page doesn't render"

say "pkg-config gives plain paths"
cflags=$(PKG_CONFIG_PATH="$libdir/pkgconfig" pkg-config --cflags modelbridge | sed "s/ *$//")
libs=$(PKG_CONFIG_PATH="$libdir/pkgconfig" pkg-config --libs modelbridge | sed "s/ *$//")
[ "$cflags" = "-I/usr/include/ModelBridge" ] || fail "pkg-config --cflags gives '$cflags'"
[ "$libs" = "-lModelBridge" ] || fail "pkg-config --libs gives '$libs'"

say "building and running the outside hosts (CMake, pkg-config, C, Python) against the unpacked root"
. "$root/tools/outside-hosts.sh"
check_outside_hosts "$usr" "$libdir" "$usr/lib/python3/dist-packages" "$work"

say "running the packaged program and its completion"
LD_LIBRARY_PATH="$libdir" "$usr/bin/modelbridge-gen" --version | grep -qx "libModelBridge $version" \
    || fail "the packaged program doesn't find the packaged library's version"
written=$(LD_LIBRARY_PATH="$libdir" "$usr/bin/modelbridge-gen" "$root/examples/models/bank.xmi" -q -o "$work/out")
[ "$(echo "$written" | wc -l)" = 3 ] || fail "the packaged program wrote: $written"
completed=$(LD_LIBRARY_PATH="$libdir" bash -c 'shopt -s extglob; . "$0"; COMP_WORDS=("$1" "$2" --class C); COMP_CWORD=3
    _modelbridge_gen; echo "${COMPREPLY[*]}"' "$usr/share/bash-completion/completions/modelbridge-gen" \
    "$usr/bin/modelbridge-gen" "$root/examples/models/bank.xmi")
[ "$completed" = "Customer" ] || fail "the completion of --class gives '$completed'"
say "passed: $(cd "$build_dir" && echo *.deb)"
