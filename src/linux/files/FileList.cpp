#include "linux/files/FileList.h"

#include <strings.h>

#include <QByteArray>
#include <QString>
#include <QSysInfo>

namespace tarnwick {
namespace {

bool isThisMachine(std::string_view host) {
  const QString name = QString::fromUtf8(host.data(), static_cast<qsizetype>(host.size()));
  const auto is = [&](const QString& other) { return name.compare(other, Qt::CaseInsensitive) == 0; };
  return host.empty() || is("localhost") || is(QSysInfo::machineHostName());
}

}  // namespace

std::optional<FilePath> fileOfUri(std::string_view uri) {
  constexpr std::string_view scheme = "file:";
  if (uri.size() < scheme.size() || ::strncasecmp(uri.data(), scheme.data(), scheme.size()) != 0)
    return std::nullopt;
  uri.remove_prefix(scheme.size());
  if (uri.starts_with("//")) {
    uri.remove_prefix(2);
    const size_t slash = uri.find('/');
    if (slash == std::string_view::npos || !isThisMachine(uri.substr(0, slash))) return std::nullopt;
    uri.remove_prefix(slash);
  }
  FilePath path = QByteArray::fromPercentEncoding(QByteArray(uri.data(), static_cast<qsizetype>(uri.size())))
                      .toStdString();
  // Some sources end folders with a slash: it is the same folder with and without.
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  if (!path.starts_with('/') || path.find('\0') != FilePath::npos) return std::nullopt;
  return path;
}

std::string uriOfFile(const FilePath& file) {
  // What RFC 3986 lets stand in a path, but for the semicolon.
  constexpr const char* plain = "!$&'()*+,-./:=@_~";
  return "file://" + QByteArray::fromStdString(file).toPercentEncoding(plain).toStdString();
}

std::vector<FilePath> filesOfUriList(std::string_view text) {
  std::vector<FilePath> files;
  while (!text.empty()) {
    const size_t end = text.find_first_of("\r\n");
    if (auto file = fileOfUri(text.substr(0, end))) files.push_back(std::move(*file));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return files;
}

}  // namespace tarnwick
