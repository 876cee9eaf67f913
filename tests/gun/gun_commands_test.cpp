// Tests of the gun commands: rows and list in step, selection, dirty results, no-memory paths.
#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstring>

#include "gun_fixture.h"
#include "platform/host_heap.h"

namespace {

const FakeWindow::Form kCancel = [](EditGunDialog*) { return GunListView::kCancelled; };

// The bytes of a record behind its type name.
std::string AllButTheName(const GunData* record) {
  const char* from = record->FullName;
  return std::string(from, sizeof(GunData) - offsetof(GunData, FullName));
}

}  // namespace

TEST_F(GunTest, NewAndCopyAddSelectAndRefuseANameAlreadyInTheRows) {
  AddGuns({"Alpha"});
  EXPECT_EQ(window.RowText(0), "Alpha|20.0|600|800");
  EXPECT_EQ(window.selected, 0);
  window.rows[0][0] = "Shown";  // the duplicate test reads the rows, ignoring case
  AcceptForm("shown");
  EXPECT_EQ(OnNewGun(&window), 0);
  EXPECT_EQ(window.Calls({"Message"}), Names{"Message ERROR!|Gun Type shown already exists!"});
  window.rows[0][0] = "Alpha";
  AddGuns({"Alpha "});  // compared whole: a trailing blank makes another name
  window.forms.push_back(kCancel);
  EXPECT_EQ(OnNewGun(&window), 0);
  AddGuns({std::string(60, 'n')});
  const std::pair<int, std::string> copies[] = {
      {0, "Copy of Alpha"}, {3, "Copy of Copy of Alpha"},
      {2, "Copy of " + std::string(55, 'n')}};  // 8 + 55 bytes
  for (const auto& [source, expected] : copies) {
    window.SelectRow(source);
    ASSERT_EQ(OnCopyGun(&window), 1);
    int last = window.RowCount() - 1;
    EXPECT_EQ(window.selected, last);
    EXPECT_EQ(window.rows[last][0], expected);
    EXPECT_EQ(AllButTheName(Record(last)), AllButTheName(Record(source))) << expected;
  }
  EXPECT_EQ(ListNames().size(), 6u);
}

TEST_F(GunTest, EditCountsAnAcceptAsAChangeAndNothingRunsWithoutASelection) {
  AddGuns({"Alpha", "Beta"});
  window.SelectRow(0);
  window.forms.push_back([](EditGunDialog* form) {
    EXPECT_STREQ(form->TypeName, "Alpha");
    form->Caliber = 12.7f;
    form->ROF = 1200.4f;
    std::strcpy(form->TypeName, "Beta");  // no duplicate test on edit
    return 1;
  });
  EXPECT_EQ(OnEditGun(&window), 1);
  EXPECT_EQ(window.RowText(0), "Beta|12.7|1200|800");
  window.forms.push_back([](EditGunDialog*) { return 1; });
  EXPECT_EQ(OnEditGun(&window), 1) << "accepted unchanged still marks the document";
  window.forms.push_back(kCancel);
  EXPECT_EQ(OnEditGun(&window), 0);
  window.selected = -1;  // no command changes anything without a selected row
  for (auto command : {OnEditGun, OnCopyGun, OnDeleteGun, OnMoveUp, OnMoveDown}) {
    EXPECT_EQ(command(&window), 0);
  }
  EXPECT_EQ(ListNames(), (Names{"Beta", "Beta"}));
}

TEST_F(GunTest, MovesAndDeletesKeepRowsAndListInStepAndSelectAsDocumented) {
  AddGuns({"A", "B", "C", "D"});
  window.rows[1][1] = "hand-made";  // a move carries the cell text, it doesn't format anew
  struct Step {
    int (*command)(GunListView*);
    int row, result;
    Names after;
    int selected, unreadableCell = -1;
  } steps[] = {
      {OnMoveUp, 1, 1, {"B", "A", "C", "D"}, 0},   {OnMoveUp, 0, 0, {"B", "A", "C", "D"}, 0},
      {OnMoveDown, 0, 1, {"A", "B", "C", "D"}, 1}, {OnMoveDown, 1, 1, {"A", "C", "B", "D"}, 2},
      {OnMoveDown, 2, 1, {"A", "C", "D", "B"}, 3}, {OnMoveDown, 3, 0, {"A", "C", "D", "B"}, 3},
      {OnMoveUp, 3, 1, {"A", "C", "B", "D"}, 2},
      {OnMoveUp, 2, 0, {"A", "C", "B", "D"}, 2, 0},  // an unreadable name: nothing moves
      {OnMoveUp, 3, 1, {"A", "C", "D", "B"}, 2, 3},  // another unreadable cell moves empty
      {OnDeleteGun, 1, 1, {"A", "D", "B"}, 1},  // the following row takes the selection
      {OnDeleteGun, 2, 1, {"A", "D"}, 1},       // or the new last one
      {OnDeleteGun, 0, 1, {"D"}, 0},            {OnDeleteGun, 0, 1, {}, -1},
  };
  for (const Step& step : steps) {
    SCOPED_TRACE("step " + std::to_string(&step - steps));
    window.SelectRow(step.row);
    window.unreadableCell = step.unreadableCell;
    EXPECT_EQ(step.command(&window), step.result);
    EXPECT_EQ(ListNames(), step.after);
    EXPECT_EQ(window.selected, step.selected);
    if (step.unreadableCell > 0) {
      EXPECT_EQ(window.rows[step.selected][step.unreadableCell], "");
    }
    for (const auto& cells : window.rows) EXPECT_TRUE(cells[0] != "B" || cells[1] == "hand-made");
  }
}

TEST_F(GunTest, FormConversionsUseSinglePrecisionGramsAndDeriveTheRest) {
  using F = EditGunDialog;  // each float of the form and the record offset it goes to unchanged
  const std::pair<float F::*, int> floats[] = {
      {&F::Caliber, 192},        {&F::ROF, 196},          {&F::MuzzleVel, 200},
      {&F::Accuracy, 212},       {&F::Reliability, 216},  {&F::FireColorR, 384},
      {&F::FireColorG, 388},     {&F::FireColorB, 392},   {&F::MaxLightRange, 396},
      {&F::EffectTime, 400},     {&F::TracerSize, 472},   {&F::TracerDistFactor, 476},
      {&F::TracerLength, 480},   {&F::MaxVisibleDist, 484}, {&F::MaxStreakVisibleDist, 488}};
  EditGunDialog form, back;
  for (int i = 3; i < 15; i++) form.*floats[i].first = i + 0.5f;  // colours unclamped
  form.Caliber = 20;  // the worked example: 20 mm, 600 rounds a minute, 800 m/s, a 100 g warhead
  form.ROF = 600;
  form.MuzzleVel = 800;
  form.WarheadWt = 100;
  form.AmmoWt = 250;
  form.AddLight = 0x10001;  // only the low 16 bits reach the record
  std::memset(form.TypeName, 'x', 100);
  std::memset(form.FullName, 'y', 200);
  GunData record;
  std::memset(&record, 0x55, sizeof record);
  GunDataFromDialog(&record, &form);
  auto at = [&](int offset) {
    std::uint32_t bits;
    std::memcpy(&bits, reinterpret_cast<const char*>(&record) + offset, 4);
    return bits;
  };
  for (const auto& [field, offset] : floats) {
    EXPECT_EQ(at(offset), std::bit_cast<std::uint32_t>(form.*field)) << offset;
  }
  // WarheadWt, AmmoWt, CaliberTerm, FireInterval, WarheadTerm, InvMuzzleVel: in kilograms
  // and derived, all in single precision
  const std::pair<int, std::uint32_t> derived[] = {{208, 0x3DCCCCCD}, {204, 0x3E800000},
                                                   {220, 0xB9D1B719}, {224, 0x3DCCCCCD},
                                                   {228, 0x40AC4627}, {232, 0x3AA3D70A}};
  for (const auto& [offset, bits] : derived) EXPECT_EQ(at(offset), bits) << offset;
  EXPECT_EQ(record.AddLight, 1);
  EXPECT_EQ(record.TracerSlot, 0);
  EXPECT_EQ(record.SlotA & record.SlotB & record.SlotC & record.SlotD, -1);
  EXPECT_EQ(std::strlen(record.TypeName) + std::strlen(record.FullName), 63u + 127u);
  EXPECT_EQ(record.PadBeforeAddLight, 0x5555) << "the form never writes the pad";
  record.AddLight = -1;
  GunDataToDialog(&back, &record);
  for (const auto& [field, offset] : floats) EXPECT_EQ(back.*field, form.*field) << offset;
  EXPECT_EQ(back.WarheadWt + back.AmmoWt, 350.0f);
  EXPECT_EQ(back.AddLight, -1) << "widened with its sign";
}

TEST_F(GunTest, NoMemoryForARecordOrANodeAddsNoRow) {
  AddGuns({"A", "B"});
  for (int nth = 1; nth <= 2; nth++) {  // 1: the record, 2: its node
    std::int64_t blocks = LiveBlocks();
    AcceptForm("C");
    hostHeapFailNth(nth);
    EXPECT_EQ(OnNewGun(&window), 0) << nth;
    window.SelectRow(0);
    hostHeapFailNth(nth);
    EXPECT_EQ(OnCopyGun(&window), 0) << nth;
    EXPECT_EQ(ListNames(), (Names{"A", "B"})) << nth;
    EXPECT_EQ(LiveBlocks(), blocks) << nth;
  }
  hostHeapFailNth(1);  // the new node of a move
  EXPECT_EQ(OnMoveDown(&window), 0);
  EXPECT_EQ(ListNames(), (Names{"A", "B"}));
  EXPECT_EQ(window.selected, 0);
}

TEST_F(GunTest, MessageBoxShowsOnlyANonEmptyText) {
  EXPECT_EQ(winMessageBox(&window, "ERROR!", "%s", ""), 0);
  EXPECT_EQ(winMessageBox(&window, "ERROR!", "%s %d", "x", 1), 1);
  EXPECT_EQ(window.Calls({"Message"}), Names{"Message ERROR!|x 1"});
}
