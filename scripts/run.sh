#!/usr/bin/env bash
# Sets up everything (packages, an optimised build) and runs Pixmill over the sample pictures:
# the description of each, then a conversion of each into a scratch folder, and a few of them
# dithered and reduced.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh build
cmake --preset release >/dev/null
cmake --build --preset release --target pxm

pxm=build/release/src/cli/pxm
scratch=$(mktemp -d "${TMPDIR:-/tmp}/pixmill-run-XXXXXX")
export XDG_CONFIG_HOME="$scratch/config"   # a fresh PXM.INI: the run shows the defaults

echo "== pxm formats (rows this build reads and writes)"
"$pxm" formats | grep -E 'read:yes|write:yes'
echo
for f in samples/*.bmp samples/*.dib samples/*.bga; do
  echo "== pxm info $f"
  "$pxm" info "$f"
  echo
done
echo "== pxm convert into $scratch"
"$pxm" convert --to bmp --dest-dir "$scratch" --set FilenameUnderbars=0 samples/*.bmp samples/*.bga
"$pxm" --set WriteOS2Bitmaps=1 convert --to dib --dest-dir "$scratch" --set FilenameUnderbars=0 samples/*.bmp
echo
echo "== pxm dither and pxm effect into $scratch/dither and $scratch/effect"
mkdir -p "$scratch/dither" "$scratch/effect"
"$pxm" dither --method stucki --bidirectional --dest-dir "$scratch/dither" --set FilenameUnderbars=0 \
  samples/wheel-24bit.bmp samples/wheel-8bit.bmp samples/wheel-4bit.bmp
"$pxm" effect --effect reduce --palette 6 --method floyd --to bmp --dest-dir "$scratch/effect" \
  --set FilenameUnderbars=0 samples/wheel-24bit.bmp
"$pxm" effect --effect grey --to dib --dest-dir "$scratch/effect" --set FilenameUnderbars=0 \
  samples/wheel-8bit.bmp
echo
ls -lR "$scratch"
