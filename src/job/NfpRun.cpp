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

// The qualities in which an answer passes the check, as far as it is one of full outlines or a reduced one: an answer
// that loses places is a reduced one, whatever the kernel calls it.
std::optional<NfpQuality> PassingQuality(const Job& AJob, const TPairOfParts& Pair, const TKernelAnswer& Answer,
                                         std::string& Verdict) {
  Verdict = PairVerdict(AJob, Pair.Fixed, Pair.Moving, Answer.Paths, Answer.Quality);
  if (Verdict.empty()) return Answer.Quality;
  if (Answer.Quality < NfpQuality::Complete) return std::nullopt;
  Verdict = PairVerdict(AJob, Pair.Fixed, Pair.Moving, Answer.Paths, NfpQuality::Concave);
  if (Verdict.empty()) return NfpQuality::Concave;
  return std::nullopt;
}

// From the quality asked for downward, the first answer that passes the check.
NfpPair AnswerPair(const Job& AJob, const std::vector<TVHPolygon>& Shapes, const TPairOfParts& Pair) {
  const std::string& fixed = AJob.Parts[Pair.Fixed].Id;
  const std::string& moving = AJob.Parts[Pair.Moving].Id;
  std::string verdict;
  for (int quality = static_cast<int>(AJob.Quality); quality >= 0; --quality) {
    try {
      const TKernelAnswer answer =
          AskKernel(Shapes[Pair.Moving], Shapes[Pair.Fixed], AJob.Inside, static_cast<NfpQuality>(quality));
      if (const auto passing = PassingQuality(AJob, Pair, answer, verdict))
        return {fixed, moving, *passing, ContoursOf(answer.Paths)};
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& error) {
      verdict = error.what();
    }
  }
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

ResultStatus StatusOf(const TRunControl& Control, bool IsWhole) {
  if (IsWhole) return ResultStatus::Complete;
  return Control.StoppedByCaller() ? ResultStatus::Stopped : ResultStatus::TimeLimit;
}

}  // namespace

void AnswerPairs(const Job& AJob, TRunControl& Control, Result& AResult) {
  const TRandomScope random(AJob.Run.Seed);
  AResult.Run.Method = "convolution";
  const std::vector<TPairOfParts> pairs = PairsOf(AJob);
  std::vector<TVHPolygon> shapes;
  for (const Part& part : AJob.Parts) shapes.push_back(ShapeOf(part));
  for (const TPairOfParts& pair : pairs) {
    if (Control.StoppedByCaller() || Control.OutOfTime()) break;
    AResult.Pairs.push_back(AnswerPair(AJob, shapes, pair));
    Control.Report({.Phase = "nfp",
                    .Usage = static_cast<double>(AResult.Pairs.size()) / static_cast<double>(pairs.size()),
                    .Unplaced = Size(pairs) - Size(AResult.Pairs),
                    .BoundValue = {}});
  }
  AResult.Status = StatusOf(Control, AResult.Pairs.size() == pairs.size());
  if (AResult.Pairs.empty() && Control.StoppedByCaller())
    throw StoppedError({"stopped", "", "stopped before any result", ""});
  WarnOfQuality(AJob, AResult);
}

}  // namespace platenest::detail
