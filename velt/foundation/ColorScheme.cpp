#include "velt/foundation/ColorScheme.hpp"

#include <string>

#include "velt/foundation/Colors.hpp"
#include "velt/platform/Error.hpp"

namespace velt {

namespace {

// Weights of Back against the mix colour for the seven shaded fields.
struct ShadeWeights {
  int32_t fillTop;
  int32_t fillMiddle;
  int32_t fillBottom;
  int32_t edgeLight;
  int32_t edgeMid;
  int32_t edgeDark;
};

constexpr int32_t kTextWeight = 140;
constexpr int32_t kFocusMixWeight = 128;
constexpr OLE_COLOR kBlack = 0;

constexpr ShadeWeights kNormal{230, 190, 170, 220, 200, 120};
constexpr ShadeWeights kHover{245, 205, 185, 220, 200, 120};
constexpr ShadeWeights kPressed{170, 190, 230, 120, 120, 220};
constexpr ShadeWeights kDisabled{200, 190, 180, 220, 200, 120};
constexpr ShadeWeights kFocused{230, 190, 170, 220, 200, 120};

// textBase is the colour the text darkens towards: black, or Back for the
// disabled look.
ColorScheme buildScheme(OLE_COLOR back, OLE_COLOR fore, OLE_COLOR third, OLE_COLOR mix,
                        const ShadeWeights& weights, OLE_COLOR textBase) {
  ColorScheme scheme;
  scheme.Fore = fore;
  scheme.Back = back;
  scheme.FillTop = BlendColor(back, mix, weights.fillTop);
  scheme.FillMiddle = BlendColor(back, mix, weights.fillMiddle);
  scheme.FillBottom = BlendColor(back, mix, weights.fillBottom);
  scheme.EdgeLight = BlendColor(back, mix, weights.edgeLight);
  scheme.EdgeMid = BlendColor(back, mix, weights.edgeMid);
  scheme.EdgeDark = BlendColor(back, mix, weights.edgeDark);
  scheme.Text = BlendColor(textBase, mix, kTextWeight);
  scheme.Accent1 = BlendColor(back, third, 230);
  scheme.Accent2 = BlendColor(back, third, 180);
  scheme.Accent3 = BlendColor(back, third, 130);
  return scheme;
}

}  // namespace

OLE_COLOR ColorScheme::operator[](int index) const {
  switch (index) {
    case 0:
      return Fore;
    case 1:
      return Back;
    case 2:
      return FillTop;
    case 3:
      return FillMiddle;
    case 4:
      return FillBottom;
    case 5:
      return EdgeLight;
    case 6:
      return EdgeMid;
    case 7:
      return EdgeDark;
    case 8:
      return Text;
    case 9:
      return Accent1;
    case 10:
      return Accent2;
    case 11:
      return Accent3;
    default:
      throw Error(errSubscriptOutOfRange,
                  "ColorScheme: entry " + std::to_string(index) + " is outside 0..11");
  }
}

ColorScheme SchemeNormal(OLE_COLOR Back, OLE_COLOR Fore, OLE_COLOR Third) {
  return buildScheme(Back, Fore, Third, Fore, kNormal, kBlack);
}

ColorScheme SchemeHover(OLE_COLOR Back, OLE_COLOR Fore, OLE_COLOR Third) {
  return buildScheme(Back, Fore, Third, Fore, kHover, kBlack);
}

ColorScheme SchemePressed(OLE_COLOR Back, OLE_COLOR Fore, OLE_COLOR Third) {
  return buildScheme(Back, Fore, Third, Fore, kPressed, kBlack);
}

ColorScheme SchemeDisabled(OLE_COLOR Back, OLE_COLOR Fore, OLE_COLOR Third) {
  return buildScheme(Back, Fore, Third, Fore, kDisabled, Back);
}

ColorScheme SchemeFocused(OLE_COLOR Back, OLE_COLOR Fore, OLE_COLOR Third) {
  const OLE_COLOR mix = BlendColor(Fore, Third, kFocusMixWeight);
  return buildScheme(Back, Fore, Third, mix, kFocused, kBlack);
}

}  // namespace velt
