#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "core/host.h"

namespace pxm {

// One item of the file list: its text and whether it is tagged.
struct ListItem {
  std::string text;
  bool selected = false;
};

// What became of one file of a walk.
struct FileResult {
  size_t index = 0;     // its place among the files the walk was given
  std::string source;   // the file as named
  std::string output;   // the first file written for it, empty when nothing was written
  int code = 0;
};

// The work for one file. It runs on `host`, a host of the file's own that passes everything on
// to the walk's host (one call at a time when files run side by side) and notes what was written.
using FileDriver = std::function<int(Host& host, size_t index, const std::string& source)>;
// Sees each result in the order the files were named, as soon as it and every earlier one are
// known; with several jobs it is called on whichever thread finished last, one call at a time.
using ResultHandler = std::function<void(const FileResult& result)>;

struct WalkOptions {
  // Files run side by side on this many threads; 1 runs them one after the other on the
  // calling thread, which is what the desktop program does.
  unsigned jobs = 1;
  // Files with the same key depend on each other (they write the same name, say): each waits for
  // the one named before it. Empty: no two files depend on each other.
  std::function<std::string(const std::string& source)> orderKey;
  // After a file, whether to start no further ones. Whatever it says, no file starts once the
  // host says the user asked to stop (`Host::AbortRequested`).
  std::function<bool(const FileResult& result)> stopAfter;
};

// Runs `driver` over `files`, each in an operation of its own with its own copy of the settings
// taken when the file starts, and answers the results of the files that ran, in their order.
std::vector<FileResult> WalkFiles(Host& host, std::span<const std::string> files,
                                  const FileDriver& driver, const WalkOptions& options = {},
                                  const ResultHandler& onResult = {});

// The tagged items of a list in list order, without directory and drive entries (texts that
// begin with "["): the files a command of the main window walks over.
std::vector<std::string> TaggedFiles(std::span<const ListItem> items);

// A key under which files that would write the same output name meet: the name part without
// its extension, in lower case and cut to six characters (the shortest output name a
// destination directory with `FilenameUnderbars` gives). Files with different keys never write
// the same name.
std::string OutputNameKey(const std::string& source);

}  // namespace pxm
