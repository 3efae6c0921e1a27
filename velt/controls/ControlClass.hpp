#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velt/host/FormFile.hpp"
#include "velt/platform/Geometry.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

class UserControl;

// What tools and form files know about one control class: how to make one,
// the size it suits, and its properties by name, each with its value type and
// the control's own getter and setter (so setting one repaints and reports the
// change exactly as calling the setter does). Property names match in any
// letter case. A class without a factory is internal: a part other controls
// build themselves from, never created on its own. A class that owns a
// collection (a menu's items, a list's entries) says how to fill it and read
// it back, entry by entry, each a property bag keyed by field name.
class ControlClass {
 public:
  struct Property {
    std::string Name;
    VariantType Type = VariantType::Empty;
    std::function<Variant(const UserControl&)> Get;
    std::function<void(UserControl&, const Variant&)> Set;
    // The PropertyBag key it is stored under where that is not its name
    // (veltMonthview's iDay is stored as "Day").
    std::string Key = {};
    const std::string& StoredKey() const { return Key.empty() ? Name : Key; }
  };
  struct Collection {
    FormFile::ControlTypes::ItemsInfo Info;
    // A field left out of a record takes its default; settings come first.
    std::function<void(UserControl&, const PropertyBag&)> ApplySettings;
    std::function<void(UserControl&, const PropertyBag&)> Add;
    // Fields at their default are left out.
    std::function<PropertyBag(const UserControl&)> Settings;
    std::function<std::vector<PropertyBag>(const UserControl&)> Items;
  };
  using Factory = std::function<std::shared_ptr<UserControl>()>;

  ControlClass(std::string name, SizeL defaultSize, Factory factory,
               std::vector<Property> properties, std::optional<Collection> collection = {});

  // Class and property names compare this way: ASCII letters in any case.
  static bool NamesMatch(std::string_view a, std::string_view b);

  const std::string& Name() const { return name_; }
  bool Creatable() const { return static_cast<bool>(factory_); }
  SizeL DefaultSize() const { return defaultSize_; }
  // A new control of the class; error 5 for an internal class.
  std::shared_ptr<UserControl> Create() const;

  const std::vector<Property>& Properties() const { return properties_; }
  // nullptr when the class owns no collection.
  const Collection* Items() const { return collection_ ? &*collection_ : nullptr; }
  const Property* FindProperty(std::string_view name) const;  // nullptr when unknown
  // The property stored under the key (any letter case); nullptr when none is.
  const Property* FindStoredProperty(std::string_view key) const;
  // Error 5 naming the class and the property when it has no such property.
  const Property& PropertyNamed(std::string_view name) const;

  // The value as the property's type. Errors (13 type mismatch, 6 overflow, 5
  // unknown property) name the class and the property.
  Variant Convert(std::string_view property, const Variant& value) const;
  // Errors from the control (and 13 for a control of another class) name the
  // property as well.
  Variant GetProperty(const UserControl& control, std::string_view property) const;
  void SetProperty(UserControl& control, std::string_view property, const Variant& value) const;

 private:
  void checkClassOf(const UserControl& control, const Property& property) const;
  [[noreturn]] void rethrowNaming(const Property& property) const;

  std::string name_;
  SizeL defaultSize_;
  Factory factory_;
  std::vector<Property> properties_;
  std::optional<Collection> collection_;
};

}  // namespace velt
