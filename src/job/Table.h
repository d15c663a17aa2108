#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platenest::detail {

// One line of a table. Quoted fields may hold line feeds, so it may span several lines of the file.
struct TableRow {
  int Line = 0;  // where it begins, counted from 1
  std::vector<std::string> Cells;
};

// Splits a comma separated text into rows: RFC 4180, with comma or semicolon, LF or CRLF. Blanks around unquoted fields
// are dropped, and so are lines whose fields are all empty.
class TableReader {
 public:
  // Separator: a semicolon if the first line holds one outside of quotes.
  TableReader(std::string_view Text, std::string_view FileName);

  char Separator() const { return FSeparator; }

  // The next row; false at the end. Raises InputError for a quote that is not closed, or closed within a field, and for
  // a line of more than 100 fields.
  bool Next(TableRow& Row);

 private:
  std::string Cell();
  std::string QuotedCell();
  void EndLine();
  bool AtLineEnd() const;
  [[noreturn]] void Refuse(int Line, std::string_view What) const;

  std::string_view FRest;
  std::string FFile;
  char FSeparator = ',';
  int FLine = 1;
};

// A text as a field: with an apostrophe before it if a spreadsheet would take it for a formula, in quotes where needed.
void AppendTextCell(std::string& Out, std::string_view Text);

// Takes that apostrophe off again.
std::string_view WithoutGuard(std::string_view Text);

}  // namespace platenest::detail
