#include <cmath>
#include <string>

#include "NfpShapes.h"
#include "PartVerdict.h"
#include "Texts.h"
#include "platenest/foundation/Errors.h"
#include "platenest/job/Run.h"
#include "platenest/layoutcheck/PartSvg.h"

namespace platenest {

namespace {

using namespace detail;

std::string Rounded(double V, double PerUnit) {
  return NumberText(std::nearbyint(V * PerUnit) / PerUnit);
}

std::string Shown(const std::array<double, 2>& V) {
  return Joined("[", Rounded(V[0], 1e5), ", ", Rounded(V[1], 1e5), "]");
}

void Add(const ArrayAnswer& Answer, TPartPicture& Picture) {
  Picture.Lattice = LatticeOf(Answer);
  Picture.Remarks = {
      Joined("vectors ", Shown(Answer.First), " and ", Shown(Answer.Second)),
      Joined("cell ", Rounded(Answer.CellArea, 1e3), ", density ", Rounded(Answer.Density * 100, 10), " %")};
}

void Add(const LabelAnswer& Answer, TPartPicture& Picture) {
  if (!Answer.Found) {
    Picture.Remarks = {"no place for the label"};
    return;
  }
  const auto& [left, bottom, right, top] = Answer.Bounds;
  Picture.Label = {{left, bottom, right, top}, Answer.Margin};
  Picture.Remarks = {Joined("label", Answer.Rotated ? ", turned" : "", " at ", Shown({left, bottom}), ", margin ",
                            Rounded(Answer.Margin, 1e5))};
}

void Add(const SuckerAnswer& Answer, double Radius, TPartPicture& Picture) {
  if (!Answer.Found) {
    Picture.Remarks = {"no place for the gripper"};
    return;
  }
  Picture.Disc = {{Answer.Center[0], Answer.Center[1]}, Radius};
  Picture.Remarks = {Joined("gripper of radius ", Rounded(Radius, 1e5), " at ", Shown(Answer.Center))};
}

}  // namespace

std::string PartToSvg(const Job& AJob, const Result& AResult) {
  const std::optional<int> subject = SubjectOf(AJob);
  if (!subject) throw TRangeError("[Error] PartToSvg: no part " + AJob.PartId);
  TPartPicture picture;
  picture.Title = AResult.Name;
  picture.PartId = AJob.Parts[*subject].Id;
  picture.Units = AResult.Units;
  picture.Part = PointsOf(ContoursOf(AJob.Parts[*subject]));
  picture.Lines = PointsOf(AJob.InnerLines);
  if (AResult.Array)
    Add(*AResult.Array, picture);
  else if (AResult.Label)
    Add(*AResult.Label, picture);
  else if (AResult.Sucker)
    Add(*AResult.Sucker, AJob.Radius.value_or(0), picture);
  else
    throw TRangeError("[Error] PartToSvg: no answer about a part");
  return PartSvg(picture);
}

}  // namespace platenest
