#pragma once

#include <QKeySequence>
#include <QList>
#include <QObject>
#include <QRect>
#include <QString>
#include <QtGlobal>

class ApplicationState;
class EditorWindow;
class EditorWindowHost;
class QAction;
class QLabel;
class QMainWindow;
class QMdiArea;
class QMdiSubWindow;
class QMenu;

/// The area of the main window that holds one editor window per open menu, and the Window menu that
/// arranges and lists them (mnuCascade, mnuHorizontal, mnuVertical, and one mnuWindowName entry per
/// document slot, entry 0 being the hidden design entry "window1"). With no editor window open the
/// area says how to open a menu.
class EditorArea final : public QObject
{
    Q_OBJECT

public:
    /// Puts the area in the middle of `frame` and fills `windowMenu`. Editor windows are made with
    /// `host`; `closeKeys` (File > Close's) are taken from their frames' own Close entry.
    EditorArea(QMainWindow& frame, ApplicationState& state, EditorWindowHost& host, QMenu* windowMenu,
               QKeySequence closeKeys);

    QMdiArea* mdiArea() const { return m_mdiArea; }
    /// Cascade and the two Tile entries.
    const QList<QAction*>& arrangeEntries() const { return m_arrangeEntries; }

    /// The editor window of document `index`; null when it is closed or there is none.
    EditorWindow* editor(qint16 index) const;
    QMdiSubWindow* frameOf(const EditorWindow* editor) const;
    QMdiSubWindow* activeFrame() const;

    /// A new editor window for document `index`, shown and activated: the first one fills the area,
    /// later ones take two thirds of it.
    EditorWindow* createEditor(qint16 index);
    /// Takes the newest editor window away again (an open that failed): its frame, its Window entry
    /// and its document slot. Activates `previousFrame` when it is still there.
    void discardNewestEditor(qint16 index, QMdiSubWindow* previousFrame);
    /// Brings the editor window of document `index` to the front, restoring it when minimised.
    void activateEditor(qint16 index);
    /// Sets the caption of the editor window of document `index` and shows its Window entry with it.
    void setEditorCaption(qint16 index, const QString& caption);
    /// The editor window of document `index` has closed: its Window entry goes.
    void editorClosed(qint16 index);
    /// Closes every editor window (each asks, unless quitting).
    void closeAllEditors();
    /// Deletes every editor window at once, without a question (the main window goes).
    void deleteAllEditors();
    /// Shows or hides the hint of the empty area.
    void setHintVisible(bool visible);

Q_SIGNALS:
    /// The editor window of document `index` has become the active one.
    void editorActivated(qint16 index);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// The rectangle editor windows are placed in, in the area's own coordinates.
    QRect placementArea() const;
    void tileWindows(Qt::Orientation orientation);
    /// Gives every shown window entry an access key of its own.
    void labelWindowEntries();
    void onSubWindowActivated(QMdiSubWindow* window);

    QMainWindow& m_frame;
    ApplicationState& m_state;
    EditorWindowHost& m_host;
    QKeySequence m_closeKeys;
    QMdiArea* m_mdiArea = nullptr;
    QMenu* m_windowMenu = nullptr;
    QLabel* m_lblNoMenu = nullptr;
    QList<QAction*> m_arrangeEntries;
    /// One entry per document slot, addressed by document index (its data).
    QList<QAction*> m_mnuWindowName;
};
