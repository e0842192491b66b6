// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

namespace {

// Read from the file without loading it, by "vexelctl diagnose" and by the Unix command "what".
[[gnu::used]] const char kVersion[] = "@(#)vexelconnectdlg " VEXEL_VERSION; // NOLINT(*-avoid-c-arrays)

} // namespace
