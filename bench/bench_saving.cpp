// Times what a Save does besides writing on the largest menus a menu file can hold: the check whether
// the file changed on disk since it was opened or saved (FileIdentity::changeAt), in its cheap case (a
// look at the file's length, time and inode) and in its reading case (the file was touched, so its
// bytes are read and hashed), the hash alone, reading with and without taking the identity, and the
// write itself, flushed to the disk.
// Run by hand on a release build: kelvbench_saving [runs]

#include "benchtiming.h"
#include "menugenerator.h"

#include "editing/copylinks.h"
#include "menufile/fileidentity.h"
#include "menufile/menufilereader.h"
#include "menufile/menufilewriter.h"
#include "model/runtimeerror.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>

#include <cstdio>

namespace {

QString cell(double milliseconds, int decimals = 1)
{
    return QString::number(milliseconds, 'f', decimals).rightJustified(12);
}

/// Sets the file's time, as a touch does.
void setModified(const QString& path, const QDateTime& time)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.setFileTime(time, QFileDevice::FileModificationTime)) {
        throw RunTimeError(0, QStringLiteral("setFileTime"), QStringLiteral("cannot set the file's time"));
    }
}

FileIdentity identityRead(const QString& path)
{
    QByteArray bytes;
    FileIdentity identity;
    if (!readMenuFileBytes(path, bytes, &identity).ok()) {
        throw RunTimeError(0, QStringLiteral("readMenuFileBytes"), QStringLiteral("not read"));
    }
    return identity;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int runs = arguments.size() > 1 ? std::max(1, arguments.at(1).toInt()) : 11;

    QTemporaryDir folder;
    if (!folder.isValid()) {
        std::fputs("cannot create a temporary folder\n", stderr);
        return 1;
    }
    const QString path = folder.filePath(QStringLiteral("menu.ini"));

    QTextStream out(stdout);
    out << "Median of " << runs << " runs, milliseconds. 32,767 items, 2 to 5 commands each.\n"
        << "check: FileIdentity::changeAt at Save; untouched: the file as opened (one stat); touched: its time\n"
           "changed, so its bytes are read and hashed. hash: FileIdentity::hashOf of the bytes. read, read+id:\n"
           "readMenuFile without / with the identity. write: writeMenuFile, flushed to the disk.\n\n";
    const QStringList headers { QStringLiteral("shape"),   QStringLiteral("file MB"), QStringLiteral("untouched"),
                                QStringLiteral("touched"), QStringLiteral("hash"),    QStringLiteral("read"),
                                QStringLiteral("read+id"), QStringLiteral("write") };
    for (const QString& header : headers) {
        out << header.rightJustified(12);
    }
    out << "\n";
    out.flush();

    try {
        for (const MenuShape shape : MenuGenerator::allShapes()) {
            MenuGenerator::Options options;
            options.shape = shape;
            MenuDocument document = MenuGenerator::generate(options);
            normalizeCopyLinks(document);
            writeMenuFile(document, path);
            const QByteArray bytes = menuFileBytes(document);

            // A file written an hour ago, as most opened files were.
            setModified(path, QDateTime::currentDateTimeUtc().addSecs(-3600));
            const FileIdentity opened = identityRead(path);
            const auto none = [] {};
            const double untouched = medianMilliseconds(runs, none, [&] {
                if (opened.changeAt(path) != FileIdentity::Change::Unchanged) {
                    throw RunTimeError(0, QStringLiteral("changeAt"), QStringLiteral("not unchanged"));
                }
            });
            setModified(path, QDateTime::currentDateTimeUtc().addSecs(-60));
            const double touched = medianMilliseconds(runs, none, [&] {
                if (opened.changeAt(path) != FileIdentity::Change::Touched) {
                    throw RunTimeError(0, QStringLiteral("changeAt"), QStringLiteral("not touched"));
                }
            });
            const double hash = medianMilliseconds(runs, none, [&] { FileIdentity::hashOf(bytes); });
            MenuDocument target;
            const double read = medianMilliseconds(
                runs, [&target] { target = MenuDocument {}; }, [&] { readMenuFile(path, target); });
            FileIdentity identity;
            const double readIdentity = medianMilliseconds(
                runs, [&target] { target = MenuDocument {}; }, [&] { readMenuFile(path, target, &identity); });
            const double write = medianMilliseconds(runs, none, [&] { writeMenuFile(document, path); });

            out << MenuGenerator::shapeName(shape).rightJustified(12)
                << QString::number(double(bytes.size()) / 1e6, 'f', 1).rightJustified(12) << cell(untouched, 3)
                << cell(touched) << cell(hash) << cell(read) << cell(readIdentity) << cell(write) << "\n";
            out.flush();
        }
    } catch (const RunTimeError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
