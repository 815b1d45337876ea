#include "batch/kept_picture.h"

#include <algorithm>

#include "batch/crop_file.h"
#include "batch/picture_command.h"
#include "core/error_codes.h"

namespace pxm {

int KeptPicture::Save(Host& host, int destRow, const std::string& output,
                      std::optional<CropRect> rect, const Palette* palette) {
  ImageInfo described = op_->info;
  if (palette) described.palette = *palette;
  const CropRect whole{0, 0, described.width, static_cast<uint32_t>(std::max(described.depth, 0))};
  return SaveCrop(host, described, op_->store, rect.value_or(whole), destRow, output, op_->table);
}

int LoadKeptPicture(Host& host, const std::string& source, std::unique_ptr<KeptPicture>& picture,
                    const KeepOptions& options, FormatTableView table) {
  picture.reset();
  WaitCursor cursor(host);
  auto op = std::make_unique<Operation>(host, table);
  LoadPlan plan;
  plan.storeOptions = options.storeOptions;
  int code;
  try {
    code = LoadPicture(*op, source, nullptr, plan);
  } catch (const std::bad_alloc&) {
    code = kMemoryError;
  }
  code = op->store.Explain(code);
  PostRead(op->info);
  // A picture the user cancelled is not offered in part.
  const bool kept = code == kOk || (options.keepPartial && code != kCancelled &&
                                    op->store.IsHeld() && op->store.rowsDone > 0);
  if (!kept) return code;
  // The read is over: its settings go, the picture stays.
  op->settings.reset();
  op->store.ClearAbort();
  const int row = FindFormatIn(table, source);
  picture = std::make_unique<KeptPicture>(std::move(op), source, row, code);
  return code;
}

}  // namespace pxm
