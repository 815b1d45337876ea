#include "common/qt_text.h"

namespace pxm::ui {

QString WithoutMnemonic(std::string_view text) {
  QString out;
  QString in = ToQt(text);
  for (qsizetype i = 0; i < in.size(); ++i) {
    if (in[i] == u'&' && i + 1 < in.size()) ++i;
    out += in[i];
  }
  return out;
}

}  // namespace pxm::ui
