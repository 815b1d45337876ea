#pragma once

#include <cstdint>

// The effects word the Effects dialog produces: one effect bit, and for some effects a palette
// choice, a mapping method or a block size.
namespace pxm {

enum EffectBit : uint32_t {
  kEffectReduce = 1,     // colour reduction or dither
  kEffectGrey = 2,
  kEffectSoften = 4,
  kEffectSharpen = 8,
  kEffectSmudge = 16,
  kEffectPosterize = 32,
  kEffectPromote = 64,
};

// Posterize block sizes 2, 4, 8, 16.
enum EffectBlockBit : uint32_t {
  kBlock2 = 0x100,
  kBlock4 = 0x200,
  kBlock8 = 0x400,
  kBlock16 = 0x800,
};

// Mapping methods of colour reduction, in bits 8..11.
enum MappingMethod : uint32_t { kMapRemap = 1, kMapFloyd = 2, kMapBurkes = 3, kMapStucki = 4 };

// Palette choices, in bits 12..15: the dialog's radio buttons 1 to 11 in order.
enum PaletteChoice : uint32_t {
  kPaletteOrthogonal = 1,
  kPaletteQuantized256 = 2,
  kPaletteQuantized128 = 3,
  kPaletteQuantized64 = 4,
  kPaletteQuantized32 = 5,
  kPaletteQuantized16 = 6,
  kPaletteQuantized8 = 7,
  kPaletteQuantized4 = 8,
  kPaletteBayer8 = 9,
  kPaletteFixed16 = 10,
  kPaletteQuantized240 = 11,
};

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
