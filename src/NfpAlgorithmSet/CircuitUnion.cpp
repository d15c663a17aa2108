#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "CircuitUnionRules.h"
#include "ContourUnion.h"
#include "PathRules.h"
#include "platenest/NfpAlgorithmSet/KineticConvolution.h"

namespace platenest {

using namespace detail;

// Chooses the circuits that take part and turns them into paths.
struct TKineticConvolution::TCircuitChoice {
  TKineticConvolution& Owner;
  const TKineticCircuits& Circuits;
  bool Forced;
  TPaths Paths;
  int Longest = 0;
  std::vector<int> Weights{};
  std::vector<TVertexIdList> Noted{};  // by circuit: places of vertices in it that it covers first
  std::vector<int> Waiting{};          // circuits for a second look

  // False if the circuits taken become too many points.
  bool TakeCircuits() {
    const bool weighed = IsWeighed();
    if (weighed) Weigh();
    for (int i = 0; i < Circuits.CircuitCount(); ++i) {
      if (weighed && (i == Longest || !IsTakenAtOnce(i))) continue;
      Take(PathOf(i));
      if (!Forced && Owner._required < ntComplete && IsTooMuch(i)) return false;
    }
    if (weighed) TakeLongest();
    return true;
  }

  // False if two circuits have a vertex in common.
  bool MayBeApart() const {
    if (Paths.size() > kMostContours) return false;
    if (Circuits.CircuitCount() < 2) return true;
    static thread_local std::vector<int> ids;
    ids.clear();
    for (int i = 0; i < Circuits.CircuitCount(); ++i)
      ids.insert(ids.end(), Circuits.GetCircuit(i).begin(), Circuits.GetCircuit(i).end());
    std::ranges::sort(ids);
    return std::ranges::adjacent_find(ids) == ids.end();
  }

  bool IsTooHeavy() const {
    if (Forced || Owner._edgeCount <= kStopPointsAbove) return false;
    const auto applies = [this](const TUnionStop& stop) { return Applies(stop); };
    return (Owner._required != ntExact && std::ranges::any_of(kUnionStops, applies)) ||
           std::ranges::any_of(kUnionStopsOfAll, applies);
  }

 private:
  int Length(int Index) const { return Size(Circuits.GetCircuit(Index)); }
  bool AgainstEdges() const { return (Owner._stLoop->Area() < 0) == (Owner._dyLoop->Area() < 0); }

  TPath PathOf(int Index) const {
    TPath path;
    Circuits.TransCircuitToPath(Index, path, AgainstEdges());
    return path;
  }

  void Take(TPath Path) {
    Owner._edgeCount += Size(Path);
    Paths.push_back(std::move(Path));
  }

  bool IsWeighed() const {
    const bool many =
        (Circuits.SccAmount() >= kWeighManyComponents && Circuits.OuterCycleCounter() >= kWeighOuterCircuits) ||
        (Circuits.SccAmount() == 1 && Circuits.CircuitCount() >= kWeighCircuits);
    return many && Circuits.TotalOuterCyclePoints() >= kWeighOuterPoints;
  }

  void Weigh() {
    const int count = Circuits.CircuitCount();
    int mostId = 0;
    for (int i = 0; i < count; ++i) {
      if (Length(i) > Length(Longest)) Longest = i;
      mostId = std::max(mostId, std::ranges::max(Circuits.GetCircuit(i)));
    }
    TBoolArray covered(mostId + 1);
    Weights.assign(count, kWeightAlways);
    Noted.resize(count);
    for (int i = 0; i < count; ++i) {
      if (i != Longest && !Circuits.IsSpecCycle(i)) continue;
      if (i != Longest) Weights[i] = kWeightSpecial;
      for (const int id : Circuits.GetCircuit(i)) covered.Set(id);
    }
    for (int i = 0; i < count; ++i)
      if (i != Longest && !Circuits.IsSpecCycle(i)) Weights[i] = WeightOf(i, covered);
  }

  int WeightOf(int Index, TBoolArray& Covered) {
    const auto circuit = Circuits.GetCircuit(Index);
    int fresh = 0;
    for (int place = 0; place < Size(circuit); ++place) {
      if (Covered[circuit[place]]) continue;
      Covered.Set(circuit[place]);
      ++fresh;
      if (Noted[Index].size() < kMostNoted) Noted[Index].push_back(place);
    }
    return Size(circuit) < kShortBelow ? kWeightShort : fresh;
  }

  bool IsTakenAtOnce(int Index) {
    const int weight = Weights[Index];
    if (weight == 0) return false;
    if (weight > std::ssize(kSecondLooks)) return true;
    const TSecondLook& look = kSecondLooks[weight - 1];
    if (Length(Index) <= look.VerticesAbove || Length(Index) >= look.VerticesBelow) return true;
    Waiting.push_back(Index);
    return false;
  }

  bool IsTooMuch(int Index) const {
    return std::ranges::any_of(kTakeStops, [this, Index](const TTakeStop& stop) {
      return Index >= stop.CircuitsBefore && Owner._edgeCount > stop.PointsAbove &&
             Owner._edgeCount * Index > stop.PointsTimesIndexAbove;
    });
  }

  // Of the circuits that wait, those join that reach out of the longest one.
  void TakeLongest() {
    TPath longest = PathOf(Longest);
    TPath outline;
    const bool joinAll = Waiting.size() < kJoinAllBelow;
    if (!joinAll) outline = OutlineOf(longest);
    Take(std::move(longest));
    for (const int index : Waiting) {
      TPath path = PathOf(index);
      if (joinAll || ReachesOut(index, path, outline)) Take(std::move(path));
    }
  }

  static TPath OutlineOf(const TPath& Path) {
    TPaths pieces;
    ClipperLib::SimplifyPolygon(Path, pieces, ClipperLib::pftPositive);
    const auto largest = std::ranges::max_element(pieces, {}, &ClipperLib::Area);
    return largest == pieces.end() ? TPath{} : std::move(*largest);
  }

  bool ReachesOut(int Index, const TPath& Path, const TPath& Outline) const {
    return std::ranges::any_of(Noted[Index], [&](int place) {
      const int at = AgainstEdges() ? Size(Path) - 1 - place : place;
      return ClipperLib::PointInPolygon(Path[at], Outline) == 0;
    });
  }

  bool Applies(const TUnionStop& Stop) const {
    const Int64 points = Owner._edgeCount;
    const int circuits = Circuits.CircuitCount();
    const int outer = Circuits.OuterCycleCounter();
    const int rest = circuits - outer;
    return points > Stop.PointsAbove && outer > Stop.OuterAbove && circuits > Stop.CircuitsAbove &&
           rest > Stop.RestAbove && rest < Stop.RestBelow && points * circuits > Stop.PointsTimesCircuitsAbove &&
           points * rest > Stop.PointsTimesRestAbove && (!Stop.BelowCompleteOnly || Owner._required < ntComplete);
  }
};

namespace {

// Where the paths wind about a point more often one way than the other: counter-clockwise for pftPositive.
bool Execute(TClipper& Clipper, TPaths& Result, ClipperLib::PolyFillType Fill) {
  if (!Clipper.Execute(ClipperLib::ctUnion, Result, Fill, Fill)) return false;
  std::erase_if(Result, [](const TPath& path) { return path.size() < kFewestPoints; });
  return true;
}

bool UniteAll(TClipper& Clipper, const TPaths& Paths, TPaths& Result) {
  Clipper.Clear();
  const bool hasEdges = Clipper.AddPaths(Paths, ClipperLib::ptSubject, true);
  return !hasEdges || Execute(Clipper, Result, ClipperLib::pftPositive);
}

bool UniteDirectly(const TPaths& Paths, TPaths& Result) {
  static thread_local TContours contours;
  contours.Clear();
  for (const TPath& path : Paths) contours.Add(path);
  if (UniteContours(contours, Result)) return true;
  Result.clear();
  return false;
}

bool Meet(const TIntRect& A, const TIntRect& B) {
  return A.Left <= B.Right && B.Left <= A.Right && A.Bottom <= B.Top && B.Bottom <= A.Top;
}

// True for a triangle or convex quadrilateral that runs counter-clockwise; others are not looked at.
bool IsSmallAndConvex(const TPath& Path) {
  const std::size_t count = Path.size();
  if (count > 4) return false;
  for (std::size_t i = 0; i < count; ++i) {
    const TIntPoint &a = Path[i], &b = Path[(i + 1) % count], &c = Path[(i + 2) % count];
    const double turn = static_cast<double>(b.X - a.X) * static_cast<double>(c.Y - b.Y) -
                        static_cast<double>(b.Y - a.Y) * static_cast<double>(c.X - b.X);
    if (turn <= 0) return false;
  }
  return true;
}

// How often positive paths cover a place counts only where a negative path takes from it. So what lies clear of all
// negative paths may be united beforehand, the rest waits for the last union.
class TBatches {
 public:
  explicit TBatches(TClipper& Clipper) : FClipper(Clipper) {}

  // What to unite in the end in place of Paths, with the same result. If a batch, or what is positive in no batch, has
  // places that it winds about the wrong way, unions would not do, and Paths stay as they are.
  void UniteAhead(TPaths& Paths) {
    const std::vector<bool> waits = PathsThatWait(Paths);
    if (!UniteBatches(Paths, waits)) return;
    while (FUnited.size() > kBatchesInGroup)
      if (!UniteGroups()) return;
    TPaths rest;
    for (std::size_t i = 0; i < Paths.size(); ++i)
      if (waits[i] || i >= FFirstLeft) rest.push_back(std::move(Paths[i]));
    for (TPaths& united : FUnited) TPathUtils::PathsAddRange(rest, std::move(united));
    Paths = std::move(rest);
  }

 private:
  static std::vector<bool> PathsThatWait(const TPaths& Paths) {
    std::vector<TIntRect> boxes, negative;
    std::vector<bool> waits;
    for (const TPath& path : Paths) {
      boxes.push_back(TPathUtils::BoundBox(path));
      waits.push_back(ClipperLib::Area(path) < 0);
      if (waits.back()) negative.push_back(boxes.back());
    }
    for (std::size_t i = 0; i < Paths.size(); ++i)
      if (!waits[i]) waits[i] = std::ranges::any_of(negative, [&](const TIntRect& box) { return Meet(box, boxes[i]); });
    return waits;
  }

  bool UniteBatches(const TPaths& Paths, const std::vector<bool>& Waits) {
    Int64 points = 0;
    bool isPlain = true;
    FClipper.Clear();
    for (std::size_t i = 0; i < Paths.size(); ++i) {
      if (Waits[i]) continue;
      FClipper.AddPath(Paths[i], ClipperLib::ptSubject, true);
      points += Size(Paths[i]);
      isPlain = isPlain && IsSmallAndConvex(Paths[i]);
      if (points < kBatchPoints) continue;
      if (!isPlain && WindsTheWrongWay()) return false;
      if (!TakeUnion(FUnited)) return false;
      FFirstLeft = i + 1;
      points = 0;
      isPlain = true;
    }
    if (FUnited.empty()) return false;
    for (std::size_t i = 0; i < Paths.size(); ++i) {
      if (!Waits[i] || ClipperLib::Area(Paths[i]) < 0) continue;
      FClipper.AddPath(Paths[i], ClipperLib::ptSubject, true);
      isPlain = isPlain && IsSmallAndConvex(Paths[i]);
    }
    const bool windsRight = isPlain || !WindsTheWrongWay();
    FClipper.Clear();
    return windsRight;
  }

  bool WindsTheWrongWay() {
    TPaths result;
    return !Execute(FClipper, result, ClipperLib::pftNegative) || !result.empty();
  }

  bool TakeUnion(std::vector<TPaths>& Unions) {
    const bool done = Execute(FClipper, Unions.emplace_back(), ClipperLib::pftPositive);
    FClipper.Clear();
    return done;
  }

  bool UniteGroups() {
    std::vector<TPaths> groups;
    for (std::size_t i = 0; i < FUnited.size(); ++i) {
      FClipper.AddPaths(FUnited[i], ClipperLib::ptSubject, true);
      if ((i + 1) % kBatchesInGroup != 0 && i + 1 != FUnited.size()) continue;
      if (!TakeUnion(groups)) return false;
    }
    FUnited = std::move(groups);
    return true;
  }

  TClipper& FClipper;
  std::vector<TPaths> FUnited;  // by batch or group
  std::size_t FFirstLeft = 0;   // paths from here on are in no batch
};

}  // namespace

bool TKineticConvolution::UnionCircuits(const TKineticCircuits& circuits, TPaths& paths, bool forced) {
  _edgeCount = 0;
  paths.clear();
  TCircuitChoice choice{*this, circuits, forced, {}};
  if (!circuits.SccOutline().empty())
    choice.Paths.push_back(TPathUtils::CreatePath(circuits.SccOutline(), kPathScale));
  else if (!choice.TakeCircuits() || choice.IsTooHeavy())
    return false;

  if (choice.MayBeApart() && UniteDirectly(choice.Paths, paths)) return true;
  TClipper clipper;
  clipper.ReverseSolution(false);
  if (_edgeCount > kBatchPointsAbove) TBatches(clipper).UniteAhead(choice.Paths);
  clipper.StrictlySimple(true);  // not in batches: its cost is the square of a contour's points
  return UniteAll(clipper, choice.Paths, paths);
}

}  // namespace platenest
