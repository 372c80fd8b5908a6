#pragma once
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

/// Cuts a stream of bytes into lines. A line that grows beyond all measure is dropped, so that a stream
/// without line feeds cannot fill the memory.
class LineBuffer {
 public:
  /// Room for the largest cover that there can be, in base64, and its texts.
  static constexpr size_t longestLine = size_t{16} << 20;

  /// Takes what has come. @return the lines that it completes, without their line feeds
  std::vector<std::string> append(std::string_view bytes);

  /// What has been received and is not a whole line yet.
  const std::string& data() const { return data_; }

 private:
  void keep(std::string_view bytes);

  std::string data_;
  /// The line that is being received is too long.
  bool dropping_ = false;
};

}  // namespace tarnwick
