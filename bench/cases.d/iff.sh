# IFF: reading netpbm's 24-plane ByteRun1 file and writing one. ImageMagick and GraphicsMagick
# have no IFF coder here, so netpbm is the only other tool.
[ -f "$in/photo24.iff" ] || bmptopnm "$in/photo24.bmp" 2>/dev/null | ppmtoilbm -24force -compress > "$in/photo24.iff" 2>/dev/null

g="IFF 24-plane 6000x4000 -> BMP"
add "$g" "pixmill" "$pxm convert --to bmp --output $work/iff.bmp $in/photo24.iff"
add "$g" "netpbm" "ilbmtoppm $in/photo24.iff 2>/dev/null | ppmtobmp > $work/iff-netpbm.bmp 2>/dev/null"

g="BMP 24-bit 6000x4000 -> IFF 24-plane"
add "$g" "pixmill" "$pxm convert --to iff --output $work/bmp.iff $in/photo24.bmp"
add "$g" "netpbm" "bmptopnm $in/photo24.bmp 2>/dev/null | ppmtoilbm -24force -compress > $work/bmp-netpbm.iff 2>/dev/null"
