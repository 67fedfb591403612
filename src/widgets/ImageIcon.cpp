// Icons that read their image when it is needed.
// SPDX-License-Identifier: MIT
#include "widgets/ImageIcon.h"

#include <QIcon>
#include <QIconEngine>
#include <QPainter>

namespace
{

class CImageEngine : public QIconEngine
{
public:
    explicit CImageEngine(const QString& name) : m_fileName(QStringLiteral(":/images/") + name) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        icon().paint(painter, rect, Qt::AlignCenter, mode, state);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return icon().pixmap(size, 1, mode, state); // `size` is in pixels of the screen: the caller knows the ratio
    }
    QSize actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        const QSize own = icon().availableSizes(mode, state).value(0);
        return own == own.boundedTo(size) ? own : own.scaled(size, Qt::KeepAspectRatio); // never enlarged
    }
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override
    {
        return icon().availableSizes(mode, state);
    }
    QIconEngine* clone() const override { return new CImageEngine(*this); }

private:
    const QIcon& icon()
    {
        if (m_icon.isNull())
            m_icon = QIcon(m_fileName);
        return m_icon;
    }

    QString m_fileName;
    QIcon m_icon;
};

} // namespace

QIcon imageIcon(const QString& name)
{
    return QIcon(new CImageEngine(name));
}
