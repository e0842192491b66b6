// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QCoreApplication>
#include <QString>

/// The operator's guide: a page that is installed with the host, and opened in the user's browser.
class OperatorGuide
{
    Q_DECLARE_TR_FUNCTIONS(OperatorGuide)

public:
    /// Returns the guide installed with the host in `programDirectory`, in the language of the host's texts or else in
    /// English; empty if there is none.
    static QString File(const QString& programDirectory);

    /// Opens `file`. Returns false if there is no program for it.
    static bool Open(const QString& file);
};
