#include "main_window/button_pictures.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <cmath>
#include <numbers>

namespace pxm::ui {
namespace {

// Every picture is drawn on a 20 × 20 grid, scaled to the box it is given.
constexpr qreal kGrid = 20.0;

const QColor kInk(40, 40, 48);
const QColor kPaper(255, 255, 255);
const QColor kBlue(52, 120, 214);
const QColor kLightBlue(170, 205, 245);
const QColor kOrange(236, 140, 40);
const QColor kLightOrange(250, 210, 160);
const QColor kRed(210, 50, 50);
const QColor kGreen(60, 160, 80);
const QColor kYellow(242, 196, 48);
const QColor kGrey(150, 150, 158);

class Pen {
 public:
  Pen(QPainter& p, bool disabled) : p_(p), disabled_(disabled) {}

  QColor C(QColor c) const {
    if (!disabled_) return c;
    int g = qGray(c.rgb());
    g = 150 + g * 90 / 255;
    return QColor(g, g, g);
  }
  void Stroke(QColor c, qreal width = 1.2) {
    QPen pen(C(c), width);
    pen.setJoinStyle(Qt::RoundJoin);
    pen.setCapStyle(Qt::RoundCap);
    p_.setPen(pen);
  }
  void NoStroke() { p_.setPen(Qt::NoPen); }
  void Fill(QColor c) { p_.setBrush(C(c)); }
  void NoFill() { p_.setBrush(Qt::NoBrush); }

  // A sheet of paper with a folded corner.
  void Page(QRectF r, QColor fill) {
    QPainterPath path;
    qreal fold = r.width() * 0.3;
    path.moveTo(r.topLeft());
    path.lineTo(r.right() - fold, r.top());
    path.lineTo(r.right(), r.top() + fold);
    path.lineTo(r.bottomRight());
    path.lineTo(r.bottomLeft());
    path.closeSubpath();
    Stroke(kInk);
    Fill(fill);
    p_.drawPath(path);
    NoFill();
    p_.drawLine(QPointF(r.right() - fold, r.top()), QPointF(r.right() - fold, r.top() + fold));
    p_.drawLine(QPointF(r.right() - fold, r.top() + fold), QPointF(r.right(), r.top() + fold));
  }
  // An arrow from a to b with a filled head.
  void Arrow(QPointF a, QPointF b, QColor c, qreal width = 1.8) {
    Stroke(c, width);
    qreal angle = std::atan2(b.y() - a.y(), b.x() - a.x());
    QPointF back(std::cos(angle), std::sin(angle));
    QPointF side(-back.y(), back.x());
    qreal head = 3.2;
    p_.drawLine(a, b - back * head * 0.8);
    QPolygonF tip;
    tip << b << b - back * head + side * head * 0.7 << b - back * head - side * head * 0.7;
    Stroke(c, 0.8);
    Fill(c);
    p_.drawPolygon(tip);
  }
  // The picture of a picture: sky, sun and a hill in a frame.
  void Picture(QRectF r) {
    Stroke(kInk);
    Fill(kLightBlue);
    p_.drawRect(r);
    p_.save();
    p_.setClipRect(r);
    NoStroke();
    Fill(kGreen);
    p_.drawEllipse(QPointF(r.left() + r.width() * 0.35, r.bottom() + r.height() * 0.25),
                   r.width() * 0.6, r.height() * 0.55);
    Fill(kYellow);
    p_.drawEllipse(QPointF(r.right() - r.width() * 0.25, r.top() + r.height() * 0.28),
                   r.width() * 0.13, r.width() * 0.13);
    p_.restore();
  }
  // A folder with its tab.
  void Folder(QRectF r, QColor fill) {
    QPainterPath path;
    qreal tab = r.height() * 0.22;
    path.moveTo(r.left(), r.top() + tab);
    path.lineTo(r.left(), r.bottom());
    path.lineTo(r.right(), r.bottom());
    path.lineTo(r.right(), r.top() + tab);
    path.lineTo(r.left() + r.width() * 0.45, r.top() + tab);
    path.lineTo(r.left() + r.width() * 0.35, r.top());
    path.lineTo(r.left() + r.width() * 0.05, r.top());
    path.closeSubpath();
    Stroke(kInk);
    Fill(fill);
    p_.drawPath(path);
  }
  // Lines of a list, each with a box that is ticked or empty.
  void CheckList(bool ticked) {
    for (int i = 0; i < 3; ++i) {
      qreal y = 3.5 + i * 5.5;
      Stroke(kInk, 1.0);
      Fill(ticked ? kBlue : kPaper);
      p_.drawRect(QRectF(2, y - 1.5, 4.5, 4.5));
      if (ticked) {
        Stroke(kPaper, 1.1);
        p_.drawPolyline(QPolygonF()
                        << QPointF(2.8, y + 0.8) << QPointF(4.0, y + 2.0) << QPointF(5.8, y - 0.6));
      }
      Stroke(kInk, 1.4);
      p_.drawLine(QPointF(9, y + 0.75), QPointF(18, y + 0.75));
    }
  }

  QPainter& p() { return p_; }

 private:
  QPainter& p_;
  bool disabled_;
};

void Convert(Pen& d) {
  d.Page(QRectF(1.5, 1.5, 9, 11), kLightBlue);
  d.Page(QRectF(9.5, 7.5, 9, 11), kLightOrange);
  d.Arrow(QPointF(4.5, 15.5), QPointF(8.5, 15.5), kRed, 1.6);
  d.Arrow(QPointF(14, 2.5), QPointF(14, 6.5), kRed, 1.6);
}

void Crop(Pen& d) {
  d.Picture(QRectF(6, 6, 8, 8));
  d.Stroke(kInk, 2.0);
  d.NoFill();
  d.p().drawPolyline(QPolygonF() << QPointF(5, 1) << QPointF(5, 15) << QPointF(19, 15));
  d.p().drawPolyline(QPolygonF() << QPointF(1, 5) << QPointF(15, 5) << QPointF(15, 19));
}

void Dither(Pen& d) {
  // A ramp from black to white made of dots, as a dither draws it.
  static constexpr int kBayer[4][4] = {
      {0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
  d.Stroke(kInk, 0.8);
  d.Fill(kPaper);
  d.p().drawRect(QRectF(1.5, 1.5, 17, 17));
  d.NoStroke();
  d.Fill(kInk);
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 8; ++x)
      if (kBayer[y % 4][x % 4] * 8 < (7 - x) * 16 + 6)
        d.p().drawRect(QRectF(2 + x * 2, 2 + y * 2, 2, 2));
}

void Effects(Pen& d) {
  d.Stroke(kInk, 2.4);
  d.p().drawLine(QPointF(3, 17), QPointF(12, 8));
  d.Stroke(kPaper, 1.0);
  d.p().drawLine(QPointF(10.3, 9.7), QPointF(12, 8));
  const QColor sparks[] = {kRed, kYellow, kBlue, kGreen};
  const QPointF at[] = {{15, 3.5}, {17.5, 8.5}, {11, 2.5}, {16, 13}};
  for (int i = 0; i < 4; ++i) {
    d.Stroke(sparks[i], 1.3);
    QPointF c = at[i];
    d.p().drawLine(c - QPointF(1.8, 0), c + QPointF(1.8, 0));
    d.p().drawLine(c - QPointF(0, 1.8), c + QPointF(0, 1.8));
  }
}

void Info(Pen& d) {
  d.Stroke(kInk, 1.0);
  d.Fill(kBlue);
  d.p().drawEllipse(QPointF(10, 10), 8.5, 8.5);
  d.NoStroke();
  d.Fill(kPaper);
  d.p().drawEllipse(QPointF(10, 5.6), 1.6, 1.6);
  d.p().drawRoundedRect(QRectF(8.6, 8.4, 2.8, 7.6), 0.8, 0.8);
}

void Print(Pen& d) {
  d.Stroke(kInk, 1.0);
  d.Fill(kPaper);
  d.p().drawRect(QRectF(5.5, 1.5, 9, 6));
  d.Fill(kGrey);
  d.p().drawRoundedRect(QRectF(1.5, 7.5, 17, 7), 1.5, 1.5);
  d.Fill(kPaper);
  d.p().drawRect(QRectF(5.5, 12.5, 9, 6));
  d.Stroke(kInk, 0.8);
  d.p().drawLine(QPointF(7, 15), QPointF(13, 15));
  d.p().drawLine(QPointF(7, 17), QPointF(11, 17));
  d.NoStroke();
  d.Fill(kGreen);
  d.p().drawEllipse(QPointF(15.5, 10), 0.9, 0.9);
}

void Reverse(Pen& d) {
  d.Stroke(kInk, 1.0);
  d.Fill(kInk);
  d.p().drawRect(QRectF(1.5, 2.5, 8.5, 15));
  d.Fill(kPaper);
  d.p().drawRect(QRectF(10, 2.5, 8.5, 15));
  d.NoStroke();
  d.Fill(kPaper);
  d.p().drawPie(QRectF(5, 5, 10, 10), 90 * 16, 180 * 16);
  d.Fill(kInk);
  d.p().drawPie(QRectF(5, 5, 10, 10), -90 * 16, 180 * 16);
}

void Scale(Pen& d) {
  d.Stroke(kInk, 1.0);
  d.NoFill();
  QPen dashed(d.C(kGrey), 1.0, Qt::DashLine);
  d.p().setPen(dashed);
  d.p().drawRect(QRectF(1.5, 1.5, 17, 17));
  d.Picture(QRectF(1.5, 11.5, 7, 7));
  d.Arrow(QPointF(9, 11), QPointF(17, 3), kRed, 1.6);
}

void Transform(Pen& d) {
  d.Picture(QRectF(6, 6, 8, 8));
  d.Stroke(kBlue, 1.8);
  d.NoFill();
  d.p().drawArc(QRectF(2, 2, 16, 16), 110 * 16, 250 * 16);
  // The arrow's head at the arc's end (110 degrees).
  d.Arrow(QPointF(10 + 8 * std::cos(2.1), 10 - 8 * std::sin(2.1)),
          QPointF(10 + 8 * std::cos(1.75) + 0.3, 10 - 8 * std::sin(1.75)), kBlue, 1.8);
}

void View(Pen& d) {
  QPainterPath eye;
  eye.moveTo(1, 10);
  eye.quadTo(10, 1, 19, 10);
  eye.quadTo(10, 19, 1, 10);
  d.Stroke(kInk, 1.1);
  d.Fill(kPaper);
  d.p().drawPath(eye);
  d.Fill(kBlue);
  d.p().drawEllipse(QPointF(10, 10), 3.8, 3.8);
  d.NoStroke();
  d.Fill(kInk);
  d.p().drawEllipse(QPointF(10, 10), 1.7, 1.7);
  d.Fill(kPaper);
  d.p().drawEllipse(QPointF(11.2, 8.8), 0.8, 0.8);
}

void Catalog(Pen& d) {
  const QColor tiles[] = {kLightBlue, kLightOrange, kGreen,     kYellow, kBlue,
                          kRed,       kLightOrange, kLightBlue, kGreen};
  d.Stroke(kInk, 0.8);
  for (int i = 0; i < 9; ++i) {
    d.Fill(tiles[i]);
    d.p().drawRect(QRectF(1.5 + (i % 3) * 6, 1.5 + (i / 3) * 6, 5, 5));
  }
}

void Delete(Pen& d) {
  d.Stroke(kInk, 1.0);
  d.Fill(kGrey);
  d.p().drawRect(QRectF(3, 3.5, 14, 2.5));
  d.p().drawRect(QRectF(8, 1.5, 4, 2));
  d.Fill(kPaper);
  QPolygonF can;
  can << QPointF(4.5, 6) << QPointF(15.5, 6) << QPointF(14.5, 18.5) << QPointF(5.5, 18.5);
  d.p().drawPolygon(can);
  d.Stroke(kInk, 1.0);
  for (qreal x : {7.8, 10.0, 12.2}) d.p().drawLine(QPointF(x, 8.5), QPointF(x, 16.5));
}

void Rename(Pen& d) {
  d.Stroke(kInk, 1.4);
  d.p().drawLine(QPointF(2, 17.5), QPointF(18, 17.5));
  QPolygonF pencil;
  pencil << QPointF(4, 15) << QPointF(5, 11.5) << QPointF(14.5, 2) << QPointF(17.5, 5)
         << QPointF(8, 14.5);
  d.Stroke(kInk, 1.0);
  d.Fill(kYellow);
  d.p().drawPolygon(pencil);
  d.Fill(kRed);
  QPolygonF rubber;
  rubber << QPointF(13, 3.5) << QPointF(14.5, 2) << QPointF(17.5, 5) << QPointF(16, 6.5);
  d.p().drawPolygon(rubber);
  d.NoStroke();
  d.Fill(kInk);
  QPolygonF tip;
  tip << QPointF(4, 15) << QPointF(4.6, 12.8) << QPointF(6.2, 14.4);
  d.p().drawPolygon(tip);
}

void Setup(Pen& d) {
  QPainterPath gear;
  const int teeth = 8;
  for (int i = 0; i < teeth * 2; ++i) {
    qreal a0 = (i - 0.5) * std::numbers::pi / teeth, a1 = (i + 0.5) * std::numbers::pi / teeth;
    qreal r = (i % 2 == 0) ? 9.0 : 6.8;
    QPointF p0(10 + r * std::cos(a0), 10 + r * std::sin(a0));
    QPointF p1(10 + r * std::cos(a1), 10 + r * std::sin(a1));
    if (i == 0)
      gear.moveTo(p0);
    else
      gear.lineTo(p0);
    gear.lineTo(p1);
  }
  gear.closeSubpath();
  gear.addEllipse(QPointF(10, 10), 2.8, 2.8);
  gear.setFillRule(Qt::OddEvenFill);
  d.Stroke(kInk, 1.0);
  d.Fill(kGrey);
  d.p().drawPath(gear);
}

// The program's own picture: a mill whose four sails are made of coloured pixels.
void Mill(Pen& d) {
  const QColor sails[] = {kRed, kYellow, kGreen, kBlue};
  d.p().save();
  d.p().translate(10, 10);
  for (int i = 0; i < 4; ++i) {
    d.Stroke(kInk, 0.8);
    d.Fill(sails[i]);
    d.p().drawRect(QRectF(1, -8.5, 3.5, 3.5));
    d.p().drawRect(QRectF(1, -5, 3.5, 3.5));
    d.p().drawRect(QRectF(-2.5, -8.5, 3.5, 3.5));
    d.p().rotate(90);
  }
  d.p().restore();
  d.Stroke(kInk, 0.8);
  d.Fill(kPaper);
  d.p().drawEllipse(QPointF(10, 10), 1.6, 1.6);
}

void Help(Pen& d) {
  d.Stroke(kInk, 1.0);
  d.Fill(kYellow);
  d.p().drawEllipse(QPointF(10, 10), 8.5, 8.5);
  d.Stroke(kInk, 2.2);
  d.NoFill();
  QPainterPath mark;
  mark.moveTo(6.8, 7.6);
  mark.cubicTo(6.8, 3.4, 13.4, 3.4, 13.4, 7.4);
  mark.cubicTo(13.4, 10, 10, 10, 10, 12.6);
  d.p().drawPath(mark);
  d.NoStroke();
  d.Fill(kInk);
  d.p().drawEllipse(QPointF(10, 15.6), 1.4, 1.4);
}

void Exit(Pen& d) {
  d.Stroke(kInk, 1.0);
  d.Fill(kLightOrange);
  d.p().drawRect(QRectF(2.5, 1.5, 9, 17));
  d.Fill(kOrange);
  QPolygonF door;
  door << QPointF(2.5, 1.5) << QPointF(8, 3.5) << QPointF(8, 20) << QPointF(2.5, 18.5);
  d.p().drawPolygon(door);
  d.Arrow(QPointF(10, 10), QPointF(19, 10), kRed, 2.0);
}

void ThumbToggle(Pen& d) {
  d.Stroke(kInk, 0.8);
  const QColor tiles[] = {kLightBlue, kLightOrange, kGreen, kYellow};
  for (int i = 0; i < 4; ++i) {
    d.Fill(tiles[i]);
    d.p().drawRect(QRectF(1.5 + (i % 2) * 4.5, 3.5 + (i / 2) * 4.5, 3.5, 3.5));
  }
  d.Stroke(kInk, 1.4);
  for (int i = 0; i < 4; ++i)
    d.p().drawLine(QPointF(12, 4.5 + i * 2.6), QPointF(18.5, 4.5 + i * 2.6));
  d.Arrow(QPointF(3, 16.5), QPointF(17, 16.5), kBlue, 1.3);
}

void ChangeDirectory(Pen& d) {
  d.Folder(QRectF(1.5, 3.5, 17, 13), kYellow);
}

void MoveCopy(Pen& d) {
  d.Folder(QRectF(7.5, 7.5, 11.5, 10), kYellow);
  d.Page(QRectF(1.5, 1.5, 7, 9), kPaper);
  d.Arrow(QPointF(6, 12.5), QPointF(11.5, 12.5), kRed, 1.6);
}

using Painter = void (*)(Pen&);

Painter PainterFor(int id) {
  switch (id) {
    case 761:
      return Convert;
    case 762:
      return [](Pen& d) { d.CheckList(true); };
    case 763:
      return Dither;
    case 764:
      return Help;
    case 765:
      return [](Pen& d) { d.CheckList(false); };
    case 766:
      return Effects;
    case 767:
      return Rename;
    case 768:
      return Info;
    case 769:
      return Delete;
    case 770:
      return Print;
    case 771:
      return Setup;
    case 772:
      return Crop;
    case 773:
      return Reverse;
    case 774:
      return Exit;
    case 775:
      return Scale;
    case 776:
      return Mill;
    case 777:
      return Transform;
    case 778:
      return View;
    case 779:
      return Catalog;
    case 780:
      return ThumbToggle;
    case 781:
      return ChangeDirectory;
    case 782:
      return MoveCopy;
    default:
      return Mill;
  }
}

class PictureEngine : public QIconEngine {
 public:
  explicit PictureEngine(int id) : id_(id) {}
  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    PaintButtonPicture(*painter, id_, rect, mode == QIcon::Disabled);
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    return scaledPixmap(size, mode, state, 1.0);
  }
  QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state,
                       qreal scale) override {
    QPixmap pixmap(size * scale);
    pixmap.setDevicePixelRatio(scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(0, 0), size), mode, state);
    return pixmap;
  }
  QIconEngine* clone() const override { return new PictureEngine(id_); }
  QString key() const override { return QStringLiteral("pixmill-picture"); }

 private:
  int id_;
};

}  // namespace

void PaintButtonPicture(QPainter& painter, int id, const QRectF& box, bool disabled) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  qreal side = std::min(box.width(), box.height());
  painter.translate(box.center().x() - side / 2, box.center().y() - side / 2);
  painter.scale(side / kGrid, side / kGrid);
  Pen pen(painter, disabled);
  PainterFor(id)(pen);
  painter.restore();
}

QIcon ButtonIcon(int id) {
  return QIcon(new PictureEngine(id));
}

}  // namespace pxm::ui
