#pragma once

#include <cstdint>

#include "velt/platform/Types.hpp"

namespace velt {

// A colour as a GradientFill vertex takes it: each channel 0..255 shifted left by
// 8. The fields are signed 16-bit, so 0xFF00 is held as -256; only the bit
// pattern matters.
struct VertexColor {
  int16_t Red = 0;
  int16_t Green = 0;
  int16_t Blue = 0;
};

// The three channels of a plain colour, each 0..255.
struct RGBTriple {
  int16_t Red = 0;
  int16_t Green = 0;
  int16_t Blue = 0;
};

// A plain colour unchanged; a system colour (high bit set) looked up in the
// system colour table.
OLE_COLOR TranslateSysColor(OLE_COLOR Color);

// Weight/255 of ColorA mixed with (255 - Weight)/255 of ColorB, channel by
// channel, rounded to the nearest integer (halves to even). System colours are
// resolved first. A channel that leaves 0..255 (only possible with a weight
// outside 0..255) is error 6.
OLE_COLOR BlendColor(OLE_COLOR ColorA, OLE_COLOR ColorB, int32_t Weight);

// The vertex form of a plain colour. A value wider than six hex digits (a system
// colour or anything above 0xFFFFFF) is error 6.
VertexColor ColorToVertexColor(OLE_COLOR Color);

// The channels of a plain colour. Values above 0xFFFFFF give a Blue above 255
// as the arithmetic does; one whose Blue does not fit 16 bits is error 6.
RGBTriple ColorToRGB(OLE_COLOR Color);

}  // namespace velt
