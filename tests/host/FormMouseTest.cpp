// Presses on the form's own background reach the application through
// Form::MouseDown; presses a control takes do not.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/Probe.hpp"
#include "velt/host/Form.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"

namespace velt {
namespace {

using testing::Probe;

class FormMouseTest : public ::testing::Test {
 protected:
  FormMouseTest() {
    form->MoveWindow(100, 50);
    form->AddControl(probe, "Probe1", 10, 10, 40, 20);
    connection = form->MouseDown.connect([this](int16_t button, int16_t shift, float x, float y) {
      presses.push_back(std::to_string(button) + " " + std::to_string(shift) + " " +
                        std::to_string(static_cast<int>(x)) + " " +
                        std::to_string(static_cast<int>(y)));
    });
  }

  // A press and release at a point of the form's client area.
  void press(int16_t button, int32_t x, int32_t y, int16_t shift = 0) {
    system->PostMouseDown(button, 100 + x, 50 + y, shift);
    system->PostMouseUp(button, 100 + x, 50 + y, shift);
    system->RunUntilIdle();
  }

  std::shared_ptr<HeadlessWindowSystem> system = std::make_shared<HeadlessWindowSystem>();
  std::unique_ptr<Form> form = std::make_unique<Form>(system);
  std::shared_ptr<Probe> probe = std::make_shared<Probe>();
  std::vector<std::string> presses;
  Connection connection;
};

TEST_F(FormMouseTest, APressOnTheBareFormRaisesMouseDownInFormPixels) {
  press(2, 70, 5, 1);
  press(1, 0, 0);
  EXPECT_EQ(presses, (std::vector<std::string>{"2 1 70 5", "1 0 0 0"}));
}

TEST_F(FormMouseTest, APressTheControlTakesIsNotTheForms) {
  probe->calls.clear();
  press(2, 20, 15);
  EXPECT_TRUE(presses.empty());
  const auto took = [this] {
    for (const std::string& call : probe->calls)
      if (call.rfind("MouseDown 2", 0) == 0) return true;
    return false;
  };
  EXPECT_TRUE(took());
}

TEST_F(FormMouseTest, WhileAControlHoldsTheCaptureAPressOutsideItIsTheControls) {
  system->PostMouseDown(1, 120, 65);
  system->PostMouseDown(2, 100 + 90, 50 + 90);
  system->PostMouseUp(2, 100 + 90, 50 + 90);
  system->PostMouseUp(1, 120, 65);
  system->RunUntilIdle();
  EXPECT_TRUE(presses.empty());
  // Once every button is up, the background is the form's again.
  press(2, 90, 90);
  EXPECT_EQ(presses, (std::vector<std::string>{"2 0 90 90"}));
}

TEST_F(FormMouseTest, AHandlerMayDestroyTheForm) {
  Connection closing =
      form->MouseDown.connect([this](int16_t, int16_t, float, float) { form.reset(); });
  press(1, 90, 90);
  EXPECT_EQ(form, nullptr);
  EXPECT_EQ(presses.size(), 1u);
}

}  // namespace
}  // namespace velt
