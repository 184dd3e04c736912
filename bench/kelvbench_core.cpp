// Times the core routines of the editor on the largest menus a menu file can hold and prints a
// table of medians. Run by hand on a release build: kelvbench_core [runs]

#include "benchtiming.h"
#include "menugenerator.h"

#include "editing/copylinks.h"
#include "editing/itemdeletion.h"
#include "editing/menuopening.h"
#include "menufile/menufilereader.h"
#include "menufile/menufilewriter.h"
#include "model/runtimeerror.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>

#include <cstdio>

namespace {

QString cell(double milliseconds)
{
    return QString::number(milliseconds, 'f', 1).rightJustified(11);
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int runs = arguments.size() > 1 ? std::max(1, arguments.at(1).toInt()) : 5;

    QTemporaryDir folder;
    if (!folder.isValid()) {
        std::fputs("cannot create a temporary folder\n", stderr);
        return 1;
    }
    const QString path = folder.filePath(QStringLiteral("menu.ini"));
    const QString writePath = folder.filePath(QStringLiteral("written.ini"));

    QTextStream out(stdout);
    out << "Median of " << runs << " runs, milliseconds. 32,767 items; branch of 10,000 items.\n";
    out << "read: readMenuFile without / with link detection; write: writeMenuFile, bytes: menuFileBytes;\n"
           "links: normalizeCopyLinks; delete: deleteItemTree of the branch; Delete: removeItemBranch\n"
           "(deleteItemTree, sibling gap, links).\n\n";
    const QStringList headers { QStringLiteral("shape"), QStringLiteral("file MB"),    QStringLiteral("links"),
                                QStringLiteral("read"),  QStringLiteral("read+links"), QStringLiteral("write"),
                                QStringLiteral("bytes"), QStringLiteral("normalize"),  QStringLiteral("delete"),
                                QStringLiteral("Delete") };
    for (const QString& header : headers) {
        out << header.rightJustified(11);
    }
    out << "\n";
    out.flush();

    try {
        for (const MenuShape shape : MenuGenerator::allShapes()) {
            MenuGenerator::Options options;
            options.shape = shape;
            const MenuDocument generated = MenuGenerator::generate(options);
            const QString branchKey = QStringLiteral("E0");
            if (MenuGenerator::branchSize(generated, branchKey) != options.branchSize) {
                std::fputs("the generated branch has the wrong size\n", stderr);
                return 1;
            }
            MenuDocument linked = detachedCopy(generated);
            normalizeCopyLinks(linked);
            qsizetype linkCount = 0;
            for (const MenuItem& item : std::as_const(linked.items)) {
                linkCount += item.copiesCommands ? 1 : 0;
            }
            writeMenuFile(linked, path);

            MenuDocument target;
            const double read = medianMilliseconds(
                runs, [&target] { target = MenuDocument {}; },
                [&target, &path] {
                    if (!readMenuFile(path, target).ok()) {
                        throw RunTimeError(0, QStringLiteral("readMenuFile"), QStringLiteral("not read"));
                    }
                });
            const double readLinks = medianMilliseconds(
                runs, [&target] { target = MenuDocument {}; },
                [&target, &path] {
                    if (!openMenuFile(path, true, target).ok()) {
                        throw RunTimeError(0, QStringLiteral("readMenuFile"), QStringLiteral("not read"));
                    }
                });
            const double write = medianMilliseconds(
                runs, [] {}, [&linked, &writePath] { writeMenuFile(linked, writePath); });
            qsizetype byteCount = 0;
            const double bytes = medianMilliseconds(
                runs, [] {}, [&linked, &byteCount] { byteCount = menuFileBytes(linked).size(); });

            MenuDocument work;
            const double normalize = medianMilliseconds(
                runs, [&work, &generated] { work = detachedCopy(generated); }, [&work] { normalizeCopyLinks(work); });
            const double remove = medianMilliseconds(
                runs, [&work, &linked] { work = detachedCopy(linked); },
                [&work, &branchKey] { deleteItemTree(work, branchKey); });
            if (work.items.size() != linked.items.size() - options.branchSize) {
                std::fputs("the branch was not removed whole\n", stderr);
                return 1;
            }
            const double removeCommand = medianMilliseconds(
                runs, [&work, &linked] { work = detachedCopy(linked); },
                [&work, &branchKey] { removeItemBranch(work, branchKey); });

            out << MenuGenerator::shapeName(shape).rightJustified(11)
                << QString::number(double(QFileInfo(path).size()) / 1e6, 'f', 1).rightJustified(11)
                << QString::number(linkCount).rightJustified(11) << cell(read) << cell(readLinks) << cell(write)
                << cell(bytes) << cell(normalize) << cell(remove) << cell(removeCommand) << "\n";
            out.flush();
            Q_UNUSED(byteCount);
        }
    } catch (const RunTimeError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
