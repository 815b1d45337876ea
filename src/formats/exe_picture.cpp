#include "formats/exe_picture.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "formats/bmp.h"
#include "formats/format_table.h"
#include "formats/gif.h"
#include "formats/info_start.h"
#include "formats/pcx.h"

namespace pxm {
namespace {

// The MZ header: signature, bytes in the last 512-byte page, pages; the offset of a newer
// header (a Windows program's) at 0x3C.
constexpr size_t kMzHeaderBytes = 0x40;
constexpr size_t kMzLastPage = 2;
constexpr size_t kMzPages = 4;
constexpr size_t kMzNewHeader = 0x3C;
constexpr uint64_t kPageBytes = 512;

// The PE header: signature, then the file header whose section count is at 6 and optional
// header size at 20; the section table follows the optional header, 40 bytes a section with the
// size and offset of its data at 16 and 20.
constexpr size_t kPeFileHeaderBytes = 24;
constexpr size_t kPeSectionBytes = 40;
constexpr uint32_t kMaxSections = 96;
constexpr uint64_t kBestRatio = 4096;

// Where the DOS image ends: whole pages, the last one partly used when its count is not 0.
uint64_t DosImageEnd(const uint8_t* mz) {
  const uint64_t pages = LoadLe16(mz + kMzPages);
  const uint64_t last = LoadLe16(mz + kMzLastPage);
  if (pages == 0) return 0;
  return last == 0 || last >= kPageBytes ? pages * kPageBytes : (pages - 1) * kPageBytes + last;
}

// Where the data of the last PE section ends, or 0 when there is no PE image.
uint64_t PeImageEnd(InputFile& in, const uint8_t* mz) {
  const uint64_t at = LoadLe32(mz + kMzNewHeader);
  uint8_t pe[kPeFileHeaderBytes];
  if (!in.Seek(at) || !in.ReadExact(pe, sizeof pe) || std::memcmp(pe, "PE\0\0", 4) != 0) return 0;
  const uint32_t sections = std::min<uint32_t>(LoadLe16(pe + 6), kMaxSections);
  if (!in.Seek(at + kPeFileHeaderBytes + LoadLe16(pe + 20))) return 0;
  uint64_t end = 0;
  for (uint32_t i = 0; i < sections; ++i) {
    uint8_t s[kPeSectionBytes];
    if (!in.ReadExact(s, sizeof s)) break;
    end = std::max<uint64_t>(end, uint64_t{LoadLe32(s + 20)} + LoadLe32(s + 16));
  }
  return end;
}

// The format whose signature starts at `offset`, if any.
EmbeddedKind SignatureAt(InputFile& in, uint64_t offset) {
  uint8_t h[18];  // as far as a BMP's information header size
  if (!in.Seek(offset) || !in.ReadExact(h, sizeof h)) return EmbeddedKind::kNone;
  if (std::memcmp(h, "GIF87a", 6) == 0 || std::memcmp(h, "GIF89a", 6) == 0)
    return EmbeddedKind::kGif;
  // A BMP file header and one of the information headers the BMP code knows by its size.
  const uint32_t infoBytes = LoadLe32(h + 14);
  if (h[0] == 'B' && h[1] == 'M' && (infoBytes == 12 || (infoBytes >= 40 && infoBytes <= 124)))
    return EmbeddedKind::kBmp;
  // PCX: the mark 10, a known version, run-length encoding, a known bit count.
  if (h[0] == 10 && (h[1] <= 5 && h[1] != 1) && h[2] == 1 &&
      (h[3] == 1 || h[3] == 2 || h[3] == 4 || h[3] == 8))
    return EmbeddedKind::kPcx;
  return EmbeddedKind::kNone;
}

struct Handlers {
  InfoHandler info;
  ReadHandler read;
  std::string_view name;
};

Handlers HandlersOf(EmbeddedKind kind) {
  switch (kind) {
    case EmbeddedKind::kPcx:
      return {PcxInfo, PcxRead, "PCX"};
    case EmbeddedKind::kGif:
      return {GifInfo, GifRead, "GIF"};
    default:
      return {BmpInfo, BmpRead, "BMP"};
  }
}

}  // namespace

int FindEmbeddedPicture(InputFile& in, EmbeddedPicture& out) {
  uint8_t mz[kMzHeaderBytes] = {};
  if (!in.Seek(0) || in.Read(mz, sizeof mz) < 0x1C || mz[0] != 'M' || mz[1] != 'Z')
    return kCorruptedFile;
  std::vector<uint64_t> places;
  for (uint64_t end : {DosImageEnd(mz), PeImageEnd(in, mz)}) {
    if (end == 0) continue;
    for (uint64_t boundary : {uint64_t{1}, uint64_t{16}, kPageBytes})
      places.push_back((end + boundary - 1) / boundary * boundary);
  }
  for (uint64_t at : places) {
    if (at >= in.Size()) continue;
    if (EmbeddedKind kind = SignatureAt(in, at); kind != EmbeddedKind::kNone) {
      out = {kind, at};
      return kOk;
    }
  }
  return kNoBitmap;
}

int ExeInfo(ImageInfo& info, const std::string& path, int purpose) {
  info.embedded = {};
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  const auto fileSize = info.fileSize;
  const uint64_t wholeBytes = in.Size();
  EmbeddedPicture found;
  if (int code = FindEmbeddedPicture(in, found)) return code;
  in.Close();
  const Handlers h = HandlersOf(found.kind);
  info.embedded = {found.offset, 0};
  const int code = h.info(info, path, purpose);
  // The record tells of the program file; the picture's comments are not looked for in it.
  info.fileSize = fileSize;
  info.readComments = nullptr;
  if (code != kOk) return code;
  // Whatever the picture's own format allows, no picture here packs more than 4096 bytes into one
  // (a GIF code stands for at most 4096 pixels): a header declaring more is damaged.
  if (!FileCouldHold(
          wholeBytes - found.offset, 0,
          PackedPictureBytes(info.width, static_cast<uint64_t>(std::max(info.depth, 0)), info.bits),
          kBestRatio))
    return kCorruptedFile;
  std::string description =
      std::string(h.name) + " picture at byte " + std::to_string(found.offset);
  if (!info.description.empty()) description += ", " + info.description;
  SetText(info.description, description, kMaxDescriptionLength);
  return kOk;
}

int ExeRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  EmbeddedPicture found;
  if (int code = FindEmbeddedPicture(in, found)) return code;
  in.Close();
  info.embedded = {found.offset, 0};
  return HandlersOf(found.kind).read(info, path);
}

}  // namespace pxm
