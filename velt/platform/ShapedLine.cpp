#include "velt/platform/ShapedLine.hpp"

#include <algorithm>
#include <cstdlib>

namespace velt {

std::vector<int32_t> ShapedLine::Boundaries() const {
  std::vector<int32_t> positions;
  positions.reserve(clusters.size() + 1);
  for (const ClusterBox& box : clusters)
    positions.push_back(box.start);
  positions.push_back(length);
  std::sort(positions.begin(), positions.end());
  positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
  if (positions.front() != 0) positions.insert(positions.begin(), 0);
  return positions;
}

int32_t ShapedLine::CutAtOrBefore(int32_t characters) const {
  int32_t cut = 0;
  for (const ClusterBox& box : clusters)
    if (box.start <= characters) cut = std::max(cut, box.start);
  return characters >= length ? length : cut;
}

std::vector<CaretStop> ShapedLine::CaretStops() const {
  std::vector<CaretStop> stops;
  stops.reserve(clusters.size() + 1);
  const ClusterBox* last = nullptr;
  for (const ClusterBox& box : clusters) {
    if (!stops.empty() && stops.back().position == box.start) continue;  // one box per cluster
    stops.push_back({box.start, box.rightToLeft ? box.right : box.left});
    if (!last || box.end > last->end) last = &box;
  }
  if (last)
    stops.push_back({length, last->rightToLeft ? last->left : last->right});
  else
    stops.push_back({0, 0});
  std::stable_sort(stops.begin(), stops.end(),
                   [](const CaretStop& a, const CaretStop& b) { return a.x < b.x; });
  return stops;
}

int32_t ShapedLine::CaretAt(int32_t x) const {
  const std::vector<CaretStop> stops = CaretStops();
  const CaretStop* best = &stops.front();
  for (const CaretStop& stop : stops)
    if (std::abs(int64_t{stop.x} - x) < std::abs(int64_t{best->x} - x)) best = &stop;
  return best->position;
}

}  // namespace velt
