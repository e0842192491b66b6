// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/support/linkport.h"

QAbstractSocket::BindMode ProbeMode()
{
    // With any other mode the port would be shared with its owner.
    return QAbstractSocket::DontShareAddress;
}
