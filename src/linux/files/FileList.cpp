#include "linux/files/FileList.h"

#include <QByteArray>
#include <QString>
#include <QSysInfo>

namespace tarnwick {
namespace {

bool isThisMachine(std::string_view host) {
  return host.empty() || host == "localhost" || host == QSysInfo::machineHostName().toStdString();
}

}  // namespace

std::vector<FilePath> filesOfUriList(std::string_view text) {
  constexpr std::string_view scheme = "file:";
  std::vector<FilePath> files;
  while (!text.empty()) {
    const size_t end = text.find_first_of("\r\n");
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (!line.starts_with(scheme)) continue;
    line.remove_prefix(scheme.size());
    if (line.starts_with("//")) {
      line.remove_prefix(2);
      const size_t slash = line.find('/');
      if (slash == std::string_view::npos || !isThisMachine(line.substr(0, slash))) continue;
      line.remove_prefix(slash);
    }
    FilePath path =
        QByteArray::fromPercentEncoding(QByteArray(line.data(), static_cast<qsizetype>(line.size())))
            .toStdString();
    // Some sources end folders with a slash: it is the same folder with and without.
    while (path.size() > 1 && path.ends_with('/')) path.pop_back();
    if (path.starts_with('/') && path.find('\0') == FilePath::npos) files.push_back(path);
  }
  return files;
}

}  // namespace tarnwick
