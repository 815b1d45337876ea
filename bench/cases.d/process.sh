# Dithering to black and white, colour reduction and an effect, on the 24-bit photograph, beside
# ImageMagick and GraphicsMagick doing the nearest work they offer. Groups start "Process:" so that
# `bench/run.sh --only Process:` runs them alone.
photo="$in/photo24.bmp"

dither() {  # dither GROUP-LABEL PXM-OPTIONS IM-OPTIONS GM-OPTIONS
  local g="Process: dither $1, 24-bit 6000x4000 -> 1 bit"
  add "$g" "pixmill" "$pxm dither $2 --to bmp --output $work/d.bmp $photo"
  add "$g" "pixmill (spill file)" "PXM_MEMORY_LIMIT=0 $pxm dither $2 --to bmp --output $work/ds.bmp $photo"
  add "$g" "ImageMagick" "$im $photo $3 BMP3:$work/dim.bmp"
  add "$g" "GraphicsMagick" "gm convert $photo $4 BMP3:$work/dgm.bmp"
}
dither "Floyd-Steinberg" "--method floyd" "-dither FloydSteinberg -monochrome" "-monochrome"
dither "Burkes" "--method burkes" "-dither FloydSteinberg -monochrome" "-monochrome"
dither "Stucki" "--method stucki --bidirectional" "-dither FloydSteinberg -monochrome" "-monochrome"
dither "Bayer" "--method bayer" "-colorspace gray -ordered-dither o8x8 -type bilevel" "-colorspace gray -ordered-dither intensity 8x8 -type bilevel"
dither "threshold" "--method threshold --level 128" "-colorspace gray -threshold 50% -type bilevel" "-colorspace gray -threshold 50% -type bilevel"

reduce() {  # reduce GROUP-LABEL PXM-OPTIONS IM-OPTIONS GM-OPTIONS
  local g="Process: $1, 24-bit 6000x4000"
  add "$g" "pixmill" "$pxm effect $2 --to bmp --output $work/r.bmp $photo"
  add "$g" "pixmill (spill file)" "PXM_MEMORY_LIMIT=0 $pxm effect $2 --to bmp --output $work/rs.bmp $photo"
  add "$g" "ImageMagick" "$im $photo $3 BMP3:$work/rim.bmp"
  add "$g" "GraphicsMagick" "gm convert $photo $4 BMP3:$work/rgm.bmp"
}
reduce "256 colours, diffused" "--effect reduce --palette 2 --method floyd" "-dither FloydSteinberg -colors 256" "-dither -colors 256"
reduce "256 colours, nearest" "--effect reduce --palette 2 --method remap" "+dither -colors 256" "+dither -colors 256"
reduce "16 colours, diffused" "--effect reduce --palette 6 --method floyd" "-dither FloydSteinberg -colors 16" "-dither -colors 16"
reduce "16 colours, nearest" "--effect reduce --palette 6 --method remap" "+dither -colors 16" "+dither -colors 16"
reduce "sharpen" "--effect sharpen" "-sharpen 0x1" "-sharpen 0x1"
