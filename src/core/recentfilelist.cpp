#include "recentfilelist.h"

#include "ansitextfile.h"

#include <QDir>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace {

QString recentFileName()
{
    return QStringLiteral("Recent.ini");
}

} // namespace

RecentFileList::RecentFileList(QString folder)
    : m_folder(std::move(folder))
{
}

QString RecentFileList::existingFileName() const
{
    const QStringList names = QDir(m_folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    for (const QString& name : names) {
        if (name.compare(recentFileName(), Qt::CaseInsensitive) == 0) {
            return name;
        }
    }
    return {};
}

void RecentFileList::loadRecentList()
{
    const QString name = existingFileName();
    if (name.isEmpty()) {
        return;
    }
    m_separatorVisible = true;
    const std::optional<QStringList> lines = AnsiTextFile::readLines(QDir(m_folder).filePath(name));
    if (!lines) {
        return;
    }
    const qsizetype count = std::min<qsizetype>(lines->size(), FilledCount);
    for (qsizetype n = 0; n < count; ++n) {
        m_entries[static_cast<size_t>(n)].caption = lines->at(n);
        m_entries[static_cast<size_t>(n)].visible = true;
    }
}

void RecentFileList::addRecentFile(const QString& path)
{
    for (int n = 0; n < FilledCount; ++n) {
        if (m_entries[static_cast<size_t>(n)].caption == path) {
            return;
        }
    }
    for (int j = FilledCount - 1; j >= 1; --j) {
        const Entry& newer = m_entries[static_cast<size_t>(j - 1)];
        if (newer.visible) {
            m_entries[static_cast<size_t>(j)] = newer;
        }
    }
    m_entries[0] = Entry { path, true };
    m_separatorVisible = true;

    QStringList lines;
    for (int n = 0; n < FilledCount; ++n) {
        if (m_entries[static_cast<size_t>(n)].visible) {
            lines.append(m_entries[static_cast<size_t>(n)].caption);
        }
    }
    // Rewrite under the name already on disk, so a hand-made "RECENT.INI" is replaced, not doubled.
    QString name = existingFileName();
    if (name.isEmpty()) {
        name = recentFileName();
    }
    AnsiTextFile::writeLines(QDir(m_folder).filePath(name), lines);
}

RecentFileList::Entry RecentFileList::entry(int index) const
{
    if (index < 0 || index >= EntryCount) {
        return {};
    }
    return m_entries[static_cast<size_t>(index)];
}

bool RecentFileList::separatorVisible() const
{
    return m_separatorVisible;
}
