// Dialog units: template coordinates that scale with the dialog font, converted to pixels.
#include "shell/qt/dialog_units.h"

#include <QFontMetrics>
#include <QString>

namespace {

// units x base / divisor, rounded to the nearest whole number, halves away from zero.
int scale(int units, int base, int divisor) {
  long long product = static_cast<long long>(units) * base;
  long long half = divisor / 2;
  return static_cast<int>(product >= 0 ? (product + half) / divisor : (product - half) / divisor);
}

}  // namespace

QFont dialogFont() {
  QFont font(QStringLiteral("Sans Serif"), 8);
  font.setStyleHint(QFont::SansSerif);
  return font;
}

DialogUnits::DialogUnits(const QFont& font) {
  QFontMetrics metrics(font);
  const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
  baseX_ = (metrics.horizontalAdvance(letters) + 26) / 52;
  baseY_ = metrics.height();
}

QRect DialogUnits::Rect(int x, int y, int width, int height) const {
  return QRect(scale(x, baseX_, 4), scale(y, baseY_, 8), scale(width, baseX_, 4),
               scale(height, baseY_, 8));
}

QSize DialogUnits::Size(int width, int height) const {
  return QSize(scale(width, baseX_, 4), scale(height, baseY_, 8));
}
