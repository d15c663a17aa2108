#include "FillCorpus.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>

#include "GuillotineProgram.h"
#include "RskfTables.h"
#include "platenest/URectNest/RSKF.h"

namespace platenest::bench {

namespace {

// Sides of 30 to 140 and one to eight sizes between an eighth of the short side and two thirds of the long one: no
// size is small enough to be laid in groups. Amounts are far above what fits: those that just suffice keep sums of
// sides off the raster, where rounding up to the next point then costs up to a fifth. Half of the jobs state worth of
// 0.6 to 1.4 times the area.
test::TFillCase RandomCase(unsigned Seed) {
  std::mt19937 engine(Seed);
  const auto pick = [&engine](int low, int high) {
    return low + static_cast<int>(engine() % unsigned(high - low + 1));
  };
  test::TFillCase made;
  const int w = pick(30, 110), l = std::max(w, pick(w, 140));
  made.Plate = TVRect2D::FromSize(l, w);
  made.Unlimited = true;
  made.CanTurn = pick(0, 1) == 1;
  made.Weighted = pick(0, 1) == 1;
  const int count = pick(1, 8);
  for (int i = 0; i < count; ++i) {
    const double a = pick(w / 8, l * 2 / 3), b = pick(w / 8, std::min(w, l * 2 / 3));
    TNestRect part(9999, i, TVRect2D::FromSize(a, b));
    part.Area = made.Weighted ? std::floor(a * b * pick(60, 140) / 100) : a * b;
    made.Parts.push_back(part);
  }
  return made;
}

// The program alone, without the filling of what it leaves.
class TUnboundedPass : public TRSKF {
 public:
  explicit TUnboundedPass(const test::TFillCase& Case) : TRSKF(Case.Plate, Case.Parts, 0, 0, 0, Case.Weighted) {}

  TNestedRects Layout(bool CanTurn) {
    TNestedRects layout;
    TRaster raster;
    if (!PrepareRaster(raster, CanTurn, false)) return layout;
    int column = 0, rasterRow = 0;
    detail::TRskfTables tables;
    if (URSKFCoreAlg(raster, column, rasterRow, tables)) GetNestResult(column, rasterRow, tables, raster, layout);
    return layout;
  }
};

TRow Compare(int Seed) {
  const test::TFillCase job = RandomCase(static_cast<unsigned>(Seed));
  TNestedRects layout;
  TRow row;
  row.Ms = MedianMs(1, [&] { layout = TUnboundedPass(job).Layout(job.CanTurn); });
  row.Id = Numbered("seed ", static_cast<std::size_t>(Seed));
  row.Result = WorthOf(layout, job);
  row.Best = row.Bound = BestByCuts(job);
  row.Fault = FillFault(layout, job);
  if (row.Fault.empty() && row.Result > row.Best) row.Fault = "worth more than straight cuts allow: " + TextOf(job);
  return row;
}

}  // namespace

std::vector<TRow> RunFillCorpus(const TArguments& Arguments) {
  std::vector<TRow> rows;
  int equal = 0, faults = 0;
  double worst = 1;
  int worstSeed = Arguments.Seed;
  std::vector<double> times;
  for (int i = 0; i < Arguments.Pairs; ++i) {
    rows.push_back(Compare(Arguments.Seed + i));
    const TRow& row = rows.back();
    const double share = row.Best > 0 ? row.Result / row.Best : 1;
    equal += row.Result == row.Best;
    faults += !row.Fault.empty();
    times.push_back(row.Ms);
    if (!row.Fault.empty()) std::printf("%s: %s\n", row.Id.c_str(), row.Fault.c_str());
    if (share >= worst) continue;
    worst = share;
    worstSeed = Arguments.Seed + i;
  }
  std::printf(
      "%zu jobs, %.2f %% equal to the best by straight cuts, worst %.4f of it (seed %d), %d faults, "
      "median %.3f ms\n",
      rows.size(), 100.0 * equal / static_cast<double>(rows.size()), worst, worstSeed, faults, Quantile(times, 0.5));
  return rows;
}

}  // namespace platenest::bench
