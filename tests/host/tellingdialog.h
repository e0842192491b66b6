// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "tests/support/fakedialog.h"

#include <QList>
#include <QVariantMap>

/// A fake dialog that tells which application serves an entry.
class TellingDialog : public FakeDialog
{
    Q_OBJECT

public:
    Q_INVOKABLE QVariantMap ApplicationOf(int row) const { return applications.value(row); }

    QList<QVariantMap> applications; // by row
};
