#include "formats/win_resources.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "core/bytes.h"
#include "core/error_codes.h"

namespace pxm {
namespace {

// The DOS header's pointer to the header of the newer layout.
constexpr uint64_t kNewHeaderPointer = 0x3C;
constexpr size_t kDosHeader = 64;

// Offsets in the 16-bit layout's header: the resource table and the table after it.
constexpr size_t kNeResourceTable = 0x24;
constexpr size_t kNeResidentNames = 0x26;
constexpr size_t kNeHeader = 64;
constexpr uint32_t kNeIntegerId = 0x8000;

// Offsets after the 4-byte "PE" signature: the file header, then the optional header, whose
// directory of tables sits at a different place in the 32- and 64-bit forms.
constexpr size_t kPeSections = 2;
constexpr size_t kPeOptionalSize = 16;
constexpr size_t kPeFileHeader = 20;
constexpr uint32_t kPe32Magic = 0x10B;
constexpr uint32_t kPe64Magic = 0x20B;
constexpr size_t kPe32TableCount = 92;
constexpr size_t kPe64TableCount = 108;
constexpr size_t kResourceTableIndex = 2;
constexpr size_t kSectionEntry = 40;
constexpr uint32_t kSubdirectory = 0x80000000;
constexpr uint32_t kNamed = 0x80000000;

// Damaged tables can claim any number of entries, and PE directories can share or loop back to
// each other: the walk ends after this many entries, far more than any library holds.
constexpr uint32_t kMostEntries = 65536;
constexpr size_t kMostResources = 4096;

bool Wanted(uint32_t type) {
  return type == kResourceBitmap || type == kResourceIcon || type == kResourceGroupIcon;
}

int ReadNe(InputFile& in, uint64_t ne, std::vector<Resource>& out) {
  uint8_t h[kNeHeader];
  if (!in.Seek(ne) || !in.ReadExact(h, sizeof h)) return kCorruptedFile;
  const uint32_t table = LoadLe16(h + kNeResourceTable);
  if (table == LoadLe16(h + kNeResidentNames)) return kNoBitmap;  // an empty resource table
  uint8_t b[12];
  if (!in.Seek(ne + table) || !in.ReadExact(b, 2)) return kCorruptedFile;
  // Offsets and lengths count in units of 2^shift bytes.
  const uint32_t shift = LoadLe16(b);
  if (shift > 24) return kCorruptedFile;
  uint32_t visited = 0;
  for (;;) {
    if (!in.ReadExact(b, 2)) return kCorruptedFile;
    const uint32_t type = LoadLe16(b);
    if (type == 0) return kOk;
    if (!in.ReadExact(b, 6)) return kCorruptedFile;
    const uint32_t count = LoadLe16(b);
    for (uint32_t i = 0; i < count; ++i) {
      if (++visited > kMostEntries || out.size() >= kMostResources) return kOk;
      // Offset, length, flags, number, and two words used only while the program runs.
      if (!in.ReadExact(b, 12)) return kCorruptedFile;
      if (!(type & kNeIntegerId) || !Wanted(type & ~kNeIntegerId)) continue;
      const uint32_t id = LoadLe16(b + 6);
      out.push_back({type & ~kNeIntegerId, (id & kNeIntegerId) ? id & ~kNeIntegerId : 0,
                     uint64_t{LoadLe16(b)} << shift, uint64_t{LoadLe16(b + 2)} << shift});
    }
  }
}

class PeWalk {
 public:
  PeWalk(InputFile& in, std::vector<Resource>& out) : in_(in), out_(out) {}

  int Run(uint64_t pe, LibraryKind& kind) {
    uint8_t h[kPeFileHeader];
    if (!in_.Seek(pe + 4) || !in_.ReadExact(h, sizeof h)) return kCorruptedFile;
    const uint32_t sections = LoadLe16(h + kPeSections);
    const uint32_t optionalSize = LoadLe16(h + kPeOptionalSize);
    std::vector<uint8_t> optional(optionalSize);
    if (optionalSize < 2 || !in_.ReadExact(optional.data(), optional.size())) return kCorruptedFile;
    const uint32_t magic = LoadLe16(optional.data());
    if (magic != kPe32Magic && magic != kPe64Magic) return kUnsupportedFormat;
    kind = magic == kPe32Magic ? LibraryKind::kPe32 : LibraryKind::kPe64;
    const size_t countAt = magic == kPe32Magic ? kPe32TableCount : kPe64TableCount;
    const size_t entryAt = countAt + 4 + 8 * kResourceTableIndex;
    if (optionalSize < entryAt + 8 || LoadLe32(optional.data() + countAt) <= kResourceTableIndex)
      return kNoBitmap;
    const uint32_t rva = LoadLe32(optional.data() + entryAt);
    if (rva == 0 || LoadLe32(optional.data() + entryAt + 4) == 0) return kNoBitmap;

    sections_.resize(size_t{sections} * kSectionEntry);
    if (!in_.ReadExact(sections_.data(), sections_.size())) return kCorruptedFile;
    if (!Map(rva, root_)) return kCorruptedFile;
    return WalkTypes();
  }

 private:
  // The file offset of a relative virtual address, through the section that holds it on disc.
  bool Map(uint32_t rva, uint64_t& offset) const {
    for (size_t at = 0; at < sections_.size(); at += kSectionEntry) {
      const uint8_t* s = sections_.data() + at;
      const uint32_t address = LoadLe32(s + 12);
      const uint32_t rawSize = LoadLe32(s + 16);
      if (rva >= address && rva - address < rawSize) {
        offset = uint64_t{LoadLe32(s + 20)} + (rva - address);
        return true;
      }
    }
    return false;
  }

  // The entries of the directory at `offset` from the table's start: name or number, and where
  // the entry leads.
  bool Directory(uint32_t offset, std::vector<std::pair<uint32_t, uint32_t>>& entries) {
    entries.clear();
    uint8_t d[16];
    if (!in_.Seek(root_ + offset) || !in_.ReadExact(d, sizeof d)) return false;
    const uint32_t count = LoadLe16(d + 12) + LoadLe16(d + 14);
    for (uint32_t i = 0; i < count; ++i) {
      if (++visited_ > kMostEntries) return false;
      uint8_t e[8];
      if (!in_.ReadExact(e, sizeof e)) return false;
      entries.emplace_back(LoadLe32(e), LoadLe32(e + 4));
    }
    return true;
  }

  int WalkTypes() {
    std::vector<std::pair<uint32_t, uint32_t>> types;
    if (!Directory(0, types)) return kCorruptedFile;
    std::vector<std::pair<uint32_t, uint32_t>> names;
    std::vector<std::pair<uint32_t, uint32_t>> languages;
    for (const auto& [type, to] : types) {
      if ((type & kNamed) || !Wanted(type) || !(to & kSubdirectory)) continue;
      if (!Directory(to & ~kSubdirectory, names)) break;
      for (const auto& [name, next] : names) {
        uint32_t data = next;
        // The third level holds one entry per language; the first is taken.
        if (next & kSubdirectory) {
          if (!Directory(next & ~kSubdirectory, languages)) return kOk;
          if (languages.empty() || (languages[0].second & kSubdirectory)) continue;
          data = languages[0].second;
        }
        uint8_t d[8];
        uint64_t offset;
        if (!in_.Seek(root_ + data) || !in_.ReadExact(d, sizeof d)) continue;
        if (!Map(LoadLe32(d), offset)) continue;
        out_.push_back({type, (name & kNamed) ? 0 : name & 0xFFFF, offset, LoadLe32(d + 4)});
        if (out_.size() >= kMostResources) return kOk;
      }
    }
    return kOk;
  }

  InputFile& in_;
  std::vector<Resource>& out_;
  std::vector<uint8_t> sections_;
  uint64_t root_ = 0;
  uint32_t visited_ = 0;
};

}  // namespace

int ReadResources(InputFile& in, LibraryKind& kind, std::vector<Resource>& out) {
  out.clear();
  uint8_t dos[kDosHeader];
  if (!in.Seek(0) || !in.ReadExact(dos, sizeof dos) || dos[0] != 'M' || dos[1] != 'Z')
    return kCorruptedFile;
  const uint64_t header = LoadLe32(dos + kNewHeaderPointer);
  uint8_t signature[4];
  // A plain DOS program points nowhere useful; LE and LX files keep no such tables.
  if (header < kDosHeader || !in.Seek(header) || !in.ReadExact(signature, sizeof signature))
    return kUnsupportedFormat;
  if (signature[0] == 'N' && signature[1] == 'E') {
    kind = LibraryKind::kNe16;
    return ReadNe(in, header, out);
  }
  if (std::memcmp(signature, "PE\0\0", 4) == 0) return PeWalk(in, out).Run(header, kind);
  return kUnsupportedFormat;
}

}  // namespace pxm
