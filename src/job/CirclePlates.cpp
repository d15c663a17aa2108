#include "CirclePlates.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Sort.h"
#include "platenest/foundation/StopToken.h"

namespace platenest::detail {

namespace {

constexpr int kMostOrders = 4;
constexpr int kMostLastTrials = 4;

double CostForArea(const TCirclePlate& APlate) {
  return APlate.Cost / (APlate.Width * APlate.Height);
}

bool IsAllPlaced(std::span<const int> Left) {
  return std::ranges::all_of(Left, [](int copies) { return copies <= 0; });
}

std::vector<int> CountsIn(const TCircleSpots& Spots, std::size_t Parts) {
  std::vector<int> counts(Parts);
  for (const TCornerPlacement& spot : Spots) ++counts[spot.CircleIdx];
  return counts;
}

// Plates of one kind, and what they take away from demand and stock.
class TWalk {
 public:
  TWalk(const TCircleSizes& Sizes, const TCircleNest& Nest) : FSizes(Sizes), FNest(Nest) {
    for (const TCirclePart& part : Sizes.Parts) FLeft.push_back(part.Amount);
    for (const TCirclePlate& plate : Sizes.Plates) FStock.push_back(plate.Count);
  }

  void UseUp(int Kind) {
    while (FStock[Kind] > 0 && !IsAllPlaced(FLeft)) {
      // The first plate is nested in any case, so that there is an answer.
      if (!FLayouts.empty() && RunStopRequested()) return;
      TCircleSpots spots = FNest(Kind, FLeft);
      const std::vector<int> counts = CountsIn(spots, FLeft.size());
      if (spots.empty()) return;
      if (std::ranges::equal(counts, FLeft)) return UseLast(Kind, std::move(spots));
      int times = FStock[Kind];
      for (int i = 0; i < Size(counts); ++i)
        if (counts[i] > 0) times = std::min(times, FLeft[i] / counts[i]);
      Take({Kind, times, std::move(spots)}, counts);
    }
  }

  TCircleLayouts Taken() && { return std::move(FLayouts); }

 private:
  void Take(TCircleLayout Layout, std::span<const int> Counts) {
    for (int i = 0; i < Size(FLeft); ++i) FLeft[i] -= Counts[i] * Layout.Copies;
    FStock[Layout.Plate] -= Layout.Copies;
    FLayouts.push_back(std::move(Layout));
  }

  void UseLast(int Kind, TCircleSpots Spots) {
    std::vector<int> cheaper;
    for (int i = 0; i < Size(FStock); ++i)
      if (FStock[i] > 0 && FSizes.Plates[i].Cost < FSizes.Plates[Kind].Cost) cheaper.push_back(i);
    SortBy(cheaper, [&](int a, int b) { return Sign(FSizes.Plates[a].Cost, FSizes.Plates[b].Cost); });
    const double area = AreaOf(Spots);
    int trials = 0;
    for (const int other : cheaper) {
      if (FSizes.Plates[other].Area <= area || RunStopRequested()) continue;
      if (++trials > kMostLastTrials) break;
      TCircleSpots spots = FNest(other, FLeft);
      if (spots.size() != Spots.size()) continue;
      Kind = other;
      Spots = std::move(spots);
      break;
    }
    const std::vector<int> counts = FLeft;
    Take({Kind, 1, std::move(Spots)}, counts);
  }

  double AreaOf(const TCircleSpots& Spots) const {
    double area = 0;
    for (const TCornerPlacement& spot : Spots) area += FSizes.Parts[spot.CircleIdx].Area;
    return area;
  }

  const TCircleSizes& FSizes;
  const TCircleNest& FNest;
  std::vector<int> FLeft;
  std::vector<int> FStock;
  TCircleLayouts FLayouts;
};

}  // namespace

std::vector<std::vector<int>> PlateOrders(const TCircleSizes& Sizes) {
  std::vector<int> base;
  for (int i = 0; i < Size(Sizes.Plates); ++i) base.push_back(i);
  SortBy(base, [&](int left, int right) {
    const TCirclePlate& a = Sizes.Plates[left];
    const TCirclePlate& b = Sizes.Plates[right];
    if (a.Remnant || b.Remnant) return Sign(b.Remnant ? 1 : 0, a.Remnant ? 1 : 0);
    const int byCost = Sign(CostForArea(a), CostForArea(b));
    return byCost != 0 ? byCost : Sign(b.Area, a.Area);
  });
  std::vector<std::vector<int>> orders{base};
  const auto firstPlain = std::ranges::find_if(base, [&](int kind) { return !Sizes.Plates[kind].Remnant; });
  const auto plain = firstPlain - base.begin();
  for (auto i = plain + 1; i < Size(base) && Size(orders) < kMostOrders; ++i) {
    std::vector<int> order = base;
    std::rotate(order.begin() + plain, order.begin() + i, order.begin() + i + 1);
    orders.push_back(std::move(order));
  }
  return orders;
}

TCircleLayouts FillPlates(const TCircleSizes& Sizes, std::span<const int> Order, const TCircleNest& Nest) {
  TWalk walk(Sizes, Nest);
  for (const int kind : Order) walk.UseUp(kind);
  return std::move(walk).Taken();
}

}  // namespace platenest::detail
