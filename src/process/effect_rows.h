#pragma once

#include <cstdint>
#include <span>

// The pixel rules of the effects, on rows of RGB triples. Each works in place, left to right, so
// a pixel sees its left neighbour already changed: that is part of each effect's look.
namespace pxm {

// Horizontal sharpen: the first pixel moves away from its right neighbour, inner pixels from the
// mean of their neighbours' halves, the last pixel stays.
void SharpenRow(uint8_t* rgb, uint32_t width);

// Horizontal soften: inner pixels toward half their neighbours, the end pixels two thirds of the
// way with their one neighbour.
void SoftenRow(uint8_t* rgb, uint32_t width);

// Smudge of one row: `below` holds the next two rows as they were (null where the picture ends);
// each pixel takes the colour of the pixel dx right and dy down, with dx and dy drawn from
// `draw` (0..2 each), when that pixel lies inside the picture.
using SmudgeDraw = int (*)();
void SmudgeRow(uint8_t* rgb, const uint8_t* const below[2], uint32_t width, SmudgeDraw draw);

// Spatial posterize of one band of rows: every block of n columns takes the mean colour of its
// pixels inside the picture.
void PosterizeBand(std::span<uint8_t* const> rows, uint32_t width, uint32_t n);

}  // namespace pxm
