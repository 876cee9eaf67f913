// The six gun commands on GunList and the rows of its view, and the record/form conversions.
#pragma once
#include "gun/gun_data.h"
#include "gun/gun_view.h"

// Each command returns 1 when it changed the document (the caller sets its dirty flag) and 0
// when it ended without a change. A command that needs a selected row ends with 0 without one.

// Runs a new form; refuses a type name that a row already shows ("Gun Type %s already
// exists!"); else appends the gun, adds and selects its row.
int OnNewGun(GunListView* view);
// Runs the form on the selected gun and rewrites record and row when accepted.
int OnEditGun(GunListView* view);
// Appends a copy named "Copy of " + the type name (cut to 63 bytes) and selects it.
int OnCopyGun(GunListView* view);
// Deletes the selected gun and selects the row that follows it, or the new last row.
int OnDeleteGun(GunListView* view);
int OnMoveUp(GunListView* view);
int OnMoveDown(GunListView* view);
// Moves the selected row and its record to row `target`, keeping the cell texts as they are.
// 1 when moved; 0, with rows and list unchanged, without a selection or memory for the node.
int MoveRow(GunListView* view, int target);
// Deletes all rows and frees every record of GunList.
void GunListEmpty(GunListView* view);
// Inserts a row at `row` showing the record: type name, "%.1f" caliber, "%.0f" rate of fire
// and muzzle velocity. Doesn't select it.
void AddRow(GunListView* view, int row, const GunData* record);

// Overwrites every entered field of the record from the form (weights from grams to
// kilograms), sets TracerSlot to 0 and derives the rest.
void GunDataFromDialog(GunData* record, const EditGunDialog* form);
// Fills the form from the record (weights from kilograms to grams).
void GunDataToDialog(EditGunDialog* form, const GunData* record);
