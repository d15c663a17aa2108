#include <cmath>
#include <span>
#include <tuple>
#include <utility>

#include "FormFields.h"
#include "FormReader.h"
#include "JobForm.h"
#include "JsonWriter.h"
#include "Texts.h"

namespace platenest {

namespace detail {

namespace {

// Stand for absent members until it is known whether the run was deterministic.
constexpr int kAbsentThreads = 0;
constexpr double kAbsentSeconds = -1;

}  // namespace

template <>
std::span<const Field<Summary>> FieldsOf<Summary>() {
  static constexpr Field<Summary> fields[] = {
      {"plates", true, Whole<&Summary::Plates, kTallyRule>},
      {"usage", true, NotNegative<&Summary::Usage>},
      {"part_area", true, NotNegative<&Summary::PartArea>},
      {"plate_area", true, NotNegative<&Summary::PlateArea>},
      {"cost", true, NotNegative<&Summary::Cost>},
      {"value", false,
       [](Summary& r) -> Slot {
         return NumberAt{&r.Value, false, 0};
       }},
  };
  return fields;
}

template <>
std::span<const Field<Bound>> FieldsOf<Bound>() {
  static constexpr Field<Bound> fields[] = {
      {"what", true, Text<&Bound::What>},
      {"kind", true, Text<&Bound::Kind>},
      {"value", true, Number<&Bound::Value>},
  };
  return fields;
}

template <>
std::span<const Field<HeuristicBound>> FieldsOf<HeuristicBound>() {
  static constexpr Field<HeuristicBound> fields[] = {
      {"what", true, Text<&HeuristicBound::What>},
      {"kind", true, Text<&HeuristicBound::Kind>},
      {"value", true, NotNegative<&HeuristicBound::Value>},
  };
  return fields;
}

template <>
std::span<const Field<Placement>> FieldsOf<Placement>() {
  static constexpr Field<Placement> fields[] = {
      {"part", true, Id<&Placement::Part>},
      {"rotated", true, Flag<&Placement::Rotated>, "center"},
      {"trans", true, Numbers<&Placement::Trans>, "center"},
      {"box", true, Numbers<&Placement::Bounds>, "center"},
      {"center", false, [](Placement& r) -> Slot { return NumbersAt{std::span(r.Bounds).first<2>()}; }, "trans"},
      {"radius", false,
       [](Placement& r) -> Slot {
         return NumberAt{&r.Bounds[2], false, 0};
       },
       "trans"},
  };
  return fields;
}

template <>
std::span<const Field<Layout>> FieldsOf<Layout>() {
  static constexpr Field<Layout> fields[] = {
      {"plate", true, Id<&Layout::Plate>},
      {"width", true, NotNegative<&Layout::Width>},
      {"height", true, NotNegative<&Layout::Height>},
      {"copies", true, Whole<&Layout::Copies, kCopiesRule>},
      {"usage", true, NotNegative<&Layout::Usage>},
      {"used_box", true, Numbers<&Layout::UsedBox>},
      {"min_clearance", true,
       [](Layout& r) -> Slot {
         return NumberAt{&r.MinClearance, true};
       }},
      {"edge_to_edge", true, Flag<&Layout::EdgeToEdge>},
      {"free_box", true, Numbers<&Layout::FreeBox>},
      {"placements", true, List<&Layout::Placements, limits::kCopies>},
  };
  return fields;
}

template <>
std::span<const Field<PlateUse>> FieldsOf<PlateUse>() {
  static constexpr Field<PlateUse> fields[] = {
      {"id", true, Id<&PlateUse::Id>},
      {"used", true, Whole<&PlateUse::Used, kTallyRule>},
      {"count", true, Whole<&PlateUse::Count, kPlateCountRule>},
  };
  return fields;
}

template <>
std::span<const Field<PartUse>> FieldsOf<PartUse>() {
  static constexpr Field<PartUse> fields[] = {
      {"id", true, Id<&PartUse::Id>},
      {"amount", true, Whole<&PartUse::Amount, kAmountRule>},
      {"placed", true, Whole<&PartUse::Placed, kTallyRule>},
      {"unplaced", true, Whole<&PartUse::Unplaced, kTallyRule>},
      {"reason", false, Choice<&PartUse::Reason, kReasonNames>},
  };
  return fields;
}

template <>
std::span<const Field<NfpPair>> FieldsOf<NfpPair>() {
  static constexpr Field<NfpPair> fields[] = {
      {"fixed", true, Id<&NfpPair::Fixed>},
      {"moving", true, Id<&NfpPair::Moving>},
      {"quality", true, Choice<&NfpPair::Quality, kQualityNames>},
      {"paths", true, List<&NfpPair::Paths, limits::kCopies>},
  };
  return fields;
}

template <>
std::span<const Field<ArrayAnswer>> FieldsOf<ArrayAnswer>() {
  static constexpr Field<ArrayAnswer> fields[] = {
      {"first", true, Numbers<&ArrayAnswer::First>},
      {"second", true, Numbers<&ArrayAnswer::Second>},
      {"cell_area", true, NotNegative<&ArrayAnswer::CellArea>},
      {"density", true, NotNegative<&ArrayAnswer::Density>},
  };
  return fields;
}

// A place has its members, no place has none of them.
template <class T>
bool IsFound(const T& Answer) {
  return Answer.Found;
}

template <>
std::span<const Field<LabelAnswer>> FieldsOf<LabelAnswer>() {
  static constexpr auto found = IsFound<LabelAnswer>;
  static constexpr Field<LabelAnswer> fields[] = {
      {"found", true, Flag<&LabelAnswer::Found>},
      {"rotated", true, Flag<&LabelAnswer::Rotated>, {}, false, found},
      {"move", true, Numbers<&LabelAnswer::Move>, {}, false, found},
      {"margin", true, NotNegative<&LabelAnswer::Margin>, {}, false, found},
      {"box", true, Numbers<&LabelAnswer::Bounds>, {}, false, found},
  };
  return fields;
}

template <>
std::span<const Field<SuckerAnswer>> FieldsOf<SuckerAnswer>() {
  static constexpr Field<SuckerAnswer> fields[] = {
      {"found", true, Flag<&SuckerAnswer::Found>},
      {"center", true, Numbers<&SuckerAnswer::Center>, {}, false, IsFound<SuckerAnswer>},
  };
  return fields;
}

template <>
std::span<const Field<RunInfo>> FieldsOf<RunInfo>() {
  static constexpr Field<RunInfo> fields[] = {
      {"method", true, Text<&RunInfo::Method>},
      {"seed", true, Whole<&RunInfo::Seed, kSeedRule>},
      {"threads", false, Whole<&RunInfo::Threads, kThreadsRule>},
      {"time_limit", true, NotNegative<&RunInfo::TimeLimit>},
      {"memory_limit", true, Whole<&RunInfo::MemoryLimit, kMemoryRule>},
      {"deterministic", true, Flag<&RunInfo::Deterministic>},
      {"version", true, Text<&RunInfo::Version>},
      {"seconds", false, NotNegative<&RunInfo::Seconds>},
  };
  return fields;
}

template <>
std::span<const Field<Result>> FieldsOf<Result>() {
  static constexpr Field<Result> fields[] = {
      {"schema", true, Constant<Result, kResultSchemaNames>},
      {"name", true, Text<&Result::Name>},
      {"kind", true, Choice<&Result::Kind, kKindNames>},
      {"units", true, Choice<&Result::Units, kUnitNames>},
      {"gap", true, NotNegative<&Result::Gap>},
      {"margin", true, Numbers<&Result::Margin>},
      {"status", true, Choice<&Result::Status, kStatusNames>},
      {"proved", true, Flag<&Result::Proved>},
      {"summary", true, Object<&Result::Total>},
      {"bounds", true, List<&Result::Bounds, limits::kCopies>},
      {"estimate", false, Optional<&Result::Estimate>},
      {"layouts", true, List<&Result::Layouts, limits::kCopies>},
      {"plates", true, List<&Result::Plates, limits::kPlateKinds>},
      {"parts", true, List<&Result::Parts, limits::kPartKinds>},
      {"nfp", false, [](Result& r) -> Slot { return ObjectAt<NfpPair>{&r.Pairs.emplace_back()}; }},
      {"pairs", false, List<&Result::Pairs, limits::kPairs>},
      {"array", false, Optional<&Result::Array>},
      {"label", false, Optional<&Result::Label>},
      {"sucker", false, Optional<&Result::Sucker>},
      {"warnings", true, List<&Result::Warnings, limits::kCopies>},
      {"run", true, Object<&Result::Run>},
  };
  return fields;
}

namespace {

// A deterministic run tells neither, so that its bytes do not depend on the machine.
void ResolveTimes(RunInfo& Run, FaultList& Faults) {
  if (!Run.Deterministic && Run.Threads == kAbsentThreads) Faults.AddMissing("/run", "threads");
  if (!Run.Deterministic && Run.Seconds == kAbsentSeconds) Faults.AddMissing("/run", "seconds");
  if (!Run.Deterministic) return;
  Run.Threads = RunInfo{}.Threads;
  Run.Seconds = RunInfo{}.Seconds;
}

// The member that tells the answer of a kind is there in this kind, and in no other. A run of kind Nfp that ended early
// may tell no pair.
void RequireAnswer(const Result& AResult, FaultList& Faults) {
  const std::tuple<JobKind, std::string_view, bool> members[] = {
      {JobKind::Nfp, "pairs", !AResult.Pairs.empty()},
      {JobKind::Array, "array", AResult.Array.has_value()},
      {JobKind::Label, "label", AResult.Label.has_value()},
      {JobKind::Sucker, "sucker", AResult.Sucker.has_value()}};
  if (AResult.Kind == JobKind::Fill && !AResult.Total.Value) Faults.AddMissing("/summary", "value");
  if (AResult.Kind != JobKind::Fill && AResult.Total.Value)
    Faults.AddInput("conflict", "/summary/value",
                    Joined("has no meaning in a result of kind `", KindName(AResult.Kind), "`"));
  if (AResult.Kind != JobKind::Job && AResult.Estimate)
    Faults.AddInput("conflict", "/estimate",
                    Joined("has no meaning in a result of kind `", KindName(AResult.Kind), "`"));
  for (const auto& [kind, name, isThere] : members) {
    if (kind == AResult.Kind && kind != JobKind::Nfp && !isThere) Faults.AddMissing("", name);
    if (kind != AResult.Kind && isThere)
      Faults.AddInput("conflict", Joined("/", name),
                      Joined("has no meaning in a result of kind `", KindName(AResult.Kind), "`"));
  }
}

// Tells placements of circles from others, of which a result of one kind has one sort only.
void ResolvePlacements(Layout& ALayout, JobKind Kind, const std::string& Place, FaultList& Faults) {
  const bool areCircles = Kind == JobKind::Circles;
  for (int i = 0; i < Size(ALayout.Placements) && !Faults.Full(); ++i) {
    Placement& place = ALayout.Placements[i];
    const std::string text = Joined("must have ", areCircles ? "`center` and `radius`" : "`rotated`, `trans` and `box`",
                                    " in a result of kind `", KindName(Kind), "`");
    if (std::isnan(place.Trans[0]) != areCircles) {
      Faults.AddInput("conflict", Joined(Place, "/placements/", i), text);
    } else if (areCircles && std::isnan(place.Bounds[2])) {
      Faults.AddMissing(Joined(Place, "/placements/", i), "radius");
    } else if (areCircles) {
      ALayout.Circles.push_back({std::move(place.Part), {place.Bounds[0], place.Bounds[1]}, place.Bounds[2]});
    }
  }
  if (areCircles) ALayout.Placements = {};
}

// What stands beside the word that there is no place says nothing.
void ResolvePlaces(Result& AResult) {
  if (AResult.Label && !AResult.Label->Found) AResult.Label = LabelAnswer{};
  if (AResult.Sucker && !AResult.Sucker->Found) AResult.Sucker = SuckerAnswer{};
}

template <class T>
void WriteList(JsonWriter& Out, std::string_view Name, const std::vector<T>& Items,
               void (*Write)(JsonWriter&, const T&)) {
  Out.Key(Name);
  Out.BeginList(JsonStyle::Block);
  for (const T& item : Items) Write(Out, item);
  Out.EndList();
}

template <class T>
void WriteBound(JsonWriter& Out, const T& ABound) {
  Out.BeginObject(JsonStyle::Line);
  Out.Member("what", ABound.What);
  Out.Member("kind", ABound.Kind);
  Out.Member("value", ABound.Value);
  Out.EndObject();
}

void WritePlacement(JsonWriter& Out, const Placement& APlacement) {
  Out.BeginObject(JsonStyle::Line);
  Out.Member("part", APlacement.Part);
  Out.Member("rotated", APlacement.Rotated);
  Out.Member("trans", APlacement.Trans);
  Out.Member("box", APlacement.Bounds);
  Out.EndObject();
}

void WriteCircle(JsonWriter& Out, const CirclePlacement& APlacement) {
  Out.BeginObject(JsonStyle::Line);
  Out.Member("part", APlacement.Part);
  Out.Member("center", APlacement.Center);
  Out.Member("radius", APlacement.Radius);
  Out.EndObject();
}

void WriteLayout(JsonWriter& Out, const Layout& ALayout) {
  Out.BeginObject(JsonStyle::Block);
  Out.Member("plate", ALayout.Plate);
  Out.Member("width", ALayout.Width);
  Out.Member("height", ALayout.Height);
  Out.Member("copies", ALayout.Copies);
  Out.Member("usage", ALayout.Usage);
  Out.Member("used_box", ALayout.UsedBox);
  Out.Member("min_clearance", ALayout.MinClearance);
  Out.Member("edge_to_edge", ALayout.EdgeToEdge);
  Out.Member("free_box", ALayout.FreeBox);
  if (ALayout.Circles.empty())
    WriteList(Out, "placements", ALayout.Placements, WritePlacement);
  else
    WriteList(Out, "placements", ALayout.Circles, WriteCircle);
  Out.EndObject();
}

void WritePlateUse(JsonWriter& Out, const PlateUse& Use) {
  Out.BeginObject(JsonStyle::Line);
  Out.Member("id", Use.Id);
  Out.Member("used", Use.Used);
  Out.Member("count", Use.Count);
  Out.EndObject();
}

void WritePartUse(JsonWriter& Out, const PartUse& Use) {
  Out.BeginObject(JsonStyle::Line);
  Out.Member("id", Use.Id);
  Out.Member("amount", Use.Amount);
  Out.Member("placed", Use.Placed);
  Out.Member("unplaced", Use.Unplaced);
  if (!Use.Reason.empty()) Out.Member("reason", Use.Reason);
  Out.EndObject();
}

void WritePair(JsonWriter& Out, const NfpPair& Pair) {
  Out.BeginObject(JsonStyle::Block);
  Out.Member("fixed", Pair.Fixed);
  Out.Member("moving", Pair.Moving);
  Out.Member("quality", QualityName(Pair.Quality));
  WriteContours(Out, "paths", Pair.Paths);
  Out.EndObject();
}

// One pair alone where one was asked for: the one answer of a run that ended early is still a list.
void WritePairs(JsonWriter& Out, const Result& AResult) {
  if (AResult.Kind != JobKind::Nfp && AResult.Pairs.empty()) return;
  if (AResult.Pairs.size() != 1 || AResult.Status != ResultStatus::Complete)
    return WriteList(Out, "pairs", AResult.Pairs, WritePair);
  Out.Key("nfp");
  WritePair(Out, AResult.Pairs[0]);
}

void WriteArray(JsonWriter& Out, const ArrayAnswer& Answer) {
  Out.BeginObject(JsonStyle::Line);
  Out.Member("first", Answer.First);
  Out.Member("second", Answer.Second);
  Out.Member("cell_area", Answer.CellArea);
  Out.Member("density", Answer.Density);
  Out.EndObject();
}

void WriteLabel(JsonWriter& Out, const LabelAnswer& Answer) {
  Out.BeginObject(JsonStyle::Line);
  Out.Member("found", Answer.Found);
  if (Answer.Found) {
    Out.Member("rotated", Answer.Rotated);
    Out.Member("move", Answer.Move);
    Out.Member("margin", Answer.Margin);
    Out.Member("box", Answer.Bounds);
  }
  Out.EndObject();
}

void WriteSucker(JsonWriter& Out, const SuckerAnswer& Answer) {
  Out.BeginObject(JsonStyle::Line);
  Out.Member("found", Answer.Found);
  if (Answer.Found) Out.Member("center", Answer.Center);
  Out.EndObject();
}

// A member that stands only where there is an answer of its kind.
template <class T>
void WriteAnswer(JsonWriter& Out, std::string_view Name, const std::optional<T>& Answer,
                 void (*Write)(JsonWriter&, const T&)) {
  if (!Answer) return;
  Out.Key(Name);
  Write(Out, *Answer);
}

void WriteWarning(JsonWriter& Out, const std::string& Warning) {
  Out.Value(Warning);
}

void WriteSummary(JsonWriter& Out, const Summary& Total) {
  Out.BeginObject(JsonStyle::Line);
  Out.Member("plates", Total.Plates);
  Out.Member("usage", Total.Usage);
  Out.Member("part_area", Total.PartArea);
  Out.Member("plate_area", Total.PlateArea);
  Out.Member("cost", Total.Cost);
  if (Total.Value) Out.Member("value", *Total.Value);
  Out.EndObject();
}

void WriteRun(JsonWriter& Out, const RunInfo& Run) {
  Out.BeginObject(JsonStyle::Line);
  Out.Member("method", Run.Method);
  Out.Member("seed", Run.Seed);
  if (!Run.Deterministic) Out.Member("threads", Run.Threads);
  Out.Member("time_limit", Run.TimeLimit);
  Out.Member("memory_limit", Run.MemoryLimit);
  Out.Member("deterministic", Run.Deterministic);
  Out.Member("version", Run.Version);
  if (!Run.Deterministic) Out.Member("seconds", Run.Seconds);
  Out.EndObject();
}

}  // namespace

}  // namespace detail

using namespace detail;

std::string_view StatusName(ResultStatus Status) {
  const auto index = static_cast<std::size_t>(Status);
  return index < std::size(kStatusNames) ? kStatusNames[index] : "";
}

Result ParseResult(std::string_view Json) {
  return WithMemoryError([&] {
    Result result;
    result.Run.Threads = kAbsentThreads;
    result.Run.Seconds = kAbsentSeconds;
    FaultList faults;
    FormReader reader(ObjectAt<Result>{&result}, faults);
    const bool isWhole = ReadJson(Json, limits::kResultBytes, reader, faults);
    if (isWhole) ResolveTimes(result.Run, faults);
    if (isWhole) RequireAnswer(result, faults);
    ResolvePlaces(result);
    faults.Raise();
    for (int i = 0; i < Size(result.Layouts); ++i)
      ResolvePlacements(result.Layouts[i], result.Kind, Joined("/layouts/", i), faults);
    faults.Raise();
    return result;
  });
}

std::string ResultToJson(const Result& AResult) {
  JsonWriter out;
  out.BeginObject(JsonStyle::Block);
  out.Member("schema", kResultSchemaNames[0]);
  out.Member("name", AResult.Name);
  out.Member("kind", KindName(AResult.Kind));
  out.Member("units", AResult.Units);
  out.Member("gap", AResult.Gap);
  out.Member("margin", AResult.Margin);
  out.Member("status", StatusName(AResult.Status));
  out.Member("proved", AResult.Proved);
  out.Key("summary");
  WriteSummary(out, AResult.Total);
  WriteList(out, "bounds", AResult.Bounds, WriteBound<Bound>);
  WriteAnswer(out, "estimate", AResult.Estimate, WriteBound<HeuristicBound>);
  WriteList(out, "layouts", AResult.Layouts, WriteLayout);
  WriteList(out, "plates", AResult.Plates, WritePlateUse);
  WriteList(out, "parts", AResult.Parts, WritePartUse);
  WritePairs(out, AResult);
  WriteAnswer(out, "array", AResult.Array, WriteArray);
  WriteAnswer(out, "label", AResult.Label, WriteLabel);
  WriteAnswer(out, "sucker", AResult.Sucker, WriteSucker);
  WriteList(out, "warnings", AResult.Warnings, WriteWarning);
  out.Key("run");
  WriteRun(out, AResult.Run);
  out.EndObject();
  return std::move(out).Text();
}

}  // namespace platenest
