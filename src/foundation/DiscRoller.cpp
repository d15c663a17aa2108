#include "platenest/foundation/DiscRoller.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "OutwardThinning.h"
#include "PocketTree.h"
#include "ReducerForm.h"

namespace platenest {

namespace {

constexpr double kRadiusShare = 0.002;  // of the scale, at level 0
constexpr int kLastLevel = 8;           // a radius of half the scale
constexpr double kFineBound = 0.03;     // of the radius
constexpr double kCoarseBound = 0.1;
constexpr double kCavityShare = 0.9;  // of a cavity's area that has to stay in reach of the disc

double AreaOf(const std::vector<TPoint2D>& Points) {
  return TVPolyline2D(TVPoint2DList(Points)).Area();
}

// Points with what a disc cannot reach filled, unless that takes too much of a cavity.
std::optional<std::vector<TPoint2D>> Closed(const std::vector<TPoint2D>& Points, double Radius) {
  const auto isShut = [Radius](const detail::TPocketTree::TGate& Gate) { return detail::IsShutForDisc(Gate, Radius); };
  std::vector<TPoint2D> closed = detail::TPocketTree(Points).Filled(isShut);
  if (const double area = AreaOf(Points); area < 0 && AreaOf(closed) > kCavityShare * area) return std::nullopt;
  return closed;
}

// All levels after the first closing, which was made with Radius if MayFill.
std::vector<TPoint2D> Rolled(std::vector<TPoint2D> Points, bool MayFill, double Radius, int Level, double Bound) {
  Points = detail::ThinnedOutward(Points, {.Distance = Bound * Radius});
  for (int level = 0; level < Level; ++level) {
    Radius *= 2;
    std::optional<std::vector<TPoint2D>> closed;
    if (MayFill) closed = Closed(Points, Radius);
    MayFill = closed.has_value();
    if (closed) Points = std::move(*closed);
    Points = detail::ThinnedOutward(Points, {.Distance = Bound * Radius});
  }
  return Points;
}

}  // namespace

TDiscRoller::TDiscRoller(const TVPolyline2D& Polyline, int Level)
    : FPolyline(Polyline), FLevel(std::clamp(Level, 0, kLastLevel)) {}

void TDiscRoller::Run() {
  FFine = FCoarse = FPolyline;
  if (FPolyline.Vertices().size() < 4 || FPolyline.Area() == 0) return;
  const double radius = kRadiusShare * detail::ContourScale(FPolyline);
  const std::vector<TPoint2D> points(FPolyline.Vertices().begin(), FPolyline.Vertices().end());
  const std::optional<std::vector<TPoint2D>> closed = Closed(points, radius);
  const auto reduced = [&](double Bound) {
    return detail::InFormOf(FPolyline, Rolled(closed ? *closed : points, closed.has_value(), radius, FLevel, Bound));
  };
  FFine = reduced(kFineBound);
  FCoarse = reduced(kCoarseBound);
  if (FCoarse.size() > FFine.size()) FCoarse = FFine;
}

}  // namespace platenest
