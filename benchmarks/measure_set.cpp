// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Loading and storing the set, and the memory per entry.

#include "benchmarks/lists.h"
#include "benchmarks/runner.h"
#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QApplication>
#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <malloc.h>

#include <memory>

namespace {

const QString kName = QStringLiteral("ConnectionsModel");

void Store(benchmark::State& state, int entries)
{
    const QTemporaryDir directory;
    CfgCenter::Open(directory.path());
    {
        ConnectionsModel model(nullptr, kName);
        Lists::Fill(model, Lists::Entries(entries));
        int ticked = 0;
        for (auto iteration : state) {
            // Change the set, because an unchanged set is not saved.
            model.setData(model.index(0, ConnectionsModel::ColumnSelected), ++ticked % 2 == 0);
            state.SetIterationTime(Runner::Seconds([&] {
                if (!model.SetConfiguration() || !CfgCenter::SaveDocument())
                    state.SkipWithError("the set could not be stored");
            }));
        }
    }
    CfgCenter::Close();
}

void StoreBytes(benchmark::State& state, int entries)
{
    const QTemporaryDir directory;
    const std::vector<Connection> list = Lists::Entries(entries);
    const QByteArray document = Lists::Document(list);
    for (auto iteration : state) {
        state.SetIterationTime(Runner::Seconds([&] {
            QSaveFile file(directory.filePath(QStringLiteral("set")));
            if (!file.open(QIODevice::WriteOnly) || file.write(document.toHex()) < 0 || !file.commit())
                state.SkipWithError("the bytes could not be stored");
        }));
    }
}

void Load(benchmark::State& state, int entries)
{
    const QTemporaryDir directory;
    CfgCenter::Open(directory.path());
    {
        ConnectionsModel model(nullptr, kName);
        Lists::Fill(model, Lists::Entries(entries));
    }
    CfgCenter::SaveDocument();
    for (auto iteration : state) {
        CfgCenter::Close();
        CfgCenter::Open(directory.path());
        std::unique_ptr<ConnectionsModel> model;
        state.SetIterationTime(Runner::Seconds([&] { model = std::make_unique<ConnectionsModel>(nullptr, kName); }));
        if (model->rowCount() != entries)
            state.SkipWithError("not all entries were loaded");
    }
    CfgCenter::Close();
}

void LoadBytes(benchmark::State& state, int entries)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("set"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return state.SkipWithError("there is no file");
    file.write(Lists::Document(Lists::Entries(entries)).toHex());
    file.close();
    for (auto iteration : state) {
        state.SetIterationTime(Runner::Seconds([&] {
            QFile stored(path);
            if (!stored.open(QIODevice::ReadOnly))
                state.SkipWithError("the file cannot be read");
            QXmlStreamReader reader(QByteArray::fromHex(stored.readAll()));
            while (!reader.atEnd())
                benchmark::DoNotOptimize(reader.readNext());
        }));
    }
}

/// Heap bytes in use, including large blocks.
std::size_t Held()
{
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

/// Times filling the model. The counters are the bytes per entry.
void Hold(benchmark::State& state, int entries)
{
    CfgCenter::Close();
    const std::vector<Connection> list = Lists::Entries(entries);
    const QByteArray document = Lists::Document(list);
    std::size_t held = 0;
    for (auto iteration : state) {
        ConnectionsModel model(nullptr, kName);
        model.removeRows(0, model.rowCount());
        const std::size_t before = Held();
        // Read from a document, because copied entries would share their texts.
        state.SetIterationTime(Runner::Seconds([&] { model.FromByteArray(document); }));
        held = Held() - before;
        CfgCenter::Close();
    }
    state.counters["bytes per entry"] = static_cast<double>(held) / entries;
    state.counters["of which text"] = static_cast<double>(Lists::TextBytes(list)) / entries;
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    Runner::Enter("store the set", "product", Store);
    Runner::Enter("store the set", "QSaveFile, the same bytes in hex", StoreBytes);
    Runner::Enter("load the set", "product", Load);
    Runner::Enter("load the set", "QFile, hex decoding, tokens only", LoadBytes);
    Runner::Enter("fill the model", "product", Hold);
    return Runner::Run(argc, argv);
}
