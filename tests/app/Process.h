#pragma once

#include <sys/types.h>

#include <functional>
#include <map>
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
  std::map<std::string, std::string> Environment = {};  // beside the test's own
  bool TerminalErr = false;                             // standard error is a terminal
  int PipeBytes = 0;                                    // room in the pipe of standard output; 0 leaves the system's
  std::function<void()> Prepare = {};                   // in the child, before anything else
  std::function<int()> Body = {};                       // in place of the built program
};

class Process {
 public:
  explicit Process(const Start& AStart);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  void Feed(const std::string& Text);  // to standard input; returns when the program has taken all of it
  void AwaitOutput();                  // until something waits, unread, on standard output
  void AwaitError(const std::string& Text);
  void Signal(int Number) const;
  Outcome Finish();  // reads both streams to their ends; a program that takes over 60 s is killed

 private:
  void Await(const std::function<bool()>& Done);
  void Pump();

  pid_t FPid = -1;
  int FIn = -1;
  int FOut = -1;
  int FErr = -1;
  Outcome FOutcome;
};

Outcome Execute(const Start& AStart, const std::string& Input = {});
Outcome RunLine(const std::string& Line);
std::vector<std::string> Split(const std::string& Line);

// A folder that lives as long as the object.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  const std::string& Path() const { return FPath; }
  std::string operator/(const std::string& Name) const { return FPath + "/" + Name; }
  void Write(const std::string& Name, const std::string& Text) const;
  std::string Read(const std::string& Name) const;
  std::vector<std::string> List() const;  // sorted names, hidden ones too
  Outcome Run(const std::string& Line, const std::string& Input = {}) const;

 private:
  std::string FPath;
};

}  // namespace platenest
