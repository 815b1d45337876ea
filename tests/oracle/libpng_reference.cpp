#include "oracle/libpng_reference.h"

#include <png.h>

#include <cstdio>
#include <vector>

#include "formats/png.h"

namespace pxm::oracle {
namespace {

struct Decoding {
  png_structp png = nullptr;
  png_infop info = nullptr;
  FILE* file = nullptr;
  std::vector<uint8_t> image;
  int colourType = 0, bitDepth = 0;
  size_t channels = 0;
  ~Decoding() {
    if (png) png_destroy_read_struct(&png, info ? &info : nullptr, nullptr);
    if (file) std::fclose(file);
  }
};

// Holds nothing with a destructor: libpng's errors jump back to its setjmp.
bool Samples(Decoding* d, test::RgbImage* out) {
  if (setjmp(png_jmpbuf(d->png))) return false;
  png_init_io(d->png, d->file);
  png_read_info(d->png, d->info);
  d->colourType = png_get_color_type(d->png, d->info);
  d->bitDepth = png_get_bit_depth(d->png, d->info);
  png_set_packing(d->png);  // (png_set_palette_to_rgb would also stretch grey to 8 bits)
  png_set_strip_16(d->png);
  png_set_strip_alpha(d->png);
  png_set_interlace_handling(d->png);
  png_read_update_info(d->png, d->info);
  out->width = png_get_image_width(d->png, d->info);
  out->height = png_get_image_height(d->png, d->info);
  d->channels = png_get_channels(d->png, d->info);
  const size_t rowBytes = png_get_rowbytes(d->png, d->info);
  d->image.resize(rowBytes * out->height);
  std::vector<png_bytep> rows;
  for (png_uint_32 y = 0; y < out->height; ++y) rows.push_back(d->image.data() + y * rowBytes);
  png_read_image(d->png, rows.data());
  png_read_end(d->png, nullptr);
  return true;
}

}  // namespace

bool LibpngDecode(const std::string& path, test::RgbImage& out) {
  Decoding d;
  d.file = std::fopen(path.c_str(), "rb");
  d.png = png_create_read_struct(
      PNG_LIBPNG_VER_STRING, nullptr, [](png_structp p, png_const_charp) { png_longjmp(p, 1); },
      [](png_structp, png_const_charp) {});
  if (!d.file || !d.png || !(d.info = png_create_info_struct(d.png)) || !Samples(&d, &out))
    return false;
  Palette ramp{};
  PngGreyRamp(d.bitDepth == 16 ? 8 : static_cast<uint32_t>(d.bitDepth), ramp);
  png_colorp plte = nullptr;
  int entries = 0;
  png_get_PLTE(d.png, d.info, &plte, &entries);
  for (int i = 0; i < entries; ++i)
    ramp[static_cast<size_t>(i)] = Rgb{plte[i].red, plte[i].green, plte[i].blue};
  const bool asIs = d.colourType == PNG_COLOR_TYPE_GRAY && d.bitDepth == 16;
  out.pixels.clear();
  for (size_t i = 0; i < d.image.size(); i += d.channels) {
    const uint8_t* p = d.image.data() + i;
    out.pixels.push_back(d.channels >= 3 ? Rgb{p[0], p[1], p[2]}
                         : asIs          ? Rgb{p[0], p[0], p[0]}
                                         : ramp[p[0]]);
  }
  return true;
}

}  // namespace pxm::oracle
