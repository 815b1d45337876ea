// The public bitmap suites, read as their reference renderings show them where Pixmill's rules
// agree with the format, and by Pixmill's own rules where they deliberately differ (D1, D3-D6 of
// the differences table); files and bitmaps of other programs are in the oracle matrix.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/image_store.h"
#include "core/row_format.h"
#include "core/sinks.h"
#include "formats/format_table.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;
using test::Picture;
using test::RgbImage;

const Rgb kBlack{0, 0, 0};
const Rgb kWhite{255, 255, 255};

// How Pixmill's reading of a public suite file relates to the suite's reference rendering.
enum class Rule {
  kSame,           // the rules agree with the public format
  kBlackWhite,     // D1: one bit, the colour table ignored: index 0 shows black and 1 white
  kTableAt54,      // D3: the colour table is taken at offset 54 whatever the header's size
  kEveryOther555,  // D4: output pixel x is file pixel 2x, five-bit channels times 8
  kDiffers,        // D5: 2-bit files, 32-bit and bit-field layouts
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
    // Top-down rows (a negative height, D6).
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
  PXM_REQUIRE_ORACLE(test::HaveProgram(test::kMagick), test::kMagick);
  const std::string root = test::TestDataDir();
  if (root.empty()) GTEST_SKIP() << "no public test data";
  const auto refs = ReferenceMap(root);
  auto decode = [](const std::string& ref) {
    RgbImage image;
    EXPECT_TRUE(test::MagickDecode(ref, image)) << ref;
    return image;
  };
  for (const auto& [rule, list] : kCompared)
    for (const std::string& name : Names(list)) {
      SCOPED_TRACE(name);
      Picture p;
      ASSERT_EQ(ReadThrough(9, root + "/" + name, p), kOk);
      const std::vector<Rgb> got = test::Colours(p);
      const auto w = p.width;
      bool anySame = false;
      for (const std::string& ref : refs.at(name))
        anySame = anySame || test::SameColours(got, w, decode(ref));
      // Files of the other rules match no accepted rendering, but show it as their rule says.
      EXPECT_EQ(anySame, rule == Rule::kSame);
      if (rule != Rule::kSame && rule != Rule::kDiffers) {
        RgbImage want = decode(refs.at(name).front());
        want.pixels = Expected(rule, test::ReadFileBytes(root + "/" + name), want, got);
        EXPECT_TRUE(test::SameColours(got, w, want));
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
  EXPECT_TRUE(test::SameColours(p, decode(refs.at("bmpsuite/x/ba-bm.bmp").front())));
}

}  // namespace
}  // namespace pxm
