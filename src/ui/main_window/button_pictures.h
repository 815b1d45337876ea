#pragma once

#include <QIcon>

class QPainter;
class QRectF;

// The pictures of the graphic buttons and of the program itself, painted from shapes so that
// they are sharp at any scaling.
namespace pxm::ui {

// The picture identifier of the program's own icon.
constexpr int kProgramPicture = 0;

// Paints the picture of graphic button `id` (761 ... 782), or the program's icon, into `box`.
// Disabled pictures are drawn in greys.
void PaintButtonPicture(QPainter& painter, int id, const QRectF& box, bool disabled = false);

// An icon that paints the picture at whatever size and pixel ratio it is asked for.
QIcon ButtonIcon(int id);

}  // namespace pxm::ui
