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
  ClpSimplex Lp;
  TDoubleDynArray ColLB, ColUB;  // as told
  bool RowsImpossible = false;
  TDoubleDynArray ColSolution, RowPrice;

  void CheckCol(int Idx) const {
    if (Idx < 0 || Idx >= Size(ColLB))
      throw TRangeError("[Error] TCbcLPSolver: column " + std::to_string(Idx) + " does not exist");
  }
  bool IsImpossible() const {
    return RowsImpossible || !std::equal(ColLB.begin(), ColLB.end(), ColUB.begin(), std::not_fn(Impossible));
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

  FModel = std::make_unique<TModel>();
  FModel->ColLB = AColLB.empty() ? TDoubleDynArray(AObj.size(), 0) : AColLB;
  FModel->ColUB = AColUB.empty() ? TDoubleDynArray(AObj.size(), kBCPInfinity) : AColUB;
  FModel->RowsImpossible = !std::equal(ARowLB.begin(), ARowLB.end(), ARowUB.begin(), std::not_fn(Impossible));
  const TColumns columns(AMatrix, Size(AObj));
  Guarded("Create", [&] {
    FModel->Lp.setLogLevel(AFlag ? 1 : 0);
    FModel->Lp.loadProblem(Size(AObj), Size(AMatrix), columns.Start.data(), columns.Row.data(), columns.Value.data(),
                           Mapped(FModel->ColLB, ClpLower).data(), Mapped(FModel->ColUB, ClpUpper).data(), AObj.data(),
                           Mapped(ARowLB, ClpLower).data(), Mapped(ARowUB, ClpUpper).data());
  });
}

TCbcLPSolver::~TCbcLPSolver() = default;
TCbcLPSolver::TCbcLPSolver(TCbcLPSolver&&) noexcept = default;
TCbcLPSolver& TCbcLPSolver::operator=(TCbcLPSolver&&) noexcept = default;

int TCbcLPSolver::RowCount() const {
  return FModel->Lp.getNumRows();
}

int TCbcLPSolver::ColCount() const {
  return Size(FModel->ColLB);
}

void TCbcLPSolver::AddColumn(std::span<const double> ACol, double AObj, double ALB, double AUB) {
  Check(Size(ACol) == RowCount(), "AddColumn", "column and rows differ in count");
  CheckNumbers(ACol, "AddColumn");
  CheckNumbers({&AObj, 1}, "AddColumn");
  CheckBounds({{ALB, AUB}}, "AddColumn");
  const TColumns column(ACol);
  FModel->ColLB.reserve(FModel->ColLB.size() + 1);
  FModel->ColUB.reserve(FModel->ColUB.size() + 1);
  Guarded("AddColumn", [&] {
    FModel->Lp.addColumn(Size(column.Row), column.Row.data(), column.Value.data(), ClpLower(ALB), ClpUpper(AUB), AObj);
  });
  FModel->ColLB.push_back(ALB);
  FModel->ColUB.push_back(AUB);
}

void TCbcLPSolver::DeleteColumn(int AIdx) {
  FModel->CheckCol(AIdx);
  Guarded("DeleteColumn", [&] { FModel->Lp.deleteColumns(1, &AIdx); });
  FModel->ColLB.erase(FModel->ColLB.begin() + AIdx);
  FModel->ColUB.erase(FModel->ColUB.begin() + AIdx);
}

void TCbcLPSolver::SetColLB(int AIdx, double V) {
  FModel->CheckCol(AIdx);
  CheckBounds({&V, 1}, "SetColLB");
  Guarded("SetColLB", [&] { FModel->Lp.setColumnLower(AIdx, ClpLower(V)); });
  FModel->ColLB[AIdx] = V;
}

void TCbcLPSolver::SetColUB(int AIdx, double V) {
  FModel->CheckCol(AIdx);
  CheckBounds({&V, 1}, "SetColUB");
  Guarded("SetColUB", [&] { FModel->Lp.setColumnUpper(AIdx, ClpUpper(V)); });
  FModel->ColUB[AIdx] = V;
}

double TCbcLPSolver::GetColUB(int AIdx) const {
  FModel->CheckCol(AIdx);
  return FModel->ColUB[AIdx] >= kNoBound ? kBCPInfinity : FModel->ColUB[AIdx];
}

double TCbcLPSolver::Solve(bool& Status) {
  constexpr int kNumericalStop = 4;
  FModel->ColSolution.clear();
  FModel->RowPrice.clear();
  Status = false;
  if (FModel->IsImpossible()) return kBCPInfinity;
  ClpSimplex& lp = FModel->Lp;
  Guarded("Solve", [&] {
    lp.dual();
    if (lp.status() == kNumericalStop) lp.initialSolve();
  });
  if (!lp.isProvenOptimal()) return kBCPInfinity;
  FModel->ColSolution.assign(lp.getColSolution(), lp.getColSolution() + ColCount());
  FModel->RowPrice.assign(lp.getRowPrice(), lp.getRowPrice() + RowCount());
  Status = true;
  return lp.objectiveValue();
}

const TDoubleDynArray& TCbcLPSolver::GetColSolution() const {
  return FModel->ColSolution;
}

const TDoubleDynArray& TCbcLPSolver::GetRowPrice() const {
  return FModel->RowPrice;
}

}  // namespace platenest
