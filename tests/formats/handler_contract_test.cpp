// What every built codec answers alike (or, where it differs on purpose, how): a file that is not
// there, a sink that stops the reader, a source that stops the writer, a file that cannot be made.

#include <gtest/gtest.h>

#include <filesystem>

#include "core/error_codes.h"
#include "formats/format_table.h"
#include "support/decoded.h"
#include "support/photo_cd_builder.h"
#include "support/picture.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

const FormatEntry& Row(const std::string& ext) {
  return FormatAt(FindFormatByExtension(ext));
}

TEST(Handlers, MissingFilesAreOpenErrors) {
  test::TempDir dir;
  for (const char* ext : {"bmp", "bga", "pcx", "gif", "tif", "tga", "jpg", "iff", "ras", "fit",
                          "png", "uue", "pcd", "txt", "exe", "cpt"}) {
    ImageInfo info;
    const std::string path = dir / (std::string("missing.") + ext);
    EXPECT_EQ(Row(ext).info(info, path, 0), kOpenError) << ext;
    // PNG's reader answers through its unpacker, for which a file it cannot read is a read error.
    EXPECT_EQ(Row(ext).read(info, path), std::string(ext) == "png" ? kReadError : kOpenError)
        << ext;
  }
}

TEST(Handlers, InfoStartsTheRecordWithTheNamePartBackgroundZeroAndTheFileLength) {
  test::TempDir dir;
  for (auto [ext, bits] : {std::pair{"bmp", 8u}, {"bga", 8u}, {"pcx", 8u}, {"gif", 8u},
                           {"tif", 8u}, {"tga", 8u}, {"jpg", 24u}, {"iff", 8u}, {"ras", 8u},
                           {"fit", 8u}, {"png", 8u}}) {
    const std::string name = std::string("Rec.") + ext;
    ASSERT_EQ(test::WritePicture(test::Pattern(9, 5, bits), dir / name), kOk) << ext;
    ImageInfo info;
    info.fileName = "stale";
    info.background = 9;
    ASSERT_EQ(Row(ext).info(info, dir / name, 0), kOk) << ext;
    EXPECT_EQ(info.fileName, name);
    EXPECT_EQ(info.background, 0u) << ext;
    EXPECT_EQ(info.fileSize, int32_t(std::filesystem::file_size(dir / name))) << ext;
    EXPECT_EQ(std::pair(info.width, info.depth), std::pair(9u, 5)) << ext;
  }
}

TEST(Handlers, ASinkThatAnswersOneStopsTheReaderAtOnce) {
  // Bitmap files call the stop a read error; the rest say "Function cancelled".
  struct Case {
    const char* ext;
    uint32_t bits;
    int code;
  };
  const Case cases[] = {{"bmp", 8, kReadError}, {"bga", 8, kCancelled}, {"pcx", 8, kCancelled},
                        {"gif", 8, kCancelled}, {"tif", 8, kCancelled}, {"tga", 8, kCancelled},
                        {"jpg", 24, kCancelled}, {"iff", 8, kCancelled}, {"ras", 8, kCancelled},
                        {"fit", 8, kCancelled}, {"png", 8, kCancelled}};
  test::TempDir dir;
  for (const Case& c : cases) {
    const std::string path = dir / (std::string("s.") + c.ext);
    ASSERT_EQ(test::WritePicture(test::Pattern(9, 5, c.bits), path), kOk) << c.ext;
    const test::Decoded d = test::DecodeFile(path, 2);
    EXPECT_EQ(d.readCode, c.code) << c.ext;
    EXPECT_EQ(d.order.size(), 2u) << c.ext;
  }
  // Bitmap rows come bottom first; the others top first.
  EXPECT_EQ(test::DecodeFile(dir / "s.bmp", 2).order, (std::vector<int32_t>{4, 3}));
  EXPECT_EQ(test::DecodeFile(dir / "s.jpg", 2).order, (std::vector<int32_t>{0, 1}));
}

TEST(Handlers, ReadOnlyRowsStartTheRecordAndStopWithTheSink) {
  // Rows without a writer get their files assembled here: a Photo CD pack, a text, a program
  // with a PCX picture after it, a PHOTO-PAINT 6 file (a TIFF).
  test::TempDir dir;
  ASSERT_EQ(test::WritePicture(test::Pattern(9, 40, 8), dir / "p.pcx"), kOk);
  ASSERT_EQ(test::WritePicture(test::Pattern(9, 40, 8), dir / "p.tif"), kOk);
  std::string program(512, '\x90');
  program.replace(0, 6, std::string("MZ\0\0\1\0", 6));
  const std::pair<const char*, std::string> files[] = {
      {"pcd", test::PhotoCdPack(test::PcdGradient)},
      {"txt", "one\ntwo\nthree\n"},
      {"exe", program + test::ReadFileBytes(dir / "p.pcx")},
      {"cpt", test::ReadFileBytes(dir / "p.tif")}};
  for (const auto& [ext, bytes] : files) {
    const std::string name = std::string("Rec.") + ext;
    test::WriteFileBytes(dir / name, bytes);
    ImageInfo info;
    info.fileName = "stale";
    info.background = 9;
    ASSERT_EQ(Row(ext).info(info, dir / name, 0), kOk) << ext;
    EXPECT_EQ(info.fileName, name);
    EXPECT_EQ(info.background, 0u) << ext;
    EXPECT_EQ(info.fileSize, int32_t(bytes.size())) << ext;
    EXPECT_FALSE(CanWrite(Row(ext))) << ext;
    const test::Decoded d = test::DecodeFile(dir / name, 2);
    EXPECT_EQ(d.readCode, kCancelled) << ext;
    EXPECT_EQ(d.order, (std::vector<int32_t>{0, 1})) << ext;
  }
}

TEST(Handlers, AStoppedWriterLeavesNoFileAndAFileThatCannotBeMadeIsACreateError) {
  // GIF's coder takes any stop, the source's too, for a write error.
  test::TempDir dir;
  const test::Picture p = test::Pattern(9, 5, 8);
  for (auto [ext, code] : {std::pair{"bmp", kCancelled}, {"bga", kCancelled}, {"pcx", kCancelled},
                           {"tif", kCancelled}, {"jpg", kCancelled}, {"gif", kWriteError}}) {
    ImageInfo info;
    info.width = p.width;
    info.depth = p.depth;
    info.bits = p.bits;
    info.palette = p.palette;
    std::vector<int32_t> asked;
    info.getLine = [&](std::span<uint8_t> row, int32_t y) {
      asked.push_back(y);
      std::copy(p.rows[size_t(y)].begin(), p.rows[size_t(y)].end(), row.begin());
      return asked.size() == 3 ? 1 : 0;
    };
    const std::string path = dir / (std::string("w.") + ext);
    EXPECT_EQ(Row(ext).write(info, path), code) << ext;
    EXPECT_FALSE(std::filesystem::exists(path)) << ext;
    if (std::string(ext) == "bmp") {
      EXPECT_EQ(asked, (std::vector<int32_t>{4, 3, 2}));  // bottom row first
    }
    asked.clear();
    EXPECT_EQ(Row(ext).write(info, dir / (std::string("no/such/dir/w.") + ext)), kCreateError)
        << ext;
  }
}

}  // namespace
}  // namespace pxm
