// run-all WIDTH FOLDER PROGRAM ARGUMENTS…: runs the program once for each file 0, 1, 2 … of the folder as
// standard input, WIDTH at a time and in this order, and prints how many runs there were, how many failed,
// and how many milliseconds all took.
#include <atomic>
#include <thread>

#include "Process.h"

int main(int count, char** arguments) {
  const int width = std::atoi(arguments[1]);
  const std::string folder = arguments[2];
  const std::vector<std::string> command(arguments + 3, arguments + count);
  int total = 0;
  while (access((folder + "/" + std::to_string(total)).c_str(), R_OK) == 0) ++total;

  std::atomic<int> next = 0, failures = 0;
  const auto began = bench::Clock::now();
  std::vector<std::jthread> workers;
  for (int worker = 0; worker < width; ++worker) {
    workers.emplace_back([&] {
      for (int number = next++; number < total; number = next++) {
        if (!bench::succeeded(bench::start(command, folder + "/" + std::to_string(number)))) ++failures;
      }
    });
  }
  workers.clear();
  std::printf("%d %d %.1f\n", total, failures.load(), bench::millisecondsSince(began));
}
