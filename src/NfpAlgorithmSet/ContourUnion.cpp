#include "ContourUnion.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>
#include <vector>

#include "SimpleContour.h"
#include "platenest/foundation/Types.h"

namespace platenest::detail {

namespace {

__extension__ using TWide = __int128;
using TUnits = ClipperLib::cInt;

constexpr int kNone = -1;
constexpr int kMostPoints = 400;  // beyond, pairs of edges may cost more than a union
constexpr std::size_t kMostCrossings = 60;
constexpr TUnits kApart = 3;  // path units; nearer things may change places by rounding

// Twice the area of the triangle, exact.
TWide Turn(const TIntPoint& A, const TIntPoint& B, const TIntPoint& C) {
  return static_cast<TWide>(B.X - A.X) * (C.Y - B.Y) - static_cast<TWide>(B.Y - A.Y) * (C.X - B.X);
}

int Side(const TIntPoint& A, const TIntPoint& B, const TIntPoint& C) {
  const TWide turn = Turn(A, B, C);
  return (turn > 0) - (turn < 0);
}

bool IsBelow(const TIntPoint& A, const TIntPoint& B) {
  return A.Y < B.Y || (A.Y == B.Y && A.X < B.X);
}

TUnits HalfAwayFromZero(double V) {
  return static_cast<TUnits>(V < 0 ? V - 0.5 : V + 0.5);
}

// An edge of a contour with its extent.
struct TSpan {
  TIntPoint Start;
  TIntPoint End;
  TUnits Left;
  TUnits Right;
  int Index;
  int Next;  // index of the edge that follows

  TSpan(const TIntPoint& AStart, const TIntPoint& AEnd, int AIndex, int ANext)
      : Start(AStart),
        End(AEnd),
        Left(std::min(AStart.X, AEnd.X)),
        Right(std::max(AStart.X, AEnd.X)),
        Index(AIndex),
        Next(ANext) {}

  bool IsLevel() const { return Start.Y == End.Y; }
  const TIntPoint& Top() const { return Start.Y >= End.Y ? Start : End; }
  // Change of x per unit of y; not for level edges.
  double Slope() const { return static_cast<double>(Start.X - End.X) / static_cast<double>(Start.Y - End.Y); }
  double XAt(TUnits Y) const { return static_cast<double>(Top().X) + Slope() * static_cast<double>(Y - Top().Y); }
};

bool AreNeighbours(const TSpan& A, const TSpan& B) {
  return A.Next == B.Index || B.Next == A.Index;
}

enum class TMeeting { None, Crossing, Touch };

// For edges that overlap in x.
TMeeting Meet(const TSpan& A, const TSpan& B) {
  if (std::max(A.Start.Y, A.End.Y) < std::min(B.Start.Y, B.End.Y) ||
      std::max(B.Start.Y, B.End.Y) < std::min(A.Start.Y, A.End.Y))
    return TMeeting::None;
  const int startB = Side(A.Start, A.End, B.Start);
  const int endB = Side(A.Start, A.End, B.End);
  if (startB * endB > 0) return TMeeting::None;
  const int startA = Side(B.Start, B.End, A.Start);
  const int endA = Side(B.Start, B.End, A.End);
  if (startA * endA > 0) return TMeeting::None;
  return startA * endA < 0 && startB * endB < 0 ? TMeeting::Crossing : TMeeting::Touch;
}

// Where the edges cross, with Clipper's way of rounding.
TIntPoint CrossingOf(const TSpan& A, const TSpan& B) {
  if (B.IsLevel()) return CrossingOf(B, A);
  if (A.IsLevel()) {
    const TUnits rise = A.Start.Y - B.Top().Y;
    return {B.Top().X + HalfAwayFromZero(B.Slope() * static_cast<double>(rise)), A.Start.Y};
  }
  const double slopeA = A.Slope();
  const double slopeB = B.Slope();
  if (slopeB == 0) return CrossingOf(B, A);
  if (slopeA == 0) {
    const double atZero = static_cast<double>(B.Top().Y) - static_cast<double>(B.Top().X) / slopeB;
    return {A.Start.X, HalfAwayFromZero(static_cast<double>(A.Start.X) / slopeB + atZero)};
  }
  const double atZeroA = static_cast<double>(A.Top().X) - static_cast<double>(A.Top().Y) * slopeA;
  const double atZeroB = static_cast<double>(B.Top().X) - static_cast<double>(B.Top().Y) * slopeB;
  const double y = (atZeroB - atZeroA) / (slopeA - slopeB);
  const double x = std::fabs(slopeA) < std::fabs(slopeB) ? slopeA * y + atZeroA : slopeB * y + atZeroB;
  return {HalfAwayFromZero(x), HalfAwayFromZero(y)};
}

bool AreApart(const TIntPoint& A, const TIntPoint& B) {
  return std::llabs(A.X - B.X) >= kApart || std::llabs(A.Y - B.Y) >= kApart;
}

class TArrangement {
 public:
  bool Unite(const TContours& Contours, TPaths& Paths);

 private:
  struct TCrossing {
    int Edge;
    int Other;
    TIntPoint Point;
    int Gain;  // what the winding number left of Edge gains here
  };
  // A vertex, or one of the two visits of a crossing, in the order of the contour.
  struct TStop {
    TIntPoint Point;
    int Partner;  // the other visit of the crossing
    int Winding;  // left of the piece from here to the next stop
    int Next;
  };

  struct TVisit {
    int Edge;
    int Other;
    int Stop;
  };

  void LaySpans(std::span<const TIntPoint> Contour);
  template <class TTake>
  bool SweepMeetings(TTake Take);
  bool FindCrossings();
  bool IsClear(const TCrossing& Crossing);
  bool SortCrossings();
  int WindingAround(const TIntPoint& Point, int FirstLeftOut, int PastLeftOut) const;
  bool WalkStops(std::span<const TIntPoint> Contour, int FirstEdge);
  void JoinVisits();
  bool TraceRegion(TPaths& Paths);
  bool TraceContour(int First, TPath& Contour);
  bool AreApartContours(const TPaths& Paths);

  std::vector<TSpan> FSpans;          // by index
  std::vector<TSpan> FSwept;          // by left end
  std::vector<TUnits> FLevels;        // of all vertices, ascending
  std::vector<TCrossing> FCrossings;  // each twice, by edge and along it
  std::vector<TStop> FStops;
  std::vector<TVisit> FVisits;
};

void TArrangement::LaySpans(std::span<const TIntPoint> Contour) {
  const int count = Size(Contour);
  const int first = Size(FSpans);
  for (int i = 0; i < count; ++i) {
    const int next = i + 1 == count ? 0 : i + 1;
    FSpans.emplace_back(Contour[i], Contour[next], first + i, first + next);
  }
}

// False as soon as Take is.
template <class TTake>
bool TArrangement::SweepMeetings(TTake Take) {
  FSwept = FSpans;
  std::ranges::sort(FSwept, {}, &TSpan::Left);
  for (auto edge = FSwept.begin(); edge != FSwept.end(); ++edge) {
    for (auto other = edge + 1; other != FSwept.end() && other->Left <= edge->Right; ++other) {
      if (AreNeighbours(*edge, *other)) continue;
      const TMeeting meeting = Meet(*edge, *other);
      if (meeting != TMeeting::None && !Take(*edge, *other, meeting)) return false;
    }
  }
  return true;
}

bool TArrangement::FindCrossings() {
  FCrossings.clear();
  return SweepMeetings([this](const TSpan& edge, const TSpan& other, TMeeting meeting) {
    if (meeting == TMeeting::Touch || FCrossings.size() >= 2 * kMostCrossings) return false;
    const TIntPoint point = CrossingOf(edge, other);
    const int gain = Side(other.Start, other.End, edge.End);
    FCrossings.push_back({edge.Index, other.Index, point, gain});
    FCrossings.push_back({other.Index, edge.Index, point, -gain});
    return true;
  });
}

// Clipper looks at the order of edges at the levels of vertices: there the two must be apart, and the crossing from the
// ends of both.
bool TArrangement::IsClear(const TCrossing& Crossing) {
  const TSpan& edge = FSpans[Crossing.Edge];
  const TSpan& other = FSpans[Crossing.Other];
  if (!AreApart(Crossing.Point, edge.Start) || !AreApart(Crossing.Point, edge.End)) return false;
  if (edge.IsLevel() || other.IsLevel()) return true;
  const auto above = std::ranges::lower_bound(FLevels, Crossing.Point.Y);
  if (above == FLevels.end() || above == FLevels.begin() || *above == Crossing.Point.Y) return false;
  const auto areApartAt = [&](TUnits y) {
    return std::fabs(edge.XAt(y) - other.XAt(y)) >= static_cast<double>(kApart);
  };
  return areApartAt(*above) && areApartAt(above[-1]);
}

bool TArrangement::SortCrossings() {
  if (FCrossings.empty()) return true;
  FLevels.clear();
  for (const TSpan& span : FSpans) FLevels.push_back(span.Start.Y);
  std::ranges::sort(FLevels);
  for (const TCrossing& crossing : FCrossings)
    if (!IsClear(crossing)) return false;
  const auto distance = [&](const TCrossing& crossing) {
    const TIntPoint& start = FSpans[crossing.Edge].Start;
    return std::llabs(crossing.Point.X - start.X) + std::llabs(crossing.Point.Y - start.Y);
  };
  std::ranges::sort(FCrossings, [&](const TCrossing& a, const TCrossing& b) {
    return a.Edge != b.Edge ? a.Edge < b.Edge : distance(a) < distance(b);
  });
  for (std::size_t i = 1; i < FCrossings.size(); ++i)
    if (FCrossings[i - 1].Edge == FCrossings[i].Edge && !AreApart(FCrossings[i - 1].Point, FCrossings[i].Point))
      return false;
  return true;
}

// Of all contours but the one that has the edges left out.
int TArrangement::WindingAround(const TIntPoint& Point, int FirstLeftOut, int PastLeftOut) const {
  int winding = 0;
  for (const TSpan& span : FSpans) {
    if (span.Index >= FirstLeftOut && span.Index < PastLeftOut) continue;
    const bool isRising = span.Start.Y <= Point.Y && Point.Y < span.End.Y;
    const bool isFalling = span.End.Y <= Point.Y && Point.Y < span.Start.Y;
    if (isRising && Side(span.Start, span.End, Point) > 0) ++winding;
    if (isFalling && Side(span.Start, span.End, Point) < 0) --winding;
  }
  return winding;
}

// Outside a contour its own winding number is 0, and its lowest vertex is next to that.
bool TArrangement::WalkStops(std::span<const TIntPoint> Contour, int FirstEdge) {
  const int count = Size(Contour);
  const int lowest = static_cast<int>(std::ranges::min_element(Contour, IsBelow) - Contour.begin());
  const TIntPoint& before = Contour[lowest == 0 ? count - 1 : lowest - 1];
  const TIntPoint& after = Contour[lowest + 1 == count ? 0 : lowest + 1];
  int winding = Turn(before, Contour[lowest], after) > 0 ? 1 : 0;
  winding += WindingAround(Contour[lowest], FirstEdge, FirstEdge + count);
  const int first = Size(FStops);
  const auto stop = [&](const TIntPoint& point, int partner) {
    FStops.push_back({point, partner, winding, Size(FStops) + 1});
  };
  for (int k = 0; k < count; ++k) {
    const int vertex = lowest + k < count ? lowest + k : lowest + k - count;
    const int edge = FirstEdge + vertex;
    stop(Contour[vertex], kNone);
    auto crossing = std::ranges::lower_bound(FCrossings, edge, {}, &TCrossing::Edge);
    for (; crossing != FCrossings.end() && crossing->Edge == edge; ++crossing) {
      winding += crossing->Gain;
      FVisits.push_back({edge, crossing->Other, Size(FStops)});
      stop(crossing->Point, kNone);
    }
  }
  FStops.back().Next = first;
  return winding == FStops[first].Winding;
}

// Two edges cross in one point at most, so they name the crossing.
void TArrangement::JoinVisits() {
  const auto edges = [](const TVisit& visit) { return std::pair(visit.Edge, visit.Other); };
  std::ranges::sort(FVisits, {}, edges);
  for (const TVisit& visit : FVisits) {
    const auto other = std::ranges::lower_bound(FVisits, std::pair(visit.Other, visit.Edge), {}, edges);
    FStops[visit.Stop].Partner = other->Stop;
  }
}

bool TArrangement::TraceContour(int First, TPath& Contour) {
  int stop = First;
  do {
    Contour.push_back(FStops[stop].Point);
    FStops[stop].Winding = 0;
    stop = FStops[stop].Next;
    if (FStops[stop].Partner != kNone) stop = FStops[stop].Partner;
    if (stop != First && FStops[stop].Winding != 1) return false;
  } while (stop != First);
  DropFlatVertices(Contour, 0);
  return !Contour.empty();
}

bool TArrangement::TraceRegion(TPaths& Paths) {
  Paths.clear();
  for (int i = 0; i < Size(FStops); ++i)
    if (FStops[i].Winding == 1 && !TraceContour(i, Paths.emplace_back())) return false;
  return true;
}

bool TArrangement::AreApartContours(const TPaths& Paths) {
  FSpans.clear();
  for (const TPath& path : Paths) LaySpans(path);
  return SweepMeetings([](const TSpan&, const TSpan&, TMeeting) { return false; });
}

bool TArrangement::Unite(const TContours& Contours, TPaths& Paths) {
  FSpans.clear();
  FStops.clear();
  FVisits.clear();
  for (int i = 0; i < Contours.Count(); ++i) LaySpans(Contours[i]);
  if (!FindCrossings() || !SortCrossings()) return false;
  for (int i = 0; i < Contours.Count(); ++i)
    if (!WalkStops(Contours[i], Contours.First(i))) return false;
  JoinVisits();
  if (!TraceRegion(Paths)) return false;
  return FCrossings.empty() || AreApartContours(Paths);
}

}  // namespace

void TContours::Clear() {
  FPoints.clear();
  FEnds.clear();
}

void TContours::Add(std::span<const TIntPoint> Contour) {
  const std::size_t begin = FPoints.size();
  FPoints.insert(FPoints.end(), Contour.begin(), Contour.end());
  DropFlatVertices(FPoints, begin);
  if (FPoints.size() > begin) FEnds.push_back(Size(FPoints));
}

bool UniteContours(const TContours& Contours, TPaths& Paths) {
  static thread_local TArrangement arrangement;
  if (Contours.Count() == 1 && IsConvexCounterClockwise(Contours[0])) {
    Paths.clear();
    Paths.emplace_back(Contours[0].begin(), Contours[0].end());
    return true;
  }
  return Contours.Points() <= kMostPoints && arrangement.Unite(Contours, Paths);
}

}  // namespace platenest::detail
