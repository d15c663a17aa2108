#include "platenest/uBCPBase/CbcLPSolver.h"

#include <ClpSimplex.hpp>
#include <CoinError.hpp>
#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "platenest/foundation/Errors.h"

namespace platenest {

namespace {

constexpr double kNoBound = 1e30;  // bounds from here on are none

// Runs Call, which may throw what the LP library throws: a class without a standard base.
template <class Function>
auto Guarded(const char* Operation, Function Call) {
  try {
    return Call();
  } catch (const CoinError& error) {
    throw TNestError(std::string("[Error] TCbcLPSolver.") + Operation + ": " + error.message());
  }
}

void Check(bool Condition, const char* Operation, const char* Text) {
  if (!Condition) throw TArgumentError(std::string("[Error] TCbcLPSolver.") + Operation + ": " + Text);
}

void CheckNumbers(std::span<const double> Numbers, const char* Operation) {
  Check(std::all_of(Numbers.begin(), Numbers.end(), [](double v) { return std::isfinite(v); }), Operation,
        "a coefficient is not finite");
}

void CheckBounds(std::span<const double> Bounds, const char* Operation) {
  Check(std::none_of(Bounds.begin(), Bounds.end(), [](double v) { return std::isnan(v); }), Operation,
        "a bound is not a number");
}

// No number can stand between the two. The library copes with a crossed pair, but aborts on an infinite lower bound.
bool Impossible(double Lower, double Upper) {
  return Lower > Upper || Lower >= kNoBound || Upper <= -kNoBound;
}

// As the library takes it. An impossible pair is never solved, so any finite number will do for its infinite side.
double ClpLower(double V) {
  if (V <= -kNoBound) return -COIN_DBL_MAX;
  return V >= kNoBound ? 0 : V;
}
double ClpUpper(double V) {
  if (V >= kNoBound) return COIN_DBL_MAX;
  return V <= -kNoBound ? 0 : V;
}

std::vector<double> Mapped(const TDoubleDynArray& Bounds, double (*Map)(double)) {
  std::vector<double> result(Bounds.size());
  std::transform(Bounds.begin(), Bounds.end(), result.begin(), Map);
  return result;
}

// A dense matrix by its columns, without the zeros.
struct TColumns {
  std::vector<CoinBigIndex> Start;
  std::vector<int> Row;
  std::vector<double> Value;

  TColumns(const TDoubleMatrix& Matrix, int ColCount) {
    Start.reserve(static_cast<std::size_t>(ColCount) + 1);
    Start.push_back(0);
    for (int col = 0; col < ColCount; ++col) {
      for (int row = 0; row < Size(Matrix); ++row) {
        if (Matrix[row][col] != 0) Append(row, Matrix[row][col]);
      }
      Start.push_back(Size(Row));
    }
  }
  explicit TColumns(std::span<const double> Column) {
    for (int row = 0; row < Size(Column); ++row) {
      if (Column[row] != 0) Append(row, Column[row]);
    }
  }

 private:
  void Append(int ARow, double V) {
    Row.push_back(ARow);
    Value.push_back(V);
  }
};

}  // namespace

struct TCbcLPSolver::TModel {
  // A column without coefficients stands in the library as a constant 0 that costs nothing, and gets its value here:
  // a re-solve of the library leaves such a column where it was when its bounds change.
  struct TColumn {
    double LB, UB;  // as told
    double Obj;
    bool IsEmpty;

    double LibraryLB() const { return IsEmpty ? 0 : ClpLower(LB); }
    double LibraryUB() const { return IsEmpty ? 0 : ClpUpper(UB); }
    double LibraryObj() const { return IsEmpty ? 0 : Obj; }
    // The cheapest value of an empty column; one of infinite size means that there is no optimum.
    double Cheapest() const { return Obj > 0 ? LB : Obj < 0 ? UB : std::clamp(0.0, LB, UB); }
    bool MayHaveOptimum() const { return !Impossible(LB, UB) && (!IsEmpty || std::fabs(Cheapest()) < kNoBound); }
  };

  ClpSimplex Lp;
  std::vector<TColumn> Columns;
  bool RowsImpossible = false;
  TDoubleDynArray ColSolution, RowPrice;

  TColumn& At(int Idx) {
    if (Idx < 0 || Idx >= Size(Columns))
      throw TRangeError("[Error] TCbcLPSolver: column " + std::to_string(Idx) + " does not exist");
    return Columns[Idx];
  }
  bool MayHaveOptimum() const {
    return !RowsImpossible && std::all_of(Columns.begin(), Columns.end(), std::mem_fn(&TColumn::MayHaveOptimum));
  }
  // One number of each column, as the library's arrays want them.
  std::vector<double> Library(double (TColumn::*Number)() const) const {
    std::vector<double> result(Columns.size());
    std::transform(Columns.begin(), Columns.end(), result.begin(), std::mem_fn(Number));
    return result;
  }
  // Places the empty columns and returns what they cost.
  double PlaceEmptyColumns() {
    double cost = 0;
    for (std::size_t i = 0; i < Columns.size(); ++i) {
      if (!Columns[i].IsEmpty) continue;
      ColSolution[i] = Columns[i].Cheapest();
      cost += Columns[i].Obj * ColSolution[i];
    }
    return cost;
  }
};

TCbcLPSolver::TCbcLPSolver(const TDoubleMatrix& AMatrix, const TDoubleDynArray& AObj, bool AFlag,
                           const TDoubleDynArray& ARowLB, const TDoubleDynArray& ARowUB, const TDoubleDynArray& AColLB,
                           const TDoubleDynArray& AColUB) {
  const auto fits = [&](const TDoubleDynArray& row) { return row.size() == AObj.size(); };
  Check(std::all_of(AMatrix.begin(), AMatrix.end(), fits), "Create", "a row and the objective differ in length");
  Check(ARowLB.size() == AMatrix.size() && ARowUB.size() == AMatrix.size(), "Create",
        "row bounds and rows differ in count");
  Check((AColLB.empty() || fits(AColLB)) && (AColUB.empty() || fits(AColUB)), "Create",
        "column bounds and columns differ in count");
  for (const TDoubleDynArray& row : AMatrix) CheckNumbers(row, "Create");
  CheckNumbers(AObj, "Create");
  for (const auto* bounds : {&ARowLB, &ARowUB, &AColLB, &AColUB}) CheckBounds(*bounds, "Create");

  const TColumns entries(AMatrix, Size(AObj));
  FModel = std::make_unique<TModel>();
  for (std::size_t i = 0; i < AObj.size(); ++i)
    FModel->Columns.push_back({AColLB.empty() ? 0 : AColLB[i], AColUB.empty() ? kBCPInfinity : AColUB[i], AObj[i],
                               entries.Start[i] == entries.Start[i + 1]});
  FModel->RowsImpossible = !std::equal(ARowLB.begin(), ARowLB.end(), ARowUB.begin(), std::not_fn(Impossible));
  using TColumn = TModel::TColumn;
  Guarded("Create", [&] {
    FModel->Lp.setLogLevel(AFlag ? 1 : 0);
    FModel->Lp.loadProblem(Size(AObj), Size(AMatrix), entries.Start.data(), entries.Row.data(), entries.Value.data(),
                           FModel->Library(&TColumn::LibraryLB).data(), FModel->Library(&TColumn::LibraryUB).data(),
                           FModel->Library(&TColumn::LibraryObj).data(), Mapped(ARowLB, ClpLower).data(),
                           Mapped(ARowUB, ClpUpper).data());
  });
}

TCbcLPSolver::~TCbcLPSolver() = default;
TCbcLPSolver::TCbcLPSolver(TCbcLPSolver&&) noexcept = default;
TCbcLPSolver& TCbcLPSolver::operator=(TCbcLPSolver&&) noexcept = default;

int TCbcLPSolver::RowCount() const {
  return FModel->Lp.getNumRows();
}

int TCbcLPSolver::ColCount() const {
  return Size(FModel->Columns);
}

void TCbcLPSolver::AddColumn(std::span<const double> ACol, double AObj, double ALB, double AUB) {
  Check(Size(ACol) == RowCount(), "AddColumn", "column and rows differ in count");
  CheckNumbers(ACol, "AddColumn");
  CheckNumbers({&AObj, 1}, "AddColumn");
  CheckBounds({{ALB, AUB}}, "AddColumn");
  const TColumns entries(ACol);
  const TModel::TColumn column{ALB, AUB, AObj, entries.Row.empty()};
  FModel->Columns.push_back(column);
  try {
    Guarded("AddColumn", [&] {
      FModel->Lp.addColumn(Size(entries.Row), entries.Row.data(), entries.Value.data(), column.LibraryLB(),
                           column.LibraryUB(), column.LibraryObj());
    });
  } catch (...) {
    FModel->Columns.pop_back();
    throw;
  }
}

void TCbcLPSolver::DeleteColumn(int AIdx) {
  FModel->At(AIdx);
  Guarded("DeleteColumn", [&] { FModel->Lp.deleteColumns(1, &AIdx); });
  FModel->Columns.erase(FModel->Columns.begin() + AIdx);
}

void TCbcLPSolver::SetColLB(int AIdx, double V) {
  TModel::TColumn& column = FModel->At(AIdx);
  CheckBounds({&V, 1}, "SetColLB");
  column.LB = V;
  FModel->Lp.setColumnLower(AIdx, column.LibraryLB());
}

void TCbcLPSolver::SetColUB(int AIdx, double V) {
  TModel::TColumn& column = FModel->At(AIdx);
  CheckBounds({&V, 1}, "SetColUB");
  column.UB = V;
  FModel->Lp.setColumnUpper(AIdx, column.LibraryUB());
}

double TCbcLPSolver::GetColUB(int AIdx) const {
  const double bound = FModel->At(AIdx).UB;
  return bound >= kNoBound ? kBCPInfinity : bound;
}

double TCbcLPSolver::Solve(bool& Status) {
  constexpr int kNumericalStop = 4;
  FModel->ColSolution.clear();
  FModel->RowPrice.clear();
  Status = false;
  if (!FModel->MayHaveOptimum()) return kBCPInfinity;
  ClpSimplex& lp = FModel->Lp;
  Guarded("Solve", [&] {
    lp.dual();
    if (lp.status() == kNumericalStop) lp.initialSolve();
  });
  if (!lp.isProvenOptimal()) return kBCPInfinity;
  FModel->ColSolution.assign(lp.getColSolution(), lp.getColSolution() + ColCount());
  FModel->RowPrice.assign(lp.getRowPrice(), lp.getRowPrice() + RowCount());
  Status = true;
  return lp.objectiveValue() + FModel->PlaceEmptyColumns();
}

const TDoubleDynArray& TCbcLPSolver::GetColSolution() const {
  return FModel->ColSolution;
}

const TDoubleDynArray& TCbcLPSolver::GetRowPrice() const {
  return FModel->RowPrice;
}

}  // namespace platenest
