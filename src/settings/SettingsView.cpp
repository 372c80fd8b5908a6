#include "settings/SettingsView.h"

#include <QPointer>
#include <utility>

#include "base/L10n.h"
#include "settings/SettingsTheme.h"

namespace tarnwick {
namespace {

constexpr double trustInterval = 1;
/// As in the style sheet, with its margins.
constexpr int scrollBarWidth = 10;

QString text(std::string_view english, std::string_view french) {
  return QString::fromStdString(tr(english, french));
}

void changeName(QPushButton* button, const QString& name, const QString& what) {
  button->setText(name);
  button->setAccessibleName(name + ' ' + what);
}

}  // namespace

SettingsView::SettingsView(const SettingsContext& context) : context_(context), form_(new QVBoxLayout) {
  auto* content = new QWidget;
  content->setObjectName("form");
  content->setLayout(form_);
  form_->setContentsMargins(20, 18, 20 - scrollBarWidth, 20);
  form_->setSpacing(0);
  setWidget(content);
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  // It has its place also where there is nothing to scroll.
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  setFocusPolicy(Qt::ClickFocus);

  addGeneral();
  addActivities();
  addKeys();
  addShortcuts();
  addClaudeCode();
  auto* quit = button(text("Quit Tarnwick", "Quitter Tarnwick"));
  connect(quit, &QPushButton::clicked, this, [this] { context_.quit(); });
  form_->addSpacing(20);
  form_->addWidget(quit, 0, Qt::AlignHCenter);
  form_->addStretch();

  subscriptions_ = {context_.model.settings.observe([this] { followSettings(); }),
      context_.model.calendar.observe([this] { followSettings(); }),
      context_.shortcuts.shortcuts().observe([this] { followShortcuts(); })};
  context_.shortcuts.shortcuts().look();
  trust_ = context_.scheduler.every(trustInterval, [this] { lookForTrust(); });
  followSettings();
  lookForTrust();
  refresh();
}

SettingsCard& SettingsView::addSection(const QString& header) {
  if (form_->count() > 0) form_->addSpacing(18);
  form_->addWidget(sectionHeader(header));
  form_->addSpacing(7);
  auto* card = new SettingsCard;
  card->setAccessibleName(header);
  form_->addWidget(card);
  return *card;
}

void SettingsView::addToggle(SettingsCard& card, const QString& text, AppSettings::Flag& flag) {
  auto* row = new SwitchRow(text);
  row->setChecked(flag);
  connect(row, &SwitchRow::toggled, this, [&flag](bool on) { flag = on; });
  toggles_.emplace_back(row, &flag);
  card.add(row);
}

void SettingsView::addGeneral() {
  SettingsCard& card = addSection(text("General", "Général"));
  AppSettings& settings = context_.model.settings;
  addToggle(card, text("Open on hover", "Ouvrir au survol"), settings.expandOnHover);
  addToggle(card, text("Hide in full screen", "Masquer en plein écran"), settings.hideInFullscreen);
  loginItem_ = new SwitchRow(text("Open at login", "Ouvrir à la connexion"));
  connect(loginItem_, &SwitchRow::clicked, this, [this](bool on) {
    context_.loginItem.setEnabled(on);
    refresh();
  });
  card.add(loginItem_);
}

void SettingsView::addActivities() {
  SettingsCard& card = addSection(text("Activities", "Activités"));
  AppSettings& settings = context_.model.settings;
  addToggle(card, text("Now Playing", "Lecture en cours"), settings.showNowPlaying);
  addToggle(card, text("Battery and Low Power Mode", "Batterie et mode économie d'énergie"),
      settings.batteryAlerts);
  addToggle(card, text("Bluetooth devices", "Appareils Bluetooth"), settings.bluetoothAlerts);
  addToggle(card, text("Calendar", "Calendrier"), settings.calendarEnabled);
  if (context_.pages.has(SettingsPage::calendars)) {
    auto* allow = button(text("Allow calendar access…", "Autoriser l'accès au calendrier…"));
    connect(allow, &QPushButton::clicked, this, [this] { context_.pages.open(SettingsPage::calendars); });
    calendarAccess_ = {plainRow(allow)};
    card.add(calendarAccess_.front());
  } else {
    calendarAccess_ = {caption(text(
        "No calendar has been set up here. Add one in a calendar program that uses "
        "Evolution Data Server, such as Evolution or GNOME Calendar.",
        "Aucun calendrier n'est configuré ici. Ajoutez-en un dans un agenda qui utilise "
        "Evolution Data Server, comme Evolution ou Agenda de GNOME."))};
    card.addBelow(calendarAccess_.front());
  }
}

void SettingsView::addKeys() {
  SettingsCard& card = addSection(text("Volume and brightness HUD", "HUD volume et luminosité"));
  AppSettings& settings = context_.model.settings;
  addToggle(card, text("Replace system HUDs", "Remplacer les HUD système"), settings.replaceHUD);
  connect(toggles_.back().first, &SwitchRow::toggled, this, [this](bool on) {
    if (on) context_.hud.startTap(true);
    lookForTrust();
  });
  const QString keys = text("Volume and brightness keys", "Touches de volume et de luminosité");
  allowed_ = new QLabel("✓ " + text("Allowed", "Autorisées"));
  allowed_->setObjectName("allowed");
  allow_ = button(text("Allow…", "Autoriser…"));
  changeName(allow_, allow_->text(), keys);
  connect(allow_, &QPushButton::clicked, this, [this] {
    context_.hud.startTap(true);
    context_.pages.open(SettingsPage::keyboard);
  });
  card.add(labelledRow(keys, {allowed_, allow_}));
  keysCaption_ = caption("");
  card.addBelow(keysCaption_);
}

void SettingsView::addShortcuts() {
  SettingsCard& card = addSection(text("Keyboard shortcuts", "Raccourcis clavier"));
  for (const auto& action : context_.shortcuts.actions()) {
    auto* keys = new ShortcutButton;
    const QString title = QString::fromStdString(action.title);
    keys->setAccessibleName(title);
    keys->onRecording = [this](bool recording) {
      context_.shortcuts.pause(recording);
      followShortcuts();
    };
    keys->onChord = [this, name = action.name](const auto& chord) { context_.shortcuts.assign(name, chord); };
    shortcuts_.push_back(keys);
    shortcutRows_.push_back(labelledRow(title, {keys}));
    card.add(shortcutRows_.back());
  }
  shortcutsCaption_ = caption("");
  card.addBelow(shortcutsCaption_);
}

void SettingsView::followShortcuts() {
  using State = GlobalShortcuts::Result::State;
  const GlobalShortcuts& shortcuts = context_.shortcuts.shortcuts();
  for (QWidget* row : shortcutRows_) row->setVisible(shortcuts.available);
  QString explanation =
      shortcuts.available
          ? QString()
          : text(
                "This desktop lets no program set shortcuts. Set some in its keyboard settings for the "
                "commands "
                "“Tarnwick --toggle” and “Tarnwick --next”.",
                "Ce bureau ne laisse aucun programme définir de raccourcis. Définissez-en dans ses réglages "
                "du "
                "clavier pour les commandes « Tarnwick --toggle » et « Tarnwick --next ».");
  const auto actions = context_.shortcuts.actions();
  for (size_t index = 0; index < actions.size(); ++index) {
    ShortcutButton* button = shortcuts_[index];
    const auto chord = KeyChord::parse(*actions[index].chord);
    const auto found = shortcuts.results->find(actions[index].name);
    const auto result = found == shortcuts.results->end() ? std::nullopt : std::optional(found->second);
    const QString keys =
        result && !result->keys.empty() ? QString::fromStdString(result->keys)
        : chord                         ? ShortcutButton::name(*chord)
                                        : text("None", "Aucun");
    button->show(keys);
    if (button->isRecording()) {
      explanation = text("Escape leaves it as it is, Backspace removes it.",
          "Échap n'y change rien, Retour arrière le supprime.");
    } else if (chord && result && result->state == State::taken) {
      explanation = text("Another program uses ", "Un autre programme utilise ") + keys + '.';
    } else if (chord && result && result->state == State::refused) {
      explanation = text("The desktop does not allow ", "Le bureau ne permet pas ") + keys + '.';
    }
  }
  shortcutsCaption_->setText(explanation);
  shortcutsCaption_->setVisible(!explanation.isEmpty());
}

void SettingsView::addClaudeCode() {
  SettingsCard& card = addSection("Claude Code");
  addToggle(card, text("Notification sounds", "Sons de notification"), context_.model.settings.claudeSounds);
  addToggle(card, text("Answer permissions here", "Répondre aux permissions ici"),
      context_.model.settings.answerPermissions);
  hooks_ = button("");
  connect(hooks_, &QPushButton::clicked, this, [this] { changeHooks(); });
  card.add(labelledRow("Hooks", {hooks_}));
  hooksProblem_ = caption("", "problem");
  hooksProblem_->hide();
  card.addBelow(hooksProblem_);
}

void SettingsView::followSettings() {
  for (const auto& [row, flag] : toggles_) row->setChecked(*flag);
  const bool isAsked = context_.model.settings.calendarEnabled && !context_.model.calendar.authorized;
  for (QWidget* row : calendarAccess_) row->setVisible(isAsked);
  followShortcuts();
}

void SettingsView::lookForTrust() {
  const bool trusted = context_.hud.isTrusted();
  if (trusted && context_.model.settings.replaceHUD && !context_.hud.hasTap()) context_.hud.startTap(false);
  allowed_->setVisible(trusted);
  allow_->setVisible(!trusted && !context_.keysStayWithDesktop && context_.pages.has(SettingsPage::keyboard));
  keysCaption_->setText(
      trusted ? text("These keys change the level, with Alt+Shift in fine steps, and the notch shows it.",
                    "Ces touches changent le niveau, finement avec Alt+Maj, et l'encoche l'affiche.")
      : context_.keysStayWithDesktop
          ? text("In a Wayland session the desktop keeps these keys to itself and shows its own display.",
                "Dans une session Wayland, le bureau garde ces touches pour lui et affiche son propre HUD.")
          : text(
                "Another program, usually the desktop, uses these keys and shows its own display. Remove its "
                "shortcuts for them in the keyboard settings, and Tarnwick takes over.",
                "Un autre programme, le plus souvent le bureau, utilise ces touches et affiche son propre "
                "HUD. "
                "Retirez leurs raccourcis dans les réglages du clavier : Tarnwick prendra le relais."));
}

void SettingsView::refresh() {
  loginItem_->setChecked(context_.loginItem.isEnabled());
  const bool installed = context_.hooks.isInstalled();
  changeName(hooks_, installed ? text("Uninstall", "Désinstaller") : text("Install", "Installer"), "Hooks");
}

void SettingsView::changeHooks() {
  // Switched off, the button would hand the keyboard to its neighbour.
  if (std::exchange(hooksChange_, true)) return;
  hooksProblem_->hide();
  context_.hooks.setInstalled(
      !context_.hooks.isInstalled(), [view = QPointer(this)](const std::string& problem) {
        if (!view) return;
        view->hooksChange_ = false;
        view->hooksProblem_->setText(QString::fromStdString(problem));
        view->hooksProblem_->setVisible(!problem.empty());
        view->refresh();
      });
}

}  // namespace tarnwick
