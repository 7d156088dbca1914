#pragma once

#include <vandrel/vandrel_export.h>

#include <plinthor/undorecording.h>
#include <values/values.h>

#include <QCheckBox>

/**
 * \brief A QCheckBox bound to a boolean, to a selection, or to one item of a multi-selection.
 *
 * Checked means: the boolean is true; the selection's current item has the checked key (1 unless
 * set otherwise); the item of the multi-selection is checked. The boolean and the selection replace
 * each other; the multi-selection item is a binding of its own, and a box bound to both a boolean (or
 * selection) and an item writes each of them on a click, as separate undo recordings.
 *
 * Unbound, the box is disabled and a click on it changes no value. Bound through a path, it is enabled
 * and disabled by the value's state. The pointer forms SetBoolean() and SetSelection() show the value
 * but leave the box disabled until the value's state next changes. When a value is removed the box
 * lets go of it and keeps its look.
 *
 * The dirty flag (GetDirty()) tells that a change came in from a value or went out by a click since
 * it was last cleared; state changes of the bound values don't count.
 */
class VANDREL_EXPORT VCCheckBox : public QCheckBox, public IObserver, public virtual UndoRecordingControlBase
{
    Q_OBJECT

public:
    /// A disabled, unbound box; \a name (null for none) becomes object name, text and tool-tip.
    explicit VCCheckBox(QWidget* parent = nullptr, const char* name = nullptr);
    ~VCCheckBox() override;

    /**
     * \brief Binds to the boolean or the selection at \a path, in place of the one bound before.
     *
     * A selection is read with the keys in force (1 checked, 0 unchecked, or those SetSelection() set).
     * False for an unknown path or a value of another kind: the box is then unbound from both and keeps
     * its look. The dirty flag is cleared in every case; the multi-selection item stays bound.
     */
    bool Set_ValuePath(const QString& path);
    /**
     * \brief Binds to \a value, already found by the caller, in place of the boolean or selection.
     *
     * Shows the value but doesn't take its state: the box keeps its enabled state until the value's
     * state next changes. Leaves the dirty flag set. A null \a value unbinds the boolean and selection
     * and gives false.
     */
    bool SetBoolean(values::Value<bool>* value);
    /**
     * \brief Binds to \a selection, in place of the boolean or selection: checked while the current
     * item has \a checkedKey; a click writes \a checkedKey or \a uncheckedKey.
     *
     * Like SetBoolean(), the enabled state waits for the next state change and the dirty flag is left
     * set. The keys are stored also for a null \a selection, which unbinds the boolean and selection
     * and gives false; a later Set_ValuePath() reads a selection with them.
     */
    bool SetSelection(values::ValueSelection* selection, long checkedKey, long uncheckedKey);
    /**
     * \brief Binds to the item \a key of the multi-selection at \a path, in place of the item bound before.
     *
     * False for an unknown path or a value that is not a multi-selection: the item binding is then
     * gone, the dirty flag cleared and the key kept. On success the dirty flag is left set.
     */
    bool SetMultiSelection_ValuePath(const QString& path, int key);

    /// The state as the values hold it (boolean, then selection, then item), not the widget's; false unbound.
    bool GetBool();
    /// True when a change came in or went out since the flag was last cleared.
    bool GetDirty() const;
    /// Sets or clears the dirty flag; the application clears it once it has taken up the change.
    void SetDirty(bool dirty);
    /// Sets the text beside the box.
    void SetText(QString text);

    void Update(Observable* source, TChangeCode code) override;

public Q_SLOTS:
    /// Writes the box's new state to every bound value, each in an undo recording of its own.
    void slotInternalChange();

private:
    values::Value<bool>* m_pBool;
    values::ValueSelection* m_pSelection;
    long m_nCheckedKey;
    long m_nUncheckedKey;
    bool m_bDirty;
    int m_nMultiKey;
    values::IValueMultiSelection* m_pMultiSelection;
};
