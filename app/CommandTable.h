#pragma once

#include <cstdint>
#include <span>
#include <string_view>

// The commands and options, once: the reader of the command line and the help pages both go by these tables.
namespace platenest {

enum class Command : std::uint8_t { One, Fill, Job, Circles, Nfp, Array, Label, Sucker, Check, Convert, Schema };

struct CommandRow {
  Command Id;
  std::string_view Name;
  std::string_view Positionals;  // as the usage line shows them
  int MinPositionals;
  int MaxPositionals;
  std::string_view Purpose;
};

enum class OptionGroup : std::uint8_t { Job, Run, Output, Messages };

struct OptionRow {
  std::string_view Name;
  std::string_view Value;  // empty: a flag
  OptionGroup Group;
  std::uint16_t Commands;  // bit 1 << Command
  std::string_view Text;
};

std::span<const CommandRow> CommandTable();
std::span<const OptionRow> OptionTable();

const CommandRow& RowOf(Command Id);

inline bool Takes(Command Id, const OptionRow& Option) {
  return (Option.Commands & (1U << static_cast<unsigned>(Id))) != 0;
}

}  // namespace platenest
