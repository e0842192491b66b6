// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Its target owns the tests' precompiled header. The program is never run.
int main()
{
    return 0;
}
