#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "JobForm.h"
#include "Texts.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/job/Convert.h"

namespace platenest {

namespace detail {

namespace {

struct Token {
  std::string_view Text;  // empty at the end
  int Line = 1;
};

// The tokens between white space, with their lines.
class TokenStream {
 public:
  explicit TokenStream(std::string_view Text) : FRest(Text) { SkipBlanks(); }

  bool AtEnd() const { return FRest.empty(); }

  Token Next() {
    const std::size_t length = std::min(FRest.find_first_of(kBlanks), FRest.size());
    const Token token{FRest.substr(0, length), FLine};
    FRest.remove_prefix(length);
    if (!token.Text.empty()) SkipBlanks();
    return token;
  }

 private:
  static constexpr std::string_view kBlanks = " \t\r\n\v\f";

  void SkipBlanks() {
    const std::size_t length = std::min(FRest.find_first_not_of(kBlanks), FRest.size());
    const int lines = static_cast<int>(std::ranges::count(FRest.substr(0, length), '\n'));
    FRest.remove_prefix(length);
    if (!FRest.empty()) FLine += lines;  // what is missing at the end belongs to the last line written
  }

  std::string_view FRest;
  int FLine = 1;
};

// The members of a part in the order of its numbers; area is the file's word for value.
constexpr std::string_view kColumns[] = {"width", "height", "area", "amount"};

class RectTextReader {
 public:
  RectTextReader(std::string_view Text, std::string_view FileName) : FTokens(WithoutBom(Text)), FFile(FileName) {}

  Job Read() {
    Job job;
    job.Kind = JobKind::Fill;
    ReadPlate(job);
    while (!FTokens.AtEnd() && Size(job.Parts) <= limits::kPartKinds) ReadRect(job);
    GiveIds(job);
    FindFaults(job, FFaults);
    FFaults.Rename([this](const std::string& pointer) { return Place(pointer); });
    FFaults.Raise();
    return job;
  }

 private:
  std::string At(int Line, std::string_view Column) const { return Joined(FFile, ":", Line, ":", Column); }

  // A token that is no number puts all that follow out of step, so it ends the reading.
  [[noreturn]] void Refuse(const Token& AToken, std::string_view Column, std::string_view Wanted) const {
    throw InputError(
        Fault{"syntax", At(AToken.Line, Column), Joined("must be ", Wanted, ", found ", Quoted(AToken.Text)), ""});
  }

  double Number(const Token& AToken, std::string_view Column) const {
    if (AToken.Text.empty()) return 0;
    const std::optional<double> value = NumberFromText(AToken.Text);
    if (!value) Refuse(AToken, Column, "a number");
    return *value;
  }

  Scalar Whole(const Token& AToken, std::string_view Column) const {
    if (AToken.Text.empty()) return Scalar::FromWhole(0, false);
    const bool isNegative = AToken.Text.front() == '-';
    const bool isSigned = isNegative || AToken.Text.front() == '+';
    const std::string_view digits = AToken.Text.substr(isSigned ? 1 : 0);
    std::uint64_t value = 0;
    const std::from_chars_result end = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (end.ec == std::errc::invalid_argument || end.ptr != digits.data() + digits.size()) {
      Refuse(AToken, Column, "a whole number");
    }
    const bool fits = end.ec == std::errc{};
    return fits ? Scalar::FromWhole(value, isNegative) : Scalar::FromNumber(isNegative ? -1e20 : 1e20, AToken.Text);
  }

  void ReadPlate(Job& AJob) {
    const Token width = FTokens.Next();
    const Token height = FTokens.Next();
    FPlateLines = {width.Line, height.Line};
    Plate& plate = AJob.Plates.emplace_back();
    plate.Width = Number(width, "width");
    plate.Height = Number(height, "height");
  }

  void ReadRect(Job& AJob) {
    const Token width = FTokens.Next();
    const Token height = FTokens.Next();
    Part part;
    part.Width = Number(width, "width");
    part.Height = Number(height, "height");
    if (part.Width == 0 || part.Height == 0) return;  // a blank line at the end reads as this too
    const Token area = FTokens.Next();
    const Token amount = FTokens.Next();
    const double worth = Number(area, "area");
    if (!IsArea(part, worth)) part.Value = worth;
    const std::string pointer = Joined("/parts/", AJob.Parts.size(), "/amount");
    Accept(
        WholeAt{&kAmountRule, &part.Amount}, Whole(amount, "amount"), [&] { return pointer; }, FFaults);
    AJob.Parts.push_back(std::move(part));
    FPartLines.push_back({width.Line, height.Line, area.Line, amount.Line});
  }

  // The numbers may have been rounded at their sixth decimal.
  static bool IsArea(const Part& APart, double Worth) {
    constexpr double halfDigit = 5e-7;
    const double slack = halfDigit * (std::fabs(APart.Width) + std::fabs(APart.Height) + 1);
    return std::fabs(Worth - APart.Width * APart.Height) <= slack;
  }

  // The line and column of "/parts/3/amount" and the like.
  std::string Place(const std::string& Pointer) const {
    const std::size_t memberAt = Pointer.rfind('/') + 1;
    const std::string member = Pointer.substr(memberAt) == "value" ? "area" : Pointer.substr(memberAt);
    const auto column = std::ranges::find(kColumns, member) - std::begin(kColumns);
    if (Pointer == "/plates/0/width" || Pointer == "/plates/0/height") return At(FPlateLines[column], member);
    int index = 0;
    const std::string_view number = std::string_view(Pointer).substr(std::min<std::size_t>(7, Pointer.size()));
    const bool isPart = Pointer.starts_with("/parts/") &&
                        std::from_chars(number.data(), number.data() + number.size(), index).ec == std::errc{};
    return isPart && column < Size(FPartLines[index]) ? At(FPartLines[index][column], member) : FFile;
  }

  TokenStream FTokens;
  std::string FFile;
  std::array<int, 2> FPlateLines{1, 1};
  std::vector<std::array<int, 4>> FPartLines;
  FaultList FFaults;
};

// Turns rectangles of one size and worth into one part.
void MergeIfOneSize(Job& AJob) {
  const Part& first = AJob.Parts.front();
  const bool same = std::ranges::all_of(AJob.Parts, [&](const Part& part) {
    return part.Width == first.Width && part.Height == first.Height && part.Value == first.Value;
  });
  if (!same) return;
  int amount = 0;
  for (const Part& part : AJob.Parts) amount += part.Amount.value_or(0);
  AJob.Parts.resize(1);
  AJob.Parts.front().Amount = amount;
  AJob.Kind = JobKind::One;
}

// What two numbers and a list of rectangles cannot say.
std::vector<std::string> Losses(const Job& AJob) {
  Job plain;  // what reading the written text gives back
  plain.Plates.push_back({"", AJob.Plates[0].Width, AJob.Plates[0].Height, 1, {}, false});
  plain.Parts.resize(AJob.Parts.size());
  GiveIds(plain);

  std::vector<std::string> losses;
  const auto note = [&](bool isLost, std::string_view what) {
    if (isLost) losses.push_back(Joined(what, " cannot be written to a text rectangle file"));
  };
  const auto anyPart = [&](auto isLost) { return std::ranges::any_of(AJob.Parts, isLost); };
  const auto idIsLost = [&](const Part& part) { return part.Id != plain.Parts[&part - AJob.Parts.data()].Id; };
  note(!AJob.Name.empty(), "the name");
  note(AJob.Kind == JobKind::Job, "the kind `job`");
  note(AJob.Units != plain.Units, Joined("the unit ", AJob.Units));
  note(AJob.Gap != 0, Joined("the gap of ", AJob.Gap));
  note(AJob.Margin != plain.Margin, "the margin");
  note(AJob.Plates.size() > 1, "all plates but the first");
  note(AJob.Plates[0].Id != plain.Plates[0].Id || anyPart(idIsLost), "ids");
  note(AJob.Plates[0].Count != 1, "the count of the plate");
  note(AJob.Plates[0].Cost.has_value(), "the cost of the plate");
  note(AJob.Plates[0].Remnant, "that the plate is a remnant");
  note(anyPart([](const Part& part) { return part.Turn == Rotate::None; }), "`rotate` none");
  note(anyPart([](const Part& part) { return !part.Label.empty(); }), "labels");
  note(AJob.Run != Options{}, "options");
  return losses;
}

// As many copies as the plate's area could hold.
int MostByArea(const Plate& APlate, const Part& APart) {
  const double ratio = APlate.Width * APlate.Height / (APart.Width * APart.Height);
  return Floor(std::clamp<double>(ratio, 1, static_cast<double>(limits::kCopies)));
}

}  // namespace

}  // namespace detail

using namespace detail;

Job JobFromRectText(std::string_view Text, std::string_view FileName) {
  return WithMemoryError([&] {
    CheckFileText(Text, FileName, limits::kJobBytes);
    Job job = RectTextReader(Text, FileName).Read();
    MergeIfOneSize(job);
    return job;
  });
}

Converted JobToRectText(const Job& AJob) {
  CheckJob(AJob);
  if (AJob.Kind == JobKind::Circles)
    throw InputError(Fault{"conflict", "/kind",
                           "`circles` cannot be written to a text rectangle file, which holds rectangles only", ""});
  if (IsOfShapes(AJob.Kind))
    throw InputError(
        Fault{"conflict", "/kind",
              Joined("`", KindName(AJob.Kind), "` has no plates and cannot be written to a text rectangle file"), ""});
  Converted out{"", Losses(AJob)};
  const Plate& plate = AJob.Plates[0];
  out.Text = Joined(plate.Width, " ", plate.Height, "\n");
  for (const Part& part : AJob.Parts) {
    const int amount = part.Amount ? *part.Amount : MostByArea(plate, part);
    if (!part.Amount) {
      out.Warnings.push_back(Joined("part ", Quoted(part.Id), " is without limit and is written with the amount ",
                                    amount, ", the most that the plate's area could hold"));
    }
    for (const double number : {part.Width, part.Height, part.Value.value_or(part.Width * part.Height)}) {
      AppendNumber(out.Text, number);
      out.Text += ' ';
    }
    out.Text += Joined(amount, "\n");
  }
  return out;
}

}  // namespace platenest
