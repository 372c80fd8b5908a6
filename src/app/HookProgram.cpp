#include "app/HookProgram.h"

#include <QTimer>

namespace tarnwick {
namespace {

/// A home folder on a network that is gone.
constexpr int longestRun = 10'000;

}  // namespace

void HookProgram::setInstalled(bool installed, std::function<void(const std::string&)> then) {
  process_ = std::make_unique<QProcess>();
  QProcess* process = process_.get();
  process->setStandardInputFile(QProcess::nullDevice());
  process->setStandardOutputFile(QProcess::nullDevice());
  const auto end = [process, then = std::move(then)] {
    process->disconnect();
    const bool succeeded = process->error() == QProcess::UnknownError && process->exitCode() == 0;
    const QString message = QString::fromUtf8(process->readAllStandardError()).trimmed();
    then(succeeded ? "" : (message.isEmpty() ? process->errorString() : message).toStdString());
  };
  QObject::connect(process, &QProcess::finished, process, end);
  QObject::connect(process, &QProcess::errorOccurred, process, end);
  QTimer::singleShot(longestRun, process, &QProcess::kill);
  process->start(command_, {installed ? "--install-hooks" : "--uninstall-hooks"});
}

}  // namespace tarnwick
