#pragma once

#include <optional>
#include <string>

#include "core/image_info.h"

// The comment text that the GIF and PNG writers stamp into the files they write.
namespace pxm {

// The version put in place of "*.**" in the creation notice.
inline constexpr const char* kNoticeVersion = "1.1t";

// The comment for the file the record is being written to (its name is in info.fileName):
// - with GifCommentPath set, the comment dialog pre-filled from the file it names;
// - otherwise, with PromptForGifComments on, the comment dialog, empty;
// - otherwise the creation notice (string 1000 with the version filled in).
// Nothing when a dialog was cancelled or left empty. A text ends at its first zero byte.
std::optional<std::string> CommentText(const ImageInfo& info);

// The creation notice as it is stamped.
std::string CreationNotice();

}  // namespace pxm
