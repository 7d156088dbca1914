#pragma once

#include <vandrel/vandrel_export.h>

#include <plinthor/undorecording.h>
#include <values/values.h>

#include <QLineEdit>
#include <QString>

#include <memory>

class SuffixedDouble;
class TimeToAxisString;
class HeldWrites;

/**
 * \brief A single-line entry field bound to a text (values::Value<QString>), a number
 * (values::IValueNumeric) or a selection (values::ValueSelection, edited by item name).
 *
 * Unbound, the field can also hold a number of its own (SetNumeric()) or just a text.
 *
 * The LineEditType given at construction decides how a number is shown and how typed text becomes a
 * number: plain decimal text with an optional unit (SetFormat()), a frequency or suffixed number
 * through SuffixedDouble, or a time span through TimeToAxisString. The frequency types only admit
 * digits, one decimal separator and a unit (k, M or G, then H or Hz) and hold at most 20 characters.
 *
 * \b Commit. The text goes to the value when the user presses Return or Enter, when the field loses
 * focus, on endEdit(), on Plinthor::endEdit() naming this field with a modified text, and when a
 * visible field is destroyed. A text value takes the text as it stands; a selection makes the item
 * of that name current; a number is checked against the value's limits. A number beyond a limit is
 * clamped to it, and unless SuppressErrorMessage() is set the field turns red and a message box
 * ("Input Error" above the maximum, "Range Check Error" below the minimum) tells the allowed range.
 * A suffixed field never goes below zero, whatever the value's minimum. A time field writes 0 to its
 * value for any input and only reformats the typed number. There is no cancel key.
 *
 * \b Colours. While the user types, the field is red when the validator refuses the text, gray when
 * ShowEdited(true) is set and the text is modified, and in its own style sheet otherwise; every
 * commit restores its own sheet.
 *
 * Unbound, the field is disabled until the application enables it. Bound, it is enabled and disabled
 * by the value's state; when the value is removed the field lets go of it and keeps its text.
 * A double click selects the whole text, and so does getting the focus.
 *
 * Undo: records only on request (SetUndoRecordingEnabled(true) or
 * UndoRecordingControlBase::SetOptionalRecordingDefault(true)); then each commit by the user (Enter,
 * leaving the field) is one recording. Clamping after a change of the value's limits is not recorded.
 */
class VANDREL_EXPORT VCLineEdit : public QLineEdit, public IObserver, public virtual UndoRecordingControlBase
{
    Q_OBJECT

public:
    /// How numbers look and are read; the numbers are fixed. Unknown numbers behave as PlainEdit.
    enum LineEditType {
        PlainEdit = 0,          ///< plain decimal text, formatted by SetFormat()
        Frequency = 1,          ///< a frequency, prefix chosen by magnitude
        FrequencySuffix2 = 2,   ///< a frequency, always in kHz
        FrequencyFollowing = 3, ///< a frequency whose prefix follows the application's frequency unit
        SuffixedNumber = 4,     ///< a number with a unit prefix ("4.7k"), no unit text
        FrequencySuffix3 = 5,   ///< a frequency, always in MHz
        FrequencySuffix4 = 6,   ///< a frequency, always in GHz
        TimeAxis = 7,           ///< a time span in seconds, shown as "1 min 30 s"
    };
    Q_ENUM(LineEditType)

    /**
     * \brief A disabled, unbound field of \a type.
     *
     * \a name (null for none) becomes object name and tool-tip.
     */
    explicit VCLineEdit(QWidget* parent = nullptr, const char* name = nullptr, LineEditType type = PlainEdit);
    /// Commits the pending text first when the field is visible and the application is not closing down.
    ~VCLineEdit() override;

    /**
     * \brief Binds to the value at \a path: a number, else a text, else a selection, and shows it.
     *
     * The former value is let go in any case. False for an unknown path or a value of another kind:
     * the field is then unbound and keeps its text and enabled state. A fresh binding is not dirty.
     */
    bool SetText_ValuePath(const QString& path);
    /// Binds to \a value, already found by the caller, as SetText_ValuePath() does; false for null.
    bool SetValueBase(values::ValueBase* value);
    /// The bound value, or null when unbound.
    values::ValueBase* GetValuePtr() const;

    /**
     * \brief Shows \a text and writes it to a bound text value, with this field as originator.
     * Always true.
     */
    bool SetText(QString text);
    /// The text shown.
    QString GetText() const;

    /**
     * \brief Shows the number \a value.
     *
     * With a number bound, \a value is first written to it (so it is clamped) and the value's number
     * is shown. A formatter of the type formats it; a plain field multiplies it by the factor of
     * SetFormat() and formats it with its digits and suffix. The text goes to a bound text value.
     */
    void SetNumeric(double value);
    /**
     * \brief The number: the bound number's, else the formatter's, else the text read as a number
     * (0 for text that is not one, also for a text with a unit).
     */
    double GetNumeric() const;
    /**
     * \brief Sets how a plain field shows and reads numbers; shown from the next SetNumeric() on.
     *
     * \a integerDigits plus \a decimals is the field width (-1 for either: shortest form);
     * \a suffix follows the number after a blank; \a prefixLetters (of "k", "m" and U+FFB5) are the
     * unit letters a typed text may carry; \a factor (neither 0 nor 1) multiplies the shown number.
     * Fields with a formatter ignore all of it.
     */
    void SetFormat(int integerDigits, int decimals, QString suffix, QString prefixLetters, double factor);
    /**
     * \brief Sets the step between the unit prefixes of the formatter (1000 by default) and redraws a
     * bound number. False, doing nothing, for the types PlainEdit to FrequencyFollowing.
     */
    bool SetFactor(int factor);
    /// Sets the unit text of the formatter and redraws a bound number; false as for SetFactor().
    bool SetStringSuffix(QString suffix);
    /// Whether text that the user changed but has not committed is shown gray.
    void ShowEdited(bool show);
    /// Whether a number beyond a limit is clamped silently, with no message box and no red field.
    void SuppressErrorMessage(bool suppress);
    /// Whether the text changed since the last binding: through the program, the value or the user.
    bool GetDirty() const;
    /// Sets or clears the dirty flag.
    void SetDirty(bool dirty);
    /// Commits the text, then emits signalTextFinallyChanged().
    void endEdit();

    /// Follows the bound value: its state, its number, text or current item.
    void Update(Observable* source, TChangeCode code) override;

Q_SIGNALS:
    /// The text after a commit that ended the edit (focus lost, endEdit(), destruction).
    void signalTextFinallyChanged(QString text);

protected Q_SLOTS:
    /// Commits the text to the bound value; does nothing while a commit runs.
    void SetTextFromControl();
    /// Commits and emits signalTextFinallyChanged() when \a widget is this field and its text was modified.
    void onForceFinishEdit(QWidget* widget);
    /// Colours the field after a user edit and marks it dirty.
    void slotEdited(QString text);

protected:
    /**
     * \brief Selects the whole text on a double click (which it eats) and on focus in; commits and
     * emits signalTextFinallyChanged() on focus out.
     */
    bool eventFilter(QObject* watched, QEvent* event) override;
    /// Ignores key releases: no commit hangs on them.
    void keyReleaseEvent(QKeyEvent* event) override;
    /// Reimplemented to hold back the writes of a commit until Qt's line edit has finished with the event.
    bool event(QEvent* event) override;

private:
    void AddSuffix(QString& text);
    double GetNumericFromSuffixedText();
    bool commit();
    QString heldNow() const;
    bool checkRangeAndWrite();
    bool reportRange(const QString& title, const QString& message, double setTo, double minimum, double maximum);
    QString rangeNumber(double number) const;

    values::Value<QString>* m_pTextValue;
    values::IValueNumeric* m_pNumericValue;
    values::ValueSelection* m_pSelectionValue;
    std::unique_ptr<SuffixedDouble> m_pSuffixedDouble;
    std::unique_ptr<TimeToAxisString> m_pTimeToAxis;
    LineEditType m_eType;
    bool m_bInCommit;
    bool m_bShowEdited;
    int m_nIntegerDigits;
    int m_nDecimals;
    double m_fFactor;
    QString m_strSuffix;
    QString m_strPrefixLetters;
    bool m_bNumericUsed;
    double m_fNumeric;
    bool m_bSuppressError;
    QString m_strStyleNormal;
    QString m_strStyleError;
    QString m_strStyleEdited;
    bool m_bDirty;
    QString m_strName;
    bool m_bDestroying = false; // committing from the destructor
    std::unique_ptr<HeldWrites> m_pHeldWrites; // commits wait for Qt's own key and focus handling
    UndoActionGroup m_undoAction;
    bool m_bFollowingValue = false; // showing a text value's change, so an echo of it is not answered
    // The bound value's content as the field last showed or wrote it: a field deleted while its value
    // notifies a change has not shown that change yet, and its text is no edit to commit.
    QString m_strHeldSeen;
};
