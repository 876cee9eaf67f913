// Tests of the gun commands: rows and list in step, selection, dirty results, no-memory paths.
#include <gtest/gtest.h>

#include <bit>
#include <cstring>

#include "gun_fixture.h"
#include "platform/host_heap.h"

TEST_F(GunTest, NewGunAddsSelectsAndRefusesADuplicateIgnoringCase) {
  AcceptForm("Alpha", 20, 600, 800);
  EXPECT_EQ(OnNewGun(&window), 1);
  EXPECT_EQ(window.RowText(0), "Alpha|20.0|600|800");
  EXPECT_EQ(window.selected, 0);
  AcceptForm("alpha");
  EXPECT_EQ(OnNewGun(&window), 0);
  ASSERT_EQ(window.messages.size(), 1u);
  EXPECT_EQ(window.messages[0], "Gun Type alpha already exists!");
  EXPECT_EQ(window.Calls({"Message"}).back(), "Message ERROR!|Gun Type alpha already exists!");
  AcceptForm("Alpha ");  // compared whole: a trailing blank makes another name
  EXPECT_EQ(OnNewGun(&window), 1);
  CancelForm();
  EXPECT_EQ(OnNewGun(&window), 0);
  EXPECT_EQ(ListNames(), (Names{"Alpha", "Alpha "}));
  EXPECT_EQ(window.selected, 1);
}

TEST_F(GunTest, EditRewritesRecordAndRowAndCountsAnAcceptAsAChange) {
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
  EXPECT_EQ(window.selected, 0);
  EXPECT_EQ(Record(0)->Caliber, 12.7f);
  window.forms.push_back([](EditGunDialog*) { return 1; });
  EXPECT_EQ(OnEditGun(&window), 1) << "accepted unchanged still marks the document";
  CancelForm();
  EXPECT_EQ(OnEditGun(&window), 0);
  window.selected = -1;
  EXPECT_EQ(OnEditGun(&window), 0);
  EXPECT_EQ(ListNames(), (Names{"Beta", "Beta"}));
}

TEST_F(GunTest, CopyAppendsAPrefixedNameCutTo63Bytes) {
  AddGuns({"Alpha", std::string(60, 'n')});
  struct Case {
    int source;
    const char* expected;
  } cases[] = {
      {0, "Copy of Alpha"},
      {2, "Copy of Copy of Alpha"},
      {1, nullptr},  // 8 + 60 bytes: only the first 55 of the name stay
  };
  for (const Case& c : cases) {
    window.SelectRow(c.source);
    ASSERT_EQ(OnCopyGun(&window), 1);
    int last = window.RowCount() - 1;
    EXPECT_EQ(window.selected, last);
    std::string expected = c.expected ? c.expected : "Copy of " + std::string(55, 'n');
    EXPECT_EQ(window.rows[last][0], expected);
    EXPECT_EQ(std::memcmp(Record(last)->FullName, Record(c.source)->FullName, 128), 0);
    EXPECT_EQ(Record(last)->FireInterval, Record(c.source)->FireInterval);
  }
  ListNames();
  window.selected = -1;
  EXPECT_EQ(OnCopyGun(&window), 0);
}

TEST_F(GunTest, DeleteSelectsTheFollowingRowOrTheNewLastOne) {
  struct Case {
    int row;
    Names left;
    int selected;
  } cases[] = {{2, {"A", "B"}, 1}, {0, {"B", "C"}, 0}, {1, {"A", "C"}, 1}};
  for (const Case& c : cases) {
    AddGuns({"A", "B", "C"});
    window.SelectRow(c.row);
    EXPECT_EQ(OnDeleteGun(&window), 1);
    EXPECT_EQ(ListNames(), c.left) << c.row;
    EXPECT_EQ(window.selected, c.selected) << c.row;
    GunListEmpty(&window);
  }
  AddGuns({"Only"});
  EXPECT_EQ(OnDeleteGun(&window), 1);
  EXPECT_EQ(ListNames(), Names{});
  EXPECT_EQ(window.selected, -1);
  EXPECT_EQ(OnDeleteGun(&window), 0);
}

TEST_F(GunTest, MovesKeepRowsAndListInStepAndCellTextUnchanged) {
  AddGuns({"A", "B", "C", "D"});
  window.rows[1][1] = "hand-made";  // a move carries the text, it doesn't format anew
  struct Step {
    int (*command)(GunListView*);
    int selected;
    int result;
    Names after;
  } steps[] = {
      {OnMoveUp, 1, 1, {"B", "A", "C", "D"}},   {OnMoveUp, 0, 0, {"B", "A", "C", "D"}},
      {OnMoveDown, 0, 1, {"A", "B", "C", "D"}}, {OnMoveDown, 1, 1, {"A", "C", "B", "D"}},
      {OnMoveDown, 2, 1, {"A", "C", "D", "B"}}, {OnMoveDown, 3, 0, {"A", "C", "D", "B"}},
      {OnMoveUp, 3, 1, {"A", "C", "B", "D"}},
  };
  for (const Step& step : steps) {
    window.SelectRow(step.selected);
    EXPECT_EQ(step.command(&window), step.result) << step.selected;
    EXPECT_EQ(ListNames(), step.after) << step.selected;
  }
  EXPECT_EQ(window.selected, 2);
  EXPECT_EQ(window.rows[2][1], "hand-made");
  window.selected = -1;
  EXPECT_EQ(OnMoveUp(&window), 0);
  EXPECT_EQ(OnMoveDown(&window), 0);
}

TEST_F(GunTest, FormConversionsUseSinglePrecisionGramsAndKeepLimits) {
  EditGunDialog form;
  form.AmmoWt = 100;
  form.WarheadWt = 250;
  form.AddLight = 0x10001;  // only the low 16 bits reach the record
  form.FireColorR = 2.5f;   // colours pass unclamped
  float* floats[] = {&form.Caliber, &form.ROF, &form.MuzzleVel, &form.Accuracy,
                     &form.Reliability, &form.FireColorG, &form.FireColorB, &form.MaxLightRange,
                     &form.EffectTime, &form.TracerSize, &form.TracerDistFactor,
                     &form.TracerLength, &form.MaxVisibleDist, &form.MaxStreakVisibleDist};
  for (int i = 0; i < 14; i++) *floats[i] = static_cast<float>(i + 1);
  std::memset(form.TypeName, 'x', 100);
  std::memset(form.FullName, 'y', 200);
  GunData record;
  std::memset(&record, 0x55, sizeof record);
  GunDataFromDialog(&record, &form);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(record.AmmoWt), 0x3DCCCCCDu);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(record.WarheadWt), 0x3E800000u);
  EXPECT_EQ(record.AddLight, 1);
  EXPECT_EQ(record.FireColor[0], 2.5f);
  const float byName[] = {record.Caliber, record.ROF, record.MuzzleVel, record.Accuracy,
                          record.Reliability, record.FireColor[1], record.FireColor[2],
                          record.MaxLightRange, record.EffectTime, record.TracerSize,
                          record.TracerDistFactor, record.TracerLength, record.MaxVisibleDist,
                          record.MaxStreakVisibleDist};
  for (int i = 0; i < 14; i++) EXPECT_EQ(byName[i], static_cast<float>(i + 1)) << i;
  EXPECT_EQ(record.TracerSlot, 0);
  EXPECT_EQ(record.SlotA, -1);
  EXPECT_EQ(std::strlen(record.TypeName), 63u);
  EXPECT_EQ(std::strlen(record.FullName), 127u);
  EXPECT_EQ(record.PadBeforeAddLight, 0x5555) << "the form never writes the pad";
  EditGunDialog back;
  record.AddLight = -1;
  GunDataToDialog(&back, &record);
  EXPECT_EQ(back.AmmoWt, 100.0f);
  EXPECT_EQ(back.WarheadWt, 250.0f);
  EXPECT_EQ(back.AddLight, -1) << "widened with its sign";
  EXPECT_EQ(back.FireColorR, 2.5f);
  EXPECT_EQ(back.MaxStreakVisibleDist, 14.0f);
  EXPECT_EQ(std::strlen(back.TypeName), 63u);
}

TEST_F(GunTest, NoMemoryForARecordOrANodeAddsNoRow) {
  AddGuns({"A", "B"});
  for (int nth = 1; nth <= 2; nth++) {  // 1: the record, 2: its node
    std::int64_t blocks = LiveBlocks();
    AcceptForm("C");
    hostHeapFailNth(nth);
    EXPECT_EQ(OnNewGun(&window), 0) << nth;
    EXPECT_EQ(ListNames(), (Names{"A", "B"})) << nth;
    EXPECT_EQ(LiveBlocks(), blocks) << nth;
    window.SelectRow(0);
    hostHeapFailNth(nth);
    EXPECT_EQ(OnCopyGun(&window), 0) << nth;
    EXPECT_EQ(ListNames(), (Names{"A", "B"})) << nth;
    EXPECT_EQ(LiveBlocks(), blocks) << nth;
  }
  window.SelectRow(0);
  hostHeapFailNth(1);  // the new node of a move
  EXPECT_EQ(OnMoveDown(&window), 0);
  EXPECT_EQ(ListNames(), (Names{"A", "B"}));
  EXPECT_EQ(window.selected, 0);
}
