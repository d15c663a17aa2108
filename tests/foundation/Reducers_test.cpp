#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "Contours.h"
#include "ForEachSeed.h"
#include "OutwardThinning.h"
#include "Shapes.h"
#include "platenest/foundation/ConcaveHull.h"
#include "platenest/foundation/DiscRoller.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Paths.h"
#include "platenest/foundation/PolyDecimator.h"
#include "platenest/foundation/PolyInterProfile.h"

namespace platenest {
namespace {

constexpr double kFineScale = 1e8;  // of the independent checks, well below the tolerance of 1e-6

TDiscRoller Rolled(const TVPolyline2D& Contour, int Level) {
  TDiscRoller roller(Contour, Level);
  roller.Run();
  return roller;
}

TVPolyline2D Fine(const TVPolyline2D& Contour, int Level) {
  return Rolled(Contour, Level).Fine();
}

TVPolyline2D Profile(const TVPolyline2D& Contour, int Level) {
  TPolyInterProfile profile(TDynPoints2D(Contour.begin(), Contour.end()), Level);
  profile.Run();
  return profile.Result();
}

// How deep the inside of Inner reaches beyond Outer: the thickness of the pieces beyond at their corners. Corners off
// both contours do not count, Clipper makes them in pieces without area where the contours almost coincide.
double DepthBeyond(const TVPolyline2D& Inner, const TVPolyline2D& Outer) {
  const auto paths = [](const TVPolyline2D& Contour) { return TPaths{TPathUtils::CreatePath(Contour, kFineScale)}; };
  double depth = 0;
  TPoint2D nearest;
  for (const TPath& path : Clipped(paths(Inner), paths(Outer), ClipperLib::ctDifference)) {
    for (const TIntPoint& corner : path) {
      const TPoint2D point = TPathUtils::CreatePoint2D(corner, kFineScale);
      const auto [least, most] = std::minmax({Inner.DistTo(point, nearest), Outer.DistTo(point, nearest)});
      if (least < 1e-7) depth = std::max(depth, most);
    }
  }
  return depth;
}

// Calls Check on random shapes in all forms: both directions, with and without repeated first point.
void ForEachForm(const std::function<void(const TVPolyline2D&)>& Check) {
  ForEachSeed(6, [&Check](unsigned round) {
    const TRandomScope seed(round);
    std::vector<TVPolyline2D> shapes{
        test::Star(100 + Random(300), 100, 0.97),
        test::Polar(100 + Random(300), [](int i) { return 80 + 15 * std::sin(i * 0.11); }),
        test::Polar(200 + Random(300), [](int i) { return 90 - 30 * std::fabs(std::sin(i * 0.07)); }),
        test::Gear(20 + Random(60), 100, test::Uniform(0.3, 5)),
        test::Snake(40 + Random(200), 2, 0.5),
    };
    for (const TShapeKind kind : kShapeKinds)
      shapes.push_back(MakeShape(kind, 20 + Random(200), test::Uniform(5, 500), round).front());
    const TPoint2D move{test::Uniform(-2000, 2000), test::Uniform(-2000, 2000)};
    for (TVPolyline2D& shape : shapes) {
      for (TPoint2D& vertex : shape) vertex = round % 2 == 0 ? vertex : vertex.RotateBy(round) + move;
      if (Random(2) == 0) shape.Reverse();
      if (Random(2) == 0) shape.push_back(TPoint2D(shape.front()));
      SCOPED_TRACE(&shape - shapes.data());
      Check(shape);
    }
  });
}

void ExpectReduced(const TVPolyline2D& Result, const TVPolyline2D& Input, bool Outward, double Tol = 1e-6) {
  EXPECT_EQ(Result.IsClosed(0), Input.IsClosed(0));
  EXPECT_EQ(Result.IsClockwise(), Input.IsClockwise());
  EXPECT_TRUE(IsSimple({TPathUtils::CreatePath(Result, kFineScale)}));
  EXPECT_LE(Outward ? DepthBeyond(Input, Result) : DepthBeyond(Result, Input), Tol);
}

TEST(Reducers, StayOnTheirSideAndSimplifyMoreAtEachLevel) {
  int profiles = 0;
  ForEachForm([&profiles](const TVPolyline2D& Contour) {
    TVPolyline2D convex;
    Contour.ConvexHull(convex);
    std::vector<int> before(4, Contour.Count());
    for (const int level : {0, 1, 2, 3, 4, 6, 8, 20}) {
      SCOPED_TRACE(level);
      const TDiscRoller roller = Rolled(Contour, level);
      const TVPolyline2D concave = GetConcaveHull(Contour, level);
      const TVPolyline2D inscribed = TPolyDecimator::GetInscribedHull(Contour, level);
      const TVPolyline2D profile = Profile(Contour, level);
      ExpectReduced(roller.Fine(), Contour, !Contour.IsClockwise());
      ExpectReduced(roller.Coarse(), Contour, !Contour.IsClockwise());
      ExpectReduced(concave, Contour, true, 1e-7);
      ExpectReduced(inscribed, Contour, false);
      EXPECT_LE(DepthBeyond(concave, convex), 1e-7);
      EXPECT_TRUE(level < 8 || std::fabs(concave.Area()) >= convex.Area() * (1 - 1e-9)) << "no pocket is left";
      EXPECT_GE(inscribed.Area() / Contour.Area(), 1 - 0.005 * level - 1e-9);
      if (!profile.empty()) {
        ++profiles;
        ExpectReduced(profile, Contour, false);
        EXPECT_GE(profile.Area() / Contour.Area(), 0.9 - 1e-9);
      }
      const std::vector counts{roller.Fine().Count(), roller.Coarse().Count(), concave.Count(), inscribed.Count()};
      for (int i = 0; i < 4; ++i) EXPECT_LE(counts[i], before[i]) << i;
      EXPECT_LE(counts[1], counts[0]);
      before = counts;
    }
  });
  EXPECT_GT(profiles, 400);
}

TEST(Reducers, InterProfileThinsWhatIsSmooth) {
  EXPECT_LT(Profile(test::Circle(2000, 100), 3).size(), 200u);
  EXPECT_TRUE(Profile(test::Gear(500, 100, 30), 5).empty()) << "the teeth would vanish";
}

// Teeth of 1 % of the radius; a notch of half the radius tells a reduced outline from a hull.
TEST(Reducers, TeethDisappearWithoutFallingBackToTheHull) {
  const TRandomScope seed(5);
  for (const bool isCavity : {false, true}) {
    TVPolyline2D contour = isCavity ? test::Star(800, 100, 0.99) : test::Gear(180, 100, 1);
    contour.erase(contour.begin(), contour.begin() + 10);
    contour.insert(contour.begin(), TPoint2D{50, 4});
    contour.SetIsClockwise(isCavity);
    TVPolyline2D hull;
    contour.ConvexHull(hull);
    const TVPolyline2D third = Fine(contour, 3);
    EXPECT_LE(third.Count(), 0.7 * contour.Count());
    const TDiscRoller fifth = Rolled(contour, 5);
    EXPECT_LE(fifth.Fine().Count(), 0.55 * contour.Count());
    EXPECT_LT(fifth.Coarse().Count(), fifth.Fine().Count());
    EXPECT_LT(std::fabs(third.Area()), hull.Area() - 100) << "the notch stays open";
    EXPECT_GT(std::fabs(fifth.Coarse().Area()), 0.9 * std::fabs(contour.Area()));
  }
}

// A slot with a narrow mouth is filled whatever its depth and few points, one as wide as the disc stays.
TEST(Reducers, OnlyWhatTheDiscCannotReachIsFilled) {
  const auto block = [](double Mouth) {
    return TVPolyline2D{{0, 0},           {100, 0}, {100, 100}, {50 + Mouth, 100},
                        {50 + Mouth, 10}, {50, 10}, {50, 100},  {0, 100}};
  };
  EXPECT_DOUBLE_EQ(Fine(block(1.59), 2).Area(), 10000) << "radius 0.8";
  EXPECT_EQ(Fine(block(1.61), 2).Count(), 8);
  // Wide but shallow: the disc rests on the corners of the mouth without touching the ground, or it does touch.
  const auto dent = [](double Depth) {
    return TVPolyline2D{{0, 0}, {100, 0}, {100, 100}, {51, 100}, {50, 100 - Depth}, {49, 100}, {0, 100}};
  };
  EXPECT_EQ(Fine(dent(0.38), 3).Count(), 4) << "radius 1.6, which reaches 0.351 deep";
  EXPECT_GT(Fine(dent(0.3), 3).Count(), 4);
}

TEST(Reducers, ThinningDrawsTipsOutAndKeepsItsBoundInBothDirections) {
  const std::vector<TPoint2D> chamfered{{0, 0}, {10, 0}, {10, 9.9}, {9.9, 10}, {0, 10}};
  EXPECT_EQ(detail::ThinnedOutward(chamfered, {.Distance = 0.08}).size(), 4u);
  EXPECT_EQ(detail::ThinnedOutward(chamfered, {.Distance = 0.07}).size(), 5u) << "its corner is farther than that";
  ForEachForm([](const TVPolyline2D& Contour) {
    for (const double bound : {0.01, 0.3, 4.0}) {
      const TVPolyline2D result(TVPoint2DList(detail::ThinnedOutward(Contour.Vertices(), {.Distance = bound})));
      TPoint2D nearest;
      for (const TPoint2D& vertex : Contour) EXPECT_LE(result.DistTo(vertex, nearest), bound * (1 + 1e-9));
      for (const TPoint2D& vertex : result) EXPECT_LE(Contour.DistTo(vertex, nearest), bound * (1 + 1e-9));
    }
  });
}

TEST(Reducers, DegenerateContoursComeBackOrStayHarmless) {
  const TVPolyline2D small[] = {
      {}, {{1, 2}, {3, 4}}, {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {1.5, 0}}, {{2, 2}, {2, 2}, {2, 2}, {2, 2}, {2, 2}}};
  const TVPolyline2D withNan{{0, 0}, {std::numeric_limits<double>::quiet_NaN(), 0}, {5, 5}, {0, 5}, {-1, 2}};
  for (const auto& reduce : {Fine, GetConcaveHull, TPolyDecimator::GetInscribedHull}) {
    for (const TVPolyline2D& contour : small) EXPECT_EQ(reduce(contour, 3).size(), contour.size());
    EXPECT_THROW(reduce(withNan, 1), TRangeError);
  }
}

// Coarse grids bring crossings, repeated points, folds and contacts: no promise but an end.
TEST(Reducers, CrossingContoursEndSomehow) {
  const TRandomScope seed(17);
  for (int round = 0; round < 400; ++round) {
    TVPolyline2D contour;
    const int side = 3 + Random(20);
    for (int i = 4 + Random(60); i > 0; --i) contour.push_back({1.0 * Random(side), 1.0 * Random(side)});
    for (const int level : {1, 4, 8}) {
      EXPECT_LE(Rolled(contour, level).Coarse().size(), contour.size());
      EXPECT_LE(GetConcaveHull(contour, level).size(), contour.size());
      EXPECT_LE(TPolyDecimator::GetInscribedHull(contour, level).size(), contour.size());
      Profile(contour, level);
    }
  }
}

}  // namespace
}  // namespace platenest
