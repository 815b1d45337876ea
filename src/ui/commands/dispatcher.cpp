#include "commands/dispatcher.h"

#include "commands/command_folding.h"
#include "commands/command_table.h"
#include "core/error_codes.h"
#include "core/strings.h"

namespace pxm::ui {

void Dispatcher::OnRange(int first, int last, Handler handler) {
  handlers_[first] = {last, std::move(handler)};
}

const Dispatcher::Entry* Dispatcher::Find(int id) const {
  auto it = handlers_.upper_bound(id);
  if (it == handlers_.begin()) return nullptr;
  --it;
  return id <= it->second.last ? &it->second : nullptr;
}

bool Dispatcher::Handles(int foldedId) const {
  return Find(foldedId) != nullptr;
}

int Dispatcher::Dispatch(int id, bool shift) {
  CommandRequest request{FoldCommand(id), id, shift};
  const CommandInfo* info = FindCommand(request.id);
  if (info && info->needsTags && environment_.taggedFiles() == 0) {
    environment_.showMessage(LoadMessage(kStrNoFilesSelected));
    return request.id;
  }
  if (const Entry* entry = Find(request.id)) {
    entry->handler(request);
  } else {
    environment_.showMessage(ErrorText(kUnsupportedFunction));
  }
  return request.id;
}

}  // namespace pxm::ui
