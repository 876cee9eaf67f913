// The six gun commands on GunList and the rows of its view, and the record/form conversions.
#include "gun/gun_commands.h"

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
  strCopyN(record->TypeName, form->TypeName, sizeof record->TypeName);
  strCopyN(record->FullName, form->FullName, sizeof record->FullName);
  record->Caliber = form->Caliber;
  record->ROF = form->ROF;
  record->MuzzleVel = form->MuzzleVel;
  record->AmmoWt = scaled(form->AmmoWt, kGramsToKilograms);
  record->WarheadWt = scaled(form->WarheadWt, kGramsToKilograms);
  record->Accuracy = form->Accuracy;
  record->Reliability = form->Reliability;
  strCopyN(record->GunFireEffect, form->GunFireEffect, sizeof record->GunFireEffect);
  strCopyN(record->GunFireSound, form->GunFireSound, sizeof record->GunFireSound);
  record->AddLight = static_cast<std::int16_t>(form->AddLight);
  record->FireColor[0] = form->FireColorR;
  record->FireColor[1] = form->FireColorG;
  record->FireColor[2] = form->FireColorB;
  record->MaxLightRange = form->MaxLightRange;
  record->EffectTime = form->EffectTime;
  strCopyN(record->TracerTexture, form->TracerTexture, sizeof record->TracerTexture);
  record->TracerSlot = 0;
  record->TracerSize = form->TracerSize;
  record->TracerDistFactor = form->TracerDistFactor;
  record->TracerLength = form->TracerLength;
  record->MaxVisibleDist = form->MaxVisibleDist;
  record->MaxStreakVisibleDist = form->MaxStreakVisibleDist;
  strCopyN(record->EffectClassName, form->EffectClassName, sizeof record->EffectClassName);
  GunDataDerive(record);
}

void GunDataToDialog(EditGunDialog* form, const GunData* record) {
  // The record's texts always end within their fields, and every field is smaller than the
  // form's members, so the copies are whole.
  strCopyN(form->TypeName, record->TypeName, sizeof form->TypeName);
  strCopyN(form->FullName, record->FullName, sizeof form->FullName);
  form->Caliber = record->Caliber;
  form->ROF = record->ROF;
  form->MuzzleVel = record->MuzzleVel;
  form->AmmoWt = scaled(record->AmmoWt, kKilogramsToGrams);
  form->WarheadWt = scaled(record->WarheadWt, kKilogramsToGrams);
  form->Accuracy = record->Accuracy;
  form->Reliability = record->Reliability;
  strCopyN(form->GunFireEffect, record->GunFireEffect, sizeof form->GunFireEffect);
  strCopyN(form->GunFireSound, record->GunFireSound, sizeof form->GunFireSound);
  form->AddLight = record->AddLight;
  form->FireColorR = record->FireColor[0];
  form->FireColorG = record->FireColor[1];
  form->FireColorB = record->FireColor[2];
  form->MaxLightRange = record->MaxLightRange;
  form->EffectTime = record->EffectTime;
  strCopyN(form->TracerTexture, record->TracerTexture, sizeof form->TracerTexture);
  form->TracerSize = record->TracerSize;
  form->TracerDistFactor = record->TracerDistFactor;
  form->TracerLength = record->TracerLength;
  form->MaxVisibleDist = record->MaxVisibleDist;
  form->MaxStreakVisibleDist = record->MaxStreakVisibleDist;
  strCopyN(form->EffectClassName, record->EffectClassName, sizeof form->EffectClassName);
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
