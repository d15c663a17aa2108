#include "JobAnswer.h"

#include <algorithm>
#include <compare>
#include <map>
#include <utility>

#include "Assembly.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

struct TCount {
  int Part = 0;
  int Copies = 0;
  friend auto operator<=>(const TCount&, const TCount&) = default;
};
using TCounts = std::vector<TCount>;  // by part

double UsageOf(const TJobSizes& Sizes, const TJobLayout& Layout) {
  double area = 0;
  for (const TNestedRect& placed : Layout.Nested) area += Sizes.Parts[placed.Part.Idx].Area;
  return area / Sizes.Plates[Layout.Plate].Area;
}

// Drops what turns and must not.
void KeepLocks(const TJobSizes& Sizes, TNestedRects& Nested) {
  if (std::ranges::all_of(Sizes.Parts, &TJobPart::MayTurn)) return;
  const auto isWrong = [&](TNestedRect& placed) {
    const TJobPart& part = Sizes.Parts.at(placed.Part.Idx);
    if (!placed.IsRotate || part.MayTurn) return false;
    if (part.Width != part.Height) return true;
    placed.IsRotate = false;
    placed.Trans.X -= part.Height;
    return false;
  };
  TNestedRects kept;
  kept.reserve(Nested.size());
  for (TNestedRect& placed : Nested)
    if (!isWrong(placed)) kept.push_back(std::move(placed));
  Nested = std::move(kept);
}

// Fullest first, each with its usage, which is worked out once.
void SortByUsage(const TJobSizes& Sizes, TJobLayouts& Layouts) {
  std::vector<std::pair<double, int>> order;
  for (int i = 0; i < Size(Layouts); ++i) order.emplace_back(UsageOf(Sizes, Layouts[i]), i);
  SortBy(order, [](const auto& a, const auto& b) { return Sign(b.first, a.first); });
  TJobLayouts sorted;
  for (const auto& [usage, index] : order) sorted.push_back(std::move(Layouts[index]));
  Layouts = std::move(sorted);
}

// Takes layouts, fullest first, as far as stock and demand go.
class TAllotment {
 public:
  explicit TAllotment(const TJobSizes& Sizes) : FCounts(Sizes.Parts.size()) {
    for (const TJobPart& part : Sizes.Parts) FLeft.push_back(part.Amount);
    for (const TJobPlate& plate : Sizes.Plates) FStock.push_back(plate.Count);
  }

  void Take(TJobLayout Layout) {
    const TCounts counts = CountsIn(Layout.Nested);
    int copies = Layout.Copies;
    while (copies > 0 && FStock.at(Layout.Plate) > 0) {
      const TCounts kept = WithinDemand(counts);
      if (kept.empty()) return;
      const int alike = std::min({copies, FStock[Layout.Plate], PlatesAlike(kept)});
      for (const auto& [part, count] : kept) FLeft[part] -= Int64{count} * alike;
      FStock[Layout.Plate] -= alike;
      copies -= alike;
      const bool isWhole = kept == counts;
      const bool isLast = isWhole && copies == 0;
      TNestedRects nested = isLast ? std::move(Layout.Nested) : (isWhole ? Layout.Nested : Only(kept, Layout.Nested));
      Join({Layout.Plate, alike, std::move(nested)}, kept);
    }
  }
  TJobLayouts Taken() && { return std::move(FTaken); }

 private:
  TCounts CountsIn(const TNestedRects& Nested) {
    std::vector<int> met;
    for (const TNestedRect& placed : Nested)
      if (FCounts.at(placed.Part.Idx)++ == 0) met.push_back(placed.Part.Idx);
    std::ranges::sort(met);
    TCounts counts;
    for (const int part : met) counts.push_back({part, std::exchange(FCounts[part], 0)});
    return counts;
  }

  TCounts WithinDemand(const TCounts& Counts) const {
    TCounts kept;
    for (const auto& [part, copies] : Counts)
      if (FLeft[part] > 0) kept.push_back({part, static_cast<int>(std::min<Int64>(copies, FLeft[part]))});
    return kept;
  }

  // How many plates can keep the same copies; one where a part runs out.
  int PlatesAlike(const TCounts& Kept) const {
    Int64 alike = limits::kPlates;
    for (const auto& [part, copies] : Kept) alike = std::min(alike, FLeft[part] / copies);
    return static_cast<int>(alike);
  }

  TNestedRects Only(const TCounts& Kept, const TNestedRects& Nested) {
    for (const auto& [part, copies] : Kept) FCounts[part] = copies;
    TNestedRects only;
    for (const TNestedRect& placed : Nested) {
      if (FCounts[placed.Part.Idx] == 0) continue;
      --FCounts[placed.Part.Idx];
      only.push_back(placed);
    }
    return only;
  }

  void Join(TJobLayout Layout, const TCounts& Counts) {
    const auto [known, isNew] = FKnown.emplace(std::pair(Layout.Plate, Counts), Size(FTaken));
    if (isNew)
      FTaken.push_back(std::move(Layout));
    else
      FTaken[known->second].Copies += Layout.Copies;
  }

  std::vector<int> FCounts;  // all 0 between two uses
  std::vector<Int64> FLeft;
  std::vector<int> FStock;
  std::map<std::pair<int, TCounts>, int> FKnown;
  TJobLayouts FTaken;
};

}  // namespace

TJobMerit MeritOf(const TJobSizes& Sizes, const TJobLayouts& Layouts) {
  TJobMerit merit;
  const std::vector<Int64> placed = PlacedCopies(Sizes, Layouts);
  for (int i = 0; i < Size(placed); ++i) {
    const TJobPart& part = Sizes.Parts[i];
    if (part.IsUnlimited)
      merit.UnlimitedArea += part.Area * static_cast<double>(placed[i]);
    else
      merit.UnplacedArea += part.Area * static_cast<double>(std::max<Int64>(0, part.Amount - placed[i]));
  }
  std::vector<Int64> used(Sizes.Plates.size());
  constexpr double kNone = 2;
  double last = kNone;
  double lastRemnant = kNone;
  for (const TJobLayout& layout : Layouts) {
    used[layout.Plate] += layout.Copies;
    merit.Plates += layout.Copies;
    const double usage = UsageOf(Sizes, layout);
    double& emptiest = Sizes.Plates[layout.Plate].Remnant ? lastRemnant : last;
    emptiest = std::min(emptiest, usage);
  }
  merit.LastUsage = last < kNone ? last : (lastRemnant < kNone ? lastRemnant : 0);
  for (int i = 0; i < Size(used); ++i) merit.Cost += Sizes.Plates[i].Cost * static_cast<double>(used[i]);
  for (double* sum : {&merit.UnplacedArea, &merit.UnlimitedArea, &merit.Cost, &merit.LastUsage})
    *sum = RoundToTwelveDigits(*sum);
  return merit;
}

bool IsBetter(const TJobMerit& A, const TJobMerit& B) {
  if (A.UnplacedArea != B.UnplacedArea) return A.UnplacedArea < B.UnplacedArea;
  if (A.UnlimitedArea != B.UnlimitedArea) return A.UnlimitedArea > B.UnlimitedArea;
  if (A.Cost != B.Cost) return A.Cost < B.Cost;
  if (A.Plates != B.Plates) return A.Plates < B.Plates;
  return A.LastUsage < B.LastUsage;
}

std::vector<Int64> PlacedCopies(const TJobSizes& Sizes, const TJobLayouts& Layouts) {
  std::vector<Int64> placed(Sizes.Parts.size());
  for (const TJobLayout& layout : Layouts)
    for (const TNestedRect& item : layout.Nested) placed.at(item.Part.Idx) += layout.Copies;
  return placed;
}

std::vector<int> LeftOver(const TJobSizes& Sizes, const TJobLayouts& Layouts) {
  const std::vector<Int64> placed = PlacedCopies(Sizes, Layouts);
  std::vector<int> left;
  for (int i = 0; i < Size(placed); ++i)
    left.push_back(static_cast<int>(std::max<Int64>(0, Sizes.Parts[i].Amount - placed[i])));
  return left;
}

Int64 CopiesIn(const TJobLayouts& Layouts) {
  Int64 copies = 0;
  for (const TJobLayout& layout : Layouts) copies += layout.Nested.Count();
  return copies;
}

void TidyAnswer(const TJobSizes& Sizes, TJobLayouts& Layouts) {
  for (TJobLayout& layout : Layouts) KeepLocks(Sizes, layout.Nested);
  SortByUsage(Sizes, Layouts);
  TAllotment allotment(Sizes);
  for (TJobLayout& layout : Layouts) allotment.Take(std::move(layout));
  Layouts = std::move(allotment).Taken();
  SortByUsage(Sizes, Layouts);
  SortBy(Layouts, [](const TJobLayout& a, const TJobLayout& b) { return Sign(a.Plate, b.Plate); });
}

std::vector<Layout> AssembleLayouts(const Job& AJob, const TJobSizes& Sizes, const TJobLayouts& Layouts) {
  const TScale scale = ScaleOf(AJob);
  std::vector<int> positions;
  for (const TJobPart& part : Sizes.Parts) positions.push_back(part.Position);
  std::vector<Layout> assembled;
  for (const TJobLayout& layout : Layouts) {
    const Plate& plate = AJob.Plates.at(Sizes.Plates.at(layout.Plate).Position);
    assembled.push_back(AssembleLayout(AJob, plate, TScaledPlate(AJob, plate, scale), layout.Nested, positions));
    assembled.back().Copies = layout.Copies;
  }
  return assembled;
}

}  // namespace platenest::detail
