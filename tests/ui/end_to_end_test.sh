#!/usr/bin/env bash
# The real program under a virtual X server, driven as a user drives it: start it on a directory,
# tag two files with the keyboard, press the Convert button, choose PCX, wait for the files,
# check them against their sources, start it a second time (which must only raise the first),
# and quit with the quit question answered.
#   end_to_end_test.sh PIXMILL SAMPLES_DIR [SCREENSHOT_DIR]
set -euo pipefail

if [ -z "${PXM_E2E_UNDER_XVFB:-}" ]; then
  export PXM_E2E_UNDER_XVFB=1
  exec xvfb-run -a -s "-screen 0 1024x768x24" "$0" "$@"
fi

pixmill=$1
samples=$2
shots=${3:-}
root=$(mktemp -d "${TMPDIR:-/tmp}/pixmill-e2e-XXXXXX")
pids=()
cleanup() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  rm -rf "$root"
}
trap cleanup EXIT

export HOME="$root/home" XDG_CONFIG_HOME="$root/home/.config" XDG_DATA_HOME="$root/home/.local/share"
export XDG_CACHE_HOME="$root/home/.cache" XDG_STATE_HOME="$root/home/.local/state"
export XDG_RUNTIME_DIR="$root/run" TMPDIR="$root/tmp"
mkdir -p "$HOME" "$XDG_RUNTIME_DIR" "$TMPDIR"
chmod 700 "$XDG_RUNTIME_DIR"
export ASAN_OPTIONS=detect_leaks=0
unset QT_QPA_PLATFORM

work="$root/pictures"
mkdir -p "$work"
cp "$samples/wheel-8bit.bmp" "$work/a.bmp"
cp "$samples/wheel-4bit.bmp" "$work/b.bmp"
cp "$samples/wheel-1bit.bmp" "$work/c.bmp"

fail() { echo "FAIL: $*" >&2; exit 1; }
# Waits up to $2 tenths of a second for the window named exactly $1; prints its id.
wait_window() {
  for _ in $(seq 1 "$2"); do
    if id=$(xdotool search --onlyvisible --name "^$1\$" 2>/dev/null | head -n 1) && [ -n "$id" ]; then
      echo "$id"
      return 0
    fi
    sleep 0.1
  done
  return 1
}
shot() { [ -n "$shots" ] && import -window root "$shots/$1.png" || true; }

title="Pixmill - [$work]"
"$pixmill" "$work" > "$root/first.log" 2>&1 &
pids+=($!)
first=$!
main=$(wait_window "$(printf '%s' "$title" | sed 's/[][\.*^$]/\\&/g')" 300) || fail "no main window titled '$title'"
[ "$(xdotool getwindowname "$main")" = "$title" ] || fail "title is '$(xdotool getwindowname "$main")'"

# A second start finds the first, asks it to come up and ends without a window of its own.
timeout 20 "$pixmill" "$work" > "$root/second.log" 2>&1 || fail "second start did not end by itself"
[ "$(xdotool search --onlyvisible --name '^Pixmill - ' | wc -l)" -eq 1 ] || fail "more than one main window"
kill -0 "$first" || fail "the first copy ended"

# Tag a.bmp and b.bmp: the list has the keyboard; Home, then Down and Space twice.
xdotool windowfocus --sync "$main"
sleep 0.3
xdotool key --delay 80 Home Down space Down space
sleep 0.3
shot main-window

# The Convert button is the first of the graphic bar, under the menu bar.
xdotool mousemove --window "$main" 13 38 click 1
dest=$(wait_window "Destination format" 100) || fail "no destination dialog"
shot destination-dialog
# The first format button has the focus; PCX is the third row.
xdotool windowfocus --sync "$dest"
xdotool key --delay 80 Tab Tab space

for _ in $(seq 1 200); do
  [ -f "$work/a.pcx" ] && [ -f "$work/b.pcx" ] && break
  sleep 0.1
done
[ -f "$work/a.pcx" ] && [ -f "$work/b.pcx" ] || fail "the tagged files were not converted: $(ls "$work")"
sleep 0.5
[ ! -e "$work/c.pcx" ] || fail "an untagged file was converted"
for name in a b; do
  diff=$(compare-im6.q16 -metric AE "$work/$name.bmp" "$work/$name.pcx" null: 2>&1 || true)
  [ "$diff" = "0" ] || fail "$name.pcx differs from $name.bmp in $diff pixels"
done
shot after-convert

# Quit through the menu's shortcut; Yes is the quit question's default button.
xdotool windowfocus --sync "$main"
xdotool key ctrl+q
question=$(wait_window "Pixmill" 50) || fail "no quit question"
xdotool windowfocus --sync "$question"
xdotool key Return
for _ in $(seq 1 100); do kill -0 "$first" 2>/dev/null || break; sleep 0.1; done
if kill -0 "$first" 2>/dev/null; then fail "the program did not end"; fi
wait "$first" || fail "the program ended with status $?"
ini="$XDG_CONFIG_HOME/pixmill/PXM.INI"
grep -qx "StartupDirectory = $work/" "$ini" || fail "PXM.INI does not remember $work"
echo "end-to-end: ok"
