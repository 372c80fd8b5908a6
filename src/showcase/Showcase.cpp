#include "showcase/Showcase.h"

#include <QBuffer>
#include <QImage>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <functional>
#include <map>
#include <string_view>

#include "base/AtomicFile.h"
#include "base/Characters.h"
#include "base/DisplayText.h"
#include "base/L10n.h"
#include "base/LastPathComponent.h"
#include "services/SampleArtwork.h"

namespace tarnwick {
namespace {

constexpr double typingInterval = 0.045;
// More than anybody wants to see.
constexpr size_t mostFiles = 100, longestNotes = 1 << 16, longestFileName = 60;

constexpr Animation dropTarget = spring(0.3, 0.7);
constexpr Animation dropLands = spring(0.35, 0.7);
constexpr Animation selection = spring(0.3, 0.7);

// In seconds.
constexpr double levelStays = 1.6, powerStays = 2.4, deviceStays = 2.8, bannerStays = 3;

template<typename Number>
std::optional<Number> number(std::string_view text) {
  Number value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

int integer(std::string_view text) { return number<int>(text).value_or(0); }

double level(std::string_view text, double otherwise) {
  const double value = number<double>(text).value_or(otherwise);
  return std::isnan(value) ? otherwise : std::clamp(value, 0.0, 1.0);
}

QByteArray samplePicture() {
  constexpr int size = 512;
  const Image gradient = sampleArtwork(size, {colors::teal, colors::blue, colors::purple}, false, 60);
  const QImage image(
      reinterpret_cast<const uchar*>(gradient.pixels->data()), size, size, QImage::Format_RGB32);
  QBuffer file;
  file.open(QIODevice::WriteOnly);
  image.save(&file, "PNG");
  return file.data();
}

bool isPicture(std::string_view name) {
  const size_t dot = name.rfind('.');
  const auto isSame = [](char a, char b) { return (a | ' ') == b; };
  return dot != name.npos && std::ranges::equal(name.substr(dot), std::string_view(".png"), isSame);
}

}  // namespace

void Showcase::handle(const std::string& command, const std::string& argument) {
  if (command == "begin") return begin(argument);
  if (!model_.showcase) return;
  using Command = std::function<void(Showcase&, NotchModel&, const std::string&)>;
  static const std::map<std::string, Command, std::less<>> commands{
      {"end", [](auto& self, auto&, auto&) { self.end(); }},
      {"lang",
          [](auto& self, auto&, auto& language) {
            L10n::forced = language;
            self.fill();
          }},
      {"track", [](auto&, auto& model, auto& index) { model.media.showcaseTrack(integer(index)); }},
      {"play", [](auto&, auto& model, auto&) { model.media.showcasePlaying(true); }},
      {"pause", [](auto&, auto& model, auto&) { model.media.showcasePlaying(false); }},
      {"hud",
          [](auto&, auto& model, auto& value) {
            model.show(Transient::hud(HUDKind::volume, level(value, 0.5)), levelStays);
          }},
      {"mute", [](auto&, auto& model, auto&) { model.show(Transient::hud(HUDKind::mute, 0), levelStays); }},
      {"brightness",
          [](auto&, auto& model, auto& value) {
            model.show(Transient::hud(HUDKind::brightness, level(value, 0.6)), levelStays);
          }},
      {"power", [](auto&, auto& model,
                    auto& state) { model.show(Transient::power(state != "unplugged", 76), powerStays); }},
      {"lowpower", [](auto&, auto& model,
                       auto& state) { model.show(Transient::lowPowerMode(state != "off"), powerStays); }},
      {"device",
          [](auto&, auto& model, auto& given) {
            const std::string name = displayText(given.empty() ? "AirPods Pro" : given);
            model.show(Transient::device(name, "airpodspro", 84, true), deviceStays);
          }},
      {"lowbattery",
          [](auto&, auto& model, auto&) {
            model.present(
                {.icon = "battery.25percent",
                    .tint = colors::red,
                    .title = tr("Low battery", "Batterie faible"),
                    .subtitle = tr("10% left", "10 % restants")},
                bannerStays);
          }},
      {"expand", [](auto&, auto& model, auto& tab) { model.expand(tabNamed(tab).value_or(model.tab)); }},
      {"tab",
          [](auto&, auto& model, auto& name) {
            if (const auto tab = tabNamed(name)) model.select(*tab);
          }},
      {"collapse",
          [](auto&, auto& model, auto&) {
            model.collapse();
            model.setDraggingFiles(false);
          }},
      {"peek", [](auto&, auto& model, auto& state) { model.setHovering(state != "off"); }},
      {"drag", [](auto& self, auto&, auto& state) { self.drag(state); }},
      {"trayadd", [](auto& self, auto&, auto& name) { self.addToTray(name); }},
      {"output", [](auto& self, auto&, auto& index) { self.selectOutput(index); }},
      {"clearclaude",
          [](auto&, auto& model, auto&) { withAnimation(notchClose, [&] { model.claude.clear(); }); }},
      {"dismiss", [](auto&, auto& model, auto&) { model.dismissBanner(); }},
      {"type", [](auto& self, auto&, auto& text) { self.type(text); }},
  };
  if (const auto found = commands.find(command); found != commands.end()) {
    found->second(*this, model_, argument);
  }
}

void Showcase::begin(const std::string& language) {
  L10n::forced = language.empty() ? std::nullopt : std::optional(language);
  model_.showcase = true;
  clearStage();
  model_.dismissBanner();
  model_.tray.showcaseBegin();
  model_.notes.showcaseBegin();
  model_.media.showcaseBegin();
  model_.media.showcaseTrack(0);
  model_.media.showcasePlaying(false);
  fill();
}

void Showcase::end() {
  clearStage();
  model_.tray.showcaseEnd();
  model_.notes.showcaseEnd();
  model_.media.showcaseEnd();
  model_.showcase = false;
  L10n::forced = std::nullopt;
  // In the user's own language again.
  model_.calendar.showcaseEnd();
  model_.audio.showcaseEnd();
  model_.setHovering(false);
}

void Showcase::clearStage() {
  typing_.cancel();
  model_.collapse();
  drag("off");
  withAnimation(notchClose, [this] { model_.claude.clear(); });
}

void Showcase::fill() {
  model_.calendar.showcaseFill();
  model_.audio.showcaseFill();
}

void Showcase::drag(const std::string& argument) {
  model_.setDraggingFiles(argument != "off");
  withAnimation(dropTarget, [&] { model_.isDropTargeted = argument == "target"; });
}

void Showcase::addToTray(const std::string& name) {
  const FilePath file = demoFile(name.empty() ? "Mockup.png" : name);
  withAnimation(dropLands, [&] {
    if (model_.tray.items->size() < mostFiles) model_.tray.add({file});
    model_.isDropTargeted = false;
    model_.expand(Tab::tray);
    model_.setDraggingFiles(false);
  });
}

void Showcase::selectOutput(const std::string& index) {
  const int number = integer(index);
  if (number < 0 || static_cast<size_t>(number) >= model_.audio.outputs->size()) return;
  withAnimation(selection, [&] { model_.audio.showcaseSelect(static_cast<size_t>(number)); });
}

FilePath Showcase::demoFile(const std::string& name) const {
  std::string last = displayText(lastPathComponent(name), longestFileName);
  if (last.empty() || last == "/" || last == "." || last == "..") last = "Mockup.png";
  const FilePath file = folders_.caches() + "/Tarnwick/showcase/" + last;
  std::error_code error;
  if (std::filesystem::exists(file, error)) return file;
  if (isPicture(last)) {
    const QByteArray picture = samplePicture();
    (void)writePrivateFile(file, {picture.constData(), static_cast<size_t>(picture.size())});
  } else {
    (void)writePrivateFile(file, "Tarnwick demo file\n");
  }
  return file;
}

void Showcase::type(const std::string& text) {
  untyped_ = text;
  typing_ = scheduler_.every(typingInterval, [this] {
    const std::string next(firstCharacters(untyped_, 1, longestNotes));
    untyped_.erase(0, next.size());
    if (next.empty() || model_.notes.text().size() + next.size() > longestNotes) return typing_.cancel();
    model_.notes.setText(model_.notes.text() + next);
  });
}

}  // namespace tarnwick
