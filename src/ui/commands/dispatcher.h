#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string_view>

// The one way into every command: menu items, text buttons, graphic buttons, recent-directory
// items and the window's own Close all arrive here as identifiers.
namespace pxm::ui {

struct CommandRequest {
  int id = 0;          // after folding
  int rawId = 0;       // as the source sent it
  bool shift = false;  // the Shift key was held
};

class Dispatcher {
 public:
  using Handler = std::function<void(const CommandRequest&)>;

  struct Environment {
    // How many files (not directory entries) are tagged.
    std::function<size_t()> taggedFiles;
    // The message box.
    std::function<void(std::string_view)> showMessage;
  };

  explicit Dispatcher(Environment environment) : environment_(std::move(environment)) {}

  void On(int id, Handler handler) { handlers_[id] = {id, std::move(handler)}; }
  // One handler for the identifiers first ... last (the recent directories).
  void OnRange(int first, int last, Handler handler);

  // Folds the identifier, applies the rules every command shares (a command that works on
  // tagged files with none tagged reports "No files are selected"; a command without a handler
  // reports "Unsupported function") and runs its handler. Answers the folded identifier.
  int Dispatch(int id, bool shift = false);

  // Whether a command has a handler.
  bool Handles(int foldedId) const;

 private:
  struct Entry {
    int last = 0;
    Handler handler;
  };
  const Entry* Find(int id) const;

  Environment environment_;
  std::map<int, Entry> handlers_;  // keyed by the first identifier of the range
};

}  // namespace pxm::ui
