#pragma once

#include <vandrel/vandrel_export.h>

#include <plinthor/numericspinbox.h>
#include <plinthor/undorecording.h>
#include <values/values.h>

#include <QValidator>

#include <memory>

class HeldWrites;

/**
 * \brief A spin box that walks the items of a values::ValueSelection.
 *
 * The box's integer is the index of the selection's current item and its text is the selection's own
 * text (the current item's name), so the arrows, keys and wheel step through the items one at a time.
 * Every redraw of the text selects the item at the box's index, with the box as originator, when it
 * is not current yet: that is how a step reaches the value. The line edit is read-only and its
 * validator accepts every text.
 *
 * A text set on the line edit by the program can be read as a number with a magnitude letter ("100 k",
 * "2 G", "5 m"), converted into the unit of the selection's item numbers (setOrderOfMagnitudeVSValues()),
 * and selects the item whose number is nearest.
 *
 * Unbound, the box is disabled; a step while unbound shows an empty text. Bound, it is enabled and
 * disabled by the value's state; a selection that is emptied disables it and the next items enable it
 * again, whatever the state says. When the value is removed the box lets go of it and keeps its look.
 *
 * The box takes a new item count after it has taken the current index, so an index beyond the former
 * count is first clamped to it, and the item at the clamped index is selected. Applications that grow
 * the list and move the current item beyond its former end in one notification see that item chosen.
 *
 * Undo: records only on request (SetUndoRecordingEnabled(true) or
 * UndoRecordingControlBase::SetOptionalRecordingDefault(true)); then a key or arrow held from press to
 * release, or a wheel step, is one recording.
 */
class VANDREL_EXPORT VCSpinSelectionBox : public NumericSpinBox, public IObserver, public virtual UndoRecordingControlBase
{
    Q_OBJECT

public:
    /// The line edit's validator: every text is acceptable and stays as it is.
    class VANDREL_EXPORT Validator : public QValidator
    {
    public:
        /// A validator owned by \a parent.
        explicit Validator(QObject* parent);
        /// Reimplemented to accept every text unchanged.
        State validate(QString& input, int& pos) const override;
    };

    /// A disabled, unbound box; \a name (null for none) becomes object name and tool-tip.
    explicit VCSpinSelectionBox(QWidget* parent = nullptr, const char* name = nullptr);
    ~VCSpinSelectionBox() override;

    /**
     * \brief Binds to the selection at \a path, in place of the one bound before.
     *
     * The range becomes 0 to the item count less one and the box shows the current item. False for an
     * unknown path or a value that is not a selection; the box is then unbound and keeps its look.
     */
    bool SetValueSelection_ValuePath(const QString& path);
    /**
     * \brief The unit letter of the selection's item numbers: 'G', 'M', 'k', 'm', or blank for the
     * base unit. A typed number is divided by the letter's power of 1000 before it is looked up.
     */
    void setOrderOfMagnitudeVSValues(wchar_t letter);

    void Update(Observable* source, TChangeCode code) override;

protected:
    /**
     * \brief Reads the box's text as a number with an optional magnitude letter (k, M, G, m; case
     * matters), selects the item with the nearest number and returns its index.
     *
     * For unreadable text, or with no selection bound, \a *ok is false, 0 is returned and the
     * selection is untouched.
     */
    int mapTextToValue(bool* ok) override;
    /**
     * \brief Selects the item at the box's index, when it is not the current one already, and returns
     * the selection's text. The argument is not used.
     */
    QString mapValueToText(int value) override;

    /// Reimplemented to hold back the writes of a step until Qt's spin box has finished with the event.
    bool event(QEvent* event) override;

private:
    void TakeOverItems();

    wchar_t m_cOrderOfMagnitude;
    values::ValueSelection* m_pSelectionValue;
    bool m_bTakingOver = false; // taking over the selection's items: what Qt shows meanwhile is no pick
    std::unique_ptr<HeldWrites> m_pHeldWrites; // writes wait for the spin box's own event handling
    UndoActionGroup m_undoAction;
};
