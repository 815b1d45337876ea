# PCX, GIF and PNG beside ImageMagick, GraphicsMagick and vips (sourced by bench/run.sh).
# vips has no palette pictures (it would quantize to write a GIF) and reads BMP and PCX only
# through ImageMagick, so it joins where it can do the same work natively: decoding GIF and PNG
# (to its own raw format), and encoding PNG from a PPM of the same photograph.

[ -f "$in/photo8.bmp" ] || $im "$in/photo24.bmp" -colors 256 -type palette -compress none "BMP3:$in/photo8.bmp"
[ -f "$in/photo8.gif" ] || $im "$in/photo8.bmp" "$in/photo8.gif"
[ -f "$in/photo24.pcx" ] || $im "$in/photo24.bmp" "PCX:$in/photo24.pcx"

g="GIF 8-bit 6000x4000: BMP -> GIF"
add "$g" "pixmill" "$pxm convert --to gif --output $work/p.gif $in/photo8.bmp"
add "$g" "ImageMagick" "$im $in/photo8.bmp $work/im.gif"
add "$g" "GraphicsMagick" "gm convert $in/photo8.bmp $work/gm.gif"

g="GIF 8-bit 6000x4000: GIF -> BMP"
add "$g" "pixmill" "$pxm convert --to bmp --output $work/pg.bmp $in/photo8.gif"
add "$g" "ImageMagick" "$im $in/photo8.gif BMP3:$work/img.bmp"
add "$g" "GraphicsMagick" "gm convert $in/photo8.gif BMP3:$work/gmg.bmp"
add "$g" "vips (to .v)" "vips copy $in/photo8.gif $work/vg.v"

g="PCX 24-bit 6000x4000: PCX -> BMP"
add "$g" "pixmill" "$pxm convert --to bmp --output $work/pp.bmp $in/photo24.pcx"
add "$g" "ImageMagick" "$im $in/photo24.pcx BMP3:$work/imp.bmp"
add "$g" "GraphicsMagick" "gm convert $in/photo24.pcx BMP3:$work/gmp.bmp"

[ -f "$in/photo24.ppm" ] || $im "$in/photo24.bmp" "$in/photo24.ppm"
[ -f "$in/photo24.png" ] || $im "$in/photo24.bmp" -quality 65 "$in/photo24.png"

# Level 6 with adaptive filtering everywhere (ImageMagick and GraphicsMagick: -quality 65).
g="PNG 24-bit 6000x4000: BMP -> PNG level 6"
add "$g" "pixmill" "$pxm --set PngCompression=6 convert --to png --output $work/p.png $in/photo24.bmp"
add "$g" "ImageMagick" "$im $in/photo24.bmp -quality 65 $work/im.png"
add "$g" "GraphicsMagick" "gm convert $in/photo24.bmp -quality 65 $work/gm.png"
add "$g" "vips (from PPM)" "vips copy $in/photo24.ppm $work/v.png[compression=6,filter=all]"

g="PNG 24-bit 6000x4000: PNG -> BMP"
add "$g" "pixmill" "$pxm convert --to bmp --output $work/pn.bmp $in/photo24.png"
add "$g" "ImageMagick" "$im $in/photo24.png BMP3:$work/imn.bmp"
add "$g" "GraphicsMagick" "gm convert $in/photo24.png BMP3:$work/gmn.bmp"
add "$g" "vips (to .v)" "vips copy $in/photo24.png $work/vn.v"
