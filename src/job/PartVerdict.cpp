#include "PartVerdict.h"

#include "NfpShapes.h"

namespace platenest::detail {

namespace {

// Drawing units: outlines are cleaned by a few hundred-thousandths of a unit on both sides of a no-fit polygon.
constexpr double kTol = 1e-3;

}  // namespace

const Part& SubjectPart(const Job& AJob) {
  return AJob.Parts[SubjectOf(AJob).value()];
}

TLattice LatticeOf(const ArrayAnswer& Answer) {
  return {{Answer.First[0], Answer.First[1]}, {Answer.Second[0], Answer.Second[1]}};
}

Box LabelBox(const LabelSize& Label, bool Rotated, const std::array<double, 2>& Move) {
  const auto [x, y] = Move;
  if (!Rotated) return {x, y, x + Label.Width, y + Label.Height};
  const double middleX = x + Label.Width / 2;
  const double middleY = y + Label.Height / 2;
  return {middleX - Label.Height / 2, middleY - Label.Width / 2, middleX + Label.Height / 2, middleY + Label.Width / 2};
}

std::string ArrayVerdict(const Job& AJob, const TLattice& Lattice, double Gap) {
  return CheckLattice(PathsOf(SubjectPart(AJob)), Lattice, Gap, kTol);
}

std::string LabelVerdict(const Job& AJob, const LabelAnswer& Answer) {
  const auto& [left, bottom, right, top] = Answer.Bounds;
  return CheckLabel(PathsOf(SubjectPart(AJob)), PointsOf(AJob.InnerLines), {left, bottom, right, top}, Answer.Margin,
                    kTol);
}

std::string SuckerVerdict(const Job& AJob, const SuckerAnswer& Answer) {
  return CheckDisc(PathsOf(SubjectPart(AJob)), {Answer.Center[0], Answer.Center[1]}, AJob.Radius.value_or(0), kTol);
}

}  // namespace platenest::detail
