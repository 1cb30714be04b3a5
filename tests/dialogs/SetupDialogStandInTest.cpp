#include "SetupDialogStandIn.h"
#include "IniFile.h"
#include "ProgramState.h"
#include "QtPrinters.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace zkr {
namespace {

TEST(SetupDialogStandInTest, ChangingTheUpdateBoxRunsItsClick) {
    struct Case {
        bool before;
        bool after;
        const char *stored; // the key's value afterwards
        int updateChecks;
    };
    for (const Case c : {Case{false, true, "on", 1}, Case{true, true, "ON", 0},
                         Case{false, false, "ON", 0}, Case{true, false, "off", 0}}) {
        SCOPED_TRACE(testing::Message() << c.before << " -> " << c.after);
        QTemporaryDir dir;
        ProgramState state;
        state.IniFilePath = dir.filePath(QStringLiteral("zkr_muf.ini"));
        SetupDialogStandIn setup(state);
        setup.setAutoUpdateChecked(c.before);
        ASSERT_EQ(Ini_Write(QStringLiteral("AutoUpdateCheck"), QStringLiteral("UpdateCheck"),
                            QStringLiteral("ON"), state.IniFilePath),
                  QStringLiteral("1"));
        int checks = 0;
        setup.setUpdateCheck([&checks] { ++checks; });
        setup.setAutoUpdateChecked(c.after);
        EXPECT_EQ(setup.isAutoUpdateChecked(), c.after);
        EXPECT_EQ(Ini_Read(state, QStringLiteral("AutoUpdateCheck"), QStringLiteral("UpdateCheck"),
                           QString(), state.IniFilePath),
                  QLatin1String(c.stored));
        EXPECT_EQ(checks, c.updateChecks);
    }
}

} // namespace
} // namespace zkr
