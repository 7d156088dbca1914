#pragma once

#include <vandrel/vandrel_export.h>

#include <plinthor/undorecording.h>
#include <values/values.h>

#include <QDoubleSpinBox>
#include <QRegularExpression>

#include <memory>

/**
 * \class VCNumericFloatSpin
 * \brief A QDoubleSpinBox bound to a number (values::IValueNumeric).
 *
 * Four independent scalings stand between the value and the text. The spin box's internal number is
 * the value's number times the factor (SetFactor()); the text shows
 * (internal + offset) × display scaling ÷ unit scale, and typed text goes back the inverse way.
 *
 * The spin box's own limits stay at the widest doubles: the value's limits act in stepEnabled() and,
 * silently clamping, when editing finishes. A step of the arrows, the keys or the wheel writes the
 * value's pending number in the optimised mode (the default), or the value itself in the plain mode;
 * 200 ms after the last step of a burst the pending number is committed in one undoable write.
 * A finished edit (Return, leaving the field) writes the value, also in one undoable write.
 *
 * Unbound, the spin box is disabled and no input reaches a value. Bound, it is enabled and disabled
 * by the value's state; when the value is removed it lets go of it and keeps its look.
 */
class HeldWrites;

class VANDREL_EXPORT VCNumericFloatSpin : public QDoubleSpinBox,
                                          public IObserver,
                                          public virtual UndoRecordingControlBase
{
    Q_OBJECT

public:
    /**
     * \brief A disabled, unbound spin box of fixed width 80, with no decimals and the widest limits.
     *
     * \a name becomes object name and tool-tip, its inner line edit is named \a name + "_Edit".
     * With \a optimize, steps write the value's pending number first (see SetOptimize()).
     */
    explicit VCNumericFloatSpin(QWidget* parent = nullptr, const char* name = nullptr, bool optimize = true);
    /// Detaches from the bound value; a pending number not yet committed stays pending.
    ~VCNumericFloatSpin() override;

    /**
     * \brief Reads \a text, which may carry prefix and suffix, as a displayed number.
     *
     * Prefix and suffix (trimmed) are taken off through a regular expression built from them as they
     * stand, so their characters act as expression syntax; what stays is checked by a QDoubleValidator
     * over the spin box's limits in display units and decimals(). An Acceptable text is given back
     * whole unless \a fromValueFromText; every other text is left stripped of blanks, prefix and
     * suffix. \a pos is not used.
     */
    virtual QValidator::State validate(QString& text, int& pos, bool fromValueFromText) const;
    /// validate() for the line edit: an Acceptable text stays as typed.
    QValidator::State validate(QString& text, int& pos) const override;

    /**
     * \brief Binds to the number at \a path, in place of the one bound before.
     *
     * False for an unknown path or a value that is not a number; the spin box is then unbound. The
     * dirty flags are cleared in every case.
     */
    virtual bool SetNumeric_ValuePath(const QString& path);
    /// SetNumeric_ValuePath() showing two decimals.
    bool SetNumericFloat_ValuePath(const QString& path);
    /// SetNumeric_ValuePath() showing no decimals.
    bool SetNumericInt_ValuePath(const QString& path);
    /// Binds to \a value, already found by the caller; false for null, which leaves the spin box unbound.
    bool SetNumericValue(values::IValueNumeric* value);
    /// The bound value's number, with \a ok true; 0.0 with \a ok false when unbound.
    double GetValue(bool& ok) const;

    /// With \a disable, neither arrows, keys nor stepEnabled() allow a step; the wheel still steps.
    virtual void disableStep(bool disable);
    /// The displayed number is divided by \a scale. Takes effect at the next redraw of the text.
    virtual void SetUnitScale(double scale);
    /// The displayed number is multiplied by \a factor. Takes effect at the next redraw of the text.
    virtual void SetDisplayScalingFactor(double factor);
    /// \a offset is added to the internal number before the display scalings. Takes effect at the next redraw.
    virtual void SetDisplayAdditveOffset(double offset);
    /**
     * \brief The internal number is the value's number times \a factor; singleStep() takes it over
     * at the next change of the value's range. Takes effect at the next setValue().
     */
    virtual void SetFactor(double factor);
    /// The internal number divided by the factor: the number as the value holds it.
    virtual double value() const;
    /// Shows \a value, a number as the value holds it; writes nothing.
    virtual void setValue(double value);

    /// With \a on, a text "0" is shown as "auto" and "auto" reads as 0; a display with decimals never shows "0".
    void SetDisplay0AsAuto(bool on);
    /// Lets the arrows step on at the value's limits; the spin box's own limits being the widest, nothing wraps.
    void EnableWrapAround(bool on);
    /// Steps write the pending number (true) or the value (false); see the class description.
    void SetOptimize(bool optimize);
    /// Whether steps write the pending number.
    bool GetOptimize() const;
    /// True when a change came from the value or from the user since the flags were last cleared.
    bool GetDirty() const;
    /// True when the user stepped, turned the wheel or finished an edit since the flags were last cleared.
    bool GetDirtyByUser() const;
    /// Sets both dirty flags to \a dirty.
    void SetDirty(bool dirty);
    /// Shows \a decimals decimals, and redraws the bound value's number with them.
    void setAdditionalPrecision(int decimals);
    /// Names the spin box \a name and its inner line edit \a name + "_Edit".
    void setObjectName(const QString& name);
    /// Sets the suffix; a non-empty one gets a blank in front unless it begins with one.
    void setSuffix(const QString& suffix);

    /// The text of an internal number, through offset and display scalings; "0" may read "auto".
    QString textFromValue(double value) const override;
    /// The internal number of a text, the inverse of textFromValue(); an unreadable text gives value() scaled back.
    double valueFromText(const QString& text) const override;
    /**
     * \brief Steps, then writes the value's pending number (optimised) or the value, and (re)starts
     * the 200 ms timer that commits the pending number. Unbound: does nothing.
     */
    void stepBy(int steps) override;

    /**
     * \brief Follows the bound value: its state enables the spin box, its range sets singleStep() (step × factor,
     * 1 × factor when no step is set), its value and pending number are shown. Any notification but a state
     * change marks the spin box dirty, also one from a value it doesn't hold.
     */
    void Update(Observable* source, TChangeCode code) override;

public Q_SLOTS:
    /**
     * \brief Clamps the number shown into the value's limits and writes it to the value, in one undo
     * recording. Connected to editingFinished(); unbound: does nothing.
     */
    void SlotEditingFinished();

protected:
    /// Reimplemented to hold back the writes of a step until Qt's spin box has finished with the event.
    bool event(QEvent* event) override;
    /// Commits the pending number when the 200 ms timer fires; other timers drive the arrows' repeat.
    void timerEvent(QTimerEvent* event) override;
    /// One step per event whatever its size, unless read-only; always accepted, so no parent scrolls.
    void wheelEvent(QWheelEvent* event) override;
    /// None when disabled by disableStep() or unbound; both with wrapping on; else as the value's limits allow.
    StepEnabled stepEnabled() const override;

private:
    double readNumber(const QString& text) const;
    void StartWatchDog();

    values::IValueNumeric* m_pNumericValue;
    double m_fLastValue;
    int m_nWatchDogTimer;
    bool m_bOptimize;
    bool m_bIgnoreValueUpdates;
    bool m_bDisplay0AsAuto;
    double m_fUnitScale;
    double m_fDisplayOffset;
    double m_fDisplayScalingFactor;
    double m_fFactor;
    bool m_bDirty;
    bool m_bDirtyByUser;
    bool m_bShowsPending;
    bool m_bStepDisabled;
    mutable QRegularExpression m_affixExpression; // the validator's reading of prefix and suffix
    std::unique_ptr<HeldWrites> m_pHeldWrites; // writes wait for the spin box's own event handling
};
