#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velt/platform/Geometry.hpp"

namespace velt {

class FormWindow;
class Site;

// Mouse, keyboard and focus for the sites of one form. Points are pixels of
// the form's client area.
//
// A mouse event goes to the site holding the capture, else to the topmost
// site under the pointer that is visible and enabled (with all its parents),
// children before their parent, later sites above earlier ones; a child
// outside its parent's rectangle is cut off like its drawing. A press
// captures the mouse for the site under the pointer (or for the bare form)
// until every button is up, so the release arrives where the press went, and
// gives that site the focus before its MouseDown. Keys go to the focused site.
// Focus changes tell every site on the way: ExitFocus from the inside out on
// the sites that lose it, then EnterFocus from the outside in on the sites
// that gain it (a parent counts as focused while one of its children is).
class InputRouter {
 public:
  explicit InputRouter(FormWindow& form);
  InputRouter(const InputRouter&) = delete;
  InputRouter& operator=(const InputRouter&) = delete;

  void MouseDown(int16_t button, int16_t shift, PointL point);
  void MouseMove(int16_t button, int16_t shift, PointL point);  // button: the mask held
  void MouseUp(int16_t button, int16_t shift, PointL point);
  // The press just routed was the second of a double click: the site that
  // took it hears DblClick when it also took the first press.
  void DblClick(int16_t button, int16_t shift, PointL point);
  // To the site under the pointer (never the capture); a control that does
  // not scroll passes the turn on to its parent, and so on up.
  void MouseWheel(int16_t notches, int16_t shift, PointL point);
  void KeyDown(int16_t keyCode, int16_t shift);
  void KeyUp(int16_t keyCode, int16_t shift);
  void KeyPress(int16_t charCode);
  void Composition(const std::string& text);

  // Moves the focus (nullptr: to no site), telling the sites concerned.
  void Focus(const std::shared_ptr<Site>& site);
  Site* Focused() const;  // nullptr when none or when the focused site is gone
  bool FocusWithin(const Site& site) const;

  Site* Captured() const;
  bool Capturing() const { return capturing_; }

  std::shared_ptr<Site> SiteAt(PointL point) const;

  // Forgets focus and capture without telling anyone (the form is closing).
  void Reset();

 private:
  std::shared_ptr<Site> mouseTarget(PointL point) const;

  FormWindow& form_;
  std::weak_ptr<Site> focus_;
  std::weak_ptr<Site> latestPress_;    // took the latest press
  std::weak_ptr<Site> previousPress_;  // took the one before it
  std::weak_ptr<Site> capture_;        // empty while capturing: the bare form holds it
  bool capturing_ = false;
  int32_t pressed_ = 0;
};

}  // namespace velt
