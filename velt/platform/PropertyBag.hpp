#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "velt/platform/Object.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

// The container's store of one control's properties, kept in the order the keys
// were first written. Values loaded from JSON stay raw until a key is read, so a
// damaged value fails only the read of its own key and is written back as it
// came; nothing else in the bag is lost.
class PropertyBag {
 public:
  using ObjectResolver = std::function<std::shared_ptr<Object>(const std::string& name)>;
  using ObjectNamer = std::function<std::string(const Object& object)>;

  PropertyBag();
  PropertyBag(const PropertyBag& other);
  PropertyBag(PropertyBag&& other) noexcept;
  PropertyBag& operator=(const PropertyBag& other);
  PropertyBag& operator=(PropertyBag&& other) noexcept;
  ~PropertyBag();

  // The stored value, converted to the type of the default unless the default is
  // Empty; the default itself when the key is missing. Error 13 (or 6 when a
  // number does not fit) names the key, what was stored and what was expected.
  Variant ReadProperty(const std::string& key, const Variant& defaultValue = {}) const;
  // Stores the value, or removes the key when the value equals its default. Fonts
  // are stored as a copy, so later changes to the font do not alter the bag.
  void WriteProperty(const std::string& key, const Variant& value,
                     const Variant& defaultValue = {});

  bool Contains(const std::string& key) const;
  std::vector<std::string> Keys() const;
  void Remove(const std::string& key);
  size_t Count() const;

  // Object references in JSON are {"Ref": name}: the resolver finds the object
  // for a name when such a value is read, the namer names it when one is written.
  void Resolver(ObjectResolver resolver);
  void Namer(ObjectNamer namer);

  nlohmann::json ToJson() const;
  static PropertyBag FromJson(const nlohmann::json& json);
  std::string ToJsonText() const;
  static PropertyBag FromJsonText(std::string_view text);

 private:
  struct Entry;

  Entry* find(const std::string& key);
  const Entry* find(const std::string& key) const;
  Variant storedValue(const Entry& entry) const;
  Variant decodeRaw(const Entry& entry) const;
  nlohmann::json encode(const std::string& key, const Variant& value) const;
  nlohmann::json entryJson(const Entry& entry) const;

  std::vector<Entry> entries_;
  ObjectResolver resolver_;
  ObjectNamer namer_;
};

}  // namespace velt
