#include "velt/controls/lists/veltMonthview.hpp"

#include <limits>
#include <utility>

#include "velt/controls/menus/veltPUMenu.hpp"
#include "velt/foundation/Colors.hpp"
#include "velt/foundation/EventRaising.hpp"
#include "velt/foundation/FrameProperties.hpp"
#include "velt/foundation/Gradients.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Timer.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

namespace {

using Layout = MonthviewLayout;

constexpr const char* kBackColorKey = "BackColor";
constexpr const char* kForeColorKey = "ForeColor";
constexpr const char* kSelectionColorKey = "SelectionColor";
constexpr const char* kDayKey = "Day";
constexpr const char* kMonthKey = "Month";
constexpr const char* kYearKey = "Year";
constexpr const char* kWeekdayNameKey = "WeekdayName";
constexpr const char* kMonthNameKey = "MonthName";

constexpr int16_t kLeftButton = 1;
constexpr int32_t kHalfWay = 128;
constexpr OLE_COLOR kWhite = 0xFFFFFF;

// The menu part sits this far off the form, beyond its own size.
constexpr int32_t kMenuOffscreen = -100;
constexpr int32_t kMenuSide = veltPUMenu::kControlSize / 15;

// Arrow glyphs of the symbol font.
constexpr const char* kLeftArrow = "3";
constexpr const char* kRightArrow = "4";
constexpr const char* kUpArrow = "5";
constexpr const char* kDownArrow = "6";

// The names of a comma-separated list, in order; a short list leaves the
// remaining names empty, names beyond the count are dropped.
template <size_t N>
std::array<std::string, N> splitList(const std::string& list) {
  std::array<std::string, N> names;
  size_t start = 0;
  for (size_t i = 0; i < N && start <= list.size(); ++i) {
    const size_t comma = list.find(',', start);
    const size_t end = comma == std::string::npos ? list.size() : comma;
    names[i] = list.substr(start, end - start);
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  return names;
}

int16_t clampedMonth(int16_t month) {
  return month > 12 ? int16_t{12} : month < 1 ? int16_t{1} : month;
}

// The rectangle's four edges, both corners included.
void outline(Canvas& c, const Layout::Box& box, OLE_COLOR color) {
  const int32_t right = box.Left + box.Width - 1;
  const int32_t bottom = box.Top + box.Height - 1;
  c.Line(box.Left, box.Top, right, box.Top, color);
  c.Line(right, box.Top, right, bottom, color);
  c.Line(right, bottom, box.Left, bottom, color);
  c.Line(box.Left, bottom, box.Left, box.Top, color);
}

void printCentred(Canvas& c, const Layout::Box& box, const std::string& text) {
  c.CurrentX(static_cast<float>(box.Width / 2.0 - c.TextWidth(text) / 2.0 + box.Left));
  c.CurrentY(static_cast<float>(box.Height / 2.0 - c.TextHeight(text) / 2.0 + box.Top));
  c.Print(text);
}

}  // namespace

veltMonthview::~veltMonthview() = default;

// ---- Properties -------------------------------------------------------------

void veltMonthview::BackColor(OLE_COLOR color) {
  backColor_ = color;
  markChanged(kBackColorKey);
  colorsChanged();
}

void veltMonthview::ForeColor(OLE_COLOR color) {
  foreColor_ = color;
  markChanged(kForeColorKey);
  colorsChanged();
}

void veltMonthview::SelectionColor(OLE_COLOR color) {
  selectionColor_ = color;
  markChanged(kSelectionColorKey);
  colorsChanged();
}

bool veltMonthview::Enabled() const {
  return host().Enabled();
}

void veltMonthview::Enabled(bool enabled) {
  host().Enabled(enabled);
  markChanged(FrameProperties::Key(FrameProperty::Enabled));
  draw();
}

std::shared_ptr<velt::Font> veltMonthview::Font() const {
  return host().Font();
}

// A new font measures the grid again, and the control takes its new size.
void veltMonthview::Font(std::shared_ptr<velt::Font> font) {
  if (!font) throw Error(errObjectNotSet, "veltMonthview.Font: no font object given");
  host().Font(std::move(font));
  markChanged(FrameProperties::Key(FrameProperty::Font));
  copyLooksToMenu();
  layOut();
  sizeToGrid();
  draw();
}

void veltMonthview::iDay(int16_t day) {
  day_ = day;
  markChanged("iDay");
  layout_.FillDays(year_, month_);
  draw();
}

void veltMonthview::iMonth(int16_t month) {
  month_ = clampedMonth(month);
  markChanged("iMonth");
  layout_.FillDays(year_, month_);
  draw();
}

// The header is measured again: the label holds the year.
void veltMonthview::iYear(int16_t year) {
  year_ = year;
  markChanged("iYear");
  if (sited()) layOut();
  draw();
}

void veltMonthview::WeekdayName(const std::string& names) {
  weekdayName_ = names;
  markChanged(kWeekdayNameKey);
  splitNames();
  draw();
}

void veltMonthview::MonthName(const std::string& names) {
  monthName_ = names;
  markChanged(kMonthNameKey);
  splitNames();
  if (!sited()) return;
  fillMenu();
  layOut();
  draw();
}

bool veltMonthview::RepeatTimerRunning() const {
  return repeat_ && repeat_->Enabled();
}

void veltMonthview::markChanged(const char* name) {
  if (host_) host_->PropertyChanged(name);
}

ControlHost& veltMonthview::host() const {
  if (!host_)
    throw Error(errObjectNotSet, "veltMonthview: the control is not sited on a container");
  return *host_;
}

// The surface draws in the host's font, which the container may have replaced.
Canvas& veltMonthview::surface() const {
  Canvas& canvas = host().Surface();
  if (std::shared_ptr<velt::Font> font = host_->Font(); font && canvas.Font() != font)
    canvas.Font(std::move(font));
  return canvas;
}

// ---- Life cycle and persistence ---------------------------------------------

void veltMonthview::Initialize(ControlHost& host) {
  host_ = &host;
  pressed_ = false;
  hoverCell_ = 0;
  hoverHeader_ = 0;
  bMenuOpen = false;
  hover_.Attach(
      host, [this](HoverTracker::Finding finding) { hoverFinding(finding); },
      [this]() -> std::shared_ptr<const void> { return weak_from_this().lock(); });
  repeat_ = host.CreateTimer(kRepeatTimerName);
  repeat_->Interval(kRepeatInterval);
  repeat_->Enabled(false);
  connections_.push_back(repeat_->Tick.connect([this] { onRepeatTick(); }));
  connections_.push_back(host.ConnectTodayChanged([this] { draw(); }));
  createMenu();
  splitNames();
  scheme_ = SchemeNormal(backColor_, foreColor_, selectionColor_);
}

void veltMonthview::InitProperties() {
  ControlHost& h = host();
  backColor_ = kDefaultBackColor;
  foreColor_ = kDefaultForeColor;
  selectionColor_ = kDefaultSelectionColor;
  h.Font(h.AmbientFont());
  day_ = kDefaultDay;
  month_ = kDefaultMonth;
  year_ = kDefaultYear;
  weekdayName_ = kDefaultWeekdayName;
  monthName_ = kDefaultMonthName;
  splitNames();
  layOut();
  fillMenu();
  colorsChanged();
}

// A stored month outside 1..12 is clamped as the property clamps it.
void veltMonthview::ReadProperties(PropertyBag& bag) {
  ControlHost& h = host();
  FrameProperties frame;
  backColor_ = bag.ReadProperty(kBackColorKey, Variant::Color(kDefaultBackColor)).ToColor();
  foreColor_ = bag.ReadProperty(kForeColorKey, Variant::Color(kDefaultForeColor)).ToColor();
  selectionColor_ =
      bag.ReadProperty(kSelectionColorKey, Variant::Color(kDefaultSelectionColor)).ToColor();
  frame.Read(FrameProperty::Enabled, bag, h);
  frame.Read(FrameProperty::Font, bag, h);
  day_ = bag.ReadProperty(kDayKey, Variant(kDefaultDay)).ToInteger();
  month_ = clampedMonth(bag.ReadProperty(kMonthKey, Variant(kDefaultMonth)).ToInteger());
  year_ = bag.ReadProperty(kYearKey, Variant(kDefaultYear)).ToInteger();
  weekdayName_ =
      bag.ReadProperty(kWeekdayNameKey, Variant(std::string(kDefaultWeekdayName))).ToString();
  monthName_ = bag.ReadProperty(kMonthNameKey, Variant(std::string(kDefaultMonthName))).ToString();
  splitNames();
  layOut();
  fillMenu();
  colorsChanged();
}

void veltMonthview::WriteProperties(PropertyBag& bag) {
  const ControlHost& h = host();
  const FrameProperties frame;
  bag.WriteProperty(kBackColorKey, Variant::Color(backColor_), Variant::Color(kDefaultBackColor));
  bag.WriteProperty(kForeColorKey, Variant::Color(foreColor_), Variant::Color(kDefaultForeColor));
  bag.WriteProperty(kSelectionColorKey, Variant::Color(selectionColor_),
                    Variant::Color(kDefaultSelectionColor));
  frame.Write(FrameProperty::Enabled, bag, h);
  frame.Write(FrameProperty::Font, bag, h);
  bag.WriteProperty(kDayKey, Variant(day_), Variant(kDefaultDay));
  bag.WriteProperty(kMonthKey, Variant(month_), Variant(kDefaultMonth));
  bag.WriteProperty(kYearKey, Variant(year_), Variant(kDefaultYear));
  bag.WriteProperty(kWeekdayNameKey, Variant(weekdayName_),
                    Variant(std::string(kDefaultWeekdayName)));
  bag.WriteProperty(kMonthNameKey, Variant(monthName_), Variant(std::string(kDefaultMonthName)));
}

// The control takes the size of its grid; the header is centred on the width
// it ends up with.
void veltMonthview::Resize() {
  if (!host_) return;
  sizeToGrid();
  layOut();
  draw();
}

void veltMonthview::Terminate() {
  hover_.Detach();
  if (repeat_) repeat_->Enabled(false);
  connections_.clear();
  host_ = nullptr;
}

// ---- Parts and layout -------------------------------------------------------

void veltMonthview::createMenu() {
  menu_ = std::make_shared<veltPUMenu>();
  host_->AddChild(menu_, kMenuName, kMenuOffscreen, kMenuOffscreen, kMenuSide, kMenuSide);
  connections_.push_back(menu_->ItemClick.connect(
      [this](int16_t itemIndex, const std::string&) { onMenuItemClick(itemIndex); }));
  connections_.push_back(menu_->Closed.connect([this] { onMenuClosed(); }));
}

// Twelve rows, one per month in order, so an item's index is its month.
void veltMonthview::fillMenu() {
  menu_->ClearItems();
  for (const std::string& name : months_)
    menu_->MenuItem->Add("", name);
}

void veltMonthview::copyLooksToMenu() {
  if (!sited()) return;
  menu_->BackColor(backColor_);
  menu_->ForeColor(foreColor_);
  menu_->SelectionColor(selectionColor_);
  menu_->Font(host_->Font());
}

void veltMonthview::splitNames() {
  weekdays_ = splitList<7>(weekdayName_);
  months_ = splitList<MonthviewLayout::kMonths>(monthName_);
}

void veltMonthview::layOut() {
  const Canvas& canvas = surface();
  layout_.LayOutGrid(canvas);
  layout_.LayOutHeader(canvas, months_, year_);
  layout_.FillDays(year_, month_);
}

// Moving resizes the surface and calls Resize again; the nested call finds the
// size right and only lays out and draws. A container that refuses the size
// leaves the control as it is.
void veltMonthview::sizeToGrid() {
  if (sizing_) return;
  sizing_ = true;
  try {
    ControlHost& h = host();
    const SizeL size = layout_.OwnSize();
    const int32_t width = size.width * h.TwipsPerPixelX();
    const int32_t height = size.height * h.TwipsPerPixelY();
    if (width != h.Width() || height != h.Height()) h.Move(h.Left(), h.Top(), width, height);
  } catch (const Error&) {
  }
  sizing_ = false;
}

void veltMonthview::colorsChanged() {
  scheme_ = SchemeNormal(backColor_, foreColor_, selectionColor_);
  copyLooksToMenu();
  draw();
}

// ---- Painting ---------------------------------------------------------------

void veltMonthview::draw() {
  if (!sited()) return;
  Canvas& canvas = surface();
  if (canvas.BackColor() != scheme_.Back) canvas.BackColor(scheme_.Back);
  canvas.Clear();
  const OLE_COLOR text = host_->Enabled() ? scheme_.Text : scheme_.EdgeDark;
  canvas.ForeColor(text);
  if (hoverCell_ != 0) {
    drawMark(canvas, layout_.CellAt(hoverCell_), scheme_.Accent1, scheme_.Accent3);
  }
  drawCells(canvas, text);
  drawWeekdays(canvas);
  drawHeader(canvas, text);
}

// A cell shows the selected mark for iDay (mixed with the hover mark while
// hovered), else the today mark. Empty cells are never selected, whatever iDay
// holds.
void veltMonthview::drawCells(Canvas& canvas, OLE_COLOR text) const {
  const int32_t lineHeight = canvas.TextHeight("I");
  for (int32_t k = 1; k <= Layout::kCells; ++k) {
    const Layout::Cell& cell = layout_.CellAt(k);
    if (cell.Day == 0) continue;
    if (cell.Day == day_ && k == hoverCell_)
      drawMark(canvas, cell, BlendColor(scheme_.Accent1, scheme_.FillTop, kHalfWay),
               BlendColor(scheme_.Accent3, scheme_.FillBottom, kHalfWay));
    else if (cell.Day == day_)
      drawMark(canvas, cell, scheme_.FillTop, scheme_.FillBottom);
    else if (showsToday(cell.Day))
      drawMark(canvas, cell, scheme_.FillTop, scheme_.FillTop);
    const std::string number = std::to_string(cell.Day);
    canvas.ForeColor(text);
    canvas.CurrentX(
        static_cast<float>(cell.Width / 2 - canvas.TextWidth(number) / 2 + cell.Left - 1));
    canvas.CurrentY(static_cast<float>(cell.Height / 2 - lineHeight / 2 + cell.Top));
    canvas.Print(number);
  }
}

void veltMonthview::drawMark(Canvas& canvas, const Layout::Cell& cell, OLE_COLOR from,
                             OLE_COLOR to) const {
  GradientRect(canvas, cell.Left, cell.Top, cell.Width, cell.Height, ColorToVertexColor(from),
               ColorToVertexColor(to), kGradientHorizontal);
  outline(canvas, cell, scheme_.EdgeDark);
}

// In the band between the header and the grid, each name over its column.
void veltMonthview::drawWeekdays(Canvas& canvas) const {
  const int32_t y = layout_.Margin() / 2 - canvas.TextHeight("I") / 2 + layout_.HeaderHeight();
  for (int32_t c = 1; c <= Layout::kColumns; ++c) {
    const std::string& name = weekdays_[c - 1];
    if (name.empty()) continue;
    const Layout::Cell& cell = layout_.CellAt(c);
    canvas.CurrentX(
        static_cast<float>(cell.Width / 2 - canvas.TextWidth(name) / 2 + cell.Left - 1));
    canvas.CurrentY(static_cast<float>(y));
    canvas.Print(name);
  }
}

void veltMonthview::drawHeader(Canvas& canvas, OLE_COLOR text) const {
  if (hoverHeader_ != Layout::heNone && host_->Enabled())
    drawHeaderFace(canvas, layout_.Header(hoverHeader_));
  canvas.ForeColor(text);
  printCentred(canvas, layout_.Header(Layout::heMonthName),
               months_[month_ - 1] + " " + std::to_string(year_));
  const std::shared_ptr<velt::Font> font = canvas.Font();
  std::shared_ptr<velt::Font> glyphs = font->Clone();
  glyphs->Name(kGlyphFontName);
  canvas.Font(glyphs);
  printCentred(canvas, layout_.Header(Layout::heNextMonth), kRightArrow);
  printCentred(canvas, layout_.Header(Layout::hePreviousMonth), kLeftArrow);
  printCentred(canvas, layout_.Header(Layout::heNextYear), kUpArrow);
  printCentred(canvas, layout_.Header(Layout::hePreviousYear), kDownArrow);
  canvas.Font(font);
}

// A hovered element looks like a small button: a shaded face in the hover
// palette, sunk in the pressed one while the left button holds it.
void veltMonthview::drawHeaderFace(Canvas& canvas, const Layout::Box& box) const {
  const ColorScheme face = pressed_ || (bMenuOpen && hoverHeader_ == Layout::heMonthName)
                               ? SchemePressed(backColor_, foreColor_, kWhite)
                               : SchemeHover(backColor_, foreColor_, kWhite);
  GradientRect(canvas, box.Left, box.Top, box.Width, box.Height, ColorToVertexColor(face.FillTop),
               ColorToVertexColor(face.FillBottom), kGradientVertical);
  outline(canvas, box, face.EdgeDark);
}

bool veltMonthview::showsToday(int16_t day) const {
  const CalendarDate today = host_->Today();
  return today.Year == year_ && today.Month == month_ && today.Day == day;
}

// The pointer left: nothing is hovered any more, except the month name while
// its menu is open.
void veltMonthview::hoverFinding(HoverTracker::Finding finding) {
  if (finding != HoverTracker::Finding::Left) return;
  const int16_t header = bMenuOpen ? hoverHeader_ : int16_t{Layout::heNone};
  if (hoverCell_ == 0 && hoverHeader_ == header) return;
  hoverCell_ = 0;
  hoverHeader_ = header;
  draw();
}

// ---- Input ------------------------------------------------------------------
// Each handler holds the control alive while it raises events: a handler may
// remove it from its container, which unsites it; the rest is then skipped.

void veltMonthview::raiseMouse(const char* name, const MouseEvent& event, int16_t button,
                               int16_t shift, float x, float y) {
  if (!sited()) return;
  RaiseEvent(*host_, name, event, button, shift, x, y);
}

// The header element is taken from the press itself as well, so a press that
// no move preceded (a touch, a script) acts where it lands.
void veltMonthview::OnMouseDown(int16_t button, int16_t shift, float x, float y) {
  if (button != kLeftButton) return;
  const auto self = weak_from_this().lock();
  pressed_ = true;
  hover_.MouseMoved();
  hoverHeader_ = layout_.HeaderAt(x, y);
  if (const int16_t cell = layout_.DayCellAt(x, y); cell != 0) {
    iDay(layout_.CellAt(cell).Day);
    RaiseEvent(*host_, "Click", Click);
    if (!sited()) return;
    hoverCell_ = cell;
  }
  headerAction();
  if (!sited()) return;
  // A menu opened by the press returns after the release: no repeat then.
  if (pressed_) repeat_->Enabled(true);
  draw();
  raiseMouse("MouseDown", MouseDown, button, shift, x, y);
}

void veltMonthview::OnMouseMove(int16_t button, int16_t shift, float x, float y) {
  const auto self = weak_from_this().lock();
  hover_.MouseMoved();
  const int16_t cell = layout_.DayCellAt(x, y);
  const int16_t header = layout_.HeaderAt(x, y);
  if (cell != hoverCell_ || header != hoverHeader_) {
    hoverCell_ = cell;
    hoverHeader_ = header;
    draw();
  }
  raiseMouse("MouseMove", MouseMove, button, shift, x, y);
}

void veltMonthview::OnMouseUp(int16_t button, int16_t shift, float x, float y) {
  if (button != kLeftButton) return;
  const auto self = weak_from_this().lock();
  pressed_ = false;
  repeat_->Enabled(false);
  draw();
  raiseMouse("MouseUp", MouseUp, button, shift, x, y);
}

// Only on the selected day: the press that came just before selected the cell
// under it, so a double click on a day picks it; elsewhere nothing happens.
// Other buttons do nothing on the calendar.
void veltMonthview::OnDblClick(int16_t button, int16_t /*shift*/, float /*x*/, float /*y*/) {
  if (button != kLeftButton || !sited() || hoverCell_ == 0 ||
      layout_.CellAt(hoverCell_).Day != day_)
    return;
  const auto self = weak_from_this().lock();
  RaiseEvent(*host_, "DblClick", DblClick);
}

// The year stops at the ends of its type rather than overflow.
void veltMonthview::headerAction() {
  if (!pressed_) return;
  switch (hoverHeader_) {
    case Layout::heMonthName:
      openMonthMenu();
      break;
    case Layout::heNextMonth:
      iMonth(static_cast<int16_t>(month_ + 1));
      break;
    case Layout::hePreviousMonth:
      iMonth(static_cast<int16_t>(month_ - 1));
      break;
    case Layout::heNextYear:
      if (year_ < std::numeric_limits<int16_t>::max()) iYear(static_cast<int16_t>(year_ + 1));
      break;
    case Layout::hePreviousYear:
      if (year_ > std::numeric_limits<int16_t>::min()) iYear(static_cast<int16_t>(year_ - 1));
      break;
    default:
      break;
  }
}

// Below the month name, as wide as it; the menu returns once the buttons are up.
void veltMonthview::openMonthMenu() {
  const RectL window = host_->WindowRect();
  const Layout::Box& name = layout_.Header(Layout::heMonthName);
  const int32_t x = (window.Left + name.Left) * host_->TwipsPerPixelX();
  const int32_t y = (window.Top + name.Top + name.Height) * host_->TwipsPerPixelY();
  bMenuOpen = true;
  const std::shared_ptr<veltPUMenu> menu = menu_;
  menu->CreateMenu(x, y, "", static_cast<int16_t>(name.Width));
}

void veltMonthview::onRepeatTick() {
  const auto self = weak_from_this().lock();
  if (!sited()) return;
  if (hoverHeader_ == Layout::heMonthName) return;  // the menu is already open
  headerAction();
}

void veltMonthview::onMenuItemClick(int16_t itemIndex) {
  if (sited()) iMonth(itemIndex);
}

void veltMonthview::onMenuClosed() {
  bMenuOpen = false;
  hoverHeader_ = Layout::heNone;
  draw();
}

}  // namespace velt
