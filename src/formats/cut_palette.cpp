#include "formats/cut_palette.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "core/bytes.h"
#include "core/names.h"
#include "core/platform.h"

namespace pxm {
namespace {

// The 40-byte header of a palette file; words are little-endian.
enum PaletteOffset : size_t {
  kFileId = 0,  // "AH"
  kVersion = 2,
  kSize = 4,      // bytes after the header
  kFileType = 6,  // 0x0A for a palette
  kSubType = 7,
  kBoardId = 8,
  kGraphicsMode = 10,
  kMaxIndex = 12,  // the last entry
  kMaxRed = 14,    // the level that means full red
  kMaxGreen = 16,
  kMaxBlue = 18,
  kPaletteId = 20,  // "Dr. Halo", padded with zeros to 20 bytes
};
constexpr size_t kPaletteHeaderBytes = 40;
// Entries are three words and never straddle the 512-byte blocks the file is kept in: an entry
// that would is moved to the next block.
constexpr size_t kPaletteBlock = 512;
constexpr size_t kEntryBytes = 6;
constexpr uint64_t kLargestPaletteFile = 64 * 1024;

bool StraddlesBlock(size_t pos) {
  return pos % kPaletteBlock > kPaletteBlock - kEntryBytes;
}

uint8_t Scale(uint32_t level, uint32_t max) {
  if (max == 0 || max == 255) return static_cast<uint8_t>(std::min<uint32_t>(level, 255));
  return static_cast<uint8_t>(std::min<uint64_t>(uint64_t{level} * 255 / max, 255));
}

}  // namespace

std::optional<std::string> FindHaloPalette(const std::string& picturePath) {
  const std::string stem = StripExtension(picturePath);
  for (const char* ext : {".pal", ".PAL", ".Pal"})
    if (platform::FileExists(stem + ext) && !platform::IsDirectory(stem + ext)) return stem + ext;
  const std::string wanted = NamePart(stem) + ".pal";
  std::string dir = DirectoryPart(picturePath);
  std::error_code error;
  std::vector<std::string> found;
  for (const auto& entry : std::filesystem::directory_iterator(dir.empty() ? "." : dir, error)) {
    const std::string name = entry.path().filename().string();
    if (EqualsIgnoreCase(name, wanted) && entry.is_regular_file(error)) found.push_back(name);
  }
  if (found.empty()) return std::nullopt;
  std::sort(found.begin(), found.end());
  return dir + found.front();
}

std::string HaloPaletteNameFor(const std::string& picturePath) {
  if (auto existing = FindHaloPalette(picturePath)) return *existing;
  const std::string ext = ExtensionOf(picturePath);
  const bool upper = !ext.empty() && ext == ToUpperAscii(ext);
  return StripExtension(picturePath) + (upper ? ".PAL" : ".pal");
}

bool ReadHaloPalette(const std::string& path, Palette& palette) {
  std::vector<uint8_t> bytes;
  if (!ReadWholeFile(path, bytes, kLargestPaletteFile)) return false;
  if (bytes.size() < kPaletteHeaderBytes || bytes[kFileId] != 'A' || bytes[kFileId + 1] != 'H')
    return false;
  const uint32_t entries = std::min<uint32_t>(LoadLe16(&bytes[kMaxIndex]) + 1u, 256);
  const uint32_t maxRed = LoadLe16(&bytes[kMaxRed]);
  const uint32_t maxGreen = LoadLe16(&bytes[kMaxGreen]);
  const uint32_t maxBlue = LoadLe16(&bytes[kMaxBlue]);
  size_t pos = kPaletteHeaderBytes;
  for (uint32_t i = 0; i < entries; ++i) {
    if (StraddlesBlock(pos)) pos += kPaletteBlock - pos % kPaletteBlock;
    if (pos + kEntryBytes > bytes.size()) break;  // a short file leaves the rest as it was
    palette[i] =
        Rgb{Scale(LoadLe16(&bytes[pos]), maxRed), Scale(LoadLe16(&bytes[pos + 2]), maxGreen),
            Scale(LoadLe16(&bytes[pos + 4]), maxBlue)};
    pos += kEntryBytes;
  }
  return true;
}

bool WriteHaloPalette(OutputFile& out, const Palette& palette, uint32_t entries) {
  std::vector<uint8_t> bytes(kPaletteHeaderBytes, 0);
  for (uint32_t i = 0; i < entries; ++i) {
    if (StraddlesBlock(bytes.size()))
      bytes.resize(bytes.size() + kPaletteBlock - bytes.size() % kPaletteBlock, 0);
    const Rgb& c = palette[i];
    for (uint8_t level : {c.red, c.green, c.blue}) bytes.insert(bytes.end(), {level, 0});
  }
  bytes[kFileId] = 'A';
  bytes[kFileId + 1] = 'H';
  StoreLe16(&bytes[kSize], static_cast<uint32_t>(bytes.size() - kPaletteHeaderBytes));
  bytes[kFileType] = 0x0A;
  StoreLe16(&bytes[kMaxIndex], entries - 1);
  for (size_t at : {kMaxRed, kMaxGreen, kMaxBlue}) StoreLe16(&bytes[at], 255);
  const char id[] = "Dr. Halo";
  std::copy(id, id + sizeof id - 1, bytes.begin() + kPaletteId);
  return out.Write(bytes.data(), bytes.size());
}

}  // namespace pxm
