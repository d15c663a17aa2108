#pragma once

#include <cmath>
#include <cstddef>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "LpCheck.h"

// A small simplex in exact fractions, to judge the one in doubles.
namespace platenest {

// Reduced, denominator above 0. std::overflow_error where 128 bits do not suffice.
class TFraction {
 public:
  __extension__ typedef __int128 TWide;

  TFraction(TWide Num = 0, TWide Den = 1) : FNum(Num), FDen(Den) {
    TWide a = Num < 0 ? -Num : Num, b = Den < 0 ? -Den : Den;
    while (b != 0) a = std::exchange(b, a % b);
    if (FDen < 0) a = -a;
    FNum /= a;
    FDen /= a;
  }
  // A double of few binary places.
  static TFraction Of(double V) {
    TWide den = 1;
    for (; V != std::floor(V); den *= 2) V *= 2;
    return {static_cast<TWide>(V), den};
  }
  double Value() const { return static_cast<double>(FNum) / static_cast<double>(FDen); }
  int Sign() const { return int{FNum > 0} - int{FNum < 0}; }

  friend TFraction operator*(const TFraction& A, const TFraction& B) {
    return {Times(A.FNum, B.FNum), Times(A.FDen, B.FDen)};
  }
  friend TFraction operator/(const TFraction& A, const TFraction& B) {
    return {Times(A.FNum, B.FDen), Times(A.FDen, B.FNum)};
  }
  friend TFraction operator-(const TFraction& A, const TFraction& B) {
    TWide result = 0;
    if (__builtin_sub_overflow(Times(A.FNum, B.FDen), Times(B.FNum, A.FDen), &result))
      throw std::overflow_error("fraction");
    return {result, Times(A.FDen, B.FDen)};
  }
  friend TFraction operator+(const TFraction& A, const TFraction& B) { return A - TFraction(-1) * B; }

 private:
  static TWide Times(TWide A, TWide B) {
    TWide result = 0;
    if (__builtin_mul_overflow(A, B, &result)) throw std::overflow_error("fraction");
    return result;
  }

  TWide FNum, FDen;
};

// Maximise C * x with A * x <= B and x >= 0 by dictionaries and Bland's rule, which ends on every input. Chvátal,
// Linear Programming, 1983, chapters 2 and 3.
class TExactSimplex {
 public:
  using TRow = std::vector<TFraction>;

  TExactSimplex(std::vector<TRow> A, TRow B, TRow C) : FA(std::move(A)), FB(std::move(B)), FC(std::move(C)) {
    for (std::size_t j = 0; j < FC.size(); ++j) FNonBasic.push_back(static_cast<int>(j));
    for (std::size_t i = 0; i < FB.size(); ++i) FBasic.push_back(static_cast<int>(FC.size() + i));
  }

  bool Feasible() {
    const std::size_t worst = LeastB();
    if (worst == FB.size() || FB[worst].Sign() >= 0) return true;
    const TRow objective = FC;
    FC.assign(FC.size(), 0);  // maximise the negative of one more variable that relaxes every row
    FC.push_back(-1);
    FNonBasic.push_back(kRelaxing);
    for (TRow& row : FA) row.push_back(-1);
    Pivot(worst, FC.size() - 1);
    Climb();
    if (FZ.Sign() != 0) return false;
    DropRelaxing();
    Price(objective);
    return true;
  }

  // False when there is no bound.
  bool Climb() {
    for (;;) {
      const std::size_t col = Best(FNonBasic, [&](std::size_t j) { return FC[j].Sign() > 0; });
      if (col == FC.size()) return true;
      std::optional<TFraction> least;
      for (std::size_t i = 0; i < FB.size(); ++i) {
        if (FA[i][col].Sign() <= 0) continue;
        const TFraction ratio = FB[i] / FA[i][col];
        if (!least || (ratio - *least).Sign() < 0) least = ratio;
      }
      if (!least) return false;
      const auto binds = [&](std::size_t i) {
        return FA[i][col].Sign() > 0 && (FB[i] / FA[i][col] - *least).Sign() == 0;
      };
      Pivot(Best(FBasic, binds), col);
    }
  }

  const TFraction& Value() const { return FZ; }

 private:
  static constexpr int kRelaxing = -1;  // the least number of all, so it leaves as soon as it can

  template <class Test>
  static std::size_t Best(const std::vector<int>& Variables, Test Allowed) {
    std::size_t best = Variables.size();
    for (std::size_t i = 0; i < Variables.size(); ++i) {
      if (Allowed(i) && (best == Variables.size() || Variables[i] < Variables[best])) best = i;
    }
    return best;
  }

  std::size_t LeastB() const {
    std::size_t worst = 0;
    for (std::size_t i = 1; i < FB.size(); ++i) {
      if ((FB[i] - FB[worst]).Sign() < 0) worst = i;
    }
    return worst;
  }

  // The basic variable of Row and the other one of Col change places.
  void Pivot(std::size_t Row, std::size_t Col) {
    std::swap(FBasic[Row], FNonBasic[Col]);
    const TFraction pivot = std::exchange(FA[Row][Col], 1);
    for (TFraction& a : FA[Row]) a = a / pivot;
    FB[Row] = FB[Row] / pivot;
    for (std::size_t i = 0; i < FB.size(); ++i) {
      if (i == Row) continue;
      const TFraction factor = std::exchange(FA[i][Col], 0);
      for (std::size_t j = 0; j < FC.size(); ++j) FA[i][j] = FA[i][j] - factor * FA[Row][j];
      FB[i] = FB[i] - factor * FB[Row];
    }
    const TFraction factor = std::exchange(FC[Col], 0);
    for (std::size_t j = 0; j < FC.size(); ++j) FC[j] = FC[j] - factor * FA[Row][j];
    FZ = FZ + factor * FB[Row];
  }

  void DropRelaxing() {
    for (std::size_t i = 0; i < FBasic.size(); ++i) {
      if (FBasic[i] != kRelaxing) continue;
      std::size_t col = 0;
      while (FA[i][col].Sign() == 0) ++col;
      Pivot(i, col);
    }
    const std::size_t at = Best(FNonBasic, [](std::size_t) { return true; });
    for (TRow& row : FA) row.erase(row.begin() + static_cast<std::ptrdiff_t>(at));
    FNonBasic.erase(FNonBasic.begin() + static_cast<std::ptrdiff_t>(at));
  }

  // The objective over the first variables, in terms of those outside the basis.
  void Price(const TRow& Objective) {
    const auto weight = [&](int variable) {
      return variable < static_cast<int>(Objective.size()) ? Objective[variable] : TFraction(0);
    };
    FC.resize(FNonBasic.size());
    FZ = 0;
    for (std::size_t j = 0; j < FC.size(); ++j) FC[j] = weight(FNonBasic[j]);
    for (std::size_t i = 0; i < FBasic.size(); ++i) {
      const TFraction w = weight(FBasic[i]);
      for (std::size_t j = 0; j < FC.size(); ++j) FC[j] = FC[j] - w * FA[i][j];
      FZ = FZ + w * FB[i];
    }
  }

  std::vector<TRow> FA;
  TRow FB, FC;
  TFraction FZ = 0;
  std::vector<int> FBasic, FNonBasic;
};

enum class TLpOutcome { Optimal, Infeasible, Unbounded };

// The exact outcome and least objective of a program with finite lower column bounds and numbers of few binary places.
inline std::pair<TLpOutcome, double> SolveExactly(const TLpModel& Model) {
  const std::size_t cols = Model.Obj.size();
  std::vector<TExactSimplex::TRow> a;
  TExactSimplex::TRow b, c;
  // Sense 1: row * x <= bound; -1: row * x >= bound. The variables are the distances from the lower bounds.
  const auto add = [&](const TDoubleDynArray& row, double bound, int sense) {
    if (std::fabs(bound) >= 1e30) return;
    const double shift = std::inner_product(row.begin(), row.end(), Model.ColLB.begin(), 0.0);
    TExactSimplex::TRow line;
    for (const double v : row) line.push_back(TFraction::Of(sense * v));
    a.push_back(std::move(line));
    b.push_back(TFraction::Of(sense * (bound - shift)));
  };
  for (std::size_t i = 0; i < Model.Matrix.size(); ++i) {
    add(Model.Matrix[i], Model.RowLB[i], -1);
    add(Model.Matrix[i], Model.RowUB[i], 1);
  }
  for (std::size_t j = 0; j < cols; ++j) {
    TDoubleDynArray unit(cols);
    unit[j] = 1;
    add(unit, Model.ColUB[j], 1);
    c.push_back(TFraction::Of(-Model.Obj[j]));
  }
  TExactSimplex simplex(std::move(a), std::move(b), std::move(c));
  if (!simplex.Feasible()) return {TLpOutcome::Infeasible, 0};
  if (!simplex.Climb()) return {TLpOutcome::Unbounded, 0};
  const double atLowerBounds = std::inner_product(Model.Obj.begin(), Model.Obj.end(), Model.ColLB.begin(), 0.0);
  return {TLpOutcome::Optimal, atLowerBounds - simplex.Value().Value()};
}

}  // namespace platenest
