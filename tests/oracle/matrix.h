#pragma once

// The oracle matrix: files of every format that Pixmill and other programs share, made across
// the format's variants at awkward widths, read pixel for pixel in both directions. The cases
// are data (matrix_cases.cpp); matrix_test.cpp makes and decodes their files in batches and
// prints the matrix. Where Pixmill's rules differ from the public format on purpose, the case
// names the row of the one table of differences (differences_test.cpp) and checks the rule.

#include <cstdint>
#include <string>
#include <vector>

#include "config/settings.h"

namespace pxm::oracle {

// Who makes or decodes a file.
enum class Tool {
  kPixmill,  // Pixmill's own writer or reader
  kMagick,   // ImageMagick, run once for every width of a case
  kPillow,   // Pillow, run once for every file of the matrix
  kShell,    // a command line run for each file
  kLibpng,   // libpng in this process, its samples shown by Pixmill's PNG rules
  kPicture,  // no program: the picture Pixmill wrote
};

// How the file is made. kMagick: `magick` is "OPTIONS CODER" (the scene in, the file out), then
// `shell`, when given, turns that file (%im) into the case's file (%out). kShell: `shell` makes
// %out from the scene in %in. kPixmill: Pixmill writes a pattern of the case's bits.
struct Maker {
  Tool tool;
  std::string magick = {};
  std::string shell = {};
};

// A reader, or the reference it is held to; kShell commands read %in and write a netpbm picture.
struct Decoder {
  Tool tool;
  std::string command = {};
};

// What a reader should show, from the reference.
enum class Expect {
  kSame,
  kNear,          // within one level a channel (16-bit values rounded by one, cut by the other)
  kBlackWhite,    // one bit written: index 0 black, 1 white. (Reading a file of two colours
                  // other than black and white, Pixmill's one-bit picture is held to that rule
                  // in every case: black and white, the pixels split as the reference's.)
  kLighterWhite,  // one bit written: the lighter of the two entries white, the other black
  kRedPlane,      // grey of the reference's red channel (the first plane of three)
  kUpsideDown,    // the reference's rows in the other order
  kLuminance,     // grey of the picture's luminance
  kLuminanceUpsideDown,
  kHalfRowTarga16,  // file pixel 2k is pixel k cut to five bits a channel, odd pixels black
  kRefused,         // the reader refuses the file
  kVgaLevels,       // palette levels kept to six bits, as the VGA's colour registers hold them
};

// How the scene or pattern is made (flags).
enum Look : unsigned {
  kPlain = 0,
  kGrey = 1,        // grey levels
  kTwoColours = 2,  // two colours that are neither black nor white
  kPcxRuns = 4,     // every row begins with 16 equal pixels (one row when narrower)
  kNo128 = 8,       // no sample of 128
};

using Setter = void (*)(Settings&);

struct Case {
  const char* format;  // extension in capitals; the matrix's first column
  std::string variant;
  Maker maker;
  uint32_t picture;   // colours of the scene (0: any), or bits of Pixmill's pattern
  Decoder reference;  // who says what the pixels are
  std::vector<Decoder> readers = {{Tool::kPixmill}};
  Expect expect = Expect::kSame;
  Setter settings = nullptr;  // Pixmill's settings while it writes and reads the case
  uint32_t readBits = 0;      // the bits Pixmill reads the file with (0: not checked)
  unsigned look = kPlain;
  const char* difference = nullptr;  // the row of the differences table the case checks
  std::vector<uint32_t> widths = {1, 7, 8, 9, 31, 33};
  int32_t height = 11;

  Case& Expecting(Expect e) { return expect = e, *this; }
  Case& Set(Setter s) { return settings = s, *this; }
  Case& Bits(uint32_t b) { return readBits = b, *this; }
  Case& Looks(unsigned l) { return look |= l, *this; }
  Case& Differs(const char* d) { return difference = d, *this; }
};

// A file another program makes from a scene of `colours`, read by Pixmill and held to `judge`.
inline Case Read(const char* format, std::string variant, Maker maker, uint32_t colours,
                 Decoder judge) {
  return {format, std::move(variant), std::move(maker), colours, std::move(judge)};
}
// A pattern of `bits` Pixmill writes, read back by `readers` (Pixmill among them) and held to
// the picture, or to `reference`.
inline Case Write(const char* format, std::string variant, uint32_t bits,
                  std::vector<Decoder> readers, Decoder reference = {Tool::kPicture}) {
  return {format, std::move(variant),   {Tool::kPixmill},
          bits,   std::move(reference), std::move(readers)};
}

std::vector<Case> MatrixCases();

// One deliberate difference from the public format.
struct Difference {
  const char* id;
  const char* format;
  const char* files;
  const char* pixmill;
  const char* why;
  const char* checkedBy;
};
const std::vector<Difference>& Differences();

}  // namespace pxm::oracle
