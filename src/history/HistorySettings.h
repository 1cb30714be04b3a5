#pragma once

#include <QString>

namespace zkr {

// The [History] section of zkr_muf.ini:
//   RetentionDays=30   spots older than this are deleted (0 keeps them all)
//   RestoreHours=2     the panes start with the spots of these last hours (0: none)
//   Database=          the history file; empty for history.sqlite in the data folder
struct HistorySettings {
    static constexpr int DefaultRetentionDays = 30;
    static constexpr int DefaultRestoreHours = 2;

    int retentionDays = DefaultRetentionDays;
    int restoreHours = DefaultRestoreHours;
    QString databasePath;

    // A missing or unusable value keeps its default.
    static HistorySettings read(const QString &iniPath, const QString &dataFolder);
};

} // namespace zkr
