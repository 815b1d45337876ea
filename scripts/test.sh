#!/usr/bin/env bash
# Sets up everything (packages, a debug build with AddressSanitizer and UndefinedBehaviorSanitizer,
# warnings as errors) and runs the whole test suite: unit tests, the command-line tests, the
# oracle comparisons with other programs, and the replay of every fuzz target's cases; then shows
# the oracle matrix (format x variant x direction) that the run printed.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh test
cmake --preset debug >/dev/null
cmake --build --preset debug
rm -f build/debug/oracle-matrix.txt
status=0
ctest --preset debug || status=$?
if [ -f build/debug/oracle-matrix.txt ]; then cat build/debug/oracle-matrix.txt; fi
exit "$status"
