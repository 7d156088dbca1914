#include <vandrel/vcmeasurementwidget.h>

#include <vandrel/vclabel.h>

#include <QHBoxLayout>
#include <QVBoxLayout>

VCMeasurementWidget::VCMeasurementWidget(QWidget* parent, VCMeasurementWidget::MeasurementWidgetType type)
    : QWidget(parent)
    , m_pNameLabel(nullptr)
    , m_pUnitLabel(nullptr)
    , m_pValueLabel(nullptr)
    , m_eType(type)
{
    auto* column = new QVBoxLayout;
    column->setContentsMargins(2, 2, 2, 2);
    column->setSpacing(2);
    m_pNameLabel = new VCLabel(this, nullptr, 0);
    column->addWidget(m_pNameLabel);
    // These names of results come from the tree in English; here they stand for the translation,
    // which SetValueTreePath() looks up in this class's context.
    if (m_pNameLabel->text() == QLatin1String("Bandwidth"))
        m_pNameLabel->setText(tr("Bandwidth"));
    else if (m_pNameLabel->text() == QLatin1String("Offset"))
        m_pNameLabel->setText(tr("Offset"));
    else if (m_pNameLabel->text() == QLatin1String("Field Strength"))
        m_pNameLabel->setText(tr("Field Strength"));

    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
    m_pValueLabel = new VCLabel(this, nullptr, 0);
    m_pUnitLabel = new VCLabel(this, nullptr, 0);
    row->addWidget(m_pValueLabel);
    row->addWidget(m_pUnitLabel);
    row->addStretch(0);
    column->addLayout(row);
    column->addStretch(0);

    switch (type) {
    case Level:
        m_pNameLabel->SetText(tr("Level"));
        break;
    case Quality:
        m_pNameLabel->SetText(tr("Quality"));
        break;
    case Azimuth:
        m_pNameLabel->setText(tr("Azimuth"));
        break;
    case Elevation:
        m_pNameLabel->SetText(tr("Elevation"));
        break;
    default:
        break;
    }
    if (type >= Level && type <= Elevation)
        nameAfterResult();

    setLayout(column);
    setFixedWidth(70);
}

VCMeasurementWidget::~VCMeasurementWidget()
{
    delete m_pNameLabel;
    m_pNameLabel = nullptr;
    delete m_pValueLabel;
    m_pValueLabel = nullptr;
    delete m_pUnitLabel;
    m_pUnitLabel = nullptr;
}

void VCMeasurementWidget::nameAfterResult()
{
    setObjectName(QStringLiteral("RESULT_WIDGET_%1").arg(m_pNameLabel->text()));
    m_pValueLabel->setObjectName(QStringLiteral("RESULT_MEAS_%1").arg(m_pNameLabel->text()));
}

bool VCMeasurementWidget::SetValueTreePath(const QString& path)
{
    // All four are bound whatever the others gave.
    bool found = m_pNameLabel->SetText_ValuePath(path + QLatin1String("/NAME"), true);
    found = m_pValueLabel->SetText_ValuePath(path + QLatin1String("/VALUE"), true) && found;
    found = m_pValueLabel->SetNoValue_ValuePath(path + QLatin1String("/INVALID")) && found;
    found = m_pUnitLabel->SetText_ValuePath(path + QLatin1String("/UNIT"), true) && found;
    nameAfterResult();
    if (!found)
        return false;
    // Once: a later change of the name or unit shows as the tree has it.
    m_pNameLabel->SetText(tr(m_pNameLabel->text().toUtf8().constData()));
    m_pUnitLabel->SetText(tr(m_pUnitLabel->text().toUtf8().constData()));
    return true;
}

void VCMeasurementWidget::SetZarnResults(const QString& text)
{
    m_pValueLabel->setText(text);
}
