#include "support/icon_files.h"

#include <algorithm>
#include <map>

#include "core/bytes.h"
#include "support/decoded.h"

namespace pxm::test {
namespace {

std::string Pad(std::string s, size_t multiple) {
  while (s.size() % multiple) s += '\0';
  return s;
}

// The resources grouped by type, types in increasing order.
std::map<uint32_t, std::vector<const LibraryResource*>> ByType(
    const std::vector<LibraryResource>& resources) {
  std::map<uint32_t, std::vector<const LibraryResource*>> out;
  for (const LibraryResource& r : resources) out[r.type].push_back(&r);
  return out;
}

std::string Zeros(size_t n) {
  return std::string(n, '\0');
}

// A DOS header whose pointer leads to the newer header at 64.
std::string DosHeader() {
  std::string s = "MZ" + std::string(58, '\0') + Le(64, 4);
  return s;
}

}  // namespace

Rgb IconPaletteEntry(uint32_t i) {
  return Rgb{static_cast<uint8_t>(i * 7 + 1), static_cast<uint8_t>(i * 3),
             static_cast<uint8_t>(255 - i)};
}

std::string DibBytes(uint32_t width, int32_t height, uint32_t bits, const PixelFunction& pixel,
                     bool icon) {
  const uint32_t colours = bits <= 8 ? 1u << bits : 0;
  const uint32_t rowBytes = (width * bits + 31) / 32 * 4;
  const uint32_t maskBytes = (width + 31) / 32 * 4;
  std::string s = Le(40, 4) + Le(width, 4) +
                  Le(static_cast<uint32_t>(icon ? 2 * height : height), 4) + Le(1, 2) +
                  Le(bits, 2) + Le(0, 4) + Le(0, 4) + std::string(16, '\0');
  for (uint32_t i = 0; i < colours; ++i) {
    const Rgb c = IconPaletteEntry(i);
    s += Raw({c.blue, c.green, c.red, 0});
  }
  for (int32_t y = height - 1; y >= 0; --y) {
    std::string row(rowBytes, '\0');
    for (uint32_t x = 0; x < width; ++x) {
      const uint32_t v = pixel(x, y);
      const uint32_t r = v >> 16, g = (v >> 8) & 255, b = v & 255;
      if (bits < 8) {
        const uint32_t bit = x * bits;
        row[bit / 8] = static_cast<char>(row[bit / 8] | (v << (8 - bits - bit % 8)));
      } else if (bits == 8) {
        row[x] = static_cast<char>(v);
      } else if (bits == 16) {
        row.replace(2 * x, 2, Le((r >> 3) << 10 | (g >> 3) << 5 | b >> 3, 2));
      } else {
        const size_t at = x * (bits / 8);
        row.replace(at, 3, Raw({static_cast<int>(b), static_cast<int>(g), static_cast<int>(r)}));
        if (bits == 32) row[at + 3] = '\x80';
      }
    }
    s += row;
  }
  if (icon) s += std::string(maskBytes * static_cast<uint32_t>(height), '\xFF');
  return s;
}

std::string IconFile(uint32_t type, const std::vector<std::string>& images) {
  std::string s = Le(0, 2) + Le(type, 2) + Le(static_cast<uint32_t>(images.size()), 2);
  auto offset = static_cast<uint32_t>(6 + 16 * images.size());
  for (const std::string& image : images) {
    s += std::string(4, '\0') + Le(1, 2) + Le(0, 2) + Le(static_cast<uint32_t>(image.size()), 4) +
         Le(offset, 4);
    offset += static_cast<uint32_t>(image.size());
  }
  for (const std::string& image : images) s += image;
  return s;
}

std::string IconGroup(const std::vector<uint32_t>& iconIds,
                      const std::vector<LibraryResource>& resources) {
  std::string s = Le(0, 2) + Le(1, 2) + Le(static_cast<uint32_t>(iconIds.size()), 2);
  for (uint32_t id : iconIds)
    for (const LibraryResource& r : resources) {
      if (r.type != 3 || r.id != id) continue;
      const auto* b = reinterpret_cast<const uint8_t*>(r.data.data());
      const uint32_t bits = LoadLe16(b + 14);
      s += Raw({b[4], b[8] / 2, bits < 8 ? 1 << bits : 0, 0}) + Le(1, 2) + Le(bits, 2) +
           Le(static_cast<uint32_t>(r.data.size()), 4) + Le(id, 2);
    }
  return s;
}

std::string PeLibrary(const std::vector<LibraryResource>& resources, bool pe64) {
  // The resource section, laid out as: the type directory, one name directory per type, one
  // language directory and one data entry per resource, then the data.
  const auto types = ByType(resources);
  constexpr uint32_t kRva = 0x1000;
  uint32_t at = 16 + 8 * static_cast<uint32_t>(types.size());
  std::map<uint32_t, uint32_t> nameDir;
  for (const auto& [type, list] : types) {
    nameDir[type] = at;
    at += 16 + 8 * static_cast<uint32_t>(list.size());
  }
  const uint32_t languageDirs = at;
  at += 24 * static_cast<uint32_t>(resources.size());
  const uint32_t dataEntries = at;
  at += 16 * static_cast<uint32_t>(resources.size());

  std::string section = Zeros(12) + Le(0, 2) + Le(static_cast<uint32_t>(types.size()), 2);
  for (const auto& [type, list] : types) section += Le(type, 4) + Le(0x80000000 | nameDir[type], 4);
  std::string data;
  uint32_t k = 0;
  std::string languages, entries;
  for (const auto& [type, list] : types) {
    section += Zeros(12) + Le(0, 2) + Le(static_cast<uint32_t>(list.size()), 2);
    for (const LibraryResource* r : list) {
      section += Le(r->id, 4) + Le(0x80000000 | (languageDirs + 24 * k), 4);
      languages += Zeros(12) + Le(0, 2) + Le(1, 2) + Le(1033, 4) + Le(dataEntries + 16 * k, 4);
      entries += Le(kRva + at + static_cast<uint32_t>(data.size()), 4) +
                 Le(static_cast<uint32_t>(r->data.size()), 4) + Zeros(8);
      data += Pad(r->data, 4);
      ++k;
    }
  }
  section = Pad(section + languages + entries + data, 512);

  const uint32_t optionalSize = pe64 ? 240 : 224;
  std::string optional = Le(pe64 ? 0x20B : 0x10B, 2) + std::string(optionalSize - 2, '\0');
  const size_t count = pe64 ? 108 : 92;
  optional.replace(count, 4, Le(16, 4));
  optional.replace(count + 4 + 16, 8, Le(kRva, 4) + Le(at, 4));
  // Section and file alignment, image and header sizes, and the subsystem (2, windows).
  optional.replace(32, 8, Le(0x1000, 4) + Le(0x200, 4));
  optional.replace(56, 8, Le(0x2000, 4) + Le(0x200, 4));
  optional.replace(68, 2, Le(2, 2));
  std::string s = DosHeader() + "PE" + std::string(2, '\0') + Le(pe64 ? 0x8664 : 0x14C, 2) +
                  Le(1, 2) + Zeros(12) + Le(optionalSize, 2) + Le(0x2102, 2) + optional;
  s += ".rsrc" + std::string(3, '\0') + Le(at, 4) + Le(kRva, 4) +
       Le(static_cast<uint32_t>(section.size()), 4) + Le(0x200, 4) + Zeros(12) + Le(0x40000040, 4);
  return Pad(s, 0x200) + section;
}

std::string NeLibrary(const std::vector<LibraryResource>& resources) {
  // Offsets and lengths count in 16-byte units; the data starts after the tables.
  constexpr uint32_t kShift = 4;
  const auto types = ByType(resources);
  const uint32_t tableSize = 2 + 8 * static_cast<uint32_t>(types.size()) +
                             12 * static_cast<uint32_t>(resources.size()) + 2 + 1;
  const std::string residentNames = Raw({4}) + "TEST" + Le(0, 2) + Raw({0});
  uint32_t dataAt = (64 + 64 + tableSize + static_cast<uint32_t>(residentNames.size()) + 15) & ~15u;
  std::string table = Le(kShift, 2), data;
  for (const auto& [type, list] : types) {
    table += Le(0x8000 | type, 2) + Le(static_cast<uint32_t>(list.size()), 2) + Le(0, 4);
    for (const LibraryResource* r : list) {
      const std::string padded = Pad(r->data, 16);
      table += Le((dataAt + static_cast<uint32_t>(data.size())) >> kShift, 2) +
               Le(static_cast<uint32_t>(padded.size()) >> kShift, 2) + Le(0x30, 2) +
               Le(0x8000 | r->id, 2) + Le(0, 4);
      data += padded;
    }
  }
  table += Le(0, 2) + Raw({0});  // the end of the types, and no resource names
  const auto names = static_cast<uint32_t>(64 + table.size());
  const auto end = static_cast<uint32_t>(names + residentNames.size());
  // The header: the resource table at 64, the resident names after it, and the other tables
  // (entries, modules, imported names) empty where the resident names end.
  std::string ne = "NE" + Raw({5, 10}) + Le(end, 2) + Zeros(64 - 6);
  ne.replace(0x22, 2, Le(64, 2));
  ne.replace(0x24, 2, Le(64, 2));
  ne.replace(0x26, 2, Le(names, 2));
  ne.replace(0x28, 2, Le(end, 2));
  ne.replace(0x2A, 2, Le(end, 2));
  ne.replace(0x36, 1, Raw({2}));  // target: Windows
  std::string s = DosHeader() + ne + table + residentNames;
  s += std::string(dataAt - s.size(), '\0');
  return s + data;
}

}  // namespace pxm::test
