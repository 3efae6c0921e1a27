#pragma once

#include <cstdint>

#include "velt/platform/Types.hpp"

namespace velt {

// The twelve colours a control paints one state with, all derived from a back,
// a fore and a third colour. Controls that number the entries use this order.
struct ColorScheme {
  static constexpr int kCount = 12;

  OLE_COLOR Fore = 0;
  OLE_COLOR Back = 0;
  OLE_COLOR FillTop = 0;
  OLE_COLOR FillMiddle = 0;
  OLE_COLOR FillBottom = 0;
  OLE_COLOR EdgeLight = 0;
  OLE_COLOR EdgeMid = 0;
  OLE_COLOR EdgeDark = 0;
  OLE_COLOR Text = 0;
  OLE_COLOR Accent1 = 0;
  OLE_COLOR Accent2 = 0;
  OLE_COLOR Accent3 = 0;

  // Entry 0 (Fore) to 11 (Accent3); any other index is error 9.
  OLE_COLOR operator[](int index) const;
};

// The palettes of the control states. Fore and Back are the arguments as given;
// the fills and edges mix Back with Fore (with the half-way mix of Fore and Third
// for the focused look); the accents mix Back with Third.
ColorScheme SchemeNormal(OLE_COLOR Back, OLE_COLOR Fore, OLE_COLOR Third);
ColorScheme SchemeHover(OLE_COLOR Back, OLE_COLOR Fore, OLE_COLOR Third);
ColorScheme SchemePressed(OLE_COLOR Back, OLE_COLOR Fore, OLE_COLOR Third);
ColorScheme SchemeDisabled(OLE_COLOR Back, OLE_COLOR Fore, OLE_COLOR Third);
ColorScheme SchemeFocused(OLE_COLOR Back, OLE_COLOR Fore, OLE_COLOR Third);

}  // namespace velt
