#pragma once

#include <vandrel/vandrel_export.h>

#include <QBrush>
#include <QWidget>

/**
 * \brief A passive decoration: a one-pixel sunken outline along the widget's edges, to group controls.
 *
 * Dark top and left edges, light bottom and right edges, the two corners where they meet in between.
 * Made a few pixels high or wide it looks like an etched line. The inside is not painted, so the
 * parent shows through. The edges are translucent white, black and gray, so the line reads as sunken
 * on dark windows as on light ones, whatever the palette. Bound to no value.
 */
class VANDREL_EXPORT VCLine : public QWidget
{
    Q_OBJECT

public:
    /// \a name (null for none) becomes the object name.
    VCLine(QWidget* parent, const char* name);

protected:
    /// Reimplemented to draw the outline.
    void paintEvent(QPaintEvent* event) override;
    /// Reimplemented to redraw the outline along the new edges.
    void resizeEvent(QResizeEvent* event) override;

private:
    QBrush m_brush;
};
