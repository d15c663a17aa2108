#include "JobForm.h"

#include <array>
#include <cmath>
#include <utility>

#include "FormFields.h"
#include "FormReader.h"
#include "JsonWriter.h"
#include "Texts.h"

namespace platenest {

namespace detail {

template <>
std::span<const Field<Plate>> FieldsOf<Plate>() {
  static constexpr Field<Plate> fields[] = {
      {"id", false, Id<&Plate::Id>},
      {"width", true, Number<&Plate::Width>},
      {"height", true, Number<&Plate::Height>},
      {"count", false, Whole<&Plate::Count, kPlateCountRule>},
      {"cost", false, Number<&Plate::Cost>},
      {"remnant", false, Flag<&Plate::Remnant>},
  };
  return fields;
}

template <>
std::span<const Field<Part>> FieldsOf<Part>() {
  static constexpr Field<Part> fields[] = {
      {"id", false, Id<&Part::Id>},
      {"width", false, Number<&Part::Width>},
      {"height", false, Number<&Part::Height>},
      {"radius", false, Number<&Part::Radius>},
      {"amount", false, Whole<&Part::Amount, kAmountRule>},
      {"rotate", false, Choice<&Part::Turn, kRotateNames>},
      {"value", false, Number<&Part::Value>},
      {"label", false, Text<&Part::Label>},
      {"outline", false, List<&Part::Outline, limits::kVertices>, {}, false},
      {"holes", false, List<&Part::Holes, limits::kHoles>, {}, false},
  };
  return fields;
}

template <>
std::span<const Field<Options>> FieldsOf<Options>() {
  static constexpr Field<Options> fields[] = {
      {"method", false, Text<&Options::Method>},
      {"time_limit", false, Number<&Options::TimeLimit>},
      {"seed", false, Whole<&Options::Seed, kSeedRule>},
      {"threads", false, Whole<&Options::Threads, kThreadsRule>},
      {"memory_limit", false, Whole<&Options::MemoryLimit, kMemoryRule>},
      {"deterministic", false, Flag<&Options::Deterministic>},
  };
  return fields;
}

template <>
std::span<const Field<LabelSize>> FieldsOf<LabelSize>() {
  static constexpr Field<LabelSize> fields[] = {
      {"width", true, Number<&LabelSize::Width>},
      {"height", true, Number<&LabelSize::Height>},
  };
  return fields;
}

template <>
std::span<const Field<Job>> FieldsOf<Job>() {
  static constexpr Field<Job> fields[] = {
      {"schema", true, Constant<Job, kJobSchemaNames>},
      {"name", false, Text<&Job::Name>},
      {"kind", true, Choice<&Job::Kind, kKindNames>},
      {"units", false, Choice<&Job::Units, kUnitNames>},
      {"gap", false, Number<&Job::Gap>},
      {"margin", false,
       [](Job& r) -> Slot {
         return NumbersAt{r.Margin, true};
       }},
      {"plates", false,
       [](Job& r) -> Slot {
         r.Plates.clear();  // of what stands for an absent list
         return ListAt<Plate>{&r.Plates, limits::kPlateKinds};
       }},
      {"parts", true, List<&Job::Parts, limits::kPartKinds>},
      {"fixed", false, Ids<&Job::Fixed, limits::kPartKinds>},
      {"moving", false, Ids<&Job::Moving, limits::kPartKinds>},
      {"inside", false, Flag<&Job::Inside>},
      {"quality", false, Choice<&Job::Quality, kQualityNames>},
      {"part", false, Id<&Job::PartId>},
      {"along", false, Choice<&Job::Direction, kAlongNames>},
      {"separate", false, Flag<&Job::Separate>},
      {"inner_lines", false, List<&Job::InnerLines, limits::kInnerLines>},
      {"label", false, Optional<&Job::Label>},
      {"offset", false, Number<&Job::Offset>},
      {"radius", false, Number<&Job::Radius>},
      {"options", false, Object<&Job::Run>},
  };
  return fields;
}

void ResolveAmounts(std::vector<Part>& Parts, JobKind Kind) {
  for (Part& part : Parts) {
    if (part.Amount != kAbsentAmount) continue;
    part.Amount = Kind == JobKind::One ? std::nullopt : std::optional<int>(1);
  }
}

void ResolveSizes(std::vector<Part>& Parts, JobKind Kind, FaultList& Faults) {
  const bool asksForRadius = Kind == JobKind::Circles;
  for (int i = 0; i < Size(Parts); ++i) {
    Part& part = Parts[i];
    const bool asksForSides = !asksForRadius && part.Outline.empty() && std::isnan(part.Radius);
    const auto resolve = [&](double& Length, bool IsAsked, std::string_view Name) {
      if (!std::isnan(Length)) return;
      Length = 0;
      const std::string place = Joined("/parts/", i);
      if (IsAsked && !Faults.Knows(Joined(place, "/", Name))) Faults.AddMissing(place, Name);
    };
    resolve(part.Width, asksForSides, "width");
    resolve(part.Height, asksForSides, "height");
    resolve(part.Radius, asksForRadius, "radius");
  }
}

void WriteContour(JsonWriter& Out, const PolygonRing& AContour) {
  Out.BeginList(JsonStyle::Line);
  for (const PolygonPoint& point : AContour) Out.Value(point);
  Out.EndList();
}

void WriteContours(JsonWriter& Out, std::string_view Name, const std::vector<PolygonRing>& Contours) {
  Out.Key(Name);
  Out.BeginList(JsonStyle::Block);
  for (const PolygonRing& contour : Contours) WriteContour(Out, contour);
  Out.EndList();
}

namespace {

// Stands for a list of plates that the form leaves out.
const Plate kAbsentPlates{.Id = {}, .Width = -1};

// Only jobs about shapes may leave their plates out.
void ResolvePlates(Job& AJob, bool IsWhole, FaultList& Faults) {
  if (AJob.Plates != std::vector{kAbsentPlates}) return;
  AJob.Plates.clear();
  if (IsWhole && !IsOfShapes(AJob.Kind) && !Faults.Knows("/kind")) Faults.AddMissing("", "plates");
}

void WritePlate(JsonWriter& Out, const Plate& APlate) {
  Out.BeginObject(JsonStyle::Line);
  Out.Member("id", APlate.Id);
  Out.Member("width", APlate.Width);
  Out.Member("height", APlate.Height);
  Out.Member("count", APlate.Count);
  if (APlate.Cost) Out.Member("cost", *APlate.Cost);
  if (APlate.Remnant) Out.Member("remnant", true);
  Out.EndObject();
}

void WritePart(JsonWriter& Out, const Part& APart) {
  Out.BeginObject(JsonStyle::Line);
  Out.Member("id", APart.Id);
  if (APart.Outline.empty() && APart.Radius == 0) {
    Out.Member("width", APart.Width);
    Out.Member("height", APart.Height);
  }
  if (APart.Radius != 0) Out.Member("radius", APart.Radius);
  Out.Member("amount", APart.Amount);
  if (APart.Turn == Rotate::None) Out.Member("rotate", "none");
  if (APart.Value) Out.Member("value", *APart.Value);
  if (!APart.Label.empty()) Out.Member("label", APart.Label);
  if (!APart.Outline.empty()) {
    Out.Key("outline");
    WriteContour(Out, APart.Outline);
  }
  if (!APart.Holes.empty()) WriteContours(Out, "holes", APart.Holes);
  Out.EndObject();
}

// One id as a text, several as a list.
void WriteIds(JsonWriter& Out, std::string_view Name, const std::vector<std::string>& Ids) {
  if (Ids.empty()) return;
  Out.Key(Name);
  if (Ids.size() == 1) return Out.Value(Ids[0]);
  Out.BeginList(JsonStyle::Line);
  for (const std::string& id : Ids) Out.Value(id);
  Out.EndList();
}

void WriteArrayWish(JsonWriter& Out, const Job& AJob) {
  if (!AJob.PartId.empty()) Out.Member("part", AJob.PartId);
  if (AJob.Kind == JobKind::Array || AJob.Direction != Along::Free) Out.Member("along", AlongName(AJob.Direction));
  if (AJob.Separate) Out.Member("separate", true);
}

void WriteLabelWish(JsonWriter& Out, const Job& AJob) {
  if (!AJob.InnerLines.empty()) WriteContours(Out, "inner_lines", AJob.InnerLines);
  if (AJob.Label) {
    Out.Key("label");
    Out.BeginObject(JsonStyle::Line);
    Out.Member("width", AJob.Label->Width);
    Out.Member("height", AJob.Label->Height);
    Out.EndObject();
  }
  if (AJob.Offset != 0) Out.Member("offset", AJob.Offset);
}

void WriteOptions(JsonWriter& Out, const Options& Run) {
  Out.BeginObject(JsonStyle::Line);
  Out.Member("method", Run.Method);
  Out.Member("time_limit", Run.TimeLimit);
  Out.Member("seed", Run.Seed);
  if (Run.Threads > 0) Out.Member("threads", Run.Threads);
  if (Run.MemoryLimit != Options{}.MemoryLimit) Out.Member("memory_limit", Run.MemoryLimit);
  if (Run.Deterministic) Out.Member("deterministic", true);
  Out.EndObject();
}

void WriteMargin(JsonWriter& Out, const std::array<double, 4>& Margin) {
  const bool same = Margin[0] == Margin[1] && Margin[0] == Margin[2] && Margin[0] == Margin[3];
  if (same) return Out.Member("margin", Margin[0]);
  Out.Member("margin", Margin);
}

}  // namespace

}  // namespace detail

using namespace detail;

std::string_view KindName(JobKind Kind) {
  const auto index = static_cast<std::size_t>(Kind);
  return index < std::size(kKindNames) ? kKindNames[index] : "";
}

std::string_view AlongName(Along Direction) {
  const auto index = static_cast<std::size_t>(Direction);
  return index < std::size(kAlongNames) ? kAlongNames[index] : "";
}

std::string_view QualityName(NfpQuality Quality) {
  const auto index = static_cast<std::size_t>(Quality);
  return index < std::size(kQualityNames) ? kQualityNames[index] : "";
}

Job ParseJob(std::string_view Json) {
  return WithMemoryError([&] {
    Job job;
    FaultList faults;
    job.Plates = {kAbsentPlates};
    FormReader reader(ObjectAt<Job>{&job}, faults);
    const bool isWhole = ReadJson(Json, limits::kJobBytes, reader, faults);
    ResolvePlates(job, isWhole, faults);
    ResolveAmounts(job.Parts, job.Kind);
    if (isWhole) ResolveSizes(job.Parts, job.Kind, faults);
    GiveIds(job);
    if (isWhole) FindFaults(job, faults);
    faults.Raise();
    return job;
  });
}

void GiveIds(Job& AJob) {
  for (int i = 0; i < Size(AJob.Plates); ++i) {
    if (AJob.Plates[i].Id.empty()) AJob.Plates[i].Id = Joined("plate-", i + 1);
  }
  for (int i = 0; i < Size(AJob.Parts); ++i) {
    if (AJob.Parts[i].Id.empty()) AJob.Parts[i].Id = Joined("part-", i + 1);
  }
}

std::string JobToJson(const Job& AJob) {
  JsonWriter out;
  out.BeginObject(JsonStyle::Block);
  out.Member("schema", kJobSchemaNames[0]);
  if (!AJob.Name.empty()) out.Member("name", AJob.Name);
  out.Member("kind", KindName(AJob.Kind));
  out.Member("units", AJob.Units);
  out.Member("gap", AJob.Gap);
  WriteMargin(out, AJob.Margin);
  if (!IsOfShapes(AJob.Kind) || !AJob.Plates.empty()) {
    out.Key("plates");
    out.BeginList(JsonStyle::Block);
    for (const Plate& plate : AJob.Plates) WritePlate(out, plate);
    out.EndList();
  }
  out.Key("parts");
  out.BeginList(JsonStyle::Block);
  for (const Part& part : AJob.Parts) WritePart(out, part);
  out.EndList();
  WriteIds(out, "fixed", AJob.Fixed);
  WriteIds(out, "moving", AJob.Moving);
  if (AJob.Inside) out.Member("inside", true);
  if (AJob.Kind == JobKind::Nfp || AJob.Quality != NfpQuality::Complete)
    out.Member("quality", QualityName(AJob.Quality));
  WriteArrayWish(out, AJob);
  WriteLabelWish(out, AJob);
  if (AJob.Radius) out.Member("radius", *AJob.Radius);
  out.Key("options");
  WriteOptions(out, AJob.Run);
  out.EndObject();
  return std::move(out).Text();
}

}  // namespace platenest
