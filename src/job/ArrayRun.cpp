#include "ArrayRun.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "NfpShapes.h"
#include "PartVerdict.h"
#include "Texts.h"
#include "platenest/job/JobErrors.h"
#include "platenest/services/arrayInfo.h"

namespace platenest::detail {

namespace {

constexpr double kTol = 1e-3;         // of the search, see TArrayInfoAlgo
constexpr double kWorthwhile = 1e-9;  // a cell must be smaller by this share to displace an earlier one

constexpr double kMostRowWork = 1e6;  // copies squared times points: some tenths of a second

struct TCandidate {
  std::string Method;
  TLattice Lattice;
};

// What Try raises as a text, empty if it raises nothing.
template <class Function>
std::string ErrorOf(Function Try) {
  try {
    Try();
    return "";
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    return error.what();
  }
}

// Copies to each side that the row of a vector needs to reach across the no-fit polygon.
double RowCopies(const TPaths& Nfp, double X, double Y) {
  const TIntRect box = TPathUtils::BoundBox(Nfp);
  const double across = static_cast<double>(box.Width()) / kPathScale;
  const double up = static_cast<double>(box.Height()) / kPathScale;
  return std::min(across / std::fabs(X), up / std::fabs(Y));
}

// The same of the longest row that a search will build.
double LongestRow(const TPaths& Nfp, Along Direction, bool Separate) {
  const auto alongX = [&] { return RowCopies(Nfp, TArrayInfoAlgo::CalcArrayTransX({}, Nfp, 0, Separate), 0); };
  const auto alongY = [&] { return RowCopies(Nfp, 0, TArrayInfoAlgo::CalcArrayTransY({}, Nfp, 0, Separate)); };
  switch (Direction) {
    case Along::X:
      return alongX();
    case Along::Y:
      return alongY();
    case Along::XY:
      return std::max(alongX(), alongY());
    default:
      const TPoint2D first = TArrayInfoAlgo::Calc1stArrayTrans(Nfp.front());
      return RowCopies(Nfp, first.X, first.Y);
  }
}

// The copies of a row lie over each other, so its union takes time with the square of their number. A vector of length
// zero is left to the search, which refuses it.
bool TakesTooLong(double Row, const TPaths& Nfp) {
  double points = 0;
  for (const TPath& path : Nfp) points += static_cast<double>(path.size());
  return std::isfinite(Row) && Row * Row * points > kMostRowWork;
}

// The candidates of a job. What goes wrong with the direction asked for counts, with others it does not.
class TCandidates {
 public:
  TCandidates(const Job& AJob, const TRunControl& Control, Result& AResult)
      : FJob(AJob), FControl(Control), FResult(AResult) {}

  std::vector<TCandidate> Find() {
    if (!IsCut()) SearchAll();
    AddSpacedByBox();
    return std::move(FFound);
  }

 private:
  // Whether the run is to end here, which the status then says.
  bool IsCut() {
    const std::optional<ResultStatus> cut = FControl.Interruption();
    if (cut) FResult.Status = *cut;
    return cut.has_value();
  }

  void SearchAll() {
    const std::string error = ErrorOf([&] { TArrayInfoAlgo::CalcNFP({ShapeOf(SubjectPart(FJob))}, FJob.Gap, FNfp); });
    if (!error.empty() || FNfp.empty())
      return FResult.Warnings.push_back(
          Joined("the no-fit polygon of the part failed (", error, "): copies are spaced by its box"));
    if (!IsCut()) SearchDirections();
  }

  void SearchDirections() {
    const std::string error = Search(FJob.Direction, FJob.Separate, true);
    if (!error.empty())
      throw InputError({"shape", "/along",
                        Joined("gives no array of part ", Quoted(SubjectPart(FJob).Id), " in the direction ",
                               AlongName(FJob.Direction)),
                        error});
    if (FJob.Direction == Along::Free)
      for (const Along direction : {Along::X, Along::Y, Along::XY}) SearchMore(direction, false);
    else if (!FJob.Separate)
      SearchMore(FJob.Direction, true);
  }

  void SearchMore(Along Direction, bool Separate) {
    if (!IsCut()) Search(Direction, Separate, false);
  }

  // The error of the search, if there is one.
  std::string Search(Along Direction, bool Separate, bool IsAsked) {
    return ErrorOf([&] {
      if (!TakesTooLong(LongestRow(FNfp, Direction, Separate), FNfp)) {
        TPaths nfp = FNfp;
        const bool isX = Direction == Along::X || Direction == Along::XY;
        const bool isY = Direction == Along::Y || Direction == Along::XY;
        const auto [first, second] = TArrayInfoAlgo::CalcArrayInfo(nfp, isX, isY, Separate, kTol);
        FFound.push_back({std::string(AlongName(Direction)) + (Separate ? " separate" : ""), {first, second}});
      } else if (IsAsked) {
        FResult.Warnings.push_back(
            "the part is too slender for a full search: a row of copies would overlap too often");
      }
    });
  }

  // The box of the part with the gap.
  TPoint2D Spacing() const {
    const TIntRect box = TPathUtils::BoundBox(PathsOf(SubjectPart(FJob)));
    return {static_cast<double>(box.Width()) / kPathScale + FJob.Gap,
            static_cast<double>(box.Height()) / kPathScale + FJob.Gap};
  }

  // Rows or columns of touching copies that stand clear of each other by the part's box, and copies that all do.
  void AddSpacedByBox() {
    const auto [right, up] = Spacing();
    if (!FNfp.empty() && !FJob.Separate) {
      const double inRow = TArrayInfoAlgo::CalcArrayTransX({}, FNfp, 0, false);
      const double inColumn = TArrayInfoAlgo::CalcArrayTransY({}, FNfp, 0, false);
      if (FJob.Direction == Along::Y) FFound.push_back({"columns", {{0, inColumn}, {right, 0}}});
      if (FJob.Direction != Along::Y) FFound.push_back({"rows", {{inRow, 0}, {0, up}}});
      if (FJob.Direction != Along::Y) FFound.push_back({"columns", {{right, 0}, {0, inColumn}}});
    }
    FFound.push_back(
        {"boxes", FJob.Direction == Along::Y ? TLattice{{0, up}, {right, 0}} : TLattice{{right, 0}, {0, up}}});
  }

  const Job& FJob;
  const TRunControl& FControl;
  Result& FResult;
  TPaths FNfp;
  std::vector<TCandidate> FFound;
};

// Takes out the one with the smallest cell, the first of equals.
TCandidate TakeSmallest(std::vector<TCandidate>& Candidates) {
  auto best = Candidates.begin();
  for (auto next = best + 1; next != Candidates.end(); ++next)
    if (next->Lattice.CellArea() < best->Lattice.CellArea() * (1 - kWorthwhile)) best = next;
  TCandidate taken = std::move(*best);
  Candidates.erase(best);
  return taken;
}

ArrayAnswer AnswerOf(const Job& AJob, const TLattice& Lattice) {
  const double cell = Lattice.CellArea();
  const auto pair = [](const TPoint2D& V) { return std::array{V.X + 0.0, V.Y + 0.0}; };  // no negative zero
  return {pair(Lattice.First), pair(Lattice.Second), cell, AreaOf(SubjectPart(AJob)) / cell};
}

}  // namespace

void AnswerArray(const Job& AJob, const TRunControl& Control, Result& AResult) {
  std::vector<TCandidate> candidates = TCandidates(AJob, Control, AResult).Find();
  std::string verdict;
  while (!candidates.empty()) {
    const TCandidate candidate = TakeSmallest(candidates);
    const std::string fault = ArrayVerdict(AJob, candidate.Lattice, AJob.Gap);
    if (fault.empty()) {
      AResult.Run.Method = candidate.Method;
      AResult.Array = AnswerOf(AJob, candidate.Lattice);
      if (!verdict.empty()) AResult.Warnings.push_back("a denser array failed the check: " + verdict);
      return;
    }
    if (verdict.empty()) verdict = fault;
  }
  throw CheckError({"check", "", "no array passed the check", verdict});
}

}  // namespace platenest::detail
