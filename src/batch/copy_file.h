#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "core/host.h"

namespace pxm {

// Move-and-copy option bits, as CopyOptions holds them.
enum CopyOptionBits : int {
  kCopyShowsCopying = 1,  // the status reads "Copying %s"; without it "Moving %s"
  kCopyDeletesSource = 2, // a move: the source goes once the copy is safe
  kCopyVerifies = 4,      // the copy is read back and its CRC compared with the source's
};

// Files are copied in pieces of this many bytes.
constexpr size_t kCopyChunk = 65530;

// Where a file is copied to: the destination directory (with a separator added when it has
// none) and the file's name.
std::string CopyDestination(const std::string& file, const std::string& destinationDirectory);

// The progress bar's step count for a file of `length` bytes: length / kCopyChunk, one less when
// the length is a whole number of chunks, and at least 1.
uint64_t CopySteps(uint64_t length);

// The checks of the Move and copy destination dialog, before any file is touched: a file that
// would land on itself (the same file on disc, however the paths are spelled) refuses the whole
// command with a message; a move asks for confirmation first. Answers 0 to go on, 4 to stop.
int ConfirmCopy(Host& host, std::span<const std::string> files,
                const std::string& destinationDirectory, int options);

// Copies one tagged file byte for byte into the destination directory, optionally verifying the
// copy and deleting the source (`options`, as CopyOptions). The copy is written under a
// temporary name and takes the destination name only when it is complete (and verified), with
// the source's modification time; so no partial copy is ever left, and a file the copy would
// have replaced survives a failed one. Answers 6 (no buffer), 1 (cannot open the source, create
// or reopen the copy), 4 (a click, or a copy onto the file itself), 3 (short read), 11 (short
// write), 24 (the copy's CRC differs), 10 (the finished copy cannot take its name), 9 (a moved
// file's source cannot be removed) or 0.
int CopyTaggedFile(Host& host, const std::string& file, const std::string& destinationDirectory,
                   int options);

}  // namespace pxm
