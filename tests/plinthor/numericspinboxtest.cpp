#include <plinthor/numericspinbox.h>

#include <QLineEdit>
#include <QtTest>

namespace {

// Shows "Off" for 0 and "Level n" otherwise, and reads both forms in any case, or a bare number.
class LevelBox : public NumericSpinBox
{
public:
    LevelBox()
        : NumericSpinBox(nullptr, "levels")
    {
        setRange(0, 5);
    }
    int reads = 0;

protected:
    int mapTextToValue(bool* ok) override
    {
        ++reads;
        const QString text = QAbstractSpinBox::text().trimmed().toLower();
        if (text == QLatin1String("off")) {
            *ok = true;
            return 0;
        }
        QString number = text;
        if (number.startsWith(QLatin1String("level")))
            number = number.mid(5).trimmed();
        return number.toInt(ok);
    }
    QString mapValueToText(int value) override
    {
        return value == 0 ? QStringLiteral("Off") : QStringLiteral("Level %1").arg(value);
    }
};

// Types over the number, as a user who selects it and types.
void typeAndCommit(QAbstractSpinBox& box, const QString& text)
{
    box.selectAll();
    QTest::keyClick(&box, Qt::Key_Backspace);
    QTest::keyClicks(&box, text);
    QTest::keyClick(&box, Qt::Key_Return);
}

} // namespace

class NumericSpinBoxTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaultMapping_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("value");
        QTest::newRow("number") << "42" << 42;
        QTest::newRow("blanks around") << " 7 " << 7;
        QTest::newRow("negative clamps") << "-3" << 0;
        QTest::newRow("too large clamps") << "1000" << 99;
        QTest::newRow("word refused") << "abc" << 11;
        QTest::newRow("fraction refused") << "4.5" << 11;
        QTest::newRow("empty keeps") << "" << 11;
    }
    void defaultMapping()
    {
        QFETCH(QString, typed);
        QFETCH(int, value);
        NumericSpinBox box(nullptr, "box");
        QCOMPARE(box.objectName(), QStringLiteral("box"));
        box.setSuffix(QStringLiteral(" dB"));
        box.setValue(11);
        box.show();
        QVERIFY(QTest::qWaitForWindowExposed(&box));
        QSignalSpy changed(&box, QOverload<int>::of(&QSpinBox::valueChanged));
        // The box keeps its suffix while the user types over the number.
        typeAndCommit(box, typed);
        QCOMPARE(box.value(), value);
        // Whatever was typed, the text ends as the number's own.
        QCOMPARE(box.text(), QStringLiteral("%1 dB").arg(value));
        QCOMPARE(changed.count(), value == 11 ? 0 : 1);
    }

    void mappings()
    {
        LevelBox box;
        box.show();
        QVERIFY(QTest::qWaitForWindowExposed(&box));
        QCOMPARE(box.text(), QStringLiteral("Off"));
        QTest::keyClick(&box, Qt::Key_Up);
        QCOMPARE(box.text(), QStringLiteral("Level 1"));
        QSignalSpy changed(&box, QOverload<int>::of(&QSpinBox::valueChanged));

        // Typing is read when the edit ends, not at each key.
        box.reads = 0;
        box.selectAll();
        QTest::keyClicks(&box, QStringLiteral("level 4"));
        QCOMPARE(box.value(), 1);
        QCOMPARE(changed.count(), 0);
        QTest::keyClick(&box, Qt::Key_Return);
        QCOMPARE(box.value(), 4);
        QCOMPARE(box.text(), QStringLiteral("Level 4"));
        QVERIFY(box.reads >= 1);

        typeAndCommit(box, QStringLiteral("OFF"));
        QCOMPARE(box.value(), 0);
        QCOMPARE(box.text(), QStringLiteral("Off"));
        typeAndCommit(box, QStringLiteral("level x"));
        QCOMPARE(box.value(), 0);
        QCOMPARE(box.text(), QStringLiteral("Off"));
        QCOMPARE(changed.count(), 2);
    }

    void escapeDropsTyping()
    {
        LevelBox box;
        box.setValue(2);
        box.show();
        QVERIFY(QTest::qWaitForWindowExposed(&box));
        box.selectAll();
        QTest::keyClicks(&box, QStringLiteral("level 5"));
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(&box, &escape);
        QVERIFY(escape.isAccepted());
        QCOMPARE(box.text(), QStringLiteral("Level 2"));
        QTest::keyClick(&box, Qt::Key_Return);
        QCOMPARE(box.value(), 2);

        // With nothing typed, Escape is left to others (a dialog closes on it).
        QKeyEvent again(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(&box, &again);
        QVERIFY(!again.isAccepted());
    }

    void wrapAround_data()
    {
        QTest::addColumn<bool>("wrap");
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("end");
        QTest::newRow("up at the top wraps") << true << 5 << int(Qt::Key_Up) << 0;
        QTest::newRow("down at the bottom wraps") << true << 0 << int(Qt::Key_Down) << 5;
        QTest::newRow("up inside") << true << 2 << int(Qt::Key_Up) << 3;
        QTest::newRow("up at the top stops") << false << 5 << int(Qt::Key_Up) << 5;
        QTest::newRow("down at the bottom stops") << false << 0 << int(Qt::Key_Down) << 0;
    }
    void wrapAround()
    {
        QFETCH(bool, wrap);
        QFETCH(int, start);
        QFETCH(int, key);
        LevelBox box;
        QVERIFY(!box.wrapping());
        box.EnableWrapAround(wrap);
        box.setValue(start);
        box.show();
        QVERIFY(QTest::qWaitForWindowExposed(&box));
        QTest::keyClick(&box, Qt::Key(key));
        QTEST(box.value(), "end");
        QCOMPARE(box.text(), box.value() == 0 ? QStringLiteral("Off") : QStringLiteral("Level %1").arg(box.value()));
    }
};

QTEST_MAIN(NumericSpinBoxTest)
#include "numericspinboxtest.moc"
