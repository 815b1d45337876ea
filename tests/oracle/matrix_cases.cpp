// The cases of the oracle matrix, format by format: files other programs write that Pixmill
// reads ("read"), held to a program's own decoding, and pictures Pixmill writes ("write"), held
// to the picture and read back by the programs that read the format and by Pixmill itself.

#include <string>

#include "oracle/matrix.h"

namespace pxm::oracle {
namespace {

Maker Im(std::string options, std::string then = "") {
  return {Tool::kMagick, options, then};
}
Maker Sh(std::string command) {
  return {Tool::kShell, "", command};
}
Decoder Cmd(std::string command) {
  return {Tool::kShell, command};
}
const Maker kWrites{Tool::kPixmill};
const Decoder kIm{Tool::kMagick}, kPil{Tool::kPillow}, kPx{Tool::kPixmill}, kPic{Tool::kPicture},
    kLibpng{Tool::kLibpng};
using enum Expect;
using enum Look;

template <int Row>
void TiffRow(Settings& s) {
  s.TiffOptions = Row;
}
template <int Mode>
void IffMode(Settings& s) {
  s.CreateIffCompressed = Mode & 1;
  s.CreateIffPBM = Mode >> 1;
}
template <int Rgb, int Dither>
void JpegReading(Settings& s) {
  s.ReadJpegRgb = Rgb;
  s.DitherOnJpegRead = Dither;
}
void Os2(Settings& s) {
  s.WriteOS2Bitmaps = 1;
}
void Interlaced(Settings& s) {
  s.WriteGIFInterlaced = 1;
}
void Targa16(Settings& s) {
  s.CreateTarga16 = 1;
}

// Bits of the file Pixmill writes for a picture of `bits` where the format keeps 1, 4, 8 and 24.
uint32_t FileBits(uint32_t bits) {
  return bits == 1 ? 1 : bits <= 4 ? 4 : bits <= 8 ? 8 : 24;
}
std::string Bits(uint32_t bits) {
  return std::to_string(bits) + (bits == 1 ? " bit" : " bits");
}

void Bmp(std::vector<Case>& all) {
  // ImageMagick's reader misplaces the runs its own writer puts in for row padding, so Pillow
  // judges the files that may be run-length coded (8-bit files unless told otherwise).
  std::vector<Case> cases = {
      {"BMP", "ImageMagick BMP3, 4 colours", Im("-type palette BMP3"), 4, kPil},
      {"BMP", "ImageMagick BMP3, 200 colours", Im("-type palette -compress none BMP3"), 200, kIm},
      {"BMP",
       "ImageMagick BMP3, 256 greys",
       Im("-type palette -compress none BMP3"),
       256,
       kIm,
       {kPx},
       kSame,
       nullptr,
       0,
       kGrey},
      {"BMP", "ImageMagick BMP3, 200 colours, RLE", Im("-type palette -compress RLE BMP3"), 200,
       kPil},
      {"BMP", "ImageMagick BMP3, 4 colours, RLE", Im("-type palette -compress RLE BMP3"), 4, kPil},
      {"BMP", "ImageMagick BMP3, true colour", Im("-type truecolor BMP3"), 0, kIm},
      {"BMP",
       "ImageMagick BMP3, grey",
       Im("-type grayscale BMP3"),
       256,
       kPil,
       {kPx},
       kSame,
       nullptr,
       0,
       kGrey},
      {"BMP", "ImageMagick BMP3, bilevel", Im("-type bilevel BMP3"), 2, kIm},
      {"BMP", "ImageMagick OS/2, 4 colours", Im("-type palette BMP2"), 4, kIm},
      {"BMP", "ImageMagick OS/2, 200 colours", Im("-type palette BMP2"), 200, kIm},
      {"BMP", "ImageMagick OS/2, true colour", Im("-type truecolor BMP2"), 0, kIm},
      {"BMP", "ImageMagick OS/2, bilevel", Im("-type bilevel BMP2"), 2, kIm},
  };
  for (const char* header : {"-windows", "-os2"})
    for (auto [bpp, colours] : {std::pair{1u, 2u}, {4u, 16u}, {8u, 200u}, {24u, 0u}})
      cases.push_back(
          {"BMP", "ppmtobmp " + std::string(header) + " -bpp " + std::to_string(bpp),
           Sh("ppmtobmp " + std::string(header) + " -bpp " + std::to_string(bpp) + " %in >%out"),
           colours, Cmd("bmptopnm %in")});
  for (bool os2 : {false, true})
    for (uint32_t bits : {1u, 3u, 4u, 6u, 8u, 24u}) {
      std::vector<Decoder> readers = {kPil, Cmd("bmptopnm %in"), kIm, kPx};
      if (bits == 24 && !os2) readers.erase(readers.begin() + 2);
      cases.push_back({"BMP", (os2 ? "OS/2, " : "Windows, ") + Bits(bits), kWrites, bits, kPic,
                       readers, bits == 1 ? kBlackWhite : kSame, os2 ? Os2 : nullptr,
                       FileBits(bits)});
    }
  cases.push_back(
      {"BMP", "Windows, 24 bits", kWrites, 24, kPic, {kIm}, kRefused, nullptr, 0, kPlain, "D7"});
  for (Case& c : cases) c.height = 5;  // OS/2 files of one pixel a row stay under 54 bytes (D2)
  all.insert(all.end(), cases.begin(), cases.end());
}

void Pcx(std::vector<Case>& all) {
  const std::pair<const char*, uint32_t> netpbm[] = {
      {"-24bit", 0},    {"-8bit", 200},   {"", 256}, {"-planes 1", 2},
      {"-planes 2", 4}, {"-planes 3", 8}, {"", 16},  {"-packed", 16}};
  std::vector<Case> cases;
  for (auto [options, colours] : netpbm)
    cases.push_back({"PCX", "ppmtopcx " + std::string(options),
                     Sh("ppmtopcx " + std::string(options) + " %in >%out"), colours,
                     Cmd("pcxtoppm %in")});
  cases[3].look = kTwoColours, cases[3].difference = "D9";  // one bit, a coloured palette
  for (auto [options, colours] : {std::pair{"-type truecolor PCX", 0u},
                                  {"-type palette PCX", 200u},
                                  {"-type palette PCX", 16u}})
    cases.push_back({"PCX",
                     "ImageMagick, " + (colours ? std::to_string(colours) : "any") + " colours",
                     Im(options), colours, Cmd("pcxtoppm %in")});
  // ImageMagick shows index 0 of one-bit files white whatever the header says, and Pillow reads
  // no file of three planes.
  for (uint32_t bits : {1u, 2u, 3u, 4u, 6u, 8u, 24u}) {
    std::vector<Decoder> readers = {Cmd("pcxtoppm %in"), kPx};
    if (bits != 1) readers.push_back(kIm);
    if (bits != 3) readers.push_back(kPil);
    cases.push_back({"PCX", Bits(bits), kWrites, bits, kPic, readers, kSame, nullptr,
                     bits >= 5 && bits <= 8 ? 8 : bits});
  }
  // A row without a count byte spoils the next (D10): every row starts with a run.
  for (Case& c : cases) c.look = static_cast<Look>(c.look | kPcxRuns);
  all.insert(all.end(), cases.begin(), cases.end());
}

void Gif(std::vector<Case>& all) {
  for (bool interlaced : {false, true}) {
    for (uint32_t colours : {2u, 4u, 16u, 200u}) {
      Case c{"GIF", "ImageMagick, " + std::to_string(colours) + " colours",
             Im(interlaced ? "-interlace GIF GIF" : "GIF"), colours, kIm};
      if (interlaced) c.variant += ", interlaced";
      if (colours == 2) c.look = kTwoColours, c.difference = "D11";
      all.push_back(c);
    }
    for (uint32_t bits : {1u, 2u, 3u, 4u, 6u, 8u})
      all.push_back({"GIF",
                     Bits(bits) + (interlaced ? ", interlaced" : ""),
                     kWrites,
                     bits,
                     kPic,
                     {kIm, kPil, Cmd("giftopnm %in"), kPx},
                     kSame,
                     interlaced ? Interlaced : nullptr,
                     bits});
  }
}

void Png(std::vector<Case>& all) {
  // libpng judges: its samples as Pixmill shows them (grey through the ramp, 16-bit samples by
  // their high byte, alpha left off).
  const std::string grey = "-colorspace gray -define png:color-type=0 -define png:bit-depth=";
  const std::string half = "-alpha set -channel A -evaluate set 50% +channel ";
  std::vector<Case> cases = {
      {"PNG", "pnmtopng, 1-bit palette", Sh("pnmtopng %in >%out"), 2, kLibpng},
      {"PNG", "pnmtopng, 2-bit palette", Sh("pnmtopng %in >%out"), 4, kLibpng},
      {"PNG", "pnmtopng, 2-bit palette, interlaced", Sh("pnmtopng -interlace %in >%out"), 4,
       kLibpng},
      {"PNG", "ImageMagick, 4-bit palette",
       Im("-colors 16 -define png:bit-depth=4 -define png:color-type=3 PNG"), 16, kLibpng},
      {"PNG", "ImageMagick, 8-bit palette", Im("PNG8"), 200, kLibpng},
      {"PNG", "ImageMagick, RGB", Im("PNG24"), 0, kLibpng},
      {"PNG", "ImageMagick, RGB, interlaced", Im("-interlace PNG PNG24"), 0, kLibpng},
      {"PNG",
       "ImageMagick, RGB 16 bits",
       Im("PNG48"),
       0,
       kLibpng,
       {kPx},
       kSame,
       nullptr,
       0,
       kPlain,
       "D16"},
      {"PNG",
       "ImageMagick, RGB and alpha",
       Im(half + "PNG32"),
       0,
       kLibpng,
       {kPx},
       kSame,
       nullptr,
       0,
       kPlain,
       "D17"},
      {"PNG",
       "pnmtopng, grey 8 bits",
       Sh("ppmtopgm %in | pnmtopng >%out"),
       0,
       kLibpng,
       {kPx},
       kSame,
       nullptr,
       0,
       kPlain,
       "D15"},
      {"PNG",
       "ImageMagick, grey 16 bits",
       Im(grey + "16 PNG"),
       0,
       kLibpng,
       {kPx},
       kSame,
       nullptr,
       0,
       kPlain,
       "D16"},
      {"PNG",
       "ImageMagick, grey and alpha",
       Im(half + "-colorspace gray -define png:color-type=4 PNG"),
       0,
       kLibpng,
       {kPx},
       kSame,
       nullptr,
       0,
       kPlain,
       "D15"},
  };
  for (int depth : {1, 2, 4})
    cases.push_back({"PNG",
                     "ImageMagick, grey " + Bits(depth),
                     Im(grey + std::to_string(depth) + " -depth " + std::to_string(depth) + " PNG"),
                     0,
                     kLibpng,
                     {kPx},
                     kSame,
                     nullptr,
                     0,
                     kPlain,
                     "D15"});
  for (uint32_t bits : {1u, 2u, 4u, 6u, 8u, 24u})
    cases.push_back({"PNG",
                     Bits(bits),
                     kWrites,
                     bits,
                     kPic,
                     {kIm, kPil, Cmd("pngtopnm %in"), kPx},
                     bits == 1 ? kBlackWhite : kSame,
                     nullptr,
                     FileBits(bits)});
  all.insert(all.end(), cases.begin(), cases.end());
}

void Jpeg(std::vector<Case>& all) {
  // cjpeg and djpeg drive the same library as Pixmill with the same settings: Pixmill reads as
  // djpeg decodes, in each of its three ways of reading.
  struct Mode {
    const char* djpeg;
    Setter settings;
    const char* name;
  };
  const Mode modes[] = {{"", JpegReading<1, 1>, "RGB"},
                        {"-colors 256 -onepass", JpegReading<0, 1>, "256 colours, dithered"},
                        {"-colors 256 -onepass -dither none", JpegReading<0, 0>, "256 colours"}};
  for (const char* options :
       {"-quality 75", "-quality 90 -sample 1x1", "-progressive", "-grayscale",
        "-optimize -restart 2", "-arithmetic", "-sample 2x1", "-quality 20 -smooth 30", "-rgb"})
    for (const Mode& m : modes)  // grey files stay grey, 8 bits, whichever way they are read
      all.push_back({"JPG",
                     "cjpeg " + std::string(options) + ", read as " + m.name,
                     Sh("cjpeg " + std::string(options) + " %in >%out"),
                     0,
                     Cmd("djpeg -pnm " + std::string(m.djpeg) + " %in"),
                     {kPx},
                     kSame,
                     m.settings,
                     *m.djpeg || std::string(options) == "-grayscale" ? 8u : 24u});
  for (const char* options : {"-quality 85 JPEG", "-interlace JPEG -quality 60 JPEG"})
    all.push_back({"JPG",
                   "ImageMagick " + std::string(options),
                   Im(options),
                   0,
                   Cmd("djpeg -pnm %in"),
                   {kPx},
                   kSame,
                   JpegReading<1, 1>,
                   24});
  for (uint32_t bits : {1u, 8u, 24u})
    all.push_back({"JPG",
                   Bits(bits) + ", as djpeg decodes it",
                   kWrites,
                   bits,
                   Cmd("djpeg -pnm %in"),
                   {kPil, kIm, kPx},
                   kSame,
                   JpegReading<1, 1>,
                   24});
}

void Tiff(std::vector<Case>& all) {
  struct Kind {
    const char* name;
    const char* options;
    uint32_t colours;
    const char* compressions;  // tiffcp -c values that suit the kind
    Expect expect;             // a 16-bit colour map of quantized colours is not made of whole
                               // multiples of 257: Pixmill keeps the high byte, ImageMagick rounds
  };
  const Kind kinds[] = {
      {"bilevel", "-threshold 50% -depth 1", 0, "none packbits lzw g3 g3:2d g4", kSame},
      {"bilevel, min-is-white", "-threshold 50% -depth 1 -define quantum:polarity=min-is-white", 0,
       "none g4", kSame},
      {"grey", "-type grayscale", 0, "none packbits lzw", kSame},
      {"12 colours", "-colors 12 -type palette", 0, "none packbits lzw", kNear},
      {"palette", "-type palette", 200, "none packbits lzw", kSame},
      {"RGB", "-type truecolor", 0, "none packbits lzw", kSame}};
  for (const Kind& k : kinds)
    for (const char* endian : {"lsb", "msb"}) {
      const std::string made = std::string(k.options) + " -define tiff:endian=" + endian +
                               " -define tiff:rows-per-strip=3 -compress none TIFF";
      std::string list = k.compressions;
      for (size_t at = 0; at < list.size();) {
        const size_t end = std::min(list.find(' ', at), list.size());
        const std::string c = list.substr(at, end - at);
        at = end + 1;
        all.push_back({"TIF",
                       std::string("ImageMagick ") + k.name + ", " + endian + ", tiffcp -c " + c,
                       Im(made, "tiffcp -c " + c + " %im %out"),
                       k.colours,
                       kIm,
                       {kPx},
                       k.expect});
      }
    }
  const Setter rows[] = {TiffRow<0>, TiffRow<1>, TiffRow<2>, TiffRow<3>, TiffRow<4>, TiffRow<5>};
  for (int row = 0; row < 6; ++row)
    for (uint32_t bits : {1u, 3u, 8u, 24u}) {
      std::vector<Decoder> readers = {kPil, Cmd("tifftopnm %in"), kPx};
      if (bits == 1 || bits == 24) readers.push_back(kIm);
      all.push_back({"TIF", "TiffOptions " + std::to_string(row) + ", " + Bits(bits), kWrites, bits,
                     kPic, readers, bits == 1 ? kLighterWhite : kSame, rows[row], FileBits(bits)});
    }
  for (uint32_t bits : {3u, 8u})  // colour maps of values shifted left 8, which it scales
    all.push_back({"TIF",
                   Bits(bits) + ", as ImageMagick shows it",
                   kWrites,
                   bits,
                   kPic,
                   {kIm},
                   kNear,
                   nullptr,
                   0,
                   kPlain,
                   "D21"});
}

void Targa(std::vector<Case>& all) {
  // ImageMagick stores the rows of its grey files top first under a bottom-first header (and
  // reads them back so), so Pillow judges every file.
  std::vector<Case> cases = {
      {"TGA", "ImageMagick, uncompressed", Im("-compress None TGA"), 0, kPil},
      {"TGA", "ImageMagick, RLE", Im("-compress RLE TGA"), 0, kPil},
      {"TGA", "ImageMagick, with alpha", Im("-type TrueColorAlpha TGA"), 0, kPil},
      {"TGA", "ImageMagick, palette, RLE, top first",
       Im("-type Palette -orient TopLeft -compress RLE TGA"), 200, kPil},
      {"TGA", "ImageMagick, grey", Im("-type Grayscale TGA"), 0, kPil},
      {"TGA", "pamtotga -cmap", Sh("pamtotga -cmap %in >%out"), 200, kPil},
      {"TGA", "pamtotga -rgb -norle", Sh("pamtotga -rgb -norle %in >%out"), 0, kPil},
      {"TGA", "pamtotga -mono", Sh("ppmtopgm %in | pamtotga -mono >%out"), 0, kPil}};
  for (uint32_t bits : {4u, 8u, 24u})  // palettes of 256 entries
    cases.push_back({"TGA",
                     Bits(bits),
                     kWrites,
                     bits,
                     kPic,
                     {kIm, Cmd("tgatoppm %in"), kPil, kPx},
                     kSame,
                     nullptr,
                     bits == 4 ? 8 : bits});
  cases.push_back({"TGA",
                   "24 bits, CreateTarga16",
                   kWrites,
                   24,
                   kPic,
                   {kIm},
                   kHalfRowTarga16,
                   Targa16,
                   0,
                   kPlain,
                   "D24"});
  for (Case& c : cases) c.height = 5;
  all.insert(all.end(), cases.begin(), cases.end());
}

void Sun(std::vector<Case>& all) {
  // netpbm judges: ImageMagick's reader loses the last pixel of its own odd-width type-3 files.
  std::vector<Case> cases = {
      {"RAS", "pnmtorast -standard, one bit",
       Sh("ppmtopgm %in | pgmtopbm -threshold | pnmtorast -standard >%out"), 2},
      {"RAS", "pnmtorast -rle, grey", Sh("ppmtopgm %in | pnmtorast -rle >%out"), 0},
      {"RAS", "pnmtorast -standard, 200 colours", Sh("pnmtorast -standard %in >%out"), 200},
      {"RAS", "pnmtorast -rle, 200 colours", Sh("pnmtorast -rle %in >%out"), 200},
      {"RAS", "pnmtorast -rle, RGB", Sh("pnmtorast -rle %in >%out"), 0},
      {"RAS", "ImageMagick, palette", Im("-type Palette SUN"), 200},
      {"RAS", "ImageMagick, RGB (type 3)", Im("-type TrueColor SUN"), 0}};
  for (Case& c : cases) c.reference = Cmd("rasttopnm %in");
  cases.back().difference = "D26";
  for (uint32_t bits : {1u, 4u, 8u, 24u})
    cases.push_back({"RAS",
                     Bits(bits),
                     kWrites,
                     bits,
                     kPic,
                     {kIm, Cmd("rasttopnm %in"), kPil, kPx},
                     bits == 1 ? kBlackWhite : kSame,
                     nullptr,
                     bits == 4 ? 8 : bits});
  // Runs that cross a row end are cut there (D27): scenes without a byte 128 code no run in
  // ImageMagick's type-3 files, and random colours seldom make one in netpbm's.
  for (Case& c : cases) c.look = kNo128, c.height = 4;
  all.insert(all.end(), cases.begin(), cases.end());
}

void Fits(std::vector<Case>& all) {
  std::vector<Case> cases = {
      {"FIT", "pnmtofits, grey", Sh("ppmtopgm %in | pnmtofits >%out"), 0, Cmd("fitstopnm %in")},
      {"FIT",
       "pnmtofits, three planes",
       Sh("pnmtofits %in >%out"),
       0,
       Cmd("fitstopnm %in"),
       {kPx},
       kRedPlane,
       nullptr,
       0,
       kPlain,
       "D30"},
      {"FIT",
       "ImageMagick, grey",
       Im("-colorspace Gray -depth 8 FITS"),
       0,
       kIm,
       {kPx},
       kUpsideDown,
       nullptr,
       0,
       kPlain,
       "D29"}};
  for (uint32_t bits : {4u, 8u, 24u}) {
    cases.push_back({"FIT",
                     Bits(bits),
                     kWrites,
                     bits,
                     kPic,
                     {Cmd("fitstopnm %in"), kPx},
                     kLuminance,
                     nullptr,
                     8});
    cases.push_back({"FIT",
                     Bits(bits) + ", as ImageMagick shows it",
                     kWrites,
                     bits,
                     kPic,
                     {kIm},
                     kLuminanceUpsideDown,
                     nullptr,
                     0,
                     kPlain,
                     "D29"});
  }
  for (Case& c : cases) c.height = 5;
  all.insert(all.end(), cases.begin(), cases.end());
}

void Iff(std::vector<Case>& all) {
  // Plane rows are not padded to 16 pixels (D32): the two sides agree on whole words only.
  std::vector<Case> cases;
  for (const char* coding : {"-compress", "-nocompress"})
    for (auto [planes, colours] :
         {std::pair{"", 2u}, {"", 16u}, {" -maxplanes 8", 200u}, {" -24force", 0u}})
      cases.push_back({"IFF", "ppmtoilbm " + std::string(coding) + planes,
                       Sh("ppmtoilbm " + std::string(coding) + planes + " %in >%out"), colours,
                       Cmd("ilbmtoppm %in")});
  const Setter modes[] = {IffMode<0>, IffMode<1>, IffMode<2>, IffMode<3>};
  const char* names[] = {"ILBM", "ILBM, ByteRun1", "PBM", "PBM, ByteRun1"};
  for (int mode = 0; mode < 4; ++mode)
    for (uint32_t bits : {1u, 4u, 8u, 24u})
      cases.push_back({"IFF",
                       std::string(names[mode]) + ", " + Bits(bits),
                       kWrites,
                       bits,
                       kPic,
                       {Cmd("ilbmtoppm %in"), kPx},
                       kSame,
                       modes[mode],
                       bits});
  for (Case& c : cases) c.widths = {16, 32, 48}, c.height = 4;
  all.insert(all.end(), cases.begin(), cases.end());
}

void Uue(std::vector<Case>& all) {
  const std::pair<const char*, const char*> inner[] = {{"ppmtobmp -bpp 8 %in", "bmptopnm"},
                                                       {"pamtotga -rgb %in", "tgatoppm"},
                                                       {"pnmtorast -standard %in", "rasttopnm"},
                                                       {"ppmtopgm %in | pnmtofits", "fitstopnm"}};
  const char* names[] = {"p.bmp", "p.tga", "p.ras", "p.fit"};
  for (int i = 0; i < 4; ++i)
    all.push_back({"UUE", std::string("uuencode of ") + names[i],
                   Sh(std::string(inner[i].first) + " | uuencode " + names[i] + " >%out"), 200,
                   Cmd(std::string("uudecode -o /dev/stdout %in | ") + inner[i].second)});
}

}  // namespace

std::vector<Case> MatrixCases() {
  std::vector<Case> all;
  for (auto add : {Bmp, Pcx, Gif, Png, Jpeg, Tiff, Targa, Sun, Fits, Iff, Uue}) add(all);
  return all;
}

}  // namespace pxm::oracle
