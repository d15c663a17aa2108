#include "JobRepeat.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "FillFinish.h"
#include "FillNesters.h"
#include "FillRows.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

constexpr char kMethod[] = "repeat";
// From this number of sizes times copies on a plate on, rows come first.
constexpr double kRowsWork = 2e4;
// Rows are shown parts for so many plates.
constexpr double kRowsShare = 1.5;
// Up to this work the nester's free rectangles are tried on every plate, up to the other one the raster program.
constexpr double kMostSmartWork = 2e5;
constexpr double kMostProgramWork = 2e3;
constexpr double kWorkPerMs = 1e4;
constexpr int kFirstTrials = 4;
constexpr int kTrials = 40;

// Rows of the highest parts that are left. Each call looks at little more than it places, so that thousands of
// layouts of thousands of sizes take a moment.
class TRowsNest {
 public:
  explicit TRowsNest(const TJobSizes& Sizes) : FSizes(Sizes) {
    for (int i = 0; i < Size(Sizes.Parts); ++i) FOrder.push_back(i);
    const auto height = [&](int i) { return std::min(Sizes.Parts[i].Width, Sizes.Parts[i].Height); };
    SortBy(FOrder, [&](int a, int b) { return Sign(height(b), height(a)); });
  }

  TNestedRects operator()(int Plate, std::span<const int> Left) {
    std::erase_if(FOrder, [&](int part) { return Left[part] <= 0 && !FSizes.Parts[part].IsUnlimited; });
    const TJobPlate& plate = FSizes.Plates[Plate];
    double room = kRowsShare * (plate.Width + FSizes.Gap) * (plate.Height + FSizes.Gap);
    std::vector<int> shown;
    for (const int part : FOrder) {
      if (room <= 0) break;
      const TJobPart& each = FSizes.Parts[part];
      if (Left[part] <= 0 || !Holds(plate, each)) continue;
      shown.push_back(part);
      room -= (each.Width + FSizes.Gap) * (each.Height + FSizes.Gap) * Left[part];
    }
    const TFillSizes fill = FillSizesOf(FSizes, Plate, shown, Left);
    return FromFill(FSizes, fill, NestRows(fill, AllOffered(fill)));
  }

 private:
  const TJobSizes& FSizes;
  std::vector<int> FOrder;
};

std::vector<int> Everything(const TJobSizes& Sizes) {
  std::vector<int> left;
  for (const TJobPart& part : Sizes.Parts) left.push_back(part.Amount);
  return left;
}

double GreatestWork(const TJobSizes& Sizes) {
  double work = 0;
  const std::vector<int> left = Everything(Sizes);
  for (int i = 0; i < std::min(8, Size(Sizes.Plates)); ++i) work = std::max(work, WorkOf(FillSizesOf(Sizes, i, left)));
  return work;
}

TJobLayouts Walk(const TJobSizes& Sizes, std::span<const int> Order, const TPlateNest& Nest) {
  std::vector<int> left = AskedCopies(Sizes);
  std::vector<int> stock = StockLeft(Sizes, {});
  TJobLayouts layouts = FillPlates(Sizes, Order, left, stock, Nest);
  PlaceLeftOver(Sizes, layouts, Nest);
  return layouts;
}

// The best of all that fits the time, by area.
class TNestersNest {
 public:
  TNestersNest(TJobSearch& Search, TSkyTrials& Trials, bool AsksProgram)
      : FSearch(Search), FTrials(Trials), FAsksProgram(AsksProgram) {}

  TNestedRects operator()(int Plate, std::span<const int> Left) {
    const TJobSizes& sizes = FSearch.Sizes();
    const TFillSizes fill = FillSizesOf(sizes, Plate, Left);
    if (fill.Parts.empty()) return {};
    FBest = FTrials.Nest(kTrials)(Plate, Left);
    FBestArea = AreaOf(sizes, FBest);
    const double work = WorkOf(fill);
    const auto mayTurn = [](const TFillPart& part) { return part.MayTurn; };
    const bool turnsAll = std::ranges::all_of(fill.Parts, mayTurn);
    const bool turnsSome = std::ranges::any_of(fill.Parts, mayTurn);
    if (work <= kMostSmartWork) Take(fill, work, [&] { return NestAll(fill); });
    if (work <= kMostSmartWork && turnsAll) Take(fill, work, [&] { return NestRaster(fill); });
    if (work <= kMostProgramWork && FAsksProgram)
      Take(fill, work, [&] {
        if (turnsAll) return NestProgram(fill, true, false);
        return turnsSome ? NestWithTwins(fill, false) : NestUnturned(fill, false);
      });
    return std::exchange(FBest, {});
  }

 private:
  void Take(const TFillSizes& Fill, double Work, const std::function<TNestedRects()>& Nest) {
    if (RectNestStopped() || !FSearch.Control().Affords(1 + Work / kWorkPerMs)) return;
    FSearch.Try([&] {
      TNestedRects nested = Nest();
      TidyLayout(Fill, nested);
      FillFreeBoxes(Fill, nested);
      TNestedRects layout = FromFill(FSearch.Sizes(), Fill, nested);
      const double area = AreaOf(FSearch.Sizes(), layout);
      if (area <= FBestArea) return;
      FBest = std::move(layout);
      FBestArea = area;
    });
  }

  TJobSearch& FSearch;
  TSkyTrials& FTrials;
  bool FAsksProgram;
  TNestedRects FBest;
  double FBestArea = 0;
};

}  // namespace

void RepeatQuickly(TJobSearch& Search, TSkyTrials& Trials) {
  const TStopTokenScope scope(Search.Control().CallersToken());
  const TJobSizes& sizes = Search.Sizes();
  const bool isGreat = GreatestWork(sizes) > kRowsWork;
  Search.Try([&] {
    const TPlateNest nest = isGreat ? TPlateNest(TRowsNest(sizes)) : Trials.Nest(kFirstTrials);
    Search.Offer(kMethod, Walk(sizes, PlateOrder(sizes), nest));
  });
  Search.Control().Affords(1);
}

namespace {

void RepeatOrders(TJobSearch& Search, TSkyTrials& Trials) {
  const TJobSizes& sizes = Search.Sizes();
  // No clock would end the program in a deterministic run.
  for (const bool asksProgram : {false, true}) {
    if (asksProgram && Search.Run().Deterministic) return;
    for (const std::vector<int>& order : PlateOrders(sizes)) {
      if (Search.IsOver() || RectNestStopped()) return;
      Search.Try([&] { Search.Offer(kMethod, Walk(sizes, order, TNestersNest(Search, Trials, asksProgram))); });
      Search.Control().Affords(Trials.TakeWork() / kTrialWorkPerMs);
    }
  }
}

}  // namespace

void RepeatNested(TJobSearch& Search, TSkyTrials& Trials, double Share) {
  const TTimeShare share(Search.SecondsOf(Share));
  RepeatOrders(Search, Trials);
  if (Share >= 1) Search.EndWith(share);
}

}  // namespace platenest::detail
