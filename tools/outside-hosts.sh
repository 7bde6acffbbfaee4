# Builds the outside host (tests/install) against an installed or unpacked tree, with CMake and
# with pkg-config, and runs both on the example model.
# Usage: . tools/outside-hosts.sh; check_outside_hosts PREFIX LIBDIR WORKDIR
check_outside_hosts() {
    local prefix=$1 libdir=$2 work=$3
    local model="$root/examples/models/bank.xmi"
    local expected=$'Account\nCustomer\nSavingsAccount'
    cmake -S "$root/tests/install" -B "$work/host-cmake" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
    cmake --build "$work/host-cmake" >/dev/null
    [ "$(LD_LIBRARY_PATH="$libdir" "$work/host-cmake/host" "$model")" = "$expected" ]
    local flags
    flags=$(PKG_CONFIG_PATH="$libdir/pkgconfig" pkg-config --cflags --libs modelbridge)
    # shellcheck disable=SC2086
    c++ -o "$work/host-pkg" "$root/tests/install/host.cpp" $flags
    [ "$(LD_LIBRARY_PATH="$libdir" "$work/host-pkg" "$model")" = "$expected" ]
}
