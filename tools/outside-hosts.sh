# Builds hosts outside the project against an installed or unpacked tree and runs each on the
# example model: the importer's host and a C++17 host of the facade with CMake, the importer's
# host and a C host of the C API with pkg-config, and the Python module; and generation as a
# build step, through the CMake package's modelbridge_generate.
# Usage: . tools/outside-hosts.sh; check_outside_hosts PREFIX LIBDIR PYTHONDIR WORKDIR
check_outside_hosts() {
    local prefix=$1 libdir=$2 pythondir=$3 work=$4
    local model="$root/examples/models/bank.xmi"
    local expected=$'Account\nCustomer\nSavingsAccount'
    LD_LIBRARY_PATH="$libdir" cmake -S "$root/tests/install" -B "$work/host-cmake" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
    LD_LIBRARY_PATH="$libdir" cmake --build "$work/host-cmake" >/dev/null
    # The build step wrote the classes and the record; a user's body survives the next build.
    local spec="$work/host-cmake/spec"
    [ -f "$spec/Account.tv" ] && [ -f "$spec/.modelbridge/record" ] || {
        echo "modelbridge_generate wrote no files" >&2
        return 1
    }
    sed -i 's/schema !deposit (amount: real) post ?;/schema !deposit (amount: real) post balance! = 1;/' "$spec/Account.tv"
    rm -f "$work/host-cmake/bank_spec.modelbridge-stamp"
    LD_LIBRARY_PATH="$libdir" cmake --build "$work/host-cmake" >/dev/null
    grep -q "post balance! = 1;" "$spec/Account.tv" || {
        echo "a build step lost the user's body" >&2
        return 1
    }
    for host in host facade_host; do
        [ "$(LD_LIBRARY_PATH="$libdir" "$work/host-cmake/$host" "$model")" = "$expected" ] || {
            echo "the CMake-built $host fails" >&2
            return 1
        }
    done
    local flags
    # The file names the prefix it was installed under; an unpacked tree is found where it lies.
    flags=$(PKG_CONFIG_PATH="$libdir/pkgconfig" pkg-config --define-variable=prefix="$prefix" --cflags --libs modelbridge)
    # shellcheck disable=SC2086
    c++ -std=c++20 -o "$work/host-pkg" "$root/tests/install/host.cpp" $flags
    # shellcheck disable=SC2086
    cc -std=c99 -Wall -Wextra -Werror -o "$work/host-c" "$root/tests/install/host.c" $flags
    for host in host-pkg host-c; do
        [ "$(LD_LIBRARY_PATH="$libdir" "$work/$host" "$model")" = "$expected" ] || {
            echo "the pkg-config-built $host fails" >&2
            return 1
        }
    done
    # The Python module finds the library from where it is installed.
    [ "$(PYTHONPATH="$pythondir" python3 -c 'import sys, modelbridge
print("\n".join(modelbridge.parse(sys.argv[1]).classes))' "$model")" = "$expected" ] || {
        echo "the installed Python module fails" >&2
        return 1
    }
    # The facade brings no header of the library's inside, and a host of it compiles quickly.
    local included start elapsed
    included=$(echo '#include <modelbridge/modelbridge.hpp>' | c++ -std=c++17 -x c++ -fsyntax-only -H \
        -I"$prefix/include" - 2>&1 | grep -c 'ModelBridge/' || true)
    [ "$included" = 0 ] || {
        echo "the facade header includes $included headers of the library" >&2
        return 1
    }
    start=$(date +%s%N)
    c++ -std=c++17 -O2 -c -o "$work/facade_host.o" -I"$prefix/include" "$root/tests/install/facade_host.cpp"
    elapsed=$((($(date +%s%N) - start) / 1000000))
    echo "a C++17 host of the facade compiles at -O2 in $elapsed ms"
}
