// The editor's entry point: the Qt application object, then InitInstance. No command line.
#include <QFileInfo>
#include <QString>
#include <cstdlib>

#include "shell/qt/tessarine_app.h"

namespace {

// Under Wayland a window can neither read nor set its own position, which the settings need:
// take the X server when one is reachable and nobody chose a platform.
void preferXcbUnderWayland() {
  if (std::getenv("QT_QPA_PLATFORM") || !std::getenv("WAYLAND_DISPLAY")) return;
  const char* display = std::getenv("DISPLAY");
  if (!display || !*display) return;
  // A local display ":N" or ":N.S" is reachable when its socket exists; a remote one is tried.
  QString name = QString::fromLocal8Bit(display);
  if (name.startsWith(QLatin1Char(':'))) {
    QString number = name.mid(1).section(QLatin1Char('.'), 0, 0);
    if (!QFileInfo::exists(QStringLiteral("/tmp/.X11-unix/X") + number)) return;
  }
  qputenv("QT_QPA_PLATFORM", "xcb");
}

}  // namespace

int main(int, char** argv) {
  preferXcbUnderWayland();
  return runWithQt(argv[0], InitInstance);
}
