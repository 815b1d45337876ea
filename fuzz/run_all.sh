#!/usr/bin/env bash
# Builds every reader's fuzz target with clang (AddressSanitizer + UndefinedBehaviorSanitizer)
# and runs each for the given number of seconds, seeded from its saved cases, the samples and
# the test data. A crash, leak, timeout or out-of-memory case is saved as a regression file in
# fuzz/corpus/<target>/, which the unit tests replay from then on.
#   fuzz/run_all.sh [SECONDS]      (default 60 per target)
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}

scripts/deps.sh fuzz
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz

status=0
for fuzzer in build/fuzz/fuzz/fuzz_*; do
  [ -x "$fuzzer" ] || continue
  name=${fuzzer##*/fuzz_}
  corpus=fuzz/corpus/$name
  scratch=$(mktemp -d "${TMPDIR:-/tmp}/pxm-fuzz-$name-XXXXXX")
  mkdir -p "$corpus"
  echo "== $name: ${seconds}s"
  # New inputs that widen coverage go to the scratch folder; only failures are kept.
  if ! "$fuzzer" -max_total_time="$seconds" -rss_limit_mb=2048 -timeout=20 \
        -artifact_prefix="$corpus/" -print_final_stats=1 \
        "$scratch" "$corpus" samples tests/data 2>"$scratch/log.txt"; then
    echo "   $name found a failure; saved in $corpus/ (see $scratch/log.txt)"
    status=1
  fi
  grep -E 'stat::number_of_executed_units|Done [0-9]+ runs' "$scratch/log.txt" | tail -1 || true
  [ $status -eq 0 ] && rm -rf "$scratch"
done
exit $status
