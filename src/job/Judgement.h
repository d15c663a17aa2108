#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "JobAnswer.h"
#include "platenest/foundation/Types.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"
#include "platenest/job/Run.h"

// What is judged alike in all kinds of jobs over a stock of plates. TSizes is the job in the nesters' units: lists
// Plates and Parts whose entries tell their Position in the job.
namespace platenest::detail {

// All copies asked for by number, of parts that fit some plate.
template <class TSizes>
bool PlacesAll(const TSizes& Sizes, const Result& AResult) {
  return std::ranges::all_of(Sizes.Parts,
                             [&](const auto& part) { return AResult.Parts.at(part.Position).Unplaced == 0; });
}

// Whether a plate that holds the part is left.
template <class TSizes, class TPart>
bool IsInStock(const TSizes& Sizes, const TPart& APart, const Result& AResult) {
  return std::ranges::any_of(Sizes.Plates, [&](const auto& plate) {
    const PlateUse& use = AResult.Plates.at(plate.Position);
    return (!use.Count || use.Used < *use.Count) && Holds(plate, APart);
  });
}

// Status and reasons for a search that ended by itself. HasRoom(part) tells whether one more copy of a part without
// limit fits an open layout.
template <class TSizes, class THasRoom>
void JudgeParts(const TSizes& Sizes, Result& AResult, THasRoom HasRoom) {
  std::vector<decltype(Sizes.Parts.data())> fitting(AResult.Parts.size());
  for (const auto& part : Sizes.Parts) fitting[part.Position] = &part;
  bool isComplete = true;
  for (int i = 0; i < Size(AResult.Parts); ++i) {
    PartUse& use = AResult.Parts[i];
    use.Reason.clear();
    if (!use.Amount && fitting[i] != nullptr)
      isComplete &= !IsInStock(Sizes, *fitting[i], AResult) && !HasRoom(*fitting[i]);
    if (use.Unplaced == 0) continue;
    isComplete = false;
    use.Reason = fitting[i] == nullptr                    ? "too_large"
                 : IsInStock(Sizes, *fitting[i], AResult) ? "left_by_method"
                                                          : "no_stock";
  }
  AResult.Status = isComplete ? ResultStatus::Complete : ResultStatus::Partial;
}

// Faults of the sums over all layouts: amounts, stock, and the bound that Beaten finds for them.
std::string SumFault(const Job& AJob, const std::vector<Layout>& Layouts,
                     const std::function<const Bound*(const Result&)>& Beaten);

// What an answer is told by while the search goes on. Placed are copies by the list of Sizes.
template <class TSizes, class TLayouts>
Progress ProgressOf(const Job& AJob, const TSizes& Sizes, const TLayouts& Layouts, const TJobMerit& Merit,
                    const std::vector<Bound>& Bounds) {
  Progress now;
  now.Plates = static_cast<int>(Merit.Plates);
  double parts = 0;
  double plates = 0;
  const std::vector<Int64> placed = PlacedCopies(Sizes, Layouts);
  for (const auto& layout : Layouts) plates += Sizes.Plates[layout.Plate].Area * layout.Copies;
  for (const Part& part : AJob.Parts) now.Unplaced += part.Amount.value_or(0);
  for (int i = 0; i < Size(placed); ++i) {
    parts += Sizes.Parts[i].Area * static_cast<double>(placed[i]);
    if (!Sizes.Parts[i].IsUnlimited) now.Unplaced -= placed[i];
  }
  if (plates > 0) now.Usage = parts / plates;
  for (const Bound& bound : Bounds)
    if (bound.What == "plates") now.BoundValue = std::max(now.BoundValue.value_or(0), bound.Value);
  return now;
}

}  // namespace platenest::detail
