#include "JobForm.h"

#include <array>
#include <utility>

#include "FormReader.h"
#include "JsonWriter.h"
#include "Texts.h"

namespace platenest {

namespace detail {

template <>
std::span<const Field<Plate>> FieldsOf<Plate>() {
  static constexpr Field<Plate> fields[] = {
      {"id", false,
       [](Plate& r) -> Slot {
         return TextAt{&r.Id, true};
       }},
      {"width", true, [](Plate& r) -> Slot { return NumberAt{&r.Width}; }},
      {"height", true, [](Plate& r) -> Slot { return NumberAt{&r.Height}; }},
      {"count", false,
       [](Plate& r) -> Slot {
         return WholeAt{&kPlateCountRule, &r.Count};
       }},
      {"cost", false, [](Plate& r) -> Slot { return NumberAt{&r.Cost}; }},
      {"remnant", false, [](Plate& r) -> Slot { return FlagAt{&r.Remnant}; }},
  };
  return fields;
}

template <>
std::span<const Field<Part>> FieldsOf<Part>() {
  static constexpr Field<Part> fields[] = {
      {"id", false,
       [](Part& r) -> Slot {
         return TextAt{&r.Id, true};
       }},
      {"width", true, [](Part& r) -> Slot { return NumberAt{&r.Width}; }, "outline"},
      {"height", true, [](Part& r) -> Slot { return NumberAt{&r.Height}; }, "outline"},
      {"amount", false,
       [](Part& r) -> Slot {
         return WholeAt{&kAmountRule, &r.Amount};
       }},
      {"rotate", false,
       [](Part& r) -> Slot {
         return ChoiceAt{kRotateNames, &r.Turn};
       }},
      {"value", false, [](Part& r) -> Slot { return NumberAt{&r.Value}; }},
      {"label", false, [](Part& r) -> Slot { return TextAt{&r.Label}; }},
      {"outline",
       false,
       [](Part& r) -> Slot {
         return ListAt<PolygonPoint>{&r.Outline, limits::kVertices};
       },
       {},
       false},
      {"holes",
       false,
       [](Part& r) -> Slot {
         return ListAt<PolygonRing>{&r.Holes, limits::kHoles};
       },
       {},
       false},
  };
  return fields;
}

template <>
std::span<const Field<Options>> FieldsOf<Options>() {
  static constexpr Field<Options> fields[] = {
      {"method", false, [](Options& r) -> Slot { return TextAt{&r.Method}; }},
      {"time_limit", false, [](Options& r) -> Slot { return NumberAt{&r.TimeLimit}; }},
      {"seed", false,
       [](Options& r) -> Slot {
         return WholeAt{&kSeedRule, &r.Seed};
       }},
      {"threads", false,
       [](Options& r) -> Slot {
         return WholeAt{&kThreadsRule, &r.Threads};
       }},
      {"memory_limit", false,
       [](Options& r) -> Slot {
         return WholeAt{&kMemoryRule, &r.MemoryLimit};
       }},
      {"deterministic", false, [](Options& r) -> Slot { return FlagAt{&r.Deterministic}; }},
  };
  return fields;
}

template <>
std::span<const Field<LabelSize>> FieldsOf<LabelSize>() {
  static constexpr Field<LabelSize> fields[] = {
      {"width", true, [](LabelSize& r) -> Slot { return NumberAt{&r.Width}; }},
      {"height", true, [](LabelSize& r) -> Slot { return NumberAt{&r.Height}; }},
  };
  return fields;
}

template <>
std::span<const Field<Job>> FieldsOf<Job>() {
  static constexpr Field<Job> fields[] = {
      {"schema", true,
       [](Job&) -> Slot {
         return ChoiceAt{kJobSchemaNames, {}};
       }},
      {"name", false, [](Job& r) -> Slot { return TextAt{&r.Name}; }},
      {"kind", true,
       [](Job& r) -> Slot {
         return ChoiceAt{kKindNames, &r.Kind};
       }},
      {"units", false,
       [](Job& r) -> Slot {
         return ChoiceAt{kUnitNames, &r.Units};
       }},
      {"gap", false, [](Job& r) -> Slot { return NumberAt{&r.Gap}; }},
      {"margin", false,
       [](Job& r) -> Slot {
         return NumbersAt{r.Margin, true};
       }},
      {"plates", false,
       [](Job& r) -> Slot {
         r.Plates.clear();  // of what stands for an absent list
         return ListAt<Plate>{&r.Plates, limits::kPlateKinds};
       }},
      {"parts", true,
       [](Job& r) -> Slot {
         return ListAt<Part>{&r.Parts, limits::kPartKinds};
       }},
      {"fixed", false,
       [](Job& r) -> Slot {
         return IdsAt{&r.Fixed, limits::kPartKinds};
       }},
      {"moving", false,
       [](Job& r) -> Slot {
         return IdsAt{&r.Moving, limits::kPartKinds};
       }},
      {"inside", false, [](Job& r) -> Slot { return FlagAt{&r.Inside}; }},
      {"quality", false,
       [](Job& r) -> Slot {
         return ChoiceAt{kQualityNames, &r.Quality};
       }},
      {"part", false,
       [](Job& r) -> Slot {
         return TextAt{&r.PartId, true};
       }},
      {"along", false,
       [](Job& r) -> Slot {
         return ChoiceAt{kAlongNames, &r.Direction};
       }},
      {"separate", false, [](Job& r) -> Slot { return FlagAt{&r.Separate}; }},
      {"inner_lines", false,
       [](Job& r) -> Slot {
         return ListAt<PolygonRing>{&r.InnerLines, limits::kInnerLines};
       }},
      {"label", false, [](Job& r) -> Slot { return ObjectAt<LabelSize>{&r.Label.emplace()}; }},
      {"offset", false, [](Job& r) -> Slot { return NumberAt{&r.Offset}; }},
      {"radius", false, [](Job& r) -> Slot { return NumberAt{&r.Radius}; }},
      {"options", false, [](Job& r) -> Slot { return ObjectAt<Options>{&r.Run}; }},
  };
  return fields;
}

void ResolveAmounts(std::vector<Part>& Parts, JobKind Kind) {
  for (Part& part : Parts) {
    if (part.Amount != kAbsentAmount) continue;
    part.Amount = Kind == JobKind::One ? std::nullopt : std::optional<int>(1);
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
  if (IsWhole && !IsOfShapes(AJob.Kind)) Faults.AddMissing("", "plates");
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
  if (APart.Outline.empty()) {
    Out.Member("width", APart.Width);
    Out.Member("height", APart.Height);
  }
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
