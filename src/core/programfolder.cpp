#include "programfolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>
#include <QTemporaryFile>

namespace {

QString& overrideFolder()
{
    static QString folder;
    return folder;
}

QString joined(const QString& folder, const QString& fileName)
{
    return QDir(folder).filePath(fileName);
}

} // namespace

QString ProgramFolder::path()
{
    if (!overrideFolder().isEmpty()) {
        return overrideFolder();
    }
    return QCoreApplication::applicationDirPath();
}

QString ProgramFolder::writablePath()
{
    const QString folder = path();
    if (isWritableFolder(folder)) {
        return folder;
    }
    const QString userFolder = userDataPath();
    QDir().mkpath(userFolder);
    return userFolder;
}

QString ProgramFolder::readableFilePath(const QString& fileName)
{
    const QString folder = path();
    if (!isWritableFolder(folder)) {
        const QString userCopy = joined(userDataPath(), fileName);
        if (QFile::exists(userCopy)) {
            return userCopy;
        }
    }
    return joined(folder, fileName);
}

QString ProgramFolder::writableFilePath(const QString& fileName)
{
    return joined(writablePath(), fileName);
}

void ProgramFolder::setOverride(const QString& folder)
{
    overrideFolder() = folder;
}

bool ProgramFolder::isWritableFolder(const QString& folder)
{
    if (folder.isEmpty() || !QFileInfo(folder).isDir()) {
        return false;
    }
    QTemporaryFile probe(joined(folder, QStringLiteral(".kelv-write-test-XXXXXX")));
    return probe.open();
}

QString ProgramFolder::userDataPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}
