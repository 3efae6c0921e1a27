#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velt/controls/ControlClass.hpp"
#include "velt/host/FormFile.hpp"

namespace velt {

class UserControl;

// The control classes of the library by name, for the velt tool, form files
// and the gallery. Class names match in any letter case.
class ControlRegistry : public FormFile::ControlTypes {
 public:
  // Every class of the library, internal ones included.
  static const ControlRegistry& Standard();

  explicit ControlRegistry(std::vector<ControlClass> classes);

  // The names of the classes a form file or the tool may create, in
  // registration order.
  std::vector<std::string> CreatableNames() const;
  const ControlClass* Find(std::string_view name) const;  // nullptr when unknown
  // Error 5 for a name no class has.
  const ControlClass& ClassNamed(std::string_view name) const;
  // The class of an existing control, by its ClassName (error 5 when unknown).
  const ControlClass& ClassOf(const UserControl& control) const;
  // A new control; error 5 for an unknown name or an internal class.
  std::shared_ptr<UserControl> Create(std::string_view name) const;

  // FormFile::ControlTypes.
  std::shared_ptr<UserControl> CreateControl(std::string_view type) const override;
  std::optional<PropertyInfo> FindProperty(std::string_view type,
                                           std::string_view property) const override;
  std::optional<ItemsInfo> FindItems(std::string_view type) const override;
  void ApplyItemSettings(UserControl& control, const PropertyBag& settings) const override;
  void AddItem(UserControl& control, const PropertyBag& item) const override;
  PropertyBag ItemSettings(const UserControl& control) const override;
  std::vector<PropertyBag> Items(const UserControl& control) const override;

 private:
  // Error 5 when the control's class owns no collection.
  const ControlClass::Collection& collectionOf(const UserControl& control) const;

  std::vector<ControlClass> classes_;
};

}  // namespace velt
