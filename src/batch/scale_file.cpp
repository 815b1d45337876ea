#include "batch/scale_file.h"

#include "batch/picture_command.h"
#include "core/error_codes.h"
#include "core/sinks.h"
#include "core/sources.h"
#include "core/strings.h"

namespace pxm {
namespace {

int Scale(Operation& op, const std::string& source, int destRow, const ScaleSettings& scale,
          const std::string& destinationDirectory) {
  LoadPlan plan;
  // The scaling source picks single pixels: anything from 2 to 8 bits is easiest a byte each.
  plan.storeBits = [](uint32_t bits) { return bits == 1 ? 1u : (bits <= 8 ? 8u : 24u); };
  plan.sink = [](ImageStore& store, const ImageInfo& info) {
    return BytePerPixelSink(store, static_cast<uint64_t>(info.depth), info.bits);
  };
  if (int code = LoadPicture(op, source, &op.table[static_cast<size_t>(destRow)], plan))
    return code;

  const ScaledAxis across = ScaleAxis(op.info.width, scale.horizontalPercent, scale.targetWidth);
  const ScaledAxis down =
      ScaleAxis(static_cast<uint32_t>(op.info.depth), scale.verticalPercent, scale.targetDepth);
  if (across.size == 0 || down.size == 0) return kUnsuitableImage;
  // Beyond these the tables alone would be gigabytes, and the depth would not fit the record.
  if (across.size > INT32_MAX || down.size > INT32_MAX) return kMemoryError;
  BuildScaleTable(op.store.columnMap, across.size, across.percent, op.info.width);
  BuildScaleTable(op.store.rowMap, down.size, down.percent, static_cast<uint32_t>(op.info.depth));

  op.info.width = static_cast<uint32_t>(across.size);
  op.info.depth = static_cast<int32_t>(down.size);
  op.info.unpackedSize = UnpackedSize(op.info.width, op.info.bits, op.info.depth);
  return SaveResult(op, source, destRow, destinationDirectory,
                    ScalingSource(op.store, op.info.bits), MessageWithName(kStrScaling, source));
}

}  // namespace

int ScaleFile(Host& host, const std::string& source, int destRow, const ScaleSettings& scale,
              const std::string& destinationDirectory, FormatTableView table) {
  return RunPictureCommand(host, destRow, table, [&](Operation& op) {
    return Scale(op, source, destRow, scale, destinationDirectory);
  });
}

}  // namespace pxm
