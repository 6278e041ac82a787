#!/usr/bin/env bash
# Builds the tests with coverage in a folder of its own, runs those that need no sanitizer, and prints
# the line coverage of the rooms that decide things. Fails under 95 %.
#
#   Tests/coverage.sh SOURCE-FOLDER BUILD-FOLDER
set -euo pipefail
source=$1
build=$2
cmake -S "$source" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS="-O0 -g --coverage -fprofile-update=atomic" -DBUILD_TESTING=ON >/dev/null
cmake --build "$build"
ctest --test-dir "$build" --parallel "$(nproc)" --output-on-failure --no-tests=error \
    --label-regex '^(unit|cli|simulation)$' --exclude-regex 'KeyboardService'
gcovr --root "$source" --filter "$source/Zephlin/" --filter "$source/ZephlinCore/" \
    --exclude-throw-branches --fail-under-line 95 "$build"
