#include "Process.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace platenest {

namespace {

using std::chrono::steady_clock;
constexpr auto kPatience = std::chrono::seconds(60);

void Require(bool Condition, const char* Text) {
  if (!Condition) throw std::runtime_error(Text);
}

std::array<int, 2> MakePipe() {
  std::array<int, 2> ends{};
  Require(::pipe2(ends.data(), O_CLOEXEC) == 0, "pipe");
  return ends;
}

[[noreturn]] void BecomeProgram(const Start& AStart) {
  for (const auto& [name, value] : AStart.Environment) ::setenv(name.c_str(), value.c_str(), 1);
  if (::chdir(AStart.Folder.c_str()) != 0) _exit(120);
  if (AStart.Prepare) AStart.Prepare();
  if (AStart.Body) _exit(AStart.Body());
  std::vector<std::string> words = Split(AStart.Line);
  words.insert(words.begin(), PLATENEST_PROGRAM);
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  ::execv(argv[0], argv.data());
  _exit(121);
}

bool HasBytes(int Fd) {
  int count = 0;
  Require(::ioctl(Fd, FIONREAD, &count) == 0, "FIONREAD");
  return count > 0;
}

bool IsBroken(int Fd) {
  pollfd item = {Fd, 0, 0};
  return ::poll(&item, 1, 0) > 0 && (item.revents & POLLERR) != 0;
}

}  // namespace

Process::Process(const Start& AStart) {
  const std::array<int, 2> in = MakePipe();
  const std::array<int, 2> out = MakePipe();
  std::array<int, 2> err{};
  if (AStart.TerminalErr) {
    Require(::openpty(&err[0], &err[1], nullptr, nullptr, nullptr) == 0, "openpty");
    ::fcntl(err[0], F_SETFD, FD_CLOEXEC);
    ::fcntl(err[1], F_SETFD, FD_CLOEXEC);
  } else {
    err = MakePipe();
  }
  if (AStart.PipeBytes > 0) Require(::fcntl(out[1], F_SETPIPE_SZ, AStart.PipeBytes) > 0, "F_SETPIPE_SZ");
  FPid = ::fork();
  Require(FPid >= 0, "fork");
  if (FPid == 0) {
    ::dup2(in[0], STDIN_FILENO);
    ::dup2(out[1], STDOUT_FILENO);
    ::dup2(err[1], STDERR_FILENO);
    for (const int fd : {in[0], in[1], out[0], out[1], err[0], err[1]}) ::close(fd);
    BecomeProgram(AStart);
  }
  for (const int fd : {in[0], out[1], err[1]}) ::close(fd);
  FIn = in[1];
  FOut = out[0];
  FErr = err[0];
  ::signal(SIGPIPE, SIG_IGN);
}

Process::~Process() {
  if (FPid > 0) {
    ::kill(FPid, SIGKILL);
    ::waitpid(FPid, nullptr, 0);
  }
  for (const int fd : {FIn, FOut, FErr}) {
    if (fd >= 0) ::close(fd);
  }
}

// Polls, since a full pipe tells nobody that it is full.
void Process::Await(const std::function<bool()>& Done) {
  for (const auto end = steady_clock::now() + kPatience; !Done();) {
    Require(steady_clock::now() < end, "what is awaited does not come");
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
}

void Process::Feed(const std::string& Text) {
  for (std::size_t done = 0; done < Text.size();) {
    const ssize_t count = ::write(FIn, Text.data() + done, Text.size() - done);
    if (count < 0) return;  // the program wants no more
    done += static_cast<std::size_t>(count);
  }
  Await([this] { return !HasBytes(FIn) || IsBroken(FIn); });
}

void Process::AwaitOutput() {
  Await([this] { return HasBytes(FOut); });
}

void Process::AwaitError(const std::string& Text) {
  Await([&] {
    Pump();
    return FOutcome.Err.find(Text) != std::string::npos;
  });
}

void Process::Signal(int Number) const {
  Require(::kill(FPid, Number) == 0, "kill");
}

void Process::Pump() {
  pollfd items[] = {{FOut, POLLIN, 0}, {FErr, POLLIN, 0}};
  if (::poll(items, 2, 50) <= 0) return;
  for (auto [fd, text, item] : {std::tuple{&FOut, &FOutcome.Out, items[0]}, {&FErr, &FOutcome.Err, items[1]}}) {
    if (item.revents == 0) continue;
    char buffer[1 << 16];
    const ssize_t count = ::read(*fd, buffer, sizeof buffer);
    if (count > 0) {
      text->append(buffer, static_cast<std::size_t>(count));
    } else {
      ::close(*fd);
      *fd = -1;
    }
  }
}

Outcome Process::Finish() {
  ::close(FIn);
  FIn = -1;
  const auto end = steady_clock::now() + kPatience;
  while ((FOut >= 0 || FErr >= 0) && steady_clock::now() < end) Pump();
  if (FOut >= 0 || FErr >= 0) ::kill(FPid, SIGKILL);
  int status = 0;
  ::waitpid(FPid, &status, 0);
  FPid = -1;
  FOutcome.Exit = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return FOutcome;
}

Outcome Execute(const Start& AStart, const std::string& Input) {
  Process process(AStart);
  if (!Input.empty()) process.Feed(Input);
  return process.Finish();
}

Outcome RunLine(const std::string& Line) {
  return Execute({.Line = Line});
}

std::vector<std::string> Split(const std::string& Line) {
  std::istringstream stream(Line);
  return {std::istream_iterator<std::string>(stream), {}};
}

TempFolder::TempFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "platenest-test-XXXXXX").string();
  Require(::mkdtemp(name.data()) != nullptr, "mkdtemp");
  FPath = name;
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(FPath, ignored);
}

void TempFolder::Write(const std::string& Name, const std::string& Text) const {
  std::ofstream(*this / Name, std::ios::binary) << Text;
}

std::string TempFolder::Read(const std::string& Name) const {
  std::ifstream file(*this / Name, std::ios::binary);
  Require(file.good(), "a file is missing");
  return (std::ostringstream() << file.rdbuf()).str();
}

std::vector<std::string> TempFolder::List() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(FPath))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

Outcome TempFolder::Run(const std::string& Line, const std::string& Input) const {
  return Execute({.Line = Line, .Folder = FPath}, Input);
}

}  // namespace platenest
