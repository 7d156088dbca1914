#pragma once

#include "valuereadout.h"

#include <QHash>
#include <QMainWindow>
#include <QPointer>

#include <functional>
#include <memory>
#include <vector>

class Instrument;
class ValueTreeModel;
class ValueTreeView;
class QAction;
class QGridLayout;
class QGroupBox;
class QVBoxLayout;
class QLabel;
class QMenuBar;
class QTabWidget;

namespace values {
class ValueBase;
class IUndoRecordingsListener;
class UndoRecordingsToValueClient;
}

/**
 * \brief The gallery's main window: the controls of a simulated receiver on the left, grouped by family
 * in tabs, and the live value tree on the right.
 *
 * The window does not own the instrument, which must outlive it.
 */
class GalleryWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit GalleryWindow(Instrument* instrument, QWidget* parent = nullptr);
    ~GalleryWindow() override;

    ValueTreeView* valueTree() const { return m_pTree; }
    ValueTreeModel* valueTreeModel() const;
    QTabWidget* pages() const { return m_pPages; }
    /// The language the window shows: "en" or "de".
    QString language() const;

    /// The gallery's one font, DejaVu Sans, the same on screen and offscreen; set by the constructor.
    static void useGalleryFont();
    /// The font of numbers: DejaVu Sans Mono at the size of the gallery's font.
    static QFont fixedFont();
    /// The size below which the window does not go: the value tree's State column stays in sight.
    static QSize minimumWindowSize() { return QSize(1024, 640); }

public Q_SLOTS:
    /// Brings back removed values, enables all, binds every control again and shows the new rows.
    void restoreInstrument();
    /**
     * \brief Brings back the one value at \a path as the instrument makes it (or enables it), and binds
     * the controls that showed it again; the other values stay as they are. False for a path the
     * instrument does not make.
     */
    bool restoreValue(const QString& path);
    /// The filter of the present mode and the slow AGC, as one edit of the menu button that asks.
    void resetReception();
    /// The level readout in dBm over the full range, as one edit of the context menu that asks.
    void resetView();
    /// Shows the window in \a language ("en" or "de"): loads its catalogs and makes every text again,
    /// on the next turn of the event loop; rebuilt() follows.
    void setLanguage(const QString& language);

Q_SIGNALS:
    /// The window's contents were made again, after a change of language.
    void rebuilt();

private:
    void useGalleryCatalog();
    void buildUi();
    void rebuildUi();
    QWidget* makeDisplay();
    QWidget* makeSliderPage();
    QWidget* makeButtonPage();
    QWidget* makePositionPage();
    QWidget* makeEntryPage();
    QWidget* makeMeasurementPage();
    QWidget* makeSelectionPage();
#ifdef VANDREL_GALLERY_FORMS
    QWidget* makeFormPage();
#endif
    QWidget* makeValueTreePane();
    void makeActions();
    /// The menu bar of switches on the view values.
    void makeMenuBar();
    /// The Edit menu after \a bar's entries: Undo, Redo and the lists of both, for the receiver.
    void makeEditMenu(QMenuBar* bar);
    /// Undo and Redo enabled as the history allows, named after what they would do.
    void followHistory();
    /// The selection page's group of menus: the markers' popup and the level readout's context menu.
    QWidget* makeMenuGroup(QWidget* page);
    void makeStatusBar();

    /// Runs \a binding now and again after every restore, so that the control finds re-created values.
    void bind(std::function<void()> binding);
    /// A readout of \a path, bound now and after every restore.
    ValueReadout* readout(const QString& path, ValueReadout::Formatter format = ValueReadout::Formatter());
    /// Adds a row "caption | control | readout" to \a grid; the caption greys out with the control.
    void addControlRow(QGridLayout* grid, const QString& caption, QWidget* control, QWidget* readout);
    /// Adds "caption ... readout" to \a grid with the control on the row below, across both columns.
    void addStackedControl(QGridLayout* grid, const QString& caption, QWidget* control, QWidget* readout);

    void followInstrument();
    /// Pause shows what it will do: "Pause simulation" while running, "Resume simulation" while still.
    void followPause();
    /// Greys out the controls that show \a value, about to be removed: they let go of it and write nowhere.
    void disableControlsOf(values::ValueBase* value, const QString& path);

    /// A grey, word-wrapped note for the top of a page or pane.
    static QLabel* hint(const QString& text, QWidget* parent);
    /// A new page with \a hintText on top; returns its column layout (the page is its parent widget).
    static QVBoxLayout* newPageLayout(const QString& hintText);
    /// The grid of a group of control rows in \a box: caption, control (stretching), readout.
    static QGridLayout* newControlGrid(QGroupBox* box);
    /// A number of the value with its unit, \a scale applied, with a true minus sign.
    static ValueReadout::Formatter numberIn(const QString& unit, int decimals = 0, double scale = 1.0);

    Instrument* m_pInstrument;
    ValueTreeView* m_pTree = nullptr;
    QTabWidget* m_pPages = nullptr;
    QAction* m_pScan = nullptr;
    QAction* m_pPause = nullptr;
    QAction* m_pUndo = nullptr;
    QAction* m_pRedo = nullptr;
    std::unique_ptr<values::UndoRecordingsToValueClient> m_pHistory;
    std::unique_ptr<values::IUndoRecordingsListener> m_pHistoryListener;
    QLabel* m_pClock = nullptr;
    QLabel* m_pCount = nullptr;
    std::vector<std::function<void()>> m_bindings;
    QHash<QString, QList<QPointer<QWidget>>> m_disabledControls; // by the path of the removed value
    QString m_strLanguage = QStringLiteral("en");
};
