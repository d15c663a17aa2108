#include "TrailUnion.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

#include "platenest/foundation/Types.h"

namespace platenest::detail {

namespace {

__extension__ using TWide = __int128;

constexpr int kNone = -1;
constexpr int kMostChords = 4;

// Twice the area of the triangle, exact.
TWide Turn(const TIntPoint& A, const TIntPoint& B, const TIntPoint& C) {
  return static_cast<TWide>(B.X - A.X) * (C.Y - B.Y) - static_cast<TWide>(B.Y - A.Y) * (C.X - B.X);
}

bool SameBits(const TPoint2D& A, const TPoint2D& B) {
  return A.X == B.X && A.Y == B.Y;
}

// Numbers points from 0 on in the order of their first mention.
class TPointNumbers {
 public:
  void Start(std::size_t MostPoints) {
    FPoints.clear();
    const std::size_t slots = std::bit_ceil(std::max<std::size_t>(2 * MostPoints, 16));
    if (slots > FSlots.size()) FSlots.assign(slots, {});
    FShift = 64 - std::countr_zero(FSlots.size());
    if (++FRound == 0) {
      std::ranges::fill(FSlots, TSlot{});
      FRound = 1;
    }
  }
  int Number(const TIntPoint& Point) {
    const std::uint64_t code = static_cast<std::uint64_t>(Point.X) * 0xD6E8FEB86659FD93u +
                               static_cast<std::uint64_t>(Point.Y) * 0x9E3779B97F4A7C15u;
    std::size_t slot = static_cast<std::size_t>((code ^ (code >> 32)) * 0x9E3779B97F4A7C15u >> FShift);
    for (; FSlots[slot].Round == FRound; slot = (slot + 1) & (FSlots.size() - 1))
      if (FPoints[FSlots[slot].Index] == Point) return FSlots[slot].Index;
    FSlots[slot] = {FRound, Size(FPoints)};
    FPoints.push_back(Point);
    return Size(FPoints) - 1;
  }
  const std::vector<TIntPoint>& Points() const { return FPoints; }

 private:
  struct TSlot {
    std::uint32_t Round = 0;
    int Index = kNone;
  };
  std::vector<TSlot> FSlots;  // a power of two of them; those of earlier rounds are free
  std::vector<TIntPoint> FPoints;
  int FShift = 64;
  std::uint32_t FRound = 0;
};

// The work space of one union.
class TTrails {
 public:
  bool Collect(std::span<const TChip> Chips, bool AgainstEdges);
  void Walk();
  bool Unite(TPaths& Paths);

 private:
  struct TLink {
    int End;
    int Next;  // the next one from the same point
  };
  struct TNode {
    int FirstLink = kNone;
    int Surplus = 0;    // links that leave minus links that arrive
    int Place = kNone;  // on the way that is walked
  };

  void Lay(int Start, int End);
  bool CloseLooseEnds();
  int TakeLink(int Start);
  bool CancelOpposite(int Start, int End);
  void WalkFrom(int Start);
  void KeepRing(std::span<const int> Way);
  std::span<const TIntPoint> Ring(int Index) const;
  static bool IsConvex(std::span<const TIntPoint> Ring);

  TPointNumbers FNumbers;
  std::vector<TNode> FNodes;
  std::vector<TLink> FLinks;
  std::vector<int> FWay;
  std::vector<int> FSources;
  std::vector<int> FSinks;
  std::vector<TIntPoint> FRingPoints;
  std::vector<int> FRingStarts;
  TPath FContour;
  ClipperLib::Clipper FClipper;
};

void TTrails::Lay(int Start, int End) {
  FLinks.push_back({End, FNodes[Start].FirstLink});
  FNodes[Start].FirstLink = Size(FLinks) - 1;
  ++FNodes[Start].Surplus;
  --FNodes[End].Surplus;
}

// Neighbours in the list mostly share an end, which then needs no conversion.
bool TTrails::Collect(std::span<const TChip> Chips, bool AgainstEdges) {
  FNumbers.Start(2 * Chips.size());
  FLinks.clear();
  FNodes.clear();
  const TChip* former = nullptr;
  int formerStart = kNone;
  int formerEnd = kNone;
  const auto numberOf = [&](const TPoint2D& point) {
    if (former != nullptr && SameBits(point, former->FStartPoint)) return formerStart;
    if (former != nullptr && SameBits(point, former->FEndPoint)) return formerEnd;
    const int number = FNumbers.Number(TPathUtils::CreateIntPoint(point, kPathScale));
    if (number == Size(FNodes)) FNodes.push_back({});
    return number;
  };
  for (const TChip& chip : Chips) {
    const int start = numberOf(chip.FStartPoint);
    const int end = numberOf(chip.FEndPoint);
    former = &chip;
    formerStart = start;
    formerEnd = end;
    if (start == end) continue;
    if (AgainstEdges)
      Lay(end, start);
    else
      Lay(start, end);
  }
  return !Chips.empty() && CloseLooseEnds();
}

// A chord from an end to the nearest start: it puts back a chip that is missing on its own.
bool TTrails::CloseLooseEnds() {
  FSources.clear();
  FSinks.clear();
  for (int id = 0; id < Size(FNodes); ++id) {
    const int surplus = FNodes[id].Surplus;
    if (surplus == 0) continue;
    std::vector<int>& loose = surplus > 0 ? FSources : FSinks;
    loose.insert(loose.end(), static_cast<std::size_t>(std::abs(surplus)), id);
    if (Size(loose) > kMostChords) return false;
  }
  const auto distance = [&](int a, int b) {
    const double x = static_cast<double>(FNumbers.Points()[a].X - FNumbers.Points()[b].X);
    const double y = static_cast<double>(FNumbers.Points()[a].Y - FNumbers.Points()[b].Y);
    return x * x + y * y;
  };
  for (const int sink : FSinks) {
    const auto source = std::ranges::min_element(FSources, {}, [&](int id) { return distance(sink, id); });
    Lay(sink, *source);
    FSources.erase(source);
  }
  return true;
}

int TTrails::TakeLink(int Start) {
  const TLink& link = FLinks[FNodes[Start].FirstLink];
  FNodes[Start].FirstLink = link.Next;
  return link.End;
}

// Takes away a link from End back to Start.
bool TTrails::CancelOpposite(int Start, int End) {
  for (int* link = &FNodes[End].FirstLink; *link != kNone; link = &FLinks[*link].Next) {
    if (FLinks[*link].End != Start) continue;
    *link = FLinks[*link].Next;
    return true;
  }
  return false;
}

void TTrails::Walk() {
  FRingPoints.clear();
  FRingStarts.assign(1, 0);
  for (int id = 0; id < Size(FNodes); ++id) WalkFrom(id);
}

// As many links arrive at a point as leave it, so a walk can only get stuck where it began. Each time that it comes
// back to a point on the way, what lies between is one ring.
void TTrails::WalkFrom(int Start) {
  FWay.assign(1, Start);
  FNodes[Start].Place = 0;
  while (FNodes[FWay.back()].FirstLink != kNone) {
    const int id = TakeLink(FWay.back());
    if (CancelOpposite(FWay.back(), id)) continue;
    const int place = FNodes[id].Place;
    if (place == kNone) {
      FNodes[id].Place = Size(FWay);
      FWay.push_back(id);
      continue;
    }
    KeepRing(std::span(FWay).subspan(place));
    for (int i = place + 1; i < Size(FWay); ++i) FNodes[FWay[i]].Place = kNone;
    FWay.resize(place + 1);
  }
  FNodes[Start].Place = kNone;
}

// Points on straight pieces, and those where the way folds back, add nothing to any winding number.
void TTrails::KeepRing(std::span<const int> Way) {
  const std::size_t begin = FRingPoints.size();
  const auto isFlat = [](const TIntPoint& a, const TIntPoint& b, const TIntPoint& c) { return Turn(a, b, c) == 0; };
  for (const int id : Way) {
    const TIntPoint& point = FNumbers.Points()[id];
    while (FRingPoints.size() >= begin + 2 && isFlat(FRingPoints.end()[-2], FRingPoints.back(), point))
      FRingPoints.pop_back();
    FRingPoints.push_back(point);
  }
  std::size_t first = begin;
  while (FRingPoints.size() >= first + 3) {
    if (isFlat(FRingPoints.end()[-2], FRingPoints.back(), FRingPoints[first]))
      FRingPoints.pop_back();
    else if (isFlat(FRingPoints.back(), FRingPoints[first], FRingPoints[first + 1]))
      ++first;
    else
      break;
  }
  FRingPoints.erase(FRingPoints.begin() + begin, FRingPoints.begin() + first);
  if (FRingPoints.size() < begin + 3)
    FRingPoints.resize(begin);
  else
    FRingStarts.push_back(Size(FRingPoints));
}

std::span<const TIntPoint> TTrails::Ring(int Index) const {
  return std::span(FRingPoints).subspan(FRingStarts[Index], FRingStarts[Index + 1] - FRingStarts[Index]);
}

// Counter-clockwise, turning left everywhere and once round.
bool TTrails::IsConvex(std::span<const TIntPoint> Ring) {
  int reversals = 0;
  bool upward = Ring.back().Y < Ring.front().Y || (Ring.back().Y == Ring.front().Y && Ring.back().X < Ring.front().X);
  for (std::size_t i = 0; i < Ring.size(); ++i) {
    const TIntPoint& at = Ring[i];
    const TIntPoint& next = Ring[i + 1 == Ring.size() ? 0 : i + 1];
    const TIntPoint& afterNext = Ring[i + 2 < Ring.size() ? i + 2 : i + 2 - Ring.size()];
    if (Turn(at, next, afterNext) <= 0) return false;
    const bool up = at.Y < next.Y || (at.Y == next.Y && at.X < next.X);
    if (up != upward) ++reversals;
    upward = up;
  }
  return reversals == 2;
}

bool TTrails::Unite(TPaths& Paths) {
  const int rings = Size(FRingStarts) - 1;
  if (rings == 0) return true;
  if (rings == 1 && IsConvex(Ring(0))) {
    Paths.emplace_back(Ring(0).begin(), Ring(0).end());
    return true;
  }
  FClipper.Clear();
  FClipper.StrictlySimple(true);
  bool any = false;
  for (int i = 0; i < rings; ++i) {
    FContour.assign(Ring(i).begin(), Ring(i).end());
    any |= FClipper.AddPath(FContour, ClipperLib::ptSubject, true);
  }
  const bool done = !any || FClipper.Execute(ClipperLib::ctUnion, Paths, ClipperLib::pftPositive);
  FClipper.Clear();
  std::erase_if(Paths, [](const TPath& path) { return path.size() < 3; });
  return done;
}

}  // namespace

bool UnionOfTrails(std::span<const TChip> Chips, bool AgainstEdges, TPaths& Paths) {
  static thread_local TTrails trails;
  Paths.clear();
  if (!trails.Collect(Chips, AgainstEdges)) return false;
  trails.Walk();
  return trails.Unite(Paths);
}

}  // namespace platenest::detail
