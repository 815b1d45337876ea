#include "formats/info_start.h"

#include "core/error_codes.h"
#include "core/names.h"

namespace pxm {

void StartInfo(ImageInfo& info, const std::string& path) {
  SetText(info.fileName, NamePart(path), kMaxNameLength);
  info.description.clear();
  info.background = 0;
}

int OpenForInfo(ImageInfo& info, const std::string& path, InputFile& in) {
  StartInfo(info, path);
  if (!in.Open(path, info.embedded)) return kOpenError;
  info.fileSize = static_cast<int32_t>(in.Size());
  return kOk;
}

uint64_t PackedPictureBytes(uint32_t width, uint64_t depth, uint32_t bits) {
  // Width and bits are 32-bit: their product, and the 7 added to it, fit in 64 bits.
  return RowsBytes((static_cast<uint64_t>(width) * bits + 7) / 8, depth);
}

uint64_t RowsBytes(uint64_t rowBytes, uint64_t rows) {
  if (rowBytes != 0 && rows > UINT64_MAX / rowBytes) return UINT64_MAX;
  return rowBytes * rows;
}

bool FileCouldHold(uint64_t fileBytes, uint64_t headerBytes, uint64_t pictureBytes,
                   uint64_t bestRatio) {
  if (fileBytes < headerBytes) return pictureBytes == 0;
  const uint64_t data = fileBytes - headerBytes;
  if (bestRatio != 0 && data > UINT64_MAX / bestRatio) return true;
  return pictureBytes <= data * bestRatio;
}

}  // namespace pxm
