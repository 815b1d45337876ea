#pragma once

#include <cstdint>
#include <string_view>

#include "core/image_info.h"
#include "process/effects_word.h"

namespace pxm {

// Runs the one effect the effects word names (bits tested in the order 1, 2, 8, 4, 16, 32, 64) on
// the picture behind image.getLine / image.putLine, whose rows hold RGB triples whatever the
// record's bits say. Pictures of 24 bits get RGB rows back; palette pictures get indexes into
// their own palette, through an inverse map, packed for their depth. Colour reduction and grey
// scale give the picture a new depth and palette, promotion makes it 24-bit. Answers 0; 4 when
// the user stops it or a row callback fails (the store is then partly changed); 5 for a word
// that names no effect or no palette; 6.
int ApplyEffect(ImageInfo& image, uint32_t effects, std::string_view name);

}  // namespace pxm
