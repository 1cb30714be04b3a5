#include "HistorySettings.h"

#include "IniFile.h"

#include <QDir>
#include <QFileInfo>

namespace zkr {

namespace {

int wholeNumber(const IniFile &ini, const QString &key, int defaultValue, int maximum) {
    bool ok = false;
    const int value = ini.value(u"History", key).value_or(QString()).toInt(&ok);
    return ok && value >= 0 && value <= maximum ? value : defaultValue;
}

} // namespace

HistorySettings HistorySettings::read(const QString &iniPath, const QString &dataFolder) {
    const IniFile ini = IniFile::load(iniPath);
    HistorySettings settings;
    settings.retentionDays =
        wholeNumber(ini, QStringLiteral("RetentionDays"), DefaultRetentionDays, 36500);
    settings.restoreHours =
        wholeNumber(ini, QStringLiteral("RestoreHours"), DefaultRestoreHours, 24 * 366);
    const QString path = ini.value(u"History", u"Database").value_or(QString());
    settings.databasePath = path.isEmpty()
                                ? QDir(dataFolder).filePath(QStringLiteral("history.sqlite"))
                                : QDir(QFileInfo(iniPath).absolutePath()).absoluteFilePath(path);
    return settings;
}

} // namespace zkr
