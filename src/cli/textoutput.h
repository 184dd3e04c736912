#pragma once

#include <QString>
#include <QStringView>

class QIODevice;

/// Text going out to a device as UTF-8, for kelvmenu's standard output. Long texts are converted
/// and written in pieces of a bounded size, so that printing a caption of many megabytes needs no
/// copy of the whole text. The first failing write is remembered: nothing more is written after it,
/// and the caller reports it once.
class TextOutput final
{
public:
    explicit TextOutput(QIODevice& device);

    TextOutput(const TextOutput&) = delete;
    TextOutput& operator=(const TextOutput&) = delete;

    void write(QStringView text);
    void write(QLatin1String text);
    void write(QChar character) { write(QStringView(&character, 1)); }

    /// Hands everything written so far on to the system (the device's buffer and, for a file or a
    /// standard stream, the C library's). Returns false when this or any write before it failed.
    bool finish();

    bool failed() const { return m_failed; }
    /// Why writing failed, as the system tells it ("No space left on device").
    QString errorString() const { return m_error; }

private:
    void writeBytes(const char* data, qsizetype size);

    QIODevice& m_device;
    bool m_failed = false;
    QString m_error;
};
