#include "NfpVerdict.h"

#include <algorithm>

#include "NfpShapes.h"
#include "platenest/layoutcheck/NfpCheck.h"

namespace platenest::detail {

namespace {

// How deep shapes may overlap at an allowed place, in path units. Full outlines are cleaned by a few
// hundred-thousandths of a unit; reduced ones, and the box that is the kernel's last resort, may cut a hundredth off.
constexpr double kFullTol = 100;
constexpr double kReducedTol = 2000;

// What a check may cost: trials of all pairs, each with all points of its pair, and contacts of all pairs. A lone pair
// of common parts is looked at whole.
constexpr Int64 kMostWork = 2'000'000;
constexpr Int64 kMostContacts = 200'000;
constexpr Int64 kMostContactsOfPair = 4'000;
constexpr Int64 kFewestSamples = 24;
constexpr Int64 kMostSamples = 2'000;

}  // namespace

std::string PairVerdict(const Job& AJob, int Fixed, int Moving, const TPaths& Paths, NfpQuality Quality) {
  const bool isFull = Quality >= NfpQuality::Complete;
  TNfpCheckOptions options;
  options.IsFull = isFull;
  options.Tol = isFull ? kFullTol : kReducedTol;
  const Int64 fixedCount = VertexCount(AJob.Parts[Fixed]);
  const Int64 movingCount = VertexCount(AJob.Parts[Moving]);
  const Int64 pairs = PairCount(AJob);
  options.MostSamples =
      static_cast<int>(std::clamp(kMostWork / (pairs * (fixedCount + movingCount)), kFewestSamples, kMostSamples));
  options.MostContacts = std::min(kMostContacts / pairs, kMostContactsOfPair);
  return CheckNfp({PathsOf(AJob.Parts[Fixed]), PathsOf(AJob.Parts[Moving]), AJob.Inside}, Paths, options);
}

}  // namespace platenest::detail
