#include "velt/platform/PropertyBag.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include <nlohmann/json.hpp>

#include "velt/platform/Error.hpp"
#include "velt/platform/JsonText.hpp"

namespace velt {

using nlohmann::json;

struct PropertyBag::Entry {
  std::string key;
  Variant value;                       // what WriteProperty stored
  std::optional<json> raw;             // what FromJson loaded, until the key is written again
  mutable std::shared_ptr<Font> font;  // the one object a raw font value reads as
  mutable uint64_t fontRevision = 0;   // its Revision() right after decoding
};

namespace {

std::string keyText(const std::string& key) {
  return "PropertyBag key " + QuotedPrefix(key);
}

std::string shortDump(const json& value) {
  constexpr size_t kMaxShown = 80;
  std::string text = value.dump(-1, ' ', false, json::error_handler_t::replace);
  if (text.size() > kMaxShown) text = text.substr(0, kMaxShown) + "...";
  return text;
}

[[noreturn]] void malformed(const std::string& key, const json& raw, const std::string& why) {
  throw Error(errTypeMismatch, keyText(key) + ": the stored JSON " + shortDump(raw) +
                                   " is not a value (" + why + ")");
}

std::string describe(const Variant& value) {
  switch (value.Type()) {
    case VariantType::Empty:
    case VariantType::Font:
    case VariantType::Object:
      return value.TypeName();
    case VariantType::String:
      return "String " + QuotedPrefix(value.ToString());
    default:
      return value.TypeName() + " " + value.ToString();
  }
}

// The double that prints as the shortest text of a float, so 0.1f is written as 0.1.
double singleAsJsonNumber(float value) {
  char buffer[32];
  const auto printed = std::to_chars(buffer, buffer + sizeof buffer, value);
  double result = value;
  std::from_chars(buffer, printed.ptr, result);
  return result;
}

Variant decodeNumber(const json& raw) {
  if (raw.is_number_float()) return Variant(raw.get<double>());
  if (raw.is_number_unsigned()) {
    const uint64_t value = raw.get<uint64_t>();
    if (value <= static_cast<uint64_t>(std::numeric_limits<int32_t>::max()))
      return Variant(static_cast<int32_t>(value));
    return Variant(static_cast<double>(value));
  }
  const int64_t value = raw.get<int64_t>();
  if (value >= std::numeric_limits<int32_t>::min() && value <= std::numeric_limits<int32_t>::max())
    return Variant(static_cast<int32_t>(value));
  return Variant(static_cast<double>(value));
}

bool optionalBool(const json& font, const char* name, const std::string& key, const json& raw,
                  bool fallback) {
  const auto it = font.find(name);
  if (it == font.end()) return fallback;
  if (!it->is_boolean()) malformed(key, raw, std::string("font ") + name + " is not true or false");
  return it->get<bool>();
}

std::optional<int16_t> optionalInt16(const json& font, const char* name, const std::string& key,
                                     const json& raw) {
  const auto it = font.find(name);
  if (it == font.end()) return std::nullopt;
  if (!it->is_number_integer() || it->get<int64_t>() < std::numeric_limits<int16_t>::min() ||
      it->get<int64_t>() > std::numeric_limits<int16_t>::max())
    malformed(key, raw, std::string("font ") + name + " is not a 16-bit whole number");
  return static_cast<int16_t>(it->get<int64_t>());
}

std::shared_ptr<Font> decodeFont(const json& description, const std::string& key, const json& raw) {
  if (!description.is_object()) malformed(key, raw, "the font description is not an object");
  const auto name = description.find("Name");
  if (name == description.end() || !name->is_string())
    malformed(key, raw, "the font has no \"Name\" text");
  const auto size = description.find("Size");
  if (size == description.end() || !size->is_number())
    malformed(key, raw, "the font has no \"Size\" number");

  auto font = std::make_shared<Font>();
  try {
    font->Name(name->get<std::string>());
    font->Size(static_cast<float>(size->get<double>()));
    font->Bold(optionalBool(description, "Bold", key, raw, false));
    font->Italic(optionalBool(description, "Italic", key, raw, false));
    font->Underline(optionalBool(description, "Underline", key, raw, false));
    font->Strikethrough(optionalBool(description, "Strikethrough", key, raw, false));
    if (const auto weight = optionalInt16(description, "Weight", key, raw)) font->Weight(*weight);
    if (const auto charset = optionalInt16(description, "Charset", key, raw))
      font->Charset(*charset);
  } catch (const Error& error) {
    if (error.Number() == errTypeMismatch) throw;
    malformed(key, raw, error.Description());
  }
  return font;
}

json encodeFont(const Font& font) {
  json description = json::object();
  description["Name"] = font.Name();
  description["Size"] = singleAsJsonNumber(font.Size());
  description["Bold"] = font.Bold();
  description["Italic"] = font.Italic();
  description["Underline"] = font.Underline();
  description["Strikethrough"] = font.Strikethrough();
  description["Weight"] = font.Weight();
  description["Charset"] = font.Charset();
  return json{{"Font", std::move(description)}};
}

std::string withoutLibraryPrefix(const std::string& message) {
  // nlohmann's messages start with "[json.exception.parse_error.101] ".
  if (!message.empty() && message.front() == '[') {
    const auto end = message.find("] ");
    if (end != std::string::npos) return message.substr(end + 2);
  }
  return message;
}

}  // namespace

PropertyBag::PropertyBag() = default;
PropertyBag::PropertyBag(const PropertyBag& other) = default;
PropertyBag::PropertyBag(PropertyBag&& other) noexcept = default;
PropertyBag& PropertyBag::operator=(const PropertyBag& other) = default;
PropertyBag& PropertyBag::operator=(PropertyBag&& other) noexcept = default;
PropertyBag::~PropertyBag() = default;

PropertyBag::Entry* PropertyBag::find(const std::string& key) {
  const auto it = std::find_if(entries_.begin(), entries_.end(),
                               [&](const Entry& entry) { return entry.key == key; });
  return it == entries_.end() ? nullptr : &*it;
}

const PropertyBag::Entry* PropertyBag::find(const std::string& key) const {
  return const_cast<PropertyBag*>(this)->find(key);
}

Variant PropertyBag::ReadProperty(const std::string& key, const Variant& defaultValue) const {
  const Entry* entry = find(key);
  if (!entry) return defaultValue;
  const Variant stored = storedValue(*entry);
  if (defaultValue.IsEmpty()) return stored;
  try {
    return stored.ChangeType(defaultValue.Type());
  } catch (const Error& error) {
    throw Error(error.Number(), keyText(key) + ": the stored " + describe(stored) +
                                    " cannot be read as " + Variant::TypeName(defaultValue.Type()) +
                                    " (" + error.Description() + ")");
  }
}

void PropertyBag::WriteProperty(const std::string& key, const Variant& value,
                                const Variant& defaultValue) {
  if (value == defaultValue) {
    Remove(key);
    return;
  }
  Variant stored = value;
  if (value.Type() == VariantType::Font && value.ToFont())
    stored = Variant(value.ToFont()->Clone());
  if (Entry* entry = find(key)) {
    entry->value = std::move(stored);
    entry->raw.reset();
    entry->font.reset();
    return;
  }
  entries_.push_back(Entry{key, std::move(stored), std::nullopt, nullptr, 0});
}

bool PropertyBag::Contains(const std::string& key) const {
  return find(key) != nullptr;
}

std::vector<std::string> PropertyBag::Keys() const {
  std::vector<std::string> keys;
  keys.reserve(entries_.size());
  for (const Entry& entry : entries_)
    keys.push_back(entry.key);
  return keys;
}

void PropertyBag::Remove(const std::string& key) {
  std::erase_if(entries_, [&](const Entry& entry) { return entry.key == key; });
}

size_t PropertyBag::Count() const {
  return entries_.size();
}

void PropertyBag::Resolver(ObjectResolver resolver) {
  resolver_ = std::move(resolver);
}

void PropertyBag::Namer(ObjectNamer namer) {
  namer_ = std::move(namer);
}

Variant PropertyBag::storedValue(const Entry& entry) const {
  return entry.raw ? decodeRaw(entry) : entry.value;
}

Variant PropertyBag::decodeRaw(const Entry& entry) const {
  const json& raw = *entry.raw;
  switch (raw.type()) {
    case json::value_t::null:
      return Variant();
    case json::value_t::boolean:
      return Variant(raw.get<bool>());
    case json::value_t::number_integer:
    case json::value_t::number_unsigned:
    case json::value_t::number_float:
      return decodeNumber(raw);
    case json::value_t::string:
      return Variant(raw.get<std::string>());
    case json::value_t::object:
      break;
    default:
      malformed(entry.key, raw, std::string("a JSON ") + raw.type_name() + " holds no property");
  }
  if (raw.size() != 1) malformed(entry.key, raw, "expected one tag, \"Font\" or \"Ref\"");
  if (const auto font = raw.find("Font"); font != raw.end()) {
    if (!entry.font) {
      entry.font = decodeFont(*font, entry.key, raw);
      entry.fontRevision = entry.font->Revision();
    }
    return Variant(entry.font);
  }
  if (const auto ref = raw.find("Ref"); ref != raw.end()) {
    if (!ref->is_string()) malformed(entry.key, raw, "the \"Ref\" name is not text");
    const std::string name = ref->get<std::string>();
    std::shared_ptr<Object> object = resolver_ ? resolver_(name) : nullptr;
    if (!object)
      throw Error(errObjectNotSet,
                  keyText(entry.key) + ": no object named " + QuotedPrefix(name) + " can be found");
    return Variant(std::move(object));
  }
  malformed(entry.key, raw, "unknown tag " + QuotedPrefix(raw.begin().key()));
}

json PropertyBag::encode(const std::string& key, const Variant& value) const {
  switch (value.Type()) {
    case VariantType::Empty:
      return nullptr;
    case VariantType::Boolean:
      return value.ToBoolean();
    case VariantType::Integer:
    case VariantType::Long:
      return value.ToLong();
    case VariantType::Color:
      return value.ToColor();
    case VariantType::Single:
    case VariantType::Double: {
      const double number = value.Type() == VariantType::Single
                                ? singleAsJsonNumber(value.ToSingle())
                                : value.ToDouble();
      if (!std::isfinite(number))
        throw Error(errInvalidProcedureCall,
                    keyText(key) + ": " + value.ToString() + " cannot be written as JSON");
      return number;
    }
    case VariantType::String:
      return value.ToString();
    case VariantType::Font: {
      const auto font = value.ToFont();
      return font ? encodeFont(*font) : json(nullptr);
    }
    case VariantType::Object:
      break;
  }
  const auto object = value.ToObject();
  if (!object) return nullptr;
  const std::string name = namer_ ? namer_(*object) : std::string();
  if (name.empty())
    throw Error(errObjectNotSet, keyText(key) + ": the object it refers to has no name to store");
  return json{{"Ref", name}};
}

json PropertyBag::entryJson(const Entry& entry) const {
  if (!entry.raw) return encode(entry.key, entry.value);
  // A font changed through the shared object since it was read is written as it is now.
  if (entry.font && entry.font->Revision() != entry.fontRevision) return encodeFont(*entry.font);
  return *entry.raw;
}

json PropertyBag::ToJson() const {
  json result = json::object();
  for (const Entry& entry : entries_)
    result[entry.key] = entryJson(entry);
  return result;
}

PropertyBag PropertyBag::FromJson(const json& document) {
  if (!document.is_object())
    throw Error(errTypeMismatch, std::string("PropertyBag JSON: the top level is a ") +
                                     document.type_name() + ", not an object");
  PropertyBag bag;
  for (const auto& [key, value] : document.items())
    bag.entries_.push_back(Entry{key, Variant(), value, nullptr, 0});
  return bag;
}

std::string PropertyBag::ToJsonText() const {
  // Written in the bag's own key order, which the plain json type would sort.
  nlohmann::ordered_json ordered = nlohmann::ordered_json::object();
  for (const Entry& entry : entries_)
    ordered[entry.key] = nlohmann::ordered_json(entryJson(entry));
  try {
    return ordered.dump(2);
  } catch (const json::exception& error) {
    throw Error(errInvalidProcedureCall, "PropertyBag JSON: " + withoutLibraryPrefix(error.what()));
  }
}

PropertyBag PropertyBag::FromJsonText(std::string_view text) {
  nlohmann::ordered_json document;
  try {
    document = ParseJsonText(text);
  } catch (const Error& error) {
    throw Error(error.Number(), "PropertyBag JSON: " + error.Description());
  }
  if (!document.is_object())
    throw Error(errTypeMismatch, std::string("PropertyBag JSON: the top level is a ") +
                                     document.type_name() + ", not an object");
  PropertyBag bag;
  bag.entries_.reserve(document.size());
  for (const auto& [key, value] : document.items())
    bag.entries_.push_back(Entry{key, Variant(), json(value), nullptr, 0});
  return bag;
}

}  // namespace velt
