#pragma once
#include <signal.h>

#include "platform/TestDesktop.h"

namespace tarnwick {

/// A daemon without hardware that can be ended and started again; the environment leads programs to it.
class AudioDaemon {
 public:
  AudioDaemon() {
    qputenv("PULSE_SERVER", ("unix:" + socket_).toUtf8());
    start();
  }
  ~AudioDaemon() { qunsetenv("PULSE_SERVER"); }

  void start() {
    process_ = std::make_unique<Child>(
        // There is one daemon a session bus, so each gets none.
        "env",
        QStringList{"DBUS_SESSION_BUS_ADDRESS=unix:", "pulseaudio", "-n", "--daemonize=no",
            "--exit-idle-time=-1", "--use-pid-file=no", "--log-target=null", "-L",
            "module-null-sink sink_name=speakers sink_properties=device.description=Speakers", "-L",
            "module-null-sink sink_name=screen channels=2 "
            "sink_properties='device.description=Screen device.bus=pci device.profile.name=hdmi-stereo'",
            "-L", "module-null-source source_name=microphone description=Microphone", "-L",
            "module-native-protocol-unix auth-anonymous=1 socket=" + socket_});
    waitUntil([this] { return control({"info"}); });
  }
  void end() { process_.reset(); }
  void stop() { ::kill(static_cast<pid_t>(process_->id()), SIGSTOP); }
  void resume() { ::kill(static_cast<pid_t>(process_->id()), SIGCONT); }

  /// Runs a command of another program.
  bool control(const QStringList& arguments) {
    QProcess process;
    process.start("pactl", arguments);
    process.waitForFinished();
    told_ = process.readAllStandardOutput().toStdString();
    return process.exitCode() == 0;
  }
  /// What another program reads.
  std::string ask(const QStringList& arguments) {
    control(arguments);
    return told_;
  }

 private:
  TemporaryFolder folder_;
  const QString socket_ = QString::fromStdString(folder_.path() + "/pulse");
  std::unique_ptr<Child> process_;
  std::string told_;
};

}  // namespace tarnwick
