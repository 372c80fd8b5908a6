#pragma once
#include <cstdio>

#include "platform/SystemLog.h"

namespace tarnwick {

/// What a program of the session says on standard error goes into the session's log.
class StandardErrorLog : public SystemLog {
 public:
  void write(const std::string& line) override { std::fprintf(stderr, "%s\n", line.c_str()); }
};

}  // namespace tarnwick
