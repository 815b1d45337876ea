// PNG files against other programs: the whole PngSuite read as libpng decodes it (reduced to
// Pixmill's rows), its corrupt files answered with error codes, and every file Pixmill writes read
// back by ImageMagick and Pillow.
//
// Where Pixmill's rules differ from the public format on purpose:
// clang-format off
// | Case                        | Pixmill                                   | Why                  |
// |-----------------------------|-------------------------------------------|----------------------|
// | grey up to 8 bits, grey and | shown through the grey ramp, whose steps  | the ramp is made by  |
// | alpha                       | are luminance-weighted and end below white| integer weights      |
// | 16-bit samples              | the high byte                             | rows hold 8 bits     |
// | alpha, tRNS, bKGD, gAMA     | not applied                               | rows have no alpha   |
// clang-format on

#include <gtest/gtest.h>
#include <png.h>

#include <cstdio>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "formats/png.h"
#include "oracle/oracle_support.h"
#include "support/picture.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;
using test::Picture;
using test::RgbImage;

// The file as libpng decodes it, one byte a sample (16-bit samples by their high byte, no gamma,
// alpha or background), in the colours Pixmill shows: palette entries, grey up to 8 bits (and grey
// with alpha) through the ramp, 16-bit grey as it is. False when libpng refuses the file.
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
bool Samples(Decoding* d, RgbImage* out) {
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

bool LibpngDecode(const std::string& path, RgbImage& out) {
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
  for (size_t i = 0; i < d.image.size(); i += d.channels) {
    const uint8_t* p = d.image.data() + i;
    out.pixels.push_back(d.channels >= 3 ? Rgb{p[0], p[1], p[2]}
                         : asIs          ? Rgb{p[0], p[0], p[0]}
                                         : ramp[p[0]]);
  }
  return true;
}

TEST(PngOracle, PngSuiteReadsAsLibpngDecodesIt) {
  const std::string root = test::TestDataDir();
  if (root.empty() || !fs::is_directory(root + "/pngsuite")) GTEST_SKIP() << "no public test data";
  size_t compared = 0, refused = 0;
  for (const auto& e : fs::directory_iterator(root + "/pngsuite")) {
    if (e.path().extension() != ".png") continue;
    const std::string path = e.path().string();
    const std::string name = e.path().filename().string();
    SCOPED_TRACE(name);
    Picture p;
    const int code = test::ReadPicture(path, p);
    if (name[0] == 'x') {
      // The corrupt files: damaged signatures, colour types, depths and checksums are damage; a
      // file without image data says so.
      EXPECT_EQ(code, name == "xdtn0g01.png" ? kNoBitmap : kCorruptedFile);
      ++refused;
      continue;
    }
    RgbImage want;
    ASSERT_TRUE(LibpngDecode(path, want));
    ASSERT_EQ(code, kOk);
    EXPECT_TRUE(oracle::Same(test::Colours(p), want, p.width, static_cast<uint32_t>(p.depth)));
    ++compared;
  }
  EXPECT_GT(compared, 100u);
  EXPECT_GT(refused, 10u);
}

TEST(PngOracle, PixmillFilesReadByImageMagickAndPillow) {
  PXM_ORACLE_REQUIRE(test::HaveProgram(oracle::kMagick), oracle::kMagick);
  PXM_ORACLE_REQUIRE(oracle::HavePillow(), "Pillow");
  test::TempDir dir;
  for (uint32_t bits : {1u, 2u, 4u, 6u, 8u, 24u})
    for (uint32_t width : {1u, 7u, 9u, 33u, 300u}) {
      SCOPED_TRACE(testing::Message() << bits << " bits, width " << width);
      Picture p = test::Pattern(width, 9, bits, width + bits);
      if (bits == 1) p.palette[0] = Rgb{0, 0, 0}, p.palette[1] = Rgb{255, 255, 255};
      const std::string path = dir / "p.png";
      ASSERT_EQ(test::WritePicture(p, path), kOk);
      const std::vector<Rgb> want = test::Colours(p);
      RgbImage got;
      ASSERT_TRUE(oracle::MagickDecode(path, got));
      EXPECT_TRUE(oracle::Same(want, got, width, 9)) << "ImageMagick";
      ASSERT_TRUE(oracle::PillowDecode(path, got));
      EXPECT_TRUE(oracle::Same(want, got, width, 9)) << "Pillow";
    }
}

}  // namespace
}  // namespace pxm
