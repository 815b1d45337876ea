#include "formats/gif_lzw.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace pxm {
namespace {

uint64_t Load64(const uint8_t* p) {
  uint64_t v;
  std::memcpy(&v, p, 8);
  if constexpr (std::endian::native == std::endian::big) v = __builtin_bswap64(v);
  return v;
}

}  // namespace

GifLzwDecoder::GifLzwDecoder(int codeSize)
    : clear_(1u << codeSize), endCode_((1u << codeSize) + 1), rootBits_(codeSize) {
  for (uint32_t c = 0; c < clear_; ++c) {
    suffix_[c] = static_cast<uint8_t>(c);
    first_[c] = static_cast<uint8_t>(c);
    length_[c] = 1;
  }
  Reset();
}

void GifLzwDecoder::Reset() {
  width_ = rootBits_ + 1;
  next_ = endCode_ + 1;
  havePrevious_ = false;
}

bool GifLzwDecoder::NextCode(uint32_t& code) {
  if (bitCount_ < width_) {
    if (inEnd_ - in_ >= 8) {
      // Whole bytes that fit in the free part of the accumulator, in one load.
      bits_ |= Load64(in_) << bitCount_;
      in_ += (63 - bitCount_) >> 3;
      bitCount_ |= 56;
    } else {
      while (bitCount_ <= 56 && in_ < inEnd_) {
        bits_ |= static_cast<uint64_t>(*in_++) << bitCount_;
        bitCount_ += 8;
      }
      if (bitCount_ < width_) return false;
    }
  }
  code = static_cast<uint32_t>(bits_) & ((1u << width_) - 1);
  bits_ >>= width_;
  bitCount_ -= width_;
  return true;
}

void GifLzwDecoder::WriteString(uint32_t code, uint8_t* end) const {
  while (code >= clear_) {
    *--end = suffix_[code];
    code = prefix_[code];
  }
  *--end = static_cast<uint8_t>(code);
}

size_t GifLzwDecoder::Decode(uint8_t* out, size_t room) {
  size_t done = 0;
  if (pendingAt_ < pendingEnd_) {
    const size_t n = std::min(room, pendingEnd_ - pendingAt_);
    std::memcpy(out, pending_.data() + pendingAt_, n);
    pendingAt_ += n;
    done = n;
  }
  while (done < room && state_ == State::kRunning) {
    uint32_t code;
    if (!NextCode(code)) break;
    if (code == clear_) {
      Reset();
      continue;
    }
    if (code == endCode_) {
      state_ = State::kEnd;
      break;
    }
    if (!havePrevious_) {
      // The first code after a clear must be a pixel.
      if (code >= clear_) {
        state_ = State::kBadCode;
        break;
      }
    } else {
      if (code > next_ || (code == next_ && next_ >= kLzwTableSize)) {
        state_ = State::kBadCode;
        break;
      }
      // A full table takes no more strings until the encoder clears it.
      if (next_ < kLzwTableSize) {
        // The new string is the previous one and the first pixel of this one; when this code is
        // the one being made, that first pixel is the previous string's own.
        const uint32_t head = code == next_ ? first_[previous_] : first_[code];
        prefix_[next_] = static_cast<uint16_t>(previous_);
        suffix_[next_] = static_cast<uint8_t>(head);
        first_[next_] = first_[previous_];
        length_[next_] = static_cast<uint16_t>(length_[previous_] + 1);
        ++next_;
        if (next_ == (1u << width_) && width_ < kLzwMaxBits) ++width_;
      }
    }
    previous_ = code;
    havePrevious_ = true;
    const size_t length = length_[code];
    if (length <= room - done) {
      WriteString(code, out + done + length);
      done += length;
    } else {
      WriteString(code, pending_.data() + length);
      const size_t n = room - done;
      std::memcpy(out + done, pending_.data(), n);
      done += n;
      pendingAt_ = n;
      pendingEnd_ = length;
    }
  }
  return done;
}

GifLzwEncoder::GifLzwEncoder(int codeSize)
    : clear_(1u << codeSize),
      endCode_((1u << codeSize) + 1),
      rootBits_(codeSize),
      keys_(kSlots, 0),
      codes_(kSlots, 0) {
  width_ = rootBits_ + 1;
  next_ = endCode_ + 1;
}

void GifLzwEncoder::Emit(uint32_t code, std::vector<uint8_t>& out) {
  bits_ |= static_cast<uint64_t>(code) << bitCount_;
  bitCount_ += width_;
  while (bitCount_ >= 8) {
    out.push_back(static_cast<uint8_t>(bits_));
    bits_ >>= 8;
    bitCount_ -= 8;
  }
  // The decoder widens its codes once its table reaches the next power of two, one string
  // behind the encoder: so the width grows after the code that sees the table that full.
  if (next_ >= (1u << width_) && width_ < kLzwMaxBits) ++width_;
}

void GifLzwEncoder::ClearTable() {
  width_ = rootBits_ + 1;
  next_ = endCode_ + 1;
  if (++generation_ == (1u << 12)) {
    std::fill(keys_.begin(), keys_.end(), 0);
    generation_ = 1;
  }
}

void GifLzwEncoder::Add(const uint8_t* pixels, size_t count, std::vector<uint8_t>& out) {
  size_t i = 0;
  if (count == 0) return;
  if (!havePrefix_) {
    Emit(clear_, out);
    prefix_ = pixels[0];
    havePrefix_ = true;
    i = 1;
  }
  uint32_t tag = generation_ << 20;
  uint32_t prefix = prefix_;
  for (; i < count; ++i) {
    const uint32_t pixel = pixels[i];
    const uint32_t key = (prefix << 8) | pixel;
    uint32_t slot = (key * 2654435761u) >> (32 - 14);
    bool known = false;
    for (;;) {
      const uint32_t k = keys_[slot];
      if (k == (tag | key)) {
        known = true;
        break;
      }
      if ((k >> 20) != (tag >> 20)) break;  // empty in this generation
      slot = (slot + 1) & (kSlots - 1);
    }
    if (known) {
      prefix = codes_[slot];
      continue;
    }
    Emit(prefix, out);
    if (next_ < kLzwTableSize) {
      keys_[slot] = tag | key;
      codes_[slot] = static_cast<uint16_t>(next_++);
    } else {
      Emit(clear_, out);
      ClearTable();
      tag = generation_ << 20;
    }
    prefix = pixel;
  }
  prefix_ = prefix;
}

void GifLzwEncoder::Finish(std::vector<uint8_t>& out) {
  if (!havePrefix_) {
    Emit(clear_, out);
  } else {
    Emit(prefix_, out);
  }
  Emit(endCode_, out);
  if (bitCount_ > 0) out.push_back(static_cast<uint8_t>(bits_));
  bits_ = 0;
  bitCount_ = 0;
}

}  // namespace pxm
