// The six gun commands on GunList and the rows of its view, and the record/form conversions.
#include "gun/gun_commands.h"

#include <cstddef>
#include <cstring>

#include "base/memory_manager.h"
#include "base/string_util.h"
#include "gun/gun_list.h"
#include "platform/number_text.h"

namespace {

constexpr int kCaliberCell = 1;
constexpr int kRofCell = 2;
constexpr int kMuzzleVelCell = 3;
constexpr int kCellCount = 4;
// Constants of the weight conversions, single precision like those of GunDataDerive.
constexpr float kGramsToKilograms = 0.001f;
constexpr float kKilogramsToGrams = 1000.0f;

// A text of the record and the form member of the same name.
struct TextField {
  std::size_t recordOffset;
  int recordSize;
  std::size_t formOffset;

  char* In(GunData* record) const { return reinterpret_cast<char*>(record) + recordOffset; }
  const char* In(const GunData* record) const {
    return reinterpret_cast<const char*>(record) + recordOffset;
  }
  char* In(EditGunDialog* form) const { return reinterpret_cast<char*>(form) + formOffset; }
  const char* In(const EditGunDialog* form) const {
    return reinterpret_cast<const char*>(form) + formOffset;
  }
};

#define TEXT_FIELD(name) \
  { offsetof(GunData, name), sizeof(GunData::name), offsetof(EditGunDialog, name) }
const TextField kTextFields[] = {TEXT_FIELD(TypeName),      TEXT_FIELD(FullName),
                                 TEXT_FIELD(GunFireEffect), TEXT_FIELD(GunFireSound),
                                 TEXT_FIELD(TracerTexture), TEXT_FIELD(EffectClassName)};
#undef TEXT_FIELD

// The floats that pass unchanged both ways; the colour is three members in the form.
struct FloatField {
  float EditGunDialog::*form;
  float GunData::*record;
};
const FloatField kFloatFields[] = {
    {&EditGunDialog::Caliber, &GunData::Caliber},
    {&EditGunDialog::ROF, &GunData::ROF},
    {&EditGunDialog::MuzzleVel, &GunData::MuzzleVel},
    {&EditGunDialog::Accuracy, &GunData::Accuracy},
    {&EditGunDialog::Reliability, &GunData::Reliability},
    {&EditGunDialog::MaxLightRange, &GunData::MaxLightRange},
    {&EditGunDialog::EffectTime, &GunData::EffectTime},
    {&EditGunDialog::TracerSize, &GunData::TracerSize},
    {&EditGunDialog::TracerDistFactor, &GunData::TracerDistFactor},
    {&EditGunDialog::TracerLength, &GunData::TracerLength},
    {&EditGunDialog::MaxVisibleDist, &GunData::MaxVisibleDist},
    {&EditGunDialog::MaxStreakVisibleDist, &GunData::MaxStreakVisibleDist},
};

float scaled(float value, float factor) {
  return static_cast<float>(static_cast<double>(value) * static_cast<double>(factor));
}

GunData* recordAt(int row) {
  GunList.MoveToIndex(row);
  return GunList.current ? static_cast<GunData*>(GunList.current->payload) : nullptr;
}

// A zero-filled record on the heap, or null when there is no memory.
GunData* newRecord() {
  auto* record = static_cast<GunData*>(memAlloc(sizeof(GunData)));
  if (record) std::memset(record, 0, sizeof(GunData));
  return record;
}

// Appends the record and shows it in a new last row, selected. A record that finds no node is
// freed and no row is added, so rows and list stay in step.
int appendAndShow(GunListView* view, GunData* record) {
  int row = view->RowCount();
  if (!GunList.Append(record)) {
    memFree(record);
    return 0;
  }
  AddRow(view, row, record);
  view->SelectRow(row);
  return 1;
}

// Puts the record of node `source` into a new node at position `target` of the list as it
// stands without the old node, then drops the old node. The new node is made first, so that a
// failed allocation leaves the list as it was.
int moveNode(int source, int target) {
  GunList.MoveToIndex(source);
  if (!GunList.current) return 0;
  void* payload = GunList.current->payload;
  int before = target < source ? target : target + 1;
  if (before < GunList.count) {
    GunList.MoveToIndex(before);
    if (!GunList.InsertBeforeCurrent(payload)) return 0;
  } else if (!GunList.Append(payload)) {
    return 0;
  }
  GunList.MoveToIndex(before < source ? source + 1 : source);
  GunList.RemoveCurrent();
  return 1;
}

void setNumberCell(GunListView* view, int row, int cell, float value, int decimals) {
  char text[GunListView::kCellSize];
  numFormatFixed(text, sizeof text, static_cast<double>(value), decimals);
  view->SetCell(row, cell, text);
}

}  // namespace

void GunDataFromDialog(GunData* record, const EditGunDialog* form) {
  for (const TextField& field : kTextFields) {
    strCopyN(field.In(record), field.In(form), field.recordSize);
  }
  for (const FloatField& field : kFloatFields) record->*field.record = form->*field.form;
  record->AmmoWt = scaled(form->AmmoWt, kGramsToKilograms);
  record->WarheadWt = scaled(form->WarheadWt, kGramsToKilograms);
  record->AddLight = static_cast<std::int16_t>(form->AddLight);
  record->FireColor[0] = form->FireColorR;
  record->FireColor[1] = form->FireColorG;
  record->FireColor[2] = form->FireColorB;
  record->TracerSlot = 0;
  GunDataDerive(record);
}

void GunDataToDialog(EditGunDialog* form, const GunData* record) {
  // Every record field is smaller than the form's member, so the copies are whole.
  for (const TextField& field : kTextFields) {
    strCopyN(field.In(form), field.In(record), EditGunDialog::kTextSize);
  }
  for (const FloatField& field : kFloatFields) form->*field.form = record->*field.record;
  form->AmmoWt = scaled(record->AmmoWt, kKilogramsToGrams);
  form->WarheadWt = scaled(record->WarheadWt, kKilogramsToGrams);
  form->AddLight = record->AddLight;
  form->FireColorR = record->FireColor[0];
  form->FireColorG = record->FireColor[1];
  form->FireColorB = record->FireColor[2];
}

void AddRow(GunListView* view, int row, const GunData* record) {
  view->InsertRow(row, record->TypeName);
  setNumberCell(view, row, kCaliberCell, record->Caliber, 1);
  setNumberCell(view, row, kRofCell, record->ROF, 0);
  setNumberCell(view, row, kMuzzleVelCell, record->MuzzleVel, 0);
}

int OnNewGun(GunListView* view) {
  EditGunDialog form;
  if (view->RunEditForm(&form) == GunListView::kCancelled) return 0;
  if (view->FindRow(form.TypeName) != -1) {
    winMessageBox(view, "ERROR!", "Gun Type %s already exists!", form.TypeName);
    return 0;
  }
  GunData* record = newRecord();
  if (!record) return 0;
  GunDataFromDialog(record, &form);
  return appendAndShow(view, record);
}

int OnEditGun(GunListView* view) {
  if (view->SelectedCount() == 0) return 0;
  int row = view->FirstSelectedRow();
  GunData* record = recordAt(row);
  if (!record) return 0;
  EditGunDialog form;
  GunDataToDialog(&form, record);
  if (view->RunEditForm(&form) == GunListView::kCancelled) return 0;
  GunDataFromDialog(record, &form);
  view->DeleteRow(row);
  AddRow(view, row, record);
  view->SelectRow(row);
  return 1;
}

int OnCopyGun(GunListView* view) {
  if (view->SelectedCount() == 0) return 0;
  const GunData* source = recordAt(view->FirstSelectedRow());
  if (!source) return 0;
  GunData* copy = static_cast<GunData*>(memAlloc(sizeof(GunData)));
  if (!copy) return 0;
  std::memcpy(copy, source, sizeof(GunData));
  char name[sizeof copy->TypeName];
  strCopyN(name, "Copy of ", sizeof name);
  strAppendN(name, source->TypeName, sizeof name);
  strCopyN(copy->TypeName, name, sizeof copy->TypeName);
  return appendAndShow(view, copy);
}

int OnDeleteGun(GunListView* view) {
  if (view->SelectedCount() == 0) return 0;
  int row = view->FirstSelectedRow();
  view->DeleteRow(row);
  GunData* record = recordAt(row);
  if (record) {
    memFree(record);
    GunList.RemoveCurrent();
  }
  int lastRow = view->RowCount() - 1;
  view->SelectRow(row < lastRow ? row : lastRow);
  return 1;
}

int OnMoveUp(GunListView* view) {
  if (view->SelectedCount() == 0) return 0;
  int row = view->FirstSelectedRow();
  if (row < 1) return 0;
  return MoveRow(view, row - 1);
}

int OnMoveDown(GunListView* view) {
  if (view->SelectedCount() == 0) return 0;
  int row = view->FirstSelectedRow();
  if (row >= view->RowCount() - 1) return 0;
  return MoveRow(view, row + 1);
}

int MoveRow(GunListView* view, int target) {
  if (view->SelectedCount() == 0) return 0;
  int source = view->FirstSelectedRow();
  char cells[kCellCount][GunListView::kCellSize];
  if (!view->ReadCell(source, 0, cells[0])) return 0;
  for (int cell = 1; cell < kCellCount; cell++) {
    if (!view->ReadCell(source, cell, cells[cell])) cells[cell][0] = '\0';
  }
  if (!moveNode(source, target)) return 0;
  view->DeleteRow(source);
  view->InsertRow(target, cells[0]);
  for (int cell = 1; cell < kCellCount; cell++) view->SetCell(target, cell, cells[cell]);
  view->SelectRow(target);
  return 1;
}

void GunListEmpty(GunListView* view) {
  view->DeleteAllRows();
  GunList.MoveFirst();
  while (GunList.current) {
    memFree(GunList.current->payload);
    GunList.RemoveCurrent();
  }
}
