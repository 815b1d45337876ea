// What every built codec answers alike (or, where it differs on purpose, how): a file that is not
// there, a sink that stops the reader, a source that stops the writer, a file that cannot be made.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "core/error_codes.h"
#include "formats/format_table.h"
#include "support/decoded.h"
#include "support/icon_files.h"
#include "support/photo_cd_builder.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

const FormatEntry& Row(const std::string& ext) {
  return FormatAt(FindFormatByExtension(ext));
}

TEST(Handlers, MissingFilesAreOpenErrors) {
  test::TempDir dir;
  for (const char* ext : {"bmp", "bga", "pcx", "gif", "tif", "tga", "jpg", "iff", "ras", "fit",
                          "png", "uue", "pic", "cut", "wpg", "rle", "ico", "dll", "vbx", "cdr",
                          "pcd", "txt", "exe", "cpt"}) {
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
                           {"fit", 8u}, {"png", 8u}, {"pic", 8u}, {"cut", 8u}, {"wpg", 8u},
                           {"rle", 8u}, {"ico", 8u}, {"dll", 0u}, {"vbx", 0u}, {"cdr", 0u}}) {
    const std::string name = std::string("Rec.") + ext;
    if (bits != 0) {
      ASSERT_EQ(test::WritePicture(test::Pattern(9, 5, bits), dir / name), kOk) << ext;
    } else {
      // Rows that are not written get a file of one 9 x 5 bitmap made here.
      const std::string dib = test::DibBytes(9, 5, 8, [](uint32_t, int32_t) { return 1u; }, false);
      const auto size = static_cast<uint32_t>(dib.size());
      const std::string cdr = "RIFF" + test::Le(size + 16, 4) + "CDR5DISP" +
                              test::Le(size + 4, 4) + test::Le(1, 4) + dib;
      const std::string dll = test::PeLibrary({{2, 1, dib}}, false);
      const std::string e = ext;
      test::WriteFileBytes(dir / name, e == "cdr"   ? cdr
                                       : e == "dll" ? dll
                                                    : test::NeLibrary({{2, 1, dib}}));
    }
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

// Headers of every reader declaring a picture of w x h at the format's deepest (or with its run
// coding), followed by nothing but zeros.
using test::Be;
using test::Le;
using test::Raw;
using Header = std::string (*)(uint32_t w, uint32_t h);

std::string Bmp(uint32_t w, uint32_t h, uint32_t bits, uint32_t compression) {
  const uint32_t table = bits <= 8 ? 4u << bits : 0;
  return "BM" + Le(0, 4) + Le(0, 4) + Le(54 + table, 4) + Le(40, 4) + Le(w, 4) + Le(h, 4) +
         Le(1, 2) + Le(bits, 2) + Le(compression, 4) + std::string(20 + table, '\0');
}
// PCX sizes are signed: the largest runs from -32768 to 32766.
std::string PcxSpan(uint32_t n) {
  return n <= 32767 ? Le(0, 2) : Le(32768, 2);
}
std::string PcxEnd(uint32_t n) {
  return n <= 32767 ? Le(n - 1, 2) : Le(n - 32769, 2);
}
std::string Fits(uint32_t w, uint32_t h) {
  std::string cards;
  for (const std::string& c :
       {std::string("SIMPLE  =                    T"),
        std::string("BITPIX  =                    8"),
        std::string("NAXIS   =                    2"), "NAXIS1  = " + std::to_string(w),
        "NAXIS2  = " + std::to_string(h), std::string("END")})
    cards += c + std::string(80 - c.size(), ' ');
  return cards;
}
std::string Tiff(uint32_t w, uint32_t h, uint32_t compression) {
  auto entry = [](uint32_t tag, uint32_t type, uint32_t value) {
    return Le(tag, 2) + Le(type, 2) + Le(1, 4) + Le(value, 4);
  };
  const uint32_t bytes = h > 0xFFFFFFFFu / 3 / w ? 0xFFFFFFFFu : 3 * w * h;
  return "II" + Le(42, 2) + Le(8, 4) + Le(9, 2) + entry(256, 4, w) + entry(257, 4, h) +
         entry(258, 3, 8) + entry(259, 3, compression) + entry(262, 3, 2) + entry(273, 4, 122) +
         entry(277, 3, 3) + entry(278, 4, h) + entry(279, 4, bytes) + Le(0, 4);
}

TEST(Handlers, InfoRefusesAHeaderDeclaringMoreThanTheFileCouldHold) {
  struct Case {
    const char* what;
    const char* ext;
    Header header;
    size_t smallFile;  // bytes that hold the same header's 4 x 4 picture
  };
  const Case cases[] = {
      {"BMP, 24 bits", "bmp", [](uint32_t w, uint32_t h) { return Bmp(w, h, 24, 0); }, 200},
      {"BMP, 4-bit runs", "bmp", [](uint32_t w, uint32_t h) { return Bmp(w, h, 4, 2); }, 200},
      {"BGA, 24 bits", "bga",
       [](uint32_t w, uint32_t h) {
         return "BA" + Le(40, 4) + Le(0, 4) + Le(0, 4) + "BM" + Le(0, 4) + Le(0, 4) + Le(40, 4) +
                Le(12, 4) + Le(w, 2) + Le(h, 2) + Le(1, 2) + Le(24, 2);
       },
       200},
      {"PCX, 24 bits", "pcx",
       [](uint32_t w, uint32_t h) {
         return Raw({10, 5, 1, 8}) + PcxSpan(w) + PcxSpan(h) + PcxEnd(w) + PcxEnd(h) +
                std::string(53, '\0') + Raw({3}) + Le(std::min(w, 32767u), 2) + Le(1, 2) +
                std::string(58, '\0');
       },
       200},
      {"GIF, 8 bits", "gif",
       [](uint32_t w, uint32_t h) {
         return "GIF89a" + Le(w, 2) + Le(h, 2) + Raw({7, 0, 0, 0x2C}) + Le(0, 4) + Le(w, 2) +
                Le(h, 2) + Raw({0, 8});
       },
       200},
      {"PNG, 24 bits", "png",
       [](uint32_t w, uint32_t h) {
         return "\x89PNG\r\n\x1A\n" + Be(13, 4) + "IHDR" + Be(w, 4) + Be(h, 4) +
                Raw({8, 2, 0, 0, 0}) + Be(0, 4) + Be(0, 4) + "IEND" + Be(0, 4);
       },
       200},
      {"IFF, 24 planes, ByteRun1", "iff",
       [](uint32_t w, uint32_t h) {
         return "FORM" + Be(0, 4) + "ILBM" + "BMHD" + Be(20, 4) + Be(w, 2) + Be(h, 2) + Be(0, 4) +
                Raw({24, 0, 1, 0}) + Be(0, 2) + Raw({1, 1}) + Be(w, 2) + Be(h, 2) + "BODY" +
                Be(120, 4);
       },
       200},
      {"Targa, 24 bits", "tga",
       [](uint32_t w, uint32_t h) {
         return Raw({0, 0, 2, 0, 0, 0, 0, 0}) + Le(0, 4) + Le(w, 2) + Le(h, 2) + Raw({24, 0x20});
       },
       200},
      {"Targa, 24-bit runs", "tga",
       [](uint32_t w, uint32_t h) {
         return Raw({0, 0, 10, 0, 0, 0, 0, 0}) + Le(0, 4) + Le(w, 2) + Le(h, 2) + Raw({24, 0x20});
       },
       200},
      {"Sun raster, 24 bits", "ras",
       [](uint32_t w, uint32_t h) {
         return Be(0x59A66A95, 4) + Be(w, 4) + Be(h, 4) + Be(24, 4) + Be(0, 4) + Be(1, 4) +
                Be(0, 4) + Be(0, 4);
       },
       200},
      {"Sun raster, 24-bit runs", "ras",
       [](uint32_t w, uint32_t h) {
         return Be(0x59A66A95, 4) + Be(w, 4) + Be(h, 4) + Be(24, 4) + Be(0, 4) + Be(2, 4) +
                Be(0, 4) + Be(0, 4);
       },
       200},
      {"FITS, 8 bits", "fit", Fits, 2880 + 16},
      // libjpeg takes no picture wider or taller than 65500.
      {"JPEG, three components", "jpg",
       [](uint32_t w, uint32_t h) {
         const uint32_t jw = std::min(w, 65500u), jh = std::min(h, 65500u);
         return Raw({0xFF, 0xD8, 0xFF, 0xC0}) + Be(17, 2) + Raw({8}) + Be(jh, 2) + Be(jw, 2) +
                Raw({3, 1, 0x11, 0, 2, 0x11, 0, 3, 0x11, 0, 0xFF, 0xDA}) + Be(12, 2) +
                Raw({3, 1, 0, 2, 0, 3, 0, 0, 63, 0});
       },
       200},
      {"TIFF, RGB", "tif", [](uint32_t w, uint32_t h) { return Tiff(w, h, 1); }, 200},
      {"TIFF, RGB in LZW", "tif", [](uint32_t w, uint32_t h) { return Tiff(w, h, 5); }, 200},
      {"UUE of a 24-bit BMP", "uue",
       [](uint32_t w, uint32_t h) {
         std::string text = "begin 644 inner.bmp\n";
         std::string bmp = Bmp(w, h, 24, 0);
         bmp.resize(200, '\0');
         for (const std::string& line : test::UuencodeLines(bmp)) text += line + "\n";
         return text + "`\nend\n";
       },
       200},
  };
  test::TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string path = dir / (std::string("big.") + c.ext);
    std::string bytes = c.header(65535, 65535);
    bytes.resize(std::max<size_t>(bytes.size(), 200), '\0');
    test::WriteFileBytes(path, bytes);
    ImageInfo info;
    EXPECT_EQ(Row(c.ext).info(info, path, 0), kCorruptedFile);
    // The same header for a small picture is one the reader takes.
    bytes = c.header(4, 4);
    bytes.resize(std::max(bytes.size(), c.smallFile), '\0');
    test::WriteFileBytes(path, bytes);
    EXPECT_EQ(Row(c.ext).info(info, path, 0), kOk);
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
                        {"fit", 8, kCancelled}, {"png", 8, kCancelled}, {"pic", 8, kCancelled},
                        {"cut", 8, kCancelled}, {"wpg", 8, kCancelled}, {"rle", 8, kCancelled},
                        {"ico", 8, kCancelled}};
  test::TempDir dir;
  for (const Case& c : cases) {
    const std::string path = dir / (std::string("s.") + c.ext);
    ASSERT_EQ(test::WritePicture(test::Pattern(9, 5, c.bits), path), kOk) << c.ext;
    const test::Decoded d = test::DecodeFile(path, 2);
    EXPECT_EQ(d.readCode, c.code) << c.ext;
    EXPECT_EQ(d.order.size(), 2u) << c.ext;
  }
  // Bitmap and PC Paint rows come bottom first; the others top first.
  EXPECT_EQ(test::DecodeFile(dir / "s.bmp", 2).order, (std::vector<int32_t>{4, 3}));
  EXPECT_EQ(test::DecodeFile(dir / "s.pic", 2).order, (std::vector<int32_t>{4, 3}));
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
                           {"tif", kCancelled}, {"jpg", kCancelled}, {"gif", kWriteError},
                           {"pic", kCancelled}, {"cut", kCancelled}, {"wpg", kCancelled},
                           {"rle", kCancelled}, {"ico", kCancelled}}) {
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
    EXPECT_FALSE(std::filesystem::exists(dir / "w.pal")) << ext;  // nor a Dr. Halo palette file
    if (std::string(ext) == "bmp") {
      EXPECT_EQ(asked, (std::vector<int32_t>{4, 3, 2}));  // bottom row first
    }
    asked.clear();
    EXPECT_EQ(Row(ext).write(info, dir / (std::string("no/such/dir/w.") + ext)), kCreateError)
        << ext;
  }
}

TEST(Handlers, PaintFormatRowsKeepEveryContract) {
  // MacPaint, GEM, Microsoft Paint, PFS clip art and SSTV, each with a picture its writer takes.
  struct Case {
    const char* ext;
    uint32_t width;
    int32_t depth;
    uint32_t bits;
  };
  const Case cases[] = {
      {"mac", 9, 5, 1}, {"img", 9, 5, 8}, {"msp", 9, 5, 1}, {"art", 9, 5, 1}, {"hrz", 256, 240, 24}};
  test::TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.ext);
    const std::string ext = c.ext;
    ImageInfo missing;
    EXPECT_EQ(Row(ext).info(missing, dir / ("missing." + ext), 0), kOpenError);
    EXPECT_EQ(Row(ext).read(missing, dir / ("missing." + ext)), kOpenError);

    const test::Picture p = test::Pattern(c.width, c.depth, c.bits);
    const std::string path = dir / ("Rec." + ext);
    ASSERT_EQ(test::WritePicture(p, path), kOk);
    ImageInfo info;
    info.fileName = "stale";
    info.background = 9;
    ASSERT_EQ(Row(ext).info(info, path, 0), kOk);
    EXPECT_EQ(info.fileName, "Rec." + ext);
    EXPECT_EQ(info.background, 0u);
    EXPECT_EQ(info.fileSize, int32_t(std::filesystem::file_size(path)));
    const test::Decoded d = test::DecodeFile(path, 2);
    EXPECT_EQ(d.readCode, kCancelled);
    EXPECT_EQ(d.order, (std::vector<int32_t>{0, 1}));

    ImageInfo out;
    out.width = p.width;
    out.depth = p.depth;
    out.bits = p.bits;
    out.palette = p.palette;
    int asked = 0;
    out.getLine = [&](std::span<uint8_t> row, int32_t y) {
      std::copy(p.rows[size_t(y)].begin(), p.rows[size_t(y)].end(), row.begin());
      return ++asked == 3 ? 1 : 0;
    };
    EXPECT_EQ(Row(ext).write(out, dir / ("w." + ext)), kCancelled);
    EXPECT_FALSE(std::filesystem::exists(dir / ("w." + ext)));
    EXPECT_EQ(Row(ext).write(out, dir / ("no/such/dir/w." + ext)), kCreateError);
  }
}

}  // namespace
}  // namespace pxm
