#include <QApplication>

#include "startup/startup.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  return pxm::ui::RunPixmill(app);
}
