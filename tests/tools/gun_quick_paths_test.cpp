// The quick paths against the IniFile road they stand for: the save's text written straight
// from the records has the bytes of an IniFile given every key in turn, and a text that the
// converter's quick load takes is plain and loads as the IniFile's load does.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>

#include "config/ini_file.h"
#include "gun/gun_commands.h"
#include "gun/gun_data.h"
#include "gun/gun_file.h"
#include "gun/gun_list.h"
#include "kernel_fixture.h"
#include "tools/console_list_view.h"
#include "tools/gun_check.h"
#include "tools/gun_saved_text.h"

namespace {

// Fields as a user may leave them (odd: also blanks at the ends of texts, texts that fill
// their field without a terminator, floats that are no plain decimal, AddLight beyond 0 and 1,
// colours out of range).
void randomGun(std::mt19937& random, bool odd, GunData* gun) {
  const float floats[] = {0.0f, 1.5f, -20.25f, 16.000001f, 262143.98f, 1e9f, 3.4e38f, -0.0f,
                          1e-40f, INFINITY, NAN};
  auto number = [&] { return floats[random() % (odd ? std::size(floats) : 6)] * (random() % 3); };
  for (const GunKey& key : kGunKeys) {
    char* field = reinterpret_cast<char*>(gun) + key.offset;
    if (key.kind == GunKeyKind::kFloat) *reinterpret_cast<float*>(field) = number();
    if (key.kind != GunKeyKind::kText) continue;
    std::string text(random() % static_cast<unsigned>(key.size), 'a' + random() % 26);
    if (odd && random() % 3 == 0) text = " \t" + text.substr(0, text.size() / 2) + " ";
    if (odd && random() % 40 == 0) text.assign(static_cast<std::size_t>(key.size), 'f');
    std::memcpy(field, text.data(), text.size());
  }
  gun->AddLight = static_cast<std::int16_t>(odd ? random() % 5 - 1 : random() % 2);
  for (float& part : gun->FireColor) part = odd ? number() : static_cast<float>(random() % 5) / 4;
}

// The text an IniFile writes to `path` when every key of every gun is set in the save's order.
void writeThroughIniFile(const std::string& path) {
  IniFile ini(path.c_str(), 0, 1);
  int number = 1;
  for (GunList.MoveFirst(); GunList.current; GunList.MoveNext()) {
    char section[kGunSectionNameSize], color[1024];
    GunSectionName(section, number++);
    auto* gun = static_cast<GunData*>(GunList.current->payload);
    std::snprintf(color, sizeof color, "%f,%f,%f", gun->FireColor[0], gun->FireColor[1],
                  gun->FireColor[2]);
    for (const GunKey& key : kGunKeys) {
      const char* field = reinterpret_cast<const char*>(gun) + key.offset;
      if (key.kind == GunKeyKind::kText) ini.IniSetString(section, key.name, field);
      if (key.kind == GunKeyKind::kFloat) {
        ini.IniSetFloat(section, key.name, *reinterpret_cast<const float*>(field));
      }
      if (key.kind == GunKeyKind::kBool) ini.IniSetBool(section, key.name, gun->AddLight);
      if (key.kind == GunKeyKind::kColor) ini.IniSetString(section, key.name, color);
    }
  }
  ini.IniWrite(nullptr);
}

// The records of the list in order, and the list emptied.
std::string takeRecords(GunListView* view) {
  std::string records;
  for (GunList.MoveFirst(); GunList.current; GunList.MoveNext()) {
    records.append(static_cast<const char*>(GunList.current->payload), sizeof(GunData));
  }
  EXPECT_EQ(view->RowCount(), GunList.count);
  GunListEmpty(view);
  return records;
}

}  // namespace

TEST_F(KernelTest, QuickSaveAndLoadGiveWhatTheIniFileRoadGives) {
  TempDir dir;
  std::mt19937 random(7);
  int taken = 0, refused = 0;
  for (int round = 0; round < 300; round++) {
    bool odd = round % 2 == 1;
    ConsoleListView view(nullptr);
    GunListLoad(&view, round == 1 ? 520 : 1 + static_cast<int>(random() % 30),
                [&](int, GunData* gun) { randomGun(random, odd, gun); });
    ASSERT_EQ(GunFileSave(&view, systemPath(dir.file("a.ini")).c_str()), 1);
    std::string saved = readWholeFile(dir.file("a.ini"));
    writeThroughIniFile(systemPath(dir.file("b.ini")));
    EXPECT_TRUE(saved == readWholeFile(dir.file("b.ini"))) << "round " << round;
    takeRecords(&view);
    // Every other round loads the text with one byte changed, at random.
    if (round % 4 >= 2) saved[random() % saved.size()] = " \t\r\n=[]#;0.-9aZ\0"[random() % 16];
    writeWholeFile(dir.file("c.ini"), saved);
    std::string path = systemPath(dir.file("c.ini"));
    IniFile ini(path.c_str(), 0, 0);
    bool plain = GunTextIsPlain(ini);
    GunFileLoadParsed(&view, &ini);
    std::string loaded = takeRecords(&view);
    int guns = -1;
    bool quick = GunLoadSavedText(&view, path.c_str(), &guns);
    bool same = takeRecords(&view) == loaded && guns == ini.sections.count;
    (quick ? taken : refused)++;
    EXPECT_TRUE(quick || round % 4 != 0) << "a save of plain values is not taken, round " << round;
    EXPECT_TRUE(!quick || (plain && same)) << "round " << round;
  }
  EXPECT_GT(taken, 80);
  EXPECT_GT(refused, 100);
}
