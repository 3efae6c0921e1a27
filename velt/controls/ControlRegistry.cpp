#include "velt/controls/ControlRegistry.hpp"

#include <utility>

#include "velt/controls/buttons/veltButton.hpp"
#include "velt/controls/buttons/veltXButton.hpp"
#include "velt/foundation/ControlFrame.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

namespace {

using Property = ControlClass::Property;

[[noreturn]] void notOfClass(const UserControl& control, const char* property) {
  throw Error(errTypeMismatch,
              std::string(property) + " does not belong to a " + control.ClassName());
}

template <class C>
C& controlAs(UserControl& control, const char* property) {
  if (auto* typed = dynamic_cast<C*>(&control)) return *typed;
  notOfClass(control, property);
}

template <class C>
const C& controlAs(const UserControl& control, const char* property) {
  if (auto* typed = dynamic_cast<const C*>(&control)) return *typed;
  notOfClass(control, property);
}

// A property of class C read and written through its own getter and setter;
// the value reaches the setter already converted to the property's type.
template <class C, class Getter, class Setter>
Property property(const char* name, VariantType type, Getter get, Setter set) {
  return Property{
      name, type,
      [name, get](const UserControl& control) { return get(controlAs<C>(control, name)); },
      [name, set](UserControl& control, const Variant& value) {
        set(controlAs<C>(control, name), value);
      }};
}

// BackColor, ForeColor, Enabled, Font and Caption, in the order the frame
// stores them.
std::vector<Property> frameProperties() {
  using F = ControlFrame;
  return {
      property<F>(
          "BackColor", VariantType::Color, [](const F& c) { return Variant::Color(c.BackColor()); },
          [](F& c, const Variant& v) { c.BackColor(v.ToColor()); }),
      property<F>(
          "ForeColor", VariantType::Color, [](const F& c) { return Variant::Color(c.ForeColor()); },
          [](F& c, const Variant& v) { c.ForeColor(v.ToColor()); }),
      property<F>(
          "Enabled", VariantType::Boolean, [](const F& c) { return Variant(c.Enabled()); },
          [](F& c, const Variant& v) { c.Enabled(v.ToBoolean()); }),
      property<F>(
          "Font", VariantType::Font, [](const F& c) { return Variant(c.Font()); },
          [](F& c, const Variant& v) { c.Font(v.ToFont()); }),
      property<F>(
          "Caption", VariantType::String, [](const F& c) { return Variant(c.Caption()); },
          [](F& c, const Variant& v) { c.Caption(v.ToString()); }),
  };
}

std::shared_ptr<ImageList> imageListOf(const Variant& value) {
  const std::shared_ptr<Object> object = value.ToObject();
  auto imageList = std::dynamic_pointer_cast<ImageList>(object);
  if (object && !imageList) throw Error(errTypeMismatch, "the object is not an ImageList");
  return imageList;
}

ControlClass buttonClass() {
  using B = veltButton;
  std::vector<Property> properties = frameProperties();
  properties.push_back(property<B>(
      "TabSelectColor", VariantType::Color,
      [](const B& c) { return Variant::Color(c.TabSelectColor()); },
      [](B& c, const Variant& v) { c.TabSelectColor(v.ToColor()); }));
  properties.push_back(property<B>(
      "ImageList", VariantType::Object,
      [](const B& c) { return Variant(std::shared_ptr<Object>(c.ImageList())); },
      [](B& c, const Variant& v) { c.ImageList(imageListOf(v)); }));
  properties.push_back(property<B>(
      "ImageIndex", VariantType::Integer, [](const B& c) { return Variant(c.ImageIndex()); },
      [](B& c, const Variant& v) { c.ImageIndex(v.ToInteger()); }));
  return ControlClass(
      "veltButton", SizeL{100, 30}, [] { return std::make_shared<veltButton>(); },
      std::move(properties));
}

// The glyph button is only ever made by the control it belongs to.
ControlClass glyphButtonClass() {
  return ControlClass("veltXButton", SizeL{17, 17}, nullptr, frameProperties());
}

}  // namespace

const ControlRegistry& ControlRegistry::Standard() {
  static const ControlRegistry registry({buttonClass(), glyphButtonClass()});
  return registry;
}

ControlRegistry::ControlRegistry(std::vector<ControlClass> classes)
    : classes_(std::move(classes)) {}

std::vector<std::string> ControlRegistry::CreatableNames() const {
  std::vector<std::string> names;
  for (const ControlClass& controlClass : classes_)
    if (controlClass.Creatable()) names.push_back(controlClass.Name());
  return names;
}

const ControlClass* ControlRegistry::Find(std::string_view name) const {
  for (const ControlClass& controlClass : classes_)
    if (ControlClass::NamesMatch(controlClass.Name(), name)) return &controlClass;
  return nullptr;
}

const ControlClass& ControlRegistry::ClassNamed(std::string_view name) const {
  if (const ControlClass* controlClass = Find(name)) return *controlClass;
  throw Error(errInvalidProcedureCall, "there is no control class \"" + std::string(name) + "\"");
}

const ControlClass& ControlRegistry::ClassOf(const UserControl& control) const {
  return ClassNamed(control.ClassName());
}

std::shared_ptr<UserControl> ControlRegistry::Create(std::string_view name) const {
  return ClassNamed(name).Create();
}

}  // namespace velt
