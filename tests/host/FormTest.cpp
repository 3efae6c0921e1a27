#include "velt/host/Form.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/Probe.hpp"
#include "support/ExpectError.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"

namespace velt {
namespace {

using test::errorOf;
using testing::Probe;
using Calls = std::vector<std::string>;

class FormTest : public ::testing::Test {
 protected:
  std::shared_ptr<Probe> probe = std::make_shared<Probe>();
  std::shared_ptr<HeadlessWindowSystem> system = std::make_shared<HeadlessWindowSystem>();
  Form form{system};
};

// A new control is initialized, gets its defaults (the ambient display name),
// then its size. Its ambient font is a copy of the form's; a part's is the
// parent's own.
TEST_F(FormTest, NewControlsAreInitializedThenGetDefaultsThenAreResized) {
  auto font = std::make_shared<Font>("DejaVu Sans", 9);
  form.Font(font);
  Site& site = form.AddControl(probe, "Probe1", 10, 20, 30, 40);
  EXPECT_EQ(probe->calls, (Calls{"Initialize", "InitProperties", "Resize 30x40"}));
  EXPECT_EQ(probe->host, &site);
  EXPECT_EQ(probe->caption, "Probe1");
  std::shared_ptr<Font> ambient = site.AmbientFont();
  EXPECT_NE(ambient, font);
  ambient->Bold(true);
  EXPECT_FALSE(font->Bold());
  EXPECT_EQ(site.Font()->Name(), "DejaVu Sans");

  auto part = std::make_shared<Probe>();
  ControlHost& child = site.AddChild(part, "Button1", 1, 2, 3, 4);
  EXPECT_EQ(part->calls, (Calls{"Initialize", "InitProperties", "Resize 3x4"}));
  EXPECT_EQ(part->caption, "Button1");
  EXPECT_EQ(child.AmbientFont(), site.Font());
  EXPECT_EQ(site.Children().size(), 1u);
  errorOf(errKeyAlreadyExists,
          [&] { site.AddChild(std::make_shared<Probe>(), "Button1", 0, 0, 1, 1); });
}

// A stored control reads a copy of its bag; saving writes the bag again.
TEST_F(FormTest, StoredControlReadsACopyOfItsBagAndSavesIntoIt) {
  PropertyBag stored;
  stored.WriteProperty("Caption", "Saved", "");
  Site& site = form.AddControl(probe, "Probe1", 0, 0, 8, 8, &stored);
  EXPECT_EQ(probe->calls, (Calls{"Initialize", "ReadProperties Saved", "Resize 8x8"}));
  site.Bag().WriteProperty("Caption", "Changed", "");
  EXPECT_EQ(stored.ReadProperty("Caption").ToString(), "Saved");
  probe->caption = "Written";
  EXPECT_EQ(site.Save().ReadProperty("Caption").ToString(), "Written");
  EXPECT_EQ(site.Bag().ReadProperty("Caption").ToString(), "Written");
  PropertyBag other;
  form.WriteProperties(site, other);
  EXPECT_EQ(other.ReadProperty("Caption").ToString(), "Written");
}

TEST_F(FormTest, BadPlacementsAndFailedCreationsLeaveNoControlBehind) {
  errorOf(errObjectNotSet, [&] { form.AddControl(nullptr, "X", 0, 0, 1, 1); });
  errorOf(errInvalidProcedureCall, [&] { form.AddControl(probe, "", 0, 0, 1, 1); });
  errorOf(errInvalidPropertyValue, [&] { form.AddControl(probe, "X", 0, 0, -1, 1); });
  errorOf(errInvalidPropertyValue, [&] { form.AddControl(probe, "X", 0, 0, 1, 20000); });
  errorOf(errOverflow, [&] { form.AddControl(probe, "X", 2147483000, 0, 16000, 1); });
  errorOf(errInvalidProcedureCall, [&] { form.RemoveControl("Nobody"); });
  EXPECT_TRUE(probe->calls.empty());
  Site& x = form.AddControl(probe, "X", 0, 0, 1, 1);
  errorOf(errKeyAlreadyExists, [&] { form.Add<Probe>("X", 0, 0, 1, 1); });
  errorOf(errObjectNotSet, [&] { x.Font(nullptr); });

  auto bad = std::make_shared<Probe>();
  bad->onReadProperties = [] { throw Error(errTypeMismatch, "Caption is no string"); };
  PropertyBag stored;
  errorOf(errTypeMismatch, [&] { form.AddControl(bad, "Bad", 0, 0, 5, 5, &stored); });
  EXPECT_EQ(form.FindSite("Bad"), nullptr);
  EXPECT_NO_THROW(form.Add<Probe>("Bad", 0, 0, 5, 5));  // the name is free again
}

// Twips are 15 to the pixel; a size is rounded to whole pixels, and only a new
// size resizes.
TEST_F(FormTest, ExtenderGeometryIsInTwipsAndMoveResizesOnlyOnNewSize) {
  Site& site = form.AddControl(probe, "P", 10, 20, 30, 40);
  EXPECT_EQ((std::vector<int32_t>{site.TwipsPerPixelX(), site.TwipsPerPixelY(), site.Left(),
                                  site.Top(), site.Width(), site.Height()}),
            (std::vector<int32_t>{15, 15, 150, 300, 450, 600}));
  probe->clear();
  site.Move(-75, 1500, 450, 600);
  EXPECT_TRUE(probe->calls.empty());
  EXPECT_EQ(site.Bounds(), (RectL{-5, 100, 25, 140}));
  site.Move(0, 0, 307, 7);   // 20.47 and 0.47 pixels
  site.Move(0, 0, 308, 38);  // 20.53 and 2.53 pixels
  EXPECT_EQ(probe->calls, (Calls{"Resize 20x0", "Resize 21x3"}));
  EXPECT_EQ(site.Surface().ScaleWidth(), 21);
  errorOf(errInvalidPropertyValue, [&] { site.Move(0, 0, -15, 15); });
}

TEST_F(FormTest, WindowRectFollowsTheFormAndTheParents) {
  form.MoveWindow(100, 50);
  Site& outer = form.AddControl(probe, "Outer", 10, 20, 60, 40);
  ControlHost& inner = outer.AddChild(std::make_shared<Probe>(), "Inner", 5, 6, 7, 8);
  EXPECT_EQ(outer.WindowRect(), (RectL{110, 70, 170, 110}));
  EXPECT_EQ(inner.WindowRect(), (RectL{115, 76, 122, 84}));
  EXPECT_EQ(inner.Left(), 75);  // twips relative to the parent
  EXPECT_EQ(inner.ScreenSize(), (SizeL{1024, 768}));
  system->SetCursor(3, 4);
  EXPECT_EQ(inner.CursorPos(), (PointL{3, 4}));
}

TEST_F(FormTest, ImageShowsVisibleSitesAtTheirPlacesChildrenClippedToTheParent) {
  form.BackColor(0x00FF00);
  Site& low = form.AddControl(std::make_shared<Probe>(0x0000FF), "Low", 10, 10, 20, 20);
  form.AddControl(std::make_shared<Probe>(0xFF0000), "High", 20, 20, 20, 20);
  // The child reaches 5 pixels past its parent's right edge.
  low.AddChild(std::make_shared<Probe>(0xFFFFFF), "Part", 15, 0, 10, 5);
  form.AddControl(std::make_shared<Probe>(0x000000), "Hidden", 0, 0, 5, 5).Visible(false);
  const Canvas& image = form.Image();
  EXPECT_EQ(image.ScaleWidth(), 640);
  EXPECT_EQ(image.PixelRGB(0, 0), 0x00FF00u);    // background where the hidden one is
  EXPECT_EQ(image.PixelRGB(10, 15), 0xFF0000u);  // Low (OLE 0x0000FF is red)
  EXPECT_EQ(image.PixelRGB(25, 25), 0x0000FFu);  // High, added later, on top
  EXPECT_EQ(image.PixelRGB(29, 12), 0xFFFFFFu);  // the part over its parent
  EXPECT_EQ(image.PixelRGB(32, 12), 0x00FF00u);  // cut off beyond the parent
}

}  // namespace
}  // namespace velt
