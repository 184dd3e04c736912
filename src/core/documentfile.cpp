#include "documentfile.h"

#include "core/options.h"
#include "editing/menuopening.h"
#include "menufile/menufilewriter.h"
#include "menufile/saveproblemcheck.h"
#include "model/menudocument.h"
#include "treeview/hidemode.h"

#include <QStringList>

namespace {

/// A message box is no list to scroll through: past this many problem lines the rest is counted.
constexpr int listedProblems = 25;

QString lineEnd()
{
    return QStringLiteral("\r\n");
}

QString refusalHeading(bool severalDocuments)
{
    return (severalDocuments ? QStringLiteral("These menus cannot be saved:")
                             : QStringLiteral("This menu cannot be saved:"))
        + QStringLiteral(" a menu file cannot hold the values below, so nothing was written.") + lineEnd()
        + QStringLiteral("Change them and save again.") + lineEnd();
}

/// Appends the problem lines under `indent`, as long as fewer than `listedProblems` lines are listed.
void appendProblems(QStringList& lines, int& listed, int& unlisted, const QList<SaveProblem>& problems,
                    const QString& indent)
{
    for (const SaveProblem& problem : problems) {
        if (listed == listedProblems) {
            ++unlisted;
            continue;
        }
        lines.append(indent + problem.text());
        ++listed;
    }
}

QString joinedMessage(const QString& heading, QStringList& lines, int unlisted)
{
    if (unlisted > 0) {
        lines.append(QStringLiteral("    ... and %1 more").arg(unlisted));
    }
    return heading + lineEnd() + lines.join(lineEnd());
}

} // namespace

MenuReadResult openMenuDocument(const QString& path, const Options& options, qint16 index, MenuDocument& document,
                                FileIdentity* identity)
{
    const MenuReadResult result = openMenuFile(path, options.checkCopyCommand != 0, document, identity);
    if (result.ok()) {
        document.windowIndex = index;
        document.filePath = path;
        document.saved = true;
        document.hideMode = HideMode::applyModeChange(document.hideMode, options.startingHideMode());
    }
    return result;
}

QList<SaveProblem> documentSaveProblems(const MenuDocument& document)
{
    return findSaveProblems(document);
}

QList<SaveProblem> saveMenuDocument(MenuDocument& document, const QString& path, FileIdentity* identity)
{
    QList<SaveProblem> problems = findSaveProblems(document);
    if (!problems.isEmpty()) {
        return problems;
    }
    writeMenuFile(document, path, identity);
    document.filePath = path;
    document.saved = true;
    return problems;
}

QString saveRefusalMessage(const QList<SaveProblem>& problems)
{
    QStringList lines;
    int listed = 0;
    int unlisted = 0;
    appendProblems(lines, listed, unlisted, problems, QStringLiteral("    "));
    return joinedMessage(refusalHeading(false), lines, unlisted);
}

QString saveRefusalMessage(const QList<UnsavableDocument>& documents)
{
    QStringList lines;
    int listed = 0;
    int unlisted = 0;
    for (const UnsavableDocument& document : documents) {
        if (listed < listedProblems) {
            lines.append(QStringLiteral("    ") + document.caption + QLatin1Char(':'));
        }
        appendProblems(lines, listed, unlisted, document.problems, QStringLiteral("        "));
    }
    return joinedMessage(refusalHeading(documents.size() > 1), lines, unlisted);
}
