#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "velt/controls/menus/ToolbarItems.hpp"
#include "velt/controls/menus/ToolbarLayout.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/foundation/FrameProperties.hpp"
#include "velt/foundation/HoverTracker.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Geometry.hpp"
#include "velt/platform/Types.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

class Canvas;
class Font;
class ImageList;
class ListImage;
class Picture;
class veltPUMenu;

// An owner-drawn horizontal toolbar: push buttons, check buttons, drop-down
// menu buttons (mitMenu, and mitMenu2 with an arrow), placeholders,
// separators and captions, from the public ToolbarItems the host fills (each
// ItemAdded and ItemChanged repaints the bar). A menu button opens the
// embedded veltPUMenu1 just below itself, showing the item's own
// ToolbarMenuItems (shared, not copied); while a menu is open, moving onto
// another menu button switches to its menu as in a menu bar, and Left/Right
// move to the previous/next menu button's menu. ItemClicked comes on the
// release of a left press over an item, MenuItemClicked when an entry of a
// menu is chosen.
//
// The toolbar is always as high as its items need (BarHeight); its width is
// free, and items that do not fit at the right are hidden, never drawn half.
// It does not toggle a check button's Checked: the host does, and calls
// ToolbarItems.Refresh.
class veltToolbar : public UserControl, public std::enable_shared_from_this<veltToolbar> {
 public:
  static constexpr int16_t kID = 14;
  static constexpr OLE_COLOR kDefaultSelectionColor = 33023;  // 0x0080FF, an orange
  static constexpr const char* kMenuName = "veltPUMenu1";

  veltToolbar();
  veltToolbar(const veltToolbar&) = delete;
  veltToolbar& operator=(const veltToolbar&) = delete;
  ~veltToolbar() override;

  std::string ClassName() const override { return "veltToolbar"; }
  int16_t ID() const override { return kID; }

  // Public field: the content.
  velt::ToolbarItems ToolbarItems;

  // Properties, in the order they are stored. Enabled and Font are the host's
  // and raise error 91 while the toolbar is not sited. Colours, font and
  // MenuImageList are handed to the menu as well.
  OLE_COLOR BackColor() const { return frame_.BackColor; }
  void BackColor(OLE_COLOR color);
  OLE_COLOR ForeColor() const { return frame_.ForeColor; }
  void ForeColor(OLE_COLOR color);
  OLE_COLOR SelectionColor() const { return selectionColor_; }
  void SelectionColor(OLE_COLOR color);
  std::shared_ptr<velt::ImageList> MenuImageList() const { return menuImageList_; }
  void MenuImageList(std::shared_ptr<velt::ImageList> imageList);  // nullptr = none
  std::shared_ptr<velt::ImageList> ImageList() const { return imageList_; }
  void ImageList(std::shared_ptr<velt::ImageList> imageList);  // nullptr = none
  bool Enabled() const;
  void Enabled(bool enabled);
  std::shared_ptr<velt::Font> Font() const;
  void Font(std::shared_ptr<velt::Font> font);  // by reference; nullptr is error 91

  // Events, in slot order.
  Event<int16_t /*ItemIndex*/, const std::string& /*ItemKey*/> ItemClicked;
  Event<int16_t /*ItemIndex*/, const std::string& /*ItemKey*/, int16_t /*MenuItemIndex*/,
        const std::string& /*MenuItemKey*/>
      MenuItemClicked;

  // The toolbar's state, read-only, for tools and tests. Colors holds the
  // twelve colours numbered 0..11 as the menu's; HoveredIndex and
  // MenuItemIndex are 1-based positions (0 = none); MenuAnchor the left x and
  // bottom y of the menu button whose menu shows; Layout the items as last
  // painted.
  std::shared_ptr<veltPUMenu> veltPUMenu1() const { return menu_; }
  const ColorScheme& Colors() const { return colors_; }
  int16_t HoveredIndex() const { return hovered_; }
  int16_t MenuItemIndex() const { return menuIndex_; }
  bool Pressed() const { return pressed_; }
  PointL MenuAnchor() const { return anchor_; }
  int32_t BarHeight() const { return barHeight_; }
  const ToolbarLayout& Layout() const { return layout_; }
  bool HoverTimerRunning() const { return hover_.Running(); }

  // UserControl.
  void Initialize(ControlHost& host) override;
  void InitProperties() override;
  void ReadProperties(PropertyBag& bag) override;
  void WriteProperties(PropertyBag& bag) override;
  void Resize() override;
  void Terminate() override;
  void OnMouseDown(int16_t button, int16_t shift, float x, float y) override;
  void OnMouseMove(int16_t button, int16_t shift, float x, float y) override;
  void OnMouseUp(int16_t button, int16_t shift, float x, float y) override;
  void OnKeyDown(int16_t&, int16_t&) override {}
  void OnKeyUp(int16_t&, int16_t&) override {}
  void OnKeyPress(int16_t&) override {}
  void OnEnterFocus() override {}
  void OnExitFocus() override {}

 private:
  ControlHost& host() const;  // error 91 while not sited
  void markChanged(const char* name);
  Canvas& surface() const;
  bool menuShown() const;
  std::shared_ptr<ToolbarItem> itemAt(int16_t index) const;  // nullptr when gone

  // Parts and the items.
  void onItemAdded();
  bool shownItemsUnchanged() const;
  void createMenu();
  void connectMenu();
  void handColorsToMenu();
  void colorsChanged();

  // Input.
  void hitTest(float x, float y);
  void hoverMenuButton(const ToolbarCell& cell);
  void openMenu();
  void killMenu();
  void onMenuItemClick(int16_t index, const std::string& key);
  void onMenuClosed();
  void onMenuKey(int16_t keyCode);
  void switchMenu(int32_t step);
  void hoverFinding(HoverTracker::Finding finding);

  // Painting.
  void repaint();
  bool keepBarHeight();
  void paintItem(Canvas& canvas, const ToolbarCell& cell, const ToolbarItem& item);
  void paintButton(Canvas& canvas, const ToolbarCell& cell, OLE_COLOR from, OLE_COLOR to) const;
  void paintCaption(Canvas& canvas, const ToolbarCell& cell, const ToolbarItem& item);
  void paintIcon(Canvas& canvas, const ToolbarCell& cell, int16_t icon);
  std::shared_ptr<Picture> extractedIcon(int16_t icon);

  ControlHost* host_ = nullptr;
  FrameProperties frame_;  // BackColor and ForeColor; the toolbar has no caption
  OLE_COLOR selectionColor_ = kDefaultSelectionColor;
  std::shared_ptr<velt::ImageList> imageList_;
  std::shared_ptr<velt::ImageList> menuImageList_;
  ColorScheme colors_;
  HoverTracker hover_;
  std::shared_ptr<veltPUMenu> menu_;
  int16_t hovered_ = 0;
  int16_t menuIndex_ = 0;
  bool pressed_ = false;
  PointL anchor_;
  int32_t barHeight_ = 0;
  ToolbarLayout layout_;
  // What each cell of the layout showed when it was painted: an Add beyond a
  // full bar repaints only when one of these changed meanwhile.
  struct ShownItem {
    const ToolbarItem* item = nullptr;
    std::string caption;
    int16_t iconIndex = 0;
    eMenuItemType style{};
    bool checked = false;
    bool enabled = false;
    bool operator==(const ShownItem&) const = default;
  };
  std::vector<ShownItem> shown_;
  // Caption widths measured so far, for one font as it was (each repaint
  // measures every caption; most of them are the same as last time).
  struct MeasuredCaption {
    std::string caption;
    int32_t width = 0;
  };
  std::vector<MeasuredCaption> measured_;
  const velt::Font* measuredFont_ = nullptr;
  uint64_t measuredRevision_ = 0;
  int32_t captionWidth(Canvas& canvas, size_t position, const std::string& caption);
  static ShownItem shownItem(const ToolbarItem& item);
  bool resizing_ = false;
  // The symbol font in the caption font's size and style, made again when
  // that font changes.
  std::shared_ptr<velt::Font> arrowFont_;
  const velt::Font* arrowBase_ = nullptr;
  uint64_t arrowBaseRevision_ = 0;
  // Icons extracted from the image list, by image number: each stays valid
  // while that number holds the same image with the same mask.
  struct ExtractedIcon {
    std::weak_ptr<ListImage> source;
    OLE_COLOR maskColor = 0;
    bool useMask = false;
    std::shared_ptr<Picture> picture;
  };
  std::vector<ExtractedIcon> icons_;
  std::vector<Connection> itemConnections_;
  std::vector<Connection> menuConnections_;
};

}  // namespace velt
