#include "batch/effects.h"

#include "batch/output_name.h"
#include "batch/operation.h"
#include "core/error_codes.h"
#include "core/sinks.h"
#include "core/sources.h"
#include "process/effects.h"
#include "thumbs/auto_thumbnail.h"

namespace pxm {
namespace {

int EffectsFile(Operation& op, const std::string& source, int destRow, uint32_t effects,
                const EffectsOptions& options) {
  const FormatEntry& destination = op.table[static_cast<size_t>(destRow)];
  int row;
  if (int code = OpenSource(op, source, row)) return code;
  if (op.info.bits == 1) return kUnsuitableImage;
  // Every effect works on RGB rows; palette pictures keep their depth and palette in the record.
  if (int code = op.store.Create(op.info.width, op.info.depth, 24)) return code;
  const uint64_t total = static_cast<uint64_t>(op.info.depth);
  if (int code = ReadSource(op, row, source,
                            ExpandToRgbSink(op.store, total, op.info.bits, op.info.palette)))
    return code;
  if (int code = PostRead(op.info)) return code;
  op.info.sourceName = op.info.fileName;

  // The engine polls once per row itself; the row callbacks need not.
  op.info.getLine = PlainRowSource(op.store);
  op.info.putLine = QuietRowSink(op.store);
  if (int code = ApplyEffect(op.info, effects, source)) return code;
  if (destination.maxBits < op.info.bits) {
    // Only RGB rows can be reduced, and 256 colours must then fit.
    if (op.info.bits != 24 || destination.maxBits < 8) return kTooManyColours;
    if (int code = ApplyEffect(op.info, kAutomaticReduction, source)) return code;
  }

  std::string output;
  if (BuildOutputName(op.host, output, source, options.destinationDirectory, destination) !=
      kNameGoOn)
    return kCancelled;
  if (!destination.write) return kUnsupportedFunction;
  int code = WriteDestination(op, destRow, output, ProgressRowSource(op.store, total));
  op.store.Free();
  if (code == kOk) AutoCreateThumbnail(op.host, output);
  return code;
}

}  // namespace

int Effects(Host& host, const std::string& source, int destRow, uint32_t effects,
            const EffectsOptions& options, FormatTableView table) {
  WaitCursor cursor(host);
  Operation op(host, table);
  if (destRow < 0 || destRow >= kFormatCount) return kUnsupportedFormat;
  try {
    int code = EffectsFile(op, source, destRow, effects, options);
    PostRead(op.info);  // a reader's own file goes whatever happened after it was made
    return code;
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

}  // namespace pxm
