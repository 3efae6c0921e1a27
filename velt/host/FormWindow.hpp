#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "velt/host/DispatchScope.hpp"
#include "velt/host/InputRouter.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Geometry.hpp"
#include "velt/platform/Types.hpp"
#include "velt/platform/WindowSystem.hpp"

namespace velt {

class Font;
class PopupWindow;
class PropertyBag;
class Site;
class UserControl;

// The core of a form: its window on the window system, its sites, input
// routing and the pop-ups its controls made. Form is the application's handle
// on it; the core is shared so that it outlives the handle while a call into
// one of its controls is still running (see DispatchScope).
class FormWindow final : public WindowSystem::FormClient,
                         public std::enable_shared_from_this<FormWindow> {
 public:
  // The default background, the classic button face.
  static constexpr OLE_COLOR kDefaultBackColor = 0x8000000F;

  FormWindow(std::shared_ptr<WindowSystem> system, std::string name, int32_t width, int32_t height);
  ~FormWindow() override;
  FormWindow(const FormWindow&) = delete;
  FormWindow& operator=(const FormWindow&) = delete;

  // Terminates and drops every control, hides and releases the pop-ups and
  // leaves the window system. Controls still running finish first.
  void Close();
  bool Closed() const { return closed_; }
  DispatchScope Enter();

  WindowSystem& System() const { return *system_; }
  const std::shared_ptr<WindowSystem>& SharedSystem() const { return system_; }
  const std::string& Name() const { return name_; }

  RectL ScreenRect() const override { return rect_; }
  void MoveWindow(int32_t x, int32_t y, int32_t width, int32_t height);  // error 380 below 0
  OLE_COLOR BackColor() const { return backColor_; }
  void BackColor(OLE_COLOR color) {
    backColor_ = color;
    Touch();
  }
  const std::shared_ptr<velt::Font>& Font() const { return font_; }
  void Font(std::shared_ptr<velt::Font> font);  // error 91 for nullptr

  // Sites a control (bounds in pixels) and runs its creation. Errors: 91 no
  // control, 5 empty name, 457 name taken, 380 bad size; an error raised by the
  // control's creation leaves the form as it was and reaches the caller.
  Site& AddSite(std::shared_ptr<UserControl> control, const std::string& name, RectL bounds,
                const PropertyBag* stored);
  void RemoveSite(const std::string& name);  // error 5 for an unknown name
  Site* FindSite(const std::string& name) const;
  const std::vector<std::shared_ptr<Site>>& Sites() const { return sites_; }
  InputRouter& Router() { return router_; }
  const InputRouter& Router() const { return router_; }

  // A pop-up whose events run inside this form's dispatch scopes; an owned one
  // is held by the form until its control is removed or the form closes.
  std::shared_ptr<PopupWindow> CreatePopup(const std::string& name, bool owned);
  void ReleasePopup(const PopupWindow& popup);
  size_t PopupCount() const { return popups_.size(); }
  // Keeps a closed site alive until the outermost dispatch scope ends.
  void Retire(std::shared_ptr<Site> site);

  // The client area: background, then every visible site at its place,
  // children over their parent and cut to its rectangle.
  const Canvas& Image() override;

  // A press on the form itself, where no control took it (nor holds the
  // capture): the button, the shift state and the client pixel. Raised after
  // the press was routed; Form hands it to the application.
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseDown;

  void OnMouseDown(int16_t button, int16_t shift, int32_t x, int32_t y) override;
  void OnMouseMove(int16_t button, int16_t shift, int32_t x, int32_t y) override;
  void OnMouseUp(int16_t button, int16_t shift, int32_t x, int32_t y) override;
  void OnDblClick(int16_t button, int16_t shift, int32_t x, int32_t y) override;
  void OnKeyDown(int16_t keyCode, int16_t shift) override;
  void OnKeyUp(int16_t keyCode, int16_t shift) override;
  void OnKeyPress(int16_t charCode) override;
  void OnComposition(const std::string& text) override;
  void OnMouseWheel(int16_t notches, int16_t shift, int32_t x, int32_t y) override;
  std::string Caption() const override { return name_; }
  std::optional<uint64_t> ImageStamp() const override { return stamp_; }
  PointerLook PointerAt(int32_t x, int32_t y) const override;
  // A control changed what the pointer shows over it.
  void PointerChanged();
  // Something the image shows may have changed: a surface was handed out for
  // drawing, a control moved, showed, hid, came or went.
  void Touch() { ++stamp_; }
  void WindowMoved(int32_t x, int32_t y) override;
  // Tab order: the form's own controls in the order they were added, skipping
  // those that are hidden, disabled or wholly outside the client area.
  bool FocusNext(bool backward) override;
  // As desktop forms do, a form whose window shows gives the focus to its
  // first control that can take it, unless one has it already.
  void WindowShown() override;

 private:
  friend class DispatchScope;

  void enterDispatch() { ++dispatchDepth_; }
  void leaveDispatch();
  void compose(const std::vector<std::shared_ptr<Site>>& sites, PointL origin, const RectL& clip);

  std::shared_ptr<WindowSystem> system_;  // first: the rest may need it while going
  std::string name_;
  RectL rect_;
  OLE_COLOR backColor_ = kDefaultBackColor;
  std::shared_ptr<velt::Font> font_;
  Canvas image_;
  InputRouter router_;
  std::vector<std::shared_ptr<PopupWindow>> popups_;
  std::vector<std::shared_ptr<Site>> sites_;            // bottom to top
  std::unordered_map<std::string, Site*> sitesByName_;  // the same sites, for lookups by name
  std::vector<std::shared_ptr<Site>> retired_;
  int32_t dispatchDepth_ = 0;
  uint64_t stamp_ = 0;
  bool closed_ = false;
};

}  // namespace velt
