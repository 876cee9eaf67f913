// Tests of the gun files: exact .dat and .ini bytes, load cases, limits and no-memory paths.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "gun/gun_file.h"
#include "gun_fixture.h"
#include "platform/host_heap.h"

namespace {

using namespace std::string_literals;

// The keys of two guns as the save writes them, without their section lines.
const char kAlphaKeys[] =
    "TypeName=Alpha\nFullName=Alpha Gun\nCaliber=20.000000\nROF=600.000000\n"
    "MuzzleVel=800.000000\nAmmoWt=0.250000\nWarheadWt=0.100000\nReliability=0.900000\n"
    "Accuracy=0.750000\nAddLight=TRUE\nMaxLightRange=30.000000\n"
    "FireColor=1.000000,0.500000,2.000000\nGunFireEffect=fx_muzzle\nGunFireSound=\n"
    "EffectClassName=GunEffect\nEffectTime=0.200000\nTracerTexture=tracer_red\n"
    "TracerSize=0.300000\nTracerDistFactor=1.500000\nTracerLength=4.000000\n"
    "MaxVisibleDist=1000.000000\nMaxStreakVisibleDist=500.000000\n\n";
const char kBetaKeys[] =
    "TypeName=Beta\nFullName=\nCaliber=0.000000\nROF=0.000000\n"
    "MuzzleVel=0.000000\nAmmoWt=0.000000\nWarheadWt=0.000000\nReliability=0.000000\n"
    "Accuracy=0.000000\nAddLight=FALSE\nMaxLightRange=0.000000\n"
    "FireColor=0.000000,0.000000,0.000000\nGunFireEffect=\nGunFireSound=\n"
    "EffectClassName=\nEffectTime=0.000000\nTracerTexture=\nTracerSize=0.000000\n"
    "TracerDistFactor=0.000000\nTracerLength=0.000000\nMaxVisibleDist=0.000000\n"
    "MaxStreakVisibleDist=0.000000\n\n";
const std::string kTwoGuns =
    std::string("[GunData001]\n") + kAlphaKeys + "[GunData002]\n" + kBetaKeys;

}  // namespace

class GunFileTest : public GunTest {
 protected:
  std::string Path(const std::string& name) { return systemPath(dir.file(name)); }
  TempDir dir;
};

TEST_F(GunFileTest, RoundTripWritesExactFilesInListOrderRenumbered) {
  writeWholeFile(dir.file("a.ini"), kTwoGuns);
  GunFileLoad(&window, Path("a.ini").c_str());
  EXPECT_EQ(ListNames(), (Names{"Alpha", "Beta"}));
  EXPECT_EQ(window.selected, 0);
  EXPECT_EQ(Record(0)->FireColor[2], 1.0f) << "the load clamps";
  Record(0)->FireColor[2] = 2;  // the save doesn't
  window.SelectRow(1);
  ASSERT_EQ(OnMoveUp(&window), 1);
  window.SelectRow(1);
  ASSERT_EQ(GunFileSave(&window, Path("b.ini").c_str()), 1);
  EXPECT_EQ(window.selected, 1) << "a save changes no selection";
  EXPECT_EQ(readWholeFile(dir.file("b.ini")),
            std::string("[GunData001]\n") + kBetaKeys + "[GunData002]\n" + kAlphaKeys);
  std::string dat = readWholeFile(dir.file("b.dat"));
  ASSERT_EQ(dat.size(), 4u + 2 * 560);
  EXPECT_EQ(dat.substr(0, 4), "\x02\0\0\0"s);
  for (int i = 0; i < 2; i++) {
    EXPECT_EQ(dat.substr(4 + 560 * i, 560), std::string(reinterpret_cast<char*>(Record(i)), 560));
  }
  // Beta's derived values from zeros: CaliberTerm -0, FireInterval and InvMuzzleVel +inf
  const std::string inf = "\0\0\x80\x7F"s;
  EXPECT_EQ(dat.substr(4 + 220, 16), "\0\0\0\x80"s + inf + dat.substr(4 + 228, 4) + inf);
  EXPECT_EQ(dat.substr(564 + 380, 4), "\0\0\x01\0"s) << "Alpha's pad 0, then AddLight 1";
  GunListEmpty(&window);
  ASSERT_EQ(GunFileSave(&window, Path("b.ini").c_str()), 1);
  EXPECT_EQ(readWholeFile(dir.file("b.dat")) + readWholeFile(dir.file("b.ini")), "\0\0\0\0"s);
}

// The binary file is made first; when it can't be, the text file is left as it was.
TEST_F(GunFileTest, TextFileIsWrittenAfterTheBinaryOneAndOnlyIfItWasMade) {
  writeWholeFile(dir.file("b.ini"), "old");
  std::filesystem::create_directory(dir.file("b.dat"));  // CreateFile fails on it
  EXPECT_EQ(GunFileSave(&window, Path("b.ini").c_str()), 0);
  EXPECT_EQ(readWholeFile(dir.file("b.ini")), "old");
  EXPECT_EQ(window.messages, Names{"Unable to create " + Path("b.ini") + " for writing!"});
  writeWholeFile(dir.file("a.ini"), kTwoGuns);
  GunFileLoad(&window, Path("a.ini").c_str());
  ASSERT_EQ(GunFileSave(&window, Path("c.ini").c_str()), 1);
  ASSERT_EQ(GunFileSave(&window, Path("same.dat").c_str()), 1);  // both files on one name
  EXPECT_EQ(readWholeFile(dir.file("same.dat")), readWholeFile(dir.file("c.ini")))
      << "the text came last";
}

TEST_F(GunFileTest, LoadCasesOfTheTextFile) {
  writeWholeFile(dir.file("cases.ini"),
                 "[GunData002]\r\nTypeName=Second\r\nAddLight=true\r\nFireColor=0.5,-1\r\n"
                 "WarheadWt=-0.5\r\n"
                 "[gundata001]\r\nTypeName=" + std::string(80, 'L') + "\r\nFullName=" +
                 std::string(200, 'F') + "\r\nAddLight=7\r\nFireColor=0.5,-1,3\r\nROF=1e3\r\n"
                 "[GunData004]\r\nTypeName=Gap\r\n[GunData03]\r\nTypeName=FewDigits\r\n");
  GunFileLoad(&window, Path("cases.ini").c_str());
  ASSERT_EQ(ListNames(), (Names{std::string(63, 'L'), "Second"}));
  EXPECT_EQ(window.selected, 0);
  GunData* first = Record(0);
  EXPECT_EQ(std::strlen(first->FullName), 127u);
  EXPECT_EQ(first->AddLight, 1);
  EXPECT_EQ(std::vector<float>(first->FireColor, first->FireColor + 3),
            (std::vector<float>{0.5f, 0, 1})) << "clamped";
  EXPECT_EQ(first->FireInterval, 0.06f);
  GunData* second = Record(1);
  EXPECT_EQ(second->AddLight, 1);
  EXPECT_EQ(second->FireColor[0], 0.0f) << "fewer than two commas leaves black";
  EXPECT_EQ(std::bit_cast<std::uint32_t>(second->InvMuzzleVel), 0x7F800000u);
  EXPECT_TRUE(std::isnan(second->WarheadTerm)) << "a negative weight gives a NaN, and loads";
}

TEST_F(GunFileTest, UnreadableOrSectionlessFileEmptiesTheDocument) {
  const char* contents[] = {"", "\n[GunData001]\nTypeName=X\n", "[Other]\nTypeName=X\n", nullptr};
  for (const char* content : contents) {
    AddGuns({"Kept?"});
    if (content) writeWholeFile(dir.file("x.ini"), content);
    GunFileLoad(&window, Path(content ? "x.ini" : "no-such-file.ini").c_str());
    EXPECT_EQ(ListNames(), Names{}) << (content ? content : "no file");
  }
}

TEST_F(GunFileTest, FullArenaLeavesKeysOutWhileTheBinaryFileStaysComplete) {
  window.forms.push_back([](EditGunDialog* form) {
    for (char* text : {form->TypeName, form->FullName, form->GunFireEffect, form->GunFireSound,
                       form->EffectClassName, form->TracerTexture}) {
      std::memset(text, 't', 200);  // cut to the record's 63 or 127 bytes
    }
    return 1;
  });
  ASSERT_EQ(OnNewGun(&window), 1);
  const int guns = 400;  // far past the 353 guns of full-length texts one arena takes
  for (int i = 1; i < guns; i++) ASSERT_EQ(OnCopyGun(&window), 1);
  ASSERT_EQ(GunFileSave(&window, Path("big.ini").c_str()), 1);
  EXPECT_EQ(readWholeFile(dir.file("big.dat")).size(), 4u + 560u * guns);
  std::string text = readWholeFile(dir.file("big.ini"));
  EXPECT_NE(text.find("[GunData300]\nTypeName=Copy of "), std::string::npos);
  EXPECT_EQ(text.find("[GunData400]\nTypeName="), std::string::npos);
  GunFileLoad(&window, Path("big.ini").c_str());  // longer than the arena
  EXPECT_GT(GunList.count, 250) << "the guns ahead of the cut load";
  EXPECT_LT(GunList.count, guns);
  ListNames();
}

TEST_F(GunFileTest, NoMemoryDuringALoadKeepsRowsAndListInStep) {
  writeWholeFile(dir.file("three.ini"), kTwoGuns + "[GunData003]\nTypeName=Gamma\n");
  for (int nth = 1; nth <= 120; nth++) {
    std::int64_t blocks = LiveBlocks();
    hostHeapFailNth(nth);
    GunFileLoad(&window, Path("three.ini").c_str());
    ListNames();
    GunListEmpty(&window);
    ASSERT_EQ(LiveBlocks(), blocks) << nth;
  }
}
