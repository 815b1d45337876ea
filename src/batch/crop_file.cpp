#include "batch/crop_file.h"

#include <algorithm>

#include "batch/output_name.h"
#include "batch/picture_command.h"
#include "core/error_codes.h"
#include "core/sources.h"
#include "thumbs/auto_thumbnail.h"

namespace pxm {

int SaveCrop(Host& host, const ImageInfo& current, ImageStore& store, CropRect rect, int destRow,
             const std::string& output, FormatTableView table) {
  if (destRow < 0 || destRow >= kFormatCount) return kUnsupportedFormat;
  const FormatEntry& destination = table[static_cast<size_t>(destRow)];
  if (destination.maxBits < current.bits) return kTooManyColours;
  if (!destination.write) return kUnsupportedFunction;

  // A display scale that rounds the bitmap up can put the far corner just past the picture.
  const uint32_t depth = static_cast<uint32_t>(std::max(current.depth, 0));
  if (rect.x >= current.width || rect.y >= depth) return kUnsuitableImage;
  rect.width = std::min(rect.width, current.width - rect.x);
  rect.depth = std::min(rect.depth, depth - rect.y);
  if (rect.width == 0 || rect.depth == 0) return kUnsuitableImage;

  try {
    ImageInfo copy = current;
    SetText(copy.fileName, output, kMaxNameLength);
    copy.width = rect.width;
    copy.depth = static_cast<int32_t>(rect.depth);
    copy.unpackedSize = UnpackedSize(copy.width, copy.bits, copy.depth);
    copy.host = &host;
    store.cropLeft = rect.x;
    store.cropTop = rect.y;
    store.cropWidth = rect.width;
    store.rowsDone = 0;
    host.ReportProgress(0, 0);
    LineSource crop = CroppingSource(store);
    const uint64_t total = rect.depth;
    copy.getLine = [&store, total, crop](std::span<uint8_t> row, int32_t r) {
      store.ReportRowProgress(total);
      return crop(row, r);
    };
    WaitCursor cursor(host);
    return store.Explain(WriteThroughTemporary(host, destination, copy, output));
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

int CropFile(Host& host, const std::string& source, int destRow, const CropRect& rect,
             const std::string& destinationDirectory, FormatTableView table) {
  return RunPictureCommand(host, destRow, table, [&](Operation& op) -> int {
    const FormatEntry& destination = op.table[static_cast<size_t>(destRow)];
    if (int code = LoadPicture(op, source, &destination)) return code;
    std::string output;
    if (BuildOutputName(op.host, output, source, destinationDirectory, destination) != kNameGoOn)
      return kCancelled;
    int code = SaveCrop(op.host, op.info, op.store, rect, destRow, output, op.table);
    op.store.Free();
    if (code == kOk) AutoCreateThumbnail(op.host, output);
    return code;
  });
}

}  // namespace pxm
