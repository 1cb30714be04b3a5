#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char **argv) {
    // Windows are created but never need a display.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("ZKR_MUF"));
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
