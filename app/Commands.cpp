#include "Commands.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <new>
#include <utility>

#include "Files.h"
#include "ProgressView.h"
#include "Signals.h"
#include "Summary.h"
#include "Text.h"
#include "platenest/job/Convert.h"

namespace platenest {

namespace {

constexpr const char* kReproductionFile = "platenest-reproduction.json";

OptionError WrongWord(std::string Text) {
  return OptionError(Fault{"option", "", std::move(Text), ""});
}

// A text file ends with a line end.
std::string Ended(std::string Text) {
  if (!Text.ends_with('\n')) Text += '\n';
  return Text;
}

std::string ReadSource(const std::string& Path, Int64 Limit, Messages& Out) {
  Out.SetSource(Path == "-" ? "standard input" : Path);
  Out.SetReading(true);
  return ReadInput(Path, Limit);
}

Job ReadJob(const std::string& Path, Messages& Out) {
  return ParseJob(ReadSource(Path, limits::kJobBytes, Out));
}

// A job without a file: one plate or a table of plates, and one part or a table of parts.
Job JobOfOptions(const Arguments& Args, JobKind Kind) {
  const bool isOne = Kind == JobKind::One;
  const bool isOfCircles = Kind == JobKind::Circles;
  const bool hasPlates = Args.Job.PlateSize || !Args.PlatesFile.empty();
  const bool hasSize = (isOne && Args.Job.PartSize) || (isOfCircles && Args.Job.Radius);
  if (!hasPlates || !(hasSize || !Args.PartsFile.empty())) {
    const std::string name(KindName(Kind));
    throw WrongWord(name + " takes a JOB, or " +
                    (Kind == JobKind::Job || isOfCircles ? "--plates or --plate" : "--plate") + " and " +
                    (isOne         ? "--part"
                     : isOfCircles ? "--radius or --parts"
                                   : "--parts") +
                    "; see platenest " + name + " --help");
  }
  Job job;
  job.Kind = Kind;
  return job;
}

// What the options say about the job goes before what it says itself.
void ApplyOptions(const Arguments& Args, Job& AJob, Messages& Out) {
  const std::string source = Out.Source();
  if (!Args.PlatesFile.empty())
    AJob.Plates = PlatesFromCsv(ReadSource(Args.PlatesFile, limits::kJobBytes, Out), Args.PlatesFile);
  if (!Args.PartsFile.empty())
    AJob.Parts = PartsFromCsv(ReadSource(Args.PartsFile, limits::kJobBytes, Out), Args.PartsFile, AJob.Kind);
  Out.SetSource(source);
  Out.SetReading(false);
  Args.Job.ApplyTo(AJob);
}

Job LoadJob(const Arguments& Args, JobKind Kind, Messages& Out) {
  Job job = Args.Positionals.empty() ? JobOfOptions(Args, Kind) : ReadJob(Args.Positionals.front(), Out);
  ApplyOptions(Args, job, Out);
  return job;
}

void RequireKind(const Job& AJob, JobKind Kind) {
  if (AJob.Kind == Kind) return;
  throw InputError(Fault{"choice", "/kind",
                         "must be `" + std::string(KindName(Kind)) + "`, the kind that this command answers, found `" +
                             std::string(KindName(AJob.Kind)) + "`",
                         ""});
}

void PrepareOutputs(const Arguments& Args) {
  if (Args.CsvFile == "-" && Args.Output == "-")
    throw OptionError(Fault{"option", "--csv", "cannot share standard output with the result: give -o FILE too", ""});
  if (!Args.SvgFolder.empty()) RequireFolder(Args.SvgFolder);  // first: the files may be meant to lie in it
  RequireWritable(Args.Output);
  if (!Args.CsvFile.empty()) RequireWritable(Args.CsvFile);
}

ProgressForm FormOf(const Arguments& Args) {
  if (Args.Quiet) return ProgressForm::None;
  if (Args.JsonProgress) return ProgressForm::Json;
  return StandardErrorIsTerminal() ? ProgressForm::Terminal : ProgressForm::Lines;
}

Progress StartOf(const Job& AJob) {
  Progress start;
  start.Phase = "start";
  for (const Part& part : AJob.Parts) start.Unplaced += part.Amount.value_or(0);
  return start;
}

// The fault of the library with the file that shows it again.
CheckError WithReproduction(std::vector<Fault> Faults, const Job& AJob) {
  std::string where = "the job stands in ";
  try {
    WriteFile(kReproductionFile, Ended(JobToJson(AJob)));
    where += kReproductionFile;
  } catch (const std::exception& error) {
    where = std::string("its reproduction file could not be written, ") + error.what();
  }
  for (Fault& fault : Faults) fault.Text += "; " + where;
  return CheckError(std::move(Faults));
}

Result Answer(const Job& AJob, const Arguments& Args, const Runner& Run) {
  ProgressView view(FormOf(Args), StartOf(AJob));
  RunHooks hooks;
  hooks.Stop = &SignalStop();
  hooks.OnProgress = [&view](const Progress& progress) {
    view.Show(progress);
    return true;
  };
  try {
    return Run(AJob, hooks);
  } catch (const CheckError& error) {
    throw WithReproduction(error.Faults(), AJob);
  } catch (const JobError&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    throw WithReproduction({{"internal", "", "internal fault", error.what()}}, AJob);
  }
}

std::string ThreeDigits(int Number) {
  const std::string number = std::to_string(Number);
  return std::string(number.size() < 3 ? 3 - number.size() : 0, '0') + number;
}

bool IsOfOnePart(const Result& AResult) {
  return AResult.Array || AResult.Label || AResult.Sucker;
}

int PictureCount(const Result& AResult) {
  if (IsOfOnePart(AResult)) return 1;
  return AResult.Kind == JobKind::Nfp ? Size(AResult.Pairs) : Size(AResult.Layouts);
}

std::string PictureName(const Result& AResult, int Index) {
  const std::string number = ThreeDigits(Index + 1);
  if (AResult.Kind == JobKind::Nfp || IsOfOnePart(AResult))
    return std::string(KindName(AResult.Kind)) + "-" + number + ".svg";
  return "layout-" + number + "-x" + std::to_string(AResult.Layouts[Index].Copies) + ".svg";
}

std::string Picture(const Job& AJob, const Result& AResult, int Index) {
  if (IsOfOnePart(AResult)) return PartToSvg(AJob, AResult);
  return AResult.Kind == JobKind::Nfp ? PairToSvg(AJob, AResult, Index) : LayoutToSvg(AResult, Index);
}

// The result comes first: nothing that fails later may lose it.
void WriteOutputs(const Job& AJob, const Result& AResult, const Arguments& Args) {
  WriteOutput(Args.Output, Ended(ResultToJson(AResult)));
  if (!Args.CsvFile.empty()) WriteOutput(Args.CsvFile, ResultToCsv(AResult));
  if (Args.SvgFolder.empty()) return;
  const std::filesystem::path folder = Args.SvgFolder;
  for (int i = 0; i < PictureCount(AResult); ++i)
    WriteFile((folder / PictureName(AResult, i)).string(), Picture(AJob, AResult, i));
}

std::string WrittenText(const Result& AResult, const Arguments& Args) {
  std::string text;
  if (Args.Output != "-") text += Args.Output;
  if (!Args.CsvFile.empty()) text += (text.empty() ? "" : ", ") + Args.CsvFile;
  const int pictures = Args.SvgFolder.empty() ? 0 : PictureCount(AResult);
  if (pictures > 0) {
    const std::string first = PictureName(AResult, 0);
    text += (text.empty() ? "" : ", ") + (std::filesystem::path(Args.SvgFolder) / first).string();
    if (pictures > 1) text += " and " + std::to_string(pictures - 1) + " more";
  }
  return text.empty() ? text : "  written    " + Printable(text) + "\n";
}

// Copies without a place, or pairs without an answer.
bool LeavesDemand(const Result& AResult) {
  return UnplacedCopies(AResult) > 0 || (AResult.Kind == JobKind::Nfp && AResult.Status != ResultStatus::Complete);
}

// The exit code of an answer that has passed the check.
int ExitOf(const Result& AResult, const Arguments& Args) {
  const bool isLacking = LacksPlace(AResult) || (Args.RequireAll && LeavesDemand(AResult));
  return isLacking ? kExitFaults : kExitDone;
}

int RunJob(const Arguments& Args, JobKind Kind, Messages& Out, const Runner& Run) {
  const Job job = LoadJob(Args, Kind, Out);
  RequireKind(job, Kind);
  CheckJob(job);
  PrepareOutputs(Args);
  const Result result = Answer(job, Args, Run);
  WriteOutputs(job, result, Args);
  Out.Note(SummaryText(result) + WrittenText(result, Args));
  return ExitOf(result, Args);
}

int RunCheck(const Arguments& Args, Messages& Out) {
  const std::string& jobPath = Args.Positionals[0];
  const std::string& resultPath = Args.Positionals[1];
  if (jobPath == "-" && resultPath == "-") throw WrongWord("check can take one of JOB and RESULT as -, not both");
  Job job = ReadJob(jobPath, Out);
  ApplyOptions(Args, job, Out);
  CheckJob(job);
  const Result result = ParseResult(ReadSource(resultPath, limits::kResultBytes, Out));
  const std::vector<Fault> faults = CheckResult(job, result);
  for (const Fault& fault : faults) Out.Error(fault);
  if (!faults.empty()) return kExitFaults;
  Out.Note("OK: " + Printable(Out.Source()) + " is valid for " +
           Printable(jobPath == "-" ? "standard input" : jobPath) + "\n");
  return Args.RequireAll && LeavesDemand(result) ? kExitFaults : kExitDone;
}

enum class FileForm : std::uint8_t { Json, Csv, Text };

FileForm FormOfFile(const std::string& Path, const char* Name) {
  std::string extension = std::filesystem::path(Path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return std::tolower(c); });
  if (extension == ".json") return FileForm::Json;
  if (extension == ".csv") return FileForm::Csv;
  if (extension == ".txt") return FileForm::Text;
  throw WrongWord(std::string(Name) + " must end in .json, .csv or .txt, found \"" + Path + "\"");
}

std::vector<Plate> PlatesOfTable(const Arguments& Args, Messages& Out) {
  if (!Args.PlatesFile.empty()) {
    return PlatesFromCsv(ReadSource(Args.PlatesFile, limits::kJobBytes, Out), Args.PlatesFile);
  }
  if (!Args.Job.PlateSize) throw WrongWord("a table of parts holds no plate: give --plate WxH or --plates FILE");
  Plate plate;
  plate.Id = "plate-1";
  plate.Width = Args.Job.PlateSize->Width;
  plate.Height = Args.Job.PlateSize->Height;
  return {plate};
}

Job ReadAnyForm(const Arguments& Args, Messages& Out) {
  const std::string& path = Args.Positionals[0];
  const FileForm form = FormOfFile(path, "INPUT");
  if (form != FileForm::Csv && !Args.PlatesFile.empty()) throw WrongWord("--plates goes with a table of parts only");
  if (form == FileForm::Json) return ReadJob(path, Out);
  if (form == FileForm::Text) return JobFromRectText(ReadSource(path, limits::kJobBytes, Out), path);
  const std::vector<Plate> plates = PlatesOfTable(Args, Out);
  return JobFromCsv(ReadSource(path, limits::kJobBytes, Out), path, plates);
}

Converted ToForm(const Job& AJob, FileForm Form) {
  if (Form == FileForm::Text) return JobToRectText(AJob);
  if (Form == FileForm::Json) return {JobToJson(AJob), {}};
  return {PartsToCsv(AJob.Parts), {"a table holds the parts only: plates, gap, margin and options are left out"}};
}

int RunConvert(const Arguments& Args, Messages& Out) {
  const FileForm to = FormOfFile(Args.Positionals[1], "OUTPUT");
  Job job = ReadAnyForm(Args, Out);
  Out.SetReading(false);
  Args.Job.ApplyTo(job);
  CheckJob(job);
  const Converted converted = ToForm(job, to);
  WriteFile(Args.Positionals[1], Ended(converted.Text));
  for (const std::string& warning : converted.Warnings) Out.Note("platenest: warning: " + Printable(warning) + "\n");
  return kExitDone;
}

int RunSchema(const Arguments& Args) {
  const std::string& form = Args.Positionals.front();
  if (form != "job" && form != "result") throw WrongWord("schema takes job or result, found \"" + form + "\"");
  WriteOutput(Args.Output, Ended(std::string(form == "job" ? JobSchema() : ResultSchema())));
  return kExitDone;
}

}  // namespace

int RunCommand(const Arguments& Args, Messages& Out, const Runner& Run) {
  switch (Args.Id) {
    case Command::One:
      return RunJob(Args, JobKind::One, Out, Run);
    case Command::Fill:
      return RunJob(Args, JobKind::Fill, Out, Run);
    case Command::Job:
      return RunJob(Args, JobKind::Job, Out, Run);
    case Command::Circles:
      return RunJob(Args, JobKind::Circles, Out, Run);
    case Command::Nfp:
      return RunJob(Args, JobKind::Nfp, Out, Run);
    case Command::Array:
      return RunJob(Args, JobKind::Array, Out, Run);
    case Command::Label:
      return RunJob(Args, JobKind::Label, Out, Run);
    case Command::Sucker:
      return RunJob(Args, JobKind::Sucker, Out, Run);
    case Command::Check:
      return RunCheck(Args, Out);
    case Command::Convert:
      return RunConvert(Args, Out);
    case Command::Schema:
      return RunSchema(Args);
  }
  return kExitInternal;
}

}  // namespace platenest
