#!/usr/bin/env bash
# Sets up everything (packages, a debug build with AddressSanitizer and UndefinedBehaviorSanitizer,
# warnings as errors) and runs the whole test suite: unit tests, the command-line tests, the
# oracle comparisons with other programs, and the replay of every fuzz target's cases; then shows
# the oracle matrix (format x variant x direction) that the run printed; last, the threaded
# engine tests under ThreadSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh test
cmake --preset debug >/dev/null
cmake --build --preset debug
rm -f build/debug/oracle-matrix.txt
status=0
ctest --preset debug || status=$?
if [ -f build/debug/oracle-matrix.txt ]; then cat build/debug/oracle-matrix.txt; fi

# The engine's threaded work again under ThreadSanitizer: files that run side by side must share
# nothing without a lock, and write what one thread writes.
cmake --preset tsan >/dev/null
cmake --build --preset tsan --target test_parallel test_batch
export TSAN_OPTIONS=halt_on_error=1:abort_on_error=1
build/tsan/tests/test_parallel || status=$?
build/tsan/tests/test_batch --gtest_filter='FileWalk*' || status=$?
exit "$status"
