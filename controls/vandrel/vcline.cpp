#include <vandrel/vcline.h>

#include <QPainter>

VCLine::VCLine(QWidget* parent, const char* name)
    : QWidget(parent)
{
    setObjectName(QString::fromUtf8(name));
    m_brush = QBrush(palette().color(QPalette::Disabled, QPalette::Window), Qt::SolidPattern);
}

void VCLine::paintEvent(QPaintEvent*)
{
    // In a light palette Light is white and Shadow black: a light edge of alpha 191, a dark one of
    // alpha 91 and a middle gray where they meet. From the palette, the edges stay visible on dark ones.
    QColor light = palette().color(QPalette::Light);
    QColor dark = palette().color(QPalette::Shadow);
    QColor middle((light.red() + dark.red()) / 2, (light.green() + dark.green()) / 2, (light.blue() + dark.blue()) / 2, 91);
    light.setAlpha(191);
    dark.setAlpha(91);

    const int w = width() - 1;
    const int h = height() - 1;
    QPainter painter(this);
    painter.setPen(light);
    painter.drawLine(1, h, w, h);
    painter.drawLine(w, 1, w, h - 1);
    painter.setPen(dark);
    painter.drawLine(0, 0, w - 1, 0);
    painter.drawLine(0, 1, 0, h - 1);
    painter.setPen(middle);
    painter.drawPoint(w, 0);
    painter.drawPoint(0, h);
}

void VCLine::resizeEvent(QResizeEvent*)
{
    update();
}
