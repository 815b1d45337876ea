#pragma once

#include "commands/batch_window.h"

namespace pxm::ui {

// Convert: asks for the destination format (and directory, with PromptForDestination) and
// rewrites every tagged file in it.
void RunConvertCommand(BatchWindow& window);

}  // namespace pxm::ui
