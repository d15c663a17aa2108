#pragma once

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

// The program as a user meets it: a process with three streams, a folder and an environment.
namespace platenest {

struct Outcome {
  int Exit = -1;  // -1: ended by a signal
  std::string Out;
  std::string Err;
};

struct Start {
  std::string Line = {};  // words with blanks between them
  std::string Folder = ".";
  bool TerminalErr = false;            // standard error is a terminal
  std::function<void()> Prepare = {};  // in the child, before anything else
  std::function<int()> Body = {};      // in place of the built program
};

inline void Require(bool Condition, const char* Text) {
  if (!Condition) throw std::runtime_error(Text);
}

inline std::vector<std::string> Split(const std::string& Line) {
  std::istringstream stream(Line);
  return {std::istream_iterator<std::string>(stream), {}};
}

// A program that takes over 60 s is killed, which ends every wait for it. Its messages must fit into a pipe.
class Process {
 public:
  explicit Process(const Start& AStart) {
    std::array<int, 2> in{}, out{}, err{};
    Require(::pipe2(in.data(), O_CLOEXEC) == 0 && ::pipe2(out.data(), O_CLOEXEC) == 0, "pipes");
    Require((AStart.TerminalErr ? ::openpty(&err[0], &err[1], nullptr, nullptr, nullptr)
                                : ::pipe2(err.data(), O_CLOEXEC)) == 0,
            "standard error");
    FPid = ::fork();
    Require(FPid >= 0, "fork");
    if (FPid == 0) {
      ::dup2(in[0], STDIN_FILENO);
      ::dup2(out[1], STDOUT_FILENO);
      ::dup2(err[1], STDERR_FILENO);
      BecomeProgram(AStart);
    }
    for (const int fd : {in[0], out[1], err[1]}) ::close(fd);
    FIn = in[1];
    FOut = out[0];
    FErr = err[0];
    ::signal(SIGPIPE, SIG_IGN);
  }

  // To standard input; returns when the program has taken all but what fits into the pipe, false if it wants no more.
  bool Feed(std::string_view Text) { return ::write(FIn, Text.data(), Text.size()) == std::ssize(Text); }

  // Until something waits, unread, on standard output.
  void AwaitOutput() const {
    pollfd item = {FOut, POLLIN, 0};
    ::poll(&item, 1, -1);
  }

  void AwaitError(const std::string& Text) { Read(FErr, FOutcome.Err, Text); }
  void Signal(int Number) const { Require(::kill(FPid, Number) == 0, "kill"); }

  // Reads both streams to their ends. Must be called.
  Outcome Finish() {
    ::close(FIn);
    Read(FOut, FOutcome.Out);
    Read(FErr, FOutcome.Err);
    ::close(FOut);
    ::close(FErr);
    int status = 0;
    ::waitpid(FPid, &status, 0);
    FOutcome.Exit = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return FOutcome;
  }

 private:
  [[noreturn]] static void BecomeProgram(const Start& AStart) {
    ::alarm(60);
    ::signal(SIGPIPE, SIG_DFL);
    ::setenv("TERM", "xterm", 1);
    if (::chdir(AStart.Folder.c_str()) != 0) ::_exit(120);
    if (AStart.Prepare) AStart.Prepare();
    if (AStart.Body) ::_exit(AStart.Body());
    std::vector<std::string> words = Split(AStart.Line);
    words.insert(words.begin(), PLATENEST_PROGRAM);
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    ::execv(argv[0], argv.data());
    ::_exit(121);
  }

  // Appends what comes, up to the end or to where the text holds what is wanted.
  static void Read(int Fd, std::string& Text, const std::string& Wanted = {}) {
    char buffer[1 << 16];
    while (Wanted.empty() || Text.find(Wanted) == std::string::npos) {
      const ssize_t count = ::read(Fd, buffer, sizeof buffer);
      if (count <= 0) return;
      Text.append(buffer, static_cast<std::size_t>(count));
    }
  }

  pid_t FPid = -1;
  int FIn = -1;
  int FOut = -1;
  int FErr = -1;
  Outcome FOutcome;
};

inline Outcome Execute(const Start& AStart, const std::string& Input = {}) {
  Process process(AStart);
  process.Feed(Input);
  return process.Finish();
}

inline Outcome RunLine(const std::string& Line) {
  return Execute({.Line = Line});
}

// A folder that lives as long as the object.
class TempFolder {
 public:
  TempFolder() {
    std::string name = std::filesystem::temp_directory_path() / "platenest-test-XXXXXX";
    Require(::mkdtemp(name.data()) != nullptr, "mkdtemp");
    FPath = name;
  }
  ~TempFolder() { std::filesystem::remove_all(FPath); }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  std::string Path() const { return FPath; }
  std::string operator/(const std::string& Name) const { return FPath / Name; }
  void Write(const std::string& Name, const std::string& Text) const {
    std::ofstream(FPath / Name, std::ios::binary) << Text;
  }
  std::string Read(const std::string& Name) const {
    return (std::ostringstream() << std::ifstream(FPath / Name, std::ios::binary).rdbuf()).str();
  }

  // The names of its files, hidden ones too.
  std::set<std::string> List() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(FPath)) names.insert(entry.path().filename());
    return names;
  }
  Outcome Run(const std::string& Line, const std::string& Input = {}) const {
    return Execute({.Line = Line, .Folder = FPath}, Input);
  }

 private:
  std::filesystem::path FPath;
};

struct Case {
  int Exit;
  std::string Line;
  std::string Message;  // on standard error; of a refusal its beginning
};

// A refusal is one line and no result.
inline void ExpectCases(const TempFolder& Folder, const std::vector<Case>& Cases) {
  for (const auto& [exit, line, message] : Cases) {
    const Outcome outcome = Folder.Run(line);
    EXPECT_EQ(outcome.Exit, exit) << line << outcome.Err;
    if (exit < 2) {
      EXPECT_THAT(outcome.Err, testing::HasSubstr(message)) << line;
      continue;
    }
    EXPECT_EQ(outcome.Out, "") << line;
    EXPECT_THAT(outcome.Err, testing::StartsWith("platenest: error: " + message)) << line;
    EXPECT_EQ(outcome.Err.find('\n'), outcome.Err.size() - 1) << line;
  }
}

}  // namespace platenest
