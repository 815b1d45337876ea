#pragma once

#include <QString>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/host.h"

class QWidget;

// The small dialogs the engine asks through the host while a command runs.
namespace pxm::ui {

// The select-image box: one line per image of a multi-image file. The chosen index, or nothing
// when cancelled.
std::optional<uint32_t> SelectImageDialog(QWidget* owner, std::string_view fileName,
                                          std::span<const std::string> names);

// The comment dialog ("GETCOMMENTBOX"): the comment to stamp into `fileName`, pre-filled. The
// text, or nothing when cancelled.
std::optional<std::string> CommentDialog(QWidget* owner, std::string_view fileName,
                                         std::string_view prefilled);

// The next-file dialog ("NEXTFILEBOX") of files split into parts: the message and the files of
// `directory`; a double-click (or Ok on a chosen file) picks the next part.
NextFileAnswer NextFileDialog(QWidget* owner, std::string_view message, std::string_view directory);

}  // namespace pxm::ui
