#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "velt/platform/CalendarDate.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Geometry.hpp"

namespace velt {

class Canvas;
class Clipboard;
class Font;
class Picture;
class PopupWindow;
class Timer;
class UserControl;
class Variant;

// The container's services for one control: what a site gives the control it
// holds. Positions exchanged with the container are twips; everything drawn or
// hit-tested is pixels of the control's own surface.
class ControlHost {
 public:
  virtual ~ControlHost() = default;

  // The control's persistent drawing surface, sized to the control in pixels.
  virtual Canvas& Surface() = 0;

  // Ambient properties of the container.
  virtual std::string AmbientDisplayName() const = 0;
  virtual std::shared_ptr<velt::Font> AmbientFont() const = 0;

  // Tells the container a stored property changed, so it saves it.
  virtual void PropertyChanged(const std::string& propertyName) = 0;

  // Told of every event the control raises, with the arguments as they are
  // passed to the handlers, just before the handlers run.
  virtual void EventRaised(const std::string& eventName, std::span<const Variant> arguments) = 0;

  // Container-side (extender) properties of the control.
  virtual bool Enabled() const = 0;
  virtual void Enabled(bool enabled) = 0;
  virtual std::shared_ptr<velt::Font> Font() const = 0;
  virtual void Font(std::shared_ptr<velt::Font> font) = 0;  // by reference; nullptr is error 91
  virtual bool Visible() const = 0;
  virtual void Visible(bool visible) = 0;
  virtual int32_t Left() const = 0;  // twips, relative to the parent
  virtual int32_t Top() const = 0;
  virtual int32_t Width() const = 0;
  virtual int32_t Height() const = 0;
  // Moves and sizes the control (twips); a new size resizes the surface and
  // calls the control's Resize.
  virtual void Move(int32_t left, int32_t top, int32_t width, int32_t height) = 0;

  // The pointer over the control. MousePointer (0..15 or 99, error 380
  // otherwise) and MouseIcon are container-side properties; where MousePointer
  // is mpDefault the control's own shape shows, which it sets with
  // PointerShape (any MousePointerShape: a hyperlink's hand, a text box's
  // I-beam). A part showing mpDefault shows what the control it sits on shows.
  virtual int16_t MousePointer() const = 0;
  virtual void MousePointer(int16_t shape) = 0;
  virtual std::shared_ptr<Picture> MouseIcon() const = 0;
  virtual void MouseIcon(std::shared_ptr<Picture> icon) = 0;
  virtual int16_t PointerShape() const = 0;
  virtual void PointerShape(int16_t shape) = 0;

  // Focus and capture. The host holds the mouse capture while a button is held
  // on the control, so the release arrives even outside it.
  virtual void SetFocus() = 0;
  virtual bool HasFocus() const = 0;

  // Services.
  virtual std::shared_ptr<Timer> CreateTimer(const std::string& name) = 0;
  // Lets pending input, posted work and due timers run once.
  virtual void DoEvents() = 0;
  virtual int32_t TwipsPerPixelX() const = 0;
  virtual int32_t TwipsPerPixelY() const = 0;
  virtual SizeL ScreenSize() const = 0;  // pixels
  virtual PointL CursorPos() const = 0;  // the pointer, screen pixels
  // Non-zero while the key or mouse button is held (1 left, 2 right, 4 middle).
  virtual int16_t AsyncKeyState(int32_t virtualKey) const = 0;
  virtual RectL WindowRect() const = 0;  // the control on screen, pixels
  // Today's date as the window system's clock tells it, and a handler called
  // when the window system's date changes (for as long as the connection is kept).
  virtual CalendarDate Today() const = 0;
  virtual Connection ConnectTodayChanged(std::function<void()> handler) = 0;
  // Opens a document or address with the desktop's opener (see
  // Shell::Execute for the arguments and the answer). A window system without
  // a desktop records the request instead and answers that it succeeded.
  virtual int32_t ShellExecute(const std::string& operation, const std::string& file,
                               const std::string& parameters, const std::string& directory,
                               int32_t showCmd) = 0;
  // The window system's clipboard (the desktop's, or one in memory headless).
  virtual velt::Clipboard& Clipboard() = 0;

  // Parts of composite controls. AddChild sites a control on this control's
  // surface and runs its creation (Initialize, InitProperties, Resize) with the
  // given name as its ambient display name; the returned host lives as long as
  // this control. CreatePopup makes a top-level window owned by the form.
  virtual ControlHost& AddChild(std::shared_ptr<UserControl> control, const std::string& name,
                                int32_t left, int32_t top, int32_t width, int32_t height) = 0;
  virtual std::shared_ptr<PopupWindow> CreatePopup(const std::string& name) = 0;
};

}  // namespace velt
