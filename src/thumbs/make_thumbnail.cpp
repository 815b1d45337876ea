#include "thumbs/make_thumbnail.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/fixed_palette.h"
#include "core/image_store.h"
#include "core/platform.h"
#include "core/row_format.h"
#include "core/strings.h"
#include "process/colour_map.h"
#include "thumbs/thumbnail_file.h"
#include "thumbs/thumbnail_path.h"
#include "thumbs/thumbnail_remap.h"
#include "thumbs/thumbnail_sink.h"

namespace pxm {
namespace {

// The mode as the setting names it; a value outside the list remaps.
int WriteMode() {
  const int32_t mode = CurrentSettings().DitherThumbnails;
  return (mode == kThumbBayer || mode == kThumbDiffused) ? mode : kThumbRemapped;
}

// Each palette entry's nearest colour in the fixed palette, with the progress bar moving per
// entry.
void MapPalette(Host& host, const ImageInfo& info, const std::string& path,
                std::array<uint8_t, 256>& map) {
  host.SetStatus(MessageWithName(kStrRemapping, path));
  const Palette& fixed = ThumbGetPalette(0);
  const uint32_t entries = 1u << info.bits;
  for (uint32_t i = 0; i < entries; ++i) {
    host.ReportProgress(entries, i);
    const Rgb& c = info.palette[i];
    map[i] = static_cast<uint8_t>(NearestColour(c.red, c.green, c.blue, fixed, 256));
  }
}

// The source's size and time as the record keeps them, in 32 bits.
void StampSource(ThumbnailRecord& record, const std::string& path) {
  if (auto stamp = platform::StampOf(path)) {
    record.sourceFileSize = static_cast<uint32_t>(std::clamp<int64_t>(stamp->size, 0, UINT32_MAX));
    record.sourceTime =
        static_cast<uint32_t>(std::clamp<int64_t>(stamp->modifiedSeconds, 0, UINT32_MAX));
  }
}

int Make(Host& host, ImageInfo& info, const std::string& path, std::string* written,
         std::span<const FormatEntry, kFormatCount> table) {
  const int row = FindFormatIn(table, path);
  if (row < 0) return kUnsupportedFormat;
  const FormatEntry& entry = table[static_cast<size_t>(row)];
  if (!entry.info || ((entry.caps & kCapsMotion) && !(entry.caps & kCapsReadsFrames))) return kOk;
  if (int code = entry.info(info, path, 1)) return code;
  if (info.width == 0 || info.depth <= 0) return kInformationError;
  if (!entry.read) return kUnsupportedFunction;

  ThumbnailSource source{info.width, info.depth, info.bits, &info.palette, nullptr, nullptr};
  std::array<uint8_t, 256> colourMap{};
  const uint32_t storage = StorageBits(info.bits);
  if (storage == 24) {
    source.remap = &ThumbnailRemap();
  } else if (storage != 1) {
    MapPalette(host, info, path, colourMap);
    source.colourMap = &colourMap;
  }

  host.SetStatus(MessageWithName(kStrReading, path));
  host.ReportProgress(0, 0);
  const int mode = WriteMode();
  auto record = std::make_unique<ThumbnailRecord>();
  ThumbnailSink sink(*record, source, mode);
  ImageStore progress(host);  // never created: it only counts rows and runs the abort check
  const uint64_t total = static_cast<uint64_t>(info.depth);
  info.putLine = [&](std::span<uint8_t> line, int32_t r) {
    progress.ReportRowProgress(total);
    sink.Put(line, r);
    return progress.AbortCheck();
  };
  if (int code = entry.read(info, path)) return code;
  if (int code = PostRead(info)) return code;

  info.sourceName = info.fileName;
  // A reader that delivered the picture reduced still records the picture's own size.
  record->sourceWidth = info.fullWidth ? info.fullWidth : info.width;
  record->sourceDepth = static_cast<uint32_t>(info.fullDepth ? info.fullDepth : info.depth);
  record->sourceBits = info.bits;
  record->mode = static_cast<uint32_t>(mode);
  record->sourceName = info.sourceName.substr(0, kSourceNameBytes);
  StampSource(*record, path);

  const std::string target = ThumbnailFileOf(path);
  if (!ThumbWriteThumbnail(*record, target)) return kCreateError;
  if (written) *written = target;
  return kOk;
}

}  // namespace

int MakeThumbnail(Host& host, const std::string& path, std::string* written,
                  std::span<const FormatEntry, kFormatCount> table) {
  if (written) written->clear();
  ImageInfo info;
  info.host = &host;
  int code;
  try {
    code = Make(host, info, path, written, table);
  } catch (const std::bad_alloc&) {
    code = kMemoryError;
  }
  info.putLine = nullptr;  // it points into the making, which is over
  PostRead(info);  // a reader's own file goes whatever happened after it was made
  return code;
}

}  // namespace pxm
