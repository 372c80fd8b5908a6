#include "base/AddressSpace.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

namespace tarnwick {

TEST(AddressSpace, IsLimitedBeyondWhatThereIs) {
  const auto isThere = [](size_t bytes) {
    return ::mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) != MAP_FAILED;
  };
  constexpr size_t mebibyte = 1 << 20;
  EXPECT_EXIT(
      {
        limitAddressSpace(64 * mebibyte);
        const bool small = isThere(16 * mebibyte);
        const bool large = isThere(64 * mebibyte);
        unlimitAddressSpace();
        std::_Exit(small + 2 * large + 4 * isThere(64 * mebibyte));
      },
      testing::ExitedWithCode(1 + 4), "");
}

}  // namespace tarnwick
