#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "velt/foundation/WindowRoutines.hpp"

namespace velt {
namespace {

// Records every request in the order made.
class RecordingWindow : public TopLevelWindow {
 public:
  std::vector<std::string> calls;

  void Move(int32_t, int32_t, int32_t, int32_t) override { calls.push_back("Move"); }
  void Show(bool on) override { record("Show", on); }
  bool Visible() const override { return false; }
  void Topmost(bool on) override { record("Topmost", on); }
  bool Topmost() const override { return false; }
  void ToolWindow(bool on) override { record("ToolWindow", on); }
  bool ToolWindow() const override { return false; }
  void Layered(bool on) override { record("Layered", on); }
  bool Layered() const override { return false; }
  void Alpha(uint8_t alpha) override { calls.push_back("Alpha " + std::to_string(alpha)); }
  uint8_t Alpha() const override { return 255; }
  void DropShadow(bool on) override { record("DropShadow", on); }
  bool DropShadow() const override { return false; }
  void Redraw() override { calls.push_back("Redraw"); }

 private:
  void record(const std::string& name, bool on) { calls.push_back(name + (on ? " on" : " off")); }
};

using Calls = std::vector<std::string>;

TEST(WindowRoutinesTest, EachRoutineMakesItsRequestsInOrder) {
  RecordingWindow window;
  SetWindowAlpha(window, 230);
  SetWindowAlpha(window, 0);
  EXPECT_EQ(window.calls, (Calls{"Layered on", "Alpha 230", "Layered on", "Alpha 0"}));
  window.calls.clear();
  RemoveWindowAlpha(window);
  EXPECT_EQ(window.calls, (Calls{"Layered off", "Redraw"}));
  window.calls.clear();
  AddDropShadow(window);
  EXPECT_EQ(window.calls, (Calls{"DropShadow on"}));
}

}  // namespace
}  // namespace velt
