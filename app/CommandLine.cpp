#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "Text.h"
#include "platenest/foundation/Types.h"

namespace platenest {

namespace {

OptionError WrongOption(std::string Place, std::string Text) {
  return OptionError(Fault{"option", std::move(Place), std::move(Text), ""});
}

std::string SeeHelp(std::string_view CommandName) {
  return "; see platenest " + (CommandName.empty() ? std::string() : std::string(CommandName) + " ") + "--help";
}

Command FindCommand(const std::string& Name) {
  std::vector<std::string_view> names;
  for (const CommandRow& row : CommandTable()) {
    if (row.Name == Name) return row.Id;
    names.push_back(row.Name);
  }
  if (Name.starts_with('-')) {
    throw WrongOption(Name, "the command comes first" + SeeHelp({}));
  }
  throw WrongOption("", "unknown command \"" + Name + "\"" + DidYouMean(Name, names) + SeeHelp({}));
}

bool IsOption(const std::string& Word) {
  return Word.size() > 1 && Word.front() == '-';
}

OptionError UnknownOption(Command Id, const std::string& Word) {
  const std::string name = Word.substr(0, Word.find('='));
  std::vector<std::string_view> names;
  for (const OptionRow& row : OptionTable()) {
    if (row.Name == name) return WrongOption(name, "has no meaning for " + std::string(RowOf(Id).Name));
    if (Takes(Id, row)) names.push_back(row.Name);
  }
  return WrongOption(name, "unknown option" + DidYouMean(name, names) + SeeHelp(RowOf(Id).Name));
}

void CollectValues(const std::map<std::string_view, CLI::Option*>& Options, CommandLine& Line) {
  for (const auto& [name, option] : Options) {
    if (option->count() == 0) continue;
    if (option->count() > 1) throw WrongOption(std::string(name), "given more than once");
    const bool isFlag = option->get_expected_max() == 0;
    const std::string value = isFlag ? std::string() : option->results().front();
    if (value.starts_with("--")) throw WrongOption(std::string(name), "needs a value, found the option " + value);
    Line.Values[name] = value;
  }
}

void RequirePositionals(const CommandLine& Line) {
  const CommandRow& row = RowOf(*Line.Id);
  const int count = Size(Line.Positionals);
  if (count >= row.MinPositionals && count <= row.MaxPositionals) return;
  throw WrongOption("", std::string(row.Name) + " takes " + std::string(row.Positionals) + ", found " +
                            std::to_string(count) + (count == 1 ? " word" : " words") + SeeHelp(row.Name));
}

// The parser finds values that are missing or too many, in a sentence that begins with the option's
// name, a flag's without dashes.
OptionError ParserFault(Command Id, const std::string& Text) {
  const std::string name = Text.substr(0, Text.find_first_of(": "));
  for (const OptionRow& row : OptionTable()) {
    if (row.Name != name && row.Name != "--" + name) continue;
    return WrongOption(std::string(row.Name), row.Value.empty() ? "takes no value" : "needs a value");
  }
  return WrongOption("", Text + SeeHelp(RowOf(Id).Name));
}

// Options are registered without types: numbers are read elsewhere, in one locale and with one kind of message.
void ReadOptions(std::vector<std::string> Words, CommandLine& Line) {
  CLI::App parser;
  parser.set_help_flag();
  parser.allow_extras();
  parser.option_defaults()->disable_flag_override();
  std::map<std::string_view, CLI::Option*> options;
  for (const OptionRow& row : OptionTable()) {
    if (!Takes(*Line.Id, row)) continue;
    const std::string name(row.Name);
    options[row.Name] = row.Value.empty() ? parser.add_flag(name) : parser.add_option(name)->expected(1);
    options[row.Name]->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  }
  std::reverse(Words.begin(), Words.end());
  try {
    parser.parse(std::move(Words));
  } catch (const CLI::ParseError& error) {
    throw ParserFault(*Line.Id, error.what());
  }
  for (std::string& word : parser.remaining()) {
    if (IsOption(word)) throw UnknownOption(*Line.Id, word);
    Line.Positionals.push_back(std::move(word));
  }
  CollectValues(options, Line);
}

}  // namespace

CommandLine ParseCommandLine(const std::vector<std::string>& Words) {
  CommandLine line;
  if (Words.empty()) throw WrongOption("", "a command is missing" + SeeHelp({}));
  const auto dashes = std::find(Words.begin(), Words.end(), "--");
  line.Help = std::any_of(Words.begin(), dashes, [](const std::string& w) { return w == "--help" || w == "-h"; });
  line.Version = std::find(Words.begin(), dashes, "--version") != dashes;
  if ((line.Help || line.Version) && IsOption(Words.front())) return line;
  line.Id = FindCommand(Words.front());
  if (line.Help || line.Version) return line;
  ReadOptions({Words.begin() + 1, dashes}, line);
  if (dashes != Words.end()) line.Positionals.insert(line.Positionals.end(), dashes + 1, Words.end());
  RequirePositionals(line);
  return line;
}

}  // namespace platenest
