#pragma once

#include <vandrel/vandrel_export.h>

#include <plinthor/undorecording.h>
#include <values/values.h>

#include <QGroupBox>
#include <QRadioButton>

#include <map>

class QBoxLayout;
class QButtonGroup;

/// \brief The radio button of one item of a VCButtonGroup.
class VANDREL_EXPORT EnhancedRadioButton : public QRadioButton
{
    Q_OBJECT

public:
    /// A radio button showing \a text, a child of \a parent.
    EnhancedRadioButton(const QString& text, QWidget* parent);
};

/**
 * \brief A group box with one radio button per item of a selection (values::ValueSelection), in key
 * order; the group's check box can in addition be bound to a boolean.
 *
 * The buttons follow the selection's item list: they are made anew when items are added or rebuilt,
 * and go when the list is cleared. A rebuild writes nothing. A click on a button selects its item's
 * key, as one undo recording with the group as originator, and then emits signalCurrentItemChecked().
 * A change of the value from elsewhere checks the button of the new current item; only keys from 0 to
 * the number of buttons minus one are shown this way, so the selection's keys should count from 0.
 * A selection with no current item shows its first item checked.
 *
 * Unbound, the group is disabled. Bound, it is enabled and disabled by the selection's state; when the
 * selection is removed the group lets go of it and keeps its buttons and look.
 *
 * Bound with SetCheckable_ValuePath(), the group's check box shows the boolean and writes it when
 * toggled (with no undo recording); a false boolean disables the buttons, as any checkable group box
 * does.
 */
class VANDREL_EXPORT VCButtonGroup : public QGroupBox, public IObserver, public virtual UndoRecordingControlBase
{
    Q_OBJECT

public:
    /**
     * \brief A disabled, unbound group; \a name becomes object name, tool-tip and title. The buttons
     * stand side by side for Qt::Horizontal, one below the other otherwise.
     */
    explicit VCButtonGroup(QWidget* parent = nullptr, const char* name = nullptr,
                           Qt::Orientation orientation = Qt::Vertical);
    ~VCButtonGroup() override;

    /**
     * \brief Binds to the selection at \a path, in place of the one bound before, and makes its buttons.
     * False for an unknown path or a value that is not a selection: the group is then unbound and
     * disabled, and keeps its buttons.
     */
    bool SetValueSelection_ValuePath(const QString& path);
    /// Binds to \a selection, already found by the caller; null leaves the group unbound and disabled.
    bool SetValueSelection(values::ValueSelection* selection);
    /**
     * \brief Makes the group's check box show and write the boolean at \a path. False for an unknown
     * path or a value that is not a boolean: the group is then not checkable.
     */
    bool SetCheckable_ValuePath(const QString& path);
    /**
     * \brief Enables or disables the button of \a key; with a boolean bound, enabling also needs it to
     * be true now. False when \a key has no button.
     */
    bool EnableRadioButton(bool enable, int key);
    /// The selection's current index; unbound, the key of the first checked button, or -1.
    int GetCurrentIndex();
    /// Checks the button of \a key without writing; keys beyond the number of buttons minus one are ignored.
    void setCurrentItem(int key);
    /// Adds a stretch after the buttons from the next rebuild on; each rebuild adds one more.
    void setAddStretch(bool on);
    /// Sets the margins of the buttons' layout.
    void setContentsMargins(int left, int top, int right, int bottom);
    using QGroupBox::setContentsMargins; // the QMargins form stays the group box's own
    /// No frame, and no margins around the buttons.
    void setNoFrame();

    void Update(Observable* source, TChangeCode code) override;

Q_SIGNALS:
    /// A user's click checked the button of \a key (not emitted for changes from the value).
    void signalCurrentItemChecked(int key);

protected:
    /// Makes a button per item anew; gives the item count.
    int AddButtons();
    /// Deletes every button.
    void RemoveButtons();
    /// Checks the button of the selection's current item.
    void SetItem();

private Q_SLOTS:
    void slotSet2Value(int value);
    void slotUpdateValues();
    void slotToggled(bool on);

private:
    values::ValueSelection* m_pValueSelection;
    values::ValueObservingPtr<values::Value<bool>> m_CheckableValue;
    std::map<int, EnhancedRadioButton*> m_Buttons;
    QBoxLayout* m_pLayout;
    QButtonGroup* m_pButtonGroup;
    bool m_bAddStretch;
    int m_nClicking;     // inside a button's clicked(): buttons removed now are deleted later
    bool m_bShowingBool; // the check box is being set from the boolean: toggled() must not write back
};
