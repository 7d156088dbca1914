#pragma once

#include <vandrel/vandrel_export.h>

#include <values/values.h>

#include <QWidget>

class VCButton;

/**
 * \brief A narrow undo button for one branch of the value tree.
 *
 * The control lists the undo recordings of the values on or under its base path, newest first, as
 * the items of a private selection (keys 1, 2, ... in list order) and hands that selection to a
 * VCButton child. A click on the button selects the next item, which after each rebuild of the list
 * is the newest recording, and the control undoes it. The button's own clicks are never recorded.
 *
 * The button is enabled exactly when there is something to undo and no undo is under way. An undo
 * that does not change the list (so no rebuild follows) is caught by a watchdog: after 5000 ms the
 * button takes its enabled state from the list as it stands.
 *
 * Unbound (before SetUndoRecordings_BasePath()) the button is disabled and does nothing.
 */
class VANDREL_EXPORT VCUndo : public QWidget, public IObserver, public values::IUndoRecordingsListener
{
    Q_OBJECT

public:
    /// An unbound control 24 pixels wide; \a name (null for none) becomes the object name.
    explicit VCUndo(QWidget* parent = nullptr, const char* name = nullptr);
    ~VCUndo() override;

    /**
     * \brief Follows the undo recordings of \a basePath ("/" for the whole tree), in place of any
     * branch followed before. Ends a running undo's watchdog and drops the former list.
     */
    void SetUndoRecordings_BasePath(const QString& basePath);

    /**
     * \brief Enables or disables the button, never the control itself.
     *
     * True enables the button only when there is something to undo; otherwise it changes nothing.
     */
    virtual void setEnabled(bool enabled);

    /// Rebuilds the list from the recordings and ends a running watchdog.
    void NotifyUndoRecordingsChanged() override;
    void Update(Observable* source, TChangeCode code) override;
    /// The watchdog's expiry: the button takes its enabled state from the list as it stands.
    void timerEvent(QTimerEvent* event) override;

private:
    bool ExecuteUndo(unsigned int key);
    void Reset();
    void ResetTimer(int& timerId);
    void UpdateRecordings();

    VCButton* m_pButton;
    values::UndoRecordingsToValueClient* m_pRecordingsClient;
    values::ValueSelection* m_pSelection;
    int m_nTimerId;
};
