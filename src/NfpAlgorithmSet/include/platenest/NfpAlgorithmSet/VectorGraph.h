#pragma once

#include <limits>
#include <span>
#include <vector>

#include "platenest/NfpAlgorithmSet/Chip.h"
#include "platenest/NfpAlgorithmSet/DirectedGraph.h"
#include "platenest/foundation/CodeMap.h"
#include "platenest/foundation/Export.h"
#include "platenest/foundation/Line2D.h"
#include "platenest/foundation/Rect2D.h"

namespace platenest {

// A coarser factor for the graphs that this thread makes, to close circuits that the fine one leaves open; 0 for none.
extern PLATENEST_API constinit thread_local Int64 BoldPointPrec;

// Sets BoldPointPrec and returns it to 0 on every way out.
class PLATENEST_API TBoldPointPrecScope {
 public:
  explicit TBoldPointPrecScope(Int64 Factor) { BoldPointPrec = Factor; }
  ~TBoldPointPrecScope() { BoldPointPrec = 0; }
  TBoldPointPrecScope(const TBoldPointPrecScope&) = delete;
  TBoldPointPrecScope& operator=(const TBoldPointPrecScope&) = delete;
};

// The directed graph of a convolution, or of the pieces of an arrangement of lines: segments become edges between
// points, and points close enough to each other become one vertex. A graph is made of chips or of lines, not of both,
// since the two count other points as one. Coordinates times the factor must stay below 2^62; a coordinate that is not
// finite raises TRangeError. One graph is for one thread, a finished one may be read by several.
class PLATENEST_API TVectorGraph : public TDirectedGraph<TPoint2D> {
 public:
  static constexpr Int64 KeyCoef = 100000007;    // stride between two rows of cells in a point code
  static constexpr Int64 PointPrec = 100000;     // cells per drawing unit
  static constexpr double PointPrecRec = 5e-05;  // reach of TryGetNear2, drawing units

  // Empty, with room for Num vertices. Takes the factor PointPrec, or BoldPointPrec where that is above 10 and below
  // PointPrec.
  explicit TVectorGraph(int Num);
  // Adds the chips in order. dxor: two opposite chips cancel. Cost: one probe per end.
  TVectorGraph(const TChipList& chips, bool dxor);
  // Becomes the graph of these chips, in the memory that it has.
  void Restart(const TChipList& chips, bool dxor);
  // Adds the lines in order. The factor is 10000 always.
  explicit TVectorGraph(const TVLine2DList& lines);

  // Vertices that share a cell of this factor are one.
  Int64 PointFactor() const { return FPointPrec; }

  // The code of the cell of a chip's end: coordinates rounded to 11 decimals, times the factor, cut off toward zero. So
  // the cells beside an axis are twice as wide as the others. Points that are far apart may share a code.
  Int64 GetPointCode(const TPoint2D& P) const;
  // The code of the cell of a line's end: ten units of the factor wide, with the last unit before a border already part
  // of the next cell.
  Int64 GetPointCode2(const TPoint2D& P);
  // To be called right after GetPointCode2 for the same point, if that code is unknown: looks for a vertex in the cells
  // that the remainders point to. A vertex in the next column is accepted by its x alone, one in the next row by its y
  // alone, so it may lie up to a cell away along the border; only the diagonal cell is held to both.
  bool TryGetNear2(const TPoint2D& P, int& Id) const;
  // The key of an undirected pair of vertices; 1 if a is below b, else -1.
  static int KeyCount(int a, int b, Int64& Key);

  // Both ends in one cell: no edge, though a vertex may come of it. An edge that is there already is not added again,
  // also where the convolution has it twice. With dxor the chip removes the opposite edge, if there is one, instead.
  void AddChip(const TChip& chip);
  // As AddChip without dxor.
  void AddLine(const TVLine2D& line);

  // false: straightens runs and closed diamonds of collinear edges, locally and in one pass: a long run keeps some of
  // its inner vertices. true: cuts edges that overlap along a line at each other's ends and cancels opposite parts;
  // of several equal parts that are left one stays. Only the latter is exact about direction: the former also drops
  // collinear fold-backs.
  void EliminateEdges(bool elimAll);

  // Appends vertices of the component that a search for its outer circuits should start from: those on its four
  // extremes (within 0.09, at most 14 each) and four tangents from inside. Ids may repeat.
  void GetExtrema(std::span<const int> scc, TVertexIdList& extrema) const;
  // TVRect2D::InvalidRect for an empty list.
  TVRect2D GetBound(std::span<const int> scc) const;

  // Walks the outer face from the topmost vertex on, taking the outermost edge at each vertex. cycle becomes the way,
  // its start not repeated at the end; clockwise on the graphs of outer convolutions. False, with the way as far as it
  // came, at a dead end or too many overlapping edges (a warning tells which), and where the way gets as long as the
  // graph has vertices without coming home. Overlapping edges are joined on the way, so the graph may gain edges.
  bool TryGetCcwCycle(TVertexIdList& cycle);

 private:
  struct TEdge;
  class TOverlaps;
  class TOutlineWalk;
  struct TChipEnd {
    TPoint2D Point{kNowhere, kNowhere};
    int Id = -1;
  };
  static constexpr double kNowhere = std::numeric_limits<double>::quiet_NaN();

  int FindVertex(Int64 Code, const TPoint2D& P) const;
  int FindOrAdd(Int64 Code, const TPoint2D& P, bool& IsNew);
  int FindOrAddEnd(const TPoint2D& P, bool& IsNew);
  int FindOrAddNear(const TPoint2D& P, bool& IsNew);
  void JoinKnown(int Start, int Dest);
  bool Collinear(int A, int B, int C) const;
  void CloseDiamonds(std::vector<int>& InDegrees);
  void StraightenRuns(std::vector<int>& InDegrees);
  bool SkipMiddle(int Start, std::vector<int>& InDegrees);

  bool Fdxor = false;
  Int64 FPointPrec;
  TCodeMap FPointsMap;
  TChipEnd FFormerChip[2];  // ends of the chip added last
  // Cell and remainder of the last GetPointCode2.
  Int64 _tx = 0;
  Int64 _ty = 0;
  Int64 _newX = 0;
  Int64 _newY = 0;
};

}  // namespace platenest
