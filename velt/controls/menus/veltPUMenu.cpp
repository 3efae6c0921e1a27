#include "velt/controls/menus/veltPUMenu.hpp"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "velt/controls/menus/MenuLayout.hpp"
#include "velt/controls/menus/MenuLook.hpp"
#include "velt/foundation/EventRaising.hpp"
#include "velt/foundation/WindowRoutines.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/PopupWindow.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Rounding.hpp"
#include "velt/platform/Timer.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

namespace {

constexpr const char* kImageListKey = "ImageList";
constexpr const char* kSelectionColorKey = "SelectionColor";

constexpr int32_t kVkLeftButton = 1;
constexpr int32_t kVkRightButton = 2;

// The window steps of opening and closing the menu are requests a window
// system may refuse; a refused step is skipped and the next one runs.
template <typename Step>
void ignoringErrors(Step&& step) {
  try {
    step();
  } catch (const Error&) {
  }
}

int32_t toPixels(int64_t twips, int32_t twipsPerPixel) {
  return static_cast<int32_t>(RoundHalfEven(static_cast<double>(twips) / twipsPerPixel));
}

}  // namespace

veltPUMenu::~veltPUMenu() = default;

// ---- Properties -------------------------------------------------------------

void veltPUMenu::BackColor(OLE_COLOR color) {
  frame_.BackColor = color;
  notifyChanged(FrameProperties::Key(FrameProperty::BackColor));
  rebuildColors();
  paintMenu();
}

void veltPUMenu::ForeColor(OLE_COLOR color) {
  frame_.ForeColor = color;
  notifyChanged(FrameProperties::Key(FrameProperty::ForeColor));
  rebuildColors();
  paintMenu();
}

std::shared_ptr<velt::Font> veltPUMenu::Font() const {
  return host().Font();
}

void veltPUMenu::Font(std::shared_ptr<velt::Font> font) {
  if (!font) throw Error(errObjectNotSet, ClassName() + ".Font: no font object given");
  host().Font(std::move(font));
  notifyChanged(FrameProperties::Key(FrameProperty::Font));
}

void veltPUMenu::ImageList(std::shared_ptr<velt::ImageList> imageList) {
  imageList_ = std::move(imageList);
  notifyChanged(kImageListKey);
  paintMenu();
}

void veltPUMenu::SelectionColor(OLE_COLOR color) {
  selectionColor_ = color;
  notifyChanged(kSelectionColorKey);
  rebuildColors();
  paintMenu();
}

void veltPUMenu::notifyChanged(const char* name) {
  if (host_) host_->PropertyChanged(name);
}

ControlHost& veltPUMenu::host() const {
  if (!host_)
    throw Error(errObjectNotSet, ClassName() + ": the control is not sited on a container");
  return *host_;
}

veltPUMenu::MenuState veltPUMenu::State() const {
  if (windowShown()) return timerRunning() ? msOpen : msOpening;
  return timerRunning() ? msClosing : msIdle;
}

bool veltPUMenu::windowShown() const {
  return window_ && window_->Visible();
}

bool veltPUMenu::timerRunning() const {
  return tmrFocus_ && tmrFocus_->Enabled();
}

bool veltPUMenu::buttonHeld() const {
  return host_->AsyncKeyState(kVkLeftButton) != 0 || host_->AsyncKeyState(kVkRightButton) != 0;
}

// ---- Life cycle and persistence ---------------------------------------------

void veltPUMenu::Initialize(ControlHost& host) {
  host_ = &host;
  siteWindow(host);
  siteTimer(host);
  MenuVisible = false;
  MenuItem = std::make_shared<MenuItems>();
  listings_ = std::make_shared<MenuItemListings>();
  ignoringErrors([this] { AddDropShadow(*window_); });
}

// The host's pop-up is already a top-level window owned by the form's window,
// apart from the form; it only needs to become a tool window.
void veltPUMenu::siteWindow(ControlHost& host) {
  window_ = host.CreatePopup(kWindowName);
  windowMouseMove_ = window_->MouseMove.connect(
      [this](int16_t, int16_t, float, float y) { onWindowMouseMove(y); });
  windowClick_ = window_->Click.connect([this] { onWindowClick(); });
  windowLostFocus_ = window_->LostFocus.connect([this] { onWindowLostFocus(); });
  ignoringErrors([this] { window_->ToolWindow(true); });
}

void veltPUMenu::siteTimer(ControlHost& host) {
  tmrFocus_ = host.CreateTimer(kTimerName);
  tmrFocus_->Interval(kTimerInterval);
  tmrFocus_->Enabled(false);
  timerTick_ = tmrFocus_->Tick.connect([this] { onTimerTick(); });
}

void veltPUMenu::InitProperties() {
  ControlHost& h = host();
  frame_.BackColor = FrameProperties::kDefaultBackColor;
  frame_.ForeColor = FrameProperties::kDefaultForeColor;
  h.Font(h.AmbientFont());
  imageList_.reset();
  selectionColor_ = kDefaultSelectionColor;
  rebuildColors();
  paintMenu();
}

void veltPUMenu::ReadProperties(PropertyBag& bag) {
  ControlHost& h = host();
  frame_.Read(FrameProperty::BackColor, bag, h);
  frame_.Read(FrameProperty::ForeColor, bag, h);
  frame_.Read(FrameProperty::Font, bag, h);
  readImageList(bag);
  selectionColor_ =
      bag.ReadProperty(kSelectionColorKey, Variant::Color(kDefaultSelectionColor)).ToColor();
  rebuildColors();
  paintMenu();
}

void veltPUMenu::readImageList(const PropertyBag& bag) {
  const std::shared_ptr<Object> stored =
      bag.ReadProperty(kImageListKey, Variant(nullptr)).ToObject();
  auto imageList = std::dynamic_pointer_cast<velt::ImageList>(stored);
  if (stored && !imageList)
    throw Error(errTypeMismatch, std::string("PropertyBag key \"") + kImageListKey +
                                     "\": the stored object is not an ImageList");
  imageList_ = std::move(imageList);
}

void veltPUMenu::WriteProperties(PropertyBag& bag) {
  const ControlHost& h = host();
  frame_.Write(FrameProperty::BackColor, bag, h);
  frame_.Write(FrameProperty::ForeColor, bag, h);
  frame_.Write(FrameProperty::Font, bag, h);
  bag.WriteProperty(kImageListKey, Variant(std::static_pointer_cast<Object>(imageList_)),
                    Variant(nullptr));
  bag.WriteProperty(kSelectionColorKey, Variant::Color(selectionColor_),
                    Variant::Color(kDefaultSelectionColor));
  rebuildColors();
  paintMenu();
}

// Whatever size the container gives, the control takes its fixed size back.
void veltPUMenu::Resize() {
  if (!host_ || resizing_) return;
  ControlHost& h = *host_;
  if (h.Width() == kControlSize && h.Height() == kControlSize) return;
  resizing_ = true;
  try {
    h.Move(h.Left(), h.Top(), kControlSize, kControlSize);
  } catch (...) {
    resizing_ = false;
    throw;
  }
  resizing_ = false;
}

void veltPUMenu::Terminate() {
  if (tmrFocus_) ignoringErrors([this] { tmrFocus_->Enabled(false); });
  windowMouseMove_.disconnect();
  windowClick_.disconnect();
  windowLostFocus_.disconnect();
  timerTick_.disconnect();
  MenuItem.reset();
  listings_.reset();
  shownItems_.reset();
  if (window_) ignoringErrors([this] { RemoveWindowAlpha(*window_); });
  host_ = nullptr;
}

// ---- Opening and closing ----------------------------------------------------

void veltPUMenu::ClearItems() {
  MenuItem = std::make_shared<MenuItems>();
  selectedIndex_ = 0;
}

void veltPUMenu::CreateMenu(const int32_t& X, const int32_t& Y, const std::string& sGroup,
                            const int16_t& M_Width) {
  int32_t x = X;
  int32_t y = Y;
  std::string group = sGroup;
  int16_t openerWidth = M_Width;
  CreateMenu(x, y, group, openerWidth);
}

void veltPUMenu::CreateMenu(int32_t& X, int32_t& Y, std::string& sGroup, int16_t& M_Width) {
  const auto self = weak_from_this().lock();  // pending events may drop the menu
  ControlHost& h = host();
  ++openings_;
  if (X == 0 && Y == 0) placeAtPointer(X, Y);

  const int32_t total = layOut(sGroup);
  const RectL before = window_->WindowRect();
  int64_t width = int64_t{before.Width()} * h.TwipsPerPixelX();
  ignoringErrors([&] { width = menuWidth(); });
  const int64_t height = (int64_t{total} + kMenuExtraHeight) * h.TwipsPerPixelY();

  const SizeL screen = h.ScreenSize();
  if (X + width > int64_t{screen.width} * h.TwipsPerPixelX()) X = static_cast<int32_t>(X - width);
  if (Y + height > int64_t{screen.height} * h.TwipsPerPixelY()) {
    Y = static_cast<int32_t>(Y - height);
    openWidth_ = 0;  // the opener is below: the whole top border shows
  } else {
    openWidth_ = M_Width;
  }

  // Sized and placed in one move, then painted once: the surface takes its
  // new size on the move, and both paints of a two-step placement would draw
  // the same rows.
  ignoringErrors([&] {
    window_->Move(toPixels(X, h.TwipsPerPixelX()), toPixels(Y, h.TwipsPerPixelY()),
                  toPixels(width, h.TwipsPerPixelX()), toPixels(height, h.TwipsPerPixelY()));
  });
  ignoringErrors([this] { window_->Topmost(true); });
  paintMenu();
  ignoringErrors([this] { window_->Show(true); });
  ignoringErrors([this] { SetWindowAlpha(*window_, kWindowAlpha); });
  MenuVisible = true;
  waitForButtonsUp();
}

void veltPUMenu::placeAtPointer(int32_t& X, int32_t& Y) const {
  const PointL pointer = host_->CursorPos();
  X = pointer.x * host_->TwipsPerPixelX();
  Y = pointer.y * host_->TwipsPerPixelY();
}

// A new set of rows for the items of the group, in the items' order; returns
// their total height. The window's font becomes a copy of Font, so the bold
// rows never embolden the font the menu shares with its host.
int32_t veltPUMenu::layOut(const std::string& group) {
  listings_ = std::make_shared<MenuItemListings>();
  shownItems_ = MenuItem;
  selectedIndex_ = 0;  // nothing of the new rows is under the pointer yet
  Canvas& surface = window_->Surface();
  ignoringErrors([&] { surface.Font(host_->Font()->Clone()); });
  if (!shownItems_) return 0;
  const int32_t textHeight = surface.TextHeight("I");
  int32_t y = kMenuFirstRowTop;
  int32_t total = 0;
  int32_t index = 0;
  for (const std::shared_ptr<velt::MenuItem>& item : *shownItems_) {
    ++index;
    if (item->Group() != group) continue;
    const int32_t h = MenuRowHeight(item->ItemType(), textHeight, imageList_.get());
    listings_->Add("", static_cast<int16_t>(index), y, h, MenuRowSelectable(item->ItemType()));
    y += h;
    total += h;
  }
  return total;
}

// In twips: room for the widest caption of all groups, measured in its own
// weight, beside the icon column. Error 6 beyond an Integer.
int16_t veltPUMenu::menuWidth() {
  Canvas& surface = window_->Surface();
  int32_t widest = 0;
  if (MenuItem) {
    for (const std::shared_ptr<velt::MenuItem>& item : *MenuItem) {
      MatchBold(surface, item->Bold());
      widest = std::max(widest, surface.TextWidth(item->Caption()));
    }
  }
  const int64_t pixels = int64_t{MenuIconColumnWidth(imageList_.get())} + widest + kMenuExtraWidth;
  const int64_t twips = pixels * host_->TwipsPerPixelX();
  if (twips > INT16_MAX)
    throw Error(errOverflow, "veltPUMenu.CreateMenu: a menu " + std::to_string(pixels) +
                                 " pixels wide is too wide");
  return static_cast<int16_t>(twips);
}

// A menu opened by a press stays open when that press ends: the focus timer
// starts only once both buttons are up. Handlers that run meanwhile may open
// the menu again or remove it; a menu hidden and already reported Closed
// meanwhile does not start the timer again.
void veltPUMenu::waitForButtonsUp() {
  while (host_ && buttonHeld())
    host_->DoEvents();
  if (!host_) return;
  if (windowShown() || MenuVisible) tmrFocus_->Enabled(true);
}

void veltPUMenu::KillMenu() {
  hideWindow();
}

void veltPUMenu::hideWindow() {
  if (window_) ignoringErrors([this] { window_->Show(false); });
}

// ---- Painting ---------------------------------------------------------------

// The menu's twelve colours are the normal palette of its back and fore
// colour with the selection colour as the third colour.
void veltPUMenu::rebuildColors() {
  colors_ = SchemeNormal(frame_.BackColor, frame_.ForeColor, selectionColor_);
  if (window_) window_->Surface().BackColor(frame_.BackColor);
}

// The rows painted are those the last CreateMenu laid out, for whichever
// group it showed, and the highlight is the row showing item SelectedIndex:
// hover, click and every repaint agree even for a group other than the root.
void veltPUMenu::paintMenu() {
  if (!window_) return;
  MenuLookState state;
  state.colors = colors_;
  state.rows = listings_.get();
  state.items = shownItems_.get();
  state.imageList = imageList_.get();
  state.selectedIndex = selectedIndex_;
  state.openWidth = openWidth_;
  PaintMenu(window_->Surface(), state);
}

// ---- The window and the timer -----------------------------------------------

// SelectedIndex is the Index of the row under the pointer: the item's
// position in the menu's items, whatever row of the shown group it is in.
void veltPUMenu::onWindowMouseMove(float y) {
  const auto self = weak_from_this().lock();
  selectedIndex_ = listings_ ? MenuRowIndexAt(*listings_, y) : 0;
  paintMenu();
}

void veltPUMenu::onWindowClick() {
  const auto self = weak_from_this().lock();
  if (!host_) return;
  if (selectedIndex_ != 0 && shownItems_) {
    const int16_t index = selectedIndex_;
    std::string key;
    if (index <= shownItems_->Count()) key = shownItems_->Item(index)->Key();
    const uint64_t opening = openings_;
    RaiseEvent(*host_, "ItemClick", ItemClick, index, key);
    if (!host_) return;                // the handler removed the menu or its form
    if (openings_ != opening) return;  // the handler opened the menu again: it stays
  }
  hideWindow();
  selectedIndex_ = 0;
}

void veltPUMenu::onWindowLostFocus() {
  const auto self = weak_from_this().lock();
  tmrFocus_->Enabled(true);
  hideWindow();
}

void veltPUMenu::onTimerTick() {
  const auto self = weak_from_this().lock();
  if (!host_) return;
  checkOutsideClick();
  if (!windowShown()) {
    tmrFocus_->Enabled(false);
    MenuVisible = false;
    RaiseEvent(*host_, "Closed", Closed);
  } else if (!MenuVisible) {
    MenuVisible = true;
  }
}

// A button held with the pointer outside the window closes the menu. The
// window's edges count as inside, its right and bottom edge included.
void veltPUMenu::checkOutsideClick() {
  const PointL pointer = host_->CursorPos();
  const RectL rect = window_->WindowRect();
  const bool inside = pointer.x >= rect.Left && pointer.x <= rect.Right && pointer.y >= rect.Top &&
                      pointer.y <= rect.Bottom;
  if (!inside && buttonHeld()) hideWindow();
}

}  // namespace velt
