#include "Program.h"

#include <unistd.h>

#include <algorithm>
#include <new>

#include "Arguments.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Files.h"
#include "Help.h"
#include "Messages.h"
#include "Signals.h"
#include "platenest/NfpAlgorithmSet/NfpTypes.h"

namespace platenest {

namespace {

// Read before the command line is understood, so that its own faults have the wished form.
Messages::Style StyleOf(const std::vector<std::string>& Words) {
  const auto end = std::find(Words.begin(), Words.end(), "--");
  const auto has = [&](const char* word) { return std::find(Words.begin(), end, word) != end; };
  Messages::Style style;
  style.Quiet = has("--quiet");
  style.Json = has("--json-progress");
  style.Color = !has("--no-color") && ColorAllowed() && StandardErrorIsTerminal();
  return style;
}

std::string HelpOrVersion(const CommandLine& Line) {
  if (Line.Version && !Line.Help) return "platenest " PLATENEST_PROGRAM_VERSION "\n";
  return Line.Id ? CommandHelp(*Line.Id) : OverviewHelp();
}

int CodeOf(const JobError& Error) {
  if (dynamic_cast<const OptionError*>(&Error) != nullptr) return kExitWrongOptions;
  if (dynamic_cast<const InputError*>(&Error) != nullptr) return kExitWrongInput;
  if (dynamic_cast<const LimitError*>(&Error) != nullptr) return kExitOverLimit;
  if (dynamic_cast<const FileError*>(&Error) != nullptr) return kExitFileTrouble;
  if (dynamic_cast<const MemoryError*>(&Error) != nullptr) return kExitNoMemory;
  if (dynamic_cast<const StoppedError*>(&Error) != nullptr) return kExitStopped;
  return kExitInternal;
}

// Wrong input that came from options alone is a matter of wrong options.
int Report(const JobError& Error, const JobOverrides& Overrides, const Messages& Out) {
  bool fromOptions = true;
  for (const Fault& fault : Error.Faults()) {
    const Fault shown = Out.IsReading() ? fault : Overrides.AtOption(fault);
    fromOptions &= shown.Place.starts_with("--");
    Out.Error(shown);
  }
  const int code = CodeOf(Error);
  return code == kExitWrongInput && fromOptions ? kExitWrongOptions : code;
}

// Raises what RunCommand raises; Args is filled as soon as it is known.
int Dispatch(const std::vector<std::string>& Words, const Runner& Answer, Arguments& Args, Messages& Out) {
  const CommandLine line = ParseCommandLine(Words);
  if (line.Help || line.Version) {
    WriteOutput("-", HelpOrVersion(line));
    return kExitDone;
  }
  Args = ReadArguments(line);
  return RunCommand(Args, Out, Answer);
}

}  // namespace

int RunProgram(const std::vector<std::string>& Words, const Runner& Answer) {
  HoldStandardStreams();
  InstallSignalHandlers();
  HighestNFPType = ntExact;  // a wish for exact polygons is kept: this program is the host whose ceiling it is
  Messages out(StyleOf(Words));
  Arguments args;
  try {
    try {
      return Dispatch(Words, Answer, args, out);
    } catch (const JobError& error) {
      return Report(error, args.Job, out);
    } catch (const std::bad_alloc&) {
      out.Error({"memory", "", "not enough memory", ""});
      return kExitNoMemory;
    } catch (const std::exception& error) {
      out.Error({"internal", "", "internal fault", error.what()});
      return kExitInternal;
    }
  } catch (...) {
    WriteAll(STDERR_FILENO, "platenest: error: not enough memory\n");
    return kExitNoMemory;
  }
}

}  // namespace platenest
