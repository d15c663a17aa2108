#include "ArrayRun.h"

#include <cmath>
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

struct TCandidate {
  std::string Method;
  TLattice Lattice;
};

// Empty where the kernel gives up.
TPaths NfpOf(const Job& AJob, Result& AResult) {
  TPaths nfp;
  try {
    TArrayInfoAlgo::CalcNFP({ShapeOf(SubjectPart(AJob))}, AJob.Gap, nfp);
  } catch (const TNestError& error) {
    AResult.Warnings.push_back(
        Joined("the no-fit polygon of the part failed (", error.Text(), "): copies are spaced by its box"));
  }
  return nfp;
}

TCandidate Searched(TPaths Nfp, Along Direction, bool Separate) {
  const bool isX = Direction == Along::X || Direction == Along::XY;
  const bool isY = Direction == Along::Y || Direction == Along::XY;
  const auto [first, second] = TArrayInfoAlgo::CalcArrayInfo(Nfp, isX, isY, Separate, kTol);
  return {std::string(AlongName(Direction)) + (Separate ? " separate" : ""), {first, second}};
}

// A further direction, of which nothing is promised.
void AddSearched(const TPaths& Nfp, Along Direction, bool Separate, std::vector<TCandidate>& Candidates) {
  try {
    Candidates.push_back(Searched(Nfp, Direction, Separate));
  } catch (const TNestError&) {
    return;
  }
}

TCandidate Boxes(const Job& AJob) {
  const TIntRect box = TPathUtils::BoundBox(PathsOf(SubjectPart(AJob)));
  const TPoint2D right{static_cast<double>(box.Width()) / kPathScale + AJob.Gap, 0};
  const TPoint2D up{0, static_cast<double>(box.Height()) / kPathScale + AJob.Gap};
  if (AJob.Direction == Along::Y) return {"boxes", {up, right}};
  return {"boxes", {right, up}};
}

std::vector<TCandidate> Candidates(const Job& AJob, Result& AResult) {
  std::vector<TCandidate> candidates;
  const TPaths nfp = NfpOf(AJob, AResult);
  if (!nfp.empty()) {
    try {
      candidates.push_back(Searched(nfp, AJob.Direction, AJob.Separate));
    } catch (const TNestError& error) {
      throw InputError({"shape", "/along",
                        Joined("gives no array of part ", Quoted(SubjectPart(AJob).Id), " in the direction ",
                               AlongName(AJob.Direction)),
                        error.Text()});
    }
    if (AJob.Direction == Along::Free)
      for (const Along direction : {Along::X, Along::Y, Along::XY}) AddSearched(nfp, direction, false, candidates);
    else if (!AJob.Separate)
      AddSearched(nfp, AJob.Direction, true, candidates);
  }
  candidates.push_back(Boxes(AJob));
  return candidates;
}

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
  return {
      {Lattice.First.X, Lattice.First.Y}, {Lattice.Second.X, Lattice.Second.Y}, cell, AreaOf(SubjectPart(AJob)) / cell};
}

}  // namespace

void AnswerArray(const Job& AJob, Result& AResult) {
  std::vector<TCandidate> candidates = Candidates(AJob, AResult);
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
