#include "CirclePack.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

#include "CircleFill.h"
#include "StockSearch.h"
#include "platenest/UCircleNest/CirclePacking.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/layoutcheck/CircleCheck.h"

namespace platenest::detail {

namespace {

// The nester counts whole seconds: the run's token ends it earlier.
constexpr int kNoLimitMs = 2'000'000'000;
constexpr int kMostSizes = 400;
// In the nesters' units.
constexpr double kTol = 2e-6;
// Of one greedy pass over a plate, for each size and pair of circles. Look-ahead does not interrupt a pass.
constexpr double kSecondsAPair = 4e-9;
constexpr double kLongestPass = 0.12;
// Without look-ahead: each step can be stopped, but the positions that are kept ready take memory.
constexpr double kLongestGreedy = 15;
constexpr double kMostPositions = 2e5;
// Of a plate's area that circles may cover, for estimates.
constexpr double kDense = 0.85;

// What the nester is shown: positions in TCircleSizes::Parts with radii and copies.
struct TShown {
  std::vector<int> Parts;
  std::vector<double> Radii;
  std::vector<int> Copies;
};

TShown Shown(const TCircleSizes& Sizes, int Plate, std::span<const int> Left) {
  std::vector<int> all;
  for (int i = 0; i < Size(Sizes.Parts); ++i)
    if (Left[i] > 0 && Holds(Sizes.Plates[Plate], Sizes.Parts[i])) all.push_back(i);
  TShown shown;
  const int count = std::min(kMostSizes, Size(all));
  for (int k = 0; k < count; ++k) {
    const int part = all[static_cast<int>(Int64{k} * Size(all) / count)];
    const double radius = Sizes.Parts[part].Radius;
    shown.Parts.push_back(part);
    shown.Radii.push_back(radius);
    shown.Copies.push_back(Trunc<int>(std::min<double>(Left[part], MostOnPlate(Sizes, Sizes.Plates[Plate], radius))));
  }
  return shown;
}

// The most circles that one plate may take: the smallest first.
double MostStanding(const TShown& AShown, double Area, double Gap) {
  double room = kDense * Area;
  double count = 0;
  for (int i = Size(AShown.Radii) - 1; i >= 0 && room > 0; --i) {
    const double each = std::numbers::pi * (AShown.Radii[i] + Gap / 2) * (AShown.Radii[i] + Gap / 2);
    const double some = std::min<double>(AShown.Copies[i], room / each);
    count += some;
    room -= some * each;
  }
  return count;
}

// The nester's answer in the plate's frame, empty if it does not stand.
TCircleSpots SpotsOf(const TCircleNestRst& Result, const TCircleSizes& Sizes, const TCirclePlate& APlate,
                     const TShown& AShown, bool Exchanged) {
  TCircleSpots spots;
  std::vector<TPlacedCircle> circles;
  std::vector<TCircleDemand> demand;
  for (int i = 0; i < Size(AShown.Parts); ++i) demand.push_back({AShown.Radii[i], AShown.Copies[i]});
  for (const TCornerPlacement& placed : Result) {
    TPoint2D center = placed.Center;
    if (Exchanged) std::swap(center.X, center.Y);
    spots.emplace_back(AShown.Parts[placed.CircleIdx], center);
    circles.push_back({center, AShown.Radii[placed.CircleIdx], placed.CircleIdx});
  }
  const TPlacedBox plate{0, 0, APlate.Width, APlate.Height};
  if (!CheckCircles(circles, plate, Sizes.Gap, demand, {.Tol = kTol}).empty()) spots.clear();
  return spots;
}

enum class TPassCost : std::uint8_t { Quick, Long, TooLong };

// What one greedy pass over such a plate takes.
TPassCost PassCostOf(const TShown& AShown, double Area, double Gap) {
  const double standing = MostStanding(AShown, Area, Gap);
  const double positions = standing * Size(AShown.Parts);
  const double seconds = kSecondsAPair * positions * standing;
  if (seconds <= kLongestPass) return TPassCost::Quick;
  return seconds <= kLongestGreedy && positions <= kMostPositions ? TPassCost::Long : TPassCost::TooLong;
}

// The nester with a way to leave the look-ahead out.
class TPlatePacking : public TCirclePacking {
 public:
  using TCirclePacking::TCirclePacking;

  // From each start pair without look-ahead, which ends at once when stopped.
  void PackWithoutLookAhead() {
    GenerateInitConfig();
    if (WorkerCount() > 0) PackingMultiThread(kNoLookAhead, WorkerCount(), kFromStartPairs);
  }

 private:
  static constexpr double kNoLookAhead = -4294967295.0;
  static constexpr int kFromStartPairs = 1;
};

}  // namespace

TCircleSpots PackPlate(const TCircleSizes& Sizes, int Plate, std::span<const int> Left, const TPackEffort& Effort) {
  const TCirclePlate& plate = Sizes.Plates[Plate];
  const TShown shown = Shown(Sizes, Plate, Left);
  const TPassCost cost = PassCostOf(shown, (plate.Width + Sizes.Gap) * (plate.Height + Sizes.Gap), Sizes.Gap);
  if (shown.Parts.empty() || cost == TPassCost::TooLong) return {};
  const TVRect2D rect = Effort.ExchangesSides ? TVRect2D::FromSize(plate.Height, plate.Width)
                                              : TVRect2D::FromSize(plate.Width, plate.Height);
  TPlatePacking packing(rect, Sizes.Gap, shown.Radii, shown.Copies);
  packing.SetThreadLimit(Effort.Threads);
  packing.SetStepLimit(Effort.Steps);
  {
    const TTimeShare share(Effort.Seconds);
    if (cost == TPassCost::Quick)
      packing.Packing(0, kNoLimitMs);
    else
      packing.PackWithoutLookAhead();
  }
  TCircleSpots spots = SpotsOf(packing.ResultTranslation(), Sizes, plate, shown, Effort.ExchangesSides);
  if (spots.empty()) return spots;
  std::vector<int> rest(Left.begin(), Left.end());
  for (const TCornerPlacement& spot : spots) --rest[spot.CircleIdx];
  FillPlate(Sizes, Plate, rest, TFillSide::Left, spots);
  return spots;
}

}  // namespace platenest::detail
