# Thumbnails: 96x96 pictures of 200 files of 640x480 and of one 6000x4000 JPEG, made by one
# process of each tool. Pixmill writes .THN files into ThumbnailPath; the others write small PNGs.
# Sourced by bench/run.sh.

if [ ! -f "$in/batch200/p199.bmp" ]; then
  mkdir -p "$in/batch200"
  for i in $(seq 0 199); do build/release/bench/make_photo 640 480 "$in/batch200/p$i.bmp"; done
fi
[ -f "$in/photo.jpg" ] || $im "$in/photo24.bmp" -quality 90 "$in/photo.jpg"
mkdir -p "$work/thumb-p" "$work/thumb-vips" "$work/thumb-im"

g="Thumbnails of 200 BMP 640x480, one process"
add "$g" "pixmill" "$pxm --set ThumbnailPath=$work/thumb-p thumbnail $in/batch200/*.bmp"
add "$g" "vipsthumbnail" "vipsthumbnail -s 96x96 -o $work/thumb-vips/%s.png $in/batch200/*.bmp"
add "$g" "ImageMagick" \
  "mogrify-im6.q16 -path $work/thumb-im -thumbnail 96x96 -format png $in/batch200/*.bmp"

g="Thumbnail of JPEG 6000x4000"
# Pixmill takes part once its JPEG reader is in the build.
if $pxm formats | grep -q $'^15\tJPG.*read:yes'; then
  add "$g" "pixmill" "$pxm --set ThumbnailPath=$work/thumb-p thumbnail $in/photo.jpg"
fi
add "$g" "vipsthumbnail" "vipsthumbnail -s 96x96 -o $work/thumb-vips/%s.png $in/photo.jpg"
add "$g" "ImageMagick" "$im $in/photo.jpg -thumbnail 96x96 $work/thumb-im/photo.png"
