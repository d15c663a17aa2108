#include "CircleJudge.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "AnswerJudge.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::test {

namespace {

Box BoxOf(const CirclePlacement& Item) {
  const auto [x, y] = Item.Center;
  return {x - Item.Radius, y - Item.Radius, x + Item.Radius, y + Item.Radius};
}

// Of the circle from the box, below 0 where they overlap.
double DistanceOf(const Box& ABox, const CirclePlacement& Item) {
  const auto [x, y] = Item.Center;
  const double dx = std::max({ABox[0] - x, x - ABox[2], 0.0});
  const double dy = std::max({ABox[1] - y, y - ABox[3], 0.0});
  return std::hypot(dx, dy) - Item.Radius;
}

double LeastClearanceOf(std::vector<CirclePlacement> Items) {
  std::ranges::sort(Items, {}, [](const CirclePlacement& item) { return BoxOf(item)[0]; });
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < Items.size(); ++i) {
    const double right = BoxOf(Items[i])[2];
    for (std::size_t j = i + 1; j < Items.size() && BoxOf(Items[j])[0] - right < std::min(least, 1e9); ++j) {
      const double dx = Items[i].Center[0] - Items[j].Center[0], dy = Items[i].Center[1] - Items[j].Center[1];
      least = std::min(least, std::hypot(dx, dy) - Items[i].Radius - Items[j].Radius);
    }
  }
  return least;
}

// Cuts across from edge to edge, and across what they part, until each circle is alone.
bool CutsPart(std::vector<CirclePlacement> Items, std::size_t Axis, bool HasOther) {
  if (Items.size() < 2) return true;
  std::ranges::sort(Items, {}, [Axis](const CirclePlacement& item) { return BoxOf(item)[Axis]; });
  std::vector<std::vector<CirclePlacement>> groups;
  double end = -std::numeric_limits<double>::infinity();
  for (const CirclePlacement& item : Items) {
    if (BoxOf(item)[Axis] >= end - kJudgeTol) groups.emplace_back();
    groups.back().push_back(item);
    end = std::max(end, BoxOf(item)[Axis + 2]);
  }
  if (groups.size() == 1) return HasOther && CutsPart(std::move(Items), 1 - Axis, false);
  return std::ranges::all_of(groups, [Axis](const auto& group) { return CutsPart(group, 1 - Axis, true); });
}

Int64 Whole(double V) {
  return V < 0 ? 0 : static_cast<Int64>(Trunc(V + 1e-10));
}

Int64 StaggeredCount(double W, double H, double D, double Gap) {
  const double pitch = D + Gap;
  if (W < D || H < D) return 0;
  const Int64 rows = 1 + Whole((H - D) / (pitch * std::numbers::sqrt3 / 2));
  const Int64 even = 1 + Whole((W - D) / pitch), odd = Whole((W - D) / pitch + 0.5);
  return (rows + 1) / 2 * even + rows / 2 * odd;
}

// Circles that rows make on a room of W x H with the gap between them, upright or staggered, along either side.
Int64 PlainCount(double W, double H, double D, double Gap) {
  const Int64 grid = Whole((W + Gap) / (D + Gap)) * Whole((H + Gap) / (D + Gap));
  return std::max({grid, StaggeredCount(W, H, D, Gap), StaggeredCount(H, W, D, Gap)});
}

class TCircleJudge : public TAnswerJudge {
 public:
  using TAnswerJudge::TAnswerJudge;

 protected:
  double JudgeItems(const Layout& ALayout) override {
    double area = 0;
    if (!Holds(ALayout.Placements.empty() && !ALayout.Circles.empty(), "a layout of other shapes")) return area;
    Box used = BoxOf(ALayout.Circles[0]);
    for (const CirclePlacement& item : ALayout.Circles) {
      const Box box = BoxOf(item);
      for (std::size_t k = 0; k < 4; ++k) used[k] = k < 2 ? std::min(used[k], box[k]) : std::max(used[k], box[k]);
      const Part* const part = Count(ALayout, item.Part);
      if (part == nullptr) return 0;
      Holds(item.Radius == part->Radius, part->Id, " has a radius of ", item.Radius);
      Holds(IsInside(ALayout, box), part->Id, " is outside of plate less margin");
      area += AreaOf(*part);
    }
    JudgeUsedBox(ALayout, used);
    JudgeClearance(ALayout, LeastClearanceOf(ALayout.Circles));
    JudgeFreeBox(ALayout);
    Holds(!ALayout.EdgeToEdge || CutsPart(ALayout.Circles, 0, true), "no cuts from edge to edge part the circles");
    return area;
  }

  double Excess(const Part& APart, const Plate& APlate) const override {
    return 2 * APart.Radius - std::min(RoomW(APlate), RoomH(APlate));
  }

  void JudgeMore() override {
    const Part& part = FJob.Parts[0];
    const bool isAlone = FJob.Parts.size() == 1 && (FJob.Run.Method == "auto" || FJob.Run.Method == "pattern");
    if (!isAlone || WasCut()) return;
    const Int64 asked = part.Amount ? *part.Amount : limits::kCopies;
    Int64 plain = 0;
    for (const Plate& plate : FJob.Plates) {
      const Int64 each = PlainCount(RoomW(plate), RoomH(plate), 2 * part.Radius, FJob.Gap);
      plain += std::min(asked, each * plate.Count.value_or(limits::kPlates));
      if (FJob.Plates.size() > 1 || each == 0) continue;
      Holds(FUsed[0] <= (asked + each - 1) / each, "takes ", FUsed[0], " plates of ", asked, " circles, rows take ",
            each, " a plate");
    }
    Holds(FPlaced[0] >= std::min(asked, plain), "places ", FPlaced[0], " circles, rows place ", plain);
  }

 private:
  double RoomW(const Plate& APlate) const { return APlate.Width - FJob.Margin[0] - FJob.Margin[2]; }
  double RoomH(const Plate& APlate) const { return APlate.Height - FJob.Margin[1] - FJob.Margin[3]; }

  void JudgeFreeBox(const Layout& ALayout) {
    const Box& free = ALayout.FreeBox;
    if (free[2] <= free[0] || free[3] <= free[1]) return;
    Holds(IsInside(ALayout, free), "the free box is outside of plate less margin");
    for (const CirclePlacement& item : ALayout.Circles)
      Holds(DistanceOf(free, item) >= FJob.Gap - kJudgeTol, "the free box is not free");
  }
};

}  // namespace

std::string CircleFault(const Job& AJob, const Result& AResult) {
  return TCircleJudge(AJob, AResult).Fault();
}

std::string CircleFault(const TJobCase& Case, const Result& AResult) {
  const std::string fault = CircleFault(Case.AJob, AResult);
  return fault.empty() ? SampleFault(Case, AResult) : fault;
}

}  // namespace platenest::test
