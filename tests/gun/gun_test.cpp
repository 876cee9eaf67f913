// The gun commands and files on a fake window (their no-memory paths are the session sweep's).
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>

#include "fake_window.h"
#include "gun/gun_commands.h"
#include "gun/gun_file.h"
#include "gun/gun_list.h"
#include "kernel_fixture.h"

namespace {

using namespace std::string_literals;
using Names = std::vector<std::string>;

class GunTest : public KernelTest {
 protected:
  void TearDown() override {
    GunListEmpty(&window);
    KernelTest::TearDown();
  }
  void AddGuns(const Names& names) {  // through New Gun
    for (const std::string& name : names) {
      window.AcceptForm(name);
      ASSERT_EQ(OnNewGun(&window), 1) << name;
    }
  }
  Names ListNames() {
    EXPECT_EQ(window.Names(), ListedNames()) << "rows and list out of step";
    return ListedNames();
  }
  GunData* Record(int index) {
    GunList.MoveToIndex(index);
    return static_cast<GunData*>(GunList.current->payload);
  }
  std::string Path(const std::string& name) { return systemPath(dir.file(name)); }
  std::string Read(const std::string& name) { return readWholeFile(dir.file(name)); }
  FakeWindow window;
  TempDir dir;
};

TEST_F(GunTest, NewAndCopyAddSelectAndRefuseANameAlreadyInTheRows) {
  AddGuns({"Alpha"});
  window.rows[0][0] = "Shown";  // the duplicate test reads the rows, ignoring case
  window.AcceptForm("shown");
  EXPECT_EQ(OnNewGun(&window), 0);
  EXPECT_EQ(winMessageBox(&window, "ERROR!", "%s", ""), 0) << "an empty text shows nothing";
  EXPECT_EQ(window.Calls({"Message"}), Names{"Message ERROR!|Gun Type shown already exists!"});
  window.rows[0][0] = "Alpha";
  AddGuns({"Alpha "});  // compared whole: a trailing blank makes another name
  window.forms.push_back([](EditGunDialog*) { return GunListView::kCancelled; });
  EXPECT_EQ(OnNewGun(&window), 0);
  AddGuns({std::string(70, 'n')});  // cut to the record's 63 bytes
  const std::pair<int, std::string> copies[] = {
      {0, "Copy of Alpha"}, {3, "Copy of Copy of Alpha"},
      {2, "Copy of " + std::string(55, 'n')}};  // cut to 63 bytes
  for (const auto& [source, expected] : copies) {
    window.SelectRow(source);
    ASSERT_EQ(OnCopyGun(&window), 1);
    int last = window.RowCount() - 1;
    EXPECT_EQ(window.selected, last);
    EXPECT_EQ(window.rows[last][0], expected);
    EXPECT_EQ(std::memcmp(Record(last)->FullName, Record(source)->FullName,
                          sizeof(GunData) - sizeof Record(0)->TypeName), 0)
        << "the bytes behind the name are copied too";
  }
  EXPECT_EQ(ListNames().size(), 6u);
}

TEST_F(GunTest, MovesAndDeletesKeepRowsAndListInStepAndSelectAsDocumented) {
  AddGuns({"A", "B", "C", "D"});
  for (auto command : {OnEditGun, OnCopyGun, OnDeleteGun, OnMoveUp, OnMoveDown}) {
    window.selected = -1;
    EXPECT_EQ(command(&window), 0) << "nothing runs without a selected row";
  }
  window.rows[1][1] = "hand-made";  // a move carries the cell text, it doesn't format anew
  const struct { int (*run)(GunListView*); int row, result; Names after; int selected, cell = -1; }
      steps[] = {
      {OnMoveUp, 1, 1, {"B", "A", "C", "D"}, 0},   {OnMoveUp, 0, 0, {"B", "A", "C", "D"}, 0},
      {OnMoveDown, 0, 1, {"A", "B", "C", "D"}, 1}, {OnMoveDown, 2, 1, {"A", "B", "D", "C"}, 3},
      {OnMoveDown, 3, 0, {"A", "B", "D", "C"}, 3},
      {OnMoveUp, 1, 0, {"A", "B", "D", "C"}, 1, 0},  // an unreadable name: nothing moves
      {OnMoveDown, 1, 1, {"A", "D", "B", "C"}, 2, 3},  // another unreadable cell moves empty
      {OnDeleteGun, 1, 1, {"A", "B", "C"}, 1},  // the following row takes the selection
      {OnDeleteGun, 2, 1, {"A", "B"}, 1},       // or the new last one
      {OnDeleteGun, 0, 1, {"B"}, 0},            {OnDeleteGun, 0, 1, {}, -1},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE("step " + std::to_string(&step - steps));
    window.SelectRow(step.row);
    window.unreadableCell = step.cell;
    EXPECT_EQ(step.run(&window), step.result);
    EXPECT_EQ(ListNames(), step.after);
    EXPECT_EQ(window.selected, step.selected);
    EXPECT_TRUE(step.cell <= 0 || window.rows[step.selected][step.cell] == "");
    for (const auto& cells : window.rows) EXPECT_TRUE(cells[0] != "B" || cells[1] == "hand-made");
  }
}

TEST_F(GunTest, FormToFilesAndBackKeepsEveryField) {
  const EditGunDialog entered = {
      .AmmoWt = 250, .Caliber = 20, .FullName = "Alpha Gun", .GunFireEffect = "fx_muzzle",
      .MuzzleVel = 800, .TracerLength = 4, .TracerTexture = "tracer_red", .TracerSize = 0.3f,
      .WarheadWt = 100, .TracerDistFactor = 1.5f, .ROF = 600, .TypeName = "Alpha",
      .Accuracy = 0.75f, .FireColorG = 0.5f, .FireColorB = 2, .FireColorR = 1,
      .Reliability = 0.9f, .AddLight = 0x1FFFF,  // only the low 16 bits reach the record
      .MaxStreakVisibleDist = 500, .MaxVisibleDist = 1000, .MaxLightRange = 30,
      .EffectClassName = "GunEffect", .EffectTime = 0.2f};
  window.forms.push_back([&](EditGunDialog* form) { return *form = entered, 1; });
  ASSERT_EQ(OnNewGun(&window), 1);
  ASSERT_EQ(OnCopyGun(&window), 1);
  ASSERT_EQ(OnMoveUp(&window), 1);
  ASSERT_EQ(GunFileSave(&window, Path("b.ini").c_str()), 1);
  const std::string keys =
      "\nFullName=Alpha Gun\nCaliber=20.000000\nROF=600.000000\n"
      "MuzzleVel=800.000000\nAmmoWt=0.250000\nWarheadWt=0.100000\nReliability=0.900000\n"
      "Accuracy=0.750000\nAddLight=TRUE\nMaxLightRange=30.000000\n"
      "FireColor=1.000000,0.500000,2.000000\nGunFireEffect=fx_muzzle\nGunFireSound=\n"
      "EffectClassName=GunEffect\nEffectTime=0.200000\nTracerTexture=tracer_red\n"
      "TracerSize=0.300000\nTracerDistFactor=1.500000\nTracerLength=4.000000\n"
      "MaxVisibleDist=1000.000000\nMaxStreakVisibleDist=500.000000\n\n";
  EXPECT_EQ(Read("b.ini"), "[GunData001]\nTypeName=Copy of Alpha" + keys +
                               "[GunData002]\nTypeName=Alpha" + keys);
  std::string dat = Read("b.dat");
  ASSERT_EQ(dat.size(), 4u + 2 * 560);
  EXPECT_EQ(dat.substr(0, 4), "\x02\0\0\0"s);
  EXPECT_EQ(dat.substr(4, 560), std::string(reinterpret_cast<char*>(Record(0)), 560));
  // AmmoWt to InvMuzzleVel, SlotA, the pad before AddLight and AddLight, TracerSlot
  const int offsets[] = {204, 208, 212, 216, 220, 224, 228, 232, 236, 380, 468};
  std::vector<std::uint32_t> found(std::size(offsets));
  for (std::size_t i = 0; i < found.size(); i++) std::memcpy(&found[i], &dat[564 + offsets[i]], 4);
  EXPECT_EQ(found, (std::vector<std::uint32_t>{0x3E800000, 0x3DCCCCCD, 0x3F400000, 0x3F666666,
                                               0xB9D1B719, 0x3DCCCCCD, 0x40AC4627, 0x3AA3D70A,
                                               0xFFFFFFFF, 0xFFFF0000, 0}));
  window.SelectRow(1);
  window.forms.push_back([&](EditGunDialog* form) {
    EXPECT_EQ(form->AddLight, -1) << "widened with its sign";
    form->AddLight = entered.AddLight;
    EXPECT_EQ(std::memcmp(form, &entered, sizeof entered), 0) << "a field came back changed";
    return GunListView::kCancelled;
  });
  EXPECT_EQ(OnEditGun(&window), 0);
  GunListEmpty(&window);
  ASSERT_EQ(GunFileSave(&window, Path("b.ini").c_str()), 1);
  EXPECT_EQ(Read("b.dat") + Read("b.ini"), "\0\0\0\0"s);
}

TEST_F(GunTest, TextFileIsWrittenAfterTheBinaryOneAndOnlyIfItWasMade) {
  writeWholeFile(dir.file("b.ini"), "old");
  std::filesystem::create_directory(dir.file("b.dat"));  // CreateFile fails on it
  EXPECT_EQ(GunFileSave(&window, Path("b.ini").c_str()), 0);
  EXPECT_EQ(Read("b.ini"), "old");
  AddGuns({"A"});
  ASSERT_EQ(GunFileSave(&window, Path("c.ini").c_str()), 1);
  ASSERT_EQ(GunFileSave(&window, Path("same.dat").c_str()), 1);  // both files on one name
  EXPECT_EQ(Read("same.dat"), Read("c.ini")) << "the text came last";
}

TEST_F(GunTest, LoadCasesOfTheTextFile) {
  writeWholeFile(dir.file("cases.ini"),
                 "[GunData002]\r\nTypeName=Second\r\nFireColor=0.5,-1\r\nWarheadWt=-0.5\r\n"
                 "[gundata001]\r\nTypeName=" + std::string(80, 'L') + "\r\nFullName=" +
                 std::string(200, 'F') + "\r\nFireColor=0.5,-1,3\r\n"
                 "[GunData004]\r\nTypeName=Gap\r\n[GunData03]\r\nTypeName=FewDigits\r\n");
  GunFileLoad(&window, Path("cases.ini").c_str());
  ASSERT_EQ(ListNames(), (Names{std::string(63, 'L'), "Second"}));
  EXPECT_EQ(window.selected, 0);
  GunData *first = Record(0), *second = Record(1);
  EXPECT_EQ(std::strlen(first->FullName), 127u);
  EXPECT_EQ(std::vector<float>(first->FireColor, first->FireColor + 3),
            (std::vector<float>{0.5f, 0, 1})) << "clamped";
  EXPECT_EQ(second->FireColor[0], 0.0f) << "fewer than two commas leaves black";
  EXPECT_EQ(second->InvMuzzleVel, INFINITY);
  EXPECT_TRUE(std::isnan(second->WarheadTerm)) << "a negative weight gives a NaN, and loads";
}

}  // namespace
