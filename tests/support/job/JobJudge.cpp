#include "JobJudge.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "AnswerJudge.h"

namespace platenest::test {

namespace {

// As the crow flies; below 0 the depth to which two boxes overlap.
double DistanceOf(const Box& A, const Box& B) {
  const double dx = std::max(A[0], B[0]) - std::min(A[2], B[2]);
  const double dy = std::max(A[1], B[1]) - std::min(A[3], B[3]);
  return dx > 0 && dy > 0 ? std::hypot(dx, dy) : std::max(dx, dy);
}

class TBoxJudge : public TAnswerJudge {
 public:
  using TAnswerJudge::TAnswerJudge;

 protected:
  double JudgeItems(const Layout& ALayout) override {
    double area = 0;
    if (!Holds(ALayout.Circles.empty() && !ALayout.Placements.empty(), "a layout of other shapes")) return area;
    for (const Placement& item : ALayout.Placements) area += JudgePlacement(ALayout, item);
    if (!HasFault()) JudgeBoxes(ALayout);
    return area;
  }

  double Excess(const Part& APart, const Plate& APlate) const override {
    const double w = APlate.Width - FJob.Margin[0] - FJob.Margin[2];
    const double h = APlate.Height - FJob.Margin[1] - FJob.Margin[3];
    const double upright = std::max(APart.Width - w, APart.Height - h);
    const double turned = std::max(APart.Height - w, APart.Width - h);
    return APart.Turn == Rotate::Any ? std::min(upright, turned) : upright;
  }

 private:
  // The area of the placed copy.
  double JudgePlacement(const Layout& ALayout, const Placement& Item) {
    const Part* const known = Count(ALayout, Item.Part);
    if (known == nullptr) return 0;
    const Part& part = *known;
    Holds(!Item.Rotated || part.Turn == Rotate::Any, part.Id, " is turned against its lock");
    // A quarter turn counter-clockwise takes (w, h) to (-h, w).
    const auto [x, y] = Item.Trans;
    const Box true_ =
        Item.Rotated ? Box{x - part.Height, y, x, y + part.Width} : Box{x, y, x + part.Width, y + part.Height};
    for (std::size_t i = 0; i < 4; ++i)
      Holds(std::fabs(true_[i] - Item.Bounds[i]) <= kJudgeTol, part.Id, " is not where its box is");
    Holds(IsInside(ALayout, true_), part.Id, " is outside of plate less margin");
    return AreaOf(part);
  }

  void JudgeBoxes(const Layout& ALayout) {
    std::vector<Box> boxes;
    for (const Placement& item : ALayout.Placements) boxes.push_back(item.Bounds);
    std::ranges::sort(boxes);
    double least = std::numeric_limits<double>::infinity();
    Box used = boxes[0];
    for (std::size_t i = 0; i < boxes.size(); ++i) {
      for (std::size_t k = 0; k < 4; ++k)
        used[k] = k < 2 ? std::min(used[k], boxes[i][k]) : std::max(used[k], boxes[i][k]);
      for (std::size_t j = i + 1; j < boxes.size() && boxes[j][0] - boxes[i][2] < std::min(least, 1e9); ++j)
        least = std::min(least, DistanceOf(boxes[i], boxes[j]));
    }
    JudgeClearance(ALayout, least);
    JudgeUsedBox(ALayout, used);
    const Box& free = ALayout.FreeBox;
    if (free[2] <= free[0] || free[3] <= free[1]) return;
    Holds(IsInside(ALayout, free), "the free box is outside of plate less margin");
    for (const Box& box : boxes) Holds(DistanceOf(free, box) >= FJob.Gap - kJudgeTol, "the free box is not free");
  }
};

}  // namespace

std::string JobFault(const Job& AJob, const Result& AResult) {
  return TBoxJudge(AJob, AResult).Fault();
}

std::string JobFault(const TJobCase& Case, const Result& AResult) {
  const std::string fault = JobFault(Case.AJob, AResult);
  return fault.empty() ? SampleFault(Case, AResult) : fault;
}

TJobWorth JobWorthOf(const Job& AJob, const Result& AResult) {
  TJobWorth worth{.Value = AResult.Total.Value};
  for (std::size_t i = 0; i < AResult.Parts.size(); ++i) {
    worth.UnplacedArea += AResult.Parts[i].Unplaced * AreaOf(AJob.Parts[i]);
    if (!AJob.Parts[i].Amount) worth.UnlimitedArea += AResult.Parts[i].Placed * AreaOf(AJob.Parts[i]);
  }
  worth.Cost = AResult.Total.Cost;
  worth.Plates = AResult.Total.Plates;
  worth.LastUsage = AResult.Layouts.empty() ? 0 : 1;
  for (const Layout& layout : AResult.Layouts) worth.LastUsage = std::min(worth.LastUsage, layout.Usage);
  return worth;
}

bool IsWorse(const TJobWorth& A, const TJobWorth& B) {
  if (A.Value && B.Value) return !AreClose(*A.Value, *B.Value) && *A.Value < *B.Value;
  if (!AreClose(A.UnplacedArea, B.UnplacedArea)) return A.UnplacedArea > B.UnplacedArea;
  if (!AreClose(A.UnlimitedArea, B.UnlimitedArea)) return A.UnlimitedArea < B.UnlimitedArea;
  if (!AreClose(A.Cost, B.Cost)) return A.Cost > B.Cost;
  if (A.Plates != B.Plates) return A.Plates > B.Plates;
  return A.LastUsage > B.LastUsage + 1e-9;
}

}  // namespace platenest::test
