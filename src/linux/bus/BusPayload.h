#pragma once
#include <QDBusMessage>

#include "platform/NotificationCenter.h"

namespace tarnwick {

/// Far above what a hook event takes, in characters.
inline constexpr qsizetype longestEvent = 1 << 16;

/// The one argument of a message, of type a{ss}; empty when the message has another shape, more entries than
/// any of ours, or is longer than that many characters.
StringMap stringMapOf(const QDBusMessage& message, qsizetype longest);

}  // namespace tarnwick
