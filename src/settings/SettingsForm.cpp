#include "settings/SettingsForm.h"

#include <QEvent>

namespace tarnwick {
namespace {

constexpr int inset = 14, rowHeight = 42;

/// A line that is there when the row below it is.
class Line : public QFrame {
 public:
  explicit Line(QWidget* row) {
    setObjectName("line");
    setFixedHeight(1);
    setVisible(!row->isHidden());
    row->installEventFilter(this);
  }
  bool eventFilter(QObject* row, QEvent* event) override {
    if (event->type() == QEvent::ShowToParent) show();
    if (event->type() == QEvent::HideToParent) hide();
    return QFrame::eventFilter(row, event);
  }
};

QWidget* row(const std::vector<QWidget*>& controls, QLabel* label) {
  auto* whole = new QWidget;
  auto* layout = new QHBoxLayout(whole);
  layout->setContentsMargins(inset, 6, inset, 6);
  layout->setSpacing(8);
  if (label) layout->addWidget(label);
  if (label) layout->addStretch();
  for (QWidget* control : controls) layout->addWidget(control);
  if (!label) layout->addStretch();
  whole->setMinimumHeight(rowHeight);
  return whole;
}

}  // namespace

SettingsCard::SettingsCard() {
  setObjectName("card");
  layout_.setContentsMargins(1, 1, 1, 1);
  layout_.setSpacing(0);
}

void SettingsCard::add(QWidget* row) {
  if (layout_.count() > 0) {
    auto* margins = new QHBoxLayout;
    margins->setContentsMargins(inset, 0, inset, 0);
    margins->addWidget(new Line(row));
    layout_.addLayout(margins);
  }
  layout_.addWidget(row);
}

void SettingsCard::addBelow(QWidget* row) { layout_.addWidget(row); }

QWidget* labelledRow(const QString& text, const std::vector<QWidget*>& controls) {
  auto* label = new QLabel(text);
  label->setTextFormat(Qt::PlainText);
  return row(controls, label);
}

QWidget* plainRow(QWidget* control) { return row({control}, nullptr); }

QLabel* caption(const QString& text, const char* name) {
  auto* label = new QLabel(text);
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setContentsMargins(inset, 0, inset, 10);
  return label;
}

QLabel* sectionHeader(const QString& text) {
  auto* label = new QLabel(text);
  label->setObjectName("header");
  return label;
}

QPushButton* button(const QString& text) {
  auto* made = new QPushButton(text);
  made->setFocusPolicy(Qt::TabFocus);
  // Enter presses it, too.
  made->setAutoDefault(true);
  return made;
}

}  // namespace tarnwick
