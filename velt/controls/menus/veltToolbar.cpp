#include "velt/controls/menus/veltToolbar.hpp"

#include <algorithm>
#include <utility>

#include "velt/controls/menus/veltPUMenu.hpp"
#include "velt/foundation/EventRaising.hpp"
#include "velt/foundation/Gradients.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/ListImage.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/PopupWindow.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

namespace {

constexpr const char* kSelectionColorKey = "SelectionColor";
constexpr const char* kMenuImageListKey = "MenuImageList";
constexpr const char* kImageListKey = "Imagelist";

constexpr int16_t kLeftButton = 1;
constexpr int16_t kKeyLeft = 37;
constexpr int16_t kKeyRight = 39;

// The menu part is a fixed-size anchor that draws nothing on the form; it is
// put this far beyond the toolbar's top-left corner, out of sight and out of
// the way of the pointer.
constexpr int32_t kMenuOffSight = 10;
// The icon keeps this far right of the button's left edge.
constexpr int32_t kIconInset = 5;

bool isMenuButton(eMenuItemType style) {
  return style == mitMenu || style == mitMenu2;
}

// A stored object of the expected class, or nullptr when none is stored; any
// other object is error 13 naming the key.
std::shared_ptr<ImageList> readImageList(const PropertyBag& bag, const char* key) {
  const std::shared_ptr<Object> stored = bag.ReadProperty(key, Variant(nullptr)).ToObject();
  auto imageList = std::dynamic_pointer_cast<ImageList>(stored);
  if (stored && !imageList)
    throw Error(errTypeMismatch, std::string("PropertyBag key \"") + key +
                                     "\": the stored object is not an ImageList");
  return imageList;
}

void writeImageList(PropertyBag& bag, const char* key, const std::shared_ptr<ImageList>& list) {
  bag.WriteProperty(key, Variant(std::static_pointer_cast<Object>(list)), Variant(nullptr));
}

// A one-pixel outline with both corners inclusive.
void outline(Canvas& c, int32_t x1, int32_t y1, int32_t x2, int32_t y2, OLE_COLOR color) {
  c.FillRect(x1, y1, x2 - x1 + 1, 1, color);
  c.FillRect(x1, y2, x2 - x1 + 1, 1, color);
  c.FillRect(x1, y1, 1, y2 - y1 + 1, color);
  c.FillRect(x2, y1, 1, y2 - y1 + 1, color);
}

void printAt(Canvas& c, int32_t x, int32_t y, const std::string& text, OLE_COLOR color) {
  c.ForeColor(color);
  c.CurrentX(static_cast<float>(x));
  c.CurrentY(static_cast<float>(y));
  c.Print(text);
}

}  // namespace

// The items tell the toolbar of every change, sited or not.
veltToolbar::veltToolbar() {
  itemConnections_.push_back(ToolbarItems.ItemAdded.connect([this] { onItemAdded(); }));
  itemConnections_.push_back(ToolbarItems.ItemChanged.connect([this] { repaint(); }));
}

veltToolbar::~veltToolbar() = default;

// ---- Properties -------------------------------------------------------------

void veltToolbar::BackColor(OLE_COLOR color) {
  frame_.BackColor = color;
  markChanged(FrameProperties::Key(FrameProperty::BackColor));
  colorsChanged();
}

void veltToolbar::ForeColor(OLE_COLOR color) {
  frame_.ForeColor = color;
  markChanged(FrameProperties::Key(FrameProperty::ForeColor));
  colorsChanged();
}

void veltToolbar::SelectionColor(OLE_COLOR color) {
  selectionColor_ = color;
  markChanged(kSelectionColorKey);
  colorsChanged();
}

void veltToolbar::MenuImageList(std::shared_ptr<velt::ImageList> imageList) {
  menuImageList_ = std::move(imageList);
  markChanged(kMenuImageListKey);
  if (menu_) menu_->ImageList(menuImageList_);
  colorsChanged();
}

void veltToolbar::ImageList(std::shared_ptr<velt::ImageList> imageList) {
  imageList_ = std::move(imageList);
  icons_.clear();
  markChanged(kImageListKey);
  colorsChanged();
}

bool veltToolbar::Enabled() const {
  return host().Enabled();
}

void veltToolbar::Enabled(bool enabled) {
  host().Enabled(enabled);
  markChanged(FrameProperties::Key(FrameProperty::Enabled));
  colorsChanged();
}

std::shared_ptr<velt::Font> veltToolbar::Font() const {
  return host().Font();
}

void veltToolbar::Font(std::shared_ptr<velt::Font> font) {
  if (!font) throw Error(errObjectNotSet, "veltToolbar.Font: no font object given");
  host().Font(font);
  markChanged(FrameProperties::Key(FrameProperty::Font));
  if (menu_) menu_->Font(std::move(font));
  repaint();
}

void veltToolbar::markChanged(const char* name) {
  if (host_) host_->PropertyChanged(name);
}

ControlHost& veltToolbar::host() const {
  if (!host_) throw Error(errObjectNotSet, "veltToolbar: the control is not sited on a container");
  return *host_;
}

// The surface draws in the host's font, which the container may have replaced.
Canvas& veltToolbar::surface() const {
  Canvas& canvas = host().Surface();
  if (std::shared_ptr<velt::Font> font = host_->Font(); font && canvas.Font() != font)
    canvas.Font(std::move(font));
  return canvas;
}

bool veltToolbar::menuShown() const {
  return menu_ && menu_->Window() && menu_->Window()->Visible();
}

std::shared_ptr<ToolbarItem> veltToolbar::itemAt(int16_t index) const {
  if (index < 1 || index > ToolbarItems.Count()) return nullptr;
  return ToolbarItems.Item(index);
}

// ---- Life cycle and persistence ---------------------------------------------

void veltToolbar::Initialize(ControlHost& host) {
  host_ = &host;
  hovered_ = 0;
  menuIndex_ = 0;
  pressed_ = false;
  hover_.Attach(
      host, [this](HoverTracker::Finding finding) { hoverFinding(finding); },
      [this]() -> std::shared_ptr<const void> { return weak_from_this().lock(); });
  createMenu();
  colors_ = SchemeNormal(frame_.BackColor, frame_.ForeColor, selectionColor_);
}

void veltToolbar::InitProperties() {
  ControlHost& h = host();
  frame_.BackColor = FrameProperties::kDefaultBackColor;
  frame_.ForeColor = FrameProperties::kDefaultForeColor;
  selectionColor_ = kDefaultSelectionColor;
  menuImageList_.reset();
  imageList_.reset();
  icons_.clear();
  h.Font(h.AmbientFont());
  handColorsToMenu();
  menu_->ImageList(nullptr);
  menu_->Font(h.Font());
  colorsChanged();
}

void veltToolbar::ReadProperties(PropertyBag& bag) {
  ControlHost& h = host();
  frame_.Read(FrameProperty::BackColor, bag, h);
  frame_.Read(FrameProperty::ForeColor, bag, h);
  selectionColor_ =
      bag.ReadProperty(kSelectionColorKey, Variant::Color(kDefaultSelectionColor)).ToColor();
  menuImageList_ = readImageList(bag, kMenuImageListKey);
  imageList_ = readImageList(bag, kImageListKey);
  icons_.clear();
  frame_.Read(FrameProperty::Enabled, bag, h);
  frame_.Read(FrameProperty::Font, bag, h);
  handColorsToMenu();
  menu_->ImageList(menuImageList_);
  menu_->Font(h.Font());
  colorsChanged();
}

void veltToolbar::WriteProperties(PropertyBag& bag) {
  const ControlHost& h = host();
  frame_.Write(FrameProperty::BackColor, bag, h);
  frame_.Write(FrameProperty::ForeColor, bag, h);
  bag.WriteProperty(kSelectionColorKey, Variant::Color(selectionColor_),
                    Variant::Color(kDefaultSelectionColor));
  writeImageList(bag, kMenuImageListKey, menuImageList_);
  writeImageList(bag, kImageListKey, imageList_);
  frame_.Write(FrameProperty::Enabled, bag, h);
  frame_.Write(FrameProperty::Font, bag, h);
}

// Whatever height the container gives, the toolbar takes its bar height back.
void veltToolbar::Resize() {
  if (!host_) return;
  keepBarHeight();
  colors_ = SchemeNormal(frame_.BackColor, frame_.ForeColor, selectionColor_);
  repaint();
}

void veltToolbar::Terminate() {
  hover_.Detach();
  menuConnections_.clear();
  host_ = nullptr;
}

// ---- The items and the menu part --------------------------------------------

// An item added to a bar that is already full falls beyond its right edge and
// changes nothing shown, unless a shown item was changed since (a change the
// next collection change shows): filling a bar with thousands of items costs
// no repaint per item.
void veltToolbar::onItemAdded() {
  if (host_ && layout_.Truncated && shownItemsUnchanged()) return;
  repaint();
}

veltToolbar::ShownItem veltToolbar::shownItem(const ToolbarItem& item) {
  return ShownItem{&item,        item.Caption(), item.IconIndex(),
                   item.Style(), item.Checked(), item.Enabled()};
}

bool veltToolbar::shownItemsUnchanged() const {
  if (shown_.size() != layout_.Cells.size()) return false;
  for (size_t i = 0; i < shown_.size(); ++i) {
    const std::shared_ptr<ToolbarItem> item = itemAt(layout_.Cells[i].Index);
    if (!item || !(shownItem(*item) == shown_[i])) return false;
  }
  return true;
}

void veltToolbar::createMenu() {
  menu_ = std::make_shared<veltPUMenu>();
  const int32_t side = veltPUMenu::kControlSize / host_->TwipsPerPixelX();
  ControlHost& menuHost =
      host_->AddChild(menu_, kMenuName, -side - kMenuOffSight, -side - kMenuOffSight, side, side);
  menuHost.Visible(false);
  connectMenu();
}

void veltToolbar::connectMenu() {
  menuConnections_.push_back(menu_->ItemClick.connect(
      [this](int16_t index, const std::string& key) { onMenuItemClick(index, key); }));
  menuConnections_.push_back(menu_->Closed.connect([this] { onMenuClosed(); }));
  if (std::shared_ptr<PopupWindow> window = menu_->Window())
    menuConnections_.push_back(
        window->KeyDown.connect([this](int16_t keyCode, int16_t) { onMenuKey(keyCode); }));
}

void veltToolbar::handColorsToMenu() {
  menu_->BackColor(frame_.BackColor);
  menu_->ForeColor(frame_.ForeColor);
  menu_->SelectionColor(selectionColor_);
}

// The twelve colours are the menu's: the normal palette of the back and fore
// colour with the selection colour as the third.
void veltToolbar::colorsChanged() {
  colors_ = SchemeNormal(frame_.BackColor, frame_.ForeColor, selectionColor_);
  if (menu_ && host_) handColorsToMenu();
  repaint();
}

// ---- Input ------------------------------------------------------------------

void veltToolbar::OnMouseDown(int16_t button, int16_t, float x, float y) {
  if (button != kLeftButton) return;
  const auto self = weak_from_this().lock();
  pressed_ = true;
  hitTest(x, y);
  repaint();
}

void veltToolbar::OnMouseMove(int16_t, int16_t, float x, float y) {
  const auto self = weak_from_this().lock();
  if (!host_) return;
  hover_.MouseMoved();
  hitTest(x, y);
}

// Any button's release clicks the hovered item, but only a left press sets
// the flag. A menu button keeps the flag while its menu is open, so moving
// onto another menu button opens that one's menu.
void veltToolbar::OnMouseUp(int16_t, int16_t, float, float) {
  const auto self = weak_from_this().lock();
  if (!host_) return;
  if (hovered_ == 0) {
    pressed_ = false;
  } else {
    const int16_t index = hovered_;
    const std::shared_ptr<ToolbarItem> item = itemAt(index);
    const bool keepsFlag = item && isMenuButton(item->Style());
    if (pressed_) {
      const std::string key = item ? item->sKey() : std::string();
      RaiseEvent(*host_, "ItemClicked", ItemClicked, index, key);
      if (!host_) return;  // the handler removed the toolbar
    }
    if (!keepsFlag) pressed_ = false;
  }
  repaint();
}

// With no menu shown, every hit-test starts from no hovered item.
void veltToolbar::hitTest(float x, float y) {
  const int16_t before = hovered_;
  if (!menuShown()) hovered_ = 0;
  const ToolbarCell* cell = layout_.CellAt(x, y);
  const std::shared_ptr<ToolbarItem> item = cell ? itemAt(cell->Index) : nullptr;
  if (item) {
    switch (item->Style()) {
      case mitNormalButton:
      case mitCheckButton:
        if (item->Enabled() && hovered_ != cell->Index) {
          hovered_ = cell->Index;
          killMenu();
        }
        break;
      case mitMenu:
      case mitMenu2:
        if (hovered_ != cell->Index) hoverMenuButton(*cell);
        break;
      default:
        hovered_ = 0;
        killMenu();
        break;
    }
  }
  if (host_ && hovered_ != before) repaint();
}

void veltToolbar::hoverMenuButton(const ToolbarCell& cell) {
  hovered_ = cell.Index;
  menuIndex_ = cell.Index;
  anchor_ = PointL{cell.Left, layout_.ItemHeight + kToolbarItemTop};
  if (!pressed_) return;
  repaint();
  openMenu();
}

// The menu opens under the drawn button, its left border under the button's,
// with its top border open over the button's width. CreateMenu lets pending
// events run until the buttons are up, so the release of the press that opened
// it (and its ItemClicked) comes in the middle of this call.
void veltToolbar::openMenu() {
  const std::shared_ptr<ToolbarItem> item = itemAt(hovered_);
  const ToolbarCell* cell = layout_.CellOf(hovered_);
  if (!item || !cell || !isMenuButton(item->Style())) {
    killMenu();
    return;
  }
  const std::shared_ptr<veltPUMenu> menu = menu_;
  menu->ClearItems();
  if (item->ToolbarMenuItems && item->ToolbarMenuItems->Count() > 0)
    menu->MenuItem = item->ToolbarMenuItems;
  const RectL window = host_->WindowRect();
  const int32_t x = (cell->ButtonLeft() + window.Left) * host_->TwipsPerPixelX();
  const int32_t y = (layout_.ItemHeight + kToolbarItemTop + kToolbarButtonInsetY + window.Top) *
                    host_->TwipsPerPixelY();
  menu->CreateMenu(x, y, "", static_cast<int16_t>(std::min<int32_t>(cell->Width, INT16_MAX)));
}

void veltToolbar::killMenu() {
  if (menuShown()) menu_->KillMenu();
}

void veltToolbar::onMenuItemClick(int16_t index, const std::string& key) {
  const auto self = weak_from_this().lock();
  if (!host_) return;
  const std::shared_ptr<ToolbarItem> item = itemAt(menuIndex_);
  const std::string itemKey = item ? item->sKey() : std::string();
  RaiseEvent(*host_, "MenuItemClicked", MenuItemClicked, menuIndex_, itemKey, index, key);
}

void veltToolbar::onMenuClosed() {
  const auto self = weak_from_this().lock();
  pressed_ = false;
  hovered_ = 0;
  repaint();
}

// While a menu of the toolbar is open, Left and Right go to the previous and
// next menu button's menu, round from either end.
void veltToolbar::onMenuKey(int16_t keyCode) {
  if (keyCode != kKeyLeft && keyCode != kKeyRight) return;
  const auto self = weak_from_this().lock();
  if (!host_ || !menuShown()) return;
  switchMenu(keyCode == kKeyLeft ? -1 : 1);
}

void veltToolbar::switchMenu(int32_t step) {
  std::vector<const ToolbarCell*> buttons;
  int32_t at = -1;
  for (const ToolbarCell& cell : layout_.Cells) {
    const std::shared_ptr<ToolbarItem> item = itemAt(cell.Index);
    if (!item || !isMenuButton(item->Style())) continue;
    if (cell.Index == menuIndex_) at = static_cast<int32_t>(buttons.size());
    buttons.push_back(&cell);
  }
  if (buttons.empty()) return;
  const auto count = static_cast<int32_t>(buttons.size());
  if (at < 0) at = step > 0 ? -1 : count;
  const ToolbarCell target = *buttons[((at + step) % count + count) % count];
  pressed_ = true;
  hovered_ = 0;
  hoverMenuButton(target);
}

// Leaving the bar takes the hover away, unless a menu of the bar is open: its
// button stays drawn as the one that opened it.
void veltToolbar::hoverFinding(HoverTracker::Finding finding) {
  if (finding != HoverTracker::Finding::Left || menuShown() || hovered_ == 0) return;
  hovered_ = 0;
  repaint();
}

// ---- Painting ---------------------------------------------------------------

// Painting lays the items out first: hit-testing uses what was painted last.
void veltToolbar::repaint() {
  if (!host_) return;
  Canvas& c = surface();
  if (measuredFont_ != c.Font().get() || measuredRevision_ != c.Font()->Revision()) {
    measured_.clear();
    measuredFont_ = c.Font().get();
    measuredRevision_ = c.Font()->Revision();
  }
  size_t position = 0;
  layout_ = LayOutToolbar(
      c, ToolbarItems, imageList_.get(), c.ScaleWidth(),
      [&](const std::string& caption) { return captionWidth(c, position++, caption); });
  barHeight_ = layout_.BarHeight();
  if (c.ScaleHeight() != barHeight_ && keepBarHeight()) return;  // the resize painted
  const int32_t w = c.ScaleWidth();
  const int32_t h = c.ScaleHeight();
  c.BackColor(frame_.BackColor);
  GradientBox3(c, 0, 0, w, h, colors_.FillTop, colors_.FillMiddle, colors_.FillBottom, kBoxStacked);
  GradientLine(c, 1, 0, w - 2, 1, colors_.EdgeLight, colors_.EdgeMid);
  GradientLine(c, 0, 1, h - 2, kLineVertical, colors_.EdgeLight, colors_.EdgeDark);
  c.Line(1, h - 1, w - 1, h - 1, colors_.EdgeDark);
  GradientLine(c, w - 1, 1, h - 2, kLineVertical, colors_.EdgeMid, colors_.EdgeDark);
  shown_.clear();
  for (const ToolbarCell& cell : layout_.Cells) {
    const std::shared_ptr<ToolbarItem> item = itemAt(cell.Index);
    if (!item) continue;
    shown_.push_back(shownItem(*item));
    paintItem(c, cell, *item);
  }
}

int32_t veltToolbar::captionWidth(Canvas& canvas, size_t position, const std::string& caption) {
  if (position >= measured_.size()) measured_.resize(position + 1);
  MeasuredCaption& kept = measured_[position];
  if (kept.caption != caption || (kept.width == 0 && !caption.empty()))
    kept = MeasuredCaption{caption, canvas.TextWidth(caption)};
  return kept.width;
}

// Sets the control's height to the bar height; true when the surface has it
// now (the resize repainted).
bool veltToolbar::keepBarHeight() {
  if (!host_ || resizing_ || barHeight_ <= 0) return false;
  ControlHost& h = *host_;
  if (h.Surface().ScaleHeight() == barHeight_) return false;
  resizing_ = true;
  try {
    h.Move(h.Left(), h.Top(), h.Width(), barHeight_ * h.TwipsPerPixelY());
  } catch (const Error&) {
    // A container that refuses the height keeps its own; the bar is drawn in it.
  }
  resizing_ = false;
  return host_ && host_->Surface().ScaleHeight() == barHeight_;
}

void veltToolbar::paintItem(Canvas& c, const ToolbarCell& cell, const ToolbarItem& item) {
  const eMenuItemType style = item.Style();
  if (cell.Index == hovered_) {
    if (pressed_ && isMenuButton(style))
      paintButton(c, cell, colors_.FillTop, colors_.EdgeDark);
    else if (pressed_)
      paintButton(c, cell, colors_.Accent3, colors_.Accent1);
    else if (style == mitCheckButton && item.Checked())
      paintButton(c, cell, colors_.Accent1, colors_.Accent3);
    else
      paintButton(c, cell, colors_.Accent1, colors_.Accent2);
  } else if (style == mitCheckButton && item.Checked()) {
    paintButton(c, cell, colors_.Accent1, colors_.Accent2);
  }
  switch (style) {
    case mitPlaceholder:
      paintIcon(c, cell, item.IconIndex());
      return;
    case mitSeparator: {
      const int32_t x = cell.Left + cell.Width / 4;
      const int32_t bottom = kToolbarItemTop + layout_.ItemHeight;
      c.Line(x, kToolbarItemTop, x, bottom, colors_.EdgeDark);
      c.Line(x + 1, kToolbarItemTop, x + 1, bottom, colors_.FillTop);
      return;
    }
    default:
      paintIcon(c, cell, item.IconIndex());
      paintCaption(c, cell, item);
      return;
  }
}

void veltToolbar::paintButton(Canvas& c, const ToolbarCell& cell, OLE_COLOR from,
                              OLE_COLOR to) const {
  const int32_t x = cell.ButtonLeft();
  const int32_t y = kToolbarItemTop - kToolbarButtonInsetY;
  const int32_t height = layout_.ItemHeight + 2 * kToolbarButtonInsetY;
  GradientRect(c, x, y, cell.Width, height, ColorToVertexColor(from), ColorToVertexColor(to),
               kGradientVertical);
  outline(c, x, y, x + cell.Width - 1, y + height - 1, colors_.EdgeDark);
}

// Beside an icon taller than the text the caption is centred on the icon,
// otherwise it starts at the item's top. A mitMenu2 item's arrow follows it.
void veltToolbar::paintCaption(Canvas& c, const ToolbarCell& cell, const ToolbarItem& item) {
  const int32_t x =
      cell.HasIcon ? cell.Left + imageList_->ImageWidth() + kToolbarIconGap : cell.Left;
  int32_t y = kToolbarItemTop;
  if (imageList_ && imageList_->ImageHeight() > layout_.TextHeight)
    y = kToolbarItemTop + layout_.ItemHeight / 2 - layout_.TextHeight / 2;
  const OLE_COLOR color = item.Enabled() ? colors_.Text : colors_.EdgeDark;
  printAt(c, x, y, item.Caption(), color);
  if (item.Style() != mitMenu2) return;
  const std::shared_ptr<velt::Font> captionFont = c.Font();
  if (!arrowFont_ || arrowBase_ != captionFont.get() ||
      arrowBaseRevision_ != captionFont->Revision()) {
    arrowFont_ = captionFont->Clone();
    arrowFont_->Name(kToolbarArrowFont);
    arrowBase_ = captionFont.get();
    arrowBaseRevision_ = captionFont->Revision();
  }
  const int32_t arrowX = x + c.TextWidth(item.Caption()) + kToolbarArrowGap;
  c.Font(arrowFont_);
  printAt(c, arrowX, y - kToolbarArrowRise, kToolbarArrowGlyph, color);
  c.Font(captionFont);
}

// Icons sit centred on the item's height, kIconInset inside the button; an
// icon the image list cannot give is left out.
void veltToolbar::paintIcon(Canvas& c, const ToolbarCell& cell, int16_t icon) {
  if (!cell.HasIcon || icon == 0 || imageList_->ListImages().Count() == 0) return;
  try {
    const std::shared_ptr<Picture> picture = extractedIcon(icon);
    if (!picture) return;
    const int32_t y = kToolbarItemTop + (layout_.ItemHeight - imageList_->ImageHeight()) / 2;
    c.DrawPicture(*picture, cell.ButtonLeft() + kIconInset, y);
  } catch (const Error&) {
  }
}

// Repaints come with every hover change; extracting (a copy with the mask
// applied) once per image keeps them to the drawing itself.
std::shared_ptr<Picture> veltToolbar::extractedIcon(int16_t icon) {
  const std::shared_ptr<ListImage> image = imageList_->ListImages().Item(icon);
  if (icon >= static_cast<int32_t>(icons_.size())) icons_.resize(static_cast<size_t>(icon) + 1);
  ExtractedIcon& kept = icons_[static_cast<size_t>(icon)];
  const OLE_COLOR mask = imageList_->MaskColor();
  const bool useMask = imageList_->UseMaskColor();
  if (kept.picture && kept.source.lock() == image && kept.maskColor == mask &&
      kept.useMask == useMask)
    return kept.picture;
  kept = ExtractedIcon{image, mask, useMask, image->ExtractIcon()};
  return kept.picture;
}

}  // namespace velt
