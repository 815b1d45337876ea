# Batch: 200 pictures of 640x480 converted by one process of each tool.
if [ ! -f "$in/batch200/p199.bmp" ]; then
  mkdir -p "$in/batch200"
  for i in $(seq 0 199); do build/release/bench/make_photo 640 480 "$in/batch200/p$i.bmp"; done
fi
mkdir -p "$work/batch-p" "$work/batch-im" "$work/batch-gm"
add "200 BMP 640x480 -> BMP, one process" "pixmill" \
  "$pxm --set FilenameUnderbars=0 convert --to bmp --dest-dir $work/batch-p $in/batch200/*.bmp"
add "200 BMP 640x480 -> BMP, one process" "ImageMagick" \
  "mogrify-im6.q16 -path $work/batch-im -format bmp $in/batch200/*.bmp"
add "200 BMP 640x480 -> BMP, one process" "GraphicsMagick" \
  "cd $in/batch200 && gm mogrify -output-directory $work/batch-gm -format bmp *.bmp"
