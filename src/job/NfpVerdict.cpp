#include "NfpVerdict.h"

#include "NfpShapes.h"
#include "platenest/layoutcheck/NfpCheck.h"

namespace platenest::detail {

namespace {

// How deep shapes may overlap at an allowed place, in path units. Full outlines are cleaned by a few
// hundred-thousandths of a unit; reduced ones, and the box that is the kernel's last resort, may cut a hundredth off.
constexpr double kFullTol = 100;
constexpr double kReducedTol = 2000;

}  // namespace

std::string PairVerdict(const Job& AJob, int Fixed, int Moving, const TPaths& Paths, NfpQuality Quality) {
  const bool isFull = Quality >= NfpQuality::Complete;
  TNfpCheckOptions options;
  options.IsFull = isFull;
  options.Tol = isFull ? kFullTol : kReducedTol;
  return CheckNfp({PathsOf(AJob.Parts[Fixed]), PathsOf(AJob.Parts[Moving]), AJob.Inside}, Paths, options);
}

}  // namespace platenest::detail
