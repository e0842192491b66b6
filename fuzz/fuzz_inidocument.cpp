#include "fuzz/fuzzing.h"

#include "tests/platform/inireadings.h"

#include <algorithm>
#include <array>

/// The text of a configuration document, beside what Qt's own settings make of it.

using namespace Fuzzing;
using namespace IniReadings;

namespace {

const QString kKey = QStringLiteral("Added/Key");

/// What begins as a value of another type is one to the product, while Qt looks whether it is well-formed.
bool MayBeOfAnotherType(const QString& text)
{
    constexpr std::array kBeginnings = {"@Invalid(", "@Rect(", "@Size(", "@Point("};
    return std::any_of(kBeginnings.begin(), kBeginnings.end(),
                       [&](const char* beginning) { return text.contains(QLatin1String(beginning)); });
}

/// Qt warns of values that it cannot make.
std::optional<Values> TheirsQuietly(const QByteArray& text)
{
    const QtMessageHandler handler =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    auto values = Theirs(text);
    qInstallMessageHandler(handler);
    return values;
}

bool IsSame(Values own, Values theirs)
{
    for (auto it = theirs.begin(); it != theirs.end();) {
        if (MayBeOfAnotherType(*it)) {
            own.remove(it.key());
            it = theirs.erase(it);
        } else {
            ++it;
        }
    }
    return own == theirs;
}

/// Without what makes Qt build any of its types from a stream.
QByteArray TakeDocument(FuzzedDataProvider& input)
{
    return TakeRest(input).replace('V', 'U').replace('D', 'E');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    // Numbers come from the end of the input, so the document is its beginning.
    const bool isRemoved = input.ConsumeBool();
    const QString value = TakeText(input, 40);
    const QByteArray text = TakeDocument(input);

    const auto own = Own(text);
    // A line of its own tells what is cut off, and a byte order mark is no character to Qt.
    if (!own || text.contains("\xef\xbb\xbf"))
        return 0;
    const auto theirs = TheirsQuietly(text);
    Require(theirs && IsSame(*own, *theirs), "it reads as Qt reads it");
    Require(Own(IniText(text).Text()) == own, "it reads the same from its own text");

    // One that differs in case only has another spelling than its path.
    if (std::any_of(own->keyBegin(), own->keyEnd(),
                    [](const QString& key) { return key.startsWith(QLatin1String("added"), Qt::CaseInsensitive); }))
        return 0;
    IniText changed(text);
    changed.Set(kKey, value);
    Values expected = *own;
    expected.insert(kKey, value);
    if (isRemoved && !own->isEmpty()) {
        const QString key = own->firstKey();
        changed.Remove(key);
        expected.removeIf([&](const auto& entry) { return entry.key() == key || entry.key().startsWith(key + u'/'); });
    }
    const QByteArray after = changed.Text();
    Require(Own(after) == expected, "a change is what changes, and nothing else does");
    const auto theirsAfter = TheirsQuietly(after);
    Require(theirsAfter && IsSame(expected, *theirsAfter), "and Qt reads that, too");
    return 0;
}
