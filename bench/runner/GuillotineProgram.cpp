#include "GuillotineProgram.h"

#include <algorithm>
#include <vector>

#include "platenest/foundation/Rounding.h"

namespace platenest::bench {

namespace {

class TBestByCuts {
 public:
  TBestByCuts(std::size_t L, std::size_t W) : FL(L), FW(W), FWorth((L + 1) * (W + 1)) {}

  void Enter(std::size_t Width, std::size_t Height, double Worth) {
    if (Width <= FL && Height <= FW) At(Width, Height) = std::max(At(Width, Height), Worth);
  }

  double Solve() {
    for (std::size_t x = 1; x <= FL; ++x)
      for (std::size_t y = 1; y <= FW; ++y) Cut(x, y);
    return At(FL, FW);
  }

 private:
  double& At(std::size_t X, std::size_t Y) { return FWorth[X * (FW + 1) + Y]; }

  // A cut that leaves a strip for waste is one whose other side is worth nothing.
  void Cut(std::size_t X, std::size_t Y) {
    double best = std::max({At(X, Y), At(X - 1, Y), At(X, Y - 1)});
    for (std::size_t x = 1; x <= X / 2; ++x) best = std::max(best, At(x, Y) + At(X - x, Y));
    for (std::size_t y = 1; y <= Y / 2; ++y) best = std::max(best, At(X, y) + At(X, Y - y));
    At(X, Y) = best;
  }

  std::size_t FL;
  std::size_t FW;
  std::vector<double> FWorth;
};

}  // namespace

double BestByCuts(const test::TFillCase& Case) {
  TBestByCuts program(Round<std::size_t>(Case.Plate.Width()), Round<std::size_t>(Case.Plate.Height()));
  for (const TNestRect& part : Case.Parts) {
    const auto width = Round<std::size_t>(part.BoundBox.Width()), height = Round<std::size_t>(part.BoundBox.Height());
    program.Enter(width, height, part.Area);
    if (Case.CanTurn) program.Enter(height, width, part.Area);
  }
  return program.Solve();
}

}  // namespace platenest::bench
