#include "formats/gif_lzw.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace pxm {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes Encode(int codeSize, const Bytes& pixels, size_t piece = SIZE_MAX) {
  GifLzwEncoder encoder(codeSize);
  Bytes out;
  for (size_t at = 0; at < pixels.size(); at += piece)
    encoder.Add(pixels.data() + at, std::min(piece, pixels.size() - at), out);
  encoder.Finish(out);
  return out;
}

// Decodes `count` pixels, feeding `feed` code bytes at a time and asking for `room` pixels a call.
Bytes Decode(int codeSize, const Bytes& code, size_t count, size_t feed = SIZE_MAX,
             size_t room = SIZE_MAX, GifLzwDecoder::State* state = nullptr) {
  GifLzwDecoder decoder(codeSize);
  Bytes out(count);
  size_t done = 0;
  size_t fed = 0;
  while (done < count) {
    const size_t want = std::min(room, count - done);
    const size_t n = decoder.Decode(out.data() + done, want);
    done += n;
    if (n == want) continue;  // it gave all that was asked: ask again
    if (decoder.GetState() != GifLzwDecoder::State::kRunning || fed >= code.size()) break;
    const size_t take = std::min(feed, code.size() - fed);
    decoder.Feed(code.data() + fed, take);
    fed += take;
  }
  out.resize(done);
  if (state) *state = decoder.GetState();
  return out;
}

Bytes Noise(size_t n, uint32_t colours, uint32_t seed) {
  Bytes v(n);
  uint32_t s = seed;
  for (auto& b : v) {
    s = s * 1103515245u + 12345u;
    b = static_cast<uint8_t>((s >> 16) % colours);
  }
  return v;
}

TEST(GifLzw, KnownCodesForSixEqualPixels) {
  // Clear (4), 0, then the strings 6 = "00" and 7 = "000" as they are made, in 3 bits; the table
  // then reaches 8 entries, so the end code (5) takes 4 bits: 100 000 011 111 1010, low bits first.
  const Bytes code = Encode(2, Bytes(6, 0));
  EXPECT_EQ(code, (Bytes{0x84, 0x5F}));
  EXPECT_EQ(Decode(2, code, 6), Bytes(6, 0));
}

TEST(GifLzw, RoundTripsAtEveryCodeSizeAndAcrossTableClears) {
  for (int codeSize = 2; codeSize <= 8; ++codeSize) {
    const uint32_t colours = 1u << codeSize;
    // Noise fills the table after about 4096 - 2^size codes of one or two pixels each: lengths
    // across several clears, and a run of one colour that makes long strings.
    for (size_t n : {size_t{1}, size_t{2}, size_t{3841}, size_t{3950}, size_t{20011}}) {
      SCOPED_TRACE(testing::Message() << "code size " << codeSize << ", " << n << " pixels");
      Bytes pixels = Noise(n, colours, static_cast<uint32_t>(n + codeSize));
      for (size_t i = n / 3; i < n / 2; ++i) pixels[i] = static_cast<uint8_t>(colours - 1);
      const Bytes code = Encode(codeSize, pixels, 97);
      GifLzwDecoder::State state;
      EXPECT_EQ(Decode(codeSize, code, n), pixels);
      // Fed a byte at a time and drained a few pixels at a time: strings and codes split anywhere.
      EXPECT_EQ(Decode(codeSize, code, n + 1, 1, 7, &state), pixels);
      EXPECT_EQ(state, GifLzwDecoder::State::kEnd);
    }
  }
}

TEST(GifLzw, DamagedDataStopsCleanly) {
  GifLzwDecoder::State state;
  // A code beyond the next free entry: clear, 0, then 7 where 6 is the most there can be.
  // Bits: 100 000 111 -> 0xC4 0x01 (low bits first).
  EXPECT_EQ(Decode(2, Bytes{0xC4, 0x01}, 10, SIZE_MAX, SIZE_MAX, &state), Bytes{0});
  EXPECT_EQ(state, GifLzwDecoder::State::kBadCode);
  // A string code straight after a clear.
  EXPECT_EQ(Decode(2, Bytes{0x34}, 10, SIZE_MAX, SIZE_MAX, &state), Bytes{});
  EXPECT_EQ(state, GifLzwDecoder::State::kBadCode);
  // Data that simply stops: what was decoded is kept and decoding waits for more.
  const Bytes pixels = Noise(500, 16, 3);
  Bytes code = Encode(4, pixels);
  code.resize(code.size() / 2);
  Bytes got = Decode(4, code, 500, SIZE_MAX, SIZE_MAX, &state);
  EXPECT_EQ(state, GifLzwDecoder::State::kRunning);
  ASSERT_LT(got.size(), 500u);
  EXPECT_TRUE(std::equal(got.begin(), got.end(), pixels.begin()));
  // Code sizes the decoder refuses.
  EXPECT_FALSE(GifLzwDecoder::IsValidCodeSize(0));
  EXPECT_FALSE(GifLzwDecoder::IsValidCodeSize(12));
}

}  // namespace
}  // namespace pxm
