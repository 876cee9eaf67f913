// winMessageBox: the one way the editor shows an error to the user.
#include "gun/gun_view.h"

#include <cstdarg>
#include <cstdio>

int winMessageBox(GunListView* owner, const char* caption, const char* format, ...) {
  static char text[1024];
  va_list args;
  va_start(args, format);
  std::vsnprintf(text, sizeof text, format, args);
  va_end(args);
  if (text[0] == '\0') return 0;
  if (owner) owner->ShowMessage(caption, text);
  return 1;
}
