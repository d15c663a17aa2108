#include "Arguments.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "Text.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

namespace {

template <class T>
std::optional<T> ParseWhole(std::string_view Text) {
  T value{};
  const char* const end = Text.data() + Text.size();
  const auto [stop, error] = std::from_chars(Text.data(), end, value);
  if (error != std::errc{} || stop != end) return std::nullopt;
  return value;
}

std::optional<RectSize> ParseSize(std::string_view Text) {
  const std::size_t cross = Text.find_first_of("xX");
  if (cross == std::string_view::npos) return std::nullopt;
  const std::optional<double> width = ParseNumber(Text.substr(0, cross));
  const std::optional<double> height = ParseNumber(Text.substr(cross + 1));
  if (!width || !height) return std::nullopt;
  return RectSize{*width, *height};
}

std::optional<std::array<double, 4>> ParseMargin(std::string_view Text) {
  if (const std::optional<double> all = ParseNumber(Text)) return std::array{*all, *all, *all, *all};
  std::array<double, 4> margin{};
  for (std::size_t i = 0; i < 4; ++i) {
    const std::size_t comma = Text.find(',');
    if ((comma == std::string_view::npos) != (i == 3)) return std::nullopt;
    const std::optional<double> side = ParseNumber(Text.substr(0, comma));
    if (!side) return std::nullopt;
    margin[i] = *side;
    Text.remove_prefix(i == 3 ? 0 : comma + 1);
  }
  return margin;
}

std::optional<Int64> ParseBytes(std::string_view Text) {
  int shift = 0;
  const std::size_t suffix = Text.empty() ? std::string_view::npos : std::string_view("KMG").find(Text.back());
  if (suffix != std::string_view::npos) {
    shift = 10 * (static_cast<int>(suffix) + 1);
    Text.remove_suffix(1);
  }
  const std::optional<double> number = ParseNumber(Text);
  const double bytes = number.value_or(-1) * static_cast<double>(Int64{1} << shift);
  if (bytes < 0 || bytes >= 0x1p62) return std::nullopt;
  return Round(bytes);
}

std::optional<std::string> ParseText(std::string_view Text) {
  if (Text.empty()) return std::nullopt;
  return std::string(Text);
}

// One of the enumerators up to Last, by its name.
template <auto Last, std::string_view (*NameOf)(decltype(Last))>
std::optional<decltype(Last)> ParseName(std::string_view Text) {
  for (int i = 0; i <= static_cast<int>(Last); ++i)
    if (NameOf(static_cast<decltype(Last)>(i)) == Text) return static_cast<decltype(Last)>(i);
  return std::nullopt;
}

class OptionReader {
 public:
  explicit OptionReader(const CommandLine& Line) : FLine(Line) {}

  bool Has(std::string_view Name) const { return FLine.Values.contains(Name); }

  // Wish says what the value must be.
  template <class T>
  std::optional<T> Read(std::string_view Name, std::optional<T> (*Parse)(std::string_view), std::string_view Wish) {
    const auto found = FLine.Values.find(Name);
    if (found == FLine.Values.end()) return std::nullopt;
    const std::optional<T> value = Parse(found->second);
    if (!value) {
      FFaults.push_back(
          {"option", std::string(Name), "must be " + std::string(Wish) + ", found \"" + found->second + "\"", ""});
    }
    return value;
  }

  void RaiseFaults() const {
    if (!FFaults.empty()) throw OptionError(FFaults);
  }

 private:
  const CommandLine& FLine;
  std::vector<Fault> FFaults;
};

JobOverrides ReadJobOverrides(OptionReader& Reader) {
  JobOverrides job;
  job.PlateSize = Reader.Read("--plate", ParseSize, "WIDTHxHEIGHT, for example 2440x1220");
  job.PartSize = Reader.Read("--part", ParseSize, "WIDTHxHEIGHT, for example 300x200");
  job.Amount = Reader.Read("--amount", ParseWhole<int>, "a whole number");
  job.Gap = Reader.Read("--gap", ParseNumber, "a number");
  job.Margin = Reader.Read("--margin", ParseMargin, "one number, or four as left,bottom,right,top");
  job.Units = Reader.Read("--units", ParseText, "mm, cm, m, in or none");
  job.Method = Reader.Read("--method", ParseText, "the name of a method");
  job.TimeLimit = Reader.Read("--time-limit", ParseNumber, "a number of seconds");
  job.Seed = Reader.Read("--seed", ParseWhole<std::uint64_t>, "a whole number of at least 0");
  job.Threads = Reader.Read("--threads", ParseWhole<int>, "a whole number");
  job.MemoryLimit = Reader.Read("--memory-limit", ParseBytes, "a number of bytes, or one with K, M or G");
  job.Deterministic = Reader.Has("--deterministic");
  job.Fixed = Reader.Read("--fixed", ParseText, "the id of a part");
  job.Moving = Reader.Read("--moving", ParseText, "the id of a part");
  job.Inside = Reader.Has("--inside");
  job.Quality =
      Reader.Read("--quality", ParseName<NfpQuality::Exact, QualityName>, "convex, concave, complete or exact");
  job.Of = Reader.Read("--of", ParseText, "the id of a part");
  job.Direction = Reader.Read("--along", ParseName<Along::Free, AlongName>, "x, y, xy or free");
  job.Separate = Reader.Has("--separate");
  job.LabelSides = Reader.Read("--label", ParseSize, "WIDTHxHEIGHT, for example 60x25");
  job.Offset = Reader.Read("--offset", ParseNumber, "a number");
  job.Radius = Reader.Read("--radius", ParseNumber, "a number");
  return job;
}

// Which option stands behind which place of a job.
struct OptionPlace {
  std::string_view Place;
  std::string_view Option;
  std::string_view Subject;  // of the message, where the option holds more than one thing
  bool (*Given)(const JobOverrides&);
};

constexpr OptionPlace kOptionPlaces[] = {
    {"/plates", "--plates", "", [](const JobOverrides& o) { return o.HasPlatesTable && !o.PlateSize; }},
    {"/parts", "--parts", "", [](const JobOverrides& o) { return o.HasPartsTable; }},
    {"/plates/0/width", "--plate", "width ", [](const JobOverrides& o) { return o.PlateSize.has_value(); }},
    {"/plates/0/height", "--plate", "height ", [](const JobOverrides& o) { return o.PlateSize.has_value(); }},
    {"/parts/0/width", "--part", "width ", [](const JobOverrides& o) { return o.PartSize.has_value(); }},
    {"/parts/0/height", "--part", "height ", [](const JobOverrides& o) { return o.PartSize.has_value(); }},
    {"/parts/0/amount", "--amount", "", [](const JobOverrides& o) { return o.Amount.has_value(); }},
    {"/parts/0/radius", "--radius", "", [](const JobOverrides& o) { return o.Radius.has_value(); }},
    {"/gap", "--gap", "", [](const JobOverrides& o) { return o.Gap.has_value(); }},
    {"/margin", "--margin", "", [](const JobOverrides& o) { return o.Margin.has_value(); }},
    {"/fixed", "--fixed", "", [](const JobOverrides& o) { return o.Fixed.has_value(); }},
    {"/moving", "--moving", "", [](const JobOverrides& o) { return o.Moving.has_value(); }},
    {"/inside", "--inside", "", [](const JobOverrides& o) { return o.Inside; }},
    {"/quality", "--quality", "", [](const JobOverrides& o) { return o.Quality.has_value(); }},
    {"/part", "--of", "", [](const JobOverrides& o) { return o.Of.has_value(); }},
    {"/along", "--along", "", [](const JobOverrides& o) { return o.Direction.has_value(); }},
    {"/separate", "--separate", "", [](const JobOverrides& o) { return o.Separate; }},
    {"/label/width", "--label", "width ", [](const JobOverrides& o) { return o.LabelSides.has_value(); }},
    {"/label/height", "--label", "height ", [](const JobOverrides& o) { return o.LabelSides.has_value(); }},
    {"/label", "--label", "", [](const JobOverrides& o) { return o.LabelSides.has_value(); }},
    {"/offset", "--offset", "", [](const JobOverrides& o) { return o.Offset.has_value(); }},
    {"/radius", "--radius", "", [](const JobOverrides& o) { return o.Radius.has_value(); }},
    {"/units", "--units", "", [](const JobOverrides& o) { return o.Units.has_value(); }},
    {"/options/method", "--method", "", [](const JobOverrides& o) { return o.Method.has_value(); }},
    {"/options/time_limit", "--time-limit", "", [](const JobOverrides& o) { return o.TimeLimit.has_value(); }},
    {"/options/seed", "--seed", "", [](const JobOverrides& o) { return o.Seed.has_value(); }},
    {"/options/threads", "--threads", "", [](const JobOverrides& o) { return o.Threads.has_value(); }},
    {"/options/memory_limit", "--memory-limit", "", [](const JobOverrides& o) { return o.MemoryLimit.has_value(); }},
};

bool IsAtOrBelow(std::string_view Place, std::string_view Root) {
  return Place.starts_with(Root) && (Place.size() == Root.size() || Place[Root.size()] == '/');
}

// The only item of Items, made when there is none.
template <class T>
T& OnlyItem(std::vector<T>& Items, const char* Id, const char* Option, const char* Plural) {
  if (Items.empty()) {
    Items.emplace_back();
    Items.front().Id = Id;
  }
  if (Items.size() == 1) return Items.front();
  throw OptionError(
      Fault{"option", Option, "cannot stand for all of the job's " + std::to_string(Items.size()) + " " + Plural, ""});
}

template <class T>
void Replace(T& Value, const std::optional<T>& Wish) {
  if (Wish) Value = *Wish;
}

// Whether a plate that is told by its size alone is one of as many as needed.
bool TakesManyPlates(const Job& AJob) {
  const bool isLimited = std::ranges::all_of(AJob.Parts, [](const Part& part) { return part.Amount.has_value(); });
  return AJob.Kind == JobKind::Job || (AJob.Kind == JobKind::Circles && isLimited);
}

}  // namespace

void JobOverrides::ApplyTo(platenest::Job& AJob) const {
  const bool isOfCircles = AJob.Kind == JobKind::Circles;
  if (PartSize) {
    const bool isNew = AJob.Parts.empty();
    Part& part = OnlyItem(AJob.Parts, "part-1", "--part", "parts");
    std::tie(part.Width, part.Height) = std::tie(PartSize->Width, PartSize->Height);
    if (isNew) part.Amount = std::nullopt;
  }
  if (Radius && isOfCircles) {
    const bool isNew = AJob.Parts.empty();
    Part& part = OnlyItem(AJob.Parts, "part-1", "--radius", "parts");
    part.Radius = *Radius;
    if (isNew) part.Amount = std::nullopt;
  }
  if (Amount) {
    if (AJob.Parts.empty()) throw OptionError(Fault{"option", "--amount", "needs a part", ""});
    OnlyItem(AJob.Parts, "", "--amount", "parts").Amount = Amount;
  }
  if (PlateSize) {
    const bool isNew = AJob.Plates.empty();
    Plate& plate = OnlyItem(AJob.Plates, "plate-1", "--plate", "plates");
    std::tie(plate.Width, plate.Height) = std::tie(PlateSize->Width, PlateSize->Height);
    if (isNew && TakesManyPlates(AJob)) plate.Count = std::nullopt;
  }
  Replace(AJob.Gap, Gap);
  Replace(AJob.Margin, Margin);
  Replace(AJob.Units, Units);
  Replace(AJob.Run.Method, Method);
  Replace(AJob.Run.TimeLimit, TimeLimit);
  Replace(AJob.Run.Seed, Seed);
  Replace(AJob.Run.Threads, Threads);
  Replace(AJob.Run.MemoryLimit, MemoryLimit);
  AJob.Run.Deterministic |= Deterministic;
  if (Fixed) AJob.Fixed = {*Fixed};
  if (Moving) AJob.Moving = {*Moving};
  AJob.Inside |= Inside;
  Replace(AJob.Quality, Quality);
  Replace(AJob.PartId, Of);
  Replace(AJob.Direction, Direction);
  AJob.Separate |= Separate;
  if (LabelSides) AJob.Label = LabelSize{LabelSides->Width, LabelSides->Height};
  Replace(AJob.Offset, Offset);
  if (Radius && !isOfCircles) AJob.Radius = Radius;
}

Fault JobOverrides::AtOption(const Fault& AFault) const {
  for (const OptionPlace& row : kOptionPlaces) {
    const bool isTable = row.Option == "--parts" || row.Option == "--plates";
    const bool isOfJob = AreTheJob && !isTable;  // tables are asked for where they are the job
    if (!IsAtOrBelow(AFault.Place, row.Place) || !(isOfJob || row.Given(*this))) continue;
    return {AFault.Code, std::string(row.Option), std::string(row.Subject) + AFault.Text, AFault.Detail};
  }
  return AFault;
}

Arguments ReadArguments(const CommandLine& Line) {
  OptionReader reader(Line);
  Arguments result;
  result.Id = Line.Id.value();
  result.Positionals = Line.Positionals;
  result.Job = ReadJobOverrides(reader);
  result.Job.AreTheJob = Line.Positionals.empty();
  result.PartsFile = reader.Read("--parts", ParseText, "the name of a file").value_or("");
  result.Job.HasPartsTable = !result.PartsFile.empty();
  result.PlatesFile = reader.Read("--plates", ParseText, "the name of a file").value_or("");
  result.Job.HasPlatesTable = !result.PlatesFile.empty();
  result.Output = reader.Read("-o", ParseText, "the name of a file").value_or("-");
  result.SvgFolder = reader.Read("--svg", ParseText, "the name of a folder").value_or("");
  result.CsvFile = reader.Read("--csv", ParseText, "the name of a file").value_or("");
  result.RequireAll = reader.Has("--require-all");
  result.Quiet = reader.Has("--quiet");
  result.JsonProgress = reader.Has("--json-progress");
  result.NoColor = reader.Has("--no-color");
  reader.RaiseFaults();
  return result;
}

}  // namespace platenest
