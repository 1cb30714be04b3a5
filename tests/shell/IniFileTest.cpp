#include "IniFile.h"
#include "SettingsFile.h"
#include "ShellFakes.h"

#include <QDir>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

namespace zkr {
namespace {

using test::readBytes;
using test::writeBytes;

// Written by hand: comments, odd case, indents, blanks, LF-only and unterminated lines.
const QByteArray HandWritten = "; settings written by hand\r\n\r\n[call]\r\n; OwnCall=ZZZ\r\n"
                               "  OwnCall = dl1abc   \r\n; a comment about the next section\r\n"
                               "\r\n[Other Stuff]\r\nKey=Value with  spaces\r\nEmpty=\r\n"
                               "[Position]\nLeft=10\nTop=20";

struct IniFileTest : ::testing::Test {
    QTemporaryDir dir;
    QString path = dir.filePath("zkr_muf.ini");
    ProgramState state;

    void SetUp() override { ASSERT_TRUE(writeBytes(path, HandWritten)); }
    QString read(const QString &section, const QString &key, const QString &byDefault = "") {
        return Ini_Read(state, section, key, byDefault, path);
    }
    QString write(const QString &section, const QString &key, const QString &value) {
        return Ini_Write(section, key, value, path);
    }
};

TEST_F(IniFileTest, WritesChangeOnlyTheirOwnLine) {
    struct Case {
        const char *section, *key, *value;
        const char *before, *after; // the bytes of HandWritten that change
    };
    const Case cases[] = {
        // Replaced in place, whatever the case of section and key.
        {"CALL", "OWNCALL", "DK5XX", "  OwnCall = dl1abc   \r\n", "OWNCALL=DK5XX\r\n"},
        // Added after the section's last key, before the comment and blank.
        {"Call", "NewKey", "1", "dl1abc   \r\n", "dl1abc   \r\nNewKey=1\r\n"},
        // A replaced line keeps its own line end, even none at all.
        {"Position", "Left", "5", "Left=10\n", "Left=5\n"},
        {"position", "top", "33", "Top=20", "top=33"},
        {"Position", "SSTAB", "2", "Top=20", "Top=20\r\nSSTAB=2\r\n"},
        // A value ending in CR LF leaves an empty line after its key.
        {"other stuff", "Key", "v\r\n", "Key=Value with  spaces\r\n", "Key=v\r\n\r\n"},
        // A missing section goes to the end.
        {"Version", "Version", "1.30\r\n", "Top=20", "Top=20\r\n[Version]\r\nVersion=1.30\r\n\r\n"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string(c.section) + "/" + c.key);
        ASSERT_TRUE(writeBytes(path, HandWritten));
        EXPECT_EQ(write(c.section, c.key, c.value), "1");
        QByteArray expected = HandWritten;
        ASSERT_EQ(expected.count(c.before), 1);
        EXPECT_EQ(readBytes(path), expected.replace(c.before, c.after));
    }
}

TEST_F(IniFileTest, ReadsLikeTheProfileFunctionsEvenFromATruncatedFile) {
    const char *const cases[][4] = {
        {"CALL", "ownCALL", "", "dl1abc"},
        {"other stuff", "KEY", "", "Value with  spaces"},
        {"Other Stuff", "Empty", "x", ""},
        {"Position", "Top", "", "20"},
        {"Nowhere", "Key", "  default ", "default"},
        // Neither a comment nor another section's key counts.
        {"Other Stuff", "OwnCall", "none", "none"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(read(c[0], c[1], c[2]), c[3]) << c[0] << "/" << c[1];
    }
    write("Long", "Value", QString(300, 'x'));
    EXPECT_EQ(read("Long", "Value"), QString(254, 'x'));
    EXPECT_EQ(state.Ini_Result_Length, 254);

    // A file cut off mid-line by a crash of some other program.
    ASSERT_TRUE(writeBytes(path, HandWritten.left(HandWritten.indexOf("Value with") + 5)));
    EXPECT_EQ(read("CALL", "ownCALL"), "dl1abc");
    EXPECT_EQ(read("Other Stuff", "Key"), "Value");
    EXPECT_EQ(read("Position", "Left", "none"), "none");
}

// A full disk (simulated by a file-size limit) or a file marked read-only:
// the old file stays whole, and root keeps off it too.
TEST_F(IniFileTest, FailedWriteLeavesTheOldFileWhole) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    rlimit small = old;
    small.rlim_cur = 200;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const QString result = write("Big", "Value", QString(500, 'y'));
    setrlimit(RLIMIT_FSIZE, &old);
    ASSERT_EQ(chmod(qPrintable(path), 0444), 0);
    EXPECT_EQ(result + write("Position", "Left", "7"), "00");
    EXPECT_EQ(readBytes(path), HandWritten);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"zkr_muf.ini"});
}

} // namespace
} // namespace zkr
