#include "formats/format_table.h"

#include <cstring>
#include <string_view>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/names.h"
#include "formats/bga.h"
#include "formats/bmp.h"
#include "formats/cdr.h"
#include "formats/clipboard.h"
#include "formats/corel_paint.h"
#include "formats/cut.h"
#include "formats/dll.h"
#include "formats/exe_picture.h"
#include "formats/fits.h"
#include "formats/gem_img.h"
#include "formats/gif.h"
#include "formats/ico.h"
#include "formats/iff.h"
#include "formats/jpeg.h"
#include "formats/macpaint.h"
#include "formats/msp.h"
#include "formats/pcx.h"
#include "formats/pfs_art.h"
#include "formats/photo_cd.h"
#include "formats/pictor.h"
#include "formats/png.h"
#include "formats/rle.h"
#include "formats/sstv.h"
#include "formats/sun_raster.h"
#include "formats/targa.h"
#include "formats/text_file.h"
#include "formats/tiff.h"
#include "formats/uue.h"
#include "formats/wpg.h"

namespace pxm {

int RefuseInfo5(ImageInfo&, const std::string&, int) { return kUnsupportedFunction; }
int RefuseRead5(ImageInfo&, const std::string&) { return kUnsupportedFunction; }
int RefuseWrite5(ImageInfo&, const std::string&) { return kUnsupportedFunction; }
int RefuseList5(ImageInfo&, const std::string&, std::vector<std::string>&) {
  return kUnsupportedFunction;
}
int RefuseInfo8(ImageInfo&, const std::string&, int) { return kUnsupportedFormat; }
int RefuseRead8(ImageInfo&, const std::string&) { return kUnsupportedFormat; }

namespace {

// Shorthands for the table below.
constexpr ListImagesHandler kNoList = nullptr;
constexpr ListImagesHandler kList5 = RefuseList5;  // a listing handler not built yet
#define PXM_NOT_BUILT RefuseInfo5, RefuseRead5, RefuseWrite5

// The rows in their fixed order. A row whose handlers are not built answers 5 from each of
// them, as libraries leave a codec "not configured" in a build without it. The clipboard row's
// description reads "(CDB)" although its extension is CBD: users know it that way.
constexpr FormatEntry kTable[kFormatCount] = {
    {kNoList, MacInfo, MacRead, MacWrite, nullptr, 1, "MAC", "(MAC) MacPaint", 1, kCapsFile},
    {kNoList, GemInfo, GemRead, GemWrite, nullptr, 24, "IMG", "(IMG) GEM/Ventura", 1, kCapsFile},
    {kNoList, PcxInfo, PcxRead, PcxWrite, nullptr, 24, "PCX", "(PCX) PC Paintbrush", 1, kCapsFile},
    {GifList, GifInfo, GifRead, GifWrite, nullptr, 8, "GIF", "(GIF) CompuServe", 1,
     kCapsFile | kCapsAnimated | kCapsMultiImage},
    {TiffList, TiffInfo, TiffRead, TiffWrite, nullptr, 24, "TIF", "(TIF) TIFF", 1, kCapsFile},
    {kNoList, WpgInfo, WpgRead, WpgWrite, nullptr, 8, "WPG", "(WPG) WordPerfect Graphics", 1, kCapsFile},
    {kNoList, PicInfo, PicRead, PicWrite, nullptr, 24, "PIC", "(PIC) Pictor or Pegasus", 1, kCapsFile},
    {kNoList, TargaInfo, TargaRead, TargaWrite, nullptr, 24, "TGA", "(TGA) Targa", 1, kCapsFile},
    {kNoList, CutInfo, CutRead, CutWrite, nullptr, 8, "CUT", "(CUT) Dr. Halo", 1, kCapsFile},
    {kNoList, BmpInfo, BmpRead, BmpWrite, nullptr, 24, "BMP", "(BMP) Windows", 1, kCapsFile},
    {kNoList, MspInfo, MspRead, MspWrite, nullptr, 1, "MSP", "(MSP) Microsoft Paint", 1, kCapsFile},
    {IffList, IffInfo, IffRead, IffWrite, nullptr, 8, "LBM", "(LBM) Amiga", 1, kCapsFile},
    {kNoList, ExeInfo, ExeRead, RefuseWrite5, nullptr, 8, "EXE", "(EXE) Self-displaying image", 1, kCapsFile},
    {kNoList, TextInfo, TextRead, RefuseWrite5, nullptr, 24, "TXT", "(TXT) Text files", 1, kCapsFile},
    {kNoList, RleInfo, RleRead, RleWrite, nullptr, 8, "RLE", "(RLE) Windows", 1, kCapsFile},
    {kNoList, JpegInfo, JpegRead, JpegWrite, nullptr, 24, "JPG", "(JPG) Jpeg", 1, kCapsFile},
    {kNoList, ArtInfo, ArtRead, ArtWrite, nullptr, 1, "ART", "(ART) PFS:Publisher", 1, kCapsFile},
    {IffList, IffInfo, IffRead, IffWrite, nullptr, 24, "IFF", "(IFF) Amiga", 1, kCapsFile},
    {kNoList, SunInfo, SunRead, SunWrite, nullptr, 24, "RAS", "(RAS) Sun raster", 1, kCapsFile},
    {kNoList, HrzInfo, HrzRead, HrzWrite, nullptr, 24, "HRZ", "(HRZ) SSTV", 1, kCapsFile},
    {kNoList, BmpInfo, BmpRead, BmpWrite, nullptr, 24, "DIB", "(DIB) Windows", 1, kCapsFile},
    {kNoList, IcoInfo, IcoRead, IcoWrite, nullptr, 8, "ICO", "(ICO) Windows icon", 1, kCapsFile},
    {kNoList, RefuseInfo5, RefuseRead5, RefuseWrite5, nullptr, 24, "AVI", "(AVI) Video for Windows",
     1, kCapsFile | kCapsAnimated | kCapsMotion | kCapsMovie | kCapsReadsFrames},
    {kNoList, RefuseInfo8, RefuseRead8, ClipboardWrite, nullptr, 24, "CBD", "(CDB) Clipboard", 1,
     kCapsFile | kCapsVector | kCapsClipboard},
    {kList5, CptInfo, CptRead, RefuseWrite5, nullptr, 24, "CPT", "(CPT) Corel PhotoPAINT", 1,
     kCapsFile | kCapsCorel},
    {FitsList, FitsInfo, FitsRead, FitsWrite, nullptr, 24, "FIT", "(FIT) Flex. Image Transport", 1,
     kCapsFile},
    {CdrList, CdrInfo, CdrRead, RefuseWrite5, nullptr, 24, "CDR", "(CDR) Corel Draw Preview", 1,
     kCapsFile | kCapsAnimated | kCapsMultiImage},
    {kNoList, BgaInfo, BgaRead, BgaWrite, nullptr, 24, "BGA", "(BGA) OS/2 Warp", 1,
     kCapsFile | kCapsAnimated | kCapsMultiImage},
    {PngList, PngInfo, PngRead, PngWrite, nullptr, 24, "PNG", "(PNG) Portable Netwk Grphcs", 1,
     kCapsFile},
    {kNoList, PXM_NOT_BUILT, nullptr, 24, "MPG", "(MPG) MPEG video", 1,
     kCapsFile | kCapsMotion | kCapsMpeg},
    {kNoList, PXM_NOT_BUILT, nullptr, 24, "MOV", "(MOV) QuickTime movies", 1,
     kCapsFile | kCapsMotion | kCapsMovie},
    {kNoList, PXM_NOT_BUILT, nullptr, 8, "FLI", "(FLI) FLIC animation", 1,
     kCapsFile | kCapsAnimated | kCapsMotion | kCapsReadsFrames},
    {kNoList, PXM_NOT_BUILT, nullptr, 8, "FLC", "(FLC) FLIC animation", 1,
     kCapsFile | kCapsAnimated | kCapsMotion | kCapsReadsFrames},
    {kNoList, PcdInfo, PcdRead, RefuseWrite5, nullptr, 24, "PCD", "(PCD) Kodak Photo-CD", 1, kCapsFile},
    {kNoList, RefuseInfo5, RefuseRead5, RefuseWrite5, nullptr, 24, "WMF", "(WMF) Windows Metafile",
     1, kCapsVector},
    {kNoList, RefuseInfo5, RefuseRead5, RefuseWrite5, nullptr, 24, "CLP", "(CLP) Windows Clipboard",
     1, kCapsVector},
    {kNoList, UueInfo, UueRead, RefuseWrite5, nullptr, 24, "UUE", "(UUE) UUEncoded graphics", 1,
     kCapsFile},
    {kNoList, JpegInfo, JpegRead, JpegWrite, nullptr, 24, "JPE", "(JPE) Jpeg", 1, kCapsFile},
    {DllList, DllInfo, DllRead, RefuseWrite5, nullptr, 24, "DLL", "(DLL) Windows library", 1,
     kCapsFile | kCapsAnimated | kCapsMultiImage},
    {DllList, DllInfo, DllRead, RefuseWrite5, nullptr, 24, "VBX", "(VBX) Windows library", 1,
     kCapsFile | kCapsAnimated | kCapsMultiImage},
    {FitsList, FitsInfo, FitsRead, FitsWrite, nullptr, 24, "FTS", "(FTS) Flex. Image Transport", 1,
     kCapsFile},
    {kNoList, nullptr, nullptr, nullptr, nullptr, 0, "", "", 0, 0},
};

#undef PXM_NOT_BUILT

// The configuration names the rows by this shared list of extensions; both must agree.
constexpr bool RowsCarryTheSharedExtensions() {
  for (int row = 0; row < kFormatCount; ++row)
    if (std::string_view(kTable[row].extension) != kFormatExtensions[static_cast<size_t>(row)])
      return false;
  return true;
}
static_assert(RowsCarryTheSharedExtensions(), "format rows and kFormatExtensions differ");

// What FormatAt answers for a row number outside the table: a row that refuses everything, so
// that a bad number reaching a handler call gives a code instead of a wild jump.
constexpr FormatEntry kNoSuchRow = {
    kNoList, RefuseInfo8, RefuseRead8, RefuseWrite5, nullptr, 0, "", "", 0, 0};

bool InfoRefuses(InfoHandler h) { return h == nullptr || h == RefuseInfo5 || h == RefuseInfo8; }
bool ReadRefuses(ReadHandler h) { return h == nullptr || h == RefuseRead5 || h == RefuseRead8; }
bool WriteRefuses(WriteHandler h) { return h == nullptr || h == RefuseWrite5; }

}  // namespace

std::span<const FormatEntry, kFormatCount> FormatTable() {
  return std::span<const FormatEntry, kFormatCount>(kTable);
}

const FormatEntry& FormatAt(int row) {
  if (row < 0 || row >= kFormatCount) return kNoSuchRow;
  return kTable[row];
}

namespace {

int FindExtensionIn(std::span<const FormatEntry, kFormatCount> table, std::string_view extension) {
  // Only three characters are compared: "JPEG" finds the JPE row and "TIFF" the TIF row. A
  // shorter extension compares its end and finds nothing.
  std::string upper = ToUpperAscii(extension.substr(0, 3));
  if (upper.size() < 3) return -1;
  for (int row = 0; row < kFormatCount; ++row)
    if (std::memcmp(table[static_cast<size_t>(row)].extension, upper.data(), 3) == 0) return row;
  // The external-format hook has nothing to offer in this program.
  return -1;
}

}  // namespace

int FindFormatByExtension(std::string_view extension) {
  return FindExtensionIn(FormatTable(), extension);
}

int FindFormatIn(std::span<const FormatEntry, kFormatCount> table, std::string_view path) {
  return FindExtensionIn(table, ExtensionOf(path));
}

int FindFormat(std::string_view path) { return FindFormatIn(FormatTable(), path); }

uint32_t FormatSwitch(int row) {
  if (row < 0 || row >= kFormatCount) return 0;
  return CurrentSettings().formatEnabled[static_cast<size_t>(row)] & 0xFFFFu;
}

bool FormatEnabled(int row) { return FormatSwitch(row) == 1; }

bool CanRead(const FormatEntry& entry) {
  return !InfoRefuses(entry.info) && !ReadRefuses(entry.read);
}
bool CanWrite(const FormatEntry& entry) { return !WriteRefuses(entry.write); }

}  // namespace pxm
