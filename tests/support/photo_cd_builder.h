#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace pxm::test {

// The samples of a Photo CD picture: `plane` 0 is luma, 1 and 2 the chroma planes; x and y count
// in the plane's own size, of which `width` is the width.
using PcdSample = std::function<uint8_t(int plane, uint32_t x, uint32_t y, uint32_t width)>;

// A Photo CD image pack assembled byte for byte: the signature sector, the attribute byte with
// the turn, and Base/16, Base/4 and Base at their sectors, every pair of luma rows followed by a
// row of each chroma plane. `length` cuts (or pads with zeros) the file to that many bytes.
std::string PhotoCdPack(const PcdSample& sample, uint32_t turn = 0, size_t length = 0);

// Smooth test samples that differ at every size and stay clear of the chroma ends.
uint8_t PcdGradient(int plane, uint32_t x, uint32_t y, uint32_t width);

}  // namespace pxm::test
