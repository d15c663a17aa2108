#include "platenest/URectNest/RectFile.h"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace platenest {

TInputError::~TInputError() = default;
TFileError::~TFileError() = default;

const char* TInputError::ClassName() const noexcept {
  return "TInputError";
}
const char* TFileError::ClassName() const noexcept {
  return "TFileError";
}

namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";

// Numbers of a text one after the other, whatever the lines.
class TNumberReader {
 public:
  TNumberReader(std::string_view Text, std::string_view Name) : FText(Text), FName(Name) {}

  // Nothing is left, not even white space.
  bool AtEnd() const { return FPlace == FText.size(); }

  double Number(std::string_view What) {
    double value = 0;
    const std::string_view token = NextToken();
    if (!token.empty() && (!Parse(token, value) || !std::isfinite(value))) Refuse(token, "a number", What);
    return value;
  }

  int WholeNumber(std::string_view What) {
    int value = 0;
    const std::string_view token = NextToken();
    if (!token.empty() && !Parse(token, value)) Refuse(token, "a whole number", What);
    return value;
  }

 private:
  // Empty at the end of the text.
  std::string_view NextToken() {
    while (!AtEnd() && kBlanks.find(FText[FPlace]) != std::string_view::npos) {
      if (FText[FPlace] == '\n') ++FLine;
      ++FPlace;
    }
    const std::size_t begin = FPlace;
    FPlace = std::min(FText.find_first_of(kBlanks, begin), FText.size());
    return FText.substr(begin, FPlace - begin);
  }

  template <class T>
  static bool Parse(std::string_view Token, T& Value) {
    if (Token.size() > 1 && Token[0] == '+' && Token[1] != '-') Token.remove_prefix(1);
    const char* const end = Token.data() + Token.size();
    const auto [rest, error] = std::from_chars(Token.data(), end, Value);
    return error == std::errc() && rest == end;
  }

  [[noreturn]] void Refuse(std::string_view Token, std::string_view Expected, std::string_view What) const {
    constexpr std::size_t kMostShown = 40;
    std::string text = "[Error] ";
    text.append(FName).append(", line ").append(std::to_string(FLine)).append(": expected ");
    text.append(Expected).append(" for ").append(What).append(", found \"");
    text.append(Token.substr(0, kMostShown)).append(Token.size() > kMostShown ? "...\"" : "\"");
    throw TInputError(text);
  }

  std::string_view FText;
  std::string_view FName;
  std::size_t FPlace = 0;
  int FLine = 1;
};

void AppendFixed(std::string& Text, double Value) {
  char digits[400];  // the largest double has 309 digits before the point
  const auto end = std::to_chars(std::begin(digits), std::end(digits), Value, std::chars_format::fixed, 6).ptr;
  Text.append(digits, end);
}

void AppendLine(std::string& Text, std::initializer_list<double> Numbers, int Whole) {
  for (const double number : Numbers) {
    AppendFixed(Text, number);
    Text += ' ';
  }
  Text += std::to_string(Whole);
  Text += '\n';
}

void CheckSize(const TVRect2D& Box) {
  for (const double size : {Box.Width(), Box.Height()}) {
    if (!std::isfinite(size) || size < 0)
      throw TArgumentError("[Error] WriteRectsToFile: a size is negative or not finite");
  }
}

std::string ToText(const TNestRectList& List, const TVRect2D& Plate) {
  CheckSize(Plate);
  std::string text;
  AppendLine(text, {Plate.Width(), Plate.Height()}, 1);
  for (const TNestRect& item : List) {
    CheckSize(item.BoundBox);
    if (!std::isfinite(item.Area)) throw TArgumentError("[Error] WriteRectsToFile: an area is not finite");
    AppendLine(text, {item.BoundBox.Width(), item.BoundBox.Height(), item.Area}, item.Amount);
  }
  return text;
}

[[noreturn]] void RefuseFile(const std::string& FileName, std::string_view Problem) {
  throw TFileError("[Error] " + FileName + ": " + std::string(Problem));
}

}  // namespace

void ReadRectsFromText(std::string_view Text, std::string_view Name, TNestRectList& List, TVRect2D& Plate) {
  TNumberReader reader(Text, Name);
  const double plateWidth = reader.Number("the plate width");
  const double plateHeight = reader.Number("the plate height");
  TNestRectList read = List;
  while (!reader.AtEnd()) {
    const double width = reader.Number("a width");
    const double height = reader.Number("a height");
    if (width == 0 || height == 0) continue;
    TNestRect item;
    item.BoundBox = TVRect2D::FromSize(width, height);
    item.Area = reader.Number("an area");
    item.Amount = reader.WholeNumber("an amount");
    read.push_back(item);
  }
  List.swap(read);
  Plate = TVRect2D::FromSize(plateWidth, plateHeight);
}

void ReadFromFile(const std::string& FileName, TNestRectList& List, TVRect2D& Plate) {
  std::error_code error;
  if (!std::filesystem::exists(FileName, error) && !error) return;
  std::ifstream file(FileName, std::ios::binary);
  if (error || !file || std::filesystem::is_directory(FileName, error)) RefuseFile(FileName, "cannot be opened");
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (file.bad()) RefuseFile(FileName, "cannot be read");
  ReadRectsFromText(text, FileName, List, Plate);
}

void WriteRectsToFile(const TNestRectList& List, const TVRect2D& Plate, const std::string& FileName) {
  const std::string text = ToText(List, Plate);
  std::error_code error;
  if (std::filesystem::exists(FileName, error) && !std::filesystem::is_regular_file(FileName, error))
    RefuseFile(FileName, "is no regular file");
  std::filesystem::remove(FileName, error);
  if (error) RefuseFile(FileName, "cannot be deleted: " + error.message());
  std::ofstream file(FileName, std::ios::binary);
  if (!file) RefuseFile(FileName, "cannot be created");
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  file.close();
  if (file) return;
  std::filesystem::remove(FileName, error);
  RefuseFile(FileName, "cannot be written");
}

}  // namespace platenest
