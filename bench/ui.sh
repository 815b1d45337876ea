#!/usr/bin/env bash
# The desktop program's timings beside their floors, in one run: start-up to the first painted
# main window; the file list of a directory of 10,000 pictures built and rebuilt after a change,
# against `ls` of the same directory; and the longest wait between two paints of the progress
# bar while a large picture is converted. Writes bench/out/ui.md and prints it.
#   bench/ui.sh [--runs N]      (bench/run.sh calls it after its own table)
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
runs=5
[ "${1:-}" = "--runs" ] && runs=$2

scripts/deps.sh bench
cmake --preset release >/dev/null
cmake --build --preset release --target pixmill ui_timings make_photo >/dev/null

out="$root/bench/out"
in="$out/inputs"
mkdir -p "$in"
timings="$root/build/release/bench/ui_timings"
scratch=$(mktemp -d "${TMPDIR:-/tmp}/pixmill-ui-bench-XXXXXX")
trap 'rm -rf "$scratch"' EXIT
export XDG_CONFIG_HOME="$scratch/config" XDG_RUNTIME_DIR="$scratch/run" ASAN_OPTIONS=detect_leaks=0
mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"

# 10,000 picture files (their contents are never read by the list) and a large photograph.
list="$in/list10000"
if [ ! -f "$list/photo09999.bmp" ]; then
  mkdir -p "$list"
  (cd "$list" && for i in $(seq -f '%05g' 0 9999); do : > "photo$i.bmp"; done)
fi
[ -f "$in/photo24.bmp" ] || build/release/bench/make_photo 6000 4000 "$in/photo24.bmp"
cp "$in/photo24.bmp" "$scratch/photo.bmp"

median() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
value() { awk -v k="$1" '$1 == k { print $2 }'; }
on_screen() { xvfb-run -a -s "-screen 0 1280x1024x24" "$@"; }

startup=$(for _ in $(seq 1 "$runs"); do on_screen "$timings" startup "$root/samples" | value startup_first_paint; done | median)
listing=$(on_screen "$timings" list "$list" "$runs")
build=$(echo "$listing" | value list_build)
rebuild=$(echo "$listing" | value list_rebuild)
entries=$(echo "$listing" | value list_entries)
ls_ms=$(for _ in $(seq 1 "$runs"); do
  s=$(date +%s%N); ls "$list" > /dev/null; e=$(date +%s%N); echo $(( (e - s) / 1000 ))
done | median | awk '{ printf "%.2f", $1 / 1000 }')
batch=$(on_screen "$timings" batch "$scratch/photo.bmp")

ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.1f", (b > 0 ? a / b : 0) }'; }
{
  echo "## The desktop program"
  echo
  echo "| Measure | Pixmill (ms) | Floor | Ratio |"
  echo "|---|---:|---|---:|"
  echo "| Start-up to the first painted main window (samples/, from main) | $startup | | |"
  echo "| List 10,000 pictures ($entries entries with the directories) | $build | ls: $ls_ms ms | $(ratio "$build" "$ls_ms") |"
  echo "| Rebuild that list after a change, tags kept | $rebuild | ls: $ls_ms ms | $(ratio "$rebuild" "$ls_ms") |"
  echo "| Convert 6000 x 4000 24-bit BMP to PCX in the batch | $(echo "$batch" | value batch_total) | | |"
  echo "| Longest wait between progress paints in that batch ($(echo "$batch" | value batch_paints) paints) | $(echo "$batch" | value batch_longest_gap) | target: 100 ms | |"
  echo
  echo "Targets: the list within 10 x ls; the progress bar painted at least every 100 ms."
} > "$out/ui.md"
cat "$out/ui.md"
