// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Feeds any bytes to the machine configuration reader and compares the result with a simple reader of the token list.

#include "fuzz/fuzzing.h"
#include "fuzz/xmltokens.h"
#include "userinterface/vexelconnectdlg/formats/machineconfiguration.h"

#include <limits>

using namespace Fuzzing;

namespace {

/// The parameter count in `text`; -1 if it does not fit into an int.
int ParameterCount(const QString& text)
{
    const QString number = text.trimmed();
    const bool isSigned = number.startsWith(u'-') || number.startsWith(u'+');
    const QString digits = number.mid(isSigned ? 1 : 0);
    for (const QChar c : digits)
        if (c < u'0' || c > u'9')
            return 0;
    bool fits = false;
    const int count = number.toInt(&fits);
    return fits || digits.isEmpty() ? count : -1;
}

struct Startup
{
    QMap<int, QString> slotTexts;
    int count = 0;

    bool IsReadable() const { return count >= 0 && count <= MachineConfiguration::kMaximumParameterCount; }
};

Startup StartupAt(const XmlTokens& tokens, std::size_t begin)
{
    Startup startup;
    for (const std::size_t child : tokens.Children(begin)) {
        const QString name = tokens.list[child].name;
        const QString text = tokens.DirectText(child);
        if (name == QLatin1String("exe")) {
            startup.slotTexts[0] = text;
        } else if (name == QLatin1String("param")) {
            startup.slotTexts[1] = text;
            startup.count = 1;
        } else if (name == QLatin1String("NumParam")) {
            startup.count = ParameterCount(text);
        } else if (name.contains(QLatin1String("Param"))) {
            bool isNumber = false;
            const int index = name.mid(5).toInt(&isNumber);
            if (isNumber)
                startup.slotTexts[index] = text;
        }
    }
    return startup;
}

/// Adds the application at `begin` to `machine`. `slotCount`: total slots of all start lists so far.
void TakeApplication(const XmlTokens& tokens, std::size_t begin, MachineConfiguration& machine, int& slotCount)
{
    const QString application = tokens.list[begin].name;
    machine.applications.append(application);
    const std::size_t end = tokens.EndOf(begin);
    for (std::size_t i = begin + 1; i < end; ++i) {
        if (!tokens.IsStart(i, u"Startup"))
            continue;
        const Startup startup = StartupAt(tokens, i);
        if (startup.IsReadable() && slotCount + startup.count + 1 <= MachineConfiguration::kMaximumSlotCount) {
            for (int index = 0; index <= startup.count; ++index)
                machine.startLists[application].append(startup.slotTexts.value(index));
            slotCount += startup.count + 1;
        } else {
            machine.unreadable.append(application);
        }
        return;
    }
}

void RequireBounds(const MachineConfiguration& machine, qsizetype size)
{
    qsizetype slotCount = 0;
    for (auto list = machine.startLists.cbegin(); list != machine.startLists.cend(); ++list) {
        Require(machine.applications.contains(list.key()), "every start list belongs to an application");
        Require(!list->isEmpty(), "a start list has an executable");
        Require(list->size() <=
                    (MachineConfiguration::kMaximumParameterCount + 1) * machine.applications.count(list.key()),
                "no application exceeds the parameter limit");
        slotCount += list->size();
        for (const QString& text : *list)
            Require(text.size() <= size, "a parameter is no longer than the document");
    }
    Require(slotCount <= MachineConfiguration::kMaximumSlotCount,
            "all start lists together stay within the slot limit");
    for (const QString& application : machine.unreadable)
        Require(machine.applications.contains(application), "every unreadable start list belongs to an application");
    for (const QString& application : machine.applications)
        Require(!application.isEmpty(), "an application has a name");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Tidy tidy;
    const QByteArray document = ToBytes(data, size);
    MachineConfiguration machine;
    BoundedXmlReader reader(document);
    const bool isMachine = machine.Read(reader);
    Require(reader.atEnd(), "the document is read to its end or to an error");
    RequireBounds(machine, document.size());

    const XmlTokens tokens = TokensOf(document);
    Require(reader.hasError() == tokens.hasError, "both readers agree on errors");
    std::size_t root = 0;
    while (root < tokens.list.size() && !tokens.IsStart(root, u"Machine"))
        ++root;
    Require(isMachine == (root < tokens.list.size()), "the result is true if there is a machine element");
    if (!isMachine) {
        Require(machine.applications.isEmpty() && machine.unreadable.isEmpty(),
                "nothing is read without a machine element");
        return 0;
    }
    if (tokens.hasError) {
        // What precedes the error is kept; how much of the last application is kept is unspecified.
        return 0;
    }
    MachineConfiguration expected;
    int slotCount = 0;
    for (const std::size_t child : tokens.Children(root))
        TakeApplication(tokens, child, expected, slotCount);
    Require(machine.applications == expected.applications, "the applications are those of the document");
    Require(machine.startLists == expected.startLists, "the start lists are those of the document");
    Require(machine.unreadable == expected.unreadable, "the unreadable applications are those of the document");
    return 0;
}
