#pragma once

#include <span>
#include <vector>

#include "platenest/NfpAlgorithmSet/NfpTypes.h"
#include "platenest/foundation/Polyline.h"

namespace platenest {

// Directions of edges as integers: one unit is 1e-8 radian, so that order and equality of directions are exact. Stored
// angles lie in [0, FULL_TURN_ANGLE).
inline constexpr int FULL_TURN_ANGLE = 628318531;
inline constexpr int HALF_TURN_ANGLE = 314159265;
inline constexpr int QUARTER_TURN_ANGLE = 157079633;

// One edge of a loop, with the turn at its start.
struct TKMPEdge {
  static constexpr double kParallelMul = 1e-7;

  TPoint2D FLocation;         // start vertex
  TPoint2D FDirectionVector;  // end minus start; of length 100 once the loop is made
  double FLength = 0;         // true length in drawing units, also then
  int FAngle = 0;
  int FLpNext = -1;        // the next edge of the contour: its index in the loop
  bool FIsConvex = false;  // the turn into this edge is clockwise: a reflex vertex of a counter-clockwise contour,
                           // whatever the name says; callers rely on this reading

  TKMPEdge() = default;
  explicit TKMPEdge(const TPoint2D& ALocation) : FLocation(ALocation) {}

  // Links the edge and gives it the direction and the length to the start of Next, whose index is Index.
  void SetLpNext(int Index, const TKMPEdge& Next) {
    FLpNext = Index;
    FDirectionVector = Next.FLocation - FLocation;
    FLength = FDirectionVector.Mag();
  }
  double GetLength() const { return FLength == 0 && FLpNext >= 0 ? FDirectionVector.Mag() : FLength; }

  // Whether Edge points to the left (right) of this one. Mul becomes this direction crossed with that of Edge; within
  // 1e-7, which at length 100 is 1e-11 radian, the two count as parallel.
  bool IsLeft(const TKMPEdge& Edge, bool ParallelInclude, double& Mul) const {
    Mul = FDirectionVector.CrossMul(Edge.FDirectionVector);
    return Mul > (ParallelInclude ? -kParallelMul : kParallelMul);
  }
  bool isRight(const TKMPEdge& Edge, bool ParallelInclude, double& Mul) const {
    Mul = FDirectionVector.CrossMul(Edge.FDirectionVector);
    return Mul < (ParallelInclude ? kParallelMul : -kParallelMul);
  }
};

// A closed contour prepared for convolution: a ring of edges along the contour and a table of its directions in
// ascending order. Edges lie in one list by angle; those of one direction are a chain. A made loop does not change and
// may be read by several threads.
class PLATENEST_API TKMPLoop {
 public:
  // Signed area of the contour as its owner gives it, or as computed; the sign tells the direction. A loop that is made
  // from another one has its own.
  double Area() const { return FArea; }
  // To be called before Initialize by a caller that knows the area; within 1e-12 of 0 it counts as not known.
  void SetArea(double Area) { FArea = Area; }

  // Makes the loop of a contour, with or without repeated first point. Edges below 0.001 and vertices where the contour
  // is straight or folds back (a sine below 1.5e-5) are left out; crossings are not looked for. A last point of APoly
  // within 0.001 of the first is deleted from APoly itself. Where fewer than three edges stay, a repaired contour is
  // tried: the box of APoly with a margin of 0.0005 if the area is below 0.001, else its largest simple part; Area
  // keeps the value that it had before. TNestError, with the text for doubled edges and crossings, if that fails too;
  // then the edges are as they were. Cost: O(n log n).
  void Initialize(TVPolyline2D& APoly);

  int Count() const { return FFirst.empty() ? 0 : Size(FFirst) - 1; }  // directions
  int FCount() const { return Size(FEdges); }                          // edges
  // The edge of a direction that came first along the contour.
  const TKMPEdge& operator[](int Index) const { return FEdges[FFirst[Index]]; }
  // All edges of a direction: the first, then the others last to first.
  std::span<const TKMPEdge> Chain(int Index) const {
    return {FEdges.data() + FFirst[Index], static_cast<std::size_t>(FFirst[Index + 1] - FFirst[Index])};
  }
  const TKMPEdge& Next(const TKMPEdge& Edge) const { return FEdges[Edge.FLpNext]; }

  // The vertices along the contour from the first direction on, closed by repeating the first one.
  TVPolyline2D GetPolyline() const;
  TVRect2D GetBoundbox() const;
  bool IsConvex() const;

  // Index of the first direction at or above Angle, -1 if there is none. O(log n).
  int FindFirstEqualLarger(int Angle) const;
  static int CompareByAngle(const TKMPEdge& Edge1, const TKMPEdge& Edge2) { return Sign(Edge1.FAngle, Edge2.FAngle); }
  // The next direction in the cycle, ascending if Forward.
  int NextEdge(int Index, bool Forward) const {
    if (Forward) return Index + 1 == Count() ? 0 : Index + 1;
    return Index == 0 ? Count() - 1 : Index - 1;
  }

  // Lighter stand-ins, each a new loop. They may raise as Initialize does.

  // The convex hull, counter-clockwise; above 600 points it is thinned, which may cut off 0.02 at most.
  TKMPLoop ToConvexLoop() const;
  // In the direction asked for. A contour of at most 19 edges takes part as it is, concave or not.
  TKMPLoop ToConvexLoop(bool ccw) const;
  // The bounding box, counter-clockwise. Above 0.05 in width and height two corners are moved by about 0.01, so that no
  // two edges are parallel; that cuts up to 0.0073 off its top.
  TKMPLoop ToBoundBoxLoop() const;
  // A loop with fewer points: by a rolling disc, which only adds material; else by line simplification, which may cut
  // off up to its tolerance of 0.005 to 0.048; else the convex hull, counter-clockwise. What counts is the number of
  // points alone. Level 1 is the lightest; nfpType is the quality in hand. For a clockwise contour, a cavity, only the
  // disc stays on the safe side.
  TKMPLoop ToReducedLoop(int level, TNFPType nfpType) const;
  // The same for a contour that serves as a cavity: the new one lies inside and is clockwise.
  TKMPLoop ToReducedInnerLoop(int level) const;

 protected:
  // One try of Initialize; the text of its failure says nothing of the cause.
  void InitLoop(TVPolyline2D& APoly);

 private:
  // From a cleaned ring in contour order, whose links are indices in that order.
  void FillTable(std::vector<TKMPEdge> Ring);

  double FArea = 0;
  std::vector<TKMPEdge> FEdges;
  std::vector<int> FFirst;  // where each direction begins in FEdges, and the end
};

}  // namespace platenest
