#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

/// Gives every file of the folders that are its arguments to the fuzz target.
int main(int count, char** arguments) {
  size_t files = 0;
  for (int index = 1; index < count; ++index) {
    for (const auto& entry : std::filesystem::directory_iterator(arguments[index])) {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string bytes{std::istreambuf_iterator<char>(file), {}};
      LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
      ++files;
    }
  }
  std::printf("%zu seeds\n", files);
  return files == 0;
}
