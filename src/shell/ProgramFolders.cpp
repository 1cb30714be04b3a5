#include "ProgramFolders.h"

#include "BuildInfo.h"
#include "Platform.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

namespace zkr {

ProgramFolders ProgramFolders::find(Platform &platform) {
    ProgramFolders folders = locate(platform.applicationFolder(), [&platform](UserFolder kind) {
        return platform.userFolder(kind);
    });
    if (!folders.portable) {
        // Made now, so that the first save does not fail for want of a folder.
        QDir().mkpath(folders.settings);
        QDir().mkpath(folders.data);
    }
    return folders;
}

ProgramFolders ProgramFolders::locate(const QString &programFolder,
                                      const std::function<QString(UserFolder)> &userFolder) {
    const QString listName = QLatin1String(ClusterListName);
    ProgramFolders folders;
    folders.history = userFolder(UserFolder::Data);
    // An installation has its shipped files in its data folder; root may
    // write to /usr/bin, but that makes no portable copy of it. Writing is
    // tried, not judged by the permission bits, which root ignores and a
    // read-only mount overrides.
    QTemporaryFile probe(QDir(programFolder).filePath(QStringLiteral(".zkr_muf_XXXXXX")));
    folders.portable = !QFileInfo(installedDataFolder(programFolder)).isDir() && probe.open();
    if (folders.portable) {
        folders.settings = programFolder;
        folders.data = programFolder;
        folders.clusterLists = {QDir(programFolder).filePath(listName)};
        return folders;
    }
    folders.settings = userFolder(UserFolder::Config);
    folders.data = folders.history;
    folders.clusterLists = {QDir(folders.data).filePath(listName),
                            QDir(installedDataFolder(programFolder)).filePath(listName),
                            QDir(programFolder).filePath(listName)};
    return folders;
}

QString ProgramFolders::settingsFile() const {
    return QDir(settings).filePath(QLatin1String(SettingsName));
}

QString ProgramFolders::clusterList() const {
    for (const QString &path : clusterLists) {
        if (QFileInfo(path).isFile()) {
            return path;
        }
    }
    return QString();
}

QString ProgramFolders::installedDataFolder(const QString &applicationFolder) {
    return QDir::cleanPath(applicationFolder + QLatin1Char('/') +
                           QLatin1String(build::DataDirFromBinDir));
}

} // namespace zkr
