#pragma once

#include <values/observable.h>

#include <QAbstractTableModel>
#include <QElapsedTimer>
#include <QHash>
#include <QIcon>
#include <QStyledItemDelegate>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <vector>

class QTableView;
class QHBoxLayout;
class QPushButton;

namespace values {
class ValueBase;
}

/**
 * \brief One row per value of the tree (on or under a root path), sorted by path, kept live.
 *
 * The model observes every value it shows, so each change arrives as it happens and refreshes only its
 * row; a changed row glows for fadeDuration() and then fades. A value destroyed in the tree keeps its
 * row, marked Removed, until it is restored. Values added to the tree later appear with rescan(), since
 * the tree announces no additions; rescan() also gives a removed row the value back at its path.
 *
 * Writing the state column switches the value: Enabled and Disabled set the state, Removed takes the
 * value out of the tree; Enabled or Disabled on a removed row restores it through the restorer.
 * Writing the value column sets the value from text.
 */
class ValueTreeModel : public QAbstractTableModel, public IObserver
{
    Q_OBJECT

public:
    enum Column { PathColumn, ValueColumn, TypeColumn, StateColumn, ColumnCount };
    enum Role {
        StateRole = Qt::UserRole + 1, ///< the value's state as int (Enabled, Disabled, Removed)
        HeatRole,                     ///< 1.0 right after a change, falling to 0.0 over fadeDuration()
        PathRole,                     ///< the value's path
    };

    explicit ValueTreeModel(const QString& root = QStringLiteral("/"), QObject* parent = nullptr);
    ~ValueTreeModel() override;

    /// Adds a row for each value on or under the root that has none yet, and gives a removed row the value
    /// now at its path. Returns the number of rows added or taken up again.
    int rescan();

    /// The row of \a path, -1 when there is none.
    int rowOfPath(const QString& path) const;
    QString pathAt(int row) const;
    values::ValueBase* valueAt(int row) const;
    /// True for the row of a value that was removed and not restored yet.
    bool isRemovedRow(int row) const;
    /// The paths of the removed rows, sorted.
    QStringList removedPaths() const;
    /// Adds a removed row for \a path, which has no value now (a view made anew keeps the old one's rows).
    void addRemovedRow(const QString& path);

    /// What brings back a removed value at a path (true when it is back); without one nothing can.
    void setRestorer(std::function<bool(const QString&)> restorer) { m_restorer = std::move(restorer); }

    /**
     * \brief Switches the value of \a row to \a state: Enabled and Disabled through SetState(), Removed
     * by removing it from the tree, which keeps the row as Removed. On a removed row, Enabled and
     * Disabled restore the value first. False for a bad row or state, or a restore that failed.
     */
    bool switchState(int row, int state);

    /// How far the glow of \a row has faded: 1 just changed, 0 cold.
    qreal heat(int row) const;
    /// True while a row glows, that is while the model repaints backgrounds.
    bool isFading() const { return m_fadeTimer.isActive(); }
    int fadeDuration() const { return m_nFadeMs; }
    void setFadeDuration(int ms);
    /**
     * \brief Replaces the clock of the glow (milliseconds, rising); the default is wall time. A clock
     * that follows a simulation makes the glow reproducible.
     */
    void setClock(std::function<qint64()> clock);

    /// The display name of a state.
    static QString stateName(int state);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

    void Update(Observable* source, TChangeCode code) override;

Q_SIGNALS:
    /// A value on a row changed (value, state, range or items), whoever wrote it.
    void changeArrived(const QString& path, int code);
    /// switchState() switched \a path to \a state.
    void stateSwitched(const QString& path, int state);
    /// switchState() is about to remove \a value at \a path: its observers are still attached.
    void aboutToRemove(values::ValueBase* value, const QString& path);

private:
    struct Row
    {
        QString path;
        values::ValueBase* value; // null once removed
        qint64 changedAt; // clock time of the last change, -1 for none
    };

    void insertRow(const QString& path, values::ValueBase* value);
    QVariant removedData(const Row& row, int column, int role) const;
    void markRemoved(const Observable* source);
    void reindex();
    void fadeTick();
    qint64 now() const { return m_clock(); }

    QString m_strRoot;
    std::vector<Row> m_rows;
    QHash<const Observable*, int> m_index; // row by the observable part of its value
    std::function<qint64()> m_clock;
    std::function<bool(const QString&)> m_restorer;
    QElapsedTimer m_wallClock;
    QTimer m_fadeTimer;
    int m_nFadeMs = 1200;
    QIcon m_stateIcons[3]; // by state
};

/// Edits the state column with a combo box that commits on choosing.
class ValueStateDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
};

/**
 * \brief The value tree as a table, with buttons and a context menu that switch the state of the
 * selected values.
 */
class ValueTreeView : public QWidget
{
    Q_OBJECT

public:
    explicit ValueTreeView(const QString& root = QStringLiteral("/"), QWidget* parent = nullptr);

    ValueTreeModel* model() const { return m_pModel; }
    QTableView* table() const { return m_pTable; }
    /// Adds \a widget at the end of the button row.
    void addTrailingWidget(QWidget* widget);

public Q_SLOTS:
    /// Picks up values added to the tree since the last rescan.
    void rescan();
    /// Switches every selected value to \a state.
    void switchSelected(int state);
    /// Brings back every selected removed value.
    void restoreSelected();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fitColumns();
    void updateButtons();
    void showContextMenu(const QPoint& pos);

    ValueTreeModel* m_pModel;
    QTableView* m_pTable;
    QHBoxLayout* m_pButtons;
    QPushButton* m_pEnable;
    QPushButton* m_pDisable;
    QPushButton* m_pRemove;
};
