#include "services/MediaService.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>

#include "base/Animation.h"
#include "services/AccentColor.h"
#include "services/SampleArtwork.h"

namespace tarnwick {
namespace {

constexpr double restartSeconds = 3;
/// A bridge that writes without end is heard once a frame.
constexpr double paceSeconds = 1.0 / 60;

constexpr const char* interpreter = "/usr/bin/perl";
constexpr const char* script =
    "use DynaLoader;\n"
    "my $l = DynaLoader::dl_load_file($ARGV[0], 0) or die DynaLoader::dl_error();\n"
    "my $s = DynaLoader::dl_find_symbol($l, \"tarnwick_stream\") or die \"symbol\";\n"
    "DynaLoader::dl_install_xsub(\"main::tarnwick_stream\", $s);\n"
    "tarnwick_stream();";

struct SampleTrack {
  const char* title;
  const char* artist;
  std::array<Color, 3> colors;
};

const std::array sampleTracks{
    SampleTrack{"Golden Hour Drive", "Nova Lane", {colors::pink, colors::orange, colors::purple}},
    SampleTrack{"Midnight Ferris Wheel", "The Lanterns", {colors::teal, colors::blue, colors::indigo}},
};

/// The shortest decimal that reads back to the same number, with at least one digit after its point.
std::string decimal(double value) {
  std::array<char, 400> digits;
  const auto end =
      std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed);
  std::string text(digits.data(), end.ptr);
  return text.find('.') == std::string::npos ? text + ".0" : text;
}

}  // namespace

MediaService::MediaService(const Ports& ports) : timestamp{*this, ports.scheduler.now()}, ports_(ports) {}

double MediaService::currentElapsed(Date at) const {
  const double played = (at - timestamp) - (clockLead() - leadAtTimestamp_);
  const double position = std::max(playing ? elapsed + played * rate : elapsed.get(), 0.0);
  return duration > 0 ? std::min(position, duration.get()) : position;
}

void MediaService::setPosition(double seconds, Date at) {
  elapsed = seconds;
  timestamp = at;
  leadAtTimestamp_ = clockLead();
}

void MediaService::start(const AppSettings& settings) {
  settings_ = &settings;
  settingsSubscription_ = settings.observe([this] {
    if (networkAllowed_ != settings_->showNowPlaying) allowNetwork();
  });
  startBridge();
}

/// Nobody else is to learn what plays when it is not shown.
void MediaService::allowNetwork() {
  networkAllowed_ = settings_->showNowPlaying;
  send(networkAllowed_ ? "network on" : "network off");
}

void MediaService::startBridge() {
  if (process_) return;
  const std::string library = ports_.folders.modules() + "/MediaBridge.so";
  std::error_code error;
  if (!std::filesystem::exists(library, error)) return;
  reader_ = std::make_shared<MediaReader>(ports_.images, ports_.applications);
  ChildProcesses::Events events;
  events.onReadable = [this] { readOutput(); };
  events.onExit = [this] { bridgeEnded(); };
  events.onFailure = [this](const std::string& reason) {
    ports_.log.write("Tarnwick: media bridge failed: " + reason);
    restart_ = ports_.scheduler.post([this] { process_.reset(); });
  };
  process_ = ports_.processes.launch(interpreter, {"-e", script, library}, std::move(events));
  process_->awaitOutput();
  allowNetwork();
}

void MediaService::readOutput() {
  auto bytes = std::make_shared<const std::string>(process_->read());
  if (bytes->empty()) return;
  auto update = std::make_shared<std::optional<MediaUpdate>>();
  reading_ = ports_.scheduler.background(
      [reader = reader_, bytes, update] { *update = reader->read(*bytes); },
      [this, update] {
        if (!*update) return process_->awaitOutput();
        take(std::move(**update));
        pace_ = ports_.scheduler.after(paceSeconds, [this] { process_->awaitOutput(); });
      });
}

void MediaService::bridgeEnded() {
  restart_ = ports_.scheduler.after(restartSeconds, [this] {
    reading_.cancel();
    pace_.cancel();
    process_.reset();
    startBridge();
  });
}

void MediaService::take(MediaUpdate update) {
  // What it lacks is as it was.
  if (!update.artwork) update.artwork = std::move(live_.artwork);
  if (!update.application) update.application = std::move(live_.application);
  live_ = std::move(update);
  liveSince_ = live_.line.timestamp ? Date{*live_.line.timestamp} : ports_.scheduler.now();
  leadWhenLive_ = clockLead();
  if (!frozen) withAnimation(notchOpen, [this] { showLive(); });
}

void MediaService::showLive() {
  const MediaLine& line = live_.line;
  title = line.title;
  artist = line.artist;
  album = line.album;
  duration = line.duration;
  setPosition(line.elapsed, liveSince_);
  leadAtTimestamp_ = leadWhenLive_;
  rate = line.rate;
  playing = line.playing;
  canRaise_ = line.canRaise;
  canSeek = line.canSeek;
  artwork = live_.artwork->image;
  accent = live_.artwork->accent;
  appBundleURL = live_.application->bundle;
  appIcon = live_.application->icon;
}

void MediaService::showcaseEnd() {
  frozen = false;
  withAnimation(notchOpen, [this] { showLive(); });
}

void MediaService::send(const std::string& command) {
  if (process_) process_->write(command + '\n');
}

void MediaService::seek(double seconds) {
  if (!std::isfinite(seconds)) return;
  setPosition(seconds, ports_.scheduler.now());
  send("seek " + decimal(seconds));
}

void MediaService::togglePlayPause() {
  playing = !playing;
  send("cmd 2");
}

void MediaService::openSourceApp() {
  const std::optional<FilePath>& bundle = *appBundleURL;
  if (bundle && ports_.applications.bringForward(*bundle)) return;
  if (canRaise_) {
    send("raise");
  } else if (bundle) {
    ports_.applications.start(*bundle);
  }
}

void MediaService::showcaseTrack(int index) {
  const SampleTrack& track = sampleTracks[static_cast<unsigned>(index) % sampleTracks.size()];
  withAnimation(notchOpen, [&] {
    title = track.title;
    artist = track.artist;
    album = std::string();
    duration = 203;
    setPosition(index == 0 ? 71 : 4, ports_.scheduler.now());
    rate = 1;
    playing = true;
    canRaise_ = false;
    canSeek = true;
    const Image cover = sampleArtwork(300, track.colors, true);
    artwork = cover;
    accent = accentOf(cover);
    appIcon = std::nullopt;
    appBundleURL = std::nullopt;
  });
}

void MediaService::showcasePlaying(bool plays) {
  const Date now = ports_.scheduler.now();
  setPosition(currentElapsed(now), now);
  withAnimation(notchOpen, [&] { playing = plays; });
}

void MediaService::debugFill() {
  title = "Paper Lanterns";
  artist = "The Evening Trams";
  duration = 190;
  setPosition(72, ports_.scheduler.now());
  playing = true;
  const Image cover = sampleArtwork(200, sampleTracks[0].colors, false);
  artwork = cover;
  accent = accentOf(cover);
}

}  // namespace tarnwick
