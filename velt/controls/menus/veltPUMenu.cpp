#include "velt/controls/menus/veltPUMenu.hpp"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "velt/controls/menus/MenuItemListing.hpp"
#include "velt/controls/menus/MenuLayout.hpp"
#include "velt/controls/menus/MenuLook.hpp"
#include "velt/foundation/EventRaising.hpp"
#include "velt/foundation/WindowRoutines.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/CaseFolding.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/PopupWindow.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Rounding.hpp"
#include "velt/platform/Timer.hpp"
#include "velt/platform/Utf8.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

namespace {

constexpr const char* kImageListKey = "ImageList";
constexpr const char* kSelectionColorKey = "SelectionColor";

constexpr int32_t kVkLeftButton = 1;
constexpr int32_t kVkRightButton = 2;
constexpr int16_t kVkEnter = 13;
constexpr int16_t kVkEscape = 27;
constexpr int16_t kVkUp = 38;
constexpr int16_t kVkDown = 40;
constexpr int32_t kWheelRows = 3;  // rows a notch of the wheel scrolls

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
  windowWheel_ = window_->MouseWheel.connect([this](int16_t notches) { onWindowWheel(notches); });
  windowMouseDown_ =
      window_->MouseDown.connect([this](int16_t, int16_t, float, float y) { pointerY_ = y; });
  windowKeyDown_ =
      window_->KeyDown.connect([this](int16_t keyCode, int16_t) { onWindowKeyDown(keyCode); });
  windowKeyPress_ =
      window_->KeyPress.connect([this](int16_t keyAscii) { onWindowKeyPress(keyAscii); });
  ignoringErrors([this] { window_->ToolWindow(true); });
}

void veltPUMenu::siteTimer(ControlHost& host) {
  tmrFocus_ = host.CreateTimer(kTimerName);
  tmrFocus_->Interval(kTimerInterval);
  tmrFocus_->Enabled(false);
  timerTick_ = tmrFocus_->Tick.connect([this] { onTimerTick(); });
  tmrScroll_ = host.CreateTimer(kScrollTimerName);
  tmrScroll_->Interval(kScrollInterval);
  tmrScroll_->Enabled(false);
  scrollTick_ = tmrScroll_->Tick.connect([this] { onScrollTick(); });
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
  windowWheel_.disconnect();
  windowMouseDown_.disconnect();
  windowKeyDown_.disconnect();
  windowKeyPress_.disconnect();
  timerTick_.disconnect();
  if (tmrScroll_) ignoringErrors([this] { tmrScroll_->Enabled(false); });
  scrollTick_.disconnect();
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
  const SizeL screen = h.ScreenSize();
  // Rows taller than the screen scroll inside a window the screen's height.
  int32_t heightPixels = total + kMenuExtraHeight;
  scrolling_ = heightPixels > screen.height && screen.height > 2 * kMenuArrowRowHeight + 4;
  if (scrolling_) heightPixels = screen.height;
  scroll_ = 0;
  maxScroll_ = scrolling_ ? total + kMenuExtraHeight + 2 * kMenuArrowRowHeight - heightPixels : 0;
  scrollDirection_ = 0;
  if (tmrScroll_) tmrScroll_->Enabled(false);
  const int64_t width = int64_t{menuWidth(screen.width)} * h.TwipsPerPixelX();
  const int64_t height = int64_t{heightPixels} * h.TwipsPerPixelY();

  if (X + width > int64_t{screen.width} * h.TwipsPerPixelX()) X = static_cast<int32_t>(X - width);
  if (Y + height > int64_t{screen.height} * h.TwipsPerPixelY()) {
    Y = static_cast<int32_t>(Y - height);
    openWidth_ = 0;  // the opener is below: the whole top border shows
  } else {
    openWidth_ = M_Width;
  }
  // Flipped past the left or top edge, the menu starts there instead.
  X = std::max(X, 0);
  Y = std::max(Y, 0);

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
  scrollStep_ = MenuRowHeight(itNormal, textHeight, imageList_.get());
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

// In pixels: room for the widest caption of all groups, measured in its own
// weight, beside the icon column, but no wider than the screen: a longer
// caption is clipped by the window. A caption that cannot be measured counts
// as empty.
int32_t veltPUMenu::menuWidth(int32_t screenWidth) {
  Canvas& surface = window_->Surface();
  int32_t widest = 0;
  if (MenuItem) {
    for (const std::shared_ptr<velt::MenuItem>& item : *MenuItem) {
      ignoringErrors([&] {
        MatchBold(surface, item->Bold());
        widest = std::max(widest, surface.TextWidth(item->Caption()));
      });
    }
  }
  const int64_t pixels = int64_t{MenuIconColumnWidth(imageList_.get())} + widest + kMenuExtraWidth;
  return static_cast<int32_t>(std::clamp<int64_t>(pixels, 0, std::max(screenWidth, 0)));
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
  state.scrollArrows = scrolling_;
  state.rowOffset = rowOffset();
  PaintMenu(window_->Surface(), state);
}

// ---- The window and the timer -----------------------------------------------

// SelectedIndex is the Index of the row under the pointer: the item's
// position in the menu's items, whatever row of the shown group it is in.
// Over an arrow row of a scrolling menu nothing is highlighted and the rows
// scroll while the pointer rests there.
void veltPUMenu::onWindowMouseMove(float y) {
  const auto self = weak_from_this().lock();
  pointerY_ = y;
  scrollDirection_ = arrowAt(y);
  if (tmrScroll_ && host_) tmrScroll_->Enabled(scrollDirection_ != 0);
  selectedIndex_ =
      listings_ && scrollDirection_ == 0
          ? MenuRowIndexAt(*listings_, shownItems_.get(), y - static_cast<float>(rowOffset()))
          : 0;
  paintMenu();
}

// A click on an arrow row scrolls a row and keeps the menu open.
void veltPUMenu::onWindowClick() {
  const auto self = weak_from_this().lock();
  if (!host_) return;
  if (const int32_t arrow = arrowAt(pointerY_); arrow != 0) {
    scrollBy(arrow * scrollStep_);
    return;
  }
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

void veltPUMenu::onWindowWheel(int16_t notches) {
  const auto self = weak_from_this().lock();
  scrollBy(-notches * kWheelRows * scrollStep_);
}

void veltPUMenu::onScrollTick() {
  const auto self = weak_from_this().lock();
  if (scrollDirection_ == 0 || !windowShown()) {
    tmrScroll_->Enabled(false);
    return;
  }
  scrollBy(scrollDirection_ * scrollStep_);
}

// Enter chooses as a click does (ItemClick, hide, Closed from the timer);
// Escape closes without choosing.
void veltPUMenu::onWindowKeyDown(int16_t keyCode) {
  const auto self = weak_from_this().lock();
  if (!host_ || !windowShown()) return;
  switch (keyCode) {
    case kVkUp:
      moveHighlight(-1);
      break;
    case kVkDown:
      moveHighlight(1);
      break;
    case kVkEnter:
      pointerY_ = -1;  // not an arrow row
      onWindowClick();
      break;
    case kVkEscape:
      hideWindow();
      selectedIndex_ = 0;
      break;
    default:
      break;
  }
}

void veltPUMenu::onWindowKeyPress(int16_t keyAscii) {
  const auto self = weak_from_this().lock();
  if (!host_ || !windowShown() || keyAscii < ' ') return;
  jumpToLetter(keyAscii);
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

// ---- Scrolling and the keyboard -----------------------------------------------

// Rows are laid out from the window's top; a scrolling menu shows them below
// its top arrow row, moved up by what was scrolled.
int32_t veltPUMenu::rowOffset() const {
  return scrolling_ ? kMenuArrowRowHeight - scroll_ : 0;
}

int32_t veltPUMenu::arrowAt(float y) const {
  if (!scrolling_ || !window_) return 0;
  const auto height = static_cast<float>(window_->Surface().ScaleHeight());
  if (y >= 1 && y < 1 + kMenuArrowRowHeight) return -1;
  if (y >= height - 1 - kMenuArrowRowHeight && y < height - 1) return 1;
  return 0;
}

void veltPUMenu::scrollBy(int32_t pixels) {
  const int32_t scroll = std::clamp(scroll_ + pixels, 0, maxScroll_);
  if (scroll == scroll_) return;
  scroll_ = scroll;
  paintMenu();
}

// Highlights the row and scrolls it into the band between the arrow rows.
void veltPUMenu::highlight(const MenuItemListing& row) {
  selectedIndex_ = row.Index();
  if (scrolling_) {
    const int32_t bandTop = 1 + kMenuArrowRowHeight;
    const int32_t bandBottom = window_->Surface().ScaleHeight() - 1 - kMenuArrowRowHeight;
    const int32_t top = row.Top() + rowOffset();
    if (top < bandTop)
      scroll_ = std::clamp(scroll_ - (bandTop - top), 0, maxScroll_);
    else if (top + row.Height() > bandBottom)
      scroll_ = std::clamp(scroll_ + (top + row.Height() - bandBottom), 0, maxScroll_);
  }
  paintMenu();
}

// Over the selectable rows still showing an item, round from either end.
void veltPUMenu::moveHighlight(int32_t step) {
  if (!listings_ || !shownItems_) return;
  std::vector<std::shared_ptr<MenuItemListing>> rows;
  for (const std::shared_ptr<MenuItemListing>& row : *listings_)
    if (MenuRowChoosable(*row, shownItems_.get())) rows.push_back(row);
  if (rows.empty()) return;
  const auto count = static_cast<int32_t>(rows.size());
  int32_t at = step > 0 ? -1 : count;
  for (int32_t i = 0; i < count; ++i)
    if (rows[i]->Index() == selectedIndex_) at = i;
  highlight(*rows[((at + step) % count + count) % count]);
}

// The next selectable row after the highlighted one, round from the top, whose
// caption begins with the letter, compared without regard to case.
void veltPUMenu::jumpToLetter(int16_t keyAscii) {
  if (!listings_ || !shownItems_) return;
  std::string letter;
  Utf8::Append(letter, static_cast<char32_t>(static_cast<uint16_t>(keyAscii)));
  const std::string wanted = FoldCase(letter);
  std::vector<std::shared_ptr<MenuItemListing>> rows;
  int32_t after = -1;
  for (const std::shared_ptr<MenuItemListing>& row : *listings_) {
    if (!MenuRowChoosable(*row, shownItems_.get())) continue;
    if (row->Index() == selectedIndex_) after = static_cast<int32_t>(rows.size());
    rows.push_back(row);
  }
  const auto count = static_cast<int32_t>(rows.size());
  for (int32_t step = 1; step <= count; ++step) {
    const MenuItemListing& row = *rows[(after + step) % count];
    const std::string& caption = shownItems_->Item(row.Index())->Caption();
    if (caption.empty()) continue;
    const Utf8::Decoded first = Utf8::DecodeAt(caption, 0);
    if (FoldCase(caption.substr(0, first.length)) == wanted) {
      highlight(row);
      return;
    }
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
