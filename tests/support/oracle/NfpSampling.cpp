#include "NfpSampling.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>
#include <numbers>

#include "Contours.h"
#include "InnerFit.h"
#include "OverlapDepth.h"
#include "platenest/foundation/Random.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

namespace {

using test::Uniform;

constexpr double kSquareScale = kPathScale * kPathScale;

// So many vertices of the paths are tried as they are, evenly spread if there are more.
constexpr std::size_t kMostVertices = 100;

// How the moving shape lies at a place: exactly free, and if not, the width of what it overlaps. And what to say where
// it should not lie so.
struct TProbe {
  const char* NotTaken;
  const char* NotFree;
  std::function<bool(const TIntPoint&)> IsFree;
  std::function<double(const TIntPoint&)> Depth;
};

std::string TextOf(const TIntPoint& At, const char* What, double Distance) {
  char text[200];
  std::snprintf(text, sizeof text, "%s at (%.5f, %.5f), %.6g from the border of the paths", What,
                static_cast<double>(At.X) / kPathScale, static_cast<double>(At.Y) / kPathScale, Distance / kPathScale);
  return text;
}

// A place near a random edge; the distance has the same chance in each power of ten from one path unit to the span.
TIntPoint NearEdge(const TPaths& Paths, double Span) {
  const TPath& contour = Paths[static_cast<std::size_t>(Random(Size(Paths)))];
  const std::size_t i = static_cast<std::size_t>(Random(Size(contour)));
  const TIntPoint& a = contour[i];
  const TIntPoint& b = Next(contour, i);
  const double t = Uniform(0, 1);
  const double angle = 2 * std::numbers::pi * Uniform(0, 1);
  const double distance = std::pow(std::max(2.0, Span), Uniform(0, 1));
  const double x = static_cast<double>(a.X) + t * static_cast<double>(b.X - a.X) + distance * std::cos(angle);
  const double y = static_cast<double>(a.Y) + t * static_cast<double>(b.Y - a.Y) + distance * std::sin(angle);
  return {Round(x), Round(y)};
}

TIntPoint InBox(const TIntRect& Box) {
  const double x = static_cast<double>(Box.Left) + Uniform(0, 1) * static_cast<double>(Box.Width());
  const double y = static_cast<double>(Box.Bottom) + Uniform(0, 1) * static_cast<double>(Box.Height());
  return {Round(x), Round(y)};
}

TPath Samples(const TPaths& Paths, TIntRect Box, int Count) {
  const Int64 margin = std::max<Int64>(10, (Box.Width() + Box.Height()) / 40);
  Box = {Box.Left - margin, Box.Right + margin, Box.Top + margin, Box.Bottom - margin};
  const double span = static_cast<double>(Box.Width() + Box.Height()) / 4;
  TPath samples;
  for (int i = 0; i < Count; ++i) {
    samples.push_back(i % 2 == 0 || Paths.empty() ? InBox(Box) : NearEdge(Paths, span));
  }
  std::size_t vertices = 0;
  for (const TPath& path : Paths) vertices += path.size();
  const std::size_t step = 1 + vertices / kMostVertices;
  for (const TPath& path : Paths) {
    for (std::size_t i = 0; i < path.size(); i += step) samples.push_back(path[i]);
  }
  return samples;
}

// Every whole point of the disc, or two rings of points where it is large; its centre comes first.
TPath PlacesWithin(const TIntPoint& At, double Reach) {
  TPath places{At};
  if (Reach > 8) {
    for (int i = 0; i < 64; ++i) {
      const double angle = i * std::numbers::pi / 32;
      const double radius = i % 2 == 0 ? Reach : Reach / 2;
      places.push_back({At.X + Round(radius * std::cos(angle)), At.Y + Round(radius * std::sin(angle))});
    }
    return places;
  }
  const Int64 r = Floor<Int64>(Reach);
  for (Int64 y = -r; y <= r; ++y) {
    for (Int64 x = -r; x <= r; ++x) {
      if (static_cast<double>(x * x + y * y) <= Reach * Reach) places.push_back({At.X + x, At.Y + y});
    }
  }
  return places;
}

TPaths Without(const TPaths& A, const TPaths& B) {
  return Clipped(A, B, ClipperLib::ctDifference);
}

// No free place in reach of the band, and of the overlap not only a sliver: between two borders that meet at a sharp
// angle there may be no free whole point near their rounded crossing.
bool IsDeep(const TIntPoint& At, double Band, const TProbe& Probe) {
  const TPath places = PlacesWithin(At, Band * kPathScale + 1);
  return std::none_of(places.begin(), places.end(), Probe.IsFree) && Probe.Depth(At) > Band;
}

// FreePlace is where the paths promise a free position; the border always belongs to the free side.
std::string Check(const TPaths& Paths, const TPath& Samples, TPlace FreePlace, const TSamplingOptions& Options,
                  const TProbe& Probe) {
  const double band = Options.Band * kPathScale;
  for (const TIntPoint& at : Samples) {
    const TPlace place = PlaceOf(at, Paths);
    const double distance = DistanceToBorder(at, Paths);
    if (place == FreePlace || place == TPlace::Border) {
      if (IsDeep(at, Options.Band, Probe)) return TextOf(at, Probe.NotFree, distance);
    } else if (!Options.SafeSideOnly && distance > band && Probe.IsFree(at)) {
      return TextOf(at, Probe.NotTaken, distance);
    }
  }
  return {};
}

TIntRect SumBox(const TIntRect& Static, const TIntRect& Dynamic) {
  return {Static.Left - Dynamic.Right, Static.Right - Dynamic.Left, Static.Top - Dynamic.Bottom,
          Static.Bottom - Dynamic.Top};
}

double AreaBeyond(const TPaths& Region, double Band, double LeastContour) {
  TPaths opened = Region;
  for (const double by : {-Band, Band}) {
    TClipperOffset offset;
    offset.AddPaths(opened, ClipperLib::jtMiter, ClipperLib::etClosedPolygon);
    offset.Execute(opened, by);
  }
  std::erase_if(opened, [&](const TPath& c) { return std::abs(ClipperLib::Area(c)) < LeastContour * kSquareScale; });
  return TPathUtils::Area(opened) / kSquareScale;
}

}  // namespace

std::string CheckNfpBySampling(const TPaths& Static, const TPaths& Dynamic, const TPaths& Paths, unsigned Seed,
                               const TSamplingOptions& Options) {
  const TRandomScope scope(Seed);
  const TIntRect box = SumBox(TPathUtils::BoundBox(Static), TPathUtils::BoundBox(Dynamic));
  return Check(Paths, Samples(Paths, box, Options.Samples), TPlace::Outside, Options,
               {"no overlap inside the paths", "overlap outside the paths",
                [&](const TIntPoint& at) { return !OverlapsAt(Static, Dynamic, at); },
                [&](const TIntPoint& at) { return OverlapDepth(Static, Moved(Dynamic, at)); }});
}

std::string CheckNfpBySampling(const TVHPolygon& Static, const TVHPolygon& Dynamic, const TPaths& Paths, unsigned Seed,
                               const TSamplingOptions& Options) {
  return CheckNfpBySampling(PolygonOf(Static), PolygonOf(Dynamic), Paths, Seed, Options);
}

std::string CheckInnerFitBySampling(const TPaths& Plate, const TPaths& Part, const TPaths& Paths, unsigned Seed,
                                    const TSamplingOptions& Options) {
  const TRandomScope scope(Seed);
  const TIntRect plate = TPathUtils::BoundBox(Plate);
  const TIntRect part = TPathUtils::BoundBox(Part);
  const auto [left, right] = std::minmax({plate.Left - part.Left, plate.Right - part.Right});
  const auto [bottom, top] = std::minmax({plate.Bottom - part.Bottom, plate.Top - part.Top});
  const TIntRect range{left, right, top, bottom};
  return Check(Paths, Samples(Paths, range, Options.Samples), TPlace::Inside, Options,
               {"a fit outside the paths", "no fit inside the paths",
                [&](const TIntPoint& at) { return FitsAt(Plate, Part, at); },
                [&](const TIntPoint& at) { return InnerWidth(Without(Moved(Part, at), Plate)); }});
}

std::string CheckInnerFitBySampling(const TVHPolygon& Plate, const TVHPolygon& Part, const TPaths& Paths, unsigned Seed,
                                    const TSamplingOptions& Options) {
  return CheckInnerFitBySampling(PolygonOf(Plate), PolygonOf(Part), Paths, Seed, Options);
}

double TRegionDifference::Relative() const {
  const double larger = std::max(Lost, Surplus);
  if (larger == 0) return 0;
  return Exact > 0 ? larger / Exact : std::numeric_limits<double>::infinity();
}

TRegionDifference CompareRegions(const TPaths& Paths, const TPaths& Exact, double Band, double LeastContour) {
  const TPaths given = Normalized(Paths);
  const TPaths exact = Normalized(Exact);
  const double band = Band * kPathScale;
  return {AreaBeyond(Without(exact, given), band, LeastContour), AreaBeyond(Without(given, exact), band, LeastContour),
          TPathUtils::Area(exact) / kSquareScale};
}

}  // namespace platenest
