#pragma once

#include <string>
#include <string_view>
#include <vector>

class QWidget;

// What a command that walks the tagged files needs of the main window.
namespace pxm::ui {

class GuiHost;

class BatchWindow {
 public:
  virtual ~BatchWindow() = default;
  virtual QWidget* Owner() = 0;
  virtual GuiHost& BatchHost() = 0;
  // The tagged files (not directory entries), in list order.
  virtual std::vector<std::string> TaggedFiles() const = 0;
  // Tags exactly these entries.
  virtual void TagEntries(const std::vector<std::string>& entries) = 0;
  // The directory the list shows.
  virtual std::string Directory() const = 0;
  virtual void ShowHelp(std::string_view topic) = 0;
  // The batch is over: the list picks up the files it wrote.
  virtual void BatchFinished() = 0;
};

}  // namespace pxm::ui
