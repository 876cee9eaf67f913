// Dialog units: template coordinates that scale with the dialog font, converted to pixels.
#pragma once
#include <QFont>
#include <QRect>
#include <QSize>

// The font every dialog of the editor is laid out in: the installed sans serif at 8 points.
QFont dialogFont();

// The font's base units: horizontal = (width of the 52 letters A-Z a-z + 26) / 52, vertical =
// the font's height, both whole pixels. x and widths are units x horizontal / 4, y and heights
// units x vertical / 8, rounded to the nearest pixel (halves away from zero).
class DialogUnits {
 public:
  explicit DialogUnits(const QFont& font);
  DialogUnits(int baseX, int baseY) : baseX_(baseX), baseY_(baseY) {}

  int baseX() const { return baseX_; }
  int baseY() const { return baseY_; }
  QRect Rect(int x, int y, int width, int height) const;
  QSize Size(int width, int height) const;

 private:
  int baseX_;
  int baseY_;
};
