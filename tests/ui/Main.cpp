#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  // Fonts need the toolkit, nothing needs a display.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
