#include "TrailUnion.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "ContourUnion.h"
#include "platenest/foundation/Types.h"

namespace platenest::detail {

namespace {

constexpr int kNone = -1;
constexpr int kMostChords = 4;

bool AreSame(const TPoint2D& A, const TPoint2D& B) {
  return A.X == B.X && A.Y == B.Y;
}

// Numbers points from 0 on in the order of their first mention.
class TPointNumbers {
 public:
  // Closed trails have at most as many points as chips; loose chips have two each, which still leaves a slot free.
  void Start(std::size_t Chips) {
    FPoints.clear();
    const std::size_t slots = std::bit_ceil(2 * Chips + 1);
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

  TPointNumbers FNumbers;
  std::vector<TNode> FNodes;
  std::vector<TLink> FLinks;
  std::vector<int> FWay;
  std::vector<int> FSources;
  std::vector<int> FSinks;
  TContours FRings;
  TPath FContour;
  TClipper FClipper;
};

void TTrails::Lay(int Start, int End) {
  FLinks.push_back({End, FNodes[Start].FirstLink});
  FNodes[Start].FirstLink = Size(FLinks) - 1;
  ++FNodes[Start].Surplus;
  --FNodes[End].Surplus;
}

// Neighbours in the list mostly share an end, which then needs no conversion.
bool TTrails::Collect(std::span<const TChip> Chips, bool AgainstEdges) {
  FNumbers.Start(Chips.size());
  FLinks.clear();
  FNodes.clear();
  const TChip* former = nullptr;
  int formerStart = kNone;
  int formerEnd = kNone;
  const auto numberOf = [&](const TPoint2D& point) {
    if (former != nullptr && AreSame(point, former->FStartPoint)) return formerStart;
    if (former != nullptr && AreSame(point, former->FEndPoint)) return formerEnd;
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
  FRings.Clear();
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

void TTrails::KeepRing(std::span<const int> Way) {
  FContour.clear();
  for (const int id : Way) FContour.push_back(FNumbers.Points()[id]);
  FRings.Add(FContour);
}

bool TTrails::Unite(TPaths& Paths) {
  if (FRings.Count() == 0) return true;
  // Several rings mostly touch where the way came back to a point.
  if (FRings.Count() == 1 && UniteContours(FRings, Paths)) return true;
  Paths.clear();
  FClipper.Clear();
  FClipper.StrictlySimple(true);
  bool any = false;
  for (int i = 0; i < FRings.Count(); ++i) {
    FContour.assign(FRings[i].begin(), FRings[i].end());
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
