#include "Table.h"

#include <algorithm>

#include "Texts.h"
#include "platenest/job/JobErrors.h"

namespace platenest::detail {

namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::size_t kMostCells = 100;

bool IsBlank(char C) {
  return kBlanks.find(C) != kBlanks.npos;
}

std::string_view Trimmed(std::string_view Text) {
  while (!Text.empty() && IsBlank(Text.front())) Text.remove_prefix(1);
  while (!Text.empty() && IsBlank(Text.back())) Text.remove_suffix(1);
  return Text;
}

char FindSeparator(std::string_view Text) {
  bool quoted = false;
  for (const char c : Text) {
    if (c == '"') quoted = !quoted;
    if (!quoted && c == ';') return ';';
    if (!quoted && c == '\n') return ',';
  }
  return ',';
}

// Apostrophes, then what begins a formula. Guarding those that have an apostrophe already makes taking it off exact.
bool LooksLikeFormula(std::string_view Text) {
  const std::size_t first = Text.find_first_not_of('\'');
  return first != Text.npos && std::string_view("=+-@").find(Text[first]) != std::string_view::npos;
}

}  // namespace

TableReader::TableReader(std::string_view Text, std::string_view FileName) : FRest(WithoutBom(Text)), FFile(FileName) {
  const std::size_t first = std::min(FRest.find_first_not_of(" \t\r\n"), FRest.size());
  FSeparator = FindSeparator(FRest.substr(first));
}

bool TableReader::Next(TableRow& Row) {
  Row.Cells.clear();
  while (!FRest.empty()) {
    Row.Line = FLine;
    Row.Cells.push_back(Cell());
    while (FRest.starts_with(FSeparator)) {
      if (Row.Cells.size() == kMostCells) Refuse(Row.Line, Joined("must have at most ", kMostCells, " fields"));
      FRest.remove_prefix(1);
      Row.Cells.push_back(Cell());
    }
    EndLine();
    if (!std::ranges::all_of(Row.Cells, &std::string::empty)) return true;
    Row.Cells.clear();
  }
  return false;
}

// Up to the separator or the end of the line.
std::string TableReader::Cell() {
  while (!FRest.empty() && IsBlank(FRest.front())) FRest.remove_prefix(1);
  if (FRest.starts_with('"')) return QuotedCell();
  std::size_t length = 0;
  while (length < FRest.size() && FRest[length] != FSeparator && FRest[length] != '\n') ++length;
  std::string_view cell = FRest.substr(0, length);
  FRest.remove_prefix(length);
  if (cell.ends_with('\r') && AtLineEnd()) cell.remove_suffix(1);
  return std::string(Trimmed(cell));
}

std::string TableReader::QuotedCell() {
  const int begin = FLine;
  std::string cell;
  FRest.remove_prefix(1);
  for (;;) {
    const std::size_t length = FRest.find('"');
    if (length == FRest.npos) Refuse(begin, "a quoted field begins here and does not end");
    cell += FRest.substr(0, length);
    FLine += static_cast<int>(std::ranges::count(FRest.substr(0, length), '\n'));
    FRest.remove_prefix(length + 1);
    if (!FRest.starts_with('"')) break;
    cell += '"';
    FRest.remove_prefix(1);
  }
  while (!FRest.empty() && IsBlank(FRest.front())) FRest.remove_prefix(1);
  if (FRest == "\r" || FRest.starts_with("\r\n")) FRest.remove_prefix(1);
  if (!AtLineEnd() && FRest.front() != FSeparator) Refuse(FLine, "a quoted field must end before the next separator");
  return cell;
}

void TableReader::EndLine() {
  if (FRest.starts_with('\n')) FRest.remove_prefix(1);
  ++FLine;
}

bool TableReader::AtLineEnd() const {
  return FRest.empty() || FRest.front() == '\n';
}

void TableReader::Refuse(int Line, std::string_view What) const {
  throw InputError(Fault{"syntax", Joined(FFile, ":", Line), std::string(What), ""});
}

void AppendTextCell(std::string& Out, std::string_view Text) {
  const bool guarded = LooksLikeFormula(Text);
  const bool quoted = Text.find_first_of(",;\"\r\n") != Text.npos || Trimmed(Text).size() != Text.size();
  if (quoted) Out += '"';
  if (guarded) Out += '\'';
  for (const char c : Text) {
    if (c == '"') Out += '"';
    Out += c;
  }
  if (quoted) Out += '"';
}

std::string_view WithoutGuard(std::string_view Text) {
  if (Text.starts_with('\'') && LooksLikeFormula(Text)) Text.remove_prefix(1);
  return Text;
}

}  // namespace platenest::detail
