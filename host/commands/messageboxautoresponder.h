// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QObject>
#include <QString>

/// Answers every message box as soon as it opens, with the button that Enter would press, and reports its text.
/// Installs an event filter on the application; only one object may exist.
class MessageBoxAutoResponder : public QObject
{
    Q_OBJECT

public:
    explicit MessageBoxAutoResponder(QObject* parent = nullptr);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void BoxOpened(const QString& title, const QString& text);
};
