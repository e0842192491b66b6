// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QAbstractSocket>
#include <QString>

/// Tells whether a port of this machine's loopback addresses is free. Does not connect: that would raise the dialog.
struct LinkPort
{
    bool isFree = false;
    QString error; ///< why the port could not be checked; empty on success
};

/// Binds `port` for a moment without listening: a host that starts at that moment still gets it.
LinkPort ProbePort(quint16 port);

/// Platform-specific: the bind mode that fails if somebody listens and keeps nobody else out.
QAbstractSocket::BindMode ProbeMode();
