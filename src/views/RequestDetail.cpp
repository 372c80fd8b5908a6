#include "views/RequestDetail.h"

namespace tarnwick {

using namespace ui;

View requestDetail(const std::string& detail) {
  if (detail.empty()) return {};
  return Text(detail)
      .font({11, Weight::regular, Design::monospaced})
      .foreground(white(0.85))
      .truncated(Truncation::middle)
      .tooltip(detail);
}

}  // namespace tarnwick
