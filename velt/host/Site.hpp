#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "velt/host/DispatchScope.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Geometry.hpp"
#include "velt/platform/MousePointer.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

class FormWindow;
class HostTimer;

// The place of one control on a form, or on another control as one of its
// parts: the ControlHost the control talks to. It keeps the control's surface,
// its extender properties (position and size, Enabled, Visible, Font), its
// property bag, the names of the properties it reported changed, and the
// timers and pop-ups it made, so that removing the control stops them all.
//
// The form and AddChild take pixels; the ControlHost extender properties and
// Move speak twips, 15 to the pixel.
class Site final : public ControlHost, public std::enable_shared_from_this<Site> {
 public:
  // Largest width or height of a control, in pixels.
  static constexpr int32_t kMaxSize = 16384;

  Site(FormWindow& form, Site* parent, std::string name, std::shared_ptr<UserControl> control,
       RectL bounds);
  ~Site() override;
  Site(const Site&) = delete;
  Site& operator=(const Site&) = delete;

  // Errors for a control about to be sited: 91 no control, 5 empty name,
  // 380 negative or too large size, or a position whose twips do not fit.
  static void CheckPlacement(const char* where, const UserControl* control, const std::string& name,
                             const RectL& bounds);

  // The rectangle at (left, top) of the size; error 6 when its edges overflow.
  static RectL PlacedRect(int32_t left, int32_t top, int32_t width, int32_t height);

  // Initialize, then ReadProperties of a copy of stored (InitProperties when
  // there is none), then Resize.
  void Create(const PropertyBag* stored);
  // Drops the control: Terminate (when asked), then its timers stop for good,
  // its pop-ups hide and the form lets go of them, the same for each part. The
  // site stays usable for control code still running. Returns the first error
  // a control raised on the way; closing goes on regardless.
  std::exception_ptr Close(bool terminate);
  bool Closed() const { return closed_; }
  DispatchScope EnterDispatch();

  const std::string& Name() const { return name_; }
  const std::shared_ptr<UserControl>& Control() const { return control_; }
  Site* Parent() const { return parent_; }
  const std::vector<std::shared_ptr<Site>>& Children() const { return children_; }
  Site* FindChild(const std::string& name) const;

  PropertyBag& Bag() { return bag_; }
  // Runs the control's WriteProperties into a fresh bag, keeps it as Bag() and returns it.
  PropertyBag Save();
  const std::vector<std::string>& ChangedProperties() const { return changed_; }
  void ClearChangedProperties() { changed_.clear(); }

  // Every event the control raises, with its arguments, before its handlers run.
  Event<const std::string&, std::span<const Variant>> EventLog;

  // Pixels, relative to the parent (the form's client area for a control on the form).
  RectL Bounds() const { return bounds_; }
  PointL OriginInForm() const;
  void MovePixels(int32_t left, int32_t top, int32_t width, int32_t height);
  // Not removed, and visible and enabled along with every parent.
  bool ReceivesInput() const;

  // ControlHost.
  // Handing the surface out for drawing tells the form its image may change.
  Canvas& Surface() override;
  // The surface for reading.
  const Canvas& Image() const { return surface_; }
  std::string AmbientDisplayName() const override { return name_; }
  // A control on the form gets a copy of the form's font; a part shares its
  // parent control's font object.
  std::shared_ptr<velt::Font> AmbientFont() const override;
  void PropertyChanged(const std::string& propertyName) override;
  void EventRaised(const std::string& eventName, std::span<const Variant> arguments) override;
  bool Enabled() const override { return enabled_; }
  void Enabled(bool enabled) override { enabled_ = enabled; }
  std::shared_ptr<velt::Font> Font() const override { return font_; }
  void Font(std::shared_ptr<velt::Font> font) override;
  bool Visible() const override { return visible_; }
  void Visible(bool visible) override;
  int32_t Left() const override;
  int32_t Top() const override;
  int32_t Width() const override;
  int32_t Height() const override;
  void Move(int32_t left, int32_t top, int32_t width, int32_t height) override;
  // Also takes the focus from a pop-up that has it. Error 5 when the control
  // is removed, hidden or disabled.
  int16_t MousePointer() const override { return mousePointer_; }
  void MousePointer(int16_t shape) override;
  std::shared_ptr<Picture> MouseIcon() const override { return mouseIcon_; }
  void MouseIcon(std::shared_ptr<Picture> icon) override;
  int16_t PointerShape() const override { return pointerShape_; }
  void PointerShape(int16_t shape) override;
  // What the pointer shows over this control: MousePointer, else its own
  // shape, else (mpDefault) what its parent shows.
  PointerLook Pointer() const;
  void SetFocus() override;
  bool HasFocus() const override;
  std::shared_ptr<Timer> CreateTimer(const std::string& name) override;
  void DoEvents() override;
  int32_t TwipsPerPixelX() const override;
  int32_t TwipsPerPixelY() const override;
  SizeL ScreenSize() const override;
  PointL CursorPos() const override;
  int16_t AsyncKeyState(int32_t virtualKey) const override;
  RectL WindowRect() const override;
  CalendarDate Today() const override;
  Connection ConnectTodayChanged(std::function<void()> handler) override;
  int32_t ShellExecute(const std::string& operation, const std::string& file,
                       const std::string& parameters, const std::string& directory,
                       int32_t showCmd) override;
  velt::Clipboard& Clipboard() override;
  // Left, top, width and height in pixels of this control's surface.
  ControlHost& AddChild(std::shared_ptr<UserControl> control, const std::string& name, int32_t left,
                        int32_t top, int32_t width, int32_t height) override;
  std::shared_ptr<PopupWindow> CreatePopup(const std::string& name) override;

 private:
  FormWindow& form_;
  Site* parent_;
  std::string name_;
  RectL bounds_;
  bool enabled_ = true;
  bool visible_ = true;
  bool closed_ = false;
  std::shared_ptr<velt::Font> font_;
  int16_t mousePointer_ = mpDefault;
  std::shared_ptr<Picture> mouseIcon_;
  int16_t pointerShape_ = mpDefault;
  Canvas surface_;
  PropertyBag bag_;
  std::vector<std::string> changed_;
  std::vector<std::weak_ptr<HostTimer>> timers_;
  std::vector<std::weak_ptr<PopupWindow>> popups_;
  std::vector<std::shared_ptr<Site>> children_;
  // Declared last so it goes first, while the parts it refers to still exist.
  std::shared_ptr<UserControl> control_;
};

}  // namespace velt
