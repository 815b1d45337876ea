# Scale, rotate and negate a 6000 x 4000 24-bit picture, BMP to BMP, beside vips, ImageMagick and
# GraphicsMagick doing the same work (nearest neighbour for the scales). Pixmill's quarter turn
# is anticlockwise; the others are asked for the same turn. Sourced by bench/run.sh.

g="Transform: scale 6000x4000 to 50%"
add "$g" "pixmill" "$pxm scale --percent 50 --to bmp --output $work/s50.bmp $in/photo24.bmp"
add "$g" "vips" "vips resize $in/photo24.bmp $work/v50.bmp 0.5 --kernel nearest"
add "$g" "ImageMagick" "$im $in/photo24.bmp -sample 50% BMP3:$work/im50.bmp"
add "$g" "GraphicsMagick" "gm convert $in/photo24.bmp -sample 50% BMP3:$work/gm50.bmp"

g="Transform: scale 6000x4000 to 200%"
add "$g" "pixmill" "$pxm scale --percent 200 --to bmp --output $work/s200.bmp $in/photo24.bmp"
add "$g" "vips" "vips resize $in/photo24.bmp $work/v200.bmp 2 --kernel nearest"
add "$g" "ImageMagick" "$im $in/photo24.bmp -sample 200% BMP3:$work/im200.bmp"
add "$g" "GraphicsMagick" "gm convert $in/photo24.bmp -sample 200% BMP3:$work/gm200.bmp"

g="Transform: rotate 6000x4000 by 90"
add "$g" "pixmill" "$pxm transform --mode rotate90 --to bmp --output $work/r90.bmp $in/photo24.bmp"
add "$g" "vips" "vips rot $in/photo24.bmp $work/v90.bmp d270"
add "$g" "ImageMagick" "$im $in/photo24.bmp -rotate 270 BMP3:$work/im90.bmp"
add "$g" "GraphicsMagick" "gm convert $in/photo24.bmp -rotate 270 BMP3:$work/gm90.bmp"

g="Transform: rotate 6000x4000 by 180"
add "$g" "pixmill" "$pxm transform --mode rotate180 --to bmp --output $work/r180.bmp $in/photo24.bmp"
add "$g" "vips" "vips rot $in/photo24.bmp $work/v180.bmp d180"
add "$g" "ImageMagick" "$im $in/photo24.bmp -rotate 180 BMP3:$work/im180.bmp"
add "$g" "GraphicsMagick" "gm convert $in/photo24.bmp -rotate 180 BMP3:$work/gm180.bmp"

g="Transform: negate 6000x4000"
add "$g" "pixmill" "$pxm reverse --to bmp --output $work/neg.bmp $in/photo24.bmp"
add "$g" "vips" "vips invert $in/photo24.bmp $work/vneg.bmp"
add "$g" "ImageMagick" "$im $in/photo24.bmp -negate BMP3:$work/imneg.bmp"
add "$g" "GraphicsMagick" "gm convert $in/photo24.bmp -negate BMP3:$work/gmneg.bmp"
