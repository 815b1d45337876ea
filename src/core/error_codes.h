#pragma once

// The program's result codes. Every handler, driver and processing stage returns one of these;
// the text the user sees for code n is string-table entry n.
namespace pxm {

enum ErrorCode : int {
  kOk = 0,
  kOpenError = 1,
  kCorruptedFile = 2,
  kReadError = 3,
  kCancelled = 4,
  kUnsupportedFunction = 5,
  kMemoryError = 6,
  kInformationError = 7,
  kUnsupportedFormat = 8,
  kRenameError = 9,
  kCreateError = 10,
  kWriteError = 11,
  kTooManyColours = 12,
  kUnsuitableImage = 13,
  kResourceError = 14,
  kPrinterError = 15,
  kNeedsMemoryStore = 16,  // "Not available for VMS": the store spilled but the work needs memory
  kDibDriverError = 17,
  kNoMetafile = 18,
  kVfwVersionError = 19,
  kNoBitmap = 20,
  kMpegError = 21,
  kDisabledFeature = 22,
  kWin32NotAvailable = 23,
  kVerifyError = 24,
};

constexpr int kLastErrorCode = kVerifyError;

}  // namespace pxm
