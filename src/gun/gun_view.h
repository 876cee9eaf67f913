// The window side of the gun commands: the list control's rows, the edit form and a message box.
#pragma once
#include <cstdint>

// The working copy of one gun in the edit form: each entered field of GunData under its name,
// the weights in grams, the colour as three floats, AddLight as a 32-bit 0 or 1. The defaults
// of a new form are 0 and empty texts.
struct EditGunDialog {
  static constexpr int kTextSize = 260;

  float AmmoWt = 0;
  float Caliber = 0;
  char FullName[kTextSize] = {};
  char GunFireEffect[kTextSize] = {};
  char GunFireSound[kTextSize] = {};
  float MuzzleVel = 0;
  float TracerLength = 0;
  char TracerTexture[kTextSize] = {};
  float TracerSize = 0;
  float WarheadWt = 0;
  float TracerDistFactor = 0;
  float ROF = 0;
  char TypeName[kTextSize] = {};
  float Accuracy = 0;
  float FireColorG = 0;
  float FireColorB = 0;
  float FireColorR = 0;
  float Reliability = 0;
  std::int32_t AddLight = 0;
  float MaxStreakVisibleDist = 0;
  float MaxVisibleDist = 0;
  float MaxLightRange = 0;
  char EffectClassName[kTextSize] = {};
  float EffectTime = 0;
};

// What the gun commands ask of the window: the row operations of the gun list control
// (single selection; cells 0 to 3 are type name, caliber, rate of fire, muzzle velocity), a
// modal run of the edit form, and a message box. Rows are numbered from 0.
class GunListView {
 public:
  static constexpr int kCellSize = 260;
  static constexpr int kCancelled = 2;

  virtual int SelectedCount() = 0;
  // The first selected row, or -1.
  virtual int FirstSelectedRow() = 0;
  virtual int RowCount() = 0;
  // The first row whose cell 0 equals the text as a whole, ignoring the case of letters; -1.
  virtual int FindRow(const char* text) = 0;
  // Copies the cell's text into a buffer of kCellSize bytes; 0 when there is no such cell.
  virtual int ReadCell(int row, int cell, char* buffer) = 0;
  virtual void DeleteRow(int row) = 0;
  virtual void DeleteAllRows() = 0;
  // Inserts a row at `row` with the text of cell 0.
  virtual void InsertRow(int row, const char* text) = 0;
  // Sets the text of cell 1, 2 or 3.
  virtual void SetCell(int row, int cell, const char* text) = 0;
  // Selects and focuses the row, dropping any other selection; -1 touches nothing.
  virtual void SelectRow(int row) = 0;
  // Runs the edit form modally on `form`: kCancelled when the user cancelled, anything else
  // when the user accepted (the form then holds the accepted values).
  virtual int RunEditForm(EditGunDialog* form) = 0;
  // Shows an exclamation box with an OK button.
  virtual void ShowMessage(const char* caption, const char* text) = 0;

 protected:
  ~GunListView() = default;
};

// Formats the text into one static buffer of 1024 bytes; a non-empty text is shown by the
// owner's message box (when there is an owner) and gives 1, an empty one shows nothing and gives 0.
int winMessageBox(GunListView* owner, const char* caption, const char* format, ...)
    __attribute__((format(printf, 3, 4)));
