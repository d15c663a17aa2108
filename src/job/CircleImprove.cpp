#include "CircleImprove.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

#include "CircleFill.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Random.h"
#include "platenest/foundation/Sort.h"
#include "platenest/foundation/StopToken.h"

namespace platenest::detail {

namespace {

constexpr char kPack[] = "pack";
constexpr int kMostPlates = 40;
constexpr int kMostSpots = 3000;
constexpr int kMostTaken = 9;      // circles off the plate in one turn
constexpr int kMostParts = 12;     // sizes that are tried in one turn
constexpr int kNoiseSteps = 1000;  // of random numbers between 0 and 1
constexpr double kNoise = 0.5;     // of a radius, in the order of sizes
constexpr double kTouch = 1e-6;    // in the nesters' units; circles that come nearer by less touch
constexpr int kTurnsBetweenOffers = 512;

double Random01() {
  return static_cast<double>(Random(kNoiseSteps)) / kNoiseSteps;
}

// One plate and what stands on it.
struct TStand {
  int Kind = 0;
  TCircleSpots Spots;
};

// The room that circles leave around a point, for those that come next.
class THollow {
 public:
  THollow(const TCircleSizes& Sizes, const TStand& Stand, const TPoint2D& Middle, double Reach, double Angle)
      : FSizes(Sizes),
        FPlate(Sizes.Plates[Stand.Kind]),
        FMiddle(Middle),
        FReach(Reach),
        FToward{std::cos(Angle), std::sin(Angle)} {
    const double most = Sizes.Parts.front().Radius + Sizes.Gap;
    for (const TCornerPlacement& spot : Stand.Spots)
      if (DistanceTo(spot.Center) <= FReach + RadiusOf(spot) + 2 * most) FNear.push_back(spot);
  }

  void Add(const TCornerPlacement& Spot) { FNear.push_back(Spot); }

  // The free corner position of this size, with its centre within reach, that is farthest toward the side.
  std::optional<TPoint2D> PlaceFor(double Radius) {
    FRadius = Radius;
    FBest.reset();
    const double right = FPlate.Width - Radius;
    const double top = FPlate.Height - Radius;
    for (const double x : {Radius, right})
      for (const double y : {Radius, top}) Try(x, y);
    for (int i = 0; i < Size(FNear); ++i) {
      const double reach = ReachOf(FNear[i]);
      if (DistanceTo(FNear[i].Center) > FReach + reach) continue;
      for (const double x : {Radius, right}) TryOnUpright(FNear[i].Center, reach, x);
      for (const double y : {Radius, top}) TryOnLevel(FNear[i].Center, reach, y);
      for (int j = 0; j < i; ++j) TryBetween(FNear[i], FNear[j]);
    }
    return FBest;
  }

 private:
  double RadiusOf(const TCornerPlacement& Spot) const { return FSizes.Parts[Spot.CircleIdx].Radius; }
  double ReachOf(const TCornerPlacement& Spot) const { return RadiusOf(Spot) + FRadius + FSizes.Gap; }
  double DistanceTo(const TPoint2D& P) const { return std::hypot(P.X - FMiddle.X, P.Y - FMiddle.Y); }

  void Try(double X, double Y) {
    if (!(X >= FRadius - kTouch && Y >= FRadius - kTouch && X <= FPlate.Width - FRadius + kTouch &&
          Y <= FPlate.Height - FRadius + kTouch))
      return;
    if (FBest && X * FToward.X + Y * FToward.Y <= FBest->X * FToward.X + FBest->Y * FToward.Y) return;
    if (DistanceTo({X, Y}) > FReach) return;
    for (const TCornerPlacement& spot : FNear) {
      const double dx = spot.Center.X - X;
      const double dy = spot.Center.Y - Y;
      const double least = ReachOf(spot) - kTouch;
      if (dx * dx + dy * dy < least * least) return;
    }
    FBest = TPoint2D{X, Y};
  }

  void TryOnUpright(const TPoint2D& Center, double Reach, double X) {
    const double high2 = Reach * Reach - (X - Center.X) * (X - Center.X);
    if (high2 < 0) return;
    for (const double side : {-1.0, 1.0}) Try(X, Center.Y + side * std::sqrt(high2));
  }

  void TryOnLevel(const TPoint2D& Center, double Reach, double Y) {
    const double wide2 = Reach * Reach - (Y - Center.Y) * (Y - Center.Y);
    if (wide2 < 0) return;
    for (const double side : {-1.0, 1.0}) Try(Center.X + side * std::sqrt(wide2), Y);
  }

  void TryBetween(const TCornerPlacement& A, const TCornerPlacement& B) {
    const double ra = ReachOf(A);
    const double rb = ReachOf(B);
    const double dx = B.Center.X - A.Center.X;
    const double dy = B.Center.Y - A.Center.Y;
    const double d2 = dx * dx + dy * dy;
    if (!(d2 > 0) || d2 > (ra + rb) * (ra + rb)) return;
    const double along = (d2 + ra * ra - rb * rb) / (2 * d2);
    const double across2 = ra * ra / d2 - along * along;
    if (across2 < 0) return;
    const double across = std::sqrt(across2);
    const double x = A.Center.X + along * dx;
    const double y = A.Center.Y + along * dy;
    Try(x - across * dy, y + across * dx);
    Try(x + across * dy, y - across * dx);
  }

  const TCircleSizes& FSizes;
  const TCirclePlate& FPlate;
  TPoint2D FMiddle;
  double FReach;
  TPoint2D FToward;
  double FRadius = 0;
  std::vector<TCornerPlacement> FNear;
  std::optional<TPoint2D> FBest;
};

// What is to be placed: copies that Start leaves, and those on its emptiest plate.
enum class TPooled : std::uint8_t { WhatIsLeft, EmptiestPlate };

class TImprovement {
 public:
  TImprovement(TCircleSearch& Search, const TCircleLayouts& Start, TPooled Pooled)
      : FSearch(Search), FSizes(Search.Sizes()) {
    for (const TCirclePart& part : FSizes.Parts) FPool.push_back(part.Amount);
    const int dropped = Pooled == TPooled::EmptiestPlate ? EmptiestOf(Start) : -1;
    if (dropped >= 0) FDropped = Start[dropped].Plate;
    for (int i = 0; i < Size(Start); ++i)
      for (int copy = i == dropped ? 1 : 0; copy < Start[i].Copies; ++copy)
        FStands.push_back({Start[i].Plate, Start[i].Spots});
    for (const TStand& stand : FStands)
      for (const TCornerPlacement& spot : stand.Spots) --FPool[spot.CircleIdx];
    FArea = FBestArea = 0;
  }

  bool IsWorthwhile() const {
    const bool isLeft = std::ranges::any_of(FPool, [](int copies) { return copies > 0; });
    return isLeft && !FStands.empty();
  }

  // False when nothing is left to place.
  bool Turn() {
    const int which = Random(Size(FStands));
    const TCircleSpots former = FStands[which].Spots;
    const std::vector<int> formerPool = FPool;
    const double gained = Renew(FStands[which]);
    if (gained < 0) {
      FStands[which].Spots = former;
      FPool = formerPool;
      return true;
    }
    FArea += gained;
    return !std::ranges::all_of(FPool, [](int copies) { return copies == 0; });
  }

  bool HasGained() const { return FArea > FBestArea; }

  // Hands the state over. What is left goes back onto the plate that is to go.
  bool Offer() {
    FBestArea = FArea;
    TCircleLayouts layouts;
    for (const TStand& stand : FStands) {
      const bool isRepeated =
          !layouts.empty() && layouts.back().Plate == stand.Kind && IsSame(layouts.back().Spots, stand.Spots);
      if (isRepeated)
        ++layouts.back().Copies;
      else if (!stand.Spots.empty())
        layouts.push_back({stand.Kind, 1, stand.Spots});
    }
    if (FDropped >= 0) {
      TCircleSpots rest;
      FillPlate(FSizes, FDropped, FPool, TFillSide::Left, rest);
      if (!rest.empty()) layouts.push_back({FDropped, 1, std::move(rest)});
    }
    return FSearch.Offer(kPack, std::move(layouts));
  }

 private:
  double AreaOf(const TCircleSpots& Spots) const {
    double area = 0;
    for (const TCornerPlacement& spot : Spots) area += FSizes.Parts[spot.CircleIdx].Area;
    return area;
  }

  // The emptiest, of plates that cost something.
  int EmptiestOf(const TCircleLayouts& Layouts) const {
    int emptiest = -1;
    for (int i = 0; i < Size(Layouts); ++i)
      if (FSizes.Plates[Layouts[i].Plate].Cost > 0 &&
          (emptiest < 0 || AreaOf(Layouts[i].Spots) < AreaOf(Layouts[emptiest].Spots)))
        emptiest = i;
    return emptiest;
  }

  static bool IsSame(const TCircleSpots& A, const TCircleSpots& B) {
    return std::ranges::equal(A, B, [](const TCornerPlacement& a, const TCornerPlacement& b) {
      return a.CircleIdx == b.CircleIdx && a.Center.X == b.Center.X && a.Center.Y == b.Center.Y;
    });
  }

  // Area won on the plate, below 0 where it was lost.
  double Renew(TStand& Stand) {
    const double former = AreaOf(Stand.Spots);
    const TCirclePlate& plate = FSizes.Plates[Stand.Kind];
    const TPoint2D middle{Random01() * plate.Width, Random01() * plate.Height};
    const double reach = TakeAway(Stand.Spots, middle);
    THollow hollow(FSizes, Stand, middle, reach, 2 * std::numbers::pi * Random01());
    for (const int part : PartsToTry()) {
      while (FPool[part] > 0) {
        const std::optional<TPoint2D> place = hollow.PlaceFor(FSizes.Parts[part].Radius);
        if (!place) break;
        --FPool[part];
        Stand.Spots.emplace_back(part, *place);
        hollow.Add(Stand.Spots.back());
      }
    }
    const double gained = AreaOf(Stand.Spots) - former;
    return std::fabs(gained) < 1e-12 * former ? 0 : gained;
  }

  // Takes the circles nearest to a point into the pool; how far they reached.
  double TakeAway(TCircleSpots& Spots, const TPoint2D& Middle) {
    const auto distance = [&](const TCornerPlacement& spot) {
      return std::hypot(spot.Center.X - Middle.X, spot.Center.Y - Middle.Y) - FSizes.Parts[spot.CircleIdx].Radius;
    };
    SortBy(Spots, [&](const auto& a, const auto& b) { return Sign(distance(b), distance(a)); });
    double reach = FSizes.Parts.back().Radius;
    FTaken.clear();
    for (int count = std::min(1 + Random(kMostTaken), Size(Spots)); count > 0; --count) {
      const TCornerPlacement& spot = Spots.back();
      reach = std::max(reach, distance(spot) + 2 * FSizes.Parts[spot.CircleIdx].Radius);
      ++FPool[spot.CircleIdx];
      FTaken.push_back(spot.CircleIdx);
      Spots.pop_back();
    }
    return reach;
  }

  // Sizes that were taken away and some others of the pool, large ones mostly first.
  std::vector<int> PartsToTry() {
    std::vector<std::pair<double, int>> order;
    std::vector<int> others;
    std::ranges::sort(FTaken);
    for (int i = 0; i < Size(FPool); ++i)
      if (FPool[i] > 0 && !std::ranges::binary_search(FTaken, i)) others.push_back(i);
    const auto again = std::ranges::unique(FTaken);
    FTaken.erase(again.begin(), again.end());
    while (Size(FTaken) < kMostParts && !others.empty()) {
      const int pick = Random(Size(others));
      FTaken.push_back(others[pick]);
      others.erase(others.begin() + pick);
    }
    for (const int part : FTaken)
      order.emplace_back(FSizes.Parts[part].Radius * (1 + kNoise * (Random01() - 0.5)), part);
    SortBy(order, [](const auto& a, const auto& b) { return Sign(b.first, a.first); });
    std::vector<int> parts;
    for (const auto& [key, part] : order) parts.push_back(part);
    return parts;
  }

  TCircleSearch& FSearch;
  const TCircleSizes& FSizes;
  std::vector<TStand> FStands;
  int FDropped = -1;  // kind of the plate that is to go
  std::vector<int> FPool;
  std::vector<int> FTaken;
  double FArea = 0;
  double FBestArea = 0;
};

bool IsSmall(const TCircleLayouts& Layouts) {
  Int64 plates = 0;
  Int64 spots = 0;
  for (const TCircleLayout& layout : Layouts) {
    plates += layout.Copies;
    spots += std::ssize(layout.Spots) * layout.Copies;
  }
  return plates <= kMostPlates && spots <= kMostSpots;
}

}  // namespace

bool ImproveCircles(TCircleSearch& Search, int Turns) {
  if (!Search.HasAnswer() || Search.Sizes().HasOneSize() || !IsSmall(Search.Best())) return false;
  const bool isUnlimited = std::ranges::any_of(Search.Sizes().Parts, &TCirclePart::IsUnlimited);
  const bool drops = Search.PlacesAll() && !isUnlimited;
  TImprovement improvement(Search, Search.Best(), drops ? TPooled::EmptiestPlate : TPooled::WhatIsLeft);
  if (!improvement.IsWorthwhile()) return false;
  bool hasWon = false;
  for (int turn = 1; turn <= Turns && !Search.IsOver(); ++turn) {
    const bool isLeft = improvement.Turn();
    if ((!isLeft || turn % kTurnsBetweenOffers == 0) && improvement.HasGained()) hasWon |= improvement.Offer();
    if (!isLeft) return hasWon;
  }
  return (improvement.HasGained() && improvement.Offer()) || hasWon;
}

bool CompleteCircles(TCircleSearch& Search, const TCircleLayouts& Start, int Turns) {
  if (!IsSmall(Start)) return false;
  TImprovement improvement(Search, Start, TPooled::WhatIsLeft);
  if (!improvement.IsWorthwhile()) return false;
  for (int turn = 1; turn <= Turns && !Search.IsOver() && !RunStopRequested(); ++turn)
    if (!improvement.Turn()) return improvement.Offer();
  return false;
}

}  // namespace platenest::detail
