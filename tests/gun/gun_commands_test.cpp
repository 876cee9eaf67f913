// Tests of the gun commands: rows and list in step, selection, dirty results, no-memory paths.
#include <gtest/gtest.h>

#include <bit>
#include <cstring>

#include "gun_fixture.h"
#include "platform/host_heap.h"

TEST_F(GunTest, NewAndCopyAddSelectAndRefuseADuplicateNameIgnoringCase) {
  AddGuns({"Alpha"});
  EXPECT_EQ(window.RowText(0), "Alpha|20.0|600|800");
  EXPECT_EQ(window.selected, 0);
  AcceptForm("alpha");
  EXPECT_EQ(OnNewGun(&window), 0);
  EXPECT_EQ(window.Calls({"Message"}), Names{"Message ERROR!|Gun Type alpha already exists!"});
  AddGuns({"Alpha "});  // compared whole: a trailing blank makes another name
  window.forms.push_back([](EditGunDialog*) { return GunListView::kCancelled; });
  EXPECT_EQ(OnNewGun(&window), 0);
  EXPECT_EQ(ListNames(), (Names{"Alpha", "Alpha "}));
  EXPECT_EQ(window.selected, 1);
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
  }
  ListNames();
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
  window.forms.push_back([](EditGunDialog*) { return GunListView::kCancelled; });
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
    int selected;
  } steps[] = {
      {OnMoveUp, 1, 1, {"B", "A", "C", "D"}, 0},   {OnMoveUp, 0, 0, {"B", "A", "C", "D"}, 0},
      {OnMoveDown, 0, 1, {"A", "B", "C", "D"}, 1}, {OnMoveDown, 1, 1, {"A", "C", "B", "D"}, 2},
      {OnMoveDown, 2, 1, {"A", "C", "D", "B"}, 3}, {OnMoveDown, 3, 0, {"A", "C", "D", "B"}, 3},
      {OnMoveUp, 3, 1, {"A", "C", "B", "D"}, 2},
      {OnDeleteGun, 1, 1, {"A", "B", "D"}, 1},  // the following row takes the selection
      {OnDeleteGun, 2, 1, {"A", "B"}, 1},       // or the new last one
      {OnDeleteGun, 0, 1, {"B"}, 0},            {OnDeleteGun, 0, 1, {}, -1},
  };
  for (const Step& step : steps) {
    int i = static_cast<int>(&step - steps);
    window.SelectRow(step.row);
    EXPECT_EQ(step.command(&window), step.result) << "step " << i;
    EXPECT_EQ(ListNames(), step.after) << "step " << i;
    EXPECT_EQ(window.selected, step.selected) << "step " << i;
    for (const auto& cells : window.rows) {
      EXPECT_TRUE(cells[0] != "B" || cells[1] == "hand-made") << "step " << i;
    }
  }
}

TEST_F(GunTest, FormConversionsUseSinglePrecisionGramsAndDeriveTheRest) {
  float EditGunDialog::*const fields[] = {
      &EditGunDialog::Caliber,      &EditGunDialog::ROF,          &EditGunDialog::MuzzleVel,
      &EditGunDialog::Accuracy,     &EditGunDialog::Reliability,  &EditGunDialog::FireColorR,
      &EditGunDialog::FireColorG,   &EditGunDialog::FireColorB,   &EditGunDialog::MaxLightRange,
      &EditGunDialog::EffectTime,   &EditGunDialog::TracerSize,   &EditGunDialog::TracerDistFactor,
      &EditGunDialog::TracerLength, &EditGunDialog::MaxVisibleDist,
      &EditGunDialog::MaxStreakVisibleDist};
  EditGunDialog form, back;
  for (int i = 3; i < 15; i++) form.*fields[i] = static_cast<float>(i) + 0.5f;  // colours unclamped
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
  const float byName[] = {record.Caliber, record.ROF, record.MuzzleVel, record.Accuracy,
                          record.Reliability, record.FireColor[0], record.FireColor[1],
                          record.FireColor[2], record.MaxLightRange, record.EffectTime,
                          record.TracerSize, record.TracerDistFactor, record.TracerLength,
                          record.MaxVisibleDist, record.MaxStreakVisibleDist};
  for (int i = 0; i < 15; i++) EXPECT_EQ(byName[i], form.*fields[i]) << i;
  auto bits = [](float value) { return std::bit_cast<std::uint32_t>(value); };
  EXPECT_EQ(bits(record.WarheadWt), 0x3DCCCCCDu);
  EXPECT_EQ(bits(record.AmmoWt), 0x3E800000u);
  EXPECT_EQ(bits(record.CaliberTerm), 0xB9D1B719u);
  EXPECT_EQ(bits(record.FireInterval), 0x3DCCCCCDu);
  EXPECT_EQ(bits(record.WarheadTerm), 0x40AC4627u);
  EXPECT_EQ(bits(record.InvMuzzleVel), 0x3AA3D70Au);
  EXPECT_EQ(record.AddLight, 1);
  EXPECT_EQ(record.TracerSlot, 0);
  EXPECT_EQ(record.SlotA & record.SlotB & record.SlotC & record.SlotD, -1);
  EXPECT_EQ(std::strlen(record.TypeName), 63u);
  EXPECT_EQ(std::strlen(record.FullName), 127u);
  EXPECT_EQ(record.PadBeforeAddLight, 0x5555) << "the form never writes the pad";
  record.AddLight = -1;
  GunDataToDialog(&back, &record);
  for (int i = 0; i < 15; i++) EXPECT_EQ(back.*fields[i], form.*fields[i]) << i;
  EXPECT_EQ(back.WarheadWt, 100.0f);
  EXPECT_EQ(back.AmmoWt, 250.0f);
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
