#pragma once

#include <memory>
#include <optional>
#include <string>

#include "batch/operation.h"
#include "process/crop_selection.h"

namespace pxm {

// A picture read into the store and kept there while the user looks at it: the view window,
// the crop window and the clipboard copy hold one, draw its rows from memory or the spill file,
// and write all or part of it with any writer. The store and its spill file go with the object.
// The host it was read with must outlive it (the store reports to it).
class KeptPicture {
 public:
  KeptPicture(std::unique_ptr<Operation> op, std::string source, int row, int readCode)
      : op_(std::move(op)), source_(std::move(source)), row_(row), readCode_(readCode) {}

  const ImageInfo& Info() const { return op_->info; }
  ImageStore& Store() { return op_->store; }
  const ImageStore& Store() const { return op_->store; }
  const std::string& Source() const { return source_; }
  int SourceRow() const { return row_; }
  // 0, or the reader's code when the picture was kept although the read stopped part-way.
  int ReadCode() const { return readCode_; }

  // Writes the picture, or `rect` of it, as `output` in row `destRow`'s format through a
  // temporary file: refuses an unknown row (8), a row too shallow for the picture (12), a row
  // without a writer (5). `palette`, when given, replaces the picture's own in the file (a view
  // whose colours were adjusted). A failed write leaves no file.
  int Save(Host& host, int destRow, const std::string& output,
           std::optional<CropRect> rect = std::nullopt, const Palette* palette = nullptr);

 private:
  std::unique_ptr<Operation> op_;
  std::string source_;
  int row_;
  int readCode_;
};

struct KeepOptions {
  // Store options the work needs (kStoreMemoryOnly for work that must have the picture in
  // memory); the spill policy of the settings is added.
  unsigned storeOptions = 0;
  // Keep what a reader delivered before it failed (the view window offers a partial picture);
  // otherwise a failed read keeps nothing.
  bool keepPartial = false;
};

// Reads `source` (its format's info, the select-image box, the store, the reader) the way every
// picture command does, and hands the picture over in `picture` instead of freeing it. Answers
// the code of the read; with `keepPartial` a picture may come with a reader's failure code.
int LoadKeptPicture(Host& host, const std::string& source, std::unique_ptr<KeptPicture>& picture,
                    const KeepOptions& options = {}, FormatTableView table = FormatTable());

}  // namespace pxm
