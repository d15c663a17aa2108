#include "CirclePattern.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platenest/UCircleNest/MaxCirclePacking.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"
#include "platenest/foundation/StopToken.h"
#include "platenest/layoutcheck/CircleCheck.h"

namespace platenest::detail {

namespace {

// In the nesters' units: what rounding may take off a length before a circle less fits.
constexpr double kNoise = 1e-6;
constexpr double kClearanceTol = 2e-6;
// Halvings of the range in which a shorter extent is looked for, and the circles up to which it is.
constexpr int kHalvings = 24;
constexpr double kMostHalved = 20000;
constexpr double kMostPeeled = 3000;

struct TBox {
  double Width = 0;
  double Height = 0;
};

void ExchangeSides(TVPoint2DList& Points) {
  for (TPoint2D& point : Points) std::swap(point.X, point.Y);
}

// Circles by turns at the bottom and at the top, each as near to the one before as the height allows.
TVPoint2DList Zigzag(const TBox& Box, double Radius, double Gap) {
  TVPoint2DList points;
  const double pitch = 2 * Radius + Gap;
  const double high = std::max(0.0, std::min(Box.Height - 2 * Radius, pitch * std::sqrt(0.75)));
  if (std::min(Box.Height, Box.Width) - 2 * Radius < -kClearanceTol) return points;
  const double step = std::sqrt(pitch * pitch - high * high);
  const int count = Floor<int>((Box.Width - 2 * Radius + kNoise) / step) + 1;
  for (int i = 0; i < count; ++i) points.push_back({Radius + i * step, Radius + (i % 2 == 0 ? 0 : high)});
  return points;
}

bool Stands(const TVPoint2DList& Points, const TBox& Box, double Radius, double Gap) {
  std::vector<TPlacedCircle> circles;
  circles.reserve(Points.size());
  for (const TPoint2D& point : Points) circles.push_back({point, Radius, 0});
  const TCircleDemand demand[] = {{Radius, static_cast<int>(Points.size())}};
  return CheckCircles(circles, {0, 0, Box.Width, Box.Height}, Gap, demand, {.Tol = kClearanceTol}).empty();
}

TVPoint2DList PointsOf(const TBox& Box, double Radius, double Gap) {
  TMaxCirclePacking patterns(TVRect2D::FromSize(Box.Width, Box.Height), Radius, 0, Gap);
  patterns.TryMaxFill();
  TVPoint2DList best = patterns.TakeResultPt();
  if (!Stands(best, Box, Radius, Gap)) best.clear();
  TVPoint2DList level = Zigzag(Box, Radius, Gap);
  if (level.size() > best.size()) best = std::move(level);
  TVPoint2DList upright = Zigzag({Box.Height, Box.Width}, Radius, Gap);
  if (upright.size() > best.size()) {
    best = std::move(upright);
    ExchangeSides(best);
  }
  return best;
}

// How far circles reach along both axes.
TBox ReachOf(const TVPoint2DList& Points, double Radius) {
  TBox reach;
  for (const TPoint2D& point : Points)
    reach = {std::max(reach.Width, point.X + Radius), std::max(reach.Height, point.Y + Radius)};
  return reach;
}

// The larger of the strips beside and above the circles.
double FreeStrip(const TVPoint2DList& Points, const TBox& Box, double Radius) {
  const TBox reach = ReachOf(Points, Radius);
  return std::max((Box.Width - reach.Width) * Box.Height, (Box.Height - reach.Height) * Box.Width);
}

// Choices of Count circles on a box, the one that leaves the largest strip free.
class TShortest {
 public:
  TShortest(const TBox& Box, double Radius, double Gap, int Count)
      : FBox(Box), FRadius(Radius), FGap(Gap), FCount(Count) {}

  void Take(TVPoint2DList Points) {
    if (Size(Points) < FCount) return;
    for (const bool isByX : {true, false}) {
      const auto key = [&](const TPoint2D& P) { return isByX ? std::pair(P.X, P.Y) : std::pair(P.Y, P.X); };
      SortBy(Points, [&](const TPoint2D& a, const TPoint2D& b) { return Sign(key(a), key(b)); });
      TVPoint2DList some = Points;
      some.resize(FCount);
      const double free = FreeStrip(some, FBox, FRadius);
      if (free <= FFree) continue;
      FFree = free;
      FBest = std::move(some);
    }
  }

  // The shortest extent that still takes them all, as far as halving finds it, along one axis.
  void TakeHalved(bool AlongX) {
    const auto boxOf = [&](double extent) { return AlongX ? TBox{extent, FBox.Height} : TBox{FBox.Width, extent}; };
    double low = 0;
    double high = AlongX ? FBox.Width : FBox.Height;
    for (int i = 0; i < kHalvings && !RunStopRequested(); ++i) {
      const double middle = (low + high) / 2;
      TVPoint2DList points = PointsOf(boxOf(middle), FRadius, FGap);
      if (Size(points) < FCount) {
        low = middle;
        continue;
      }
      high = middle;
      Take(std::move(points));
    }
  }

  // The dense extents that dropping column by column finds.
  void TakePeeled(bool AlongX) {
    TVPoint2DList points;
    const TBox box = AlongX ? FBox : TBox{FBox.Height, FBox.Width};
    DynamicSinglCircleNest(FRadius, box.Height, box.Width, FGap, points);
    if (!Stands(points, box, FRadius, FGap)) return;
    if (!AlongX) ExchangeSides(points);
    Take(std::move(points));
  }

  TVPoint2DList TakeBest() { return std::move(FBest); }

 private:
  TBox FBox;
  double FRadius;
  double FGap;
  int FCount;
  double FFree = -1;
  TVPoint2DList FBest;
};

TVPoint2DList ShortPattern(const TBox& Box, double Radius, double Gap, TVPoint2DList Full, int Count) {
  TShortest shortest(Box, Radius, Gap, Count);
  const double many = static_cast<double>(Full.size());
  shortest.Take(std::move(Full));
  for (const bool alongX : {true, false}) {
    if (many <= kMostPeeled) shortest.TakePeeled(alongX);
    if (many <= kMostHalved) shortest.TakeHalved(alongX);
  }
  return shortest.TakeBest();
}

// The least extent of a block that takes Count circles, or all of Room, with the points.
TVPoint2DList BlockOf(double Room, double Height, double Radius, double Gap, int Count, double& Extent) {
  Extent = Room;
  TVPoint2DList best = PointsOf({Room, Height}, Radius, Gap);
  if (Size(best) < Count) return best;
  double low = 0;
  for (int i = 0; i < kHalvings && Extent - low > kNoise && !RunStopRequested(); ++i) {
    const double middle = (low + Extent) / 2;
    TVPoint2DList points = PointsOf({middle, Height}, Radius, Gap);
    if (Size(points) < Count) {
      low = middle;
    } else {
      Extent = middle;
      best = std::move(points);
    }
  }
  SortBy(best, [](const TPoint2D& a, const TPoint2D& b) { return Sign(std::pair(a.X, a.Y), std::pair(b.X, b.Y)); });
  best.resize(std::min(best.size(), static_cast<std::size_t>(Count)));
  Extent = std::min(Extent, ReachOf(best, Radius).Width);
  return best;
}

}  // namespace

TVPoint2DList PatternPoints(double Width, double Height, double Radius, double Gap) {
  return PointsOf({Width, Height}, Radius, Gap);
}

TCircleSpots NestPattern(const TCircleSizes& Sizes, int Plate, std::span<const int> Left) {
  const TCirclePlate& plate = Sizes.Plates[Plate];
  const TBox box{plate.Width, plate.Height};
  const double radius = Sizes.Parts.front().Radius;
  TVPoint2DList points = PointsOf(box, radius, Sizes.Gap);
  Int64 asked = 0;
  for (const int copies : Left) asked += copies;
  if (asked < Size(points)) points = ShortPattern(box, radius, Sizes.Gap, std::move(points), static_cast<int>(asked));
  TCircleSpots spots;
  int part = 0;
  int used = 0;
  for (const TPoint2D& point : points) {
    while (used == Left[part]) {
      ++part;
      used = 0;
    }
    ++used;
    spots.emplace_back(part, point);
  }
  return spots;
}

TCircleSpots NestBlocks(const TCircleSizes& Sizes, int Plate, std::span<const int> Left) {
  const TCirclePlate& plate = Sizes.Plates[Plate];
  const bool isWide = plate.Width >= plate.Height;
  const double length = isWide ? plate.Width : plate.Height;
  const double height = isWide ? plate.Height : plate.Width;
  TCircleSpots spots;
  double at = 0;
  for (int i = 0; i < Size(Sizes.Parts) && at < length && !RunStopRequested(); ++i) {
    const double radius = Sizes.Parts[i].Radius;
    if (Left[i] <= 0 || 2 * radius > std::min(length - at, height)) continue;
    double extent = 0;
    for (TPoint2D point : BlockOf(length - at, height, radius, Sizes.Gap, Left[i], extent)) {
      point.X += at;
      if (!isWide) std::swap(point.X, point.Y);
      spots.emplace_back(i, point);
    }
    at += extent + Sizes.Gap;
  }
  return spots;
}

}  // namespace platenest::detail
