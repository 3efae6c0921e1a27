// Form files: any text fed to the property bag either loads or is refused with
// velt::Error, every key reads as every type or fails with velt::Error, and a
// loaded bag writes itself back to an equal document.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "velt/platform/Error.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/PropertyBag.hpp"

namespace {

const std::shared_ptr<velt::Object>& knownObject() {
  static const std::shared_ptr<velt::Object> object = std::make_shared<velt::Picture>(1, 1);
  return object;
}

void readEveryWay(const velt::PropertyBag& bag, const std::string& key) {
  const velt::Variant defaults[] = {
      velt::Variant(),       velt::Variant(true),     velt::Variant(int16_t{0}),
      velt::Variant(0),      velt::Variant(0.0f),     velt::Variant(0.0),
      velt::Variant(""),     velt::Variant::Color(0), velt::Variant(velt::Font::Ambient()),
      velt::Variant(nullptr)};
  for (const velt::Variant& defaultValue : defaults) {
    try {
      const velt::Variant value = bag.ReadProperty(key, defaultValue);
      if (!defaultValue.IsEmpty() && value.Type() != defaultValue.Type()) std::abort();
    } catch (const velt::Error&) {
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  velt::PropertyBag bag;
  try {
    bag = velt::PropertyBag::FromJsonText(text);
  } catch (const velt::Error&) {
    return 0;
  }
  bag.Resolver(
      [](const std::string& name) { return name.starts_with("Image") ? knownObject() : nullptr; });
  bag.Namer([](const velt::Object&) { return std::string("ImageList1"); });
  for (const std::string& key : bag.Keys())
    readEveryWay(bag, key);

  // Reading changes nothing: the bag writes back what it loaded.
  const velt::PropertyBag again = velt::PropertyBag::FromJsonText(bag.ToJsonText());
  if (again.ToJson() != bag.ToJson() || again.Keys() != bag.Keys()) std::abort();

  // Values that read fine store and serialise again.
  velt::PropertyBag copy;
  copy.Namer([](const velt::Object&) { return std::string("ImageList1"); });
  for (const std::string& key : bag.Keys()) {
    try {
      copy.WriteProperty(key, bag.ReadProperty(key));
    } catch (const velt::Error&) {
    }
  }
  velt::PropertyBag::FromJsonText(copy.ToJsonText());
  return 0;
}
