#include "ContourRing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "platenest/foundation/Rounding.h"

namespace platenest::detail {

namespace {

constexpr double kSamePoint = 1e-9;   // drawing units
constexpr double kCellMargin = 1e-6;  // no edge misses its cells by rounding
constexpr double kClearance = 2e-5;   // a new edge keeps two units of the integer paths from foreign vertices
constexpr double kMaxCellsAside = 2048;

struct TReach {
  double Low = std::numeric_limits<double>::infinity();
  double High = -std::numeric_limits<double>::infinity();

  void Include(double Value) {
    Low = std::min(Low, Value);
    High = std::max(High, Value);
  }
};

double XAt(const TPoint2D& A, const TPoint2D& B, double Y) {
  return A.X + (B.X - A.X) * std::clamp((Y - A.Y) / (B.Y - A.Y), 0.0, 1.0);
}

// What Shape covers in x between two heights.
TReach ReachBetween(std::span<const TPoint2D> Shape, double Low, double High) {
  TReach reach;
  for (std::size_t i = 0; i < Shape.size(); ++i) {
    const TPoint2D& a = Shape[i];
    const TPoint2D& b = Shape[i + 1 == Shape.size() ? 0 : i + 1];
    if (a.Y >= Low && a.Y <= High) reach.Include(a.X);
    for (const double y : {Low, High})
      if ((a.Y < y) != (b.Y < y)) reach.Include(XAt(a, b, y));
  }
  return reach;
}

TVRect2D BoxOf(std::span<const TPoint2D> Points) {
  TVRect2D box = TVRect2D::InvalidRect;
  for (const TPoint2D& point : Points) box.ExpandInPlace(TVRect2D(point));
  return box;
}

// Whether Point is close to the segment between its ends. What crowds an end has done so before the segment came.
bool IsBeside(const TPoint2D& Point, const TPoint2D& From, const TPoint2D& To) {
  const TPoint2D along = To - From;
  const TPoint2D offset = Point - From;
  const double length = along.Mag();
  const double place = along.DotMul(offset);
  return std::fabs(along.CrossMul(offset)) <= kClearance * length && place > kClearance * length &&
         place < (length - kClearance) * length;
}

bool IsNear(const TPoint2D& Point, const TVLine2D& Segment) {
  double t = 0;
  return Segment.SegmentDistanceTo(Point, t) <= kClearance;
}

}  // namespace

TCellGrid::TCellGrid(const TVRect2D& Box, int CellCount) {
  if (!Box.IsValid()) return;
  FOrigin = Box.GetBottomLeft();
  const double longer = std::max(Box.Width(), Box.Height());
  const double count = std::max(1, CellCount);
  const double width = std::max(std::sqrt(Box.Area() / count), longer / std::min(count, kMaxCellsAside));
  if (width > 0) FCellsPerUnit = 1 / width;
  FColumns = Floor(Box.Width() * FCellsPerUnit) + 1;
  FRows = Floor(Box.Height() * FCellsPerUnit) + 1;
}

int TCellGrid::Column(double X) const {
  return Floor(std::clamp((X - FOrigin.X) * FCellsPerUnit, 0.0, FColumns - 1.0));
}

int TCellGrid::Row(double Y) const {
  return Floor(std::clamp((Y - FOrigin.Y) * FCellsPerUnit, 0.0, FRows - 1.0));
}

template <class Visitor>
void TCellGrid::VisitCells(std::span<const TPoint2D> Shape, double Margin, Visitor Visit) const {
  const TVRect2D box = BoxOf(Shape).Inflate(Margin);
  const int lastRow = Row(box.Top);
  const int firstRow = Row(box.Bottom);
  for (int row = firstRow; row <= lastRow; ++row) {
    TReach reach{box.Left, box.Right};
    if (firstRow < lastRow) {
      const double low = row == 0 ? box.Bottom : FOrigin.Y + row / FCellsPerUnit - Margin;
      const double high = row + 1 == FRows ? box.Top : FOrigin.Y + (row + 1) / FCellsPerUnit + Margin;
      reach = ReachBetween(Shape, low, high);
      if (!(reach.Low <= reach.High)) continue;
    }
    const int lastColumn = Column(reach.High + Margin);
    for (int column = Column(reach.Low - Margin); column <= lastColumn; ++column)
      if (Visit(row * FColumns + column)) return;
  }
}

// Corners in any direction; it may be flat.
struct TContourRing::TTriangle {
  TTriangle(const TPoint2D& A, const TPoint2D& B, const TPoint2D& C)
      : Corners{A, B, C}, Box(BoxOf(Corners)), Turn(TPoint2DUtils::IsLeft(A, B, C)) {}

  bool Holds(const TPoint2D& P) const {
    if (P.X < Box.Left || P.X > Box.Right || P.Y < Box.Bottom || P.Y > Box.Top) return false;
    return !IsApart({P, P});
  }
  // Contact counts.
  bool Meets(const TVLine2D& S) const {
    const auto [left, right] = std::minmax(S.StartPoint.X, S.EndPoint.X);
    const auto [bottom, top] = std::minmax(S.StartPoint.Y, S.EndPoint.Y);
    if (right < Box.Left || left > Box.Right || top < Box.Bottom || bottom > Box.Top) return false;
    if (IsApart(S)) return false;
    const double a = TPoint2DUtils::IsLeft(S.StartPoint, S.EndPoint, Corners[0]);
    const double b = TPoint2DUtils::IsLeft(S.StartPoint, S.EndPoint, Corners[1]);
    const double c = TPoint2DUtils::IsLeft(S.StartPoint, S.EndPoint, Corners[2]);
    return !(a > 0 && b > 0 && c > 0) && !(a < 0 && b < 0 && c < 0);
  }

  std::array<TPoint2D, 3> Corners;
  TVRect2D Box;
  double Turn;

 private:
  // One side has the segment strictly beyond it.
  bool IsApart(const TVLine2D& S) const {
    for (int i = 0; i < 3; ++i) {
      const TPoint2D& from = Corners[i];
      const TPoint2D& to = Corners[i == 2 ? 0 : i + 1];
      const double first = TPoint2DUtils::IsLeft(from, to, S.StartPoint);
      const double second = TPoint2DUtils::IsLeft(from, to, S.EndPoint);
      if ((Turn >= 0 && first < 0 && second < 0) || (Turn <= 0 && first > 0 && second > 0)) return true;
    }
    return false;
  }
};

TContourRing::TContourRing(std::span<const TPoint2D> Vertices) : FGrid(BoxOf(Vertices), Size(Vertices)) {
  FPoints.reserve(Vertices.size());
  for (const TPoint2D& vertex : Vertices)
    if (FPoints.empty() || !(vertex - FPoints.back()).IsZeroLength(kSamePoint)) FPoints.push_back(vertex);
  while (FPoints.size() > 1 && (FPoints.back() - FPoints.front()).IsZeroLength(kSamePoint)) FPoints.pop_back();
  FCount = Size(FPoints);
  FNext.resize(FPoints.size());
  FPrev.resize(FPoints.size());
  FNextInCell.resize(FPoints.size());
  FPrevInCell.resize(FPoints.size());
  FFirstInCell.assign(FGrid.CellCount(), -1);
  for (int i = 0; i < FCount; ++i) {
    FNext[i] = i + 1 == FCount ? 0 : i + 1;
    FPrev[i] = i == 0 ? FCount - 1 : i - 1;
    ListVertex(i);
  }
}

std::vector<TPoint2D> TContourRing::Points() const {
  std::vector<TPoint2D> points;
  points.reserve(FCount);
  for (int i = 0; i < IndexEnd(); ++i)
    if (IsAlive(i)) points.push_back(FPoints[i]);
  return points;
}

void TContourRing::ListVertex(int Vertex) {
  int& first = FFirstInCell[FGrid.CellOf(FPoints[Vertex])];
  FPrevInCell[Vertex] = -1;
  FNextInCell[Vertex] = first;
  if (first >= 0) FPrevInCell[first] = Vertex;
  first = Vertex;
}

void TContourRing::UnlistVertex(int Vertex) {
  const int before = FPrevInCell[Vertex];
  const int after = FNextInCell[Vertex];
  (before >= 0 ? FNextInCell[before] : FFirstInCell[FGrid.CellOf(FPoints[Vertex])]) = after;
  if (after >= 0) FPrevInCell[after] = before;
}

void TContourRing::Unlink(int Vertex) {
  UnlistVertex(Vertex);
  FNext[FPrev[Vertex]] = FNext[Vertex];
  FPrev[FNext[Vertex]] = FPrev[Vertex];
  FNext[Vertex] = -1;
  --FCount;
}

void TContourRing::IndexEdges() {
  FEdges.emplace(FGrid.CellCount());
  FEdges->EdgeOf.resize(FPoints.size());
  for (int i = 0; i < IndexEnd(); ++i)
    if (IsAlive(i)) IndexEdge(i);
}

void TContourRing::IndexEdge(int Vertex) {
  const int edge = Size(FEdges->Segments);
  const TVLine2D& segment = FEdges->Segments.emplace_back(TVLine2D{FPoints[Vertex], FPoints[FNext[Vertex]]});
  FEdges->IsAlive.push_back(1);
  FEdges->EdgeOf[Vertex] = edge;
  FGrid.VisitCells(std::array{segment.StartPoint, segment.EndPoint}, kCellMargin, [&](int Cell) {
    FEdges->Entries.push_back({edge, FEdges->Heads[Cell]});
    FEdges->Heads[Cell] = Size(FEdges->Entries) - 1;
    return false;
  });
}

int TContourRing::BlockerOfCut(int Vertex) const {
  const int before = FPrev[Vertex];
  const int after = FNext[Vertex];
  const TTriangle corner(FPoints[before], FPoints[Vertex], FPoints[after]);
  int blocker = -1;
  FGrid.VisitCells(corner.Corners, kClearance, [&](int Cell) {
    for (int other = FFirstInCell[Cell]; other >= 0 && blocker < 0; other = FNextInCell[other]) {
      if (other == before || other == Vertex || other == after) continue;
      const TPoint2D& point = FPoints[other];
      if (corner.Holds(point) || IsBeside(point, FPoints[before], FPoints[after])) blocker = other;
    }
    return blocker >= 0;
  });
  return blocker;
}

void TContourRing::Cut(int Vertex) {
  const int before = FPrev[Vertex];
  if (FEdges) {
    EndEdge(before);
    EndEdge(Vertex);
  }
  Unlink(Vertex);
  if (FEdges) IndexEdge(before);
}

bool TContourRing::MayMeet(int Vertex, const TPoint2D& Meeting) {
  if (!FEdges) IndexEdges();
  const int after = FNext[Vertex];
  const TPoint2D& from = FPoints[Vertex];
  const TPoint2D& to = FPoints[after];
  const TTriangle cap(from, Meeting, to);
  const int ownEdges[] = {FEdges->EdgeOf[FPrev[Vertex]], FEdges->EdgeOf[Vertex], FEdges->EdgeOf[after]};
  const auto isTaken = [&](const TPoint2D& P) { return IsBeside(P, from, Meeting) || IsBeside(P, Meeting, to); };
  const auto isInTheWay = [&](int Edge) {
    if (!FEdges->IsAlive[Edge] || std::ranges::find(ownEdges, Edge) != std::end(ownEdges)) return false;
    const TVLine2D& segment = FEdges->Segments[Edge];
    return cap.Meets(segment) || isTaken(segment.StartPoint) || isTaken(segment.EndPoint) || IsNear(Meeting, segment);
  };
  bool isFree = true;
  FGrid.VisitCells(cap.Corners, kClearance + kCellMargin, [&](int Cell) {
    for (int entry = FEdges->Heads[Cell]; entry >= 0 && isFree; entry = FEdges->Entries[entry].Next)
      isFree = !isInTheWay(FEdges->Entries[entry].Item);
    return !isFree;
  });
  return isFree;
}

void TContourRing::Meet(int Vertex, const TPoint2D& Meeting) {
  const int before = FPrev[Vertex];
  const int after = FNext[Vertex];
  if (!FEdges) IndexEdges();
  EndEdge(before);
  EndEdge(Vertex);
  EndEdge(after);
  Unlink(after);
  UnlistVertex(Vertex);
  FPoints[Vertex] = Meeting;
  ListVertex(Vertex);
  IndexEdge(before);
  IndexEdge(Vertex);
}

}  // namespace platenest::detail
