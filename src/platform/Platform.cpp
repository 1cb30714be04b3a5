#include "Platform.h"

#include <QDir>
#include <QStandardPaths>

namespace zkr {

QString standardUserFolder(UserFolder kind) {
    // The generic locations with our folder below them: the application
    // locations would follow the application's name, which differs between
    // the program and the tool.
    const QString programFolder = QStringLiteral("zkr_muf");
    switch (kind) {
    case UserFolder::Config:
        return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation))
            .filePath(programFolder);
    case UserFolder::Data:
        return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
            .filePath(programFolder);
    case UserFolder::Documents:
        break;
    }
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

} // namespace zkr
