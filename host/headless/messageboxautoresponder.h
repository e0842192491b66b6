#pragma once

#include <QObject>
#include <QString>

/// Stands in for the person who is not there: each message box that opens is answered at once, with the button that
/// Enter would press, and what it says is announced. One object at a time, on the application.
class MessageBoxAutoResponder : public QObject
{
    Q_OBJECT

public:
    explicit MessageBoxAutoResponder(QObject* parent = nullptr);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void BoxOpened(const QString& title, const QString& text);
};
