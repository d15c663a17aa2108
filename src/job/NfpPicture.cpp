#include <algorithm>
#include <string>

#include "NfpShapes.h"
#include "platenest/job/Run.h"
#include "platenest/layoutcheck/NfpSvg.h"

namespace platenest {

namespace {

using namespace detail;

const Part& PartOf(const Job& AJob, const std::string& Id) {
  const auto part = std::ranges::find(AJob.Parts, Id, &Part::Id);
  if (part == AJob.Parts.end()) throw TRangeError("[Error] PairToSvg: no part " + Id);
  return *part;
}

}  // namespace

std::string PairToSvg(const Job& AJob, const Result& AResult, int PairIndex) {
  if (PairIndex < 0 || PairIndex >= Size(AResult.Pairs))
    throw TRangeError("[Error] PairToSvg: no pair " + std::to_string(PairIndex));
  const NfpPair& pair = AResult.Pairs[PairIndex];
  TNfpPicture picture;
  picture.Title = AResult.Name;
  picture.FixedId = pair.Fixed;
  picture.MovingId = pair.Moving;
  picture.Units = AResult.Units;
  picture.IsInside = AJob.Inside;
  picture.Fixed = PointsOf(ContoursOf(PartOf(AJob, pair.Fixed)));
  picture.Moving = PointsOf(ContoursOf(PartOf(AJob, pair.Moving)));
  picture.Region = PointsOf(pair.Paths);
  return NfpSvg(picture);
}

}  // namespace platenest
