#include "thumbs/stock_thumbnails.h"

#include <algorithm>

namespace pxm {
namespace {

// A fixed-palette entry by its levels: red and green 0..7, blue 0..3.
constexpr uint8_t Level(int red, int green, int blue) {
  return static_cast<uint8_t>((red << 5) | (green << 2) | blue);
}

constexpr uint8_t kBlack = Level(0, 0, 0);
constexpr uint8_t kWhite = Level(7, 7, 3);
constexpr uint8_t kLightGrey = Level(5, 5, 2);
constexpr uint8_t kMidGrey = Level(4, 4, 1);
constexpr uint8_t kDarkGrey = Level(3, 3, 1);

// Drawing on a record with the origin at the top left; rectangles are half-open.
class Canvas {
 public:
  explicit Canvas(ThumbnailRecord& record) : record_(record) {}

  void Fill(int x0, int y0, int x1, int y1, uint8_t colour) {
    x0 = std::max(x0, 0);
    y0 = std::max(y0, 0);
    x1 = std::min(x1, kThumbSize);
    y1 = std::min(y1, kThumbSize);
    for (int y = y0; y < y1; ++y) std::fill(record_.Row(y) + x0, record_.Row(y) + x1, colour);
  }
  // A filled rectangle with a one-pixel border.
  void Box(int x0, int y0, int x1, int y1, uint8_t inside, uint8_t border) {
    Fill(x0, y0, x1, y1, border);
    Fill(x0 + 1, y0 + 1, x1 - 1, y1 - 1, inside);
  }
  // A triangle standing on row `base` with its apex at (apexX, apexY), twice as wide as it is
  // tall, cut to the columns left..right - 1.
  void Peak(int apexX, int apexY, int base, int left, int right, uint8_t colour) {
    for (int y = apexY; y < base; ++y)
      Fill(std::max(apexX - (y - apexY), left), y, std::min(apexX + (y - apexY) + 1, right), y + 1,
           colour);
  }
  void Disc(int cx, int cy, int radius, uint8_t colour) {
    for (int y = cy - radius; y <= cy + radius; ++y)
      for (int x = cx - radius; x <= cx + radius; ++x)
        if ((x - cx) * (x - cx) + (y - cy) * (y - cy) <= radius * radius)
          Fill(x, y, x + 1, y + 1, colour);
  }

 private:
  ThumbnailRecord& record_;
};

// A floppy disk: dark body, metal shutter with its window, paper label.
void DrawRemovableDrive(Canvas& c) {
  c.Box(16, 14, 80, 82, Level(0, 1, 2), kBlack);
  c.Box(32, 14, 64, 38, kLightGrey, kBlack);
  c.Fill(50, 19, 57, 33, Level(0, 1, 2));
  c.Box(24, 48, 72, 82, kWhite, kBlack);
  for (int y : {57, 65, 73}) c.Fill(29, y, 67, y + 1, kMidGrey);
}

// A fixed disk: a flat grey case with a darker front and a green light.
void DrawOtherDrive(Canvas& c) {
  c.Box(8, 32, 88, 64, kLightGrey, kBlack);
  c.Fill(9, 54, 87, 63, kDarkGrey);
  c.Fill(72, 42, 80, 47, Level(0, 7, 0));
}

// A folder: tab and body in yellow with a brown border.
void DrawDirectory(Canvas& c) {
  const uint8_t border = Level(4, 3, 0);
  c.Box(12, 20, 44, 30, Level(7, 5, 0), border);
  c.Box(10, 28, 86, 76, Level(7, 6, 0), border);
}

// An empty picture frame round a faded landscape: a picture that is not there yet.
void DrawMissing(Canvas& c) {
  c.Box(12, 18, 84, 78, kBlack, kBlack);
  c.Fill(16, 22, 80, 74, Level(5, 6, 3));
  c.Disc(64, 36, 6, Level(7, 7, 1));
  c.Peak(36, 42, 74, 16, 80, kMidGrey);
  c.Peak(60, 52, 74, 16, 80, kDarkGrey);
}

}  // namespace

int ThumbGetStockThumbnail(ThumbnailRecord& record, int which) {
  using Draw = void (*)(Canvas&);
  static constexpr Draw kDrawings[] = {DrawRemovableDrive, DrawOtherDrive, DrawDirectory,
                                       DrawMissing};
  if (which < 0 || which >= static_cast<int>(std::size(kDrawings))) return 0;
  record.Clear();
  record.width = kThumbSize;
  record.depth = kThumbSize;
  record.mode = kStockMode;
  Canvas canvas(record);
  canvas.Fill(0, 0, kThumbSize, kThumbSize, kWhite);
  kDrawings[which](canvas);
  return 1;
}

}  // namespace pxm
