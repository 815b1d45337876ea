# Photo CD: 50 image packs (Base as RGB) converted to PNG by one process, beside ImageMagick's
# mogrify and FFmpeg run once a file. The packs are the photograph at Base, Base/4 and Base/16,
# encoded to PhotoYCC here.
if [ ! -f "$in/pcd50/p49.pcd" ]; then
  mkdir -p "$in/pcd50"
  for size in 768x512 384x256 192x128; do
    $im "$in/photo24.bmp" -resize "$size!" -depth 8 "$in/pcd-$size.ppm"
  done
  python3 - "$in" <<'PY'
import sys
root = sys.argv[1]
out = bytearray(96 * 2048 + 768 * 512 * 3 // 2)
out[0x800:0x807] = b'PCD_IPI'
for (w, h, sector) in ((192, 128, 4), (384, 256, 23), (768, 512, 96)):
    data = open(f'{root}/pcd-{w}x{h}.ppm', 'rb').read()
    pixels = data[len(data) - w * h * 3:]
    luma, c1, c2 = bytearray(w * h), [0] * (w * h), [0] * (w * h)
    for i in range(w * h):
        r, g, b = pixels[3 * i] / 255, pixels[3 * i + 1] / 255, pixels[3 * i + 2] / 255
        y = 0.299 * r + 0.587 * g + 0.114 * b
        luma[i] = min(255, round(255 / 1.402 * y))
        c1[i] = 111.40 * (b - y) + 156
        c2[i] = 135.64 * (r - y) + 137
    at = sector * 2048
    for row in range(0, h, 2):
        out[at:at + 2 * w] = luma[row * w:(row + 2) * w]
        at += 2 * w
        for plane in (c1, c2):
            for x in range(0, w, 2):
                i = row * w + x
                out[at] = max(0, min(255, round((plane[i] + plane[i + 1] + plane[i + w] + plane[i + w + 1]) / 4)))
                at += 1
open(f'{root}/pcd50/p0.pcd', 'wb').write(out)
PY
  for i in $(seq 1 49); do cp "$in/pcd50/p0.pcd" "$in/pcd50/p$i.pcd"; done
fi
mkdir -p "$work/pcd-p" "$work/pcd-p256" "$work/pcd-im" "$work/pcd-ff"

g="50 PCD Base 768x512 -> PNG"
add "$g" "pixmill" \
  "$pxm --set PhotoCDResolution=3 --set FilenameUnderbars=0 convert --to png --dest-dir $work/pcd-p $in/pcd50/*.pcd"
add "$g" "pixmill (256 colours)" \
  "$pxm --set PhotoCDResolution=10 --set FilenameUnderbars=0 convert --to png --dest-dir $work/pcd-p256 $in/pcd50/*.pcd"
add "$g" "ImageMagick" "mogrify-im6.q16 -path $work/pcd-im -format png $in/pcd50/*.pcd"
add "$g" "FFmpeg" \
  "for f in $in/pcd50/*.pcd; do ffmpeg -loglevel error -y -i \$f $work/pcd-ff/\$(basename \$f .pcd).png; done"
