# UUE: a uuencoded 24-bit Targa file decoded and converted, beside uudecode followed by
# ImageMagick.
[ -f "$in/photo24.tga" ] || $im "$in/photo24.bmp" "$in/photo24.tga"
[ -f "$in/photo24.uue" ] || uuencode "$in/photo24.tga" photo24.tga > "$in/photo24.uue"

g="UUE of TGA 24-bit 6000x4000 -> BMP"
add "$g" "pixmill" "$pxm convert --to bmp --output $work/uue.bmp $in/photo24.uue"
add "$g" "uudecode + ImageMagick" "uudecode -o $work/uue.tga $in/photo24.uue && $im $work/uue.tga BMP3:$work/uue-im.bmp"
