// spawn-times RUNS INPUT COMMAND… [-- COMMAND…]…: runs the commands in turns, each with the file INPUT as
// standard input, and prints a line for each: the milliseconds from its start to its end in every run.
#include "Process.h"

int main(int count, char** arguments) {
  const int runs = std::atoi(arguments[1]);
  const std::string input = arguments[2];
  std::vector<std::vector<std::string>> commands(1);
  for (int index = 3; index < count; ++index) {
    if (std::string(arguments[index]) == "--") {
      commands.emplace_back();
    } else {
      commands.back().emplace_back(arguments[index]);
    }
  }
  std::vector<std::vector<double>> times(commands.size());
  for (int run = -runs / 10; run < runs; ++run) {  // the first ones warm up
    for (size_t index = 0; index < commands.size(); ++index) {
      const auto began = bench::Clock::now();
      const bool good = bench::succeeded(bench::start(commands[index], input));
      const double time = bench::millisecondsSince(began);
      if (!good) bench::fail(commands[index][0].c_str(), ECANCELED);
      if (run >= 0) times[index].push_back(time);
    }
  }
  for (const auto& line : times) {
    for (const double time : line) std::printf("%.4f ", time);
    std::printf("\n");
  }
}
