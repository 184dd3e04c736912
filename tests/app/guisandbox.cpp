#include "guisandbox.h"

#include "app/mainwindow.h"
#include "core/optionsstore.h"
#include "core/programfolder.h"
#include "menufile/windows1252codec.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QTest>

GuiSandbox::GuiSandbox()
{
    QDir root(m_root.path());
    root.mkpath(QStringLiteral("program"));
    root.mkpath(QStringLiteral("menus"));
    root.mkpath(QStringLiteral("settings"));
    ProgramFolder::setOverride(programFolder());
    m_optionsStore = std::make_unique<OptionsStore>(m_root.filePath(QStringLiteral("settings/options.ini")));
}

GuiSandbox::~GuiSandbox()
{
    m_window.reset();
    ProgramFolder::setOverride(QString());
}

QString GuiSandbox::programFolder() const
{
    return m_root.filePath(QStringLiteral("program"));
}

QString GuiSandbox::menuFolder() const
{
    return m_root.filePath(QStringLiteral("menus"));
}

QString GuiSandbox::recoveryFolder() const
{
    return m_recoveryFolder.isEmpty() ? m_root.filePath(QStringLiteral("recovery")) : m_recoveryFolder;
}

QString GuiSandbox::menuPath(const QString& fileName) const
{
    return menuFolder() + QLatin1Char('/') + fileName;
}

QString GuiSandbox::copyExample(const QString& exampleName, const QString& fileName) const
{
    const QString target = menuPath(fileName.isEmpty() ? exampleName : fileName);
    QFile::remove(target);
    if (!QFile::copy(QStringLiteral(KELV_EXAMPLES_DIR "/") + exampleName, target)) {
        return QString();
    }
    // Copies of read-only sources stay read-only; the tests write over them.
    QFile::setPermissions(target, QFile::permissions(target) | QFileDevice::WriteOwner | QFileDevice::WriteUser);
    return target;
}

QString GuiSandbox::writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        return QString();
    }
    return path;
}

QByteArray GuiSandbox::readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return QByteArray();
    }
    return file.readAll();
}

QByteArray GuiSandbox::menuBytes(const QStringList& itemLines, const QStringList& commandLines)
{
    QStringList lines = { QStringLiteral("KELV - Menu"), QString(), QStringLiteral("[Menu]"), QString() };
    lines += itemLines;
    lines += { QString(), QStringLiteral("[/Menu]"), QString(), QStringLiteral("[Commands]"), QString() };
    lines += commandLines;
    lines += { QString(), QStringLiteral("[/Commands]") };
    return Windows1252Codec::encode(lines.join(QStringLiteral("\r\n")));
}

MainWindow& GuiSandbox::window()
{
    if (!m_window) {
        m_window = std::make_unique<MainWindow>(m_prompts, *m_optionsStore, programFolder(), recoveryFolder());
    }
    return *m_window;
}

void GuiSandbox::dropWindow()
{
    m_window.reset();
}

QAction* GuiSandbox::action(const QString& name)
{
    return window().findChild<QAction*>(name);
}

void GuiSandbox::trigger(const QString& name)
{
    QAction* entry = action(name);
    QVERIFY2(entry, qPrintable(name));
    QVERIFY2(entry->isEnabled(), qPrintable(name + QStringLiteral(" is off")));
    entry->trigger();
}

qint16 GuiSandbox::openMenu(const QString& fileName, const QStringList& itemLines, const QStringList& commandLines)
{
    const QString path = writeFile(menuPath(fileName), menuBytes(itemLines, commandLines));
    if (path.isEmpty()) {
        return 0;
    }
    return window().openMenu(path, fileName);
}

bool GuiSandbox::showWindow()
{
    window().show();
    window().activateWindow();
    return QTest::qWaitForWindowActive(&window());
}
