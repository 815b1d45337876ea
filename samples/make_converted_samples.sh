#!/usr/bin/env bash
# Writes the samples of the formats that make_samples.py has no writer for, with pxm itself from
# the wheels that script made: together they give the desktop program a picture of every format
# it reads. Deterministic: run it again only to change the samples.
#   samples/make_converted_samples.sh PATH/TO/pxm
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
pxm=$1
scratch=$(mktemp -d "${TMPDIR:-/tmp}/pixmill-samples-XXXXXX")
trap 'rm -rf "$scratch"' EXIT
export XDG_CONFIG_HOME="$scratch/config"   # the default settings, whatever the user set

convert() {  # convert SOURCE EXTENSION OUTPUT
  "$pxm" --quiet --set FilenameUnderbars=0 convert --to "$2" --output "$here/$3" "$here/$1"
}
convert wheel-24bit.bmp pcx wheel-24bit.pcx
convert wheel-8bit.bmp gif wheel-8bit.gif
convert wheel-24bit.bmp tif wheel-24bit.tif
convert wheel-24bit.bmp tga wheel-24bit.tga
convert wheel-24bit.bmp jpg wheel-24bit.jpg
convert wheel-8bit.bmp lbm wheel-8bit.lbm
convert wheel-24bit.bmp iff wheel-24bit.iff
convert wheel-24bit.bmp ras wheel-24bit.ras
convert wheel-24bit.bmp fit wheel-24bit.fit
convert wheel-24bit.bmp png wheel-24bit.png
# UUEncoded pictures are read, not written: encode the GIF with Python's own uu coding.
python3 - "$here/wheel-8bit.gif" "$here/wheel-8bit.uue" <<'PY'
import binascii, sys
data = open(sys.argv[1], 'rb').read()
lines = ['begin 644 wheel-8bit.gif']
lines += [binascii.b2a_uu(data[i:i + 45], backtick=True).decode().rstrip('\n') for i in range(0, len(data), 45)]
lines += ['`', 'end', '']
open(sys.argv[2], 'w', newline='\n').write('\n'.join(lines))
PY
