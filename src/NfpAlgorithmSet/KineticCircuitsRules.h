#pragma once

#include "platenest/foundation/Types.h"

// The numbers of the circuit search, in the order of evaluation. "Points" are the vertices of all circuits found so
// far, a vertex counted once per circuit; "n" is the size of the main component.
namespace platenest::detail {

inline constexpr int kSmallestComponent = 2;       // vertices
inline constexpr std::size_t kFewestVertices = 3;  // of a circuit that is kept

// Two giant components: when a graph is this large and falls apart, a component nearly as long as the longest one may
// take its place if its bounding box is larger.
inline constexpr int kGiantsVerticesAbove = 66666;
inline constexpr int kGiantsComponentsAbove = 81;
inline constexpr double kGiantShare = 0.75;  // of the longest one
inline constexpr int kGiantSizeAbove = 1300;
inline constexpr int kGiantsTogetherAbove = 3900;

// How many circuits the first walk may find: constant up to the first size, then rising in a straight line up to below
// the second one, then rising by a power that starts lower than the line ended, with half of what exceeds the knee cut
// off.
inline constexpr int kDepthBase = 35;
inline constexpr int kDepthFlatUpTo = 1000;
inline constexpr double kDepthPerThousand = 35;
inline constexpr int kDepthLinearBelow = 4500;
inline constexpr int kDepthPowerBase = 75;
inline constexpr double kDepthPowerFactor = 1.1;
inline constexpr double kDepthPowerScale = 10;
inline constexpr double kDepthPowerShift = 20;
inline constexpr double kDepthPower = 0.6;
inline constexpr int kDepthKnee = 180;

// The walk through a smaller component ends once it has enough circuits and one of them is longer than the lesser of
// the two bounds.
inline constexpr int kMostNeededLength = 6;
inline constexpr double kNeededLengthShare = 0.35;  // of the component
inline constexpr int kFewestCircuitsOfSmall = 5;
inline constexpr int kVerticesPerCircuitOfSmall = 2;

// Loops from the extreme vertices come first in components above this size.
inline constexpr int kExtremaVerticesAbove = 350;

// The loop step: from the fifth big loop on these are counted but not kept.
inline constexpr int kBigLoopAbove = 9999;
inline constexpr int kFirstBigLoopDropped = 5;

// A search with more points and more circuits than a stop has fails. No stop may be lifted: a dense graph would not
// end.
struct TCircuitStop {
  Int64 PointsAbove;
  int CircuitsAbove;
};
inline constexpr TCircuitStop kHopelessStop{200'000, 5};  // only for outlines that are less similar than the next line
inline constexpr int kHopelessSimilarBelow = 3;
inline constexpr TCircuitStop kLoopStop{45'000, 2};
inline constexpr int kMostLoops = 68;
inline constexpr TCircuitStop kEdgeStop{50'000, 2};
inline constexpr int kSpecialInsideCircuitsAbove = 5;
inline constexpr TCircuitStop kSpecialStop{60'000, 0};
inline constexpr std::size_t kMostSpecialCycles = 260;

// A call for the outline in place of more circuits. All bounds of a row must hold; Ratio is points / n.
struct TOutlineCall {
  int SimilarAtLeast;
  int VerticesAtLeast;
  int VerticesBelow;
  Int64 PointsAbove;
  int CircuitsAbove;
  Int64 PointsBeyondVerticesAbove;
  double RatioAbove;
};
inline constexpr int kAnySize = 2'147'483'647;
inline constexpr Int64 kAnyExcess = -kAnySize;

// After the first walk and the extreme vertices.
inline constexpr TOutlineCall kEarlyCalls[] = {
    {0, 0, 8800, 20'000, 2, 2000, 4.1},
    {0, 0, 8800, 13'500, 5, 2000, 4.1},
};

// The trial after each further circuit: the first table, then nothing below a number of circuits, then the second one.
inline constexpr TOutlineCall kTrialCalls[] = {
    {0, 0, 8000, 25'000, 5, 2000, 4.4},
    {0, 0, 8000, 16'000, 10, 2000, 4.4},
};
inline constexpr int kTrialFewestCircuits = 8;
inline constexpr TOutlineCall kDenseTrialCalls[] = {
    {0, 11'001, kAnySize, 33'000, 0, kAnyExcess, 3},  //
    {3, 0, kAnySize, 24'000, 0, kAnyExcess, 4},       //
    {0, 0, kAnySize, 10'000, 0, kAnyExcess, 10},      //
    {0, 0, kAnySize, 12'000, 0, kAnyExcess, 8},       //
    {0, 0, kAnySize, 18'000, 0, kAnyExcess, 6},       //
    {4, 0, kAnySize, 5'600, 0, kAnyExcess, 7.8},
};

// At the end, for similar outlines with few but long circuits.
struct TLateOutlineCall {
  int CircuitsBelow;
  double RatioAbove;
};
inline constexpr int kLateSimilarAtLeast = 3;
inline constexpr Int64 kLatePointsAbove = 3500;
inline constexpr TLateOutlineCall kLateCalls[] = {{16, 12}, {28, 15}};

// The outline by arrangement. Edges that rise by next to nothing are made level; lengths in drawing units.
inline constexpr double kLevelRunAbove = 1e-6;
inline constexpr double kLevelSlopeAbove = 1e-11;
inline constexpr double kLevelSlopeBelow = 1e-6;
inline constexpr double kLevelRiseBelow = 5e-6;
// Where edges cross more often than this an arrangement costs more than a search on reduced loops. The crossings are
// estimated from pairs of edges picked at random.
inline constexpr double kMostCrossings = 1e6;
inline constexpr int kPairsSampled = 200'000;
// It is worth its cost only where edges cross often enough: crossings per vertex, and vertices with more edges than
// this must not be more than the crossings.
inline constexpr double kCrossingsPerVertex = 0.32;
inline constexpr int kDegreeAbove = 1;

}  // namespace platenest::detail
