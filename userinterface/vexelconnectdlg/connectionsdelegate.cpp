// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/connectionsdelegate.h"

#include "userinterface/vexelconnectdlg/connection.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/views/editorrouting.h"
#include "userinterface/vexelconnectdlg/views/hiddenitems.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>

#include <algorithm>
#include <array>
#include <limits>

namespace {

constexpr int kMaximumTimeout = 90000; // seconds
constexpr int kTimeoutStep = 30;       // seconds

// Characters. Shaping takes quadratic time for combining marks on one character: most of a minute for a megabyte.
constexpr qsizetype kLongestShapedText = 10'000;

// Device types that exist in stored entries but are no longer offered.
constexpr std::array kWithdrawnDeviceTypes{Connection::Heron, Connection::WrenD, Connection::Pipit};

// Creates a combo box of the values 0 to count - 1, so that an item's index is its value.
QComboBox* NewComboBox(QWidget* parent, int count, QString (*textOf)(int value))
{
    auto* const comboBox = new QComboBox(parent);
    qsizetype longest = 0;
    for (int value = 0; value < count; ++value) {
        const QString text = textOf(value);
        comboBox->addItem(text);
        longest = std::max(longest, text.size());
    }
    comboBox->setMinimumContentsLength(static_cast<int>(longest));
    comboBox->setMaxVisibleItems(count);
    return comboBox;
}

QSpinBox* NewTimeoutSpinBox(QWidget* parent)
{
    auto* const spinBox = new QSpinBox(parent);
    spinBox->setSpecialValueText(ConnectionsDelegate::tr("No Timeout"));
    spinBox->setRange(0, kMaximumTimeout);
    spinBox->setSingleStep(kTimeoutStep);
    spinBox->setSuffix(QStringLiteral(" s"));
    return spinBox;
}

QLineEdit* NewLineEdit(QWidget* parent)
{
    auto* const lineEdit = new QLineEdit(parent);
    // By default it cuts texts off after 32,767 characters.
    lineEdit->setMaxLength(std::numeric_limits<int>::max());
    return lineEdit;
}

void SetText(QLineEdit* lineEdit, const QString& text)
{
    if (text.size() > kLongestShapedText) {
        QFont font = lineEdit->font();
        font.setStyleStrategy(QFont::PreferNoShaping);
        lineEdit->setFont(font);
    }
    lineEdit->setText(text);
}

QWidget* NewEditor(QWidget* parent, int column)
{
    switch (column) {
    case ConnectionsModel::ColumnSelected:
        return new QCheckBox(parent);
    case ConnectionsModel::ColumnStatus:
        return NewComboBox(parent, Connection::kConnectionStatusCount, &Connection::StatusName);
    case ConnectionsModel::ColumnDeviceType: {
        QComboBox* const comboBox = NewComboBox(parent, Connection::kDeviceTypeCount, &Connection::DeviceTypeName);
        for (const int value : kWithdrawnDeviceTypes)
            SetItemHidden(comboBox, value, true);
        return comboBox;
    }
    case ConnectionsModel::ColumnConnectionType:
        return NewComboBox(parent, Connection::kConnectionTypeCount, &Connection::ConnectionTypeName);
    case ConnectionsModel::ColumnLinkSpeed:
        return NewComboBox(parent, Connection::kLinkSpeedCount, &Connection::LinkSpeedName);
    case ConnectionsModel::ColumnTimeout:
        return NewTimeoutSpinBox(parent);
    case ConnectionsModel::ColumnName:
    case ConnectionsModel::ColumnDeviceAddress:
    case ConnectionsModel::ColumnDriverAddress:
    case ConnectionsModel::ColumnSubsystem:
        return NewLineEdit(parent);
    default:
        return nullptr;
    }
}

// Returns the editor's value; invalid if there is no editor of a known kind.
QVariant EditedValue(QWidget* editor)
{
    if (const auto* const checkBox = qobject_cast<QCheckBox*>(editor))
        return checkBox->isChecked();
    if (const auto* const comboBox = qobject_cast<QComboBox*>(editor))
        return comboBox->currentIndex();
    if (auto* const spinBox = qobject_cast<QSpinBox*>(editor)) {
        spinBox->interpretText(); // accepts a typed number without Enter
        return spinBox->value();
    }
    if (const auto* const lineEdit = qobject_cast<QLineEdit*>(editor))
        return lineEdit->text();
    return {};
}

} // namespace

ConnectionsDelegate::ConnectionsDelegate(QObject* parent)
    : QItemDelegate(parent)
{
}

QWidget* ConnectionsDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                           const QModelIndex& index) const
{
    if (!index.isValid())
        return nullptr;
    QWidget* const editor = NewEditor(parent, index.column());
    RememberCell(editor, index);
    setEditorData(editor, index);
    return editor;
}

void ConnectionsDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    if (editor && (!index.isValid() || index.column() >= ConnectionsModel::kColumnCount))
        return;
    // The column determines the kind of editor.
    const QVariant value = index.data(Qt::EditRole);
    if (auto* const checkBox = qobject_cast<QCheckBox*>(editor))
        checkBox->setChecked(value.toBool());
    else if (auto* const comboBox = qobject_cast<QComboBox*>(editor))
        comboBox->setCurrentIndex(value.toInt());
    else if (auto* const spinBox = qobject_cast<QSpinBox*>(editor))
        spinBox->setValue(value.toInt());
    else if (auto* const lineEdit = qobject_cast<QLineEdit*>(editor))
        SetText(lineEdit, value.toString());
}

void ConnectionsDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
    if (!model || (editor && !index.isValid()))
        return;
    QVariant value;
    if (index.isValid() && index.column() < ConnectionsModel::kColumnCount) {
        value = EditedValue(editor);
        if (!value.isValid())
            return; // the model would read an invalid value as 0 or an empty text
    }
    model->setData(index, value, Qt::EditRole);
}

void ConnectionsDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                               const QModelIndex& /*index*/) const
{
    if (!editor)
        return;
    QRect geometry(QPoint(0, 0), option.rect.size().expandedTo(editor->sizeHint()));
    geometry.moveCenter(option.rect.center());
    editor->setGeometry(geometry);
}
