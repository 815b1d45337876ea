#pragma once

#include <string>
#include <vector>

// What the command line asks of a start: `pixmill DIR` opens in DIR, `pixmill FILE...` opens
// the first file's directory with the named files of that directory tagged.
namespace pxm::ui {

struct StartRequest {
  std::string directory;            // empty: the configured start directory
  std::vector<std::string> tagged;  // names within `directory`
};

// Reads the arguments after the program's name. Names that do not exist are passed over, and
// files outside the first file's directory are not tagged.
StartRequest ParseStartArguments(const std::vector<std::string>& arguments,
                                 const std::string& currentDirectory);

}  // namespace pxm::ui
