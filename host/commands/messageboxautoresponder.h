// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QObject>
#include <QString>

/// Answers the message boxes with one object name as soon as they open, with the button that Enter would press, and
/// reports their texts.
/// Installs an event filter on the application; only one object may exist.
class MessageBoxAutoResponder : public QObject
{
    Q_OBJECT

public:
    explicit MessageBoxAutoResponder(QString boxName, QObject* parent = nullptr);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void BoxOpened(const QString& title, const QString& text);

private:
    const QString m_boxName;
};
