#include "apps/velt/ImageStrip.hpp"

#include <vector>

#include "apps/velt/PropertyArgument.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/Png.hpp"

namespace velt::tool {

namespace {

[[noreturn]] void problem(const std::string& text) {
  throw Error(errInvalidProcedureCall, "--imagelist " + text);
}

}  // namespace

// A ":" followed by a number ends the argument as the width; any other ":"
// belongs to the file name.
ImageStrip ImageStrip::Parse(std::string_view text) {
  const size_t colon = text.rfind(':');
  if (colon != std::string_view::npos) {
    const std::string_view digits = text.substr(colon + 1);
    if (const std::optional<int64_t> width = PropertyArgument::ParseInteger(digits)) {
      if (*width < 1 || *width > ImageList::kMaxImageSize)
        problem("\"" + std::string(text) + "\": width " + std::string(digits) + " is not 1.." +
                std::to_string(ImageList::kMaxImageSize));
      return ImageStrip{std::string(text.substr(0, colon)), static_cast<int32_t>(*width)};
    }
  }
  if (text.empty()) problem("needs FILE.png[:W]");
  return ImageStrip{std::string(text), std::nullopt};
}

std::shared_ptr<ImageList> ImageStrip::Load() const {
  const std::shared_ptr<Picture> strip = Png::Read(File);
  const int32_t side = Width.value_or(strip->Height());
  const std::string size = std::to_string(strip->Width()) + "x" + std::to_string(strip->Height());
  if (side < 1 || side > ImageList::kMaxImageSize || strip->Height() != side ||
      strip->Width() % side != 0)
    problem(File + ": a " + size + " picture is not a strip of square icons " +
            std::to_string(side) + " pixels wide");
  auto images = std::make_shared<ImageList>();
  images->ImageWidth(static_cast<int16_t>(side));
  images->ImageHeight(static_cast<int16_t>(side));
  for (int32_t left = 0; left < strip->Width(); left += side) {
    std::vector<uint32_t> pixels(static_cast<size_t>(side) * static_cast<size_t>(side));
    for (int32_t y = 0; y < side; ++y)
      for (int32_t x = 0; x < side; ++x)
        pixels[static_cast<size_t>(y) * side + x] = strip->Pixel(left + x, y);
    images->ListImages().Add(std::make_shared<Picture>(side, side, std::move(pixels)));
  }
  return images;
}

}  // namespace velt::tool
