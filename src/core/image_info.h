#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "core/file_io.h"

namespace pxm {

class Host;

// A row callback that receives a row in the store's packing (row 0 = top of the picture) and
// answers the abort flag: 0 = go on, 1 = stop.
using LineSink = std::function<int(std::span<uint8_t> row, int32_t rowNumber)>;
// A row callback that fills the buffer with the given row and answers the abort flag.
using LineSource = std::function<int(std::span<uint8_t> row, int32_t rowNumber)>;

struct Rgb {
  uint8_t red = 0;
  uint8_t green = 0;
  uint8_t blue = 0;
  friend bool operator==(const Rgb&, const Rgb&) = default;
};

using Palette = std::array<Rgb, 256>;

// imageIndex value that asks a motion reader for every frame in turn.
constexpr uint32_t kAllFrames = 65535;
// flags bit set by an animation's info handler.
constexpr uint32_t kFlagAnimation = 2;

// A file a writer made beside its output under a temporary name (a palette file beside a
// picture), and the name it is to take.
struct CompanionFile {
  std::string temporary;
  std::string final;
};

// Limits of the fixed-size text fields of the record; longer texts are cut.
constexpr size_t kMaxNameLength = 259;
constexpr size_t kMaxDescriptionLength = 64;

// The record that describes the current picture. Format handlers fill it and read from it; the
// batch drivers own it for the length of one file.
struct ImageInfo {
  std::string fileName;    // name part of the path; the output path just before writing
  std::string sourceName;  // the source's name, kept when fileName takes the output name
  std::string description;
  uint32_t width = 0;
  int32_t depth = 0;
  uint32_t bits = 0;  // 1, 2..8 or 24
  std::array<uint32_t, 4> privateWords{};
  uint32_t flags = 0;
  uint32_t background = 0;
  uint32_t imageCount = 0;
  uint32_t imageIndex = 0;
  int32_t fileSize = 0;
  uint32_t unpackedSize = 0;
  Palette palette{};
  LineSink putLine;
  LineSource getLine;
  std::function<int()> finishWrite;
  std::function<int(ImageInfo&, const std::string& path, std::string& text)> readComments;

  // Who runs the operation (status, questions, abort); never owned. Null means nobody: every
  // question gets its default answer.
  Host* host = nullptr;
  // A file a reader made for its own use (a decoded attachment, say) that the post-read step
  // removes.
  std::string temporaryFile;
  // Where the picture lies in its file when the file holds more than the picture (a picture kept
  // after a program's own image): the handlers of the picture's format read only that stretch.
  // Empty for an ordinary file.
  FileWindow embedded;
  // The picture's own size when info, asked for a thumbnail (purpose 1), arranged for the reader
  // to deliver it reduced (width and depth then give the reduced size); 0 otherwise.
  uint32_t fullWidth = 0;
  int32_t fullDepth = 0;
  // While a driver runs a writer on a temporary file: the name that file takes when the writer
  // succeeds. Empty when a writer is handed its final name.
  std::string outputPath;
  // Files the writer made besides its output; the driver gives them their names together with
  // the output's, or removes them when the write fails.
  std::vector<CompanionFile> companions;

  // Empties the record as a driver does before each file, keeping only the host.
  void Clear();
};

// The step after every successful read, shared by every driver and by the making of thumbnails:
// removes the file a reader made for itself (a decoded attachment, say), so nothing of it
// outlives the read. Answers an error code.
int PostRead(ImageInfo& info);

// The host of a record, or a silent host that answers every question with its default.
Host& HostOf(const ImageInfo& info);

// ((width + 7) / 8) × bits × depth, in 32 bits as the record holds it.
uint32_t UnpackedSize(uint32_t width, uint32_t bits, int32_t depth);

// Stores `text` into a record field, cut to `limit` characters.
void SetText(std::string& field, std::string_view text, size_t limit);

}  // namespace pxm
