// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/config/confignode.h"

#include "platform/config/configdocument.h"
#include "platform/config/confignames.h"

#include <utility>

namespace {

const QString kTrue = QStringLiteral("true");
const QString kFalse = QStringLiteral("false");

} // namespace

ConfigNode::ConfigNode(std::shared_ptr<ConfigDocument> document, const QString& path)
    : m_document(std::move(document))
    , m_prefix(path.isEmpty() ? QString() : path + u'/')
{
}

ICfg* ConfigNode::OpenChild(const QString& key, int /*flag*/)
{
    return new ConfigNode(m_document, PathOf(key));
}

void ConfigNode::Remove(const QString& key, int /*flag*/)
{
    m_document->Remove(PathOf(key));
}

QString ConfigNode::GetString(const QString& key, const QString& defaultValue, int /*mode*/)
{
    return m_document->Value(PathOf(key)).value_or(defaultValue);
}

int ConfigNode::GetInt(const QString& key, int defaultValue, int /*mode*/)
{
    const auto text = m_document->Value(PathOf(key));
    bool isNumber = false;
    const int value = text ? text->toInt(&isNumber) : 0;
    return isNumber ? value : defaultValue;
}

bool ConfigNode::GetBool(const QString& key, bool defaultValue, int /*mode*/)
{
    const auto text = m_document->Value(PathOf(key));
    if (!text)
        return defaultValue;
    if (text->compare(kTrue, Qt::CaseInsensitive) == 0 || *text == u'1')
        return true;
    if (text->compare(kFalse, Qt::CaseInsensitive) == 0 || *text == u'0')
        return false;
    return defaultValue;
}

void ConfigNode::SetString(const QString& key, const QString& value, int /*flag*/)
{
    m_document->SetValue(PathOf(key), value);
}

void ConfigNode::SetInt(const QString& key, int value, int /*flag*/)
{
    m_document->SetValue(PathOf(key), QString::number(value));
}

void ConfigNode::SetBool(const QString& key, bool value, int /*flag*/)
{
    m_document->SetValue(PathOf(key), value ? kTrue : kFalse);
}

QString ConfigNode::PathOf(const QString& key) const
{
    return m_prefix + ConfigNames::ToStep(key);
}
