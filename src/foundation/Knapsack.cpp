#include "platenest/foundation/Knapsack.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <optional>
#include <utility>

#include "KnapsackSearch.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Sort.h"

namespace platenest {

namespace {

using detail::DivideByCommonWeight;
using detail::FractionalValue;
using detail::TKnapsackItem;
using detail::TKnapsackSearch;
using detail::TWide;
using TItems = std::vector<TKnapsackItem>;

constexpr Int64 kSumLimit = Int64{1} << 61;         // so that sums of two stay within 64 bits
constexpr Int64 kMinRepeats = 32;                   // the residue table pays from this capacity, in best items, ...
constexpr Int64 kMaxResidueCells = Int64{1} << 27;  // ... up to this many cells of one byte

void CheckLengths(std::size_t Weights, std::size_t Others) {
  if (Weights != Others) throw TArgumentError("[Error] TKnapsackSolver: the lists differ in length");
}

// By falling value per weight, without division.
void SortByDensity(TItems& Items) {
  SortBy(Items, [](const TKnapsackItem& a, const TKnapsackItem& b) {
    return Sign(TWide{b.Value} * a.Weight, TWide{a.Value} * b.Weight);
  });
}

void CheckSums(TWide Capacity, TWide Value) {
  if (Capacity >= kSumLimit) throw TRangeError("[Error] TKnapsackSolver: the weights may reach 2^61");
  if (Value >= kSumLimit) throw TRangeError("[Error] TKnapsackSolver: the best value may reach 2^61");
}

int CountAsInt(Int64 Count) {
  if (Count > std::numeric_limits<int>::max()) throw TRangeError("[Error] TKnapsackSolver: a count exceeds 32 bits");
  return static_cast<int>(Count);
}

void StoreCounts(const std::vector<Int64>& Found, std::vector<int>& Counts) {
  std::vector<int> counts(Found.size());
  std::ranges::transform(Found, counts.begin(), CountAsInt);
  Counts.swap(counts);
}

Int64 Search(TItems Items, Int64 Capacity, std::vector<Int64>& Found) {
  TKnapsackSearch search(std::move(Items), Capacity);
  const Int64 value = search.Run();
  search.AddCounts(Found);
  return value;
}

// The unbounded knapsack by the weights' residues modulo the weight of the best item, the base. Whatever the other
// pieces weigh, base pieces fill the rest; so of all choices of other pieces with the same residue only the one that
// gains most over base pieces matters, and the capacity plays no part until the end (Gilmore and Gomory 1966).
class TResidueTable {
 public:
  TResidueTable(const TItems& Items, Int64 Capacity)
      : FItems(Items),
        FBase(Items.front()),
        FCapacity(Capacity),
        FGain(FBase.Weight, kUnreached),
        FTaken(Items.size()),
        FBest(Capacity / FBase.Weight * FBase.Value) {
    FGain[0] = 0;
  }

  // The best value. Nothing if the other pieces of that answer alone are heavier than the capacity.
  std::optional<Int64> Run(std::vector<Int64>& Found) {
    for (int item = 1; item < Size(FItems); ++item) {
      if (!CanWin(FItems[item])) continue;
      RunItem(item);
      NoteBest(item);
    }
    return AddCounts(Found) ? std::optional(FBest) : std::nullopt;
  }

 private:
  // Below every gain that is kept. A gain below minus the value of one base piece can never end in a win, because
  // later pieces lose against base pieces, too.
  static constexpr Int64 kUnreached = -kSumLimit;

  bool CanWin(const TKnapsackItem& Item) const {
    return Item.Value + TWide{FCapacity - Item.Weight} * FBase.Value / FBase.Weight > FBest;
  }

  // Every cycle of residues is followed once, and on as long as its own end improves its beginning.
  void RunItem(int Item) {
    const Int64 modulus = FBase.Weight;
    const Int64 shift = FItems[Item].Weight % modulus;
    if (shift == 0) return;
    const Int64 gain = FItems[Item].Value - FItems[Item].Weight / modulus * FBase.Value;
    std::vector<bool>& taken = FTaken[Item];
    taken.resize(modulus);
    const Int64 cycles = std::gcd(shift, modulus);
    for (Int64 begin = 0; begin < cycles; ++begin) {
      Int64 residue = begin;
      bool improved = true;
      for (Int64 step = 1; step <= modulus / cycles || improved; ++step) {
        const bool wraps = residue + shift >= modulus;
        const Int64 next = residue + shift - (wraps ? modulus : 0);
        const Int64 reached = FGain[residue] + gain - (wraps ? FBase.Value : 0);
        improved = reached > FGain[next] && reached >= -FBase.Value;
        if (improved) {
          FGain[next] = reached;
          taken[next] = true;
        }
        residue = next;
      }
    }
  }

  // The residues in the order of rising total weight, so that the lightest of equal answers is found first.
  void NoteBest(int Item) {
    const Int64 rest = FCapacity % FBase.Weight;
    const Int64 whole = FCapacity / FBase.Weight * FBase.Value;
    const auto note = [&](Int64 residue, Int64 value) {
      if (value <= FBest) return;
      FBest = value;
      FBestResidue = residue;
      FBestItem = Item;
    };
    for (Int64 r = rest + 1; r < FBase.Weight; ++r) note(r, whole - FBase.Value + FGain[r]);
    for (Int64 r = 0; r <= rest; ++r) note(r, whole + FGain[r]);
  }

  bool AddCounts(std::vector<Int64>& Found) const {
    std::vector<Int64> counts(FItems.size());
    Int64 room = FCapacity;
    Int64 residue = FBestResidue;
    for (int item = FBestItem; item > 0; --item) {
      const Int64 shift = FItems[item].Weight % FBase.Weight;
      while (!FTaken[item].empty() && FTaken[item][residue]) {
        ++counts[item];
        room -= FItems[item].Weight;
        residue -= residue < shift ? shift - FBase.Weight : shift;
      }
    }
    if (room < 0) return false;
    counts[0] = room / FBase.Weight;
    for (int item = 0; item < Size(FItems); ++item) Found[FItems[item].Index] = counts[item];
    return true;
  }

  const TItems& FItems;
  const TKnapsackItem& FBase;
  Int64 FCapacity;
  std::vector<Int64> FGain;               // per residue
  std::vector<std::vector<bool>> FTaken;  // per item and residue: the best choice up to this item uses it
  Int64 FBest;
  Int64 FBestResidue = 0;
  int FBestItem = 0;
};

Int64 SolveInfinite(TItems Items, Int64 Capacity, std::vector<Int64>& Found) {
  DivideByCommonWeight(Items, Capacity);
  const Int64 modulus = Items.front().Weight;
  if (Capacity / modulus >= kMinRepeats && modulus <= kMaxResidueCells / Size(Items))
    if (const auto value = TResidueTable(Items, Capacity).Run(Found)) return *value;
  return Search(std::move(Items), Capacity, Found);
}

}  // namespace

Int64 TKnapsackSolver::SolveInfiniteKnapsack(std::span<const int> Weights, std::span<const Int64> Values,
                                             Int64 Capacity, std::vector<int>& Counts) {
  CheckLengths(Weights.size(), Values.size());
  TItems items;
  for (int i = 0; i < Size(Weights); ++i)
    if (Weights[i] > 0 && Weights[i] <= Capacity && Values[i] > 0)
      items.push_back({Weights[i], Values[i], Capacity / Weights[i], i});
  SortByDensity(items);
  std::vector<Int64> found(Weights.size());
  Int64 value = 0;
  if (!items.empty()) {
    CheckSums(Capacity, FractionalValue(items, Capacity));
    value = SolveInfinite(std::move(items), Capacity, found);
  }
  StoreCounts(found, Counts);
  return value;
}

Int64 TKnapsackSolver::SolveMultiKnapsack(std::span<const int> Weights, std::span<const Int64> Values,
                                          TItemLimits Limits, Int64 Capacity, std::vector<int>& Counts) {
  CheckLengths(Weights.size(), Values.size());
  CheckLengths(Weights.size(), Limits.List().size());
  TItems items;
  TWide weightless = 0;  // value of the items of weight 0
  TWide total = 0;       // weight of all pieces
  std::vector<Int64> found(Weights.size());
  for (int i = 0; i < Size(Weights); ++i) {
    const Int64 limit = Limits.List()[i];
    if (limit <= 0 || Values[i] <= 0 || Weights[i] < 0 || Weights[i] > Capacity || Capacity <= 0) continue;
    if (Weights[i] > 0) {
      items.push_back({Weights[i], Values[i], std::min(limit, Capacity / Weights[i]), i});
      total += TWide{items.back().Limit} * Weights[i];
    } else {
      weightless += TWide{limit} * Values[i];
      found[i] = limit;
    }
  }
  SortByDensity(items);
  const TWide capacity = std::min<TWide>(Capacity, total);
  CheckSums(capacity, weightless + FractionalValue(items, Capacity));
  const Int64 value = Search(std::move(items), static_cast<Int64>(capacity), found) + static_cast<Int64>(weightless);
  StoreCounts(found, Counts);
  return value;
}

}  // namespace platenest
