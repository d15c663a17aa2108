#pragma once

#include <cstdint>
#include <vector>

#include "platenest/foundation/Point2D.h"

// Circles on a box, found by place in a time that does not grow with their number.
namespace platenest::detail {

class TCircleGrid {
 public:
  struct TDisc {
    TPoint2D Center;
    double Radius = 0;
  };

  // Circles may reach out of the box. Expected: about how many come.
  TCircleGrid(double Width, double Height, double LeastRadius, double Expected);

  void Add(const TPoint2D& Center, double Radius);
  const std::vector<TDisc>& Discs() const { return FDiscs; }

  // Whether no circle comes nearer to the point than its radius and Reach, but for Slack.
  bool IsFree(const TPoint2D& Point, double Reach, double Slack) const;
  // Positions in Discs() of circles that come at least that near.
  void FindNear(const TPoint2D& Point, double Reach, std::vector<int>& Found) const;

 private:
  // Circles up to twice as large as each other, in square cells no smaller than the largest of them.
  struct TLevel {
    double MostRadius = 0;
    double Cell = 0;
    int Columns = 0;
    int Rows = 0;
    std::vector<int> First;  // in each cell, the position of its newest circle, -1 for none
  };

  int LevelOf(double Radius) const;
  TLevel& LevelFor(double Radius);
  static int CellOf(double At, double Cell, int Count);
  template <class Visitor>
  bool VisitNear(const TPoint2D& Point, double Reach, Visitor Visit) const;

  double FWidth;
  double FHeight;
  double FLeastRadius;
  double FExpected;
  std::vector<TLevel> FLevels;  // each twice as large as the one before; unused ones have no cells
  std::vector<TDisc> FDiscs;
  std::vector<int> FNext;  // the next older circle of the same cell
};

}  // namespace platenest::detail
