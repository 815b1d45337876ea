#include "formats/uue_decode.h"

#include <cstdio>

#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/names.h"
#include "core/platform.h"
#include "core/strings.h"

namespace pxm {
namespace {

constexpr size_t kRelaxedLine = 256;
constexpr size_t kStrictLine = 80;

uint32_t Sixbits(char c) {
  return (static_cast<uint32_t>(static_cast<unsigned char>(c)) - 32u) & 63u;
}

bool StartsWith(std::string_view line, std::string_view prefix) {
  return line.substr(0, prefix.size()) == prefix;
}
bool StartsWithAnyCase(std::string_view line, std::string_view prefix) {
  return line.size() >= prefix.size() && EqualsIgnoreCase(line.substr(0, prefix.size()), prefix);
}
bool IsEndLine(std::string_view line) {
  return StartsWithAnyCase(line, "END");
}

// "begin MODE NAME": an octal mode and a name without spaces.
bool ParseBegin(const std::string& line, std::string& name) {
  if (!StartsWith(line, "begin ")) return false;
  unsigned mode = 0;
  char buffer[kRelaxedLine + 1] = {};
  if (std::sscanf(line.c_str(), "begin %o %256s", &mode, buffer) != 2) return false;
  name = buffer;
  return true;
}

// The embedded name's last part: directories, drives and Windows separators are never used, so
// no begin line can place a file outside the temporary directory.
std::string SafeName(const std::string& name) {
  const size_t cut = name.find_last_of("/\\:");
  std::string part = cut == std::string::npos ? name : name.substr(cut + 1);
  if (part == "." || part == "..") part.clear();
  return part;
}

// Lines as a text-mode read gives them: a carriage return before the line feed is dropped.
bool ReadTextLine(InputFile& in, std::string& line, size_t limit) {
  if (!in.ReadLine(line, limit)) return false;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return true;
}

class Decoder {
 public:
  Decoder(Host& host, OutputFile& out) : host_(host), out_(out) {}

  // Relaxed decoding from the line after the begin line: returns at END, or when the host says
  // the file is complete.
  int Relaxed(InputFile& in, std::string directory) {
    std::string line;
    while (true) {
      if (!ReadTextLine(in, line, kRelaxedLine)) {
        NextFileAnswer next = host_.NextFile(LoadMessage(kStrUueNoEnd), directory);
        if (next.kind == NextFileAnswer::Kind::kOk) return kOk;
        if (next.kind == NextFileAnswer::Kind::kCancel) return kCancelled;
        if (!in.Open(next.path)) return kOpenError;
        directory = DirectoryPart(next.path);
        continue;
      }
      if (line.empty()) continue;
      if (IsEndLine(line)) return kOk;
      if (size_t cr = line.find('\r'); cr != std::string::npos) line.resize(cr);
      while (!line.empty() && line.back() == ' ') line.pop_back();
      // A later part's own begin line is a header, not data.
      if (line.empty() || StartsWithAnyCase(line, "begin")) continue;
      const uint32_t count = Sixbits(line[0]);
      if (count == 0 || line.size() - 1 != UueLineLength(count)) continue;
      if (int code = Put(line)) return code;
    }
  }

  // Strict decoding: every line until a count of 0, an empty line or END ends the data; then
  // another begin line may start more data for the same file. The end of the file ends it all.
  int Strict(InputFile& in) {
    std::string line;
    bool inData = true;
    while (ReadTextLine(in, line, kStrictLine)) {
      if (!inData) {
        inData = StartsWithAnyCase(line, "begin");
        continue;
      }
      if (line.empty() || IsEndLine(line) || Sixbits(line[0]) == 0) {
        inData = false;
        continue;
      }
      if (int code = Put(line)) return code;
    }
    return kOk;
  }

 private:
  int Put(const std::string& line) {
    const size_t n = DecodeUueLine(line, bytes_);
    return out_.Write(bytes_, n) ? kOk : kWriteError;
  }

  Host& host_;
  OutputFile& out_;
  uint8_t bytes_[kMaxUueLineBytes];
};

}  // namespace

size_t DecodeUueLine(std::string_view line, uint8_t* out) {
  if (line.empty()) return 0;
  const uint32_t count = Sixbits(line[0]);
  auto at = [&line](size_t i) { return i < line.size() ? Sixbits(line[i]) : 0u; };
  size_t n = 0;
  for (size_t g = 1; n < count; g += 4) {
    const uint32_t p = at(g), q = at(g + 1), r = at(g + 2), s = at(g + 3);
    out[n++] = static_cast<uint8_t>(p * 4 + q / 16);
    if (n < count) out[n++] = static_cast<uint8_t>((q & 15) * 16 + r / 4);
    if (n < count) out[n++] = static_cast<uint8_t>((r & 3) * 64 + s);
  }
  return n;
}

int DecodeUueFile(const std::string& path, Host& host, bool relaxed, UueDecoded& out) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  std::string line;
  std::string name;
  const size_t limit = relaxed ? kRelaxedLine : kStrictLine;
  while (true) {
    if (!ReadTextLine(in, line, limit)) return kCorruptedFile;
    if (ParseBegin(line, name)) break;
  }

  const std::string& directory = platform::PrivateTempDirectory();
  const std::string safe = SafeName(name);
  if (directory.empty() || safe.empty()) return kWriteError;
  const std::string decoded = JoinPath(directory, safe);
  OutputFile file;
  if (!file.Create(decoded)) return kWriteError;
  Decoder decoder(host, file);
  std::string partDirectory = DirectoryPart(path);
  if (partDirectory.empty()) partDirectory = platform::CurrentDirectory();
  const int code = relaxed ? decoder.Relaxed(in, partDirectory) : decoder.Strict(in);
  // `file` removes the decoded file on every way out but a successful commit.
  if (code != kOk) return code;
  if (!file.Commit()) return kWriteError;
  out.embeddedName = name;
  out.decodedPath = decoded;
  return kOk;
}

}  // namespace pxm
