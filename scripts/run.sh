#!/usr/bin/env bash
# Sets up everything (packages, an optimised build) and runs Pixmill over the sample pictures:
# first the desktop program on samples/ (on a machine without a display, under a virtual X
# server, where a screenshot of its main window is saved), then a tour of pxm: the description of
# each picture, a conversion of each into a scratch folder, and a few of them dithered and
# reduced.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh run
cmake --preset release >/dev/null
cmake --build --preset release --target pxm pixmill

pxm=build/release/src/cli/pxm
pixmill=build/release/src/ui/pixmill
scratch=$(mktemp -d "${TMPDIR:-/tmp}/pixmill-run-XXXXXX")
export XDG_CONFIG_HOME="$scratch/config"   # a fresh PXM.INI: the run shows the defaults

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  "$pixmill" samples >/dev/null 2>&1 &
  echo "== Pixmill is running on samples/ (process $!); the pxm tour follows"
else
  # No display: the program runs on a virtual screen just long enough to be photographed.
  shot="$scratch/pixmill-main-window.png"
  xvfb-run -a -s "-screen 0 1024x768x24" bash -c '
    "$1" samples >/dev/null 2>&1 &
    pid=$!
    for _ in $(seq 1 100); do
      id=$(xdotool search --onlyvisible --name "^Pixmill - " 2>/dev/null | head -n 1) && [ -n "$id" ] && break
      sleep 0.1
    done
    sleep 1
    [ -n "${id:-}" ] && import -window "$id" "$2"
    kill "$pid"' _ "$pixmill" "$shot"
  if [ -f "$shot" ]; then
    echo "== No display here: Pixmill ran on a virtual screen; its main window is in $shot"
  else
    echo "== No display here, and Pixmill could not be photographed on a virtual screen" >&2
  fi
fi
echo

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
