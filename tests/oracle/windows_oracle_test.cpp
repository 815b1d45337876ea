// Windows run-length bitmaps, icons and libraries against the public samples and other programs:
// the run-length samples as their uncompressed twins, the icon samples as Pillow shows them, the
// pictures of libraries as wrestool and icotool extract them. Files other programs write and read
// in both directions are in the oracle matrix.

#include <gtest/gtest.h>

#include <filesystem>

#include "core/error_codes.h"
#include "support/icon_files.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;
using test::ShellQuote;

TEST(WindowsOracle, RunLengthSamplesReadAsTheirUncompressedTwins) {
  const std::string root = test::TestDataDir();
  if (root.empty()) GTEST_SKIP() << "no public test data";
  test::TempDir dir;
  for (auto [runs, plain, bits] : {std::tuple{"testcompress4.bmp", "reference/test4.bmp", 4u},
                                   {"testcompress8.bmp", "reference/test8.bmp", 8u}}) {
    SCOPED_TRACE(runs);
    fs::copy_file(root + "/bmp-rle/" + runs, dir / "s.rle", fs::copy_options::overwrite_existing);
    test::Picture got, want;
    ASSERT_EQ(test::ReadPicture(dir / "s.rle", got), kOk);
    ASSERT_EQ(test::ReadPicture(root + "/bmp-rle/" + plain, want), kOk);
    EXPECT_EQ(got.bits, bits);
    EXPECT_EQ(test::Colours(got), test::Colours(want));
  }
  // The run-length files of the bitmap suite read through this row as through the bitmap row,
  // whose reading the suite's references check; the bad ones give the same codes.
  for (const char* name :
       {"g/pal4rle", "g/pal8rle", "q/pal4rlecut", "q/pal8rletrns", "b/badrle", "b/badrle4",
        "b/badrle4bis", "b/badrle4ter", "b/badrleter", "b/rletopdown"}) {
    SCOPED_TRACE(name);
    const std::string bmp = root + "/bmpsuite/" + name + ".bmp";
    fs::copy_file(bmp, dir / "b.rle", fs::copy_options::overwrite_existing);
    test::Picture asRle, asBmp;
    const int code = test::ReadPicture(dir / "b.rle", asRle);
    ASSERT_EQ(code, test::ReadPicture(bmp, asBmp));
    if (code == kOk) {
      EXPECT_EQ(test::Colours(asRle), test::Colours(asBmp));
    }
  }
}

TEST(WindowsOracle, IconSamplesAsPillowShowsThem) {
  const std::string root = test::TestDataDir() + "/ico/";
  if (!fs::is_directory(root)) GTEST_SKIP() << "no public test data";
  PXM_REQUIRE_ORACLE(test::HavePillow(), "Pillow");
  test::TempDir dir;
  size_t compared = 0;
  for (const std::string& file : test::FilesUnder(root)) {
    const std::string name = fs::path(file).filename();
    SCOPED_TRACE(name);
    // Cursors share the icon layout and are read under the icon row.
    const std::string copy = dir / (name + ".ico");
    fs::copy_file(file, copy);
    test::Picture p;
    if (name == "decompression_bomb.ico") {
      EXPECT_EQ(test::ReadPicture(copy, p), kCorruptedFile);  // 65535 x 65535 in 198 bytes
    } else if (name == "no_cursors.cur") {
      EXPECT_EQ(test::ReadPicture(copy, p), kNoBitmap);
    } else {
      test::RgbImage want;
      ASSERT_TRUE(test::PillowDecode(file, want));
      EXPECT_TRUE(test::ReadsAs(copy, want));
      ++compared;
    }
  }
  EXPECT_GE(compared, 9u);
}

TEST(WindowsOracle, LibraryPicturesAsWrestoolAndIcotoolExtractThem) {
  for (const char* program : {"wrestool", "icotool", "pngtopnm", "bmptopnm"})
    PXM_REQUIRE_ORACLE(test::HaveProgram(program), program);
  const auto pattern = [](uint32_t bits) {
    return [bits](uint32_t x, int32_t y) {
      const uint32_t v = 11 * x + 5 * static_cast<uint32_t>(y) + 3;
      return bits > 8 ? v * 0x030507 & 0xFFFFFF : v % (1u << bits);
    };
  };
  const auto icon = [&](uint32_t w, uint32_t bits) {
    return test::IconBitmap(w, static_cast<int32_t>(w), bits, pattern(bits));
  };
  const auto bitmap = [&](uint32_t w, int32_t h, uint32_t bits) {
    return test::DibBytes(w, h, bits, pattern(bits), false);
  };
  std::vector<test::LibraryResource> resources = {
      {3, 1, icon(16, 4)},       {3, 2, icon(32, 8)},       {3, 3, icon(24, 32)},
      {3, 4, icon(32, 1)},       {2, 10, bitmap(13, 7, 8)}, {2, 11, bitmap(6, 5, 24)},
      {2, 12, bitmap(17, 3, 4)}, {2, 13, bitmap(33, 2, 1)}};
  resources.push_back({14, 1, test::IconGroup({1, 2, 3}, resources)});
  resources.push_back({14, 2, test::IconGroup({4}, resources)});
  // Pictures in Pixmill's order: the groups' icons, then the bitmaps; how each is extracted.
  std::vector<std::string> extract;
  for (const char* member : {"1 --index=1", "1 --index=2", "1 --index=3", "2 --index=1"})
    extract.push_back("wrestool -x --type=14 --name=" + std::string(member, 1) +
                      " %f | icotool -x " + (member + 2) + " -o - - | pngtopnm");
  for (int id = 10; id <= 13; ++id)
    extract.push_back("wrestool -x --type=2 --name=" + std::to_string(id) + " %f | bmptopnm");
  test::TempDir dir;
  for (auto [name, file] : {std::pair{"l32.dll", test::PeLibrary(resources, false)},
                            {"l64.dll", test::PeLibrary(resources, true)},
                            {"l16.vbx", test::NeLibrary(resources)}}) {
    SCOPED_TRACE(name);
    test::WriteFileBytes(dir / name, file);
    for (uint32_t i = 0; i < extract.size(); ++i) {
      SCOPED_TRACE(extract[i]);
      std::string command = extract[i];
      command.replace(command.find("%f"), 2, ShellQuote(dir / name));
      test::RgbImage want;
      ASSERT_TRUE(test::DecodeWith("(" + command + ") 2>/dev/null", want));
      test::Picture got;
      ASSERT_EQ(test::ReadPicture(dir / name, got, nullptr, nullptr, i), kOk);
      // A one-bit bitmap's colours are those of its table, as for one-bit icons.
      EXPECT_TRUE(test::SameColours(got, want));
    }
  }
}

}  // namespace
}  // namespace pxm
