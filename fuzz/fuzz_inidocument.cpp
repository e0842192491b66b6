#include "fuzz/fuzzing.h"

#include "platform/initext.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QSettings>
#include <QTemporaryDir>
#include <QVariant>

#include <algorithm>
#include <array>
#include <optional>

/// The text of a configuration document, beside what Qt's own settings make of it.

using namespace Fuzzing;

namespace {

using Values = QMap<QString, QString>;

const QString s_key = QStringLiteral("Added/Key");

/// Keys that are spelled as the store never spells them belong to nobody.
bool CanBeAskedFor(const QString& key)
{
    return !key.isEmpty() && !key.startsWith(u'/') && !key.endsWith(u'/') && !key.contains(QLatin1String("//")) &&
           !key.contains(u'%') && !key.contains(u'\\');
}

std::optional<Values> Own(const QByteArray& text)
{
    const IniText own(text);
    if (own.IsDamaged()) {
        return std::nullopt;
    }
    Values values = own.Values();
    values.removeIf([](const auto& entry) { return !CanBeAskedFor(entry.key()); });
    return values;
}

/// Nothing for other types than text.
std::optional<QString> TextOf(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString();
    case QMetaType::QByteArray:
        return QString::fromUtf8(value.toByteArray());
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        QStringList texts;
        for (const QVariant& item : value.toList()) {
            texts += TextOf(item).value_or(QString());
        }
        return texts.join(QStringLiteral(", "));
    }
    default:
        return std::nullopt;
    }
}

/// What begins as a value of another type is one to the product, while Qt looks whether it is well-formed.
bool MayBeOfAnotherType(const QString& text)
{
    constexpr std::array s_beginnings = {"@Invalid(", "@Rect(", "@Size(", "@Point("};
    return std::any_of(s_beginnings.begin(), s_beginnings.end(),
                       [&](const char* beginning) { return text.contains(QLatin1String(beginning)); });
}

std::optional<Values> Theirs(const QByteArray& text)
{
    static const QTemporaryDir s_folder;
    static int s_files = 0;
    // Never the same name twice: what is read of a file is remembered.
    const QString path = s_folder.filePath(QString::number(++s_files));
    QFile file(path);
    Require(file.open(QIODevice::WriteOnly) && file.write(text) == text.size(), "there is room for a copy");
    file.close();

    // Qt warns of values that it cannot make.
    const QtMessageHandler handler =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    std::optional<Values> values(std::in_place);
    {
        const QSettings settings(path, QSettings::IniFormat);
        const QStringList keys = settings.allKeys();
        for (const QString& key : keys) {
            const auto value = CanBeAskedFor(key) ? TextOf(settings.value(key)) : std::nullopt;
            if (value) {
                values->insert(key, *value);
            }
        }
        if (settings.status() != QSettings::NoError) {
            values.reset();
        }
    }
    qInstallMessageHandler(handler);
    QFile::remove(path);
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
    if (!own || text.contains("\xef\xbb\xbf")) {
        return 0;
    }
    const auto theirs = Theirs(text);
    Require(theirs && IsSame(*own, *theirs), "it reads as Qt reads it");
    Require(Own(IniText(text).Text()) == own, "it reads the same from its own text");

    // One that differs in case only has another spelling than its path.
    if (std::any_of(own->keyBegin(), own->keyEnd(),
                    [](const QString& key) { return key.startsWith(QLatin1String("added"), Qt::CaseInsensitive); })) {
        return 0;
    }
    IniText changed(text);
    changed.Set(s_key, value);
    Values expected = *own;
    expected.insert(s_key, value);
    if (isRemoved && !own->isEmpty()) {
        const QString key = own->firstKey();
        changed.Remove(key);
        expected.removeIf([&](const auto& entry) { return entry.key() == key || entry.key().startsWith(key + u'/'); });
    }
    const QByteArray after = changed.Text();
    Require(Own(after) == expected, "a change is what changes, and nothing else does");
    const auto theirsAfter = Theirs(after);
    Require(theirsAfter && IsSame(expected, *theirsAfter), "and Qt reads that, too");
    return 0;
}
