#include <vandrel/vcbutton.h>
#include <vandrel/vcscrollbuttons.h>

#include "observercounter.h"

#include <QAbstractEventDispatcher>
#include <QtTest>

namespace {

values::Tree& tree() { return *values::Tree::Instance(); }

using Flags = VCScrollButtons;

// What each arrow must look like: size, number of black pixels, one pixel that is black and one that
// is clear, chosen so that each arrow differs from its mirror image.
struct Arrow
{
    QSize size;
    int black;
    QPoint on;
    QPoint off;
};
const QMap<QString, Arrow> arrows{
    {"Move Left", {{11, 9}, 29, {8, 0}, {2, 0}}},      {"Move Right", {{11, 9}, 29, {2, 0}, {8, 0}}},
    {"Move Page Left", {{12, 9}, 40, {11, 1}, {0, 1}}}, {"Move Page Right", {{12, 9}, 40, {0, 1}, {11, 1}}},
    {"Move Up", {{11, 8}, 16, {2, 5}, {2, 2}}},         {"Move Down", {{11, 8}, 16, {2, 2}, {2, 5}}},
    {"Move Page Up", {{11, 8}, 32, {2, 3}, {2, 0}}},    {"Move Page Down", {{11, 8}, 32, {2, 0}, {2, 3}}},
};

void checkArrow(VCButton* button)
{
    const Arrow arrow = arrows.value(button->objectName());
    QCOMPARE(button->icon().availableSizes(), QList<QSize>{arrow.size});
    const QImage image = button->icon().pixmap(arrow.size).toImage();
    int black = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            black += image.pixelColor(x, y) == QColor(Qt::black) ? 1 : 0;
    QCOMPARE(black, arrow.black);
    QCOMPARE(image.pixelColor(arrow.on), QColor(Qt::black));
    QCOMPARE(image.pixelColor(arrow.off).alpha(), 0);
}

bool hasTimers(QObject* object) { return !QAbstractEventDispatcher::instance()->registeredTimers(object).isEmpty(); }

QList<bool> enabledStates(VCScrollButtons& buttons) // minus, minus page, plus page, plus
{
    return {buttons.GetMinusButton()->isEnabled(), buttons.GetMinusPageButton()->isEnabled(),
            buttons.GetPlusPageButton()->isEnabled(), buttons.GetPlusButton()->isEnabled()};
}

class ResizeCounter : public QWidget
{
public:
    int resizes = 0;

protected:
    void resizeEvent(QResizeEvent*) override { ++resizes; }
};

} // namespace

class VCScrollButtonsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        tree().Clear();
        values::UndoRecorder::Instance().Clear();
    }

    void layout_data()
    {
        // Expected button names and places, in the order minus, minus page, plus page, plus; an
        // empty name is a button that must not exist. The parent is 100 by 200.
        QTest::addColumn<unsigned>("flags");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QList<QPoint>>("places");
        const QStringList row{"Move Left", "Move Page Left", "Move Page Right", "Move Right"};
        const QStringList column{"Move Up", "Move Page Up", "Move Page Down", "Move Down"};
        QTest::newRow("bottom row, line buttons")
            << unsigned(Flags::ScrollButtonsBottom | Flags::ScrollButtonsLine) << QStringList{row[0], "", "", row[3]}
            << QList<QPoint>{{0, 184}, {}, {}, {84, 184}};
        QTest::newRow("top row, all") << unsigned(Flags::ScrollButtonsTop | Flags::ScrollButtonsLine | Flags::ScrollButtonsPage)
                                      << row << QList<QPoint>{{0, 0}, {16, 0}, {68, 0}, {84, 0}};
        QTest::newRow("right column, all") << unsigned(Flags::ScrollButtonsRight | Flags::ScrollButtonsLine | Flags::ScrollButtonsPage)
                                           << column << QList<QPoint>{{84, 16}, {84, 32}, {84, 168}, {84, 184}};
        QTest::newRow("left column, page buttons") << unsigned(Flags::ScrollButtonsLeft | Flags::ScrollButtonsPage)
                                                   << QStringList{"", column[1], column[2], ""} << QList<QPoint>{{}, {0, 32}, {0, 168}, {}};
        // The constructor reads the row bits for the arrows, the placement the column bits first.
        QTest::newRow("row and column bits") << unsigned(Flags::ScrollButtonsTop | Flags::ScrollButtonsRight | Flags::ScrollButtonsLine)
                                             << QStringList{row[0], "", "", row[3]} << QList<QPoint>{{84, 16}, {}, {}, {84, 184}};
        QTest::newRow("no edge") << unsigned(Flags::ScrollButtonsLine) << QStringList{column[0], "", "", column[3]}
                                 << QList<QPoint>{{0, 0}, {}, {}, {0, 0}};
    }
    void layout()
    {
        QFETCH(unsigned, flags);
        QFETCH(QStringList, names);
        QFETCH(QList<QPoint>, places);
        QWidget parent;
        parent.resize(100, 200);
        VCScrollButtons buttons(&parent, flags);
        QVERIFY(!buttons.parent());
        const QList<VCButton*> made{buttons.GetMinusButton(), buttons.GetMinusPageButton(), buttons.GetPlusPageButton(),
                                    buttons.GetPlusButton()};
        for (int i = 0; i < 4; ++i) {
            QCOMPARE(made[i] != nullptr, !names[i].isEmpty());
            if (!made[i])
                continue;
            QCOMPARE(made[i]->parentWidget(), &parent);
            QCOMPARE(made[i]->objectName(), names[i]);
            QCOMPARE(made[i]->toolTip(), names[i]);
            QCOMPARE(made[i]->pos(), places[i]);
            QCOMPARE(made[i]->size(), QSize(16, 16));
            QVERIFY(made[i]->autoFillBackground());
            checkArrow(made[i]);
        }
    }

    void resizeMovesButtons()
    {
        ResizeCounter parent;
        parent.resize(100, 200);
        parent.show();
        VCScrollButtons buttons(&parent, Flags::ScrollButtonsBottom | Flags::ScrollButtonsLine | Flags::ScrollButtonsPage);
        QVERIFY(buttons.GetPlusButton()->isVisible()); // made on a shown parent, so shown too
        const int resizesBefore = parent.resizes;
        parent.resize(300, 50);
        QCOMPARE(buttons.GetMinusButton()->pos(), QPoint(0, 34));
        QCOMPARE(buttons.GetPlusPageButton()->pos(), QPoint(268, 34));
        QCOMPARE(buttons.GetPlusButton()->pos(), QPoint(284, 34));
        QCOMPARE(parent.resizes, resizesBefore + 1); // the event still reached the parent
    }

    void localPositionAndLimits()
    {
        QWidget parent;
        parent.resize(200, 100);
        VCScrollButtons buttons(&parent, Flags::ScrollButtonsTop | Flags::ScrollButtonsLine | Flags::ScrollButtonsPage);
        parent.show();
        QCOMPARE(enabledStates(buttons), (QList<bool>{false, false, true, true}));

        QTest::mouseClick(buttons.GetPlusButton(), Qt::LeftButton);
        QCOMPARE(buttons.value(), 1);
        QCOMPARE(enabledStates(buttons), (QList<bool>{true, true, true, true}));
        QTest::mouseClick(buttons.GetPlusPageButton(), Qt::LeftButton);
        QCOMPARE(buttons.value(), 11);
        QTest::mouseClick(buttons.GetMinusPageButton(), Qt::LeftButton);
        QTest::mouseClick(buttons.GetMinusPageButton(), Qt::LeftButton); // a page past the limit stops there
        QCOMPARE(buttons.value(), 0);
        QCOMPARE(enabledStates(buttons), (QList<bool>{false, false, true, true}));

        // Plain stores change nothing else until the next move.
        buttons.setValue(500);
        QCOMPARE(buttons.value(), 500);
        QCOMPARE(enabledStates(buttons), (QList<bool>{false, false, true, true}));
        buttons.addLine(); // clamps, but leaves the buttons alone
        QCOMPARE(buttons.value(), 100);
        QCOMPARE(enabledStates(buttons), (QList<bool>{false, false, true, true}));
        buttons.setSingleStep(7);
        buttons.setPageStep(90);
        buttons.setMinValue(-50);
        IWheelConsumer& wheel = buttons;
        wheel.Down();
        QCOMPARE(buttons.value(), 93);
        QCOMPARE(enabledStates(buttons), (QList<bool>{true, true, true, true}));
        buttons.subtractPage();
        buttons.subtractPage();
        QCOMPARE(buttons.value(), -50);
        wheel.Up();
        QCOMPARE(buttons.value(), -43);
        buttons.setMaxValue(-45);
        QCOMPARE(buttons.maxValue(), -45);
        wheel.Up(); // a position above the limit only ever moves down to it
        QCOMPARE(buttons.value(), -45);
        QCOMPARE(enabledStates(buttons), (QList<bool>{true, true, false, false}));
    }

    void heldButtonRepeatsToTheLimit()
    {
        QWidget parent;
        parent.resize(100, 200);
        VCScrollButtons buttons(&parent, Flags::ScrollButtonsLeft | Flags::ScrollButtonsLine);
        buttons.setMaxValue(4);
        parent.show();
        VCButton* plus = buttons.GetPlusButton();
        QElapsedTimer held;
        held.start();
        QTest::mousePress(plus, Qt::LeftButton);
        QCOMPARE(buttons.value(), 0); // a press alone doesn't move
        QTRY_COMPARE_WITH_TIMEOUT(buttons.value(), 4, 5000);
        // Four ticks: the first after the 500 ms delay and a 100 ms interval. Coarse timers may be early.
        QVERIFY2(held.elapsed() >= 800, QByteArray::number(held.elapsed()));
        QVERIFY(!plus->isEnabled());
        QVERIFY(!hasTimers(plus)); // disabled at the limit, the repeat ended
        QTest::mouseRelease(plus, Qt::LeftButton);
        QCOMPARE(buttons.value(), 4);
        // The other direction is enabled again and repeats as well.
        QVERIFY(buttons.GetMinusButton()->isEnabled());
        QTest::mousePress(buttons.GetMinusButton(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(buttons.value() <= 2, 5000);
        const int beforeRelease = buttons.value();
        QTest::mouseRelease(buttons.GetMinusButton(), Qt::LeftButton);
        QVERIFY(!hasTimers(buttons.GetMinusButton()));
        QCOMPARE(buttons.value(), qMax(0, beforeRelease - 1)); // the release is the last click
    }

    void boundNumber()
    {
        auto* gain = new values::DoubleNumeric(2.5, -2.7, 9.6);
        tree().Add(QStringLiteral("/rx/gain"), gain);
        tree().Add(QStringLiteral("/rx/name"), new values::StringValue(QStringLiteral("rx")));
        QWidget parent;
        VCScrollButtons buttons(&parent, Flags::ScrollButtonsRight | Flags::ScrollButtonsLine | Flags::ScrollButtonsPage);
        parent.show();
        QVERIFY(!buttons.Set_ValuePath(QStringLiteral("/rx/name")));
        QVERIFY(buttons.Set_ValuePath(QStringLiteral("/rx/gain")));
        QCOMPARE(buttons.minValue(), -2); // truncated toward zero
        QCOMPARE(buttons.maxValue(), 10); // 9.6 rounded half up
        QCOMPARE(buttons.value(), 2);
        Counter counter;
        counter.watch(gain);

        QTest::mouseClick(buttons.GetPlusButton(), Qt::LeftButton);
        QCOMPARE(gain->GetValue(), 3.0);
        QCOMPARE(counter.count(ValueChanged), 1);
        gain->SetValue(8.9, nullptr);
        QCOMPARE(buttons.value(), 8);
        // The number clamps the write to 9.6 and its answer sets the position.
        QTest::mouseClick(buttons.GetPlusPageButton(), Qt::LeftButton);
        QCOMPARE(gain->GetValue(), 9.6);
        QCOMPARE(buttons.value(), 9);
        QVERIFY(buttons.GetPlusButton()->isEnabled());
        // No change of the number, no answer: the position stays at the local limit.
        QTest::mouseClick(buttons.GetPlusButton(), Qt::LeftButton);
        QCOMPARE(buttons.value(), 10);
        QVERIFY(!buttons.GetPlusButton()->isEnabled());
        QCOMPARE(values::UndoRecorder::Instance().Count(), 0);

        gain->SetRange(-20.0, 20.0, 0.5);
        QCOMPARE(buttons.minValue(), -20);
        QCOMPARE(buttons.maxValue(), 20);
        QCOMPARE(buttons.value(), 9);
        QVERIFY(buttons.GetPlusButton()->isEnabled());
        gain->SetState(Disabled); // the buttons don't follow the state
        QVERIFY(buttons.GetPlusButton()->isEnabled());

        // Removed, the number is let go of; the buttons move on locally.
        const int writes = counter.count(ValueChanged);
        gain->SetState(Removed);
        QVERIFY(!gain->IsAttached(&buttons));
        QTest::mouseClick(buttons.GetMinusButton(), Qt::LeftButton);
        QCOMPARE(buttons.value(), 8);
        QCOMPARE(counter.count(ValueChanged), writes);
        gain->SetState(Enabled);
        QVERIFY(buttons.Set_ValuePath(QStringLiteral("/rx/gain")));
        QCOMPARE(buttons.value(), 9);
        QVERIFY(!buttons.Set_ValuePath(QStringLiteral("/rx/none")));
        QVERIFY(!gain->IsAttached(&buttons));
    }

    void buttonsGoWithTheObjectOrTheParent()
    {
        auto* parent = new QWidget;
        auto* buttons = new VCScrollButtons(parent, Flags::ScrollButtonsLine | Flags::ScrollButtonsPage);
        QPointer<VCButton> plus = buttons->GetPlusButton();
        delete buttons;
        QVERIFY(plus.isNull());
        QCOMPARE(parent->findChildren<VCButton*>().size(), 0);

        buttons = new VCScrollButtons(parent, Flags::ScrollButtonsLine);
        delete parent; // takes the buttons along first
        QVERIFY(!buttons->GetPlusButton());
        delete buttons;
    }
};

QTEST_MAIN(VCScrollButtonsTest)
#include "vcscrollbuttonstest.moc"
