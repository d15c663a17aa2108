#pragma once

#include "platenest/NfpAlgorithmSet/NfpTypes.h"
#include "platenest/foundation/Types.h"

// The numbers of the convolution's budget, in the order of evaluation. "Edges" are those of a loop, "directions" its
// different ones; "product" is the edges of the one loop times those of the other. A level tells a reducer how hard to
// work.
namespace platenest::detail {

// Chips that a convolution may lay before its loops are reduced: outside, inside.
struct TChipBudget {
  TNFPType Required;
  int Outer;
  int Inner;
};
inline constexpr TChipBudget kChipBudgets[] = {{ntConcaveHull, 150'000, 25'555}, {ntComplete, 300'000, 50'000}};
inline constexpr TChipBudget kChipBudgetOtherwise = {ntNone, 15'000, 15'555};
inline constexpr int kChipsPerDirection = 10;  // expected

// How far the loops were reduced.
inline constexpr int kLevelFailed = -1;
inline constexpr int kLevelFull = 0;
inline constexpr int kLevelReduced = 1;
inline constexpr int kLevelHull = 2;

// One level of reduction for each bound that a size exceeds.
struct TLevelRow {
  Int64 Above;
  int Level;
};

// Inside: a dynamic loop of many edges is reduced at once, a solid one the harder the more edges it has.
inline constexpr int kInnerDynamicEdgesAbove = 360;
inline constexpr int kInnerHullEdgesAbove = 700;
inline constexpr TLevelRow kInnerDynamicLevels[] = {{500, 4}, {0, 3}};
inline constexpr double kInnerDynamicEdgesPerLevel = 250;  // of a cavity
inline constexpr int kInnerDynamicMostLevel = 4;
inline constexpr int kInnerCavityLevel = 3;
inline constexpr double kInnerStaticEdgesPerLevel = 180;

// Outside: nothing is reduced up to the chips allowed, unless the product is large and so is that of the directions.
inline constexpr Int64 kModestProduct = 250'000;
inline constexpr Int64 kModestDirectionsProduct = 5000;
inline constexpr Int64 kHugeProductAbove = 3'600'000;  // of a complete request
inline constexpr Int64 kHugeHullProductAbove = 5'000'000;
inline constexpr int kHugeLevel = 5;

// Both loops large: by the product.
inline constexpr int kBothLargeEdgesAbove = 999;
inline constexpr TLevelRow kBothLargeLevels[] = {{1'500'000, 4}, {1'000'000, 3}, {0, 2}};
inline constexpr int kBothLargeTwins = 4;             // loops as alike as this take one level more
inline constexpr double kBothLargeUnlikeFrom = 0.01;  // difference of directions, as a share of the static ones
inline constexpr int kBothLargeUnlikeExtra = 1;
inline constexpr int kBothLargeConcaveExtra = 0;
inline constexpr int kBothLargeOtherExtra = 2;

// Otherwise the larger one: by the product. It is reduced again if it has lost too small a share of its edges.
inline constexpr TLevelRow kOneLargeLevels[] = {{2'000'000, 4}, {750'000, 3}, {350'000, 2}, {0, 1}};
inline constexpr Int64 kOneLargeSimilarProductAbove = 750'000;
inline constexpr int kOneLargeSimilarAbove = 2;  // loops more alike than this take one level more above that product
inline constexpr int kEqualBothFromLevel = 4;
inline constexpr double kShrunkFrom = 0.09;
inline constexpr double kHardlyShrunkBelow = 0.05;
inline constexpr double kNotShrunkBelow = 0.01;
inline constexpr int kSameEdgesBelow = 2;  // difference at which a hull is taken instead
inline constexpr int kDynamicHardlyShrunkLevel = 5;
inline constexpr int kDynamicLittleShrunkLevel = 4;
inline constexpr int kStaticHardlyShrunkExtra = 2;
inline constexpr int kStaticLittleShrunkExtra = 1;
inline constexpr int kOtherEdgesAbove = 650;  // of the smaller one: a level more if it is reduced, too
inline constexpr int kOtherDynamicExtra = 1;

// Two convex loops of up to this many edges together, which no budget would reduce, are merged at once.
inline constexpr int kConvexPairChips = 900;

// Two rectilinear loops much alike: overlapping edges are cancelled as for parts inside.
inline constexpr int kBoxLikeSimilarFrom = 3;
inline constexpr int kBoxLikeDirections = 4;
inline constexpr int kBoxLikeDynamicEdgesFrom = 16;
inline constexpr int kBoxLikeDynamicEdgesUpTo = 22;
inline constexpr double kBoxLikeEdgesPerDirectionBelow = 4.8;

// Likeness, from 4 on downwards; the first row that holds decides. Differences of edges, of directions, of areas.
inline constexpr int kTwinEdgesBelow = 5;
inline constexpr int kTwinDirectionsBelow = 5;
inline constexpr double kTwinEdgesShareBelow = 0.045;
inline constexpr double kTwinAreaShareBelow = 0.0001;
inline constexpr int kSameShapeEdgesBelow = 2;
inline constexpr double kSameShapeAreaBelow = 1e-6;  // drawing units squared
inline constexpr double kTwinAreaBelow = 9;          // drawing units squared
inline constexpr int kFullTurnWithin = 2;            // 1e-8 radian
inline constexpr int kSecondAngleWithin = 3;
inline constexpr Int64 kSameAnglesProductAbove = 1000;
struct TLikeArea {
  double AreaShareBelow;
  int EdgesBelow;
  int Similar;
};
inline constexpr TLikeArea kLikeAreas[] = {{0.001, 5, 2}, {0.01, 7, 1}, {0.05, 3, 1}};
inline constexpr double kFewDirectionsBelow = 0.15;  // directions per edge
inline constexpr double kFewDirectionsBothBelow = 0.0125;
inline constexpr double kRegularEdgesPerDirectionAbove = 3;
inline constexpr double kBoxFullnessAbove = 0.95;
inline constexpr double kAreaLossBelow = 0.5;

// Parts that cannot lie in a cavity, by their boxes and, where the cavity is nearly a box, by their areas.
inline constexpr double kBoxMargin = 1e-12;  // drawing units
inline constexpr double kCavityFullnessAbove = 0.8;
inline constexpr double kFittingShare = 0.9;

// A first try outside that is too heavy to unite: points of the circuits, vertices of the main component.
inline constexpr Int64 kHeavyPointsAbove = 33'000;
inline constexpr Int64 kHeavySmallPointsAbove = 25'000;
inline constexpr int kHeavySmallBelow = 2000;
inline constexpr int kHeavySimilarFrom = 3;
inline constexpr Int64 kHeavySimilarPointsAbove = 11'500;
inline constexpr double kHeavySimilarRatioAbove = 10;
// Its retry.
inline constexpr double kRetryConcavePointsPerLevel = 18'000;
inline constexpr double kRetryConcaveBase = 1.35;
inline constexpr int kRetryConcaveUnusable = 2;
inline constexpr int kRetryStaticLeastLevel = 2;
inline constexpr double kRetryCompletePointsPerLevel = 20'000;
inline constexpr int kRetryCompleteBase = 1;
inline constexpr int kRetryCompleteUnusable = 1;
inline constexpr int kRetryHullLevelAbove = 7;
inline constexpr int kRetryRegularHullLevelAbove = 6;
inline constexpr double kRetryRegularAbove = 5;  // edges per direction

// The ladder of fallbacks.
struct TRung {
  bool SearchAsComplete;
  bool Forced;      // the size of the union does not stop it any more
  bool LastResort;  // a search that fails here is an error
};
inline constexpr TRung kRungs[] = {
    {false, false, false}, {true, false, false}, {false, false, false}, {true, true, false}, {true, true, true}};

// Rung 1, outside: a level per so many edges, and a base.
struct TLevelBySize {
  double EdgesPerLevel;
  double Base;
};
inline constexpr TLevelBySize kConcaveDynamic{210, 0.2};
inline constexpr TLevelBySize kConcaveStatic{250, 0.25};
inline constexpr int kConcaveStaticEdgesAbove = 300;  // left in the dynamic one
inline constexpr TLevelBySize kOtherDynamic{300, 0.2};
// Rung 1, inside.
inline constexpr int kInnerHullDirectionsAbove = 4000;
inline constexpr TLevelBySize kInnerLadder{250, 0.2};
inline constexpr int kInnerLadderLeastLevel = 2;
// Rung 2.
inline constexpr int kSecondRungLevel = 5;
// Rung 3.
inline constexpr int kThirdRungDynamicLevel = 5;
inline constexpr TLevelBySize kThirdRungCavity{220, 0};
inline constexpr int kThirdRungCavityLeastLevel = 5;
inline constexpr int kThirdRungStaticLevel = 6;
// Rung 4.
inline constexpr int kSimpleHullDirections = 5;
inline constexpr int kDenseEdgesAbove = 300;
inline constexpr double kDenseEdgesPerDirectionAbove = 4;
// Rung 5.
inline constexpr int kLastRungCavityEdgesAbove = 1000;
inline constexpr TLevelBySize kLastRungCavity{240, 0.3};
inline constexpr int kLastRungCavityLeastLevel = 3;

// The level at which a cavity is made smaller where a solid shape would be replaced by its hull or its box.
inline constexpr int kCavityInsteadOfHullLevel = 5;

// Nothing found inside although the search was not trivial: one more try with a hull.
inline constexpr int kRecheckStaticEdgesAbove = 5;
inline constexpr int kRecheckCircuitsAbove = 6;
inline constexpr int kRecheckLargeStaticEdgesAbove = 12;
inline constexpr int kRecheckDynamicEdgesAbove = 6;
inline constexpr double kRecheckParallelsAbove = 2;

// Convolutions of full loops up to this many chips are checked against the union of their closed trails, which takes
// its place where the areas differ by more than this share; inside also by more than this area, so that the slivers of
// an exact fit, which rounding may lose in either union, decide nothing.
// Circuits miss places above all where many edges are parallel; there the chips mostly lie on each other, so more of
// them are cheap to unite.
inline constexpr int kTrailChips = 5000;
inline constexpr int kTrailChipsOfParallels = 50'000;
inline constexpr double kTrailParallelsFrom = 4;  // edges per direction, in both loops
inline constexpr double kTrailAreaShare = 1e-6;
inline constexpr double kTrailAreaInside = 40'000;  // path units squared

}  // namespace platenest::detail
