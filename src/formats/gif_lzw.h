#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

// Variable-length LZW as GIF uses it: codes of (minimum code size + 1) up to 12 bits, least
// significant bit first, with a clear code (2^size) and an end code (2^size + 1).
namespace pxm {

constexpr int kLzwMaxBits = 12;
constexpr uint32_t kLzwTableSize = 1u << kLzwMaxBits;

// Turns a stream of code bytes (sub-block framing already removed) back into pixel indices. Any
// data is safe: a code the table does not hold yet stops decoding with kBadCode.
class GifLzwDecoder {
 public:
  enum class State { kRunning, kEnd, kBadCode };

  // `codeSize` must be 1 to 11 (IsValidCodeSize).
  explicit GifLzwDecoder(int codeSize);
  static bool IsValidCodeSize(int codeSize) { return codeSize >= 1 && codeSize <= 11; }

  // Hands over the next bytes of code data; they must stay valid until Decode has used them.
  void Feed(const uint8_t* data, size_t size) {
    in_ = data;
    inEnd_ = data + size;
  }
  // Writes up to `room` pixels to `out` and answers how many it wrote: fewer than `room` only
  // when the fed bytes are used up (more may be fed) or decoding has stopped (State()).
  size_t Decode(uint8_t* out, size_t room);
  State GetState() const { return state_; }

 private:
  void Reset();
  bool NextCode(uint32_t& code);
  // Writes the string of `code` (whose length is length_[code]) ending at `end` - 1.
  void WriteString(uint32_t code, uint8_t* end) const;

  const uint32_t clear_;
  const uint32_t endCode_;
  const int rootBits_;
  int width_ = 0;
  uint32_t next_ = 0;
  uint32_t previous_ = 0;
  bool havePrevious_ = false;
  State state_ = State::kRunning;
  uint64_t bits_ = 0;
  int bitCount_ = 0;
  const uint8_t* in_ = nullptr;
  const uint8_t* inEnd_ = nullptr;
  // The tail of a string that did not fit where it was written.
  std::array<uint8_t, kLzwTableSize> pending_{};
  size_t pendingAt_ = 0;
  size_t pendingEnd_ = 0;
  std::array<uint16_t, kLzwTableSize> prefix_{};
  std::array<uint8_t, kLzwTableSize> suffix_{};
  std::array<uint8_t, kLzwTableSize> first_{};
  std::array<uint16_t, kLzwTableSize> length_{};
};

// Codes pixel indices. Output is the plain code bytes; the caller frames them in sub-blocks.
class GifLzwEncoder {
 public:
  // `codeSize` 2 to 8. Every pixel must be below 2^codeSize.
  explicit GifLzwEncoder(int codeSize);

  // Codes more pixels; code bytes are appended to `out`.
  void Add(const uint8_t* pixels, size_t count, std::vector<uint8_t>& out);
  // Codes the last string and the end code and pads the last byte.
  void Finish(std::vector<uint8_t>& out);

 private:
  void Emit(uint32_t code, std::vector<uint8_t>& out);
  void ClearTable();

  const uint32_t clear_;
  const uint32_t endCode_;
  const int rootBits_;
  int width_ = 0;
  uint32_t next_ = 0;
  uint32_t prefix_ = 0;
  bool havePrefix_ = false;
  uint64_t bits_ = 0;
  int bitCount_ = 0;
  // Open-addressed strings: each slot holds (generation << 20 | prefix << 8 | pixel). A clear
  // starts a new generation instead of wiping the table, which would cost more than the coding
  // between two clears.
  static constexpr uint32_t kSlots = 1u << 14;
  uint32_t generation_ = 1;
  std::vector<uint32_t> keys_;
  std::vector<uint16_t> codes_;
};

}  // namespace pxm
