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
  std::vector<std::string> words = AStart.Words;
  words.insert(words.begin(), PLATENEST_PROGRAM);
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  ::execv(argv[0], argv.data());
  _exit(121);
}

int BytesWaiting(int Fd) {
  int count = 0;
  Require(::ioctl(Fd, FIONREAD, &count) == 0, "FIONREAD");
  return count;
}

bool CatchesSignal(pid_t Pid, int Number) {
  std::ifstream status("/proc/" + std::to_string(Pid) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("SigCgt:")) return (std::stoull(line.substr(7), nullptr, 16) >> (Number - 1) & 1) != 0;
  }
  return false;
}

bool IsBroken(int Fd) {
  pollfd item = {Fd, 0, 0};
  return ::poll(&item, 1, 0) > 0 && (item.revents & POLLERR) != 0;
}

// Polls, since a full pipe tells nobody that it is full.
void AwaitBytes(int Fd, const std::function<bool(int)>& Done) {
  const auto end = steady_clock::now() + kPatience;
  while (!Done(BytesWaiting(Fd))) {
    Require(steady_clock::now() < end, "the program does not go on");
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
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

void Process::Feed(const std::string& Text) {
  std::size_t done = 0;
  while (done < Text.size()) {
    const ssize_t count = ::write(FIn, Text.data() + done, Text.size() - done);
    if (count < 0) return;  // the program wants no more
    done += static_cast<std::size_t>(count);
  }
  AwaitBytes(FIn, [this](int count) { return count == 0 || IsBroken(FIn); });
}

void Process::CloseInput() {
  if (FIn >= 0) ::close(FIn);
  FIn = -1;
}

void Process::AwaitOutput() {
  AwaitBytes(FOut, [](int count) { return count > 0; });
}

void Process::AwaitHandler(int Number) {
  const auto end = steady_clock::now() + kPatience;
  while (!CatchesSignal(FPid, Number)) {
    Require(steady_clock::now() < end, "the program does not go on");
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
}

void Process::AwaitError(const std::string& Text) {
  const auto end = steady_clock::now() + kPatience;
  while (FOutcome.Err.find(Text) == std::string::npos) {
    Require(FErr >= 0 && steady_clock::now() < end, "the awaited message does not come");
    Pump(50);
  }
}

void Process::Signal(int Number) const {
  Require(::kill(FPid, Number) == 0, "kill");
}

void Process::Pump(int Milliseconds) {
  pollfd items[] = {{FOut, POLLIN, 0}, {FErr, POLLIN, 0}};
  if (::poll(items, 2, Milliseconds) <= 0) return;
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
  CloseInput();
  const auto end = steady_clock::now() + kPatience;
  while ((FOut >= 0 || FErr >= 0) && steady_clock::now() < end) Pump(100);
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

Outcome Execute(const std::vector<std::string>& Words, const std::string& Folder) {
  Start start;
  start.Words = Words;
  start.Folder = Folder;
  return Execute(start);
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

}  // namespace platenest
