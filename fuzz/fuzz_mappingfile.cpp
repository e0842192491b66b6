// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Feeds any bytes to the type mapping reader and compares the result with a simple reader of the token list.

#include "fuzz/fuzzing.h"
#include "fuzz/xmltokens.h"
#include "userinterface/vexelconnectdlg/formats/typemapping.h"

using namespace Fuzzing;

namespace {

using StartLists = QMap<QString, QStringList>;

/// Applications of a machine. Some have no start list or no executable, some share an executable.
struct Machine
{
    QStringList applications;
    StartLists startLists;
};

Machine TakeMachine(FuzzedDataProvider& input)
{
    static const QStringList kNames{QStringLiteral("KiteControl"), QStringLiteral("Heron"), QStringLiteral("A")};
    static const QStringList kExecutables{QStringLiteral("a.exe"), QStringLiteral("b"), QString()};
    Machine machine;
    for (int count = input.ConsumeIntegralInRange(0, 5); count > 0; --count) {
        const int choice = input.ConsumeIntegralInRange(0, 11);
        const QString& name = kNames.at(choice % 3);
        machine.applications.append(name);
        if (choice / 3 < 3)
            machine.startLists[name].append(kExecutables.at(choice / 3));
    }
    return machine;
}

struct Mapping
{
    int deviceType = -1;
    QString application;
};

Mapping MappingAt(const XmlTokens& tokens, std::size_t begin)
{
    Mapping mapping;
    for (const std::size_t child : tokens.Children(begin)) {
        const QString text = tokens.DirectText(child);
        if (tokens.IsStart(child, u"DeviceType")) {
            bool isNumber = false;
            mapping.deviceType = text.toInt(&isNumber);
            mapping.deviceType = isNumber ? mapping.deviceType : -1;
        } else if (tokens.IsStart(child, u"Application")) {
            mapping.application = text;
        }
    }
    return mapping;
}

/// The executable of `mapping`; null if the mapping is dropped.
QString ExecutableOf(const Mapping& mapping, const StartLists& startLists)
{
    if (mapping.deviceType < 0 || mapping.application.isEmpty())
        return {};
    if (mapping.application.toLower().contains(QLatin1String(".exe")))
        return mapping.application;
    const QStringList startList = startLists.value(mapping.application);
    // An empty executable still counts as one, so return an empty string, not a null one.
    return startList.isEmpty() ? QString() : QLatin1String("") + startList.first();
}

struct Expected
{
    QMap<int, QString> executables;
    bool lastKept = false;
    int mappings = 0;
};

Expected ExpectedOf(const XmlTokens& tokens, const StartLists& startLists)
{
    Expected expected;
    std::size_t i = 0;
    while (i < tokens.list.size()) {
        // The root element may occur anywhere, and more than once.
        if (!tokens.IsStart(i, u"TypeApplicationMappings")) {
            ++i;
            continue;
        }
        const std::size_t end = tokens.EndOf(i);
        for (++i; i < end; ++i) {
            if (!tokens.IsStart(i, u"Mapping"))
                continue;
            const Mapping mapping = MappingAt(tokens, i);
            const QString executable = ExecutableOf(mapping, startLists);
            expected.lastKept = !executable.isNull();
            if (expected.lastKept)
                expected.executables[mapping.deviceType] = executable;
            ++expected.mappings;
            i = tokens.EndOf(i);
        }
    }
    return expected;
}

void RequireServing(const Machine& machine, const QMap<int, QString>& executables)
{
    const QMap<int, QStringList> serving =
        TypeMapping::ServingApplications(machine.applications, machine.startLists, executables);
    for (auto type = executables.cbegin(); type != executables.cend(); ++type) {
        QStringList expected;
        for (const QString& application : machine.applications) {
            const QStringList startList = machine.startLists.value(application);
            if (!startList.isEmpty() && startList.first() == type.value() && !expected.contains(application))
                expected.append(application);
        }
        Require(serving.value(type.key()) == expected, "the applications that serve a type match");
    }
    for (auto type = serving.cbegin(); type != serving.cend(); ++type)
        Require(executables.contains(type.key()) && !type->isEmpty(),
                "no application serves a type without an executable");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Tidy tidy;
    FuzzedDataProvider input(data, size);
    // FuzzedDataProvider takes numbers from the end of the input, so the document is at its start.
    const Machine machine = TakeMachine(input);
    const QByteArray document = TakeRest(input);

    BoundedXmlReader reader(document);
    QMap<int, QString> executables;
    int mappings = 0;
    int kept = 0;
    TypeMapping::Outcome last = TypeMapping::Outcome::NoDeviceType;
    const bool lastKept = TypeMapping::Read(
        reader, machine.startLists, executables, [&](int deviceType, const QString& application, auto outcome) {
            ++mappings;
            last = outcome;
            if (outcome == TypeMapping::Outcome::Kept) {
                ++kept;
                Require(deviceType >= 0 && !application.isEmpty(), "kept mappings have a type and an application");
            }
        });
    Require(reader.atEnd(), "the document is read to its end or to an error");
    Require(executables.size() <= kept, "no executable without a mapping");
    Require(lastKept == (last == TypeMapping::Outcome::Kept), "the result is true if the last mapping was kept");
    for (auto type = executables.cbegin(); type != executables.cend(); ++type) {
        Require(type.key() >= 0, "no negative types");
        Require(type.value().size() <= document.size() + 5, "no executable longer than the document");
    }
    RequireServing(machine, executables);

    const XmlTokens tokens = TokensOf(document);
    Require(reader.hasError() == tokens.hasError, "both readers agree on errors");
    if (!tokens.hasError) {
        const Expected expected = ExpectedOf(tokens, machine.startLists);
        Require(executables == expected.executables, "the executables are those of the document");
        Require(lastKept == expected.lastKept, "the result for the last mapping matches the document");
        Require(mappings == expected.mappings, "every mapping is reported");
    }
    return 0;
}
