#include "platform/config/confignames.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace {

constexpr QChar kEscape = u'%';
constexpr qsizetype kDigits = 4;

// Stands for the empty name. The escape sign is otherwise always followed by its digits, so it cannot be mistaken.
const QString kEmptyName = kEscape;

QString Escaped(QChar character)
{
    return kEscape + QString::number(character.unicode(), 16).rightJustified(kDigits, u'0').toUpper();
}

bool IsHexadecimal(QChar character)
{
    const char16_t unit = character.unicode();
    return (unit >= u'0' && unit <= u'9') || (unit >= u'A' && unit <= u'F') || (unit >= u'a' && unit <= u'f');
}

QString ViewFolder(View view)
{
    switch (view) {
    case View::User:
        return QStringLiteral("user");
    case View::Application:
        return QStringLiteral("application");
    case View::Shared:
        return QStringLiteral("shared");
    }
    return QStringLiteral("view%1").arg(static_cast<int>(view));
}

// Dots are escaped as well. That takes care of "..", of hidden files, of the trailing dot that Windows drops, and of a
// folder that would bear the name of another document's file, lock or damaged copy: all of those have a dot.
QString FileStep(const QString& name)
{
    if (name.isEmpty())
        return kEmptyName;

    // Names of devices, whatever extension follows them.
    static const QRegularExpression device(QStringLiteral("^(CON|PRN|AUX|NUL|COM[0-9]|LPT[0-9])$"),
                                           QRegularExpression::CaseInsensitiveOption);
    const QByteArray encoded = name.toUtf8().toPercentEncoding({}, ".~");
    if (device.match(name).hasMatch())
        return QStringLiteral("%") + QString::number(name.front().unicode(), 16).toUpper() +
               QString::fromLatin1(encoded.mid(1));
    return QString::fromLatin1(encoded);
}

} // namespace

QString ConfigNames::ToStep(const QString& name)
{
    if (name.isEmpty())
        return kEmptyName;

    const auto isSpecial = [](QChar character) {
        return character == u'/' || character == u'\\' || character == kEscape;
    };
    if (std::none_of(name.begin(), name.end(), isSpecial))
        return name;

    QString step;
    for (const QChar character : name)
        step += isSpecial(character) ? Escaped(character) : QString(character);
    return step;
}

QString ConfigNames::ToEscapedStep(const QString& name)
{
    if (name.isEmpty())
        return kEmptyName;

    QString step;
    for (const QChar character : name)
        step += Escaped(character);
    return step;
}

QString ConfigNames::FromStep(const QString& step)
{
    if (!step.contains(kEscape))
        return step;
    if (step == kEmptyName)
        return {};

    QString name;
    for (qsizetype i = 0; i < step.size(); ++i) {
        const QStringView digits = QStringView(step).mid(i + 1, kDigits);
        // Only digits: a number may have blanks and a sign before it.
        if (step.at(i) == kEscape && digits.size() == kDigits &&
            std::all_of(digits.begin(), digits.end(), IsHexadecimal)) {
            name += QChar(digits.toUShort(nullptr, 16));
            i += kDigits;
            continue;
        }
        name += step.at(i);
    }
    return name;
}

QString ConfigNames::ApplicationFile(View view)
{
    // The sign is escaped in every document's name.
    return ViewFolder(view) + QStringLiteral("/@application.ini");
}

QString ConfigNames::DocumentFile(View view, const QString& name)
{
    QString file = ViewFolder(view);
    const QStringList steps = name.split(u'/');
    for (const QString& step : steps)
        file += u'/' + FileStep(step);
    return file + QStringLiteral(".ini");
}
