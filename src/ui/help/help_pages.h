#pragma once

#include <span>
#include <string>
#include <string_view>

// The help pages, compiled into the program: one per command, the index, Setup and the page
// about the help window itself.
namespace pxm::ui {

struct HelpPage {
  std::string_view topic;  // what a command asks for ("setup", "convert", "index")
  std::string_view title;
  std::string_view body;  // HTML without the title
};

std::span<const HelpPage> HelpPages();
// The page of `topic`, or null.
const HelpPage* FindHelpPage(std::string_view topic);
// The whole HTML of a topic's page (the index lists every other page); an unknown topic gets
// the index.
std::string HelpHtml(std::string_view topic);

}  // namespace pxm::ui
