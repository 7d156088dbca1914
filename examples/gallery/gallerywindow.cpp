/*
 * The gallery window. Each family of controls has a page made by its own function,
 * `QWidget* make<Family>Page()`, in a source file of its own (`<family>page.cpp`, listed in the
 * CMakeLists.txt beside this file) and added as a tab once in the constructor. A page creates its
 * controls, each with an object name that tests find it by, binds them inside bind() (so that they are
 * bound again after "Restore instrument") and lays each one out with addControlRow(grid, caption,
 * control, readout(path, format)), or with addStackedControl() for the caption above the control;
 * hint() makes the grey note at the top of a page and numberIn() formats a readout. The display above
 * the pages and the value tree on the right need no change for a new page.
 */
#include "gallerywindow.h"

#include <values/undo.h>

#include "instrument.h"
#include "valuetreeview.h"

#include <vandrel/vandrel.h>
#include <values/undo.h>

#include <QAction>
#include <QApplication>
#include <QActionGroup>
#include <QEvent>
#include <QFontDatabase>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QSplitter>
#include <QStatusBar>
#include <QStyle>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

/// Greys a caption out together with its control.
class EnabledFollower : public QObject
{
public:
    EnabledFollower(QWidget* source, QWidget* follower)
        : QObject(follower)
        , m_pFollower(follower)
    {
        follower->setEnabled(source->isEnabled());
        source->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::EnabledChange)
            m_pFollower->setEnabled(static_cast<QWidget*>(watched)->isEnabled());
        return false;
    }

private:
    QWidget* m_pFollower;
};

/// A label of the display that keeps its place: one line, cut where it does not fit, the whole text
/// in its tool-tip.
class DisplayLabel : public VCLabel
{
public:
    DisplayLabel(QWidget* parent, const char* name)
        : VCLabel(parent, name, 0)
    {
    }

    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override
    {
        const QMargins margins = contentsMargins();
        return QSize(minimumWidth(), fontMetrics().height() + margins.top() + margins.bottom());
    }

protected:
    void paintEvent(QPaintEvent*) override { m_oneLine.paint(this); }

private:
    OneLineText m_oneLine;
};

/// \a page in a frameless scroll area: a page taller or wider than its place scrolls instead of
/// pushing the window's minimum size up.
QWidget* scrolled(QWidget* page)
{
    auto* area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(page);
    return area;
}

const char* const kDisplayStyle = R"(
QFrame#display { background: #18212b; border-radius: 8px; }
QFrame#display QLabel { color: #7fe0c4; background: transparent; }
QFrame#display QLabel:disabled { color: #46555f; }
QFrame#display QLabel[role="caption"] { color: #6f8796; font-size: 8pt; letter-spacing: 1px; }
QFrame#display QLabel#frequencyDisplay { font-size: 24pt; color: #b8f5e3; }
)";

} // namespace

GalleryWindow::GalleryWindow(Instrument* instrument, QWidget* parent)
    : QMainWindow(parent)
    , m_pInstrument(instrument)
{
    useGalleryFont();
    useGalleryCatalog();
    // Every edit in the gallery can be undone and redone: the sliders, fields and editors that record
    // only on request are asked to, application-wide.
    UndoRecordingControlBase::SetOptionalRecordingDefault(true);
    // A control whose value was removed, or never found, says so with a frame and a tool-tip line.
    vandrel::SetValueStatusShown(true);
    setMinimumSize(minimumWindowSize());
    resize(1480, 800);
    buildUi();
    connect(m_pInstrument, &Instrument::stepped, this, &GalleryWindow::followInstrument);
}

GalleryWindow::~GalleryWindow()
{
    if (m_pHistory)
        m_pHistory->RemoveUndoRecordingsListener(m_pHistoryListener.get());
}

void GalleryWindow::useGalleryCatalog()
{
    // The gallery's words and the item names of its values live in the catalog of the namespace
    // "Gallery", compiled into the program; the library's catalogs are found beside the build.
    Q_INIT_RESOURCE(gallery_i18n);
    TranslationCenter& centre = TranslationCenter::Instance();
    if (!centre.IsRegistered(QStringLiteral("Gallery"))) {
        centre.AddSearchPath(QStringLiteral(VANDREL_BUILD_TRANSLATIONS));
        centre.Register(QStringLiteral("Gallery"));
        centre.InstallCatalog(QStringLiteral("Gallery"));
        centre.InstallCatalog(QStringLiteral("Vandrel"));
        centre.InstallCatalog(QStringLiteral("Plinthor"));
        // English until the user picks German, whatever the system's locale: one window, one language.
        centre.SetLocale(QStringLiteral("en"));
    }
}

void GalleryWindow::useGalleryFont()
{
    // Debian's fonts-dejavu-core, which scripts/deps.sh installs: found by fontconfig both on a
    // display and offscreen, so that a screenshot has the window's spacing.
    QFont font(QStringLiteral("DejaVu Sans"), 9);
    font.setStyleHint(QFont::SansSerif);
    QApplication::setFont(font);
}

QFont GalleryWindow::fixedFont()
{
    QFont font(QStringLiteral("DejaVu Sans Mono"), QApplication::font().pointSize());
    font.setStyleHint(QFont::TypeWriter);
    return font;
}

QString GalleryWindow::language() const
{
    return m_strLanguage;
}

void GalleryWindow::setLanguage(const QString& language)
{
    if (language == m_strLanguage)
        return;
    m_strLanguage = language;
    TranslationCenter::Instance().SetLocale(language);
    // Each text is made where its widget is made, and every control takes all it shows from its value,
    // so making the window's contents again retranslates everything, item names of values included, and
    // loses nothing but scroll positions. Not now: the switch itself is one of the widgets that go.
    QTimer::singleShot(0, this, &GalleryWindow::rebuildUi);
}

void GalleryWindow::rebuildUi()
{
    const int page = m_pPages ? m_pPages->currentIndex() : 0;
    m_bindings.clear();
    // The new controls of a value that is still removed grey out as the old ones did: found again by
    // their names, which stay.
    QHash<QString, QStringList> greyed;
    for (auto it = m_disabledControls.cbegin(); it != m_disabledControls.cend(); ++it) {
        for (const QPointer<QWidget>& widget : it.value()) {
            if (widget && !widget->objectName().isEmpty())
                greyed[it.key()] << widget->objectName();
        }
    }
    m_disabledControls.clear();
    const QStringList removed = m_pTree->model()->removedPaths();
    const QList<QToolBar*> bars = findChildren<QToolBar*>(QString(), Qt::FindDirectChildrenOnly);
    for (QToolBar* bar : bars) {
        removeToolBar(bar);
        delete bar;
    }
    delete takeCentralWidget();
    setStatusBar(nullptr);
    buildUi();
    for (const QString& path : removed)
        m_pTree->model()->addRemovedRow(path);
    for (auto it = greyed.cbegin(); it != greyed.cend(); ++it) {
        for (const QString& name : it.value()) {
            for (QWidget* widget : findChildren<QWidget*>(name)) {
                if (widget->isEnabled()) {
                    widget->setEnabled(false);
                    m_disabledControls[it.key()] << widget;
                }
            }
        }
    }
    m_pPages->setCurrentIndex(page);
    Q_EMIT rebuilt();
}

void GalleryWindow::buildUi()
{
    setWindowTitle(tr("Simulated receiver"));

    auto* left = new QWidget(this);
    auto* leftLayout = new QVBoxLayout(left);
    leftLayout->setContentsMargins(10, 10, 4, 6);
    leftLayout->setSpacing(10);
    leftLayout->addWidget(makeDisplay());
    m_pPages = new QTabWidget(left);
    m_pPages->setObjectName(QStringLiteral("pages"));
    m_pPages->setDocumentMode(true);
    m_pPages->addTab(scrolled(makeSliderPage()), tr("Sliders"));
    m_pPages->addTab(scrolled(makeButtonPage()), tr("Buttons and undo"));
    m_pPages->addTab(scrolled(makePositionPage()), tr("Station"));
    m_pPages->addTab(scrolled(makeEntryPage()), tr("Entry fields"));
    m_pPages->addTab(scrolled(makeMeasurementPage()), tr("Measurement"));
    m_pPages->addTab(scrolled(makeSelectionPage()), tr("Selections"));
#ifdef VANDREL_GALLERY_FORMS
    m_pPages->addTab(scrolled(makeFormPage()), tr("Drawn in Designer"));
#endif
    leftLayout->addWidget(m_pPages, 1);

    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->addWidget(left);
    splitter->addWidget(makeValueTreePane());
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({720, 760});
    splitter->setChildrenCollapsible(false);
    setCentralWidget(splitter);

    makeActions();
    makeMenuBar();
    makeStatusBar();

    // The scan switch also follows edits and removals made while the simulation is paused.
    connect(valueTreeModel(), &ValueTreeModel::changeArrived, this, [this](const QString& path) {
        if (path == QLatin1String("/receiver/scan/active"))
            followInstrument();
    });
    followInstrument();
}

QLabel* GalleryWindow::hint(const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, QColor(0x6b, 0x74, 0x7d));
    label->setPalette(palette);
    return label;
}

QVBoxLayout* GalleryWindow::newPageLayout(const QString& hintText)
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(2, 10, 2, 2);
    layout->setSpacing(10);
    layout->addWidget(hint(hintText, page));
    return layout;
}

QGridLayout* GalleryWindow::newControlGrid(QGroupBox* box)
{
    auto* grid = new QGridLayout(box);
    grid->setColumnStretch(1, 1);
    grid->setHorizontalSpacing(12);
    return grid;
}

ValueReadout::Formatter GalleryWindow::numberIn(const QString& unit, int decimals, double scale)
{
    return [=](values::ValueBase& value) {
        auto* numeric = dynamic_cast<values::IValueNumeric*>(&value);
        if (!numeric)
            return value.GetValueString();
        QString text = QString::number(numeric->GetValue() * scale, 'f', decimals);
        text.replace(QLatin1Char('-'), QChar(0x2212));
        return unit.isEmpty() ? text : text + QLatin1Char(' ') + unit;
    };
}

ValueTreeModel* GalleryWindow::valueTreeModel() const
{
    return m_pTree->model();
}

void GalleryWindow::bind(std::function<void()> binding)
{
    binding();
    m_bindings.push_back(std::move(binding));
}

ValueReadout* GalleryWindow::readout(const QString& path, ValueReadout::Formatter format)
{
    auto* label = new ValueReadout(std::move(format));
    label->setObjectName(QStringLiteral("readout:") + path);
    bind([label, path] { label->bind(path); });
    return label;
}

void GalleryWindow::addControlRow(QGridLayout* grid, const QString& caption, QWidget* control, QWidget* readout)
{
    const int row = grid->rowCount();
    auto* label = new QLabel(caption);
    label->setBuddy(control);
    new EnabledFollower(control, label);
    if (auto* value = qobject_cast<QLabel*>(readout)) {
        value->setFont(GalleryWindow::fixedFont());
        value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        value->setMinimumWidth(value->fontMetrics().horizontalAdvance(QStringLiteral("00.000 MHz")) + 8);
    }
    grid->addWidget(label, row, 0);
    grid->addWidget(control, row, 1);
    if (readout)
        grid->addWidget(readout, row, 2);
}

void GalleryWindow::addStackedControl(QGridLayout* grid, const QString& caption, QWidget* control, QWidget* readout)
{
    const int row = grid->rowCount();
    auto* label = new QLabel(caption);
    label->setBuddy(control);
    new EnabledFollower(control, label);
    grid->addWidget(label, row, 0);
    if (auto* value = qobject_cast<QLabel*>(readout)) {
        value->setFont(GalleryWindow::fixedFont());
        value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        grid->addWidget(value, row, 1);
    }
    grid->addWidget(control, row + 1, 0, 1, 2);
    // Air between one control and the next caption.
    grid->setRowMinimumHeight(row + 2, 14);
}

QWidget* GalleryWindow::makeDisplay()
{
    // The instrument's own display, made of the library's labels and lamps.
    auto* display = new QFrame(this);
    display->setObjectName(QStringLiteral("display"));
    display->setStyleSheet(QString::fromLatin1(kDisplayStyle));
    const QFont fixed = GalleryWindow::fixedFont();

    auto caption = [display](const QString& text) {
        auto* label = new QLabel(text.toUpper(), display);
        label->setProperty("role", QStringLiteral("caption"));
        return label;
    };
    // A number with its unit, or the text of any other value.
    auto field = [&](const char* name, const QString& path, const QString& unit = QString(), int decimals = 0,
                     double factor = 1.0) {
        auto* label = new DisplayLabel(display, name);
        label->setFont(fixed);
        label->SetSuffix(unit);
        label->SetFormat(3, decimals, factor);
        bind([label, path] { label->SetText_ValuePath(path, true); });
        return label;
    };

    VCLabel* frequency = field("frequencyDisplay", QStringLiteral("/receiver/frequency"), QStringLiteral("MHz"), 3, 0.001);
    QFont big = fixed;
    big.setPointSize(24);
    frequency->setFont(big);
    // Measured with the font the style sheet gives it, which is the one it is drawn in.
    frequency->ensurePolished();
    frequency->SetHeight(frequency->fontMetrics().height() + 4);
    frequency->setMinimumWidth(frequency->fontMetrics().horizontalAdvance(QStringLiteral("00.000 MHz")) + 4);

    auto* grid = new QGridLayout(display);
    grid->setContentsMargins(18, 12, 18, 12);
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(2);
    grid->addWidget(caption(tr("Frequency")), 0, 0);
    grid->addWidget(frequency, 1, 0, 2, 1, Qt::AlignLeft | Qt::AlignVCenter);

    VCLabel* mode = field("modeDisplay", QStringLiteral("/receiver/mode"));
    VCLabel* level = field("levelDisplay", QStringLiteral("/receiver/level"), QStringLiteral("dBm"));
    // The level's result may be marked invalid on the measurement page: the display then shows "- - -".
    bind([level] { level->SetNoValue_ValuePath(QStringLiteral("/receiver/results/level/INVALID")); });
    auto* carrier = new VCLED(display, "carrierDisplay", false);
    carrier->SetText(tr("open"));
    auto* status = new VCLED(display, "statusDisplay", false);
    bind([carrier, status] {
        carrier->SetBool_ValuePath(QStringLiteral("/receiver/carrier"));
        status->SetColorIndex_ValuePath(QStringLiteral("/receiver/alarms/status"));
    });
    VCLabel* scan = field("scanDisplay", QStringLiteral("/receiver/scan/position"), QStringLiteral("%"));
    // Each column as wide as its caption or the widest text its field shows, whatever it shows now, so
    // that no column moves when a text changes its length.
    const struct
    {
        QString caption;
        QWidget* field;
        QString widest;
    } fields[] = {
        {tr("Mode"), mode, QStringLiteral("USB")},
        {tr("Level"), level, QStringLiteral("\u2212130 dBm")},
        {tr("Carrier"), carrier, QStringLiteral("00") + tr("open")},
        {tr("Status"), status, QStringLiteral("00")},
        {tr("Scan"), scan, QStringLiteral("100 %")},
    };
    int column = 1;
    for (const auto& f : fields) {
        QLabel* label = caption(f.caption);
        label->ensurePolished();
        f.field->ensurePolished();
        const int width = qMax(label->fontMetrics().horizontalAdvance(label->text()),
                               f.field->fontMetrics().horizontalAdvance(f.widest) + 4);
        f.field->setFixedWidth(width);
        grid->setColumnMinimumWidth(column, width);
        grid->addWidget(label, 0, column);
        grid->addWidget(f.field, 1, column, Qt::AlignLeft | Qt::AlignVCenter);
        ++column;
    }
    grid->addWidget(caption(tr("Notes")), 2, 1, 1, 1, Qt::AlignBottom);
    VCLabel* notes = field("notesDisplay", QStringLiteral("/receiver/notes"));
    // A long note must not widen the display: it is cut at the label's edge.
    notes->setMinimumWidth(1);
    notes->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    notes->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    grid->addWidget(notes, 3, 1, 1, 2);
    grid->addWidget(caption(tr("Options")), 2, 3, 1, 1, Qt::AlignBottom);
    VCLabel* options = field("optionsDisplay", QStringLiteral("/receiver/options"));
    options->setMinimumWidth(1);
    options->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    options->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    grid->addWidget(options, 3, 3, 1, column - 3);
    grid->setColumnStretch(0, 1);
    return display;
}

QWidget* GalleryWindow::makeSliderPage()
{
    QVBoxLayout* layout = newPageLayout(tr("Every control here is bound to a value of the receiver. Drag one and watch its row "
                                         "glow in the value tree; disable or remove the value there and watch the control."));
    QWidget* page = layout->parentWidget();

    // Tuning: scroll bars make good dials, with arrows for single steps.
    auto* tuning = new QGroupBox(tr("Tuning"), page);
    auto* tuningGrid = newControlGrid(tuning);

    auto* frequency = new VCScrollBar(tuning, "frequencyScrollBar");
    frequency->setOrientation(Qt::Horizontal);
    frequency->setSingleStep(1);
    frequency->setPageStep(100);
    frequency->setToolTip(tr("Tuning in kHz: the arrows step 1 kHz, the trough 100 kHz"));
    bind([frequency] { frequency->Set_ValuePath(QStringLiteral("/receiver/frequency")); });
    addControlRow(tuningGrid, tr("Frequency"), frequency,
                  readout(QStringLiteral("/receiver/frequency"), numberIn(QStringLiteral("MHz"), 3, 0.001)));

    auto* position = new VCScrollBar(tuning, "scanPositionScrollBar");
    position->setOrientation(Qt::Horizontal);
    position->setPageStep(10);
    position->setToolTip(tr("Where the scan stands in its band; moving it stops the scan"));
    bind([position] { position->Set_ValuePath(QStringLiteral("/receiver/scan/position")); });
    addControlRow(tuningGrid, tr("Scan position"), position,
                  readout(QStringLiteral("/receiver/scan/position"), numberIn(QStringLiteral("%"))));
    layout->addWidget(tuning);

    auto* lower = new QHBoxLayout;
    lower->setSpacing(10);

    // Settings as horizontal sliders, each under its caption and read-out.
    auto* receiver = new QGroupBox(tr("Receiver and scan"), page);
    auto* receiverGrid = new QGridLayout(receiver);
    receiverGrid->setColumnStretch(0, 1);
    receiverGrid->setVerticalSpacing(2);
    struct SliderRow
    {
        QString caption;
        const char* name;
        QString path;
        QString unit;
        int tick;
        QString toolTip;
    };
    const SliderRow rows[] = {
        {tr("Gain"), "gainSlider", QStringLiteral("/receiver/gain"), QStringLiteral("dB"), 10, QString()},
        {tr("Squelch"), "squelchSlider", QStringLiteral("/receiver/squelch"), QStringLiteral("dBm"), 10,
         tr("The carrier opens above this level")},
        {tr("Volume"), "volumeSlider", QStringLiteral("/receiver/volume"), QStringLiteral("%"), 10, QString()},
        {tr("Scan speed"), "scanSpeedSlider", QStringLiteral("/receiver/scan/speed"), tr("%/step"), 1, QString()},
        {tr("Hold on carrier"), "scanHoldSlider", QStringLiteral("/receiver/scan/hold"), QStringLiteral("s"), 1,
         tr("How long the scan stays on a carrier")},
    };
    for (const SliderRow& r : rows) {
        auto* slider = new VCSlider(receiver, r.name);
        slider->setOrientation(Qt::Horizontal);
        slider->setTickPosition(QSlider::TicksBelow);
        slider->setTickInterval(r.tick);
        slider->setPageStep(r.tick);
        slider->setToolTip(r.toolTip);
        const QString path = r.path;
        bind([slider, path] { slider->SetNumeric_ValuePath(path); });
        addStackedControl(receiverGrid, r.caption, slider, readout(path, numberIn(r.unit)));
    }
    receiverGrid->setRowStretch(receiverGrid->rowCount(), 1);
    lower->addWidget(receiver, 1);

    // Meters: vertical controls side by side, two of them on values that also have a horizontal slider,
    // so that both can be seen following each other.
    auto* meters = new QGroupBox(tr("Meters"), page);
    auto* metersLayout = new QHBoxLayout(meters);
    metersLayout->setSpacing(12);
    struct MeterColumn
    {
        QString caption;
        QString path;
        QString unit;
        QAbstractSlider* control;
    };
    auto* level = new VCSlider(meters, "levelSlider");
    level->setTickPosition(QSlider::TicksBothSides);
    level->setTickInterval(10);
    level->setToolTip(tr("The signal meter: the instrument moves it, and it is yours to pull"));
    auto* gain = new VCSlider(meters, "gainVerticalSlider");
    gain->setTickPosition(QSlider::TicksBothSides);
    gain->setTickInterval(10);
    // Upright scroll bars grow upwards here, like the sliders beside them.
    auto* squelch = new VCScrollBar(meters, "squelchScrollBar");
    squelch->setPageStep(10);
    squelch->setInvertedAppearance(true);
    squelch->setInvertedControls(true);
    auto* volume = new VCScrollBar(meters, "volumeScrollBar");
    volume->setPageStep(10);
    volume->setInvertedAppearance(true);
    volume->setInvertedControls(true);
    const MeterColumn columns[] = {
        {tr("Level"), QStringLiteral("/receiver/level"), QStringLiteral("dBm"), level},
        {tr("Squelch"), QStringLiteral("/receiver/squelch"), QStringLiteral("dBm"), squelch},
        {tr("Gain"), QStringLiteral("/receiver/gain"), QStringLiteral("dB"), gain},
        {tr("Volume"), QStringLiteral("/receiver/volume"), QStringLiteral("%"), volume},
    };
    for (const MeterColumn& c : columns) {
        QAbstractSlider* control = c.control;
        control->setOrientation(Qt::Vertical);
        control->setMinimumHeight(160);
        const QString path = c.path;
        bind([control, path] {
            if (auto* slider = qobject_cast<VCSlider*>(control))
                slider->SetNumeric_ValuePath(path);
            else if (auto* bar = qobject_cast<VCScrollBar*>(control))
                bar->Set_ValuePath(path);
        });
        auto* column = new QVBoxLayout;
        column->setSpacing(6);
        auto* caption = new QLabel(c.caption, meters);
        caption->setAlignment(Qt::AlignHCenter);
        new EnabledFollower(control, caption);
        ValueReadout* value = readout(path, numberIn(c.unit));
        value->setFont(GalleryWindow::fixedFont());
        value->setAlignment(Qt::AlignHCenter);
        column->addWidget(caption);
        column->addWidget(control, 1, Qt::AlignHCenter);
        column->addWidget(value);
        metersLayout->addLayout(column);
    }
    lower->addWidget(meters, 1);
    layout->addLayout(lower, 1);
    return page;
}

QWidget* GalleryWindow::makeValueTreePane()
{
    auto* box = new QGroupBox(tr("Value tree"), this);
    auto* layout = new QVBoxLayout(box);
    layout->setSpacing(6);
    layout->addWidget(hint(tr("Each row is a value under /receiver, live. Changes glow as they arrive. "
                              "Double-click a state or a value to edit it, or select rows and use the buttons."),
                           box));
    m_pTree = new ValueTreeView(Instrument::root(), box);
    m_pTree->setObjectName(QStringLiteral("valueTree"));
    layout->addWidget(m_pTree, 1);
    // A removed row stays, and its restore brings back that one value as the instrument makes it.
    m_pTree->model()->setRestorer([this](const QString& path) { return restoreValue(path); });
    connect(m_pTree->model(), &ValueTreeModel::aboutToRemove, this, &GalleryWindow::disableControlsOf);

    connect(m_pTree->model(), &ValueTreeModel::stateSwitched, this, [this](const QString& path, int state) {
        statusBar()->showMessage(tr("%1: %2").arg(path, ValueTreeModel::stateName(state)), 4000);
    });
    return box;
}

void GalleryWindow::makeActions()
{
    QToolBar* bar = addToolBar(tr("Instrument"));
    bar->setObjectName(QStringLiteral("instrumentToolBar"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);

    m_pScan = bar->addAction(tr("Scan"));
    m_pScan->setCheckable(true);
    m_pScan->setToolTip(tr("Let the receiver scan its band (writes /receiver/scan/active)"));
    connect(m_pScan, &QAction::triggered, this, [](bool on) {
        if (auto* active = dynamic_cast<values::BoolValue*>(values::Tree::Instance()->Find(QStringLiteral("/receiver/scan/active"))))
            active->SetValue(on, nullptr);
    });

    // Not checkable: the action says what it will do, and its text and icon follow the simulation.
    m_pPause = bar->addAction(QString());
    m_pPause->setObjectName(QStringLiteral("pauseAction"));
    m_pPause->setShortcut(QKeySequence(Qt::Key_F5));
    connect(m_pPause, &QAction::triggered, this, [this] {
        if (m_pInstrument->isRunning())
            m_pInstrument->stop();
        else
            m_pInstrument->start();
        followPause();
    });
    followPause();

    bar->addSeparator();
    QAction* restore = bar->addAction(style()->standardIcon(QStyle::SP_BrowserReload), tr("Restore instrument"), this,
                                      &GalleryWindow::restoreInstrument);
    restore->setObjectName(QStringLiteral("restoreAction"));
    restore->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    restore->setToolTip(tr("Bring back every removed value as the instrument makes it and enable every value (Ctrl+R)"));

    // Each language named in itself, so that either can be found whichever is shown.
    bar->addSeparator();
    auto* languages = new QActionGroup(bar);
    const struct
    {
        const char* name;
        QString code;
        QString label;
    } choices[] = {{"languageEnglish", QStringLiteral("en"), QStringLiteral("English")},
                   {"languageGerman", QStringLiteral("de"), QStringLiteral("Deutsch")}};
    for (const auto& choice : choices) {
        QAction* action = bar->addAction(choice.label);
        action->setObjectName(QLatin1String(choice.name));
        action->setCheckable(true);
        action->setChecked(choice.code == m_strLanguage);
        action->setToolTip(tr("Show the gallery in %1").arg(choice.label));
        languages->addAction(action);
        const QString code = choice.code;
        connect(action, &QAction::triggered, this, [this, code] { setLanguage(code); });
    }
}

void GalleryWindow::makeStatusBar()
{
    m_pClock = new QLabel(this);
    m_pCount = new QLabel(this);
    auto* seed = new QLabel(tr("seed %1").arg(m_pInstrument->seed()), this);
    for (QLabel* label : {m_pCount, m_pClock, seed})
        label->setContentsMargins(10, 0, 10, 0);
    statusBar()->addPermanentWidget(m_pCount);
    statusBar()->addPermanentWidget(m_pClock);
    statusBar()->addPermanentWidget(seed);
    statusBar()->showMessage(tr("Ready: the receiver is live"), 3000);
    ValueTreeModel* model = m_pTree->model();
    auto count = [this, model] {
        const int n = model->rowCount();
        m_pCount->setText(n == 1 ? tr("1 value") : tr("%1 values").arg(n));
    };
    connect(model, &QAbstractItemModel::rowsInserted, this, count);
    connect(model, &QAbstractItemModel::rowsRemoved, this, count);
    count();
}

void GalleryWindow::followInstrument()
{
    m_pClock->setText(tr("t = %1 s").arg(m_pInstrument->simulatedMs() / 1000.0, 0, 'f', 1));
    followPause();
    auto* active = dynamic_cast<values::BoolValue*>(values::Tree::Instance()->Find(QStringLiteral("/receiver/scan/active")));
    m_pScan->setEnabled(active && active->GetState() == Enabled);
    m_pScan->setChecked(active && active->GetValue());
}

void GalleryWindow::followPause()
{
    const bool running = m_pInstrument->isRunning();
    const QString text = running ? tr("Pause simulation") : tr("Resume simulation");
    if (m_pPause->text() == text)
        return;
    m_pPause->setText(text);
    m_pPause->setIcon(style()->standardIcon(running ? QStyle::SP_MediaPause : QStyle::SP_MediaPlay));
    m_pPause->setToolTip(running ? tr("Hold the instrument still, so that only your edits move values (F5)")
                                 : tr("Let the instrument run again (F5)"));
}

void GalleryWindow::disableControlsOf(values::ValueBase* value, const QString& path)
{
    // A control lets go of a removed value and stays as it was, enabled and writing nowhere; greyed
    // out here, it shows that it has nothing to work on until the value is back.
    auto* observable = static_cast<Observable*>(value);
    QList<QPointer<QWidget>>& disabled = m_disabledControls[path];
    const QList<QWidget*> widgets = findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        auto* observer = dynamic_cast<IObserver*>(widget);
        if (observer && observable->IsAttached(observer) && widget->isEnabled()) {
            widget->setEnabled(false);
            disabled << widget;
        }
    }
}

bool GalleryWindow::restoreValue(const QString& path)
{
    if (!m_pInstrument->restoreValue(path))
        return false;
    for (const QPointer<QWidget>& widget : m_disabledControls.take(path)) {
        if (widget)
            widget->setEnabled(true);
    }
    // Binding again is harmless for controls whose values stayed: they take the same value anew.
    for (const auto& binding : m_bindings)
        binding();
    m_pTree->rescan();
    followInstrument();
    statusBar()->showMessage(tr("Restored %1").arg(path), 4000);
    return true;
}

void GalleryWindow::restoreInstrument()
{
    const int recreated = m_pInstrument->restore();
    for (const QList<QPointer<QWidget>>& widgets : qAsConst(m_disabledControls)) {
        for (const QPointer<QWidget>& widget : widgets) {
            if (widget)
                widget->setEnabled(true);
        }
    }
    m_disabledControls.clear();
    for (const auto& binding : m_bindings)
        binding();
    m_pTree->rescan();
    followInstrument();
    statusBar()->showMessage(recreated == 1 ? tr("Restored 1 value; all values enabled")
                             : recreated      ? tr("Restored %1 values; all values enabled").arg(recreated)
                                                  : tr("Nothing was missing; all values enabled"),
                             4000);
}
