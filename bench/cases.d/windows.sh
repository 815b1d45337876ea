# Windows run-length bitmaps and icons beside ImageMagick and GraphicsMagick (sourced by
# bench/run.sh after the batch and PCX/GIF/PNG cases, whose inputs these reuse).

[ -f "$in/photo8.bmp" ] || $im "$in/photo24.bmp" -colors 256 -type palette -compress none "BMP3:$in/photo8.bmp"
[ -f "$in/photo8.rle" ] || $im "$in/photo8.bmp" -type palette -compress RLE "BMP3:$in/photo8.rle"

g="RLE 8-bit 6000x4000 -> BMP"
add "$g" "pixmill" "$pxm convert --to bmp --output $work/rle.bmp $in/photo8.rle"
add "$g" "ImageMagick" "$im BMP:$in/photo8.rle BMP3:$work/rle-im.bmp"
add "$g" "GraphicsMagick" "gm convert BMP:$in/photo8.rle BMP3:$work/rle-gm.bmp"

g="BMP 8-bit 6000x4000 -> RLE"
add "$g" "pixmill" "$pxm convert --to rle --output $work/bmp.rle $in/photo8.bmp"
add "$g" "ImageMagick" "$im $in/photo8.bmp -compress RLE BMP3:$work/bmp-im.rle"
add "$g" "GraphicsMagick" "gm convert $in/photo8.bmp -compress RLE BMP3:$work/bmp-gm.rle"

# 200 icons of 256 x 256 pixels and 256 colours, as a user converts a folder of them.
if [ ! -f "$in/icons200/i199.ico" ]; then
  mkdir -p "$in/icons200"
  [ -f "$in/batch200/p199.bmp" ] || for i in $(seq 0 199); do
    mkdir -p "$in/batch200"; build/release/bench/make_photo 640 480 "$in/batch200/p$i.bmp"; done
  for i in $(seq 0 199); do
    $im "$in/batch200/p$i.bmp" -resize '256x256!' -colors 256 -type palette "ICO:$in/icons200/i$i.ico"
  done
fi
mkdir -p "$work/ico-p" "$work/ico-im" "$work/ico-gm"
g="200 ICO 256x256 8-bit -> BMP, one process"
add "$g" "pixmill" "$pxm --set FilenameUnderbars=0 convert --to bmp --dest-dir $work/ico-p $in/icons200/*.ico"
add "$g" "ImageMagick" "mogrify-im6.q16 -path $work/ico-im -format bmp $in/icons200/*.ico"
# gm mogrify loses the names of icon files, so GraphicsMagick gets a batch script instead.
for i in $(seq 0 199); do echo "convert $in/icons200/i$i.ico BMP3:$work/ico-gm/i$i.bmp"; done > "$work/icons200.gm"
add "$g" "GraphicsMagick" "gm batch -stop-on-error on $work/icons200.gm"
