// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/listfiles.h"

#include "files/boundedfile.h"
#include "process/standardstreams.h"
#include "vexelctl/commandline.h"

QString ListFileError::Sentence() const
{
    if (!obstacle.isEmpty())
        return QStringLiteral("cannot read %1: %2").arg(file, obstacle);
    return QStringLiteral("%1 cannot be used as a connection list: %2").arg(file, error.Sentence());
}

std::optional<Entries> ReadListFiles(const QStringList& files, ListFileError& error)
{
    Entries entries;
    ConnectionList::Room room;
    for (const QString& file : files) {
        const bool isInput = file == CtlOptions::kStandardStream;
        error = {isInput ? QStringLiteral("standard input") : file, {}, {}};
        const std::optional<QByteArray> document =
            isInput ? StandardStreams::ReadInput(ConnectionList::kMaximumSize, &error.obstacle)
                    : ReadRegularFile(file, ConnectionList::kMaximumSize, &error.obstacle);
        if (!document)
            return std::nullopt;
        const std::size_t before = entries.size();
        const auto take = [&entries](const Connection& entry) {
            entries.push_back(entry);
            entries.back().ConnectionStatus = Connection::Free;
        };
        if (!ConnectionList::Read(*document, take, room, &error.error))
            return std::nullopt;
        for (std::size_t i = before; i < entries.size(); ++i)
            room.bytes -= ConnectionList::WrittenSize(entries[i]);
        room.entries -= static_cast<qint64>(entries.size() - before);
    }
    return entries;
}

QByteArray ToDocument(const Entries& entries)
{
    std::vector<const Connection*> pointers;
    pointers.reserve(entries.size());
    for (const Connection& entry : entries)
        pointers.push_back(&entry);
    return ConnectionList::Write(pointers);
}
