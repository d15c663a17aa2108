#include <algorithm>
#include <cmath>
#include <string>
#include <unordered_map>

#include "CheckTools.h"
#include "JobForm.h"
#include "KindChecks.h"
#include "NfpChecks.h"
#include "Texts.h"

namespace platenest {

namespace detail {

namespace {

constexpr NumberRule kValueRule{0, true, 0, limits::kWorth};
constexpr NumberRule kCostRule{0, false, 0, limits::kWorth};
constexpr NumberRule kTimeRule{0, false, 0, limits::kTimeLimit};
constexpr NumberRule kRadiusRule{0, true, limits::kSmallestSize / 2, limits::kLargestSize / 2};

// What each kind asks of its plates, parts and methods.
struct KindRule {
  std::span<const std::string_view> Methods;
  bool OnePlateKind;
  bool OnePart;
  void (*Ask)(const Job&, FaultList&);  // the checks of its own members
};

constexpr std::string_view kOneMethods[] = {"auto", "strip", "fiveblock", "trim"};
constexpr std::string_view kFillMethods[] = {"auto", "smart", "raster", "rskf", "bigfirst", "strips"};
constexpr std::string_view kJobMethods[] = {"auto", "repeat", "svc", "cg"};
constexpr std::string_view kShapeMethods[] = {"auto"};
constexpr std::string_view kCircleMethods[] = {"auto", "pattern", "pack"};
constexpr std::string_view kLaterCircleMethods[] = {"dominant", "special"};

// Without limit on both sides a job would never end.
void CheckEnd(const Job& AJob, FaultList& Faults) {
  const auto part = std::ranges::find_if(AJob.Parts, [](const Part& p) { return !p.Amount; });
  const auto plate = std::ranges::find_if(AJob.Plates, [](const Plate& p) { return !p.Count; });
  if (part == AJob.Parts.end() || plate == AJob.Plates.end()) return;
  Faults.AddInput("conflict", Joined("/parts/", part - AJob.Parts.begin(), "/amount"),
                  Joined("must not be null while the count of /plates/", plate - AJob.Plates.begin(),
                         " is null too: such a job has no end"));
}

void FindCircleFaults(const Job& AJob, FaultList& Faults) {
  CheckEnd(AJob, Faults);
  const auto other =
      std::ranges::find_if(AJob.Parts, [&](const Part& part) { return part.Radius != AJob.Parts[0].Radius; });
  if (AJob.Run.Method != "pattern" || other == AJob.Parts.end()) return;
  Faults.AddInput("conflict", "/options/method",
                  Joined("\"pattern\" lays circles of one size, but the radius of /parts/", other - AJob.Parts.begin(),
                         " is not that of /parts/0"));
}

// In the order of JobKind.
constexpr KindRule kKindRules[] = {{kOneMethods, true, true, nullptr},
                                   {kFillMethods, true, false, nullptr},
                                   {kJobMethods, false, false, CheckEnd},
                                   {kShapeMethods, false, false, FindPairFaults},
                                   {kShapeMethods, false, false, FindArrayFaults},
                                   {kShapeMethods, false, false, FindLabelFaults},
                                   {kShapeMethods, false, false, FindSuckerFaults},
                                   {kCircleMethods, false, false, FindCircleFaults}};

void CheckCount(const std::optional<int>& V, const WholeRule& Rule, const PlaceOf& Place, FaultList& Faults) {
  if (!V) return;
  const Int64 wide = *V;
  CheckWhole(Scalar::FromWhole(static_cast<std::uint64_t>(std::abs(wide)), wide < 0), Rule, Place, Faults);
}

void CheckText(std::string_view Text, const PlaceOf& Place, FaultList& Faults) {
  if (FindBadUtf8(Text)) Faults.AddInput("encoding", Place(), "must be UTF-8");
}

template <class Entry>
void CheckIds(const std::vector<Entry>& Entries, std::string_view List, FaultList& Faults) {
  std::unordered_map<std::string_view, int> first;
  for (int i = 0; i < Size(Entries); ++i) {
    const PlaceOf place = EntryPlaces(List, i)("id");
    CheckId(Entries[i].Id, place, Faults);
    const auto [known, isNew] = first.emplace(Entries[i].Id, i);
    if (isNew || Entries[i].Id.empty()) continue;
    Faults.AddInput("duplicate-id", place(),
                    Joined(Quoted(Entries[i].Id), " is the id of /", List, "/", known->second, " already"));
  }
}

void CheckEntries(int Count, Int64 Most, bool ExactlyOne, std::string_view Pointer, FaultList& Faults) {
  if (ExactlyOne && Count != 1) {
    Faults.AddInput("entries", std::string(Pointer),
                    Joined("must have exactly 1 entry in a job of this kind, found ", Count));
  } else if (Count == 0) {
    Faults.AddInput("entries", std::string(Pointer), "must have at least 1 entry");
  } else if (Count > Most) {
    Faults.AddLimit(std::string(Pointer), Joined("must have at most ", Most, " entries, found ", Count));
  }
}

void CheckTotalCopies(const std::vector<Part>& Parts, FaultList& Faults) {
  Int64 total = 0;
  for (const Part& part : Parts) total += std::clamp(part.Amount.value_or(0), 0, static_cast<int>(limits::kCopies));
  if (total <= limits::kCopies) return;
  Faults.AddLimit("/parts", Joined("must ask for at most ", limits::kCopies, " copies in total, found ", total));
}

struct SizePlace {
  double Size;
  std::string Place;
};

// Compares the extreme sizes of the whole job, whose smallest part may be many orders below its largest plate.
class SizeSpan {
 public:
  void Add(double V, const PlaceOf& Place) {
    if (!(V >= limits::kSmallestSize && V <= limits::kLargestSize)) return;
    if (FLeast.Size == 0 || V < FLeast.Size) FLeast = {V, Place()};
    if (V > FMost.Size) FMost = {V, Place()};
  }
  void Check(FaultList& Faults) const {
    if (FLeast.Size == 0 || FMost.Size <= limits::kSizeRatio * FLeast.Size) return;
    Faults.AddLimit(FLeast.Place, Joined("must be at least a millionth of the largest size, ", FMost.Size, " at ",
                                         FMost.Place, ", found ", FLeast.Size));
  }

 private:
  SizePlace FLeast{0, ""};
  SizePlace FMost{0, ""};
};

void CheckSizeSpan(const Job& AJob, FaultList& Faults) {
  SizeSpan span;
  for (int i = 0; i < Size(AJob.Plates); ++i) {
    const auto at = EntryPlaces("plates", i);
    span.Add(AJob.Plates[i].Width, at("width"));
    span.Add(AJob.Plates[i].Height, at("height"));
  }
  for (int i = 0; i < Size(AJob.Parts); ++i) {
    const auto at = EntryPlaces("parts", i);
    if (!AJob.Parts[i].Outline.empty()) continue;
    span.Add(AJob.Parts[i].Width, at("width"));
    span.Add(AJob.Parts[i].Height, at("height"));
    span.Add(2 * AJob.Parts[i].Radius, at("radius"));
  }
  span.Check(Faults);
}

// The sizes that a part of this kind of jobs has. One of another kind is told by RefuseForeignPartMembers.
void CheckSizes(const Part& APart, JobKind Kind, int Index, FaultList& Faults) {
  const auto at = EntryPlaces("parts", Index);
  if (Kind == JobKind::Circles) {
    CheckNumber(APart.Radius, kRadiusRule, at("radius"), Faults);
  } else if (APart.Outline.empty() && (APart.Radius == 0 || APart.Width != 0 || APart.Height != 0)) {
    CheckNumber(APart.Width, kSizeRule, at("width"), Faults);
    CheckNumber(APart.Height, kSizeRule, at("height"), Faults);
  }
}

void CheckOptions(const Options& Run, FaultList& Faults) {
  CheckNumber(Run.TimeLimit, kTimeRule, Fixed("/options/time_limit"), Faults);
  if (Run.Threads != 0) CheckCount(Run.Threads, kThreadsRule, Fixed("/options/threads"), Faults);
  if (Run.MemoryLimit < 1) {
    Faults.AddInput("range", "/options/memory_limit",
                    Joined("must be a whole number of at least 1, found ", Run.MemoryLimit));
  }
}

// Whether a method keeps parts as they lie where the job asks for it. Methods of kind Job are told apart later, by
// run().
bool KeepsLocks(JobKind Kind, std::string_view Method, bool AllLocked) {
  if (Method == "auto" || Kind == JobKind::Job || Kind == JobKind::Circles) return true;
  if (Kind == JobKind::One) return false;
  return Method == "smart" || (AllLocked && Method == "rskf");
}

void CheckMethod(const Job& AJob, const KindRule& Rule, FaultList& Faults) {
  const std::string& method = AJob.Run.Method;
  if (AJob.Kind == JobKind::Circles && std::ranges::find(kLaterCircleMethods, method) != std::end(kLaterCircleMethods))
    return Faults.AddInput(
        "choice", "/options/method",
        Joined("must be one of ", Listed(Rule.Methods), ": ", Quoted(method), " is not available in this version"));
  if (std::ranges::find(Rule.Methods, method) == Rule.Methods.end()) {
    return Faults.AddInput(
        "choice", "/options/method",
        Joined("must be one of ", Listed(Rule.Methods), ", found ", Quoted(method), NearMiss(method, Rule.Methods)));
  }
  const auto isLocked = [](const Part& part) { return part.Turn == Rotate::None; };
  const auto locked = std::ranges::find_if(AJob.Parts, isLocked);
  if (locked == AJob.Parts.end()) return;
  if (KeepsLocks(AJob.Kind, method, std::ranges::all_of(AJob.Parts, isLocked))) return;
  Faults.AddInput(
      "conflict", "/options/method",
      Joined(Quoted(method), " turns parts, but /parts/", locked - AJob.Parts.begin(), " asks for `rotate` none"));
}

void CheckKind(const Job& AJob, FaultList& Faults) {
  const auto kind = static_cast<std::size_t>(AJob.Kind);
  if (kind >= std::size(kKindRules))
    return Faults.AddInput("choice", "/kind", Joined("must be one of ", Listed(kKindNames)));
  const KindRule& rule = kKindRules[kind];
  RefuseForeignMembers(AJob, Faults);
  if (rule.Ask != nullptr) rule.Ask(AJob, Faults);
  if (!IsOfShapes(AJob.Kind))
    CheckEntries(Size(AJob.Plates), limits::kPlateKinds, rule.OnePlateKind, "/plates", Faults);
  CheckEntries(Size(AJob.Parts), limits::kPartKinds, rule.OnePart, "/parts", Faults);
  CheckMethod(AJob, rule, Faults);
}

void CheckHead(const Job& AJob, FaultList& Faults) {
  CheckText(AJob.Name, Fixed("/name"), Faults);
  Accept(ChoiceAt{kUnitNames, {}}, Scalar::FromText(AJob.Units), Fixed("/units"), Faults);
  CheckNumber(AJob.Gap, kDistanceRule, Fixed("/gap"), Faults);
  const bool oneForAll = std::ranges::count(AJob.Margin, AJob.Margin[0]) == Size(AJob.Margin);
  if (oneForAll) CheckNumber(AJob.Margin[0], kDistanceRule, Fixed("/margin"), Faults);
  for (int i = 0; i < Size(AJob.Margin) && !oneForAll; ++i) {
    CheckNumber(
        AJob.Margin[i], kDistanceRule, [i] { return Joined("/margin/", i); }, Faults);
  }
}

}  // namespace

void FindFaults(const std::vector<Plate>& Plates, FaultList& Faults) {
  for (int i = 0; i < Size(Plates) && !Faults.Full(); ++i) {
    const Plate& plate = Plates[i];
    const auto at = EntryPlaces("plates", i);
    CheckNumber(plate.Width, kSizeRule, at("width"), Faults);
    CheckNumber(plate.Height, kSizeRule, at("height"), Faults);
    CheckCount(plate.Count, kPlateCountRule, at("count"), Faults);
    if (plate.Cost) CheckNumber(*plate.Cost, kCostRule, at("cost"), Faults);
  }
  CheckIds(Plates, "plates", Faults);
}

void FindFaults(const std::vector<Part>& Parts, JobKind Kind, FaultList& Faults) {
  for (int i = 0; i < Size(Parts) && !Faults.Full(); ++i) {
    const Part& part = Parts[i];
    const auto at = EntryPlaces("parts", i);
    CheckSizes(part, Kind, i, Faults);
    FindShapeFaults(part, i, Faults);
    CheckCount(part.Amount, kAmountRule, at("amount"), Faults);
    if (part.Value) CheckNumber(*part.Value, kValueRule, at("value"), Faults);
    CheckText(part.Label, at("label"), Faults);
  }
  CheckIds(Parts, "parts", Faults);
  CheckTotalCopies(Parts, Faults);
}

void FindFaults(const Job& AJob, FaultList& Faults) {
  if (Faults.Full()) return;
  CheckHead(AJob, Faults);
  FindFaults(AJob.Plates, Faults);
  FindFaults(AJob.Parts, AJob.Kind, Faults);
  CheckOptions(AJob.Run, Faults);
  if (!Faults.Knows("/kind")) CheckKind(AJob, Faults);
  CheckSizeSpan(AJob, Faults);
}

}  // namespace detail

void CheckJob(const Job& AJob) {
  detail::FaultList faults;
  detail::FindFaults(AJob, faults);
  faults.Raise();
}

}  // namespace platenest
