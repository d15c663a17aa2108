#include "CommandTable.h"

namespace platenest {

namespace {

constexpr CommandRow kCommands[] = {
    {Command::One, "one", "[JOB]", 0, 1, "how many of one size on one plate"},
    {Command::Nfp, "nfp", "JOB", 1, 1, "no-fit polygons, or the regions where parts fit inside others"},
    {Command::Check, "check", "JOB RESULT", 2, 2, "is this result valid for this job"},
    {Command::Convert, "convert", "INPUT OUTPUT", 2, 2, "CSV, text rectangle file and JSON into each other"},
    {Command::Schema, "schema", "job|result", 1, 1, "print a JSON Schema"},
};

constexpr std::uint8_t Bit(Command Id) {
  return static_cast<std::uint8_t>(1U << static_cast<unsigned>(Id));
}
constexpr std::uint8_t kOne = Bit(Command::One);
constexpr std::uint8_t kNfp = Bit(Command::Nfp);
constexpr std::uint8_t kRects = kOne | Bit(Command::Check) | Bit(Command::Convert);
constexpr std::uint8_t kShapes = kNfp | Bit(Command::Check) | Bit(Command::Convert);
constexpr std::uint8_t kJobs = kRects | kShapes;
constexpr std::uint8_t kAll = kJobs | Bit(Command::Schema);

using enum OptionGroup;
constexpr OptionRow kOptions[] = {
    {"--plate", "WxH", Job, kRects, "size of the plate, for example 2440x1220"},
    {"--plates", "FILE", Job, Bit(Command::Convert), "the plates as a CSV table, where INPUT is one of parts"},
    {"--part", "WxH", Job, kRects, "size of the part, for example 300x200"},
    {"--amount", "N", Job, kRects, "copies of the part; without it as many as fit"},
    {"--gap", "LENGTH", Job, kRects, "least distance between two parts (default 0)"},
    {"--margin", "LENGTHS", Job, kRects, "kept free at the plate's edges: one number, or left,bottom,right,top"},
    {"--fixed", "ID", Job, kShapes, "the part that stands still; without it all, one after the other"},
    {"--moving", "ID", Job, kShapes, "the part that moves; without it all, one after the other"},
    {"--inside", "", Job, kShapes, "where the moving part lies within the fixed one"},
    {"--quality", "NAME", Job, kShapes, "convex, concave, complete or exact (default complete)"},
    {"--units", "NAME", Job, kJobs, "mm, cm, m, in or none; a name only, nothing is converted (default mm)"},
    {"--method", "NAME", Run, kRects, "auto, strip or trim (default auto)"},
    {"--time-limit", "SECONDS", Run, kJobs, "time for the search (default 60, 0 for none)"},
    {"--seed", "N", Run, kJobs, "start of the random numbers (default 1)"},
    {"--threads", "N", Run, kJobs, "threads that work (default: up to 4)"},
    {"--memory-limit", "SIZE", Run, kJobs, "bytes, or with K, M or G (default 1G)"},
    {"--deterministic", "", Run, kJobs, "the same bytes for the same job and seed, on any machine load"},
    {"-o", "FILE", Output, kOne | kNfp | Bit(Command::Schema), "write to FILE instead of standard output"},
    {"--svg", "DIR", Output, kOne | kNfp, "a picture of each layout or pair, DIR/layout-001-x1.svg or DIR/nfp-001.svg"},
    {"--csv", "FILE", Output, kOne, "the placements as a table"},
    {"--require-all", "", Output, kOne | Bit(Command::Check), "exit with 1 when demand is left"},
    {"--quiet", "", Messages, kAll, "nothing on standard error but errors"},
    {"--json-progress", "", Messages, kAll, "progress and errors as one JSON object a line"},
    {"--no-color", "", Messages, kAll, "no colours; the variable NO_COLOR does the same"},
    {"--help", "", Messages, kAll, "this page"},
    {"--version", "", Messages, kAll, "the version"},
};

}  // namespace

std::span<const CommandRow> CommandTable() {
  return kCommands;
}

std::span<const OptionRow> OptionTable() {
  return kOptions;
}

const CommandRow& RowOf(Command Id) {
  return kCommands[static_cast<std::size_t>(Id)];
}

}  // namespace platenest
