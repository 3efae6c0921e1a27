#include "velt/foundation/FrameProperties.hpp"

#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

namespace {

// The host may hand out a new ambient font object on every call, and fonts
// compare by identity; a font that looks like the ambient one counts as the
// default, so it is not stored and a reloaded control follows its container.
void writeFont(PropertyBag& bag, const std::string& key, const ControlHost& host) {
  const std::shared_ptr<Font> font = host.Font();
  const std::shared_ptr<Font> ambient = host.AmbientFont();
  const bool lookAlike = font && ambient && font->SameLook(*ambient);
  bag.WriteProperty(key, Variant(font), lookAlike ? Variant(font) : Variant(ambient));
}

}  // namespace

const char* FrameProperties::Key(FrameProperty property) {
  switch (property) {
    case FrameProperty::BackColor:
      return "BackColor";
    case FrameProperty::ForeColor:
      return "ForeColor";
    case FrameProperty::Enabled:
      return "Enabled";
    case FrameProperty::Font:
      return "Font";
    case FrameProperty::Caption:
      return "Caption";
  }
  return "";
}

void FrameProperties::InitProperties(ControlHost& host) {
  BackColor = kDefaultBackColor;
  ForeColor = kDefaultForeColor;
  Caption = host.AmbientDisplayName();
  host.Font(host.AmbientFont());
}

void FrameProperties::ReadProperties(const PropertyBag& bag, ControlHost& host) {
  for (FrameProperty property : kTableOrder)
    Read(property, bag, host);
}

void FrameProperties::WriteProperties(PropertyBag& bag, const ControlHost& host) const {
  for (FrameProperty property : kTableOrder)
    Write(property, bag, host);
}

void FrameProperties::Read(FrameProperty property, const PropertyBag& bag, ControlHost& host) {
  const std::string key = Key(property);
  switch (property) {
    case FrameProperty::BackColor:
      BackColor = bag.ReadProperty(key, Variant::Color(kDefaultBackColor)).ToColor();
      break;
    case FrameProperty::ForeColor:
      ForeColor = bag.ReadProperty(key, Variant::Color(kDefaultForeColor)).ToColor();
      break;
    case FrameProperty::Enabled:
      host.Enabled(bag.ReadProperty(key, Variant(true)).ToBoolean());
      break;
    case FrameProperty::Font:
      host.Font(bag.ReadProperty(key, Variant(host.AmbientFont())).ToFont());
      break;
    case FrameProperty::Caption:
      Caption = bag.ReadProperty(key, Variant(host.AmbientDisplayName())).ToString();
      break;
  }
}

void FrameProperties::Write(FrameProperty property, PropertyBag& bag,
                            const ControlHost& host) const {
  const std::string key = Key(property);
  switch (property) {
    case FrameProperty::BackColor:
      bag.WriteProperty(key, Variant::Color(BackColor), Variant::Color(kDefaultBackColor));
      break;
    case FrameProperty::ForeColor:
      bag.WriteProperty(key, Variant::Color(ForeColor), Variant::Color(kDefaultForeColor));
      break;
    case FrameProperty::Enabled:
      bag.WriteProperty(key, Variant(host.Enabled()), Variant(true));
      break;
    case FrameProperty::Font:
      writeFont(bag, key, host);
      break;
    case FrameProperty::Caption:
      bag.WriteProperty(key, Variant(Caption), Variant(host.AmbientDisplayName()));
      break;
  }
}

}  // namespace velt
