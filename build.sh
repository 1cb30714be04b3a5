#!/usr/bin/env bash
# Installs what is missing (Debian packages), builds, then runs the program
# ("run", extra arguments go to the program) or the whole test suite ("test").
set -euo pipefail
cd "$(dirname "$0")"

# Debian packages, one per line. "run" installs what the program needs to
# build and run; "test" adds what the tests, benchmarks, fuzz targets and
# install checks need.
program_packages=(
    build-essential
    cmake
    ninja-build
    pkg-config
    qt6-base-dev
    libgl-dev          # Qt's Gui module asks for the OpenGL headers
    qt6-qpa-plugins    # the window system plugins
    libqt6sql6-sqlite  # the spot history
    libmosquitto-dev   # the PSK Reporter feed (MQTT)
    hamradio-files     # the country file (cty.dat) of the call book
    fontconfig
    fonts-dejavu-core
)
test_packages=(
    libgtest-dev
    libgmock-dev
    libbenchmark-dev
    libhamlib-dev      # reference geometry
    libgeographiclib-dev
    clang              # fuzz targets
    libclang-rt-14-dev
    xvfb               # screenshots of the window
    xauth
    desktop-file-utils # install check
    appstream
    dpkg-dev           # cpack -G DEB
    mosquitto          # a local MQTT broker for the PSK Reporter tests
    dbus-daemon        # a private session bus for the notification tests
)

mode="${1:-run}"
[ $# -gt 0 ] && shift
case "$mode" in
run) packages=("${program_packages[@]}") ;;
test) packages=("${program_packages[@]}" "${test_packages[@]}") ;;
*)
    echo "usage: $0 [run|test] [arguments]" >&2
    exit 2
    ;;
esac

missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" ||
        missing+=("$package")
done
if ((${#missing[@]})); then
    sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}"
fi

# One build folder for both: "run" leaves the tests and benchmarks out, so it
# needs none of their libraries; "test" builds everything.
with_tests=$([ "$mode" = test ] && echo ON || echo OFF)
build_dir="${ZKR_BUILD_DIR:-build}"
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZKR_WARNINGS_AS_ERRORS=ON \
    -DZKR_BUILD_TESTS="$with_tests" -DZKR_BUILD_BENCH="$with_tests"
cmake --build "$build_dir" -j "$(nproc)"

case "$mode" in
run)
    exec "$build_dir/bin/zkr_muf" "$@"
    ;;
test)
    # The suite as built, then a short fuzz run of every fuzz target, then
    # the whole suite again with AddressSanitizer and UndefinedBehaviorSanitizer.
    (cd "$build_dir" && QT_QPA_PLATFORM=offscreen ctest --no-tests=error --output-on-failure -j "$(nproc)" "$@")
    cmake -S . -B build-fuzz -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DZKR_BUILD_FUZZ=ON \
        -DZKR_BUILD_TESTS=OFF -DZKR_BUILD_BENCH=OFF
    cmake --build build-fuzz -j "$(nproc)" --target fuzz_receive fuzz_analysis fuzz_webpage fuzz_ini \
        fuzz_clusterlist fuzz_wsjtx fuzz_alltxt fuzz_pskreporter
    fuzz/run 5 build-fuzz
    cmake -S . -B build-asan -G Ninja -DZKR_SANITIZE=ON -DZKR_BUILD_BENCH=OFF -DZKR_WARNINGS_AS_ERRORS=ON
    cmake --build build-asan -j "$(nproc)"
    cd build-asan
    LSAN_OPTIONS="suppressions=$PWD/../tests/lsan.supp:print_suppressions=0" QT_QPA_PLATFORM=offscreen \
        ctest --no-tests=error --output-on-failure -j "$(nproc)" --timeout 300 "$@"
    ;;
esac
