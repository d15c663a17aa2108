#include "CircleCase.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "JobFrame.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::test {

namespace {

struct TDisc {
  int Diameter = 0;
  std::optional<int> Amount;
};

enum class TSizes { One, Few, Many, Near, Large };

// One job in whole numbers.
class TMaker : TJobFrame {
 public:
  explicit TMaker(const TPick& Pick) : TJobFrame(Pick) {}

  TJobCase Make() {
    PickFrame();
    const bool isLaid = OneIn(5);
    if (isLaid) {
      LayShelves();
    } else {
      PickDiscs(static_cast<TSizes>(FPick(5)));
      PickStock();
    }
    TJobCase made{JobOf(), {}};
    if (isLaid && IsScaleExact()) made.Sample = SampleOf(made.AJob, FLaid);
    return made;
  }

 private:
  int Shorter(const TSheet& Sheet) const { return std::min(RoomW(Sheet), RoomH(Sheet)); }
  double AreaOf(const TDisc& Disc) const { return (1.0 * Disc.Diameter + FGap) * (Disc.Diameter + FGap); }

  void PickFrame() {
    PickSpace();
    const int count = OneIn(2) ? 1 : Between(1, 3);
    for (int i = 0; i < count; ++i) {
      TSheet sheet{Between(100, 1600), 0, {}};
      sheet.H = Between(std::max(80, sheet.W / (OneIn(4) ? 12 : 3)), sheet.W);
      if (OneIn(3)) std::swap(sheet.W, sheet.H);
      if (i > 0 && OneIn(4)) sheet = FSheets.back();
      FSheets.push_back(sheet);
    }
  }

  int PickDiameter(TSizes Kind) {
    const int room = Shorter(FSheets[static_cast<std::size_t>(FPick(Size(FSheets)))]);
    if (Kind == TSizes::Large) {
      if (OneIn(4)) return room;
      if (OneIn(4)) return (room - FGap) / 2;
      if (OneIn(12)) return room + 1 + FPick(room);
      return room / 3 + FPick(room - room / 3);
    }
    if (Kind == TSizes::Near && !FDiscs.empty()) return FDiscs.back().Diameter + Between(1, 2);
    if (OneIn(12)) return (room - FGap) / 3;
    return room / 14 + FPick(room / 3);
  }

  void PickDiscs(TSizes Kind) {
    int count = Kind == TSizes::One ? 1 : Between(2, 6);
    if (Kind == TSizes::Many) count = Between(10, 60);
    for (int i = 0; i < count; ++i) {
      const int diameter = std::max(4, PickDiameter(Kind));
      FDiscs.push_back({diameter, Kind == TSizes::Many ? Between(1, 2) : Between(1, 40)});
    }
    ScaleAmounts();
  }

  // So that the grown circles have a certain share of the plates.
  void ScaleAmounts() {
    constexpr std::array shares = {30, 60, 75, 85, 95, 130, 300};
    double room = 0, demand = 0;
    for (const TSheet& sheet : FSheets) room = std::max(room, 1.0 * RoomW(sheet) * RoomH(sheet));
    for (const TDisc& disc : FDiscs) demand += AreaOf(disc) * *disc.Amount;
    const double share = shares[static_cast<std::size_t>(FPick(shares.size()))] / 100.0 * (OneIn(10) ? 8 : 1);
    const double factor = room * share / demand;
    for (TDisc& disc : FDiscs) disc.Amount = std::max(1, Round<int>(std::min(factor * *disc.Amount, 500.0)));
    FPlatesWanted = Ceil(std::min(share, 24.0)) + 1;
  }

  void PickStock() {
    const TStock mode = PickCounts(FPlatesWanted);
    // A size without limit fills whatever there is.
    if (mode != TStock::Scarce || OneIn(2)) return;
    for (TSheet& sheet : FSheets) sheet.Count = std::min(*sheet.Count, 4);
    FDiscs[static_cast<std::size_t>(FPick(Size(FDiscs)))].Amount.reset();
  }

  // Shelves of equal circles with the gap between them, so that a plate's circles lie on it again.
  void LayShelves() {
    std::map<int, int> discs;
    for (const TSheet& sheet : FSheets) {
      const int plates = OneIn(3) ? Between(2, 6) : 1, shorter = Shorter(sheet);
      for (int y = 0; y + 4 <= RoomH(sheet);) {
        const int diameter = std::min(RoomH(sheet) - y, shorter / 6 + FPick(shorter / 3));
        if (diameter < shorter / 12) break;
        const int row = (RoomW(sheet) + FGap) / (diameter + FGap);
        discs[diameter] += plates * (OneIn(4) ? Between(1, row) : row);
        y += diameter + FGap;
      }
      FLaid.push_back(plates);
    }
    for (const auto& [diameter, amount] : discs) FDiscs.push_back({diameter, amount});
    PickTightness(FLaid);
  }

  Job JobOf() {
    Job made = FrameOf(JobKind::Circles, /*KnowsRates=*/false);
    for (const TDisc& disc : FDiscs) {
      Part part{.Id = "part " + std::to_string(made.Parts.size())};
      part.Radius = LengthOf(disc.Diameter) / 2;
      part.Amount = disc.Amount;
      made.Parts.push_back(part);
    }
    return made;
  }

  std::vector<TDisc> FDiscs;
  int FPlatesWanted = 1;
  std::vector<int> FLaid;  // plates of each kind that shelves were laid on
};

}  // namespace

TJobCase MakeCircleCase(const TJobFrame::TPick& Pick) {
  return TMaker(Pick).Make();
}

TJobCase MakeCircleCase(unsigned Seed) {
  return MakeCircleCase(PicksOf(Seed));
}

void AskForCircles(TJobCase& Case, const std::string& Method) {
  Job& job = Case.AJob;
  job.Run.Method = Method;
  const double first = job.Parts[0].Radius;
  const auto differs = [first](const Part& part) { return part.Radius != first; };
  if (Method != "pattern" || std::ranges::none_of(job.Parts, differs)) return;
  for (Part& part : job.Parts) part.Radius = first;
  Case.Sample.reset();
}

}  // namespace platenest::test
