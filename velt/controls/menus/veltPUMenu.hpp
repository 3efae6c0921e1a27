#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velt/controls/menus/MenuItemListings.hpp"
#include "velt/controls/menus/MenuItems.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/foundation/FrameProperties.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Types.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

class ControlHost;
class Font;
class ImageList;
class MenuItemListing;
class PopupWindow;
class Timer;

// An owner-drawn popup menu. On its form it is a small fixed-size control that
// draws nothing; its face is a pop-up window of its own (PUMenu): a topmost,
// translucent tool window with a drop shadow, owned by the form's window.
// The host fills MenuItem and calls CreateMenu, which lays out the rows of one
// group, places the window at a screen position (flipped at the screen's right
// and bottom edges, and kept on the screen), shows it and waits until the mouse
// buttons are up before its tmrFocus timer starts watching for presses
// outside. Moving over a row highlights it; a click on a selectable row raises
// ItemClick, then hides the menu; the next tmrFocus tick after the window went
// raises Closed.
//
// As desktop menus do, it is as wide as its widest caption but no wider than
// the screen; a menu taller than the screen scrolls, with the wheel and with
// arrow rows at its ends (resting on one scrolls every tmrScroll tick, a click
// on one scrolls a row); and it has a keyboard: Up and Down move the highlight
// over the selectable rows, Enter chooses as a click does, Escape closes, and
// the first letter of a caption highlights the next row it begins.
//
// Of the control frame it keeps the type code, the colour and font
// properties and their persistence: no hover timer, no caption, no Enabled.
class veltPUMenu : public UserControl, public std::enable_shared_from_this<veltPUMenu> {
 public:
  // Where the menu is in its life, from the window and the focus timer.
  enum MenuState : int32_t {
    msIdle = 0,     // hidden, timer off
    msOpening = 1,  // shown, waiting for the mouse buttons to be released
    msOpen = 2,     // shown, the timer watches for presses outside
    msClosing = 3,  // hidden, Closed comes with the next tick
  };

  static constexpr int16_t kID = 9;
  static constexpr OLE_COLOR kDefaultSelectionColor = 33023;  // 0x0080FF, an orange
  static constexpr int32_t kControlSize = 705;                // twips, either way
  static constexpr uint8_t kWindowAlpha = 230;
  static constexpr const char* kWindowName = "PUMenu";
  static constexpr const char* kTimerName = "tmrFocus";
  static constexpr int32_t kTimerInterval = 1;  // milliseconds
  static constexpr const char* kScrollTimerName = "tmrScroll";
  static constexpr int32_t kScrollInterval = 60;  // milliseconds a row, resting on an arrow row

  veltPUMenu() = default;
  veltPUMenu(const veltPUMenu&) = delete;
  veltPUMenu& operator=(const veltPUMenu&) = delete;
  ~veltPUMenu() override;

  std::string ClassName() const override { return "veltPUMenu"; }
  int16_t ID() const override { return kID; }

  // Public fields. MenuItem is the content, shared with the host (nullptr
  // reads as an empty menu); MenuVisible is True while a menu is up.
  std::shared_ptr<MenuItems> MenuItem;
  bool MenuVisible = false;

  // MenuItem becomes a new empty collection; nothing is selected.
  void ClearItems();
  // Lays out the items of group sGroup, places the window at screen position
  // (X, Y) in twips, shows it and returns once the left and right mouse
  // buttons are up, letting pending events run meanwhile. X = Y = 0 opens at
  // the pointer. X and Y are written back as used: the pointer's position, or
  // flipped left by the menu's width and up by its height where the menu
  // would pass the screen's right or bottom edge, then moved onto the screen
  // where that is not enough (a menu taller than the screen starts at its top
  // and scrolls). Opened downward, the top border stays open over the first
  // M_Width pixels. Steps the window system cannot do are skipped. Error 91
  // while the menu is not sited.
  void CreateMenu(int32_t& X, int32_t& Y, std::string& sGroup, int16_t& M_Width);
  // The same with values: nothing is written back.
  void CreateMenu(const int32_t& X = 0, const int32_t& Y = 0, const std::string& sGroup = "",
                  const int16_t& M_Width = 0);
  // Hides the window; Closed follows from the timer.
  void KillMenu();

  // Properties, in the order they are stored. Font is the host's and raises
  // error 91 while the menu is not sited; the next CreateMenu takes it.
  OLE_COLOR BackColor() const { return frame_.BackColor; }
  void BackColor(OLE_COLOR color);
  OLE_COLOR ForeColor() const { return frame_.ForeColor; }
  void ForeColor(OLE_COLOR color);
  std::shared_ptr<velt::Font> Font() const;
  void Font(std::shared_ptr<velt::Font> font);  // by reference; nullptr is error 91
  std::shared_ptr<velt::ImageList> ImageList() const { return imageList_; }
  void ImageList(std::shared_ptr<velt::ImageList> imageList);  // by reference; nullptr = none
  OLE_COLOR SelectionColor() const { return selectionColor_; }
  void SelectionColor(OLE_COLOR color);

  // Events, in slot order. ItemIndex is the clicked item's position in the
  // items the menu shows, ItemKey its Key.
  Event<int16_t /*ItemIndex*/, const std::string& /*ItemKey*/> ItemClick;
  Event<> Closed;

  // The menu's fields, read-only, for tools and tests. Colors holds the
  // twelve menu colours numbered 0..11 (entry 1 the back colour, 7 the frames,
  // 8 the captions, 9 to 11 the selection tints). SelectedIndex is the Index
  // of the item under the pointer (0 = none); Listings the rows laid out by
  // the last CreateMenu; Window the PUMenu pop-up.
  const ColorScheme& Colors() const { return colors_; }
  int16_t SelectedIndex() const { return selectedIndex_; }
  int16_t OpenWidth() const { return openWidth_; }
  std::shared_ptr<const MenuItemListings> Listings() const { return listings_; }
  std::shared_ptr<PopupWindow> Window() const { return window_; }
  MenuState State() const;
  // Pixels the rows are scrolled up by; 0 when the menu fits the screen.
  int32_t ScrollTop() const { return scroll_; }

  // UserControl. The menu takes no input on its form.
  void Initialize(ControlHost& host) override;
  void InitProperties() override;
  void ReadProperties(PropertyBag& bag) override;
  void WriteProperties(PropertyBag& bag) override;
  void Resize() override;
  void Terminate() override;
  void OnMouseDown(int16_t, int16_t, float, float) override {}
  void OnMouseMove(int16_t, int16_t, float, float) override {}
  void OnMouseUp(int16_t, int16_t, float, float) override {}
  void OnKeyDown(int16_t&, int16_t&) override {}
  void OnKeyUp(int16_t&, int16_t&) override {}
  void OnKeyPress(int16_t&) override {}
  void OnEnterFocus() override {}
  void OnExitFocus() override {}

 private:
  ControlHost& host() const;  // error 91 while not sited
  void notifyChanged(const char* name);
  bool windowShown() const;
  bool timerRunning() const;
  bool buttonHeld() const;

  // Life cycle.
  void siteWindow(ControlHost& host);
  void siteTimer(ControlHost& host);
  void readImageList(const PropertyBag& bag);

  // Opening.
  void placeAtPointer(int32_t& X, int32_t& Y) const;
  int32_t layOut(const std::string& group);
  int32_t menuWidth(int32_t screenWidth);
  void waitForButtonsUp();

  // Painting.
  void rebuildColors();
  void paintMenu();

  // The window and the timer.
  void onWindowMouseMove(float y);
  void onWindowClick();
  void onWindowWheel(int16_t notches);
  void onWindowKeyDown(int16_t keyCode);
  void onWindowKeyPress(int16_t keyAscii);
  void onScrollTick();
  void onWindowLostFocus();
  void onTimerTick();
  void checkOutsideClick();
  void hideWindow();

  // Scrolling and the keyboard.
  int32_t rowOffset() const;
  int32_t arrowAt(float y) const;  // -1 the top arrow row, 1 the bottom one, 0 neither
  void scrollBy(int32_t pixels);
  void highlight(const MenuItemListing& row);
  void moveHighlight(int32_t step);
  void jumpToLetter(int16_t keyAscii);

  ControlHost* host_ = nullptr;
  FrameProperties frame_;  // BackColor and ForeColor; the menu has no caption
  std::shared_ptr<velt::ImageList> imageList_;
  OLE_COLOR selectionColor_ = kDefaultSelectionColor;
  ColorScheme colors_;
  std::shared_ptr<PopupWindow> window_;
  std::shared_ptr<Timer> tmrFocus_;
  Connection windowMouseMove_;
  Connection windowClick_;
  Connection windowLostFocus_;
  Connection windowWheel_;
  Connection windowMouseDown_;
  Connection windowKeyDown_;
  Connection windowKeyPress_;
  Connection timerTick_;
  std::shared_ptr<Timer> tmrScroll_;
  Connection scrollTick_;
  std::shared_ptr<MenuItemListings> listings_;
  // What the last CreateMenu laid out: the rows index into these items.
  std::shared_ptr<MenuItems> shownItems_;
  int16_t selectedIndex_ = 0;
  int16_t openWidth_ = 0;
  uint64_t openings_ = 0;  // CreateMenu calls so far
  // Scrolling, when the rows do not fit the screen: the pixels scrolled, the
  // most there are to scroll, a row's height as a step, the direction the
  // arrow row under the pointer scrolls, and where the pointer was last.
  bool scrolling_ = false;
  int32_t scroll_ = 0;
  int32_t maxScroll_ = 0;
  int32_t scrollStep_ = 1;
  int32_t scrollDirection_ = 0;
  float pointerY_ = -1;
  bool resizing_ = false;
};

}  // namespace velt
