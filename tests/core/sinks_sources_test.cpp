#include <gtest/gtest.h>

#include <vector>

#include "core/error_codes.h"
#include "core/pixels.h"
#include "core/row_format.h"
#include "core/scripted_host.h"
#include "core/sinks.h"
#include "core/sources.h"
#include "support/picture.h"

namespace pxm {
namespace {

using Bytes = std::vector<uint8_t>;
using Pixels = std::vector<uint32_t>;

Bytes Padded(Bytes head, size_t size) {
  head.resize(size, 0);
  return head;
}

class SinksSources : public ::testing::Test {
 protected:
  void Make(uint32_t width, int32_t depth, uint32_t bits, bool spill = false) {
    ASSERT_EQ(store.Create(width, depth, bits, spill ? kStoreSpillAlways : 0u), kOk);
    ASSERT_EQ(store.InMemory(), !spill);
  }
  void Load(const test::Picture& p, bool spill) {
    Make(p.width, p.depth, p.bits, spill);
    for (int32_t y = 0; y < p.depth; ++y) store.PutRowQuiet(p.rows[static_cast<size_t>(y)], y);
  }
  Bytes Stored(int32_t r) {
    Bytes row(store.bytesPerLine, 0xEE);
    store.GetRowQuiet(row, r);
    return row;
  }
  // Row r of `width` pixels pulled from a source, as pixel values.
  Pixels Pull(const LineSource& source, int32_t r, uint32_t width, uint32_t bits) {
    Bytes row(static_cast<size_t>(StoreBytesPerLine(width, bits)), 0);
    source(row, r);
    Pixels pixels;
    for (uint32_t x = 0; x < width; ++x)
      pixels.push_back(PixelAt(row.data(), x, StorageBits(bits)));
    return pixels;
  }

  ScriptedHost host;
  ImageStore store{host};
};

TEST_F(SinksSources, SwappedRgbAndGamma) {
  LevelTable g = ViewGammaTable(200);
  ASSERT_NE(g[64], 64);  // otherwise the gamma case proves nothing
  struct Case {
    uint32_t bits;
    int gamma;
    Bytes expected;
  } cases[] = {{24, 100, {64, 20, 10, 6, 5, 4}},
               {24, 200, {g[64], g[20], g[10], g[6], g[5], g[4]}},
               {1, 200, {64, 20, 10, 6, 5, 4}}};  // one-bit pictures are never corrected
  for (bool spill : {false, true}) {
    Make(2, 1, 24, spill);
    for (const Case& c : cases) {
      Bytes row = Padded({10, 20, 64, 4, 5, 6}, 8);
      SwappedRgbSink(store, 1, c.bits, c.gamma)(row, 0);
      EXPECT_EQ(Stored(0), Padded(c.expected, 8)) << c.bits << " " << c.gamma;
    }
    EXPECT_EQ(store.rowsDone, 3u);
  }
}

TEST_F(SinksSources, BytePerPixelAndExpandToRgb) {
  Palette palette;  // entry i is (i, i + 1, i + 2), wrapping
  for (size_t i = 0; i < 256; ++i) palette[i] = Rgb{uint8_t(i), uint8_t(i + 1), uint8_t(i + 2)};
  for (bool spill : {false, true}) {
    for (uint32_t bits : {2u, 3u, 4u}) {
      Make(5, 1, 8, spill);
      Bytes row = {0x12, 0x34, 0x5F, 0xAA};
      BytePerPixelSink(store, 1, bits)(row, 0);
      EXPECT_EQ(Stored(0), Padded({1, 2, 3, 4, 5}, 8)) << bits;
    }
    Make(12, 1, 1, spill);
    Bytes packed = {0xA5, 0xF0, 0, 0};
    BytePerPixelSink(store, 1, 1)(packed, 0);
    EXPECT_EQ(Stored(0), packed);

    Make(3, 2, 24, spill);
    Bytes nibbles = {0x1F, 0x20}, indexes = {5, 0, 255, 0};
    ExpandToRgbSink(store, 2, 4, palette)(nibbles, 1);
    ExpandToRgbSink(store, 2, 8, palette)(indexes, 0);
    EXPECT_EQ(Stored(1), Padded({1, 2, 3, 15, 16, 17, 2, 3, 4}, 12));
    EXPECT_EQ(Stored(0), Padded({5, 6, 7, 0, 1, 2, 255, 0, 1}, 12));
    // Anything else, 1-bit rows included, is copied as 3 x width bytes.
    Bytes raw = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    ExpandToRgbSink(store, 2, 1, palette)(raw, 0);
    EXPECT_EQ(Stored(0), Padded({1, 2, 3, 4, 5, 6, 7, 8, 9}, 12));
    EXPECT_EQ(store.rowsDone, 3u);
  }
}

TEST_F(SinksSources, EnlargingRepeatsPixelsAndRows) {
  struct Case {
    uint32_t bits, storeBits;
    int zoom;
    uint32_t inWidth;
    Bytes in, expected;
  } cases[] = {
      {8, 8, 2, 3, {7, 8, 9, 0}, {7, 7, 8, 8, 9, 9, 0, 0}},
      {1, 1, 3, 3, {0xA0}, {0xE3, 0x80, 0, 0}},
      {1, 1, 2, 5, {0xB0}, {0xCF, 0x00, 0, 0}},
      {4, 8, 2, 3, {0x12, 0x30}, {1, 1, 2, 2, 3, 3, 0, 0}},
      {3, 8, 3, 3, {0xF1, 0x20}, {15, 15, 15, 1, 1, 1, 2, 2, 2, 0, 0, 0}},
      {24, 24, 2, 2, {1, 2, 3, 4, 5, 6}, {1, 2, 3, 1, 2, 3, 4, 5, 6, 4, 5, 6}},
  };
  for (bool spill : {false, true}) {
    for (Case& c : cases) {
      Make(c.inWidth * static_cast<uint32_t>(c.zoom), 2 * c.zoom, c.storeBits, spill);
      store.zoom = c.zoom;
      Bytes blank(store.bytesPerLine, 0);
      for (int32_t r = 0; r < 2 * c.zoom; ++r) store.PutRowQuiet(blank, r);
      EnlargingSink(store, 2, c.bits)(c.in, 1);  // source row 1: rows zoom to 2 zoom - 1
      EXPECT_EQ(store.rowsDone, 1u);
      for (int32_t r = 0; r < 2 * c.zoom; ++r)
        EXPECT_EQ(Stored(r), r >= c.zoom ? c.expected : blank)
            << c.bits << " x" << c.zoom << " " << r;
    }
  }
}

TEST_F(SinksSources, ScalingSourceFollowsTheMaps) {
  for (bool spill : {false, true}) {
    // 2..8-bit pictures are stored a byte per pixel; high nibbles must not leak into 4-bit output.
    Make(4, 2, 8, spill);
    store.PutRowQuiet(Bytes{0x01, 0x02, 0x13, 0x04}, 0);
    store.PutRowQuiet(Bytes{0x05, 0xF6, 0x07, 0x28}, 1);
    store.rowMap = {1, 0};
    store.columnMap = {3, 3, 0, 2, 1};
    for (uint32_t bits : {2u, 4u}) {
      Bytes row(4, 0xFF);
      ScalingSource(store, bits)(row, 0);
      EXPECT_EQ(row, (Bytes{0x88, 0x57, 0x60, 0x00})) << bits;
      ScalingSource(store, bits)(row, 1);
      EXPECT_EQ(row, (Bytes{0x44, 0x13, 0x20, 0x00})) << bits;
    }
    EXPECT_EQ(Pull(ScalingSource(store, 8), 0, 5, 8), (Pixels{0x28, 0x28, 0x05, 0x07, 0xF6}));
  }
}

TEST_F(SinksSources, CropsTurnsFlipsAndMirrors) {
  const uint32_t w = 11;
  const int32_t d = 5;
  for (uint32_t bits : {1u, 4u, 8u, 24u}) {
    test::Picture p = test::Pattern(w, d, bits, 3);
    for (bool spill : {true, false}) {  // quarter turns below need the memory store
      Load(p, spill);
      // Crops at odd offsets, across byte boundaries, to the last column.
      for (auto [left, width] : {std::pair{3u, 7u}, {5u, 6u}, {0u, w}, {10u, 1u}}) {
        store.cropLeft = left, store.cropTop = 1, store.cropWidth = width;
        for (int32_t r = 0; r < 3; ++r) {
          Pixels want;
          for (uint32_t x = 0; x < width; ++x) want.push_back(p.Pixel(left + x, 1 + r));
          EXPECT_EQ(Pull(CroppingSource(store), r, width, bits), want) << bits << " " << left;
        }
      }
      for (int32_t r = 0; r < d; ++r) {
        Pixels flip, mirror, upside;
        for (uint32_t x = 0; x < w; ++x) {
          flip.push_back(p.Pixel(w - 1 - x, d - 1 - r));
          mirror.push_back(p.Pixel(w - 1 - x, r));
          upside.push_back(p.Pixel(x, d - 1 - r));
        }
        EXPECT_EQ(Pull(FlipSource(store), r, w, bits), flip) << bits << " " << r;
        EXPECT_EQ(Pull(MirrorSource(store), r, w, bits), mirror) << bits << " " << r;
        EXPECT_EQ(Pull(UpsideDownSource(store), r, w, bits), upside) << bits << " " << r;
      }
    }
    // Turned anticlockwise, rows {1,2,3} and {4,5,6} are {3,6}, {2,5}, {1,4}; clockwise {4,1}, ...
    for (uint32_t r = 0; r < w; ++r) {
      Pixels ccw, cw;
      for (int32_t x = 0; x < d; ++x) {
        ccw.push_back(p.Pixel(w - 1 - r, x));
        cw.push_back(p.Pixel(r, d - 1 - x));
      }
      EXPECT_EQ(Pull(ColumnSourceAnticlockwise(store), static_cast<int32_t>(r), d, bits), ccw);
      EXPECT_EQ(Pull(ColumnSourceClockwise(store), static_cast<int32_t>(r), d, bits), cw);
    }
  }
}

TEST_F(SinksSources, DibSourceNeverAborts) {
  Make(2, 2, 24);
  store.PutRowQuiet(Bytes{1, 2, 3, 4, 5, 6, 0, 0}, 1);
  store.abortFlag = 1;  // the DIB source never aborts
  Bytes row(8, 0);
  EXPECT_EQ(DibSource(store)(row, 1), 0);
  EXPECT_EQ(row, (Bytes{3, 2, 1, 6, 5, 4, 0, 0}));
}

TEST_F(SinksSources, BoundBeforeTheStoreGrows) {
  // A command binds its sinks and sources once and creates the store anew for every file.
  Make(2, 1, 8);
  Palette palette{};
  palette[3] = Rgb{7, 8, 9};
  LineSink bytes = BytePerPixelSink(store, 1, 4), expand = ExpandToRgbSink(store, 1, 8, palette),
           enlarge = EnlargingSink(store, 1, 8);
  LineSource scale = ScalingSource(store, 8), crop = CroppingSource(store);

  Make(20, 1, 8);
  Bytes nibbles(10, 0x33), indexes(20, 3), tens(10, 10), rgb;
  bytes(nibbles, 0);
  EXPECT_EQ(Stored(0), Bytes(20, 3));
  Make(20, 1, 24, true);
  expand(indexes, 0);
  for (int i = 0; i < 20; ++i) rgb.insert(rgb.end(), {7, 8, 9});
  EXPECT_EQ(Stored(0), rgb);
  Make(20, 2, 8);
  store.zoom = 2;
  enlarge(tens, 0);
  EXPECT_EQ(Stored(1), Bytes(20, 10));
  store.rowMap = {1};
  store.columnMap = std::vector<uint32_t>(20, 0);
  EXPECT_EQ(Pull(scale, 0, 20, 8), Pixels(20, 10));
  store.cropLeft = 0, store.cropTop = 1, store.cropWidth = 20;
  EXPECT_EQ(Pull(crop, 0, 20, 8), Pixels(20, 10));
}

}  // namespace
}  // namespace pxm
