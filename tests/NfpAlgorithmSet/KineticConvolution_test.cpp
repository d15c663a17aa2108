#include "platenest/NfpAlgorithmSet/KineticConvolution.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <iterator>
#include <numeric>
#include <tuple>

#include "ChipCollector.h"
#include "Contours.h"
#include "ExactMinkowski.h"
#include "ForEachSeed.h"
#include "HostCapture.h"
#include "InnerFit.h"
#include "PathFixtures.h"
#include "Shapes.h"
#include "platenest/NfpAlgorithmSet/NfpStatistics.h"
#include "platenest/foundation/Random.h"

namespace platenest {
namespace {

using test::Circle;
using test::Star;
using testing::ElementsAre;

constexpr double kUnit = kPathScale * kPathScale;  // one square drawing unit

struct TResult {
  int Level = -1;
  TPaths Paths;
  TNfpStatistics Did;

  double Area() const { return TPathUtils::Area(Paths) / kUnit; }
};

TResult Convolved(const TKMPLoop& Static, const TKMPLoop& Dynamic, bool Inside, TNFPType Required = ntComplete,
                  bool InnerCheck = false) {
  TResult result;
  result.Paths = {{{1, 2}}};
  NfpStatistics = {};
  TKineticConvolution convolution(Required, InnerCheck);
  result.Level = convolution.Convolution(Dynamic, Static, Inside, result.Paths);
  result.Did = NfpStatistics;
  return result;
}

TVPolyline2D Contour(const TPath& Path) {
  return TPathUtils::CreatePolyline(Path, kPathScale);
}

// The moving shape as it is drawn.
TResult Around(const TPath& Static, const TPath& Dynamic, TNFPType Required = ntComplete) {
  return Convolved(LoopOf(Contour(Static)), LoopOf(Mirrored(Contour(Dynamic))), false, Required);
}

TResult Inside(const TPath& Cavity, const TPath& Part) {
  return Convolved(LoopOf(Clockwise(Contour(Cavity))), LoopOf(Mirrored(Contour(Part))), true, ntComplete, true);
}

// The trail check set for the time of a test.
struct TTrailCheck {
  explicit TTrailCheck(bool On) { NfpTrailCheckEnabled = On; }
  ~TTrailCheck() { NfpTrailCheckEnabled = true; }
};

// A notched box whose edges are off the axes by up to Tilt.
TVPolyline2D TiltedNotch(double Size, double Tilt) {
  const auto off = [&] { return test::Uniform(-Tilt, Tilt) * Size; };
  TVPolyline2D contour{
      {0, off()},          {0.3 * Size, off()}, {0.3 * Size, 0.2 * Size},   {0.6 * Size, 0.2 * Size + off()},
      {0.6 * Size, off()}, {Size, off()},       {Size + off(), 0.7 * Size}, {off(), 0.7 * Size + off()}};
  return contour;
}

TEST(KineticConvolution, NearlyParallelEdgesAreCollectedAgainByTheirAngles) {
  Int64 recollected = 0;
  for (const double tilt : {0.0, 1e-12, 2e-11, 1e-9, 1e-8, 1e-7}) {
    ForEachSeed(20, [&](unsigned seed) {
      const TRandomScope random(seed);
      const TKMPLoop a = LoopOf(TiltedNotch(50, tilt));
      const TKMPLoop b = LoopOf(Mirrored(TiltedNotch(20, tilt)));
      TChipList chips;
      detail::CollectConvolution(a, b, chips);
      EXPECT_TRUE(detail::IsBalanced(chips));
      const TPaths exact = ForbiddenRegion({PathOf(a.GetPolyline())}, Negated({PathOf(b.GetPolyline())}));
      const TResult result = Convolved(a, b, false);
      EXPECT_NEAR(result.Area(), RegionArea(exact), 1e-4 * RegionArea(exact));
      EXPECT_LE(result.Did.Recollected, tilt > 0);
      recollected += result.Did.Recollected;
    });
  }
  EXPECT_GT(recollected, 50) << "or the shapes no longer provoke what they are made for";
}

TEST(KineticConvolution, OuterPolygonsAreExact) {
  // The last four have many parallel edges and so many chips.
  for (unsigned i = 0; i < 154; ++i) {
    const unsigned seed = i < 150 ? i : std::array{4u, 28u, 44u, 101u}[i - 150];
    const TShapePair pair = MakePair(i < 150 ? 60 : 200, seed);
    const TPath fixed = OuterOf(pair.Static);
    const TPath moving = OuterOf(pair.Dynamic);
    const TResult result = Around(fixed, moving);
    const double exact = RegionArea(ForbiddenRegion({fixed}, {moving}));
    EXPECT_TRUE(i < 150 ? result.Level == 0 : result.Did.Chips > 5000) << i;
    EXPECT_NEAR(result.Area(), exact, 1e-4 * exact) << NameOf(pair.StaticKind) << NameOf(pair.DynamicKind);
  }
}

// Slits of a cavity are walls, and walls below 0.001 vanish when a loop is made; so plates with slits stay out.
TEST(KineticConvolution, InnerRegionsAreExactWhicheverShapeIsTheCavity) {
  ForEachSeed(120, [](unsigned seed) {
    const TShapeKind plateKind = kShapeKinds[seed % kShapeKinds.size()];
    if (plateKind == TShapeKind::Slit) return;
    const TPath plate = OuterOf(MakeShape(plateKind, 50, 100 + 3 * seed, seed));
    const TPath part = OuterOf(MakeShape(kShapeKinds[seed / 11 % kShapeKinds.size()], 40, 5 + seed % 40, seed + 77));
    const TPaths exact = InnerFitRegion(TPaths{plate}, TPaths{part});
    const double area = RegionArea(exact);
    EXPECT_NEAR(Inside(plate, part).Area(), area, 1e-4 * area + 4e-6) << NameOf(plateKind);
    // The part stands still and the plate moves around it: the region turns by half.
    const TResult inHole =
        Convolved(LoopOf(Contour(part)), LoopOf(Clockwise(Mirrored(Contour(plate)))), true, ntComplete, true);
    EXPECT_NEAR(inHole.Area(), area, 1e-4 * area + 4e-6) << NameOf(plateKind);
  });
}

TEST(KineticConvolution, TrailsReplaceCircuitsThatMissAPlaceOfOverlap) {
  for (const bool check : {false, true}) {
    const TTrailCheck scope(check);
    int wrong = 0;
    Int64 hits = 0;
    for (unsigned seed = 0; seed < 120; ++seed) {
      const TPath plate = OuterOf(MakeShape(TShapeKind::Staircase, 40, 60, seed));
      const TPath part = OuterOf(MakeShape(TShapeKind::Comb, 30, 12, seed));
      const TResult inside = Inside(plate, part);
      const TResult outside = Around(plate, part);
      wrong += std::fabs(inside.Area() - RegionArea(InnerFitRegion(TPaths{plate}, TPaths{part}))) > 0.01;
      wrong += std::fabs(outside.Area() - RegionArea(ForbiddenRegion({plate}, {part}))) > 0.01;
      hits += inside.Did.TrailHits + outside.Did.TrailHits;
    }
    EXPECT_EQ(wrong == 0, check);
    EXPECT_EQ(hits > 0, check);
  }
}

TEST(KineticConvolution, BoundCheckComparesAreasBoxesAndFullness) {
  const auto fits = [](const TVPolyline2D& part, const TVPolyline2D& cavity) {
    const TKMPLoop inner = LoopOf(part), outer = LoopOf(Clockwise(cavity));
    const bool inside = TKineticConvolution::BoundCheck(outer, inner);
    EXPECT_EQ(TKineticConvolution::BoundCheck(inner, outer), inside) << "the cavity moving";
    return inside;
  };
  const TVPolyline2D box = Rect(0, 0, 10, 10), cut{{0, 0}, {10, 0}, {10, 10}, {5, 10}, {0, 2.8}};  // 0.82 of its box
  EXPECT_TRUE(fits(Rect(0, 0, 9, 9), box));
  EXPECT_FALSE(fits(Rect(0, 0, 11, 1), box)) << "too wide, though not too large";
  EXPECT_FALSE(fits(Rect(0, 0, 9, 10), box)) << "exactly as high: a fit without play is not for the graph";
  EXPECT_FALSE(fits(Rect(0, 0, 9, 9), cut)) << "fuller than the cavity can be filled";
  EXPECT_TRUE(fits(Rect(0, 0, 8, 8), cut)) << "as full as the cavity can be filled";
  EXPECT_TRUE(fits(Rect(0, 0, 6, 8), {{0, 0}, {10, 0}, {0, 10}})) << "a cavity far from a box is not judged so";
}

TEST(KineticConvolution, LikenessTakesTheFirstRuleThatHolds) {
  const auto likeness = [](const TVPolyline2D& a, const TVPolyline2D& b) {
    return TKineticConvolution::LoopSimilar(LoopOf(a), LoopOf(b));
  };
  const auto square = [](double size) { return Rect(0, 0, size, size); };
  EXPECT_EQ(likeness(square(1), square(1)), 4);
  EXPECT_EQ(likeness(square(400), square(400.01)), 3) << "next to the same";
  EXPECT_EQ(likeness(square(4000), square(4000.01)), 2) << "areas apart by more than 9";
  EXPECT_EQ(likeness(square(1), square(2)), 0) << "double the size";
  EXPECT_EQ(likeness(square(10), square(9.99)), 1) << "a smaller one is like a larger one";
  EXPECT_EQ(likeness(square(10), square(10.2)), 1) << "the other way round as well, within 0.05";
  EXPECT_EQ(likeness(CombOf(10), CombOf(14)), 2) << "same directions, many edges";
  EXPECT_EQ(likeness(CombOf(4), CombOf(8)), 1) << "regular, fills its box by half";
  EXPECT_EQ(likeness(Circle(50, 1), square(50)), 0);
}

// By the level alone. Exact requests are never reduced for their size.
TEST(KineticConvolution, OuterBudgetDependsOnChipsEdgesAndQuality) {
  const std::tuple<int, TNFPType, int> rows[] = {{200, ntExact, -1},    {200, ntConvexHull, 2}, {200, ntNone, -1},
                                                 {500, ntComplete, -1}, {501, ntComplete, 1},   {501, ntExact, -1}};
  for (const auto& [edges, required, expected] : rows) {
    const TRandomScope random(1);
    const TKMPLoop star = LoopOf(Star(edges, 100, 0.2));
    int level = 7;
    TKineticConvolution(required, false).Convolve(star, star, false, level);
    EXPECT_EQ(level, expected) << edges << " edges at quality " << static_cast<int>(required);
  }
}

TEST(KineticConvolution, InsideEdgesDecideAndWhatIsTooLargeCostsNothing) {
  const TKMPLoop cavity = LoopOf(Clockwise(Rect(-100, -100, 200, 200)));
  for (const auto& [edges, required, level] : {std::tuple{360, ntComplete, 0}, std::tuple{361, ntComplete, 1},
                                               std::tuple{361, ntConcaveHull, 1}, std::tuple{361, ntExact, 0}}) {
    const TResult result = Convolved(cavity, LoopOf(Circle(edges, 50)), true, required);
    EXPECT_EQ(result.Level, level) << edges;
    EXPECT_NEAR(result.Area(), 100 * 100 - 7, 8) << edges;
  }
  const TResult large = Convolved(cavity, LoopOf(Rect(0, 0, 201, 2)), true, ntComplete, true);
  EXPECT_TRUE(large.Level == -1 && large.Paths.empty() && large.Did.Chips == 0);
}

// A star holds its centre, so the moving one overlaps the fixed one when its centre is at any vertex of it.
TEST(KineticConvolution, HeavyOutlinesClimbTheLadderAndStayOnTheSafeSide) {
  for (const auto& [edges, required, lowestRung] :
       {std::tuple{200, ntComplete, 1}, std::tuple{400, ntComplete, 2}, std::tuple{400, ntConcaveHull, 1}}) {
    const TRandomScope random(3);
    const TVPolyline2D fixed = Star(edges, 100, 0.2);
    const TResult result = Convolved(LoopOf(fixed), LoopOf(Star(edges, 80, 0.2)), false, required);
    EXPECT_GE(result.Level, 1) << edges << ": what rests on stand-ins must not count as complete";
    const auto& rungs = result.Did.Rungs;
    EXPECT_EQ(std::accumulate(rungs.begin() + lowestRung, rungs.end(), Int64{0}), 1) << edges;
    for (const TIntPoint& vertex : PathOf(fixed)) EXPECT_EQ(PlaceOf(vertex, result.Paths), TPlace::Inside) << edges;
  }
}

TEST(KineticConvolution, AnErrorGivesOneWarningAndNoPaths) {
  const THostCapture host;
  const TVPolyline2D far{{0, 0}, {2e15, 0}, {2e15, 1e15}, {1e15, 1e15}, {1e15, 2e15}, {0, 2e15}};
  const TResult result = Convolved(LoopOf(far), LoopOf(Rect(0, 0, 1, 1)), false);
  EXPECT_EQ(result.Level, -1);
  EXPECT_TRUE(result.Paths.empty());
  EXPECT_EQ(result.Did.Failures, 1);
  EXPECT_THAT(host.Warnings(), ElementsAre("NFP Error for Points Count: 6 # 4, Edge Count: 4 # 4"));
}

}  // namespace
}  // namespace platenest
