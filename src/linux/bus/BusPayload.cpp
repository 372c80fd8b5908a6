#include "linux/bus/BusPayload.h"

#include <QDBusArgument>

namespace tarnwick {
namespace {

/// Far above what the programs of ours send.
constexpr int mostEntries = 32;

}  // namespace

StringMap stringMapOf(const QDBusMessage& message, qsizetype longest) {
  const QVariantList arguments = message.arguments();
  if (message.signature() != "a{ss}") return {};
  const auto argument = arguments.first().value<QDBusArgument>();
  StringMap map;
  int entries = 0;
  qsizetype length = 0;
  bool tooMuch = false;
  argument.beginMap();
  while (!tooMuch && !argument.atEnd()) {
    QString key, value;
    argument.beginMapEntry();
    argument >> key >> value;
    argument.endMapEntry();
    length += key.size() + value.size();
    tooMuch = ++entries > mostEntries || length > longest;
    if (!tooMuch) map[key.toStdString()] = value.toStdString();
  }
  // Without this the library would keep the message for ever.
  argument.endMap();
  return tooMuch ? StringMap() : map;
}

}  // namespace tarnwick
