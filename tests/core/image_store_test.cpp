#include "core/image_store.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>
#include <cstdlib>
#include <optional>

#include "core/error_codes.h"
#include "core/scripted_host.h"
#include "core/sinks.h"
#include "core/sources.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

// Sets an environment variable for one scope.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const std::string& value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    setenv(name, value.c_str(), 1);
  }
  ~ScopedEnv() { old_ ? (void)setenv(name_, old_->c_str(), 1) : (void)unsetenv(name_); }

 private:
  const char* name_;
  std::optional<std::string> old_;
};

std::vector<uint8_t> Row(uint8_t seed) {
  std::vector<uint8_t> row(16);
  for (size_t i = 0; i < row.size(); ++i) row[i] = static_cast<uint8_t>(seed * 16 + i);
  return row;
}

// Writes past `bytes` into any file fail for the object's lifetime, as they do on a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &saved_);
    previous_ = signal(SIGXFSZ, SIG_IGN);
    rlimit limit = saved_;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &saved_);
    signal(SIGXFSZ, previous_);
  }

 private:
  rlimit saved_{};
  void (*previous_)(int) = nullptr;
};

// Every test gets its own $TMPDIR.
class ImageStoreTest : public ::testing::Test {
 protected:
  test::TempDir tmp;
  ScopedEnv tmpdir{"TMPDIR", tmp.path()};
  ScriptedHost host;
  ImageStore store{host};
};

TEST_F(ImageStoreTest, RowSizes) {
  struct Case {
    uint32_t width, bits, storageBits;
    size_t bytesPerLine;
  } cases[] = {{3, 4, 4, 4}, {1, 1, 1, 4},   {5, 24, 24, 16}, {33, 1, 1, 8},
               {9, 4, 4, 8}, {17, 2, 4, 12}, {7, 3, 4, 4},    {5, 8, 8, 8},
               {4, 5, 8, 4}, {2, 0, 24, 8},  {1, 32, 24, 4},  {4, 24, 24, 12}};
  for (const Case& c : cases) {
    ASSERT_EQ(store.Create(c.width, 2, c.bits), kOk);
    EXPECT_EQ(store.storageBits, c.storageBits) << c.width << "x" << c.bits;
    EXPECT_EQ(store.bytesPerLine, c.bytesPerLine) << c.width << "x" << c.bits;
  }
}

TEST_F(ImageStoreTest, RowsLiveBottomUpAndReadBackInPlace) {
  ASSERT_EQ(store.Create(5, 4, 24), kOk);
  // Row 0, the top, is the last slot of the picture.
  EXPECT_EQ(store.MemoryRow(0) - store.MemoryRow(3), 3 * 16);
  EXPECT_EQ(store.MemoryRow(1) - store.MemoryRow(2), 16);
  EXPECT_EQ(store.MemoryRow(4), nullptr);
  for (bool spill : {false, true}) {
    ASSERT_EQ(store.Create(5, 4, 24, spill ? kStoreSpillAlways : 0u), kOk);
    ASSERT_EQ(store.InMemory(), !spill);
    for (int32_t r : {2, 0, 3, 1}) store.PutRowQuiet(Row(static_cast<uint8_t>(r + 1)), r);
    for (int32_t r : {3, 0, 2, 1}) {
      std::vector<uint8_t> back(16, 0xEE), expected = Row(static_cast<uint8_t>(r + 1));
      // Of a longer buffer only the row's own 15 bytes are kept; the rounding stays zero.
      expected[15] = 0;
      store.GetRowQuiet(back, r);
      EXPECT_EQ(back, expected) << spill << r;
    }
  }
}

TEST_F(ImageStoreTest, SpillFileCreation) {
  // 5 x 3 at 24 bits: 16 bytes a row, 4 rows with the spare one.
  for (auto [limit, inMemory] : {std::pair{"64", true}, {"63", false}, {"0", false}}) {
    ScopedEnv env("PXM_MEMORY_LIMIT", limit);
    ASSERT_EQ(store.Create(5, 3, 24), kOk) << limit;
    EXPECT_EQ(store.InMemory(), inMemory) << limit;
    EXPECT_TRUE(store.IsHeld());
  }
  host = ScriptedHost{};
  ASSERT_EQ(store.Create(7, 6, 8, kStoreSpillAlways), kOk);
  EXPECT_FALSE(store.InMemory());
  EXPECT_EQ(host.statuses, std::vector<std::string>{"Creating spill file"});
  EXPECT_EQ(host.progressCalls, 6u);
  EXPECT_EQ(host.lastTotal, 6u);
  EXPECT_EQ(host.lastDone, 5u);
  EXPECT_EQ(host.polls, 6u);
  // No name is left in the shared directory, not even while the store lives.
  EXPECT_TRUE(test::ListDirectory(tmp.path()).empty());
  store.Free();
  EXPECT_FALSE(store.IsHeld());
}

TEST_F(ImageStoreTest, NoMemoryAndNoSpillDrive) {
  EXPECT_EQ(store.Create(4, 4, 8, kStoreSpillAlways | kStoreNoSpill), kMemoryError);
  EXPECT_EQ(store.Create(4, 4, 8, kStoreSpillAlways | kStoreNoSpill | kStoreMemoryOnly),
            kNeedsMemoryStore);
  EXPECT_EQ(store.Create(4, 4, 8, kStoreSpillAlways | kStoreMemoryOnly), kNeedsMemoryStore);
  ScopedEnv env("PXM_MEMORY_LIMIT", "0");
  EXPECT_EQ(store.Create(4, 4, 8, kStoreMemoryOnly), kNeedsMemoryStore);
  EXPECT_EQ(store.Create(4, 4, 8, kStoreNoSpill), kMemoryError);
  EXPECT_FALSE(store.IsHeld());
  EXPECT_TRUE(host.statuses.empty());
}

TEST_F(ImageStoreTest, SpillFileFailuresBecomeCodes) {
  // A full disk: the rows cannot be written into the spill file. The sink stops the reader and
  // the driver reports the failure, never the user's abort.
  ScopedEnv env("PXM_MEMORY_LIMIT", "0");
  ASSERT_EQ(store.Create(4, 4, 8), kOk);
  std::vector<uint8_t> row(4, 7);
  FileSizeLimit full(4);  // only the first slot (row 3, at offset 0) can still be written
  EXPECT_EQ(store.PutRowQuiet(row, 3), 0);
  EXPECT_EQ(store.PutRowQuiet(row, 0), 1);
  EXPECT_EQ(store.Failure(), kWriteError);
  EXPECT_EQ(store.Explain(kCancelled), kWriteError);
  EXPECT_EQ(store.Explain(kCorruptedFile), kCorruptedFile);
  store.ClearAbort();
  EXPECT_EQ(store.Explain(kCancelled), kCancelled);
}

TEST_F(ImageStoreTest, AbortWhileCreatingSpillFile) {
  ScopedEnv env("PXM_MEMORY_LIMIT", "0");
  host.abortOnPoll = 3;
  EXPECT_EQ(store.Create(8, 10, 1), kCancelled);
  EXPECT_EQ(host.beeps, 1u);
  EXPECT_EQ(host.polls, 3u);
  EXPECT_FALSE(store.IsHeld());
  EXPECT_TRUE(test::ListDirectory(tmp.path()).empty());
}

TEST_F(ImageStoreTest, ProgressAndTheAbortFlag) {
  ASSERT_EQ(store.Create(4, 4, 8), kOk);
  std::vector<uint8_t> row(4, 1);
  // Total and done travel as two numbers: pictures may be far taller than 65535 rows.
  for (int32_t r = 0; r < 3; ++r) ProgressRowSink(store, 70000)(row, r);
  EXPECT_EQ(host.progressCalls, 3u);
  EXPECT_TRUE(host.lastTotal == 70000 && host.lastDone == 2 && store.rowsDone == 3);
  ProgressRowSource(store, 9)(row, 0);
  EXPECT_TRUE(host.lastTotal == 9 && host.lastDone == 3);

  LineSink sink = ProgressRowSink(store, 4);
  LineSource source = PlainRowSource(store);
  host.abortOnPoll = host.polls + 2;
  EXPECT_EQ(sink(row, 0), 0);
  EXPECT_EQ(sink(row, 1), 1);
  host.abortOnPoll = 0;  // no more clicks: the flag alone keeps answering 1
  EXPECT_EQ(sink(row, 2), 1);
  EXPECT_EQ(QuietRowSink(store)(row, 3), 1);
  EXPECT_EQ(PlainRowSink(store)(row, 3), 1);
  EXPECT_EQ(source(row, 0), 1);
  EXPECT_EQ(host.beeps, 1u);
  store.ClearAbort();
  EXPECT_EQ(sink(row, 3), 0);
  EXPECT_EQ(source(row, 0), 0);
}

}  // namespace
}  // namespace pxm
