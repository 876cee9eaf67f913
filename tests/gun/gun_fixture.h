// Test support for the gun tests: a kernel, a fake window, and guns made in a few words.
#pragma once
#include <string>
#include <vector>

#include "fake_window.h"
#include "gun/gun_commands.h"
#include "gun/gun_list.h"
#include "kernel_fixture.h"

class GunTest : public KernelTest {
 protected:
  void TearDown() override {
    GunListEmpty(&window);
    KernelTest::TearDown();
  }

  // Scripts the next edit form to accept with these values (weights in grams).
  void AcceptForm(const std::string& name, float caliber = 20, float rof = 600,
                  float muzzleVel = 800) {
    window.forms.push_back([=](EditGunDialog* form) {
      std::snprintf(form->TypeName, sizeof form->TypeName, "%s", name.c_str());
      form->Caliber = caliber;
      form->ROF = rof;
      form->MuzzleVel = muzzleVel;
      return 1;
    });
  }
  void CancelForm() {
    window.forms.push_back([](EditGunDialog*) { return GunListView::kCancelled; });
  }
  // Adds guns through New Gun, accepted with the default numbers.
  void AddGuns(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      AcceptForm(name);
      ASSERT_EQ(OnNewGun(&window), 1) << name;
    }
  }
  // The type names of GunList in list order; also checks that the rows show the same.
  std::vector<std::string> ListNames() {
    std::vector<std::string> names;
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

  FakeWindow window;
};

using Names = std::vector<std::string>;
