# JPEG and TIFF workloads, sourced by bench/run.sh. djpeg and cjpeg drive the same library as
# Pixmill with the same settings, so they are the floor for the JPEG work.

[ -f "$in/photo.jpg" ] || cjpeg -quality 90 "$in/photo24.bmp" > "$in/photo.jpg"
[ -f "$in/photo-lzw.tif" ] || $im "$in/photo24.bmp" -compress LZW "$in/photo-lzw.tif"

g="JPEG 6000x4000 -> BMP (RGB)"
add "$g" "pixmill" "$pxm --set ReadJpegRgb=1 convert --to bmp --output $work/p.bmp $in/photo.jpg"
add "$g" "djpeg" "djpeg -bmp -outfile $work/d.bmp $in/photo.jpg"
add "$g" "ImageMagick" "$im $in/photo.jpg BMP3:$work/im.bmp"
add "$g" "GraphicsMagick" "gm convert $in/photo.jpg BMP3:$work/gm.bmp"
add "$g" "vips" "vips copy $in/photo.jpg $work/v.bmp"

g="JPEG 6000x4000 -> BMP (256 colours)"
add "$g" "pixmill" "$pxm convert --to bmp --output $work/p8.bmp $in/photo.jpg"
add "$g" "djpeg" "djpeg -colors 256 -onepass -bmp -outfile $work/d8.bmp $in/photo.jpg"
add "$g" "ImageMagick" "$im $in/photo.jpg -dither FloydSteinberg -colors 256 BMP3:$work/im8.bmp"
add "$g" "GraphicsMagick" "gm convert $in/photo.jpg -colors 256 BMP3:$work/gm8.bmp"

g="BMP 24-bit 6000x4000 -> JPEG q75"
add "$g" "pixmill" "$pxm --set JpegCompressionFactor=75 convert --to jpg --output $work/p.jpg $in/photo24.bmp"
add "$g" "cjpeg" "cjpeg -quality 75 -outfile $work/c.jpg $in/photo24.bmp"
add "$g" "ImageMagick" "$im $in/photo24.bmp -quality 75 $work/im.jpg"
add "$g" "GraphicsMagick" "gm convert $in/photo24.bmp -quality 75 $work/gm.jpg"
add "$g" "vips" "vips jpegsave $in/photo24.bmp $work/v.jpg --Q 75"

g="TIFF LZW 6000x4000 -> BMP"
add "$g" "pixmill" "$pxm convert --to bmp --output $work/pt.bmp $in/photo-lzw.tif"
add "$g" "ImageMagick" "$im $in/photo-lzw.tif BMP3:$work/imt.bmp"
add "$g" "GraphicsMagick" "gm convert $in/photo-lzw.tif BMP3:$work/gmt.bmp"
add "$g" "vips" "vips copy $in/photo-lzw.tif $work/vt.bmp"

g="BMP 24-bit 6000x4000 -> TIFF LZW"
add "$g" "pixmill" "$pxm --set TiffOptions=4 convert --to tif --output $work/p.tif $in/photo24.bmp"
add "$g" "ImageMagick" "$im $in/photo24.bmp -compress LZW $work/im.tif"
add "$g" "GraphicsMagick" "gm convert $in/photo24.bmp -compress LZW $work/gm.tif"
add "$g" "vips" "vips tiffsave $in/photo24.bmp $work/v.tif --compression lzw"
