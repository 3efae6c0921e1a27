#include "velt/foundation/Colors.hpp"

#include <cmath>
#include <string>

#include "velt/platform/Error.hpp"
#include "velt/platform/Rounding.hpp"
#include "velt/platform/SystemColors.hpp"

namespace velt {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

std::string hexText(uint64_t value) {
  std::string text;
  do {
    text.insert(text.begin(), kHexDigits[value % 16]);
    value /= 16;
  } while (value != 0);
  return text;
}

int32_t blendChannel(int32_t a, int32_t b, int32_t weight) {
  // Two separate quotients, as the mix is written; the exact value is k/255, so
  // it never lands on a half and the rounding is the plain nearest integer.
  const double mixed =
      static_cast<double>(a) * weight / 255.0 + static_cast<double>(b) * (255.0 - weight) / 255.0;
  const double rounded = RoundHalfEven(mixed);
  if (!(rounded >= 0.0 && rounded <= 255.0)) {
    throw Error(errOverflow,
                "BlendColor: weight " + std::to_string(weight) + " gives a channel outside 0..255");
  }
  return static_cast<int32_t>(rounded);
}

int16_t vertexChannel(uint32_t byte) {
  return static_cast<int16_t>(static_cast<uint16_t>(byte << 8));
}

}  // namespace

OLE_COLOR TranslateSysColor(OLE_COLOR Color) {
  if ((Color & kSystemColorFlag) == 0) return Color;
  return SystemColors::Get(static_cast<int32_t>(Color & ~kSystemColorFlag));
}

OLE_COLOR BlendColor(OLE_COLOR ColorA, OLE_COLOR ColorB, int32_t Weight) {
  const OLE_COLOR a = TranslateSysColor(ColorA);
  const OLE_COLOR b = TranslateSysColor(ColorB);
  const auto channel = [&](int shift) {
    return static_cast<uint8_t>(blendChannel((a >> shift) & 0xFF, (b >> shift) & 0xFF, Weight));
  };
  const uint8_t blue = channel(16);
  const uint8_t green = channel(8);
  const uint8_t red = channel(0);
  return RGB(red, green, blue);
}

VertexColor ColorToVertexColor(OLE_COLOR Color) {
  if (Color > 0xFFFFFFu) {
    throw Error(errOverflow,
                "ColorToVertexColor: colour &H" + hexText(Color) + " has more than six hex digits");
  }
  // Reading the padded hex text BBGGRR pair by pair as "&H" + pair + "00" is
  // the pair's byte shifted left by eight, kept as a signed 16-bit field.
  VertexColor vertex;
  vertex.Red = vertexChannel(Color & 0xFFu);
  vertex.Green = vertexChannel((Color >> 8) & 0xFFu);
  vertex.Blue = vertexChannel(Color >> 16);
  return vertex;
}

RGBTriple ColorToRGB(OLE_COLOR Color) {
  const double blueAndRest = static_cast<double>(Color) / 65536.0;
  const double blue = std::trunc(blueAndRest);
  if (blue > 32767.0) {
    throw Error(errOverflow,
                "ColorToRGB: colour &H" + hexText(Color) + " does not fit the 16-bit channels");
  }
  const double greenAndRest = (blueAndRest - blue) * 256.0;
  const double green = std::trunc(greenAndRest);
  const double red = RoundHalfEven((greenAndRest - green) * 256.0);
  RGBTriple triple;
  triple.Red = static_cast<int16_t>(red);
  triple.Green = static_cast<int16_t>(green);
  triple.Blue = static_cast<int16_t>(blue);
  return triple;
}

}  // namespace velt
