#include "platenest/foundation/LineIntersector.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <tuple>
#include <vector>

#include "ForEachSeed.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Random.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using THit = std::tuple<int, int, double, double>;

std::vector<THit> Hits(const TVLine2DList& Lines, bool IncludeEndpoints) {
  TLineIntersector sweep(Lines, IncludeEndpoints);
  sweep.FindInterSect();
  std::vector<THit> result;
  for (const TLineHit& hit : sweep.Intersections())
    result.emplace_back(hit.Line1, hit.Line2, std::round(hit.Point.X * 1e5) / 1e5, std::round(hit.Point.Y * 1e5) / 1e5);
  return result;
}

bool LiesOn(const TPoint2D& P, const TVLine2D& L) {
  double t = 0;
  return L.SegmentDistanceTo(P, t) < 1e-9;
}

// All pairs, exact for small integer coordinates.
std::vector<THit> AllPairs(const TVLine2DList& Lines, bool IncludeEndpoints) {
  std::vector<THit> result;
  for (int i = 0; i < Size(Lines); ++i) {
    for (int j = i + 1; j < Size(Lines); ++j) {
      const TVLine2D& a = Lines[i];
      const TVLine2D& b = Lines[j];
      const TPoint2D da = a.EndPoint - a.StartPoint;
      const TPoint2D db = b.EndPoint - b.StartPoint;
      if (da.Mag() == 0 || db.Mag() == 0) continue;
      const TPoint2D between = b.StartPoint - a.StartPoint;
      const double t = between.CrossMul(db) / da.CrossMul(db);  // of parallels not finite
      const double s = between.CrossMul(da) / da.CrossMul(db);
      std::vector<TPoint2D> points;
      if (t > 0 && t < 1 && s > 0 && s < 1) points.push_back(a.EvalPoint(t));
      for (const TPoint2D& end : {a.StartPoint, a.EndPoint, b.StartPoint, b.EndPoint})
        if (IncludeEndpoints && LiesOn(end, a) && LiesOn(end, b) && std::ranges::count(points, end) == 0)
          points.push_back(end);
      for (const TPoint2D& point : points)
        result.emplace_back(i, j, std::round(point.X * 1e5) / 1e5, std::round(point.Y * 1e5) / 1e5);
    }
  }
  return result;
}

TEST(LineIntersector, RoundsToTheGridAndDecidesExactlyOnIt) {
  EXPECT_THAT(Hits({{{0, 0}, {2, 0}}, {{1, 0.4e-7}, {1, 1}}, {{1, -0.4e-7}, {1.5, -1}}}, false), IsEmpty());
  EXPECT_THAT(Hits({{{0, 0}, {2, 0}}, {{1, -1.1e-7}, {1, 1}}}, false), ElementsAre(THit{0, 1, 1, 0}));
  const double far = 1e9;
  EXPECT_THAT(Hits({{{0, 0}, {far, far}}, {{0, far}, {far, 0}}}, false), ElementsAre(THit{0, 1, far / 2, far / 2}));
  EXPECT_THROW(Hits({{{0, 0}, {std::numeric_limits<double>::quiet_NaN(), 1}}}, false), TRangeError);
  EXPECT_THROW(Hits({{{0, 0}, {std::numeric_limits<double>::infinity(), 1}}}, false), TRangeError);
}

// Small grids are full of shared ends, overlaps, verticals and points that many lines cross.
TEST(LineIntersector, AgreesWithAllPairsOnDegenerateInput) {
  ForEachSeed(3000, [](unsigned Seed) {
    const TRandomScope scope(Seed);
    const int range = 2 + Random(12);
    TVLine2DList lines;
    for (int i = 2 + Random(25); i > 0; --i)
      lines.push_back({{double(Random(range)), double(Random(range))}, {double(Random(range)), double(Random(range))}});
    for (const bool ends : {false, true})
      EXPECT_THAT(Hits(lines, ends), testing::UnorderedElementsAreArray(AllPairs(lines, ends))) << ends;
  });
}

// Lines through a common point and nearly through it: the order of the crossings is finer than doubles tell.
TEST(LineIntersector, FindsEachPairOfAPencilOnce) {
  for (const double jitter : {0.0, 1e-7, 3e-7}) {
    TVLine2DList lines;
    for (int i = 0; i < 60; ++i) {
      const double angle = std::numbers::pi * i / 60;
      const TPoint2D shift{(i % 3) * jitter, (i % 2) * jitter};
      lines.push_back({shift + TPoint2D{100, 0}.RotateBy(angle), shift + TPoint2D{-100, 0}.RotateBy(angle)});
    }
    EXPECT_EQ(Hits(lines, false).size(), 60u * 59u / 2u) << jitter;
  }
}

}  // namespace
}  // namespace platenest
