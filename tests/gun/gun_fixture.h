// Test support for the gun tests: a kernel, a fake window, and guns made in a few words.
#pragma once
#include <string>
#include <vector>

#include "fake_window.h"
#include "gun/gun_commands.h"
#include "gun/gun_list.h"
#include "kernel_fixture.h"

using Names = std::vector<std::string>;

// A fake window whose reads of one cell number can be made to fail, as a control's may.
class GunWindow : public FakeWindow {
 public:
  int ReadCell(int row, int cell, char* buffer) override {
    return cell == unreadableCell ? 0 : FakeWindow::ReadCell(row, cell, buffer);
  }
  int unreadableCell = -1;
};

class GunTest : public KernelTest {
 protected:
  void TearDown() override {
    GunListEmpty(&window);
    KernelTest::TearDown();
  }
  // Scripts the next edit form to accept this name, "<name> gun", caliber 20, ROF 600 and
  // MuzzleVel 800.
  void AcceptForm(const std::string& name) {
    window.forms.push_back([=](EditGunDialog* form) {
      std::snprintf(form->TypeName, sizeof form->TypeName, "%s", name.c_str());
      std::snprintf(form->FullName, sizeof form->FullName, "%s gun", name.c_str());
      form->Caliber = 20, form->ROF = 600, form->MuzzleVel = 800;
      return 1;
    });
  }
  void AddGuns(const Names& names) {  // through New Gun
    for (const std::string& name : names) {
      AcceptForm(name);
      ASSERT_EQ(OnNewGun(&window), 1) << name;
    }
  }
  // The type names of GunList in list order, checking that the rows show the same.
  Names ListNames() {
    Names names;
    for (GunList.MoveFirst(); GunList.current; GunList.MoveNext()) {
      names.push_back(static_cast<GunData*>(GunList.current->payload)->TypeName);
    }
    EXPECT_EQ(names, window.Names()) << "rows and list out of step";
    return names;
  }
  GunData* Record(int index) {
    GunList.MoveToIndex(index);
    return static_cast<GunData*>(GunList.current->payload);
  }
  GunWindow window;
};
