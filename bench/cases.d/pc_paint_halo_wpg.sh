# PC Paint (Pictor), Dr. Halo and WordPerfect Graphics: a 256-colour picture of each, made by
# Pixmill from the 8-bit BMP, converted to BMP beside the programs that read these formats
# (FFmpeg reads PIC; ImageMagick and GraphicsMagick read CUT and WPG). None of them writes these
# formats, so the writers are timed alone.
[ -f "$in/photo8.bmp" ] || $im "$in/photo24.bmp" -colors 256 -type palette BMP3:"$in/photo8.bmp"
for ext in pic cut wpg; do
  [ -f "$in/photo8.$ext" ] || $pxm convert --to $ext --output "$in/photo8.$ext" "$in/photo8.bmp" >/dev/null
done

g="PIC 8-bit 6000x4000 -> BMP"
add "$g" "pixmill" "$pxm convert --to bmp --output $work/pic.bmp $in/photo8.pic"
add "$g" "FFmpeg" "ffmpeg -v error -y -i $in/photo8.pic $work/pic-ffmpeg.bmp"

g="CUT 8-bit 6000x4000 -> BMP"
add "$g" "pixmill" "$pxm convert --to bmp --output $work/cut.bmp $in/photo8.cut"
add "$g" "ImageMagick" "$im $in/photo8.cut BMP3:$work/cut-im.bmp"
add "$g" "GraphicsMagick" "gm convert $in/photo8.cut BMP3:$work/cut-gm.bmp"

g="WPG 8-bit 6000x4000 -> BMP"
add "$g" "pixmill" "$pxm convert --to bmp --output $work/wpg.bmp $in/photo8.wpg"
add "$g" "ImageMagick" "$im $in/photo8.wpg BMP3:$work/wpg-im.bmp"
add "$g" "GraphicsMagick" "gm convert $in/photo8.wpg BMP3:$work/wpg-gm.bmp"

g="BMP 8-bit 6000x4000 -> PIC, CUT, WPG"
add "$g" "pixmill (PIC)" "$pxm convert --to pic --output $work/bmp.pic $in/photo8.bmp"
add "$g" "pixmill (CUT and PAL)" "$pxm convert --to cut --output $work/bmp.cut $in/photo8.bmp"
add "$g" "pixmill (WPG)" "$pxm convert --to wpg --output $work/bmp.wpg $in/photo8.bmp"
