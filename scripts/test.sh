#!/usr/bin/env bash
# Sets up everything (packages, a debug build with AddressSanitizer and UndefinedBehaviorSanitizer,
# warnings as errors) and runs the whole test suite: unit tests, the command-line tests, the
# oracle comparisons with other programs, and the replay of every fuzz target's cases.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh test
cmake --preset debug >/dev/null
cmake --build --preset debug
ctest --preset debug
