#pragma once

#include <vandrel/vandrel_export.h>

#include <plinthor/undorecording.h>
#include <values/values.h>

#include <QAbstractSpinBox>
#include <QDate>
#include <QDateTime>
#include <QTime>
#include <QWidget>

#include <memory>

class HeldWrites;
class QDateTimeEdit;
class QLabel;
class QSpinBox;

/**
 * \brief A QDateTimeEdit bound to a time stamp: a 64-bit count of microseconds since 1970-01-01 UTC.
 *
 * Only whole seconds are used: a reading drops the fraction, a write is always a multiple of 1000000.
 * The stamp is read as 32 unsigned bits of seconds, so stamps from 2^32 s on wrap and negative ones
 * show far ahead. The edit writes every change of the moment it shows.
 *
 * In absolute mode (SetDifferential(false)) the edit shows the moment in local time as
 * "yyyy:MM:dd hh:mm:ss". In differential mode the stamp is a span: a spin box shows its whole days
 * (-20000 to 20000) and the edit the rest as "hh:mm:ss", all in UTC so that no daylight-saving change
 * shifts a span. Changing the mode writes the moment the edit holds before the value is shown again.
 * A moment before 1970 is written as 0; a moment on the first day counts from midnight in the edit's
 * own time zone (local time or UTC).
 *
 * Binds to a values::Value<long long>, or else to a number (values::IValueNumeric, written as double).
 * Unbound, the control is disabled and writes nothing; bound, the value's state enables and disables
 * it. A value that changes what it was given (refused or limited) is shown again; a number is not.
 *
 * Undo: records only on request (SetUndoRecordingEnabled(true) or
 * UndoRecordingControlBase::SetOptionalRecordingDefault(true)); then a key press or a press of an arrow,
 * held until its release, or a wheel step on the edit or the days box, is one recording. The writes of
 * SetDifferential() are not recorded.
 */
class VANDREL_EXPORT VCDateTimeEdit : public QWidget, public IObserver, public virtual UndoRecordingControlBase
{
    Q_OBJECT

public:
    /// A disabled, unbound control named \a name, with \a name as tool-tip; the days are hidden.
    VCDateTimeEdit(QWidget* parent, const char* name);
    ~VCDateTimeEdit() override;

    /**
     * \brief Binds to the 64-bit integer at \a path, or else to the number there, in place of the
     * value bound before, and shows it; false when \a path holds neither.
     */
    bool SetDateTime_ValuePath(const QString& path);
    /// Switches between a span (days and time of day, UTC) and a moment (local date and time).
    void SetDifferential(bool differential);
    /// True in differential mode (a span), false in absolute mode (a moment).
    bool GetDifferential();
    /// Shows or hides the days and their caption, without changing the mode.
    void SetDaysVisible(bool visible);
    /**
     * \brief Makes 1970-01-01 00:00:00 in \a zone day zero and the edit's lower limit (4000-12-31
     * 23:59:59 its upper one), and writes the moment the edit holds.
     */
    void ChangeToTimeSpec(Qt::TimeSpec zone);
    /// The spin box of the days; owned by the control.
    QSpinBox* GetDaysEdit();
    /// The date and time edit; owned by the control.
    QDateTimeEdit* GetTimeEdit();

    /// Names the control \a name, the edit \a name + "_DateTime", the spin box \a name + "_Days".
    void setObjectName(const QString& name);
    /// Makes the edit and the days read-only, or editable again.
    void setReadOnly(bool readOnly);
    /// Sets the button symbols of the edit and the days.
    void setButtonSymbols(QAbstractSpinBox::ButtonSymbols symbols);

    // The time edit's own calls. Those that change its moment write it.
    /// The button symbols of the edit.
    QAbstractSpinBox::ButtonSymbols buttonSymbols() const;
    /// Resets the edit's latest date to Qt's default; a moment that moves is written.
    void clearMaximumDate();
    /// Resets the edit's latest time of day to Qt's default; a moment that moves is written.
    void clearMaximumTime();
    /// Resets the edit's earliest date to Qt's default; a moment that moves is written.
    void clearMinimumDate();
    /// Resets the edit's earliest time of day to Qt's default; a moment that moves is written.
    void clearMinimumTime();
    /// The moment the edit shows.
    QDateTime dateTime() const;
    /// Lets the edit open a calendar to pick the date from.
    void setCalendarPopup(bool enable);
    /// Shows \a dateTime; a moment that changed is written.
    void setDateTime(const QDateTime& dateTime);
    /// Sets the edit's display format (see QDateTimeEdit::displayFormat); a moment that moves is written.
    void setDisplayFormat(const QString& format);
    /// Sets the edit's latest date; a moment beyond it is moved to it and written.
    void setMaximumDate(const QDate& max);
    /// Sets the edit's latest time of day; a moment beyond it is moved to it and written.
    void setMaximumTime(const QTime& max);
    /// Sets the edit's earliest date; a moment before it is moved to it and written.
    void setMinimumDate(const QDate& min);
    /// Sets the edit's earliest time of day; a moment before it is moved to it and written.
    void setMinimumTime(const QTime& min);
    /// Shows \a time on the date shown; a moment that changed is written.
    void setTime(const QTime& time);
    /// The text of the edit.
    QString text() const;
    /// The time of day the edit shows.
    QTime time() const;

    void Update(Observable* source, TChangeCode code) override;

private Q_SLOTS:
    void slotSetDateTimeFromControl(const QDateTime& datetime);
    void slotSetDateTimeFromControl(int newDays);

private:
    bool GetValue(long long& value);
    void SetValue(long long value);
    void SetValue2Display();
    QDateTime dateTimeFromTimeStamp(const long long& stamp);
    QDateTime dateTimeFromTimeStamp();
    long long dateTimeToTimeStamp(QDateTime dateTime);
    long daysPart(const long long& stamp);
    // The days the box shows, as the time edit's writes add them.
    int shownDays() const;

    // Runs a call that may make the time edit or the spin box emit, holding the writes it brings until
    // the call has returned; false when the control did not outlive them.
    template <class Call>
    bool changeChildren(Call&& call);
    // While muted, changes of the time edit's moment are not written.
    void muteTimeEdit();
    void unmuteTimeEdit();

    values::Value<long long>* m_pInt64Value;
    values::IValueNumeric* m_pNumericValue;
    QDateTime m_dtEpoch;
    QDateTimeEdit* m_pDateTimeEdit;
    QSpinBox* m_pDaysEdit;
    QLabel* m_pDaysLabel;
    bool m_bDifferential;
    std::unique_ptr<HeldWrites> m_pHeldWrites; // writes wait until the edit and the box are out of their calls
    UndoActionGroup m_undoAction;              // a press on either box, until its release
    int m_nMuted = 0;                          // depth of muteTimeEdit()
    unsigned m_nShown = 0;                     // counts the displays begun, so an outer one sees it was overtaken
};
