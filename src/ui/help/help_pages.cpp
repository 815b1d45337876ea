#include "help/help_pages.h"

namespace pxm::ui {
namespace {

// Said on the page of every command whose work is not in this version of the program.
#define PXM_NOT_YET                                                                        \
  "<p><i>This command is not available in this version of Pixmill yet: choosing it shows " \
  "&ldquo;Unsupported function&rdquo;.</i></p>"

// clang-format off
constexpr HelpPage kPages[] = {
    {"index", "Pixmill help",
     "<p>Pixmill lists the picture files of one directory. Tag the files you want to work on "
     "(a click tags or untags a file), then choose a command: it runs over every tagged file in "
     "turn. A click anywhere (or Escape) while a command runs stops it after the file in hand; nothing half "
     "written is left behind.</p>"
     "<p>Double-click a directory (shown as <tt>[name]</tt>) to go into it, or <tt>[..]</tt> to "
     "go up. The File menu remembers the last nine directories you went to; hold Shift while "
     "choosing one to take it off the menu.</p>"
     "<p>Keys in the file list: the arrows move, Space tags, Enter opens, Backspace goes up, "
     "F5 reads the directory again, Ctrl+A tags every file.</p>"},
    {"using-help", "Using help",
     "<p>This window shows the pages of Pixmill's help. Links lead to other pages; "
     "<b>Back</b> and <b>Forward</b> retrace your steps and <b>Index</b> goes to the list of "
     "every page. The Help button of a dialog opens the page about that dialog.</p>"},
    {"convert", "Convert",
     "<p>Rewrites every tagged file in another format. Choose the format in the destination "
     "dialog: a format is offered when it can hold the picture, is switched on in "
     "File&nbsp;&gt;&nbsp;Formats and can be written. The new file goes beside the old one "
     "with the new extension, in lower case.</p>"
     "<p>A picture with more colours than the format holds is refused with "
     "&ldquo;Too many colours&rdquo;: reduce it with Dither or Effects first. Setup decides "
     "whether you are asked for a destination directory, for each file's name, and before an "
     "existing file is written over.</p>"
     "<p>At the end the status bar says how many files were written; when any failed, a short "
     "report lists them with the reason, and its button tags them so you can try again.</p>"},
    {"setup", "Setup",
     "<p>Setup holds the options that last from one session to the next (they are kept in "
     "<tt>PXM.INI</tt>). A check box takes effect as soon as you click it; the lists, the "
     "font and the two numbers are taken when you press <b>Ok</b>.</p>"
     "<p><b>Graphic button bar</b> chooses between the bar of pictures and the two rows of "
     "text buttons. <b>Colour buttons</b> puts pictures on the buttons of the dialogs. "
     "<b>Prompt for destination</b>, <b>Prompt for file name</b> and <b>Prompt before "
     "overwrite</b> steer where converted files go. <b>Filename underbars</b> cuts names to six "
     "characters when a destination directory is given. <b>Show hidden directories</b> lists "
     "directories whose names begin with a dot. <b>Prompt before quitting</b> asks before the "
     "program ends. <b>JPG quality</b> and <b>PNG compression</b> are used when those files are "
     "written.</p>"},
    {"view", "View",
     "<p>Shows the tagged pictures one after the other in a window of their own.</p>" PXM_NOT_YET},
    {"crop", "Crop",
     "<p>Cuts a part out of each tagged picture and writes it as a new file.</p>" PXM_NOT_YET},
    {"tag-all", "Tag all",
     "<p>Tags every file of the list (directories stay untagged for commands).</p>"},
    {"clear-all", "Clear all", "<p>Untags every entry of the list.</p>"},
    {"rename", "Rename", "<p>Gives a tagged file a new name.</p>" PXM_NOT_YET},
    {"delete", "Delete",
     "<p>Moves the tagged files to the desktop's trash after asking.</p>" PXM_NOT_YET},
    {"change-directory", "Change directory",
     "<p>Chooses the directory the list shows from a directory dialog. Double-clicking a "
     "directory in the list, or one of the recent directories of the File menu, does the "
     "same.</p>"},
    {"formats", "Supported formats",
     "<p>Lists every format Pixmill knows. A mark shows a format that is switched on; click a "
     "line to switch it off or on. Files of a switched-off format are not listed and it is "
     "not offered as a destination.</p>"},
    {"exit", "Exit",
     "<p>Ends Pixmill, after asking when <b>Prompt before quitting</b> is on. The options and "
     "the recent directories are saved. Hold Shift while choosing Exit to save them without "
     "quitting.</p>"},
    {"copy", "Copy", "<p>Puts the tagged picture on the clipboard.</p>" PXM_NOT_YET},
    {"paste", "Paste",
     "<p>Writes the picture on the clipboard as a new file. The item is available only "
     "while the clipboard holds a picture.</p>" PXM_NOT_YET},
    {"dither", "Dither",
     "<p>Turns the tagged pictures into black and white.</p>" PXM_NOT_YET},
    {"effects", "Effects",
     "<p>Reduces colours, makes pictures grey, sharpens, softens, smudges or posterizes "
     "them.</p>" PXM_NOT_YET},
    {"scale", "Scale", "<p>Makes the tagged pictures larger or smaller.</p>" PXM_NOT_YET},
    {"transform", "Transform", "<p>Rotates and flips the tagged pictures.</p>" PXM_NOT_YET},
    {"reverse", "Reverse", "<p>Turns the tagged pictures into their negatives.</p>" PXM_NOT_YET},
    {"get-info", "Get info",
     "<p>Tells the size, depth, colours and format of each tagged picture.</p>" PXM_NOT_YET},
    {"print", "Print", "<p>Prints the tagged pictures.</p>" PXM_NOT_YET},
    {"catalog", "Catalog",
     "<p>Makes pages of thumbnails of the tagged pictures.</p>" PXM_NOT_YET},
    {"move-and-copy", "Move and copy",
     "<p>Copies or moves the tagged files into another directory, checking the copies on "
     "request.</p>" PXM_NOT_YET},
    {"thumbnails", "Thumbnails",
     "<p>Thumbnail mode shows small pictures of the files instead of their names. "
     "<b>Use Thumbnails</b> switches between the two; in this version it only sets its check "
     "mark and the list stays a list of names.</p>" PXM_NOT_YET},
    {"about", "About Pixmill", "<p>Shows the program's name and version.</p>"},
};
// clang-format on

#undef PXM_NOT_YET

std::string Escape(std::string_view text) {
  std::string out;
  for (char c : text) {
    if (c == '&')
      out += "&amp;";
    else if (c == '<')
      out += "&lt;";
    else if (c == '>')
      out += "&gt;";
    else
      out += c;
  }
  return out;
}

}  // namespace

std::span<const HelpPage> HelpPages() {
  return kPages;
}

const HelpPage* FindHelpPage(std::string_view topic) {
  for (const HelpPage& page : kPages)
    if (page.topic == topic) return &page;
  return nullptr;
}

std::string HelpHtml(std::string_view topic) {
  const HelpPage* page = FindHelpPage(topic);
  if (!page) page = &kPages[0];
  std::string html = "<html><body><h2>" + Escape(page->title) + "</h2>";
  html += page->body;
  if (page->topic == "index") {
    html += "<h3>Pages</h3><ul>";
    for (const HelpPage& other : kPages) {
      if (other.topic == "index") continue;
      html +=
          "<li><a href=\"" + std::string(other.topic) + "\">" + Escape(other.title) + "</a></li>";
    }
    html += "</ul>";
  } else {
    html += "<p><a href=\"index\">Index</a></p>";
  }
  html += "</body></html>";
  return html;
}

}  // namespace pxm::ui
