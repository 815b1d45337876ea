// The thumbnail library: the ".THN" layout, what is not a thumbnail, the fixed palette, the stock
// pictures, the cache, and the thumbnail path rule.

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "config/settings.h"
#include "support/temp_dir.h"
#include "thumbs/fixed_palette.h"
#include "thumbs/stock_thumbnails.h"
#include "thumbs/thumbnail_file.h"
#include "thumbs/thumbnail_path.h"

namespace pxm {
namespace {

uint32_t Le32(const std::string& bytes, size_t at) {
  return static_cast<uint8_t>(bytes[at]) | static_cast<uint8_t>(bytes[at + 1]) << 8 |
         static_cast<uint8_t>(bytes[at + 2]) << 16 |
         static_cast<uint32_t>(static_cast<uint8_t>(bytes[at + 3])) << 24;
}

ThumbnailRecord Sample(uint8_t shade) {
  ThumbnailRecord r;
  r.width = 96;
  r.depth = 48;
  r.sourceWidth = 960;
  r.sourceDepth = 480;
  r.sourceBits = 24;
  r.sourceFileSize = 0x01020304;
  r.sourceTime = 0x61000000;
  r.mode = 2;
  r.sourceName = "cat.bmp";
  r.Row(0)[0] = shade;  // top left
  r.Row(95)[95] = 7;    // bottom right
  return r;
}

TEST(ThumbFile, LayoutIsTheRecordItself) {
  test::TempDir dir;
  ASSERT_NE(ThumbWriteThumbnail(Sample(200), dir / "CAT.THN"), 0);
  const std::string bytes = test::ReadFileBytes(dir / "CAT.THN");
  ASSERT_EQ(bytes.size(), 9480u);
  EXPECT_EQ(bytes.substr(0, 8), "PXMTHN01");
  const uint32_t fields[] = {96, 48, 960, 480, 24, 0x01020304, 0x61000000, 2};
  for (size_t i = 0; i < std::size(fields); ++i) EXPECT_EQ(Le32(bytes, 8 + 4 * i), fields[i]) << i;
  EXPECT_EQ(bytes.substr(40, 8), std::string("cat.bmp\0", 8));
  // Padding up to the pixels, whose first row is the picture's bottom row.
  EXPECT_EQ(bytes.find_first_not_of('\0', 47), 264u + 95);
  EXPECT_EQ(static_cast<uint8_t>(bytes[264 + 95]), 7);
  EXPECT_EQ(static_cast<uint8_t>(bytes[264 + 95 * 96]), 200);  // row 0 is stored last

  ThumbnailRecord back;
  ASSERT_EQ(ThumbReadThumbnail(back, dir / "CAT.THN"), 1);
  EXPECT_EQ(back, Sample(200));
}

TEST(ThumbFile, WhatIsNotAThumbnail) {
  test::TempDir dir;
  ASSERT_NE(ThumbWriteThumbnail(Sample(1), dir / "GOOD.THN"), 0);
  const std::string good = test::ReadFileBytes(dir / "GOOD.THN");
  auto with = [&](size_t at, char byte) {
    std::string b = good;
    b[at] = byte;
    return b;
  };
  const std::pair<const char*, std::string> cases[] = {
      {"one byte short", good.substr(0, 9479)},
      {"one byte long", good + '\0'},
      {"another signature", with(7, '2')},
      {"width 0", with(8, 0)},
      {"depth 97", with(12, 97)},
      {"empty", ""},
  };
  for (const auto& [what, bytes] : cases) {
    test::WriteFileBytes(dir / "BAD.THN", bytes);
    ThumbnailRecord record = Sample(9);
    EXPECT_EQ(ThumbReadThumbnail(record, dir / "BAD.THN"), 0) << what;
    EXPECT_EQ(record, Sample(9)) << what << ": the record is left alone";
  }
  ThumbnailRecord record;
  EXPECT_EQ(ThumbReadThumbnail(record, dir / "MISSING.THN"), 0);
  EXPECT_EQ(ThumbWriteThumbnail(record, dir / "no-such-dir/X.THN"), 0);
}

TEST(ThumbPalette, EveryEntryIsFoundAgainByItsTopBits) {
  const Palette& p = ThumbGetPalette(0);
  EXPECT_EQ(p[0], (Rgb{0, 0, 0}));
  EXPECT_EQ(p[255], (Rgb{255, 255, 255}));
  EXPECT_EQ(p[0b101'110'10], (Rgb{182, 218, 170}));
  EXPECT_EQ(p[0b001'000'01], (Rgb{36, 0, 85}));
  for (int i = 0; i < 256; ++i) {
    const Rgb& c = p[static_cast<size_t>(i)];
    EXPECT_EQ(ThumbPaletteIndex(c.red, c.green, c.blue), i);
  }
}

TEST(StockThumbnails, FourDistinctFullSizePictures) {
  std::set<std::array<uint8_t, kThumbPixelBytes>> seen;
  for (int n = 0; n < 4; ++n) {
    ThumbnailRecord r;
    ASSERT_NE(ThumbGetStockThumbnail(r, n), 0) << n;
    EXPECT_EQ(r.width, 96u);
    EXPECT_EQ(r.depth, 96u);
    EXPECT_EQ(r.mode, kStockMode);
    std::set<uint8_t> colours(r.pixels.begin(), r.pixels.end());
    EXPECT_GE(colours.size(), 3u) << n << " is a drawing, not a plain square";
    seen.insert(r.pixels);
  }
  EXPECT_EQ(seen.size(), 4u);
  ThumbnailRecord r;
  EXPECT_EQ(ThumbGetStockThumbnail(r, 4), 0);
  EXPECT_EQ(ThumbGetStockThumbnail(r, -1), 0);
}

// Rewrites a thumbnail file in place with another top-left pixel while keeping its size, its
// identity and its modification time, so only the cache can tell the old record from the new.
void RewriteKeepingStamp(const std::string& path, uint8_t shade) {
  auto time = std::filesystem::last_write_time(path);
  std::string bytes = test::ReadFileBytes(path);
  bytes[264 + 95 * 96] = static_cast<char>(shade);
  test::WriteFileBytes(path, bytes);
  std::filesystem::last_write_time(path, time);
}

TEST(ThumbCacheTest, ReusesUnchangedFilesAndDropsTheLeastRecentlyUsed) {
  ScopedSettings settings;
  settings->ThumbnailCache = 2;
  test::TempDir dir;
  const std::string a = dir / "A.THN", b = dir / "B.THN", c = dir / "C.THN";
  for (const auto& path : {a, b, c}) ASSERT_NE(ThumbWriteThumbnail(Sample(1), path), 0);
  ThumbCache cache;
  ThumbnailRecord r;
  auto shadeOf = [&](const std::string& path) {
    EXPECT_EQ(ThumbReadThumbnail(r, path, &cache), 1) << path;
    return r.At(0, 0);
  };
  EXPECT_EQ(shadeOf(a), 1);
  EXPECT_EQ(shadeOf(b), 1);
  RewriteKeepingStamp(a, 2);
  RewriteKeepingStamp(b, 2);
  EXPECT_EQ(shadeOf(a), 1) << "an unchanged stamp reuses the cached record";
  EXPECT_EQ(shadeOf(c), 1);  // the cache is full: B, used longest ago, goes
  EXPECT_EQ(cache.Size(), 2u);
  EXPECT_EQ(shadeOf(b), 2) << "B was read again";

  std::filesystem::last_write_time(a,
                                   std::filesystem::last_write_time(a) + std::chrono::seconds(5));
  EXPECT_EQ(shadeOf(a), 2) << "a new modification time makes the record stale";
  ASSERT_NE(ThumbWriteThumbnail(Sample(3), b), 0);
  EXPECT_EQ(shadeOf(b), 3) << "a rewritten file is another file";
  test::WriteFileBytes(c, "corrupt");
  EXPECT_EQ(ThumbReadThumbnail(r, c, &cache), 0);

  ThumbClearCache(cache);
  EXPECT_EQ(cache.Size(), 0u);
  settings->ThumbnailCache = 0;
  EXPECT_EQ(shadeOf(a), 2);
  EXPECT_EQ(cache.Size(), 0u) << "a cache of 0 records keeps nothing";
}

TEST(ThumbnailPathTest, NameInUpperCaseBesideTheImageOrInTheThumbnailDirectory) {
  ScopedSettings settings;
  struct Case {
    const char* thumbnailPath;
    const char* image;
    const char* path;  // ThumbnailPathOf
    const char* file;  // ThumbnailFileOf
  };
  const Case cases[] = {
      {"", "/pics/cat.gif", "CAT.THN", "/pics/CAT.THN"},
      {"/Thumbs", "/pics/cat.gif", "/Thumbs/CAT.THN", "/Thumbs/CAT.THN"},
      {"/Thumbs/", "/pics/cat.gif", "/Thumbs/CAT.THN", "/Thumbs/CAT.THN"},
      {"", "cat.gif", "CAT.THN", "CAT.THN"},
      {"", "/my.pics/Read.Me", "READ.THN", "/my.pics/READ.THN"},
      {"", "/pics/notes", "NOTES.THN", "/pics/NOTES.THN"},
  };
  for (const Case& c : cases) {
    settings->ThumbnailPath = c.thumbnailPath;
    EXPECT_EQ(ThumbnailPathOf(c.image), c.path) << c.image << " in '" << c.thumbnailPath << "'";
    EXPECT_EQ(ThumbnailFileOf(c.image), c.file) << c.image << " in '" << c.thumbnailPath << "'";
  }
  settings->ThumbnailPath = "";
  const std::string fits = "/" + std::string(251, 'd') + "/cat.gif";
  const std::string tooLong = "/" + std::string(252, 'd') + "/cat.gif";
  EXPECT_EQ(ThumbnailFileOf(fits).size(), 260u);
  EXPECT_EQ(ThumbnailFileOf(tooLong), "CAT.THN") << "261 characters stay bare";
}

}  // namespace
}  // namespace pxm
