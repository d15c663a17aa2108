#include "JobSizes.h"

#include <algorithm>
#include <cmath>

#include "Assembly.h"
#include "platenest/URectNest/BarnesBound.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::detail {

namespace {

// Products of two plate sides must stay within 63 bits.
constexpr double kLargestWhole = 3e9;
// Slack against the noise of doubles, in units of the fine scale.
constexpr double kNoise = 1e-2;

// Decimals in the job's units, or in the nesters' where these are finer, to which lengths are cut that have more.
constexpr int kCutDecimals = 7;

// Six sixths of a plate side, each written with as many digits as a double has, do not fit side by side in numbers,
// though they do within the tolerance of the layout check. So where some length has more than a few decimals, parts and
// gap lose what is behind them and plates get one step more. Each copy needs at most one step more than it is given,
// and the gap beside it another one.
class TLengths {
 public:
  explicit TLengths(const Job& AJob) : FScale(ScaleOf(AJob)) {
    const int decimals = std::min(kMostDecimals, kCutDecimals + std::max(0, -FScale.Exponent()));
    std::vector<double> lengths{FScale.Up(AJob.Gap)};
    for (const Plate& plate : AJob.Plates) {
      const TScaledPlate scaled(AJob, plate, FScale);
      lengths.insert(lengths.end(), {scaled.Width, scaled.Height});
    }
    for (const Part& part : AJob.Parts) lengths.insert(lengths.end(), {FScale.Up(part.Width), FScale.Up(part.Height)});
    if (CommonDecimals(lengths).value_or(kMostDecimals + 1) > decimals) FSteps = std::pow(10.0, decimals);
  }

  const TScale& Scale() const { return FScale; }
  double Need(double Length) const {
    const double scaled = FScale.Up(Length);
    if (FSteps == 0) return scaled;
    // A length is no less than a step.
    return std::max<double>(1, std::floor(scaled * FSteps + kNoise)) / FSteps;
  }
  double GapOf(const Job& AJob) const { return AJob.Gap > 0 ? Need(AJob.Gap) : 0; }
  double Room(double Scaled) const { return FSteps == 0 ? Scaled : std::ceil(Scaled * FSteps - kNoise) / FSteps; }

 private:
  TScale FScale;
  double FSteps = 0;  // of a length's unit; 0 where lengths stay as they are
};

std::vector<TJobPlate> PlatesOf(const Job& AJob, const TLengths& Lengths) {
  const TScale& scale = Lengths.Scale();
  std::vector<TJobPlate> plates;
  for (const bool isRemnant : {true, false}) {
    for (int i = 0; i < Size(AJob.Plates); ++i) {
      const Plate& plate = AJob.Plates[i];
      if (plate.Remnant != isRemnant) continue;
      const TScaledPlate scaled(AJob, plate, scale);
      if (!(scaled.Width > 0 && scaled.Height > 0)) continue;
      const double area = plate.Width * plate.Height;
      const int count = plate.Count.value_or(static_cast<int>(limits::kPlates));
      plates.push_back({i, Lengths.Room(scaled.Width), Lengths.Room(scaled.Height), count, plate.Cost.value_or(area),
                        area, isRemnant});
    }
  }
  if (plates.empty()) RequireRoom(TScaledPlate(AJob, AJob.Plates.at(0), scale), AJob.Plates[0]);
  return plates;
}

std::vector<TJobPart> PartsOf(const Job& AJob, const TLengths& Lengths, const std::vector<TJobPlate>& Plates) {
  std::vector<TJobPart> parts;
  for (int i = 0; i < Size(AJob.Parts); ++i) {
    const Part& demand = AJob.Parts[i];
    TJobPart part{.Position = i, .Width = Lengths.Need(demand.Width), .Height = Lengths.Need(demand.Height)};
    part.Amount = demand.Amount.value_or(0);
    part.IsUnlimited = !demand.Amount;
    part.MayTurn = demand.Turn == Rotate::Any;
    part.Area = demand.Width * demand.Height;
    const auto holds = [&](const TJobPlate& plate) { return Holds(plate, part); };
    if (std::ranges::any_of(Plates, holds)) parts.push_back(part);
  }
  return parts;
}

std::optional<int> DecimalsOf(const TJobSizes& Sizes) {
  std::vector<double> lengths{Sizes.Gap};
  for (const TJobPlate& plate : Sizes.Plates) lengths.insert(lengths.end(), {plate.Width, plate.Height});
  for (const TJobPart& part : Sizes.Parts) lengths.insert(lengths.end(), {part.Width, part.Height});
  return CommonDecimals(lengths);
}

// The most copies of a part without limit that the stock can hold. Raises LimitError where plain grids hold too many.
int MostCopies(const TJobSizes& Sizes, const TGrownSizes& Grown, int Index) {
  const auto [a, b] = Grown.Parts[Index];
  Int64 most = 0;
  Int64 inGrids = 0;
  const auto add = [](Int64& Sum, Int64 Count, Int64 Each) {
    Sum = std::min(limits::kCopies + 1, Sum + Count * std::min(limits::kCopies + 1, Each));
  };
  for (int i = 0; i < Size(Sizes.Plates); ++i) {
    if (!Holds(Sizes.Plates[i], Sizes.Parts[Index])) continue;
    const auto [l, w] = Grown.Plates[i];
    const bool mayTurn = Sizes.Parts[Index].MayTurn;
    add(most, Sizes.Plates[i].Count, std::min(l * w / (a * b), BarnesBound(l, w, a, b)));
    add(inGrids, Sizes.Plates[i].Count, std::max((l / a) * (w / b), mayTurn ? (l / b) * (w / a) : 0));
  }
  if (inGrids > limits::kCopies) RaiseTooManyCopies(Sizes.Parts[Index].Position);
  return static_cast<int>(std::min(most, limits::kCopies));
}

// No plate is used without a copy on it.
void CapCounts(TJobSizes& Sizes) {
  for (TJobPlate& plate : Sizes.Plates) {
    Int64 copies = 0;
    for (const TJobPart& part : Sizes.Parts)
      if (Holds(plate, part)) copies += part.Amount;
    plate.Count = static_cast<int>(std::min<Int64>(plate.Count, copies));
  }
}

}  // namespace

bool TJobSizes::TurnsAll() const {
  return std::ranges::all_of(Parts, [](const TJobPart& part) { return part.MayTurn || part.Width == part.Height; });
}

TScale ScaleOf(const Job& AJob) {
  double longest = 0;
  for (const Plate& plate : AJob.Plates) longest = std::max({longest, plate.Width, plate.Height});
  return TScale(longest);
}

bool Holds(const TJobPlate& APlate, const TJobPart& APart) {
  const auto isHeld = [&](double W, double H) { return W <= APlate.Width && H <= APlate.Height; };
  return isHeld(APart.Width, APart.Height) || (APart.MayTurn && isHeld(APart.Height, APart.Width));
}

TJobSizes JobSizesOf(const Job& AJob) {
  const TLengths lengths(AJob);
  TJobSizes sizes;
  sizes.Gap = lengths.GapOf(AJob);
  sizes.Plates = PlatesOf(AJob, lengths);
  sizes.Parts = PartsOf(AJob, lengths, sizes.Plates);
  std::erase_if(sizes.Plates, [&](const TJobPlate& plate) {
    return std::ranges::none_of(sizes.Parts, [&](const TJobPart& part) { return Holds(plate, part); });
  });
  sizes.Decimals = DecimalsOf(sizes);
  if (sizes.Parts.empty()) return sizes;
  const TGrownSizes grown = GrownSizesOf(sizes);
  for (int i = 0; i < Size(sizes.Parts); ++i)
    if (sizes.Parts[i].IsUnlimited) sizes.Parts[i].Amount = MostCopies(sizes, grown, i);
  CapCounts(sizes);
  return sizes;
}

TGrownSizes GrownSizesOf(const TJobSizes& Sizes) {
  double longest = 0;
  for (const TJobPlate& plate : Sizes.Plates) longest = std::max({longest, plate.Width, plate.Height});
  longest += Sizes.Gap;
  TGrownSizes grown;
  const double quantum = Sizes.Decimals ? std::pow(10.0, *Sizes.Decimals) : 0;
  grown.IsExact = Sizes.Decimals && longest * quantum < kLargestWhole;
  const double scale = grown.IsExact ? quantum : std::pow(10.0, std::floor(std::log10(kLargestWhole / longest)));
  const Int64 gap = grown.IsExact ? Round(Sizes.Gap * scale) : 0;
  const auto up = [&](double V) {
    return grown.IsExact ? Round(V * scale) + gap : Ceil<Int64>((V + Sizes.Gap) * scale + kNoise);
  };
  const auto down = [&](double V) {
    if (grown.IsExact) return Round(V * scale) + gap;
    return std::max<Int64>(1, Floor<Int64>((V + Sizes.Gap) * scale - kNoise));
  };
  for (const TJobPlate& plate : Sizes.Plates) grown.Plates.push_back({up(plate.Width), up(plate.Height)});
  for (const TJobPart& part : Sizes.Parts) grown.Parts.push_back({down(part.Width), down(part.Height)});
  return grown;
}

}  // namespace platenest::detail
