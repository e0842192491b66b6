// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

/// Buffers Qt's messages during its start-up. They are passed on in the destructor. If Qt aborts because it has no
/// usable display, prints one line and ends the process with `ExitCode::Unusable`; nothing needs saving at that point.
class QtStartMessages
{
public:
    QtStartMessages();
    ~QtStartMessages();

    QtStartMessages(const QtStartMessages&) = delete;
    QtStartMessages& operator=(const QtStartMessages&) = delete;
};

/// Filters out Qt's warnings about a missing desktop or user session, which are expected in headless use.
void SuppressHeadlessWarnings();
