#pragma once

#include "core/image_info.h"
#include "core/image_store.h"

namespace pxm {

// Turns the stored picture into its negative. 1-bit and 24-bit pictures have every byte of every
// stored row inverted, padding included; palette pictures keep their pixels and have the first
// 2^bits palette entries inverted instead. A 1-bit picture therefore keeps its two palette
// entries: black on white stays "entry 0 on entry 1" with the bits flipped. Answers 4 when the
// user stops it between rows.
int ReverseStore(ImageStore& store, ImageInfo& info);

}  // namespace pxm
