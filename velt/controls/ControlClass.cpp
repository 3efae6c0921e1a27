#include "velt/controls/ControlClass.hpp"

#include <utility>

#include "velt/platform/Error.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

namespace {

char asciiLower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

bool ControlClass::NamesMatch(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (asciiLower(a[i]) != asciiLower(b[i])) return false;
  return true;
}

ControlClass::ControlClass(std::string name, SizeL defaultSize, Factory factory,
                           std::vector<Property> properties, std::optional<Collection> collection)
    : name_(std::move(name)),
      defaultSize_(defaultSize),
      factory_(std::move(factory)),
      properties_(std::move(properties)),
      collection_(std::move(collection)) {}

std::shared_ptr<UserControl> ControlClass::Create() const {
  if (!factory_)
    throw Error(errInvalidProcedureCall,
                name_ + " is a part of other controls and cannot be created on its own");
  return factory_();
}

const ControlClass::Property* ControlClass::FindProperty(std::string_view name) const {
  for (const Property& property : properties_)
    if (NamesMatch(property.Name, name)) return &property;
  return nullptr;
}

const ControlClass::Property* ControlClass::FindStoredProperty(std::string_view key) const {
  for (const Property& property : properties_)
    if (NamesMatch(property.StoredKey(), key)) return &property;
  return nullptr;
}

const ControlClass::Property& ControlClass::PropertyNamed(std::string_view name) const {
  if (const Property* property = FindProperty(name)) return *property;
  throw Error(errInvalidProcedureCall, name_ + " has no property \"" + std::string(name) + "\"");
}

Variant ControlClass::Convert(std::string_view property, const Variant& value) const {
  const Property& info = PropertyNamed(property);
  try {
    return value.ChangeType(info.Type);
  } catch (const Error&) {
    rethrowNaming(info);
  }
}

Variant ControlClass::GetProperty(const UserControl& control, std::string_view property) const {
  const Property& info = PropertyNamed(property);
  checkClassOf(control, info);
  try {
    return info.Get(control);
  } catch (const Error&) {
    rethrowNaming(info);
  }
}

void ControlClass::SetProperty(UserControl& control, std::string_view property,
                               const Variant& value) const {
  const Property& info = PropertyNamed(property);
  checkClassOf(control, info);
  try {
    info.Set(control, value.ChangeType(info.Type));
  } catch (const Error&) {
    rethrowNaming(info);
  }
}

void ControlClass::checkClassOf(const UserControl& control, const Property& property) const {
  if (control.ClassName() != name_)
    throw Error(errTypeMismatch, name_ + "." + property.Name + ": the control is a " +
                                     control.ClassName() + ", not a " + name_);
}

void ControlClass::rethrowNaming(const Property& property) const {
  try {
    throw;
  } catch (const Error& error) {
    // Controls name their property in their own errors; it is said once.
    const std::string where = name_ + "." + property.Name;
    const std::string& text = error.Description();
    if (text.starts_with(where) && text.size() > where.size() &&
        (text[where.size()] == ':' || text[where.size()] == '.'))
      throw;
    throw Error(error.Number(), where + ": " + error.Description());
  }
}

}  // namespace velt
