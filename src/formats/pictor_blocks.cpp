#include "formats/pictor_blocks.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "core/bytes.h"

namespace pxm {
namespace {

constexpr size_t kBlockHeaderBytes = 5;
constexpr uint32_t kUsualBlockBytes = 8192;
// A block of this many bytes packs to at most n + 2n / 256 + 5 bytes, within the 16-bit size.
constexpr uint32_t kLargestBlockBytes = 65000;

}  // namespace

bool PicStreamReader::Start(InputFile& in) {
  in_ = &in;
  uint8_t count[2];
  if (!in.ReadExact(count, 2)) return false;
  blocksLeft_ = LoadLe16(count);
  // Without blocks the bytes follow as they are.
  raw_ = blocksLeft_ == 0;
  blockEnd_ = in.Tell();
  unpackedLeft_ = 0;
  runLeft_ = 0;
  return true;
}

bool PicStreamReader::NextBlock() {
  while (blocksLeft_ > 0) {
    --blocksLeft_;
    if (!in_->Seek(blockEnd_)) return false;
    uint8_t h[kBlockHeaderBytes];
    if (!in_->ReadExact(h, sizeof h)) return false;
    const uint16_t packed = LoadLe16(h);
    if (packed < kBlockHeaderBytes) return false;
    blockEnd_ += packed;
    unpackedLeft_ = LoadLe16(h + 2);
    marker_ = h[4];
    runLeft_ = 0;
    if (unpackedLeft_ > 0) return true;
  }
  return false;
}

bool PicStreamReader::Read(uint8_t* out, size_t n) {
  if (raw_) return in_->ReadExact(out, n);
  while (n > 0) {
    if (unpackedLeft_ == 0 && !NextBlock()) return false;
    if (runLeft_ > 0) {
      const size_t k = std::min<size_t>({runLeft_, n, unpackedLeft_});
      std::memset(out, runValue_, k);
      out += k, n -= k;
      runLeft_ -= static_cast<uint32_t>(k);
      unpackedLeft_ -= static_cast<uint32_t>(k);
      continue;
    }
    int b = in_->Tell() < blockEnd_ ? in_->ReadByte() : -1;
    if (b >= 0 && b != marker_) {
      *out++ = static_cast<uint8_t>(b);
      --n, --unpackedLeft_;
      continue;
    }
    if (b == marker_) {
      // marker, count, value; a count of 0 is followed by a 16-bit count.
      uint32_t count = static_cast<uint32_t>(in_->ReadByte());
      if (count == 0) {
        uint8_t wide[2] = {0, 0};
        in_->Read(wide, 2);
        count = LoadLe16(wide);
      }
      const int value = in_->ReadByte();
      if (in_->Tell() <= blockEnd_ && value >= 0) {
        runValue_ = static_cast<uint8_t>(value);
        runLeft_ = count;
        continue;
      }
    }
    // The packed bytes ended before the block made its bytes: the rest of it is zero, so the
    // blocks after it (and the planes they hold) stay where they belong.
    runValue_ = 0;
    runLeft_ = unpackedLeft_;
    if (!in_->Seek(blockEnd_)) return false;
  }
  return true;
}

bool PicStreamReader::Skip(uint64_t n) {
  if (raw_) {
    if (n > in_->Size() - std::min(in_->Size(), in_->Tell())) return false;
    return in_->Skip(n);
  }
  while (n > 0) {
    if (unpackedLeft_ == 0 && !NextBlock()) return false;
    if (n >= unpackedLeft_) {
      n -= unpackedLeft_;
      unpackedLeft_ = 0;  // the next block is found from this one's size
      continue;
    }
    const size_t k = static_cast<size_t>(std::min<uint64_t>(n, 4096));
    scratch_.resize(k);
    if (!Read(scratch_.data(), k)) return false;
    n -= k;
  }
  return true;
}

uint32_t PicBlockBytes(uint64_t streamBytes) {
  const uint64_t needed = (streamBytes + 65534) / 65535;
  return static_cast<uint32_t>(std::clamp<uint64_t>(needed, kUsualBlockBytes, kLargestBlockBytes));
}

void PackPicBlock(const uint8_t* data, size_t n, std::vector<uint8_t>& out) {
  std::array<uint32_t, 256> uses{};
  for (size_t i = 0; i < n; ++i) ++uses[data[i]];
  const auto marker =
      static_cast<uint8_t>(std::min_element(uses.begin(), uses.end()) - uses.begin());

  const size_t start = out.size();
  out.resize(start + kBlockHeaderBytes);
  for (size_t i = 0; i < n;) {
    size_t run = 1;
    while (i + run < n && data[i + run] == data[i] && run < 65535) ++run;
    // A run of three costs as much packed as plain; the marker itself always goes as a run.
    if (run >= 4 || data[i] == marker) {
      out.push_back(marker);
      if (run <= 255) {
        out.push_back(static_cast<uint8_t>(run));
      } else {
        out.push_back(0);
        out.push_back(static_cast<uint8_t>(run));
        out.push_back(static_cast<uint8_t>(run >> 8));
      }
      out.push_back(data[i]);
    } else {
      out.insert(out.end(), data + i, data + i + run);
    }
    i += run;
  }
  StoreLe16(out.data() + start, static_cast<uint32_t>(out.size() - start));
  StoreLe16(out.data() + start + 2, static_cast<uint32_t>(n));
  out[start + 4] = marker;
}

}  // namespace pxm
