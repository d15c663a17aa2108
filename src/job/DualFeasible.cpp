#include "DualFeasible.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "platenest/foundation/Rounding.h"

namespace platenest::detail {

namespace {

__extension__ using TWide = __int128;

// How often a part may be weighed by a pair of functions, and how many functions one axis has at most.
constexpr double kMostWeighings = 4e6;
constexpr double kMostFunctions = 100;

struct TSize {
  Int64 Width = 0;
  Int64 Height = 0;
  Int64 Amount = 0;
  bool MayStand = false;  // within the box unturned
  bool MayTurn = false;   // within the box turned
};

// Twice the threshold, which may be half a side.
Int64 Stretched(Int64 Side, Int64 BoxSide, Int64 TwiceThreshold) {
  if (2 * Side > 2 * BoxSide - TwiceThreshold) return BoxSide;
  return 2 * Side >= TwiceThreshold ? Side : 0;
}

class TWeighing {
 public:
  TWeighing(const TJobSizes& Sizes, const TGrownSizes& Grown) {
    for (const auto& plate : Grown.Plates) {
      FBox.Width = std::max(FBox.Width, plate.Width);
      FBox.Height = std::max(FBox.Height, plate.Height);
    }
    for (int i = 0; i < Size(Sizes.Parts); ++i) {
      if (Sizes.Parts[i].IsUnlimited) continue;
      const auto [w, h] = Grown.Parts[i];
      const bool mayTurn = Sizes.Parts[i].MayTurn && h <= FBox.Width && w <= FBox.Height;
      FParts.push_back({w, h, Sizes.Parts[i].Amount, w <= FBox.Width && h <= FBox.Height, mayTurn});
    }
  }

  Int64 LeastPlates() {
    TWide most = 0;
    const std::vector<Int64> alongHeight = Thresholds(FBox.Height, false);
    for (const Int64 threshold : Thresholds(FBox.Width, true)) {
      Stretch(threshold, FBox.Width, FAlongWidth);
      for (const Int64 other : alongHeight) {
        Stretch(other, FBox.Height, FAlongHeight);
        most = std::max(most, Weight());
      }
    }
    const TWide box = FBox.Area();
    return static_cast<Int64>((most + box - 1) / box);
  }

 private:
  struct TStretched {
    Int64 Width = 0;
    Int64 Height = 0;
  };

  // Each is the largest that keeps the same short sides; all of no more than half the box.
  std::vector<Int64> Thresholds(Int64 BoxSide, bool IsWidth) const {
    std::vector<Int64> all{0, BoxSide};
    const auto add = [&](Int64 side) {
      if (2 * side < BoxSide) all.push_back(2 * side);
    };
    for (const TSize& part : FParts) {
      if (part.MayStand) add(IsWidth ? part.Width : part.Height);
      if (part.MayTurn) add(IsWidth ? part.Height : part.Width);
    }
    std::ranges::sort(all);
    all.erase(std::ranges::unique(all).begin(), all.end());
    const double most = std::clamp(std::sqrt(kMostWeighings / Size(FParts)), 2.0, kMostFunctions);
    if (Size(all) <= most) return all;
    std::vector<Int64> chosen;
    const int count = Floor(most);
    for (int i = 0; i < count; ++i) chosen.push_back(all[static_cast<Int64>(i) * (Size(all) - 1) / (count - 1)]);
    return chosen;
  }

  // Both sides of each part as if they lay along one axis.
  void Stretch(Int64 Threshold, Int64 BoxSide, std::vector<TStretched>& Into) const {
    Into.clear();
    for (const TSize& part : FParts)
      Into.push_back({Stretched(part.Width, BoxSide, Threshold), Stretched(part.Height, BoxSide, Threshold)});
  }

  TWide Weight() const {
    TWide weight = 0;
    for (int i = 0; i < Size(FParts); ++i) {
      const TSize& part = FParts[i];
      Int64 area = part.MayStand ? FAlongWidth[i].Width * FAlongHeight[i].Height : FBox.Area();
      if (part.MayTurn) area = std::min(area, FAlongWidth[i].Height * FAlongHeight[i].Width);
      weight += TWide{area} * part.Amount;
    }
    return weight;
  }

  TGrownSizes::TSides FBox;
  std::vector<TSize> FParts;
  std::vector<TStretched> FAlongWidth;
  std::vector<TStretched> FAlongHeight;
};

}  // namespace

Int64 LeastPlatesByFekete(const TJobSizes& Sizes, const TGrownSizes& Grown) {
  return TWeighing(Sizes, Grown).LeastPlates();
}

}  // namespace platenest::detail
