#include "core/crc32.h"

#include <zlib.h>

#include <algorithm>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace pxm {
namespace {

uint32_t Crc32Table(uint32_t crc, const uint8_t* data, size_t n) {
  uLong value = crc;
  // zlib takes lengths as 32-bit counts: feed larger spans in pieces.
  while (n > 0) {
    size_t piece = std::min<size_t>(n, 1u << 30);
    value = crc32(value, data, static_cast<uInt>(piece));
    data += piece;
    n -= piece;
  }
  return static_cast<uint32_t>(value);
}

#if defined(__x86_64__)
__attribute__((target("pclmul,sse4.1"))) inline __m128i Load(const uint8_t* q) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(q));
}

// x times both halves of k, added to the next 16 bytes.
__attribute__((target("pclmul,sse4.1"))) inline __m128i Fold(__m128i x, __m128i k, __m128i next) {
  return _mm_xor_si128(
      _mm_xor_si128(_mm_clmulepi64_si128(x, k, 0x00), _mm_clmulepi64_si128(x, k, 0x11)), next);
}

// Folding with carry-less multiplication: 64 bytes at a time are folded forward by x^(512+32)
// and x^512 mod P, then down to 128, 64 and 32 bits, and the last step is a Barrett reduction.
// The constants are those powers of x modulo the bit-reflected polynomial 0x1DB710641.
// `raw` is the CRC register without zlib's pre- and post-inversion; n is a multiple of 16, >= 64.
__attribute__((target("pclmul,sse4.1"))) uint32_t Crc32Folding(uint32_t raw, const uint8_t* p,
                                                                size_t n) {
  const __m128i k1k2 = _mm_set_epi64x(0x1c6e41596, 0x154442bd4);
  const __m128i k3k4 = _mm_set_epi64x(0x0ccaa009e, 0x1751997d0);
  const __m128i k5 = _mm_set_epi64x(0, 0x163cd6124);
  const __m128i poly = _mm_set_epi64x(0x1f7011641, 0x1db710641);  // mu, P
  const __m128i mask32 = _mm_set_epi32(0, 0, 0, -1);

  __m128i x1 = _mm_xor_si128(Load(p), _mm_cvtsi32_si128(static_cast<int>(raw)));
  __m128i x2 = Load(p + 16);
  __m128i x3 = Load(p + 32);
  __m128i x4 = Load(p + 48);
  p += 64;
  n -= 64;
  for (; n >= 64; p += 64, n -= 64) {
    x1 = Fold(x1, k1k2, Load(p));
    x2 = Fold(x2, k1k2, Load(p + 16));
    x3 = Fold(x3, k1k2, Load(p + 32));
    x4 = Fold(x4, k1k2, Load(p + 48));
  }
  x1 = Fold(x1, k3k4, x2);
  x1 = Fold(x1, k3k4, x3);
  x1 = Fold(x1, k3k4, x4);
  for (; n >= 16; p += 16, n -= 16) x1 = Fold(x1, k3k4, Load(p));

  // 128 bits to 64, then to 32 (each step also appends the 32 zero bits of the CRC's end).
  __m128i t = _mm_clmulepi64_si128(x1, k3k4, 0x10);
  x1 = _mm_xor_si128(_mm_srli_si128(x1, 8), t);
  t = _mm_clmulepi64_si128(_mm_and_si128(x1, mask32), k5, 0x00);
  x1 = _mm_xor_si128(_mm_srli_si128(x1, 4), t);
  // Barrett reduction of the remaining 64 bits to the 32-bit remainder.
  t = _mm_clmulepi64_si128(_mm_and_si128(x1, mask32), poly, 0x10);
  t = _mm_clmulepi64_si128(_mm_and_si128(t, mask32), poly, 0x00);
  x1 = _mm_xor_si128(x1, t);
  return static_cast<uint32_t>(_mm_extract_epi32(x1, 1));
}

bool HasFolding() {
  static const bool has = __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("sse4.1");
  return has;
}
#endif

}  // namespace

uint32_t Crc32(uint32_t crc, std::span<const uint8_t> bytes) {
  const uint8_t* p = bytes.data();
  size_t n = bytes.size();
#if defined(__x86_64__)
  if (n >= 64 && HasFolding()) {
    size_t whole = n & ~size_t{15};
    crc = ~Crc32Folding(~crc, p, whole);
    p += whole;
    n -= whole;
  }
#endif
  return Crc32Table(crc, p, n);
}

}  // namespace pxm
