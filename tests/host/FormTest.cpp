#include "velt/host/Form.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/Probe.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"

namespace velt {
namespace {

using testing::Probe;
using Calls = std::vector<std::string>;

int32_t errorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.Number();
  }
  return 0;
}

class FormTest : public ::testing::Test {
 protected:
  std::shared_ptr<HeadlessWindowSystem> system = std::make_shared<HeadlessWindowSystem>();
  Form form{system};
};

TEST_F(FormTest, NewControlIsInitializedThenGetsDefaultsThenResized) {
  auto font = std::make_shared<Font>("DejaVu Sans", 9);
  form.Font(font);
  auto probe = std::make_shared<Probe>();
  Site& site = form.AddControl(probe, "Probe1", 10, 20, 30, 40);
  EXPECT_EQ(probe->calls, (Calls{"Initialize", "InitProperties", "Resize 30x40"}));
  EXPECT_EQ(probe->host, &site);
  EXPECT_EQ(probe->caption, "Probe1");  // ambient display name
  // A copy of the form's font: changing it leaves the form's alone.
  std::shared_ptr<Font> ambient = site.AmbientFont();
  EXPECT_NE(ambient, font);
  EXPECT_EQ(ambient->Name(), "DejaVu Sans");
  ambient->Bold(true);
  EXPECT_FALSE(font->Bold());
  EXPECT_EQ(site.Font()->Name(), "DejaVu Sans");
}

TEST_F(FormTest, StoredControlReadsACopyOfItsBag) {
  PropertyBag stored;
  stored.WriteProperty("Caption", "Saved", "");
  auto probe = std::make_shared<Probe>();
  Site& site = form.AddControl(probe, "Probe1", 0, 0, 8, 8, &stored);
  EXPECT_EQ(probe->calls, (Calls{"Initialize", "ReadProperties Saved", "Resize 8x8"}));
  site.Bag().WriteProperty("Caption", "Changed", "");
  EXPECT_EQ(stored.ReadProperty("Caption").ToString(), "Saved");

  probe->caption = "Written";
  PropertyBag saved = site.Save();
  EXPECT_EQ(saved.ReadProperty("Caption").ToString(), "Written");
  EXPECT_EQ(site.Bag().ReadProperty("Caption").ToString(), "Written");
  PropertyBag other;
  form.WriteProperties(site, other);
  EXPECT_EQ(other.ReadProperty("Caption").ToString(), "Written");
}

TEST_F(FormTest, FailedCreationLeavesNoControlBehind) {
  auto probe = std::make_shared<Probe>();
  probe->onReadProperties = [] { throw Error(errTypeMismatch, "Caption is no string"); };
  PropertyBag stored;
  EXPECT_EQ(errorOf([&] { form.AddControl(probe, "Bad", 0, 0, 5, 5, &stored); }), errTypeMismatch);
  EXPECT_EQ(form.FindSite("Bad"), nullptr);
  EXPECT_NO_THROW(form.Add<Probe>("Bad", 0, 0, 5, 5));  // the name is free again
}

TEST_F(FormTest, BadPlacementsAreRefused) {
  auto probe = std::make_shared<Probe>();
  EXPECT_EQ(errorOf([&] { form.AddControl(nullptr, "X", 0, 0, 1, 1); }), errObjectNotSet);
  EXPECT_EQ(errorOf([&] { form.AddControl(probe, "", 0, 0, 1, 1); }), errInvalidProcedureCall);
  EXPECT_EQ(errorOf([&] { form.AddControl(probe, "X", 0, 0, -1, 1); }), errInvalidPropertyValue);
  EXPECT_EQ(errorOf([&] { form.AddControl(probe, "X", 0, 0, 1, 20000); }), errInvalidPropertyValue);
  EXPECT_EQ(errorOf([&] { form.AddControl(probe, "X", 2147483000, 0, 16000, 1); }), errOverflow);
  form.Add<Probe>("X", 0, 0, 1, 1);
  EXPECT_EQ(errorOf([&] { form.Add<Probe>("X", 0, 0, 1, 1); }), errKeyAlreadyExists);
  EXPECT_EQ(errorOf([&] { form.RemoveControl("Nobody"); }), errInvalidProcedureCall);
  EXPECT_TRUE(probe->calls.empty());
}

TEST_F(FormTest, ExtenderGeometryIsInTwipsAndMoveResizesOnlyOnNewSize) {
  auto probe = std::make_shared<Probe>();
  Site& site = form.AddControl(probe, "P", 10, 20, 30, 40);
  EXPECT_EQ(site.TwipsPerPixelX(), 15);
  EXPECT_EQ(site.TwipsPerPixelY(), 15);
  EXPECT_EQ(site.Left(), 150);
  EXPECT_EQ(site.Top(), 300);
  EXPECT_EQ(site.Width(), 450);
  EXPECT_EQ(site.Height(), 600);
  probe->clear();

  site.Move(-75, 1500, 450, 600);  // same size: no Resize
  EXPECT_TRUE(probe->calls.empty());
  EXPECT_EQ(site.Bounds(), (RectL{-5, 100, 25, 140}));

  site.Move(0, 0, 307, 7);   // 20.47 and 0.47 pixels
  site.Move(0, 0, 308, 38);  // 20.53 and 2.53 pixels
  EXPECT_EQ(probe->calls, (Calls{"Resize 20x0", "Resize 21x3"}));
  EXPECT_EQ(site.Surface().ScaleWidth(), 21);
  EXPECT_EQ(errorOf([&] { site.Move(0, 0, -15, 15); }), errInvalidPropertyValue);
}

TEST_F(FormTest, WindowRectFollowsTheFormAndTheParents) {
  form.MoveWindow(100, 50);
  Site& outer = form.AddControl(std::make_shared<Probe>(), "Outer", 10, 20, 60, 40);
  ControlHost& inner = outer.AddChild(std::make_shared<Probe>(), "Inner", 5, 6, 7, 8);
  EXPECT_EQ(outer.WindowRect(), (RectL{110, 70, 170, 110}));
  EXPECT_EQ(inner.WindowRect(), (RectL{115, 76, 122, 84}));
  EXPECT_EQ(inner.Left(), 75);  // twips relative to the parent
  EXPECT_EQ(inner.ScreenSize(), (SizeL{1024, 768}));
  system->SetCursor(3, 4);
  EXPECT_EQ(inner.CursorPos(), (PointL{3, 4}));
}

TEST_F(FormTest, PartsShareTheParentsFontAndAreCreatedLikeControls) {
  auto parentProbe = std::make_shared<Probe>();
  Site& parent = form.AddControl(parentProbe, "Parent", 0, 0, 50, 50);
  auto childProbe = std::make_shared<Probe>();
  ControlHost& child = parent.AddChild(childProbe, "Button1", 1, 2, 3, 4);
  EXPECT_EQ(childProbe->calls, (Calls{"Initialize", "InitProperties", "Resize 3x4"}));
  EXPECT_EQ(childProbe->caption, "Button1");
  EXPECT_EQ(child.AmbientFont(), parent.Font());
  EXPECT_EQ(parent.Children().size(), 1u);
  EXPECT_EQ(errorOf([&] { parent.AddChild(std::make_shared<Probe>(), "Button1", 0, 0, 1, 1); }),
            errKeyAlreadyExists);
}

TEST_F(FormTest, SiteRecordsChangedPropertiesAndPassesEventsOn) {
  Site& site = form.AddControl(std::make_shared<Probe>(), "P", 0, 0, 5, 5);
  site.PropertyChanged("BackColor");
  site.PropertyChanged("Caption");
  EXPECT_EQ(site.ChangedProperties(), (Calls{"BackColor", "Caption"}));
  site.ClearChangedProperties();
  EXPECT_TRUE(site.ChangedProperties().empty());

  std::vector<std::string> seen;
  Connection log =
      site.EventLog.connect([&](const std::string& name, std::span<const Variant> args) {
        seen.push_back(name + " " + std::to_string(args.size()) + " " + args[0].ToString());
      });
  const Variant arguments[] = {Variant(int16_t{13}), Variant(int16_t{2})};
  site.EventRaised("KeyDown", arguments);
  EXPECT_EQ(seen, (Calls{"KeyDown 2 13"}));

  EXPECT_EQ(errorOf([&] { site.Font(nullptr); }), errObjectNotSet);
  site.Enabled(false);
  site.Visible(false);
  EXPECT_FALSE(site.Enabled());
  EXPECT_FALSE(site.Visible());
}

TEST_F(FormTest, ImageShowsVisibleSitesAtTheirPlacesChildrenClippedToTheParent) {
  form.BackColor(0x00FF00);
  Site& low = form.AddControl(std::make_shared<Probe>(0x0000FF), "Low", 10, 10, 20, 20);
  form.AddControl(std::make_shared<Probe>(0xFF0000), "High", 20, 20, 20, 20);
  // The child reaches 5 pixels past its parent's right edge.
  low.AddChild(std::make_shared<Probe>(0xFFFFFF), "Part", 15, 0, 10, 5);
  Site& hidden = form.AddControl(std::make_shared<Probe>(0x000000), "Hidden", 0, 0, 5, 5);
  hidden.Visible(false);

  const Canvas& image = form.Image();
  EXPECT_EQ(image.ScaleWidth(), 640);
  EXPECT_EQ(image.PixelRGB(0, 0), 0x00FF00u);    // background where the hidden one is
  EXPECT_EQ(image.PixelRGB(10, 15), 0xFF0000u);  // Low (OLE 0x0000FF is red)
  EXPECT_EQ(image.PixelRGB(25, 25), 0x0000FFu);  // High, added later, on top
  EXPECT_EQ(image.PixelRGB(25, 12), 0xFFFFFFu);  // the part over its parent
  EXPECT_EQ(image.PixelRGB(32, 12), 0x00FF00u);  // cut off beyond the parent
  EXPECT_EQ(image.PixelRGB(29, 12), 0xFFFFFFu);
}

}  // namespace
}  // namespace velt
