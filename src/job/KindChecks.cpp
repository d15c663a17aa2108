#include "KindChecks.h"

#include <initializer_list>
#include <string>

#include "CheckTools.h"
#include "JobForm.h"
#include "NfpChecks.h"
#include "NfpShapes.h"

namespace platenest::detail {

namespace {

constexpr unsigned Kinds(std::initializer_list<JobKind> List) {
  unsigned bits = 0;
  for (const JobKind kind : List) bits |= 1U << static_cast<unsigned>(kind);
  return bits;
}

constexpr unsigned kOfPlates = Kinds({JobKind::One, JobKind::Fill, JobKind::Job, JobKind::Circles});
constexpr unsigned kOfOnePart = Kinds({JobKind::Array, JobKind::Label, JobKind::Sucker});

struct TMember {
  std::string_view Place;
  unsigned Kinds;
  bool (*IsGiven)(const Job&);
};

constexpr TMember kMembers[] = {
    {"/gap", kOfPlates | Kinds({JobKind::Array}), [](const Job& j) { return j.Gap != 0; }},
    {"/margin", kOfPlates, [](const Job& j) { return j.Margin != Job{}.Margin; }},
    {"/fixed", Kinds({JobKind::Nfp}), [](const Job& j) { return !j.Fixed.empty(); }},
    {"/moving", Kinds({JobKind::Nfp}), [](const Job& j) { return !j.Moving.empty(); }},
    {"/inside", Kinds({JobKind::Nfp}), [](const Job& j) { return j.Inside; }},
    {"/quality", Kinds({JobKind::Nfp}), [](const Job& j) { return j.Quality != NfpQuality::Complete; }},
    {"/part", kOfOnePart, [](const Job& j) { return !j.PartId.empty(); }},
    {"/along", Kinds({JobKind::Array}), [](const Job& j) { return j.Direction != Along::Free; }},
    {"/separate", Kinds({JobKind::Array}), [](const Job& j) { return j.Separate; }},
    {"/inner_lines", Kinds({JobKind::Label}), [](const Job& j) { return !j.InnerLines.empty(); }},
    {"/label", Kinds({JobKind::Label}), [](const Job& j) { return j.Label.has_value(); }},
    {"/offset", Kinds({JobKind::Label}), [](const Job& j) { return j.Offset != 0; }},
    {"/radius", Kinds({JobKind::Sucker}), [](const Job& j) { return j.Radius.has_value(); }},
};

// The no-fit polygon of a part around itself is made of all pairs of its edges.
void CheckVertexSquare(const Job& AJob, FaultList& Faults) {
  const std::optional<int> subject = SubjectOf(AJob);
  if (!subject) return;
  const Int64 count = VertexCount(AJob.Parts[*subject]);
  if (count * count <= limits::kVertexProduct) return;
  Faults.AddLimit(Joined("/parts/", *subject), Joined("has ", count, " points, whose square is more than the ",
                                                      limits::kVertexProduct, " that an array may have"));
}

}  // namespace

void RefuseForeignPartMembers(const std::vector<Part>& Parts, JobKind Kind, FaultList& Faults) {
  const bool isOfCircles = Kind == JobKind::Circles;
  const std::string text = Joined("has no meaning in a job of kind `", KindName(Kind), "`, whose parts have ",
                                  isOfCircles ? "a `radius`" : "`width` and `height`");
  const auto refuse = [&](int Index, std::string_view Member, bool IsGiven) {
    if (IsGiven) Faults.AddInput("conflict", Joined("/parts/", Index, "/", Member), text);
  };
  for (int i = 0; i < Size(Parts) && !Faults.Full(); ++i) {
    refuse(i, "width", isOfCircles && Parts[i].Width != 0);
    refuse(i, "height", isOfCircles && Parts[i].Height != 0);
    refuse(i, "rotate", isOfCircles && Parts[i].Turn != Rotate::Any);
    refuse(i, "value", isOfCircles && Parts[i].Value);
    refuse(i, "radius", !isOfCircles && Parts[i].Radius != 0);
  }
}

void RefuseForeignMembers(const Job& AJob, FaultList& Faults) {
  const std::string_view kind = KindName(AJob.Kind);
  const std::string text = Joined("has no meaning in a job of kind `", kind, "`");
  RefuseForeignPartMembers(AJob.Parts, AJob.Kind, Faults);
  if (!IsOfShapes(AJob.Kind)) {
    for (int i = 0; i < Size(AJob.Parts); ++i)
      if (!AJob.Parts[i].Outline.empty()) Faults.AddInput("conflict", Joined("/parts/", i, "/outline"), text);
  } else if (!AJob.Plates.empty()) {
    Faults.AddInput("entries", "/plates", Joined("must be left out in a job of kind `", kind, "`"));
  }
  for (const TMember& member : kMembers)
    if ((member.Kinds & Kinds({AJob.Kind})) == 0 && member.IsGiven(AJob))
      Faults.AddInput("conflict", std::string(member.Place), text);
}

void FindArrayFaults(const Job& AJob, FaultList& Faults) {
  FindSubjectFaults(AJob, Faults);
  if (AlongName(AJob.Direction).empty())
    return Faults.AddInput("choice", "/along", Joined("must be one of ", Listed(kAlongNames)));
  if (AJob.Separate && AJob.Direction == Along::Free)
    Faults.AddInput("conflict", "/separate", "goes with `along` x, y or xy only");
  CheckVertexSquare(AJob, Faults);
}

void FindLabelFaults(const Job& AJob, FaultList& Faults) {
  FindSubjectFaults(AJob, Faults);
  FindLineFaults(AJob.InnerLines, "inner_lines", Faults);
  CheckNumber(AJob.Offset, kDistanceRule, Fixed("/offset"), Faults);
  if (!AJob.Label) return Faults.AddMissing("", "label");
  CheckNumber(AJob.Label->Width, kSizeRule, Fixed("/label/width"), Faults);
  CheckNumber(AJob.Label->Height, kSizeRule, Fixed("/label/height"), Faults);
}

void FindSuckerFaults(const Job& AJob, FaultList& Faults) {
  FindSubjectFaults(AJob, Faults);
  if (!AJob.Radius) return Faults.AddMissing("", "radius");
  CheckNumber(*AJob.Radius, kSizeRule, Fixed("/radius"), Faults);
}

}  // namespace platenest::detail
