#include "JobFill.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>
#include <utility>

#include "FillFinish.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

constexpr int kMostOrders = 6;

double CostForArea(const TJobPlate& Plate) {
  return Plate.Cost / Plate.Area;
}

// How often the demand allows a layout, and that is taken off.
int Repeated(const TNestedRects& Nested, int Most, std::vector<int>& Left) {
  std::vector<int> parts;
  for (const TNestedRect& placed : Nested) parts.push_back(placed.Part.Idx);
  std::ranges::sort(parts);
  int times = Most;
  for (auto first = parts.begin(); first != parts.end();) {
    const auto next = std::upper_bound(first, parts.end(), *first);
    times = std::min(times, Left[*first] / static_cast<int>(next - first));
    first = next;
  }
  for (const int part : parts) Left[part] -= times;
  return times;
}

double AreaOf(const TJobSizes& Sizes, std::span<const int> Left) {
  double area = 0;
  for (int i = 0; i < Size(Left); ++i) area += Sizes.Parts[i].Area * Left[i];
  return area;
}

bool TakesAll(const TNestedRects& Nested, std::span<const int> Left) {
  Int64 copies = 0;
  for (const int left : Left) copies += left;
  return Nested.Count() == copies;
}

// The cheapest plate in stock, below the cost of Than, that takes all that is left by the same nest.
std::optional<TJobLayout> CheaperLast(const TJobSizes& Sizes, int Than, std::span<const int> Left,
                                      std::span<const int> Stock, const TPlateNest& Nest) {
  const double area = AreaOf(Sizes, Left);
  std::vector<int> kinds;
  for (int i = 0; i < Size(Sizes.Plates); ++i)
    if (Stock[i] > 0 && Sizes.Plates[i].Cost < Sizes.Plates[Than].Cost && Sizes.Plates[i].Area >= area)
      kinds.push_back(i);
  SortBy(kinds, [&](int a, int b) { return Sign(Sizes.Plates[a].Cost, Sizes.Plates[b].Cost); });
  constexpr int kMostTrials = 6;
  for (int i = 0; i < std::min(kMostTrials, Size(kinds)); ++i) {
    TNestedRects nested = Nest(kinds[i], Left);
    if (TakesAll(nested, Left)) return TJobLayout{kinds[i], 1, std::move(nested)};
  }
  return std::nullopt;
}

// One plate of a layout with more in its free rectangles, where something fits.
std::optional<TNestedRects> Topped(const TJobSizes& Sizes, const TJobLayout& Layout, std::span<const int> Left) {
  std::vector<int> all(Left.begin(), Left.end());
  for (const TNestedRect& placed : Layout.Nested) ++all[placed.Part.Idx];
  const TFillSizes fill = FillSizesOf(Sizes, Layout.Plate, all);
  std::vector<int> index(Sizes.Parts.size(), -1);
  for (int i = 0; i < Size(fill.Parts); ++i) index[fill.Parts[i].Position] = i;
  TNestedRects nested = Layout.Nested;
  for (TNestedRect& placed : nested) placed.Part.Idx = index[placed.Part.Idx];
  FillFreeBoxes(fill, nested);
  if (nested.Count() == Layout.Nested.Count()) return std::nullopt;
  return FromFill(Sizes, fill, nested);
}

void TopUp(const TJobSizes& Sizes, TJobLayouts& Layouts, std::vector<int>& Left) {
  for (int i = 0; i < Size(Layouts) && !IsAllPlaced(Left) && !RectNestStopped(); ++i) {
    std::optional<TNestedRects> topped = Topped(Sizes, Layouts[i], Left);
    if (!topped) continue;
    TNestedRects added;
    std::copy(topped->begin() + Layouts[i].Nested.Count(), topped->end(), std::back_inserter(added));
    const int times = Repeated(added, Layouts[i].Copies, Left);
    if (times == 0) continue;
    if (times < Layouts[i].Copies) Layouts.push_back({Layouts[i].Plate, Layouts[i].Copies - times, Layouts[i].Nested});
    Layouts[i].Copies = times;
    Layouts[i].Nested = std::move(*topped);
  }
}

bool FitsSomeStock(const TJobSizes& Sizes, std::span<const int> Stock, std::span<const int> Left) {
  for (int i = 0; i < Size(Left); ++i)
    for (int k = 0; k < Size(Stock) && Left[i] > 0; ++k)
      if (Stock[k] > 0 && Holds(Sizes.Plates[k], Sizes.Parts[i])) return true;
  return false;
}

}  // namespace

TFillSizes FillSizesOf(const TJobSizes& Sizes, int Plate, std::span<const int> Left) {
  std::vector<int> all(Left.size());
  std::iota(all.begin(), all.end(), 0);
  return FillSizesOf(Sizes, Plate, all, Left);
}

TFillSizes FillSizesOf(const TJobSizes& Sizes, int Plate, std::span<const int> Parts, std::span<const int> Left) {
  const TJobPlate& plate = Sizes.Plates[Plate];
  TFillSizes fill{plate.Width, plate.Height, Sizes.Gap, Sizes.Decimals, false, {}};
  const double room = (plate.Width + Sizes.Gap) * (plate.Height + Sizes.Gap);
  for (const int i : Parts) {
    const TJobPart& part = Sizes.Parts[i];
    if (Left[i] <= 0 || !Holds(plate, part)) continue;
    const double most = std::floor(room / ((part.Width + Sizes.Gap) * (part.Height + Sizes.Gap)) * (1 + 1e-9));
    TFillPart each{i, part.Width, part.Height};
    each.Asked = Left[i];
    each.Most = static_cast<int>(std::min<double>(Left[i], most));
    each.Offered = static_cast<int>(std::min<double>(Left[i], 2 * most + 100));
    each.IsScarce = Left[i] < most;
    each.Worth = part.Area;
    each.MayTurn = part.MayTurn;
    fill.Parts.push_back(each);
  }
  return fill;
}

TNestedRects FromFill(const TJobSizes& Sizes, const TFillSizes& Fill, const TNestedRects& Nested) {
  TNestedRects layout;
  layout.reserve(Nested.size());
  for (const TNestedRect& placed : Nested) {
    const int position = Fill.Parts.at(placed.Part.Idx).Position;
    const TJobPart& part = Sizes.Parts[position];
    TNestRect record(1, position, TVRect2D::FromSize(part.Width, part.Height));
    record.Area = part.Width * part.Height;
    layout.emplace_back(record, placed.IsRotate, placed.Trans);
  }
  return layout;
}

double AreaOf(const TJobSizes& Sizes, const TNestedRects& Nested) {
  double area = 0;
  for (const TNestedRect& placed : Nested) area += Sizes.Parts[placed.Part.Idx].Area;
  return area;
}

std::vector<int> AskedCopies(const TJobSizes& Sizes) {
  std::vector<int> copies;
  for (const TJobPart& part : Sizes.Parts) copies.push_back(part.IsUnlimited ? 0 : part.Amount);
  return copies;
}

bool IsAllPlaced(std::span<const int> Left) {
  return std::ranges::none_of(Left, [](int left) { return left > 0; });
}

std::vector<int> StockLeft(const TJobSizes& Sizes, const TJobLayouts& Layouts) {
  std::vector<int> stock;
  for (const TJobPlate& plate : Sizes.Plates) stock.push_back(plate.Count);
  for (const TJobLayout& layout : Layouts) stock[layout.Plate] -= layout.Copies;
  return stock;
}

std::vector<int> PlateOrder(const TJobSizes& Sizes) {
  std::vector<int> order;
  for (int i = 0; i < Size(Sizes.Plates); ++i) order.push_back(i);
  SortBy(order, [&](int left, int right) {
    const TJobPlate& a = Sizes.Plates[left];
    const TJobPlate& b = Sizes.Plates[right];
    if (a.Remnant || b.Remnant) return Sign(b.Remnant ? 1 : 0, a.Remnant ? 1 : 0);
    const int byCost = Sign(CostForArea(a), CostForArea(b));
    return byCost != 0 ? byCost : Sign(b.Area, a.Area);
  });
  return order;
}

std::vector<std::vector<int>> PlateOrders(const TJobSizes& Sizes) {
  std::vector<std::vector<int>> orders{PlateOrder(Sizes)};
  const std::vector<int> base = orders.front();
  const auto firstPlain =
      std::ranges::find_if(base, [&](int kind) { return !Sizes.Plates[kind].Remnant; }) - base.begin();
  for (auto i = firstPlain + 1; i < Size(base) && Size(orders) < kMostOrders; ++i) {
    std::vector<int> order = orders.front();
    std::rotate(order.begin() + firstPlain, order.begin() + i, order.begin() + i + 1);
    orders.push_back(std::move(order));
  }
  return orders;
}

TJobLayouts FillPlates(const TJobSizes& Sizes, std::span<const int> Order, std::vector<int>& Left,
                       std::vector<int>& Stock, const TPlateNest& Nest) {
  TJobLayouts layouts;
  for (const int kind : Order) {
    while (Stock[kind] > 0 && !IsAllPlaced(Left) && !RectNestStopped()) {
      TNestedRects nested = Nest(kind, Left);
      if (nested.empty()) break;
      if (!Sizes.Plates[kind].Remnant && TakesAll(nested, Left)) {
        if (std::optional<TJobLayout> last = CheaperLast(Sizes, kind, Left, Stock, Nest)) {
          --Stock[last->Plate];
          std::ranges::fill(Left, 0);
          layouts.push_back(std::move(*last));
          return layouts;
        }
      }
      const int times = Repeated(nested, Stock[kind], Left);
      if (times == 0) break;
      Stock[kind] -= times;
      layouts.push_back({kind, times, std::move(nested)});
    }
  }
  return layouts;
}

void PlaceLeftOver(const TJobSizes& Sizes, TJobLayouts& Layouts, const TPlateNest& Nest) {
  const std::vector<int> order = PlateOrder(Sizes);
  for (const bool isUnlimited : {false, true}) {
    std::vector<int> left = LeftOver(Sizes, Layouts);
    for (int i = 0; i < Size(left); ++i)
      if (Sizes.Parts[i].IsUnlimited != isUnlimited) left[i] = 0;
    if (IsAllPlaced(left)) continue;
    TopUp(Sizes, Layouts, left);
    std::vector<int> stock = StockLeft(Sizes, Layouts);
    if (IsAllPlaced(left) || !FitsSomeStock(Sizes, stock, left)) continue;
    TJobLayouts more = FillPlates(Sizes, order, left, stock, Nest);
    std::ranges::move(more, std::back_inserter(Layouts));
  }
}

}  // namespace platenest::detail
