#include "formats/comment_source.h"

#include <vector>

#include "config/settings.h"
#include "core/file_io.h"
#include "core/host.h"
#include "core/names.h"
#include "core/strings.h"

namespace pxm {
namespace {

// More than the comment dialog's edit box takes.
constexpr uint64_t kMaxPrefill = 64 * 1024;

std::optional<std::string> FromDialog(const ImageInfo& info, const std::string& prefilled) {
  std::optional<std::string> text = HostOf(info).GetComment(NamePart(info.fileName), prefilled);
  if (!text) return std::nullopt;
  // The text is handed on as a zero-terminated string: it ends at its first zero.
  std::string cut = text->substr(0, text->find('\0'));
  if (cut.empty()) return std::nullopt;
  return cut;
}

}  // namespace

std::string CreationNotice() {
  std::string notice(LoadMessage(kStrCreationNotice));
  const size_t at = notice.find("*.**");
  if (at != std::string::npos) notice.replace(at, 4, kNoticeVersion);
  return notice;
}

std::optional<std::string> CommentText(const ImageInfo& info) {
  const Settings& s = CurrentSettings();
  if (!s.GifCommentPath.empty()) {
    // A file that cannot be read leaves the dialog empty.
    std::vector<uint8_t> bytes;
    std::string prefilled;
    if (ReadWholeFile(s.GifCommentPath, bytes, kMaxPrefill))
      prefilled.assign(bytes.begin(), bytes.end());
    return FromDialog(info, prefilled.substr(0, prefilled.find('\0')));
  }
  if (s.PromptForGifComments) return FromDialog(info, "");
  return CreationNotice();
}

}  // namespace pxm
