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
    // Translucent edges over whatever the parent paints: light below and right, dark above and left,
    // which reads as sunken on light and dark windows alike.
    const QColor light(255, 255, 255, 191);
    const QColor dark(0, 0, 0, 91);
    const QColor middle(127, 127, 127, 91);

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
