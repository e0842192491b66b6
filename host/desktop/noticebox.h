#pragma once

#include <QMessageBox>
#include <QObject>
#include <QPointer>

/// Tells the person something in a box that keeps nobody from working: the dialog can be used, and can come and go,
/// while it is open.
class NoticeBox : public QObject
{
    Q_OBJECT

public:
    explicit NoticeBox(QObject* parent = nullptr);
    /// Closes an open box.
    ~NoticeBox() override;

    /// Shows `text`, in the box that is open already where there is one.
    void Tell(const QString& text);

private:
    QPointer<QMessageBox> m_pBox;
};
