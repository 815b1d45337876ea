#!/usr/bin/env bash
# The bad-input sweep at full strength: every sample and every file other programs write, cut at
# every length up to 4 KiB (and 32 points beyond) and with 500 randomly flipped copies each,
# under AddressSanitizer and UndefinedBehaviorSanitizer. Prints the number of cases tried.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh test
cmake --preset debug >/dev/null
cmake --build --preset debug --target test_sweep
PXM_SWEEP_FULL=1 PXM_MEMORY_LIMIT=268435456 \
  ASAN_OPTIONS=max_allocation_size_mb=512:allocator_may_return_null=0:detect_leaks=1 \
  build/debug/tests/test_sweep
