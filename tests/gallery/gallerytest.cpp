#include "gallerywindow.h"
#include "instrument.h"
#include "valuereadout.h"
#include "valuetreeview.h"

#include <plinthor/plinthorapp.h>
#include <vandrel/vandrel.h>
#include <values/undo.h>

#include <QSet>
#include <QSignalSpy>
#include <QApplication>
#include <QComboBox>
#include <QFrame>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QStatusBar>
#include <QTabBar>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionSpinBox>
#include <QStyleOptionViewItem>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>

namespace {

/// The full path of the receiver's value \a leaf.
QString rx(const char* leaf)
{
    return QStringLiteral("/receiver/") + QLatin1String(leaf);
}

values::ValueBase* find(const QString& path)
{
    return values::Tree::Instance()->Find(path);
}

QString textOf(const QString& path)
{
    values::ValueBase* value = find(path);
    return value ? value->GetValueString() : QStringLiteral("<none>");
}

QString textOf(const char* leaf)
{
    return textOf(rx(leaf));
}

/// The texts of the receiver's values \a leaves, in order.
QStringList textsOf(std::initializer_list<const char*> leaves)
{
    QStringList texts;
    for (const char* leaf : leaves)
        texts << textOf(leaf);
    return texts;
}

/// Writes \a text to the receiver's value \a leaf as the program, not the user.
bool setText(const char* leaf, const char* text)
{
    return find(rx(leaf))->SetValueFromText(QString::fromUtf8(text), nullptr);
}

double numberOf(const char* leaf)
{
    auto* number = dynamic_cast<values::IValueNumeric*>(find(rx(leaf)));
    return number ? number->GetValue() : qQNaN();
}

QString cell(const ValueTreeModel& model, const QString& path, int column = ValueTreeModel::ValueColumn)
{
    return model.index(model.rowOfPath(path), column).data().toString();
}

bool switchTo(ValueTreeModel* model, const char* leaf, int state)
{
    return model->switchState(model->rowOfPath(rx(leaf)), state);
}

template <class T>
T* child(const QObject& parent, const char* name)
{
    return parent.findChild<T*>(QString::fromUtf8(name));
}

/// The texts of the live values after each of \a steps steps of a fresh instrument seeded with \a seed.
QStringList runInstrument(quint32 seed, int steps)
{
    Instrument instrument;
    instrument.setSeed(seed);
    QStringList trace;
    for (int i = 0; i < steps; ++i) {
        instrument.step();
        trace << textsOf({"level", "scan/position", "frequency"}).join(QLatin1Char(' '));
    }
    return trace;
}

/// Opens the tab titled \a title and shows the window; \a active also makes it take the keyboard focus.
bool showPage(GalleryWindow& window, const char* title, bool active = false)
{
    QTabWidget* pages = window.pages();
    for (int i = 0; i < pages->count(); ++i) {
        if (pages->tabText(i) == QLatin1String(title))
            pages->setCurrentIndex(i);
    }
    window.show();
    if (pages->tabText(pages->currentIndex()) != QLatin1String(title) || !QTest::qWaitForWindowExposed(&window))
        return false;
    if (active)
        QApplication::setActiveWindow(&window);
    return !active || QTest::qWaitForWindowActive(&window);
}

/// A left click on the box itself: a wide check box takes clicks only on its indicator and text.
void clickBox(QCheckBox* box)
{
    QStyleOptionButton option;
    option.initFrom(box);
    const QRect indicator = box->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, box);
    QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, indicator.center());
}

void clickArrow(QSpinBox* box, QStyle::SubControl arrow)
{
    QStyleOptionSpinBox option;
    option.initFrom(box);
    option.subControls = QStyle::SC_SpinBoxUp | QStyle::SC_SpinBoxDown | QStyle::SC_SpinBoxFrame;
    option.stepEnabled = QAbstractSpinBox::StepUpEnabled | QAbstractSpinBox::StepDownEnabled;
    const QRect rect = box->style()->subControlRect(QStyle::CC_SpinBox, &option, arrow, box);
    QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, rect.center());
}

/// Right-clicks \a edit and picks \a format from its context menu.
bool pickFormat(QLineEdit* edit, const QString& format)
{
    const QPoint pos = edit->rect().center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, pos, edit->mapToGlobal(pos));
    QApplication::sendEvent(edit, &event);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (!menu)
        return false;
    for (QAction* action : menu->actions()) {
        if (action->text() == format) {
            QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier, menu->actionGeometry(action).center());
            return true;
        }
    }
    menu->close();
    return false;
}

/// Replaces the whole text of the focused field \a edit by \a typed and presses Return.
void retype(QWidget* edit, const QString& typed)
{
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(edit, typed);
    QTest::keyClick(edit, Qt::Key_Return);
}

QImage pictureOf(const QAbstractButton* button)
{
    return button->icon().pixmap(button->iconSize()).toImage();
}

/// Closes the next message box with its Ok button and keeps "title|text"; made before the input that raises it.
class BoxCloser
{
public:
    BoxCloser() { arm(); }
    QString said;

private:
    void arm()
    {
        QTimer::singleShot(5, &m_context, [this] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                said = box->windowTitle() + QLatin1Char('|') + box->text();
                QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
            } else if (++m_nTries < 400) {
                arm();
            }
        });
    }
    QObject m_context; // ends the polling with the closer
    int m_nTries = 0;
};

} // namespace

Q_DECLARE_METATYPE(std::function<void()>)

class GalleryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        // The undo history and the position format outlive a window; each test starts without them.
        values::UndoRecorder::Instance().Clear();
        Plinthor::Instance().GetPositionFormat()->SelectKey(GeoDecimal, nullptr);
        // A window starts in English, whatever a test before it switched to.
        TranslationCenter::Instance().SetLocale(QStringLiteral("en"));
    }

    void instrumentOwnsItsBranchAndTheModelOutlivesIt()
    {
        ValueTreeModel model(Instrument::root());
        QCOMPARE(model.rowCount(), 0);
        QVERIFY(values::Tree::Instance()->PathsUnder(Instrument::root()).isEmpty());
        {
            Instrument instrument;
            QCOMPARE(values::Tree::Instance()->PathsUnder(Instrument::root()), Instrument::paths());
            QVERIFY(dynamic_cast<values::IValueNumeric*>(find(rx("gain"))));
            QVERIFY(dynamic_cast<values::ValueSelection*>(find(rx("mode"))));
            QVERIFY(dynamic_cast<values::StringMultiSelection*>(find(rx("options"))));
            QCOMPARE(model.rescan(), Instrument::paths().size());
        }
        QVERIFY(values::Tree::Instance()->PathsUnder(Instrument::root()).isEmpty());
        // The model forgot the values without detaching; their rows stay, removed, and take the new
        // values at their paths.
        QCOMPARE(model.rowCount(), Instrument::paths().size());
        for (int row = 0; row < model.rowCount(); ++row)
            QVERIFY(model.isRemovedRow(row) && !model.valueAt(row));
        Instrument instrument;
        QCOMPARE(model.rescan(), Instrument::paths().size());
        QCOMPARE(model.rowCount(), Instrument::paths().size());
        QVERIFY(!model.isRemovedRow(model.rowOfPath(rx("gain"))));
        QVERIFY(setText("gain", "5"));
        QCOMPARE(cell(model, rx("gain")), QStringLiteral("5"));
    }

    void instrumentIsReproducible()
    {
        const QStringList first = runInstrument(7, 200);
        QCOMPARE(runInstrument(7, 200), first);
        QVERIFY(runInstrument(8, 200) != first);
        // The run really moves: the meter shows more than a handful of levels, and the scan travels.
        QSet<QString> levels;
        QSet<QString> positions;
        for (const QString& line : first) {
            levels << line.section(QLatin1Char(' '), 0, 0);
            positions << line.section(QLatin1Char(' '), 1, 1);
        }
        QVERIFY2(levels.size() > 5, qPrintable(QStringLiteral("%1 distinct levels").arg(levels.size())));
        QVERIFY2(positions.size() > 10, qPrintable(QStringLiteral("%1 distinct positions").arg(positions.size())));
        // setSeed() restarts the run even on an instrument that has run before.
        Instrument instrument;
        instrument.setSeed(7);
        for (int i = 0; i < 30; ++i)
            instrument.step();
        QCOMPARE(instrument.simulatedMs(), qint64(30 * Instrument::StepMs));
        instrument.setSeed(7);
        QCOMPARE(instrument.stepCount(), quint64(0));
    }

    void turningTheDialStopsTheScan()
    {
        Instrument instrument;
        instrument.setSeed(1);
        instrument.step();
        QCOMPARE(textsOf({"scan/active", "scan/position", "frequency"}), QStringList({"true", "2", "7006"}));
        // The user moves the scan position: the scan stops and the frequency follows (7000 + 300 * 50 %).
        setText("scan/position", "50");
        instrument.step();
        QCOMPARE(textsOf({"scan/active", "frequency"}), QStringList({"false", "7150"}));
        for (int i = 0; i < 10; ++i)
            instrument.step();
        QCOMPARE(textOf("scan/position"), QStringLiteral("50"));
        // Tuning inside the band moves the position along; outside it leaves it.
        setText("frequency", "7195");
        instrument.step();
        QCOMPARE(textOf("scan/position"), QStringLiteral("65"));
        setText("frequency", "14200");
        instrument.step();
        QCOMPARE(textsOf({"scan/position", "frequency"}), QStringList({"65", "14200"}));
        // Restoring re-creates the position at 0; that is not the user turning the dial.
        setText("scan/active", "true");
        values::Tree::Instance()->Remove(rx("scan/position"));
        QCOMPARE(instrument.restore(), 1);
        instrument.step();
        QCOMPARE(textsOf({"scan/active", "scan/position"}), QStringList({"true", "2"}));
    }

    void scanHoldsOnACarrier()
    {
        Instrument instrument;
        instrument.setSeed(3);
        setText("scan/speed", "1");
        setText("scan/hold", "1");
        int step = 0;
        for (; textOf("carrier") != QLatin1String("true") && step < 200; ++step)
            instrument.step();
        QVERIFY2(step < 200, "the scan found no station in its band");
        const QString found = textOf("scan/position");
        // The first station of the band is near 7030 kHz.
        QVERIFY2(qAbs(textOf("frequency").toInt() - 7030) < 6, qPrintable(found));
        for (int i = 0; i < 1000 / Instrument::StepMs; ++i) {
            instrument.step();
            QCOMPARE(textOf("scan/position"), found);
        }
        instrument.step();
        QCOMPARE(textOf("scan/position"), QString::number(found.toInt() + 1));
        // Having let go of the station, the scan moves on instead of holding on it a second time.
        for (int i = 0; i < 5; ++i)
            instrument.step();
        QCOMPARE(textOf("scan/position"), QString::number(found.toInt() + 6));
    }

    // The measurement page follows the scan: results, history and lamps; the user's flag invalidates the
    // level, and a click on the recording lamp switches it.
    void measurementPageFollowsTheScan()
    {
        Instrument instrument;
        instrument.setSeed(3);
        GalleryWindow window(&instrument);
        QVERIFY(showPage(window, "Measurement"));
        setText("scan/speed", "1");
        auto* levelBlock = child<QWidget>(window, "RESULT_WIDGET_Level");
        auto* levelValue = child<VCLabel>(window, "RESULT_MEAS_Level");
        auto* newest = child<VCLabel>(window, "foundLabel0");
        auto* older = child<VCLabel>(window, "foundLabel1");
        auto* copy = child<VCLabel>(window, "foundCopyLabel");
        auto* invalid = child<VCLabel>(window, "invalidLabel");
        auto* glowing = child<VCLabel>(window, "luminescentLabel");
        auto* invalidSwitch = child<VCCheckBox>(window, "levelInvalidCheckBox");
        QVERIFY(levelBlock && levelValue && newest && older && copy && invalid && glowing && invalidSwitch);

        int step = 0;
        for (; textOf("carrier") != QLatin1String("true") && step < 200; ++step)
            instrument.step();
        QVERIFY2(step < 200, "the scan found no station in its band");
        const QString level = QString::number(find(rx("level"))->GetValueString().toDouble(), 'f', 1);
        QCOMPARE(levelValue->text(), level);
        QCOMPARE(textOf("results/offset/INVALID"), QStringLiteral("false"));
        QCOMPARE(textOf("alarms/status"), QStringLiteral("3"));
        // The station found enters the history; the copy repeats it.
        const QString found = textOf("scan/found") + QStringLiteral(" kHz");
        QCOMPARE(newest->text(), found);
        QCOMPARE(copy->text(), found);
        QCOMPARE(older->text(), QStringLiteral("0 kHz"));

        clickBox(invalidSwitch);
        QCOMPARE(textOf("results/level/INVALID"), QStringLiteral("true"));
        QCOMPARE(levelValue->text(), QStringLiteral("- - -"));
        QCOMPARE(invalid->text(), QStringLiteral("- - -"));
        QCOMPARE(glowing->text(), level + QStringLiteral(" dBm")); // the last number, in gray
        clickBox(invalidSwitch);
        QCOMPARE(levelValue->text(), level);

        auto* record = child<VCLED>(window, "LEDrecord");
        QVERIFY(record && record->isEnabled());
        QTest::mouseClick(record->findChild<QLabel*>(QStringLiteral("LEDPictrecord")), Qt::LeftButton);
        QCOMPARE(textOf("alarms/record"), QStringLiteral("true"));
    }

    void selectionPageListsMenusAndChannels()
    {
        Instrument instrument;
        instrument.setSeed(3);
        GalleryWindow window(&instrument);
        QVERIFY(showPage(window, "Selections", true));
        auto* mode = child<VCComboBoxClassic>(window, "mode");
        auto* filter = child<VCComboBoxClassic>(window, "bandwidth");
        auto* apply = child<QPushButton>(window, "applyBandwidth");
        auto* filterAgc = child<VCComboBoxButtonStyle>(window, "filterAgc");
        auto* options = child<VCComboBoxButtonStyle>(window, "options");
        auto* agcToggle = child<VCComboBoxButtonStyle>(window, "agcToggle");
        auto* channels = child<VCMultipleCheck>(window, "channels");
        QVERIFY(mode && filter && apply && filterAgc && options && agcToggle && channels);

        // A mode picked by key is written at once, and the receiver's next step brings its filter.
        mode->setFocus();
        QTest::keyClick(mode, Qt::Key_Down);
        QCOMPARE(textOf("mode"), QStringLiteral("FM"));
        instrument.step();
        QCOMPARE(textOf("bandwidth"), QStringLiteral("15.0 kHz"));

        // The filter list waits for "Apply", and meanwhile keeps showing its own pick, not the receiver's.
        filter->setFocus();
        QTest::keyClick(filter, Qt::Key_Up);
        const QString picked = filter->currentText();
        QCOMPARE(picked, QStringLiteral("3.0 kHz"));
        QCOMPARE(textOf("bandwidth"), QStringLiteral("15.0 kHz"));
        QVERIFY(apply->isEnabled());
        QTest::mouseClick(apply, Qt::LeftButton);
        QCOMPARE(textOf("bandwidth"), picked);
        QVERIFY(!apply->isEnabled());

        // The menu button: an AGC entry, then "Reset", which brings the mode's filter and the slow AGC.
        ResortPopupMenu* menu = filterAgc->GetPopup();
        QVERIFY(menu);
        QAction* fast = menu->findItem(10000 + 1);
        QVERIFY(fast);
        fast->trigger();
        QCOMPARE(textOf("agc"), QStringLiteral("Fast"));
        QAction* reset = nullptr;
        for (QAction* action : menu->actions())
            if (action->text() == QLatin1String("Reset"))
                reset = action;
        QVERIFY(reset);
        reset->trigger();
        QCOMPARE(textsOf({"bandwidth", "agc"}), QStringList({"15.0 kHz", "Slow"}));

        // Options: one mark names its item, two say "several".
        options->GetPopup()->findItem(2)->trigger();
        QCOMPARE(textOf("options"), QStringLiteral("Notch"));
        QCOMPARE(options->text(), QStringLiteral("Notch"));
        options->GetPopup()->findItem(3)->trigger();
        QCOMPARE(options->text(), QStringLiteral("several"));

        // A press on the toggle flips the AGC without a menu.
        QTest::mouseClick(agcToggle, Qt::LeftButton);
        QCOMPARE(textOf("agc"), QStringLiteral("Fast"));
        QCOMPARE(agcToggle->text(), QStringLiteral("Fast"));

        // The band monitor flips channels as it passes; every row follows, and a click writes its channel.
        for (int i = 0; i < 60; ++i)
            instrument.step();
        auto* set = dynamic_cast<values::StringMultiSelection*>(find(rx("channels")));
        QVERIFY(set && set->GetCheckedKeys().size() > 0);
        QCOMPARE(channels->topLevelItemCount(), 300);
        for (int key = 0; key < 300; ++key) {
            auto* row = dynamic_cast<CheckSortListViewItem*>(channels->topLevelItem(key));
            QVERIFY(row);
            QCOMPARE(row->isOn(), set->IsItemChecked(key));
        }
        auto* first = dynamic_cast<CheckSortListViewItem*>(channels->topLevelItem(0));
        const bool was = set->IsItemChecked(0);
        channels->scrollToItem(first);
        clickBox(first->GetCheckBox());
        QCOMPARE(set->IsItemChecked(0), !was);
    }

    // The menu bar's switches, the markers' menu and the level's context menu, as a user works them.
    void menusSwitchMarkAndPick()
    {
        Instrument instrument;
        instrument.setSeed(3);
        GalleryWindow window(&instrument);
        QVERIFY(showPage(window, "Selections", true));
        auto* bar = qobject_cast<VCMenuBar*>(window.menuBar());
        auto* markersButton = child<QPushButton>(window, "markersButton");
        auto* markers = child<VCPopupMenu>(window, "markers");
        auto* level = child<ValueReadout>(window, "levelReadout");
        auto* view = child<VCSelectionPopup>(window, "levelView");
        QVERIFY(bar && markersButton && markers && level && view);

        // A click on a switch of the bar writes the other state; its mark follows the value.
        QCOMPARE(bar->actions().size(), 3); // Hold, Averaging, Edit
        QAction* hold = bar->actions().at(0);
        QVERIFY(hold->isCheckable() && !hold->isChecked());
        QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->actionGeometry(hold).center());
        QCOMPARE(textOf("view/hold"), QStringLiteral("On"));
        QVERIFY(hold->isChecked());
        QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->actionGeometry(bar->actions().at(1)).center());
        QCOMPARE(textsOf({"view/hold", "view/averaging"}), QStringList({"On", "On"}));
        setText("view/hold", "Off");
        QVERIFY(!hold->isChecked());

        // The markers' menu opens under its button; a pick by keys checks that marker.
        QTest::mouseClick(markersButton, Qt::LeftButton);
        QTRY_VERIFY(markers->isVisible());
        QCOMPARE(markers->actions().size(), 4);
        QVERIFY(markers->actions().at(0)->isChecked());
        QTest::keyClick(markers, Qt::Key_Down);
        QTest::keyClick(markers, Qt::Key_Down);
        QTest::keyClick(markers, Qt::Key_Down);
        QTest::keyClick(markers, Qt::Key_Return);
        QCOMPARE(textOf("view/markers"), QStringLiteral("Carrier, Scan stops"));
        QVERIFY(markers->actions().at(2)->isChecked());
        auto* set = dynamic_cast<values::StringMultiSelection*>(find(rx("view/markers")));
        set->SetItemChecked(0, false, nullptr);
        QVERIFY(!markers->actions().at(0)->isChecked());

        // A right-click on the level opens its context menu: the unit, the range, then the command.
        const auto rightClick = [level] {
            QContextMenuEvent event(QContextMenuEvent::Mouse, level->rect().center(), level->mapToGlobal(level->rect().center()));
            QApplication::sendEvent(level, &event);
        };
        rightClick();
        QTRY_VERIFY(view->isVisible());
        QStringList entries;
        for (QAction* action : view->actions())
            entries << (action->isSeparator() ? QStringLiteral("-") : action->text() + (action->isChecked() ? "*" : ""));
        QCOMPARE(entries, QStringList({"dBm*", "dBuV", "-", "Full*", "Weak signals", "Strong signals", "-", "Reset view"}));
        QTest::keyClick(view, Qt::Key_Down);
        QTest::keyClick(view, Qt::Key_Down);
        QTest::keyClick(view, Qt::Key_Return);
        QCOMPARE(textOf("view/unit"), QStringLiteral("dBuV"));
        QVERIFY(view->actions().at(1)->isChecked() && !view->actions().at(0)->isChecked());
        QTRY_VERIFY(level->text().contains(QStringLiteral("dB\u00b5V")));
        rightClick();
        QTRY_VERIFY(view->isVisible());
        for (int i = 0; i < 4; ++i) // over the separator: dBm, dBuV, Full, Weak signals
            QTest::keyClick(view, Qt::Key_Down);
        QTest::keyClick(view, Qt::Key_Return);
        QCOMPARE(textOf("view/range"), QStringLiteral("Weak signals"));
        QTRY_VERIFY(level->text().contains(QStringLiteral("(Weak signals)")));
        // The command resets both, as one undoable edit.
        const int before = values::UndoRecorder::Instance().Count();
        view->actions().at(7)->trigger();
        QCOMPARE(textsOf({"view/unit", "view/range"}), QStringList({"dBm", "Full"}));
        QCOMPARE(values::UndoRecorder::Instance().Count(), before + 1);
        QVERIFY(view->actions().at(0)->isChecked() && view->actions().at(3)->isChecked());
    }

    void writeShowsInItsRowOnly_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("throughModel");
        QTest::addColumn<QString>("shown");
        QTest::newRow("int") << "/receiver/gain" << "42" << false << "42";
        QTest::newRow("int clamped") << "/receiver/gain" << "99" << false << "60";
        QTest::newRow("double") << "/receiver/frequency" << "7123.5" << false << "7123.5";
        QTest::newRow("bool") << "/receiver/attenuator" << "on" << false << "true";
        QTest::newRow("choice") << "/receiver/mode" << "USB" << false << "USB";
        QTest::newRow("text") << "/receiver/notes" << "net at 19:00; QRP" << false << "net at 19:00; QRP";
        QTest::newRow("edited in the view") << "/receiver/squelch" << "-70" << true << "-70";
        QTest::newRow("edited choice") << "/receiver/mode" << "CW" << true << "CW";
    }

    void writeShowsInItsRowOnly()
    {
        QFETCH(QString, path);
        QFETCH(QString, text);
        QFETCH(bool, throughModel);
        QFETCH(QString, shown);
        Instrument instrument;
        ValueTreeModel model(Instrument::root());
        qint64 clock = 1000;
        model.setClock([&clock] { return clock; });
        const int row = model.rowOfPath(path);
        QVERIFY(row >= 0);
        QCOMPARE(model.pathAt(row), path);
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        if (throughModel)
            QVERIFY(model.setData(model.index(row, ValueTreeModel::ValueColumn), text));
        else
            QVERIFY(find(path)->SetValueFromText(text, nullptr));
        QCOMPARE(textOf(path), shown);
        QCOMPARE(cell(model, path), shown);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.at(0).at(0).toModelIndex().row(), row);
        QCOMPARE(changed.at(0).at(1).toModelIndex().row(), row);
        // The changed row glows, the others do not, and the glow is gone after the fade.
        QCOMPARE(model.heat(row), 1.0);
        QVERIFY(model.index(row, ValueTreeModel::PathColumn).data(Qt::BackgroundRole).isValid());
        for (int other = 0; other < model.rowCount(); ++other)
            QCOMPARE(model.heat(other), other == row ? 1.0 : 0.0);
        clock += model.fadeDuration() / 2;
        QCOMPARE(model.heat(row), 0.5);
        clock += model.fadeDuration() / 2;
        QCOMPARE(model.heat(row), 0.0);
        QVERIFY(!model.index(row, ValueTreeModel::PathColumn).data(Qt::BackgroundRole).isValid());
    }

    void stateSwitchReachesValueAndControl_data()
    {
        QTest::addColumn<bool>("throughSetData");
        QTest::newRow("switchState") << false;
        QTest::newRow("setData (the state editor)") << true;
    }

    void stateSwitchReachesValueAndControl()
    {
        QFETCH(bool, throughSetData);
        Instrument instrument;
        ValueTreeModel model(Instrument::root());
        VCSlider slider(nullptr, "gain");
        QVERIFY(slider.SetNumeric_ValuePath(rx("gain")));
        QVERIFY(slider.isEnabled());
        const int row = model.rowOfPath(rx("gain"));
        const QModelIndex state = model.index(row, ValueTreeModel::StateColumn);
        const QModelIndex value = model.index(row, ValueTreeModel::ValueColumn);
        QSignalSpy switched(&model, &ValueTreeModel::stateSwitched);
        auto switchTo = [&](int to) { return throughSetData ? model.setData(state, to) : model.switchState(row, to); };
        QVERIFY(switchTo(Disabled));
        QCOMPARE(find(rx("gain"))->GetState(), int(Disabled));
        QVERIFY(!slider.isEnabled());
        QCOMPARE(state.data().toString(), ValueTreeModel::stateName(Disabled));
        QCOMPARE(state.data(ValueTreeModel::StateRole).toInt(), int(Disabled));
        QCOMPARE(switched.count(), 1);
        QCOMPARE(switched.at(0).at(0).toString(), rx("gain"));
        // A disabled value cannot be edited in the view either.
        QVERIFY(!(model.flags(value) & Qt::ItemIsEditable));
        QVERIFY(!model.setData(value, QStringLiteral("12")));
        QCOMPARE(textOf("gain"), QStringLiteral("30"));
        QVERIFY(switchTo(Enabled));
        QCOMPARE(find(rx("gain"))->GetState(), int(Enabled));
        QVERIFY(slider.isEnabled());
        QVERIFY(model.flags(value) & Qt::ItemIsEditable);
        // States that do not exist and rows that do not exist change nothing.
        QVERIFY(!switchTo(7));
        QVERIFY(!model.switchState(model.rowCount(), Disabled));
        QVERIFY(!model.switchState(-1, Disabled));
        QCOMPARE(find(rx("gain"))->GetState(), int(Enabled));
        QCOMPARE(switched.count(), 2);
    }

    void removeKeepsTheRowAndTheControlLetsGo()
    {
        Instrument instrument;
        ValueTreeModel model(Instrument::root());
        const int rows = model.rowCount();
        VCSlider slider(nullptr, "gain");
        QVERIFY(slider.SetNumeric_ValuePath(rx("gain")));
        const int gainRow = model.rowOfPath(rx("gain"));
        const int levelRow = model.rowOfPath(rx("level"));
        QVERIFY(levelRow > gainRow);
        QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
        QSignalSpy changedRows(&model, &QAbstractItemModel::dataChanged);
        QVERIFY(model.switchState(gainRow, Removed));
        QCOMPARE(removed.count(), 0);
        QVERIFY(!changedRows.isEmpty());
        QCOMPARE(changedRows.last().at(0).toModelIndex().row(), gainRow);
        QCOMPARE(model.rowCount(), rows);
        QCOMPARE(model.rowOfPath(rx("gain")), gainRow);
        QVERIFY(model.isRemovedRow(gainRow));
        QCOMPARE(cell(model, rx("gain"), ValueTreeModel::StateColumn), ValueTreeModel::stateName(Removed));
        QCOMPARE(cell(model, rx("gain")), QString());
        QVERIFY(!(model.flags(model.index(gainRow, ValueTreeModel::ValueColumn)) & Qt::ItemIsEditable));
        // Nothing brings it back without a restorer, and Removed again is no switch.
        QVERIFY(!model.switchState(gainRow, Enabled));
        QVERIFY(!model.switchState(gainRow, Removed));
        QVERIFY(!find(rx("gain")));
        // The slider lets go and keeps working on its own, writing nowhere.
        slider.setValue(12);
        QCOMPARE(slider.value(), 12);
        QVERIFY(!find(rx("gain")));
        // The rows after it stay where they were; a change must still reach the right one.
        QCOMPARE(model.rowOfPath(rx("level")), levelRow);
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        setText("level", "-42");
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.at(0).at(0).toModelIndex().row(), levelRow);
        QCOMPARE(cell(model, rx("level")), QStringLiteral("-42"));
        // Someone else removing a value marks its row too.
        QVERIFY(values::Tree::Instance()->Remove(rx("volume")));
        QCOMPARE(model.rowCount(), rows);
        QVERIFY(model.isRemovedRow(model.rowOfPath(rx("volume"))));
        // A value only marked Removed stays in the tree, so its row stays and says so.
        find(rx("notes"))->SetState(Removed, nullptr);
        QVERIFY(!model.isRemovedRow(model.rowOfPath(rx("notes"))));
        QCOMPARE(cell(model, rx("notes"), ValueTreeModel::StateColumn), ValueTreeModel::stateName(Removed));
    }

    void restoreBringsValuesAndRowsBack()
    {
        Instrument instrument;
        ValueTreeModel model(Instrument::root());
        const QStringList paths = Instrument::paths();
        QCOMPARE(instrument.restore(), 0);
        QCOMPARE(model.rescan(), 0);
        setText("gain", "55");
        QVERIFY(switchTo(&model, "gain", Removed));
        QVERIFY(switchTo(&model, "squelch", Removed));
        QVERIFY(switchTo(&model, "volume", Disabled));
        find(rx("notes"))->SetState(Removed, nullptr);
        QCOMPARE(model.rowCount(), paths.size());
        QSignalSpy restored(&instrument, &Instrument::restored);
        QCOMPARE(instrument.restore(), 2);
        QCOMPARE(restored.count(), 1);
        QCOMPARE(restored.at(0).at(0).toInt(), 2);
        for (const QString& path : paths)
            QCOMPARE(find(path)->GetState(), int(Enabled));
        // Re-created values start over from their initial contents.
        QCOMPARE(textOf("gain"), QStringLiteral("30"));
        QCOMPARE(model.rescan(), 2);
        QCOMPARE(model.rowCount(), paths.size());
        for (int row = 0; row < paths.size(); ++row) {
            QCOMPARE(model.pathAt(row), paths.at(row));
            QVERIFY(!model.isRemovedRow(row));
        }
        QCOMPARE(model.rescan(), 0);
        // A control bound again works on the new value, and the new row hears of it.
        VCSlider slider(nullptr, "gain");
        QVERIFY(slider.SetNumeric_ValuePath(rx("gain")));
        slider.setValue(45);
        QCOMPARE(textOf("gain"), QStringLiteral("45"));
        QCOMPARE(cell(model, rx("gain")), QStringLiteral("45"));
    }

    void notificationsRefreshTheRow_data()
    {
        using Change = std::function<void()>;
        QTest::addColumn<QString>("path");
        QTest::addColumn<Change>("change");
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<bool>("refreshed");
        auto gain = [] { return dynamic_cast<values::IntNumeric*>(find(rx("gain"))); };
        auto mode = [] { return dynamic_cast<values::ValueSelection*>(find(rx("mode"))); };
        auto options = [] { return dynamic_cast<values::StringMultiSelection*>(find(rx("options"))); };
        const int type = ValueTreeModel::TypeColumn;
        const int value = ValueTreeModel::ValueColumn;
        QTest::newRow("range") << "/receiver/gain" << Change([=] { gain()->SetRange(-10, 80, 1); }) << type
                               << "int -10…80" << true;
        QTest::newRow("range clamps the value")
            << "/receiver/gain" << Change([=] { gain()->SetRange(0, 20, 1); }) << value << "20" << true;
        QTest::newRow("item added") << "/receiver/mode" << Change([=] { mode()->AddItem(QStringLiteral("DRM"), 5, 5, nullptr); })
                                    << type << "choice of 6" << true;
        QTest::newRow("items cleared") << "/receiver/mode" << Change([=] { mode()->ClearItems(nullptr); }) << value << ""
                                       << true;
        QTest::newRow("item checked") << "/receiver/options" << Change([=] { options()->SetItemChecked(3, true, nullptr); })
                                      << value << "Preamp" << true;
        // A pending number is not the value: nothing to show.
        QTest::newRow("pending number") << "/receiver/gain" << Change([=] { gain()->SetPendingValue(50, nullptr); })
                                        << value << "30" << false;
    }

    void notificationsRefreshTheRow()
    {
        QFETCH(QString, path);
        QFETCH(std::function<void()>, change);
        QFETCH(int, column);
        QFETCH(QString, shown);
        QFETCH(bool, refreshed);
        Instrument instrument;
        ValueTreeModel model(Instrument::root());
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        QSignalSpy arrived(&model, &ValueTreeModel::changeArrived);
        change();
        QCOMPARE(cell(model, path, column), shown);
        QCOMPARE(!changed.isEmpty(), refreshed);
        QCOMPARE(!arrived.isEmpty(), refreshed);
        for (const QList<QVariant>& signal : qAsConst(changed))
            QCOMPARE(signal.at(0).toModelIndex().row(), model.rowOfPath(path));
        for (const QList<QVariant>& signal : qAsConst(arrived))
            QCOMPARE(signal.at(0).toString(), path);
    }

    void glowStopsTicking()
    {
        Instrument instrument;
        ValueTreeModel model(Instrument::root());
        qint64 clock = 0;
        model.setClock([&clock] { return clock; });
        const int row = model.rowOfPath(rx("volume"));
        setText("volume", "70");
        // While the row glows the model repaints its background, and only its.
        QVERIFY(model.isFading());
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        QVERIFY(changed.wait(1000));
        QCOMPARE(changed.last().at(0).toModelIndex().row(), row);
        QVERIFY(changed.last().at(2).value<QVector<int>>().contains(Qt::BackgroundRole));
        // Once cold it repaints a last time and then stays quiet.
        clock = model.fadeDuration();
        QVERIFY(changed.wait(1000));
        QCOMPARE(model.heat(row), 0.0);
        QVERIFY(!model.isFading());
        const int settled = changed.count();
        QVERIFY(!changed.wait(200));
        QCOMPARE(changed.count(), settled);
    }

    void rescanTakesOnlyTheRoot()
    {
        Instrument instrument;
        ValueTreeModel model(Instrument::root());
        values::Tree* tree = values::Tree::Instance();
        QVERIFY(tree->Add(QStringLiteral("/receiverless/x"), new values::IntValue(1)));
        QVERIFY(tree->Add(rx("zz/extra"), new values::IntValue(2)));
        QVERIFY(tree->Add(rx("aa"), new values::IntValue(3)));
        QCOMPARE(model.rescan(), 2);
        QCOMPARE(model.pathAt(0), rx("aa"));
        QCOMPARE(model.pathAt(model.rowCount() - 1), rx("zz/extra"));
        QCOMPARE(model.rowOfPath(QStringLiteral("/receiverless/x")), -1);
        ValueTreeModel everything;
        QVERIFY(everything.rowOfPath(QStringLiteral("/receiverless/x")) >= 0);
        QCOMPARE(everything.rowCount(), tree->Count());
        for (const QString& path : {QStringLiteral("/receiverless/x"), rx("zz/extra"), rx("aa")})
            tree->Remove(path);
        QCOMPARE(model.rowCount(), Instrument::paths().size() + 2);
        QVERIFY(model.isRemovedRow(0) && model.isRemovedRow(model.rowCount() - 1));
    }

    void viewSwitchesEverySelectedValue()
    {
        Instrument instrument;
        ValueTreeView view(Instrument::root());
        ValueTreeModel* model = view.model();
        auto* disable = child<QPushButton>(view, "disableButton");
        auto* remove = child<QPushButton>(view, "removeButton");
        QVERIFY(disable && remove && !remove->isEnabled());
        const QStringList chosen = {rx("gain"), rx("level"), rx("volume")};
        auto select = [&] {
            QItemSelection selection;
            for (const QString& path : chosen) {
                const int row = model->rowOfPath(path);
                selection.select(model->index(row, 0), model->index(row, ValueTreeModel::ColumnCount - 1));
            }
            view.table()->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
        };
        select();
        QVERIFY(remove->isEnabled());
        disable->click();
        for (const QString& path : chosen)
            QCOMPARE(find(path)->GetState(), int(Disabled));
        QCOMPARE(find(rx("frequency"))->GetState(), int(Enabled));
        // Removing shifts the rows under each removed one; every chosen value must go, and only those.
        select();
        remove->click();
        for (const QString& path : chosen) {
            QVERIFY2(!find(path), qPrintable(path));
            QVERIFY(model->isRemovedRow(model->rowOfPath(path)));
        }
        QCOMPARE(model->rowCount(), Instrument::paths().size());
        QVERIFY(find(rx("frequency")) && find(rx("mode")));
        // A removed row cannot be removed again; enabling it is its restore.
        QVERIFY(!remove->isEnabled() && child<QPushButton>(view, "enableButton")->isEnabled());
    }

    void stateEditorCommitsTheChoice()
    {
        Instrument instrument;
        ValueTreeModel model(Instrument::root());
        ValueStateDelegate delegate;
        QWidget parent;
        const QModelIndex state = model.index(model.rowOfPath(rx("squelch")), ValueTreeModel::StateColumn);
        QWidget* editor = delegate.createEditor(&parent, QStyleOptionViewItem(), state);
        auto* combo = qobject_cast<QComboBox*>(editor);
        QVERIFY(combo);
        delegate.setEditorData(editor, state);
        QCOMPARE(combo->currentData().toInt(), int(Enabled));
        combo->setCurrentIndex(combo->findData(int(Disabled)));
        delegate.setModelData(editor, &model, state);
        QCOMPARE(find(rx("squelch"))->GetState(), int(Disabled));
        // Choosing in the list commits at once, without waiting for the editor to close.
        QList<QWidget*> committed;
        QList<QWidget*> closed;
        connect(&delegate, &QAbstractItemDelegate::commitData, this, [&](QWidget* w) { committed << w; });
        connect(&delegate, &QAbstractItemDelegate::closeEditor, this, [&](QWidget* w) { closed << w; });
        combo->activated(combo->findData(int(Enabled)));
        QCOMPARE(committed, QList<QWidget*>{editor});
        QCOMPARE(closed, QList<QWidget*>{editor});
        combo->setCurrentIndex(combo->findData(int(Removed)));
        delegate.setModelData(editor, &model, state);
        QVERIFY(!find(rx("squelch")));
        QCOMPARE(state.data(ValueTreeModel::StateRole).toInt(), int(Removed));
    }

    void windowBindsAndFollowsStatesAndRestore()
    {
        Instrument instrument;
        auto snapshot = [] {
            QStringList texts;
            for (const QString& path : Instrument::paths())
                texts << textOf(path);
            return texts;
        };
        const QStringList before = snapshot();
        GalleryWindow window(&instrument);
        QCOMPARE(snapshot(), before);
        QCOMPARE(child<VCSlider>(window, "squelchSlider")->value(), -95);
        QCOMPARE(child<VCScrollBar>(window, "squelchScrollBar")->value(), -95);
        QCOMPARE(child<VCSlider>(window, "scanSpeedSlider")->value(), 2);
        ValueTreeModel* model = window.valueTreeModel();
        auto* gain = child<VCSlider>(window, "gainSlider");
        auto* gainVertical = child<VCSlider>(window, "gainVerticalSlider");
        auto* frequency = child<VCScrollBar>(window, "frequencyScrollBar");
        auto* frequencyReadout = child<ValueReadout>(window, "readout:/receiver/frequency");
        QVERIFY(gain && gainVertical && frequency && frequencyReadout);
        QCOMPARE(frequencyReadout->text(), QStringLiteral("7.000 MHz"));
        QCOMPARE(frequency->value(), 7000);
        // Both controls on the gain follow each other and its state.
        gain->setValue(48);
        QCOMPARE(gainVertical->value(), 48);
        QVERIFY(switchTo(model, "gain", Disabled));
        QVERIFY(!gain->isEnabled() && !gainVertical->isEnabled());
        QVERIFY(switchTo(model, "frequency", Removed));
        QVERIFY(!frequencyReadout->isBound());
        QCOMPARE(frequencyReadout->text(), QStringLiteral("—"));
        frequency->setValue(9000); // unbound: moves only itself
        QVERIFY(!find(rx("frequency")));
        window.restoreInstrument();
        QCOMPARE(model->rowCount(), Instrument::paths().size());
        QVERIFY(gain->isEnabled() && gainVertical->isEnabled() && frequencyReadout->isBound());
        QCOMPARE(frequencyReadout->text(), QStringLiteral("7.000 MHz"));
        QCOMPARE(frequency->value(), 7000);
        // The scroll bar is bound to the re-created value again.
        frequency->setValue(7100);
        QCOMPARE(textOf("frequency"), QStringLiteral("7100"));
        QCOMPARE(frequencyReadout->text(), QStringLiteral("7.100 MHz"));
        QCOMPARE(cell(*model, rx("frequency")), QStringLiteral("7100"));
    }

#ifdef VANDREL_GALLERY_FORMS
    // The Designer page: loaded through the plugin, bound by its properties, and bound again on restore.
    void formPageIsBoundByItsProperties()
    {
        Instrument instrument;
        GalleryWindow window(&instrument);
        auto* report = child<QLabel>(window, "formReport");
        QVERIFY(report);
        QCOMPARE(report->text(), QStringLiteral("Bindings made from the form: 9."));
        auto* gain = child<VCSlider>(window, "formGain");
        auto* mode = child<VCComboBoxClassic>(window, "formMode");
        auto* active = child<VCCheckBox>(window, "formScanActive");
        QVERIFY(gain && mode && active);
        QCOMPARE(gain->value(), 30);
        QCOMPARE(mode->currentText(), QStringLiteral("AM"));
        QCOMPARE(active->isChecked(), true);
        gain->setValue(41);
        QCOMPARE(textOf("gain"), QStringLiteral("41"));
        clickBox(active);
        QCOMPARE(textOf("scan/active"), QStringLiteral("false"));
        setText("mode", "USB");
        QCOMPARE(mode->currentText(), QStringLiteral("USB"));
        // A removed value comes back new, and the form's control is bound to it again.
        QVERIFY(switchTo(window.valueTreeModel(), "gain", Removed));
        window.restoreInstrument();
        QCOMPARE(report->text(), QStringLiteral("Bindings made from the form: 9."));
        QCOMPARE(gain->value(), 30);
        gain->setValue(35);
        QCOMPARE(textOf("gain"), QStringLiteral("35"));
    }
#endif

    // German and back: every tab and the item names of values change language; the window is made anew
    // on the same values, so a control still writes and the page stays where the user was.
    void languageSwitchRetranslatesEverything()
    {
        Instrument instrument;
        GalleryWindow window(&instrument);
        QTabWidget* pages = window.pages();
        pages->setCurrentIndex(2);
        QStringList english;
        for (int i = 0; i < pages->count(); ++i)
            english << pages->tabText(i);
        auto* agc = child<VCComboBoxButtonStyle>(window, "agcToggle");
        QCOMPARE(agc->text(), QStringLiteral("Slow"));

        QSignalSpy rebuilt(&window, &GalleryWindow::rebuilt);
        auto* german = child<QAction>(window, "languageGerman");
        QVERIFY(german);
        german->trigger();
        QTRY_COMPARE(rebuilt.count(), 1);
        QCOMPARE(window.language(), QStringLiteral("de"));
        pages = window.pages();
        QCOMPARE(pages->currentIndex(), 2);
        for (int i = 0; i < pages->count(); ++i) {
            QVERIFY2(pages->tabText(i) != english.at(i), qPrintable(english.at(i)));
            QCOMPARE(pages->tabText(i), QCoreApplication::translate("GalleryWindow", english.at(i).toUtf8().constData()));
        }
        QCOMPARE(child<QAction>(window, "languageGerman")->isChecked(), true);
        agc = child<VCComboBoxButtonStyle>(window, "agcToggle");
        QCOMPARE(agc->text(), QCoreApplication::translate("Gallery", "Slow"));
        QVERIFY(agc->text() != QLatin1String("Slow"));
        // Readouts and the pages' own buttons name items as the controls do.
        QCOMPARE(child<ValueReadout>(window, "readout:/receiver/agc")->text(), agc->text());
        QCOMPARE(child<VCOneOfButton>(window, "bandSWButton")->text(), QCoreApplication::translate("Gallery", "SW"));
        QVERIFY(child<VCOneOfButton>(window, "bandSWButton")->text() != QLatin1String("SW"));
        // The library's own words come in German too.
        auto* undo = child<VCUndo>(window, "undo");
        QVERIFY(undo);
        QCOMPARE(undo->findChild<VCButton*>()->toolTip(), QStringLiteral("R\u00fcckg\u00e4ngig"));
        // Made anew, still bound: a click writes, and the value keeps its English name.
        QTest::mouseClick(agc, Qt::LeftButton);
        QCOMPARE(textOf("agc"), QStringLiteral("Fast"));

        child<QAction>(window, "languageEnglish")->trigger();
        QTRY_COMPARE(rebuilt.count(), 2);
        for (int i = 0; i < window.pages()->count(); ++i)
            QCOMPARE(window.pages()->tabText(i), english.at(i));
        QCOMPARE(child<VCComboBoxButtonStyle>(window, "agcToggle")->text(), QStringLiteral("Fast"));
    }

    void undoTakesBackClicksOneByOne()
    {
        Instrument instrument;
        GalleryWindow window(&instrument);
        QVERIFY(showPage(window, "Buttons and undo"));
        auto* attenuator = child<VCCheckBox>(window, "attenuatorCheckBox");
        auto* mode = child<VCButton>(window, "modeButton");
        auto* louder = child<VCButton>(window, "volumeUpButton");
        auto* preamp = child<VCCheckBox>(window, "preampCheckBox");
        auto* undo = child<VCButton>(window, "undo_button");
        auto* history = child<QLabel>(window, "undoHistory");
        QVERIFY(attenuator && mode && louder && preamp && undo && history && !undo->isEnabled());
        QCOMPARE(history->text(), QStringLiteral("Nothing to undo yet."));
        clickBox(attenuator);
        QTest::mouseClick(mode, Qt::LeftButton);
        QTest::mouseClick(louder, Qt::LeftButton);
        QTest::mouseClick(louder, Qt::LeftButton);
        clickBox(preamp);
        setText("gain", "12");
        // attenuator, mode, volume and options before each undo; the program's gain stays throughout
        const QList<QStringList> stages = {
            {"true", "FM", "42", "Preamp"}, {"true", "FM", "42", "none"}, {"true", "FM", "41", "none"},
            {"true", "FM", "40", "none"},   {"true", "AM", "40", "none"}, {"false", "AM", "40", "none"},
        };
        for (int i = 0; i < stages.size(); ++i) {
            const QStringList& stage = stages.at(i);
            QCOMPARE(textsOf({"attenuator", "mode", "volume", "options", "gain"}), stage + QStringList{"12"});
            QCOMPARE(attenuator->isChecked(), stage.at(0) == QLatin1String("true"));
            QCOMPARE(mode->text(), stage.at(1));
            QCOMPARE(preamp->isChecked(), stage.at(3) == QLatin1String("Preamp"));
            const int left = stages.size() - 1 - i;
            QCOMPARE(history->text().split(QLatin1Char('\n')).size(), left ? left : 1);
            QCOMPARE(undo->isEnabled(), left > 0);
            if (left)
                QTest::mouseClick(undo, Qt::LeftButton);
        }
        QCOMPARE(history->text(), QStringLiteral("Nothing to undo yet."));
        // The undo button's own choices were never recorded.
        QCOMPARE(values::UndoRecorder::Instance().Count(), 0);
        // The list names the newest edit first.
        clickBox(attenuator);
        QTest::mouseClick(louder, Qt::LeftButton);
        QCOMPARE(history->text(), QStringLiteral("/receiver/volume: 40 → 41\n/receiver/attenuator: false → true"));
    }

    void optionBoxesCheckTheirItemOnly_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("name");
        QTest::newRow("noise blanker") << "noiseBlankerCheckBox" << 1 << "Noise blanker";
        QTest::newRow("notch") << "notchCheckBox" << 2 << "Notch";
        QTest::newRow("preamp") << "preampCheckBox" << 3 << "Preamp";
    }

    void optionBoxesCheckTheirItemOnly()
    {
        QFETCH(QString, box);
        QFETCH(int, key);
        QFETCH(QString, name);
        Instrument instrument;
        GalleryWindow window(&instrument);
        QVERIFY(showPage(window, "Buttons and undo"));
        auto* check = window.findChild<VCCheckBox*>(box);
        auto* options = dynamic_cast<values::StringMultiSelection*>(find(rx("options")));
        QVERIFY(check && options && check->isEnabled());
        QVERIFY(!check->isChecked());
        clickBox(check);
        for (int other = 1; other <= 3; ++other)
            QCOMPARE(options->IsItemChecked(other), other == key);
        QCOMPARE(textOf("options"), name);
        // Another item checked elsewhere leaves this box alone; its own item unchecked elsewhere clears it.
        const int neighbour = key % 3 + 1;
        options->SetItemChecked(neighbour, true, nullptr);
        QVERIFY(check->isChecked());
        options->SetItemChecked(key, false, nullptr);
        QVERIFY(!check->isChecked());
        QVERIFY(options->IsItemChecked(neighbour));
        options->SetState(Disabled, nullptr);
        QVERIFY(!check->isEnabled());
        clickBox(check);
        QVERIFY(!options->IsItemChecked(key));
    }

    void itemButtonsCycleWithTheirPictures()
    {
        Instrument instrument;
        GalleryWindow window(&instrument);
        QVERIFY(showPage(window, "Buttons and undo"));
        auto* mode = child<VCButton>(window, "modeButton");
        auto* modeReadout = child<ValueReadout>(window, "readout:/receiver/mode");
        QVERIFY(mode && modeReadout);
        // One click, the next mode with a picture of its own, around and back to the first.
        const QStringList names = {"AM", "FM", "USB", "LSB", "CW", "AM"};
        QList<QImage> pictures;
        for (int i = 0; i < names.size(); ++i) {
            if (i)
                QTest::mouseClick(mode, Qt::LeftButton);
            QCOMPARE(textOf("mode"), names.at(i));
            QCOMPARE(mode->text(), names.at(i));
            QCOMPARE(modeReadout->text(), names.at(i));
            QVERIFY(!mode->isDown());
            pictures << pictureOf(mode);
            QVERIFY(!pictures.last().isNull());
        }
        for (int i = 0; i < 5; ++i) {
            for (int j = i + 1; j < 5; ++j)
                QVERIFY2(pictures.at(i) != pictures.at(j), qPrintable(names.at(i) + QLatin1Char('/') + names.at(j)));
        }
        QCOMPARE(pictures.last(), pictures.first());
        setText("mode", "LSB");
        QCOMPARE(mode->text(), QStringLiteral("LSB"));
        QCOMPARE(pictureOf(mode), pictures.at(3));
        // The two-item AGC button is a toggle, down while Fast; the check box on the same selection follows it.
        auto* agc = child<VCButton>(window, "agcButton");
        auto* fast = child<VCCheckBox>(window, "agcFastCheckBox");
        QVERIFY(agc && fast);
        QCOMPARE(textOf("agc"), QStringLiteral("Slow"));
        QVERIFY(!agc->isDown() && !fast->isChecked());
        const QImage slow = pictureOf(agc);
        QTest::mouseClick(agc, Qt::LeftButton);
        QCOMPARE(textOf("agc"), QStringLiteral("Fast"));
        QVERIFY(agc->isDown() && fast->isChecked());
        QVERIFY(pictureOf(agc) != slow);
        clickBox(fast);
        QCOMPARE(textOf("agc"), QStringLiteral("Slow"));
        QVERIFY(!agc->isDown());
        QCOMPARE(pictureOf(agc), slow);
    }

    // The compounds: band buttons and the radio group on one band, the preselector's switch, the mode
    // pairs and the step button with its menu; each click one undo recording.
    void compoundsClickAsAUserDoes()
    {
        Instrument instrument;
        GalleryWindow window(&instrument);
        QVERIFY(showPage(window, "Buttons and undo", true));
        auto* sw = child<VCOneOfButton>(window, "bandSWButton");
        auto* group = child<VCButtonGroup>(window, "bandGroup");
        auto* modePair = child<VCOneOfButtonCombo>(window, "modePairCombo");
        auto* step = child<VCButtonCombo>(window, "stepFrame");
        QVERIFY(sw && group && modePair && step);
        const int before = values::UndoRecorder::Instance().Count();

        QTest::mouseClick(sw, Qt::LeftButton);
        QCOMPARE(textOf("band"), QStringLiteral("SW"));
        QVERIFY(sw->isChecked() && child<EnhancedRadioButton>(*group, "SW")->isChecked());
        auto* vhf = child<EnhancedRadioButton>(*group, "VHF");
        QTest::mouseClick(vhf, Qt::LeftButton, Qt::NoModifier, QPoint(6, vhf->height() / 2));
        QCOMPARE(textOf("band"), QStringLiteral("VHF"));
        QVERIFY(!sw->isChecked() && child<VCOneOfButton>(window, "bandVHFButton")->isChecked());
        group->setFocus();
        QTest::keyClick(group, Qt::Key_Space); // the preselector's switch, unrecorded
        QCOMPARE(textOf("preselector"), QStringLiteral("false"));
        QVERIFY(!vhf->isEnabled());

        auto* pairButton = modePair->findChild<VCOneOfButton*>();
        QTest::mouseClick(pairButton, Qt::LeftButton); // AM to FM, its out mode
        QCOMPARE(textOf("mode"), QStringLiteral("FM"));
        modePair->GetPopup()->findItem(2)->trigger(); // USB: the second pair
        QCOMPARE(textOf("mode"), QStringLiteral("USB"));
        QTest::mouseClick(pairButton, Qt::LeftButton);
        QCOMPARE(textOf("mode"), QStringLiteral("LSB"));

        QTest::mouseClick(step->GetButton(), Qt::LeftButton);
        QCOMPARE(textOf("step"), QStringLiteral("100 Hz"));
        step->GetPopup()->findItem(4)->trigger();
        QCOMPARE(textOf("step"), QStringLiteral("100 kHz"));
        QCOMPARE(step->GetCombo()->text(), QStringLiteral("100 kHz"));
        QCOMPARE(values::UndoRecorder::Instance().Count() - before, 7);
    }

    void stepButtonsRepeatWhileHeld()
    {
        Instrument instrument;
        GalleryWindow window(&instrument);
        QVERIFY(showPage(window, "Buttons and undo"));
        auto* louder = child<VCButton>(window, "volumeUpButton");
        auto* softer = child<VCButton>(window, "volumeDownButton");
        auto* tuneUp = child<VCButton>(window, "tuneUpButton");
        QVERIFY(louder && softer && tuneUp);
        auto volume = [] { return textOf("volume").toInt(); };
        QTest::mouseClick(softer, Qt::LeftButton);
        QCOMPARE(volume(), 39);
        QTest::mouseClick(tuneUp, Qt::LeftButton);
        QCOMPARE(textOf("frequency"), QStringLiteral("7001"));
        // Held, the button goes on stepping after its delay, and stops with the release.
        QTest::mousePress(louder, Qt::LeftButton);
        QCOMPARE(volume(), 39);
        QTRY_VERIFY_WITH_TIMEOUT(volume() >= 42, 3000);
        QTest::mouseRelease(louder, Qt::LeftButton);
        const int released = volume();
        QTest::qWait(300);
        QCOMPARE(volume(), released);
        // The top of the range holds, with nothing to undo for the click that changed nothing.
        setText("volume", "100");
        const int recorded = values::UndoRecorder::Instance().Count();
        QTest::mouseClick(louder, Qt::LeftButton);
        QCOMPARE(volume(), 100);
        QCOMPARE(values::UndoRecorder::Instance().Count(), recorded);
        // The buttons take the state of the number they step, and leave a removed one alone.
        QVERIFY(switchTo(window.valueTreeModel(), "volume", Disabled));
        QVERIFY(!louder->isEnabled() && !softer->isEnabled());
        QVERIFY(tuneUp->isEnabled());
        QVERIFY(switchTo(window.valueTreeModel(), "volume", Removed));
        window.restoreInstrument();
        QVERIFY(louder->isEnabled());
        QTest::mouseClick(louder, Qt::LeftButton);
        QCOMPARE(volume(), 41);
    }

    void coordinateFieldsShareTheFormat()
    {
        Instrument instrument;
        GalleryWindow window(&instrument);
        QVERIFY(showPage(window, "Station"));
        auto* site = child<VCCoordEdit>(window, "siteCoordEdit");
        auto* transmitter = child<VCCoordEdit>(window, "transmitterCoordEdit");
        auto* format = window.findChild<ValueReadout*>(QStringLiteral("readout:") + Plinthor::PositionFormatPath());
        QVERIFY(site && transmitter && format);
        QCOMPARE(site->GetLatitude(), 59.8586);
        QCOMPARE(transmitter->GetLongitude(), 12.3961);
        QCOMPARE(format->text(), QStringLiteral("Decimal degrees"));
        const QString siteDecimal = site->text();
        const QString transmitterDecimal = transmitter->text();
        QVERIFY(siteDecimal.contains(QStringLiteral("59.8586")));
        // A format picked in one field shows in both, and in the application's selection; the positions stay.
        QVERIFY(pickFormat(site, QStringLiteral("UTM")));
        QCOMPARE(site->getFormat(), Utm);
        QCOMPARE(transmitter->getFormat(), Utm);
        QCOMPARE(Plinthor::Instance().GetPositionFormat()->GetCurrentKey(), long(Utm));
        QCOMPARE(format->text(), QStringLiteral("UTM"));
        QVERIFY(site->text().startsWith(QStringLiteral("33V")));
        QVERIFY(transmitter->text().startsWith(QStringLiteral("33V")));
        QCOMPARE(textOf("site/latitude"), QStringLiteral("59.8586"));
        QVERIFY(pickFormat(transmitter, QStringLiteral("Decimal degrees")));
        QCOMPARE(site->getFormat(), GeoDecimal);
        QCOMPARE(site->text(), siteDecimal);
        QCOMPARE(transmitter->text(), transmitterDecimal);
        // A position typed into one field goes to its values only.
        site->setFocus();
        site->selectAll();
        QTest::keyClicks(site, QStringLiteral("59.33 18.07"));
        QTest::keyClick(site, Qt::Key_Return);
        QCOMPARE(textsOf({"site/latitude", "site/longitude"}), QStringList({"59.33", "18.07"}));
        QCOMPARE(transmitter->text(), transmitterDecimal);
        // After a removal and restore the field is bound to the re-created value.
        QVERIFY(values::Tree::Instance()->Remove(rx("site/latitude")));
        window.restoreInstrument();
        QCOMPARE(site->GetLatitude(), 59.8586);
        setText("site/latitude", "58.41");
        QCOMPARE(site->GetLatitude(), 58.41);
    }

    void bandwidthSpinBoxSteps()
    {
        Instrument instrument;
        GalleryWindow window(&instrument);
        QVERIFY(showPage(window, "Station"));
        auto* box = child<VCSpinSelectionBox>(window, "bandwidthSpinBox");
        QVERIFY(box && box->isEnabled());
        QCOMPARE(box->minimum(), 0);
        QCOMPARE(box->maximum(), 6);
        QCOMPARE(box->text(), QStringLiteral("6.0 kHz"));
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Up);
        QCOMPARE(textOf("bandwidth"), QStringLiteral("9.0 kHz"));
        clickArrow(box, QStyle::SC_SpinBoxDown);
        clickArrow(box, QStyle::SC_SpinBoxDown);
        QCOMPARE(textOf("bandwidth"), QStringLiteral("3.0 kHz"));
        QCOMPARE(box->text(), QStringLiteral("3.0 kHz"));
        const QPoint centre = box->rect().center();
        QWheelEvent wheel(centre, box->mapToGlobal(centre), QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(box, &wheel);
        QCOMPARE(textOf("bandwidth"), QStringLiteral("6.0 kHz"));
        // The ends hold.
        QTest::keyClick(box, Qt::Key_PageDown);
        QCOMPARE(box->text(), QStringLiteral("0.5 kHz"));
        QTest::keyClick(box, Qt::Key_Down);
        QCOMPARE(textOf("bandwidth"), QStringLiteral("0.5 kHz"));
        // A new mode brings its filter with the next step of the receiver; within a mode the user's filter stays.
        setText("mode", "USB");
        QCOMPARE(box->text(), QStringLiteral("0.5 kHz"));
        instrument.step();
        QCOMPARE(box->text(), QStringLiteral("2.4 kHz"));
        QTest::keyClick(box, Qt::Key_Up);
        instrument.step();
        QCOMPARE(textOf("bandwidth"), QStringLiteral("3.0 kHz"));
        // A typed width selects its filter: with a magnitude letter, or in hertz without one.
        auto* field = box->findChild<QLineEdit*>();
        QVERIFY(field && !field->isReadOnly());
        retype(field, QStringLiteral("9k"));
        QCOMPARE(textOf("bandwidth"), QStringLiteral("9.0 kHz"));
        QCOMPARE(box->text(), QStringLiteral("9.0 kHz"));
        retype(field, QStringLiteral("1800"));
        QCOMPARE(textOf("bandwidth"), QStringLiteral("1.8 kHz"));
        retype(field, QStringLiteral("wide"));
        QCOMPARE(textOf("bandwidth"), QStringLiteral("1.8 kHz"));
    }

    void typedFieldsWriteAndClamp_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<double>("written");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("readout");
        QTest::addColumn<QString>("box");
        const QString f = QStringLiteral("frequency");
        QTest::newRow("MHz") << f << "7.2" << 7200.0 << "7.200 MHz" << "7200 kHz" << "";
        QTest::newRow("MHz, comma and unit") << f << "14,25 MHz" << 14250.0 << "14.250 MHz" << "14250 kHz" << "";
        // The frequency keeps whole kHz, and the field shows what it kept.
        QTest::newRow("Hz dropped") << f << "7.2343" << 7234.0 << "7.234 MHz" << "7234 kHz" << "";
        QTest::newRow("kHz typed") << f << "7150k" << 7150.0 << "7.150 MHz" << "7150 kHz" << "";
        QTest::newRow("above") << f << "35" << 30000.0 << "30 MHz" << "30000 kHz"
                               << "Input Error|Input exceeds maximum, value set to 30 MHz.\n"
                                  "Allowed range from 100 kHz to 30 MHz.";
        QTest::newRow("below") << f << "0.05" << 100.0 << "0.100 MHz" << "100 kHz"
                               << "Range Check Error|Input underruns minimum, value set to 100 kHz.\n"
                                  "Allowed range from 100 kHz to 30 MHz.";
        const QString s = QStringLiteral("squelch");
        QTest::newRow("dBm with unit") << s << "-100 dBm" << -100.0 << "-100 dBm" << "\u2212100 dBm" << "";
        // In range the text stays as typed: the field is the writer, so no answer of the value redraws it.
        QTest::newRow("dBm bare") << s << "-87" << -87.0 << "-87" << "\u221287 dBm" << "";
        QTest::newRow("dBm above") << s << "-20" << -30.0 << "-30 dBm" << "\u221230 dBm"
                                   << "Input Error|Input exceeds maximum, value set to -30.\nAllowed range from -130 to -30.";
    }

    void typedFieldsWriteAndClamp()
    {
        QFETCH(QString, field);
        QFETCH(QString, typed);
        QFETCH(double, written);
        QFETCH(QString, shown);
        QFETCH(QString, readout);
        QFETCH(QString, box);
        const bool isFrequency = field == QLatin1String("frequency");
        Instrument instrument;
        GalleryWindow window(&instrument);
        QVERIFY(showPage(window, "Entry fields", true));
        auto* edit = window.findChild<VCLineEdit*>(field + QStringLiteral("LineEdit"));
        auto* label = window.findChild<ValueReadout*>(field + QStringLiteral("EntryReadout"));
        QVERIFY(edit && label && edit->isEnabled());
        QCOMPARE(edit->text(), isFrequency ? QStringLiteral("7 MHz") : QStringLiteral("-95 dBm"));
        edit->setFocus();
        // Taking the focus is no edit: the scan runs on until the user types a frequency.
        QCOMPARE(textOf("scan/active"), QStringLiteral("true"));
        BoxCloser closer;
        retype(edit, typed);
        QCOMPARE(textOf("scan/active"), QString::fromLatin1(isFrequency ? "false" : "true"));
        QCOMPARE(closer.said, box);
        QCOMPARE(numberOf(isFrequency ? "frequency" : "squelch"), written);
        QCOMPARE(edit->text(), shown);
        QCOMPARE(label->text(), readout);
    }

    void frequencyFieldFollowsStateAndRestore()
    {
        Instrument instrument;
        GalleryWindow window(&instrument);
        QVERIFY(showPage(window, "Entry fields", true));
        ValueTreeModel* model = window.valueTreeModel();
        auto* edit = child<VCLineEdit>(window, "frequencyLineEdit");
        QVERIFY(edit);
        dynamic_cast<values::IValueNumeric*>(find(rx("frequency")))->SetValue(7305, nullptr);
        QCOMPARE(edit->text(), QStringLiteral("7.305 MHz"));
        QVERIFY(switchTo(model, "frequency", Disabled));
        QVERIFY(!edit->isEnabled());
        // Removed, the field lets go and keeps its text; restored, it edits the re-created frequency.
        QVERIFY(switchTo(model, "frequency", Removed));
        QVERIFY(!edit->GetValuePtr());
        QCOMPARE(edit->text(), QStringLiteral("7.305 MHz"));
        window.restoreInstrument();
        QVERIFY(edit->GetValuePtr() && edit->isEnabled());
        QCOMPARE(edit->text(), QStringLiteral("7 MHz"));
        retype(edit, QStringLiteral("9.4"));
        QCOMPARE(numberOf("frequency"), 9400.0);
    }

    void entryControlsWriteTheirValues()
    {
        Instrument instrument;
        GalleryWindow window(&instrument);
        QVERIFY(showPage(window, "Entry fields", true));
        auto* gain = child<VCNumericFloatSpin>(window, "gainSpinBox");
        auto* readout = child<ValueReadout>(window, "gainEntryReadout");
        QVERIFY(gain && readout && gain->isEnabled());
        QCOMPARE(gain->text(), QStringLiteral("30 dB"));
        // A burst of steps shows at once, and reaches the value as one edit when it is over.
        gain->setFocus();
        for (int i = 0; i < 3; ++i)
            QTest::keyClick(gain, Qt::Key_Up);
        QCOMPARE(gain->text(), QStringLiteral("33 dB"));
        QCOMPARE(numberOf("gain"), 30.0);
        QCOMPARE(readout->text(), QStringLiteral("30 dB"));
        QTRY_COMPARE(numberOf("gain"), 33.0);
        QCOMPARE(readout->text(), QStringLiteral("33 dB"));
        QCOMPARE(values::UndoRecorder::Instance().Count(), 1);
        auto* arrows = child<VCScrollButtons>(window, "volumeScrollButtons");
        auto* slider = child<VCSlider>(window, "volumeStripSlider");
        auto* volume = child<ValueReadout>(window, "volumeEntryReadout");
        QVERIFY(arrows && slider && volume);
        VCButton* const buttons[] = {arrows->GetMinusButton(), arrows->GetMinusPageButton(), arrows->GetPlusPageButton(),
                                     arrows->GetPlusButton()};
        for (VCButton* button : buttons)
            QVERIFY(button && button->isVisible());
        // The four buttons stand inside the strip, at its ends and clear of the slider between them.
        QVERIFY(buttons[1]->geometry().right() < slider->geometry().left());
        QVERIFY(buttons[2]->geometry().left() > slider->geometry().right());
        const std::pair<VCButton*, double> clicks[] = {
            {buttons[3], 41}, {buttons[2], 51}, {buttons[2], 61}, {buttons[1], 51}, {buttons[0], 50}};
        for (const auto& click : clicks) {
            QTest::mouseClick(click.first, Qt::LeftButton);
            QCOMPARE(numberOf("volume"), click.second);
            QCOMPARE(slider->value(), int(click.second));
            QCOMPARE(volume->text(), QString::number(click.second) + QStringLiteral(" %"));
        }
        auto* notes = child<VCTextEdit>(window, "notesTextEdit");
        auto* noted = child<ValueReadout>(window, "notesEntryReadout");
        auto* squelch = child<VCLineEdit>(window, "squelchLineEdit");
        QVERIFY(notes && noted && squelch && notes->isEnabled());
        QCOMPARE(notes->GetText(), QStringLiteral("40 m band watch"));
        notes->setFocus();
        notes->moveCursor(QTextCursor::End);
        QTest::keyClicks(notes, QStringLiteral(", 7.2 MHz"));
        QTest::keyClick(notes, Qt::Key_Return);
        QTest::keyClicks(notes, QStringLiteral("quiet"));
        // Typing alone writes nothing.
        QCOMPARE(textOf("notes"), QStringLiteral("40 m band watch"));
        QCOMPARE(noted->text(), QStringLiteral("40 m band watch"));
        squelch->setFocus();
        QTRY_VERIFY(!notes->hasFocus());
        const QString written = QStringLiteral("40 m band watch, 7.2 MHz\nquiet");
        QCOMPARE(textOf("notes"), written);
        QCOMPARE(noted->text(), written);
    }

    void layoutKeepsItsPlaceWithLongTexts_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("firstPage");
        QTest::newRow("English") << QStringLiteral("en") << QStringLiteral("Sliders");
        QTest::newRow("German") << QStringLiteral("de") << QStringLiteral("Schieberegler");
    }

    void layoutKeepsItsPlaceWithLongTexts()
    {
        QFETCH(QString, language);
        QFETCH(QString, firstPage);
        Instrument instrument;
        GalleryWindow window(&instrument);
        if (language != window.language()) {
            QSignalSpy rebuilt(&window, &GalleryWindow::rebuilt);
            window.setLanguage(language);
            QVERIFY(rebuilt.wait());
        }
        window.resize(GalleryWindow::minimumWindowSize());
        QVERIFY(showPage(window, firstPage.toUtf8().constData()));
        const QSize size = window.size();
        QCOMPARE(size, GalleryWindow::minimumWindowSize());
        auto* splitter = window.findChild<QSplitter*>();
        auto* display = child<QFrame>(window, "display");
        QVERIFY(splitter && display);
        const QList<int> panes = splitter->sizes();
        const QRect displayBox = display->geometry();
        const QString note = QStringLiteral("A watch on the 40 m band through the evening, noting every carrier heard "
                                            "above the noise\nand a second line that must not grow the display");
        QVERIFY(find(rx("notes"))->SetValueFromText(note, nullptr));
        auto* options = dynamic_cast<values::StringMultiSelection*>(find(rx("options")));
        QVERIFY(options);
        for (int key = 1; key <= 3; ++key)
            QVERIFY(options->SetItemChecked(key, true, nullptr));
        for (int i = 0; i < 12; ++i)
            instrument.step();
        QApplication::processEvents();
        QCOMPARE(window.size(), size);
        QCOMPARE(splitter->sizes(), panes);
        QCOMPARE(display->geometry(), displayBox);
        // No text of the display overlaps another, whatever its length.
        QList<QWidget*> shown;
        for (QWidget* w : display->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (w->isVisible())
                shown << w;
        }
        QCOMPARE(shown.size(), 16); // eight captions and their fields
        for (int i = 0; i < shown.size(); ++i) {
            const QRect a(shown[i]->mapTo(&window, QPoint()), shown[i]->size());
            QVERIFY2(display->rect().contains(QRect(shown[i]->mapTo(display, QPoint()), shown[i]->size())),
                     qPrintable(shown[i]->objectName()));
            for (int j = i + 1; j < shown.size(); ++j) {
                const QRect b(shown[j]->mapTo(&window, QPoint()), shown[j]->size());
                if (a.intersects(b))
                    QFAIL(qPrintable(shown[i]->objectName() + QStringLiteral(" overlaps ") + shown[j]->objectName()));
            }
        }
        // A cut text is offered whole in the tool-tip.
        auto* notes = child<VCLabel>(window, "notesDisplay");
        QVERIFY(notes->grab().toImage() != QImage()); // painted, so the tool-tip is up to date
        QCOMPARE(notes->toolTip(), note);
        // The State column is in sight, also with the long texts in the tree.
        QTableView* table = window.valueTree()->table();
        QHeaderView* header = table->horizontalHeader();
        const int left = header->sectionViewportPosition(ValueTreeModel::StateColumn);
        QVERIFY(left >= 0);
        QVERIFY2(left + header->sectionSize(ValueTreeModel::StateColumn) <= table->viewport()->width(),
                 qPrintable(QStringLiteral("%1 + %2 > %3").arg(left).arg(header->sectionSize(ValueTreeModel::StateColumn))
                                .arg(table->viewport()->width())));
        // Its editor shows the longest state whole.
        ValueStateDelegate delegate;
        QWidget parent;
        QScopedPointer<QWidget> editor(delegate.createEditor(&parent, QStyleOptionViewItem(), QModelIndex()));
        QVERIFY(header->sectionSize(ValueTreeModel::StateColumn) >= editor->sizeHint().width());
    }

    void removedValueStaysAndRestoresAlone()
    {
        Instrument instrument;
        GalleryWindow window(&instrument);
        QVERIFY(showPage(window, "Sliders"));
        ValueTreeModel* model = window.valueTreeModel();
        auto* slider = child<VCSlider>(window, "volumeSlider");
        auto* bar = child<VCScrollBar>(window, "volumeScrollBar");
        QVERIFY(slider && bar && slider->isEnabled() && bar->isEnabled());
        QVERIFY(setText("gain", "55"));
        QVERIFY(setText("volume", "70"));
        QVERIFY(switchTo(model, "volume", Removed));
        const int row = model->rowOfPath(rx("volume"));
        QVERIFY(model->isRemovedRow(row));
        QCOMPARE(cell(*model, rx("volume"), ValueTreeModel::StateColumn), ValueTreeModel::stateName(Removed));
        // Its controls grey out instead of writing nowhere; the others stay as they are.
        QVERIFY(!slider->isEnabled() && !bar->isEnabled());
        QVERIFY(child<VCSlider>(window, "gainSlider")->isEnabled());
        // Made anew in another language, the window keeps the row and the greyed controls.
        QSignalSpy rebuilt(&window, &GalleryWindow::rebuilt);
        window.setLanguage(QStringLiteral("de"));
        QVERIFY(rebuilt.wait());
        model = window.valueTreeModel();
        slider = child<VCSlider>(window, "volumeSlider");
        bar = child<VCScrollBar>(window, "volumeScrollBar");
        QCOMPARE(model->rowOfPath(rx("volume")), row);
        QVERIFY(model->isRemovedRow(row));
        QVERIFY(!slider->isEnabled() && !bar->isEnabled());
        // The row's own restore: the value as the instrument makes it, the rest untouched.
        window.valueTree()->table()->selectRow(row);
        auto* restore = child<QPushButton>(window, "enableButton");
        QVERIFY(restore && restore->isEnabled());
        QTest::mouseClick(restore, Qt::LeftButton);
        QVERIFY(!model->isRemovedRow(row));
        QCOMPARE(textOf("volume"), QStringLiteral("40"));
        QCOMPARE(textOf("gain"), QStringLiteral("55"));
        QCOMPARE(cell(*model, rx("volume")), QStringLiteral("40"));
        QVERIFY(slider->isEnabled() && bar->isEnabled());
        QCOMPARE(slider->value(), 40);
        // Bound again: input reaches the new value, and the value reaches the controls.
        slider->setFocus();
        QTest::keyClick(slider, Qt::Key_Right);
        QCOMPARE(textOf("volume"), QStringLiteral("41"));
        QVERIFY(setText("volume", "12"));
        QCOMPARE(bar->value(), 12);
        // Restored through the state column as Disabled, it comes back disabled.
        QVERIFY(switchTo(model, "squelch", Removed));
        QVERIFY(model->setData(model->index(model->rowOfPath(rx("squelch")), ValueTreeModel::StateColumn), int(Disabled)));
        QCOMPARE(find(rx("squelch"))->GetState(), int(Disabled));
        QVERIFY(!child<VCSlider>(window, "squelchSlider")->isEnabled());
        QVERIFY(!window.restoreValue(QStringLiteral("/receiver/nothing")));
    }

    // A slider drag is one edit in the gallery; Ctrl+Z takes it back, Ctrl+Shift+Z does it again, and
    // the Edit menu names both. A removed value's slider shows the loss in its tool-tip.
    void editMenuUndoesAndRedoesADrag()
    {
        Instrument instrument; // not started: nothing moves but the user
        GalleryWindow window(&instrument);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        values::UndoRecorder::Instance().Clear();
        auto* gain = child<VCSlider>(window, "gainVerticalSlider");
        auto* undo = child<QAction>(window, "undoAction");
        auto* redo = child<QAction>(window, "redoAction");
        QVERIFY(gain && undo && redo);
        QVERIFY(!undo->isEnabled() && !redo->isEnabled());
        const QString before = textOf("gain");

        gain->setFocus();
        QTest::keyPress(gain, Qt::Key_PageUp);
        QTest::keyPress(gain, Qt::Key_PageUp);
        QTest::keyRelease(gain, Qt::Key_PageUp);
        const QString after = textOf("gain");
        QVERIFY(after != before);
        QCOMPARE(values::UndoRecorder::Instance().Count(), 1);
        QVERIFY(undo->isEnabled());
        QVERIFY(undo->text().contains(QStringLiteral("/receiver/gain")));

        QTest::keyClick(&window, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(textOf("gain"), before);
        QCOMPARE(gain->value(), before.toInt());
        QVERIFY(redo->isEnabled() && !undo->isEnabled());
        QTest::keyClick(&window, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(textOf("gain"), after);
        QVERIFY(!redo->isEnabled());

        QVERIFY(values::Tree::Instance()->Remove(rx("gain")));
        QVERIFY(vandrel::ValueStatusText(gain).contains(QStringLiteral("/receiver/gain: removed")));
        QVERIFY(!undo->isEnabled()); // the edits of a value that went go with it
        QVERIFY(window.restoreValue(rx("gain")));
        QVERIFY(vandrel::ValueStatusText(gain).isEmpty());
    }

    void pauseTogglesToResume()
    {
        Instrument instrument;
        instrument.start();
        GalleryWindow window(&instrument);
        auto* pause = child<QAction>(window, "pauseAction");
        QVERIFY(pause);
        QCOMPARE(pause->text(), QStringLiteral("Pause simulation"));
        const qint64 pauseIcon = pause->icon().cacheKey();
        pause->trigger();
        QVERIFY(!instrument.isRunning());
        QCOMPARE(pause->text(), QStringLiteral("Resume simulation"));
        QVERIFY(pause->icon().cacheKey() != pauseIcon);
        pause->trigger();
        QVERIFY(instrument.isRunning());
        QCOMPARE(pause->text(), QStringLiteral("Pause simulation"));
        // Stopped from elsewhere, the action follows with the next look at the instrument.
        instrument.stop();
        window.restoreInstrument();
        QCOMPARE(pause->text(), QStringLiteral("Resume simulation"));
        QCOMPARE(window.findChildren<QAction*>(QStringLiteral("restoreAction")).size(), 1);
        QVERIFY(!window.findChild<QPushButton*>(QStringLiteral("restoreButton")));
    }

    void scanStopsOnlyWhenTheFrequencyIsEdited()
    {
        Instrument instrument;
        GalleryWindow window(&instrument);
        QVERIFY(showPage(window, "Sliders", true));
        QCOMPARE(textOf("scan/active"), QStringLiteral("true"));
        auto* tabs = window.pages()->findChild<QTabBar*>();
        int entry = -1;
        for (int i = 0; i < tabs->count(); ++i) {
            if (tabs->tabText(i) == QLatin1String("Entry fields"))
                entry = i;
        }
        QTest::mouseClick(tabs, Qt::LeftButton, Qt::NoModifier, tabs->tabRect(entry).center());
        QCOMPARE(window.pages()->currentIndex(), entry);
        auto* frequency = child<VCLineEdit>(window, "frequencyLineEdit");
        frequency->setFocus();
        QApplication::processEvents();
        QCOMPARE(textOf("scan/active"), QStringLiteral("true"));
        QTest::keyClick(frequency, Qt::Key_End);
        QCOMPARE(textOf("scan/active"), QStringLiteral("true"));
        QTest::keyClick(frequency, Qt::Key_Backspace);
        QCOMPARE(textOf("scan/active"), QStringLiteral("false"));
        QVERIFY(window.statusBar()->currentMessage().contains(QStringLiteral("Scan stopped")));
    }
};

QTEST_MAIN(GalleryTest)
#include "gallerytest.moc"
