#pragma once

#include <vandrel/vandrel_export.h>

#include <QWidget>

class VCLabel;

/**
 * \brief One measurement result, 70 pixels wide: its name above, its value and unit side by side below.
 *
 * Three VCLabel%s show the children of a result branch in the value tree: "/NAME" and "/UNIT" as text,
 * "/VALUE" as a number (or text), and "/INVALID", a boolean, switches the value to "- - -". The type
 * fixes a title in place of the name. Name and unit are translated once, when the branch is bound.
 */
class VANDREL_EXPORT VCMeasurementWidget : public QWidget
{
    Q_OBJECT

public:
    /// The title over the value; with ResultName the name comes from the tree.
    enum MeasurementWidgetType { ResultName = 0, Level = 1, Quality = 2, Azimuth = 3, Elevation = 4 };

    /// An unbound block 70 pixels wide, titled after \a type; with ResultName the title is the name of the
    /// result bound later.
    VCMeasurementWidget(QWidget* parent, VCMeasurementWidget::MeasurementWidgetType type);
    ~VCMeasurementWidget() override;

    /**
     * \brief Binds the labels to the children of the result at \a path and names the widget after it.
     *
     * Every child found stays bound; false when one is missing, and then name and unit are not
     * translated.
     */
    bool SetValueTreePath(const QString& path);
    /// Shows \a text as the value, as it stands: no suffix, format or no-value state. The next change
    /// of the value replaces it.
    void SetZarnResults(const QString& text);

private:
    void nameAfterResult();

    VCLabel* m_pNameLabel;
    VCLabel* m_pUnitLabel;
    VCLabel* m_pValueLabel;
    MeasurementWidgetType m_eType;
};
