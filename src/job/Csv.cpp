#include <algorithm>
#include <charconv>
#include <cmath>

#include "JobForm.h"
#include "KindChecks.h"
#include "Table.h"
#include "Texts.h"
#include "platenest/job/Convert.h"

namespace platenest {

namespace detail {

namespace {

std::optional<bool> FlagFromText(std::string_view Text) {
  std::string lower(Text);
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  if (lower == "true" || lower == "1") return true;
  if (lower == "false" || lower == "0") return false;
  return std::nullopt;
}

// Reads the records of one form from a table: the columns are the members of the form.
template <class T>
class RecordTable {
 public:
  // Kind: of the job whose parts these are, if it is known; otherwise the columns tell whether they are circles.
  RecordTable(std::string_view Text, std::string_view FileName, std::string_view List, int Most,
              std::optional<JobKind> Kind = {})
      : FTable(Text, FileName), FFile(FileName), FList(List), FMost(Most), FKind(Kind) {
    CheckFileText(Text, FileName, limits::kJobBytes);
  }

  std::vector<T> Read() {
    ReadHeader();
    FFaults.Raise();
    std::vector<T> records;
    TableRow row;
    while (!FFaults.Full() && FTable.Next(row)) {
      if (Size(records) == FMost) {
        FFaults.AddLimit(FFile, Joined("must have at most ", FMost, " lines below its header"));
        break;
      }
      FLines.push_back(row.Line);
      records.push_back(Blank<T>());
      ReadRow(row, records.back());
    }
    if (records.empty()) FFaults.AddInput("entries", FFile, "must have at least one line below its header");
    return records;
  }

  bool HoldsCircles() const {
    return FKind ? *FKind == JobKind::Circles : HasColumn("radius") && !HasColumn("width") && !HasColumn("height");
  }

  // Completes the records of a job of this kind. Raises the faults of the reading and what else is wrong with them,
  // with lines and columns for places.
  void Check(std::vector<Part>& Parts, JobKind Kind) {
    ResolveSizes(Parts, Kind, FFaults);
    FindFaults(Parts, Kind, FFaults);
    RefuseForeignPartMembers(Parts, Kind, FFaults);
    RaiseRenamed();
  }
  void Check(const std::vector<Plate>& Plates) {
    FindFaults(Plates, FFaults);
    RaiseRenamed();
  }

 private:
  void RaiseRenamed() {
    FFaults.Rename([this](const std::string& place) { return Renamed(place); });
    FFaults.Raise();
  }

  bool HasColumn(std::string_view Name) const {
    return std::ranges::any_of(FColumns, [&](const Field<T>* field) { return field->Name == Name; });
  }

  bool IsNeeded(const Field<T>& AField) const {
    if (!std::is_same_v<T, Part>) return AField.Required;
    return AField.Name == "radius" ? HoldsCircles()
                                   : (AField.Name == "width" || AField.Name == "height") && !HoldsCircles();
  }

  void ReadHeader() {
    TableRow row;
    if (!FTable.Next(row)) throw InputError(Fault{"missing", FFile, "must begin with a line of column names", ""});
    FHeaderLine = row.Line;
    const std::span<const Field<T>> fields = FieldsOf<T>();
    for (const std::string& name : row.Cells) {
      const auto field = std::ranges::find(fields, name, &Field<T>::Name);
      const std::string quoted = Quoted(name);
      const std::string place = Joined(HeaderPlace(), ":", quoted.substr(1, quoted.size() - 2));
      if (field == fields.end() || !field->InTables) {
        FFaults.AddInput("unknown-key", place, Joined("is no column of this form", NearMiss(name, NamesOf<T>(true))));
      } else if (std::ranges::find(FColumns, &*field) != FColumns.end()) {
        FFaults.AddInput("duplicate-key", place, "stands twice in the header");
      } else {
        FColumns.push_back(&*field);
      }
    }
    for (const Field<T>& field : fields) {
      if (IsNeeded(field) && !HasColumn(field.Name))
        FFaults.AddInput("missing", Joined(HeaderPlace(), ":", field.Name), "is missing in the header");
    }
  }

  void ReadRow(const TableRow& Row, T& Record) {
    if (Row.Cells.size() != FColumns.size()) {
      FFaults.AddInput("entries", Pointer(""),
                       Joined("must have ", FColumns.size(), " fields like the header, found ", Row.Cells.size()));
      return;
    }
    for (int i = 0; i < Size(FColumns); ++i) {
      const Field<T>& field = *FColumns[i];
      const std::string& cell = Row.Cells[i];
      if (!cell.empty()) {
        const Slot slot = field.At(Record);
        Accept(
            slot, ScalarFor(slot, cell), [&] { return Pointer(field.Name); }, FFaults);
      } else if (IsNeeded(field)) {
        FFaults.AddInput("missing", Pointer(field.Name), "must not be empty");
      }
    }
  }

  // A cell has no type of its own: it is read as what the slot wants, if it can be.
  Scalar ScalarFor(const Slot& Into, const std::string& Cell) {
    if (std::holds_alternative<TextAt>(Into) || std::holds_alternative<ChoiceAt>(Into)) {
      return Scalar::FromText(WithoutGuard(Cell));
    }
    if (Cell == "null") return Scalar{};
    if (std::holds_alternative<FlagAt>(Into)) {
      const std::optional<bool> flag = FlagFromText(Cell);
      return flag ? Scalar::FromFlag(*flag) : Scalar::FromText(Cell);
    }
    std::string digits = Cell;
    if (FTable.Separator() == ';' && digits.find('.') == digits.npos) std::ranges::replace(digits, ',', '.');
    const std::optional<double> number = NumberFromText(digits);
    return number ? Scalar::FromNumber(*number, Cell) : Scalar::FromText(Cell);
  }

  std::string HeaderPlace() const { return Joined(FFile, ":", FHeaderLine); }

  std::string Pointer(std::string_view Member) const {
    const std::string record = Joined("/", FList, "/", FLines.size() - 1);
    return Member.empty() ? record : Joined(record, "/", Member);
  }

  // "demand.csv:7:amount" for "/parts/5/amount".
  std::string Renamed(const std::string& Place) const {
    const std::string list = Joined("/", FList);
    if (Place == list) return FFile;
    if (!Place.starts_with(Joined(list, "/"))) return Place;
    std::size_t index = 0;
    const char* const begin = Place.data() + list.size() + 1;
    const char* const end = Place.data() + Place.size();
    const char* const rest = std::from_chars(begin, end, index).ptr;
    std::string place = Joined(FFile, ":", FLines.at(index));
    if (rest != end) place += Joined(":", std::string_view(rest + 1, end));
    return place;
  }

  TableReader FTable;
  std::string FFile;
  std::string FList;
  int FMost;
  std::optional<JobKind> FKind;
  int FHeaderLine = 1;
  std::vector<const Field<T>*> FColumns;
  std::vector<int> FLines;  // where each record began
  FaultList FFaults;
};

void AppendNumberCell(std::string& Out, double V, std::string_view Column) {
  if (!std::isfinite(V)) throw InputError(Fault{"range", std::string(Column), "must be a finite number", ""});
  AppendNumber(Out, V);
}

}  // namespace

}  // namespace detail

using namespace detail;

std::vector<Part> PartsFromCsv(std::string_view Text, std::string_view FileName, JobKind Kind) {
  return WithMemoryError([&] {
    RecordTable<Part> table(Text, FileName, "parts", limits::kPartKinds, Kind);
    Job job;
    job.Parts = table.Read();
    ResolveAmounts(job.Parts, Kind);
    GiveIds(job);
    table.Check(job.Parts, Kind);
    return std::move(job.Parts);
  });
}

std::vector<Plate> PlatesFromCsv(std::string_view Text, std::string_view FileName) {
  return WithMemoryError([&] {
    RecordTable<Plate> table(Text, FileName, "plates", limits::kPlateKinds);
    Job job;
    job.Plates = table.Read();
    GiveIds(job);
    table.Check(job.Plates);
    return std::move(job.Plates);
  });
}

Job JobFromCsv(std::string_view Parts, std::string_view FileName, const std::vector<Plate>& Plates) {
  return WithMemoryError([&] {
    RecordTable<Part> table(Parts, FileName, "parts", limits::kPartKinds);
    Job job;
    job.Parts = table.Read();
    job.Plates = Plates;
    const bool onePlateKind = Plates.size() <= 1;
    if (!onePlateKind) job.Kind = JobKind::Job;
    if (onePlateKind && job.Parts.size() > 1) job.Kind = JobKind::Fill;
    if (table.HoldsCircles()) job.Kind = JobKind::Circles;
    ResolveAmounts(job.Parts, job.Kind);
    GiveIds(job);
    table.Check(job.Parts, job.Kind);
    CheckJob(job);
    return job;
  });
}

namespace {

std::string AmountCell(const Part& APart) {
  return APart.Amount ? std::to_string(*APart.Amount) : "null";
}

std::string CirclesToCsv(const std::vector<Part>& Parts) {
  std::string out = "id,radius,amount,label\n";
  for (const Part& part : Parts) {
    if (part.Radius == 0)
      throw InputError(
          Fault{"conflict", Joined("/parts/", &part - Parts.data()), "cannot stand in a table of circles", ""});
    AppendTextCell(out, part.Id);
    out += ',';
    AppendNumberCell(out, part.Radius, "radius");
    out += Joined(",", AmountCell(part), ",");
    AppendTextCell(out, part.Label);
    out += '\n';
  }
  return out;
}

std::string CircleResultToCsv(const Result& AResult) {
  std::string out = "layout,plate,copies,part,x,y,radius\n";
  for (int i = 0; i < Size(AResult.Layouts); ++i) {
    const Layout& layout = AResult.Layouts[i];
    std::string head = Joined(i + 1, ",");
    AppendTextCell(head, layout.Plate);
    head += Joined(",", layout.Copies, ",");
    for (const CirclePlacement& circle : layout.Circles) {
      out += head;
      AppendTextCell(out, circle.Part);
      for (const double number : {circle.Center[0], circle.Center[1], circle.Radius}) {
        out += ',';
        AppendNumberCell(out, number, "/layouts");
      }
      out += '\n';
    }
  }
  return out;
}

}  // namespace

std::string PartsToCsv(const std::vector<Part>& Parts) {
  if (std::ranges::any_of(Parts, [](const Part& part) { return part.Radius != 0; })) return CirclesToCsv(Parts);
  std::string out = "id,width,height,amount,rotate,value,label\n";
  for (const Part& part : Parts) {
    if (!part.Outline.empty())
      throw InputError(Fault{"conflict", Joined("/parts/", &part - Parts.data(), "/outline"),
                             "cannot stand in a table, which holds rectangles only", ""});
    AppendTextCell(out, part.Id);
    out += ',';
    AppendNumberCell(out, part.Width, "width");
    out += ',';
    AppendNumberCell(out, part.Height, "height");
    out += Joined(",", AmountCell(part), ",");
    out += kRotateNames[part.Turn == Rotate::None ? 1 : 0];
    out += ',';
    if (part.Value) AppendNumberCell(out, *part.Value, "value");
    out += ',';
    AppendTextCell(out, part.Label);
    out += '\n';
  }
  return out;
}

std::string ResultToCsv(const Result& AResult) {
  if (AResult.Kind == JobKind::Circles) return CircleResultToCsv(AResult);
  std::string out = "layout,plate,copies,part,rotated,x,y,left,bottom,right,top\n";
  for (int i = 0; i < Size(AResult.Layouts); ++i) {
    const Layout& layout = AResult.Layouts[i];
    std::string head = Joined(i + 1, ",");
    AppendTextCell(head, layout.Plate);
    head += Joined(",", layout.Copies, ",");
    for (const Placement& placement : layout.Placements) {
      out += head;
      AppendTextCell(out, placement.Part);
      out += placement.Rotated ? ",true" : ",false";
      for (const double number : {placement.Trans[0], placement.Trans[1], placement.Bounds[0], placement.Bounds[1],
                                  placement.Bounds[2], placement.Bounds[3]}) {
        out += ',';
        AppendNumberCell(out, number, "/layouts");
      }
      out += '\n';
    }
  }
  return out;
}

}  // namespace platenest
