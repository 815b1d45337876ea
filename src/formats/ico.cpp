#include "formats/ico.h"

#include <new>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/row_format.h"
#include "core/strings.h"
#include "formats/bmp.h"
#include "formats/icon_image.h"
#include "formats/info_start.h"

namespace pxm {
namespace {

// The directory: a 6-byte header, then one 16-byte entry per image.
enum DirectoryOffset : size_t {
  kReserved = 0,  // 0
  kType = 2,      // 1 icon, 2 cursor
  kCount = 4,
};
enum EntryOffset : size_t {
  kEntryWidth = 0,    // 0 stands for 256
  kEntryHeight = 1,   // 0 stands for 256
  kEntryColours = 2,  // 0 for 256 colours or more
  kEntryPlanes = 4,   // a cursor's hot spot x
  kEntryBits = 6,     // a cursor's hot spot y
  kEntryBytes = 8,
  kEntryOffset = 12,
};
constexpr size_t kDirectoryHeader = 6;
constexpr size_t kDirectoryEntry = 16;
constexpr uint32_t kTypeIcon = 1;
constexpr uint32_t kTypeCursor = 2;
constexpr uint32_t kLargestSide = 256;

struct Choice {
  bool cursor = false;
  uint32_t count = 0;  // entries in the directory
  IconImage image;
};

// Reads the directory and picks the image with the most pixels, the deepest of equals, the first
// of those. The directory's own sizes are often wrong (and 0 for 256), so the images' headers
// decide; images whose header cannot be read are passed over.
int Choose(InputFile& in, Choice& out) {
  uint8_t h[kDirectoryHeader];
  if (!in.ReadExact(h, sizeof h)) return kCorruptedFile;
  const uint32_t type = LoadLe16(h + kType);
  if (LoadLe16(h + kReserved) != 0 || (type != kTypeIcon && type != kTypeCursor))
    return kCorruptedFile;
  out.cursor = type == kTypeCursor;
  out.count = LoadLe16(h + kCount);
  if (out.count == 0) return kNoBitmap;
  std::vector<uint8_t> entries(out.count * kDirectoryEntry);
  if (!in.ReadExact(entries.data(), entries.size())) return kCorruptedFile;

  int firstError = kOk;
  bool found = false;
  uint64_t bestPixels = 0;
  for (uint32_t i = 0; i < out.count; ++i) {
    IconImage image;
    const uint32_t offset = LoadLe32(entries.data() + i * kDirectoryEntry + kEntryOffset);
    if (int code = DescribeIconImage(in, offset, image)) {
      if (firstError == kOk) firstError = code;
      continue;
    }
    const uint64_t pixels = uint64_t{image.width} * image.height;
    if (!found || pixels > bestPixels ||
        (pixels == bestPixels && image.fileBits > out.image.fileBits)) {
      found = true;
      bestPixels = pixels;
      out.image = image;
    }
  }
  return found ? kOk : firstError;
}

// The information header of the one image written: no compression, no resolution.
void WriteHeader(uint8_t* h, uint32_t width, uint32_t height, uint32_t fileBits,
                 uint32_t imageBytes) {
  StoreLe32(h, 40);
  StoreLe32(h + 4, width);
  StoreLe32(h + 8, 2 * height);  // the picture and its mask
  StoreLe16(h + 12, 1);
  StoreLe16(h + 14, fileBits);
  StoreLe32(h + 20, imageBytes);
}

}  // namespace

int IcoInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  Choice choice;
  if (int code = Choose(in, choice)) return code;
  if (int code = IconRecord(info, in, choice.image)) return code;
  info.description = FormatText("Windows %s, %u %s", choice.cursor ? "cursor" : "icon",
                                choice.count, choice.count == 1 ? "image" : "images");
  return kOk;
}

int IcoRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  Choice choice;
  if (int code = Choose(in, choice)) return code;
  return ReadIconImage(info, in, choice.image);
}

int IcoWrite(ImageInfo& info, const std::string& path) {
  // One image of 1, 4 or 8 bits, its sides no longer than the directory's byte can say.
  const uint32_t width = info.width;
  const uint32_t height = info.depth > 0 ? static_cast<uint32_t>(info.depth) : 0;
  if (info.bits == 0 || info.bits > 8 || width == 0 || height == 0 || width > kLargestSide ||
      height > kLargestSide)
    return kUnsuitableImage;
  const uint32_t fileBits = BmpFileBits(info.bits);
  const uint32_t colours = 1u << fileBits;
  const auto rowBytes = static_cast<uint32_t>(BmpRowBytes(width, fileBits));
  const auto maskBytes = static_cast<uint32_t>(BmpRowBytes(width, 1));
  const uint32_t imageBytes = (rowBytes + maskBytes) * height;
  const uint32_t dataBytes = 40 + 4 * colours + imageBytes;

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  uint8_t head[kDirectoryHeader + kDirectoryEntry] = {};
  StoreLe16(head + kType, kTypeIcon);
  StoreLe16(head + kCount, 1);
  uint8_t* e = head + kDirectoryHeader;
  e[kEntryWidth] = static_cast<uint8_t>(width & 0xFF);  // 256 is written as 0
  e[kEntryHeight] = static_cast<uint8_t>(height & 0xFF);
  e[kEntryColours] = static_cast<uint8_t>(colours & 0xFF);
  StoreLe16(e + kEntryPlanes, 1);
  StoreLe16(e + kEntryBits, fileBits);
  StoreLe32(e + kEntryBytes, dataBytes);
  StoreLe32(e + kEntryOffset, sizeof head);
  uint8_t header[40] = {};
  WriteHeader(header, width, height, fileBits, imageBytes);
  if (!out.Write(head, sizeof head) || !out.Write(header, sizeof header)) return kWriteError;

  uint8_t table[256 * 4] = {};
  for (uint32_t i = 0; i < colours; ++i) {
    // One-bit icons are black and white, as one-bit pictures are in every file written here.
    const Rgb c = fileBits == 1 ? (i == 0 ? Rgb{0, 0, 0} : Rgb{255, 255, 255}) : info.palette[i];
    table[4 * i] = c.blue;
    table[4 * i + 1] = c.green;
    table[4 * i + 2] = c.red;
  }
  if (!out.Write(table, 4 * colours)) return kWriteError;

  std::vector<uint8_t> row;
  try {
    row.assign(WorkingRowSize(width, info.bits), 0);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  // Rows bottom first, as stored rows are packed; then the mask, all clear: every pixel opaque.
  for (uint32_t i = 0; i < height; ++i) {
    if (info.getLine(row, static_cast<int32_t>(height - 1 - i)) != 0) return kCancelled;
    if (!out.Write(row.data(), rowBytes)) return kWriteError;
  }
  const std::vector<uint8_t> mask(maskBytes * height, 0);
  if (!out.Write(mask.data(), mask.size())) return kWriteError;
  return out.Commit() ? kOk : kWriteError;
}

}  // namespace pxm
