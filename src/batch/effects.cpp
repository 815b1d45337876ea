#include "batch/effects.h"

#include "batch/picture_command.h"
#include "core/error_codes.h"
#include "core/sinks.h"
#include "core/sources.h"
#include "process/effects.h"

namespace pxm {
namespace {

int EffectsFile(Operation& op, const std::string& source, int destRow, uint32_t effects,
                const EffectsOptions& options) {
  const FormatEntry& destination = op.table[static_cast<size_t>(destRow)];
  LoadPlan plan;
  // A picture deeper than the destination is reduced after the effect, not refused.
  plan.accept = [](const ImageInfo& info) {
    return info.bits == 1 ? kUnsuitableImage : kOk;
  };
  // Every effect works on RGB rows; palette pictures keep their depth and palette in the record.
  plan.storeBits = [](uint32_t) { return 24u; };
  plan.sink = [](ImageStore& store, const ImageInfo& info) {
    return ExpandToRgbSink(store, static_cast<uint64_t>(info.depth), info.bits, info.palette);
  };
  if (int code = LoadPicture(op, source, &destination, plan)) return code;

  // The engine polls once per row itself; the row callbacks need not.
  op.info.getLine = PlainRowSource(op.store);
  op.info.putLine = QuietRowSink(op.store);
  if (int code = ApplyEffect(op.info, effects, source)) return code;
  if (destination.maxBits < op.info.bits) {
    // Only RGB rows can be reduced, and 256 colours must then fit.
    if (op.info.bits != 24 || destination.maxBits < 8) return kTooManyColours;
    if (int code = ApplyEffect(op.info, kAutomaticReduction, source)) return code;
  }
  return SaveResult(op, source, destRow, options.destinationDirectory,
                    AbortableRowSource(op.store));
}

}  // namespace

int Effects(Host& host, const std::string& source, int destRow, uint32_t effects,
            const EffectsOptions& options, FormatTableView table) {
  return RunPictureCommand(host, destRow, table, [&](Operation& op) {
    return EffectsFile(op, source, destRow, effects, options);
  });
}

}  // namespace pxm
