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
using Names = std::vector<std::string>;

Site* add(Form& form, const std::string& name, int32_t left = 0, int32_t top = 0) {
  form.AddControl(std::make_shared<Probe>(), name, left, top, 20, 20);
  return form.FindSite(name);
}

Names tabs(Form& form, int count, bool backward = false) {
  Names order;
  for (int i = 0; i < count; ++i) {
    form.FocusNext(backward);
    order.push_back(form.FocusedSite() ? form.FocusedSite()->Name() : "(none)");
  }
  return order;
}

TEST(FormTabOrderTest, TabWalksTheOrderAddedSkippingWhatCannotTakeTheFocus) {
  test::HeadlessForm hf;
  Site* a = add(hf.form, "A", 100);  // placed to the right: the order added counts, not the place
  add(hf.form, "Hidden")->Visible(false);
  add(hf.form, "B");
  add(hf.form, "Disabled")->Enabled(false);
  add(hf.form, "Off", -500, -500);  // parked out of sight, as composite controls park parts
  add(hf.form, "C", 50);
  EXPECT_EQ(tabs(hf.form, 1, true), Names{"C"}) << "from no focus, backward starts at the last";
  EXPECT_EQ(tabs(hf.form, 4), (Names{"A", "B", "C", "A"}));
  EXPECT_EQ(tabs(hf.form, 3, true), (Names{"C", "B", "A"}));
  a->AddChild(std::make_shared<Probe>(), "Part", 2, 2, 5, 5).SetFocus();
  ASSERT_EQ(hf.form.FocusedSite()->Name(), "Part");
  EXPECT_EQ(tabs(hf.form, 1), Names{"B"}) << "a control's part moves on with its control";
}

TEST(FormTabOrderTest, NothingToMoveToIsFalse) {
  test::HeadlessForm hf;
  EXPECT_FALSE(hf.form.FocusNext());
  add(hf.form, "A");
  EXPECT_TRUE(hf.form.FocusNext());
  EXPECT_FALSE(hf.form.FocusNext()) << "the focus is already on the only control";
  EXPECT_EQ(hf.form.FocusedSite(), hf.form.FindSite("A"));
}

}  // namespace
}  // namespace velt
