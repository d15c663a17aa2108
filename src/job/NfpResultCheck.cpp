#include "NfpResultCheck.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "NfpShapes.h"
#include "NfpVerdict.h"
#include "Texts.h"

namespace platenest::detail {

namespace {

// A place is one of two shapes apart, so no coordinate is larger than this.
constexpr double kMostPlace = 2 * limits::kLargestCoordinate + 1;

class TPairCheck {
 public:
  TPairCheck(const Job& AJob, const Result& AResult) : FJob(AJob), FResult(AResult), FPairs(PairsOf(AJob)) {}

  std::vector<Fault> Run() {
    CheckHead();
    for (int i = 0; i < std::min(Size(FPairs), Size(FResult.Pairs)) && !IsFull(); ++i) CheckPair(i);
    return std::move(FFaults);
  }

 private:
  bool IsFull() const { return Size(FFaults) >= JobError::kMaxFaults; }
  void Require(bool Holds, std::string Place, std::string Text) {
    if (!Holds && !IsFull()) FFaults.push_back({"check", std::move(Place), std::move(Text), ""});
  }

  void CheckHead() {
    Require(FResult.Kind == FJob.Kind, "/kind", "is not the kind of the job");
    Require(FResult.Units == FJob.Units, "/units", "are not the units of the job");
    Require(FResult.Name == FJob.Name, "/name", "is not the name of the job");
    Require(!FResult.Proved && FResult.Bounds.empty(), "/proved", "has no meaning in a job of kind `nfp`");
    Require(FResult.Layouts.empty() && FResult.Plates.empty() && FResult.Parts.empty() && FResult.Total == Summary{},
            "/layouts", "have no meaning in a job of kind `nfp`");
    const int asked = Size(FPairs);
    const int given = Size(FResult.Pairs);
    Require(given <= asked, "/pairs", Joined("are more than the job asks for, ", asked));
    Require((FResult.Status == ResultStatus::Complete) == (given == asked) && FResult.Status != ResultStatus::Partial,
            "/status", Joined("does not go with ", given, " answers to ", asked, " pairs"));
  }

  // The coordinates are those of the grid, as far as doubles can tell.
  static bool IsOnGrid(const std::vector<PolygonRing>& Paths) {
    const auto isOnGrid = [](double V) {
      const double units = V * kPathScale;
      return std::fabs(V) <= kMostPlace && std::fabs(units - std::nearbyint(units)) <= 1e-3;
    };
    for (const PolygonRing& contour : Paths)
      for (const PolygonPoint& point : contour)
        if (!isOnGrid(point[0]) || !isOnGrid(point[1])) return false;
    return true;
  }

  void CheckPair(int Index) {
    const std::string place = FResult.Pairs.size() == 1 && FResult.Status == ResultStatus::Complete
                                  ? std::string("/nfp")
                                  : Joined("/pairs/", Index);
    const NfpPair& pair = FResult.Pairs[Index];
    const auto& [fixed, moving] = FPairs[Index];
    const bool isKnown = pair.Fixed == FJob.Parts[fixed].Id && pair.Moving == FJob.Parts[moving].Id;
    Require(isKnown, place, "is not the pair of the job at this place");
    const bool isOnGrid = IsOnGrid(pair.Paths);
    Require(isOnGrid, place + "/paths", "has a coordinate that is too large or has more than five decimals");
    if (!isKnown || !isOnGrid) return;
    const std::string verdict = PairVerdict(FJob, fixed, moving, PathsOf(pair.Paths), pair.Quality);
    Require(verdict.empty(), place + "/paths", verdict);
  }

  const Job& FJob;
  const Result& FResult;
  const std::vector<TPairOfParts> FPairs;
  std::vector<Fault> FFaults;
};

}  // namespace

std::vector<Fault> CheckPairs(const Job& AJob, const Result& AResult) {
  return TPairCheck(AJob, AResult).Run();
}

}  // namespace platenest::detail
