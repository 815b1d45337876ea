# Paint formats: 200 one-bit pictures of 576x480 (the batch photographs cut to the MacPaint page's
# width and dithered by netpbm) as MacPaint pages, GEM bit images and Microsoft Paint files, each
# set converted to BMP by one process of Pixmill, and by the other readers file by file (netpbm,
# FFmpeg) or in one process (ImageMagick, Pillow).
paint="$in/paint200"
if [ ! -f "$paint/p199.msp" ]; then
  mkdir -p "$paint"
  for i in $(seq 0 199); do
    bmptopnm "$in/batch200/p$i.bmp" 2>/dev/null | pamcut -width 576 | ppmtopgm | pgmtopbm -fs |
      ppmtobmp > "$paint/p$i.bmp" 2>/dev/null
  done
  for to in mac img msp; do
    $pxm --set FilenameUnderbars=0 convert --to $to --dest-dir "$paint" "$paint"/p*.bmp
  done
fi
for d in mac-p mac-netpbm mac-im img-p img-netpbm img-ffmpeg msp-p msp-pillow msp-ffmpeg; do
  mkdir -p "$work/$d"
done
each() {  # each EXT DIR COMMAND: COMMAND with $f the input and $o the output, file by file
  echo "for f in $paint/*.$1; do o=$work/$2/\$(basename \$f .$1).bmp; $3; done"
}

g="200 MacPaint pages (MacBinary) -> BMP"
add "$g" "pixmill" "$pxm --set FilenameUnderbars=0 convert --to bmp --dest-dir $work/mac-p $paint/*.mac"
add "$g" "netpbm" "$(each mac mac-netpbm 'macptopbm -extraskip 128 $f 2>/dev/null | ppmtobmp >$o 2>/dev/null')"
add "$g" "ImageMagick" "mogrify-im6.q16 -path $work/mac-im -format bmp $paint/*.mac"

g="200 GEM 1-plane 576x480 -> BMP"
add "$g" "pixmill" "$pxm --set FilenameUnderbars=0 convert --to bmp --dest-dir $work/img-p $paint/*.img"
add "$g" "netpbm" "$(each img img-netpbm 'gemtopnm $f 2>/dev/null | ppmtobmp >$o 2>/dev/null')"
add "$g" "FFmpeg" "$(each img img-ffmpeg 'ffmpeg -nostdin -v error -y -i $f $o')"

g="200 Microsoft Paint 576x480 -> BMP"
add "$g" "pixmill" "$pxm --set FilenameUnderbars=0 convert --to bmp --dest-dir $work/msp-p $paint/*.msp"
add "$g" "Pillow" "/usr/bin/python3 -c 'import glob, os, sys; from PIL import Image; [Image.open(f).save(os.path.join(sys.argv[2], os.path.basename(f)[:-4] + \".bmp\")) for f in glob.glob(sys.argv[1] + \"/*.msp\")]' $paint $work/msp-pillow"
add "$g" "FFmpeg" "$(each msp msp-ffmpeg 'ffmpeg -nostdin -v error -y -i $f $o')"
