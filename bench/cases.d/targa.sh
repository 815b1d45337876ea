# Targa: reading ImageMagick's 24-bit file and writing one, beside ImageMagick and GraphicsMagick.
[ -f "$in/photo24.tga" ] || $im "$in/photo24.bmp" "$in/photo24.tga"

g="TGA 24-bit 6000x4000 -> BMP"
add "$g" "pixmill" "$pxm convert --to bmp --output $work/tga.bmp $in/photo24.tga"
add "$g" "ImageMagick" "$im $in/photo24.tga BMP3:$work/tga-im.bmp"
add "$g" "GraphicsMagick" "gm convert $in/photo24.tga BMP3:$work/tga-gm.bmp"

g="BMP 24-bit 6000x4000 -> TGA"
add "$g" "pixmill" "$pxm convert --to tga --output $work/bmp.tga $in/photo24.bmp"
add "$g" "ImageMagick" "$im $in/photo24.bmp $work/bmp-im.tga"
add "$g" "GraphicsMagick" "gm convert $in/photo24.bmp $work/bmp-gm.tga"
