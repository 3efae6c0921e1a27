#include "apps/velt/Gallery.hpp"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "apps/velt/GalleryCommand.hpp"
#include "velt/controls/ControlRegistry.hpp"
#include "velt/controls/menus/veltPUMenu.hpp"
#include "velt/controls/menus/veltToolbar.hpp"
#include "velt/controls/range/veltProgressBar.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/Png.hpp"
#include "velt/platform/PopupWindow.hpp"

namespace velt::tool {
namespace {

namespace fs = std::filesystem;

bool overlap(const RectL& a, const RectL& b) {
  return a.Left < b.Right && b.Left < a.Right && a.Top < b.Bottom && b.Top < a.Bottom;
}

class GalleryTest : public ::testing::Test {
 protected:
  std::shared_ptr<HeadlessWindowSystem> system = std::make_shared<HeadlessWindowSystem>();
  Gallery gallery{system};
  Form& form = gallery.GalleryForm();
};

TEST_F(GalleryTest, ShowsEveryCreatableControlInsideTheFormWithoutOverlaps) {
  std::set<std::string> shown;
  for (Site* site : form.Sites())
    shown.insert(site->Control()->ClassName());
  for (const std::string& name : ControlRegistry::Standard().CreatableNames())
    EXPECT_TRUE(shown.count(name)) << name << " is registered but not in the gallery";
  const RectL client{0, 0, Gallery::kWidth, Gallery::kHeight};
  const std::vector<Site*> sites = form.Sites();
  for (size_t i = 0; i < sites.size(); ++i) {
    const RectL bounds = sites[i]->Bounds();
    EXPECT_TRUE(bounds.Width() > 0 && bounds.Height() > 0) << sites[i]->Name() << " has no area";
    EXPECT_TRUE(bounds.Left >= 0 && bounds.Top >= 0 && bounds.Right <= client.Right &&
                bounds.Bottom <= client.Bottom)
        << sites[i]->Name() << " reaches outside the form";
    for (size_t j = i + 1; j < sites.size(); ++j)
      EXPECT_FALSE(overlap(bounds, sites[j]->Bounds()))
          << sites[i]->Name() << " and " << sites[j]->Name() << " overlap";
  }
}

// The check button is toggled by the gallery on each click; each menu button
// opens its own entries.
TEST_F(GalleryTest, TheToolbarsCheckButtonTogglesAndItsMenuButtonsOpenTheirMenus) {
  auto bar =
      std::dynamic_pointer_cast<veltToolbar>(form.FindSite(Gallery::kToolbarName)->Control());
  ASSERT_NE(bar, nullptr);
  const auto press = [&](const std::string& key) {
    int16_t index = 0;
    for (int16_t i = 1; i <= bar->ToolbarItems.Count(); ++i)
      if (bar->ToolbarItems.Item(i)->sKey() == key) index = i;
    const ToolbarCell& cell = *bar->Layout().CellOf(index);
    const int32_t x = cell.ButtonLeft() + cell.Width / 2;
    const int32_t y = kToolbarItemTop + bar->Layout().ItemHeight / 2;
    system->PostMouseMove(x, y);
    system->PostMouseDown(1, x, y);
    system->PostMouseUp(1, x, y);
    system->RunUntilIdle();
    return bar->ToolbarItems.Item(index);
  };
  EXPECT_FALSE(press("wrap")->Checked());
  EXPECT_TRUE(press("wrap")->Checked());
  for (const char* menu : {"file", "view"}) {
    SCOPED_TRACE(menu);
    const auto item = press(menu);
    EXPECT_TRUE(bar->veltPUMenu1()->Window()->Visible());
    EXPECT_EQ(bar->veltPUMenu1()->MenuItem, item->ToolbarMenuItems);
    EXPECT_GT(item->ToolbarMenuItems->Count(), 1);
    bar->veltPUMenu1()->KillMenu();
    system->AdvanceClock(1);
  }
}

TEST_F(GalleryTest, TheTimerCyclesTheSearchingBarAndWrapsAtTheTop) {
  auto bar =
      std::dynamic_pointer_cast<veltProgressBar>(form.FindSite(Gallery::kSearchingName)->Control());
  ASSERT_NE(bar, nullptr);
  const int16_t start = bar->Value();
  system->AdvanceClock(Gallery::kCycleInterval - 1);
  EXPECT_EQ(bar->Value(), start);
  system->AdvanceClock(1);
  EXPECT_EQ(bar->Value(), start + Gallery::kCycleStep);

  std::vector<int16_t> seen;
  for (int i = 0; i < 2 * veltProgressBar::kHighestValue / Gallery::kCycleStep; ++i) {
    system->AdvanceClock(Gallery::kCycleInterval);
    seen.push_back(bar->Value());
  }
  EXPECT_EQ(*std::max_element(seen.begin(), seen.end()), veltProgressBar::kHighestValue);
  EXPECT_NE(std::find(seen.begin(), seen.end(), veltProgressBar::kLowestValue), seen.end());
}

TEST_F(GalleryTest, TheTimerStopsWithTheGallery) {
  const size_t withGallery = system->Timers().Count();
  {
    Gallery second(system);
    EXPECT_GT(system->Timers().Count(), withGallery);
  }
  EXPECT_EQ(system->Timers().Count(), withGallery);
}

TEST_F(GalleryTest, ARightPressOnTheBareFormOpensTheMenuAtThePointer) {
  auto menu = std::dynamic_pointer_cast<veltPUMenu>(form.FindSite(Gallery::kMenuName)->Control());
  ASSERT_NE(menu, nullptr);
  // A left press on the background and a right press on a control open nothing.
  const RectL button = form.FindSite(Gallery::kMenuButtonName)->WindowRect();
  system->PostMouseDown(1, 5, Gallery::kHeight - 5);
  system->PostMouseUp(1, 5, Gallery::kHeight - 5);
  system->PostMouseDown(2, button.Left + 5, button.Top + 5);
  system->PostMouseUp(2, button.Left + 5, button.Top + 5);
  system->RunUntilIdle();
  EXPECT_FALSE(menu->MenuVisible);

  const PointL spot{Gallery::kWidth - 60, Gallery::kHeight - 20};  // bare form
  system->PostMouseMove(spot.x, spot.y);
  system->PostMouseDown(2, spot.x, spot.y);
  system->PostMouseUp(2, spot.x, spot.y);
  system->RunUntilIdle();
  EXPECT_TRUE(menu->MenuVisible);
  ASSERT_NE(menu->Window(), nullptr);
  const RectL shown = menu->Window()->WindowRect();
  // At the pointer, or flipped up and left of it where the screen ends.
  EXPECT_TRUE(shown.Left == spot.x || shown.Right == spot.x) << shown.Left << " " << shown.Right;
  EXPECT_TRUE(shown.Top == spot.y || shown.Bottom == spot.y) << shown.Top << " " << shown.Bottom;
}

TEST_F(GalleryTest, TheMenuButtonOpensThePopupMenuBelowItself) {
  auto menu = std::dynamic_pointer_cast<veltPUMenu>(form.FindSite(Gallery::kMenuName)->Control());
  ASSERT_NE(menu, nullptr);
  const RectL button = form.FindSite(Gallery::kMenuButtonName)->WindowRect();
  system->PostMouseMove(button.Left + 5, button.Top + 5);
  system->PostMouseDown(1, button.Left + 5, button.Top + 5);
  system->PostMouseUp(1, button.Left + 5, button.Top + 5);
  system->RunUntilIdle();

  ASSERT_NE(menu->Window(), nullptr);
  EXPECT_TRUE(menu->Window()->Visible());
  const RectL shown = menu->Window()->WindowRect();
  EXPECT_EQ(shown.Left, button.Left);
  EXPECT_EQ(shown.Top, button.Bottom);
}

TEST(GalleryCommandTest, RendersHeadlessToTheFileGivenAndRefusesBadArguments) {
  const fs::path out =
      fs::temp_directory_path() / ("velt-gallery-" + std::to_string(getpid()) + ".png");
  std::ostringstream printed;
  std::ostringstream errors;
  GalleryCommand command(printed, errors);
  for (const char* bad : {"--out", "--headless=yes", "extra"})
    EXPECT_EQ(command.Run(std::vector<std::string>{bad}), 2) << bad;
  EXPECT_NE(errors.str().find("--headless takes no value"), std::string::npos) << errors.str();
  EXPECT_EQ(command.Run(std::vector<std::string>{"--headless", "--out", out.string()}), 0);
  EXPECT_NE(printed.str().find("headless to " + out.string()), std::string::npos) << printed.str();
  EXPECT_EQ(Png::Read(out.string())->Width(), Gallery::kWidth);
  fs::remove(out);
}

}  // namespace
}  // namespace velt::tool
