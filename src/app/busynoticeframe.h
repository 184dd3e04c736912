#pragma once

#include <QFrame>

class QLabel;

/// The busy notice of an editor window (frm01 with lblReconstruct): it floats in the middle of the
/// window, outside its layout, and is shown only while long work runs on the user-interface thread,
/// as "Loading..." or "Generating tree ...".
class BusyNoticeFrame final : public QFrame
{
    Q_OBJECT

public:
    explicit BusyNoticeFrame(QWidget* window);

    /// Shows `text` and paints the notice at once: nothing else runs while the work goes on.
    void showNotice(const QString& text);
    QString text() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void place();

    QLabel* m_lblReconstruct = nullptr;
};
