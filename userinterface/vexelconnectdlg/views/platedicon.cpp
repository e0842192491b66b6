// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/views/platedicon.h"

#include <QIcon>
#include <QIconEngine>
#include <QPainter>

#include <utility>

namespace {

class PlatedIconEngine : public QIconEngine
{
public:
    explicit PlatedIconEngine(QIcon icon)
        : m_icon(std::move(icon))
    {
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        if (mode == QIcon::Selected)
            painter->fillRect(rect, Qt::white);
        m_icon.paint(painter, rect, Qt::AlignCenter, mode == QIcon::Selected ? QIcon::Normal : mode, state);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1);
    }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal /*scale*/) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, pixmap.rect(), mode, state);
        return pixmap;
    }

    QSize actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return m_icon.actualSize(size, mode, state);
    }

    QIconEngine* clone() const override { return new PlatedIconEngine(m_icon); }

private:
    const QIcon m_icon;
};

} // namespace

QIcon PlatedIcon(const QIcon& icon)
{
    return QIcon(new PlatedIconEngine(icon));
}
