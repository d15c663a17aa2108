#include "PlaceRun.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "NfpShapes.h"
#include "PartVerdict.h"
#include "Texts.h"
#include "platenest/job/JobErrors.h"
#include "platenest/services/arrayInfo.h"

namespace platenest::detail {

namespace {

// By how much the reduced outlines of the search may be wrong: the second try grows the label by it.
constexpr double kReduced = 0.02;
// How the class says that the label's polygon around the inner lines came out empty.
constexpr std::string_view kEmptyNfp = "NFP为空";

TVPolyline2DList LinesOf(const std::vector<PolygonRing>& Lines) {
  TVPolyline2DList lines;
  for (const PolygonRing& points : Lines) {
    TVPolyline2D& line = lines.emplace_back();
    for (const PolygonPoint& point : points) line.push_back({point[0], point[1]});
  }
  return lines;
}

// Whether the run is to end before the next search.
bool IsCut(const TRunControl& Control, Result& AResult) {
  const std::optional<ResultStatus> cut = Control.Interruption();
  if (cut == ResultStatus::Stopped) throw StoppedError({"stopped", "", "stopped before any result", ""});
  if (!cut) return false;
  AResult.Status = *cut;
  AResult.Warnings.push_back("time was over before the search ended");
  return true;
}

// The search for one orientation of the label.
class TLabelSearch {
 public:
  TLabelSearch(const Job& AJob, const TRunControl& Control, Result& AResult)
      : FJob(AJob), FControl(Control), FResult(AResult), FInner(LinesOf(AJob.InnerLines)) {
    for (const TVPolyline2D& contour : ClosedShapeOf(SubjectPart(AJob))) FLayer.push_back(contour);
  }

  // The label is taken for larger by Growth all round.
  LabelAnswer Place(double Growth) const {
    for (const bool isRotated : {false, true}) {
      if (IsCut(FControl, FResult)) break;
      if (const LabelAnswer answer = PlaceTurned(isRotated, Growth); answer.Found) return answer;
    }
    return {};
  }

 private:
  LabelAnswer PlaceTurned(bool IsRotated, double Growth) const {
    const Box box = LabelBox(*FJob.Label, IsRotated, {0, 0});
    const TVRect2D label = TVRect2D::FromBounds(box[3] + Growth, box[0] - Growth, box[1] - Growth, box[2] + Growth);
    TPoint2D move;
    const double margin = Search(label, move);
    if (!(margin >= 0)) return {};
    const std::array<double, 2> moved{move.X, move.Y};
    return {true, IsRotated, moved, margin, LabelBox(*FJob.Label, IsRotated, moved)};
  }

  double Search(const TVRect2D& Label, TPoint2D& Move) const {
    constexpr double noPlace = -1;
    try {
      return TLabelInPartAlgo::DoCalcLabelPosInPart(FLayer, FInner, Label, FJob.Offset, Move);
    } catch (const TNestError& error) {
      if (error.Text() != kEmptyNfp)
        throw InputError({"shape", FInner.empty() ? "/part" : "/inner_lines",
                          "the search for the label cannot work with these lines", error.Text()});
      const std::string warning = "the search for the label ended without an answer: " + error.Text();
      if (std::ranges::find(FResult.Warnings, warning) == FResult.Warnings.end()) FResult.Warnings.push_back(warning);
      return noPlace;
    }
  }

  const Job& FJob;
  const TRunControl& FControl;
  Result& FResult;
  TVPolyline2DList FLayer;
  const TVPolyline2DList FInner;
};

}  // namespace

void AnswerLabel(const Job& AJob, const TRunControl& Control, Result& AResult) {
  AResult.Run.Method = "bisection";
  const TLabelSearch search(AJob, Control, AResult);
  std::string verdict;
  for (const double growth : {0.0, kReduced}) {
    AResult.Label = search.Place(growth);
    verdict = AResult.Label->Found ? LabelVerdict(AJob, *AResult.Label) : "";
    if (verdict.empty()) return;
  }
  throw CheckError({"check", "", "no place of the label passed the check", verdict});
}

void AnswerSucker(const Job& AJob, const TRunControl& Control, Result& AResult) {
  AResult.Run.Method = "offset";
  TPoint2D center;
  SuckerAnswer& answer = AResult.Sucker.emplace();
  if (IsCut(Control, AResult)) return;
  if (!TSuckerInPartAlgo::CalcSuckerPosInPart(ClosedShapeOf(SubjectPart(AJob)), *AJob.Radius, center)) return;
  answer = {true, {center.X, center.Y}};
  const std::string verdict = SuckerVerdict(AJob, answer);
  if (!verdict.empty()) throw CheckError({"check", "", "the place of the gripper failed the check", verdict});
}

}  // namespace platenest::detail
