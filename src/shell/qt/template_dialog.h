// The base of the editor's two dialogs: a fixed dialog-unit template in the dialog font, the
// keys of a dialog without a default button, and the window's placement.
#pragma once
#include <QDialog>

#include "shell/qt/dialog_units.h"
#include "shell/window_seam.h"

class QAbstractButton;
class QKeyEvent;

class TemplateDialog : public QDialog {
  Q_OBJECT

 public:
  // A dialog of the template's size in dialog units, without minimise and maximise boxes.
  TemplateDialog(QWidget* parent, int width, int height);

  const DialogUnits& Units() const { return units_; }
  // Places a child at its template rectangle and names it for tests; returns it.
  template <typename Widget>
  Widget* Place(Widget* widget, const char* name, int x, int y, int width, int height) {
    PlaceWidget(widget, name, x, y, width, height);
    return widget;
  }
  // Shows exactly this text as the caption (the toolkit's "[*]" mark is escaped).
  void SetCaptionText(const QString& text);

 protected:
  // Enter clicks the button that has the focus and does nothing elsewhere: no button is the
  // default. Esc goes to reject() as in any dialog.
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void PlaceWidget(QWidget* widget, const char* name, int x, int y, int width, int height);
  DialogUnits units_;
};

// A plain push button that never becomes the default button.
QAbstractButton* newTemplateButton(const char* text, QWidget* parent);
// A group box without text, under the controls and transparent to the mouse.
QWidget* newTemplateGroup(QWidget* parent);

// The window's restored-state frame rectangle in screen coordinates and how it is shown (1
// normal, 2 minimised, 3 maximised); length as given.
void readPlacement(const QWidget* window, WindowPlacement* placement);
// Moves the window's frame to the rectangle's top left corner in its restored state. The size
// stays: both dialogs keep their template's size.
void applyPlacement(QWidget* window, const WindowPlacement* placement);
