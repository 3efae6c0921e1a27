#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "velt/controls/range/MyOrientation.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/TimerQueue.hpp"

namespace velt {

class Form;
class ImageList;
class Site;
class UserControl;
class WindowSystem;
class MenuItems;
class veltProgressBar;
class veltPUMenu;
class veltToolbar;

namespace tool {

// Every control the library has, in its main looks side by side on one form,
// below a toolbar across its top (push buttons with icons, a check button the
// gallery toggles, a separator, a caption, a placeholder and two menu buttons):
// normal, disabled, with an icon, focused, vertical where the control has an
// orientation, each tick style of the slider, the label's wrapping, ellipsis,
// icon and hyperlink, list boxes (icons and indentation, shortened captions,
// hover select, disabled, one long enough to scroll), a button that opens a popup menu (a right
// press on the form's background opens it at the pointer). This class is the one place the
// gallery's layout lives; `velt gallery` shows it in a window or renders it headless, and a test
// checks that every class the registry can create is on it.
//
// A timer of the window system moves the searching progress bar on every
// kCycleInterval milliseconds while the gallery exists.
class Gallery {
 public:
  // The toolbar spans the top; every other row sits below it.
  static constexpr int32_t kToolbarHeight = 30;
  static constexpr int32_t kWidth = 1030;
  static constexpr int32_t kHeight = 715 + kToolbarHeight;
  static constexpr const char* kCaption = "veltObjects gallery";
  static constexpr int32_t kCycleInterval = 40;
  static constexpr int16_t kCycleStep = 2;
  // The control that has the focus when the gallery opens.
  static constexpr const char* kFocusedName = "buttonFocused";
  static constexpr const char* kSearchingName = "progressSearching";
  static constexpr const char* kMenuButtonName = "menuButton";
  static constexpr const char* kMenuName = "menu";
  static constexpr const char* kToolbarName = "toolbar";

  explicit Gallery(std::shared_ptr<WindowSystem> system);
  ~Gallery();
  Gallery(const Gallery&) = delete;
  Gallery& operator=(const Gallery&) = delete;

  Form& GalleryForm() { return *form_; }
  const std::shared_ptr<velt::ImageList>& Icons() const { return icons_; }

 private:
  static constexpr int32_t kHeadingLeft = 12;

  template <class T>
  std::shared_ptr<T> add(const char* name, int32_t left, int32_t top, int32_t width,
                         int32_t height);
  template <class T>
  std::shared_ptr<T> add(const char* name, int32_t left, int32_t top, int32_t width, int32_t height,
                         MyOrientation orientation);
  void heading(const char* name, const char* caption, int32_t top, int32_t left = kHeadingLeft);

  void addButtons(int32_t top);
  void addProgressBars(int32_t top);
  void addSliders(int32_t top);
  void addScrollBars(int32_t top);
  void addLabels(int32_t top);
  void addPickers(int32_t top);
  void addScripts(int32_t top);
  void addTextBoxes(int32_t top);
  void addMenu(int32_t top);
  void addListboxes(int32_t top);
  void addMonthviews(int32_t left);
  void addToolbar();
  void fillToolbar();
  void toolbarItemClicked(int16_t index);
  void fillMenu(MenuItems& items);
  void openMenu();
  void startCycle();
  void cycle();

  std::shared_ptr<WindowSystem> system_;
  std::shared_ptr<velt::ImageList> icons_;
  std::unique_ptr<Form> form_;
  std::shared_ptr<veltProgressBar> searching_;
  std::shared_ptr<veltPUMenu> menu_;
  std::shared_ptr<veltToolbar> toolbar_;
  int32_t rowsTop_ = 0;  // where the rows start: below the toolbar
  std::vector<Connection> connections_;
  TimerQueue::Id cycleTimer_ = 0;
};

}  // namespace tool
}  // namespace velt
