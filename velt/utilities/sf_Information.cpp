#include "velt/utilities/sf_Information.hpp"

#include <utility>

namespace velt {

sf_Information::sf_Information() : items_(KeyComparison::IgnoreCase, "sf_Information") {}

std::shared_ptr<sf_InformationValue> sf_Information::Add(std::string Path, std::string Filename,
                                                         std::string DateTime,
                                                         FileAttributeSet Attrib, std::string Size,
                                                         const std::string& sKey) {
  auto value = std::make_shared<sf_InformationValue>();
  value->Path(std::move(Path));
  value->Filename(std::move(Filename));
  value->DateTime(std::move(DateTime));
  value->Attrib(Attrib);
  value->Size(std::move(Size));
  items_.Add(value, sKey);
  return value;
}

std::shared_ptr<sf_InformationValue> sf_Information::Item(int16_t vntIndexKey) const {
  return items_.Item(vntIndexKey);
}

void sf_Information::Remove(int16_t vntIndexKey) {
  items_.Remove(vntIndexKey);
}

}  // namespace velt
