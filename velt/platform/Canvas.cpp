#include "velt/platform/Canvas.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <string>

#include "velt/platform/Error.hpp"
#include "velt/platform/Rounding.hpp"
#include "velt/platform/SystemColors.hpp"
#include "velt/platform/TextEngine.hpp"

namespace velt {

namespace {

// Products of two 32-bit coordinate differences and a factor of two do not fit
// in 64 bits; only the setup of a line needs them, never the per-pixel loop.
using Wide = __int128;

uint32_t pixelOf(OLE_COLOR color) {
  return OleToPixel(SystemColors::Resolve(color));
}

// Half-open range [begin, end).
struct Range {
  int64_t begin;
  int64_t end;
  bool empty() const { return begin >= end; }
  int64_t size() const { return end - begin; }
};

Range intersect(Range a, Range b) {
  return {std::max(a.begin, b.begin), std::min(a.end, b.end)};
}

template <typename T>
T floorDiv(T n, T d) {  // d > 0
  T q = n / d;
  if (n % d < 0) --q;
  return q;
}

template <typename T>
T ceilDiv(T n, T d) {  // d > 0
  return -floorDiv<T>(-n, d);
}

int64_t absolute(int64_t v) {
  return v < 0 ? -v : v;
}

// Rows of a face are a few hundred bytes: sixteen pixels an iteration in
// generic vector stores keep the loop's own work below the stores'.
void fillPixels(uint32_t* pixels, int64_t count, uint32_t rgb) {
  using Quad = uint32_t __attribute__((vector_size(4 * sizeof(uint32_t))));
  const Quad quad = {rgb, rgb, rgb, rgb};
  int64_t i = 0;
  for (; i + 16 <= count; i += 16) {
    std::memcpy(pixels + i, &quad, sizeof quad);
    std::memcpy(pixels + i + 4, &quad, sizeof quad);
    std::memcpy(pixels + i + 8, &quad, sizeof quad);
    std::memcpy(pixels + i + 12, &quad, sizeof quad);
  }
  for (; i + 4 <= count; i += 4)
    std::memcpy(pixels + i, &quad, sizeof quad);
  for (; i < count; ++i)
    pixels[i] = rgb;
}

size_t indexOf(int64_t x, int64_t y, int32_t width) {
  return static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
}

// One colour channel along a gradient: value(p) = floor((c0*(len-p) + c1*p) / (len*256)).
// The numerator is kept as quotient and remainder of that denominator, so moving
// to the next p is an addition with one carry, never a division.
class ChannelRamp {
 public:
  ChannelRamp(int64_t c0, int64_t c1, int64_t len, int64_t p) : den_(len * 256) {
    const int64_t delta = c1 - c0;
    const int64_t num = c0 * len + delta * p;
    q_ = floorDiv(num, den_);
    r_ = num - q_ * den_;
    stepQ_ = floorDiv(delta, den_);
    stepR_ = delta - stepQ_ * den_;
  }

  uint32_t value() const { return static_cast<uint32_t>(q_); }

  // Branch-free: the carry follows the colour values, which a branch predictor
  // cannot guess.
  void step() {
    r_ += stepR_;
    const bool carry = r_ >= den_;
    q_ += stepQ_ + carry;
    r_ -= carry ? den_ : 0;
  }

 private:
  int64_t den_;
  int64_t q_ = 0;
  int64_t r_ = 0;
  int64_t stepQ_ = 0;
  int64_t stepR_ = 0;
};

class ColorRamp {
 public:
  ColorRamp(const TriVertex& from, const TriVertex& to, int64_t len, int64_t p)
      : red_(from.Red, to.Red, len, p),
        green_(from.Green, to.Green, len, p),
        blue_(from.Blue, to.Blue, len, p) {}

  uint32_t pixel() const { return (red_.value() << 16) | (green_.value() << 8) | blue_.value(); }

  void step() {
    red_.step();
    green_.step();
    blue_.step();
  }

 private:
  ChannelRamp red_;
  ChannelRamp green_;
  ChannelRamp blue_;
};

// The same ramp for gradients shorter than 32768 pixels, where every numerator
// fits 31 bits: four neighbouring positions at a time in generic vector lanes
// (no processor's intrinsics), each lane keeping its quotient and remainder.
// A step moves all four on by four positions with additions and one compare:
// exact, no division or multiplication in the loop.
constexpr int64_t kShortRampLimit = 32768;
constexpr int32_t kLanes = 4;
using Lanes = int32_t __attribute__((vector_size(kLanes * sizeof(int32_t))));

class LaneRamp {
 public:
  // The first position is p0. The denominator's reciprocal, taken once, gives
  // each starting quotient to within one; the remainder check makes it exact.
  LaneRamp(const TriVertex& from, const TriVertex& to, int32_t len, int32_t p0)
      : den_(len * 256),
        inverse_(1.0 / den_),
        red_(channel(from.Red, to.Red, len, p0)),
        green_(channel(from.Green, to.Green, len, p0)),
        blue_(channel(from.Blue, to.Blue, len, p0)) {}

  // Writes the next count colours and moves on. Only the last call of a ramp
  // may ask for a count that is not a multiple of four.
  void fill(int32_t count, uint32_t* out) {
    int32_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
      const Lanes pixels = current();
      std::memcpy(out + i, &pixels, sizeof pixels);
      advance();
    }
    if (i == count) return;
    uint32_t tail[kLanes];
    const Lanes pixels = current();
    std::memcpy(tail, &pixels, sizeof pixels);
    std::copy(tail, tail + (count - i), out + i);
  }

 private:
  struct Channel {
    Lanes q;
    Lanes r;
    int32_t stepQ;  // quotient and remainder of four steps
    int32_t stepR;
  };

  struct Division {
    int64_t q;
    int64_t r;
  };

  // floor(num / den) and the remainder in [0, den). The truncated estimate is
  // within one of the quotient; the remainder's range puts it right.
  Division divide(int64_t num) const {
    int64_t q = static_cast<int64_t>(static_cast<double>(num) * inverse_);
    int64_t r = num - q * den_;
    if (r < 0) {
      --q;
      r += den_;
    } else if (r >= den_) {
      ++q;
      r -= den_;
    }
    return {q, r};
  }

  // Lane k starts at position p0 + k; the step is what four positions add.
  Channel channel(int64_t c0, int64_t c1, int64_t len, int64_t p0) const {
    const Division one = divide(c1 - c0);
    // At the start edge the quotient is c0's high byte, no division needed.
    Division at =
        p0 == 0 ? Division{c0 >> 8, (c0 & 0xFF) * len} : divide(c0 * len + (c1 - c0) * p0);
    const Division first = at;
    Channel c{};
    for (int32_t k = 0; k < kLanes; ++k) {
      c.q[k] = static_cast<int32_t>(at.q);
      c.r[k] = static_cast<int32_t>(at.r);
      at.r += one.r;
      at.q += one.q + (at.r >= den_ ? 1 : 0);
      at.r -= at.r >= den_ ? den_ : 0;
    }
    Division step{at.q - first.q, at.r - first.r};
    if (step.r < 0) {
      --step.q;
      step.r += den_;
    }
    c.stepQ = static_cast<int32_t>(step.q);
    c.stepR = static_cast<int32_t>(step.r);
    return c;
  }

  Lanes current() const { return (red_.q << 16) | (green_.q << 8) | blue_.q; }

  void advance() {
    const Lanes den = {den_, den_, den_, den_};
    for (Channel* c : {&red_, &green_, &blue_}) {
      c->r += c->stepR;
      const Lanes carry = c->r >= den;  // -1 where the remainder overflowed
      c->r -= den & carry;
      c->q += c->stepQ - carry;
    }
  }

  int32_t den_;
  double inverse_;
  Channel red_;
  Channel green_;
  Channel blue_;
};

// Repeats the first row of a horizontal gradient on the rows below it.
void copyRowDown(uint32_t* pixels, int32_t width, Range xs, Range ys) {
  const uint32_t* first = pixels + indexOf(xs.begin, ys.begin, width);
  const size_t bytes = static_cast<size_t>(xs.size()) * sizeof(uint32_t);
  for (int64_t row = ys.begin + 1; row < ys.end; ++row)
    std::memcpy(pixels + indexOf(xs.begin, row, width), first, bytes);
}

void paintShortRamp(LaneRamp ramp, bool horizontal, uint32_t* pixels, int32_t width, Range xs,
                    Range ys) {
  uint32_t* row = pixels + indexOf(xs.begin, ys.begin, width);
  const auto count = static_cast<int32_t>(xs.size());
  if (horizontal) {
    ramp.fill(count, row);
    copyRowDown(pixels, width, xs, ys);
    return;
  }
  // One colour a row: the colours of a run of rows are computed together, then
  // each row is filled; one-pixel edges on their own.
  constexpr int32_t kRun = 256;  // a multiple of the ramp's lanes
  uint32_t colors[kRun];
  const auto rows = static_cast<int32_t>(ys.size());
  for (int32_t done = 0; done < rows;) {
    const int32_t run = std::min(kRun, rows - done);
    ramp.fill(run, colors);
    if (count == 1) {
      for (int32_t i = 0; i < run; ++i, row += width)
        *row = colors[i];
    } else {
      for (int32_t i = 0; i < run; ++i, row += width)
        fillPixels(row, count, colors[i]);
    }
    done += run;
  }
}

void paintLongRamp(ColorRamp ramp, bool horizontal, uint32_t* pixels, int32_t width, Range xs,
                   Range ys) {
  uint32_t* row = pixels + indexOf(xs.begin, ys.begin, width);
  const auto count = static_cast<size_t>(xs.size());
  if (horizontal) {
    for (size_t i = 0; i < count; ++i) {
      row[i] = ramp.pixel();
      ramp.step();
    }
    copyRowDown(pixels, width, xs, ys);
    return;
  }
  for (int64_t y = ys.begin; y < ys.end; ++y, row += width) {
    fillPixels(row, static_cast<int64_t>(count), ramp.pixel());
    ramp.step();
  }
}

// A line seen along its major axis: step i moves the major coordinate by one and
// puts the minor one at b0 + ceil((2*i*B - A) / (2*A)), A = |major delta|, B =
// minor delta. That is the exact position rounded to nearest, a half going to the
// smaller coordinate.
struct LineAxes {
  int64_t a0;         // major start
  int64_t majorSign;  // +1 or -1
  int64_t A;          // major extent, > 0
  int32_t majorSize;  // image size along the major axis
  int64_t b0;         // minor start
  int64_t B;          // minor delta (signed), |B| <= A
  int32_t minorSize;
};

// The steps i whose major coordinate lies inside the image.
Range majorVisible(const LineAxes& l) {
  const Range all{0, l.A};
  if (l.majorSign > 0) return intersect(all, {-l.a0, l.majorSize - l.a0});
  return intersect(all, {l.a0 - l.majorSize + 1, l.a0 + 1});
}

// The steps i whose minor coordinate lies inside the image, solved from the
// rounding formula so that a line far outside costs nothing.
Range minorVisible(const LineAxes& l) {
  const Wide lo = -static_cast<Wide>(l.b0);
  const Wide hi = static_cast<Wide>(l.minorSize) - 1 - l.b0;
  if (l.B == 0) return (lo <= 0 && 0 <= hi) ? Range{0, l.A} : Range{0, 0};
  const Wide twoA = 2 * static_cast<Wide>(l.A);
  // minor offset >= lo  <=>  2iB > P;  minor offset <= hi  <=>  2iB <= Q.
  const Wide P = twoA * (lo - 1) + l.A;
  const Wide Q = twoA * hi + l.A;
  const Wide twoAbsB = 2 * static_cast<Wide>(absolute(l.B));
  Wide first;
  Wide last;  // inclusive
  if (l.B > 0) {
    first = floorDiv(P, twoAbsB) + 1;
    last = floorDiv(Q, twoAbsB);
  } else {
    first = ceilDiv(-Q, twoAbsB);
    last = ceilDiv(-P, twoAbsB) - 1;
  }
  // Both sides are clamped to the line's own steps before narrowing.
  first = std::max<Wide>(first, 0);
  last = std::min<Wide>(last, l.A - 1);
  if (first > last) return {0, 0};
  return {static_cast<int64_t>(first), static_cast<int64_t>(last) + 1};
}

void drawLine(uint32_t* pixels, int32_t width, int32_t height, int64_t x0, int64_t y0, int64_t x1,
              int64_t y1, uint32_t rgb) {
  const int64_t dx = x1 - x0;
  const int64_t dy = y1 - y0;
  if (dx == 0 && dy == 0) return;
  const bool xMajor = absolute(dx) >= absolute(dy);
  const LineAxes l = xMajor ? LineAxes{x0, dx > 0 ? 1 : -1, absolute(dx), width, y0, dy, height}
                            : LineAxes{y0, dy > 0 ? 1 : -1, absolute(dy), height, x0, dx, width};
  const Range steps = intersect(majorVisible(l), minorVisible(l));
  if (steps.empty()) return;

  // Minor offset at the first visible step: q = ceil(N / D), N = 2iB - A, with
  // the remainder e carried so that later steps only add and compare.
  const int64_t D = 2 * l.A;
  const Wide N = 2 * static_cast<Wide>(steps.begin) * l.B - l.A;
  const auto q = static_cast<int64_t>(ceilDiv(N, static_cast<Wide>(D)));
  const auto r = static_cast<int64_t>(static_cast<Wide>(q) * D - N);  // 0 <= r < D
  int64_t e = l.B >= 0 ? r : D - 1 - r;
  const int64_t twoAbsB = 2 * absolute(l.B);

  const int64_t a = l.a0 + l.majorSign * steps.begin;
  const int64_t b = l.b0 + q;
  const int64_t stride = width;
  const int64_t majorStep = l.majorSign * (xMajor ? 1 : stride);
  const int64_t minorStep = (l.B >= 0 ? 1 : -1) * (xMajor ? stride : 1);
  int64_t at = xMajor ? b * stride + a : a * stride + b;
  for (int64_t n = steps.size(); n > 0; --n) {
    pixels[at] = rgb;
    at += majorStep;
    e -= twoAbsB;
    const bool minorMove = e < 0;  // unpredictable for most slopes: no branch
    e += minorMove ? D : 0;
    at += minorMove ? minorStep : 0;
  }
}

// Calls visitRow(canvasRow, pictureRow, count) for every row of the picture
// that lands on the image when its top-left corner is at (x, y), cut to it.
template <typename VisitRow>
void forEachCoveredRow(uint32_t* pixels, int32_t width, int32_t height, const Picture& picture,
                       int64_t x, int64_t y, VisitRow visitRow) {
  const Range xs = intersect({x, x + picture.Width()}, {0, width});
  const Range ys = intersect({y, y + picture.Height()}, {0, height});
  if (xs.empty() || ys.empty()) return;
  for (int64_t row = ys.begin; row < ys.end; ++row)
    visitRow(pixels + indexOf(xs.begin, row, width),
             picture.Pixels() + indexOf(xs.begin - x, row - y, picture.Width()), xs.size());
}

// Calls visit(canvasPixel, picturePixel) for every picture pixel that lands on
// the image when the picture's top-left corner is at (x, y).
template <typename Visit>
void forEachCovered(uint32_t* pixels, int32_t width, int32_t height, const Picture& picture,
                    int64_t x, int64_t y, Visit visit) {
  forEachCoveredRow(pixels, width, height, picture, x, y,
                    [&](uint32_t* dst, const uint32_t* src, int64_t count) {
                      for (int64_t n = 0; n < count; ++n)
                        visit(dst[n], src[n]);
                    });
}

uint32_t blend(uint32_t dst, uint32_t rgb, uint32_t alpha) {
  if (alpha == 255) return rgb;
  if (alpha == 0) return dst;
  uint32_t out = 0;
  for (int shift = 0; shift <= 16; shift += 8) {
    const uint32_t s = (rgb >> shift) & 0xFFu;
    const uint32_t d = (dst >> shift) & 0xFFu;
    out |= ((s * alpha + d * (255 - alpha) + 127) / 255) << shift;
  }
  return out;
}

// Pictures are mostly opaque or clear. A row with no soft alpha at all is a
// masked copy (scanned and copied branch-free, so both vectorise); in other
// rows four pixels at a time are copied or left alone, and only the edges
// between are blended.
void blendPictureRow(uint32_t* dst, const uint32_t* src, int64_t count) {
  constexpr uint32_t kAlpha = 0xFF000000u;
  uint32_t soft = 0;
  for (int64_t n = 0; n < count; ++n)
    soft |= static_cast<uint32_t>((src[n] >> 24) - 1u < 254u);
  if (soft == 0) {
    for (int64_t n = 0; n < count; ++n)
      dst[n] = (src[n] & kAlpha) != 0 ? src[n] & ~kAlpha : dst[n];
    return;
  }
  int64_t n = 0;
  for (; n + 4 <= count; n += 4) {
    const uint32_t all = src[n] & src[n + 1] & src[n + 2] & src[n + 3];
    const uint32_t any = src[n] | src[n + 1] | src[n + 2] | src[n + 3];
    if ((all & kAlpha) == kAlpha) {
      for (int k = 0; k < 4; ++k)
        dst[n + k] = src[n + k] & ~kAlpha;
    } else if ((any & kAlpha) != 0) {
      for (int k = 0; k < 4; ++k)
        dst[n + k] = blend(dst[n + k], src[n + k] & ~kAlpha, src[n + k] >> 24);
    }
  }
  for (; n < count; ++n)
    dst[n] = blend(dst[n], src[n] & ~kAlpha, src[n] >> 24);
}

// Lines of a text: split at "\n", a "\r" just before it dropped. An empty text
// is one empty line.
template <typename Visit>
void forEachLine(std::string_view text, Visit visit) {
  while (true) {
    const size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    if (end != std::string_view::npos && !line.empty() && line.back() == '\r')
      line.remove_suffix(1);
    visit(line);
    if (end == std::string_view::npos) return;
    text.remove_prefix(end + 1);
  }
}

int64_t roundCoordinate(float value) {
  const double rounded = RoundHalfEven(value);
  constexpr double kLimit = 1e15;  // far beyond any image, still exact in 64 bits
  if (!(rounded > -kLimit)) return static_cast<int64_t>(-kLimit);
  if (rounded > kLimit) return static_cast<int64_t>(kLimit);
  return static_cast<int64_t>(rounded);
}

bool fitsInt32(int64_t v) {
  return v >= std::numeric_limits<int32_t>::min() && v <= std::numeric_limits<int32_t>::max();
}

}  // namespace

Canvas::Canvas(int32_t width, int32_t height) : font_(Font::Ambient()) {
  Resize(width, height);
}

void Canvas::Resize(int32_t width, int32_t height) {
  const std::string size = std::to_string(width) + "x" + std::to_string(height);
  if (width < 0 || height < 0)
    throw Error(errInvalidProcedureCall, "Canvas size " + size + " is negative");
  try {
    std::vector<uint32_t> fresh(static_cast<size_t>(width) * static_cast<size_t>(height),
                                pixelOf(backColor_));
    pixels_.swap(fresh);
    pendingTop_ = pendingBottom_ = 0;
  } catch (const std::bad_alloc&) {
    throw Error(errOutOfMemory, "Out of memory for a canvas of " + size + " pixels");
  } catch (const std::length_error&) {
    throw Error(errOutOfMemory, "Out of memory for a canvas of " + size + " pixels");
  }
  width_ = width;
  height_ = height;
}

void Canvas::BackColor(OLE_COLOR color) {
  backColor_ = color;
  eraseAll(pixelOf(color));
}

void Canvas::ForeColor(OLE_COLOR color) {
  foreColor_ = color;
}

void Canvas::Clear() {
  eraseAll(pixelOf(backColor_));
  currentX_ = 0;
  currentY_ = 0;
}

void Canvas::eraseAll(uint32_t rgb) {
  pendingTop_ = 0;
  pendingBottom_ = height_;
  pendingPixel_ = rgb;
}

void Canvas::settle() const {
  if (pendingTop_ >= pendingBottom_) return;
  fillPixels(pixels_.data() + indexOf(0, pendingTop_, width_),
             int64_t{pendingBottom_ - pendingTop_} * width_, pendingPixel_);
  pendingTop_ = pendingBottom_ = 0;
}

// About to paint rows [top, bottom): a full-width paint that covers the first
// or last pending rows takes them off the list; otherwise pending rows it
// touches are written out first.
void Canvas::prepareRows(int64_t top, int64_t bottom, bool fullWidth) {
  if (pendingTop_ >= pendingBottom_ || bottom <= pendingTop_ || top >= pendingBottom_) return;
  if (fullWidth && top <= pendingTop_) {
    pendingTop_ = static_cast<int32_t>(std::min<int64_t>(bottom, pendingBottom_));
  } else if (fullWidth && bottom >= pendingBottom_) {
    pendingBottom_ = static_cast<int32_t>(std::max<int64_t>(top, pendingTop_));
  } else {
    settle();
  }
}

const uint32_t* Canvas::Pixels() const {
  settle();
  return pixels_.data();
}

uint32_t* Canvas::Pixels() {
  settle();
  return pixels_.data();
}

void Canvas::Line(int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
  Line(x1, y1, x2, y2, foreColor_);
}

void Canvas::Line(int32_t x1, int32_t y1, int32_t x2, int32_t y2, OLE_COLOR color) {
  if (pixels_.empty()) return;
  if (y1 == y2 || x1 == x2) {
    straightLine(x1, y1, x2, y2, pixelOf(color));
    return;
  }
  settle();
  drawLine(pixels_.data(), width_, height_, x1, y1, x2, y2, pixelOf(color));
}

// Edges and separators are nearly all level or upright: the pixels from the
// start point up to, not including, the end point, without the general
// stepping.
void Canvas::straightLine(int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t rgb) {
  const auto span = [](int64_t from, int64_t to) {
    return from <= to ? Range{from, to} : Range{to + 1, from + 1};
  };
  const bool level = y1 == y2;
  const Range xs = intersect(level ? span(x1, x2) : Range{x1, int64_t{x1} + 1}, {0, width_});
  const Range ys = intersect(level ? Range{y1, int64_t{y1} + 1} : span(y1, y2), {0, height_});
  if (xs.empty() || ys.empty()) return;
  prepareRows(ys.begin, ys.end, xs.size() == width_);
  uint32_t* at = pixels_.data() + indexOf(xs.begin, ys.begin, width_);
  if (level) {
    fillPixels(at, xs.size(), rgb);
    return;
  }
  for (int64_t y = ys.begin; y < ys.end; ++y, at += width_)
    *at = rgb;
}

void Canvas::PSet(int32_t x, int32_t y) {
  PSet(x, y, foreColor_);
}

void Canvas::PSet(int32_t x, int32_t y, OLE_COLOR color) {
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return;
  settle();
  pixels_[indexOf(x, y, width_)] = pixelOf(color);
}

int32_t Canvas::Point(int32_t x, int32_t y) const {
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return -1;
  return static_cast<int32_t>(PixelToOle(PixelRGB(x, y)));
}

uint32_t Canvas::PixelRGB(int32_t x, int32_t y) const {
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return 0;
  if (y >= pendingTop_ && y < pendingBottom_) return pendingPixel_;
  return pixels_[indexOf(x, y, width_)];
}

void Canvas::FillRect(int32_t x, int32_t y, int32_t width, int32_t height, OLE_COLOR color) {
  const Range xs = intersect({x, int64_t{x} + width}, {0, width_});
  const Range ys = intersect({y, int64_t{y} + height}, {0, height_});
  if (xs.empty() || ys.empty()) return;
  prepareRows(ys.begin, ys.end, xs.size() == width_);
  const uint32_t rgb = pixelOf(color);
  for (int64_t row = ys.begin; row < ys.end; ++row)
    fillPixels(pixels_.data() + indexOf(xs.begin, row, width_), xs.size(), rgb);
}

bool Canvas::GradientFill(std::span<const TriVertex> vertices,
                          std::span<const GradientRectMesh> meshes, uint32_t mode) {
  if (mode != GRADIENT_FILL_RECT_H && mode != GRADIENT_FILL_RECT_V) return false;
  for (const GradientRectMesh& mesh : meshes)
    if (mesh.UpperLeft >= vertices.size() || mesh.LowerRight >= vertices.size()) return false;
  for (const GradientRectMesh& mesh : meshes)
    gradientRect(vertices[mesh.UpperLeft], vertices[mesh.LowerRight], mode);
  return true;
}

void Canvas::gradientRect(const TriVertex& a, const TriVertex& b, uint32_t mode) {
  const bool horizontal = mode == GRADIENT_FILL_RECT_H;
  const Range xs = intersect({std::min(a.x, b.x), std::max(a.x, b.x)}, {0, width_});
  const Range ys = intersect({std::min(a.y, b.y), std::max(a.y, b.y)}, {0, height_});
  if (xs.empty() || ys.empty()) return;
  prepareRows(ys.begin, ys.end, xs.size() == width_);

  // The colour starts at the vertex nearer the origin along the gradient's axis,
  // whichever index the mesh gives it.
  const bool aFirst = horizontal ? a.x <= b.x : a.y <= b.y;
  const TriVertex& from = aFirst ? a : b;
  const TriVertex& to = aFirst ? b : a;
  const int64_t len = horizontal ? absolute(int64_t{b.x} - a.x) : absolute(int64_t{b.y} - a.y);
  const int64_t firstOffset = horizontal ? xs.begin - from.x : ys.begin - from.y;

  uint32_t* pixels = pixels_.data();
  if (len >= kShortRampLimit) {
    paintLongRamp(ColorRamp(from, to, len, firstOffset), horizontal, pixels, width_, xs, ys);
    return;
  }
  paintShortRamp(LaneRamp(from, to, static_cast<int32_t>(len), static_cast<int32_t>(firstOffset)),
                 horizontal, pixels, width_, xs, ys);
}

void Canvas::Font(std::shared_ptr<velt::Font> font) {
  if (!font) throw Error(errObjectNotSet, "Canvas.Font was given no font object");
  font_ = std::move(font);
}

int32_t Canvas::TextWidth(std::string_view text) const {
  TextEngine& engine = TextEngine::Instance();
  int32_t widest = 0;
  forEachLine(text, [&](std::string_view line) {
    widest = std::max(widest, engine.LineWidth(*font_, line, rightToLeft_));
  });
  return widest;
}

int32_t Canvas::TextHeight(std::string_view text) const {
  const int32_t lines = static_cast<int32_t>(std::count(text.begin(), text.end(), '\n')) + 1;
  return TextEngine::Instance().Metrics(*font_).lineHeight * lines;
}

void Canvas::Print(std::string_view text) {
  TextEngine& engine = TextEngine::Instance();
  const int32_t lineHeight = engine.Metrics(*font_).lineHeight;
  const uint32_t rgb = pixelOf(foreColor_);
  int64_t x = roundCoordinate(currentX_);
  int64_t y = roundCoordinate(currentY_);
  int32_t printed = 0;
  forEachLine(text, [&](std::string_view line) {
    settle();
    if (!pixels_.empty() && fitsInt32(x) && fitsInt32(y))
      engine.DrawLine(pixels_.data(), width_, height_, static_cast<int32_t>(x),
                      static_cast<int32_t>(y), rgb, *font_, line, rightToLeft_);
    x = 0;  // every following line starts at the left edge
    y += lineHeight;
    ++printed;
  });
  currentX_ = 0;
  currentY_ += static_cast<float>(lineHeight) * static_cast<float>(printed);
}

int32_t Canvas::ClusterCut(std::string_view line, int32_t characters) const {
  return TextEngine::Instance().Shape(*font_, line, rightToLeft_).CutAtOrBefore(characters);
}

std::vector<CaretStop> Canvas::CaretStops(std::string_view line) const {
  return TextEngine::Instance().Shape(*font_, line, rightToLeft_).CaretStops();
}

int32_t Canvas::CaretAt(std::string_view line, int32_t x) const {
  return TextEngine::Instance().Shape(*font_, line, rightToLeft_).CaretAt(x);
}

void Canvas::DrawPicture(const Picture& picture, int32_t x, int32_t y, PictureLook look,
                         OLE_COLOR monochromeColor) {
  if (pixels_.empty()) return;
  uint32_t* pixels = Pixels();
  switch (look) {
    case PictureLook::Normal:
      // Through a lambda, so the row function is inlined rather than called by pointer.
      forEachCoveredRow(pixels, width_, height_, picture, x, y,
                        [](uint32_t* dst, const uint32_t* src, int64_t count) {
                          blendPictureRow(dst, src, count);
                        });
      break;
    case PictureLook::Monochrome: {
      const uint32_t rgb = pixelOf(monochromeColor);
      forEachCovered(pixels, width_, height_, picture, x, y,
                     [rgb](uint32_t& dst, uint32_t src) { dst = blend(dst, rgb, src >> 24); });
      break;
    }
    case PictureLook::Disabled: {
      // Highlight one pixel down-right, then the shadow on top of it: the
      // embossed look of a disabled icon. Only clearly opaque pixels count.
      const uint32_t highlight = pixelOf(SystemColors::Get(COLOR_BTNHIGHLIGHT));
      const uint32_t shadow = pixelOf(SystemColors::Get(COLOR_BTNSHADOW));
      auto stamp = [](uint32_t rgb) {
        return [rgb](uint32_t& dst, uint32_t src) {
          if ((src >> 24) >= 128) dst = rgb;
        };
      };
      forEachCovered(pixels, width_, height_, picture, int64_t{x} + 1, int64_t{y} + 1,
                     stamp(highlight));
      forEachCovered(pixels, width_, height_, picture, x, y, stamp(shadow));
      break;
    }
  }
}

}  // namespace velt
