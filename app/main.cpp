#include "Program.h"

int main(int argc, char** argv) {
  return platenest::RunProgram(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}
