#include "JobColumns.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "JobUnits.h"
#include "platenest/colgen/BCPRectNest.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

constexpr char kMethod[] = "cg";
constexpr int kTrials = 20;
constexpr double kMostUnits = 20000;
// More sizes make columns and pricing too large to come to anything; of columns to begin with, so many are taken.
constexpr int kMostSizes = 1500;
constexpr int kMostBeginnings = 3000;
// Where no clock ends the search, its looks at the watch are counted, about one for each LP: so many milliseconds for
// states times sizes of the raster, and in all no more than these.
constexpr double kWorkPerMs = 1e6;
constexpr double kLeastMsALook = 2;
constexpr double kMostMs = 3000;
constexpr double kBoundNoise = 1e-6;

class TColumnSearch {
 public:
  TColumnSearch(TJobSearch& Search, TSkyTrials& Trials, const std::vector<TJobLayouts>& Found)
      : FSearch(Search), FTrials(Trials), FFound(Found), FUnits(Search.Sizes(), kMostUnits) {}

  TJobLayouts Run(std::span<const int> Order) {
    const TJobSizes& sizes = FSearch.Sizes();
    std::vector<int> left = AskedCopies(sizes);
    TJobLayouts layouts;
    for (const int kind : Order) {
      if (IsAllPlaced(left) || RectNestStopped()) break;
      TJobLayouts more = RunKind(kind, left);
      std::ranges::move(more, std::back_inserter(layouts));
    }
    return layouts;
  }

 private:
  TJobLayouts RunKind(int Kind, std::vector<int>& Left) {
    TRectSolutionFifo queue;
    TBCPRectNest nest(FUnits.Rects(Left), TNestSpace(FUnits.Plate(Kind), 1, false), FUnits.Gap(), &queue);
    for (const TRectSolution& solution : Beginnings(Kind, Left)) nest.AddColumnList(solution);
    const double sizes = static_cast<double>(std::ranges::count_if(Left, [](int left) { return left > 0; }));
    const double msALook = std::max(kLeastMsALook, FUnits.RasterStates(Kind, Left) * sizes / kWorkPerMs);
    nest.SetWatch([&](const TBCPRectNest::TTree& tree) {
      const double lpValue = tree.Root().LPSol();
      FSearch.Tell(kMethod, lpValue > 0 ? std::optional(lpValue) : std::nullopt);  // 0 before the first LP
      const bool isSpent = !FSearch.IsTimed() && !IsAffordable(msALook);
      FIsStopped = isSpent || FSearch.IsOver();
      return FIsStopped;
    });
    TRectSolution solution;
    nest.Solve(solution, 0);
    NoteEstimate(nest.Tree());
    return Taken(Kind, solution, Left);
  }

  bool IsAffordable(double Ms) {
    FCountedMs += Ms;
    return FCountedMs <= kMostMs && FSearch.Control().Affords(Ms);
  }

  // A plain answer on plates of this kind alone, and what was found before.
  std::vector<TRectSolution> Beginnings(int Kind, std::span<const int> Left) {
    std::vector<TRectSolution> beginnings;
    std::vector<int> left(Left.begin(), Left.end());
    std::vector<int> stock(FSearch.Sizes().Plates.size());
    stock[Kind] = limits::kPlates;
    const int order[] = {Kind};
    beginnings.push_back(SolutionOf(Kind, FillPlates(FSearch.Sizes(), order, left, stock, FTrials.Nest(kTrials))));
    int columns = 0;
    for (auto layouts = FFound.rbegin(); layouts != FFound.rend() && columns < kMostBeginnings; ++layouts) {
      beginnings.push_back(SolutionOf(Kind, *layouts));
      columns += beginnings.back().Count();
    }
    return beginnings;
  }

  TRectSolution SolutionOf(int Kind, const TJobLayouts& Layouts) const {
    TRectSolution solution;
    for (const TJobLayout& layout : Layouts)
      if (layout.Plate == Kind) solution.AddSubSolution(FUnits.PatternOf(layout), layout.Copies);
    return solution;
  }

  // The bound is that of the root, which means nothing where the root was cut off.
  void NoteEstimate(const TBCPRectNest::TTree& Tree) {
    const bool isCut = (RectNestStopped() || FIsStopped) && Tree.Counts().Nodes <= 1;
    if (FSearch.Sizes().Plates.size() > 1 || isCut || !(Tree.GLB() > 0 && Tree.GLB() < limits::kPlates)) return;
    FSearch.SetEstimate(std::ceil(Tree.GLB() - kBoundNoise));
  }

  TJobLayouts Taken(int Kind, const TRectSolution& Solution, std::vector<int>& Left) const {
    std::vector<int> order;
    for (int i = 0; i < Solution.Count(); ++i) order.push_back(i);
    SortBy(order, [&](int a, int b) {
      return Sign(Solution.GetSubSolution(b).Key->Usage(), Solution.GetSubSolution(a).Key->Usage());
    });
    int stock = FSearch.Sizes().Plates[Kind].Count;
    TJobLayouts taken;
    for (const int i : order) {
      const auto& pair = Solution.GetSubSolution(i);
      const int copies = std::min(pair.Value, stock);
      if (copies <= 0) continue;
      stock -= copies;
      taken.push_back({Kind, copies, FUnits.LayoutOf(*pair.Key)});
      for (const TNestedRect& placed : pair.Key->NestedRects()) {
        int& left = Left[placed.Part.Idx];
        left = std::max(0, left - copies);
      }
    }
    return taken;
  }

  TJobSearch& FSearch;
  TSkyTrials& FTrials;
  const std::vector<TJobLayouts>& FFound;
  TJobUnits FUnits;
  double FCountedMs = 0;
  bool FIsStopped = false;  // by the watch
};

}  // namespace

void NestByColumns(TJobSearch& Search, TSkyTrials& Trials, double Share, const std::vector<TJobLayouts>& Found) {
  const TJobSizes& sizes = Search.Sizes();
  if (Search.IsOver() || Size(sizes.Parts) > kMostSizes || IsAllPlaced(AskedCopies(sizes))) return;
  Search.Try([&] {
    TColumnSearch columns(Search, Trials, Found);
    std::vector<TJobLayouts> answers;
    {
      const TTimeShare share(Search.SecondsOf(Share));
      for (const std::vector<int>& order : PlateOrders(sizes))
        if (!RectNestStopped() && !Search.IsOver()) answers.push_back(columns.Run(order));
      if (Share >= 1) Search.EndWith(share);
    }
    for (TJobLayouts& layouts : answers) {
      TidyAnswer(sizes, layouts);
      PlaceLeftOver(sizes, layouts, Trials.Nest(kTrials));
      Search.Offer(kMethod, std::move(layouts));
    }
  });
}

}  // namespace platenest::detail
