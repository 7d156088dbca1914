#pragma once

#include <vandrel/vandrel_export.h>

#include <plinthor/sortlistview.h>
#include <plinthor/undorecording.h>
#include <values/values.h>

#include <QHash>

#include <vector>

/**
 * \brief A one-column list of check boxes bound to a checked-string vector or to a multi-selection.
 *
 * \b Vector. Each element of a values::CheckedStringVector is a row, in the vector's order, showing the
 * element's text and check mark. Every change of the value rebuilds the rows. A click writes the whole
 * vector back, with the control as originator, as one undo recording.
 *
 * \b Multi-selection. Each item of a values::IValueMultiSelection is a row, in the order of the keys
 * taken as unsigned numbers (not the value's own order), showing the item's name (translated in the
 * value's namespace), check mark and enabled flag. The rows follow the value's change journal: a
 * changed check mark or enabled flag touches only its row; a rebuilt or added item, or entries lost
 * from the journal, rebuild the rows; a clear removes them until the next rebuild. The rows therefore
 * come from the journal, never from binding alone: a value whose journal is empty at binding shows none.
 * A click writes that item's check mark, with the control as originator, as one undo recording. A
 * single-choice multi-selection (mode 1) is refused.
 *
 * Only one binding is in force at a time. Unbound, the list is disabled and a click writes nothing;
 * bound, it is enabled and disabled by the value's state. When the value is removed or destroyed the
 * list lets go of it and keeps its rows. The list follows the value without writing it back.
 */
class VANDREL_EXPORT VCMultipleCheck : public SortListView, public IObserver
{
    Q_OBJECT

public:
    /// A disabled, unbound list with one column, titled "Name", whose header is hidden and whose rows
    /// stay in the order they are made. \a name, when not null, becomes the object name.
    explicit VCMultipleCheck(QWidget* parent = nullptr, const char* name = nullptr);
    ~VCMultipleCheck() override;

    /**
     * \brief Binds to the checked-string vector or the multi-selection at \a path, in place of the
     * former binding.
     *
     * False for an unknown path, a value of another kind or a single-choice multi-selection: the list
     * is then unbound and keeps the rows it shows.
     */
    bool SetCheckedStringVector_ValuePath(const QString& path);

    void Update(Observable* source, TChangeCode code) override;

public Q_SLOTS:
    /**
     * \brief Writes check marks to the bound value; the argument is not read.
     *
     * Called by a row's check box, it writes that row; called otherwise, it writes every row.
     */
    void slotStateChanged(int);

protected:
    /// Rebuilds the rows from the bound value.
    void SetVector();
    /// Applies one entry of the multi-selection's change journal: \a kind as MultiSelectionChange::Kind.
    void ApplyChange(char kind, unsigned long key);
    /// The row of the item \a key of the multi-selection, or -1 when no row was built for it.
    int Key2Index(unsigned int key);

private:
    QCheckBox* boxOfRow(int row) const;
    void showRows();
    void rowsLeaving(int first, int last);
    bool writeRows(int single);

    std::vector<values::CheckedString> m_vecCheckedStrings;
    std::vector<CheckSortListViewItem*> m_vecItems;
    values::CheckedStringVector* m_pCheckedStringVector;
    values::IValueMultiSelection* m_pMultiSelection;
    unsigned long long m_ullChangeLogIndex;

    std::vector<unsigned int> m_vecRowKeys;  // the key of each row of a multi-selection
    QHash<unsigned int, int> m_mapKeyRow;    // key -> row, built with the rows
    QHash<const QObject*, int> m_mapBoxRow;  // check box -> row
    QHash<const QTreeWidgetItem*, int> m_mapItemRow; // row item -> row
    QMetaObject::Connection m_rowsReset;     // rows leaving the list, also by the application's hand
    QMetaObject::Connection m_rowsRemoved;
    bool m_bFollowingValue;                  // a box is being set from the value: nothing to write
    UndoRecordingControlBase m_undoSwitch;   // opens the span of a click's recording
};
