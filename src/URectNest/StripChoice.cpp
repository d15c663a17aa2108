#include "StripChoice.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::detail {

namespace {

// What remains of one side of the plate after 0, 1, 2, ... strips across it.
struct TSide {
  std::vector<double> Rest;  // the last is too short for another strip
  std::vector<int> Pieces;   // pitches that fit into Rest

  TSide(double Length, double PartX, double PartY) : Rest{Length} {
    while (Rest.back() >= PartX) Rest.push_back(Rest.back() - PartX);
    for (const double rest : Rest) Pieces.push_back(Trunc<int>(rest / PartY));
  }
  std::size_t Count() const { return Rest.size(); }
};

class TStripTable {
 public:
  TStripTable(double W, double H, double PartX, double PartY)
      : FPartX(PartX), FPartY(PartY), FX(W, PartX, PartY), FY(H, PartX, PartY), FBottom(FX.Count() * FY.Count()) {
    Fill();
  }

  TPlateNestInfo Best() const {
    TPlateNestInfo info;
    for (std::size_t i = 0, j = 0; Fits(i, j);) {
      const bool bottom = FBottom[j * FX.Count() + i];
      info.NestArr.push_back(bottom);
      ++(bottom ? j : i);
    }
    if (FAmt > std::numeric_limits<int>::max())
      throw TRangeError("[Error] TRectangleNest: more rectangles on the plate than can be counted");
    info.Amt = static_cast<int>(FAmt);
    return info;
  }

 private:
  bool Fits(std::size_t I, std::size_t J) const {
    return std::max(FX.Rest[I], FY.Rest[J]) >= FPartX && std::min(FX.Rest[I], FY.Rest[J]) >= FPartY;
  }

  // best[i] holds the row above until it is overwritten with the present one, which is walked from right to left.
  void Fill() {
    std::vector<Int64> best(FX.Count() + 1);
    for (std::size_t j = FY.Count(); j-- > 0;) {
      for (std::size_t i = FX.Count(); i-- > 0;) {
        const bool fits = Fits(i, j);
        const Int64 left = fits && i + 1 < FX.Count() ? FY.Pieces[j] + best[i + 1] : 0;
        const Int64 bottom = fits && j + 1 < FY.Count() ? FX.Pieces[i] + best[i] : 0;
        FBottom[j * FX.Count() + i] = left < bottom;
        best[i] = std::max(left, bottom);
      }
    }
    FAmt = best[0];
  }

  double FPartX;
  double FPartY;
  TSide FX;
  TSide FY;
  std::vector<bool> FBottom;
  Int64 FAmt = 0;
};

}  // namespace

TPlateNestInfo BestStrips(double W, double H, double PartX, double PartY) {
  if (std::max(W, H) < PartX || std::min(W, H) < PartY) return {{}, 0};
  return TStripTable(W, H, PartX, PartY).Best();
}

}  // namespace platenest::detail
