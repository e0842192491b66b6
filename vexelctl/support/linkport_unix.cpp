// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/support/linkport.h"

QAbstractSocket::BindMode ProbeMode()
{
    // Two sockets bound like this can share the port as long as they do not listen.
    return QAbstractSocket::DontShareAddress | QAbstractSocket::ReuseAddressHint;
}
