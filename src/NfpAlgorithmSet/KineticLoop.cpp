#include "platenest/NfpAlgorithmSet/KineticLoop.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <utility>

#include "SpareBuffers.h"
#include "platenest/foundation/PolygonBasicAlgo.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"

namespace platenest {

using detail::TSpareBuffers;

namespace {

constexpr double kAnglesPerRadian = 1e8;
constexpr double kDirectionLength = 100;
constexpr double kNoArea = 1e-12;      // drawing units squared
constexpr double kClosingGap = 0.001;  // drawing units from here on
constexpr double kShortEdge = 0.001;
constexpr double kNoEdge = 1e-6;
constexpr double kStraightSine = 1.5e-5;
constexpr double kNeedleArea = 0.001;
constexpr double kNeedleMargin = 0.0005;

[[noreturn]] void RaiseBadContour() {
  throw TNestError("图形存在重复边或者自交");
}

// The edges of a contour in their order, while vertices are removed from it.
class TEdgeRing {
 public:
  explicit TEdgeRing(const TVPolyline2D& Contour) : FCount(Contour.Count()) {
    if (FCount < 3) RaiseBadContour();
    FEdges = TSpareBuffers<TKMPEdge>::Take(Contour.size());
    for (const TPoint2D& point : Contour) FEdges.emplace_back(point);
    for (int i = 0; i < FCount; ++i) Link(i, i + 1 == FCount ? 0 : i + 1);
  }

  // Two walks, both looking at an edge and removing the vertex at its end, so that its start stays.
  void Clean() {
    const int last = RemoveShortEdges();
    RemoveStraightVertices(last);
  }

  void SetAnglesAndTurns() {
    for (TKMPEdge& edge : FEdges) {
      if (!IsAlive(edge)) continue;
      const int angle = Round<int>(edge.FDirectionVector.Angle() * kAnglesPerRadian);
      edge.FAngle = angle == FULL_TURN_ANGLE ? 0 : angle;
      TKMPEdge& next = FEdges[edge.FLpNext];
      next.FIsConvex = edge.FDirectionVector.CrossMul(next.FDirectionVector) < 0;
    }
  }

  // Angles and turns are those of the true vectors, so this comes last.
  void RescaleDirections() {
    for (TKMPEdge& edge : FEdges) {
      if (!IsAlive(edge)) continue;
      if (!(edge.FLength > 0) || !std::isfinite(edge.FLength)) RaiseBadContour();
      edge.FDirectionVector = edge.FDirectionVector * (kDirectionLength / edge.FLength);
    }
  }

  // The edges that stay, with their links.
  std::vector<TKMPEdge> Take() {
    if (FCount == Size(FEdges)) return std::move(FEdges);
    std::vector<int> places(FEdges.size(), -1);
    int count = 0;
    for (std::size_t i = 0; i < FEdges.size(); ++i)
      if (IsAlive(FEdges[i])) places[i] = count++;
    std::erase_if(FEdges, [](const TKMPEdge& Edge) { return !IsAlive(Edge); });
    for (TKMPEdge& edge : FEdges) edge.FLpNext = places[edge.FLpNext];
    return std::move(FEdges);
  }

 private:
  static bool IsAlive(const TKMPEdge& Edge) { return Edge.FLpNext >= 0; }

  void Link(int Edge, int Next) { FEdges[Edge].SetLpNext(Next, FEdges[Next]); }

  // Returns the index of the edge that is gone.
  int RemoveNext(int Edge) {
    if (FCount == 3) RaiseBadContour();
    const int removed = FEdges[Edge].FLpNext;
    Link(Edge, FEdges[removed].FLpNext);
    FEdges[removed].FLpNext = -1;
    --FCount;
    return removed;
  }

  // Returns the last edge, which is not looked at: its end is the first vertex.
  int RemoveShortEdges() {
    int current = 0;
    while (FEdges[current].FLpNext != 0) {
      if (FEdges[current].FLength < kShortEdge)
        RemoveNext(current);
      else
        current = FEdges[current].FLpNext;
    }
    return current;
  }

  // Straight is an edge and its next also where they fold back.
  bool LosesItsEnd(const TKMPEdge& Edge) const {
    if (Edge.FLength < kNoEdge) return true;
    const TKMPEdge& next = FEdges[Edge.FLpNext];
    const double sine = Edge.FDirectionVector.CrossMul(next.FDirectionVector) / (Edge.FLength * next.FLength);
    return std::fabs(sine) < kStraightSine;
  }

  // Once round from Start. The start itself may be swallowed by the edge before it; then that edge ends the round.
  void RemoveStraightVertices(int Start) {
    int current = Start;
    bool isRound = false;
    do {
      while (LosesItsEnd(FEdges[current])) isRound |= RemoveNext(current) == Start;
      current = FEdges[current].FLpNext;
    } while (!isRound && current != Start);
  }

  std::vector<TKMPEdge> FEdges;
  int FCount;
};

// The box of a contour that is next to nothing. Its sides are to have at least the margins on both sides, or they would
// be cleaned away where rounding makes them a little shorter.
TVPolyline2D BoxAround(const TVPolyline2D& Contour) {
  TVRect2D box = Contour.BoundBox();
  if (!box.IsValid()) return {};
  constexpr double infinity = std::numeric_limits<double>::infinity();
  box = box.Inflate(kNeedleMargin);
  while (box.Width() < 2 * kNeedleMargin) box.Right = std::nextafter(box.Right, infinity);
  while (box.Height() < 2 * kNeedleMargin) box.Top = std::nextafter(box.Top, infinity);
  TVPolyline2D contour(box);
  contour.SetIsClockwise(Contour.IsClockwise());
  return contour;
}

TVPolyline2D LargestSimplePart(const TVPolyline2D& Contour) {
  TVPolyline2DList parts = TPolygonBasicAlgo::PolygonSimplify(Contour, kPathScale);
  return parts.empty() ? TVPolyline2D() : std::move(parts.front());
}

// Whatever goes wrong in Action is told as a bad contour.
template <class Action>
auto Guarded(Action Act) {
  try {
    return Act();
  } catch (const std::exception&) {
    RaiseBadContour();
  }
}

}  // namespace

void TKMPLoop::Initialize(TVPolyline2D& APoly) {
  try {
    InitLoop(APoly);
  } catch (const TNestError&) {
    TVPolyline2D repaired = Guarded(
        [&APoly] { return std::fabs(APoly.Area()) < kNeedleArea ? BoxAround(APoly) : LargestSimplePart(APoly); });
    InitLoop(repaired);
  }
}

void TKMPLoop::InitLoop(TVPolyline2D& APoly) {
  Guarded([&] {
    if (std::fabs(FArea) <= kNoArea) FArea = APoly.Area();
    if (!APoly.empty() && std::fabs(APoly.back().X - APoly.front().X) < kClosingGap &&
        std::fabs(APoly.back().Y - APoly.front().Y) < kClosingGap)
      APoly.pop_back();
    TEdgeRing ring(APoly);
    ring.Clean();
    ring.SetAnglesAndTurns();
    ring.RescaleDirections();
    FillTable(ring.Take());
  });
}

void TKMPLoop::FillTable(std::vector<TKMPEdge> Ring) {
  struct TPlaced {
    int Angle;
    int Index;  // in Ring
  };
  std::vector<TPlaced> order = TSpareBuffers<TPlaced>::Take(Ring.size());
  for (int i = 0; i < Size(Ring); ++i) order.push_back({Ring[i].FAngle, i});
  SortBy(order, [](const TPlaced& A, const TPlaced& B) { return Sign(A.Angle, B.Angle); });
  std::vector<int> first;
  first.reserve(Ring.size() + 1);
  for (int begin = 0; begin < Size(order);) {
    int end = begin + 1;
    while (end < Size(order) && order[end].Angle == order[begin].Angle) ++end;
    std::reverse(order.begin() + begin + 1, order.begin() + end);
    first.push_back(begin);
    begin = end;
  }
  first.push_back(Size(order));
  std::vector<int> places = TSpareBuffers<int>::Take(Ring.size());
  places.resize(Ring.size());
  for (int place = 0; place < Size(order); ++place) places[order[place].Index] = place;
  std::vector<TKMPEdge> edges;
  edges.reserve(Ring.size());
  for (const TPlaced& placed : order) {
    edges.push_back(Ring[placed.Index]);
    edges.back().FLpNext = places[edges.back().FLpNext];
  }
  FEdges = std::move(edges);
  FFirst = std::move(first);
  TSpareBuffers<TPlaced>::Give(std::move(order));
  TSpareBuffers<int>::Give(std::move(places));
  TSpareBuffers<TKMPEdge>::Give(std::move(Ring));
}

TVPolyline2D TKMPLoop::GetPolyline() const {
  TVPolyline2D polyline;
  if (FEdges.empty()) return polyline;
  polyline.reserve(FEdges.size() + 1);
  int edge = 0;
  do {
    polyline.push_back(FEdges[edge].FLocation);
    edge = FEdges[edge].FLpNext;
  } while (edge != 0);
  polyline.push_back(FEdges.front().FLocation);
  return polyline;
}

TVRect2D TKMPLoop::GetBoundbox() const {
  TVRect2D box = TVRect2D::InvalidRect;
  for (const TKMPEdge& edge : FEdges) box.ExpandInPlace(TVRect2D(edge.FLocation));
  return box;
}

bool TKMPLoop::IsConvex() const {
  return GetPolyline().IsConvexPolygon();
}

int TKMPLoop::FindFirstEqualLarger(int Angle) const {
  int low = 0;
  int high = Count();
  while (low < high) {
    const int middle = low + (high - low) / 2;
    if ((*this)[middle].FAngle < Angle)
      low = middle + 1;
    else
      high = middle;
  }
  return low == Count() ? -1 : low;
}

}  // namespace platenest
