#include <vandrel/vconeofbuttoncombo.h>

#include <vandrel/binding/binding.h>
#include <vandrel/buddy_p.h>
#include <vandrel/vccombobox.h>
#include <vandrel/vconeofbutton.h>

namespace {

QPixmap fromXpm(const char* const* xpm)
{
    return xpm ? QPixmap(xpm) : QPixmap();
}

} // namespace

// The combo asks its compound through the private buddy interface; the compound's public bases stay
// those of a tool bar and an observer.
struct VCOneOfButtonCombo::Buddy : ComboBuddy
{
    explicit Buddy(VCOneOfButtonCombo* owner)
        : m_pOwner(owner)
    {
    }
    bool isValueValid(QString value) override { return m_pOwner->isValueValid(value); }
    void NewValueFromCombo(QString value) override { m_pOwner->NewValueFromCombo(value); }

    VCOneOfButtonCombo* m_pOwner;
};

VCOneOfButtonCombo::VCOneOfButtonCombo(QWidget* parent, const char* name, bool flag)
    : QToolBar(parent)
    , m_pCombo(nullptr)
    , m_pButton(nullptr)
    , m_pValueSelection(nullptr)
    , m_pBuddy(new Buddy(this))
{
    const QString strName = QString::fromUtf8(name);
    setObjectName(strName);
    setAutoFillBackground(false);
    m_pButton = new VCOneOfButton(strName + QStringLiteral("_button"), this, static_cast<const char* const*>(nullptr),
                                  static_cast<const char* const*>(nullptr), QString());
    m_pCombo = new VCComboBoxButtonStyle(this, (strName + QStringLiteral("_combo")).toUtf8().constData(), flag, false);
    m_pCombo->SetBuddyMode(true);
    m_pCombo->SetOneOfButtonCombo(this);
    SetComboBuddy(m_pCombo, m_pBuddy.get());
    setFixedSize(40, 24);
    m_pButton->setGeometry(QRect(QPoint(0, 0), QPoint(23, 23)));
    // Buddy mode made the combo 14 wide; here it stands 12 wide beside the button.
    m_pCombo->setFixedSize(12, 24);
    m_pCombo->setGeometry(QRect(QPoint(26, 0), QPoint(37, 23)));
    m_pButton->setToolTip(strName);
    m_pCombo->setToolTip(strName);
}

VCOneOfButtonCombo::~VCOneOfButtonCombo()
{
    DetachValue(m_pValueSelection, this);
    // The combo goes with the widget, after the adapter: it must not ask it on the way.
    if (m_pCombo) {
        SetComboBuddy(m_pCombo, nullptr);
        m_pCombo->SetOneOfButtonCombo(nullptr);
    }
}

bool VCOneOfButtonCombo::SetSelection_ValuePath(const QString& path, QString value, QString outValue, QPixmap inPicture,
                                                QPixmap outPicture)
{
    bool buttonBound = false;
    if (m_pButton) {
        buttonBound = m_pButton->SetSelection_ValuePath(path, value, outValue);
        if (buttonBound)
            m_pButton->SetPixmaps(inPicture, outPicture, value, outValue);
    }
    DetachValue(m_pValueSelection, this);
    m_pValueSelection = FindAndAttach<values::ValueSelection>(path, nullptr, this);
    m_Selections.clear();
    m_Selections.push_back(OneOfSelection{value, outValue, inPicture, outPicture});
    const bool comboBound = m_pCombo && m_pCombo->SetValueSelection_ValuePath(path);
    SyncObserver(m_pValueSelection, this);
    return buttonBound && comboBound && m_pValueSelection;
}

bool VCOneOfButtonCombo::SetSelection_ValuePath(const QString& path, QString value, QString outValue,
                                                const char* const* inPicture, const char* const* outPicture)
{
    return SetSelection_ValuePath(path, value, outValue, fromXpm(inPicture), fromXpm(outPicture));
}

bool VCOneOfButtonCombo::AddSelection(QString value, QString outValue, QPixmap inPicture, QPixmap outPicture)
{
    m_Selections.push_back(OneOfSelection{value, outValue, inPicture, outPicture});
    if (m_pCombo)
        m_pCombo->RebuildMenu(); // the new pair's strings now get entries
    SyncObserver(m_pValueSelection, this);
    return !m_Selections.empty();
}

bool VCOneOfButtonCombo::AddSelection(QString value, QString outValue, const char* const* inPicture,
                                      const char* const* outPicture)
{
    return AddSelection(value, outValue, fromXpm(inPicture), fromXpm(outPicture));
}

bool VCOneOfButtonCombo::SetSecondSelection_ValuePath(const QString& path)
{
    return m_pCombo && m_pCombo->SetSecondSelection_ValuePath(path);
}

void VCOneOfButtonCombo::NewValueFromCombo(QString value)
{
    if (!m_pButton)
        return;
    for (const OneOfSelection& pair : m_Selections) {
        if (pair.m_Value == value)
            m_pButton->SetPixmaps(pair.m_InPicture, pair.m_OutPicture, pair.m_Value, pair.m_OutValue);
    }
}

void VCOneOfButtonCombo::Select(QString value)
{
    if (m_pValueSelection && m_pValueSelection->GetState() != Disabled)
        m_pValueSelection->SetValueFromText(value, nullptr);
}

bool VCOneOfButtonCombo::isValueValid(QString value)
{
    for (const OneOfSelection& pair : m_Selections) {
        if (pair.m_Value == value || pair.m_OutValue == value)
            return true;
    }
    return false;
}

void VCOneOfButtonCombo::setCurrentItem(QString item)
{
    if (m_pCombo)
        m_pCombo->setCurrentItem(item);
}

void VCOneOfButtonCombo::AddMenuEntry(QString text, QObject* receiver, const char* member)
{
    if (m_pCombo)
        m_pCombo->AddMenuEntry(text, receiver, member);
}

ResortPopupMenu* VCOneOfButtonCombo::GetPopup()
{
    return m_pCombo ? m_pCombo->GetPopup() : nullptr;
}

void VCOneOfButtonCombo::SetDefaultPicture(QPixmap picture)
{
    if (m_pButton)
        m_pButton->SetDefaultPicture(picture);
}

void VCOneOfButtonCombo::SetDefaultPicture(const char* const* xpm)
{
    if (m_pButton)
        m_pButton->SetDefaultPicture(xpm);
}

void VCOneOfButtonCombo::SetToolTipText(QString text)
{
    if (m_pButton)
        m_pButton->setToolTip(text);
    if (m_pCombo)
        m_pCombo->setToolTip(text);
}

void VCOneOfButtonCombo::Update(Observable* source, TChangeCode code)
{
    if (code == StateChanged) {
        // The parts enable and disable themselves; the compound only lets go of a removed selection.
        if (source == ObservableOf(m_pValueSelection))
            ApplyValueRemoval(m_pValueSelection, this);
        return;
    }
    if (code == ValueDestroyed) {
        ForgetDestroyedValue(m_pValueSelection, source);
        return;
    }
    if (code != ValueChanged || !m_pValueSelection || source != ObservableOf(m_pValueSelection) || !m_pButton)
        return;
    const QString current = m_pValueSelection->GetValueString();
    for (const OneOfSelection& pair : m_Selections) {
        if (pair.m_Value == current) {
            m_pButton->SetPixmaps(pair.m_InPicture, pair.m_OutPicture, pair.m_Value, pair.m_OutValue);
            return;
        }
    }
}
