// Scale, Transform, Reverse and the crop save, run on BMP files as the commands run them.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>

#include "batch/convert.h"
#include "batch/crop_file.h"
#include "batch/kept_picture.h"
#include "batch/scale_file.h"
#include "batch/transform_file.h"
#include "config/settings.h"
#include "core/error_codes.h"
#include "core/scripted_host.h"
#include "formats/format_table.h"
#include "process/transform.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Picture;

int Row(const char* ext) { return FindFormatByExtension(ext); }

// Every destination pixel compared with the source pixel a rule names.
void ExpectMapped(const Picture& out, const Picture& in, uint32_t width, int32_t depth,
                  const std::function<std::pair<uint32_t, int32_t>(uint32_t, int32_t)>& from,
                  const std::string& what) {
  ASSERT_EQ(out.width, width) << what;
  ASSERT_EQ(out.depth, depth) << what;
  for (int32_t r = 0; r < depth; ++r)
    for (uint32_t x = 0; x < width; ++x) {
      auto [sx, sy] = from(x, r);
      ASSERT_EQ(out.Pixel(x, r), in.Pixel(sx, sy)) << what << " at " << x << "," << r;
    }
}

class PictureCommands : public ::testing::Test {
 protected:
  ScopedSettings settings;
  test::TempDir dir;
  ScriptedHost host;

  // A pattern written as a BMP file, and the picture as it reads back (one-bit files carry
  // black and white whatever the pattern's palette was).
  Picture Make(const std::string& name, uint32_t bits, uint32_t width, int32_t depth) {
    EXPECT_EQ(test::WritePicture(test::Pattern(width, depth, bits, width + bits), dir / name), 0);
    return Read(name);
  }
  Picture Read(const std::string& name) {
    Picture p;
    EXPECT_EQ(test::ReadPicture(dir / name, p), 0) << name;
    return p;
  }
};

TEST_F(PictureCommands, ScaleByPercentAndBySize) {
  for (uint32_t bits : {1u, 4u, 8u, 24u}) {
    const std::string what = std::to_string(bits) + " bits";
    Picture in = Make("in.bmp", bits, 13, 9);
    ScaleSettings same;
    ASSERT_EQ(ScaleFile(host, dir / "in.bmp", Row("DIB"), same), 0) << what;
    Picture out = Read("in.dib");
    EXPECT_EQ(out.rows, in.rows) << what;
    EXPECT_EQ(out.palette, in.palette) << what;

    ScaleSettings half{50, 50, 0, 0};
    ASSERT_EQ(ScaleFile(host, dir / "in.bmp", Row("DIB"), half), 0) << what;
    ExpectMapped(Read("in.dib"), in, 6, 4, [](uint32_t x, int32_t r) {
      return std::pair{2 * x, 2 * r};
    }, what + " at 50 %");

    ScaleSettings wide{400, 100, 0, 0};  // anamorphic: four times as wide, as deep
    ASSERT_EQ(ScaleFile(host, dir / "in.bmp", Row("DIB"), wide), 0) << what;
    ExpectMapped(Read("in.dib"), in, 52, 9, [](uint32_t x, int32_t r) {
      return std::pair{x / 4, r};
    }, what + " at 400 % across");
  }
  EXPECT_EQ(host.statuses.back(), "Scaling " + dir / "in.bmp");

  Picture small = Make("small.bmp", 24, 10, 10);
  ASSERT_EQ(ScaleFile(host, dir / "small.bmp", Row("BMP"), ScaleSettings{16, 16, 0, 0}), 0);
  ExpectMapped(Read("small.bmp"), small, 1, 1, [](uint32_t, int32_t) { return std::pair{0u, 0}; },
               "16 %");

  Picture screen = Make("screen.bmp", 8, 320, 200);
  ASSERT_EQ(ScaleFile(host, dir / "screen.bmp", Row("DIB"), ScaleSettings{100, 100, 640, 480}), 0);
  Picture big = Read("screen.dib");
  ASSERT_EQ(big.width, 640u);
  ASSERT_EQ(big.depth, 480);
  for (int32_t r : {0, 1, 2, 3, 11, 13, 479})
    for (uint32_t x : {0u, 1u, 2u, 639u})
      EXPECT_EQ(big.Pixel(x, r), screen.Pixel(x / 2, r * 5 / 12)) << x << "," << r;
}

// Refusals of the frame every picture command shares (rows, depths, writers, the save dialog)
// are checked once, with Convert; here only what each command refuses of its own.
TEST_F(PictureCommands, ScaleToNoPixelsAtAllIsUnsuitable) {
  Make("flat.bmp", 8, 5, 10);
  // 16 % of 5 pixels is none at all.
  EXPECT_EQ(ScaleFile(host, dir / "flat.bmp", Row("DIB"), ScaleSettings{16, 100, 0, 0}),
            kUnsuitableImage);
  EXPECT_EQ(test::ListDirectory(dir.path()), std::vector<std::string>{"flat.bmp"});
}

TEST_F(PictureCommands, EveryTransformModeAtEveryDepth) {
  using Rule = std::function<std::pair<uint32_t, int32_t>(uint32_t, int32_t)>;
  for (uint32_t bits : {1u, 4u, 8u, 24u}) {
    for (auto [w, d] : {std::pair{11u, 6}, {1u, 5}, {9u, 1}}) {
      Picture in = Make("t.bmp", bits, w, d);
      const uint32_t W = w;
      const int32_t D = d;
      // Destination pixel (x, r) is source pixel (column, row) of the mode.
      const std::pair<int32_t, Rule> modes[] = {
          {kRotate90, [&](uint32_t x, int32_t r) { return std::pair{W - 1 - r, int32_t(x)}; }},
          {kRotate180, [&](uint32_t x, int32_t r) { return std::pair{W - 1 - x, D - 1 - r}; }},
          {kRotate270, [&](uint32_t x, int32_t r) { return std::pair{uint32_t(r), D - 1 - int32_t(x)}; }},
          {kFlipHorizontal, [&](uint32_t x, int32_t r) { return std::pair{W - 1 - x, r}; }},
          {kFlipVertical, [&](uint32_t x, int32_t r) { return std::pair{x, D - 1 - r}; }},
      };
      for (const auto& [mode, rule] : modes) {
        const std::string what = std::to_string(bits) + " bits " + std::to_string(w) + "x" +
                                 std::to_string(d) + " mode " + std::to_string(mode);
        ASSERT_EQ(TransformFile(host, dir / "t.bmp", Row("DIB"), mode), 0) << what;
        Picture out = Read("t.dib");
        bool quarter = IsQuarterTurn(mode);
        ExpectMapped(out, in, quarter ? uint32_t(D) : W, quarter ? int32_t(W) : D, rule, what);
        EXPECT_EQ(out.palette, in.palette) << what;
      }
    }
  }
}

TEST_F(PictureCommands, QuarterTurnsNeedTheMemoryStore) {
  Picture in = Make("s.bmp", 8, 7, 4);
  setenv("PXM_MEMORY_LIMIT", "0", 1);
  for (int32_t mode = kRotate90; mode <= kFlipVertical; ++mode)
    EXPECT_EQ(TransformFile(host, dir / "s.bmp", Row("DIB"), mode),
              IsQuarterTurn(mode) ? kNeedsMemoryStore : kOk)
        << mode;
  unsetenv("PXM_MEMORY_LIMIT");
  // The last one written, from the spill file, is the vertical flip.
  ExpectMapped(Read("s.dib"), in, 7, 4, [](uint32_t x, int32_t r) { return std::pair{x, 3 - r}; },
               "spilled flip");

  EXPECT_EQ(TransformFile(host, dir / "s.bmp", Row("DIB"), 7), kUnsupportedFunction);
}

TEST_F(PictureCommands, ReverseTurnsPixelsOrPaletteAndTwiceRestores) {
  for (bool spill : {false, true}) {
    // The test's own reading and writing keep to memory; the commands spill when asked.
    auto reverse = [&](const std::string& name, const char* ext) {
      settings->UseVirtualMemoryAlways = spill;
      int code = ReverseFile(host, dir / name, Row(ext));
      settings->UseVirtualMemoryAlways = 0;
      return code;
    };
    for (uint32_t bits : {1u, 4u, 8u, 24u}) {
      const std::string what = std::to_string(bits) + (spill ? " bits, spilled" : " bits");
      Picture in = Make("r.bmp", bits, 13, 5);
      const std::string original = test::ReadFileBytes(dir / "r.bmp");
      ASSERT_EQ(reverse("r.bmp", "DIB"), 0) << what;
      Picture once = Read("r.dib");
      for (int32_t y = 0; y < 5; ++y)
        for (uint32_t x = 0; x < 13; ++x) {
          uint32_t want = in.Pixel(x, y);
          if (bits == 1) want ^= 1;
          if (bits == 24) want ^= 0xFFFFFF;
          ASSERT_EQ(once.Pixel(x, y), want) << what;  // palette pictures keep their indexes
        }
      if (bits == 4 || bits == 8) {
        for (size_t i = 0; i < (size_t{1} << bits); ++i) {
          ASSERT_EQ(once.palette[i], (Rgb{uint8_t(255 - in.palette[i].red),
                                          uint8_t(255 - in.palette[i].green),
                                          uint8_t(255 - in.palette[i].blue)}))
              << what << " entry " << i;
        }
      }
      if (bits == 1) {
        EXPECT_EQ(once.palette, in.palette) << what;
      }
      std::filesystem::rename(dir / "r.dib", dir / "once.bmp");
      ASSERT_EQ(reverse("once.bmp", "BMP"), 0) << what;
      EXPECT_EQ(test::ReadFileBytes(dir / "once.bmp"), original) << what;
    }
  }
  EXPECT_EQ(host.statuses[host.statuses.size() - 2], "Reversing " + dir / "once.bmp");
}

TEST_F(PictureCommands, CropSavesTheRectangleAndRefusesWhatItCannot) {
  for (uint32_t bits : {1u, 4u, 8u, 24u}) {
    Picture in = Make("c.bmp", bits, 21, 9);
    // Odd offsets across byte boundaries, and a rectangle running past the right and bottom.
    for (CropRect rect : {CropRect{3, 2, 11, 5}, CropRect{17, 6, 10, 10}}) {
      ASSERT_EQ(CropFile(host, dir / "c.bmp", Row("DIB"), rect), 0) << bits;
      uint32_t width = std::min(rect.width, 21 - rect.x);
      int32_t depth = static_cast<int32_t>(std::min(rect.depth, 9 - rect.y));
      ExpectMapped(Read("c.dib"), in, width, depth, [&](uint32_t x, int32_t r) {
        return std::pair{rect.x + x, int32_t(rect.y) + r};
      }, "crop at " + std::to_string(bits) + " bits");
    }
  }
  CropRect rect{1, 1, 2, 2};
  EXPECT_EQ(CropFile(host, dir / "c.bmp", Row("DIB"), CropRect{21, 0, 2, 2}), kUnsuitableImage);
  ImageInfo info;
  ImageStore store(host);
  EXPECT_EQ(SaveCrop(host, info, store, rect, kFormatCount, dir / "x.dib"), kUnsupportedFormat);
  EXPECT_EQ(test::ListDirectory(dir.path()), (std::vector<std::string>{"c.bmp", "c.dib"}));
}

}  // namespace
}  // namespace pxm

namespace pxm {
namespace {

TEST_F(PictureCommands, AKeptPictureStaysAfterItsReadAndSavesAllOrPartOfItself) {
  for (bool spill : {false, true}) {
    settings->UseVirtualMemoryAlways = spill;
    Picture in = Make("k.bmp", 8, 13, 7);
    std::unique_ptr<KeptPicture> kept;
    ASSERT_EQ(LoadKeptPicture(host, dir / "k.bmp", kept), 0);
    ASSERT_TRUE(kept && kept->Store().IsHeld());
    EXPECT_EQ(kept->Store().InMemory(), !spill);
    // The read's own settings ended with it: a setting changed now reaches the next work.
    settings->JpegCompressionFactor = 12;
    EXPECT_EQ(CurrentSettings().JpegCompressionFactor, 12);
    std::vector<uint8_t> row(kept->Store().bytesPerLine);
    kept->Store().GetRowQuiet(row, 6);
    for (uint32_t x = 0; x < 13; ++x) ASSERT_EQ(row[x], in.Pixel(x, 6)) << spill;

    // All of it with another palette, part of it, and the refusals of the writers.
    Palette grey{};
    for (size_t i = 0; i < 256; ++i) grey[i] = Rgb{uint8_t(i), uint8_t(i), uint8_t(i)};
    ASSERT_EQ(kept->Save(host, Row("DIB"), dir / "all.dib", std::nullopt, &grey), 0);
    Picture all = Read("all.dib");
    EXPECT_EQ(all.palette, grey);
    ExpectMapped(all, in, 13, 7, [](uint32_t x, int32_t r) { return std::pair{x, r}; }, "all");
    ASSERT_EQ(kept->Save(host, Row("BMP"), dir / "part.bmp", CropRect{2, 3, 5, 2}), 0);
    ExpectMapped(Read("part.bmp"), in, 5, 2,
                 [](uint32_t x, int32_t r) { return std::pair{x + 2, r + 3}; }, "part");
    EXPECT_EQ(kept->Save(host, Row("MAC"), dir / "no.mac"), kTooManyColours);
    EXPECT_EQ(kept->Save(host, -1, dir / "no.x"), kUnsupportedFormat);
    EXPECT_FALSE(std::filesystem::exists(dir / "no.mac"));
  }

  // A file cut short: nothing is kept, unless the caller offers what was read.
  ASSERT_EQ(Convert(host, dir / "k.bmp", Row("PCX")), 0);
  std::string bytes = test::ReadFileBytes(dir / "k.pcx");
  test::WriteFileBytes(dir / "cut.pcx", bytes.substr(0, 128 + 40));
  std::unique_ptr<KeptPicture> kept;
  const int code = LoadKeptPicture(host, dir / "cut.pcx", kept);
  EXPECT_NE(code, 0);
  EXPECT_FALSE(kept);
  EXPECT_EQ(LoadKeptPicture(host, dir / "cut.pcx", kept, {.keepPartial = true}), code);
  ASSERT_TRUE(kept);
  EXPECT_EQ(kept->ReadCode(), code);
}

}  // namespace
}  // namespace pxm
