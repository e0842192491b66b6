// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QCoreApplication>
#include <QString>
#include <QTranslator>

#include <utility>

/// Translates all texts of one context by putting them in brackets, from construction to destruction.
class MarkingTranslator : public QTranslator
{
public:
    explicit MarkingTranslator(QString context)
        : m_context(std::move(context))
    {
        QCoreApplication::installTranslator(this);
    }
    ~MarkingTranslator() override { QCoreApplication::removeTranslator(this); }
    Q_DISABLE_COPY_MOVE(MarkingTranslator)

    static QString Marked(const QString& text) { return QLatin1Char('[') + text + QLatin1Char(']'); }

    QString translate(const char* context, const char* sourceText, const char* /*disambiguation*/,
                      int /*n*/) const override
    {
        return m_context == QLatin1String(context) ? Marked(QString::fromUtf8(sourceText)) : QString();
    }
    bool isEmpty() const override { return false; }

private:
    QString m_context;
};
