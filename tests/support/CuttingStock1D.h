#pragma once

#include <algorithm>
#include <memory>
#include <numeric>
#include <tuple>
#include <utility>
#include <vector>

#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Knapsack.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/uBCPBase/BCPBase.h"

// One-dimensional cutting stock: bars of one length, pieces of some lengths with a demand each, as few bars as can be.
// Small enough to be solved by other means, so that a search can be checked against them.
namespace platenest {

// Pieces cut from one bar, by main row.
class TBarPattern : public TBCPVariable {
 public:
  TBarPattern(TIntegerDynArray ACounts, double AUsage) : Counts(std::move(ACounts)), Usage(AUsage) {}

  std::unique_ptr<TBCPVariable> Clone() const override { return std::make_unique<TBarPattern>(*this); }
  double GetObjCoeff() const override { return 1; }
  double GetActualCost() const override { return Usage; }
  bool IsSameWith(const TBCPVariable& AVar) const override { return Bar(AVar).Counts == Counts; }
  // The fullest bar first; equal patterns may so be separated by others that use as much.
  int Compare(const TBCPVariable& Left, const TBCPVariable& Right) const override {
    return Sign(Bar(Right).Usage, Bar(Left).Usage);
  }
  TDoubleDynArray GetColumn(int AVecSize) const override {
    NestAssert(AVecSize >= Size(Counts));
    TDoubleDynArray column(Counts.begin(), Counts.end());
    column.resize(static_cast<std::size_t>(AVecSize));
    return column;
  }

  TIntegerDynArray Counts;
  double Usage;  // part of the bar that is cut into pieces

 private:
  static const TBarPattern& Bar(const TBCPVariable& AVar) { return dynamic_cast<const TBarPattern&>(AVar); }
};

using TBarSolution = TBCPSolution<TBarPattern>;

// Patterns by counts and usage, with how often they are used.
inline TBarSolution BarSolution(const std::vector<std::tuple<TIntegerDynArray, double, int>>& Entries) {
  TBarSolution solution;
  for (const auto& [counts, usage, times] : Entries) solution.AddSubSolution(TBarPattern(counts, usage), times);
  return solution;
}

inline int Bars(const TBarSolution& Solution) {
  int bars = 0;
  for (const auto& pair : Solution) bars += pair.Value;
  return bars;
}

class TBarProblem : public TBCPProblem<TBarPattern> {
 public:
  using TBCPProblem::GetSubBCPProblem;

  TBarProblem(int ABarLength, TIntegerDynArray ALengths, const TIntegerDynArray& ADemand)
      : TBCPProblem(TDoubleDynArray(ADemand.begin(), ADemand.end()), TIntegerDynArray(ADemand.size(), 1), true),
        BarLength(ABarLength),
        Lengths(std::move(ALengths)) {
    NestAssert(Lengths.size() == ADemand.size());
  }

  void SetDualCost(const TDoubleDynArray& AWVec, double Amp) override {
    NestAssert(AWVec.size() == FBVec.size());
    FWVec = AWVec;
    for (double& worth : FWVec) worth *= Amp;
  }
  double GetDefaultDualCost(int AIdx) const override { return Lengths[AIdx]; }
  // Rows without a demand are left out.
  std::unique_ptr<TBCPProblem> GetSubBCPProblem(const TIntegerDynArray& ARowDict,
                                                const TIntegerDynArray& ANumVec) const override {
    NestAssert(ARowDict.size() == ANumVec.size());
    auto sub = std::make_unique<TBarProblem>(*this);
    sub->FRowDict.clear();
    sub->FBVec.clear();
    for (std::size_t i = 0; i < ARowDict.size(); ++i) {
      if (ANumVec[i] <= 0) continue;
      sub->FRowDict.push_back(ARowDict[i]);
      sub->FBVec.push_back(ANumVec[i]);
    }
    sub->FIneqVec.assign(sub->FBVec.size(), 1);
    return sub;
  }

  int LengthOf(int Row) const { return Lengths[FRowDict[Row]]; }
  const TDoubleDynArray& Worths() const { return FWVec; }
  // From the counts by row of this problem.
  std::unique_ptr<TBarPattern> MakePattern(const TIntegerDynArray& RowCounts) const {
    TIntegerDynArray counts(Lengths.size());
    for (std::size_t row = 0; row < RowCounts.size(); ++row) counts[FRowDict[row]] = RowCounts[row];
    const int cut = std::inner_product(counts.begin(), counts.end(), Lengths.begin(), 0);
    return std::make_unique<TBarPattern>(std::move(counts), static_cast<double>(cut) / BarLength);
  }

  int BarLength;
  TIntegerDynArray Lengths;  // by main row
};

// A problem with any senses and any demand.
class TSenseProblem : public TBarProblem {
 public:
  TSenseProblem(const TDoubleDynArray& Demand, const TIntegerDynArray& Senses)
      : TBarProblem(10, TIntegerDynArray(Demand.size(), 1), TIntegerDynArray(Demand.size())) {
    FBVec = Demand;
    FIneqVec = Senses;
  }
};

// Pricing: the best pattern within the demand, by an exact knapsack over worths in a billionth of the largest one.
inline std::unique_ptr<TBarPattern> PriceBar(const TBCPProblem<TBarPattern>& ASubProblem, bool& Status,
                                             double& CostValue) {
  const auto& problem = dynamic_cast<const TBarProblem&>(ASubProblem);
  const TDoubleDynArray& worths = problem.Worths();
  const double largest = worths.empty() ? 0 : *std::max_element(worths.begin(), worths.end());
  Status = largest > 0;
  if (!Status) return nullptr;
  TIntegerDynArray lengths, limits, counts;
  std::vector<Int64> values;
  for (int row = 0; row < Size(worths); ++row) {
    lengths.push_back(problem.LengthOf(row));
    limits.push_back(Round<int>(problem.BVec()[row]));
    values.push_back(Round(worths[row] / largest * 1e9));
  }
  TKnapsackSolver::SolveMultiKnapsack(lengths, values, TItemLimits(limits), problem.BarLength, counts);
  CostValue = std::inner_product(counts.begin(), counts.end(), worths.begin(), 0.0);
  return problem.MakePattern(counts);
}

// First fit decreasing, bar by bar.
inline bool CutGreedily(const TBCPProblem<TBarPattern>& AProblem, TBarSolution& ASolution) {
  const auto& problem = dynamic_cast<const TBarProblem&>(AProblem);
  TIntegerDynArray rest, order(problem.BVec().size());
  for (const double demand : problem.BVec()) rest.push_back(Round<int>(demand));
  std::iota(order.begin(), order.end(), 0);
  SortBy(order, [&](int a, int b) { return Sign(problem.LengthOf(b), problem.LengthOf(a)); });
  for (;;) {
    TIntegerDynArray counts(rest.size());
    int space = problem.BarLength;
    for (const int row : order) {
      counts[row] = std::min(rest[row], space / problem.LengthOf(row));
      rest[row] -= counts[row];
      space -= counts[row] * problem.LengthOf(row);
    }
    if (space == problem.BarLength) return true;
    ASolution.AddSubSolution(problem.MakePattern(counts), 1);
  }
}

inline bool CutResidual(const TBCPProblem<TBarPattern>& ASubProblem, const TBarSolution& /*ACurSolution*/,
                        TBarSolution& AResult) {
  return CutGreedily(ASubProblem, AResult);
}

inline bool Never() {
  return false;
}

// AProblem outlives the manager.
inline TBCPSolverManager<TBarPattern> BarSolvers(const TBarProblem& AProblem) {
  TBCPSolverManager<TBarPattern> manager(&AProblem);
  manager.AddSubProblemSolver(PriceBar);
  manager.AddGreedySolver(CutGreedily);
  manager.AddResidualSolver(CutResidual);
  return manager;
}

// Chvátal, Linear Programming, 1983, chapter 13: LP value 452.25, optimum 453.
inline TBarProblem ChvatalRolls() {
  return {100, {45, 36, 31, 14}, {97, 610, 395, 211}};
}

}  // namespace platenest
