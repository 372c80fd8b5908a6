#include "settings/ShortcutButton.h"

#include <xkbcommon/xkbcommon.h>

#include <QKeyEvent>
#include <utility>

#include "base/L10n.h"

namespace tarnwick {
namespace {

bool isModifier(int key) {
  return key == Qt::Key_Control || key == Qt::Key_Shift || key == Qt::Key_Alt || key == Qt::Key_AltGr ||
         key == Qt::Key_Meta || key == Qt::Key_Super_L || key == Qt::Key_Super_R || key == Qt::Key_CapsLock ||
         key == Qt::Key_NumLock || key == Qt::Key_unknown || key == 0;
}

std::string keyName(const QKeyEvent& event) {
  char name[64] = "";
  xkb_keysym_get_name(xkb_keysym_to_lower(event.nativeVirtualKey()), name, sizeof name);
  return name;
}

}  // namespace

ShortcutButton::ShortcutButton() {
  setFocusPolicy(Qt::TabFocus);
  connect(this, &QPushButton::clicked, this, [this] { record(!isRecording_); });
}

void ShortcutButton::show(const QString& keys) {
  keys_ = keys;
  if (!isRecording_) setText(keys);
}

QString ShortcutButton::name(const KeyChord& chord) {
  QStringList parts;
  if (chord.control) parts << "Ctrl";
  if (chord.alt) parts << "Alt";
  if (chord.shift) parts << QString::fromStdString(tarnwick::tr("Shift", "Maj"));
  if (chord.super) parts << "Super";
  const uint32_t letter = xkb_keysym_to_utf32(xkb_keysym_from_name(chord.key.c_str(), XKB_KEYSYM_NO_FLAGS));
  const bool isSeen = letter > ' ' && letter != 0x7F;
  parts << (isSeen ? QString::fromUcs4(reinterpret_cast<const char32_t*>(&letter), 1).toUpper()
                   : QString::fromStdString(chord.key));
  return parts.join(" + ");
}

bool ShortcutButton::event(QEvent* event) {
  // Else Escape would close the window and Tab go on.
  if (isRecording_ && event->type() == QEvent::ShortcutOverride) {
    event->accept();
    return true;
  }
  if (isRecording_ && event->type() == QEvent::KeyPress) {
    keyPressEvent(static_cast<QKeyEvent*>(event));
    return true;
  }
  return QPushButton::event(event);
}

void ShortcutButton::keyPressEvent(QKeyEvent* event) {
  if (!isRecording_) return QPushButton::keyPressEvent(event);
  const auto held = event->modifiers();
  const KeyChord chord{.control = held.testFlag(Qt::ControlModifier),
      .alt = held.testFlag(Qt::AltModifier),
      .shift = held.testFlag(Qt::ShiftModifier),
      .super = held.testFlag(Qt::MetaModifier),
      .key = keyName(*event)};
  const bool isAlone = !chord.control && !chord.alt && !chord.shift && !chord.super;
  if (isAlone && event->key() == Qt::Key_Escape) return record(false);
  if (isAlone && event->key() == Qt::Key_Backspace) {
    if (onChord) onChord(std::nullopt);
    return record(false);
  }
  if (isModifier(event->key()) || !chord.isReserved()) return;
  if (onChord) onChord(chord);
  record(false);
}

void ShortcutButton::focusOutEvent(QFocusEvent* event) {
  record(false);
  QPushButton::focusOutEvent(event);
}

void ShortcutButton::hideEvent(QHideEvent* event) {
  record(false);
  QPushButton::hideEvent(event);
}

void ShortcutButton::record(bool recording) {
  if (std::exchange(isRecording_, recording) == recording) return;
  setText(recording ? QString::fromStdString(tarnwick::tr("Press the keys…", "Appuyez sur les touches…"))
                    : keys_);
  if (recording) {
    setFocus();
    // Also those that other programs have, to be able to say so.
    grabKeyboard();
  } else {
    releaseKeyboard();
  }
  if (onRecording) onRecording(recording);
}

}  // namespace tarnwick
