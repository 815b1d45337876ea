#include "formats/cut.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/error_codes.h"
#include "core/host.h"
#include "formats/format_table.h"
#include "support/decoded.h"

namespace pxm {
namespace {

using test::Le;
using test::Raw;
using Bytes = std::vector<uint8_t>;
using Codes = std::pair<int, int>;
namespace fs = std::filesystem;

std::string Cut(uint32_t width, uint32_t height, const std::vector<std::string>& rows) {
  std::string out = Le(width, 2) + Le(height, 2) + Le(0, 2);
  for (const std::string& r : rows) out += Le(uint32_t(r.size()), 2) + r;
  return out;
}

// A palette file: the 40-byte header, then entries of three words that never straddle a
// 512-byte block.
std::string Pal(const std::vector<Rgb>& entries, uint32_t max) {
  std::string out = "AH" + Le(0, 2) + Le(0, 2) + Raw({0x0A, 0}) + Le(0, 4) +
                    Le(uint32_t(entries.size() - 1), 2) + Le(max, 2) + Le(max, 2) + Le(max, 2) +
                    std::string("Dr. Halo") + std::string(12, '\0');
  for (const Rgb& e : entries) {
    if (out.size() % 512 > 506) out.resize(out.size() + 512 - out.size() % 512, '\0');
    out += Le(e.red, 2) + Le(e.green, 2) + Le(e.blue, 2);
  }
  return out;
}

TEST(CutRead, RunsRowsAndThePaletteFileBeside) {
  test::TempDir dir;
  // A repeat of three, two bytes as they are, the end; a run past the width is cut; a row that
  // ends early leaves the background.
  const std::string file =
      Cut(5, 3, {Raw({0x83, 7, 0x02, 1, 9, 0}), Raw({0x85, 4, 0x83, 5, 0}), Raw({0x01, 6, 0})});
  test::Decoded d = test::DecodeBytes(dir, "a.cut", file);
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.bits, 8u);
  EXPECT_EQ(d.rows.at(0), (Bytes{7, 7, 7, 1, 9}));
  EXPECT_EQ(d.rows.at(1), (Bytes{4, 4, 4, 4, 4}));
  EXPECT_EQ(d.rows.at(2), (Bytes{6, 0, 0, 0, 0}));
  // No palette file: a grey ramp.
  EXPECT_EQ(d.info.palette[200], (Rgb{200, 200, 200}));
  EXPECT_EQ(d.info.description, "Dr. Halo picture, grey");

  // Levels scaled from the file's largest; entry 78 is moved to the second 512-byte block.
  std::vector<Rgb> entries(100, Rgb{1, 2, 3});
  entries[1] = Rgb{63, 20, 0};
  entries[78] = Rgb{10, 30, 63};
  for (const char* name : {"a.pal", "A.PAL"}) {
    SCOPED_TRACE(name);
    for (const auto& f : fs::directory_iterator(dir.path()))
      if (f.path().extension() != ".cut") fs::remove(f.path());
    test::WriteFileBytes(dir / name, Pal(entries, 63));
    d = test::DecodeBytes(dir, "a.cut", file);
    EXPECT_EQ(d.info.palette[1], (Rgb{255, 80, 0}));
    EXPECT_EQ(d.info.palette[78], (Rgb{40, 121, 255}));
    EXPECT_EQ(d.info.palette[100], (Rgb{100, 100, 100}));  // past the last entry
    EXPECT_EQ(d.info.description, "Dr. Halo picture with its palette file");
  }
  // A file of another kind under that name leaves the grey ramp.
  test::WriteFileBytes(dir / "A.PAL", "JASC-PAL\r\n0100\r\n");
  EXPECT_EQ(test::DecodeBytes(dir, "a.cut", file).info.palette[1], (Rgb{1, 1, 1}));
}

TEST(CutRead, DamagedFiles) {
  test::TempDir dir;
  auto codes = [&](const std::string& bytes) {
    const test::Decoded d = test::DecodeBytes(dir, "d.cut", bytes);
    return std::pair(d.infoCode, d.readCode);
  };
  EXPECT_EQ(codes(Le(0, 2) + Le(3, 2) + Le(0, 2)).first, kCorruptedFile);
  EXPECT_EQ(codes(Le(3, 2)).first, kCorruptedFile);
  // The largest picture the header can declare, in about 200 bytes.
  EXPECT_EQ(codes(Cut(65535, 65535, {std::string(190, '\x81')})).first, kCorruptedFile);
  // A row's length word that runs past the end of the file; rows missing.
  const std::string row = Raw({0x82, 1, 0});
  EXPECT_EQ(codes(Cut(2, 2, {row, row}).substr(0, 14)), Codes(kOk, kReadError));
  EXPECT_EQ(codes(Cut(2, 3, {row + std::string(10, '\0')})), Codes(kOk, kReadError));
}

TEST(CutWrite, RowsPaletteFileAndRoundTrips) {
  test::TempDir dir;
  test::Picture p = test::Picture::Blank(130, 1, 8);
  for (uint32_t x = 0; x < 130; ++x) p.SetPixel(x, 0, x < 2 ? 5 + x : 9);
  p.palette[1] = Rgb{10, 20, 30};
  ASSERT_EQ(test::WritePicture(p, dir / "w.cut"), kOk);
  // Two bytes as they are, then runs of 127 and 1 ... of which the last goes as it is.
  EXPECT_EQ(test::ReadFileBytes(dir / "w.cut"),
            Cut(130, 1, {Raw({0x02, 5, 6, 0xFF, 9, 0x01, 9, 0})}));
  const std::string pal = test::ReadFileBytes(dir / "w.pal");
  // 78 entries fill the first block, 85 each of the next two, 8 the fourth.
  ASSERT_EQ(pal.size(), 3 * 512u + 8 * 6);
  EXPECT_EQ(pal.substr(0, 28), "AH" + Le(0, 2) + Le(uint32_t(pal.size() - 40), 2) + Raw({0x0A, 0}) +
                                   Le(0, 4) + Le(255, 2) + Le(255, 2) + Le(255, 2) + Le(255, 2) +
                                   "Dr. Halo");
  EXPECT_EQ(pal.substr(46, 6), Le(10, 2) + Le(20, 2) + Le(30, 2));
  // An upper-case name gets an upper-case palette file.
  ASSERT_EQ(test::WritePicture(p, dir / "UP.CUT"), kOk);
  EXPECT_TRUE(fs::exists(dir / "UP.PAL"));

  for (uint32_t bits : {1u, 4u, 8u})
    for (auto [w, h] : {std::pair{1u, 1}, {7u, 3}, {300u, 4}}) {
      SCOPED_TRACE(std::to_string(bits) + " bits, width " + std::to_string(w));
      EXPECT_TRUE(test::RoundTrips(test::Pattern(w, h, bits), dir / "r.cut", 8));
    }
  EXPECT_EQ(test::WritePicture(test::Pattern(3, 3, 24), dir / "t.cut"), kTooManyColours);
}

}  // namespace
}  // namespace pxm
