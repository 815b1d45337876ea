#!/usr/bin/env bash
# A picture larger than most tools care to hold: 30000 x 30000 pixels at 24 bits (2.7 GB),
# converted BMP to BMP with the image store in memory and with it forced into the spill file.
# Reports time and peak memory; the spill run should stay under 64 MiB.
#   bench/huge.sh [SIZE]     (default 30000; needs about 3 x SIZE^2 x 3 bytes of disk)
set -euo pipefail
cd "$(dirname "$0")/.."
size=${1:-30000}
scripts/deps.sh bench
cmake --preset release >/dev/null
cmake --build --preset release --target pxm make_photo >/dev/null

dir="bench/out/huge"
mkdir -p "$dir"
export XDG_CONFIG_HOME="$dir/config"
input="$dir/huge-$size.bmp"
[ -f "$input" ] || build/release/bench/make_photo "$size" "$size" "$input"
pxm=build/release/src/cli/pxm

echo "| Store | Seconds | Peak memory (MiB) |"
echo "|---|---:|---:|"
for mode in memory spill; do
  # "memory" holds the whole picture in memory even where the default limit (half of the
  # available memory) would spill it; "spill" keeps nothing but the rows in hand.
  limit="PXM_MEMORY_LIMIT=$((size * size * 3 + (1 << 30)))"
  [ "$mode" = spill ] && limit="PXM_MEMORY_LIMIT=0"
  env $limit /usr/bin/time -f '%e %M' -o "$dir/time.txt" \
    "$pxm" --quiet convert --to bmp --output "$dir/out-$mode.bmp" "$input"
  read -r secs kib < "$dir/time.txt"
  printf '| %s | %s | %s |\n' "$mode" "$secs" "$(awk -v k="$kib" 'BEGIN { printf "%.1f", k / 1024 }')"
  rm -f "$dir/out-$mode.bmp"
done
