#include "ArrayInfoRow.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "ArrayInfoRules.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/services/arrayInfo.h"

namespace platenest::detail {

namespace {

[[noreturn]] void Refuse(std::string_view Operation, std::string_view Reason) {
  throw TArgumentError("[Error] TArrayInfoAlgo." + std::string(Operation) + ": " + std::string(Reason));
}

double FarthestCoordinate(const TPaths& Paths) {
  const TIntRect box = TPathUtils::BoundBox(Paths);
  double farthest = 0;
  if (!box.IsValid()) return farthest;
  for (const Int64 bound : {box.Left, box.Right, box.Top, box.Bottom})
    farthest = std::max(farthest, std::fabs(static_cast<double>(bound)));
  return farthest;
}

// Shift: the longest move of the paths on either axis, in path units.
void RequireReach(const TPaths& Paths, double Shift, std::string_view Operation) {
  constexpr double most = static_cast<double>(TArrayInfoAlgo::kMaxRowCoordinate);
  if (!(FarthestCoordinate(Paths) + Shift < most)) Refuse(Operation, "a row of these paths reaches too far");
}

TPaths Moved(const TPaths& Paths, const TPoint2D& Vector) {
  return TPathUtils::Translate(Paths, TPathUtils::CreatePointL2D(TPathUtils::CreateIntPoint(Vector, kPathScale)));
}

// Clipper reports its own failures by false and without a reason, as it does when there was nothing to unite.
TPaths United(TClipper& Clipper, bool HasPaths, std::string_view Operation) {
  TPaths result;
  const bool done = Clipper.Execute(ClipperLib::ctUnion, result, ClipperLib::pftNonZero, ClipperLib::pftNonZero);
  if (HasPaths && !done)
    throw TNestError("[Error] TArrayInfoAlgo." + std::string(Operation) + ": a union of paths failed");
  TPathUtils::ConnectHeadTail(result);
  return result;
}

}  // namespace

int RowCopies(double Count, std::string_view Operation) {
  if (!(Count < TArrayInfoAlgo::kMaxRowCopies + 1.0)) Refuse(Operation, "a row has too many copies");
  return Count < 0 ? -1 : Floor(Count);
}

TPaths UniteRow(const TPaths& Paths, int Count, const TPoint2D& Vector, TRowForm Form, std::string_view Operation) {
  if (Count < 0) return {};
  if (Count > TArrayInfoAlgo::kMaxRowCopies) Refuse(Operation, "a row has too many copies");
  const double reach = Count * std::max(std::fabs(Vector.X), std::fabs(Vector.Y)) * kPathScale;
  RequireReach(Paths, Count > 0 ? reach : 0, Operation);
  TClipper clipper;
  bool hasPaths = false;
  if (Form == TRowForm::CopiesClip) hasPaths = clipper.AddPaths(Paths, ClipperLib::ptSubject, true);
  for (int k = -Count; k <= Count; ++k) {
    if (k == 0 && Form == TRowForm::CopiesClip) continue;
    const ClipperLib::PolyType type = Form == TRowForm::CopiesClip ? ClipperLib::ptClip : ClipperLib::ptSubject;
    const bool added = clipper.AddPaths(k == 0 ? Paths : Moved(Paths, k * Vector), type, true);
    hasPaths = hasPaths || added;
  }
  return United(clipper, hasPaths, Operation);
}

TPaths UnitePair(const TPaths& Subject, const TPath& Clip, const TPoint2D& Vector, std::string_view Operation) {
  const TPaths clip{Clip};
  RequireReach(Subject, 0, Operation);
  RequireReach(clip, std::max(std::fabs(Vector.X), std::fabs(Vector.Y)) * kPathScale, Operation);
  TClipper clipper;
  const bool hasSubject = clipper.AddPaths(Subject, ClipperLib::ptSubject, true);
  const bool hasClip = clipper.AddPaths(Moved(clip, Vector), ClipperLib::ptClip, true);
  return United(clipper, hasSubject || hasClip, Operation);
}

TPaths CounterClockwiseForRow(TPaths& NFP, std::string_view Operation) {
  TPathUtils::SetIsClockwise(NFP, false, false);
  return NFP.size() < 2 ? NFP : UniteRow(NFP, 0, Origin2D, TRowForm::AllSubjects, Operation);
}

}  // namespace platenest::detail
