#include "platenest/NfpAlgorithmSet/VectorGraph.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "platenest/foundation/Compare.h"
#include "platenest/foundation/PolygonBasicAlgo.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

constinit thread_local Int64 BoldPointPrec = 0;

namespace {

constexpr Int64 kCoarsestBoldFactor = 10;  // exclusive
constexpr Int64 kLineFactor = 10000;
constexpr Int64 kLineCellUnits = 10;

// As RoundTo(V, -11), without its power. In double throughout: as an integer the product overflows at 9e7 drawing
// units.
double ToElevenDecimals(double V) {
  return RoundHalfEven(V * 1e11) / 1e11;
}

// Codes wrap around in 64 bits rather than overflow.
Int64 CodeOf(Int64 Tx, Int64 Ty) {
  constexpr std::uint64_t stride = static_cast<std::uint64_t>(TVectorGraph::KeyCoef);
  return static_cast<Int64>(stride * static_cast<std::uint64_t>(Ty) + static_cast<std::uint64_t>(Tx));
}

Int64 ChipFactor() {
  const Int64 bold = BoldPointPrec;
  return bold > kCoarsestBoldFactor && bold < TVectorGraph::PointPrec ? bold : TVectorGraph::PointPrec;
}

// The line cell of one coordinate; Remainder keeps the units from the border that is nearer to zero.
Int64 LineCell(double Coordinate, Int64 Factor, Int64& Remainder) {
  const Int64 units = Round<Int64>(static_cast<double>(Factor) * Coordinate);
  const Int64 cell = units / kLineCellUnits;
  Remainder = units - kLineCellUnits * cell;
  if (Remainder == 9) return cell + 1;
  if (Remainder == -9) return cell - 1;
  return cell;
}

// Which neighbouring cell a remainder points to. A remainder of 9 was counted to the next cell already, so its
// neighbour is the cell that it came from.
Int64 NeighbourOffset(Int64 Remainder) {
  switch (Remainder) {
    case 8:
    case -9:
      return 1;
    case 9:
    case -8:
      return -1;
    default:
      return 0;
  }
}

}  // namespace

TVectorGraph::TVectorGraph(int Num) : TDirectedGraph<TPoint2D>(0), FPointPrec(ChipFactor()) {
  ReserveVertices(Num);
  FPointsMap.Reserve(Num);
}

TVectorGraph::TVectorGraph(const TChipList& chips, bool dxor) : TVectorGraph(Size(chips)) {
  Fdxor = dxor;
  for (const TChip& chip : chips) AddChip(chip);
}

void TVectorGraph::Restart(const TChipList& chips, bool dxor) {
  Clear();
  FPointPrec = ChipFactor();
  FFormerChip[0] = FFormerChip[1] = {};
  ReserveVertices(Size(chips));
  FPointsMap.Restart(Size(chips));
  Fdxor = dxor;
  for (const TChip& chip : chips) AddChip(chip);
}

TVectorGraph::TVectorGraph(const TVLine2DList& lines) : TVectorGraph(Size(lines)) {
  FPointPrec = kLineFactor;
  for (const TVLine2D& line : lines) AddLine(line);
}

Int64 TVectorGraph::GetPointCode(const TPoint2D& P) const {
  const double factor = static_cast<double>(FPointPrec);
  const Int64 tx = Trunc<Int64>(ToElevenDecimals(P.X) * factor);
  const Int64 ty = Trunc<Int64>(ToElevenDecimals(P.Y) * factor);
  return CodeOf(tx, ty);
}

Int64 TVectorGraph::GetPointCode2(const TPoint2D& P) {
  _tx = LineCell(P.X, FPointPrec, _newX);
  _ty = LineCell(P.Y, FPointPrec, _newY);
  return CodeOf(_tx, _ty);
}

bool TVectorGraph::TryGetNear2(const TPoint2D& P, int& Id) const {
  const Int64 dx = NeighbourOffset(_newX);
  const Int64 dy = NeighbourOffset(_newY);
  const auto nearInX = [&](int id) { return std::fabs(P.X - GetVertex(id).X) <= PointPrecRec; };
  const auto nearInY = [&](int id) { return std::fabs(P.Y - GetVertex(id).Y) <= PointPrecRec; };
  const auto probe = [&](Int64 Dx, Int64 Dy) { return Id = FindVertex(CodeOf(_tx + Dx, _ty + Dy), P), Id >= 0; };
  if (dx != 0 && probe(dx, 0) && nearInX(Id)) return true;
  if (dy == 0) return false;
  if (probe(0, dy) && nearInY(Id)) return true;
  return dx != 0 && probe(dx, dy) && nearInX(Id) && nearInY(Id);
}

int TVectorGraph::KeyCount(int a, int b, Int64& Key) {
  const bool ascending = a < b;
  Key = ascending ? KeyCoef * a + b : KeyCoef * b + a;
  return ascending ? 1 : -1;
}

// Two cells share a code only if they are a stride apart along a row, or further.
int TVectorGraph::FindVertex(Int64 Code, const TPoint2D& P) const {
  constexpr double halfStride = static_cast<double>(KeyCoef) / 2;  // cells
  const double factor = static_cast<double>(FPointPrec);
  return FPointsMap.Find(Code, [&](int id) {
    const TPoint2D& vertex = Vertices()[static_cast<std::size_t>(id)];
    return std::fabs(vertex.X - P.X) * factor < halfStride && std::fabs(vertex.Y - P.Y) * factor < halfStride;
  });
}

int TVectorGraph::FindOrAdd(Int64 Code, const TPoint2D& P, bool& IsNew) {
  const int known = FindVertex(Code, P);
  IsNew = known < 0;
  if (!IsNew) return known;
  AddVertex(P);
  FPointsMap.Add(Code, MaxVertexId());
  return MaxVertexId();
}

int TVectorGraph::FindOrAddNear(const TPoint2D& P, bool& IsNew) {
  const Int64 code = GetPointCode2(P);
  IsNew = false;
  int id = FindVertex(code, P);
  if (id >= 0 || TryGetNear2(P, id)) return id;
  return FindOrAdd(code, P, IsNew);
}

// Neighbours in a list of chips mostly share an end, which then needs no code.
int TVectorGraph::FindOrAddEnd(const TPoint2D& P, bool& IsNew) {
  IsNew = false;
  for (const TChipEnd& end : FFormerChip)
    if (end.Point.X == P.X && end.Point.Y == P.Y) return end.Id;
  return FindOrAdd(GetPointCode(P), P, IsNew);
}

void TVectorGraph::AddChip(const TChip& chip) {
  bool newStart = false;
  bool newEnd = false;
  const int start = FindOrAddEnd(chip.First(), newStart);
  const int end = FindOrAddEnd(chip.Second(), newEnd);
  FFormerChip[0] = {chip.First(), start};
  FFormerChip[1] = {chip.Second(), end};
  if (start == end) return;
  if (newStart || newEnd)
    AddEdgeNoErr(start, end);
  else
    JoinKnown(start, end);
}

void TVectorGraph::AddLine(const TVLine2D& line) {
  bool newStart = false;
  bool newEnd = false;
  const int start = FindOrAddNear(line.StartPoint, newStart);
  const int end = FindOrAddNear(line.EndPoint, newEnd);
  if (start == end) return;
  if (newStart || newEnd || !HasEdge(start, end)) AddEdgeNoErr(start, end);
}

void TVectorGraph::JoinKnown(int Start, int Dest) {
  if (Fdxor && RemoveEdge(Dest, Start)) return;
  if (!HasEdge(Start, Dest)) AddEdgeNoErr(Start, Dest);
}

TVRect2D TVectorGraph::GetBound(std::span<const int> scc) const {
  TVRect2D bound = TVRect2D::InvalidRect;
  for (const int id : scc) bound.ExpandInPlace(TVRect2D(GetVertex(id)));
  return bound;
}

namespace {

constexpr double kExtremeTol = 0.09;  // drawing units
constexpr int kExtremesPerSide = 14;

// The ids of the component whose Measure is highest within the tolerance, in the order of the component.
template <class Measure>
std::vector<int> HighestBy(std::span<const int> Scc, Measure Of) {
  double highest = Of(Scc.front());
  for (const int id : Scc) highest = std::max(highest, Of(id));
  std::vector<int> ties;
  for (const int id : Scc)
    if (fEqual(Of(id), highest, kExtremeTol)) ties.push_back(id);
  return ties;
}

int Middle(const std::vector<int>& Ties) {
  return Ties[std::min((Ties.size() + 1) / 2, Ties.size() - 1)];
}

}  // namespace

void TVectorGraph::GetExtrema(std::span<const int> scc, TVertexIdList& extrema) const {
  if (scc.empty()) return;
  const auto lowest = HighestBy(scc, [&](int id) { return -GetVertex(id).Y; });
  const auto highest = HighestBy(scc, [&](int id) { return GetVertex(id).Y; });
  const auto rightmost = HighestBy(scc, [&](int id) { return GetVertex(id).X; });
  const auto leftmost = HighestBy(scc, [&](int id) { return -GetVertex(id).X; });
  for (const auto& ties : {lowest, highest, rightmost, leftmost})
    for (int i = 0; i < std::min(kExtremesPerSide, Size(ties)); ++i) extrema.push_back(ties[i]);

  std::vector<TPoint2D> points;
  points.reserve(scc.size());
  for (const int id : scc) points.push_back(GetVertex(id));
  const TPoint2D right = GetVertex(Middle(rightmost));
  const TPoint2D left = GetVertex(Middle(leftmost));
  const TPoint2D step = (left - right) / 3;
  for (const TPoint2D& inner : {right + step, left - step}) {
    int index1 = -1;
    int index2 = -1;
    TPolygonBasicAlgo::PointTangants(points, inner, index1, index2);
    extrema.push_back(scc[index1]);
    extrema.push_back(scc[index2]);
  }
}

}  // namespace platenest
