# Sun raster: reading netpbm's 24-bit file and writing one, beside ImageMagick, GraphicsMagick
# and netpbm.
[ -f "$in/photo24.ras" ] || bmptopnm "$in/photo24.bmp" 2>/dev/null | pnmtorast -standard > "$in/photo24.ras" 2>/dev/null

g="RAS 24-bit 6000x4000 -> BMP"
add "$g" "pixmill" "$pxm convert --to bmp --output $work/ras.bmp $in/photo24.ras"
add "$g" "ImageMagick" "$im $in/photo24.ras BMP3:$work/ras-im.bmp"
add "$g" "GraphicsMagick" "gm convert $in/photo24.ras BMP3:$work/ras-gm.bmp"
add "$g" "netpbm" "rasttopnm $in/photo24.ras 2>/dev/null | ppmtobmp > $work/ras-netpbm.bmp 2>/dev/null"

g="BMP 24-bit 6000x4000 -> RAS"
add "$g" "pixmill" "$pxm convert --to ras --output $work/bmp.ras $in/photo24.bmp"
add "$g" "ImageMagick" "$im $in/photo24.bmp SUN:$work/bmp-im.ras"
add "$g" "GraphicsMagick" "gm convert $in/photo24.bmp SUN:$work/bmp-gm.ras"
add "$g" "netpbm" "bmptopnm $in/photo24.bmp 2>/dev/null | pnmtorast -standard > $work/bmp-netpbm.ras 2>/dev/null"
