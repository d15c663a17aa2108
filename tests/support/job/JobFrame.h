#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "JobCase.h"
#include "platenest/foundation/Types.h"

namespace platenest::test {

// What random jobs over a stock of plates have in common, in whole numbers.
class TJobFrame {
 public:
  using TPick = std::function<int(int)>;

 protected:
  enum class TStock { Unlimited, Ample, Scarce, Mixed };

  struct TSheet {
    int W = 0, H = 0;
    std::optional<int> Count;
  };

  explicit TJobFrame(const TPick& Pick)
      : FPick(Pick), FScale(kScales[static_cast<std::size_t>(Pick(kScales.size()))]) {}

  int Between(int Low, int High) { return Low + (High > Low ? FPick(High - Low + 1) : 0); }
  bool OneIn(int Count) { return FPick(Count) == 0; }
  int RoomW(const TSheet& Sheet) const { return Sheet.W - FMargin[0] - FMargin[2]; }
  int RoomH(const TSheet& Sheet) const { return Sheet.H - FMargin[1] - FMargin[3]; }
  double LengthOf(int Whole) const { return Whole / FScale.PerUnit; }
  // Sums of rounded inches are not the rounded sums.
  bool IsScaleExact() const { return FScale.PerUnit == std::floor(FScale.PerUnit); }

  void PickSpace() {
    if (OneIn(2)) FGap = FPick(12);
    if (OneIn(3)) FMargin.fill(FPick(12));
    if (OneIn(4))
      for (int& side : FMargin) side = FPick(15);
  }

  // For a demand that needs about so many plates.
  TStock PickCounts(int Needed) {
    const auto mode = static_cast<TStock>(FPick(4));
    for (TSheet& sheet : FSheets) {
      if (mode == TStock::Ample) sheet.Count = 3 * Needed + FPick(5);
      if (mode == TStock::Scarce) sheet.Count = Between(1, std::max(1, Needed / Size(FSheets)));
      if (mode == TStock::Mixed && OneIn(2)) sheet.Count = Between(1, 3);
    }
    return mode;
  }

  // The plates of one layout each that hold all parts: in half of the jobs there are no more.
  void PickTightness(const std::vector<int>& Plates) {
    const bool isTight = OneIn(2);
    for (std::size_t i = 0; i < FSheets.size(); ++i)
      if (isTight) FSheets[i].Count = Plates[i];
  }

  // The job without its parts. Costs are the plates' areas, or whole numbers, or with KnowsRates also near the areas.
  Job FrameOf(JobKind Kind, bool KnowsRates) {
    Job made;
    made.Kind = Kind;
    made.Units = FScale.Units;
    made.Gap = LengthOf(FGap);
    for (std::size_t i = 0; i < 4; ++i) made.Margin[i] = LengthOf(FMargin[i]);
    const int costs = FPick(5);
    for (const TSheet& sheet : FSheets) {
      Plate plate{
          .Id = "plate " + std::to_string(made.Plates.size()), .Width = LengthOf(sheet.W), .Height = LengthOf(sheet.H)};
      plate.Count = sheet.Count;
      plate.Remnant = Size(FSheets) > 1 && OneIn(4);
      if (costs == 0) plate.Cost = FPick(4);
      if (costs == 1 && KnowsRates) plate.Cost = plate.Width * plate.Height * (50 + FPick(100)) / 100;
      if (plate.Remnant && OneIn(2)) plate.Cost = 0;
      made.Plates.push_back(plate);
    }
    return made;
  }

  static TJobSample SampleOf(const Job& AJob, const std::vector<int>& Plates) {
    TJobSample sample;
    for (std::size_t i = 0; i < Plates.size(); ++i) {
      const Plate& plate = AJob.Plates[i];
      sample.Plates += Plates[i];
      sample.Cost += Plates[i] * plate.Cost.value_or(plate.Width * plate.Height);
    }
    return sample;
  }

  const TPick& FPick;
  int FGap = 0;
  std::array<int, 4> FMargin{};
  std::vector<TSheet> FSheets;

 private:
  struct TScale {
    double PerUnit;  // whole numbers behind one unit of length
    const char* Units;
  };
  static constexpr std::array kScales = {TScale{1, "mm"}, TScale{10, "mm"}, TScale{1000, "m"}, TScale{25.4, "in"}};

  const TScale FScale;
};

// The picks of a seed.
inline TJobFrame::TPick PicksOf(unsigned Seed) {
  return [engine = std::mt19937(Seed)](int Count) mutable {
    return static_cast<int>(engine() % static_cast<unsigned>(Count));
  };
}

}  // namespace platenest::test
