#pragma once

#include <string>

#include "velt/platform/Variant.hpp"

#include "velt/platform/Geometry.hpp"

namespace velt::tool {

class PropertyArgument;

// What a script acts on beyond the pointer and the keyboard: the place of its
// coordinates on the screen, and the control that focus, blur and prop mean.
// `velt snap` has one control on a form at the screen's origin; a form runner
// can aim these at its form and its current control.
class ScriptTarget {
 public:
  virtual ~ScriptTarget() = default;

  // Where the script's (0, 0) is on the screen.
  virtual PointL Origin() const = 0;
  // Errors (velt::Error) for a property the control does not have or a value
  // it cannot take, without setting anything.
  virtual void CheckProperty(const PropertyArgument& argument) const = 0;
  virtual void SetProperty(const PropertyArgument& argument) = 0;
  virtual void Focus() = 0;
  virtual void Blur() = 0;
  // Writes a PNG of what the script is about.
  virtual void Shot(const std::string& path) = 0;
  // The value of a property of the control that prop sets; error 5 for a
  // property it does not have (by default there is no control to read).
  virtual void CheckGet(const std::string& name) const;
  virtual Variant GetProperty(const std::string& name);
  // Error 5 unless `menu` has a popup menu to open; by default there is none.
  virtual void CheckMenu() const;
  // Opens the popup menu at a point of the script's coordinates.
  virtual void OpenMenu(PointL point);
};

}  // namespace velt::tool
