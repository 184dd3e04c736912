#include "editorarea.h"

#include "app/editorwindow.h"
#include "core/accesskeys.h"
#include "core/applicationstate.h"

#include <QAction>
#include <QEvent>
#include <QLabel>
#include <QLayout>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPalette>

namespace {

/// What the empty area says while no menu is open.
QString noMenuHint()
{
    return QStringLiteral("No menu is open.\n\nOpen a menu with %1, or drop .ini files here.")
        .arg(QKeySequence(QKeySequence::Open).toString(QKeySequence::NativeText));
}

/// The caption of the window a Window entry stands for, as the entry keeps it.
const char* const windowCaptionProperty = "windowCaption";

QAction* addEntry(QMenu* menu, const QString& name, const QString& caption)
{
    QAction* entry = menu->addAction(caption);
    entry->setObjectName(name);
    return entry;
}

} // namespace

EditorArea::EditorArea(QMainWindow& frame, ApplicationState& state, EditorWindowHost& host, QMenu* windowMenu,
                       QKeySequence closeKeys)
    : QObject(&frame)
    , m_frame(frame)
    , m_state(state)
    , m_host(host)
    , m_closeKeys(std::move(closeKeys))
    , m_windowMenu(windowMenu)
{
    m_mdiArea = new QMdiArea(&frame);
    m_mdiArea->setObjectName(QStringLiteral("mdiArea"));
    m_mdiArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_mdiArea->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    frame.setCentralWidget(m_mdiArea);
    connect(m_mdiArea, &QMdiArea::subWindowActivated, this, &EditorArea::onSubWindowActivated);

    // With no menu open the area says how to get one; the label lets clicks and drops through.
    m_lblNoMenu = new QLabel(noMenuHint(), m_mdiArea->viewport());
    m_lblNoMenu->setObjectName(QStringLiteral("lblNoMenu"));
    m_lblNoMenu->setAlignment(Qt::AlignCenter);
    m_lblNoMenu->setWordWrap(true);
    m_lblNoMenu->setAttribute(Qt::WA_TransparentForMouseEvents);
    QFont hintFont = m_lblNoMenu->font();
    if (hintFont.pointSizeF() > 0) {
        hintFont.setPointSizeF(hintFont.pointSizeF() * 1.2);
    }
    m_lblNoMenu->setFont(hintFont);
    QPalette hintPalette = m_lblNoMenu->palette();
    hintPalette.setColor(QPalette::WindowText, hintPalette.color(QPalette::Light));
    m_lblNoMenu->setPalette(hintPalette);
    m_mdiArea->viewport()->installEventFilter(this);

    QAction* mnuCascade = addEntry(windowMenu, QStringLiteral("mnuCascade"), QStringLiteral("&Cascade"));
    connect(mnuCascade, &QAction::triggered, m_mdiArea, &QMdiArea::cascadeSubWindows);
    QAction* mnuHorizontal = addEntry(windowMenu, QStringLiteral("mnuHorizontal"), QStringLiteral("Tile &Hozizontal"));
    connect(mnuHorizontal, &QAction::triggered, this, [this]() { tileWindows(Qt::Horizontal); });
    QAction* mnuVertical = addEntry(windowMenu, QStringLiteral("mnuVertical"), QStringLiteral("Tile &Vertical"));
    connect(mnuVertical, &QAction::triggered, this, [this]() { tileWindows(Qt::Vertical); });
    m_arrangeEntries = { mnuCascade, mnuHorizontal, mnuVertical };
    windowMenu->addSeparator()->setObjectName(QStringLiteral("Tire09"));
    QAction* designEntry = addEntry(windowMenu, QStringLiteral("mnuWindowName0"), QStringLiteral("window1"));
    designEntry->setData(0);
    designEntry->setVisible(false);
    m_mnuWindowName.append(designEntry);
}

EditorWindow* EditorArea::editor(qint16 index) const
{
    return dynamic_cast<EditorWindow*>(m_state.editor(index));
}

QMdiSubWindow* EditorArea::frameOf(const EditorWindow* editor) const
{
    return editor ? qobject_cast<QMdiSubWindow*>(editor->parentWidget()) : nullptr;
}

QMdiSubWindow* EditorArea::activeFrame() const
{
    return m_mdiArea->activeSubWindow();
}

QRect EditorArea::placementArea() const
{
    // Before the main window is first shown its layout has not run yet; running it now gives the area
    // the size it will have. The viewport itself only follows once the area is shown, but it is the
    // area's whole inside as long as no window sticks out of it.
    if (!m_mdiArea->isVisible()) {
        m_frame.layout()->activate();
        return QRect(QPoint(0, 0), m_mdiArea->contentsRect().size());
    }
    return m_mdiArea->viewport()->rect();
}

EditorWindow* EditorArea::createEditor(qint16 index)
{
    auto* created = new EditorWindow(m_host, index);
    QMdiSubWindow* frame = m_mdiArea->addSubWindow(created);
    frame->setAttribute(Qt::WA_DeleteOnClose);
    // The frame's own Close entry may carry File > Close's key; a key on two entries does nothing.
    if (QMenu* systemMenu = frame->systemMenu()) {
        const QList<QAction*> entries = systemMenu->actions();
        for (QAction* entry : entries) {
            QList<QKeySequence> keys = entry->shortcuts();
            if (keys.removeAll(m_closeKeys) > 0) {
                entry->setShortcuts(keys);
            }
        }
    }
    m_state.setEditor(index, created);

    QAction* entry = addEntry(m_windowMenu, QStringLiteral("mnuWindowName") + QString::number(index), QString());
    entry->setData(index); // the entry's tag: the document index
    entry->setVisible(false);
    connect(entry, &QAction::triggered, this, [this, index]() { activateEditor(index); });
    m_mnuWindowName.append(entry);

    const QRect area = placementArea();
    if (m_state.openDocumentIndexes().size() == 1) {
        // The first menu gets the whole area (its title bar still showing its name and unsaved mark).
        frame->setGeometry(area);
    } else {
        // Later ones take two thirds of it, placed by the area where they cover the others least.
        frame->resize((area.size() * 2 / 3).expandedTo(frame->minimumSizeHint()));
    }
    frame->show();
    activateEditor(index);
    return created;
}

void EditorArea::discardNewestEditor(qint16 index, QMdiSubWindow* previousFrame)
{
    EditorWindow* discarded = editor(index);
    m_state.clearEditor(index);
    if (QMdiSubWindow* frame = frameOf(discarded)) {
        m_mdiArea->removeSubWindow(frame);
        delete frame;
    }
    delete m_mnuWindowName.takeLast();
    m_state.removeLastDocumentSlot();
    if (previousFrame && m_mdiArea->subWindowList().contains(previousFrame)) {
        m_mdiArea->setActiveSubWindow(previousFrame);
    }
}

void EditorArea::activateEditor(qint16 index)
{
    QMdiSubWindow* frame = frameOf(editor(index));
    if (!frame) {
        return;
    }
    if (frame->isMinimized()) {
        frame->showNormal();
    }
    m_mdiArea->setActiveSubWindow(frame);
    Q_EMIT editorActivated(index);
}

void EditorArea::onSubWindowActivated(QMdiSubWindow* window)
{
    // A null window only means that the main window itself lost the focus; the active document
    // stays until another editor window is activated or the active one closes.
    auto* activated = window ? qobject_cast<EditorWindow*>(window->widget()) : nullptr;
    if (activated && editor(activated->documentIndex()) == activated) {
        Q_EMIT editorActivated(activated->documentIndex());
    }
}

void EditorArea::setEditorCaption(qint16 index, const QString& caption)
{
    if (EditorWindow* shown = editor(index)) {
        shown->setCaption(caption);
    }
    if (index >= 1 && index < m_mnuWindowName.size()) {
        m_mnuWindowName.at(index)->setProperty(windowCaptionProperty, caption);
        m_mnuWindowName.at(index)->setVisible(true);
        labelWindowEntries();
    }
}

void EditorArea::labelWindowEntries()
{
    // Each window's entry takes a letter of its caption that no other entry of the Window menu has.
    QString taken;
    for (const QAction* entry : std::as_const(m_arrangeEntries)) {
        taken += AccessKeys::keyOf(entry->text());
    }
    for (qsizetype index = 1; index < m_mnuWindowName.size(); ++index) {
        QAction* entry = m_mnuWindowName.at(index);
        if (entry->isVisible()) {
            entry->setText(AccessKeys::onFreeLetter(entry->property(windowCaptionProperty).toString(), taken));
        }
    }
}

void EditorArea::editorClosed(qint16 index)
{
    if (index >= 1 && index < m_mnuWindowName.size()) {
        m_mnuWindowName.at(index)->setVisible(false);
        labelWindowEntries();
    }
}

void EditorArea::closeAllEditors()
{
    m_mdiArea->closeAllSubWindows();
}

void EditorArea::deleteAllEditors()
{
    // The editor windows go before the state they show; their going must not reach anyone any more.
    disconnect(m_mdiArea, nullptr, this, nullptr);
    const QList<QMdiSubWindow*> windows = m_mdiArea->subWindowList();
    for (QMdiSubWindow* window : windows) {
        delete window;
    }
}

void EditorArea::setHintVisible(bool visible)
{
    m_lblNoMenu->setVisible(visible);
}

bool EditorArea::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_mdiArea->viewport() && event->type() == QEvent::Resize) {
        m_lblNoMenu->setGeometry(m_mdiArea->viewport()->rect());
    }
    return QObject::eventFilter(watched, event);
}

void EditorArea::tileWindows(Qt::Orientation orientation)
{
    QList<QMdiSubWindow*> windows;
    const QList<QMdiSubWindow*> all = m_mdiArea->subWindowList(QMdiArea::CreationOrder);
    for (QMdiSubWindow* window : all) {
        if (window->isVisible() && !window->isMinimized()) {
            windows.append(window);
        }
    }
    if (windows.isEmpty()) {
        return;
    }
    const QRect area = m_mdiArea->viewport()->rect();
    const int count = int(windows.size());
    // Horizontal tiling stacks the windows one above the other, each as wide as the area;
    // vertical tiling puts them side by side, each as high as the area.
    const int total = orientation == Qt::Horizontal ? area.height() : area.width();
    int start = 0;
    for (int position = 0; position < count; ++position) {
        const int end = total * (position + 1) / count;
        QMdiSubWindow* window = windows.at(position);
        if (window->isMaximized()) {
            window->showNormal();
        }
        if (orientation == Qt::Horizontal) {
            window->setGeometry(0, start, area.width(), end - start);
        } else {
            window->setGeometry(start, 0, end - start, area.height());
        }
        start = end;
    }
}
