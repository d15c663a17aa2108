#include "CornerSearch.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platenest/foundation/Compare.h"

namespace platenest::detail {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kOutward = 1 + 1e-12;  // makes a bound on lengths safe against rounding
constexpr int kLoadedGroup = 16;        // candidates that come as a list
constexpr int kSqueezeAbove = 1024;     // dead places that are worth a pass over the list

double SquareOf(const TPoint2D& P) {
  return P.DotMul(P);
}

}  // namespace

inline bool TCandidateList::IsBefore(const TCandidate& A, const TCandidate& B) {
  return A.Value > B.Value || (A.Value == B.Value && SquareOf(A.Center) < SquareOf(B.Center));
}

void TCandidateList::Clear() {
  FItems.clear();
  FGroups.clear();
  FLive = 0;
}

void TCandidateList::Append(const std::vector<TCandidate>& Batch) {
  if (Batch.empty()) return;
  TGroup group;
  group.Begin = Size(FItems);
  group.Count = Size(Batch);
  FItems.insert(FItems.end(), Batch.begin(), Batch.end());
  FLive += group.Count;
  Measure(group);
  FGroups.push_back(group);
}

void TCandidateList::Measure(TGroup& Group) const {
  if (Group.Count == 0) return;
  const TCandidate* const first = &FItems[Group.Begin];
  const TCandidate* const last = first + Group.Count;
  const TCandidate* best = first;
  TPoint2D low = first->Center;
  TPoint2D high = first->Center;
  for (const TCandidate* c = first + 1; c != last; ++c) {
    low = {std::min(low.X, c->Center.X), std::min(low.Y, c->Center.Y)};
    high = {std::max(high.X, c->Center.X), std::max(high.Y, c->Center.Y)};
    if (IsBefore(*c, *best)) best = c;
  }
  Group.Best = static_cast<int>(best - FItems.data());
  Group.BestValue = best->Value;
  Group.Center = (low + high) / 2;
  Group.Reach = 0;
  for (const TCandidate* c = first; c != last; ++c)
    Group.Reach = std::max(Group.Reach, (c->Center.DistanceTo(Group.Center) + c->Reach) * kOutward);
}

void TCandidateList::CopyLive(const TCandidateList& Other) {
  Clear();
  for (TGroup group : Other.FGroups) {
    if (group.Count == 0) continue;
    const auto first = Other.FItems.begin() + group.Begin;
    group.Best += Size(FItems) - group.Begin;
    group.Begin = Size(FItems);
    FItems.insert(FItems.end(), first, first + group.Count);
    FGroups.push_back(group);
  }
  FLive = Size(FItems);
}

void TCandidateList::Shade(const TPoint2D& Center, double R) {
  for (TGroup& group : FGroups) {
    const double dx = group.Center.X - Center.X;
    const double dy = group.Center.Y - Center.Y;
    const double reach = group.Reach + R;
    if (dx * dx + dy * dy <= reach * reach * kOutward && group.Count > 0) ShadeGroup(group, Center, R);
  }
  if (Size(FItems) > 2 * FLive + kSqueezeAbove) Squeeze();
}

void TCandidateList::ShadeGroup(TGroup& Group, const TPoint2D& Center, double R) {
  TCandidate* const first = &FItems[Group.Begin];
  const TCandidate* const last = first + Group.Count;
  TCandidate* kept = first;
  bool changed = false;
  for (TCandidate* c = first; c != last; ++c) {
    const double dx = Center.X - c->Center.X;
    const double dy = Center.Y - c->Center.Y;
    const double reach = c->Reach + R;
    const double square = dx * dx + dy * dy;
    if (square <= reach * reach * kOutward) {
      const double distance = std::sqrt(square) - c->R - R;
      changed = true;
      if (fSmall(distance, 0)) continue;
      const double value = 1 - distance / c->R;
      if (fGreat(distance, 0) && value > c->Value) {
        c->Value = value;
        c->Reach = distance + c->R;
      }
    }
    if (kept != c) *kept = *c;
    ++kept;
  }
  if (!changed) return;
  FLive -= static_cast<int>(last - kept);
  Group.Count = static_cast<int>(kept - first);
  Measure(Group);
}

void TCandidateList::DropUsedUp(TGroup& Group, const std::vector<int>& Remaining) {
  const auto first = FItems.begin() + Group.Begin;
  const auto last = first + Group.Count;
  const auto kept = std::remove_if(first, last, [&Remaining](const TCandidate& C) { return Remaining[C.Idx] == 0; });
  FLive -= static_cast<int>(last - kept);
  Group.Count = static_cast<int>(kept - first);
  Measure(Group);
}

void TCandidateList::Squeeze() {
  int end = 0;
  for (TGroup& group : FGroups) {
    const auto first = FItems.begin() + group.Begin;
    if (end != group.Begin) std::copy(first, first + group.Count, FItems.begin() + end);
    group.Best += end - group.Begin;
    group.Begin = end;
    end += group.Count;
  }
  FItems.resize(end);
  std::erase_if(FGroups, [](const TGroup& G) { return G.Count == 0; });
}

const TCandidate* TCandidateList::Best(const std::vector<int>& Remaining) {
  const TCandidate* best = nullptr;
  for (TGroup& group : FGroups) {
    if (group.Count == 0 || (best != nullptr && group.BestValue < best->Value)) continue;
    if (Remaining[FItems[group.Best].Idx] == 0) DropUsedUp(group, Remaining);
    if (group.Count == 0) continue;
    const TCandidate& candidate = FItems[group.Best];
    if (best == nullptr || IsBefore(candidate, *best)) best = &candidate;
  }
  return best;
}

TCornerSearch::TCornerSearch(const TVRect2D& Rect, const std::vector<double>& Radii, const std::vector<double>& Areas,
                             const std::vector<int>& Idx, const std::vector<int>& Remaining, const TCircleNestRst& Rst)
    : FRadii(Radii), FAreas(Areas), FPlateArea(Rect.Area()), FField(Rect, Radii, Rst) {
  FMain.Remaining = Remaining;
  for (const int idx : Idx)
    if (Remaining[idx] != 0) FMain.Idx.push_back(idx);
}

void TCornerSearch::Load(const TPosibleCPList& CPs) {
  FMain.Candidates.Clear();
  FBatch.clear();
  for (const TPosibleCP& cp : CPs) {
    const double r = FRadii[cp.CP.CircleIdx];
    FBatch.push_back({cp.CP.Center, r, (2 - cp.Value) * r * kOutward, cp.Value, cp.CP.CircleIdx, -1});
    if (Size(FBatch) < kLoadedGroup) continue;
    FMain.Candidates.Append(FBatch);
    FBatch.clear();
  }
  FMain.Candidates.Append(FBatch);
}

double TCornerSearch::Place(TState& State, int Idx, const TPoint2D& Center, double Occu) {
  FField.Push(Idx, Center);
  if (--State.Remaining[Idx] == 0) std::erase(State.Idx, Idx);
  return Occu + FAreas[Idx] / FPlateArea;
}

void TCornerSearch::Extend(TState& State) {
  const TCornerPlacement last = FField.At(FField.Count() - 1);
  State.Candidates.Shade(last.Center, FRadii[last.CircleIdx]);
  if (State.Idx.empty()) return;
  double widest = 0;
  for (const int idx : State.Idx) widest = std::max(widest, FRadii[idx]);
  FField.Look(FField.Count() - 1, widest);
  FBatch.clear();
  for (const int idx : State.Idx) FField.TryAbout(idx, FField.Count() - 1, FBatch);
  State.Candidates.Append(FBatch);
}

double TCornerSearch::GreedyOn(TState& State, double Occu) {
  while (const TCandidate* const best = State.Candidates.Best(State.Remaining)) {
    Occu = Place(State, best->Idx, best->Center, Occu);
    Extend(State);
  }
  return Occu;
}

double TCornerSearch::Greedy(double Occu) {
  return GreedyOn(FMain, Occu);
}

bool TCornerSearch::LookAhead(TCandidate& Choice, double& Occu, int Amount, const std::function<bool()>& Stopped) {
  const int placed = FField.Count();
  double bestOccu = -kInfinity;
  bool complete = false;
  FMain.Candidates.ForEach(FMain.Remaining, [&](const TCandidate& Candidate) {
    if (bestOccu > -kInfinity && Stopped()) return false;
    FTrial.Candidates.CopyLive(FMain.Candidates);
    FTrial.Remaining = FMain.Remaining;
    FTrial.Idx = FMain.Idx;
    const double begun = Place(FTrial, Candidate.Idx, Candidate.Center, Occu);
    Extend(FTrial);
    const double occu = GreedyOn(FTrial, begun);
    complete = FField.Count() == Amount;
    if (complete) {
      Occu = occu;
      return false;
    }
    if (occu > bestOccu || (occu == bestOccu && Candidate.Value > Choice.Value)) {
      bestOccu = occu;
      Choice = Candidate;
    }
    FField.CutBack(placed);
    return true;
  });
  return complete;
}

double TCornerSearch::GreedyEx(double Occu, double Threshold, int Amount, const std::function<bool()>& Stopped) {
  while (const TCandidate* const best = FMain.Candidates.Best(FMain.Remaining)) {
    TCandidate choice = *best;
    if (choice.Value < Threshold && LookAhead(choice, Occu, Amount, Stopped)) return Occu;
    Occu = Place(FMain, choice.Idx, choice.Center, Occu);
    if (Stopped()) return Occu;
    Extend(FMain);
  }
  return Occu;
}

}  // namespace platenest::detail
