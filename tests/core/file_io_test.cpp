#include "core/file_io.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::TempDir;

uint8_t PatternByte(size_t i) {
  return static_cast<uint8_t>((i * 7) % 251);
}

// Longer than the input buffer, so seeks and reads cross refills.
constexpr size_t kBigFile = 70001;

std::string PatternBytes(size_t n) {
  std::string s(n, '\0');
  for (size_t i = 0; i < n; ++i) s[i] = static_cast<char>(PatternByte(i));
  return s;
}

TEST(InputFile, AWindowReadsAsAWholeFile) {
  TempDir dir;
  test::WriteFileBytes(dir / "data", PatternBytes(kBigFile));
  InputFile in;
  // Offsets count from the window's start; reads, small and large, stop at its end.
  for (const FileWindow w : {FileWindow{1000, 66000}, FileWindow{69000, 0}}) {
    const uint64_t size = w.length ? w.length : kBigFile - w.offset;
    ASSERT_TRUE(in.Open(dir / "data", w));
    EXPECT_EQ(in.Size(), size);
    EXPECT_EQ(in.ReadByte(), PatternByte(w.offset));
    ASSERT_TRUE(in.Seek(size - 1));
    EXPECT_EQ(in.ReadByte(), PatternByte(w.offset + size - 1));
    EXPECT_EQ(in.ReadByte(), -1);
    ASSERT_TRUE(in.Seek(2));
    std::vector<uint8_t> all(size + 50);
    EXPECT_EQ(in.Read(all.data(), all.size()), size - 2);
    EXPECT_EQ(all[0], PatternByte(w.offset + 2));
  }
  EXPECT_FALSE(in.Open(dir / "data", FileWindow{kBigFile + 1, 0}));
}

TEST(InputFile, ReadsSeeksAndLines) {
  TempDir dir;
  test::WriteFileBytes(dir / "data", PatternBytes(kBigFile));
  InputFile in;
  ASSERT_TRUE(in.Open(dir / "data"));
  EXPECT_EQ(in.Size(), kBigFile);
  uint8_t head[10];
  ASSERT_TRUE(in.ReadExact(head, sizeof head));
  EXPECT_EQ(head[9], PatternByte(9));
  EXPECT_EQ(in.Tell(), 10u);
  for (uint64_t offset : {65540u, 5u, 65535u, 65536u, 70000u, 3u}) {
    ASSERT_TRUE(in.Seek(offset));
    EXPECT_EQ(in.Tell(), offset);
    EXPECT_EQ(in.ReadByte(), PatternByte(offset)) << offset;
  }
  ASSERT_TRUE(in.Skip(65000));
  EXPECT_EQ(in.ReadByte(), PatternByte(65004));
  // One byte buffered, then a read larger than the buffer that runs into the end of the file.
  ASSERT_TRUE(in.Seek(0));
  EXPECT_EQ(in.ReadByte(), PatternByte(0));
  std::vector<uint8_t> rest(kBigFile + 100);
  ASSERT_EQ(in.Read(rest.data(), rest.size()), kBigFile - 1);
  EXPECT_EQ(std::string(rest.begin(), rest.begin() + kBigFile - 1),
            PatternBytes(kBigFile).substr(1));
  EXPECT_EQ(in.ReadByte(), -1);
  EXPECT_FALSE(in.Open(dir / "missing"));
  EXPECT_FALSE(in.Open(dir.path()));

  test::WriteFileBytes(dir / "lines", "abcdefgh\nxy\r\n\nabcde\nlast");
  ASSERT_TRUE(in.Open(dir / "lines"));
  std::vector<std::string> pieces;
  for (std::string line; in.ReadLine(line, 5);) pieces.push_back(line);
  // A line of exactly the limit is whole: its line feed does not make an empty piece.
  EXPECT_EQ(pieces, (std::vector<std::string>{"abcde", "fgh", "xy\r", "", "abcde", "last"}));
}

TEST(OutputFile, KeptOnlyWhenCommitted) {
  TempDir dir;
  {
    OutputFile out;
    ASSERT_TRUE(out.Create(dir / "dropped"));
    EXPECT_TRUE(out.Write("hello", 5));
    OutputFile discarded;
    ASSERT_TRUE(discarded.Create(dir / "discarded"));
    discarded.Discard();
  }
  EXPECT_TRUE(test::ListDirectory(dir.path()).empty());

  OutputFile out;
  ASSERT_TRUE(out.Create(dir / "kept"));
  std::string big = PatternBytes(kBigFile);
  ASSERT_TRUE(out.Write("xx", 2));
  ASSERT_TRUE(out.Write(big.data(), big.size()));
  ASSERT_TRUE(out.Write("yz", 2));
  EXPECT_EQ(out.Tell(), kBigFile + 4);
  ASSERT_TRUE(out.Seek(0));  // a header patched after the data
  ASSERT_TRUE(out.Write("HD", 2));
  ASSERT_TRUE(out.Commit());
  EXPECT_FALSE(out.Write("z", 1));
  EXPECT_EQ(test::ReadFileBytes(dir / "kept"), "HD" + big + "yz");
  // A file written again holds only the new bytes.
  ASSERT_TRUE(out.Create(dir / "kept"));
  ASSERT_TRUE(out.Write("new", 3) && out.Commit());
  EXPECT_EQ(test::ReadFileBytes(dir / "kept"), "new");

  EXPECT_FALSE(OutputFile().Create(dir / "no-such-dir/file"));
}

}  // namespace
}  // namespace pxm
