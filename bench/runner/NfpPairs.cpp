#include "NfpPairs.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "platenest/foundation/Types.h"

namespace platenest::bench {

namespace {

// Quarter turns are exact.
TPoint2D TurnedBy(const TPoint2D& Point, double Degrees) {
  const double quarters = Degrees / 90;
  if (quarters != std::floor(quarters)) return Point.RotateBy(Degrees * std::numbers::pi / 180);
  TPoint2D turned = Point;
  for (int i = 0; i < quarters; ++i) turned = {-turned.Y, turned.X};
  return turned;
}

TVHPolygon TurnedBy(const TVHPolygon& Shape, double Degrees) {
  TVHPolygon turned = Shape;
  for (TVPolyline2D& contour : turned)
    for (TPoint2D& point : contour) point = TurnedBy(point, Degrees);
  return turned;
}

std::string NameOf(const TNfpPart& Part, double Degrees) {
  const std::string id = std::to_string(Part.Id);
  return Degrees == 0 ? id : id + "@" + std::to_string(std::lround(Degrees));
}

}  // namespace

std::vector<TNfpShape> ShapesOf(const TNfpInstance& Instance, bool Turned) {
  std::vector<TNfpShape> shapes;
  for (const TNfpPart& part : Instance.Parts) {
    if (!Turned || part.Rotations.empty()) shapes.push_back({NameOf(part, 0), part.Shape});
    if (!Turned) continue;
    for (const double degrees : part.Rotations)
      shapes.push_back({NameOf(part, degrees), TurnedBy(part.Shape, degrees)});
  }
  return shapes;
}

std::vector<TNfpPair> OrderedPairs(int Shapes, int Most) {
  const Int64 all = static_cast<Int64>(Shapes) * Shapes;
  const Int64 count = std::min<Int64>(all, Most);
  std::vector<TNfpPair> pairs;
  for (Int64 k = 0; k < count; ++k) {
    const int number = static_cast<int>(k * all / count);
    pairs.push_back({number, number / Shapes, number % Shapes});
  }
  return pairs;
}

}  // namespace platenest::bench
