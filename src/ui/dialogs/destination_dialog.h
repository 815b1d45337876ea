#pragma once

#include <functional>
#include <optional>
#include <string>

#include "config/settings.h"
#include "formats/format_table.h"

class QWidget;

// The destination dialog of the writing commands: one button per format row (identifiers 101 ...
// 142 in row order), and the destination directory when PromptForDestination is on.
namespace pxm::ui {

// Whether row `row`'s button is enabled: its writer takes pictures of `leastBits`, the row is
// switched on (its word is exactly 1), and it is not a motion format unless the command allows
// them.
bool DestinationButtonEnabled(const FormatEntry& entry, int row, uint32_t leastBits,
                              bool allowMotion, const Settings& settings);

struct DestinationChoice {
  int row = -1;
  std::string directory;  // empty: beside each source
};

struct DestinationRequest {
  uint32_t leastBits = 1;
  bool allowMotion = false;
  std::string startDirectory;    // shown first when the directory is asked for
  std::function<void()> onHelp;  // the Help button
};

// Runs the dialog; nothing when it was cancelled.
std::optional<DestinationChoice> AskDestination(QWidget* owner, const DestinationRequest& request,
                                                const Settings& settings);

}  // namespace pxm::ui
