#pragma once

#include "menufile/menureadresult.h"
#include "menufile/saveproblem.h"

#include <QList>
#include <QString>
#include <QtGlobal>

class FileIdentity;
struct MenuDocument;
struct Options;

/// Opens the menu file at `path` as document `index`: reads it (with the copy-command detection when
/// the options ask for it), then the document knows its index and its file, counts as saved and
/// starts with the hide mode the options ask for. On failure the document is left partly filled and
/// must be discarded. On success `identity`, when given, receives the identity of the file read, which
/// the caller keeps beside the document (ApplicationState::setFileIdentity) for the check before a Save.
MenuReadResult openMenuDocument(const QString& path, const Options& options, qint16 index, MenuDocument& document,
                                FileIdentity* identity = nullptr);

/// The values of `document` that its menu file could not hold; saving is refused while there are any.
QList<SaveProblem> documentSaveProblems(const MenuDocument& document);

/// Writes `document` to `path`; it then belongs to that file and counts as saved. When the file could
/// not hold the document as it stands, nothing is written, the document stays as it was and the
/// problems are returned; empty when the document was written. Throws RunTimeError when the file
/// cannot be written, leaving the document and any earlier file as they were. When the document was
/// written, `identity` (when given) receives the identity of the file as written.
QList<SaveProblem> saveMenuDocument(MenuDocument& document, const QString& path, FileIdentity* identity = nullptr);

/// The problems that keep one document from being saved, under the caption of its editor window.
struct UnsavableDocument
{
    QString caption;
    QList<SaveProblem> problems;
};

/// The exclamation message that refuses to save a document: what is wrong, one problem a line.
QString saveRefusalMessage(const QList<SaveProblem>& problems);
/// The same for several documents at once (quitting saves them all or none), each under its caption.
QString saveRefusalMessage(const QList<UnsavableDocument>& documents);
