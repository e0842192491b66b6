// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/picturefile.h"

#include "vexelctl/commandline.h"
#include "vexelctl/hostrequest.h"
#include "vexelctl/output.h"

#include <utility>

namespace {

/// How every PNG file ends.
constexpr QByteArrayView kEnd("IEND\xAE\x42\x60\x82");

} // namespace

PictureFile::PictureFile(const char* moment, QString file)
    : m_moment(QLatin1String(moment))
    , m_file(std::move(file))
{
}

bool PictureFile::IsObstructed() const
{
    if (m_file.isEmpty() || m_file == CtlOptions::kStandardStream)
        return false;
    const QString obstacle = WritingObstacle(m_file);
    if (!obstacle.isEmpty())
        Fail(ExitCode::Unusable, QStringLiteral("cannot write %1: %2").arg(m_file, obstacle));
    return !obstacle.isEmpty();
}

void PictureFile::Take(const QJsonObject& line)
{
    if (m_file.isEmpty() || TypeOf(line) != QLatin1String("picture") ||
        line.value(QLatin1String("moment")).toString() != m_moment)
        return;
    m_picture += QByteArray::fromBase64(line.value(QLatin1String("base64")).toString().toLatin1());
    if (m_picture.endsWith(kEnd))
        m_isWritten = WriteResult(m_file, std::exchange(m_picture, {})) == ExitCode::Done;
}
