// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

class QXmlStreamReader;

/// Reads from a start element up to its end element or an error. Returns the text directly after the start tag, without
/// any text after a comment or a child element.
QString ReadElementText(QXmlStreamReader& reader);
