#pragma once

#include <optional>
#include <span>
#include <vector>

#include "platenest/foundation/Line2D.h"
#include "platenest/foundation/Rect2D.h"

namespace platenest::detail {

// Square cells over a box. What lies outside the box counts to the cells of its border.
class TCellGrid {
 public:
  // About CellCount cells; CellCount + 1 at most for a flat box.
  TCellGrid(const TVRect2D& Box, int CellCount);

  int CellCount() const { return FColumns * FRows; }
  int CellOf(const TPoint2D& P) const { return Row(P.Y) * FColumns + Column(P.X); }
  // Calls Visit(cell) for the cells that the convex Shape, grown by Margin, may meet, until it returns true.
  template <class Visitor>
  void VisitCells(std::span<const TPoint2D> Shape, double Margin, Visitor Visit) const;

 private:
  int Column(double X) const;
  int Row(double Y) const;

  TPoint2D FOrigin;
  double FCellsPerUnit = 1;
  int FColumns = 1;
  int FRows = 1;
};

// A closed contour with its material on the left of its direction: inside for a counter-clockwise contour, outside for
// a clockwise one. It changes by local moves that only add material, and each can be checked beforehand not to let the
// contour touch itself, so a simple contour stays simple. A contour that crosses itself is processed without harm, but
// nothing is promised of the result. A vertex is an index that stays valid until its vertex goes.
class TContourRing {
 public:
  // Vertices that follow each other within 1e-9 become one.
  explicit TContourRing(std::span<const TPoint2D> Vertices);

  int Count() const { return FCount; }
  // One past the largest vertex index; vertices that are gone are counted.
  int IndexEnd() const { return Size(FPoints); }
  bool IsAlive(int Vertex) const { return FNext[Vertex] >= 0; }
  int Next(int Vertex) const { return FNext[Vertex]; }
  int Prev(int Vertex) const { return FPrev[Vertex]; }
  const TPoint2D& At(int Vertex) const { return FPoints[Vertex]; }
  // The living vertices, from the lowest index on.
  std::vector<TPoint2D> Points() const;

  // The cross product at the vertex: negative where the material has a notch, which a cut would fill.
  double TurnAt(int Vertex) const {
    return TPoint2DUtils::IsLeft(FPoints[FPrev[Vertex]], FPoints[Vertex], FPoints[FNext[Vertex]]);
  }

  // A vertex that forbids to cut the corner of Vertex, to be asked where TurnAt is not positive; -1 if it is free. In a
  // simple contour nothing can reach into such a corner without a vertex in it.
  int BlockerOfCut(int Vertex) const;
  // The vertex goes, a straight edge joins its neighbours.
  void Cut(int Vertex);

  // Whether the edge that leaves Vertex may be replaced by its neighbours, drawn out to their meeting point beyond it.
  bool MayMeet(int Vertex, const TPoint2D& Meeting);
  // Vertex moves to Meeting and the next vertex goes.
  void Meet(int Vertex, const TPoint2D& Meeting);

 private:
  struct TTriangle;
  struct TListed {
    int Item = -1;
    int Next = -1;
  };
  // Edges by the cells that they run through. A change of the ring adds edges and marks others as ended.
  struct TEdgeIndex {
    explicit TEdgeIndex(int CellCount) : Heads(CellCount, -1) {}
    std::vector<TVLine2D> Segments;
    std::vector<char> IsAlive;
    std::vector<int> Heads;  // by cell: the first entry, -1 for none
    std::vector<TListed> Entries;
    std::vector<int> EdgeOf;  // by the vertex that the edge leaves
  };

  void ListVertex(int Vertex);
  void UnlistVertex(int Vertex);
  void Unlink(int Vertex);
  void IndexEdges();
  void IndexEdge(int Vertex);
  void EndEdge(int Vertex) { FEdges->IsAlive[FEdges->EdgeOf[Vertex]] = 0; }

  int FCount = 0;
  std::vector<TPoint2D> FPoints;
  std::vector<int> FNext;  // -1 for a vertex that is gone
  std::vector<int> FPrev;
  TCellGrid FGrid;
  std::vector<int> FFirstInCell;  // the vertices of a cell as a list, -1 at both its ends
  std::vector<int> FNextInCell;
  std::vector<int> FPrevInCell;
  std::optional<TEdgeIndex> FEdges;  // made when it is first needed
};

}  // namespace platenest::detail
