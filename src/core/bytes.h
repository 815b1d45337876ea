#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

// Explicit little- and big-endian loads and stores: file layouts are byte arrays, never structs
// cast over a buffer.
namespace pxm {

inline uint16_t LoadLe16(const uint8_t* p) { return static_cast<uint16_t>(p[0] | (p[1] << 8)); }
inline uint32_t LoadLe32(const uint8_t* p) {
  return static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) |
         (static_cast<uint32_t>(p[2]) << 16) | (static_cast<uint32_t>(p[3]) << 24);
}
inline uint16_t LoadBe16(const uint8_t* p) { return static_cast<uint16_t>((p[0] << 8) | p[1]); }
inline uint32_t LoadBe32(const uint8_t* p) {
  return (static_cast<uint32_t>(p[0]) << 24) | (static_cast<uint32_t>(p[1]) << 16) |
         (static_cast<uint32_t>(p[2]) << 8) | static_cast<uint32_t>(p[3]);
}
inline void StoreLe16(uint8_t* p, uint32_t v) {
  p[0] = static_cast<uint8_t>(v);
  p[1] = static_cast<uint8_t>(v >> 8);
}
inline void StoreLe32(uint8_t* p, uint32_t v) {
  p[0] = static_cast<uint8_t>(v);
  p[1] = static_cast<uint8_t>(v >> 8);
  p[2] = static_cast<uint8_t>(v >> 16);
  p[3] = static_cast<uint8_t>(v >> 24);
}
inline void StoreBe16(uint8_t* p, uint32_t v) {
  p[0] = static_cast<uint8_t>(v >> 8);
  p[1] = static_cast<uint8_t>(v);
}
inline void StoreBe32(uint8_t* p, uint32_t v) {
  p[0] = static_cast<uint8_t>(v >> 24);
  p[1] = static_cast<uint8_t>(v >> 16);
  p[2] = static_cast<uint8_t>(v >> 8);
  p[3] = static_cast<uint8_t>(v);
}

// A cursor over bytes already in memory that can never step past its end: every read answers
// whether the bytes were there, and a failed read leaves the cursor at the end.
class ByteCursor {
 public:
  explicit ByteCursor(std::span<const uint8_t> data) : data_(data) {}

  size_t Position() const { return pos_; }
  size_t Remaining() const { return data_.size() - pos_; }
  bool AtEnd() const { return pos_ >= data_.size(); }
  bool Seek(size_t pos) {
    if (pos > data_.size()) {
      pos_ = data_.size();
      return false;
    }
    pos_ = pos;
    return true;
  }
  bool Skip(size_t n) {
    if (n > Remaining()) {
      pos_ = data_.size();
      return false;
    }
    pos_ += n;
    return true;
  }
  bool Read(void* out, size_t n) {
    if (n > Remaining()) {
      pos_ = data_.size();
      return false;
    }
    std::memcpy(out, data_.data() + pos_, n);
    pos_ += n;
    return true;
  }
  bool U8(uint8_t& v) { return Read(&v, 1); }
  bool Le16(uint16_t& v) { return Fixed(v, LoadLe16); }
  bool Le32(uint32_t& v) { return Fixed(v, LoadLe32); }
  bool Be16(uint16_t& v) { return Fixed(v, LoadBe16); }
  bool Be32(uint32_t& v) { return Fixed(v, LoadBe32); }
  std::span<const uint8_t> Rest() const { return data_.subspan(pos_); }

 private:
  template <typename T, typename F>
  bool Fixed(T& v, F load) {
    uint8_t buf[sizeof(T)];
    if (!Read(buf, sizeof(T))) return false;
    v = load(buf);
    return true;
  }
  std::span<const uint8_t> data_;
  size_t pos_ = 0;
};

}  // namespace pxm
