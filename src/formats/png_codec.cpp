#include "formats/png_codec.h"

#include <zlib.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "core/block_deflate.h"
#include "core/bytes.h"
#include "core/crc32.h"

namespace pxm {

uint32_t PngUpdateCrc(uint32_t crc, std::span<const uint8_t> bytes) { return Crc32(crc, bytes); }

namespace {

enum Filter : uint8_t { kNone = 0, kSub = 1, kUp = 2, kAverage = 3, kPaeth = 4 };

inline uint8_t Paeth(uint8_t a, uint8_t b, uint8_t c) {
  const int p = a + b - c;
  const int pa = std::abs(p - a);
  const int pb = std::abs(p - b);
  const int pc = std::abs(p - c);
  if (pa <= pb && pa <= pc) return a;
  return pb <= pc ? b : c;
}

// The filtered byte taken as signed: the heuristic adds up how far each is from zero.
inline uint32_t Cost(uint8_t v) {
  return v < 128 ? v : 256u - v;
}

// Each filter in a loop of its own, so that the compiler can keep each one simple and fast; the
// first `bpp` bytes, which have no left neighbour, come first. Answers the row's cost.
template <Filter F>
uint32_t Apply(const uint8_t* row, const uint8_t* up, size_t n, size_t bpp, uint8_t* out) {
  auto predict = [](uint8_t a, uint8_t b, uint8_t c) -> uint8_t {
    (void)a, (void)b, (void)c;
    if constexpr (F == kSub) return a;
    if constexpr (F == kUp) return b;
    if constexpr (F == kAverage) return static_cast<uint8_t>((a + b) >> 1);
    if constexpr (F == kPaeth) return Paeth(a, b, c);
    return 0;
  };
  uint32_t sum = 0;
  const size_t head = std::min(bpp, n);
  for (size_t i = 0; i < head; ++i) {
    const auto v = static_cast<uint8_t>(row[i] - predict(0, up[i], 0));
    out[i] = v;
    sum += Cost(v);
  }
  for (size_t i = head; i < n; ++i) {
    const auto v = static_cast<uint8_t>(row[i] - predict(row[i - bpp], up[i], up[i - bpp]));
    out[i] = v;
    sum += Cost(v);
  }
  return sum;
}

}  // namespace

struct PngDeflate::State {
  OutputFile* file = nullptr;
  std::unique_ptr<BlockDeflate> stream;
  size_t bytesPerRow = 0;
  size_t bytesPerPixel = 0;
  uint32_t crc = 0;
  uint64_t written = 0;
  std::vector<uint8_t> previous;   // the row above, unfiltered (zeros above the first row)
  std::vector<uint8_t> candidate;  // one filtered row being tried
  std::vector<uint8_t> best;       // filter byte and the chosen filtered row

  // The output file buffers small pieces itself.
  bool Take(std::span<const uint8_t> bytes) {
    crc = PngUpdateCrc(crc, bytes);
    written += bytes.size();
    return file->Write(bytes.data(), bytes.size());
  }

  // Chooses the filter of one row: the one whose bytes, taken as signed, add up the least (the
  // usual heuristic; photographs come out smaller than unfiltered).
  void FilterRow(const uint8_t* row) {
    const size_t n = bytesPerRow;
    const size_t bpp = bytesPerPixel;
    const uint8_t* up = previous.data();
    best[0] = kNone;
    uint32_t least = Apply<kNone>(row, up, n, bpp, best.data() + 1);
    auto attempt = [&](Filter f, uint32_t cost) {
      if (cost >= least) return;
      least = cost;
      candidate[0] = f;
      std::swap(candidate, best);
    };
    attempt(kSub, Apply<kSub>(row, up, n, bpp, candidate.data() + 1));
    attempt(kUp, Apply<kUp>(row, up, n, bpp, candidate.data() + 1));
    attempt(kAverage, Apply<kAverage>(row, up, n, bpp, candidate.data() + 1));
    attempt(kPaeth, Apply<kPaeth>(row, up, n, bpp, candidate.data() + 1));
  }
};

PngDeflate::PngDeflate() = default;
PngDeflate::~PngDeflate() = default;
uint64_t PngDeflate::Written() const {
  return state_ ? state_->written : 0;
}

bool PngBeginDeflate(PngDeflate& deflate, OutputFile& file, int level, size_t bytesPerRow,
                     int bytesPerPixel) {
  auto s = std::make_unique<PngDeflate::State>();
  s->file = &file;
  s->bytesPerRow = bytesPerRow;
  s->bytesPerPixel = static_cast<size_t>(bytesPerPixel);
  // Filtered rows compress best with the strategy made for them.
  const int strategy = bytesPerPixel > 0 ? Z_FILTERED : Z_DEFAULT_STRATEGY;
  PngDeflate::State* state = s.get();
  s->stream = std::make_unique<BlockDeflate>(
      level, strategy, [state](std::span<const uint8_t> bytes) { return state->Take(bytes); });
  s->previous.assign(bytesPerRow, 0);
  s->candidate.assign(bytesPerRow + 1, 0);
  s->best.assign(bytesPerRow + 1, 0);
  static constexpr uint8_t kType[4] = {'I', 'D', 'A', 'T'};
  s->crc = PngUpdateCrc(0, kType);
  deflate.state_ = std::move(s);
  return true;
}

bool PngDeflateData(PngDeflate& deflate, std::span<const uint8_t> row) {
  PngDeflate::State* s = deflate.state_.get();
  if (!s || row.size() < s->bytesPerRow) return false;
  if (s->bytesPerPixel == 0) {
    s->best[0] = kNone;
    std::memcpy(s->best.data() + 1, row.data(), s->bytesPerRow);
  } else {
    s->FilterRow(row.data());
    std::memcpy(s->previous.data(), row.data(), s->bytesPerRow);
  }
  return s->stream->Add({s->best.data(), s->bytesPerRow + 1});
}

bool PngEndDeflate(PngDeflate& deflate) {
  PngDeflate::State* s = deflate.state_.get();
  if (!s || !s->stream->Finish()) return false;
  uint8_t crc[4];
  StoreBe32(crc, s->crc);
  return s->file->Write(crc, 4);
}

}  // namespace pxm
