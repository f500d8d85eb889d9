// A worker that breaks in the way that the file beside it says: the program's own path with ".act" behind it
// holds "exit N", "signal N", "hang", "flood" or "say TEXT".

#include <csignal>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <unistd.h>

namespace {

void dieBy(int signal) {
  // A sanitizer's handler would turn the signal into an exit status.
  static_cast<void>(std::signal(signal, SIG_DFL));
  static_cast<void>(std::raise(signal));
}

void flood() {
  const std::string block(1 << 20, ' ');
  while (std::cout << block) {
  }
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 1) return 1;
  std::ifstream file(std::string(*arguments) + ".act");
  std::string act;
  file >> act;
  file.get();
  const std::string text{std::istreambuf_iterator<char>(file), {}};

  if (act == "signal") dieBy(std::stoi(text));
  if (act == "hang") pause();
  if (act == "flood") flood();
  if (act == "say") {
    std::cout << text << std::flush;
    return 0;
  }
  std::cerr << "fake worker: " << act << "\nsecond line\n";
  return act == "exit" ? std::stoi(text) : 1;
}
