// The gun edit form: the window of the EditGunDialog working copy, on its template.
#pragma once
#include <cstdint>

#include "gun/gun_view.h"
#include "shell/qt/template_dialog.h"

class QLineEdit;

// Where the form stood when it last closed (OK or cancel alike), and 1 until it first opened.
// Both last as long as the process.
extern WindowPlacement EditPlacement;
extern std::int32_t EditPlacementUnset;

// A modal form on one EditGunDialog: the fields show its values when the form opens; OK reads
// them back in the order of the exchange and ends the form with 1 unless a field is refused;
// Cancel, Esc and the close box end it with GunListView::kCancelled and read nothing.
class EditGunForm : public TemplateDialog {
  Q_OBJECT

 public:
  EditGunForm(QWidget* parent, EditGunDialog* data);
  // Fills the fields, focuses the type name, takes the last placement and runs the form.
  int DoModal();
  // The field of a member of EditGunDialog by its name; null for another name.
  QLineEdit* Field(const char* member) const;

 public slots:
  void reject() override;
  void done(int result) override;

 private:
  void ExchangeIn();
  // Reads every field in the exchange order; 0 at the first refused one, which then has the
  // focus and has been told to the user.
  int ExchangeOut();
  void OnOK();

  EditGunDialog* data_;
};
