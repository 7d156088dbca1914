#pragma once

#include <vandrel/vandrel_export.h>

#include <plinthor/resortpopupmenu.h>
#include <plinthor/undorecording.h>
#include <values/values.h>

#include <QColor>
#include <QComboBox>
#include <QList>
#include <QToolButton>

#include <memory>
#include <vector>

class HeldWrites;
class QStyle;
class VCOneOfButtonCombo;
struct ComboBuddy;

/**
 * \brief A drop-down list (QComboBox) whose items, current entry and enabled state come from a
 * selection (values::ValueSelection) or from a single-choice multi-selection (mode 1).
 *
 * The items are the value's item names, translated in the value's namespace, in the selection's
 * order or, for a multi-selection, by key ascending, after the none entry when the value has one.
 * A pick is written as one undo recording: the selection with the list as originator, the
 * multi-selection (uncheck all, then check the picked item) with none. A pick by key or wheel is written
 * before the event returns, a pick in the popup on the next turn of the event loop (an observer may
 * delete the list, and Qt is not done with it before). With SetAutoCommit(false) a pick only marks the
 * list dirty and waits for Commit().
 *
 * Unbound, the list is disabled and a pick changes no value. Bound, it is enabled and disabled by the
 * value's state; when the value is removed the list lets go of it and keeps its items and look.
 * A change of check marks moves the shown entry without rebuilding the list or walking its items.
 *
 * The widest item name is measured in pixels (GetMaximumContentLengthInPixel()) and each change of it
 * is announced by MaximumContentLengthChanged(). The list asks the style factory for "windowsxp" and
 * keeps the application's style where the platform has none.
 */
class VANDREL_EXPORT VCComboBoxClassic : public QComboBox, public IObserver, public virtual UndoRecordingControlBase
{
    Q_OBJECT

public:
    /// A disabled, unbound list; \a name (null for none) becomes object name and tool-tip.
    VCComboBoxClassic(QWidget* parent, const char* name);
    ~VCComboBoxClassic() override;

    /**
     * \brief Binds to \a value, already found by the caller, and shows its items and current item.
     *
     * The list is enabled when the value's state allows it, and lets go of the selection it held before
     * (a bound multi-selection stays). A null \a value gives false. Clears the dirty flag.
     */
    bool SetValueSelection(values::ValueSelection* value);
    /**
     * \brief Binds to the selection, else the single-choice multi-selection, at \a path.
     *
     * False for an unknown path, another kind of value or a multi-selection of another mode: the list
     * is then unbound from both and disabled, and keeps its items. Clears the dirty flag.
     */
    bool SetValueSelection_ValuePath(const QString& path);
    /// The bound selection; null unbound or bound to a multi-selection.
    values::ValueSelection* GetValueSelection();
    /**
     * \brief Shows the first entry whose text is \a text; writes nothing. A non-ASCII text also finds
     * the entry of its translation in the selection's namespace. An unknown text changes nothing.
     */
    void setCurrentItem(QString text);
    /// Off: a pick waits for Commit() (default on).
    void SetAutoCommit(bool autoCommit);
    /// With auto-commit off: writes the entry shown now, as one undo recording. On: nothing.
    void Commit();
    /// True when the list was picked in or told of a change since the flag was last cleared.
    bool GetDirty();
    /// Sets or clears the dirty flag; the application clears it once it has taken up the change.
    void SetDirty(bool dirty);
    /// Items get their text as tool-tip, from the next rebuild of the list on.
    void EnableItemToolTip(bool enable);
    /**
     * \brief The widest untranslated item name of the selection in pixels, plus 10; 10 for an empty
     * selection, 0 unbound or bound to a multi-selection.
     */
    unsigned int GetMaximumContentLengthInPixel() const;

    void Update(Observable* source, TChangeCode code) override;

Q_SIGNALS:
    /// The widest item changed; \a uiMaxContentLength is GetMaximumContentLengthInPixel().
    void MaximumContentLengthChanged(uint uiMaxContentLength);

protected:
    /// Rebuilds the list from the selection (or the multi-selection); gives the number of items.
    int AddStrings2Combo();
    /// Rebuilds the list from the multi-selection; gives the number of keys, 0 unbound.
    int AddMStrings2Combo();
    /// Empties the list.
    void RemoveStringsFromCombo();
    /// Shows the selection's current item (or the multi-selection's checked one).
    void SetItem();
    /// Shows the multi-selection's first checked item; with none checked the entry stays.
    void SetMItem();

    /// Reimplemented to hold back the writes of a pick until Qt's combo box has finished with the event.
    bool event(QEvent* event) override;
    /// Notes that the popup closes: a pick announced right after it comes from the popup.
    void hidePopup() override;

private Q_SLOTS:
    void slotSet2Value(int value);

private:
    struct Index;

    void RebuildTextIndex();
    void WritePick(int value);

    values::ValueSelection* m_pValueSelection;
    values::IValueMultiSelection* m_pMultiSelection;
    bool m_bAutoCommit;
    QStyle* m_pStyle;
    unsigned int m_uiMaxContentLength;
    unsigned long long m_uLastChange;
    bool m_bDirty;
    bool m_bItemToolTip;
    bool m_bTakingOver;          // a rebuild is under way: picks are not written
    int m_nHeldPick;             // a pick in the popup, written on the next turn of the loop; -1 none
    bool m_bPopupClosing;        // the popup closed in this turn of the loop
    std::unique_ptr<Index> m_pIndex; // rows by text; keys and checks of the multi-selection
    std::unique_ptr<HeldWrites> m_pHeldWrites; // picks wait for the list's own event handling
};

/**
 * \brief A combo box in the shape of a flat tool button: the text shows the current entry, and a press
 * opens a menu (ResortPopupMenu) of the entries of a first and a second selection, each a
 * values::ValueSelection or a values::IValueMultiSelection of any mode, followed by the application's
 * additional entries.
 *
 * Entry ids: first selection the item key, second selection key + 10000, AddMenuEntry() -32768. A pick
 * writes with no originator, as one undo recording, so the button hears of it as everyone else does. A
 * multi-selection's entries carry check marks; the text then shows the one checked item, the value's
 * text for several, or its none text. With two items and the toggle flag a press flips the first
 * selection without a menu. Space, Return and Enter open the menu, Up and Down and the wheel step the
 * first selection.
 *
 * Unbound by path, the button is disabled; a removed value is let go of and the menu stays as it was.
 * The value's Enabled and Disabled states enable and disable the entries, not the button. Disabling with
 * the keep flag leaves the additional entries usable. A change of check marks moves the marks and the
 * text without rebuilding the menu, at the cost of the changed items alone.
 */
class VANDREL_EXPORT VCComboBoxButtonStyle : public QToolButton, public IObserver, public virtual UndoRecordingControlBase
{
    Q_OBJECT

public:
    /**
     * \brief A disabled, unbound button 20 pixels high; \a name becomes object name and tool-tip.
     * \a keepAdditionalEnabled: disabling spares the additional entries; \a toggleOnPress: a press on
     * a two-item first selection flips it.
     */
    VCComboBoxButtonStyle(QWidget* parent, const char* name, bool keepAdditionalEnabled, bool toggleOnPress);
    ~VCComboBoxButtonStyle() override;

    /// Replaces the first selection with \a value and rebuilds the menu; enables nothing. False for null.
    bool SetValueSelection(values::ValueSelection* value);
    /// Binds the first selection (a selection or a multi-selection) by path; false and disabled if none.
    bool SetValueSelection_ValuePath(const QString& path);
    /// Binds the second selection by path; false if none. The enabled state stays.
    bool SetSecondSelection_ValuePath(const QString& path);
    /// Rebuilds the whole menu: first selection, second selection, additional entries.
    void RebuildMenu();
    /// The menu; null before the first rebuild.
    ResortPopupMenu* GetPopup();
    /// Adds \a action at the end of the menu; not owned.
    void AddAction(QAction* action);
    /// Adds an entry \a text whose triggered() calls \a member of \a receiver.
    void AddMenuEntry(QString text, QObject* receiver, const char* member);
    /// Sets the button text to \a text, if it differs.
    void setCurrentItem(QString text);
    /// On: 14 by 24 pixels with a small downward triangle, as the companion of a button. Off changes nothing.
    void SetBuddyMode(bool buddyMode);
    /// Fills the background with \a color.
    void SetColor(QColor& color);
    /// Stores the compound control this combo belongs to.
    void SetOneOfButtonCombo(VCOneOfButtonCombo* combo);

    void Update(Observable* source, TChangeCode code) override;

public Q_SLOTS:
    /**
     * \brief Enables or disables the button and its menu. Disabling with the keep flag and additional
     * entries leaves the button and those entries usable and turns the value part (wheel) off.
     */
    virtual void setEnabled(bool bEnable);

Q_SIGNALS:
    /// Emitted on every change of a selection's current item, whatever made it.
    void SignalSelectionChangedByUserInput();

protected:
    /// Adds the first selection's items (or the first multi-selection's) to the menu; gives their number.
    int Add1stSelection2Combo();
    /// Adds a separator and the second selection's items (or the second multi-selection's); gives their number.
    int Add2ndSelection2Combo();
    /// Adds the first multi-selection's items as checkable entries; gives their number, 0 unbound.
    int Add1stMSelection2Combo();
    /// Adds a separator and the second multi-selection's items as checkable entries; gives their number.
    int Add2ndMSelection2Combo();
    /// Text and check mark follow the first selection.
    void SetCurrentItem();
    /// Check marks follow the second selection.
    void SetMenuSelectionItem();

    /// Reimplemented to step the first selection, while it and the value part are enabled.
    void wheelEvent(QWheelEvent* event) override;
    /// Reimplemented: Space, Return and Enter press the button (see the class description), Up and Down
    /// step the first selection.
    void keyPressEvent(QKeyEvent* event) override;

private Q_SLOTS:
    void slotSet2Value(QAction* pAction);
    void slotOpenMenu();
    void slotMenuAbout2Hide();

private:
    struct Index;
    friend void SetComboBuddy(VCComboBoxButtonStyle* combo, ComboBuddy* buddy);

    void MakeMenu();
    void AppendAdditionalMenu();
    void ShowFirstMultiText();
    void ApplyFirstChecks(const std::vector<unsigned int>& keys);
    void ApplySecondChecks(const std::vector<unsigned int>& keys);
    bool StepFirstSelection(bool up);
    bool Holds(const Observable* value) const;
    template <class T>
    void LetGo(T*& field);

    values::ValueSelection* m_pFirstSelection;
    values::ValueSelection* m_pSecondSelection;
    values::IValueMultiSelection* m_pFirstMultiSelection;
    values::IValueMultiSelection* m_pSecondMultiSelection;
    unsigned long long m_uFirstLastChange;
    unsigned long long m_uSecondLastChange;
    ResortPopupMenu* m_pMenu;
    bool m_bBuddyMode;
    int m_nFirstCheckedKey;
    int m_nSecondCheckedKey;
    QList<QAction*> m_additionalActions;
    VCOneOfButtonCombo* m_pOneOfButtonCombo;
    QColor m_color;
    bool m_bKeepAdditionalEnabled;
    bool m_bToggleOnPress;
    bool m_bValuePartEnabled;
    ComboBuddy* m_pComboBuddy;            // what the buddy answers through
    bool m_bClickAnimating;               // inside a key's animated click
    int m_nPicking;                       // inside slotSet2Value()
    std::unique_ptr<Index> m_pFirstIndex;  // keys and checks of the first multi-selection
    std::unique_ptr<Index> m_pSecondIndex; // of the second
};
