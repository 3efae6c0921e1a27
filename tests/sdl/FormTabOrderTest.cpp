// Moving the focus from control to control as the Tab key does, on a
// headless form: the order the controls were added, skipping those that
// cannot take the focus.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/Probe.hpp"
#include "support/HeadlessForm.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"

namespace velt {
namespace {

using testing::Probe;

class FormTabOrderTest : public ::testing::Test {
 protected:
  Site* add(const std::string& name, int32_t left = 0, int32_t top = 0) {
    hf.form.AddControl(std::make_shared<Probe>(), name, left, top, 20, 20);
    return hf.form.FindSite(name);
  }
  std::string focused() const {
    Site* site = hf.form.FocusedSite();
    return site ? site->Name() : "(none)";
  }
  std::vector<std::string> tabs(int count, bool backward = false) {
    std::vector<std::string> order;
    for (int i = 0; i < count; ++i) {
      hf.form.FocusNext(backward);
      order.push_back(focused());
    }
    return order;
  }

  test::HeadlessForm hf;
};

TEST_F(FormTabOrderTest, TabWalksTheControlsInTheOrderAddedAndWrapsAround) {
  add("A", 100);  // placed to the right: the order added counts, not the place
  add("B");
  add("C", 50);
  EXPECT_EQ(tabs(4), (std::vector<std::string>{"A", "B", "C", "A"}));
  EXPECT_EQ(tabs(3, true), (std::vector<std::string>{"C", "B", "A"}));
}

TEST_F(FormTabOrderTest, FromNoFocusBackwardStartsAtTheLast) {
  add("A");
  add("B");
  EXPECT_EQ(tabs(1, true), (std::vector<std::string>{"B"}));
}

TEST_F(FormTabOrderTest, HiddenDisabledAndOffFormControlsAreSkipped) {
  add("A");
  add("Hidden")->Visible(false);
  add("Disabled")->Enabled(false);
  add("Off", -500, -500);  // parked out of sight, as composite controls park parts
  add("B");
  EXPECT_EQ(tabs(3), (std::vector<std::string>{"A", "B", "A"}));
}

TEST_F(FormTabOrderTest, AControlsPartsMoveOnWithTheirControl) {
  Site* a = add("A");
  add("B");
  ControlHost& part = a->AddChild(std::make_shared<Probe>(), "Part", 2, 2, 5, 5);
  part.SetFocus();
  EXPECT_EQ(focused(), "Part");
  EXPECT_EQ(tabs(1), (std::vector<std::string>{"B"}));
}

TEST_F(FormTabOrderTest, NothingToMoveToIsFalse) {
  EXPECT_FALSE(hf.form.FocusNext());
  add("A");
  EXPECT_TRUE(hf.form.FocusNext());
  EXPECT_FALSE(hf.form.FocusNext()) << "the focus is already on the only control";
  EXPECT_EQ(focused(), "A");
}

}  // namespace
}  // namespace velt
