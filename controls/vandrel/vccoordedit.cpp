#include <vandrel/vccoordedit.h>

#include <vandrel/binding/binding.h>
#include <vandrel/binding/useraction_p.h>

#include <plinthor/plinthorapp.h>

VCCoordEdit::VCCoordEdit(QWidget* parent, const char* name, double, double)
    : basecontrols::CoordEdit(parent)
    , m_pLongitudeValue(nullptr)
    , m_pLatitudeValue(nullptr)
    , m_pFormatNumericValue(nullptr)
    , m_pFormatSelection(nullptr)
{
    FollowOptionalRecordingDefault();
    if (name) {
        setObjectName(QString::fromUtf8(name));
        setToolTip(QString::fromUtf8(name));
    }
    connect(&Plinthor::Instance(), SIGNAL(signalColorsChanged()), this, SLOT(slotAcceptColorChanges()));
    m_pFormatSelection = Plinthor::Instance().GetPositionFormat();
    ObservableOf(m_pFormatSelection)->Attach(this);
    SyncObserver(m_pFormatSelection, this);
    setModified(false);
}

VCCoordEdit::~VCCoordEdit()
{
    DetachValue(m_pLongitudeValue, this);
    DetachValue(m_pLatitudeValue, this);
    DetachValue(m_pFormatNumericValue, this);
    DetachValue(m_pFormatSelection, this);
}

bool VCCoordEdit::bindCoordinate(const QString& path, values::IValueNumeric*& field)
{
    // Unlike the usual binding, a failed lookup keeps the former value, and the new one is attached
    // only after its first picture.
    auto* value = FindForSlot<values::IValueNumeric>(path, field, this);
    if (!value)
        return false;
    DetachValue(field, this);
    field = value;
    SyncObserver(field, this);
    if (field) // a value in the Removed state let go of itself in SyncObserver
        ObservableOf(field)->Attach(this);
    // The other coordinate or the format may hold the value let go: it must still tell them.
    for (values::IValueNumeric* other : {m_pLatitudeValue, m_pLongitudeValue, m_pFormatNumericValue})
        if (other)
            ObservableOf(other)->Attach(this);
    return true;
}

bool VCCoordEdit::SetLatitude_ValuePath(const QString& path)
{
    return bindCoordinate(path, m_pLatitudeValue);
}

bool VCCoordEdit::SetLongitude_ValuePath(const QString& path)
{
    return bindCoordinate(path, m_pLongitudeValue);
}

bool VCCoordEdit::SetFormat_ValuePath(const QString& path)
{
    DetachValue(m_pFormatNumericValue, this);
    DetachValue(m_pFormatSelection, this);
    for (values::IValueNumeric* coordinate : {m_pLatitudeValue, m_pLongitudeValue})
        if (coordinate) // the format number let go may be one of them
            ObservableOf(coordinate)->Attach(this);
    m_pFormatNumericValue = FindAndAttach<values::IValueNumeric>(path, nullptr, this);
    if (m_pFormatNumericValue) {
        setFormatNumber(long(m_pFormatNumericValue->GetValue()));
        return true;
    }
    m_pFormatSelection = FindAndAttach<values::ValueSelection>(path, nullptr, this);
    if (m_pFormatSelection) {
        setFormatNumber(m_pFormatSelection->GetCurrentKey());
        return true;
    }
    return false;
}

double VCCoordEdit::GetLatitude()
{
    return getLatitude();
}

double VCCoordEdit::GetLongitude()
{
    return getLongitude();
}

void VCCoordEdit::SetLatitude(double latitude)
{
    setLatitude(latitude);
}

void VCCoordEdit::SetLongitude(double longitude)
{
    setLongitude(longitude);
}

void VCCoordEdit::SetFormat(CoordFormat format)
{
    setFormat(format);
}

void VCCoordEdit::EnableContextMenu(bool enable)
{
    setContextMenuEnabled(enable);
}

void VCCoordEdit::actAsLabel()
{
    setActAsLabel(true);
}

void VCCoordEdit::setFormat(CoordFormat format)
{
    // A number outside the enumeration is no format: it must not reach the format value, which would
    // clamp it into a real one.
    if (!basecontrols::CoordText::IsValidFormat(format))
        return;
    basecontrols::CoordEdit::setFormat(format);
    if (m_pFormatNumericValue && !SurvivesWrite(this, [this, format] { m_pFormatNumericValue->SetValue(double(format), this); }))
        return;
    // The selection notifies even a reselection of its current key; writing that back would bounce the
    // format between all fields that follow the selection.
    if (m_pFormatSelection && m_pFormatSelection->GetCurrentKey() != long(format))
        m_pFormatSelection->SelectKey(format, this);
}

void VCCoordEdit::setFormatNumber(long number)
{
    // A number outside the enumeration has no CoordFormat to stand for.
    if (basecontrols::CoordText::IsValidFormat(number))
        setFormat(CoordFormat(number));
}

void VCCoordEdit::processLineInput()
{
    if (!isModified())
        return;
    basecontrols::CoordEdit::processLineInput();
    // Both numbers of the position are one edit. Each pointer is tested after the other's write: an
    // observer may remove a value or this field.
    vandrel::InUserEditSpan(this, [this] {
        if (m_pLatitudeValue && !SurvivesWrite(this, [this] { m_pLatitudeValue->SetValue(getLatitude(), this); }))
            return;
        if (m_pLongitudeValue)
            m_pLongitudeValue->SetValue(getLongitude(), this);
    });
}

void VCCoordEdit::Update(Observable* source, TChangeCode code)
{
    if (!source)
        return;
    switch (code) {
    case StateChanged:
        if (source == ObservableOf(m_pLongitudeValue))
            ApplyValueState(m_pLongitudeValue, this);
        else if (source == ObservableOf(m_pLatitudeValue))
            ApplyValueState(m_pLatitudeValue, this);
        else if (source == ObservableOf(m_pFormatNumericValue))
            ApplyValueState(m_pFormatNumericValue, this);
        else if (source == ObservableOf(m_pFormatSelection))
            ApplyValueState(m_pFormatSelection, this);
        break;
    case ValueChanged:
        if (source == ObservableOf(m_pLongitudeValue))
            setLongitude(m_pLongitudeValue->GetValue());
        else if (source == ObservableOf(m_pLatitudeValue))
            setLatitude(m_pLatitudeValue->GetValue());
        else if (source == ObservableOf(m_pFormatNumericValue))
            setFormatNumber(long(m_pFormatNumericValue->GetValue()));
        else if (source == ObservableOf(m_pFormatSelection))
            setFormatNumber(m_pFormatSelection->GetCurrentKey());
        break;
    case ValueDestroyed:
        // Reached only by a value destroyed without being removed first; forget it without a Detach.
        if (!ForgetDestroyedValue(m_pLongitudeValue, source) && !ForgetDestroyedValue(m_pLatitudeValue, source)
            && !ForgetDestroyedValue(m_pFormatNumericValue, source))
            ForgetDestroyedValue(m_pFormatSelection, source);
        break;
    default:
        break;
    }
}

void VCCoordEdit::slotSetFormat(int id)
{
    vandrel::InUserEditSpan(this, [this, id] { setFormatNumber(id); });
}

void VCCoordEdit::slotChangeFormatGeoDecimal()
{
    vandrel::InUserEditSpan(this, [this] { setFormat(GeoDecimal); });
}

void VCCoordEdit::slotChangeFormatGeo()
{
    vandrel::InUserEditSpan(this, [this] { setFormat(Geo); });
}

void VCCoordEdit::slotChangeFormatGeoNoFrac()
{
    vandrel::InUserEditSpan(this, [this] { setFormat(GeoNoFrac); });
}

void VCCoordEdit::slotChangeFormatUtm()
{
    vandrel::InUserEditSpan(this, [this] { setFormat(Utm); });
}

void VCCoordEdit::slotChangeFormatUtmRef()
{
    vandrel::InUserEditSpan(this, [this] { setFormat(UtmRef); });
}

void VCCoordEdit::slotChangeFormatRT90()
{
    vandrel::InUserEditSpan(this, [this] { setFormat(RT90); });
}

void VCCoordEdit::slotChangeFormatSweRef99()
{
    vandrel::InUserEditSpan(this, [this] { setFormat(SweRef99); });
}

void VCCoordEdit::slotCopy2Clipboard()
{
    copy2Clipboard();
}

void VCCoordEdit::slotPasteClipboard()
{
    pasteClipboard();
}

void VCCoordEdit::slotAcceptColorChanges()
{
    acceptColorChanges();
}
