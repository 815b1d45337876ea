#include "formats/text_file.h"

#include <algorithm>
#include <new>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/row_format.h"
#include "formats/info_start.h"
#include "formats/text_font.h"

namespace pxm {
namespace {

constexpr uint32_t kTabStop = 8;
constexpr uint8_t kBox = 0;  // the cell of a character the font has no glyph for

// The lines of a text file as rows of cells: a printable ASCII character each, or the box.
class TextLines {
 public:
  explicit TextLines(InputFile& in) : in_(in) {}

  // The next line's cells, at most kTextMaxColumns of them (the rest of a longer line is passed
  // over). False at the end of the file.
  bool Next(std::vector<uint8_t>& cells) {
    cells.clear();
    int c = Get();
    // A carriage return ended the last line: a line feed right after it belongs to that end.
    if (afterReturn_ && c == '\n') c = Get();
    afterReturn_ = false;
    if (c < 0) return false;
    for (; c >= 0; c = Get()) {
      if (c == '\n') return true;
      if (c == '\r') {
        afterReturn_ = true;
        return true;
      }
      if (c == '\t') {
        const size_t stop = (cells.size() / kTabStop + 1) * kTabStop;
        while (cells.size() < stop && Put(cells, ' ')) {
        }
      } else if (c >= 32 && c < 127) {
        Put(cells, static_cast<uint8_t>(c));
      } else {
        SkipContinuation(c);
        Put(cells, kBox);
      }
    }
    return true;  // the last line has no end
  }

 private:
  int Get() {
    if (held_ >= 0) {
      const int c = held_;
      held_ = -1;
      return c;
    }
    return in_.ReadByte();
  }

  static bool Put(std::vector<uint8_t>& cells, uint8_t cell) {
    if (cells.size() >= kTextMaxColumns) return false;
    cells.push_back(cell);
    return true;
  }

  // A UTF-8 lead byte and the continuation bytes that follow it make one character; a byte that
  // does not continue it is kept for the next cell.
  void SkipContinuation(int lead) {
    const int more = lead >= 0xF0 && lead <= 0xF4   ? 3
                     : lead >= 0xE0 && lead <= 0xEF ? 2
                     : lead >= 0xC2 && lead <= 0xDF ? 1
                                                    : 0;
    for (int i = 0; i < more; ++i) {
      const int c = Get();
      if (c < 0x80 || c > 0xBF) {
        held_ = c;
        return;
      }
    }
  }

  InputFile& in_;
  int held_ = -1;
  bool afterReturn_ = false;
};

}  // namespace

int TextInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  const int32_t limit = CurrentSettings().TextFileLimit;
  // Without a line limit the whole file becomes the picture: a huge one is refused before it is
  // read, as a picture no one could look at.
  if (limit <= 0 && in.Size() > kTextMaxBytes) return kUnsuitableImage;
  TextLines lines(in);
  std::vector<uint8_t> cells;
  uint64_t count = 0;
  size_t longest = 0;
  try {
    while ((limit <= 0 || count < static_cast<uint64_t>(limit)) && lines.Next(cells)) {
      ++count;
      longest = std::max(longest, cells.size());
    }
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  // A file without a character is one empty cell.
  info.width = static_cast<uint32_t>(std::max<size_t>(longest, 1)) * kGlyphWidth;
  const uint64_t depth = std::max<uint64_t>(count, 1) * kGlyphHeight;
  if (depth > INT32_MAX) return kUnsuitableImage;
  info.depth = static_cast<int32_t>(depth);
  info.bits = 1;
  info.palette[0] = Rgb{0, 0, 0};
  info.palette[1] = Rgb{255, 255, 255};
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);
  SetText(info.description,
          "Text, " + std::to_string(count) + (count == 1 ? " line" : " lines") + " of up to " +
              std::to_string(longest) + " characters",
          kMaxDescriptionLength);
  return kOk;
}

int TextRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  const uint32_t columns = info.width / kGlyphWidth;
  const int32_t lineCount = info.depth / static_cast<int32_t>(kGlyphHeight);
  // Ink is a clear bit (black) on set bits (white), or the other way round.
  const uint8_t flip = CurrentSettings().InvertTextFiles != 0 ? 0x00 : 0xFF;
  try {
    std::vector<uint8_t> row(static_cast<size_t>(WorkingRowSize(info.width, 1)), 0);
    std::vector<uint8_t> cells;
    TextLines lines(in);
    for (int32_t line = 0; line < lineCount; ++line) {
      // A file that lost lines since info was taken shows them empty.
      if (!lines.Next(cells)) cells.clear();
      const size_t used = std::min<size_t>(cells.size(), columns);
      for (uint32_t r = 0; r < kGlyphHeight; ++r) {
        // Each cell is eight pixels wide: one byte of the row.
        for (size_t i = 0; i < used; ++i) row[i] = TextGlyph(cells[i])[r] ^ flip;
        std::fill(row.begin() + static_cast<ptrdiff_t>(used), row.begin() + columns, flip);
        if (info.putLine(row,
                         line * static_cast<int32_t>(kGlyphHeight) + static_cast<int32_t>(r)) != 0)
          return kCancelled;
      }
    }
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  return kOk;
}

}  // namespace pxm
