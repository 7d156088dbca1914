#include <vandrel/vcdatetimeedit.h>

#include <vandrel/binding/binding.h>
#include <vandrel/binding/useraction_p.h>

#include <QDateTimeEdit>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QSpinBox>

#include <cmath>
#include <limits>

namespace {

// A child box whose events pass through the control's held writes: Qt's spin boxes go on touching
// themselves after they emit a change, and the write that change brings may delete the control. The
// user's actions on the box are the control's, for undo.
template <class Box>
class HeldBox : public Box
{
public:
    HeldBox(QWidget* control, HeldWrites* held, const UndoRecordingControlBase* undo, UndoActionGroup* action)
        : Box(control)
        , m_pControl(control)
        , m_pHeld(held)
        , m_pUndo(undo)
        , m_pAction(action)
    {
    }

protected:
    bool event(QEvent* event) override
    {
        return vandrel::DeliverUserAction(m_pControl, m_pUndo, *m_pAction, event, [this, event] {
            return m_pHeld->Deliver(m_pControl, [this, event] { return Box::event(event); });
        });
    }

private:
    QWidget* m_pControl;
    HeldWrites* m_pHeld;
    const UndoRecordingControlBase* m_pUndo;
    UndoActionGroup* m_pAction;
};

// The low 32 bits, read as signed: the width the time arithmetic of this control keeps.
qint32 cut32(qint64 x)
{
    return qint32(quint32(quint64(x)));
}

// Seconds as a 32-bit unsigned count from 1970, as a 32-bit time_t setter takes them.
void setSecs32(QDateTime& dateTime, qint64 secs)
{
    dateTime.setSecsSinceEpoch(qint64(quint32(quint64(secs))));
}

// A number read as a stamp, truncated; NaN and numbers beyond 64 bits have no integer of their own.
long long stampOfNumber(double number)
{
    if (std::isnan(number))
        return 0;
    if (number >= 9223372036854775808.0)
        return std::numeric_limits<long long>::max();
    if (number < -9223372036854775808.0)
        return std::numeric_limits<long long>::min();
    return static_cast<long long>(number);
}

const char* const kTimeChanged = SIGNAL(dateTimeChanged(const QDateTime&));
const char* const kTimeSlot = SLOT(slotSetDateTimeFromControl(const QDateTime&));

} // namespace

VCDateTimeEdit::VCDateTimeEdit(QWidget* parent, const char* name)
    : QWidget(parent)
    , m_pInt64Value(nullptr)
    , m_pNumericValue(nullptr)
    , m_dtEpoch(QDate(1970, 1, 1), QTime(0, 0), Qt::LocalTime)
    , m_pDateTimeEdit(nullptr)
    , m_pDaysEdit(nullptr)
    , m_pDaysLabel(nullptr)
    , m_bDifferential(false)
    , m_pHeldWrites(new HeldWrites)
{
    FollowOptionalRecordingDefault();
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_pDaysEdit = new HeldBox<QSpinBox>(this, m_pHeldWrites.get(), this, &m_undoAction);
    m_pDaysEdit->setRange(-20000, 20000);
    m_pDaysLabel = new QLabel(tr("Days"), this);
    m_pDateTimeEdit = new HeldBox<QDateTimeEdit>(this, m_pHeldWrites.get(), this, &m_undoAction);
    layout->addWidget(m_pDaysEdit, 0);
    layout->addWidget(m_pDaysLabel, 0);
    layout->addWidget(m_pDateTimeEdit, 0);
    m_pDaysLabel->hide();
    m_pDaysEdit->hide();
    const QString strName = QString::fromUtf8(name);
    setObjectName(strName);
    // Day zero is local midnight of 1970-01-01 until a time zone is chosen. An invalid upper date makes Qt ignore the pair: no limit holds until then.
    m_pDateTimeEdit->setDateRange(m_dtEpoch.date(), QDate());
    setGeometry(10, 30, 180, 20);
    setToolTip(strName);
    setEnabled(false);
    connect(m_pDaysEdit, SIGNAL(valueChanged(int)), this, SLOT(slotSetDateTimeFromControl(int)));
    connect(m_pDateTimeEdit, kTimeChanged, this, kTimeSlot);
}

VCDateTimeEdit::~VCDateTimeEdit()
{
    DetachValue(m_pInt64Value, this);
    DetachValue(m_pNumericValue, this);
    // The boxes deliver their events through m_pHeldWrites, which goes before QWidget deletes children.
    m_pDateTimeEdit->disconnect(this);
    m_pDaysEdit->disconnect(this);
    delete m_pDateTimeEdit;
    delete m_pDaysEdit;
}

template <class Call>
bool VCDateTimeEdit::changeChildren(Call&& call)
{
    return SurvivesWrite(this, [this, &call] {
        m_pHeldWrites->Deliver(this, [&call] {
            call();
            return true;
        });
    });
}

bool VCDateTimeEdit::SetDateTime_ValuePath(const QString& path)
{
    DetachValue(m_pInt64Value, this);
    DetachValue(m_pNumericValue, this);
    m_pInt64Value = FindAndAttach<values::Value<long long>>(path, nullptr, this);
    if (m_pInt64Value) {
        SyncObserver(m_pInt64Value, this);
        return true;
    }
    m_pNumericValue = FindAndAttach<values::IValueNumeric>(path, nullptr, this);
    if (!m_pNumericValue)
        return false;
    // Shown in whole seconds, a number may be written back, and an observer of that write may delete
    // the control: it was found all the same.
    const QPointer<VCDateTimeEdit> alive(this);
    SyncObserver(m_pNumericValue, this);
    return !alive || m_pNumericValue != nullptr;
}

void VCDateTimeEdit::SetDifferential(bool differential)
{
    m_bDifferential = differential;
    const int h = m_pDateTimeEdit->height();
    // Qt may move the edit's moment while it takes the new format; only the moment it ends with is
    // written, by ChangeToTimeSpec().
    muteTimeEdit();
    if (differential) {
        m_pDaysLabel->setFixedSize(28, h);
        m_pDaysEdit->setFixedWidth(40);
        m_pDateTimeEdit->setDisplayFormat(QStringLiteral("hh:mm:ss"));
        m_pDateTimeEdit->setFixedWidth(70);
    } else {
        m_pDateTimeEdit->setDisplayFormat(QStringLiteral("yyyy:MM:dd hh:mm:ss"));
        m_pDaysLabel->hide();
        m_pDaysEdit->hide();
        m_pDateTimeEdit->setFixedWidth(150);
    }
    unmuteTimeEdit();
    if (!SurvivesWrite(this, [this, differential] { ChangeToTimeSpec(differential ? Qt::UTC : Qt::LocalTime); }))
        return;
    m_pDaysLabel->setVisible(differential);
    m_pDaysEdit->setVisible(differential);
    if (!SurvivesWrite(this, [this] { SyncObserver(m_pInt64Value, this); }))
        return;
    SyncObserver(m_pNumericValue, this);
}

bool VCDateTimeEdit::GetDifferential()
{
    return m_bDifferential;
}

void VCDateTimeEdit::SetDaysVisible(bool visible)
{
    m_pDaysLabel->setVisible(visible);
    m_pDaysEdit->setVisible(visible);
}

void VCDateTimeEdit::ChangeToTimeSpec(Qt::TimeSpec zone)
{
    m_dtEpoch = QDateTime(QDate(1970, 1, 1), QTime(0, 0), zone);
    const QDateTime last(QDate(4000, 12, 31), QTime(23, 59, 59), zone);
    // The moves Qt makes on the way to the new zone and limits are not written; the moment the edit
    // ends with is.
    muteTimeEdit();
    m_pDateTimeEdit->setTimeSpec(zone);
    m_pDateTimeEdit->setMinimumDateTime(m_dtEpoch);
    m_pDateTimeEdit->setMaximumDateTime(last);
    unmuteTimeEdit();
    slotSetDateTimeFromControl(m_pDateTimeEdit->dateTime());
}

QSpinBox* VCDateTimeEdit::GetDaysEdit()
{
    return m_pDaysEdit;
}

QDateTimeEdit* VCDateTimeEdit::GetTimeEdit()
{
    return m_pDateTimeEdit;
}

void VCDateTimeEdit::setObjectName(const QString& name)
{
    QObject::setObjectName(name);
    m_pDateTimeEdit->setObjectName(name + QStringLiteral("_DateTime"));
    m_pDaysEdit->setObjectName(name + QStringLiteral("_Days"));
    m_pDaysLabel->setObjectName(QStringLiteral("VCDateTimeEditDaysLabel"));
}

void VCDateTimeEdit::setReadOnly(bool readOnly)
{
    m_pDateTimeEdit->setReadOnly(readOnly);
    m_pDaysEdit->setReadOnly(readOnly);
}

void VCDateTimeEdit::setButtonSymbols(QAbstractSpinBox::ButtonSymbols symbols)
{
    m_pDateTimeEdit->setButtonSymbols(symbols);
    m_pDaysEdit->setButtonSymbols(symbols);
}

QAbstractSpinBox::ButtonSymbols VCDateTimeEdit::buttonSymbols() const
{
    return m_pDateTimeEdit->buttonSymbols();
}

void VCDateTimeEdit::clearMaximumDate()
{
    changeChildren([this] { m_pDateTimeEdit->clearMaximumDate(); });
}

void VCDateTimeEdit::clearMaximumTime()
{
    changeChildren([this] { m_pDateTimeEdit->clearMaximumTime(); });
}

void VCDateTimeEdit::clearMinimumDate()
{
    changeChildren([this] { m_pDateTimeEdit->clearMinimumDate(); });
}

void VCDateTimeEdit::clearMinimumTime()
{
    changeChildren([this] { m_pDateTimeEdit->clearMinimumTime(); });
}

QDateTime VCDateTimeEdit::dateTime() const
{
    return m_pDateTimeEdit->dateTime();
}

void VCDateTimeEdit::setCalendarPopup(bool enable)
{
    m_pDateTimeEdit->setCalendarPopup(enable);
}

void VCDateTimeEdit::setDateTime(const QDateTime& dateTime)
{
    changeChildren([this, &dateTime] { m_pDateTimeEdit->setDateTime(dateTime); });
}

void VCDateTimeEdit::setDisplayFormat(const QString& format)
{
    changeChildren([this, &format] { m_pDateTimeEdit->setDisplayFormat(format); });
}

void VCDateTimeEdit::setMaximumDate(const QDate& max)
{
    changeChildren([this, &max] { m_pDateTimeEdit->setMaximumDate(max); });
}

void VCDateTimeEdit::setMaximumTime(const QTime& max)
{
    changeChildren([this, &max] { m_pDateTimeEdit->setMaximumTime(max); });
}

void VCDateTimeEdit::setMinimumDate(const QDate& min)
{
    changeChildren([this, &min] { m_pDateTimeEdit->setMinimumDate(min); });
}

void VCDateTimeEdit::setMinimumTime(const QTime& min)
{
    changeChildren([this, &min] { m_pDateTimeEdit->setMinimumTime(min); });
}

void VCDateTimeEdit::setTime(const QTime& time)
{
    changeChildren([this, &time] { m_pDateTimeEdit->setTime(time); });
}

QString VCDateTimeEdit::text() const
{
    return m_pDateTimeEdit->text();
}

QTime VCDateTimeEdit::time() const
{
    return m_pDateTimeEdit->time();
}

void VCDateTimeEdit::Update(Observable* source, TChangeCode code)
{
    switch (code) {
    case StateChanged:
        if (source == ObservableOf(m_pInt64Value))
            ApplyValueState(m_pInt64Value, this);
        else if (source == ObservableOf(m_pNumericValue))
            ApplyValueState(m_pNumericValue, this);
        break;
    case ValueChanged:
        if ((m_pInt64Value && source == ObservableOf(m_pInt64Value)) ||
            (m_pNumericValue && source == ObservableOf(m_pNumericValue)))
            SetValue2Display();
        break;
    case ValueDestroyed:
        ForgetDestroyedValue(m_pInt64Value, source);
        ForgetDestroyedValue(m_pNumericValue, source);
        break;
    default:
        break;
    }
}

void VCDateTimeEdit::slotSetDateTimeFromControl(const QDateTime& datetime)
{
    QDateTime moment = datetime;
    if (m_bDifferential)
        moment = moment.addDays(shownDays());
    const long long stamp = dateTimeToTimeStamp(moment);
    m_pHeldWrites->Write([this, stamp] { SetValue(stamp); });
}

void VCDateTimeEdit::slotSetDateTimeFromControl(int newDays)
{
    long long stamp = 0;
    GetValue(stamp);
    QDateTime moment = dateTimeFromTimeStamp(stamp);
    // The time of day of the value, on the first day, then the days of the box.
    moment = moment.addDays(moment.daysTo(m_dtEpoch)).addDays(newDays);
    const long long written = dateTimeToTimeStamp(moment);
    m_pHeldWrites->Write([this, written] { SetValue(written); });
}

bool VCDateTimeEdit::GetValue(long long& value)
{
    if (m_pInt64Value) {
        value = m_pInt64Value->GetValue();
        return true;
    }
    if (m_pNumericValue) {
        value = stampOfNumber(m_pNumericValue->GetValue());
        return true;
    }
    value = 0;
    return false;
}

void VCDateTimeEdit::SetValue(long long value)
{
    if (m_pInt64Value) {
        values::Value<long long>* target = m_pInt64Value;
        if (!SurvivesWrite(this, [this, target, value] { target->SetValue(value, this); }))
            return;
        // The value refused or limited the stamp: the display goes back to what it holds.
        if (m_pInt64Value && m_pInt64Value->GetValue() != value)
            SetValue2Display();
    } else if (m_pNumericValue) {
        m_pNumericValue->SetValue(double(value), this);
    }
}

void VCDateTimeEdit::SetValue2Display()
{
    const unsigned shown = ++m_nShown;
    // Showing must not write back what it shows.
    muteTimeEdit();
    long long stamp = 0;
    GetValue(stamp);
    if (!m_bDifferential) {
        m_pDateTimeEdit->setDateTime(dateTimeFromTimeStamp(stamp));
    } else {
        const long days = daysPart(stamp);
        // The box stays connected: a day count it cannot hold is written back as the one it shows.
        if (!changeChildren([this, days] { m_pDaysEdit->setValue(int(days)); }))
            return;
        // A write back that the value changed was shown again by then; this stamp is stale.
        if (m_nShown == shown) {
            const QDateTime firstDay = dateTimeFromTimeStamp(stamp).addDays(-days);
            m_pDateTimeEdit->setTimeSpec(Qt::UTC);
            m_pDateTimeEdit->setDateTime(firstDay);
        }
    }
    unmuteTimeEdit();
}

void VCDateTimeEdit::muteTimeEdit()
{
    // Counted, since a display may run inside another (a write back that the value refused).
    if (m_nMuted++ == 0)
        disconnect(m_pDateTimeEdit, kTimeChanged, this, kTimeSlot);
}

void VCDateTimeEdit::unmuteTimeEdit()
{
    if (--m_nMuted == 0)
        connect(m_pDateTimeEdit, kTimeChanged, this, kTimeSlot);
}

QDateTime VCDateTimeEdit::dateTimeFromTimeStamp(const long long& stamp)
{
    // The edit's own moment, so that the result keeps its time zone.
    QDateTime dateTime = m_pDateTimeEdit->dateTime();
    setSecs32(dateTime, stamp / 1000000);
    return dateTime;
}

QDateTime VCDateTimeEdit::dateTimeFromTimeStamp()
{
    long long stamp = 0;
    if (!GetValue(stamp))
        return QDateTime();
    return dateTimeFromTimeStamp(stamp);
}

long long VCDateTimeEdit::dateTimeToTimeStamp(QDateTime dateTime)
{
    const qint32 d = cut32(dateTime.daysTo(m_dtEpoch));
    if (d < 0) {
        // From the start of its day in UTC, whatever the zone: no offset or daylight saving counts.
        const qint64 base = -qint64(d) * 86400;
        QDateTime start;
        setSecs32(start, base);
        const qint64 s = cut32(start.secsTo(dateTime));
        return (s + base) * 1000000;
    }
    if (d == 0)
        return -qint64(cut32(dateTime.secsTo(m_dtEpoch))) * 1000000;
    return 0; // before day zero
}

int VCDateTimeEdit::shownDays() const
{
    bool ok = false;
    const int days = m_pDaysEdit->text().toInt(&ok, 10);
    // A locale of other digits (Arabic, Persian, Bengali) shows a number that is no base-10 text: the
    // box's own number stands for it. Text that is no number yet ("-", "") counts as 0.
    if (!ok && m_pDaysEdit->locale().toString(0) != QLatin1String("0"))
        return m_pDaysEdit->value();
    return days;
}

long VCDateTimeEdit::daysPart(const long long& stamp)
{
    return long(-dateTimeFromTimeStamp(stamp).daysTo(m_dtEpoch));
}
