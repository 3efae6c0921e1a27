#include "velt/controls/lists/veltListbox.hpp"

#include <algorithm>
#include <limits>
#include <utility>

#include "velt/controls/lists/ListboxLayout.hpp"
#include "velt/controls/range/veltScrollBar.hpp"
#include "velt/foundation/EventRaising.hpp"
#include "velt/foundation/Gradients.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/ListImage.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

namespace {

constexpr const char* kSelectionColorKey = "SelectionColor";
constexpr const char* kImageListKey = "ImageList";
constexpr const char* kSelectedItemKey = "SelectedItem";
constexpr const char* kHoverSelectKey = "HoverSelect";

constexpr int16_t kLeftButton = 1;
constexpr int16_t kKeyPageUp = 33;
constexpr int16_t kKeyPageDown = 34;
constexpr int16_t kKeyEnd = 35;
constexpr int16_t kKeyHome = 36;
constexpr int16_t kKeyUp = 38;
constexpr int16_t kKeyDown = 40;

// The bar's width as it is created; its own thickness limits keep it so.
constexpr int32_t kScrollBarWidth = 17;
// The bar keeps this far in from the top, right and bottom edges.
constexpr int32_t kScrollBarInset = 2;

// Row geometry, pixels: text and icon start 4 right of the indentation; with
// an image list the text starts 8 right of the image column. The caption
// keeps 4 free before the bar, the icon sits 3 below the row's top.
constexpr int32_t kTextLeft = 4;
constexpr int32_t kTextAfterImage = 8;
constexpr int32_t kTextRightMargin = 4;
constexpr int32_t kIconTop = 3;
// The highlight's fill starts at (3, Top + 3), its outline at (2, Top + 2);
// both stop short of the bar.
constexpr int32_t kHighlightLeft = 3;
constexpr int32_t kHighlightTop = 3;
constexpr int32_t kFocusedHighlightGap = 5;
constexpr int32_t kHighlightGap = 7;
constexpr int32_t kOutlineInset = 2;
constexpr int32_t kOutlineGap = 4;

// A stored object of the expected class, or nullptr when none is stored; any
// other object is error 13 naming the key.
std::shared_ptr<ImageList> readImageList(const PropertyBag& bag) {
  const std::shared_ptr<Object> stored =
      bag.ReadProperty(kImageListKey, Variant(nullptr)).ToObject();
  auto imageList = std::dynamic_pointer_cast<ImageList>(stored);
  if (stored && !imageList)
    throw Error(errTypeMismatch, std::string("PropertyBag key \"") + kImageListKey +
                                     "\": the stored object is not an ImageList");
  return imageList;
}

// The rectangle's four edges, both corners included.
void outline(Canvas& c, int32_t x1, int32_t y1, int32_t x2, int32_t y2, OLE_COLOR color) {
  c.Line(x1, y1, x2, y1, color);
  c.Line(x2, y1, x2, y2, color);
  c.Line(x2, y2, x1, y2, color);
  c.Line(x1, y2, x1, y1, color);
}

int32_t saturated(int64_t value) {
  return static_cast<int32_t>(std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(),
                                                  std::numeric_limits<int32_t>::max()));
}

}  // namespace

// The entries tell the list of every change, sited or not.
veltListbox::veltListbox() {
  itemConnections_.push_back(ListboxItems.ItemAdded.connect([this] { onItemAdded(); }));
  itemConnections_.push_back(ListboxItems.ItemChanged.connect([this] { onItemChanged(); }));
}

veltListbox::~veltListbox() = default;

// ---- Properties -------------------------------------------------------------

void veltListbox::BackColor(OLE_COLOR color) {
  frame_.BackColor = color;
  markChanged(FrameProperties::Key(FrameProperty::BackColor));
  colorsChanged();
}

void veltListbox::ForeColor(OLE_COLOR color) {
  frame_.ForeColor = color;
  markChanged(FrameProperties::Key(FrameProperty::ForeColor));
  colorsChanged();
}

void veltListbox::SelectionColor(OLE_COLOR color) {
  selectionColor_ = color;
  markChanged(kSelectionColorKey);
  colorsChanged();
}

bool veltListbox::Enabled() const {
  return host().Enabled();
}

void veltListbox::Enabled(bool enabled) {
  host().Enabled(enabled);
  markChanged(FrameProperties::Key(FrameProperty::Enabled));
  draw(false);
}

std::shared_ptr<velt::Font> veltListbox::Font() const {
  return host().Font();
}

void veltListbox::Font(std::shared_ptr<velt::Font> font) {
  if (!font) throw Error(errObjectNotSet, "veltListbox.Font: no font object given");
  host().Font(std::move(font));
  markChanged(FrameProperties::Key(FrameProperty::Font));
  draw(false);
}

void veltListbox::ImageList(std::shared_ptr<velt::ImageList> imageList) {
  imageList_ = std::move(imageList);
  markChanged(kImageListKey);
  draw(false);
}

// The bar's Value follows the selection (clamped by the bar), which lays the
// rows out again when it moves. The handler of ItemClicked may clear the list
// or remove the control; the rest is then skipped.
void veltListbox::SelectedItem(int16_t position) {
  const auto self = weak_from_this().lock();
  selectedItem_ = position;
  markChanged(kSelectedItemKey);
  highlight_ = position;
  if (!sited()) return;
  const std::shared_ptr<veltScrollBar> bar = scrollBar_;
  bar->Value(position);
  if (!sited()) return;
  raiseItemClicked(position);
  if (sited()) draw(false);
}

void veltListbox::HoverSelect(bool hoverSelect) {
  hoverSelect_ = hoverSelect;
  markChanged(kHoverSelectKey);
}

void veltListbox::Refresh() {
  couple();
}

void veltListbox::SelectItem(const std::string& mKey, const std::string& mValue,
                             const std::string& mCaption) {
  const int32_t count = std::min(ListboxItems.Count(), kListboxLastPosition);
  if (count == 0) return;
  int16_t found = 1;
  for (int32_t position = 1; position <= count; ++position) {
    const std::shared_ptr<ComboData> entry = ListboxItems.Item(static_cast<int16_t>(position));
    bool match = false;
    if (!mKey.empty())
      match = entry->Key() == mKey;
    else if (!mValue.empty())
      match = entry->Value() == mValue;
    else if (!mCaption.empty())
      match = entry->Caption() == mCaption;
    if (match) {
      found = static_cast<int16_t>(position);
      break;
    }
  }
  SelectedItem(found);
}

int32_t veltListbox::RowHeight() const {
  return ListboxRowHeight(textHeight(), imageList_.get());
}

int32_t veltListbox::VisibleRows() const {
  return ListboxVisibleRows(surface().ScaleHeight(), textHeight(), imageList_.get());
}

void veltListbox::markChanged(const char* name) {
  if (host_) host_->PropertyChanged(name);
}

ControlHost& veltListbox::host() const {
  if (!host_) throw Error(errObjectNotSet, "veltListbox: the control is not sited on a container");
  return *host_;
}

// The surface draws in the host's font, which the container may have replaced.
Canvas& veltListbox::surface() const {
  Canvas& canvas = host().Surface();
  if (std::shared_ptr<velt::Font> font = host_->Font(); font && canvas.Font() != font)
    canvas.Font(std::move(font));
  return canvas;
}

int32_t veltListbox::textHeight() const {
  return surface().TextHeight("I");
}

int32_t veltListbox::scrollBarWidth() const {
  if (!scrollBarHost_) return 0;
  return scrollBarHost_->Width() / scrollBarHost_->TwipsPerPixelX();
}

// ---- Life cycle and persistence ---------------------------------------------

void veltListbox::Initialize(ControlHost& host) {
  host_ = &host;
  pressed_ = false;
  focused_ = false;
  hover_.Attach(
      host, [this](HoverTracker::Finding finding) { hoverFinding(finding); },
      [this]() -> std::shared_ptr<const void> { return weak_from_this().lock(); });
  createScrollBar();
  scheme_ = SchemeNormal(frame_.BackColor, frame_.ForeColor, selectionColor_);
}

void veltListbox::InitProperties() {
  ControlHost& h = host();
  frame_.BackColor = FrameProperties::kDefaultBackColor;
  frame_.ForeColor = FrameProperties::kDefaultForeColor;
  h.Font(h.AmbientFont());
  selectionColor_ = kDefaultSelectionColor;
  imageList_.reset();
  selectedItem_ = 0;
  hoverSelect_ = false;
  colorsChanged();
}

// SelectedItem is stored as it was saved: the entries are not there yet.
void veltListbox::ReadProperties(PropertyBag& bag) {
  ControlHost& h = host();
  frame_.Read(FrameProperty::BackColor, bag, h);
  frame_.Read(FrameProperty::ForeColor, bag, h);
  frame_.Read(FrameProperty::Enabled, bag, h);
  frame_.Read(FrameProperty::Font, bag, h);
  selectionColor_ =
      bag.ReadProperty(kSelectionColorKey, Variant::Color(kDefaultSelectionColor)).ToColor();
  imageList_ = readImageList(bag);
  selectedItem_ = bag.ReadProperty(kSelectedItemKey, Variant(int16_t{0})).ToInteger();
  hoverSelect_ = bag.ReadProperty(kHoverSelectKey, Variant(false)).ToBoolean();
  colorsChanged();
}

void veltListbox::WriteProperties(PropertyBag& bag) {
  const ControlHost& h = host();
  frame_.Write(FrameProperty::BackColor, bag, h);
  frame_.Write(FrameProperty::ForeColor, bag, h);
  frame_.Write(FrameProperty::Enabled, bag, h);
  frame_.Write(FrameProperty::Font, bag, h);
  bag.WriteProperty(kSelectionColorKey, Variant::Color(selectionColor_),
                    Variant::Color(kDefaultSelectionColor));
  bag.WriteProperty(kImageListKey, Variant(std::static_pointer_cast<Object>(imageList_)),
                    Variant(nullptr));
  bag.WriteProperty(kSelectedItemKey, Variant(selectedItem_), Variant(int16_t{0}));
  bag.WriteProperty(kHoverSelectKey, Variant(hoverSelect_), Variant(false));
}

// The bar goes along the right edge; a size too small for it is left as it is.
void veltListbox::Resize() {
  if (!host_) return;
  try {
    ControlHost& bar = *scrollBarHost_;
    const Canvas& canvas = host_->Surface();
    const int32_t tppX = bar.TwipsPerPixelX();
    const int32_t tppY = bar.TwipsPerPixelY();
    const int32_t left = canvas.ScaleWidth() - scrollBarWidth() - kScrollBarInset;
    bar.Move(left * tppX, kScrollBarInset * tppY, bar.Width(),
             (canvas.ScaleHeight() - 2 * kScrollBarInset) * tppY);
  } catch (const Error&) {
  }
  if (sited()) draw(false);
}

void veltListbox::Terminate() {
  hover_.Detach();
  barConnections_.clear();
  host_ = nullptr;
}

// ---- The bar and the entries ------------------------------------------------

void veltListbox::createScrollBar() {
  const Canvas& canvas = host_->Surface();
  const int32_t left = canvas.ScaleWidth() - kScrollBarWidth - kScrollBarInset;
  const int32_t height = std::max(canvas.ScaleHeight() - 2 * kScrollBarInset, 0);
  scrollBar_ = std::make_shared<veltScrollBar>();
  scrollBarHost_ =
      &host_->AddChild(scrollBar_, kScrollBarName, left, kScrollBarInset, kScrollBarWidth, height);
  connectScrollBar();
}

// The list hears its bar as an application would: the bar's mouse events
// become its own, a click on the bar focuses the list, and a new Value lays
// the rows out from there.
void veltListbox::connectScrollBar() {
  veltScrollBar& bar = *scrollBar_;
  const auto forward = [this](const char* name, const MouseEvent& event) {
    return [this, name, &event](int16_t button, int16_t shift, float x, float y) {
      raiseMouse(name, event, button, shift, x, y);
    };
  };
  barConnections_.push_back(bar.MouseDown.connect(forward("MouseDown", MouseDown)));
  barConnections_.push_back(bar.MouseUp.connect(forward("MouseUp", MouseUp)));
  barConnections_.push_back(bar.MouseMove.connect(forward("MouseMove", MouseMove)));
  barConnections_.push_back(bar.Click.connect([this] {
    if (!sited()) return;
    try {
      host_->SetFocus();
    } catch (const Error&) {
    }
  }));
  barConnections_.push_back(bar.ValueChanged.connect([this] {
    if (!sited()) return;
    layOut();
    draw(true);
  }));
}

void veltListbox::onItemAdded() {
  couple();
}

// After a Remove or Clear the rows stay as they were laid out; those past the
// end are skipped until the next layout.
void veltListbox::onItemChanged() {
  if (!sited()) return;
  enableScrollBar();
  draw(false);
}

// The bar's range becomes 1 to the first position whose page ends the list.
// Its own corrections keep Max above Min (a short list gets 1 to 2) and pull
// Value 0 up to 1, which lays the rows out through ValueChanged.
void veltListbox::couple() {
  if (!sited()) return;
  const auto self = weak_from_this().lock();
  const std::shared_ptr<veltScrollBar> bar = scrollBar_;
  const int32_t count = ListboxItems.Count();
  if (count != 0) {
    bar->Min(1);
    bar->Max(saturated(int64_t{count} - VisibleRows() + 1));
    bar->Value(0);
    if (!sited()) return;
  }
  enableScrollBar();
  layOut();
  if (selectedItem_ == 0) selectedItem_ = 1;
  draw(false);
}

void veltListbox::enableScrollBar() {
  scrollBar_->Enabled(!(VisibleRows() > ListboxItems.Count()));
}

void veltListbox::layOut() {
  TempListboxItems.Clear();
  const int32_t height = RowHeight();
  const ListboxRowSpan span =
      ListboxRowsFrom(scrollBar_->Value(), VisibleRows(), ListboxItems.Count());
  int32_t top = 0;
  for (int32_t position = span.First; position <= span.Last; ++position) {
    TempListboxItems.Add("", static_cast<int16_t>(position), top, height, true);
    top += height;
  }
}

void veltListbox::colorsChanged() {
  scheme_ = SchemeNormal(frame_.BackColor, frame_.ForeColor, selectionColor_);
  if (!sited()) return;
  scrollBar_->ForeColor(scheme_.Fore);
  scrollBar_->BackColor(scheme_.Back);
  draw(false);
}

// ---- Painting ---------------------------------------------------------------

// An empty list shows its background only, not even the frame. With
// ValueFont each caption gets its entry's Value as the font name, on a copy
// of the font so the container's font object keeps its name.
void veltListbox::draw(bool hovered) {
  if (!sited()) return;
  Canvas& canvas = surface();
  if (canvas.BackColor() != scheme_.Back) canvas.BackColor(scheme_.Back);
  canvas.Clear();
  if (ListboxItems.Count() == 0) return;
  if (TempListboxItems.Count() != 0) {
    const int32_t t = canvas.TextHeight("I");
    const bool enabled = host_->Enabled();
    const std::shared_ptr<velt::Font> font = canvas.Font();
    if (ValueFont) canvas.Font(font->Clone());
    for (const std::shared_ptr<MenuItemListing>& row : TempListboxItems) {
      if (!rowShown(*row)) continue;
      drawRow(canvas, *row, *ListboxItems.Item(row->Index()), t, enabled);
    }
    if (ValueFont) canvas.Font(font);
  }
  drawFrame(canvas, hovered);
}

void veltListbox::drawRow(Canvas& canvas, const MenuItemListing& row, const ComboData& entry,
                          int32_t t, bool enabled) {
  const int32_t indent = kListboxTabIndent * ListboxTabCount(entry.Caption());
  if (row.Index() == highlight_) drawHighlight(canvas, row);
  int32_t textX = indent + kTextLeft;
  if (imageList_) {
    textX = imageList_->ImageWidth() + kTextAfterImage + indent;
    drawIcon(canvas, entry.Icon(), indent + kTextLeft, row.Top() + kIconTop, enabled);
  }
  if (ValueFont) canvas.Font()->Name(entry.Value());
  canvas.CurrentX(static_cast<float>(textX));
  canvas.CurrentY(static_cast<float>(row.Height() / 2.0 - t / 2.0 + row.Top() + 1));
  canvas.ForeColor(enabled ? scheme_.Text : scheme_.EdgeDark);
  const int32_t width = canvas.ScaleWidth() - textX - scrollBarWidth() - kTextRightMargin;
  canvas.Print(ListboxShortened(canvas, ListboxWithoutTabs(entry.Caption()), width));
}

// Shaded in the selection tints while the list has the focus or selects on
// hover, in the plain fill otherwise (two pixels narrower).
void veltListbox::drawHighlight(Canvas& canvas, const MenuItemListing& row) const {
  const int32_t right = canvas.ScaleWidth() - scrollBarWidth();
  const int32_t top = row.Top() + kHighlightTop;
  const int32_t height = row.Height() - 2;
  if (focused_ || hoverSelect_)
    GradientRect(canvas, kHighlightLeft, top, right - kFocusedHighlightGap, height,
                 ColorToVertexColor(scheme_.Accent2), ColorToVertexColor(scheme_.Accent1),
                 kGradientHorizontal);
  else
    GradientRect(canvas, kHighlightLeft, top, right - kHighlightGap, height,
                 ColorToVertexColor(scheme_.FillTop), ColorToVertexColor(scheme_.FillBottom),
                 kGradientHorizontal);
  outline(canvas, kOutlineInset, row.Top() + kOutlineInset, right - kOutlineGap,
          row.Top() + row.Height(), scheme_.EdgeDark);
}

// An icon that cannot be had (no such image, an empty list) is left out.
// Disabled, the icon is drawn in one colour, the disabled text's.
void veltListbox::drawIcon(Canvas& canvas, int16_t icon, int32_t x, int32_t y, bool enabled) {
  if (icon == 0 || imageList_->ListImages().Count() == 0) return;
  try {
    const std::shared_ptr<Picture> picture = extractedIcon(icon);
    if (!picture) return;
    canvas.DrawPicture(*picture, x, y, enabled ? PictureLook::Normal : PictureLook::Monochrome,
                       scheme_.EdgeDark);
  } catch (const Error&) {
  }
}

// Repaints come with every hover tick; extracting (a copy with the mask
// applied) once per image keeps them to the drawing itself.
std::shared_ptr<Picture> veltListbox::extractedIcon(int16_t icon) {
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

void veltListbox::drawFrame(Canvas& c, bool hovered) const {
  const int32_t sw = c.ScaleWidth();
  const int32_t sh = c.ScaleHeight();
  const OLE_COLOR edge = scheme_.EdgeDark;
  c.Line(0, 0, 0, sh, edge);
  c.Line(0, 0, sw, 0, edge);
  c.Line(sw - 1, 0, sw - 1, sh, edge);
  c.Line(0, sh - 1, sw - 1, sh - 1, edge);
  if (!hovered || hoverSelect_) return;
  const OLE_COLOR inner = scheme_.Accent3;
  c.Line(1, 1, 1, sh - 2, inner);
  c.Line(1, 1, sw - 2, 1, inner);
  c.Line(sw - 2, 1, sw - 2, sh - 1, inner);
  c.Line(1, sh - 2, sw - 2, sh - 2, inner);
}

void veltListbox::hoverFinding(HoverTracker::Finding finding) {
  draw(finding == HoverTracker::Finding::Over);
}

// ---- Input ------------------------------------------------------------------
// Each handler holds the list alive while it raises events: a handler may
// remove it from its container, which unsites it; the rest is then skipped.

bool veltListbox::rowShown(const MenuItemListing& row) const {
  return row.Index() >= 1 && row.Index() <= ListboxItems.Count();
}

// The key is copied first: a handler may clear the list.
void veltListbox::raiseItemClicked(int16_t position) {
  const std::string sKey = ListboxItems.Item(position)->Key();
  RaiseEvent(*host_, "ItemClicked", ItemClicked, position, sKey);
}

void veltListbox::raiseMouse(const char* name, const MouseEvent& event, int16_t button,
                             int16_t shift, float x, float y) {
  if (!sited()) return;
  const auto self = weak_from_this().lock();
  RaiseEvent(*host_, name, event, button, shift, x, y);
}

void veltListbox::OnMouseDown(int16_t button, int16_t shift, float x, float y) {
  if (button != kLeftButton) return;
  const auto self = weak_from_this().lock();
  pressed_ = true;
  raiseMouse("MouseDown", MouseDown, button, shift, x, y);
}

// With HoverSelect the selection follows the pointer without events; the last
// row whose span holds the pointer wins (spans share their edge rows).
void veltListbox::OnMouseMove(int16_t button, int16_t shift, float x, float y) {
  const auto self = weak_from_this().lock();
  hover_.MouseMoved();
  if (hoverSelect_) {
    const int32_t right = surface().ScaleWidth() - scrollBarWidth() - kOutlineGap;
    for (const std::shared_ptr<MenuItemListing>& row : TempListboxItems) {
      if (rowShown(*row) && row->Top() <= y && y <= row->Top() + row->Height() && x <= right) {
        highlight_ = row->Index();
        selectedItem_ = row->Index();
      }
    }
    draw(false);
  }
  raiseMouse("MouseMove", MouseMove, button, shift, x, y);
}

// Click, ItemClicked, MouseUp. Without HoverSelect the row under the release
// is selected; a release below the last row selects nothing.
void veltListbox::OnMouseUp(int16_t button, int16_t shift, float x, float y) {
  if (button != kLeftButton) return;
  const auto self = weak_from_this().lock();
  if (pressed_ && sited()) RaiseEvent(*host_, "Click", Click);
  if (!sited()) return;
  pressed_ = false;
  int16_t clicked = 0;
  if (hoverSelect_) {
    clicked = highlight_;
  } else {
    for (const std::shared_ptr<MenuItemListing>& row : TempListboxItems) {
      if (rowShown(*row) && row->Top() <= y && y < row->Top() + row->Height()) {
        clicked = row->Index();
        highlight_ = clicked;
        selectedItem_ = clicked;
        break;
      }
    }
  }
  if (clicked >= 1 && clicked <= ListboxItems.Count()) raiseItemClicked(clicked);
  if (!sited()) return;
  draw(false);
  raiseMouse("MouseUp", MouseUp, button, shift, x, y);
}

// Three rows a notch, through the bar so the same events follow as for a move
// of the bar. A list that fits (its bar disabled) does not scroll.
bool veltListbox::OnMouseWheel(int16_t notches, int16_t /*shift*/, float /*x*/, float /*y*/) {
  if (!sited() || !scrollBar_->Enabled()) return true;
  const auto self = weak_from_this().lock();
  const std::shared_ptr<veltScrollBar> bar = scrollBar_;
  bar->Value(saturated(int64_t{bar->Value()} - int64_t{notches} * kWheelRows));
  return true;
}

// Up and Down step the selection; Page Up and Page Down move it by the rows
// that fit, Home and End to the ends. KeyDown follows.
void veltListbox::OnKeyDown(int16_t& keyCode, int16_t& shift) {
  const auto self = weak_from_this().lock();
  const int32_t count = std::min(ListboxItems.Count(), kListboxLastPosition);
  if (keyCode == kKeyUp) {
    if (selectedItem_ >= 2) SelectedItem(static_cast<int16_t>(selectedItem_ - 1));
  } else if (keyCode == kKeyDown) {
    // A position set below 1 steps to the first entry, not to another non-entry.
    if (selectedItem_ < count) SelectedItem(static_cast<int16_t>(std::max(selectedItem_ + 1, 1)));
  } else if (const int16_t target = pageTarget(keyCode); target != 0 && target != selectedItem_) {
    SelectedItem(target);
  }
  if (sited()) RaiseEvent(*host_, "KeyDown", KeyDown, keyCode, shift);
}

int16_t veltListbox::pageTarget(int16_t keyCode) const {
  const int32_t count = std::min(ListboxItems.Count(), kListboxLastPosition);
  if (count == 0) return 0;
  const int32_t page = std::max(VisibleRows(), 1);
  int32_t target = 0;
  switch (keyCode) {
    case kKeyPageUp:
      target = selectedItem_ - page;
      break;
    case kKeyPageDown:
      target = selectedItem_ + page;
      break;
    case kKeyHome:
      target = 1;
      break;
    case kKeyEnd:
      target = count;
      break;
    default:
      return 0;
  }
  return static_cast<int16_t>(std::clamp(target, 1, count));
}

void veltListbox::OnKeyUp(int16_t& keyCode, int16_t& shift) {
  const auto self = weak_from_this().lock();
  if (sited()) RaiseEvent(*host_, "KeyUp", KeyUp, keyCode, shift);
}

void veltListbox::OnKeyPress(int16_t& keyAscii) {
  const auto self = weak_from_this().lock();
  if (sited()) RaiseEvent(*host_, "KeyPress", KeyPress, keyAscii);
}

void veltListbox::OnEnterFocus() {
  focused_ = true;
}

void veltListbox::OnExitFocus() {
  focused_ = false;
  draw(false);
}

}  // namespace velt
