// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/config/readahead.h"

#include "files/fileversion.h"
#include "process/background.h"

#include <memory>
#include <utility>

namespace {

struct Reading
{
    QByteArray version; // of the file, before it was read
    DocumentReading reading;
};

class Slot
{
public:
    Slot() = default;
    ~Slot() { Wait(); }

    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;

    void Begin(const QString& file)
    {
        Wait();
        m_file = file;
        // Empty on Windows, where the destructor would wait for a thread that the end of the process has killed.
        const QByteArray version = FileVersion(file);
        if (version.isEmpty())
            return;
        auto reading = std::make_shared<std::promise<Reading>>();
        m_reading = reading->get_future();
        m_isIntact = RunInBackground([file, version, reading] {
            QString digest;
            DocumentReading read = ReadDocumentUnchecked(file, digest);
            const std::optional<DocumentText::Values> values = read.values;
            reading->set_value({version, std::move(read)});
            return values && DocumentText::IsIntact(*values, digest);
        });
    }

    std::optional<ReadAhead::Document> Take(const QString& file)
    {
        if (!m_reading.valid() || m_file != file)
            return std::nullopt;
        Reading read = m_reading.get();
        if (read.version != FileVersion(file) || read.reading.state != DocumentReading::State::Valid) {
            Wait();
            return std::nullopt;
        }
        return ReadAhead::Document{std::move(read.reading), std::move(m_isIntact)};
    }

    void WaitForReading() const
    {
        if (m_reading.valid())
            m_reading.wait();
    }

private:
    /// At the end of the process, too: the thread uses what is destroyed after this.
    void Wait()
    {
        if (m_isIntact.valid())
            m_isIntact.wait();
        m_reading = {};
        m_isIntact = {};
    }

    QString m_file;
    std::future<Reading> m_reading;
    std::future<bool> m_isIntact;
};

Slot& TheSlot()
{
    static Slot slot;
    return slot;
}

} // namespace

void ReadAhead::Begin(const QString& file)
{
    TheSlot().Begin(file);
}

std::optional<ReadAhead::Document> ReadAhead::Take(const QString& file)
{
    return TheSlot().Take(file);
}

void ReadAhead::WaitForReading()
{
    TheSlot().WaitForReading();
}
