#include "CircleBounds.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>
#include <set>
#include <span>

#include "JobBounds.h"
#include "PlateCover.h"
#include "Scale.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

// Each number of a layout may be off by this where it passes the check.
constexpr double kTol = kDefaultTol;
constexpr int kMostRadii = 100;
// Of all covers by whole plates.
constexpr double kMostSteps = 2e6;

// How much each plate of one kind holds of something, by its count in stock.
struct TRoom {
  long double Each = 0;
  Int64 Count = 0;
  long double Cost = 0;
};

using TRooms = std::vector<TRoom>;

long double TotalOf(const TRooms& Rooms) {
  long double total = 0;
  for (const TRoom& room : Rooms) total += room.Each * static_cast<long double>(room.Count);
  return total;
}

Int64 LeastPlates(TRooms Rooms, long double Need) {
  SortBy(Rooms, [](const TRoom& a, const TRoom& b) { return Sign(b.Each, a.Each); });
  Int64 plates = 0;
  for (const TRoom& room : Rooms) {
    if (Need <= 0) break;
    if (room.Each <= 0) continue;
    const long double count = std::min(std::ceil(Need / room.Each), static_cast<long double>(room.Count));
    Need -= count * room.Each;
    plates += static_cast<Int64>(count);
  }
  return plates;
}

// With broken plates.
long double LeastCost(TRooms Rooms, long double Need) {
  std::erase_if(Rooms, [](const TRoom& room) { return room.Each <= 0; });
  SortBy(Rooms, [](const TRoom& a, const TRoom& b) { return Sign(a.Cost / a.Each, b.Cost / b.Each); });
  long double cost = 0;
  for (const TRoom& room : Rooms) {
    const long double held = std::min(Need, room.Each * static_cast<long double>(room.Count));
    cost += held / room.Each * room.Cost;
    Need -= held;
  }
  return cost;
}

// With whole plates, as far as that takes no time; Each are whole numbers.
long double LeastCostOfWhole(const TRooms& Rooms, Int64 Need, double MostSteps) {
  std::vector<TCoverKind> kinds;
  if (static_cast<double>(Need) > MostSteps) return LeastCost(Rooms, static_cast<long double>(Need));
  const int need = static_cast<int>(Need);
  for (const TRoom& room : Rooms)
    kinds.push_back({static_cast<int>(std::min<long double>(room.Each, need)),
                     static_cast<int>(std::min<Int64>(room.Count, need)), static_cast<double>(room.Cost)});
  const std::vector<int> cover = CheapestCover(kinds, need, MostSteps);
  if (cover.empty()) return LeastCost(Rooms, static_cast<long double>(Need));
  long double cost = 0;
  for (int i = 0; i < Size(cover); ++i) cost += cover[i] * Rooms[i].Cost;
  return cost;
}

// A job as plates that hold something and what is asked for of it: grown area, or circles of one radius.
class TCircleSums {
 public:
  TCircleSums(const Job& AJob, const TCircleSizes& Sizes) : FJob(AJob), FSizes(Sizes) {
    for (const TCirclePart& part : Sizes.Parts) {
      const long double area = GrownArea(part) * part.Amount;
      FMostArea += area;
      if (part.IsUnlimited) continue;
      FNeededArea += area;
      FCopies += part.Amount;
    }
    FAreas = RoomsBy([&](double Width, double Height) {
      return (static_cast<long double>(Width) + AJob.Gap + 4 * kTol) *
             (static_cast<long double>(Height) + AJob.Gap + 4 * kTol);
    });
  }

  const TRooms& Areas() const { return FAreas; }
  TRooms RoomsFor(double Radius) const {
    return RoomsBy([&](double Width, double Height) { return OlerBound(Width, Height, Radius, FJob.Gap); });
  }
  Int64 Copies() const { return FCopies; }
  long double NeededArea() const { return FNeededArea; }
  bool StockBinds() const { return FMostArea >= TotalOf(FAreas); }
  double Radius(const TCirclePart& APart) const { return FJob.Parts[APart.Position].Radius; }

  // Copies asked for by number that are no smaller.
  Int64 CopiesFrom(double ARadius) const {
    Int64 copies = 0;
    for (const TCirclePart& part : FSizes.Parts)
      if (!part.IsUnlimited && Radius(part) >= ARadius) copies += part.Amount;
    return copies;
  }

  // Radii of parts asked for by number; of many some, the least and the largest among them.
  std::vector<double> Radii() const {
    std::set<double> all;
    for (const TCirclePart& part : FSizes.Parts)
      if (!part.IsUnlimited) all.insert(Radius(part));
    std::vector<double> some(all.begin(), all.end());
    const std::size_t count = some.size();
    if (count <= kMostRadii) return some;
    for (std::size_t i = 0; i < kMostRadii; ++i) some[i] = some[i * (count - 1) / (kMostRadii - 1)];
    some.resize(kMostRadii);
    return some;
  }

  long double MostArea() const {
    std::vector<const TCirclePart*> order;
    for (const TCirclePart& part : FSizes.Parts) order.push_back(&part);
    const auto share = [&](const TCirclePart* part) { return Radius(*part) / GrownRadius(*part); };
    SortBy(order, [&](const TCirclePart* a, const TCirclePart* b) { return Sign(share(b), share(a)); });
    long double room = TotalOf(FAreas);
    long double area = 0;
    for (const TCirclePart* part : order) {
      const long double copies = std::min<long double>(part->Amount, room / GrownArea(*part));
      area += copies * std::numbers::pi_v<long double> * Radius(*part) * Radius(*part);
      room -= copies * GrownArea(*part);
    }
    return area;
  }

 private:
  double GrownRadius(const TCirclePart& APart) const { return Radius(APart) + FJob.Gap / 2 - 2 * kTol; }
  long double GrownArea(const TCirclePart& APart) const {
    const long double radius = GrownRadius(APart);
    return std::numbers::pi_v<long double> * radius * radius;
  }

  template <class TMeasure>
  TRooms RoomsBy(const TMeasure& Measure) const {
    TRooms rooms;
    for (const TCirclePlate& plate : FSizes.Plates) {
      const Plate& whole = FJob.Plates[plate.Position];
      const double width = whole.Width - FJob.Margin[0] - FJob.Margin[2];
      const double height = whole.Height - FJob.Margin[1] - FJob.Margin[3];
      rooms.push_back({static_cast<long double>(Measure(width, height)), plate.Count, plate.Cost});
    }
    return rooms;
  }

  const Job& FJob;
  const TCircleSizes& FSizes;
  TRooms FAreas;
  long double FMostArea = 0;
  long double FNeededArea = 0;
  Int64 FCopies = 0;
};

// Nothing where no stock is large enough.
struct TLeast {
  Int64 Plates = 0;
  long double Cost = 0;
};

// The cost only where asked for.
std::optional<TLeast> LeastByOler(const TCircleSums& Sums, bool AsksCost) {
  TLeast least;
  const std::vector<double> radii = Sums.Radii();
  for (const double radius : radii) {
    const TRooms rooms = Sums.RoomsFor(radius);
    const Int64 need = Sums.CopiesFrom(radius);
    if (static_cast<long double>(need) > TotalOf(rooms)) return std::nullopt;
    least.Plates = std::max(least.Plates, LeastPlates(rooms, static_cast<long double>(need)));
    if (AsksCost) least.Cost = std::max(least.Cost, LeastCostOfWhole(rooms, need, kMostSteps / Size(radii)));
  }
  return least;
}

long double CostOfCheapest(TRooms Rooms, Int64 Plates) {
  for (TRoom& room : Rooms) room.Each = 1;
  return LeastCost(std::move(Rooms), static_cast<long double>(Plates));
}

void AddPlatesAndCost(const TCircleSizes& Sizes, const TCircleSums& Sums, std::vector<Bound>& Bounds) {
  if (Sums.NeededArea() > TotalOf(Sums.Areas())) return;
  const std::optional<TLeast> byOler = LeastByOler(Sums, !HasOneCost(Sizes));
  if (!byOler) return;
  const Int64 byArea = LeastPlates(Sums.Areas(), Sums.NeededArea());
  const Int64 plates = std::max(byArea, byOler->Plates);
  Bounds.push_back({"plates", "area", static_cast<double>(byArea)});
  if (plates > byArea) Bounds.push_back({"plates", "oler", static_cast<double>(plates)});
  if (HasOneCost(Sizes)) return;
  std::vector<double> costs;
  for (const TCirclePlate& plate : Sizes.Plates) costs.push_back(plate.Cost);
  double least = -1;
  const auto add = [&](const char* Kind, long double Cost) {
    const double cost = RoundToTwelveDigits(static_cast<double>(Cost));
    if (cost <= least) return;
    Bounds.push_back({"cost", Kind, cost});
    least = cost;
  };
  add("area", NextSum(costs, LeastCost(Sums.Areas(), Sums.NeededArea())));
  add("oler", NextSum(costs, byOler->Cost));
  add("plates", CostOfCheapest(Sums.Areas(), plates));
}

// The most circles that the stock holds.
double MostByOler(const Job& AJob, const TCircleSizes& Sizes, const TCircleSums& Sums) {
  TRooms rooms = Sums.RoomsFor(Sums.Radius(Sizes.Parts[0]));
  for (int i = 0; i < Size(rooms); ++i) rooms[i].Count = *AJob.Plates[Sizes.Plates[i].Position].Count;
  return static_cast<double>(TotalOf(rooms));
}

}  // namespace

double OlerBound(double Width, double Height, double Radius, double Gap) {
  const double pitch = 2 * Radius + Gap - 3 * kTol;
  const double a = (Width - 2 * Radius + 4 * kTol) / pitch;
  const double b = (Height - 2 * Radius + 4 * kTol) / pitch;
  if (a < 0 || b < 0) return 0;
  return std::floor(2 / std::numbers::sqrt3 * a * b + a + b + 1);
}

std::vector<Bound> BoundsOfCircles(const Job& AJob, const TCircleSizes& Sizes) {
  if (Sizes.Parts.empty()) return {{"plates", "area", 0}};
  const TCircleSums sums(AJob, Sizes);
  const auto hasCount = [&](const TCirclePlate& plate) { return AJob.Plates[plate.Position].Count.has_value(); };
  std::vector<Bound> bounds;
  const bool areEqual = Sizes.HasOneSize() && std::ranges::all_of(Sizes.Plates, hasCount);
  const bool isUnlimited = std::ranges::any_of(Sizes.Parts, &TCirclePart::IsUnlimited);
  if (!isUnlimited) bounds.push_back({"count", "demand", static_cast<double>(sums.Copies())});
  if (areEqual) bounds.push_back({"count", "oler", MostByOler(AJob, Sizes, sums)});
  if (sums.Copies() > 0) AddPlatesAndCost(Sizes, sums, bounds);
  if (!areEqual && (isUnlimited || sums.StockBinds()))
    bounds.push_back({"area", "stock", RoundToTwelveDigits(static_cast<double>(sums.MostArea()))});
  return bounds;
}

bool HasOneCost(const TCircleSizes& Sizes) {
  return std::ranges::all_of(Sizes.Plates,
                             [&](const TCirclePlate& plate) { return plate.Cost == Sizes.Plates[0].Cost; });
}

}  // namespace platenest::detail
