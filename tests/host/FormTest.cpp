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
#include "velt/platform/PopupWindow.hpp"
#include "velt/platform/Timer.hpp"

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

// A control's ambient font is a copy of the form's; a part's is its parent's own.
TEST_F(FormTest, NewControlsAreInitializedThenGetDefaultsThenAreResized) {
  auto font = std::make_shared<Font>("DejaVu Sans", 9);
  form.Font(font);
  Site& site = form.AddControl(probe, "Probe1", 10, 20, 30, 40);
  EXPECT_EQ(probe->calls, (Calls{"Initialize", "InitProperties", "Resize 30x40"}));
  EXPECT_EQ(probe->caption, "Probe1");
  site.AmbientFont()->Bold(true);
  EXPECT_FALSE(font->Bold());

  auto part = std::make_shared<Probe>();
  ControlHost& child = site.AddChild(part, "Button1", 1, 2, 3, 4);
  EXPECT_EQ(part->calls, (Calls{"Initialize", "InitProperties", "Resize 3x4"}));
  EXPECT_EQ(child.AmbientFont(), site.Font());
  errorOf(errKeyAlreadyExists,
          [&] { site.AddChild(std::make_shared<Probe>(), "Button1", 0, 0, 1, 1); });
}

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
}

TEST_F(FormTest, BadPlacementsAndFailedCreationsLeaveNoControlBehind) {
  errorOf(errObjectNotSet, [&] { form.AddControl(nullptr, "X", 0, 0, 1, 1); });
  errorOf(errInvalidProcedureCall, [&] { form.AddControl(probe, "", 0, 0, 1, 1); });
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

// Twips are 15 to the pixel, a part's relative to its parent; a size is
// rounded to whole pixels, and only a new size resizes. WindowRect is in
// screen pixels.
TEST_F(FormTest, ExtenderGeometryIsInTwipsAndMoveResizesOnlyOnNewSize) {
  form.MoveWindow(100, 50);
  Site& site = form.AddControl(probe, "P", 10, 20, 30, 40);
  ControlHost& inner = site.AddChild(std::make_shared<Probe>(), "Inner", 5, 6, 7, 8);
  EXPECT_EQ((std::vector<int32_t>{site.Left(), site.Top(), site.Width(), site.Height()}),
            (std::vector<int32_t>{150, 300, 450, 600}));
  EXPECT_EQ(inner.Left(), 75);
  EXPECT_EQ(inner.WindowRect(), (RectL{115, 76, 122, 84}));
  probe->clear();
  site.Move(-75, 1500, 450, 600);
  EXPECT_TRUE(probe->calls.empty());
  EXPECT_EQ(site.Bounds(), (RectL{-5, 100, 25, 140}));
  site.Move(0, 0, 307, 7);   // 20.47 and 0.47 pixels
  site.Move(0, 0, 308, 38);  // 20.53 and 2.53 pixels
  EXPECT_EQ(probe->calls, (Calls{"Resize 20x0", "Resize 21x3"}));
  errorOf(errInvalidPropertyValue, [&] { site.Move(0, 0, -15, 15); });
}

TEST_F(FormTest, ImageShowsVisibleSitesAtTheirPlacesChildrenClippedToTheParent) {
  form.BackColor(0x00FF00);
  Site& low = form.AddControl(std::make_shared<Probe>(0x0000FF), "Low", 10, 10, 20, 20);
  form.AddControl(std::make_shared<Probe>(0xFF0000), "High", 20, 20, 20, 20);
  low.AddChild(std::make_shared<Probe>(0xFFFFFF), "Part", 15, 0, 10, 5);  // 5 pixels too wide
  form.AddControl(std::make_shared<Probe>(0x000000), "Hidden", 0, 0, 5, 5).Visible(false);
  const Canvas& image = form.Image();
  EXPECT_EQ(image.PixelRGB(0, 0), 0x00FF00u);    // background where the hidden one is
  EXPECT_EQ(image.PixelRGB(10, 15), 0xFF0000u);  // Low (OLE 0x0000FF is red)
  EXPECT_EQ(image.PixelRGB(25, 25), 0x0000FFu);  // High, added later, on top
  EXPECT_EQ(image.PixelRGB(29, 12), 0xFFFFFFu);  // the part over its parent
  EXPECT_EQ(image.PixelRGB(32, 12), 0x00FF00u);  // cut off beyond the parent
}

// ---- Handlers that remove their own control or destroy the form. Run these
// under the address sanitizer: a fault shows as a use after free.

class LifetimeTest : public ::testing::Test {
 protected:
  LifetimeTest() {
    auto probe = std::make_shared<Probe>();
    site = &form->AddControl(probe, "P", 0, 0, 50, 50);
    weakProbe = probe;
    raw = probe.get();
  }
  void clickAt(int32_t x, int32_t y) {
    system->PostMouseDown(1, x, y);
    system->PostMouseUp(1, x, y);
    system->RunUntilIdle();
  }

  std::shared_ptr<HeadlessWindowSystem> system = std::make_shared<HeadlessWindowSystem>();
  std::unique_ptr<Form> form = std::make_unique<Form>(system);
  Site* site = nullptr;
  std::weak_ptr<Probe> weakProbe;
  Probe* raw = nullptr;
};

TEST_F(LifetimeTest, ControlRemovedFromItsOwnHandlerLivesUntilTheHandlerReturns) {
  bool aliveInside = false;
  raw->onMouseDown = [&] {
    form->RemoveControl("P");
    aliveInside = !weakProbe.expired();
  };
  clickAt(5, 5);  // the release goes nowhere: the capture holder is gone
  EXPECT_TRUE(aliveInside);
  EXPECT_TRUE(weakProbe.expired());
  EXPECT_EQ(form->FindSite("P"), nullptr);
  EXPECT_EQ(form->FocusedSite(), nullptr);
}

TEST_F(LifetimeTest, FormDestroyedFromAControlHandler) {
  raw->onMouseUp = [&] { form.reset(); };  // the probe goes on after its handler
  system->PostMouseDown(1, 5, 5);
  system->PostMouseUp(1, 5, 5);
  system->PostMouseMove(6, 6);  // after the form: nobody
  system->RunUntilIdle();
  EXPECT_TRUE(weakProbe.expired());
  EXPECT_TRUE(system->Stack().empty());
}

TEST_F(LifetimeTest, FormHoldingTheOnlyWindowSystemDestroyedDuringItsDoEvents) {
  std::weak_ptr<HeadlessWindowSystem> weakSystem = system;
  system->PostMouseDown(1, 5, 5);
  raw->onMouseDown = [&] { form.reset(); };
  system.reset();  // the form holds the last reference now
  form->DoEvents();
  EXPECT_TRUE(weakSystem.expired());
  EXPECT_TRUE(weakProbe.expired());
}

TEST_F(LifetimeTest, TimerHandlerRemovesItsControlThenTheFormGoesInAnother) {
  std::shared_ptr<Timer> timer = site->CreateTimer("MousePos");
  timer->Interval(1);
  timer->Enabled(true);
  Connection removing = timer->Tick.connect([&] { form->RemoveControl("P"); });
  Connection after = timer->Tick.connect([&] { raw->paint(); });  // the control goes on
  system->AdvanceClock(3);
  EXPECT_TRUE(weakProbe.expired());

  auto other = std::make_shared<Probe>();
  std::shared_ptr<Timer> closer = form->AddControl(other, "Q", 0, 0, 5, 5).CreateTimer("T");
  closer->Interval(2);
  closer->Enabled(true);
  Connection closing = closer->Tick.connect([&] {
    form.reset();
    other->paint();
    other->host->DoEvents();  // re-entering the event loop from the dying form's tick
  });
  system->PostMouseMove(1, 1);
  system->AdvanceClock(5);
  EXPECT_EQ(form, nullptr);
  EXPECT_EQ(other->calls.back(), "Terminate");
  EXPECT_EQ(system->Timers().Count(), 0u);
}

// The control owns its pop-up and handles its events, as a menu does.
TEST_F(LifetimeTest, PopupClickHandlerRemovesTheControlThatOwnsThePopup) {
  std::shared_ptr<PopupWindow> popup = site->CreatePopup("Menu");
  popup->Move(100, 100, 20, 20);
  popup->Show(true);
  std::weak_ptr<PopupWindow> weakPopup = popup;
  auto click = std::make_shared<Connection>();
  *click = popup->Click.connect([&, window = popup.get()] {
    form->RemoveControl("P");
    window->Show(false);  // still valid: the removal waits for the event to end
  });
  raw->onMouseDown = [popup, click] {};  // the control keeps both alive
  popup.reset();
  click.reset();
  clickAt(105, 105);
  EXPECT_TRUE(weakProbe.expired());
  EXPECT_TRUE(weakPopup.expired());
}

TEST_F(LifetimeTest, PartEventRemovesTheCompositeControl) {
  auto part = std::make_shared<Probe>();
  site->AddChild(part, "Button1", 10, 10, 10, 10);
  std::weak_ptr<Probe> weakPart = part;
  part->onMouseDown = [&] {
    form->RemoveControl("P");
    raw->paint();  // the parent handling its part's event goes on
  };
  part.reset();
  clickAt(15, 15);
  EXPECT_TRUE(weakPart.expired());
  EXPECT_TRUE(weakProbe.expired());
}

}  // namespace
}  // namespace velt
