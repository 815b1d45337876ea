// Bitmap files against other programs: files written by ImageMagick, netpbm and Pillow read by
// Pixmill as those programs decode them, Pixmill's files read back by them, and the public
// bitmap suites. Where Pixmill's rules deliberately differ from the public format, the
// difference itself is checked.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "config/settings.h"
#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/image_store.h"
#include "core/row_format.h"
#include "core/sinks.h"
#include "formats/format_table.h"
#include "support/netpbm.h"
#include "support/picture.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;
using test::Picture;
using test::RgbImage;

const std::string kMagick = "convert-im6.q16";
const std::string kPython = "/usr/bin/python3";
const Rgb kBlack{0, 0, 0};
const Rgb kWhite{255, 255, 255};

bool AllowMissing() {
  const char* v = std::getenv("PXM_ALLOW_MISSING_ORACLES");
  return v && std::string(v) == "1";
}

bool HavePillow() {
  return test::Run(kPython + " -c 'import PIL' >/dev/null 2>&1") == 0;
}

// An oracle that is not installed fails the test: a silent skip would pass without checking.
#define PXM_REQUIRE(available, what)                                        \
  do {                                                                      \
    if (!(available)) {                                                     \
      if (AllowMissing()) GTEST_SKIP() << (what) << " is not installed";    \
      FAIL() << (what) << " is needed (PXM_ALLOW_MISSING_ORACLES=1 skips)"; \
    }                                                                       \
  } while (0)

// Runs a command that writes a netpbm picture to its standard output.
bool Decode(const std::string& command, RgbImage& out) {
  std::string bytes;
  return test::RunCapture(command + " 2>/dev/null", bytes) == 0 && test::ParseNetpbm(bytes, out);
}
bool MagickDecode(const std::string& path, RgbImage& out) {
  return Decode(kMagick + " " + test::ShellQuote(path) + " -depth 8 ppm:-", out);
}
bool NetpbmDecode(const std::string& path, RgbImage& out) {
  return Decode("bmptopnm " + test::ShellQuote(path), out);
}
bool PillowDecode(const std::string& path, RgbImage& out) {
  const std::string script =
      "import sys\nfrom PIL import Image\nim = Image.open(sys.argv[1]).convert('RGB')\n"
      "sys.stdout.buffer.write(b'P6\\n%d %d\\n255\\n' % im.size + im.tobytes())\n";
  return Decode(kPython + " -c " + test::ShellQuote(script) + " " + test::ShellQuote(path), out);
}

// A made-up scene of `colours` distinct colours (grey levels when `grey`; black and white when
// two), each used where the pixels allow, or of any colours when `colours` is 0.
std::vector<Rgb> Scene(uint32_t width, uint32_t height, uint32_t colours, bool grey = false) {
  std::vector<Rgb> out;
  uint32_t state = width * 7919u + height * 104729u + colours;
  for (uint32_t n = 0; n < width * height; ++n) {
    state = state * 1664525u + 1013904223u;
    const uint32_t r = state >> 8;
    const uint32_t i = colours == 0 ? r : n < colours ? n : r % colours;
    auto c = [](uint32_t v) { return static_cast<uint8_t>(v); };
    if (colours == 2)
      out.push_back(i ? kWhite : kBlack);
    else if (grey)
      out.push_back(Rgb{c(i), c(i), c(i)});
    else if (colours == 0)
      out.push_back(Rgb{c(r), c(r >> 8), c(r >> 16)});
    else
      out.push_back(Rgb{c(i * 37), c(i * 91 + 11), c(i * 151 + 7)});
  }
  return out;
}

void WritePpm(const std::string& path, const std::vector<Rgb>& pixels, uint32_t width,
              uint32_t height) {
  std::string s = "P6\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n";
  for (const Rgb& c : pixels)
    s += {static_cast<char>(c.red), static_cast<char>(c.green), static_cast<char>(c.blue)};
  test::WriteFileBytes(path, s);
}

testing::AssertionResult Same(const std::vector<Rgb>& got, const RgbImage& want, uint32_t width,
                              uint32_t height) {
  if (want.width != width || want.height != height)
    return testing::AssertionFailure() << "oracle size " << want.width << "x" << want.height;
  for (size_t i = 0; i < got.size(); ++i)
    if (!(got[i] == want.pixels[i])) {
      const Rgb &a = got[i], &b = want.pixels[i];
      return testing::AssertionFailure()
             << "first difference at " << i % width << "," << i / width << ": Pixmill " << +a.red
             << "/" << +a.green << "/" << +a.blue << ", oracle " << +b.red << "/" << +b.green << "/"
             << +b.blue;
    }
  return testing::AssertionSuccess();
}

// Pixmill reads the file as the oracle decoded it. Info always reads 54 header bytes, so the
// smallest OS/2 files are refused as damaged instead.
testing::AssertionResult ReadsAs(const std::string& path, const RgbImage& want, uint32_t width,
                                 uint32_t height) {
  Picture p;
  int code = test::ReadPicture(path, p);
  if (fs::file_size(path) < 54) {
    if (code == kCorruptedFile) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "a file under 54 bytes answers " << code;
  }
  if (code != kOk) return testing::AssertionFailure() << "Pixmill answers " << code;
  return Same(test::Colours(p), want, width, height);
}

// Bit count and compression of a bitmap file, and whether its header is the OS/2 one.
std::tuple<bool, uint32_t, uint32_t> Kind(const std::string& path) {
  std::string h = test::ReadFileBytes(path).substr(0, 54);
  if (h.size() < 26) return {false, 0, 0};
  const auto* b = reinterpret_cast<const uint8_t*>(h.data());
  if (LoadLe32(b + 14) == 12) return {true, LoadLe16(b + 24), 0};
  if (h.size() < 54) return {false, 0, 0};
  return {false, LoadLe16(b + 28), LoadLe32(b + 30)};
}

const uint32_t kWidths[] = {1, 7, 8, 9, 31, 33};

TEST(BmpOracle, ImageMagickFilesReadAsImageMagickDecodesThem) {
  PXM_REQUIRE(test::HaveProgram(kMagick), kMagick);
  PXM_REQUIRE(HavePillow(), "Pillow");
  struct Variant {
    const char* format;
    const char* options;
    uint32_t colours;
    bool grey;
  };
  const Variant variants[] = {
      // ImageMagick compresses 8-bit files unless told not to.
      {"BMP3", "-type palette", 4, false},
      {"BMP3", "-type palette -compress none", 200, false},
      {"BMP3", "-type palette -compress none", 256, true},
      {"BMP3", "-type palette -compress RLE", 200, false},
      {"BMP3", "-type palette -compress RLE", 4, false},
      {"BMP3", "-type truecolor", 0, false},
      {"BMP3", "-type grayscale", 256, true},
      {"BMP3", "-type bilevel", 2, false},
      {"BMP2", "-type palette", 4, false},
      {"BMP2", "-type palette", 200, false},
      {"BMP2", "-type truecolor", 0, false},
      {"BMP2", "-type bilevel", 2, false},
  };
  test::TempDir dir;
  std::set<std::tuple<bool, uint32_t, uint32_t>> seen;
  for (const Variant& v : variants)
    for (uint32_t width : kWidths) {
      SCOPED_TRACE(testing::Message() << v.format << " " << v.options << " " << v.colours
                                      << " colours, width " << width);
      const uint32_t height = 5;
      WritePpm(dir / "in.ppm", Scene(width, height, v.colours, v.grey), width, height);
      const std::string out = dir / "out.bmp";
      ASSERT_EQ(test::Run(kMagick + " " + test::ShellQuote(dir / "in.ppm") + " " + v.options + " " +
                          v.format + ":" + test::ShellQuote(out)),
                0);
      seen.insert(Kind(out));
      // ImageMagick's own reader misplaces the runs it writes for row padding; Pillow decodes
      // its run-length files as the format says.
      const bool rle = std::get<2>(Kind(out)) != 0;
      RgbImage want;
      ASSERT_TRUE(rle ? PillowDecode(out, want) : MagickDecode(out, want));
      EXPECT_TRUE(ReadsAs(out, want, width, height));
    }
  // Every depth with both headers, and 8-bit run-length files, were among them.
  for (auto kind : {std::tuple{false, 1u, 0u},
                    {false, 4u, 0u},
                    {false, 8u, 0u},
                    {false, 24u, 0u},
                    {false, 8u, 1u},
                    {true, 1u, 0u},
                    {true, 4u, 0u},
                    {true, 8u, 0u},
                    {true, 24u, 0u}})
    EXPECT_EQ(seen.count(kind), 1u)
        << std::get<0>(kind) << " " << std::get<1>(kind) << " " << std::get<2>(kind);
}

TEST(BmpOracle, NetpbmFilesReadAsNetpbmDecodesThem) {
  PXM_REQUIRE(test::HaveProgram("ppmtobmp") && test::HaveProgram("bmptopnm"), "netpbm");
  test::TempDir dir;
  for (const char* header : {"-windows", "-os2"})
    for (auto [bpp, colours] : {std::pair{1u, 2u}, {4u, 16u}, {8u, 200u}, {24u, 0u}})
      for (uint32_t width : kWidths) {
        SCOPED_TRACE(testing::Message() << header << " -bpp " << bpp << ", width " << width);
        const uint32_t height = 4;
        WritePpm(dir / "in.ppm", Scene(width, height, colours), width, height);
        const std::string out = dir / "out.bmp";
        ASSERT_EQ(test::Run("ppmtobmp " + std::string(header) + " -bpp " + std::to_string(bpp) +
                            " " + test::ShellQuote(dir / "in.ppm") + " >" + test::ShellQuote(out) +
                            " 2>/dev/null"),
                  0);
        ASSERT_EQ(std::get<1>(Kind(out)), bpp);
        RgbImage want;
        ASSERT_TRUE(NetpbmDecode(out, want));
        EXPECT_TRUE(ReadsAs(out, want, width, height));
      }
}

TEST(BmpOracle, PixmillFilesReadByImageMagickPillowAndNetpbm) {
  PXM_REQUIRE(test::HaveProgram(kMagick), kMagick);
  PXM_REQUIRE(test::HaveProgram("bmptopnm"), "netpbm");
  PXM_REQUIRE(HavePillow(), "Pillow");
  test::TempDir dir;
  for (bool os2 : {false, true})
    for (uint32_t bits : {1u, 3u, 4u, 6u, 8u, 24u})
      for (uint32_t width : kWidths) {
        SCOPED_TRACE(testing::Message()
                     << (os2 ? "OS/2 " : "Windows ") << bits << " bits, width " << width);
        ScopedSettings settings;
        settings->WriteOS2Bitmaps = os2 ? 1 : 0;
        Picture p = test::Pattern(width, 6, bits, width);
        const std::string path = dir / "p.bmp";
        ASSERT_EQ(test::WritePicture(p, path), kOk);
        std::vector<Rgb> want = test::Colours(p);
        // One-bit files always carry black and white, whatever the picture's palette.
        if (bits == 1)
          for (size_t i = 0; i < want.size(); ++i)
            want[i] = p.Pixel(static_cast<uint32_t>(i % width), static_cast<int32_t>(i / width))
                          ? kWhite
                          : kBlack;
        RgbImage got;
        ASSERT_TRUE(PillowDecode(path, got));
        EXPECT_TRUE(Same(want, got, width, 6)) << "Pillow";
        ASSERT_TRUE(NetpbmDecode(path, got));
        EXPECT_TRUE(Same(want, got, width, 6)) << "netpbm";
        if (bits == 24 && !os2) {
          // ImageMagick takes the colour count of 16777216 for a colour table that the file
          // cannot hold, and refuses the file.
          std::string message;
          EXPECT_NE(test::RunCapture(
                        kMagick + " " + test::ShellQuote(path) + " ppm:- 2>&1 >/dev/null", message),
                    0);
          EXPECT_NE(message.find("insufficient image data"), std::string::npos) << message;
        } else {
          ASSERT_TRUE(MagickDecode(path, got));
          EXPECT_TRUE(Same(want, got, width, 6)) << "ImageMagick";
        }
      }
}

// How Pixmill's reading of a public suite file relates to the suite's reference rendering.
enum class Rule {
  kSame,           // the rules agree with the public format
  kBlackWhite,     // one bit: the colour table is ignored, index 0 shows black and 1 white
  kTableAt54,      // the colour table is taken from offset 54 whatever the header's size
  kEveryOther555,  // 16 bits: output pixel x is file pixel 2x, five-bit channels times 8
  kDiffers,        // 2-bit files, 32-bit and bit-field layouts are not read as the format says
};

// Files of the suites by the rule they follow (under the test data folder, ".bmp" left off).
const std::pair<Rule, const char*> kCompared[] = {
    {Rule::kSame,
     "bmpsuite/g/pal1 bmpsuite/g/pal4 bmpsuite/g/pal4gs bmpsuite/g/pal4rle bmpsuite/g/pal8-0 "
     "bmpsuite/g/pal8gs bmpsuite/g/pal8nonsquare bmpsuite/g/pal8os2 bmpsuite/g/pal8rle "
     "bmpsuite/g/pal8w124 bmpsuite/g/pal8w125 bmpsuite/g/rgb24pal bmpsuite/q/pal8offs "
     "bmpsuite/q/pal8os2-hs bmpsuite/q/pal8os2-sz bmpsuite/q/pal8os2sp bmpsuite/q/pal8os2v2-40sz "
     "bmpsuite/q/pal8oversizepal bmpsuite/q/rgb24largepal bmpsuite/q/rgb24lprof "
     "bmp-image-rs/Core_4_Bit bmp-image-rs/Info_R8_G8_B8 "
     // Rows after an early end mark, and pixels a delta skips, stay index 0.
     "bmpsuite/q/pal4rlecut bmpsuite/q/pal8rletrns"},
    {Rule::kBlackWhite, "bmpsuite/g/pal1bg bmp-image-rs/Info_1_Bit bmp-image-rs/Core_1_Bit"},
    {Rule::kTableAt54,
     "bmpsuite/g/pal8v4 bmpsuite/g/pal8v5 bmpsuite/q/pal8os2v2 bmpsuite/q/pal8os2v2-sz"},
    {Rule::kEveryOther555,
     "bmpsuite/g/rgb16 bmpsuite/g/rgb16bfdef bmpsuite/q/rgb16faketrns "
     "bmp-image-rs/Info_X1_R5_G5_B5"},
    {Rule::kDiffers,
     "bmpsuite/q/pal1p1 bmpsuite/q/pal2 bmpsuite/q/pal2color bmpsuite/g/rgb16-565 bmpsuite/g/rgb32 "
     "bmpsuite/g/rgb32bf bmpsuite/q/rgba32-1010102 bmp-image-rs/Info_A8_R8_G8_B8"},
};

// Files refused outright, with their code.
const std::pair<int, const char*> kRefused[] = {
    // Top-down rows (a negative height).
    {kUnsupportedFormat,
     "bmp-image-rs/Info_1_Bit_Top_Down bmp-image-rs/Info_8_Bit_Top_Down bmp-image-rs/V4_R5_G6_B5 "
     "bmp-image-rs/V5_A8_R8_G8_B8_Rgb bmpsuite/b/rletopdown"},
    // A colour table shorter than 2^bits entries runs past the end of a small file; rows cannot
    // all be in the file (embedded PNG and 24-bit runs are not decoded, damaged sizes); a bitmap
    // array is not a bitmap.
    {kCorruptedFile,
     "bmp-image-rs/Info_4_Bit bmp-image-rs/lenient/rle_overflow bmpsuite/q/rgb24png "
     "bmpsuite/q/rgb24rle24 bmpsuite/b/shortfile bmpsuite/b/reallybig bmpsuite/b/badwidth "
     "bmpsuite/b/badbitcount bmpsuite/x/ba-bm"},
};

std::vector<std::string> Names(const char* list) {
  std::istringstream in(list);
  std::vector<std::string> names;
  for (std::string name; in >> name;) names.push_back(name + ".bmp");
  return names;
}

// The colour table a bitmap file really has (after its header, whatever its size).
std::vector<Rgb> RealTable(const std::string& file) {
  const auto* b = reinterpret_cast<const uint8_t*>(file.data());
  const uint32_t header = LoadLe32(b + 14);
  const size_t entry = header == 12 ? 3 : 4;
  std::vector<Rgb> table;
  for (size_t at = 14 + header; at + 3 <= LoadLe32(b + 10) && table.size() < 256; at += entry)
    table.push_back(Rgb{b[at + 2], b[at + 1], b[at]});
  return table;
}

// What Pixmill shows for a reference rendering under a rule that is not kSame or kDiffers;
// where the rule leaves a pixel undefined, what Pixmill showed (`got`) is taken.
std::vector<Rgb> Expected(Rule rule, const std::string& file, const RgbImage& ref,
                          const std::vector<Rgb>& got) {
  const auto* b = reinterpret_cast<const uint8_t*>(file.data());
  std::vector<Rgb> table = RealTable(file);
  std::vector<Rgb> out = ref.pixels;
  for (size_t i = 0; i < out.size(); ++i) {
    const Rgb c = ref.pixels[i];
    const size_t index =
        static_cast<size_t>(std::find(table.begin(), table.end(), c) - table.begin());
    if (rule == Rule::kBlackWhite) out[i] = index == 0 ? kBlack : kWhite;
    if (rule == Rule::kTableAt54)
      out[i] = Rgb{b[54 + 4 * index + 2], b[54 + 4 * index + 1], b[54 + 4 * index]};
    if (rule == Rule::kEveryOther555) {
      const size_t x = i % ref.width;
      const size_t rowBytes = (ref.width * 16 + 31) / 32 * 4;
      if (4 * x + 4 > rowBytes) {
        out[i] = got[i];  // past the file's row
        continue;
      }
      const Rgb s = ref.pixels[i + x];
      out[i] = Rgb{static_cast<uint8_t>(s.red & 0xF8), static_cast<uint8_t>(s.green & 0xF8),
                   static_cast<uint8_t>(s.blue & 0xF8)};
    }
  }
  return out;
}

// The accepted reference renderings of the suite files, from the suites' maps.
std::map<std::string, std::vector<std::string>> ReferenceMap(const std::string& root) {
  std::map<std::string, std::vector<std::string>> refs;
  for (const char* suite : {"bmpsuite", "bmp-image-rs"}) {
    std::ifstream map(root + "/" + suite + "/reference-map.tsv");
    std::string line;
    while (std::getline(map, line)) {
      if (line.empty() || line[0] == '#') continue;
      std::istringstream fields(line);
      std::string file, ref;
      fields >> file;
      while (fields >> ref)
        if (ref != "-")
          refs[std::string(suite) + "/" + file].push_back(root + "/" + suite + "/" + ref);
    }
  }
  return refs;
}

// Info and read through one row of the table into a memory picture; a picture above 64 MB is
// only described.
int ReadThrough(int row, const std::string& path, Picture& out) {
  const FormatEntry& entry = FormatAt(row);
  ImageInfo info;
  int code = entry.info(info, path, 0);
  if (code != kOk || StoreBytesPerLine(info.width, info.bits) * uint64_t(info.depth) > (64u << 20))
    return code;
  ImageStore store(SilentHost());
  if ((code = store.Create(info.width, info.depth, info.bits, kStoreMemoryOnly)) != kOk)
    return code;
  info.putLine = PlainRowSink(store);
  if ((code = entry.read(info, path)) != kOk) return code;
  out = Picture::Blank(info.width, info.depth, info.bits);
  out.palette = info.palette;
  for (int32_t y = 0; y < info.depth; ++y) store.GetRowQuiet(out.rows[static_cast<size_t>(y)], y);
  return kOk;
}

TEST(BmpSuites, EveryFileReadsOrGivesAnErrorCode) {
  const std::string root = test::TestDataDir();
  if (root.empty()) GTEST_SKIP() << "no public test data";
  size_t files = 0;
  for (const char* suite : {"bmpsuite", "bmp-image-rs"})
    for (const auto& e : fs::recursive_directory_iterator(root + "/" + suite)) {
      if (e.path().extension() != ".bmp") continue;
      ++files;
      for (const char* extension : {"BMP", "BGA"}) {
        Picture p;
        int code = ReadThrough(FindFormatByExtension(extension), e.path(), p);
        EXPECT_TRUE(code >= kOk && code <= kLastErrorCode) << e.path() << ": " << code;
      }
    }
  EXPECT_GT(files, 60u);
}

TEST(BmpSuites, ReadAsTheReferenceRenderingsWhereTheRulesAgree) {
  PXM_REQUIRE(test::HaveProgram(kMagick), kMagick);
  const std::string root = test::TestDataDir();
  if (root.empty()) GTEST_SKIP() << "no public test data";
  const auto refs = ReferenceMap(root);
  auto decode = [](const std::string& ref) {
    RgbImage image;
    EXPECT_TRUE(MagickDecode(ref, image)) << ref;
    return image;
  };
  for (const auto& [rule, list] : kCompared)
    for (const std::string& name : Names(list)) {
      SCOPED_TRACE(name);
      Picture p;
      ASSERT_EQ(ReadThrough(9, root + "/" + name, p), kOk);
      const std::vector<Rgb> got = test::Colours(p);
      const auto w = p.width;
      const auto h = static_cast<uint32_t>(p.depth);
      bool anySame = false;
      for (const std::string& ref : refs.at(name))
        anySame = anySame || Same(got, decode(ref), w, h);
      // Files of the other rules match no accepted rendering, but show it as their rule says.
      EXPECT_EQ(anySame, rule == Rule::kSame);
      if (rule != Rule::kSame && rule != Rule::kDiffers) {
        RgbImage want = decode(refs.at(name).front());
        want.pixels = Expected(rule, test::ReadFileBytes(root + "/" + name), want, got);
        EXPECT_TRUE(Same(got, want, w, h));
      }
    }
  for (const auto& [code, list] : kRefused)
    for (const std::string& name : Names(list)) {
      Picture p;
      EXPECT_EQ(ReadThrough(9, root + "/" + name, p), code) << name;
    }
  // The bitmap array reads through its own row.
  Picture p;
  ASSERT_EQ(ReadThrough(27, root + "/bmpsuite/x/ba-bm.bmp", p), kOk);
  EXPECT_TRUE(Same(test::Colours(p), decode(refs.at("bmpsuite/x/ba-bm.bmp").front()), p.width,
                   static_cast<uint32_t>(p.depth)));
}

}  // namespace
}  // namespace pxm
