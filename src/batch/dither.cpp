#include "batch/dither.h"

#include <cstdint>

#include "batch/picture_command.h"
#include "config/settings.h"
#include "core/error_codes.h"
#include "core/sinks.h"
#include "core/sources.h"
#include "process/dither.h"

namespace pxm {
namespace {

int DitherFile(Operation& op, const std::string& source, const DitherOptions& options) {
  int row;
  if (int code = OpenSource(op, source, row)) return code;
  if (op.info.bits == 1) return kUnsuitableImage;
  const int destRow = options.destRow < 0 ? row : options.destRow;

  const auto mode = static_cast<uint32_t>(CurrentSettings().DitherMode);
  const uint32_t factor = static_cast<uint32_t>(HalftoneSizeFactor(mode));
  const uint64_t width = static_cast<uint64_t>(op.info.width) * factor;
  const int64_t depth = static_cast<int64_t>(op.info.depth) * factor;
  if (width > UINT32_MAX || depth > INT32_MAX) return kMemoryError;
  // The engine wants palette pictures one byte per pixel; the enlarging sink unpacks 4-bit rows
  // on its way, and so does the byte-per-pixel sink when nothing is enlarged.
  const uint32_t storeBits = op.info.bits <= 8 ? 8 : 24;
  if (int code = op.store.Create(static_cast<uint32_t>(width), static_cast<int32_t>(depth),
                                 storeBits, SpillPolicy()))
    return code;
  op.store.zoom = static_cast<int>(factor);

  const uint64_t total = static_cast<uint64_t>(op.info.depth);
  LineSink sink = factor == 1 ? BytePerPixelSink(op.store, total, op.info.bits)
                              : EnlargingSink(op.store, total, op.info.bits);
  if (int code = ReadSource(op, row, source, std::move(sink))) return code;
  if (int code = PostRead(op.info)) return code;
  op.info.sourceName = op.info.fileName;

  op.info.width = static_cast<uint32_t>(width);
  op.info.depth = static_cast<int32_t>(depth);
  // The engine polls once per row itself; the row callbacks need not.
  op.info.getLine = PlainRowSource(op.store);
  op.info.putLine = QuietRowSink(op.store);
  if (int code = DitherImage(op.info, mode, source)) return code;

  return SaveResult(op, source, destRow, options.destinationDirectory,
                    AbortableRowSource(op.store));
}

}  // namespace

int Dither(Host& host, const std::string& source, const DitherOptions& options,
           FormatTableView table) {
  WaitCursor cursor(host);
  Operation op(host, table);
  if (options.destRow >= kFormatCount) return kUnsupportedFormat;
  try {
    int code = DitherFile(op, source, options);
    PostRead(op.info);  // a reader's own file goes whatever happened after it was made
    return op.store.Explain(code);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

}  // namespace pxm
