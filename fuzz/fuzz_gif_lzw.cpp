// The GIF LZW decoder on its own: the first byte picks the code size, the next two how many
// pixels to ask for at a time; the rest is code data, fed in pieces of varying length.
#include <algorithm>
#include <vector>

#include "formats/gif_lzw.h"
#include "fuzz_support.h"

PXM_FUZZ_TARGET(gif_lzw, "lzw") {
  if (size < 3) return 0;
  const int codeSize = data[0] % 12;
  if (!pxm::GifLzwDecoder::IsValidCodeSize(codeSize)) return 0;
  const size_t room = 1 + ((size_t{data[1]} << 8) | data[2]);
  data += 3;
  size -= 3;
  pxm::GifLzwDecoder decoder(codeSize);
  std::vector<uint8_t> out(room);
  size_t fed = 0;
  size_t piece = 1;
  for (int calls = 0; calls < 1 << 20; ++calls) {
    const size_t n = decoder.Decode(out.data(), room);
    if (n == room) continue;
    if (decoder.GetState() != pxm::GifLzwDecoder::State::kRunning || fed >= size) break;
    const size_t take = std::min(piece, size - fed);
    decoder.Feed(data + fed, take);
    fed += take;
    piece = piece * 3 % 257 + 1;
  }
  return 0;
}
