#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "velt/controls/lists/ComboDatas.hpp"
#include "velt/controls/menus/MenuItemListings.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/foundation/FrameProperties.hpp"
#include "velt/foundation/HoverTracker.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Types.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

class Canvas;
class Font;
class ImageList;
class ListImage;
class MenuItemListing;
class Picture;
class veltScrollBar;

// An owner-drawn, single-selection list of ComboData entries: optional icons
// from an image list, indentation by tabs (9 pixels each, the tabs not shown),
// captions shortened with "..." to fit, a highlighted selected row, and a
// hover-select mode in which the selection follows the mouse. A veltScrollBar
// part (veltScrollBar1) along the right edge scrolls it; the list listens to
// the bar as an application would. The mouse wheel scrolls three rows a notch
// through the bar's Value.
//
// The entries are the public ListboxItems, whose ItemAdded lays the rows out
// again (and resets the scroll range) and whose ItemChanged only repaints:
// after a Remove the old layout stays until the next Add, Refresh or scroll,
// and rows past the end are not drawn or hit. TempListboxItems holds the rows
// laid out; painting and hit-testing touch only those, never the whole list.
//
// It takes the frame's pieces (hover tracking, event raising) but has its own
// looks: a highlight that is shaded in the selection colours while the list
// has the focus or selects on hover, and an inner frame while hovered.
class veltListbox : public UserControl, public std::enable_shared_from_this<veltListbox> {
 public:
  static constexpr int16_t kID = 6;
  static constexpr OLE_COLOR kDefaultSelectionColor = 33023;  // 0x0080FF, an orange
  static constexpr const char* kScrollBarName = "veltScrollBar1";
  // Rows the wheel scrolls per notch.
  static constexpr int32_t kWheelRows = 3;

  veltListbox();
  veltListbox(const veltListbox&) = delete;
  veltListbox& operator=(const veltListbox&) = delete;
  ~veltListbox() override;

  std::string ClassName() const override { return "veltListbox"; }
  int16_t ID() const override { return kID; }

  // Public fields: the entries, the rows laid out, and whether each row's
  // caption is printed in the font named by the entry's Value.
  ComboDatas ListboxItems;
  MenuItemListings TempListboxItems;
  bool ValueFont = false;

  // Properties, in the order they are stored. Enabled and Font are the host's
  // and raise error 91 while the list is not sited.
  OLE_COLOR BackColor() const { return frame_.BackColor; }
  void BackColor(OLE_COLOR color);
  OLE_COLOR ForeColor() const { return frame_.ForeColor; }
  void ForeColor(OLE_COLOR color);
  bool Enabled() const;
  void Enabled(bool enabled);
  std::shared_ptr<velt::Font> Font() const;
  void Font(std::shared_ptr<velt::Font> font);  // by reference; nullptr is error 91
  OLE_COLOR SelectionColor() const { return selectionColor_; }
  void SelectionColor(OLE_COLOR color);
  // By reference; nullptr = none. The row height follows at the next layout.
  std::shared_ptr<velt::ImageList> ImageList() const { return imageList_; }
  void ImageList(std::shared_ptr<velt::ImageList> imageList);
  // Selecting a position highlights it, scrolls the bar's Value to it and
  // raises ItemClicked; a position that is not in the list is error 9 once the
  // highlight and the bar have been set.
  int16_t SelectedItem() const { return selectedItem_; }
  void SelectedItem(int16_t position);
  bool HoverSelect() const { return hoverSelect_; }
  void HoverSelect(bool hoverSelect);

  // Lays the rows out again and resets the scroll range, as adding an entry does.
  void Refresh();
  // Selects the first entry whose Key equals mKey (when given), else whose
  // Value equals mValue, else whose Caption equals mCaption; the first entry
  // when none matches. Nothing happens on an empty list.
  void SelectItem(const std::string& mKey = "", const std::string& mValue = "",
                  const std::string& mCaption = "");

  // Events, in the order of the event interface. DblClick is never raised.
  Event<> Click;
  Event<> DblClick;
  Event<int16_t& /*KeyCode*/, int16_t& /*Shift*/> KeyDown;
  Event<int16_t& /*KeyAscii*/> KeyPress;
  Event<int16_t& /*KeyCode*/, int16_t& /*Shift*/> KeyUp;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseDown;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseMove;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseUp;
  Event<int16_t /*iIndex*/, const std::string& /*sKey*/> ItemClicked;

  // The part and the list's fields, read-only, for tools and tests.
  std::shared_ptr<veltScrollBar> veltScrollBar1() const { return scrollBar_; }
  const ColorScheme& Scheme() const { return scheme_; }
  int16_t Highlight() const { return highlight_; }
  bool Pressed() const { return pressed_; }
  bool Focused() const { return focused_; }
  bool HoverTimerRunning() const { return hover_.Running(); }
  // The row height and the rows that fit, for the current font and image list
  // (error 91 while not sited).
  int32_t RowHeight() const;
  int32_t VisibleRows() const;

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
  bool OnMouseWheel(int16_t notches, int16_t shift, float x, float y) override;
  void OnKeyDown(int16_t& keyCode, int16_t& shift) override;
  void OnKeyUp(int16_t& keyCode, int16_t& shift) override;
  void OnKeyPress(int16_t& keyAscii) override;
  void OnEnterFocus() override;
  void OnExitFocus() override;

 private:
  using MouseEvent = Event<int16_t, int16_t, float, float>;

  bool sited() const { return host_ != nullptr; }
  ControlHost& host() const;  // error 91 while not sited
  void markChanged(const char* name);
  Canvas& surface() const;
  int32_t textHeight() const;
  int32_t scrollBarWidth() const;

  // Parts and the entries.
  void createScrollBar();
  void connectScrollBar();
  void onItemAdded();
  void onItemChanged();
  void couple();
  void enableScrollBar();
  void layOut();
  void colorsChanged();
  void selectAt(int16_t position);
  int16_t pageTarget(int16_t keyCode) const;

  // Painting.
  void draw(bool hovered);
  void drawRow(Canvas& canvas, const MenuItemListing& row, const ComboData& entry, int32_t t,
               bool enabled);
  void drawHighlight(Canvas& canvas, const MenuItemListing& row) const;
  void drawIcon(Canvas& canvas, int16_t icon, int32_t x, int32_t y, bool enabled);
  std::shared_ptr<Picture> extractedIcon(int16_t icon);
  void drawFrame(Canvas& canvas, bool hovered) const;
  void hoverFinding(HoverTracker::Finding finding);

  // Input.
  bool rowShown(const MenuItemListing& row) const;
  void raiseItemClicked(int16_t position);
  void raiseMouse(const char* name, const MouseEvent& event, int16_t button, int16_t shift, float x,
                  float y);

  ControlHost* host_ = nullptr;
  bool hoverSelect_ = false;
  int16_t selectedItem_ = 0;
  FrameProperties frame_;  // BackColor and ForeColor; the list has no caption
  OLE_COLOR selectionColor_ = kDefaultSelectionColor;
  std::shared_ptr<velt::ImageList> imageList_;
  ColorScheme scheme_;
  bool pressed_ = false;
  int16_t highlight_ = 0;
  bool focused_ = false;
  HoverTracker hover_;
  std::shared_ptr<veltScrollBar> scrollBar_;
  ControlHost* scrollBarHost_ = nullptr;
  // Icons extracted from the image list, by image number: each stays valid
  // while that number holds the same image with the same mask.
  struct ExtractedIcon {
    std::weak_ptr<ListImage> source;
    OLE_COLOR maskColor = 0;
    bool useMask = false;
    std::shared_ptr<Picture> picture;
  };
  std::vector<ExtractedIcon> icons_;
  std::vector<Connection> barConnections_;
  std::vector<Connection> itemConnections_;
};

}  // namespace velt
