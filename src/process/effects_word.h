#pragma once

#include <cstdint>

// The effects word the Effects dialog produces: one effect bit, and for some effects a palette
// choice, a mapping method or a block size.
namespace pxm {

inline constexpr uint32_t kEffectReduce = 1;  // colour reduction or dither
inline constexpr uint32_t kEffectGrey = 2;
inline constexpr uint32_t kEffectSoften = 4;
inline constexpr uint32_t kEffectSharpen = 8;
inline constexpr uint32_t kEffectSmudge = 16;
inline constexpr uint32_t kEffectPosterize = 32;
inline constexpr uint32_t kEffectPromote = 64;

// Posterize block sizes 2, 4, 8, 16.
inline constexpr uint32_t kBlock2 = 0x100;
inline constexpr uint32_t kBlock4 = 0x200;
inline constexpr uint32_t kBlock8 = 0x400;
inline constexpr uint32_t kBlock16 = 0x800;

// Mapping methods of colour reduction, in bits 8..11.
inline constexpr uint32_t kMapRemap = 1;
inline constexpr uint32_t kMapFloyd = 2;
inline constexpr uint32_t kMapBurkes = 3;
inline constexpr uint32_t kMapStucki = 4;

// Palette choices, in bits 12..15: the dialog's radio buttons 1 to 11 in order.
inline constexpr uint32_t kPaletteOrthogonal = 1;
inline constexpr uint32_t kPaletteQuantized256 = 2;
inline constexpr uint32_t kPaletteQuantized128 = 3;
inline constexpr uint32_t kPaletteQuantized64 = 4;
inline constexpr uint32_t kPaletteQuantized32 = 5;
inline constexpr uint32_t kPaletteQuantized16 = 6;
inline constexpr uint32_t kPaletteQuantized8 = 7;
inline constexpr uint32_t kPaletteQuantized4 = 8;
inline constexpr uint32_t kPaletteBayer8 = 9;
inline constexpr uint32_t kPaletteFixed16 = 10;
inline constexpr uint32_t kPaletteQuantized240 = 11;

constexpr uint32_t MethodOf(uint32_t effects) { return (effects >> 8) & 0xF; }
constexpr uint32_t PaletteChoiceOf(uint32_t effects) { return (effects >> 12) & 0xF; }
constexpr uint32_t EffectsWord(uint32_t effect, uint32_t choice = 0, uint32_t method = 0) {
  return effect | (choice << 12) | (method << 8);
}

// What the dialog answers when it is cancelled: nothing runs.
inline constexpr uint32_t kEffectsCancelled = 65535;
// The reduction the Effects command runs when the destination cannot hold the result: 256
// colours by median cut, Burkes diffusion.
inline constexpr uint32_t kAutomaticReduction = 8961;
static_assert(kAutomaticReduction == EffectsWord(kEffectReduce, kPaletteQuantized256, kMapBurkes));

}  // namespace pxm
