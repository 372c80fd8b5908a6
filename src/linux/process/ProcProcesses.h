#pragma once
#include "platform/ForeignProcesses.h"

namespace tarnwick {

/// Foreign processes as the kernel tells of them: their end by a descriptor (pidfd_open(2)), their children
/// by proc(5).
class ProcProcesses : public ForeignProcesses {
 public:
  Subscription watch(const ForeignProcess& process, std::function<void()> ended) override;
  std::vector<Child> children(const ForeignProcess& process) override;
  std::vector<int32_t> ancestors(const ForeignProcess& process) override;
  std::string variable(const ForeignProcess& process, const std::string& name) override;
  bool isOwnSocket(const FilePath& path) override;
};

}  // namespace tarnwick
