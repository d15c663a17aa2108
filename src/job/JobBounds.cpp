#include "JobBounds.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "DualFeasible.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

__extension__ using TWide = __int128;

// Far above the noise of sums, far below what a plate or a coin makes.
constexpr long double kNoise = 1e-12L;

template <class TKey>
std::vector<int> AscendingBy(int Count, const TKey& KeyOf) {
  std::vector<std::pair<long double, int>> order;
  for (int i = 0; i < Count; ++i) order.emplace_back(KeyOf(i), i);
  SortBy(order, [](const auto& a, const auto& b) { return Sign(a.first, b.first); });
  std::vector<int> positions;
  for (const auto& [key, position] : order) positions.push_back(position);
  return positions;
}

// The job as sums of grown areas.
class TAreaSums {
 public:
  explicit TAreaSums(const TJobSizes& Sizes) : FSizes(Sizes), FGrown(GrownSizesOf(Sizes)) {
    for (int i = 0; i < Size(Sizes.Parts); ++i) {
      const TWide area = TWide{FGrown.Parts[i].Area()} * Sizes.Parts[i].Amount;
      FMost += area;
      if (!Sizes.Parts[i].IsUnlimited) FDemand += area;
    }
    for (int i = 0; i < Size(Sizes.Plates); ++i) FStock += TWide{FGrown.Plates[i].Area()} * Sizes.Plates[i].Count;
  }

  const TGrownSizes& Grown() const { return FGrown; }
  TWide Stock() const { return FStock; }
  bool LacksStock() const { return FDemand > FStock; }
  bool StockBinds() const { return FStock > 0 && FMost >= FStock; }

  Int64 LeastPlates() const {
    const auto byArea =
        AscendingBy(Size(FGrown.Plates), [&](int i) { return -static_cast<long double>(FGrown.Plates[i].Area()); });
    TWide rest = FDemand;
    Int64 plates = 0;
    for (const int i : byArea) {
      if (rest <= 0) break;
      const TWide area = FGrown.Plates[i].Area();
      const TWide count = std::min<TWide>((rest + area - 1) / area, FSizes.Plates[i].Count);
      rest -= count * area;
      plates += static_cast<Int64>(count);
    }
    return plates;
  }

  long double LeastCost() const {
    const auto areaOf = [&](int i) { return static_cast<long double>(FGrown.Plates[i].Area()); };
    TWide rest = FDemand;
    long double cost = 0;
    for (const int i : AscendingBy(Size(FGrown.Plates), [&](int k) { return FSizes.Plates[k].Cost / areaOf(k); })) {
      const TWide held = TWide{FGrown.Plates[i].Area()} * FSizes.Plates[i].Count;
      if (rest <= held) return cost + static_cast<long double>(rest) / areaOf(i) * FSizes.Plates[i].Cost;
      rest -= held;
      cost += static_cast<long double>(FSizes.Plates[i].Cost) * FSizes.Plates[i].Count;
    }
    return cost;
  }

  long double MostArea() const {
    const auto areaOf = [&](int i) { return static_cast<long double>(FGrown.Parts[i].Area()); };
    TWide room = FStock;
    long double area = 0;
    for (const int i : AscendingBy(Size(FGrown.Parts), [&](int k) { return -FSizes.Parts[k].Area / areaOf(k); })) {
      const TWide filled = TWide{FGrown.Parts[i].Area()} * FSizes.Parts[i].Amount;
      if (room <= filled) return area + static_cast<long double>(room) / areaOf(i) * FSizes.Parts[i].Area;
      room -= filled;
      area += static_cast<long double>(FSizes.Parts[i].Area) * FSizes.Parts[i].Amount;
    }
    return area;
  }

 private:
  const TJobSizes& FSizes;
  TGrownSizes FGrown;
  TWide FDemand = 0;
  TWide FMost = 0;
  TWide FStock = 0;
};

long double CostOfCheapest(const TJobSizes& Sizes, Int64 Plates) {
  long double cost = 0;
  for (const int i : AscendingBy(Size(Sizes.Plates), [&](int k) { return Sizes.Plates[k].Cost; })) {
    const Int64 count = std::min<Int64>(Plates, Sizes.Plates[i].Count);
    Plates -= count;
    cost += static_cast<long double>(count) * Sizes.Plates[i].Cost;
  }
  return cost;
}

void AddPlatesAndCost(const TJobSizes& Sizes, const TAreaSums& Sums, std::vector<Bound>& Bounds) {
  const Int64 byArea = Sums.LeastPlates();
  const Int64 plates = std::max(byArea, LeastPlatesByFekete(Sizes, Sums.Grown()));
  Bounds.push_back({"plates", "area", static_cast<double>(byArea)});
  if (plates > byArea) Bounds.push_back({"plates", "fekete", static_cast<double>(plates)});
  if (HasOneCost(Sizes)) return;
  std::vector<double> costs;
  for (const TJobPlate& plate : Sizes.Plates) costs.push_back(plate.Cost);
  const long double cost = NextSum(costs, Sums.LeastCost());
  const long double ofPlates = CostOfCheapest(Sizes, plates);
  Bounds.push_back({"cost", "area", RoundToTwelveDigits(static_cast<double>(cost))});
  if (ofPlates > cost * (1 + kNoise))
    Bounds.push_back({"cost", "plates", RoundToTwelveDigits(static_cast<double>(ofPlates))});
}

}  // namespace

long double NextSum(std::span<const double> Costs, long double Cost) {
  const std::optional<int> decimals = CommonDecimals(Costs);
  const double scale = decimals ? std::pow(10.0, *decimals) : 0;
  if (!decimals || std::ranges::max(Costs) * scale >= 0x1p53) return Cost;
  Int64 unit = 0;
  for (const double cost : Costs) unit = std::gcd(unit, Round(cost * scale));
  const long double units = Cost * scale / static_cast<long double>(unit);
  const long double least = std::max(0.0L, std::ceil(units - kNoise * std::max(1.0L, units)));  // no -0
  return least * static_cast<long double>(unit) / scale;
}

std::vector<Bound> BoundsOfSizes(const TJobSizes& Sizes) {
  if (Sizes.Parts.empty()) return {{"plates", "area", 0}};
  const TAreaSums sums(Sizes);
  std::vector<Bound> bounds;
  if (!sums.LacksStock()) AddPlatesAndCost(Sizes, sums, bounds);
  if (sums.StockBinds()) bounds.push_back({"area", "stock", RoundToTwelveDigits(static_cast<double>(sums.MostArea()))});
  return bounds;
}

bool FillsStock(const TJobSizes& Sizes, std::span<const Int64> Placed) {
  const TAreaSums sums(Sizes);
  TWide filled = 0;
  for (int i = 0; i < Size(Sizes.Parts); ++i) filled += TWide{sums.Grown().Parts[i].Area()} * Placed[i];
  return sums.Grown().IsExact && filled == sums.Stock();
}

bool HasOneCost(const TJobSizes& Sizes) {
  const auto isOther = [&](const TJobPlate& plate) { return plate.Cost != Sizes.Plates[0].Cost; };
  return std::ranges::none_of(Sizes.Plates, isOther);
}

}  // namespace platenest::detail
