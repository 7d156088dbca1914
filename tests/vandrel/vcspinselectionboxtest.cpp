#include <vandrel/vcspinselectionbox.h>

#include "observercounter.h"

#include <QLineEdit>
#include <QRandomGenerator>
#include <QtTest>

namespace {

values::Tree& tree() { return *values::Tree::Instance(); }

values::ValueSelection* addSelection(const QString& path, const QList<double>& numbers)
{
    auto* selection = new values::ValueSelection;
    for (int i = 0; i < numbers.size(); ++i)
        selection->AddItem(QStringLiteral("item%1").arg(i), numbers.at(i), 100 + i, nullptr);
    tree().Add(path, selection);
    return selection;
}

// Opens the text mapping to the test, as a program that sets the text and reads it would use it.
class Box : public VCSpinSelectionBox
{
public:
    using VCSpinSelectionBox::VCSpinSelectionBox;
    int read(const QString& text, bool* ok)
    {
        lineEdit()->setText(text);
        return mapTextToValue(ok);
    }
    QLineEdit* edit() const { return lineEdit(); }
};

} // namespace

class VCSpinSelectionBoxTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { tree().Clear(); }

    void construction()
    {
        Box box(nullptr, "channel");
        QCOMPARE(box.objectName(), QStringLiteral("channel"));
        QCOMPARE(box.toolTip(), QStringLiteral("channel"));
        QVERIFY(!box.isEnabled());
        QVERIFY(box.edit()->isReadOnly());
        auto* validator = qobject_cast<const QValidator*>(box.edit()->validator());
        QVERIFY(validator);
        QCOMPARE(validator->parent(), &box);
        QString anything = QStringLiteral("%% no number ÄÖ");
        int pos = 3;
        QCOMPARE(validator->validate(anything, pos), QValidator::Acceptable);
        QCOMPARE(anything, QStringLiteral("%% no number ÄÖ"));
        QCOMPARE(pos, 3);
        bool ok = true;
        QCOMPARE(box.read(QStringLiteral("5"), &ok), 0); // nothing bound: refused
        QVERIFY(!ok);
    }

    void binding()
    {
        values::ValueSelection* selection = addSelection(QStringLiteral("/sel"), {1, 2, 3});
        tree().Add(QStringLiteral("/text"), new values::StringValue);
        selection->SelectIndex(2, nullptr);
        VCSpinSelectionBox box(nullptr, "box");
        QVERIFY(!box.SetValueSelection_ValuePath(QStringLiteral("/text")));
        QVERIFY(!box.SetValueSelection_ValuePath(QStringLiteral("/nowhere")));
        QVERIFY(!box.isEnabled());
        QVERIFY(box.SetValueSelection_ValuePath(QStringLiteral("/sel")));
        QVERIFY(box.isEnabled());
        QCOMPARE(box.minimum(), 0);
        QCOMPARE(box.maximum(), 2);
        QCOMPARE(box.value(), 2);
        QCOMPARE(box.text(), QStringLiteral("item2"));
        QCOMPARE(selection->GetCurrentIndex(), 2L);

        // The value moves: the box follows.
        selection->SelectIndex(0, nullptr);
        QCOMPARE(box.value(), 0);
        QCOMPARE(box.text(), QStringLiteral("item0"));

        // A failed rebinding leaves the old value behind.
        QVERIFY(!box.SetValueSelection_ValuePath(QStringLiteral("/nowhere")));
        QCOMPARE(selection->ObserverCount(), 0);
        selection->SelectIndex(1, nullptr);
        QCOMPARE(box.value(), 0);
    }

    // A step of the arrows writes the item at the new index, named after the box, so that the box
    // hears nothing back and every other observer does.
    void stepsWriteTheSelection()
    {
        values::ValueSelection* selection = addSelection(QStringLiteral("/sel"), {1, 2, 3});
        VCSpinSelectionBox box(nullptr, "box");
        VCSpinSelectionBox second(nullptr, "second");
        QVERIFY(box.SetValueSelection_ValuePath(QStringLiteral("/sel")));
        QVERIFY(second.SetValueSelection_ValuePath(QStringLiteral("/sel")));
        box.show();
        QVERIFY(QTest::qWaitForWindowExposed(&box));
        Counter other;
        other.watch(selection);
        QTest::keyClick(&box, Qt::Key_Up);
        QCOMPARE(selection->GetCurrentKey(), 101L);
        QCOMPARE(box.text(), QStringLiteral("item1"));
        QCOMPARE(second.text(), QStringLiteral("item1"));
        QVERIFY(other.count(ValueChanged) >= 1);
        QTest::keyClick(&box, Qt::Key_Up);
        QTest::keyClick(&box, Qt::Key_Up); // at the end: stays
        QCOMPARE(selection->GetCurrentKey(), 102L);
        box.EnableWrapAround(true);
        QTest::keyClick(&box, Qt::Key_Up);
        QCOMPARE(selection->GetCurrentKey(), 100L);
        QCOMPARE(box.text(), QStringLiteral("item0"));
    }

    // Taking over a value's items writes nothing: Qt clamps the index to the old limits on the way, and
    // showing that index used to select its item.
    void takingOverItemsWritesNothing()
    {
        addSelection(QStringLiteral("/three"), {1, 2, 3});
        values::ValueSelection* ten = addSelection(QStringLiteral("/ten"), {0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
        ten->SelectIndex(7, nullptr);
        VCSpinSelectionBox box(nullptr, "box");
        QVERIFY(box.SetValueSelection_ValuePath(QStringLiteral("/three")));
        Counter watcher;
        watcher.watch(ten);
        QVERIFY(box.SetValueSelection_ValuePath(QStringLiteral("/ten")));
        QCOMPARE(ten->GetCurrentIndex(), 7L);
        QCOMPARE(box.value(), 7);
        QCOMPARE(box.text(), QStringLiteral("item7"));
        QCOMPARE(watcher.count(ValueChanged), 0);

        // Bound while empty, the box keeps its lower limit for the items that come.
        values::ValueSelection* empty = addSelection(QStringLiteral("/empty"), {});
        VCSpinSelectionBox other(nullptr, "other");
        QVERIFY(other.SetValueSelection_ValuePath(QStringLiteral("/empty")));
        empty->AddItem(QStringLiteral("a"), 1, 1, nullptr);
        empty->AddItem(QStringLiteral("b"), 2, 2, nullptr);
        QCOMPARE(other.minimum(), 0);
        QCOMPARE(other.maximum(), 1);

        // A selection that makes each new item current keeps it current.
        for (int added = 10; added < 13; ++added) {
            ten->AddItem(QStringLiteral("item%1").arg(added), added, 100 + added, nullptr);
            ten->SelectIndex(added, nullptr);
            QCOMPARE(ten->GetCurrentIndex(), long(added));
            QCOMPARE(box.value(), added);
            QCOMPARE(box.text(), QStringLiteral("item%1").arg(added));
        }
    }

    void itemsAndState()
    {
        values::ValueSelection* selection = addSelection(QStringLiteral("/sel"), {1, 2});
        VCSpinSelectionBox box(nullptr, "box");
        QVERIFY(box.SetValueSelection_ValuePath(QStringLiteral("/sel")));
        selection->SetState(Disabled);
        QVERIFY(!box.isEnabled());
        selection->SetState(Enabled);
        QVERIFY(box.isEnabled());

        selection->ClearItems(nullptr);
        QVERIFY(!box.isEnabled());
        // New items enable the box, whatever the state says.
        selection->SetState(Disabled);
        selection->AddItem(QStringLiteral("a"), 1, 1, nullptr);
        QVERIFY(box.isEnabled());
        selection->AddItem(QStringLiteral("b"), 2, 2, nullptr);
        selection->AddItem(QStringLiteral("c"), 3, 3, nullptr);
        QCOMPARE(box.maximum(), 2);
        QCOMPARE(box.text(), QStringLiteral("a"));

        // Removed: the box lets go and keeps its look.
        QVERIFY(tree().Remove(QStringLiteral("/sel")));
        QVERIFY(box.isEnabled());
        QCOMPARE(box.text(), QStringLiteral("a"));
        QTest::keyClick(&box, Qt::Key_Up); // reaches no value
        QCOMPARE(box.text(), QString());
    }

    void readText_data()
    {
        QTest::addColumn<QChar>("magnitude");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<int>("index");
        // Item numbers: 0.0025, 0.1, 2e9, 5, 5000, 100.
        QTest::newRow("M and 100 k") << QChar(QLatin1Char('M')) << "100 k" << true << 1;
        QTest::newRow("blank and 2 G") << QChar(QLatin1Char(' ')) << "2 G" << true << 2;
        QTest::newRow("k and 2.5") << QChar(QLatin1Char('k')) << "2.5" << true << 0;
        QTest::newRow("plain number") << QChar(QLatin1Char(' ')) << "5" << true << 3;
        QTest::newRow("nearest") << QChar(QLatin1Char(' ')) << "4900" << true << 4;
        QTest::newRow("m and 0.1") << QChar(QLatin1Char('m')) << "0.1" << true << 5;
        QTest::newRow("letter case matters") << QChar(QLatin1Char(' ')) << "5 K" << true << 3;
        QTest::newRow("blanks only") << QChar(QLatin1Char(' ')) << "   " << false << 0;
        QTest::newRow("word") << QChar(QLatin1Char(' ')) << "abc" << false << 0;
        QTest::newRow("two points") << QChar(QLatin1Char(' ')) << "1.2.3" << false << 0;
    }
    void readText()
    {
        QFETCH(QChar, magnitude);
        QFETCH(QString, text);
        QFETCH(bool, ok);
        values::ValueSelection* selection = addSelection(QStringLiteral("/sel"), {0.0025, 0.1, 2e9, 5, 5000, 100});
        Box box(nullptr, "box");
        QVERIFY(box.SetValueSelection_ValuePath(QStringLiteral("/sel")));
        box.setOrderOfMagnitudeVSValues(wchar_t(magnitude.unicode()));
        selection->SelectIndex(3, nullptr);
        Counter other;
        other.watch(selection);
        bool read = !ok;
        const int index = box.read(text, &read);
        QCOMPARE(read, ok);
        QTEST(index, "index");
        QCOMPARE(selection->GetCurrentIndex(), ok ? long(index) : 3L);
        QCOMPARE(other.count(ValueChanged), ok ? 1 : 0);
    }

    // Random and malformed text: every reading is a clean one or a clean refusal.
    void readTextFuzz()
    {
        const quint32 seed = 0x5eed4u;
        QRandomGenerator random(seed);
        values::ValueSelection* selection = addSelection(QStringLiteral("/sel"), {-1e6, 0, 0.5, 1e3, 2e9});
        Box box(nullptr, "box");
        QVERIFY(box.SetValueSelection_ValuePath(QStringLiteral("/sel")));
        const QString alphabet = QStringLiteral("0123456789.,-+eE kKmMGgu \t%x") + QChar(0x00B5) + QChar(0xFFFF);
        const wchar_t letters[] = {L' ', L'k', L'M', L'G', L'm', L'x'};
        QElapsedTimer clock;
        clock.start();
        for (int round = 0; round < 20000 && clock.elapsed() < 2000; ++round) {
            box.setOrderOfMagnitudeVSValues(letters[random.bounded(6)]);
            QString text;
            const int length = random.bounded(12);
            for (int i = 0; i < length; ++i)
                text += alphabet.at(random.bounded(alphabet.size()));
            const long before = selection->GetCurrentIndex();
            bool ok = false;
            const int index = box.read(text, &ok);
            const QString context = QStringLiteral("seed %1, round %2, text '%3'").arg(seed).arg(round).arg(text);
            if (ok) {
                QVERIFY2(index >= 0 && index < selection->GetItemCount(), qPrintable(context));
                QVERIFY2(index == selection->GetCurrentIndex(), qPrintable(context));
            } else {
                QVERIFY2(index == 0, qPrintable(context));
                QVERIFY2(selection->GetCurrentIndex() == before, qPrintable(context));
            }
        }
    }
};

QTEST_MAIN(VCSpinSelectionBoxTest)
#include "vcspinselectionboxtest.moc"
