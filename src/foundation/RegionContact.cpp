#include "RegionContact.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "PointRelation.h"

namespace platenest::detail {

namespace {

constexpr double kZeroLength = 1e-12;  // drawing units

// The part of an edge that lies within the tolerance of an edge of the other region.
struct TCover {
  int Edge;
  double From;  // parameters on the edge
  double To;
};

struct TSpan {
  double From = 1;
  double To = 0;
  bool IsEmpty() const { return From > To; }
  void Expand(double Low, double High) {
    From = std::min(From, Low);
    To = std::max(To, High);
  }
};

// An edge in the sweep along one axis.
struct TSwept {
  int Edge;
  double Low;  // bounds along the sweep
  double High;
  double CrossLow;  // bounds across it
  double CrossHigh;
};

class TContactFinder {
 public:
  TContactFinder(const TRegion& A, const TRegion& B, double Tol) : FA(A), FB(B), FTol(Tol) {}
  // True as soon as overlap is certain; otherwise every contact is in the covers.
  bool Run();
  std::vector<TCover>& CoversOfA() { return FCoversOfA; }
  std::vector<TCover>& CoversOfB() { return FCoversOfB; }

 private:
  std::vector<TSwept> Swept(const TRegion& Region, const TVRect2D& Common, bool AlongX) const;
  bool MeetActive(const TSwept& Item, std::vector<TSwept>& Active, bool ItemIsA);
  bool MeetEdges(int EdgeOfA, int EdgeOfB);
  bool SharesMaterial(const TVLine2D& Edge, const TSpan& Span) const;

  const TRegion& FA;
  const TRegion& FB;
  const double FTol;
  std::vector<TCover> FCoversOfA;
  std::vector<TCover> FCoversOfB;
};

// Where |Offset + Slope * t| <= Tol, within [0, 1].
TSpan Band(double Offset, double Slope, double Tol) {
  if (Slope == 0) return std::fabs(Offset) <= Tol ? TSpan{0, 1} : TSpan{};
  const auto [low, high] = std::minmax({(-Tol - Offset) / Slope, (Tol - Offset) / Slope});
  return {std::max(low, 0.0), std::min(high, 1.0)};
}

// The parameters of Edge within Tol of Other: a line meets what surrounds a segment, which is convex, in one piece. It
// is the hull of the pieces in the two discs around the ends and in the rectangle between them.
TSpan NearSpan(const TVLine2D& Edge, const TVLine2D& Other, double Tol) {
  const TPoint2D e = Edge.EndPoint - Edge.StartPoint;
  const TPoint2D f = Other.EndPoint - Other.StartPoint;
  const double length = f.Mag();
  const TPoint2D between = Edge.StartPoint - Other.StartPoint;
  TSpan span;
  const TSpan beside = Band(f.CrossMul(between) / length, f.CrossMul(e) / length, Tol);
  const TSpan within = Band(f.DotMul(between) / length - length / 2, f.DotMul(e) / length, length / 2);
  const double low = std::max(beside.From, within.From);
  const double high = std::min(beside.To, within.To);
  if (low <= high) span.Expand(low, high);
  const double square = e.DotMul(e);
  for (const TPoint2D& end : {Other.StartPoint, Other.EndPoint}) {
    const TPoint2D toEnd = end - Edge.StartPoint;
    const double foot = e.DotMul(toEnd) / square;
    const double distance = std::fabs(e.CrossMul(toEnd)) / std::sqrt(square);
    if (distance > Tol) continue;
    const double half = std::sqrt((Tol - distance) * (Tol + distance) / square);
    if (foot - half <= 1 && foot + half >= 0) span.Expand(std::max(foot - half, 0.0), std::min(foot + half, 1.0));
  }
  return span;
}

// The ends of Edge lie on either side of the line through Other, both more than Tol away.
bool PassesThrough(const TVLine2D& Edge, const TVLine2D& Other, double Tol) {
  const TPoint2D f = Other.EndPoint - Other.StartPoint;
  const double limit = Tol * f.Mag();
  const double start = f.CrossMul(Edge.StartPoint - Other.StartPoint);
  const double end = f.CrossMul(Edge.EndPoint - Other.StartPoint);
  return (start > limit && end < -limit) || (start < -limit && end > limit);
}

// Same direction, so nearly that the shorter one may stay within Tol of the other all along.
bool RunAlong(const TVLine2D& E, const TVLine2D& F, double Tol) {
  const TPoint2D e = E.EndPoint - E.StartPoint;
  const TPoint2D f = F.EndPoint - F.StartPoint;
  return e.DotMul(f) > 0 && std::fabs(e.CrossMul(f)) <= 2 * Tol * std::max(e.Mag(), f.Mag());
}

bool TContactFinder::Run() {
  const TVRect2D common = FA.Box().Inflate(FTol).Intersect(FB.Box().Inflate(FTol));
  if (!common.IsValid()) return false;
  const bool alongX = common.Width() >= common.Height();
  const std::vector<TSwept> ofA = Swept(FA, common, alongX);
  const std::vector<TSwept> ofB = Swept(FB, common, alongX);
  std::vector<TSwept> activeA;
  std::vector<TSwept> activeB;
  auto a = ofA.begin();
  auto b = ofB.begin();
  while (a != ofA.end() || b != ofB.end()) {
    const bool takeA = b == ofB.end() || (a != ofA.end() && a->Low <= b->Low);
    if (MeetActive(takeA ? *a : *b, takeA ? activeB : activeA, takeA)) return true;
    if (takeA)
      activeA.push_back(*a++);
    else
      activeB.push_back(*b++);
  }
  return false;
}

// The edges that reach the common box, from low to high; bounds are widened by half the tolerance each.
std::vector<TSwept> TContactFinder::Swept(const TRegion& Region, const TVRect2D& Common, bool AlongX) const {
  std::vector<TSwept> result;
  const std::span<const TRegion::TEdge> edges = Region.Edges();
  for (int i = 0; i < Size(edges); ++i) {
    const TVRect2D box = TVRect2D(edges[i].Line.StartPoint, edges[i].Line.EndPoint).Inflate(FTol / 2);
    if (box.Left > Common.Right || box.Right < Common.Left || box.Bottom > Common.Top || box.Top < Common.Bottom)
      continue;
    if (AlongX)
      result.push_back({i, box.Left, box.Right, box.Bottom, box.Top});
    else
      result.push_back({i, box.Bottom, box.Top, box.Left, box.Right});
  }
  SortBy(result, [](const TSwept& P, const TSwept& Q) { return Sign(P.Low, Q.Low); });
  return result;
}

// Compares Item with the active edges of the other region and drops those that end before it.
bool TContactFinder::MeetActive(const TSwept& Item, std::vector<TSwept>& Active, bool ItemIsA) {
  for (std::size_t i = 0; i < Active.size();) {
    const TSwept& other = Active[i];
    if (other.High < Item.Low) {
      Active[i] = Active.back();
      Active.pop_back();
      continue;
    }
    ++i;
    if (other.CrossLow > Item.CrossHigh || other.CrossHigh < Item.CrossLow) continue;
    if (ItemIsA ? MeetEdges(Item.Edge, other.Edge) : MeetEdges(other.Edge, Item.Edge)) return true;
  }
  return false;
}

bool TContactFinder::MeetEdges(int EdgeOfA, int EdgeOfB) {
  const TVLine2D& a = FA.Edges()[static_cast<std::size_t>(EdgeOfA)].Line;
  const TVLine2D& b = FB.Edges()[static_cast<std::size_t>(EdgeOfB)].Line;
  if (PassesThrough(a, b, FTol) && PassesThrough(b, a, FTol)) return true;
  const TSpan onA = NearSpan(a, b, FTol);
  if (!onA.IsEmpty()) FCoversOfA.push_back({EdgeOfA, onA.From, onA.To});
  const TSpan onB = NearSpan(b, a, FTol);
  if (!onB.IsEmpty()) FCoversOfB.push_back({EdgeOfB, onB.From, onB.To});
  return RunAlong(a, b, FTol) && !onA.IsEmpty() && SharesMaterial(a, onA);
}

// Edge runs along an edge of the other region in the same direction: is there material of both on their left?
bool TContactFinder::SharesMaterial(const TVLine2D& Edge, const TSpan& Span) const {
  const TPoint2D direction = Edge.EndPoint - Edge.StartPoint;
  const double length = direction.Mag();
  if ((Span.To - Span.From) * length <= 4 * FTol) return false;  // a contact at a corner
  const TPoint2D beside = Edge.EvalPoint((Span.From + Span.To) / 2) + direction.RotateCcw90() * (3 * FTol / length);
  return FA.HoldsDeep(beside, FTol) && FB.HoldsDeep(beside, FTol);
}

// True if a piece of the outline that no cover reaches lies in Other. Such pieces keep away from the outline of Other,
// so one point speaks for a piece, also across vertices.
bool FreePieceInside(const TRegion& Region, std::vector<TCover>& Covers, const TRegion& Other) {
  SortBy(Covers, [](const TCover& P, const TCover& Q) {
    return P.Edge != Q.Edge ? Sign(P.Edge, Q.Edge) : Sign(P.From, Q.From);
  });
  const std::span<const TRegion::TEdge> edges = Region.Edges();
  auto cover = Covers.begin();
  bool known = false;  // the piece that reaches the start of the edge has been looked at
  for (int i = 0; i < Size(edges); ++i) {
    if (edges[i].StartsRing) known = false;
    double covered = -1;  // nothing yet, not even the start
    const auto isInside = [&](double From, double To) {
      const bool continues = From < 0 && known;
      return !continues && Other.Holds(edges[i].Line.EvalPoint((std::max(From, 0.0) + To) / 2));
    };
    for (; cover != Covers.end() && cover->Edge == i; ++cover) {
      if (cover->From > std::max(covered, 0.0) && isInside(covered, cover->From)) return true;
      covered = std::max(covered, cover->To);
    }
    if (covered < 1 && isInside(covered, 1)) return true;
    known = covered < 1;
  }
  return false;
}

}  // namespace

void TRegion::AddContour(const TVPolyline2D& Contour) {
  if (Contour.Area() == 0) return;
  const std::size_t first = FEdges.size();
  TPoint2D from = Contour.Vertices().front();
  const auto addTo = [&](const TPoint2D& To) {
    if ((To - from).IsZeroLength(kZeroLength)) return;
    FEdges.push_back({{from, To}, FEdges.size() == first});
    from = To;
  };
  for (const TPoint2D& vertex : Contour.Vertices()) addTo(vertex);
  addTo(Contour.Vertices().front());
  FBox.ExpandInPlace(Contour.BoundBox());
}

void TRegion::AddContour(TVPolyline2D Contour, bool Clockwise) {
  Contour.SetIsClockwise(Clockwise);
  AddContour(Contour);
}

bool TRegion::Holds(const TPoint2D& Point) const {
  int winding = FUnbounded ? 1 : 0;
  for (const TEdge& edge : FEdges) winding += WindingStep(edge.Line, Point);
  return winding > 0;
}

bool TRegion::HoldsDeep(const TPoint2D& Point, double Depth) const {
  if (!Holds(Point)) return false;
  double t = 0;
  return std::none_of(FEdges.begin(), FEdges.end(),
                      [&](const TEdge& Edge) { return Edge.Line.SegmentDistanceTo(Point, t) <= Depth; });
}

bool RegionsOverlap(const TRegion& A, const TRegion& B, double Tol) {
  if (A.IsEmpty() || B.IsEmpty()) return false;
  if (A.IsUnbounded() && B.IsUnbounded()) return true;
  if (!A.IsUnbounded() && !B.IsUnbounded() && !A.Box().Intersect(B.Box()).IsValid()) return false;
  TContactFinder finder(A, B, Tol);
  return finder.Run() || FreePieceInside(A, finder.CoversOfA(), B) || FreePieceInside(B, finder.CoversOfB(), A);
}

}  // namespace platenest::detail
