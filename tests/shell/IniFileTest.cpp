#include "IniFile.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ShellFakes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zkr {
namespace {

// Written by hand: comments, odd case, indented keys, blank lines, a commented
// key, LF-only lines at the end and no line end after the last line.
const QByteArray HandWritten = QByteArrayLiteral("; settings written by hand\r\n"
                                                 "\r\n"
                                                 "[call]\r\n"
                                                 "; OwnCall=ZZZ\r\n"
                                                 "  OwnCall = dl1abc   \r\n"
                                                 "; a comment about the next section\r\n"
                                                 "\r\n"
                                                 "[Other Stuff]\r\n"
                                                 "Key=Value with  spaces\r\n"
                                                 "Empty=\r\n"
                                                 "[Position]\n"
                                                 "Left=10\n"
                                                 "Top=20");

// Runs a write as a user whom file and folder permissions bind. Root is
// bound by none of them, so as root the write runs in a child process that
// has given root up. Returns the write's result, or "no user" when root
// could not be given up.
QString asOrdinaryUser(const std::function<QString()> &write) {
    if (geteuid() != 0) {
        return write();
    }
    const pid_t child = fork();
    if (child == 0) {
        const uid_t nobody = 65534;
        if (setgid(nobody) != 0 || setuid(nobody) != 0) {
            _exit(2);
        }
        _exit(write() == QLatin1String("1") ? 1 : 0);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status) ||
        WEXITSTATUS(status) > 1) {
        return QStringLiteral("no user");
    }
    return QString::number(WEXITSTATUS(status));
}

class IniFileTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(test::writeBytes(path_, HandWritten)); }
    QString read(const char *section, const char *key, const char *defaultValue = "") {
        return Ini_Read(state_, QLatin1String(section), QLatin1String(key),
                        QLatin1String(defaultValue), path_);
    }

    QTemporaryDir dir_;
    QString path_ = dir_.filePath(QStringLiteral("zkr_muf.ini"));
    ProgramState state_;
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
        ASSERT_TRUE(test::writeBytes(path_, HandWritten));
        EXPECT_EQ(Ini_Write(QLatin1String(c.section), QLatin1String(c.key), QLatin1String(c.value),
                            path_),
                  QStringLiteral("1"));
        QByteArray expected = HandWritten;
        ASSERT_EQ(expected.count(c.before), 1);
        EXPECT_EQ(test::readBytes(path_), expected.replace(c.before, c.after));
    }
}

TEST_F(IniFileTest, ReadsLikeTheProfileFunctions) {
    EXPECT_EQ(read("CALL", "ownCALL"), QStringLiteral("dl1abc"));
    EXPECT_EQ(read("other stuff", "KEY"), QStringLiteral("Value with  spaces"));
    EXPECT_EQ(read("Other Stuff", "Empty", "x"), QString());
    EXPECT_EQ(read("Position", "Top"), QStringLiteral("20"));
    EXPECT_EQ(read("Nowhere", "Key", "  default "), QStringLiteral("default"));
    // Neither a comment nor another section's key counts.
    EXPECT_EQ(read("Other Stuff", "OwnCall", "none"), QStringLiteral("none"));

    Ini_Write(QStringLiteral("Long"), QStringLiteral("Value"), QString(300, QLatin1Char('x')),
              path_);
    EXPECT_EQ(read("Long", "Value"), QString(254, QLatin1Char('x')));
    EXPECT_EQ(state_.Ini_Result_Length, 254);
}

TEST_F(IniFileTest, FailedWriteLeavesTheOldFileWhole) {
    // A full disk, simulated by a file-size limit (works for root too).
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    rlimit small = old;
    small.rlim_cur = 200;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const QString result = Ini_Write(QStringLiteral("Big"), QStringLiteral("Value"),
                                     QString(500, QLatin1Char('y')), path_);
    setrlimit(RLIMIT_FSIZE, &old);

    EXPECT_EQ(result, QStringLiteral("0"));
    EXPECT_EQ(test::readBytes(path_), HandWritten);
    EXPECT_EQ(QDir(dir_.path()).entryList(QDir::Files), QStringList{QStringLiteral("zkr_muf.ini")});
}

TEST_F(IniFileTest, UnwritablePlacesFailQuietlyAndATruncatedFileStillReads) {
    // Root may write anywhere it has a folder; no folder at all stops anyone.
    const QString underAFile = path_ + QStringLiteral("/zkr_muf.ini");
    const QString noFolder = dir_.filePath(QStringLiteral("gone/zkr_muf.ini"));
    for (const QString &place : {underAFile, noFolder}) {
        EXPECT_EQ(Ini_Write(QStringLiteral("Call"), QStringLiteral("OwnCall"), QStringLiteral("X"),
                            place),
                  QStringLiteral("0"));
        EXPECT_EQ(Ini_Read(state_, QStringLiteral("Call"), QStringLiteral("OwnCall"),
                           QStringLiteral("none"), place),
                  QStringLiteral("none"));
    }
    EXPECT_EQ(test::readBytes(path_), HandWritten);

    // A file cut off mid-line by a crash of some other program.
    ASSERT_TRUE(test::writeBytes(path_, HandWritten.left(HandWritten.indexOf("Value with") + 5)));
    EXPECT_EQ(read("CALL", "ownCALL"), QStringLiteral("dl1abc"));
    EXPECT_EQ(read("Other Stuff", "Key"), QStringLiteral("Value"));
    EXPECT_EQ(read("Position", "Left", "none"), QStringLiteral("none"));
}

TEST_F(IniFileTest, ReadOnlyFileOrFolderKeepsTheSettingsFile) {
    struct Case {
        const char *name;
        mode_t file, folder;
        bool written;
    };
    // A writable file in a read-only folder is rewritten in place.
    const Case cases[] = {{"read-only file", 0444, 0777, false},
                          {"read-only folder", 0666, 0555, true},
                          {"both read-only", 0444, 0555, false}};
    // The other user must be able to reach the folder at all.
    struct stat temp {};
    ASSERT_EQ(stat(QFile::encodeName(QDir::tempPath()).constData(), &temp), 0);
    if (geteuid() == 0 && (temp.st_mode & S_IXOTH) == 0) {
        GTEST_SKIP() << "the temporary folder is closed to other users";
    }
    if (asOrdinaryUser([] { return QStringLiteral("1"); }) != QLatin1String("1")) {
        GTEST_SKIP() << "root cannot become another user here";
    }
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(test::writeBytes(path_, HandWritten));
        ASSERT_EQ(chmod(qPrintable(path_), c.file), 0);
        ASSERT_EQ(chmod(qPrintable(dir_.path()), c.folder), 0);
        const QString result = asOrdinaryUser([this] {
            return Ini_Write(QStringLiteral("Call"), QStringLiteral("OwnCall"),
                             QStringLiteral("DK5XX"), path_);
        });
        const QByteArray afterUser = test::readBytes(path_);
        // Root itself keeps off a file marked read-only.
        const QString asRoot = Ini_Write(QStringLiteral("Position"), QStringLiteral("Left"),
                                         QStringLiteral("7"), path_);
        const QByteArray afterRoot = test::readBytes(path_);
        ASSERT_EQ(chmod(qPrintable(dir_.path()), 0700), 0);
        ASSERT_EQ(chmod(qPrintable(path_), 0644), 0);

        EXPECT_EQ(result, c.written ? QStringLiteral("1") : QStringLiteral("0"));
        QByteArray expected = HandWritten;
        if (c.written) {
            expected.replace("  OwnCall = dl1abc   ", "OwnCall=DK5XX");
        }
        EXPECT_EQ(afterUser, expected);
        if (c.file == 0444) {
            EXPECT_EQ(asRoot, QStringLiteral("0"));
            EXPECT_EQ(afterRoot, expected);
        }
        EXPECT_EQ(QDir(dir_.path()).entryList(QDir::Files),
                  QStringList{QStringLiteral("zkr_muf.ini")});
    }

    // No file yet, in a folder the user may not write: nothing appears.
    ASSERT_TRUE(QFile::remove(path_));
    ASSERT_EQ(chmod(qPrintable(dir_.path()), 0555), 0);
    const QString result = asOrdinaryUser([this] {
        return Ini_Write(QStringLiteral("Call"), QStringLiteral("OwnCall"), QStringLiteral("DK5XX"),
                         path_);
    });
    ASSERT_EQ(chmod(qPrintable(dir_.path()), 0700), 0);
    EXPECT_EQ(result, QStringLiteral("0"));
    EXPECT_FALSE(QFileInfo::exists(path_));
}

} // namespace
} // namespace zkr
