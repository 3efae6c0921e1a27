#pragma once

#include <array>
#include <string>

#include "velt/platform/Types.hpp"

namespace velt {

class ControlHost;
class PropertyBag;

// The frame's stored properties, in the order every frame control reads and
// writes them. Enabled and Font live on the host; the other three here.
enum class FrameProperty { BackColor, ForeColor, Enabled, Font, Caption };

// Persistence of the frame properties. A control whose table holds only some of
// them, or interleaves its own keys, reads and writes them one at a time.
class FrameProperties {
 public:
  static constexpr OLE_COLOR kDefaultBackColor = 0xFFFFFF;  // white
  static constexpr OLE_COLOR kDefaultForeColor = 0xC00000;  // dark blue
  static constexpr std::array<FrameProperty, 5> kTableOrder = {
      FrameProperty::BackColor, FrameProperty::ForeColor, FrameProperty::Enabled,
      FrameProperty::Font, FrameProperty::Caption};

  // The PropertyBag key, which is the property's name.
  static const char* Key(FrameProperty property);

  // First placement: the default colours, the ambient display name as Caption
  // and the ambient font as the host's Font. Enabled keeps the host's default.
  void InitProperties(ControlHost& host);
  // All five in table order. A stored value of the wrong type is the bag's
  // error 13 naming the key; properties after it are then not read.
  void ReadProperties(const PropertyBag& bag, ControlHost& host);
  void WriteProperties(PropertyBag& bag, const ControlHost& host) const;

  void Read(FrameProperty property, const PropertyBag& bag, ControlHost& host);
  void Write(FrameProperty property, PropertyBag& bag, const ControlHost& host) const;

  OLE_COLOR BackColor = kDefaultBackColor;
  OLE_COLOR ForeColor = kDefaultForeColor;
  std::string Caption;
};

}  // namespace velt
