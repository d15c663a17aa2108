#include "NfpRun.h"

#include <algorithm>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "NfpKernel.h"
#include "NfpShapes.h"
#include "NfpVerdict.h"
#include "Texts.h"
#include "platenest/foundation/Random.h"

namespace platenest::detail {

namespace {

// The quality in which an answer passes the check, nothing if in none. One that only loses places is a reduced one,
// whatever the kernel calls it.
std::optional<NfpQuality> PassingQuality(const Job& AJob, const TPairOfParts& Pair, const TKernelAnswer& Answer,
                                         std::string& Verdict) {
  Verdict = PairVerdict(AJob, Pair.Fixed, Pair.Moving, Answer.Paths, Answer.Quality);
  if (Verdict.empty()) return Answer.Quality;
  if (Answer.Quality < NfpQuality::Complete) return std::nullopt;
  Verdict = PairVerdict(AJob, Pair.Fixed, Pair.Moving, Answer.Paths, NfpQuality::Concave);
  if (Verdict.empty()) return NfpQuality::Concave;
  return std::nullopt;
}

TVHPolygon BoxOf(const TVHPolygon& Shape) {
  TVHPolygon box;
  box.push_back(TVPolyline2D(Shape.First().BoundBox()));
  box.IsRectangle = true;
  return box;
}

// One trial of the kernel. Nothing if it fails or its answer does not pass, which Verdict then explains.
std::optional<TKernelAnswer> Try(const Job& AJob, const TPairOfParts& Pair, const TVHPolygon& Moving,
                                 const TVHPolygon& Fixed, NfpQuality Quality, std::string& Verdict) {
  try {
    TKernelAnswer answer = AskKernel(Moving, Fixed, AJob.Inside, Quality);
    const std::optional<NfpQuality> passing = PassingQuality(AJob, Pair, answer, Verdict);
    if (!passing) return std::nullopt;
    answer.Quality = *passing;
    return answer;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    Verdict = error.what();
    return std::nullopt;
  }
}

// From the quality asked for downward, the first answer that passes the check. In the last resort parts are kept apart
// by their boxes.
NfpPair AnswerPair(const Job& AJob, const std::vector<TVHPolygon>& Shapes, const TPairOfParts& Pair) {
  const std::string& fixed = AJob.Parts[Pair.Fixed].Id;
  const std::string& moving = AJob.Parts[Pair.Moving].Id;
  std::string verdict;
  for (int quality = static_cast<int>(AJob.Quality); quality >= 0; --quality)
    if (const auto answer =
            Try(AJob, Pair, Shapes[Pair.Moving], Shapes[Pair.Fixed], static_cast<NfpQuality>(quality), verdict))
      return {fixed, moving, answer->Quality, ContoursOf(answer->Paths)};
  std::string boxVerdict;
  if (!AJob.Inside)
    if (const auto answer =
            Try(AJob, Pair, BoxOf(Shapes[Pair.Moving]), BoxOf(Shapes[Pair.Fixed]), NfpQuality::Convex, boxVerdict))
      return {fixed, moving, NfpQuality::Convex, ContoursOf(answer->Paths)};
  throw CheckError({"check", "",
                    Joined("no answer for part ", Quoted(moving), AJob.Inside ? " inside " : " around ", Quoted(fixed),
                           " passed the check"),
                    verdict});
}

void WarnOfQuality(const Job& AJob, Result& AResult) {
  const auto isLower = [&](const NfpPair& pair) { return pair.Quality < AJob.Quality; };
  const auto count = std::ranges::count_if(AResult.Pairs, isLower);
  if (count == 0) return;
  AResult.Warnings.push_back(Joined(count, count == 1 ? " pair has" : " pairs have", " a lower quality than ",
                                    QualityName(AJob.Quality), ", which was asked for"));
}

}  // namespace

void AnswerPairs(const Job& AJob, TRunControl& Control, Result& AResult) {
  const TRandomScope random(AJob.Run.Seed);
  AResult.Run.Method = "convolution";
  const std::vector<TPairOfParts> pairs = PairsOf(AJob);
  std::vector<TVHPolygon> shapes;
  for (const Part& part : AJob.Parts) shapes.push_back(ShapeOf(part));
  for (const TPairOfParts& pair : pairs) {
    if (const std::optional<ResultStatus> cut = Control.Interruption()) {
      AResult.Status = *cut;
      break;
    }
    AResult.Pairs.push_back(AnswerPair(AJob, shapes, pair));
    Control.Report({.Phase = "nfp",
                    .Usage = static_cast<double>(AResult.Pairs.size()) / static_cast<double>(pairs.size()),
                    .Unplaced = Size(pairs) - Size(AResult.Pairs),
                    .BoundValue = {}});
  }
  if (AResult.Pairs.empty() && AResult.Status == ResultStatus::Stopped)
    throw StoppedError({"stopped", "", "stopped before any result", ""});
  WarnOfQuality(AJob, AResult);
}

}  // namespace platenest::detail
