#!/usr/bin/env bash
# Installs the Debian packages a task needs, and only those that are missing.
#   deps.sh build   compilers, CMake and the libraries Pixmill builds with
#   deps.sh test    the above, plus the programs the tests compare Pixmill with
#   deps.sh bench   the above, plus the tools the benchmarks time Pixmill against
#   deps.sh fuzz    the above, plus clang and its fuzzing runtime
#   deps.sh run     build, plus the virtual X server and tools the run command uses
set -euo pipefail

build=(build-essential cmake ninja-build pkg-config zlib1g-dev libpng-dev libjpeg62-turbo-dev
       libtiff-dev libcli11-dev libgtest-dev libgmock-dev qt6-base-dev fonts-dejavu-core)
# The desktop program's tests: a virtual X server, the tool that drives it, the desktop file
# checker and ImageMagick's screenshot tool (import).
ui=(xvfb xauth xdotool desktop-file-utils imagemagick)
test=(imagemagick netpbm python3 python3-pil libjpeg-turbo-progs libtiff-tools sharutils gifsicle
      ffmpeg graphicsmagick icoutils poppler-utils)
bench=(graphicsmagick libvips-tools hyperfine time)
fuzz=(clang libclang-rt-14-dev)

want=("${build[@]}")
case "${1:-build}" in
  build) ;;
  test) want+=("${test[@]}" "${ui[@]}") ;;
  bench) want+=("${test[@]}" "${ui[@]}" "${bench[@]}") ;;
  fuzz) want+=("${test[@]}" "${fuzz[@]}") ;;
  run) want+=("${ui[@]}") ;;
  *) echo "usage: $0 build|test|bench|fuzz|run" >&2; exit 2 ;;
esac

missing=()
for p in "${want[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}" >&2
sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
