#include "linux/process/QtChildProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <utility>

namespace tarnwick {
namespace {

constexpr size_t readAtOnce = 64 << 10;

/// What names the user's session, and no more: interpreters take code from their environments.
QProcessEnvironment childEnvironment() {
  const QProcessEnvironment own = QProcessEnvironment::systemEnvironment();
  QProcessEnvironment environment;
  for (const char* name : {"HOME", "XDG_RUNTIME_DIR", "DBUS_SESSION_BUS_ADDRESS"}) {
    if (own.contains(name)) environment.insert(name, own.value(name));
  }
  return environment;
}

void closeFile(int& file) {
  if (file >= 0) ::close(file);
  file = -1;
}

}  // namespace

QtChildProcess::QtChildProcess(
    const std::string& executable, const std::vector<std::string>& arguments, ChildProcesses::Events events)
    : events_(std::move(events)) {
  QStringList list;
  for (const std::string& argument : arguments) list << QString::fromStdString(argument);
  process_.setProgram(QString::fromStdString(executable));
  process_.setArguments(list);
  process_.setProcessEnvironment(childEnvironment());
  process_.setInputChannelMode(QProcess::ForwardedInputChannel);
  process_.setProcessChannelMode(QProcess::ForwardedOutputChannel);
  process_.setStandardErrorFile(QProcess::nullDevice());
  const auto later = Qt::QueuedConnection;
  QObject::connect(
      &process_, &QProcess::finished, &process_, [this] { events_.onExit(); }, later);
  QObject::connect(
      &process_, &QProcess::errorOccurred, &process_,
      [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) events_.onFailure(process_.errorString().toStdString());
      },
      later);
  openPipes();
}

QtChildProcess::~QtChildProcess() {
  notifier_.reset();
  process_.disconnect();
  process_.kill();
  process_.waitForFinished();  // it has no choice
  for (int* file : {&output_, &input_, &childOutput_, &childInput_}) closeFile(*file);
}

void QtChildProcess::openPipes() {
  int out[2], in[2];
  if (::pipe2(out, O_CLOEXEC) == 0) {
    output_ = out[0];
    childOutput_ = out[1];
    ::fcntl(output_, F_SETFL, O_NONBLOCK);
  }
  if (::pipe2(in, O_CLOEXEC) == 0) {
    childInput_ = in[0];
    input_ = in[1];
    ::fcntl(input_, F_SETFL, O_NONBLOCK);
  }
}

void QtChildProcess::start() {
  if (output_ < 0 || input_ < 0) {
    const std::string reason = "no pipes are to be had";
    QMetaObject::invokeMethod(
        &process_, [this, reason] { events_.onFailure(reason); }, Qt::QueuedConnection);
    return;
  }
  process_.setChildProcessModifier([input = childInput_, output = childOutput_, parent = ::getpid()] {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) ::_exit(EXIT_FAILURE);  // it was too late for that
    ::dup2(input, STDIN_FILENO);
    ::dup2(output, STDOUT_FILENO);
  });
  process_.start();
  closeFile(childInput_);
  closeFile(childOutput_);
  notifier_ = std::make_unique<QSocketNotifier>(output_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, &process_, [this] {
    notifier_->setEnabled(false);
    events_.onReadable();
  });
  notifier_->setEnabled(awaitsOutput_);
}

void QtChildProcess::awaitOutput() {
  awaitsOutput_ = true;
  if (notifier_) notifier_->setEnabled(true);
}

std::string QtChildProcess::read() {
  std::string bytes(readAtOnce, '\0');
  ssize_t count = 0;
  do count = ::read(output_, bytes.data(), bytes.size());
  while (count < 0 && errno == EINTR);
  bytes.resize(count > 0 ? static_cast<size_t>(count) : 0);
  return bytes;
}

void QtChildProcess::write(const std::string& bytes) {
  // A command that does not fit is lost whole: up to this length a pipe takes all or nothing.
  if (bytes.size() > PIPE_BUF || input_ < 0) return;
  while (::write(input_, bytes.data(), bytes.size()) < 0 && errno == EINTR) continue;
}

}  // namespace tarnwick
