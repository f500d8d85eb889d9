// A worker that breaks in the way that the file beside it says: the program's own path with ".act" behind it
// holds "exit N", "signal N", "hang", "flood" or "say TEXT".

#include <csignal>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <unistd.h>

int main(int count, char** arguments) {
  if (count < 1) return 1;
  std::ifstream file(std::string(*arguments) + ".act");
  std::string act;
  file >> act;
  file.get();
  const std::string text{std::istreambuf_iterator<char>(file), {}};

  if (act == "signal") {
    // A sanitizer's handler would turn the signal into an exit status.
    static_cast<void>(std::signal(std::stoi(text), SIG_DFL));
    static_cast<void>(std::raise(std::stoi(text)));
  }
  if (act == "hang") pause();
  while (act == "flood" && std::cout << std::string(1 << 20, ' ')) {
  }
  if (act == "say") return std::cout << text << std::flush ? 0 : 1;
  std::cerr << "fake worker: " << act << "\nsecond line\n";
  return act == "exit" ? std::stoi(text) : 1;
}
