#include "JobExchange.h"

#include <algorithm>
#include <utility>

#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Random.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

constexpr int kTrials = 20;
constexpr double kTol = 1e-9;
// How often the emptiest plate takes part, a third plate, what is not placed, and another kind of plate.
constexpr double kEmptiestShare = 0.7;
constexpr double kThirdShare = 0.5;
constexpr double kPoolShare = 0.5;
constexpr double kOtherKindShare = 0.3;
constexpr int kMostCheaperTried = 3;

// Positive if A is better by more than rounding, negative if B is.
int Compare(const TExchangeMerit& A, const TExchangeMerit& B) {
  const auto sign = [](double a, double b) {
    const double difference = a - b;
    const double tol = kTol * std::max(std::abs(a), std::abs(b));
    return difference > tol ? 1 : (difference < -tol ? -1 : 0);
  };
  if (const int s = sign(A.Asked, B.Asked); s != 0) return s;
  if (const int s = sign(A.Unlimited, B.Unlimited); s != 0) return s;
  if (const int s = sign(B.Cost, A.Cost); s != 0) return s;
  return Sign(B.Plates, A.Plates);
}

int CompareFullness(const TExchangeMerit& A, const TExchangeMerit& B) {
  const double tol = kTol * std::max(A.Fullness, B.Fullness);
  return A.Fullness > B.Fullness + tol ? 1 : (A.Fullness < B.Fullness - tol ? -1 : 0);
}

}  // namespace

TExchange::TExchange(const TJobSizes& Sizes, TSkyTrials& Trials, TJobLayouts Layouts)
    : FSizes(Sizes),
      FTrials(Trials),
      FLayouts(std::move(Layouts)),
      FPool(LeftOver(Sizes, FLayouts)),
      FStock(StockLeft(Sizes, FLayouts)) {
  for (const TJobLayout& layout : FLayouts) FAreas.push_back(AreaOf(FSizes, layout.Nested));
  // What is asked for comes before what may be placed without end.
  constexpr double kUnlimitedWorth = 1e-3;
  FTrials.ResetWorths();
  for (int i = 0; i < Size(FSizes.Parts); ++i)
    if (FSizes.Parts[i].IsUnlimited) FTrials.Worths()[i] *= kUnlimitedWorth;
}

Int64 TExchange::Plates() const {
  Int64 plates = 0;
  for (const TJobLayout& layout : FLayouts) plates += layout.Copies;
  return plates;
}

int TExchange::Emptiest() const {
  const auto emptiest = std::ranges::min_element(FAreas);
  return static_cast<int>(emptiest - FAreas.begin());
}

TExchange::TChosen TExchange::Choose() const {
  const int count = Size(FLayouts);
  TChosen chosen;
  chosen.TakesPool = !IsAllPlaced(FPool) && DrawnUniform() < kPoolShare;
  const auto add = [&](int group) {
    if (std::ranges::count(chosen.Groups, group) < FLayouts[group].Copies) chosen.Groups.push_back(group);
  };
  add(DrawnUniform() < kEmptiestShare ? Emptiest() : Random(count));
  if (chosen.TakesPool && Random(2) == 0) return chosen;
  add(Random(count));
  if (DrawnUniform() < kThirdShare) add(Random(count));
  return chosen;
}

// In the order in which they are to be filled, remnants first.
std::vector<int> TExchange::Kinds(const TChosen& Chosen) const {
  std::vector<int> kinds;
  for (const int group : Chosen.Groups) kinds.push_back(FLayouts[group].Plate);
  for (int i = Size(kinds) - 1; i > 0; --i) std::swap(kinds[i], kinds[Random(i + 1)]);
  if (FSizes.Plates.size() > 1 && DrawnUniform() < kOtherKindShare) {
    const int other = Random(Size(FSizes.Plates));
    int& kind = kinds[Random(Size(kinds))];
    if (FStock[other] > 0 && !FSizes.Plates[kind].Remnant) kind = other;
  }
  SortBy(kinds, [&](int a, int b) { return Sign(FSizes.Plates[b].Remnant ? 1 : 0, FSizes.Plates[a].Remnant ? 1 : 0); });
  return kinds;
}

std::vector<int> TExchange::PartsOf(const TChosen& Chosen) const {
  std::vector<int> parts = Chosen.TakesPool ? FPool : std::vector<int>(FPool.size());
  for (const int group : Chosen.Groups)
    for (const TNestedRect& placed : FLayouts[group].Nested) ++parts[placed.Part.Idx];
  return parts;
}

// The rest on one plate of a kind that costs less than the next one.
bool TExchange::RefillCheaper(const std::vector<int>& Kinds, int From, std::vector<int>& Left, TJobLayouts& Filled) {
  const TJobPlate& next = FSizes.Plates[Kinds[From]];
  if (FSizes.Plates.size() == 1 || next.Remnant) return false;
  double area = 0;
  for (int i = 0; i < Size(Left); ++i) area += FSizes.Parts[i].Area * Left[i];
  std::vector<int> cheaper;
  for (int i = 0; i < Size(FSizes.Plates); ++i) {
    const TJobPlate& plate = FSizes.Plates[i];
    if (FStock[i] > 0 && plate.Cost < next.Cost && plate.Area >= area) cheaper.push_back(i);
  }
  SortBy(cheaper, [&](int a, int b) { return Sign(FSizes.Plates[a].Cost, FSizes.Plates[b].Cost); });
  for (int i = 0; i < std::min(kMostCheaperTried, Size(cheaper)); ++i) {
    std::vector<int> left = Left;
    const TSkyLayout layout = FTrials.Fill(cheaper[i], left, kTrials);
    if (layout.empty() || !IsAllPlaced(left)) continue;
    Left = std::move(left);
    Filled.push_back({cheaper[i], 1, FTrials.LayoutOf(layout)});
    return true;
  }
  return false;
}

TJobLayouts TExchange::Refill(const std::vector<int>& Kinds, std::vector<int>& Left) {
  TJobLayouts filled;
  for (int i = 0; i < Size(Kinds) && !IsAllPlaced(Left); ++i) {
    if (RefillCheaper(Kinds, i, Left, filled)) break;
    const TSkyLayout layout = FTrials.Fill(Kinds[i], Left, kTrials);
    if (!layout.empty()) filled.push_back({Kinds[i], 1, FTrials.LayoutOf(layout)});
  }
  return filled;
}

TExchangeMerit TExchange::MeritOf(std::span<const TJobLayout> Plates) const {
  TExchangeMerit merit;
  for (const TJobLayout& plate : Plates) {
    double area = 0;
    for (const TNestedRect& placed : plate.Nested) {
      const TJobPart& part = FSizes.Parts[placed.Part.Idx];
      area += part.Area;
      (part.IsUnlimited ? merit.Unlimited : merit.Asked) += part.Area;
    }
    merit.Cost += FSizes.Plates[plate.Plate].Cost;
    merit.Plates += 1;
    merit.Fullness += area * area;
  }
  return merit;
}

// How often an exchange can be made: copies of its plates, stock of new ones, and what it takes off the pool.
int TExchange::Times(const TChosen& Chosen, const TJobLayouts& Filled) const {
  std::vector<int> parts(FPool.size());
  std::vector<int> plates(FStock.size());
  int times = limits::kPlates;
  for (const int group : Chosen.Groups) {
    times = std::min(times, FLayouts[group].Copies / static_cast<int>(std::ranges::count(Chosen.Groups, group)));
    --plates[FLayouts[group].Plate];
    for (const TNestedRect& placed : FLayouts[group].Nested) --parts[placed.Part.Idx];
  }
  for (const TJobLayout& plate : Filled) {
    ++plates[plate.Plate];
    for (const TNestedRect& placed : plate.Nested) ++parts[placed.Part.Idx];
  }
  for (int i = 0; i < Size(parts); ++i)
    if (parts[i] > 0) times = std::min(times, FPool[i] / parts[i]);
  for (int i = 0; i < Size(plates); ++i)
    if (plates[i] > 0) times = std::min(times, FStock[i] / plates[i]);
  return times;
}

void TExchange::Apply(const TChosen& Chosen, TJobLayouts Filled, int Times) {
  for (const int group : Chosen.Groups) {
    FLayouts[group].Copies -= Times;
    FStock[FLayouts[group].Plate] += Times;
    for (const TNestedRect& placed : FLayouts[group].Nested) FPool[placed.Part.Idx] += Times;
  }
  for (TJobLayout& plate : Filled) {
    plate.Copies = Times;
    FStock[plate.Plate] -= Times;
    for (const TNestedRect& placed : plate.Nested) FPool[placed.Part.Idx] -= Times;
    FAreas.push_back(AreaOf(FSizes, plate.Nested));
    FLayouts.push_back(std::move(plate));
  }
  for (int i = Size(FLayouts) - 1; i >= 0; --i) {
    if (FLayouts[i].Copies > 0) continue;
    FLayouts.erase(FLayouts.begin() + i);
    FAreas.erase(FAreas.begin() + i);
  }
}

TExchange::Outcome TExchange::Step() {
  if (FLayouts.empty()) return Outcome::Nothing;
  const TChosen chosen = Choose();
  if (chosen.Groups.size() < 2 && !chosen.TakesPool && FSizes.Plates.size() == 1) return Outcome::Nothing;
  std::vector<int> left = PartsOf(chosen);
  TJobLayouts filled = Refill(Kinds(chosen), left);
  TJobLayouts before;
  for (const int group : chosen.Groups) before.push_back(FLayouts[group]);
  const auto remnants = [&](const TJobLayouts& plates) {
    return std::ranges::count_if(plates, [&](const TJobLayout& each) { return FSizes.Plates[each.Plate].Remnant; });
  };
  if (filled.empty() || remnants(filled) < remnants(before)) return Outcome::Nothing;
  const TExchangeMerit now = MeritOf(filled);
  const TExchangeMerit then = MeritOf(before);
  const int byMerit = Compare(now, then);
  const int byFullness = CompareFullness(now, then);
  if (byMerit < 0 || (byMerit == 0 && byFullness < 0)) return Outcome::Nothing;
  const int times = Times(chosen, filled);
  if (times <= 0) return Outcome::Nothing;
  Apply(chosen, std::move(filled), times);
  return byMerit > 0 ? Outcome::Better : (byFullness > 0 ? Outcome::Fuller : Outcome::Nothing);
}

}  // namespace platenest::detail
