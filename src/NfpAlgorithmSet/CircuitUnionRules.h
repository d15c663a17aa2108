#pragma once

#include <limits>

#include "platenest/foundation/Types.h"

// The numbers of the union of circuits, in the order of evaluation. "Points" are the vertices of the circuits taken so
// far, a vertex counted once per circuit.
namespace platenest::detail {

// From here on circuits are weighed, so that those that add next to nothing may stay away.
inline constexpr int kWeighManyComponents = 3;
inline constexpr int kWeighOuterCircuits = 51;  // with that many components or more
inline constexpr int kWeighCircuits = 76;       // with a single component
inline constexpr Int64 kWeighOuterPoints = 12'001;

// The weight of a circuit: above all others, as one kept for the sake of an edge, as a short one; else the number of
// its vertices that no circuit before it covers.
inline constexpr int kWeightAlways = std::numeric_limits<int>::max();
inline constexpr int kWeightSpecial = 99;
inline constexpr int kWeightShort = 98;
inline constexpr int kShortBelow = 2500;      // vertices
inline constexpr std::size_t kMostNoted = 7;  // uncovered vertices kept in mind per circuit

// By weight from 1 on: circuits whose length lies between the two bounds wait for a second look.
struct TSecondLook {
  int VerticesAbove;
  int VerticesBelow;
};
inline constexpr TSecondLook kSecondLooks[] = {{2500, 3200}, {3200, 4500}, {4000, 6000}, {5000, 8600}};
inline constexpr std::size_t kJoinAllBelow = 7;  // circuits that wait

// Below ntComplete circuits are taken until one of these is exceeded.
struct TTakeStop {
  int CircuitsBefore;
  Int64 PointsAbove;
  Int64 PointsTimesIndexAbove;
};
inline constexpr TTakeStop kTakeStops[] = {{0, 28'000, -1}, {60, 20'000, -1}, {50, 0, 1'200'000}};

// Stops on what was taken; all bounds of a row must hold. "Rest" are the circuits besides those of the main component.
struct TUnionStop {
  Int64 PointsAbove;
  int OuterAbove = -1;
  int CircuitsAbove = -1;
  int RestAbove = -1;
  int RestBelow = std::numeric_limits<int>::max();
  Int64 PointsTimesCircuitsAbove = -1;
  Int64 PointsTimesRestAbove = -1;
  bool BelowCompleteOnly = false;
};
inline constexpr Int64 kStopPointsAbove = 16'000;
// Not for ntExact.
inline constexpr TUnionStop kUnionStops[] = {
    {.PointsAbove = 50'000, .CircuitsAbove = 25},
    {.PointsAbove = 25'000, .OuterAbove = 5, .CircuitsAbove = 40},
    {.PointsAbove = kStopPointsAbove, .OuterAbove = 5, .CircuitsAbove = 40, .PointsTimesCircuitsAbove = 1'000'000},
    {.PointsAbove = 18'000, .OuterAbove = 5, .CircuitsAbove = 50},
    {.PointsAbove = 26'000, .CircuitsAbove = 35, .BelowCompleteOnly = true},
};
inline constexpr TUnionStop kUnionStopsOfAll[] = {
    {.PointsAbove = 20'000, .RestAbove = 10},
    {.PointsAbove = 28'000, .OuterAbove = 3, .CircuitsAbove = 6},
    {.PointsAbove = 20'000, .OuterAbove = 30, .RestBelow = 10},
    {.PointsAbove = 40'000, .OuterAbove = 2},
    {.PointsAbove = 18'000, .CircuitsAbove = 80},
    {.PointsAbove = kStopPointsAbove, .PointsTimesRestAbove = 180'000},
};

// Up to this many contours are first tried without Clipper.
inline constexpr std::size_t kMostContours = 12;

// A union costs about the square of what crosses in it, so larger ones go in batches, whose results are united in
// groups until one group is left. Each round rounds crossings to path units once more, so there shall be few.
inline constexpr Int64 kBatchPointsAbove = 1000;
inline constexpr Int64 kBatchPoints = 300;
inline constexpr std::size_t kBatchesInGroup = 8;

}  // namespace platenest::detail
