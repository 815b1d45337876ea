#include "thumbs/thumbnail_remap.h"

#include "core/fixed_palette.h"

namespace pxm {

const InverseColourMap& ThumbnailRemap() {
  static const InverseColourMap table = [] {
    InverseColourMap map{};
    BuildInverseMap(map, ThumbGetPalette(0), 256);
    return map;
  }();
  return table;
}

}  // namespace pxm
