#!/usr/bin/env bash
# Times Pixmill beside other tools doing the same work, in one run on one machine, and writes a
# table of ratios (bench/out/results.md) and the raw numbers (bench/out/results.csv).
#   bench/run.sh [--runs N] [--only GROUP]
# With --only, only the groups whose name contains GROUP are measured again and replace their
# rows in the table.
# Each case runs N times (median reported, default 5) after one warm-up; peak memory comes from
# one more run under /usr/bin/time.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

runs=5
only=""
while [ $# -gt 0 ]; do
  case "$1" in
    --runs) runs=$2; shift 2 ;;
    --only) only=$2; shift 2 ;;
    *) echo "usage: $0 [--runs N] [--only GROUP]" >&2; exit 2 ;;
  esac
done

scripts/deps.sh bench
cmake --preset release >/dev/null
cmake --build --preset release --target pxm make_photo >/dev/null

out="$root/bench/out"
in="$out/inputs"
work="$out/work"
mkdir -p "$in" "$work"
export XDG_CONFIG_HOME="$out/config"   # default settings, never the user's own
pxm="$root/build/release/src/cli/pxm --quiet"
im=convert-im6.q16

# Inputs, made once and kept between runs.
[ -f "$in/photo24.bmp" ] || build/release/bench/make_photo 6000 4000 "$in/photo24.bmp"

# The cases: group, tool, command. A group compares tools doing the same work; tools whose
# name starts with "pixmill" are ours.
cases="$out/cases.tsv"
: > "$cases"
add() { printf '%s\t%s\t%s\n' "$1" "$2" "$3" >> "$cases"; }

add "BMP 24-bit 6000x4000 -> BMP" "pixmill" "$pxm convert --to bmp --output $work/p.bmp $in/photo24.bmp"
add "BMP 24-bit 6000x4000 -> BMP" "pixmill (spill file)" "PXM_MEMORY_LIMIT=0 $pxm convert --to bmp --output $work/s.bmp $in/photo24.bmp"
add "BMP 24-bit 6000x4000 -> BMP" "cp" "cp $in/photo24.bmp $work/cp.bmp"
add "BMP 24-bit 6000x4000 -> BMP" "ImageMagick" "$im $in/photo24.bmp BMP3:$work/im.bmp"
add "BMP 24-bit 6000x4000 -> BMP" "GraphicsMagick" "gm convert $in/photo24.bmp BMP3:$work/gm.bmp"

# Further workloads join here as their formats and commands arrive.
for extra in bench/cases.d/*.sh; do
  [ -f "$extra" ] && . "$extra"
done

results="$out/raw.tsv"
if [ -n "$only" ] && [ -f "$results" ]; then
  # Only the chosen groups are measured again; the rest of the table keeps its last numbers.
  awk -F'\t' -v only="$only" 'index($1, only) == 0' "$results" > "$results.kept"
  mv "$results.kept" "$results"
else
  : > "$results"
fi
while IFS=$'\t' read -r group tool command; do
  if [ -n "$only" ] && [[ "$group" != *"$only"* ]]; then continue; fi
  tool_bin=$(echo "$command" | sed -E 's/^cd [^ ]+ && //; s/^([A-Z_]+=[^ ]+ )*//' | cut -d' ' -f1)
  if ! command -v "$tool_bin" >/dev/null 2>&1; then
    echo "skip: $tool ($tool_bin not installed)" >&2
    continue
  fi
  echo "== $group :: $tool" >&2
  if ! hyperfine --style none --warmup 1 --runs "$runs" --export-json "$work/h.json" -- "$command" >/dev/null 2>"$work/h.err"; then
    echo "   failed, left out of the table: $(tail -n 1 "$work/h.err")" >&2
    continue
  fi
  median=$(python3 -c 'import json,sys; print(json.load(open(sys.argv[1]))["results"][0]["median"])' "$work/h.json")
  # The memory run also tells what the tool wrote: every file under work/ changed since (the
  # change time, because a copy keeps its source's modification time).
  touch "$work/.marker"
  sleep 0.01
  /usr/bin/time -f '%M' -o "$work/peak" bash -c "$command" >/dev/null 2>&1 || true
  peak=$(tail -n 1 "$work/peak")
  written=$(find "$work" -type f -cnewer "$work/.marker" ! -name peak ! -name 'h.*' -printf '%s\n' |
            awk '{ s += $1 } END { print s + 0 }')
  printf '%s\t%s\t%s\t%s\t%s\n' "$group" "$tool" "$median" "$peak" "$written" >> "$results"
done < "$cases"

python3 bench/report.py "$results" "$out/results.md" "$out/results.csv"
cat "$out/results.md"

# The desktop program's own timings, in the same run.
if [ -z "$only" ] || [[ "desktop program" == *"$only"* ]]; then
  bench/ui.sh --runs "$runs"
fi
