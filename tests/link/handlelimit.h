// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

/// While it exists, this process can open no file and no socket. Open ones stay usable.
class NoMoreHandles
{
public:
    NoMoreHandles();
    ~NoMoreHandles();

    NoMoreHandles(const NoMoreHandles&) = delete;
    NoMoreHandles& operator=(const NoMoreHandles&) = delete;

private:
    unsigned long m_uFormerLimit = 0;
};
