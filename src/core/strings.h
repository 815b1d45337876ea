#pragma once

#include <cstdarg>
#include <string>
#include <string_view>

namespace pxm {

// Identifiers of the numbered strings that code refers to by number. Error code n is string n.
enum StringId : int {
  kStrRemoveThumbnails = 101,
  kStrExitQuestion = 102,
  kStrDeleteMany = 103,
  kStrExpanding = 122,
  kStrRemapping = 123,
  kStrThresholding = 124,
  kStrDithering = 125,
  kStrCreatingSpillFile = 126,
  kStrQuantizing = 127,
  kStrReducing = 128,
  kStrSharpening = 129,
  kStrSoftening = 130,
  kStrSmudging = 131,
  kStrPosterizing = 132,
  kStrReading = 135,
  kStrWriting = 136,
  kStrPrinting = 137,
  kStrScaling = 138,
  kStrReversing = 139,
  kStrNoFilesSelected = 141,
  kStrSeparator = 150,
  kStrClipboard = 153,
  kStrViewPartial = 155,
  kStrProgramName = 156,
  kStrDefaultFont = 157,
  kStrDriveOffLine = 160,
  kStrDeleteOne = 164,
  kStrOneFileTagged = 171,
  kStrFilesTagged = 172,
  kStrNoFilesTagged = 173,
  kStrNoInterlace = 174,
  kStrAdam7Interlace = 175,
  kStrUueNoEnd = 176,
  kStrCreationNotice = 1000,
  kStrTiffTagBase = 2000,
  kStrTooltipBase = 940,  // graphic button tooltips: 940 + the button's identifier
  kStrOverwriteQuestion = 3001,
  kStrNoFilesWritten = 3002,
  kStrOneFileWritten = 3003,
  kStrFilesWritten = 3004,
  kStrFilesFailed = 3005,
  kStrBatchStopped = 3006,
  kStrTagFailedFiles = 3007,
  kStrVersion = 3008,
  kStrAboutText = 3009,
  kStrFileListName = 3010,
  kStrTagCountCell = 3011,
  kStrStatusCell = 3012,
  kStrProgressCell = 3013,
  kStrSelectImage = 3014,
  kStrCommentFor = 3015,
  kStrChooseDirectory = 3016,
  kStrSaveAs = 3017,
  kStrDestinationDirectory = 3018,
};

// The text shown when an identifier has no entry.
inline constexpr std::string_view kStringTableError =
    "String table error - this application may be damaged";

// The text of string-table entry `id`, or kStringTableError when there is none.
std::string_view LoadMessage(int id);

// Whether entry `id` exists (a missing TIFF tag name falls back to its number).
bool HasMessage(int id);

// printf-style formatting into a std::string; used for the table's "%s" and "%u" texts.
std::string FormatText(const char* format, ...) __attribute__((format(printf, 1, 2)));

// `text` with its first occurrence of `placeholder` ("%s", "%u") replaced by `value`.
std::string FillText(std::string_view text, std::string_view placeholder, std::string_view value);

// Entry `id` with its one "%s" filled in ("Reading %s" -> "Reading photo.bmp").
std::string MessageWithName(int id, std::string_view name);

// The text of an error code as the message box shows it: entry `code` for 0..24, otherwise
// "Unknown error".
std::string ErrorText(int code);

// "NAME - TEXT", the line a failed file reports.
std::string FileErrorLine(std::string_view name, int code);

}  // namespace pxm
