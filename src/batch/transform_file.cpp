#include "batch/transform_file.h"

#include "batch/picture_command.h"
#include "core/error_codes.h"
#include "core/sources.h"
#include "core/strings.h"
#include "process/reverse.h"
#include "process/transform.h"

namespace pxm {
namespace {

int Transform(Operation& op, const std::string& source, int destRow, int32_t mode,
              const std::string& destinationDirectory) {
  LoadPlan plan;
  // A spilled store cannot serve a column per row: the quarter turns refuse rather than read a
  // picture they cannot turn.
  if (IsQuarterTurn(mode)) plan.storeOptions = kStoreMemoryOnly;
  if (int code = LoadPicture(op, source, &op.table[static_cast<size_t>(destRow)], plan))
    return code;
  if (IsQuarterTurn(mode)) {
    if (!op.store.InMemory()) return kNeedsMemoryStore;
    if (op.info.width > INT32_MAX) return kMemoryError;
  }
  TransformedSize(mode, op.info.width, op.info.depth);
  return SaveResult(op, source, destRow, destinationDirectory, TransformSource(op.store, mode));
}

int Reverse(Operation& op, const std::string& source, int destRow,
            const std::string& destinationDirectory) {
  if (int code = LoadPicture(op, source, &op.table[static_cast<size_t>(destRow)])) return code;
  op.host.SetStatus(MessageWithName(kStrReversing, source));
  op.host.ReportProgress(0, 0);
  if (int code = ReverseStore(op.store, op.info)) return code;
  return SaveResult(op, source, destRow, destinationDirectory, PlainRowSource(op.store));
}

}  // namespace

int TransformFile(Host& host, const std::string& source, int destRow, int32_t mode,
                  const std::string& destinationDirectory, FormatTableView table) {
  if (!IsTransformMode(mode)) return kUnsupportedFunction;
  return RunPictureCommand(host, destRow, table, [&](Operation& op) {
    return Transform(op, source, destRow, mode, destinationDirectory);
  });
}

int ReverseFile(Host& host, const std::string& source, int destRow,
                const std::string& destinationDirectory, FormatTableView table) {
  return RunPictureCommand(host, destRow, table, [&](Operation& op) {
    return Reverse(op, source, destRow, destinationDirectory);
  });
}

}  // namespace pxm
