// Runs the oracle matrix (the cases are in matrix_cases.cpp) in three batches: every file made,
// every file decoded by the other programs, every reading compared, so that each program starts
// as seldom as it can. Prints the matrix, format × variant × direction, and the table of
// deliberate differences, and keeps a copy in the build folder (scripts/test.sh shows it).

#include "oracle/matrix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "core/error_codes.h"
#include "core/names.h"
#include "core/row_format.h"
#include "oracle/libpng_reference.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm::oracle {
namespace {

using test::Picture;
using test::RgbImage;
using test::ShellQuote;

constexpr int kShells = 3;  // scripts run side by side: most of their time is programs starting

std::string Ext(const Case& c) {
  return ToLowerAscii(c.format);
}

std::string Replace(std::string s, const std::string& key, const std::string& value) {
  for (size_t at; (at = s.find(key)) != std::string::npos;) s.replace(at, key.size(), value);
  return s;
}

// The program's name; for a pipeline, its programs joined by "+".
std::string Name(const Decoder& d) {
  const char* names[] = {"Pixmill", "ImageMagick", "Pillow", "", "libpng", "the picture"};
  std::string name = names[static_cast<int>(d.tool)];
  for (size_t at = 0; d.tool == Tool::kShell && at < d.command.size();) {
    const size_t start = d.command.find_first_not_of(' ', at);
    name += (name.empty() ? "" : "+") + d.command.substr(start, d.command.find(' ', start) - start);
    at = std::min(d.command.find('|', at), d.command.size()) + 1;
  }
  return name;
}

// One file of a case: what made it, and the picture when Pixmill wrote it.
struct Item {
  uint32_t width;
  int32_t height;
  std::string file;
  Picture picture = {};
  int writeCode = 0;
};

// A case's files, and what the other programs made of them by decoder slot (0: the reference)
// and width.
struct CaseFiles {
  const Case* c;
  int index;
  std::vector<Item> items = {};
  std::map<int, std::map<uint32_t, RgbImage>> decoded = {};
};

int32_t HeightFor(const Case& c, uint32_t width) {
  return (c.look & kPcxRuns) && width < 16 ? 1 : c.height;
}

std::vector<Rgb> SceneFor(const Case& c, uint32_t width, int32_t height) {
  std::vector<Rgb> s = test::Scene(width, static_cast<uint32_t>(height), c.picture);
  for (Rgb& p : s) {
    if (c.look & kGrey) p = Rgb{p.red, p.red, p.red};
    if (c.look & kTwoColours) p = p.red ? Rgb{30, 90, 160} : Rgb{200, 40, 30};
    if (c.look & kNo128)
      for (uint8_t* v : {&p.red, &p.green, &p.blue}) *v = *v == 128 ? 127 : *v;
  }
  for (int32_t y = 0; (c.look & kPcxRuns) && width >= 16 && y < height; ++y)
    std::fill_n(s.begin() + y * width + 1, 15, s[static_cast<size_t>(y) * width]);
  return s;
}

Picture PatternFor(const Case& c, uint32_t width, int32_t height) {
  Picture p = test::Pattern(width, height, c.picture, width + c.picture);
  for (int32_t y = 0; (c.look & kPcxRuns) && width >= 16 && y < height; ++y)
    for (uint32_t x = 1; x < 16; ++x) p.SetPixel(x, y, p.Pixel(0, y));
  // Other readers colour one-bit files by their palette; the rules that ignore it keep colours.
  if (c.picture == 1 && c.expect != Expect::kBlackWhite && c.expect != Expect::kLighterWhite)
    p.palette[0] = Rgb{0, 0, 0}, p.palette[1] = Rgb{255, 255, 255};
  return p;
}

// Scripts of shell jobs run side by side, and the files Pillow decodes.
class Batch {
 public:
  explicit Batch(const test::TempDir& dir) : dir_(dir) {}
  size_t Job(const std::string& line) {
    jobs_.push_back(line);
    return jobs_.size() - 1;
  }
  void Append(size_t job, const std::string& line) { jobs_[job] += "; " + line; }
  void Pillow(const std::string& in, const std::string& out) { pillow_ += in + "\t" + out + "\n"; }
  void RunAll() {
    std::string all = "cd " + ShellQuote(dir_.path()) + " || exit 1\n";
    for (int s = 0; s < kShells; ++s) {
      std::string script;
      for (size_t j = s; j < jobs_.size(); j += kShells)
        script += "(" + jobs_[j] + ") 2>/dev/null\n";
      test::WriteFileBytes(dir_ / ("job" + std::to_string(s)), script);
      all += "sh job" + std::to_string(s) + " &\n";
    }
    if (!pillow_.empty()) {
      test::WriteFileBytes(dir_ / "pillow.txt", pillow_);
      const std::string decode =
          "import sys\nfrom PIL import Image\nfor line in open(sys.argv[1]):\n"
          "    src, dst = line.rstrip('\\n').split('\\t')\n    try:\n"
          "        im = Image.open(src).convert('RGB')\n"
          "        open(dst, 'wb').write(b'P6\\n%d %d\\n255\\n' % im.size + im.tobytes())\n"
          "    except Exception:\n        pass\n";
      all += test::kPython + " -c " + ShellQuote(decode) + " pillow.txt 2>/dev/null &\n";
    }
    test::WriteFileBytes(dir_ / "all", all + "wait\n");
    test::Run("sh " + ShellQuote(dir_ / "all"));
    jobs_.clear();
    pillow_.clear();
  }

 private:
  const test::TempDir& dir_;
  std::vector<std::string> jobs_;
  std::string pillow_;
};

// Every case's files: scenes for the other programs, which ImageMagick makes once for all widths
// of a case (and once for cases that ask the same of it); Pixmill's own files written here.
void Make(std::vector<CaseFiles>& runs, const test::TempDir& dir, Batch& batch) {
  std::map<std::string, std::pair<std::string, size_t>> magickMade;  // -> file stem, job
  for (CaseFiles& r : runs) {
    const Case& c = *r.c;
    const std::string stem = "c" + std::to_string(r.index) + "-";
    std::string scenes, key = c.maker.magick + "|" + Ext(c) + "|" + std::to_string(c.picture) +
                              "|" + std::to_string(c.look) + "|" + std::to_string(c.height);
    for (uint32_t w : c.widths) {
      Item item{w, HeightFor(c, w), stem + std::to_string(w) + "." + Ext(c)};
      if (c.maker.tool == Tool::kPixmill) {
        ScopedSettings settings;
        if (c.settings) c.settings(*settings);
        item.picture = PatternFor(c, w, item.height);
        item.writeCode = test::WritePicture(item.picture, dir / item.file);
      } else {
        const std::string scene = stem + std::to_string(w) + ".ppm";
        test::WritePpm(dir / scene, SceneFor(c, w, item.height), w,
                       static_cast<uint32_t>(item.height));
        scenes += " " + scene;
        key += "|" + std::to_string(w);
        if (c.maker.tool == Tool::kShell)
          batch.Job(Replace(Replace(c.maker.shell, "%in", scene), "%out", item.file));
      }
      r.items.push_back(item);
    }
    if (c.maker.tool != Tool::kMagick) continue;
    // Cases that ask the same of ImageMagick share its files, copied or converted in its job.
    auto [made, fresh] =
        magickMade.emplace(key, std::pair{"m" + std::to_string(r.index) + "-", size_t{0}});
    if (fresh) {
      const size_t space = c.maker.magick.rfind(' ');
      const std::string options = space == std::string::npos ? "" : c.maker.magick.substr(0, space);
      made->second.second =
          batch.Job(test::kMagick + scenes + " " + options + " +adjoin " +
                    c.maker.magick.substr(space + 1) + ":" + made->second.first + "%d." + Ext(c));
    }
    for (size_t k = 0; k < r.items.size(); ++k) {
      const std::string im = made->second.first + std::to_string(k) + "." + Ext(c);
      batch.Append(made->second.second,
                   c.maker.shell.empty()
                       ? "cp " + im + " " + r.items[k].file
                       : Replace(Replace(c.maker.shell, "%im", im), "%out", r.items[k].file));
    }
  }
}

std::string Decoded(const CaseFiles& r, int slot, size_t k) {
  return "d" + std::to_string(r.index) + "-" + std::to_string(slot) + "-" + std::to_string(k) +
         ".ppm";
}

// Every decoding by another program: ImageMagick once for all files of a case, Pillow once for
// the whole matrix, other programs file by file.
void Decode(std::vector<CaseFiles>& runs, Batch& batch) {
  for (CaseFiles& r : runs) {
    std::vector<Decoder> slots = {r.c->reference};
    slots.insert(slots.end(), r.c->readers.begin(), r.c->readers.end());
    for (size_t s = 0; s < slots.size(); ++s) {
      const int slot = static_cast<int>(s);
      std::string files;
      for (size_t k = 0; k < r.items.size(); ++k) {
        const std::string& file = r.items[k].file;
        files += " " + file;
        if (slots[s].tool == Tool::kPillow) batch.Pillow(file, Decoded(r, slot, k));
        if (slots[s].tool == Tool::kShell)
          batch.Job(Replace(slots[s].command, "%in", file) + " >" + Decoded(r, slot, k));
      }
      if (slots[s].tool == Tool::kMagick)
        batch.Job(test::kMagick + files +
                  " -depth 8 +adjoin ppm:" + Replace(Decoded(r, slot, 0), "-0.ppm", "-%d.ppm"));
    }
  }
}

// Parses what the programs made, keyed by width: ImageMagick numbers its outputs by the images
// it managed to read, so a file it refuses shifts the rest.
void Collect(std::vector<CaseFiles>& runs, const test::TempDir& dir) {
  for (CaseFiles& r : runs)
    for (int slot = 0; slot <= static_cast<int>(r.c->readers.size()); ++slot)
      for (size_t k = 0; k < r.items.size(); ++k) {
        RgbImage image;
        if (test::ReadNetpbmFile(dir / Decoded(r, slot, k), image))
          r.decoded[slot][image.width] = image;
      }
}

RgbImage Upside(RgbImage image) {
  for (uint32_t y = 0; y < image.height / 2; ++y)
    std::swap_ranges(image.pixels.begin() + y * image.width,
                     image.pixels.begin() + (y + 1) * image.width,
                     image.pixels.end() - (y + 1) * image.width);
  return image;
}

Rgb Grey(int v) {
  return Rgb{static_cast<uint8_t>(v), static_cast<uint8_t>(v), static_cast<uint8_t>(v)};
}

// The picture Pixmill wrote, as the case's readers should show it.
RgbImage FromPicture(const Case& c, const Item& item) {
  const Picture& p = item.picture;
  RgbImage out{p.width, static_cast<uint32_t>(p.depth), test::Colours(p)};
  auto light = [](const Rgb& e) { return 30 * e.red + 59 * e.green + 11 * e.blue; };
  for (size_t i = 0; i < out.pixels.size(); ++i) {
    const uint32_t x = static_cast<uint32_t>(i % p.width);
    const int32_t y = static_cast<int32_t>(i / p.width);
    Rgb& o = out.pixels[i];
    if (c.expect == Expect::kBlackWhite) o = p.Pixel(x, y) ? Grey(255) : Grey(0);
    if (c.expect == Expect::kLighterWhite)
      o = (p.Pixel(x, y) == 0) == (light(p.palette[0]) > light(p.palette[1])) ? Grey(255) : Grey(0);
    if (c.expect == Expect::kLuminance || c.expect == Expect::kLuminanceUpsideDown)
      o = Grey(Luminance(o.red, o.green, o.blue));
    if (c.expect == Expect::kVgaLevels) {
      auto six = [](uint8_t v) { return static_cast<uint8_t>((v >> 2 << 2) | (v >> 6)); };
      o = Rgb{six(o.red), six(o.green), six(o.blue)};
    }
    if (c.expect == Expect::kHalfRowTarga16) {
      const Rgb s = p.Colour(x / 2, y);
      auto five = [](uint8_t v) { return static_cast<uint8_t>(v / 8 * 255 / 31); };
      o = x % 2 ? Grey(0) : Rgb{five(s.red), five(s.green), five(s.blue)};
    }
  }
  return c.expect == Expect::kLuminanceUpsideDown ? Upside(out) : out;
}

// What the case's readers should show for one file, or why nobody can say.
std::string Reference(const CaseFiles& r, const Item& item, const test::TempDir& dir,
                      RgbImage& want) {
  const Case& c = *r.c;
  if (c.reference.tool == Tool::kPicture) {
    want = FromPicture(c, item);
    return "";
  }
  if (c.reference.tool == Tool::kLibpng) {
    if (!LibpngDecode(dir / item.file, want)) return "libpng refuses it";
  } else {
    auto slot = r.decoded.find(0);
    if (slot == r.decoded.end() || !slot->second.count(item.width))
      return Name(c.reference) + " refuses it";
    want = slot->second.at(item.width);
  }
  if (c.expect == Expect::kRedPlane)
    for (Rgb& p : want.pixels) p = Grey(p.red);
  if (c.expect == Expect::kUpsideDown) want = Upside(want);
  return "";
}

// One reader's verdict over every file of a case: "" when it shows what it should.
std::string Verdict(const CaseFiles& r, int slot, const test::TempDir& dir,
                    std::set<std::string>& differences) {
  const Case& c = *r.c;
  const Decoder& reader = c.readers[static_cast<size_t>(slot - 1)];
  for (const Item& item : r.items) {
    const std::string at = "width " + std::to_string(item.width) + ": ";
    if (item.writeCode) return at + "Pixmill's writer answers " + std::to_string(item.writeCode);
    RgbImage got;
    bool oneBit = false;
    if (reader.tool == Tool::kPixmill) {
      ScopedSettings settings;
      if (c.settings) c.settings(*settings);
      Picture p;
      const int code = test::ReadPicture(dir / item.file, p);
      // Info always reads 54 header bytes: smaller bitmap files are damaged by its rule.
      if (std::string(c.format) == "BMP" && test::ReadFileBytes(dir / item.file).size() < 54) {
        if (code != kCorruptedFile)
          return at + "a file under 54 bytes answers " + std::to_string(code);
        differences.insert("D2");
        continue;
      }
      if (code) return at + "Pixmill answers " + std::to_string(code);
      if (c.readBits && p.bits != c.readBits)
        return at + "Pixmill reads " + std::to_string(p.bits) + " bits";
      got = RgbImage{p.width, static_cast<uint32_t>(p.depth), test::Colours(p)};
      oneBit = p.bits == 1 && c.maker.tool != Tool::kPixmill;
    } else {
      auto decoded = r.decoded.find(slot);
      const bool read = decoded != r.decoded.end() && decoded->second.count(item.width);
      if (c.expect == Expect::kRefused) {
        if (read) return at + Name(reader) + " reads it";
        continue;
      }
      if (!read) return at + Name(reader) + " refuses it";
      got = decoded->second.at(item.width);
    }
    RgbImage want;
    if (std::string why = Reference(r, item, dir, want); !why.empty()) return at + why;
    if (got.width != want.width || got.height != want.height)
      return at + Name(reader) + " shows " + std::to_string(got.width) + "x" +
             std::to_string(got.height);
    // One-bit pictures show black and white: where the file's two colours are others, only the
    // split of the pixels can agree.
    const auto blackOrWhite = [](const Rgb& p) { return p == Grey(0) || p == Grey(255); };
    if (oneBit && !std::all_of(want.pixels.begin(), want.pixels.end(), blackOrWhite)) {
      if (auto split = test::SameSplit(got.pixels, want); !split) return at + split.message();
      continue;
    }
    const int tolerance = c.expect == Expect::kNear || c.expect == Expect::kHalfRowTarga16;
    if (auto same = test::SameColours(got.pixels, got.width, want, tolerance); !same)
      return at + Name(reader) + ": " + same.message();
  }
  return "";
}

std::string Pad(std::string s, size_t n) {
  return s.size() < n ? s + std::string(n - s.size(), ' ') : s;
}

TEST(OracleMatrix, EveryFormatBothWays) {
  for (const char* program : {"cjpeg", "tiffcp", "ppmtobmp", "uuencode"})
    PXM_REQUIRE_ORACLE(test::HaveProgram(program), program);
  PXM_REQUIRE_ORACLE(test::HaveProgram(test::kMagick), test::kMagick);
  PXM_REQUIRE_ORACLE(test::HavePillow(), "Pillow");
  const std::vector<Case> cases = MatrixCases();
  std::vector<CaseFiles> runs;
  for (size_t i = 0; i < cases.size(); ++i) runs.push_back({&cases[i], static_cast<int>(i)});
  test::TempDir dir;
  Batch batch(dir);
  Make(runs, dir, batch);
  batch.RunAll();
  Decode(runs, batch);
  batch.RunAll();
  Collect(runs, dir);

  size_t wide = 0;  // of the variant column
  for (const Case& c : cases)
    wide = std::max(wide, c.variant.size() + 2 + 19 * (c.widths.size() != 6));
  std::ostringstream out;
  out << "Oracle matrix: " << cases.size()
      << " cases, each at widths 1, 7, 8, 9, 31 and 33 unless it says otherwise\n"
      << Pad("format", 7) << Pad("way", 6) << Pad("variant", wide) << Pad("oracle", 40)
      << "result\n";
  size_t failed = 0;
  for (const CaseFiles& r : runs) {
    const Case& c = *r.c;
    const bool writes = c.maker.tool == Tool::kPixmill;
    std::string oracles = writes ? "" : Name(c.reference), result;
    std::set<std::string> differences;
    if (c.difference) differences.insert(c.difference);
    for (int slot = 1; slot <= static_cast<int>(c.readers.size()); ++slot) {
      const std::string reader = Name(c.readers[static_cast<size_t>(slot - 1)]);
      if (writes && reader != "Pixmill") oracles += (oracles.empty() ? "" : ", ") + reader;
      std::string why = Verdict(r, slot, dir, differences);
      if (result.empty()) result = why;
    }
    if (writes && c.reference.tool != Tool::kPicture) oracles += " (as " + Name(c.reference) + ")";
    std::string variant = c.variant;
    if (c.widths.size() != 6) {
      variant += " (widths";
      for (uint32_t w : c.widths) variant += " " + std::to_string(w);
      variant += ")";
    }
    if (!result.empty()) {
      ++failed;
      ADD_FAILURE() << c.format << " " << c.variant << ": " << result;
    }
    out << Pad(c.format, 7) << Pad(writes ? "write" : "read", 6) << Pad(variant, wide)
        << Pad(oracles, 40) << (result.empty() ? "pass" : "FAIL " + result);
    for (const std::string& d : differences) out << " [" << d << "]";
    out << "\n";
  }
  out << cases.size() - failed << " of " << cases.size() << " cases pass\n\n"
      << "Deliberate differences from the public formats ([Dn] above)\n";
  for (const Difference& d : Differences())
    out << Pad(d.id, 5) << Pad(d.format, 6) << d.files << ": " << d.pixmill << ". Why: " << d.why
        << ". Checked by " << d.checkedBy << ".\n";
  std::printf("%s", out.str().c_str());
  std::ofstream(std::string(PXM_BINARY_DIR) + "/oracle-matrix.txt") << out.str();
}

}  // namespace
}  // namespace pxm::oracle
