#include "formats/dll.h"

#include <algorithm>
#include <map>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/strings.h"
#include "formats/dib.h"
#include "formats/icon_image.h"
#include "formats/info_start.h"
#include "formats/win_resources.h"

namespace pxm {
namespace {

constexpr size_t kMostNames = 128;
constexpr size_t kMostNameLength = 55;
// Entries of an icon group: width, height, colours, reserved, planes, bits, bytes, number.
constexpr size_t kGroupHeader = 6;
constexpr size_t kGroupEntry = 14;
constexpr size_t kGroupEntryId = 12;
constexpr uint32_t kMostGroupEntries = 65536;

struct LibraryPicture {
  bool icon = false;
  uint64_t offset = 0;
};

// The pictures in the order users meet them: the icons group by group, as each group lists its
// images (an image two groups share counts once), then icons no group names, then the bitmaps.
std::vector<LibraryPicture> Pictures(InputFile& in, const std::vector<Resource>& resources) {
  std::vector<LibraryPicture> out;
  std::vector<bool> taken(resources.size(), false);
  std::map<uint32_t, size_t> iconById;
  for (size_t k = 0; k < resources.size(); ++k)
    if (resources[k].type == kResourceIcon && resources[k].id != 0)
      iconById.emplace(resources[k].id, k);
  uint32_t entriesRead = 0;
  for (const Resource& group : resources) {
    if (group.type != kResourceGroupIcon) continue;
    uint8_t h[kGroupHeader];
    if (!in.Seek(group.offset) || !in.ReadExact(h, sizeof h)) continue;
    const uint32_t count = LoadLe16(h + 4);
    for (uint32_t i = 0; i < count && ++entriesRead <= kMostGroupEntries; ++i) {
      uint8_t e[kGroupEntry];
      if (!in.ReadExact(e, sizeof e)) break;
      auto found = iconById.find(LoadLe16(e + kGroupEntryId));
      if (found == iconById.end() || taken[found->second]) continue;
      taken[found->second] = true;
      out.push_back({true, resources[found->second].offset});
    }
  }
  for (size_t k = 0; k < resources.size(); ++k)
    if (resources[k].type == kResourceIcon && !taken[k]) out.push_back({true, resources[k].offset});
  for (const Resource& r : resources)
    if (r.type == kResourceBitmap) out.push_back({false, r.offset});
  return out;
}

struct Library {
  InputFile in;
  LibraryKind kind = LibraryKind::kPe32;
  std::vector<LibraryPicture> pictures;

  // Answers 0, or the code of a file that is no library or has no pictures.
  int Open(const std::string& path) {
    if (!in.Open(path)) return kOpenError;
    return Load();
  }
  int Load() {
    std::vector<Resource> resources;
    if (int code = ReadResources(in, kind, resources)) return code;
    pictures = Pictures(in, resources);
    return kOk;
  }
};

// Describes picture `index` into `info`: its size, bits and colours.
int Describe(Library& library, uint32_t index, ImageInfo& info) {
  const LibraryPicture& p = library.pictures[index];
  if (p.icon) {
    IconImage icon;
    if (int code = DescribeIconImage(library.in, p.offset, icon)) return code;
    return IconRecord(info, library.in, icon);
  }
  DibLayout dib;
  if (int code = ParseDib(library.in, p.offset, DibKind::kBitmap, dib)) return code;
  DescribeDib(info, dib);
  return kOk;
}

const char* KindText(LibraryKind kind) {
  switch (kind) {
    case LibraryKind::kNe16:
      return "16-bit";
    case LibraryKind::kPe32:
      return "32-bit";
    case LibraryKind::kPe64:
      return "64-bit";
  }
  return "";
}

}  // namespace

int DllInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  Library library;
  if (int code = OpenForInfo(info, path, library.in)) return code;
  if (int code = library.Load()) return code;
  const auto count = static_cast<uint32_t>(library.pictures.size());
  info.imageCount = count;
  info.description = FormatText("%s Windows library, %u %s", KindText(library.kind), count,
                                count == 1 ? "image" : "images");
  if (info.imageIndex >= count) return kNoBitmap;
  return Describe(library, info.imageIndex, info);
}

int DllRead(ImageInfo& info, const std::string& path) {
  Library library;
  if (int code = library.Open(path)) return code;
  if (info.imageIndex >= library.pictures.size()) return kNoBitmap;
  const LibraryPicture& p = library.pictures[info.imageIndex];
  if (p.icon) {
    IconImage icon;
    if (int code = DescribeIconImage(library.in, p.offset, icon)) return code;
    return ReadIconImage(info, library.in, icon);
  }
  DibLayout dib;
  if (int code = ParseDib(library.in, p.offset, DibKind::kBitmap, dib)) return code;
  return ReadDibRows(info, library.in, dib);
}

int DllList(ImageInfo& info, const std::string& path, std::vector<std::string>& names) {
  Library library;
  if (int code = library.Open(path)) return code;
  info.imageCount = static_cast<uint32_t>(library.pictures.size());
  if (library.pictures.empty()) return kNoBitmap;
  uint32_t icons = 0;
  uint32_t bitmaps = 0;
  for (size_t i = 0; i < library.pictures.size(); ++i) {
    const bool icon = library.pictures[i].icon;
    const uint32_t number = icon ? ++icons : ++bitmaps;
    if (names.size() >= kMostNames) continue;  // further names are dropped
    const uint64_t offset = library.pictures[i].offset;
    IconImage image;
    DibLayout dib;
    std::string size = "damaged";
    if (icon && DescribeIconImage(library.in, offset, image) == kOk)
      size = ImageSizeText(image.width, image.height, image.fileBits);
    if (!icon && ParseDib(library.in, offset, DibKind::kBitmap, dib) == kOk)
      size = ImageSizeText(dib.width, dib.height, dib.fileBits);
    const std::string name =
        FormatText("%s %u (%s)", icon ? "Icon" : "Bitmap", number, size.c_str());
    names.push_back(name.substr(0, kMostNameLength));
  }
  return kOk;
}

}  // namespace pxm
