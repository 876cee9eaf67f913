// Tests of the gun files: exact .dat and .ini bytes, load cases, limits and no-memory paths.
#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <string>

#include "base/memory_manager.h"
#include "gun/gun_file.h"
#include "gun_fixture.h"
#include "platform/host_heap.h"

namespace {

std::string floatBytes(float value) {
  auto bits = std::bit_cast<std::uint32_t>(value);
  std::string out;
  for (int i = 0; i < 4; i++) out += static_cast<char>(bits >> (8 * i));
  return out;
}

const char kAlphaText[] =
    "[GunData001]\n"
    "TypeName=Alpha\n"
    "FullName=Alpha Gun\n"
    "Caliber=20.000000\n"
    "ROF=600.000000\n"
    "MuzzleVel=800.000000\n"
    "AmmoWt=0.250000\n"
    "WarheadWt=0.100000\n"
    "Reliability=0.900000\n"
    "Accuracy=0.750000\n"
    "AddLight=TRUE\n"
    "MaxLightRange=30.000000\n"
    "FireColor=1.000000,0.500000,2.000000\n"
    "GunFireEffect=fx_muzzle\n"
    "GunFireSound=\n"
    "EffectClassName=GunEffect\n"
    "EffectTime=0.200000\n"
    "TracerTexture=tracer_red\n"
    "TracerSize=0.300000\n"
    "TracerDistFactor=1.500000\n"
    "TracerLength=4.000000\n"
    "MaxVisibleDist=1000.000000\n"
    "MaxStreakVisibleDist=500.000000\n"
    "\n";

const char kEmptyGunText[] =
    "TypeName=Beta\nFullName=\nCaliber=0.000000\nROF=0.000000\nMuzzleVel=0.000000\n"
    "AmmoWt=0.000000\nWarheadWt=0.000000\nReliability=0.000000\nAccuracy=0.000000\n"
    "AddLight=FALSE\nMaxLightRange=0.000000\nFireColor=0.000000,0.000000,0.000000\n"
    "GunFireEffect=\nGunFireSound=\nEffectClassName=\nEffectTime=0.000000\nTracerTexture=\n"
    "TracerSize=0.000000\nTracerDistFactor=0.000000\nTracerLength=0.000000\n"
    "MaxVisibleDist=0.000000\nMaxStreakVisibleDist=0.000000\n\n";

}  // namespace

class GunFileTest : public GunTest {
 protected:
  std::string Path(const std::string& name) { return systemPath(dir.file(name)); }

  void AppendGun(const GunData& source) {
    auto* record = static_cast<GunData*>(memAlloc(sizeof(GunData)));
    std::memcpy(record, &source, sizeof(GunData));
    ASSERT_EQ(GunList.Append(record), 1);
    AddRow(&window, window.RowCount(), record);
  }

  static GunData Alpha() {
    GunData gun;
    std::memset(&gun, 0, sizeof gun);
    std::strcpy(gun.TypeName, "Alpha");
    std::strcpy(gun.FullName, "Alpha Gun");
    gun.Caliber = 20;
    gun.ROF = 600;
    gun.MuzzleVel = 800;
    gun.AmmoWt = 0.25f;
    gun.WarheadWt = 0.1f;
    gun.Reliability = 0.9f;
    gun.Accuracy = 0.75f;
    gun.AddLight = 1;
    gun.MaxLightRange = 30;
    gun.FireColor[0] = 1;
    gun.FireColor[1] = 0.5f;
    gun.FireColor[2] = 2;  // saved unclamped
    std::strcpy(gun.GunFireEffect, "fx_muzzle");
    std::strcpy(gun.EffectClassName, "GunEffect");
    gun.EffectTime = 0.2f;
    std::strcpy(gun.TracerTexture, "tracer_red");
    gun.TracerSize = 0.3f;
    gun.TracerDistFactor = 1.5f;
    gun.TracerLength = 4;
    gun.MaxVisibleDist = 1000;
    gun.MaxStreakVisibleDist = 500;
    GunDataDerive(&gun);
    return gun;
  }

  static GunData Named(const char* name) {
    GunData gun;
    std::memset(&gun, 0, sizeof gun);
    std::strcpy(gun.TypeName, name);
    GunDataDerive(&gun);
    return gun;
  }

  TempDir dir;
};

TEST_F(GunFileTest, SaveWritesExactBinaryAndTextFiles) {
  GunData alpha = Alpha();
  AppendGun(alpha);
  AppendGun(Named("Beta"));
  window.SelectRow(1);
  ASSERT_EQ(GunFileSave(&window, Path("guns.ini").c_str()), 1);

  std::string dat = readWholeFile(dir.file("guns.dat"));
  ASSERT_EQ(dat.size(), 4u + 2 * 560);
  EXPECT_EQ(dat.substr(0, 4), std::string("\x02\0\0\0", 4));
  EXPECT_EQ(dat.substr(4, 560), std::string(reinterpret_cast<const char*>(&alpha), 560));
  EXPECT_EQ(dat.substr(4 + 192, 4), floatBytes(20));
  EXPECT_EQ(dat.substr(4 + 212, 8), floatBytes(0.75f) + floatBytes(0.9f));  // Accuracy first
  EXPECT_EQ(dat.substr(4 + 236, 8), std::string(8, '\xFF'));
  EXPECT_EQ(dat.substr(4 + 380, 4), std::string("\0\0\x01\0", 4));  // pad, then AddLight
  EXPECT_EQ(dat.substr(4 + 392, 4), floatBytes(2));
  EXPECT_EQ(dat.substr(4 + 560 + 224, 4), std::string("\0\0\x80\x7F", 4));  // FireInterval inf
  EXPECT_EQ(dat.substr(4 + 560 + 232, 4), std::string("\0\0\x80\x7F", 4));
  EXPECT_EQ(dat.substr(4 + 560 + 220, 4), std::string("\0\0\0\x80", 4));  // -0
  EXPECT_EQ(dat.substr(4 + 560 + 468, 4), std::string(4, '\0'));

  EXPECT_EQ(readWholeFile(dir.file("guns.ini")),
            std::string(kAlphaText) + "[GunData002]\n" + kEmptyGunText);
  EXPECT_EQ(window.selected, 1) << "a save changes no selection";
}

TEST_F(GunFileTest, EmptyListAndShorterSaveReplaceTheOldFiles) {
  AppendGun(Named("A"));
  AppendGun(Named("B"));
  ASSERT_EQ(GunFileSave(&window, Path("guns.ini").c_str()), 1);
  GunListEmpty(&window);
  ASSERT_EQ(GunFileSave(&window, Path("guns.ini").c_str()), 1);
  EXPECT_EQ(readWholeFile(dir.file("guns.dat")), std::string(4, '\0'));
  EXPECT_EQ(readWholeFile(dir.file("guns.ini")), "");
}

TEST_F(GunFileTest, UncreatableBinaryFileIsReportedNamingTheTextFile) {
  AppendGun(Named("A"));
  std::string path = Path("missing/guns.ini");
  EXPECT_EQ(GunFileSave(&window, path.c_str()), 0);
  ASSERT_EQ(window.messages.size(), 1u);
  EXPECT_EQ(window.messages[0], "Unable to create " + path + " for writing!");
  EXPECT_EQ(window.Calls({"Message"})[0], "Message ERROR!|Unable to create " + path +
                                              " for writing!");
}

TEST_F(GunFileTest, LoadRoundTripKeepsOrderAndRenumbers) {
  AppendGun(Alpha());
  AppendGun(Named("Beta"));
  AppendGun(Named("Gamma"));
  window.SelectRow(2);
  ASSERT_EQ(OnMoveUp(&window), 1);
  ASSERT_EQ(GunFileSave(&window, Path("a.ini").c_str()), 1);
  GunFileLoad(&window, Path("a.ini").c_str());
  EXPECT_EQ(ListNames(), (Names{"Alpha", "Gamma", "Beta"}));
  EXPECT_EQ(window.selected, 0);
  GunData alpha = Alpha();
  alpha.FireColor[2] = 1;  // the load clamps
  EXPECT_EQ(std::memcmp(Record(0), &alpha, sizeof alpha), 0);
  EXPECT_EQ(window.RowText(0), "Alpha|20.0|600|800");
  ASSERT_EQ(GunFileSave(&window, Path("b.ini").c_str()), 1);
  std::string text = readWholeFile(dir.file("b.ini"));
  EXPECT_NE(text.find("[GunData002]\nTypeName=Gamma\n"), std::string::npos);
}

TEST_F(GunFileTest, LoadCasesOfTheTextFile) {
  std::string longName(80, 'L');
  writeWholeFile(dir.file("cases.ini"),
                 "[GunData002]\r\nTypeName=Second\r\nAddLight=true\r\nFireColor=0.5,-1\r\n"
                 "[gundata001]\r\nTypeName=" + longName + "\r\nFullName=" + std::string(200, 'F') +
                 "\r\nAddLight=7\r\nFireColor=0.5,-1,3\r\nROF=1e3\r\n"
                 "[GunData004]\r\nTypeName=Gap\r\n"
                 "[GunData03]\r\nTypeName=FewDigits\r\n");
  GunFileLoad(&window, Path("cases.ini").c_str());
  ASSERT_EQ(ListNames(), (Names{std::string(63, 'L'), "Second"}));
  GunData* first = Record(0);
  EXPECT_EQ(std::strlen(first->FullName), 127u);
  EXPECT_EQ(first->AddLight, 1);
  EXPECT_EQ(first->FireColor[0], 0.5f);
  EXPECT_EQ(first->FireColor[1], 0.0f);
  EXPECT_EQ(first->FireColor[2], 1.0f);
  EXPECT_EQ(first->ROF, 1000.0f);
  EXPECT_EQ(first->FireInterval, 0.06f);
  GunData* second = Record(1);
  EXPECT_EQ(second->AddLight, 1);
  EXPECT_EQ(second->FireColor[0], 0.0f) << "fewer than two commas leaves black";
  EXPECT_EQ(std::bit_cast<std::uint32_t>(second->InvMuzzleVel), 0x7F800000u);
  EXPECT_EQ(second->SlotD, -1);
  EXPECT_EQ(window.selected, 0);
}

TEST_F(GunFileTest, UnreadableOrSectionlessFileEmptiesTheDocument) {
  AppendGun(Named("Kept?"));
  for (std::string content : {std::string(), std::string("\n[GunData001]\nTypeName=X\n"),
                              std::string("[Other]\nTypeName=X\n")}) {
    writeWholeFile(dir.file("x.ini"), content);
    GunFileLoad(&window, Path("x.ini").c_str());
    EXPECT_EQ(ListNames(), Names{});
  }
  AppendGun(Named("Kept?"));
  GunFileLoad(&window, Path("no-such-file.ini").c_str());
  EXPECT_EQ(ListNames(), Names{});
}

TEST_F(GunFileTest, FullArenaLeavesKeysOutWhileTheBinaryFileStaysComplete) {
  GunData big = Alpha();
  std::memset(big.FullName, 'f', 127);
  for (char* text : {big.TypeName, big.GunFireEffect, big.GunFireSound, big.EffectClassName,
                     big.TracerTexture}) {
    std::memset(text, 't', 63);
  }
  const int guns = 400;  // far past the 353 guns of full-length texts one arena takes
  for (int i = 0; i < guns; i++) AppendGun(big);
  ASSERT_EQ(GunFileSave(&window, Path("big.ini").c_str()), 1);
  EXPECT_EQ(readWholeFile(dir.file("big.dat")).size(), 4u + 560u * guns);
  std::string text = readWholeFile(dir.file("big.ini"));
  EXPECT_NE(text.find("[GunData300]\nTypeName=ttt"), std::string::npos);
  EXPECT_EQ(text.find("[GunData400]\nTypeName=ttt"), std::string::npos);
  GunFileLoad(&window, Path("big.ini").c_str());
  EXPECT_GT(GunList.count, 250) << "a text longer than the arena loads the guns ahead of the cut";
  EXPECT_LT(GunList.count, guns);
  ListNames();
}

TEST_F(GunFileTest, NoMemoryDuringALoadKeepsRowsAndListInStep) {
  AppendGun(Alpha());
  AppendGun(Named("Beta"));
  AppendGun(Named("Gamma"));
  ASSERT_EQ(GunFileSave(&window, Path("three.ini").c_str()), 1);
  GunListEmpty(&window);
  for (int nth = 1; nth <= 120; nth++) {
    std::int64_t blocks = LiveBlocks();
    hostHeapFailNth(nth);
    GunFileLoad(&window, Path("three.ini").c_str());
    hostHeapFailNth(0);
    ListNames();
    GunListEmpty(&window);
    ASSERT_EQ(LiveBlocks(), blocks) << nth;
  }
}
