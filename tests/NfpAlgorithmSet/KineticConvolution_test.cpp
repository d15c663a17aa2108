#include "platenest/NfpAlgorithmSet/KineticConvolution.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "AllocationCounter.h"
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
using testing::UnorderedElementsAre;

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

TPath OuterContour(const TVHPolygon& Part) {
  return PolygonOf(Part).front();
}

TChipList AllChips(const TKMPLoop& A, const TKMPLoop& B) {
  TChipList chips;
  TKineticConvolution::CollectChains(A, B, chips, true);
  TKineticConvolution::CollectChains(B, A, chips, false);
  return chips;
}

// The trail check set for the time of a test.
struct TTrailCheck {
  explicit TTrailCheck(bool On) { NfpTrailCheckEnabled = On; }
  ~TTrailCheck() { NfpTrailCheckEnabled = true; }
};

// Without large notches: three unit squares.
TVPolyline2D SmallL() {
  return {{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}};
}

TEST(KineticConvolution, TwoUnitSquaresGiveASquareOfTwo) {
  const TResult result = Around(PathOf(Rect(0, 0, 1, 1)), PathOf(Rect(0, 0, 1, 1)));
  EXPECT_EQ(result.Level, 0);
  EXPECT_EQ(result.Did.Chips, 8);
  ASSERT_EQ(result.Paths.size(), 1u);
  EXPECT_THAT(result.Paths[0], UnorderedElementsAre(TIntPoint(-100'000, -100'000), TIntPoint(100'000, -100'000),
                                                    TIntPoint(100'000, 100'000), TIntPoint(-100'000, 100'000)));
  EXPECT_EQ(result.Area(), 4) << "counter-clockwise";
  EXPECT_EQ(result.Did.TrailChecks, 0) << "a sole circuit leaves no choice to be checked";
}

TEST(KineticConvolution, ChipsAtAReflexVertexRunAlongTheirEdges) {
  const TKMPLoop shape = LoopOf(SmallL());
  const TKMPLoop square = LoopOf(Mirrored(Rect(0, 0, 1, 1)));
  EXPECT_EQ(AllChips(shape, square).size(), 12u);
  EXPECT_NEAR(Convolved(shape, square, false).Area(), 8, 1e-9);
}

TEST(KineticConvolution, ConvexPairsGiveTheMergedEdges) {
  ForEachSeed(60, [](unsigned seed) {
    const TPath a = OuterContour(MakeShape(TShapeKind::Convex, 8 + static_cast<int>(seed), 50, 2 * seed));
    const TPath b = OuterContour(MakeShape(TShapeKind::Convex, 30, 20 + seed, 2 * seed + 1));
    const TResult result = Around(a, b);
    EXPECT_EQ(result.Level, 0);
    EXPECT_EQ(result.Did.Chips, Size(a) + Size(b)) << "no edges are parallel here, so each one is laid once";
    const double exact = ClipperLib::Area(ConvexSum(a, Negated({b}).front()));
    EXPECT_NEAR(result.Area(), exact / kUnit, 1e-6 * exact / kUnit);
  });
}

TEST(KineticConvolution, ChipsOfAnyTwoShapesAreBalanced) {
  ForEachSeed(200, [](unsigned seed) {
    const TShapePair pair = MakePair(80, seed);
    const TKMPLoop a = LoopOf(Contour(OuterContour(pair.Static)));
    const TKMPLoop b = LoopOf(Contour(OuterContour(pair.Dynamic)));
    EXPECT_TRUE(detail::IsBalanced(AllChips(a, b))) << NameOf(pair.StaticKind) << NameOf(pair.DynamicKind);
    const TKMPLoop cavity = LoopOf(Clockwise(Contour(OuterContour(pair.Static))));
    EXPECT_TRUE(detail::IsBalanced(AllChips(cavity, b))) << NameOf(pair.StaticKind) << NameOf(pair.DynamicKind);
  });
}

// A notched box whose edges are off the axes by up to Tilt.
TVPolyline2D TiltedNotch(double Size, double Tilt) {
  const auto off = [&] { return test::Uniform(-Tilt, Tilt) * Size; };
  TVPolyline2D contour{
      {0, off()},          {0.3 * Size, off()}, {0.3 * Size, 0.2 * Size},   {0.6 * Size, 0.2 * Size + off()},
      {0.6 * Size, off()}, {Size, off()},       {Size + off(), 0.7 * Size}, {off(), 0.7 * Size + off()}};
  return contour;
}

TEST(KineticConvolution, NearlyParallelEdgesAreCollectedAgainByTheirAngles) {
  int unbalanced = 0;
  for (const double tilt : {1e-12, 2e-11, 1e-9, 1e-8, 1e-7}) {
    ForEachSeed(20, [&](unsigned seed) {
      const TRandomScope random(seed);
      const TKMPLoop a = LoopOf(TiltedNotch(50, tilt));
      const TKMPLoop b = LoopOf(Mirrored(TiltedNotch(20, tilt)));
      const TChipList told = AllChips(a, b);
      NfpStatistics = {};
      TChipList chips;
      detail::CollectConvolution(a, b, chips);
      EXPECT_TRUE(detail::IsBalanced(chips));
      EXPECT_EQ(NfpStatistics.Recollected, detail::IsBalanced(told) ? 0 : 1);
      unbalanced += !detail::IsBalanced(told);
      const TPaths exact = ForbiddenRegion({PathOf(a.GetPolyline())}, Negated({PathOf(b.GetPolyline())}));
      EXPECT_NEAR(Convolved(a, b, false).Area(), RegionArea(exact), 1e-4 * RegionArea(exact));
    });
  }
  EXPECT_GT(unbalanced, 50) << "or the shapes no longer provoke what they are made for";
}

TEST(KineticConvolution, BalanceMindsCountsAndDirections) {
  const TPoint2D p{1, 2};
  const TPoint2D q{3, 4};
  const TPoint2D r{5, 6};
  EXPECT_TRUE(detail::IsBalanced({{p, q}, {q, r}, {r, p}}));
  EXPECT_FALSE(detail::IsBalanced({{p, q}, {q, r}, {p, r}}));
  EXPECT_FALSE(detail::IsBalanced({{p, q}, {p, q}, {q, p}}));
  EXPECT_FALSE(detail::IsBalanced({{p, q}, {{q.Y, q.X}, p}}));
}

TEST(KineticConvolution, OuterPolygonsAreExact) {
  ForEachSeed(150, [](unsigned seed) {
    const TShapePair pair = MakePair(60, seed);
    const TPath fixed = OuterContour(pair.Static);
    const TPath moving = OuterContour(pair.Dynamic);
    const TResult result = Around(fixed, moving);
    const double exact = RegionArea(ForbiddenRegion({fixed}, {moving}));
    EXPECT_EQ(result.Level, 0);
    EXPECT_NEAR(result.Area(), exact, 1e-4 * exact) << NameOf(pair.StaticKind) << NameOf(pair.DynamicKind);
  });
}

TEST(KineticConvolution, OutlinesOfManyParallelEdgesAreExactThoughTheirChipsAreMany) {
  for (const unsigned seed : {4u, 28u, 44u, 101u}) {
    const TShapePair pair = MakePair(200, seed);
    const TPath fixed = OuterContour(pair.Static);
    const TPath moving = OuterContour(pair.Dynamic);
    const TResult result = Around(fixed, moving);
    EXPECT_GT(result.Did.Chips, 5000);
    const double exact = RegionArea(ForbiddenRegion({fixed}, {moving}));
    EXPECT_NEAR(result.Area(), exact, 1e-4 * exact) << NameOf(pair.StaticKind) << NameOf(pair.DynamicKind);
  }
}

// Slits of a cavity are walls, and walls below 0.001 vanish when a loop is made; so plates with slits stay out.
TEST(KineticConvolution, InnerRegionsAreExactWhicheverShapeIsTheCavity) {
  ForEachSeed(120, [](unsigned seed) {
    const TShapeKind plateKind = kShapeKinds[seed % kShapeKinds.size()];
    if (plateKind == TShapeKind::Slit) return;
    const TPath plate = OuterContour(MakeShape(plateKind, 50, 100 + 3 * seed, seed));
    const TPath part =
        OuterContour(MakeShape(kShapeKinds[seed / 11 % kShapeKinds.size()], 40, 5 + seed % 40, seed + 77));
    const TPaths exact = InnerFitRegion(TPaths{plate}, TPaths{part});
    const double area = RegionArea(exact);
    const TResult inPlate =
        Convolved(LoopOf(Clockwise(Contour(plate))), LoopOf(Mirrored(Contour(part))), true, ntComplete, true);
    EXPECT_NEAR(inPlate.Area(), area, 1e-4 * area + 4e-6) << NameOf(plateKind);
    // The part stands still and the plate moves around it: the region turns by half.
    const TResult inHole =
        Convolved(LoopOf(Contour(part)), LoopOf(Clockwise(Mirrored(Contour(plate)))), true, ntComplete, true);
    EXPECT_NEAR(inHole.Area(), area, 1e-4 * area + 4e-6) << NameOf(plateKind);
  });
}

TEST(KineticConvolution, SwappedRolesMirrorTheResult) {
  ForEachSeed(40, [](unsigned seed) {
    const TShapePair pair = MakePair(50, seed + 500);
    const TPath a = OuterContour(pair.Static);
    const TPath b = OuterContour(pair.Dynamic);
    const TResult forth = Around(a, b);
    const TResult back = Around(b, a);
    TPaths all = Negated(forth.Paths);
    TPathUtils::PathsAddRange(all, back.Paths);
    EXPECT_NEAR(RegionArea(all), back.Area(), 1e-4 * back.Area());
    EXPECT_NEAR(forth.Area(), back.Area(), 1e-4 * back.Area());
  });
}

TEST(KineticConvolution, TrailsReplaceCircuitsThatMissAPlaceOfOverlap) {
  const auto wrongOnes = [](bool check, Int64& hits) {
    const TTrailCheck scope(check);
    int wrong = 0;
    for (unsigned seed = 0; seed < 120; ++seed) {
      const TPath plate = OuterContour(MakeShape(TShapeKind::Staircase, 40, 60, seed));
      const TPath part = OuterContour(MakeShape(TShapeKind::Comb, 30, 12, seed));
      const TResult inside =
          Convolved(LoopOf(Clockwise(Contour(plate))), LoopOf(Mirrored(Contour(part))), true, ntComplete, true);
      const TResult outside = Around(plate, part);
      const double free = RegionArea(InnerFitRegion(TPaths{plate}, TPaths{part}));
      const double forbidden = RegionArea(ForbiddenRegion({plate}, {part}));
      wrong += std::fabs(inside.Area() - free) > 0.01;
      wrong += std::fabs(outside.Area() - forbidden) > 0.01;
      hits += inside.Did.TrailHits + outside.Did.TrailHits;
    }
    return wrong;
  };
  Int64 hits = 0;
  EXPECT_GT(wrongOnes(false, hits), 0);
  EXPECT_EQ(hits, 0) << "switched off";
  EXPECT_EQ(wrongOnes(true, hits), 0);
  EXPECT_GT(hits, 0);
}

TEST(KineticConvolution, ALastPieceFindsItsHoleIfItHasPlay) {
  ForEachSeed(44, [](unsigned seed) {
    const TJigsaw jigsaw = MakeJigsaw(kShapeKinds[seed % kShapeKinds.size()], 30, 50, 0.002, seed);
    const TKMPLoop hole = LoopOf(Contour(PolygonOf(jigsaw.Plate).at(1)));
    const TKMPLoop part = LoopOf(Mirrored(Contour(OuterContour(jigsaw.Part))));
    const TResult result = Convolved(hole, part, true, ntComplete, true);
    EXPECT_EQ(result.Level, 0);
    EXPECT_NE(PlaceOf(TPathUtils::CreateIntPoint(jigsaw.Place, kPathScale), result.Paths), TPlace::Outside);
  });
}

TEST(KineticConvolution, APartLargerThanItsCavityCostsNoGraph) {
  const TKMPLoop cavity = LoopOf(Clockwise(Rect(0, 0, 10, 10)));
  const TResult large = Convolved(cavity, LoopOf(Rect(0, 0, 11, 2)), true, ntComplete, true);
  EXPECT_EQ(large.Level, -1);
  EXPECT_TRUE(large.Paths.empty());
  EXPECT_EQ(large.Did.Chips, 0);
  EXPECT_EQ(Convolved(cavity, LoopOf(Rect(0, 0, 4, 2)), true, ntComplete, true).Area(), 48);
}

TEST(KineticConvolution, BoundCheckComparesAreasBoxesAndFullness) {
  const TVPolyline2D triangle{{0, 0}, {10, 0}, {0, 10}};
  const TVPolyline2D cut{{0, 0}, {10, 0}, {10, 10}, {5, 10}, {0, 2.8}};  // 0.82 of its box
  struct TRow {
    const char* What;
    TVPolyline2D Cavity;
    TVPolyline2D Part;
    bool Fits;
  };
  const TRow rows[] = {
      {"smaller in every way", Rect(0, 0, 10, 10), Rect(0, 0, 9, 9), true},
      {"the same area", Rect(0, 0, 10, 10), Rect(0, 0, 5, 20), false},
      {"too wide, though not too large", Rect(0, 0, 10, 10), Rect(0, 0, 11, 1), false},
      {"exactly as high: a fit without play is not for the graph", Rect(0, 0, 10, 10), Rect(0, 0, 9, 10), false},
      {"fuller than the cavity can be filled", cut, Rect(0, 0, 9, 9), false},
      {"as full as the cavity can be filled", cut, Rect(0, 0, 8, 8), true},
      {"a cavity far from a box is not judged so", triangle, Rect(0, 0, 6, 8), true},
  };
  for (const TRow& row : rows) {
    const TKMPLoop cavity = LoopOf(Clockwise(row.Cavity));
    const TKMPLoop part = LoopOf(row.Part);
    EXPECT_EQ(TKineticConvolution::BoundCheck(cavity, part), row.Fits) << row.What;
    EXPECT_EQ(TKineticConvolution::BoundCheck(part, cavity), row.Fits) << row.What << ", the cavity moving";
  }
}

TEST(KineticConvolution, LikenessTakesTheFirstRuleThatHolds) {
  const auto squareOf = [](double size) { return LoopOf(Rect(0, 0, size, size)); };
  struct TRow {
    const char* What;
    TKMPLoop A;
    TKMPLoop B;
    int Similar;
  };
  const TRow rows[] = {
      {"the same twice", squareOf(1), squareOf(1), 4},
      {"next to the same", squareOf(400), squareOf(400.01), 3},
      {"areas apart by more than 9", squareOf(4000), squareOf(4000.01), 2},
      {"double the size", squareOf(1), squareOf(2), 0},
      {"a smaller one is like a larger one", squareOf(10), squareOf(9.99), 1},
      {"the other way round as well, within 0.05", squareOf(10), squareOf(10.2), 1},
      {"same directions, many edges", LoopOf(CombOf(10)), LoopOf(CombOf(14)), 2},
      {"regular, fills its box by half", LoopOf(CombOf(4)), LoopOf(CombOf(8)), 1},
      {"a circle and a square", LoopOf(Circle(50, 1)), squareOf(50), 0},
  };
  for (const TRow& row : rows) EXPECT_EQ(TKineticConvolution::LoopSimilar(row.A, row.B), row.Similar) << row.What;
}

// How a convolution outside is reduced, by the level alone: stars lay many chips, circles few.
TEST(KineticConvolution, OuterBudgetDependsOnChipsEdgesAndQuality) {
  const TRandomScope random(1);
  const TKMPLoop star200 = LoopOf(Star(200, 100, 0.2));
  const TKMPLoop star600 = LoopOf(Star(600, 100, 0.4));
  const TKMPLoop circle600 = LoopOf(Circle(600, 100));
  struct TRow {
    const char* What;
    const TKMPLoop& Static;
    const TKMPLoop& Dynamic;
    TNFPType Required;
    int Level;
  };
  const TRow rows[] = {
      {"above the smallest budget, exact", star200, star200, ntExact, -1},
      {"above the smallest budget, hull", star200, star200, ntConvexHull, 2},
      {"above the smallest budget, no quality", star200, star200, ntNone, -1},
      {"within its budget, complete", star200, star200, ntComplete, -1},
      {"too many edges, complete", star600, star600, ntComplete, 1},
      {"too many edges, exact", star600, star600, ntExact, -1},
      {"too many edges, but few chips", circle600, circle600, ntComplete, -1},
      {"one of them many-edged", star600, star200, ntComplete, -1},
  };
  for (const TRow& row : rows) {
    TKineticConvolution convolution(row.Required, false);
    int level = 7;
    convolution.Convolve(row.Static, row.Dynamic, false, level);
    EXPECT_EQ(level, row.Level) << row.What;
  }
}

TEST(KineticConvolution, InsideManyEdgesAreReducedThoughChipsAreFew) {
  const TKMPLoop cavity = LoopOf(Clockwise(Rect(-100, -100, 200, 200)));
  const auto levelOf = [&cavity](int edges, TNFPType required) {
    const TResult result = Convolved(cavity, LoopOf(Circle(edges, 50)), true, required);
    EXPECT_NEAR(result.Area(), 100 * 100, 15) << edges;
    EXPECT_LE(result.Area(), 100 * 100 + 1) << edges;
    return result.Level;
  };
  EXPECT_EQ(levelOf(360, ntComplete), 0);
  EXPECT_EQ(levelOf(361, ntComplete), 1);
  EXPECT_EQ(levelOf(361, ntConcaveHull), 1);
  EXPECT_EQ(levelOf(361, ntExact), 0);
}

// A star holds its centre, so the moving one overlaps the fixed one when its centre is at any vertex of it.
TEST(KineticConvolution, HeavyOutlinesClimbTheLadderAndStayOnTheSafeSide) {
  struct TRow {
    int Edges;
    TNFPType Required;
    int LowestRung;
  };
  for (const TRow& row : {TRow{200, ntComplete, 1}, TRow{400, ntComplete, 2}, TRow{400, ntConcaveHull, 1}}) {
    const TRandomScope random(3);
    const TVPolyline2D fixed = Star(row.Edges, 100, 0.2);
    const TResult result = Convolved(LoopOf(fixed), LoopOf(Star(row.Edges, 80, 0.2)), false, row.Required);
    EXPECT_GE(result.Level, 1) << row.Edges << ": what rests on stand-ins must not count as complete";
    EXPECT_EQ(result.Did.Rungs[0], 0) << row.Edges;
    Int64 onRungs = 0;
    for (int rung = row.LowestRung; rung <= 5; ++rung) onRungs += result.Did.Rungs[rung];
    EXPECT_EQ(onRungs, 1) << row.Edges;
    for (const TPoint2D& vertex : fixed)
      EXPECT_EQ(PlaceOf(TPathUtils::CreateIntPoint(vertex, kPathScale), result.Paths), TPlace::Inside) << row.Edges;
  }
}

TEST(KineticConvolution, AnErrorGivesOneWarningAndNoPaths) {
  const THostCapture host;
  TVPolyline2D far = SmallL();
  far.Zoom(1e15);
  const TResult result = Convolved(LoopOf(far), LoopOf(Rect(0, 0, 1, 1)), false);
  EXPECT_EQ(result.Level, -1);
  EXPECT_TRUE(result.Paths.empty());
  EXPECT_EQ(result.Did.Failures, 1);
  EXPECT_THAT(host.Warnings(), ElementsAre("NFP Error for Points Count: 6 # 4, Edge Count: 4 # 4"));
}

TEST(KineticConvolution, ChipsAreLaidWithoutAllocationOnceWarm) {
  const TRandomScope random(5);
  const TKMPLoop a = LoopOf(Star(120, 100, 0.3));
  const TKMPLoop b = LoopOf(Star(90, 60, 0.3));
  TChipList chips;
  detail::CollectConvolution(a, b, chips);
  const std::size_t count = chips.size();
  const TAllocationCounter counter;
  detail::CollectConvolution(a, b, chips);
  EXPECT_EQ(counter.Count(), 0);
  EXPECT_EQ(chips.size(), count);
}

}  // namespace
}  // namespace platenest
