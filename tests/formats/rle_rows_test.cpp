#include "formats/rle_rows.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/temp_dir.h"

namespace pxm {
namespace {

using Bytes = std::vector<uint8_t>;
using Mode = RleRowUnpacker::Mode;

// Run-length data in a file, unpacked one row at a time.
class RleFile {
 public:
  RleFile(Mode mode, const Bytes& data, uint32_t width) : unpacker_(mode), width_(width) {
    test::WriteFileBytes(dir_ / "rows", std::string(data.begin(), data.end()));
    EXPECT_TRUE(in_.Open(dir_ / "rows"));
    unpacker_.Reset();
  }
  // The next row; its bytes go to `row`, cut to one complete row. The buffer starts dirty so
  // that pixels the data never sets show whether the unpacker cleared them.
  int64_t Next(Bytes& row) {
    row.assign(64, 0xEE);
    int64_t n = unpacker_.UnpackRow(in_, row, width_);
    row.resize(unpacker_.RowBytes(width_));
    return n;
  }
  RleRowUnpacker& unpacker() { return unpacker_; }
  InputFile& file() { return in_; }

 private:
  test::TempDir dir_;
  InputFile in_;
  RleRowUnpacker unpacker_;
  uint32_t width_;
};

TEST(RleRows, EightBitRunsAbsoluteRunsDeltasAndTheEndMark) {
  RleFile rle(Mode::kRle8,
              {
                  0x03, 0x05,                          // three 5s
                  0x00, 0x03, 0x01, 0x02, 0x03, 0x00,  // absolute 1 2 3, padded to a word
                  0x00, 0x00,                          // end of line
                  0x04, 0x07, 0x04, 0x08,              // the second run overshoots the row
                  0x00, 0x00,                          //
                  0x00, 0x02, 0x02, 0x00,              // delta: two right, same row
                  0x01, 0x09,                          //
                  0x00, 0x02, 0x01, 0x02,              // delta: one right, two rows down
                  0x02, 0x04,                          //
                  0x00, 0x01,                          // end of bitmap after data
              },
              6);
  Bytes row;
  EXPECT_EQ(rle.Next(row), 6);
  EXPECT_EQ(row, (Bytes{5, 5, 5, 1, 2, 3}));
  EXPECT_EQ(rle.Next(row), 6);
  EXPECT_EQ(row, (Bytes{7, 7, 7, 7, 8, 8}));
  // Pixels a delta jumps over are left at 0.
  EXPECT_EQ(rle.Next(row), 6);
  EXPECT_EQ(row, (Bytes{0, 0, 9, 0, 0, 0}));
  EXPECT_EQ(rle.Next(row), 6);  // the row the delta passed through
  EXPECT_EQ(row, (Bytes{0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(rle.Next(row), 6);  // the pen kept its column
  EXPECT_EQ(row, (Bytes{0, 0, 0, 0, 4, 4}));
  EXPECT_EQ(rle.Next(row), -1);
  EXPECT_EQ(rle.Next(row), -1);

  // Reset forgets the end mark and the rows a delta still owed.
  rle.unpacker().Reset();
  ASSERT_TRUE(rle.file().Seek(0));
  EXPECT_EQ(rle.Next(row), 6);
  EXPECT_EQ(row, (Bytes{5, 5, 5, 1, 2, 3}));
}

TEST(RleRows, EndMarkAtTheStartOfARowEndsAtOnce) {
  RleFile rle(Mode::kRle8, {0x02, 0x01, 0x00, 0x00, 0x00, 0x01}, 2);
  Bytes row;
  EXPECT_EQ(rle.Next(row), 2);
  EXPECT_EQ(rle.Next(row), -1);
}

TEST(RleRows, FourBitRunsAlternateNibblesAndAbsoluteRunsArePadded) {
  RleFile rle(Mode::kRle4,
              {
                  0x05, 0x1F, 0x00, 0x00,              // 1 F 1 F 1
                  0x00, 0x05, 0x56, 0x78, 0x90, 0x00,  // 5 6 7 8 9: three bytes and a pad
                  0x00, 0x00,                          //
                  0x00, 0x03, 0xAB, 0xC0, 0x02, 0xDE,  // A B C (two bytes, no pad), D E
                  0x00, 0x00,                          //
                  0x00, 0x02, 0x01, 0x01, 0x01, 0x70, 0x00, 0x01,  // delta into the next row
              },
              5);
  Bytes row;
  EXPECT_EQ(rle.Next(row), 3);
  EXPECT_EQ(row, (Bytes{0x1F, 0x1F, 0x10}));
  EXPECT_EQ(rle.Next(row), 3);
  EXPECT_EQ(row, (Bytes{0x56, 0x78, 0x90}));
  EXPECT_EQ(rle.Next(row), 3);
  EXPECT_EQ(row, (Bytes{0xAB, 0xCD, 0xE0}));
  EXPECT_EQ(rle.Next(row), 3);
  EXPECT_EQ(row, (Bytes{0x00, 0x00, 0x00}));
  EXPECT_EQ(rle.Next(row), 3);
  EXPECT_EQ(row, (Bytes{0x07, 0x00, 0x00}));
  EXPECT_EQ(rle.Next(row), -1);
}

}  // namespace
}  // namespace pxm
