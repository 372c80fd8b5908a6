#include "base/ProcessStatus.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace tarnwick {
namespace {

TEST(ProcessStatus, IsReadWhateverTheProgramIsCalled) {
  const std::pair<const char*, std::optional<ProcessStatus>> cases[] = {
      {"12 (bash) S 7 12 12", ProcessStatus{"bash", 7}},
      {"12 (a) S 1 (b) R 34 5", ProcessStatus{"a) S 1 (b", 34}},
      {"12 (init) S 0 1 1", ProcessStatus{"init", 0}},
      {"12 () S 7", ProcessStatus{"", 7}},
      {"12 (bash) S", std::nullopt},
      {"12 (bash) S x", std::nullopt},
      {"12 )bash( S 7 8", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& [line, status] : cases) EXPECT_EQ(ProcessStatus::parse(line), status) << line;
  EXPECT_EQ(ProcessStatus::of(::getpid())->parent, ::getppid());
  EXPECT_EQ(ProcessStatus::of(-1), std::nullopt);
}

}  // namespace
}  // namespace tarnwick
