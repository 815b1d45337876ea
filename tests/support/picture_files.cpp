#include "support/picture_files.h"

#include "core/error_codes.h"
#include "core/image_store.h"
#include "core/sinks.h"
#include "core/sources.h"
#include "formats/format_table.h"

namespace pxm::test {

int ReadPicture(const std::string& path, Picture& out, Host* host, ImageInfo* infoOut,
                uint32_t imageIndex) {
  Host& h = host ? *host : SilentHost();
  int row = FindFormat(path);
  if (row < 0) return kUnsupportedFormat;
  const FormatEntry& entry = FormatAt(row);
  ImageInfo info;
  info.host = &h;
  info.imageIndex = imageIndex;
  if (int code = entry.info(info, path, 0)) {
    if (infoOut) *infoOut = info;
    return code;
  }
  if (infoOut) *infoOut = info;
  ImageStore store(h);
  if (int code = store.Create(info.width, info.depth, info.bits, kStoreMemoryOnly)) return code;
  info.putLine = PlainRowSink(store);
  if (int code = entry.read(info, path)) return code;
  out = Picture::Blank(info.width, info.depth, info.bits);
  out.palette = info.palette;
  for (int32_t y = 0; y < info.depth; ++y) store.GetRowQuiet(out.rows[static_cast<size_t>(y)], y);
  return kOk;
}

int WritePicture(const Picture& picture, const std::string& path, int row, Host* host) {
  Host& h = host ? *host : SilentHost();
  if (row < 0) row = FindFormat(path);
  if (row < 0) return kUnsupportedFormat;
  ImageStore store(h);
  if (int code = store.Create(picture.width, picture.depth, picture.bits, kStoreMemoryOnly))
    return code;
  for (int32_t y = 0; y < picture.depth; ++y)
    store.PutRowQuiet(picture.rows[static_cast<size_t>(y)], y);
  ImageInfo info;
  info.host = &h;
  info.width = picture.width;
  info.depth = picture.depth;
  info.bits = picture.bits;
  info.palette = picture.palette;
  info.getLine = PlainRowSource(store);
  return FormatAt(row).write(info, path);
}

}  // namespace pxm::test
