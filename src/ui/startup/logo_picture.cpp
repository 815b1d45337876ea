#include "startup/logo_picture.h"

#include <vector>

#include "core/host.h"

namespace pxm::ui {
namespace {

QVector<QRgb> ColourTable(const Palette& palette, int count) {
  QVector<QRgb> table(count);
  for (int i = 0; i < count; ++i) {
    const Rgb& c = palette[static_cast<size_t>(i)];
    table[i] = qRgb(c.red, c.green, c.blue);
  }
  return table;
}

}  // namespace

QImage PictureImage(KeptPicture& picture) {
  const ImageInfo& info = picture.Info();
  ImageStore& store = picture.Store();
  if (info.width == 0 || info.depth <= 0) return {};
  const int width = static_cast<int>(info.width);
  const int height = info.depth;
  const uint32_t bits = store.storageBits;
  QImage image;
  if (bits == 1) {
    image = QImage(width, height, QImage::Format_Mono);
    image.setColorTable(ColourTable(info.palette, 2));
  } else if (bits == 4 || bits == 8) {
    image = QImage(width, height, QImage::Format_Indexed8);
    image.setColorTable(ColourTable(info.palette, 256));
  } else if (bits == 24) {
    image = QImage(width, height, QImage::Format_RGB888);
  } else {
    return {};
  }
  if (image.isNull()) return {};
  std::vector<uint8_t> row(store.bytesPerLine);
  for (int y = 0; y < height; ++y) {
    store.GetRowQuiet(row, y);
    uchar* out = image.scanLine(y);
    if (bits == 4) {
      // Two pixels a byte, the first in the high nibble.
      for (int x = 0; x < width; ++x) {
        uint8_t byte = row[static_cast<size_t>(x / 2)];
        out[x] = (x % 2 == 0) ? (byte >> 4) : (byte & 0x0F);
      }
    } else {
      size_t bytes = bits == 1 ? (static_cast<size_t>(width) + 7) / 8
                               : static_cast<size_t>(width) * (bits / 8);
      std::copy_n(row.data(), std::min(bytes, row.size()), out);
    }
  }
  return image;
}

QImage ReadPictureFile(const std::string& path) {
  QuietHost host;
  std::unique_ptr<KeptPicture> picture;
  if (LoadKeptPicture(host, path, picture) != 0 || !picture) return {};
  return PictureImage(*picture);
}

}  // namespace pxm::ui
