#pragma once

#include <memory>
#include <span>

#include "platenest/foundation/Export.h"
#include "platenest/uBCPBase/BCPTypes.h"

namespace platenest {

// A linear program that is solved again and again while columns come and go: minimise objective * x with
// row bounds on matrix * x and column bounds on x, continuous. Solved by the dual simplex of COIN-OR CLP, which goes on
// from the last basis: after a new column that takes some pivots only.
//
// Bounds: values from 1e30 up mean no upper bound, from -1e30 down no lower one. A lower bound above its upper one is
// legal and makes the program infeasible until one of them is changed.
//
// Errors, with the program unchanged: TArgumentError for lengths that do not fit and for numbers that are not finite
// (bounds: NaN); TRangeError for a column that does not exist. TNestError if the LP library gives up by itself.
//
// One object for one thread at a time, different ones on any thread. Writes nothing to the standard streams.
class PLATENEST_API TCbcLPSolver {
 public:
  // AMatrix is dense, row first, one row per entry of ARowLB and ARowUB, each as long as AObj. Empty column bounds mean
  // 0 and infinity for every column. AFlag lets the LP library report each solve on the standard output.
  TCbcLPSolver(const TDoubleMatrix& AMatrix, const TDoubleDynArray& AObj, bool AFlag, const TDoubleDynArray& ARowLB,
               const TDoubleDynArray& ARowUB, const TDoubleDynArray& AColLB = {}, const TDoubleDynArray& AColUB = {});
  ~TCbcLPSolver();
  TCbcLPSolver(TCbcLPSolver&&) noexcept;
  TCbcLPSolver& operator=(TCbcLPSolver&&) noexcept;

  int RowCount() const;
  int ColCount() const;

  // Appends a column, ACol with one entry per row.
  void AddColumn(std::span<const double> ACol, double AObj, double ALB, double AUB);
  // Later columns move down by one.
  void DeleteColumn(int AIdx);

  void SetColLB(int AIdx, double V);
  void SetColUB(int AIdx, double V);
  // kBCPInfinity for no bound.
  double GetColUB(int AIdx) const;

  // The least objective, with Status true; for anything but a proven optimum kBCPInfinity, with Status false.
  double Solve(bool& Status);

  // Of the last Solve, unchanged by what came after it; empty before the first one and after one without an optimum.
  // The row price is the change of the objective per unit of the row's bound: at least 0 where a lower bound binds, at
  // most 0 where an upper one does.
  const TDoubleDynArray& GetColSolution() const;
  const TDoubleDynArray& GetRowPrice() const;

 private:
  struct TModel;
  std::unique_ptr<TModel> FModel;
};

}  // namespace platenest
