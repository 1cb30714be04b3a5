#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace zkr {

class Platform;
enum class UserFolder;

// Where the program keeps its files. A program folder the user can write to
// is a portable installation: settings, records and the cluster list live
// beside the executable, as they always did. An installed program (under
// /usr, say) keeps them in the user's configuration and data folders and
// reads the shipped cluster list from the installation's data folder. The
// spot history lives in the user's data folder either way. The program and
// the headless tool both ask here, so that they find the same files.
struct ProgramFolders {
    static constexpr const char *ClusterListName = "TelnetDXCluster.txt";
    static constexpr const char *SettingsName = "zkr_muf.ini";

    bool portable = true;
    QString settings; // folder of the settings file
    QString data;     // records: the debug file
    QString history;  // folder of the spot history
    // The cluster lists to try, the user's own first.
    QStringList clusterLists;

    // The folders for this installation; the user's folders are created.
    static ProgramFolders find(Platform &platform);
    // The same from the program's folder and the user's folders, creating
    // nothing.
    static ProgramFolders locate(const QString &programFolder,
                                 const std::function<QString(UserFolder)> &userFolder);
    QString settingsFile() const;
    // The first cluster list that exists, or "" when none does.
    QString clusterList() const;
    // Where the shipped files of an installation lie, from its program
    // folder (bin/../share/zkr_muf).
    static QString installedDataFolder(const QString &applicationFolder);
};

} // namespace zkr
