// IFF files against netpbm (ImageMagick and GraphicsMagick have no IFF coder in this build):
// files written by ppmtoilbm read by Pixmill as ilbmtoppm decodes them, Pixmill's files read
// back by ilbmtoppm, and the public ILBM samples.
//
// Where Pixmill deliberately differs from the public format, the difference is checked:
// | Files                             | Pixmill                                 | Why            |
// |-----------------------------------|-----------------------------------------|----------------|
// | plane rows of an odd byte count   | rows are not padded to 16 bits, on      | kept behaviour |
// | (width not a multiple of 16)      | reading or writing                      |                |
// | one plane                         | always black and white                  | kept behaviour |
// | HAM, EHB, a mask plane, ACBM,     | not interpreted: planes are colour      | kept behaviour |
// | other compression                 | indices, compression is ByteRun1 or none|                |

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::RgbImage;

constexpr uint32_t kHeight = 4;

bool IlbmDecode(const std::string& path, RgbImage& out) {
  return test::DecodeCommand("ilbmtoppm " + test::ShellQuote(path), out);
}

bool HaveNetpbm() { return test::HaveProgram("ppmtoilbm") && test::HaveProgram("ilbmtoppm"); }

TEST(IffOracle, NetpbmFilesReadAsNetpbmDecodesThem) {
  PXM_REQUIRE_ORACLE(HaveNetpbm(), "netpbm");
  struct Variant {
    const char* options;
    uint32_t colours;
  };
  const Variant variants[] = {{"", 2},   {"", 16},   {"", 200},  {"-24force", 0},
                              {"-maxplanes 8", 0}};
  test::TempDir dir;
  for (const char* coding : {"-compress", "-nocompress"})
    for (const Variant& v : variants)
      for (uint32_t width : {16u, 48u}) {
        SCOPED_TRACE(testing::Message() << coding << " " << v.options << " " << v.colours
                                        << " colours, width " << width);
        test::WritePpm(dir / "in.ppm", test::Scene(width, kHeight, v.colours), width, kHeight);
        // -maxplanes 8 on a truecolour scene makes netpbm reduce it to 256 colours first.
        const std::string quant = v.colours == 0 && std::string(v.options) != "-24force"
                                      ? "pnmquant 256 " + test::ShellQuote(dir / "in.ppm") + " 2>/dev/null | "
                                      : "cat " + test::ShellQuote(dir / "in.ppm") + " | ";
        const std::string out = dir / "out.iff";
        ASSERT_EQ(test::Run(quant + "ppmtoilbm " + coding + " " + v.options + " >" +
                            test::ShellQuote(out) + " 2>/dev/null"),
                  0);
        RgbImage want;
        ASSERT_TRUE(IlbmDecode(out, want));
        EXPECT_TRUE(test::ReadsAs(out, want));
      }
}

TEST(IffOracle, OddByteRowsAreNotPadded) {
  PXM_REQUIRE_ORACLE(HaveNetpbm(), "netpbm");
  test::TempDir dir;
  // netpbm pads a 20-pixel plane row to 4 bytes; Pixmill takes rows of 3 bytes from the same
  // body, so its row r is body bytes 3r to 3r + 2.
  const uint32_t width = 20;
  test::WritePpm(dir / "in.ppm", test::Scene(width, kHeight, 2), width, kHeight);
  ASSERT_EQ(test::Run("ppmtoilbm -nocompress " + test::ShellQuote(dir / "in.ppm") + " >" +
                      test::ShellQuote(dir / "n.iff") + " 2>/dev/null"),
            0);
  const std::string f = test::ReadFileBytes(dir / "n.iff");
  const std::string body = f.substr(f.find("BODY") + 8, 4 * kHeight);
  test::Picture p;
  ASSERT_EQ(test::ReadPicture(dir / "n.iff", p), kOk);
  for (uint32_t y = 0; y < kHeight; ++y)
    EXPECT_EQ(std::string(p.rows[y].begin(), p.rows[y].begin() + 3), body.substr(3 * y, 3)) << y;

  // The other way round, netpbm reads Pixmill's 3-byte rows as 4-byte ones and slips.
  ASSERT_EQ(test::WritePicture(test::PictureOf(test::Scene(width, kHeight, 2), width, kHeight, 1),
                               dir / "p.iff"),
            0);
  RgbImage netpbm;
  if (IlbmDecode(dir / "p.iff", netpbm)) {
    EXPECT_FALSE(test::SameImage(test::Scene(width, kHeight, 2), netpbm, width, kHeight));
  }
}

TEST(IffOracle, PixmillFilesReadBackByNetpbm) {
  PXM_REQUIRE_ORACLE(HaveNetpbm(), "netpbm");
  test::TempDir dir;
  for (bool compressed : {false, true})
    for (bool pbm : {false, true})
      for (auto [bits, colours] : {std::pair{1u, 2u}, {4u, 16u}, {8u, 200u}, {24u, 0u}})
        for (uint32_t width : {16u, 48u}) {
          SCOPED_TRACE(testing::Message() << bits << " bits, width " << width
                                          << (compressed ? " compressed" : "")
                                          << (pbm ? " PBM" : ""));
          ScopedSettings settings;
          settings->CreateIffCompressed = compressed;
          settings->CreateIffPBM = pbm;
          const std::vector<Rgb> scene = test::Scene(width, kHeight, colours);
          ASSERT_EQ(test::WritePicture(test::PictureOf(scene, width, kHeight, bits), dir / "p.iff"),
                    kOk);
          RgbImage netpbm;
          ASSERT_TRUE(IlbmDecode(dir / "p.iff", netpbm));
          EXPECT_TRUE(test::SameImage(scene, netpbm, width, kHeight));
        }
}

TEST(IffOracle, PublicSamples) {
  const std::string root = test::TestDataDir();
  if (root.empty()) GTEST_SKIP() << "no public test suites";
  PXM_REQUIRE_ORACLE(test::HaveProgram("ilbmtoppm"), "netpbm");
  for (const char* file : {"zigimg/sample-ilbm-8bit-compressed.iff", "zigimg/sample-pbm.iff",
                           "libilbm/lines.LBM", "amigaffh/ilbm8lores.iff"}) {
    SCOPED_TRACE(file);
    RgbImage want;
    ASSERT_TRUE(IlbmDecode(root + "/ilbm/" + file, want));
    EXPECT_TRUE(test::ReadsAs(root + "/ilbm/" + file, want));
  }
  // Kinds Pixmill does not interpret are still read to the end or refused with a code (under
  // an extension of the IFF row).
  test::TempDir dir;
  for (const char* file : {"zigimg/sample-ehb.iff", "zigimg/sample-ham.iff",
                           "zigimg/sample-24bit.iff", "libilbm/bars-padded.ILBM",
                           "zigimg/sample-ilbm-4bit-compressed-atari.iff"}) {
    SCOPED_TRACE(file);
    test::WriteFileBytes(dir / "s.iff", test::ReadFileBytes(root + "/ilbm/" + file));
    test::Picture p;
    const int code = test::ReadPicture(dir / "s.iff", p);
    EXPECT_TRUE(code == kOk || code == kReadError) << code;
  }
  // ACBM forms hold their planes in an ABIT chunk: no BODY is found.
  test::WriteFileBytes(dir / "a.iff", test::ReadFileBytes(root + "/ilbm/zigimg/sample-8bit.acbm"));
  test::Picture p;
  EXPECT_EQ(test::ReadPicture(dir / "a.iff", p), kReadError);
}

}  // namespace
}  // namespace pxm
