#include "ShapeResultCheck.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "JobForm.h"
#include "NfpShapes.h"
#include "NfpVerdict.h"
#include "PartVerdict.h"
#include "Texts.h"

namespace platenest::detail {

namespace {

// A place is one of two shapes apart, so no coordinate is larger than this.
constexpr double kMostPlace = 2 * limits::kLargestCoordinate + 1;
constexpr double kLengthTol = 1e-6;    // drawing units
constexpr double kRelativeTol = 1e-9;  // of areas and shares

bool AreClose(double A, double B) {
  return std::fabs(A - B) <= kRelativeTol * std::max({1.0, std::fabs(A), std::fabs(B)});
}

class TShapeCheck {
 public:
  TShapeCheck(const Job& AJob, const Result& AResult) : FJob(AJob), FResult(AResult) {}

  std::vector<Fault> Run() {
    CheckHead();
    if (FJob.Kind == JobKind::Nfp) CheckPairs();
    if (FJob.Kind != JobKind::Nfp) Require(MayHave(FResult.Status), "/status", "cannot be with this answer");
    if (FJob.Kind == JobKind::Array && IsThere(FResult.Array, "/array")) CheckArray(*FResult.Array);
    if (FJob.Kind == JobKind::Label && IsThere(FResult.Label, "/label")) CheckLabelAnswer(*FResult.Label);
    if (FJob.Kind == JobKind::Sucker && IsThere(FResult.Sucker, "/sucker")) CheckSucker(*FResult.Sucker);
    return std::move(FFaults);
  }

 private:
  bool IsFull() const { return Size(FFaults) >= JobError::kMaxFaults; }
  void Require(bool Holds, std::string Place, std::string Text) {
    if (!Holds && !IsFull()) FFaults.push_back({"check", std::move(Place), std::move(Text), ""});
  }

  // Time or a stop may cut the search for a denser array, and that for a place before there is any.
  bool MayHave(ResultStatus Status) const {
    if (Status == ResultStatus::Complete) return true;
    if (Status == ResultStatus::Partial) return false;
    return FJob.Kind == JobKind::Array || (LacksPlace(FResult) && Status == ResultStatus::TimeLimit);
  }

  template <class T>
  bool IsThere(const std::optional<T>& Answer, const char* Place) {
    Require(Answer.has_value(), Place, "is missing");
    return Answer.has_value();
  }

  void CheckHead() {
    const std::string foreign = Joined("has no meaning in a job of kind `", KindName(FJob.Kind), "`");
    Require(FResult.Kind == FJob.Kind, "/kind", "is not the kind of the job");
    Require(FResult.Units == FJob.Units, "/units", "are not the units of the job");
    Require(FResult.Name == FJob.Name, "/name", "is not the name of the job");
    Require(FResult.Gap >= FJob.Gap, "/gap", Joined("is smaller than the gap of the job, ", FJob.Gap));
    Require(FResult.Margin == FJob.Margin, "/margin", foreign);
    Require(!FResult.Proved && FResult.Bounds.empty(), "/proved", foreign);
    Require(FResult.Layouts.empty() && FResult.Plates.empty() && FResult.Parts.empty() && FResult.Total == Summary{},
            "/layouts", foreign);
    Require(FResult.Pairs.empty() || FJob.Kind == JobKind::Nfp, "/pairs", foreign);
    Require(!FResult.Array || FJob.Kind == JobKind::Array, "/array", foreign);
    Require(!FResult.Label || FJob.Kind == JobKind::Label, "/label", foreign);
    Require(!FResult.Sucker || FJob.Kind == JobKind::Sucker, "/sucker", foreign);
  }

  void CheckPairs() {
    const std::vector<TPairOfParts> pairs = PairsOf(FJob);
    const int asked = Size(pairs);
    const int given = Size(FResult.Pairs);
    Require(given <= asked, "/pairs", Joined("are more than the job asks for, ", asked));
    Require((FResult.Status == ResultStatus::Complete) == (given == asked) && FResult.Status != ResultStatus::Partial,
            "/status", Joined("does not go with ", given, " answers to ", asked, " pairs"));
    for (int i = 0; i < std::min(asked, given) && !IsFull(); ++i) CheckPair(i, pairs[i]);
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

  void CheckPair(int Index, const TPairOfParts& Parts) {
    const std::string place = FResult.Pairs.size() == 1 && FResult.Status == ResultStatus::Complete
                                  ? std::string("/nfp")
                                  : Joined("/pairs/", Index);
    const NfpPair& pair = FResult.Pairs[Index];
    const auto& [fixed, moving] = Parts;
    const bool isKnown = pair.Fixed == FJob.Parts[fixed].Id && pair.Moving == FJob.Parts[moving].Id;
    Require(isKnown, place, "is not the pair of the job at this place");
    // The kernel may do better than asked for, but nothing is exact unasked.
    Require(pair.Quality <= std::max(FJob.Quality, NfpQuality::Complete), place + "/quality", "was not asked for");
    const bool isOnGrid = IsOnGrid(pair.Paths);
    Require(isOnGrid, place + "/paths", "has a coordinate that is too large or has more than five decimals");
    if (!isKnown || !isOnGrid) return;
    const std::string verdict = PairVerdict(FJob, fixed, moving, PathsOf(pair.Paths), pair.Quality);
    Require(verdict.empty(), place + "/paths", verdict);
  }

  void CheckArray(const ArrayAnswer& Answer) {
    const TLattice lattice = LatticeOf(Answer);
    const std::string verdict = ArrayVerdict(FJob, lattice, FResult.Gap);
    Require(verdict.empty(), "/array", verdict);
    Require(AreClose(Answer.CellArea, lattice.CellArea()), "/array/cell_area", "is not that of the two vectors");
    Require(AreClose(Answer.Density * Answer.CellArea, AreaOf(SubjectPart(FJob))), "/array/density",
            "is not the area of the part over that of the cell");
    const auto isAlong = [](const std::array<double, 2>& Vector, int Axis) { return Vector[1 - Axis] == 0; };
    const Along along = FJob.Direction;
    if (along == Along::X || along == Along::XY) Require(isAlong(Answer.First, 0), "/array/first", "is not along x");
    if (along == Along::Y) Require(isAlong(Answer.First, 1), "/array/first", "is not along y");
    if (along == Along::XY) Require(isAlong(Answer.Second, 1), "/array/second", "is not along y");
  }

  void CheckLabelAnswer(const LabelAnswer& Answer) {
    if (!Answer.Found) return;
    const Box box = LabelBox(*FJob.Label, Answer.Rotated, Answer.Move);
    for (int i = 0; i < 4; ++i)
      if (!(std::fabs(Answer.Bounds[i] - box[i]) <= kLengthTol))
        return Require(false, "/label/box", "does not follow from the label, rotated and move");
    Require(Answer.Margin >= FJob.Offset - kLengthTol, "/label/margin",
            Joined("is smaller than the offset of the job, ", FJob.Offset));
    const std::string verdict = LabelVerdict(FJob, Answer);
    Require(verdict.empty(), "/label", verdict);
  }

  void CheckSucker(const SuckerAnswer& Answer) {
    const std::string verdict = Answer.Found ? SuckerVerdict(FJob, Answer) : "";
    Require(verdict.empty(), "/sucker", verdict);
  }

  const Job& FJob;
  const Result& FResult;
  std::vector<Fault> FFaults;
};

}  // namespace

std::vector<Fault> CheckShapeResult(const Job& AJob, const Result& AResult) {
  return TShapeCheck(AJob, AResult).Run();
}

}  // namespace platenest::detail
