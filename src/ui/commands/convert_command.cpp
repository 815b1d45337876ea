#include "commands/convert_command.h"

#include "batch/convert.h"
#include "commands/batch_runner.h"
#include "config/settings.h"
#include "dialogs/destination_dialog.h"

namespace pxm::ui {

void RunConvertCommand(BatchWindow& window) {
  std::vector<std::string> files = window.TaggedFiles();
  DestinationRequest request;
  request.leastBits = 1;
  // Convert writes motion formats too, frame by frame.
  request.allowMotion = true;
  request.startDirectory = window.Directory();
  request.onHelp = [&window] { window.ShowHelp("convert"); };
  auto choice = AskDestination(window.Owner(), request, CurrentSettings());
  if (!choice) return;
  ConvertOptions options;
  options.destinationDirectory = choice->directory;
  RunBatch(window, files, [&](Host& host, size_t, const std::string& file) {
    return Convert(host, file, choice->row, options);
  });
}

}  // namespace pxm::ui
