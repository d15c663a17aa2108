#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "CircuitUnionRules.h"
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

bool Meet(const TIntRect& A, const TIntRect& B) {
  return A.Left <= B.Right && B.Left <= A.Right && A.Bottom <= B.Top && B.Bottom <= A.Top;
}

// How often positive paths cover a place counts only where a negative path takes from it. So what lies clear of all
// negative paths may be united beforehand, the rest waits for the last union.
class TBatches {
 public:
  TBatches(TClipper& Clipper, Int64 BatchPoints) : FClipper(Clipper), FBatchPoints(BatchPoints) {}

  // What to unite in the end in place of Paths, with the same result. False if a batch has places that it winds about
  // the wrong way, so that its union would not do; then Paths are as they were.
  bool UniteAhead(TPaths& Paths) {
    std::vector<bool> waits = PathsThatWait(Paths);
    const std::size_t count = Paths.size();
    std::size_t batchStart = 0;
    Int64 points = 0;
    FClipper.Clear();
    for (std::size_t i = 0; i < count; ++i) {
      if (waits[i]) continue;
      points += Size(Paths[i]);
      FClipper.AddPath(Paths[i], ClipperLib::ptSubject, true);
      if (points < FBatchPoints) continue;
      if (!UniteBatch()) return false;
      batchStart = i + 1;
      points = 0;
    }
    for (std::size_t i = 0; i < count; ++i)
      if (waits[i] || i >= batchStart) FUnited.push_back(std::move(Paths[i]));
    Paths = std::move(FUnited);
    return true;
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

  bool UniteBatch() {
    if (!Execute(FClipper, FResult, ClipperLib::pftNegative) || !FResult.empty()) return false;
    if (!Execute(FClipper, FResult, ClipperLib::pftPositive)) return false;
    TPathUtils::PathsAddRange(FUnited, std::move(FResult));
    FClipper.Clear();
    return true;
  }

  TClipper& FClipper;
  Int64 FBatchPoints;
  TPaths FUnited;
  TPaths FResult;
};

// Points per batch; 0 for one union of all.
Int64 BatchPoints(Int64 Points, const TKMPLoop& stLoop, const TKMPLoop& dyLoop) {
  const int count = stLoop.Count();
  const bool alike = count == dyLoop.Count() && count > kBatchAlikeCountAbove;
  const bool dense = Points > kBatchAlikePointsAbove && Points > kBatchPointsPerDirectionAbove * count;
  if (Points <= kBatchPointsAbove && !(alike && dense)) return 0;
  return std::min(kMostBatchPoints, Points / kFewestBatches);
}

}  // namespace

bool TKineticConvolution::UnionCircuits(const TKineticCircuits& circuits, TPaths& paths, bool forced) {
  _edgeCount = 0;
  paths.clear();
  TCircuitChoice choice{*this, circuits, forced, {}};
  if (!circuits.SccOutline().empty())
    choice.Paths.push_back(TPathUtils::CreatePath(circuits.SccOutline(), kPathScale));
  else if (!choice.TakeCircuits() || choice.IsTooHeavy())
    return false;

  TClipper clipper;
  clipper.ReverseSolution(false);
  clipper.StrictlySimple(true);
  const Int64 batchPoints = BatchPoints(_edgeCount, *_stLoop, *_dyLoop);
  if (batchPoints > 0) TBatches(clipper, batchPoints).UniteAhead(choice.Paths);
  return UniteAll(clipper, choice.Paths, paths);
}

}  // namespace platenest
