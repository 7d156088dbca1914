#include <vandrel/vcbuttoncombo.h>

#include <vandrel/vcbutton.h>
#include <vandrel/vccombobox.h>

#include <QHBoxLayout>
#include <QPainter>

VCButtonCombo::VCButtonCombo(QWidget* parent, const QString& name, bool flag, bool noButton)
    : QWidget(parent)
    , m_pCombo(nullptr)
    , m_pButton(nullptr)
{
    setObjectName(name + QStringLiteral("Frame"));
    auto* layout = new QHBoxLayout;
    layout->setSpacing(2);
    layout->setContentsMargins(0, 0, 0, 0);
    setAutoFillBackground(false);
    m_pButton = new VCButton(this, name, noButton);
    m_pButton->SetBuddyMode(true);
    layout->addWidget(m_pButton);
    m_pCombo = new VCComboBoxButtonStyle(this, (name + QStringLiteral("Combo")).toUtf8().constData(), flag, false);
    m_pCombo->SetBuddyMode(true);
    layout->addWidget(m_pCombo);
    setFixedSize(40, 24);
    m_pButton->setFixedHeight(24);
    m_pCombo->setFixedHeight(24);
    setLayout(layout);
    m_pButton->setToolTip(name);
    m_pCombo->setToolTip(name);
}

bool VCButtonCombo::SetValueSelection_ValuePath(const QString& path)
{
    const bool comboBound = m_pCombo && m_pCombo->SetValueSelection_ValuePath(path);
    // The button is bound also when the combo's binding failed.
    const bool buttonBound = m_pButton && m_pButton->SetValueSelection_ValuePath(path);
    return comboBound && buttonBound;
}

VCButton* VCButtonCombo::GetButton()
{
    return m_pButton;
}

VCComboBoxButtonStyle* VCButtonCombo::GetCombo()
{
    return m_pCombo;
}

ResortPopupMenu* VCButtonCombo::GetPopup()
{
    return m_pCombo ? m_pCombo->GetPopup() : nullptr;
}

void VCButtonCombo::AddAction(QAction* action)
{
    if (m_pCombo)
        m_pCombo->AddAction(action);
}

void VCButtonCombo::AddMenuEntry(QString text, QObject* receiver, const char* member)
{
    if (m_pCombo)
        m_pCombo->AddMenuEntry(text, receiver, member);
}

void VCButtonCombo::SetDefaultPicture(const char* const* xpm)
{
    if (m_pButton)
        m_pButton->SetDefaultPicture(xpm);
}

bool VCButtonCombo::SetSpecialPicture(int key, const char* const* xpm, bool down)
{
    return m_pButton && m_pButton->SetSpecialPicture(key, xpm, down);
}

void VCButtonCombo::SetToolTipText(QString text)
{
    if (m_pButton)
        m_pButton->setToolTip(text);
    if (m_pCombo)
        m_pCombo->setToolTip(text);
}

void VCButtonCombo::setCurrentItem(QString item)
{
    if (m_pCombo)
        m_pCombo->setCurrentItem(item);
}

void VCButtonCombo::setEnabled(bool enable)
{
    // The two parts show the state; the frame itself is left as it is.
    if (m_pCombo)
        m_pCombo->setEnabled(enable);
    if (m_pButton)
        m_pButton->setEnabled(enable);
}

void VCButtonCombo::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    // The frame draws nothing of its own; the pen is only chosen.
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Disabled, QPalette::Light));
    painter.end();
}
