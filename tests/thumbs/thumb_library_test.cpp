// The thumbnail library: the ".THN" layout, what is not a thumbnail, the fixed palette, the stock
// pictures, the cache, and the thumbnail path rule.

#include <gtest/gtest.h>

#include <filesystem>

#include "config/settings.h"
#include "core/bytes.h"
#include "support/temp_dir.h"
#include "thumbs/thumbnail_file.h"
#include "thumbs/thumbnail_path.h"

namespace pxm {
namespace {

ThumbnailRecord Sample(uint8_t shade) {
  ThumbnailRecord r{96, 48, 960, 480, 24, 0x01020304, 0x61000000, 2, "cat.bmp", {}};
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
  const auto* p = reinterpret_cast<const uint8_t*>(bytes.data());
  for (size_t i = 0; i < std::size(fields); ++i) EXPECT_EQ(LoadLe32(p + 8 + 4 * i), fields[i]) << i;
  EXPECT_EQ(bytes.substr(40, 8), std::string("cat.bmp\0", 8));
  // Padding up to the pixels, whose first row is the picture's bottom row.
  EXPECT_EQ(bytes.find_first_not_of('\0', 47), 264u + 95);
  EXPECT_EQ(p[264 + 95], 7);
  EXPECT_EQ(p[264 + 95 * 96], 200);  // row 0 is stored last
  ThumbnailRecord back;
  ASSERT_EQ(ThumbReadThumbnail(back, dir / "CAT.THN"), 1);
  EXPECT_EQ(back, Sample(200));
}

TEST(ThumbFile, WhatIsNotAThumbnail) {
  test::TempDir dir;
  ASSERT_NE(ThumbWriteThumbnail(Sample(1), dir / "GOOD.THN"), 0);
  const std::string good = test::ReadFileBytes(dir / "GOOD.THN");
  auto with = [&](size_t at, char byte) { return good.substr(0, at) + byte + good.substr(at + 1); };
  // One byte short, one long, another signature, width 0, depth 97, empty.
  const std::string cases[] = {good.substr(0, 9479), good + '\0',  with(7, '2'),
                               with(8, 0),           with(12, 97), ""};
  for (size_t i = 0; i < std::size(cases); ++i) {
    test::WriteFileBytes(dir / "BAD.THN", cases[i]);
    ThumbnailRecord record = Sample(9);
    EXPECT_EQ(ThumbReadThumbnail(record, dir / "BAD.THN"), 0) << i;
    EXPECT_EQ(record, Sample(9)) << i << ": the record is left alone";
  }
  ThumbnailRecord record;
  EXPECT_EQ(ThumbReadThumbnail(record, dir / "MISSING.THN"), 0);
  EXPECT_EQ(ThumbWriteThumbnail(record, dir / "no-such-dir/X.THN"), 0);
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
  EXPECT_EQ(shadeOf(a) + shadeOf(b), 2);
  RewriteKeepingStamp(a, 2);
  RewriteKeepingStamp(b, 2);
  EXPECT_EQ(shadeOf(a), 1) << "an unchanged stamp reuses the cached record";
  EXPECT_EQ(shadeOf(c), 1);  // the cache is full: B, used longest ago, goes
  EXPECT_EQ(shadeOf(b), 2) << "B was read again";

  std::filesystem::last_write_time(a,
                                   std::filesystem::last_write_time(a) + std::chrono::seconds(5));
  EXPECT_EQ(shadeOf(a), 2) << "a new modification time makes the record stale";
  ASSERT_NE(ThumbWriteThumbnail(Sample(3), b), 0);
  EXPECT_EQ(shadeOf(b), 3) << "a rewritten file is another file";
  ThumbClearCache(cache);
  EXPECT_EQ(cache.Size(), 0u);
}

TEST(ThumbnailPathTest, NameInUpperCaseBesideTheImageOrInTheThumbnailDirectory) {
  ScopedSettings settings;
  // ThumbnailPath, image, ThumbnailPathOf, ThumbnailFileOf.
  const std::array<const char*, 4> cases[] = {
      {"", "/pics/cat.gif", "CAT.THN", "/pics/CAT.THN"},
      {"/Thumbs", "/pics/cat.gif", "/Thumbs/CAT.THN", "/Thumbs/CAT.THN"},
      {"/Thumbs/", "/pics/cat.gif", "/Thumbs/CAT.THN", "/Thumbs/CAT.THN"},
      {"", "cat.gif", "CAT.THN", "CAT.THN"},
      {"", "/my.pics/Read.Me", "READ.THN", "/my.pics/READ.THN"},
  };
  for (const auto& [thumbnailPath, image, path, file] : cases) {
    settings->ThumbnailPath = thumbnailPath;
    EXPECT_EQ(ThumbnailPathOf(image), path) << image << " in '" << thumbnailPath << "'";
    EXPECT_EQ(ThumbnailFileOf(image), file) << image << " in '" << thumbnailPath << "'";
  }
  settings->ThumbnailPath = "";
  EXPECT_EQ(ThumbnailFileOf("/" + std::string(252, 'd') + "/cat.gif"), "CAT.THN")
      << "261 characters stay bare";
}

}  // namespace
}  // namespace pxm
