#include "commands/command_folding.h"

#include "commands/command_ids.h"

namespace pxm::ui {
namespace {

struct Twin {
  int plain;
  int picture;
};
constexpr Twin kTwins[] = {{kBtnPlainOk, kBtnOk},
                           {kBtnPlainCancel, kBtnCancel},
                           {kBtnPlainYes, kBtnYes},
                           {kBtnPlainNo, kBtnNo},
                           {kBtnPlainHelp, kBtnHelp}};

}  // namespace

int FoldTwinButton(int id) {
  for (const Twin& twin : kTwins)
    if (id == twin.plain) return twin.picture;
  if (id >= 10801 && id <= 10805) return id - 10000;
  return id;
}

int FoldCommand(int id) {
  id = FoldTwinButton(id);
  if (id >= kGraphicFirst && id <= kGraphicLast) id -= kGraphicOffset;
  if (id == kCmdThumbToggle) id = kCmdUseThumbnails;
  return id;
}

int PlainTwin(int id) {
  for (const Twin& twin : kTwins)
    if (id == twin.picture) return twin.plain;
  if (id >= 801 && id <= 805) return id + 10000;
  return id;
}

}  // namespace pxm::ui
