// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/kitecontrol/kitecontrolwindow.h"

#include "userinterface/kitecontrol/launchreport.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// Characters. A name may be a megabyte long, and laying it out in a label would block for minutes.
constexpr qsizetype kMaximumShownLength = 240;

constexpr int kMinimumValueWidth = 120;
constexpr int kWindowWidth = 600;

QString Elided(const QString& text)
{
    return text.size() > kMaximumShownLength ? text.left(kMaximumShownLength) + QChar(0x2026) : text;
}

QLabel* ValueLabel(const QString& text, const QString& objectName)
{
    auto* const label = new QLabel(text.isEmpty() ? QString(QChar(0x2013)) : Elided(text));
    label->setObjectName(objectName);
    label->setTextFormat(Qt::PlainText); // names may contain markup
    label->setWordWrap(true);
    label->setMinimumWidth(kMinimumValueWidth); // the default is the longest word, which may be a whole path
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return label;
}

void Scale(QLabel* label, qreal factor, bool bold)
{
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * factor);
    font.setBold(bold);
    label->setFont(font);
}

QFormLayout* AddGroup(QWidget* window, const QString& title)
{
    auto* const group = new QGroupBox(title);
    auto* const form = new QFormLayout(group);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignTop);
    form->setHorizontalSpacing(16);
    window->layout()->addWidget(group);
    return form;
}

} // namespace

KiteControlWindow::KiteControlWindow(const LaunchReport& report, QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("KiteControlWindow"));
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->setSpacing(12);

    AddHeading(report);
    if (report.record)
        AddRecord(report);
    else if (!report.candidates.empty())
        AddCandidates(report);
    AddStart(report);
    layout->addStretch();
    AddButtons();
    resize(kWindowWidth, layout->totalHeightForWidth(kWindowWidth));
}

void KiteControlWindow::AddHeading(const LaunchReport& report)
{
    const QString application = report.application.isEmpty() ? report.program : report.application;
    const QString station = report.station.isEmpty() ? tr("unknown entry") : report.station;
    setWindowTitle(Elided(tr("%1 - %2").arg(application, station)));

    auto* const applicationLabel = ValueLabel(application, QStringLiteral("m_pApplication"));
    Scale(applicationLabel, 1.6, true);
    auto* const stationLabel = ValueLabel(station, QStringLiteral("m_pStation"));
    Scale(stationLabel, 1.15, false);
    auto* const line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);

    layout()->addWidget(applicationLabel);
    layout()->addWidget(stationLabel);
    layout()->addWidget(line);
}

void KiteControlWindow::AddRecord(const LaunchReport& report)
{
    QFormLayout* const form = AddGroup(this, tr("Record ConnectData%1").arg(report.record->m_nIndex));
    for (const LaunchReport::Fact& fact : LaunchReport::Facts(*report.record)) {
        const QString label = QCoreApplication::translate("LaunchReport", fact.label);
        form->addRow(label + QLatin1Char(':'), ValueLabel(fact.value, QLatin1String(fact.label)));
    }
}

void KiteControlWindow::AddCandidates(const LaunchReport& report)
{
    auto* const group = new QGroupBox(tr("Possible records"));
    auto* const list = new QListWidget;
    list->setObjectName(QStringLiteral("m_pCandidates"));
    list->setAlternatingRowColors(true);
    list->setWordWrap(true);
    const auto listed = std::min(report.candidates.size(), std::size_t(LaunchReport::kMaximumCandidates));
    for (std::size_t i = 0; i < listed; ++i)
        list->addItem(Elided(LaunchReport::Summary(report.candidates[i])));
    if (listed < report.candidates.size())
        list->addItem(tr("and %n more", nullptr, int(report.candidates.size() - listed)));
    auto* const groupLayout = new QVBoxLayout(group);
    groupLayout->addWidget(list);
    layout()->addWidget(group);
}

void KiteControlWindow::AddStart(const LaunchReport& report)
{
    QFormLayout* const form = AddGroup(this, tr("Start"));
    form->addRow(tr("Finding:"), ValueLabel(report.finding, QStringLiteral("m_pFinding")));
    form->addRow(tr("Command line:"), ValueLabel(report.CommandLine(), QStringLiteral("m_pCommandLine")));
    form->addRow(tr("Configuration:"), ValueLabel(report.configuration, QStringLiteral("m_pConfiguration")));
}

void KiteControlWindow::AddButtons()
{
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QWidget::close);
    buttons->button(QDialogButtonBox::Close)->setDefault(true);
    layout()->addWidget(buttons);
}
