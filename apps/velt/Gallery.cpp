#include "apps/velt/Gallery.hpp"

#include <algorithm>
#include <string>

#include "apps/velt/GalleryIcons.hpp"
#include "velt/controls/buttons/veltButton.hpp"
#include "velt/controls/lists/veltColorPicker.hpp"
#include "velt/controls/lists/veltListbox.hpp"
#include "velt/controls/lists/veltMonthview.hpp"
#include "velt/controls/menus/MenuItems.hpp"
#include "velt/controls/menus/veltPUMenu.hpp"
#include "velt/controls/menus/veltToolbar.hpp"
#include "velt/controls/range/veltProgressBar.hpp"
#include "velt/controls/range/veltScrollBar.hpp"
#include "velt/controls/range/veltSlider.hpp"
#include "velt/controls/text/veltLabel.hpp"
#include "velt/controls/text/veltTextBox.hpp"
#include "velt/controls/veltTab.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/WindowSystem.hpp"

namespace velt::tool {

namespace {

constexpr OLE_COLOR kFormColor = 0xF0F0F0;
constexpr OLE_COLOR kHeadingColor = 0x404040;
constexpr OLE_COLOR kGreen = 0x3C8C00;  // 0x00BBGGRR

// The left column holds the headings; the controls start right of it.
constexpr int32_t kHeadingWidth = 110;
constexpr int32_t kHeadingHeight = 18;
constexpr int32_t kColumn = 130;

constexpr int16_t kCheckIcon = 1;
constexpr int16_t kCrossIcon = 2;
constexpr int16_t kInfoIcon = 3;
constexpr int16_t kPlusIcon = 4;

constexpr int16_t kRightButton = 2;

}  // namespace

Gallery::Gallery(std::shared_ptr<WindowSystem> system)
    : system_(std::move(system)),
      icons_(GalleryIcons::Make()),
      form_(std::make_unique<Form>(system_, kCaption, kWidth, kHeight)) {
  form_->BackColor(kFormColor);
  addToolbar();
  addButtons(16);
  addProgressBars(64);
  addSliders(130);
  addScrollBars(235);
  addLabels(295);
  addPickers(375);
  addMenu(375);
  addListboxes(510);
  addScripts(615);
  addMonthviews(790);
  addTextBoxes(650);
  form_->FindSite(kFocusedName)->SetFocus();
  startCycle();
}

Gallery::~Gallery() {
  system_->Timers().Remove(cycleTimer_);
}

template <class T>
std::shared_ptr<T> Gallery::add(const char* name, int32_t left, int32_t top, int32_t width,
                                int32_t height, MyOrientation orientation) {
  // Given as a stored property, the orientation is there before the first
  // resize, so the control keeps the size asked for.
  PropertyBag stored;
  stored.WriteProperty("Orientation", Variant(static_cast<int32_t>(orientation)));
  auto control = std::make_shared<T>();
  form_->AddControl(control, name, left, rowsTop_ + top, width, height, &stored);
  return control;
}

template <class T>
std::shared_ptr<T> Gallery::add(const char* name, int32_t left, int32_t top, int32_t width,
                                int32_t height) {
  return form_->Add<T>(name, left, rowsTop_ + top, width, height);
}

void Gallery::heading(const char* name, const char* caption, int32_t top, int32_t left) {
  auto label = add<veltLabel>(name, left, top, kHeadingWidth, kHeadingHeight);
  auto font = form_->Font()->Clone();
  font->Bold(true);
  label->Font(font);
  label->BackColor(kFormColor);
  label->ForeColor(kHeadingColor);
  label->Caption(caption);
}

void Gallery::addButtons(int32_t top) {
  heading("headingButton", "veltButton", top + 6);
  const auto button = [&](const char* name, int32_t column, const char* caption) {
    auto made = add<veltButton>(name, kColumn + column * 120, top, 110, 30);
    made->Caption(caption);
    return made;
  };
  button("buttonNormal", 0, "Normal");
  button("buttonDisabled", 1, "Disabled")->Enabled(false);
  auto icon = button("buttonIcon", 2, "With icon");
  icon->ImageList(icons_);
  icon->ImageIndex(kCheckIcon);
  auto disabledIcon = button("buttonIconDisabled", 3, "Disabled");
  disabledIcon->ImageList(icons_);
  disabledIcon->ImageIndex(kCrossIcon);
  disabledIcon->Enabled(false);
  button(kFocusedName, 4, "Focused");
}

void Gallery::addProgressBars(int32_t top) {
  heading("headingProgressBar", "veltProgressBar", top);
  auto normal = add<veltProgressBar>("progressNormal", kColumn, top, 200, 20);
  normal->Value(30);
  auto colored = add<veltProgressBar>("progressColored", kColumn + 215, top, 200, 20);
  colored->ForeColor(kGreen);
  colored->Value(75);
  auto disabled = add<veltProgressBar>("progressDisabled", kColumn, top + 30, 200, 20);
  disabled->Value(60);
  disabled->Enabled(false);
  searching_ = add<veltProgressBar>(kSearchingName, kColumn + 215, top + 30, 200, 20);
  searching_->Style(tSearch);
  searching_->Value(30);
  auto vertical = add<veltProgressBar>("progressVertical", kColumn + 430, top, 20, 50, pbVertical);
  vertical->Value(65);
}

void Gallery::addSliders(int32_t top) {
  heading("headingSlider", "veltSlider", top + 4);
  const auto slider = [&](const char* name, int32_t column, int32_t row, TickStyles style) {
    auto made = add<veltSlider>(name, kColumn + column * 165, top + row * 45, 150, 25);
    made->TickStyle(style);
    return made;
  };
  slider("sliderNone", 0, 0, Tick_None);
  slider("sliderHalf", 1, 0, Tick_Half);
  slider("sliderFour", 2, 0, Tick_Four);
  slider("sliderHalfValue", 0, 1, Tick_Half_Value);
  auto fourValue = slider("sliderFourValue", 1, 1, Tick_Four_Value);
  fourValue->Max(100);
  fourValue->Value(40);
  slider("sliderDisabled", 2, 1, Tick_Four)->Enabled(false);
  // Vertical ones set their own width from the tick style.
  auto vertical = add<veltSlider>("sliderVertical", kColumn + 510, top, 25, 130, pbVertical);
  vertical->TickStyle(Tick_Four);
  auto verticalValue =
      add<veltSlider>("sliderVerticalValue", kColumn + 555, top, 25, 130, pbVertical);
  verticalValue->TickStyle(Tick_Half_Value);
  verticalValue->Value(3);
}

void Gallery::addScrollBars(int32_t top) {
  heading("headingScrollBar", "veltScrollBar", top + 10);
  add<veltScrollBar>("scrollHorizontal", kColumn, top, 200, 17, pbHorizontal);
  auto disabled =
      add<veltScrollBar>("scrollHorizontalDisabled", kColumn, top + 25, 200, 17, pbHorizontal);
  disabled->Value(20);
  disabled->Enabled(false);
  add<veltScrollBar>("scrollVertical", kColumn + 215, top - 3, 17, 48, pbVertical);
  auto verticalDisabled =
      add<veltScrollBar>("scrollVerticalDisabled", kColumn + 240, top - 3, 17, 48, pbVertical);
  verticalDisabled->Value(80);
  verticalDisabled->Enabled(false);
}

void Gallery::addLabels(int32_t top) {
  heading("headingLabel", "veltLabel", top);
  const auto label = [&](const char* name, int32_t left, int32_t row, int32_t width, int32_t height,
                         const char* caption) {
    auto made = add<veltLabel>(name, kColumn + left, top + row * 28, width, height);
    made->Caption(caption);
    return made;
  };
  label("labelPlain", 0, 0, 120, 20, "A plain label");
  label("labelEllipsis", 0, 1, 120, 20, "A caption too long to fit ends in an ellipsis");
  label("labelWrap", 135, 0, 160, 62,
        "A long caption with TextWrap set wraps onto further lines at word boundaries.")
      ->TextWrap(true);
  auto icon = label("labelIcon", 310, 0, 130, 20, "With an icon");
  icon->ImageList(icons_);
  icon->ImageIndex(kInfoIcon);
  label("labelLink", 310, 1, 130, 20, "A hyperlink")->Hyperlink("https://example.com/");
  label("labelDisabled", 455, 0, 120, 20, "Disabled")->Enabled(false);
}

// One caption per script: shaping (Arabic joining), right-to-left order
// (Hebrew, Arabic), fallback faces (CJK) and colour emoji.
void Gallery::addScripts(int32_t top) {
  heading("headingScripts", "Scripts", top);
  const char* const captions[] = {
      "Na\xC3\xAFve caf\xC3\xA9",                                            // Latin
      "\xCE\x9A\xCE\xB1\xCE\xBB\xCE\xB7\xCE\xBC\xCE\xAD\xCF\x81\xCE\xB1",    // Greek
      "\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82",                    // Cyrillic
      "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D \xD7\xA2\xD7\x95\xD7\x9C\xD7\x9D",   // Hebrew
      "\xD9\x85\xD8\xB1\xD8\xAD\xD8\xA8\xD8\xA7 \xD8\xA8\xD9\x83",           // Arabic
      "\xE4\xBD\xA0\xE5\xA5\xBD\xEF\xBC\x8C\xE4\xB8\x96\xE7\x95\x8C",        // CJK
      "\xF0\x9F\x98\x80 \xF0\x9F\x91\x8D\xF0\x9F\x8F\xBD \xF0\x9F\x8E\x89",  // emoji
  };
  int32_t left = kColumn;
  int column = 0;
  for (const char* caption : captions) {
    const std::string name = "labelScript" + std::to_string(++column);
    add<veltLabel>(name.c_str(), left, top, 78, 20)->Caption(caption);
    left += 84;
  }
}

// Two rows of text boxes: plain, with filters, masked, locked, disabled and
// right-aligned.
void Gallery::addTextBoxes(int32_t top) {
  heading("headingTextBox", "veltTextBox", top);
  int column = 0;
  const auto box = [&](const char* name, const char* text) {
    auto made =
        add<veltTextBox>(name, kColumn + (column % 4) * 160, top + (column / 4) * 30, 150, 20);
    ++column;
    made->Text(text);
    return made;
  };
  box("textPlain", "Plain text");
  box("textNumbers", "12345")->DataFormat(df_NumOnly);
  box("textUpper", "UPPER CASE")->DataFormat(df_UCase);
  box("textPassword", "secret")->PasswordChar("*");
  box("textLocked", "Locked text")->Locked(true);
  box("textDisabled", "Disabled")->Enabled(false);
  box("textRight", "Right aligned")->Alignment(1);
}

void Gallery::addPickers(int32_t top) {
  heading("headingColorPicker", "veltColorPicker", top);
  add<veltColorPicker>("colorPicker", kColumn, top, 160, 85);
  heading("headingTab", "veltTab", top + 100);
  add<veltTab>("tab", kColumn, top + 97, 40, 24);
}

// The menu control is an anchor that draws nothing, hidden on the form; the
// button opens its pop-up just below itself.
void Gallery::addMenu(int32_t top) {
  constexpr int32_t kLeft = kColumn + 200;
  heading("headingPUMenu", "veltPUMenu", top + 6, kLeft);
  auto opener = add<veltButton>(kMenuButtonName, kLeft + 120, top, 120, 30);
  opener->Caption("Open menu");
  opener->ImageList(icons_);
  opener->ImageIndex(kPlusIcon);
  menu_ = add<veltPUMenu>(kMenuName, kLeft + 260, top, 47, 47);
  form_->FindSite(kMenuName)->Visible(false);
  menu_->ImageList(icons_);
  menu_->MenuItem = std::make_shared<MenuItems>();
  fillMenu(*menu_->MenuItem);
  connections_.push_back(opener->Click.connect([this] { openMenu(); }));
  // A right press on the bare form opens the same menu at the pointer.
  connections_.push_back(form_->MouseDown.connect([this](int16_t button, int16_t, float, float) {
    if (button == kRightButton) menu_->CreateMenu();
  }));
}

void Gallery::fillMenu(MenuItems& items) {
  items.Add("title", "Gallery menu", 0, true, "", "", itTitle);
  items.Add("check", "A checked item", 0, true, "", "", itCheck, true);
  items.Add("icon", "An item with an icon", kCheckIcon);
  items.Add("gap", "", 0, true, "", "", itPlaceholder);
  items.Add("disabled", "A disabled item", kCrossIcon, false);
  items.Add("bold", "A bold item", 0, true, "", "", itNormal, false, true);
}

void Gallery::openMenu() {
  const Site& opener = *form_->FindSite(kMenuButtonName);
  const RectL rect = opener.WindowRect();
  const int32_t twips = opener.TwipsPerPixelX();
  menu_->CreateMenu(rect.Left * twips, rect.Bottom * opener.TwipsPerPixelY(), "",
                    static_cast<int16_t>(rect.Width()));
}

void Gallery::addListboxes(int32_t top) {
  heading("headingListbox", "veltListbox", top);
  const auto list = [&](const char* name, int32_t column) {
    return add<veltListbox>(name, kColumn + column * 125, top, 120, 90);
  };
  auto icons = list("listIcons", 0);
  icons->ImageList(icons_);
  icons->ListboxItems.Add("root", "Documents", "", kInfoIcon);
  icons->ListboxItems.Add("done", "\tFinished", "", kCheckIcon);
  icons->ListboxItems.Add("failed", "\tFailed", "", kCrossIcon);
  icons->ListboxItems.Add("more", "\t\tMore", "", kPlusIcon);
  icons->SelectedItem(1);
  auto shortened = list("listShortened", 1);
  shortened->ListboxItems.Add("a", "A caption far too long for the list");
  shortened->ListboxItems.Add("b", "Short");
  shortened->ListboxItems.Add("c", "Another caption that does not fit");
  auto hover = list("listHoverSelect", 2);
  hover->HoverSelect(true);
  for (const char* caption : {"Moving the mouse", "selects the row", "under it"})
    hover->ListboxItems.Add("", caption);
  auto disabled = list("listDisabled", 3);
  disabled->ImageList(icons_);
  disabled->ListboxItems.Add("x", "Disabled", "", kCrossIcon);
  disabled->ListboxItems.Add("y", "\tIndented", "", kInfoIcon);
  disabled->Enabled(false);
  auto scrolling = list("listScrolling", 4);
  for (int entry = 1; entry <= 40; ++entry)
    scrolling->ListboxItems.Add("", "Entry " + std::to_string(entry));
}

// A column right of the others: a calendar to use, and a disabled one in
// other colours. Both size themselves to their grid.
void Gallery::addMonthviews(int32_t left) {
  heading("headingMonthview", "veltMonthview", 16, left);
  auto calendar = add<veltMonthview>("monthview", left, 40, 220, 165);
  calendar->iDay(14);
  auto disabled = add<veltMonthview>("monthviewDisabled", left, 215, 220, 165);
  disabled->ForeColor(kGreen);
  disabled->iDay(3);
  disabled->Enabled(false);
}

// ---- veltToolbar ------------------------------------------------------------

// Across the top of the form; the rows below count their tops from its bottom.
void Gallery::addToolbar() {
  toolbar_ = form_->Add<veltToolbar>(kToolbarName, 0, 0, kWidth, kToolbarHeight);
  toolbar_->ImageList(icons_);
  toolbar_->MenuImageList(icons_);
  fillToolbar();
  // The gallery toggles its check button itself, as a host does.
  connections_.push_back(toolbar_->ItemClicked.connect(
      [this](int16_t index, const std::string&) { toolbarItemClicked(index); }));
  rowsTop_ = kToolbarHeight;
}

void Gallery::fillToolbar() {
  ToolbarItems& items = toolbar_->ToolbarItems;
  items.Add("new", "New", kPlusIcon);
  items.Add("done", "Done", kCheckIcon);
  items.Add("wrap", "Wrap", 0, mitCheckButton, true);
  items.Add("sep", "", 0, mitSeparator);
  items.Add("title", "Toolbar:", 0, mitCaption);
  items.Add("gap", "", kInfoIcon, mitPlaceholder);
  MenuItems& file = *items.Add("file", "File", 0, mitMenu)->ToolbarMenuItems;
  file.Add("open", "Open", kPlusIcon);
  file.Add("save", "Save", kCheckIcon);
  file.Add("", "", 0, true, "", "", itPlaceholder);
  file.Add("close", "Close", kCrossIcon);
  MenuItems& view = *items.Add("view", "View", 0, mitMenu2)->ToolbarMenuItems;
  view.Add("zoom", "Zoom", 0, true, "", "", itCheck, true);
  view.Add("grid", "Grid", 0, true, "", "", itCheck);
  items.Add("off", "Off", kCrossIcon, mitNormalButton, false, false);
}

void Gallery::toolbarItemClicked(int16_t index) {
  const std::shared_ptr<ToolbarItem> item = toolbar_->ToolbarItems.Item(index);
  if (item->Style() != mitCheckButton) return;
  item->Checked(!item->Checked());
  toolbar_->ToolbarItems.Refresh();
}

void Gallery::startCycle() {
  cycleTimer_ = system_->Timers().Add([this] { cycle(); });
  system_->Timers().Start(cycleTimer_, kCycleInterval);
}

void Gallery::cycle() {
  const int16_t next = searching_->Value() + kCycleStep;
  searching_->Value(next > veltProgressBar::kHighestValue ? veltProgressBar::kLowestValue : next);
}

}  // namespace velt::tool
