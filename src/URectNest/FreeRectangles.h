#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "SmartFit.h"
#include "platenest/foundation/Rect2D.h"

// The room that is left on a plate, as rectangles that are as large as they can be and overlap each other. Lengths in
// plate units, y up; several rules are in absolute units, whatever the scale of a job.
namespace platenest::detail {

// How a placed box lies to a free rectangle.
enum class TVecRelation : std::uint8_t {
  vrNone = 0,        // more than 0.0001 apart
  vrCorner = 1,      // the box covers one corner of the free rectangle
  vrPoke = 2,        // the box pokes in through one side
  vrSide = 3,        // the box covers one whole side
  vrCross = 4,       // the box crosses it from side to side
  vrBoxInside = 5,   // the box lies clear of all sides
  vrFreeInside = 6,  // nothing is left
};
using enum TVecRelation;

// Corners are counted from the lower left one counter-clockwise in TVecContact; what a corner means depends on the
// relation, see FreeRectangles.cpp.
struct TVecContact {
  TVecRelation Relation = vrNone;
  int Corner = 0;
};

// Allocates nothing. Three cases lose room, and stay so: a box inside that is exactly as high as the free rectangle
// counts as crossing it sideways; one that covers a corner with no corner of its own inside may leave pieces on the
// wrong sides, which are empty; one clear of all sides drops the whole free rectangle.
TVecContact VecRelation(const TVRect2D& Free, const TVRect2D& Box);

struct TFreeRect {
  TVRect2D Box;
  double Area = 0;
  int Origin = 0;  // position of the rectangle it was cut from, -1 for the one that was placed in
  bool IsNew = true;
  bool IsJudged = false;  // Choice is up to date
  TSmartChoice Choice;
};

class TFreeRectangles {
 public:
  // The whole plate is free.
  void Reset(const TVRect2D& Plate);
  // By area, largest first, each with its position in the list before the last Place.
  std::span<TFreeRect> Items() { return FItems; }
  // Cuts Box, which lies in the corner of item Chosen that is opposite to Corner, out of all free rectangles. Pieces
  // with a side below Least are dropped, and each piece that, a unit smaller on all sides, lies in a larger free
  // rectangle; so up to a unit of room beside a larger one is given away. Choices of rectangles that stay as they are
  // or keep their size are kept. Cost: O(f * p) for f free rectangles of which p are new pieces.
  void Place(int Chosen, const TVRect2D& Box, int Corner, double Least);

 private:
  enum TSide : std::uint8_t { sdLeft, sdRight, sdBelow, sdAbove };

  static std::span<const TSide> SidesOf(TVecContact Contact);
  void AddPieces(const TFreeRect& Free, int Origin, const TVRect2D& Box, std::span<const TSide> Sides, double Least);
  void Merge();
  void DropHeldPieces();

  std::vector<TFreeRect> FItems;
  std::vector<TFreeRect> FKept;    // of the last list, in order
  std::vector<TFreeRect> FPieces;  // cut from it
};

}  // namespace platenest::detail
