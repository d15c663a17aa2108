#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "CircleInstances.h"
#include "CircleSuite.h"
#include "platenest/UCircleNest/UCircleNest.h"

namespace platenest::bench {

namespace {

constexpr double kNoLookAhead = -4294967295.0;

struct TPacker : TCirclePacking {
  using TCirclePacking::GenerateInitConfig;
  using TCirclePacking::GeneratePosibleCP;
  using TCirclePacking::GreedyPackingEx;
  using TCirclePacking::PackingMultiThread;
  using TCirclePacking::TCirclePacking;
};

struct TCounter : TMaxCirclePacking {
  using TMaxCirclePacking::BeginTrials;
  using TMaxCirclePacking::TMaxCirclePacking;
  using TMaxCirclePacking::TriangleDivide;
  using TMaxCirclePacking::TryCornerBlocks;
  using TMaxCirclePacking::TryGrid;
  using TMaxCirclePacking::TryMethodNew;
  using TMaxCirclePacking::TrySquareBlocks;
};

class TTable {
 public:
  explicit TTable(const TArguments& Arguments) : FArguments(Arguments) {}

  // Times of Repeat calls. Result is what the last one returns.
  TRow& Time(const std::string& Id, int Repeat, const std::function<double()>& Work) {
    TRow row;
    row.Id = Id;
    const TTimes times = MedianTimes(Repeat, [&] { row.Result = Work(); });
    row.Ms = times.Ms;
    row.Figures = {{"cpu_ms", times.CpuMs}};
    FRows.push_back(row);
    std::printf("%-34s %12.6g %12.3f ms %12.3f ms of processor %s\n", Id.c_str(), row.Result, times.Ms, times.CpuMs,
                row.Fault.c_str());
    std::fflush(stdout);
    return FRows.back();
  }
  bool IsAsked(const std::string& Group) const { return FArguments.Id.empty() || FArguments.Id == Group; }
  int Repeat() const { return FArguments.Repeat; }
  double Seconds() const { return FArguments.Seconds; }
  std::vector<TRow> TakeRows() { return std::move(FRows); }

 private:
  const TArguments& FArguments;
  std::vector<TRow> FRows;
};

void TimePatterns(TTable& Table) {
  for (const int pitches : {250, 500, 1000}) {
    const TVRect2D plate = TVRect2D::FromSize(2.0 * pitches, 2.0 * pitches);
    const std::string size = std::to_string(pitches);
    Table.Time("counts " + size + "x" + size, Table.Repeat(), [&] {
      TCounter counter(plate, 1);
      counter.BeginTrials();
      counter.TryGrid();
      counter.TrySquareBlocks();
      counter.TryCornerBlocks();
      counter.TryMethodNew();
      counter.TriangleDivide();
      return 0.0;
    });
    Table.Time("counts and layout " + size + "x" + size, Table.Repeat(),
               [&] { return 1.0 * TMaxCirclePacking(plate, 1).TryMaxFill(); });
  }
}

void TimeColumns(TTable& Table) {
  for (const int rows : {10, 50, 300})
    Table.Time("300 columns of " + std::to_string(rows), Table.Repeat(), [rows] {
      TVPoint2DList points;
      DynamicSinglCircleNest(1, 2 * rows + 0.7, 600.7, 0, points);
      return 1.0 * Size(points);
    });
}

// Sizes evenly between the two, as many as asked for, each with that count.
TCircleSizes SizesBetween(double Least, double Most, int Kinds, int Each) {
  TCircleSizes made;
  for (int i = 0; i < Kinds; ++i) {
    made.Radii.push_back(Most - (Most - Least) * i / std::max(1, Kinds - 1));
    made.Counts.push_back(Each);
  }
  return made;
}

// One pass of the greedy without look-ahead, from the two largest circles in the bottom corners. How many it places.
double GreedyPass(const TCircleSizes& Sizes, double Side) {
  const TPacker packer(TVRect2D::FromSize(Side, Side), 0, Sizes.Radii, Sizes.Counts);
  std::vector<int> all, left = Sizes.Counts;
  for (int i = 0; i < Size(Sizes.Radii); ++i) all.push_back(i);
  const int second = left[0] > 1 ? 0 : 1;
  const double r1 = Sizes.Radii[0], r2 = Sizes.Radii[static_cast<std::size_t>(second)];
  TCircleNestRst placed{{0, r1, r1}, {second, Side - r2, r2}};
  --left[0];
  --left[static_cast<std::size_t>(second)];
  TPosibleCPList candidates = packer.GeneratePosibleCP(all, left, placed, false);
  packer.GreedyPackingEx(all, left, placed, 0, kNoLookAhead, candidates);
  return Size(placed);
}

void TimeGreedy(TTable& Table) {
  const auto side = [](const TCircleSizes& sizes) { return std::sqrt(sizes.Area() / 0.8); };
  for (const int count : {100, 300}) {
    const TCircleSizes sizes = SizesBetween(50, 200, count, 1);
    Table.Time("greedy, " + std::to_string(count) + " sizes", Table.Repeat(),
               [&] { return GreedyPass(sizes, side(sizes)); });
  }
  const TCircleSizes two = SizesBetween(60, 120, 2, 500);
  Table.Time("greedy, 1000 of two sizes", Table.Repeat(), [&] { return GreedyPass(two, side(two)); });
}

// What there is to place fills the plate to Share, so that it is seldom all placed.
void TimeBudgets(TTable& Table) {
  struct TBudget {
    int Kinds, Each, Ms;
  };
  constexpr double share = 0.95;
  for (const auto& [kinds, each, ms] :
       {TBudget{30, 1, 1000}, TBudget{100, 1, 2000}, TBudget{6, 25, 5000}, TBudget{200, 1, 2000}, TBudget{300, 1, 2000},
        TBudget{300, 1, 5000}, TBudget{2, 150, 2000}}) {
    const TCircleSizes sizes = SizesBetween(50, 150, kinds, each);
    const double side = std::sqrt(sizes.Area() / share);
    const int budget = ms;
    TRow& row = Table.Time(
        "budget " + std::to_string(ms) + " ms, " + std::to_string(kinds) + " sizes x " + std::to_string(each), 1,
        [&sizes, side, budget] {
          TCirclePacking packing(TVRect2D::FromSize(side, side), 0, sizes.Radii, sizes.Counts);
          packing.Packing(0, budget);
          return packing.OccuRate();
        });
    row.Figures.emplace_back("budget_ms", ms);
    std::printf("%-34s %12s %+12.1f ms over the budget\n", "", "", row.Ms - ms);
  }
}

// The work is the same on any number of threads: nothing ends before all start pairs are through twice.
void TimeThreads(TTable& Table) {
  const TCircleSizes sizes = SizesBetween(50, 150, 60, 1);
  const double side = std::sqrt(sizes.Area() / 0.98);
  double alone = 0;
  for (const int threads : {1, 2, 4}) {
    const TRow& row = Table.Time("60 sizes, all pairs, threads " + std::to_string(threads), Table.Repeat(), [&] {
      TPacker packer(TVRect2D::FromSize(side, side), 0, sizes.Radii, sizes.Counts);
      packer.GenerateInitConfig();
      packer.SetThreadLimit(threads);
      packer.PackingMultiThread(kNoLookAhead, threads, 1);
      return packer.OccuRate();
    });
    if (threads == 1) alone = row.Ms;
    std::printf("%-34s %12s %12.2f times the configurations a second\n", "", "", alone / row.Ms);
  }
}

}  // namespace

std::vector<TRow> RunCircleTimes(const TArguments& Arguments) {
  TTable table(Arguments);
  constexpr std::pair<const char*, void (*)(TTable&)> groups[] = {{"patterns", TimePatterns},
                                                                  {"columns", TimeColumns},
                                                                  {"greedy", TimeGreedy},
                                                                  {"budgets", TimeBudgets},
                                                                  {"threads", TimeThreads}};
  for (const auto& [name, run] : groups)
    if (table.IsAsked(name)) run(table);
  return table.TakeRows();
}

}  // namespace platenest::bench
