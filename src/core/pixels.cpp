#include "core/pixels.h"

#include <algorithm>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace pxm {
namespace {

void SwapRedBlueScalar(uint8_t* row, size_t pixels) {
  for (size_t x = 0; x < pixels; ++x) std::swap(row[3 * x], row[3 * x + 2]);
}

#if defined(__x86_64__)
// Every true-colour row of every BGR format passes through here twice per conversion, so the
// byte shuffle is done 16 pixels at a time where the processor can. All three loads of a block
// come before its stores: a load that overlapped the store just made would stall the processor.
__attribute__((target("ssse3"))) void SwapRedBlueSsse3(uint8_t* row, size_t pixels) {
  // Each 16-byte lane holds 5 pixels and one byte that goes back unchanged.
  const __m128i order = _mm_setr_epi8(2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, 15);
  size_t x = 0;
  for (; x + 16 <= pixels; x += 16) {
    uint8_t* p = row + 3 * x;
    __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 15));
    __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 30));
    // In this order each store's unchanged last byte is overwritten by the next store.
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm_shuffle_epi8(a, order));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 15), _mm_shuffle_epi8(b, order));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 30), _mm_shuffle_epi8(c, order));
    std::swap(p[45], p[47]);
  }
  SwapRedBlueScalar(row + 3 * x, pixels - x);
}
#endif

}  // namespace

void SwapRedBlue(uint8_t* row, size_t pixels) {
#if defined(__x86_64__)
  static const bool ssse3 = __builtin_cpu_supports("ssse3");
  if (ssse3) return SwapRedBlueSsse3(row, pixels);
#endif
  SwapRedBlueScalar(row, pixels);
}

void ReversePixels(uint8_t* row, uint32_t width, uint32_t storageBits) {
  if (width < 2) return;
  if (storageBits == 8) {
    std::reverse(row, row + width);
    return;
  }
  if (storageBits == 24) {
    for (uint32_t a = 0, b = width - 1; a < b; ++a, --b)
      for (int c = 0; c < 3; ++c) std::swap(row[3 * a + c], row[3 * b + c]);
    return;
  }
  for (uint32_t a = 0, b = width - 1; a < b; ++a, --b) {
    uint32_t pa = PixelAt(row, a, storageBits);
    SetPixelAt(row, a, storageBits, PixelAt(row, b, storageBits));
    SetPixelAt(row, b, storageBits, pa);
  }
}

void CopyPixels(uint8_t* dst, const uint8_t* src, uint32_t srcX, uint32_t count,
                uint32_t storageBits) {
  if (storageBits == 8) {
    std::memcpy(dst, src + srcX, count);
  } else if (storageBits == 24) {
    std::memcpy(dst, src + 3 * static_cast<size_t>(srcX), 3 * static_cast<size_t>(count));
  } else {
    for (uint32_t x = 0; x < count; ++x)
      SetPixelAt(dst, x, storageBits, PixelAt(src, srcX + x, storageBits));
  }
}

}  // namespace pxm
