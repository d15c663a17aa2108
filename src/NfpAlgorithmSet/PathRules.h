#pragma once

#include <cstddef>
#include <limits>

// The numbers by which paths are judged, in the order of evaluation. Distances, tolerances of cleaning and areas are in
// path units (1e10 square ones are one drawing unit squared) unless a drawing unit is named. "Density" is the product
// of the edges per direction of the two loops: 1 without parallel edges.
namespace platenest::detail {

inline constexpr std::size_t kFewestPoints = 3;  // of a path that is kept
inline constexpr double kPathAreaScale = 1e10;   // square path units per drawing unit squared

// Trial placement.
inline constexpr double kTrialMiterLimit = 2.0;
inline constexpr double kTrialArcTolerance = 0.25;
inline constexpr double kTrialDelta = 15;
inline constexpr int kShrink = -1;

// Douglas-Peucker by size; the first row that is exceeded holds. Tolerance in drawing units.
struct TThinning {
  std::size_t PointsAbove;
  double Tol;
};

// ---- Outer paths ----

inline constexpr double kNoiseAreaBelow = 11'000;
inline constexpr std::size_t kRealPoints = 10;  // fewer points need a share of the largest area
inline constexpr double kRealShare = 1e-13;
inline constexpr double kRealArea = 39'900;
inline constexpr std::size_t kRawHolePoints = 5;  // a hole with fewer is cleaned
inline constexpr double kHoleCleaning = 5;
inline constexpr int kMostOuterPaths = 19;
inline constexpr int kMostUnusedPaths = 19;
inline constexpr double kOuterGrowth = 9;

// Holes: who may have some, and which of them need no trial.
inline constexpr int kHolesSimilarBelow = 2;
inline constexpr int kHolesUnusedBelow = 3;
inline constexpr std::size_t kMostHoles = 10;
inline constexpr double kTinyHoleShareBelow = 0.0001;  // of the outline, as the next three; for slightly similar loops
inline constexpr double kEndOfHolesShareBelow = 0.0003;
inline constexpr double kSmallHoleShareBelow = 0.01;
inline constexpr double kLargeHoleShareAbove = 0.3;
inline constexpr double kFreeHoleArea = 1'000'000;
inline constexpr double kFreeHoleDensity = 1.3;

// Cleaning of an outline without holes.
inline constexpr double kCoarseCleaning = 20;
inline constexpr int kCoarseSimilar = 2;
inline constexpr std::size_t kCoarseSimilarPoints = 36;
inline constexpr std::size_t kCoarseUnusedPointsAbove = 15;
inline constexpr double kFineCleaning = 15;
inline constexpr std::size_t kFinePointsAbove = 8;
inline constexpr int kFineEdgesAbove = 4;  // directions of both loops, or edges of very similar ones
inline constexpr int kFineSimilarAbove = 3;
inline constexpr double kFineDensityAbove = 2;
struct TDenseCleaning {
  int Similar;
  double Density;
};
inline constexpr TDenseCleaning kDenseCleanings[] = {{3, 12}, {4, 6}};
inline constexpr TThinning kOuterThinnings[] = {{5000, 0.005}, {3000, 0.003}, {2000, 0.002}};

// The area of the outline over that of both shapes, and the test of its box.
inline constexpr double kBoxTol = 0.1;  // drawing units
inline constexpr double kImpossibleRatioBelow = 1.001;
inline constexpr double kTightRatioBelow = 1.35;
inline constexpr double kLooseRatioBelow = 1.75;
inline constexpr double kMixedAreaFactor = 15'000'000'000;  // square path units per drawing unit squared
inline constexpr int kSimilarBoxTest = 3;
inline constexpr int kSimilarEdgesAbove = 20;
inline constexpr double kSimilarDensityAbove = 2.5;
inline constexpr double kSimilarRatioBelow = 1.95;

// ---- Inner paths; areas in drawing units squared where not said otherwise ----

inline constexpr std::size_t kInnerCleanedBelow = 20;  // points
inline constexpr std::size_t kInnerCoarsePoints = 9;
inline constexpr double kInnerCoarseCleaning = 25;
inline constexpr std::size_t kInnerFinePoints = 4;
inline constexpr double kInnerThinnedAreaAbove = 200'000'000;  // square path units
inline constexpr double kInnerThinningTol = 0.0002;            // drawing units
inline constexpr double kInnerFineCleaning = 15;

// One path.
inline constexpr std::size_t kSoleJudgedBelow = 55;  // points
struct TSliver {
  std::size_t Points;
  double AreaBelow;
};
inline constexpr TSliver kSlivers[] = {{3, 4e-6}, {4, 1e-6}, {5, 4e-6}};
struct TSoleTrial {
  double AreaBelow;
  double DensityAbove;
  int StaticEdgesAbove;
  double DynamicRatio;  // edges per direction at least
};
inline constexpr double kAnyArea = std::numeric_limits<double>::infinity();
inline constexpr TSoleTrial kSoleTrials[] = {
    {10, 0, 350, 0}, {kAnyArea, 8, 30, 0}, {kAnyArea, 1.55, 30, 1.45}, {kAnyArea, 3.3, 100, 0}};
// A region below the area of either shape is tried if one of the two ratios of edges to directions asks for it.
inline constexpr int kSmallRegionEdgesAbove = 6;
inline constexpr double kSmallRegionStaticRatioAbove = 1.65;
inline constexpr double kSmallRegionDynamicRatioBelow = 1.45;

// Several paths.
inline constexpr double kCandidateAreaAbove = 1e-5;
inline constexpr std::size_t kCandidatePointsAbove = 2;
inline constexpr double kCandidateThinnedAreaAbove = 0.01;
inline constexpr TThinning kCandidateThinnings[] = {{5000, 0.006}, {3000, 0.003}};
inline constexpr std::size_t kSmallCandidatePointsBelow = 6;
inline constexpr double kSmallCandidateShareBelow = 1e-5;  // of the largest one
inline constexpr int kTrialEdgesAbove = 5;                 // of both loops
struct TCandidateTrial {
  std::size_t CandidatesAbove;
  double DensityAbove;
};
inline constexpr TCandidateTrial kCandidateTrials[] = {{5, 0}, {2, 8}, {0, 9}};
inline constexpr double kCandidateDelta = 35;
inline constexpr std::size_t kSurvivorCleanedAbove = 100;  // points
inline constexpr std::size_t kSurvivorCleanedBelow = 2000;
inline constexpr double kSurvivorCleaning = 15;
inline constexpr TThinning kSurvivorThinnings[] = {{5000, 0.003}, {3000, 0.0022}, {500, 0.001}};
inline constexpr std::size_t kMostSurvivors = 25;
inline constexpr int kManySurvivorsEdgesAbove = 5;

// Where the region of a cavity is suspect; all bounds of a row must hold.
struct TSuspect {
  bool ParallelStatic;  // the cavity has parallel edges
  int StaticEdgesAbove;
  int DynamicEdgesAbove;
  int EdgesTogetherAbove;
  double DensityAbove;
  double DynamicRatioAbove;
  double FreeAreaBelow;  // what the shape leaves of the cavity, over the area of the shape
};
inline constexpr TSuspect kSuspects[] = {
    {true, 65, 0, 150, 0, 1.6, kAnyArea}, {false, 0, 0, 0, 2.5, 0, 0.15}, {true, 90, 20, 0, 1.05, 0, kAnyArea}};
inline constexpr double kSuspectBoxTol = 1e-5;                // drawing units
inline constexpr std::size_t kSuspectMiddlePointsAbove = 10;  // then the middle point is looked at too

}  // namespace platenest::detail
