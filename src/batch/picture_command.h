#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "batch/operation.h"

// The steps every picture command shares around its own processing: read the source into the
// store before it, name and write the result after it.
namespace pxm {

// The frame of every picture command: the wait cursor, a destination row outside the table
// (8), running out of memory anywhere (6), and the reader's own temporary file removed whatever
// happened after it was made.
int RunPictureCommand(Host& host, int destRow, FormatTableView table,
                      const std::function<int(Operation& op)>& work);

// How a command reads its source into the store.
struct LoadPlan {
  // Whether the picture suits the command; empty refuses only a picture deeper than the
  // destination holds (12).
  std::function<int(const ImageInfo& info)> accept;
  // The bits the store is created for, given the picture's; empty keeps the picture's own.
  std::function<uint32_t(uint32_t bits)> storeBits;
  unsigned storeOptions = 0;
  // The sink the reader fills the store through; empty is the progress row sink.
  std::function<LineSink(ImageStore& store, const ImageInfo& info)> sink;
};

// Finds the source's format (8 when none), runs its info handler and the select-image box,
// asks the plan whether the picture suits the command, creates the store and reads the picture
// into it. `destination` is the row the command will write, or null when it is not known yet
// (any depth suits then). Answers the first failure's code.
int LoadPicture(Operation& op, const std::string& source, const FormatEntry* destination,
                const LoadPlan& plan = {});

// Builds the output name (a cancel answers 4), refuses a destination without a writer (5) and
// writes the record's picture through `rows`, showing `status` ("Writing %s" when empty). The
// store is freed afterwards and a written file gets its thumbnail when the settings ask for one.
int SaveResult(Operation& op, const std::string& source, int destRow,
               const std::string& destinationDirectory, LineSource rows,
               std::string_view status = {});

}  // namespace pxm
