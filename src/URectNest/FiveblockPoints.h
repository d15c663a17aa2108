#pragma once

#include <cstddef>
#include <vector>

#include "platenest/foundation/Types.h"

namespace platenest::detail {

// The lengths that a plate and the blocks cut from it can have: the raster points of both axes (Scheithauer and Terno
// 1996) on the sums of rectangle sides, merged. A point is known by its position in ascending order.
//
// What is left of a point behind a sum of sides, rounded down to such a sum, is a point again; so positions are enough
// to name every block. L counts as a sum even if it is none.
class TFiveblockPoints {
 public:
  // L >= W >= 0 and A, B > 0 in whole units. Cost: O(L) time and 4 bytes per unit of L.
  TFiveblockPoints(int L, int W, int A, int B);

  int Rows() const { return Size(FPoints); }  // points up to L
  int Columns() const { return FColumns; }    // points up to W
  int L() const { return FPoints.back(); }
  int W() const { return Length(FColumns - 1); }
  int Length(int Position) const { return FPoints[static_cast<std::size_t>(Position)]; }
  // Of the largest point not above Length, 0 <= Length <= L.
  int Position(int Length) const { return FPositions[static_cast<std::size_t>(Length)]; }
  // Of what is left of the point at Whole behind the one at Part.
  int Rest(int Whole, int Part) const { return Position(Length(Whole) - Length(Part)); }
  int Normalize(int Length) const { return this->Length(Position(Length)); }

 private:
  std::vector<int> FPoints;
  std::vector<int> FPositions;
  int FColumns = 0;
};

// The raster of one length, ascending and without 0. It ends with the length itself.
class TRasterWalk {
 public:
  TRasterWalk() = default;
  explicit TRasterWalk(int Whole) : FWhole(Whole), FLeft(Whole) {}

  // Position of the next raster point; Whole, also again, when there is no other.
  int Next(const TFiveblockPoints& Points) {
    while (FLeft > 0) {
      const int point = Points.Rest(FWhole, --FLeft);
      if (point > FLast) return FLast = point;
    }
    return FWhole;
  }

 private:
  int FWhole = 0;
  int FLeft = 0;
  int FLast = 0;
};

}  // namespace platenest::detail
