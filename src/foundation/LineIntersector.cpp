#include "platenest/foundation/LineIntersector.h"

#include <algorithm>
#include <cmath>
#include <queue>
#include <set>
#include <utility>

#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"

namespace platenest {

namespace {

__extension__ using Int128 = __int128;
__extension__ using UInt128 = unsigned __int128;

constexpr double kUnitsPerDrawingUnit = 1e7;
// Below it, products of three differences and a coordinate stay within 128 bits.
constexpr double kMaxExtent = 0x1p40;

struct TGridPoint {
  Int64 X = 0;
  Int64 Y = 0;
  friend bool operator==(const TGridPoint&, const TGridPoint&) = default;
};

int Compare(const TGridPoint& A, const TGridPoint& B) {
  return A.X != B.X ? Sign(A.X, B.X) : Sign(A.Y, B.Y);
}

// From the lower end to the higher one in the order of the sweep: left to right, upward where vertical.
struct TSegment {
  TGridPoint Low;
  TGridPoint High;

  Int64 DX() const { return High.X - Low.X; }
  Int64 DY() const { return High.Y - Low.Y; }
  // Positive where Point lies above, left of a vertical one.
  int SideOf(const TGridPoint& Point) const {
    return Sign(static_cast<Int128>(DX()) * (Point.Y - Low.Y), static_cast<Int128>(DY()) * (Point.X - Low.X));
  }
};

// Positive where the direction of S is steeper than that of T.
int CompareSlopes(const TSegment& S, const TSegment& T) {
  return Sign(static_cast<Int128>(S.DY()) * T.DX(), static_cast<Int128>(T.DY()) * S.DX());
}

bool CrossInside(const TSegment& S, const TSegment& T) {
  return S.SideOf(T.Low) * S.SideOf(T.High) < 0 && T.SideOf(S.Low) * T.SideOf(S.High) < 0;
}

struct TProduct {
  UInt128 High;
  UInt128 Low;
  friend auto operator<=>(const TProduct&, const TProduct&) = default;
};

TProduct Multiply(UInt128 A, UInt128 B) {
  constexpr UInt128 mask = ~std::uint64_t{0};
  const UInt128 low = (A & mask) * (B & mask);
  const UInt128 middle1 = (A >> 64) * (B & mask);
  const UInt128 middle2 = (A & mask) * (B >> 64);
  const UInt128 carry = (low >> 64) + (middle1 & mask) + (middle2 & mask);
  return {(A >> 64) * (B >> 64) + (middle1 >> 64) + (middle2 >> 64) + (carry >> 64), (carry << 64) | (low & mask)};
}

// A rational point: the floor of each coordinate and what is left, over a common denominator.
struct TPlace {
  TGridPoint Floor;
  UInt128 RestX = 0;
  UInt128 RestY = 0;
  UInt128 Denominator = 1;

  TPlace() = default;
  explicit TPlace(const TGridPoint& Point) : Floor(Point) {}
  // Where two segments cross that are not parallel.
  TPlace(const TSegment& S, const TSegment& T);

  TPoint2D Value() const {
    const double denominator = static_cast<double>(Denominator);
    return {static_cast<double>(Floor.X) + static_cast<double>(RestX) / denominator,
            static_cast<double>(Floor.Y) + static_cast<double>(RestY) / denominator};
  }
};

TPlace::TPlace(const TSegment& S, const TSegment& T) {
  Int128 along = static_cast<Int128>(T.Low.X - S.Low.X) * T.DY() - static_cast<Int128>(T.Low.Y - S.Low.Y) * T.DX();
  Int128 whole = static_cast<Int128>(S.DX()) * T.DY() - static_cast<Int128>(S.DY()) * T.DX();
  if (whole < 0) {
    along = -along;
    whole = -whole;
  }
  const auto set = [&](Int64 From, Int64 Delta, Int64& Whole, UInt128& Rest) {
    const Int128 product = Delta * along;
    Int128 quotient = product / whole;
    Int128 rest = product % whole;
    if (rest < 0) {
      rest += whole;
      --quotient;
    }
    Whole = From + static_cast<Int64>(quotient);
    Rest = static_cast<UInt128>(rest);
  };
  set(S.Low.X, S.DX(), Floor.X, RestX);
  set(S.Low.Y, S.DY(), Floor.Y, RestY);
  Denominator = static_cast<UInt128>(whole);
}

int CompareRests(UInt128 RestA, UInt128 DenominatorA, UInt128 RestB, UInt128 DenominatorB) {
  if (RestA == 0 || RestB == 0) return Sign(RestA, RestB);
  return Sign(Multiply(RestA, DenominatorB), Multiply(RestB, DenominatorA));
}

int Compare(const TPlace& A, const TPlace& B) {
  if (A.Floor.X != B.Floor.X) return Sign(A.Floor.X, B.Floor.X);
  if (const int byX = CompareRests(A.RestX, A.Denominator, B.RestX, B.Denominator); byX != 0) return byX;
  if (A.Floor.Y != B.Floor.Y) return Sign(A.Floor.Y, B.Floor.Y);
  return CompareRests(A.RestY, A.Denominator, B.RestY, B.Denominator);
}

// Where a segment comes or goes.
struct TEndEvent {
  TGridPoint Point;
  int Segment;
  bool Comes;
};

struct TCrossing {
  TPlace Place;
  int Lower;  // before the crossing
  int Upper;
};

struct TFound {
  int Segment1;
  int Segment2;
  TPlace Place;
};

// The segments that the sweep line meets, from bottom to top. A node is one place in that order; where two neighbours
// cross they change their nodes, so nothing is searched but where a segment comes in.
class TSweep {
 public:
  TSweep(const std::vector<TSegment>& Segments, bool IncludeEndpoints);
  // Ends early once MostHits are found.
  std::vector<TFound> Run(int MostHits);

 private:
  struct TNode {
    mutable int Segment;
  };
  struct TBelow {
    using is_transparent = void;
    const std::vector<TSegment>* Segments;
    // Only ever asked about a segment that starts at the sweep's place.
    bool operator()(const TNode& A, const TNode& B) const;
    bool operator()(const TNode& A, const TGridPoint& P) const { return Side(A, P) > 0; }
    bool operator()(const TGridPoint& P, const TNode& A) const { return Side(A, P) < 0; }
    int Side(const TNode& A, const TGridPoint& P) const {
      return (*Segments)[static_cast<std::size_t>(A.Segment)].SideOf(P);
    }
  };
  using TStatus = std::set<TNode, TBelow>;
  using TNodePlace = TStatus::const_iterator;

  const TSegment& At(int Segment) const { return FSegments[static_cast<std::size_t>(Segment)]; }
  void Come(int Segment);
  void Go(int Segment);
  void Cross(const TCrossing& Crossing);
  void LookAt(TNodePlace Lower);
  void AddEndHits(std::size_t FirstEvent);
  void SortEvents();

  const std::vector<TSegment>& FSegments;
  const bool FIncludeEndpoints;
  std::vector<TEndEvent> FEnds;
  std::vector<TCrossing> FCrossings;
  TStatus FStatus;
  std::vector<TNodePlace> FPlaces;  // node of a segment that is in the status
  std::vector<TFound> FFound;

  struct TLater {
    const std::vector<TCrossing>* Crossings;
    bool operator()(std::size_t A, std::size_t B) const {
      const int order = Compare((*Crossings)[A].Place, (*Crossings)[B].Place);
      return order != 0 ? order > 0 : A > B;
    }
  };
  std::priority_queue<std::size_t, std::vector<std::size_t>, TLater> FQueue;
};

bool TSweep::TBelow::operator()(const TNode& A, const TNode& B) const {
  const TSegment& a = (*Segments)[static_cast<std::size_t>(A.Segment)];
  const TSegment& b = (*Segments)[static_cast<std::size_t>(B.Segment)];
  const bool bComes = Compare(a.Low, b.Low) <= 0;
  const int side = bComes ? a.SideOf(b.Low) : -b.SideOf(a.Low);
  if (side != 0) return side > 0;
  const int steeper = CompareSlopes(b, a);
  return steeper != 0 ? steeper > 0 : A.Segment < B.Segment;
}

TSweep::TSweep(const std::vector<TSegment>& Segments, bool IncludeEndpoints)
    : FSegments(Segments),
      FIncludeEndpoints(IncludeEndpoints),
      FStatus(TBelow{&Segments}),
      FPlaces(Segments.size()),
      FQueue(TLater{&FCrossings}) {}

// At one point segments go first and come last, with the crossings in between.
void TSweep::SortEvents() {
  for (int i = 0; i < Size(FSegments); ++i) {
    if (At(i).Low == At(i).High) continue;
    FEnds.push_back({At(i).Low, i, true});
    FEnds.push_back({At(i).High, i, false});
  }
  SortBy(FEnds, [](const TEndEvent& A, const TEndEvent& B) {
    const int byPoint = Compare(A.Point, B.Point);
    return byPoint != 0 ? byPoint : int{A.Comes} - int{B.Comes};
  });
}

std::vector<TFound> TSweep::Run(int MostHits) {
  SortEvents();
  for (std::size_t i = 0; i < FEnds.size() && Size(FFound) < MostHits;) {
    const TEndEvent& end = FEnds[i];
    if (!FQueue.empty()) {
      const TCrossing next = FCrossings[FQueue.top()];
      const int order = Compare(next.Place, TPlace(end.Point));
      if (order < 0 || (order == 0 && end.Comes)) {
        FQueue.pop();
        Cross(next);
        continue;
      }
    }
    if (FIncludeEndpoints && (i == 0 || !(FEnds[i - 1].Point == end.Point))) AddEndHits(i);
    if (end.Comes)
      Come(end.Segment);
    else
      Go(end.Segment);
    ++i;
  }
  return std::move(FFound);
}

void TSweep::Come(int Segment) {
  const TNodePlace place = FStatus.insert(TNode{Segment}).first;
  FPlaces[static_cast<std::size_t>(Segment)] = place;
  LookAt(place);
  if (place != FStatus.begin()) LookAt(std::prev(place));
}

void TSweep::Go(int Segment) {
  const TNodePlace next = FStatus.erase(FPlaces[static_cast<std::size_t>(Segment)]);
  if (next != FStatus.begin()) LookAt(std::prev(next));
}

// A crossing found twice, or before something came between, is out of date unless its segments are still neighbours.
void TSweep::Cross(const TCrossing& Crossing) {
  const TNodePlace lower = FPlaces[static_cast<std::size_t>(Crossing.Lower)];
  const TNodePlace upper = std::next(lower);
  if (upper == FStatus.end() || upper->Segment != Crossing.Upper) return;
  FFound.push_back({Crossing.Lower, Crossing.Upper, Crossing.Place});
  std::swap(lower->Segment, upper->Segment);
  std::swap(FPlaces[static_cast<std::size_t>(Crossing.Lower)], FPlaces[static_cast<std::size_t>(Crossing.Upper)]);
  LookAt(upper);
  if (lower != FStatus.begin()) LookAt(std::prev(lower));
}

// Notes the crossing of the segment at Lower with the one above it, if it is still to come: then the lower one is the
// steeper one.
void TSweep::LookAt(TNodePlace Lower) {
  const TNodePlace upper = std::next(Lower);
  if (upper == FStatus.end()) return;
  const TSegment& s = At(Lower->Segment);
  const TSegment& t = At(upper->Segment);
  if (CompareSlopes(s, t) <= 0 || !CrossInside(s, t)) return;
  FCrossings.push_back({TPlace(s, t), Lower->Segment, upper->Segment});
  FQueue.push(FCrossings.size() - 1);
}

// All pairs of segments through the point of the events that begin at FirstEvent, of which one ends there.
void TSweep::AddEndHits(std::size_t FirstEvent) {
  const TGridPoint point = FEnds[FirstEvent].Point;
  std::vector<int> ending;
  std::vector<int> passing;
  const auto [first, last] = FStatus.equal_range(point);
  for (TNodePlace place = first; place != last; ++place)
    (At(place->Segment).High == point ? ending : passing).push_back(place->Segment);
  for (std::size_t i = FirstEvent; i < FEnds.size() && FEnds[i].Point == point; ++i)
    if (FEnds[i].Comes) ending.push_back(FEnds[i].Segment);
  for (std::size_t i = 0; i < ending.size(); ++i) {
    for (std::size_t j = i + 1; j < ending.size(); ++j) FFound.push_back({ending[i], ending[j], TPlace(point)});
    for (const int other : passing) FFound.push_back({ending[i], other, TPlace(point)});
  }
}

// How drawing coordinates become integers: (value - Origin) * Scale.
struct TGrid {
  TPoint2D Origin;
  double Scale = kUnitsPerDrawingUnit;

  TGridPoint Of(const TPoint2D& Point) const {
    return {Round((Point.X - Origin.X) * Scale), Round((Point.Y - Origin.Y) * Scale)};
  }
  TPoint2D Back(const TPoint2D& Point) const { return Origin + Point / Scale; }
};

// Its origin is a whole number of drawing units, so that rounding means the same wherever a drawing lies.
TGrid GridFor(const TVLine2DList& Lines) {
  TPoint2D low{HUGE_VAL, HUGE_VAL};
  TPoint2D high{-HUGE_VAL, -HUGE_VAL};
  for (const TVLine2D& line : Lines) {
    for (const TPoint2D& end : {line.StartPoint, line.EndPoint}) {
      low = {std::min(low.X, end.X), std::min(low.Y, end.Y)};
      high = {std::max(high.X, end.X), std::max(high.Y, end.Y)};
    }
  }
  TGrid grid;
  grid.Origin = {std::floor(low.X), std::floor(low.Y)};
  const double extent = std::max(high.X - grid.Origin.X, high.Y - grid.Origin.Y);
  while (extent * grid.Scale > kMaxExtent && std::isfinite(extent)) grid.Scale /= 2;
  return grid;
}

}  // namespace

TLineIntersector::TLineIntersector(TVLine2DList Lines, bool IncludeEndpoints)
    : FLines(std::move(Lines)), FIncludeEndpoints(IncludeEndpoints) {}

void TLineIntersector::FindInterSect(int MostHits) {
  FIntersections.clear();
  const TGrid grid = GridFor(FLines);
  std::vector<TSegment> segments;
  segments.reserve(FLines.size());
  for (const TVLine2D& line : FLines) {
    TSegment segment{grid.Of(line.StartPoint), grid.Of(line.EndPoint)};
    if (Compare(segment.Low, segment.High) > 0) std::swap(segment.Low, segment.High);
    segments.push_back(segment);
  }
  const std::vector<TFound> found = TSweep(segments, FIncludeEndpoints).Run(MostHits);
  FIntersections.reserve(found.size());
  for (const TFound& hit : found) {
    const auto [first, second] = std::minmax(hit.Segment1, hit.Segment2);
    FIntersections.push_back({first, second, grid.Back(hit.Place.Value())});
  }
  SortBy(FIntersections, [](const TLineHit& A, const TLineHit& B) {
    return A.Line1 != B.Line1 ? Sign(A.Line1, B.Line1) : Sign(A.Line2, B.Line2);
  });
}

}  // namespace platenest
