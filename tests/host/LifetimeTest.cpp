// Handlers that remove their own control or destroy the form. Run these under
// the address sanitizer: a fault shows as a use after free, not as a failure.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/Probe.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/PopupWindow.hpp"
#include "velt/platform/Timer.hpp"

namespace velt {
namespace {

using testing::Probe;
using Calls = std::vector<std::string>;

class LifetimeTest : public ::testing::Test {
 protected:
  LifetimeTest() {
    auto probe = std::make_shared<Probe>();
    form->AddControl(probe, "P", 0, 0, 50, 50);
    weakProbe = probe;
    raw = probe.get();
  }

  std::shared_ptr<HeadlessWindowSystem> system = std::make_shared<HeadlessWindowSystem>();
  std::unique_ptr<Form> form = std::make_unique<Form>(system);
  std::weak_ptr<Probe> weakProbe;
  Probe* raw = nullptr;
};

TEST_F(LifetimeTest, ControlRemovedFromItsOwnHandlerLivesUntilTheHandlerReturns) {
  bool aliveInside = false;
  raw->onMouseDown = [&] {
    form->RemoveControl("P");
    aliveInside = !weakProbe.expired();
  };
  system->PostMouseDown(1, 5, 5);
  system->PostMouseUp(1, 5, 5);  // goes nowhere: the capture holder is gone
  system->RunUntilIdle();
  EXPECT_TRUE(aliveInside);
  EXPECT_TRUE(weakProbe.expired());
  EXPECT_EQ(form->FindSite("P"), nullptr);
  EXPECT_EQ(form->FocusedSite(), nullptr);
}

TEST_F(LifetimeTest, FormDestroyedFromAControlHandler) {
  int continued = 0;
  raw->onMouseUp = [&] {
    form.reset();
    continued = raw->continued;  // the probe itself is still there
  };
  system->PostMouseDown(1, 5, 5);
  system->PostMouseUp(1, 5, 5);
  system->PostMouseMove(6, 6);  // after the form: nobody
  system->RunUntilIdle();
  EXPECT_EQ(continued, 0);
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
  Site& site = *form->FindSite("P");
  std::shared_ptr<Timer> timer = site.CreateTimer("MousePos");
  timer->Interval(1);
  timer->Enabled(true);
  Connection removing = timer->Tick.connect([&] { form->RemoveControl("P"); });
  Connection after = timer->Tick.connect([&] { raw->paint(); });  // the control goes on
  system->AdvanceClock(3);
  EXPECT_TRUE(weakProbe.expired());

  auto other = std::make_shared<Probe>();
  Site& otherSite = form->AddControl(other, "Q", 0, 0, 5, 5);
  std::shared_ptr<Timer> closer = otherSite.CreateTimer("T");
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
  EXPECT_TRUE(other->calls.back() == "Terminate");
  EXPECT_EQ(system->Timers().Count(), 0u);
}

TEST_F(LifetimeTest, PopupClickHandlerRemovesTheControlThatOwnsThePopup) {
  Site& site = *form->FindSite("P");
  std::shared_ptr<PopupWindow> popup = site.CreatePopup("Menu");
  popup->Move(100, 100, 20, 20);
  popup->Show(true);
  std::weak_ptr<PopupWindow> weakPopup = popup;
  // The control owns its pop-up and handles its events, as a menu does.
  struct Menu {
    std::shared_ptr<PopupWindow> window;
    std::vector<Connection> connections;
    int clicks = 0;
  };
  auto menu = std::make_shared<Menu>();
  menu->window = std::move(popup);
  menu->connections.push_back(menu->window->Click.connect([&, m = menu.get()] {
    form->RemoveControl("P");
    m->window->Show(false);  // still valid: the removal waits for the event to end
    ++m->clicks;
  }));
  raw->onMouseDown = [menu] {};  // the control keeps the menu alive
  menu.reset();
  system->PostMouseDown(1, 105, 105);
  system->PostMouseUp(1, 105, 105);
  system->RunUntilIdle();
  EXPECT_TRUE(weakProbe.expired());
  EXPECT_TRUE(weakPopup.expired());
}

TEST_F(LifetimeTest, PartEventRemovesTheCompositeControl) {
  Site& site = *form->FindSite("P");
  auto part = std::make_shared<Probe>();
  site.AddChild(part, "Button1", 10, 10, 10, 10);
  std::weak_ptr<Probe> weakPart = part;
  part->onMouseDown = [&] {
    form->RemoveControl("P");
    raw->paint();  // the parent handling its part's event goes on
  };
  part.reset();
  system->PostMouseDown(1, 15, 15);
  system->RunUntilIdle();
  EXPECT_TRUE(weakPart.expired());
  EXPECT_TRUE(weakProbe.expired());
}

}  // namespace
}  // namespace velt
