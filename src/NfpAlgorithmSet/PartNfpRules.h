#pragma once

#include "platenest/foundation/Point2D.h"
#include "platenest/foundation/Types.h"

// The numbers of no-fit polygons of parts. Lengths in drawing units, counts of points of contours.
namespace platenest::detail {

inline constexpr double kUnknownArea = 1e-12;  // a smaller one is taken from the contour

// Rectangles: what part may be larger than a plate, what counts as an exact fit, and the size of its region.
inline constexpr double kRectShort = 1e-6;
inline constexpr double kRectExactFit = 1e-5;
inline constexpr double kRectExactSize = 1.1e-5;
inline constexpr int kRectPlatePoints = 5;  // at most: four corners and a repeated first one

// Cavities: the play that the boxes must have, and the fullness (area squared over box area) of the inner shape that
// the cavity must exceed.
inline constexpr double kBoxPlay = 0.0001;  // on each side
inline constexpr double kFullnessShare = 0.8;

// A play in this range would be closed by the grid of the vector graph, so such pairs are taken larger.
inline constexpr double kTightPlayLow = 0.001;
inline constexpr double kTightPlayHigh = 0.0041;
inline constexpr double kTightZoom = 100;
inline constexpr double kTightZoomBack = 0.01;

// A path of less area than this times its length, in path units, is no region.
inline constexpr double kNeedleWidth = 1;

// Thinning of heavy contours: Tolerance + Step * (Min(n / Points, MostSteps) - 1) for n points, if n exceeds Points.
struct TThinningRule {
  double Points;
  double Tolerance;
  double Step;
  double MostSteps;
};
inline constexpr TThinningRule kTightThinning{350, 0.9, 0.7, 6};       // of the zoomed cavity
inline constexpr TThinningRule kHeavyThinning{2000, 0.001, 0.001, 5};  // of both contours
inline constexpr Int64 kHeavyOuterPoints = 3'000'000;                  // product of both counts

// Cavities with many points ask for the hull of what goes in.
inline constexpr int kHullCavityPoints = 200;
inline constexpr Int64 kHullCavityProduct = 32'000;

// Outlines replaced by hulls where ntConvexHull is required: by the product of the counts, and by the counts.
inline constexpr Int64 kHullProduct = 50'001;
inline constexpr int kHullDynamicPoints = 320;
inline constexpr int kHullStaticPoints = 500;
inline constexpr int kConcaveStaticPoints = 300;
inline constexpr int kConcaveStaticLevel = 2;
inline constexpr int kHullDynamicAlonePoints = 400;
inline constexpr Int64 kHullDynamicAloneProduct = 10'000;

// A detailed part of moderate size in a plate that is not convex, where ntConcaveHull is required.
inline constexpr int kThinPlatePoints = 5;
inline constexpr int kThinPartPoints = 350;
inline constexpr double kThinPartArea = 8000;
inline constexpr double kThinPartTolerance = 0.02;

// One part stands in a hole of the other only if its area is below this share of the other's.
inline constexpr double kHoleAreaShare = 0.999;

// Plates with many holes: the perimeters, in path units, after which holes are asked for at ntConvexHull.
inline constexpr int kWatchedContours = 50;
inline constexpr double kHoleBudgetComplete = 38'000;
inline constexpr double kHoleBudgetOtherwise = 16'000;

// When an outer convolution has given up: the coarser factors, the steps of the disturbance, and a shift that takes
// the static shape off the places where its sums with the dynamic one share cells.
inline constexpr Int64 kBoldPrecDisturbed = 10'000;
inline constexpr Int64 kBoldPrecHull = 1000;
inline constexpr double kDisturbContour = 0.000267;  // radian
inline constexpr double kDisturbHull = 0.0003887;
inline constexpr TPoint2D kLadderShift{2.123245, 3.342237};

// The disturbance itself.
inline constexpr double kDisturbScale = 100;  // side of a square of the same box area
inline constexpr double kLeastDisturbShare = 0.09;
inline constexpr double kClosedWithin = 1e-6;
inline constexpr double kFixedEdge = 99;
inline constexpr int kDisturbSteps = 10;
inline constexpr int kDisturbStepsForNone = 3;
inline constexpr double kLongEdge = 9.99;
struct TShortEdgeRule {
  double Below;
  double Factor;
};
inline constexpr TShortEdgeRule kShortEdgeRules[] = {{0.5, 5}, {1.5, 3}, {3, 1.5}};
inline constexpr double kDisturbSimplify = 0.022;

}  // namespace platenest::detail
