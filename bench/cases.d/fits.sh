# FITS: reading netpbm's 8-bit grey file, and writing a 24-bit picture as 8-bit grey.
[ -f "$in/photo8.fits" ] || bmptopnm "$in/photo24.bmp" 2>/dev/null | ppmtopgm | pnmtofits > "$in/photo8.fits" 2>/dev/null

g="FITS 8-bit 6000x4000 -> BMP"
add "$g" "pixmill" "$pxm convert --to bmp --output $work/fits.bmp $in/photo8.fits"
add "$g" "ImageMagick" "$im $in/photo8.fits BMP3:$work/fits-im.bmp"
add "$g" "GraphicsMagick" "gm convert $in/photo8.fits BMP3:$work/fits-gm.bmp"

g="BMP 24-bit 6000x4000 -> FITS grey"
add "$g" "pixmill" "$pxm convert --to fit --output $work/bmp.fit $in/photo24.bmp"
add "$g" "ImageMagick" "$im $in/photo24.bmp -colorspace Gray -depth 8 FITS:$work/bmp-im.fit"
add "$g" "GraphicsMagick" "gm convert $in/photo24.bmp -colorspace Gray -depth 8 FITS:$work/bmp-gm.fit"
