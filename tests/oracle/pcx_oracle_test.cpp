// The public PCX samples, read as netpbm decodes them (one-bit files in black and white, D9).
// Files of other programs are in the oracle matrix.

#include <gtest/gtest.h>

#include <filesystem>

#include "core/error_codes.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;

TEST(PcxOracle, PublicSamples) {
  const std::string root = test::TestDataDir() + "/pcx/";
  if (!fs::is_directory(root)) GTEST_SKIP() << "no public test data";
  PXM_REQUIRE_ORACLE(test::HaveProgram("pcxtoppm"), "netpbm");
  // (Pillow takes the planes of p_4_planes.pcx in another order; netpbm and ImageMagick agree.)
  for (const char* name : {"pillow/pil184.pcx", "pillow/odd_stride.pcx", "pillow/p_4_planes.pcx",
                           "sdl_image/sample.pcx"}) {
    test::RgbImage want;
    ASSERT_TRUE(test::DecodeWith("pcxtoppm " + test::ShellQuote(root + name), want)) << name;
    const std::string f = test::ReadFileBytes(root + name);
    if (f[3] == 1 && f[65] == 1) {  // one bit, one plane: index 0 black, whatever the header says
      const Rgb first{static_cast<uint8_t>(f[16]), static_cast<uint8_t>(f[17]),
                      static_cast<uint8_t>(f[18])};
      for (Rgb& c : want.pixels) c = c == first ? Rgb{0, 0, 0} : Rgb{255, 255, 255};
    }
    EXPECT_TRUE(test::ReadsAs(root + name, want)) << name;
  }
  // A fuzzer's file of 32 bits a pixel and no bytes a line cannot give its first line. The overrun
  // sample (read under a PCX name) is a 256-pixel line of two one-byte planes: by the rules, zeros.
  test::TempDir dir;
  fs::copy_file(root + "pillow/pcx_overrun2.bin", dir / "overrun.pcx");
  test::Picture p;
  EXPECT_EQ(test::ReadPicture(root + "pillow/ossfuzz-4836216264589312.pcx", p), kReadError);
  EXPECT_EQ(test::ReadPicture(dir / "overrun.pcx", p), kOk);
}

}  // namespace
}  // namespace pxm
