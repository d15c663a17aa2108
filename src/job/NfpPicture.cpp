#include <algorithm>
#include <string>

#include "NfpShapes.h"
#include "platenest/job/Run.h"
#include "platenest/layoutcheck/NfpSvg.h"

namespace platenest {

namespace {

using namespace detail;

TPictureContours Drawn(const std::vector<PolygonRing>& Contours) {
  TPictureContours drawn;
  for (const PolygonRing& contour : Contours) {
    auto& points = drawn.emplace_back();
    for (const PolygonPoint& point : contour) points.push_back({point[0], point[1]});
  }
  return drawn;
}

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
  picture.Fixed = Drawn(ContoursOf(PartOf(AJob, pair.Fixed)));
  picture.Moving = Drawn(ContoursOf(PartOf(AJob, pair.Moving)));
  picture.Region = Drawn(pair.Paths);
  return NfpSvg(picture);
}

}  // namespace platenest
