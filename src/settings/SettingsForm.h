#pragma once
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tarnwick {

/// Rows that belong together, on a card, with lines between them.
class SettingsCard : public QFrame {
 public:
  SettingsCard();
  /// Puts a row at the end; a row that is hidden takes its line along.
  void add(QWidget* row);
  /// The same without a line before it: more on the row above.
  void addBelow(QWidget* row);

 private:
  QVBoxLayout layout_{this};
};

/// A text on the left and its control on the right.
QWidget* labelledRow(const QString& text, const std::vector<QWidget*>& controls);
/// A control alone on its row, on the left.
QWidget* plainRow(QWidget* control);
/// Smaller text that explains the row above; `name` is its style.
QLabel* caption(const QString& text, const char* name = "caption");
QLabel* sectionHeader(const QString& text);
QPushButton* button(const QString& text);

}  // namespace tarnwick
