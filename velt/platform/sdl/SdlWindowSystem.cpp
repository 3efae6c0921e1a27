#include "velt/platform/sdl/SdlWindowSystem.hpp"

#include <SDL.h>

#include <algorithm>
#include <climits>
#include <optional>
#include <utility>

#include "velt/platform/Error.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/SteadyClock.hpp"
#include "velt/platform/sdl/SdlClipboard.hpp"
#include "velt/platform/sdl/SdlFrame.hpp"
#include "velt/platform/sdl/SdlKeyMap.hpp"
#include "velt/platform/sdl/SdlPopupWindow.hpp"
#include "velt/platform/sdl/SdlVideo.hpp"

namespace velt {

namespace {

constexpr int16_t kVkTab = 9;
// As on the desktops the controls come from, whose window timers fire on the
// system's 15.6 ms tick, a window timer fires at most this often: a 1 ms
// hover timer would otherwise wake the loop a thousand times a second.
constexpr int32_t kTimerFloorMs = 16;
// The display is read at least this often even while it seems quiet.
constexpr int64_t kQuietReadMs = 100;
// Bounds one DoEvents when input floods in faster than it is handled.
constexpr int kMaxEventsPerPump = 256;

int16_t buttonOf(uint8_t sdlButton) {
  switch (sdlButton) {
    case SDL_BUTTON_LEFT:
      return 1;
    case SDL_BUTTON_RIGHT:
      return 2;
    case SDL_BUTTON_MIDDLE:
      return 4;
    default:
      return 0;
  }
}

int32_t buttonsOf(uint32_t sdlMask) {
  int32_t buttons = 0;
  if (sdlMask & SDL_BUTTON_LMASK) buttons |= 1;
  if (sdlMask & SDL_BUTTON_RMASK) buttons |= 2;
  if (sdlMask & SDL_BUTTON_MMASK) buttons |= 4;
  return buttons;
}

int16_t currentShift() {
  return SdlKeyMap::ShiftState(static_cast<uint16_t>(SDL_GetModState()));
}

bool onEdge(const RectL& rect, int32_t x, int32_t y) {
  return x <= 0 || y <= 0 || x >= rect.Width() - 1 || y >= rect.Height() - 1;
}

}  // namespace

SdlWindowSystem::SdlWindowSystem(const std::string& driver)
    : WindowSystem(std::make_unique<SteadyClock>()),
      video_(std::make_unique<SdlVideo>(driver)),
      clipboard_(std::make_unique<SdlClipboard>()) {
  SDL_Rect bounds;
  if (SDL_GetDisplayBounds(0, &bounds) == 0) screen_ = SizeL{bounds.w, bounds.h};
  TimerFloorMs(kTimerFloorMs);
}

SdlWindowSystem::~SdlWindowSystem() {
  freeCursors();
  // Pop-ups still held elsewhere lose their SDL windows now, while SDL is open.
  for (SdlPopupWindow* popup : popups_)
    popup->Orphan();
  popups_.clear();
  forms_.clear();
}

const std::string& SdlWindowSystem::Driver() const {
  return video_->Driver();
}

SizeL SdlWindowSystem::ScreenSize() const {
  SDL_Rect bounds;
  if (SDL_GetDisplayBounds(0, &bounds) == 0) return SizeL{bounds.w, bounds.h};
  return screen_;
}

PointL SdlWindowSystem::desktopPointer(int32_t* buttons) const {
  int x = 0;
  int y = 0;
  const uint32_t mask = SDL_GetGlobalMouseState(&x, &y);
  if (buttons) *buttons = buttonsOf(mask);
  return PointL{x, y};
}

PointL SdlWindowSystem::CursorPos() const {
  return pointerTracked() ? cursor_ : desktopPointer(nullptr);
}

int32_t SdlWindowSystem::MouseButtons() const {
  if (pointerTracked()) return buttons_;
  int32_t buttons = 0;
  desktopPointer(&buttons);
  return buttons;
}

velt::Clipboard& SdlWindowSystem::Clipboard() {
  return *clipboard_;
}

void SdlWindowSystem::formAttached(FormClient& form) {
  FormFrame entry;
  entry.form = &form;
  entry.frame = std::make_unique<SdlFrame>(SdlFrame::Kind::Form, form.Caption(), form.ScreenRect());
  displayWait_.Attach(entry.frame->Window());
  forms_.push_back(std::move(entry));
  pacer_.Invalidate();
}

void SdlWindowSystem::formDetached(FormClient& form) {
  auto it = std::find_if(forms_.begin(), forms_.end(),
                         [&form](const FormFrame& entry) { return entry.form == &form; });
  if (it == forms_.end()) return;
  const uint32_t id = it->frame->Id();
  if (pointerWindow_ == id) pointerWindow_ = 0;
  if (enteredWindow_ == id) enteredWindow_ = 0;
  forms_.erase(it);
}

void SdlWindowSystem::FormChanged(FormClient& form) {
  for (FormFrame& entry : forms_) {
    if (entry.form != &form) continue;
    entry.frame->Place(form.ScreenRect());
    entry.frame->Caption(form.Caption());
    entry.exposed = true;
  }
  pacer_.Invalidate();
}

std::shared_ptr<PopupWindow> SdlWindowSystem::makePopup(const std::string& name) {
  return std::make_shared<SdlPopupWindow>(*this, name);
}

void SdlWindowSystem::popupMade(SdlPopupWindow& popup) {
  popups_.push_back(&popup);
}

void SdlWindowSystem::popupGone(SdlPopupWindow& popup) {
  std::erase(popups_, &popup);
  const uint32_t id = popup.WindowId();
  if (pointerWindow_ == id) pointerWindow_ = 0;
  if (enteredWindow_ == id) enteredWindow_ = 0;
}

void SdlWindowSystem::popupHidden(SdlPopupWindow& popup) {
  const uint32_t id = popup.WindowId();
  if (pointerWindow_ == id) pointerWindow_ = 0;
  SDL_Window* focused = SDL_GetKeyboardFocus();
  if (focused && SDL_GetWindowID(focused) == id) giveFocusToActiveForm();
}

// ---- The event loop -----------------------------------------------------------

void SdlWindowSystem::DoEvents() {
  auto self = weak_from_this().lock();
  pumpEvents();
  runPostedWork();
  runDueTimers();
  // Only what may have painted goes to the screen (and the present compares
  // before it draws): a hover tick that changed nothing costs no present and
  // no wake-up for one.
  if (imagesMayHaveChanged()) pacer_.Invalidate();
  if (pacer_.Due(NowMs())) present(false);
}

int SdlWindowSystem::Run() {
  auto self = weak_from_this().lock();
  quit_ = false;
  while (!quit_ && anyFormOpen()) {
    DoEvents();
    if (quit_ || !anyFormOpen()) break;
    waitForWork();
  }
  return 0;
}

void SdlWindowSystem::Present() {
  auto self = weak_from_this().lock();
  present(true);
}

// Reading the display is a round of system calls. A DoEvents run from inside
// a timer tick comes in the same millisecond as the loop's own, when SDL's
// queue is as fresh as it gets, so the display is read at most once a
// millisecond, and after a sleep the display stayed quiet through only now
// and then (what the connection library read for itself cannot be seen from
// here); the queue itself is always emptied.
void SdlWindowSystem::pumpEvents() {
  const bool quiet = std::exchange(displayQuiet_, false);
  if (const int64_t now = NowMs(); now != lastPumpMs_) {
    if (!quiet || now - lastReadMs_ >= kQuietReadMs) {
      SDL_PumpEvents();
      lastReadMs_ = now;
    }
    lastPumpMs_ = now;
  }
  SDL_Event event;
  for (int i = 0; i < kMaxEventsPerPump &&
                  SDL_PeepEvents(&event, 1, SDL_GETEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT) == 1;
       ++i)
    handle(event);
  if (focusChanged_) checkFocusLeftApplication();
  if (buttons_ != 0 && pointerWindow_ == 0) releaseLostButtons();
}

// The window pressed on went away with the mouse, so its release may never
// come; the buttons the desktop no longer holds are released here instead, or
// a routine waiting for the release would wait for ever.
void SdlWindowSystem::releaseLostButtons() {
  int32_t held = 0;
  const PointL screen = desktopPointer(&held);
  const int32_t lost = buttons_ & ~held;
  if (lost == 0) return;
  cursor_ = screen;
  for (const int16_t button : {int16_t{1}, int16_t{2}, int16_t{4}}) {
    if ((lost & button) == 0) continue;
    buttons_ &= ~static_cast<int32_t>(button);
    if (buttons_ == 0) SDL_CaptureMouse(SDL_FALSE);
    deliverMouseUp(button, currentShift(), screen);
  }
}

void SdlWindowSystem::waitForWork() {
  const int64_t now = NowMs();
  std::optional<int64_t> wait;  // none: until an event arrives
  const auto within = [&wait](int64_t ms) {
    ms = std::max<int64_t>(0, ms);
    wait = wait ? std::min(*wait, ms) : ms;
  };
  if (PendingWork() != 0) within(0);
  if (std::optional<int64_t> due = Timers().NextDue()) within(*due - now);
  if (std::optional<int64_t> frame = pacer_.WaitMs(now)) within(*frame);
  if (wait && *wait == 0) return;
  // SDL reads the display before and after a wait, a round of system calls
  // that costs more than a wait of a timer period saves; such a wait sleeps
  // on the display's socket instead, which input arriving ends. A present
  // talks to the display and may leave events read on the way.
  const bool presented = std::exchange(presentedSinceWait_, false);
  if (wait && *wait <= kTimerFloorMs)
    displayQuiet_ = displayWait_.Sleep(*wait) && !presented;
  else if (wait)
    SDL_WaitEventTimeout(nullptr, static_cast<int>(std::min<int64_t>(*wait, INT_MAX)));
  else
    SDL_WaitEvent(nullptr);
}

bool SdlWindowSystem::imagesMayHaveChanged() const {
  for (const FormFrame& entry : forms_) {
    if (entry.closed) continue;
    if (entry.exposed || !entry.frame->Shown()) return true;
    const std::optional<uint64_t> stamp = entry.form->ImageStamp();
    if (!stamp || stamp != entry.presented) return true;
  }
  return std::any_of(popups_.begin(), popups_.end(),
                     [](const SdlPopupWindow* popup) { return popup->Visible(); });
}

bool SdlWindowSystem::anyFormOpen() const {
  return std::any_of(forms_.begin(), forms_.end(),
                     [](const FormFrame& entry) { return !entry.closed; });
}

void SdlWindowSystem::present(bool force) {
  std::vector<FormClient*> shown;
  for (FormFrame& entry : forms_) {
    if (entry.closed) continue;
    if (!entry.frame->Shown()) {
      entry.frame->Show(true);
      entry.exposed = true;
      shown.push_back(entry.form);
    }
    const std::optional<uint64_t> stamp = entry.form->ImageStamp();
    const bool unchanged = stamp && stamp == entry.presented && !entry.exposed && !force;
    if (!unchanged && entry.frame->Draw(entry.form->Image(), force || entry.exposed)) ++drawCount_;
    entry.presented = stamp;
    entry.exposed = false;
  }
  for (SdlPopupWindow* popup : popups_)
    if (popup->Present(force)) ++drawCount_;
  pacer_.Presented(NowMs());
  presentedSinceWait_ = true;
  // Told after the loop: the focus handlers run here may change the windows.
  for (FormClient* form : shown)
    if (formFrame(*form)) form->WindowShown();
}

// ---- Events -------------------------------------------------------------------

void SdlWindowSystem::handle(const SDL_Event& event) {
  switch (event.type) {
    case SDL_QUIT:
      quit_ = true;
      break;
    case SDL_WINDOWEVENT:
      onWindowEvent(event.window);
      break;
    case SDL_MOUSEMOTION:
      onMotion(event.motion);
      break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
      onButton(event.button, event.type == SDL_MOUSEBUTTONDOWN);
      break;
    case SDL_KEYDOWN:
    case SDL_KEYUP:
      onKey(event.key, event.type == SDL_KEYDOWN);
      break;
    case SDL_TEXTINPUT:
      onText(event.text);
      break;
    case SDL_TEXTEDITING:
      deliverComposition(event.edit.text);
      break;
    case SDL_MOUSEWHEEL:
      onWheel(event.wheel);
      break;
    default:
      break;  // touch, drops and the rest are not used
  }
}

void SdlWindowSystem::onWindowEvent(const SDL_WindowEvent& event) {
  FormFrame* entry = formFrame(event.windowID);
  SdlPopupWindow* popup = entry ? nullptr : popupFrame(event.windowID);
  if (!entry && !popup) return;
  switch (event.event) {
    case SDL_WINDOWEVENT_MOVED:
      // The desktop decides where a form's window goes; a pop-up stays where it was put.
      if (entry) {
        const RectL rect = entry->form->ScreenRect();
        if (rect.Left != event.data1 || rect.Top != event.data2)
          entry->form->WindowMoved(event.data1, event.data2);
      }
      break;
    case SDL_WINDOWEVENT_EXPOSED:
      if (entry) entry->exposed = true;
      if (popup) popup->Exposed();
      pacer_.Invalidate();
      break;
    case SDL_WINDOWEVENT_CLOSE:
      if (entry) {
        entry->closed = true;
        entry->frame->Show(false);
        if (pointerWindow_ == event.windowID) pointerWindow_ = 0;
      }
      break;
    case SDL_WINDOWEVENT_FOCUS_GAINED:
      if (popup) {
        // Without a window manager SDL hands the keyboard to every window it
        // shows; a pop-up gives it straight back.
        giveFocusToActiveForm();
      } else if (ActiveForm() != entry->form) {
        ActivateForm(*entry->form);
      }
      break;
    case SDL_WINDOWEVENT_FOCUS_LOST:
      focusChanged_ = true;
      break;
    case SDL_WINDOWEVENT_ENTER:
      pointerWindow_ = enteredWindow_ = event.windowID;
      break;
    case SDL_WINDOWEVENT_LEAVE:
      if (pointerWindow_ == event.windowID && buttons_ == 0) pointerWindow_ = 0;
      break;
    default:
      break;
  }
}

// A pop-up with the focus loses it when the keyboard leaves the application,
// as it does when another of its windows takes it.
void SdlWindowSystem::checkFocusLeftApplication() {
  focusChanged_ = false;
  if (SDL_GetKeyboardFocus() || !FocusedPopup()) return;
  if (FormClient* form = ActiveForm()) ActivateForm(*form);
}

void SdlWindowSystem::giveFocusToActiveForm() {
  const FormClient* active = ActiveForm();
  if (!active) return;
  const FormFrame* entry = formFrame(*active);
  if (entry && entry->frame->OnScreen()) SDL_SetWindowInputFocus(entry->frame->Window());
}

bool SdlWindowSystem::windowRect(uint32_t windowId, RectL& rect) {
  if (FormFrame* form = formFrame(windowId)) {
    rect = form->form->ScreenRect();
    return true;
  }
  if (SdlPopupWindow* popup = popupFrame(windowId)) {
    rect = popup->WindowRect();
    return true;
  }
  return false;
}

void SdlWindowSystem::onMotion(const SDL_MouseMotionEvent& event) {
  RectL rect;
  if (!windowRect(event.windowID, rect)) return;
  PointL screen{rect.Left + event.x, rect.Top + event.y};
  // SDL reports a crossing as a motion and pins positions outside an
  // uncaptured window to its edge; the desktop knows where the pointer is.
  const bool doubtful = enteredWindow_ == event.windowID || onEdge(rect, event.x, event.y);
  if (buttons_ == 0 && doubtful) screen = desktopPointer(nullptr);
  enteredWindow_ = 0;
  pointerWindow_ = event.windowID;
  cursor_ = screen;
  deliverMouseMove(currentShift(), screen);
}

void SdlWindowSystem::onButton(const SDL_MouseButtonEvent& event, bool down) {
  const int16_t button = buttonOf(event.button);
  if (button == 0) return;
  // A release already made up for (see releaseLostButtons) is not repeated.
  if (!down && (buttons_ & button) == 0) return;
  RectL rect;
  PointL screen = CursorPos();
  if (windowRect(event.windowID, rect)) {
    screen = PointL{rect.Left + event.x, rect.Top + event.y};
    pointerWindow_ = event.windowID;
  }
  cursor_ = screen;
  const int16_t shift = currentShift();
  if (down) {
    // Releases outside the window then still arrive, as the routing's capture expects.
    if (buttons_ == 0) SDL_CaptureMouse(SDL_TRUE);
    buttons_ |= button;
    deliverMouseDown(button, shift, screen, event.clicks);
  } else {
    buttons_ &= ~static_cast<int32_t>(button);
    if (buttons_ == 0) SDL_CaptureMouse(SDL_FALSE);
    deliverMouseUp(button, shift, screen);
  }
}

// Whole notches away from the user count positive, whichever way the desktop
// says the wheel is turned; the pointer is where the last motion left it.
void SdlWindowSystem::onWheel(const SDL_MouseWheelEvent& event) {
  const int32_t notches = event.direction == SDL_MOUSEWHEEL_FLIPPED ? -event.y : event.y;
  if (notches == 0) return;
  deliverMouseWheel(static_cast<int16_t>(std::clamp(notches, -32768, 32767)), currentShift(),
                    CursorPos());
}

void SdlWindowSystem::onKey(const SDL_KeyboardEvent& event, bool down) {
  const int16_t keyCode = SdlKeyMap::KeyCode(event.keysym.sym, event.keysym.scancode);
  if (keyCode == 0) return;
  const int16_t shift = SdlKeyMap::ShiftState(event.keysym.mod);
  if (!down) {
    deliverKeyUp(keyCode, shift);
    return;
  }
  const bool plainTab =
      keyCode == kVkTab && (shift & (SdlKeyMap::kCtrlMask | SdlKeyMap::kAltMask)) == 0;
  if (plainTab && tabMovesFocus((shift & SdlKeyMap::kShiftMask) != 0)) return;
  deliverKeyDown(keyCode, shift);
  if (const int16_t character = SdlKeyMap::ControlCharacter(keyCode, shift))
    deliverKeyPress(character);
}

bool SdlWindowSystem::tabMovesFocus(bool backward) {
  if (std::shared_ptr<PopupWindow> popup = FocusedPopup(); popup && popup->Visible()) return false;
  FormClient* form = ActiveForm();
  return form && form->FocusNext(backward);
}

void SdlWindowSystem::onText(const SDL_TextInputEvent& event) {
  // Ctrl with a key types nothing (its control character came with the key);
  // with Alt as well it is AltGr on some desktops, which does type.
  const SDL_Keymod mods = SDL_GetModState();
  if ((mods & KMOD_CTRL) && !(mods & (KMOD_ALT | KMOD_MODE))) return;
  for (const int16_t code : SdlKeyMap::TextCharacters(event.text))
    deliverKeyPress(code);
}

// ---- The pointer -----------------------------------------------------------

namespace {

// SDL has no up arrow, question arrow or icon square: those show the arrow.
SDL_SystemCursor systemCursorOf(int16_t shape) {
  switch (shape) {
    case mpCross:
      return SDL_SYSTEM_CURSOR_CROSSHAIR;
    case mpIBeam:
      return SDL_SYSTEM_CURSOR_IBEAM;
    case mpSize:
    case mpSizeAll:
      return SDL_SYSTEM_CURSOR_SIZEALL;
    case mpSizeNESW:
      return SDL_SYSTEM_CURSOR_SIZENESW;
    case mpSizeNS:
      return SDL_SYSTEM_CURSOR_SIZENS;
    case mpSizeNWSE:
      return SDL_SYSTEM_CURSOR_SIZENWSE;
    case mpSizeWE:
      return SDL_SYSTEM_CURSOR_SIZEWE;
    case mpHourglass:
      return SDL_SYSTEM_CURSOR_WAIT;
    case mpNoDrop:
      return SDL_SYSTEM_CURSOR_NO;
    case mpArrowHourglass:
      return SDL_SYSTEM_CURSOR_WAITARROW;
    case mpHand:
      return SDL_SYSTEM_CURSOR_HAND;
    default:
      return SDL_SYSTEM_CURSOR_ARROW;
  }
}

}  // namespace

// A cursor SDL cannot make (a driver without cursors) leaves the one shown.
void SdlWindowSystem::showPointer(const PointerLook& look) {
  SDL_Cursor* cursor = nullptr;
  if (look.Shape != mpCustom)
    cursor = systemCursor(look.Shape);
  else if (look.Icon)
    cursor = customCursor(look.Icon);
  else
    cursor = systemCursor(mpDefault);
  if (cursor) SDL_SetCursor(cursor);
}

SDL_Cursor* SdlWindowSystem::systemCursor(int16_t shape) {
  for (const auto& [made, cursor] : cursors_)
    if (made == shape) return cursor;
  SDL_Cursor* cursor = SDL_CreateSystemCursor(systemCursorOf(shape));
  if (cursor) cursors_.emplace_back(shape, cursor);
  return cursor;
}

// The picture's straight-alpha pixels as they are, the hot spot at its centre.
SDL_Cursor* SdlWindowSystem::customCursor(const std::shared_ptr<const Picture>& icon) {
  if (custom_ && customPicture_ == icon) return custom_;
  const Picture& picture = *icon;
  if (picture.Width() <= 0 || picture.Height() <= 0) return nullptr;
  SDL_Surface* surface = SDL_CreateRGBSurfaceWithFormatFrom(
      const_cast<uint32_t*>(picture.Pixels()), picture.Width(), picture.Height(), 32,
      picture.Width() * 4, SDL_PIXELFORMAT_ARGB8888);
  if (!surface) return nullptr;
  SDL_Cursor* cursor = SDL_CreateColorCursor(surface, picture.Width() / 2, picture.Height() / 2);
  SDL_FreeSurface(surface);
  if (!cursor) return nullptr;
  // The old one may be shown until the new one is set, so it goes after.
  SDL_Cursor* old = custom_;
  custom_ = cursor;
  customPicture_ = icon;
  SDL_SetCursor(cursor);
  if (old) SDL_FreeCursor(old);
  return cursor;
}

void SdlWindowSystem::freeCursors() {
  SDL_SetCursor(SDL_GetDefaultCursor());
  for (const auto& [shape, cursor] : cursors_)
    SDL_FreeCursor(cursor);
  cursors_.clear();
  if (custom_) SDL_FreeCursor(custom_);
  custom_ = nullptr;
  customPicture_.reset();
}

std::optional<int16_t> SdlWindowSystem::ShownShape() const {
  SDL_Cursor* shown = SDL_GetCursor();
  if (!shown) return std::nullopt;
  if (shown == custom_) return mpCustom;
  for (const auto& [shape, cursor] : cursors_)
    if (cursor == shown) return shape;
  return std::nullopt;
}

// ---- Lookups ------------------------------------------------------------------

SdlWindowSystem::FormFrame* SdlWindowSystem::formFrame(uint32_t windowId) {
  for (FormFrame& entry : forms_)
    if (entry.frame->Id() == windowId) return &entry;
  return nullptr;
}

const SdlWindowSystem::FormFrame* SdlWindowSystem::formFrame(const FormClient& form) const {
  for (const FormFrame& entry : forms_)
    if (entry.form == &form) return &entry;
  return nullptr;
}

SdlPopupWindow* SdlWindowSystem::popupFrame(uint32_t windowId) const {
  for (SdlPopupWindow* popup : popups_)
    if (popup->WindowId() == windowId) return popup;
  return nullptr;
}

Canvas SdlWindowSystem::WindowImage(const FormClient& form) const {
  const FormFrame* entry = formFrame(form);
  if (!entry)
    throw Error(errInvalidProcedureCall,
                "SdlWindowSystem::WindowImage: the form has no window here");
  return entry->frame->Read();
}

Canvas SdlWindowSystem::WindowImage(const PopupWindow& popup) const {
  for (SdlPopupWindow* candidate : popups_)
    if (candidate == &popup && candidate->Frame()) return candidate->Frame()->Read();
  throw Error(errInvalidProcedureCall,
              "SdlWindowSystem::WindowImage: pop-up '" + popup.Name() + "' has no window here");
}

bool SdlWindowSystem::WindowOpen(const FormClient& form) const {
  const FormFrame* entry = formFrame(form);
  return entry && !entry->closed;
}

uint32_t SdlWindowSystem::WindowId(const FormClient& form) const {
  const FormFrame* entry = formFrame(form);
  return entry ? entry->frame->Id() : 0;
}

uint32_t SdlWindowSystem::WindowId(const PopupWindow& popup) const {
  for (SdlPopupWindow* candidate : popups_)
    if (candidate == &popup) return candidate->WindowId();
  return 0;
}

}  // namespace velt
