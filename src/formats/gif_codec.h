#pragma once

// The GIF codec library: LZW coding of GIF image data, also used by the TIFF reader.
namespace pxm {

// Whether LZW coding is switched off in this build: 0 means it is allowed. LZW is always
// allowed here.
inline int GifIsLzw() { return 0; }

}  // namespace pxm
