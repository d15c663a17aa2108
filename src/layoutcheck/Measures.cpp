#include "platenest/layoutcheck/Measures.h"

#include <limits>

#include "BoxSweep.h"
#include "Guards.h"
#include "platenest/foundation/Errors.h"

namespace platenest {

std::optional<TPlacedBox> UsedBox(std::span<const TPlacedBox> Boxes) {
  detail::RequireProper(Boxes, "UsedBox");
  if (Boxes.empty()) return std::nullopt;
  TPlacedBox used = Boxes.front();
  for (const TPlacedBox& box : Boxes)
    used = {std::min(used.Left, box.Left), std::min(used.Bottom, box.Bottom), std::max(used.Right, box.Right),
            std::max(used.Top, box.Top)};
  return used;
}

double TotalArea(std::span<const TPlacedBox> Boxes) {
  detail::RequireProper(Boxes, "TotalArea");
  double area = 0;
  for (const TPlacedBox& box : Boxes) area += box.Area();
  return area;
}

std::optional<double> LeastClearance(std::span<const TPlacedBox> Boxes) {
  detail::RequireProper(Boxes, "LeastClearance");
  if (Boxes.size() < 2) return std::nullopt;
  double least = std::numeric_limits<double>::infinity();
  const auto visit = [&](int A, int B) {
    least = std::min(least, std::max(Clearance(Boxes[A], Boxes[B]), 0.0));
    return least == 0;
  };
  // Nesters list neighbours one after the other, so the least of these is often the answer or close to it.
  for (int i = 1; i < Size(Boxes); ++i)
    if (visit(i - 1, i)) return least;
  if (detail::SweepStrips(Boxes, least, visit) == detail::TSweepEnd::GaveUp)
    detail::SweepNearPairs(Boxes, least, visit);
  return least;
}

TLayoutMeasures MeasureLayout(std::span<const TPlacedBox> Boxes, const TPlacedBox& Plate, const TPlacedBox& FreeArea,
                              double Gap) {
  detail::RequireProper(Plate, "MeasureLayout", "the plate");
  if (!(Plate.Area() > 0)) throw TArgumentError("[Error] LayoutCheck.MeasureLayout: the plate has no area");
  const double partArea = TotalArea(Boxes);
  return {partArea,
          partArea / Plate.Area(),
          UsedBox(Boxes),
          LeastClearance(Boxes),
          IsEdgeToEdge(Boxes),
          LargestFreeBox(Boxes, FreeArea, Gap)};
}

}  // namespace platenest
