// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "tests/support/fakedialog.h"

#include <QList>
#include <QVariantMap>

#include <functional>

/// A fake dialog that tells which application serves an entry, and connects entries as the test wants.
class TellingDialog : public FakeDialog
{
    Q_OBJECT

public:
    Q_INVOKABLE QVariantMap ApplicationOf(int row) const { return applications.value(row); }

    Q_INVOKABLE bool ConnectEntries(const QList<int>& rows)
    {
        connected = rows;
        if (onConnect)
            onConnect();
        return !isProgramEnding;
    }

    QList<QVariantMap> applications; // by row
    QList<int> connected;            // rows
    std::function<void()> onConnect;
    bool isProgramEnding = false;
};
