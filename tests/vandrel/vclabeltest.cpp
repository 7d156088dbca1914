#include <vandrel/vclabel.h>

#include <QApplication>
#include <QtTest>

#include <cmath>
#include <limits>

namespace {

values::Tree& tree() { return *values::Tree::Instance(); }

template <class V>
V* add(const QString& path, V* value)
{
    tree().Add(path, value);
    return value;
}

values::DoubleNumeric* addNumber(const QString& path, double x)
{
    const double big = std::numeric_limits<double>::max();
    return add(path, new values::DoubleNumeric(x, -big, big));
}

QColor windowText(const QWidget& w) { return w.palette().color(QPalette::WindowText); }

} // namespace

class VCLabelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        tree().Clear();
        QLocale::setDefault(QLocale::c());
    }

    void format_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<double>("offset"); // NaN: no offset bound
        QTest::addColumn<int>("decimals");
        QTest::addColumn<double>("factor");
        QTest::addColumn<QList<double>>("wrap"); // low, high, step; empty: none
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<QString>("shown");

        const double none = std::nan("");
        const double inf = std::numeric_limits<double>::infinity();
        const QList<double> circle = {0, 360, 360};
        QTest::newRow("one decimal") << 12.34 << none << 1 << 1.0 << QList<double>() << QString() << "12.3";
        QTest::newRow("two decimals, half up") << 3.14159 << none << 2 << 1.0 << QList<double>() << QString() << "3.14";
        QTest::newRow("0 decimals, half up") << 2.5 << none << 0 << 1.0 << QList<double>() << QString() << "3";
        QTest::newRow("0 decimals, half away from zero") << -2.5 << none << 0 << 1.0 << QList<double>() << QString() << "-3";
        QTest::newRow("0 decimals, 0.4") << 0.4 << none << 0 << 1.0 << QList<double>() << QString() << "0";
        QTest::newRow("0 decimals, -0.4") << -0.4 << none << 0 << 1.0 << QList<double>() << QString() << "0";
        QTest::newRow("0 decimals beyond int") << 3e9 << none << 0 << 1.0 << QList<double>() << QString() << "3000000000";
        QTest::newRow("factor") << 0.0125 << none << 1 << 1000.0 << QList<double>() << QString() << "12.5";
        QTest::newRow("factor then rounding") << 0.0125 << none << 0 << 100.0 << QList<double>() << QString() << "1";
        QTest::newRow("suffix") << 12.34 << none << 1 << 1.0 << QList<double>() << "dB" << "12.3 dB";
        QTest::newRow("offset") << 10.0 << 2.5 << 1 << 1.0 << QList<double>() << QString() << "7.5";
        QTest::newRow("wrap down") << 370.0 << none << 0 << 1.0 << circle << QString() << "10";
        QTest::newRow("wrap up") << -10.0 << none << 0 << 1.0 << circle << QString() << "350";
        QTest::newRow("wrap after offset") << 10.0 << 20.0 << 0 << 1.0 << circle << QString() << "350";
        QTest::newRow("ends stay") << 360.0 << none << 0 << 1.0 << circle << QString() << "360";
        QTest::newRow("step 0 wraps nothing") << 370.0 << none << 0 << 1.0 << QList<double>{0, 360, 0} << QString() << "370";
        QTest::newRow("low not below high") << 370.0 << none << 0 << 1.0 << QList<double>{360, 0, 360} << QString() << "370";
        QTest::newRow("wrap in shown scale") << 370.0 << none << 1 << 0.5 << circle << QString() << "5.0";
        // 359.5 lies in the range and rounds to 360, which only the second wrap brings back.
        QTest::newRow("rounding wrapped again") << 359.5 << none << 0 << 1.0 << QList<double>{0, 359.5, 360} << QString() << "0";
        QTest::newRow("negative factor: no wrap") << 370.0 << none << 0 << -1.0 << circle << QString() << "-10";
        QTest::newRow("far outside, no pass per step") << 1e20 << none << 0 << 1.0 << circle << QString() << "280";
        QTest::newRow("infinite stays") << inf << none << 1 << 1.0 << circle << QString() << "inf";
        QTest::newRow("NaN stays") << 1.0 << none << 1 << none << circle << QString() << "nan";
    }

    // Every row also runs under a German default locale: the label shows C-locale digits.
    void format()
    {
        QFETCH(double, value);
        QFETCH(double, offset);
        QFETCH(int, decimals);
        QFETCH(double, factor);
        QFETCH(QList<double>, wrap);
        QFETCH(QString, suffix);
        QFETCH(QString, shown);

        for (const QLocale& locale : {QLocale::c(), QLocale(QLocale::German, QLocale::Germany)}) {
            QLocale::setDefault(locale);
            VCLabel label(nullptr, "format", 0);
            if (!wrap.isEmpty())
                label.SetWrapInto(wrap[0], wrap[1], wrap[2]);
            label.SetSuffix(suffix);
            label.SetFormat(3, decimals, factor);
            if (!std::isnan(offset)) {
                addNumber(QStringLiteral("/offset"), offset);
                QVERIFY(label.SetNumericOffset_ValuePath(QStringLiteral("/offset"), true));
            }
            // A value that may not hold NaN or inf is not needed: the number is given straight.
            if (std::isfinite(value)) {
                addNumber(QStringLiteral("/n"), value);
                QVERIFY(label.SetText_ValuePath(QStringLiteral("/n"), true));
            } else {
                label.SetFormatString(value, QString());
            }
            QCOMPARE(label.text(), shown);
            tree().Clear();
        }
    }

    void bindingAndFollowing()
    {
        VCLabel previous(nullptr, "previous", 0);
        VCLabel label(nullptr, "label", 0);
        label.SetPreviousLabel(&previous);
        QVERIFY(label.isEnabled()); // a display, not an input: enabled until a value says otherwise

        auto* text = add(QStringLiteral("/text"), new values::StringValue(QStringLiteral("hello")));
        auto* number = addNumber(QStringLiteral("/n"), 2);
        auto* offset = addNumber(QStringLiteral("/o"), 0.5);
        QVERIFY(label.SetText_ValuePath(QStringLiteral("/text"), true));
        QCOMPARE(label.text(), QStringLiteral("hello"));
        // A number joins the text binding; both are shown in turn, the number last.
        QVERIFY(label.SetText_ValuePath(QStringLiteral("/n"), true));
        QCOMPARE(label.text(), QStringLiteral("2.0"));
        text->SetValue(QStringLiteral("world"), nullptr);
        QCOMPARE(label.text(), QStringLiteral("2.0"));
        QCOMPARE(previous.text(), QStringLiteral("world"));

        QVERIFY(label.SetNumericOffset_ValuePath(QStringLiteral("/o"), true));
        QCOMPARE(label.text(), QStringLiteral("1.5"));
        offset->SetValue(1, nullptr);
        QCOMPARE(label.text(), QStringLiteral("1.0"));
        // SetFormat shows the number as the value holds it, without the offset.
        label.SetFormat(3, 2, 1.0);
        QCOMPARE(label.text(), QStringLiteral("2.00"));
        label.SetFactor(10);
        QCOMPARE(label.text(), QStringLiteral("10.00"));

        // Disabled, the label ignores changes; enabled again, it waits for the next one.
        number->SetState(Disabled);
        QVERIFY(!label.isEnabled());
        number->SetValue(5, nullptr);
        QCOMPARE(label.text(), QStringLiteral("10.00"));
        number->SetState(Enabled);
        QVERIFY(label.isEnabled());
        QCOMPARE(label.text(), QStringLiteral("10.00"));
        number->SetValue(6, nullptr);
        QCOMPARE(label.text(), QStringLiteral("50.00"));

        // Unknown path: both number and text let go.
        QVERIFY(!label.SetText_ValuePath(QStringLiteral("/none"), true));
        number->SetValue(7, nullptr);
        text->SetValue(QStringLiteral("gone"), nullptr);
        QCOMPARE(label.text(), QStringLiteral("50.00"));

        // Shown once, not followed: neither its changes nor its state reach the label.
        QVERIFY(label.SetText_ValuePath(QStringLiteral("/text"), false));
        QCOMPARE(label.text(), QStringLiteral("gone"));
        text->SetValue(QStringLiteral("later"), nullptr);
        text->SetState(Disabled);
        QCOMPARE(label.text(), QStringLiteral("gone"));
        QVERIFY(label.isEnabled());
    }

    void noValueAndLuminescence()
    {
        VCLabel label(nullptr, "novalue", 0);
        label.setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        label.SetDisplayNoValue(true);
        QCOMPARE(label.text(), QStringLiteral("- - -"));
        QCOMPARE(label.alignment(), Qt::AlignCenter);
        // The same state again keeps the alignment but shows the text anew.
        label.setAlignment(Qt::AlignLeft);
        label.setText(QStringLiteral("x"));
        label.UpdateDisplayNoValue(true);
        QCOMPARE(label.text(), QStringLiteral("x"));
        label.SetDisplayNoValue(true);
        QCOMPARE(label.text(), QStringLiteral("- - -"));
        QCOMPARE(label.alignment(), Qt::AlignLeft);
        // Applied at once only right after entering the state, which the second call was not.
        label.SetAlignmentNoValue(Qt::AlignTop);
        QCOMPARE(label.alignment(), Qt::AlignLeft);
        label.SetDisplayNoValue(false);
        QCOMPARE(label.alignment(), Qt::AlignRight | Qt::AlignVCenter);
        label.SetDisplayNoValue(true);
        QCOMPARE(label.alignment(), Qt::AlignTop);
        label.SetAlignmentNoValue(Qt::AlignBottom);
        QCOMPARE(label.alignment(), Qt::AlignBottom);

        // "- - -" drops the text and suffix; the stored format serves the next number.
        auto* number = addNumber(QStringLiteral("/n"), 4);
        auto* invalid = add(QStringLiteral("/invalid"), new values::BoolValue(true));
        QVERIFY(label.SetText_ValuePath(QStringLiteral("/n"), true));
        QVERIFY(label.SetNoValue_ValuePath(QStringLiteral("/invalid")));
        label.SetFormatString(1, QStringLiteral("V"));
        QCOMPARE(label.text(), QStringLiteral("- - -"));
        label.SetFormat(3, 2, 1.0);
        QCOMPARE(label.text(), QStringLiteral("- - -"));
        invalid->SetValue(false, nullptr);
        QCOMPARE(label.text(), QStringLiteral("4.00"));
        QCOMPARE(label.alignment(), Qt::AlignRight | Qt::AlignVCenter);

        // Luminescence: the last number stays, in the application's disabled text colour.
        const QColor gray = QGuiApplication::palette().color(QPalette::Disabled, QPalette::Text);
        label.SetLuminescence(true);
        invalid->SetValue(true, nullptr);
        number->SetValue(9, nullptr);
        QCOMPARE(label.text(), QStringLiteral("4.00"));
        QCOMPARE(windowText(label), gray);
        QCOMPARE(label.alignment(), Qt::AlignRight | Qt::AlignVCenter);
        invalid->SetValue(false, nullptr);
        QCOMPARE(label.text(), QStringLiteral("9.00"));
        QVERIFY(windowText(label) != gray);
    }

    // The trigger takes over the refresh: 1 shows the number as current, -1 as stale in gray.
    void updateTrigger()
    {
        VCLabel label(nullptr, "trigger", 0);
        auto* number = addNumber(QStringLiteral("/n"), 1);
        auto* trigger = add(QStringLiteral("/now"), new values::IntNumeric(0, -5, 5, 1));
        QVERIFY(label.SetText_ValuePath(QStringLiteral("/n"), true));
        QVERIFY(label.SetUpdateNow_ValuePath(QStringLiteral("/now")));
        QVERIFY(!label.SetUpdateNow_ValuePath(QStringLiteral("/n"))); // a double is no trigger
        QVERIFY(label.SetUpdateNow_ValuePath(QStringLiteral("/now")));
        const QColor gray = QGuiApplication::palette().color(QPalette::Disabled, QPalette::Text);

        number->SetValue(2, nullptr);
        QCOMPARE(label.text(), QStringLiteral("1.0"));
        for (int silent : {2, 0, -2}) {
            trigger->SetValue(silent, nullptr);
            QCOMPARE(label.text(), QStringLiteral("1.0"));
        }
        trigger->SetValue(1, nullptr);
        QCOMPARE(label.text(), QStringLiteral("2.0"));
        QVERIFY(windowText(label) != gray);
        number->SetValue(3, nullptr);
        trigger->SetValue(-1, nullptr);
        QCOMPARE(label.text(), QStringLiteral("3.0"));
        QCOMPARE(windowText(label), gray);
        trigger->SetValue(1, nullptr);
        QVERIFY(windowText(label) != gray);

        // The number is removed while the trigger holds it: the label lets go instead of reading it
        // later, when it may be gone.
        number->SetState(Removed);
        QVERIFY(!number->IsAttached(&label));
        number->SetValue(8, nullptr);
        trigger->SetValue(-1, nullptr);
        QCOMPARE(label.text(), QStringLiteral("3.0"));
    }

    // Linked labels form a history: the old text moves back one label per change, the new one is copied.
    void linkedLabels()
    {
        VCLabel label(nullptr, "now", 0), back1(nullptr, "back1", 0), back2(nullptr, "back2", 0),
            copy(nullptr, "copy", 0);
        label.SetPreviousLabel(&back1);
        back1.SetPreviousLabel(&back2);
        label.SetCopyLabel(&copy);
        auto* number = addNumber(QStringLiteral("/n"), 1);
        QVERIFY(label.SetText_ValuePath(QStringLiteral("/n"), true));
        number->SetValue(2, nullptr);
        number->SetValue(3, nullptr);
        const QStringList history = {label.text(), back1.text(), back2.text(), copy.text()};
        QCOMPARE(history, (QStringList{"3.0", "2.0", "1.0", "3.0"}));
        // A new number with the same text shifts nothing.
        number->SetValue(3.01, nullptr);
        QCOMPARE(back1.text(), QStringLiteral("2.0"));
        QCOMPARE(back2.text(), QStringLiteral("1.0"));
        // A linked label deleted first is no longer reached.
        {
            VCLabel gone(nullptr, "gone", 0);
            back2.SetPreviousLabel(&gone);
        }
        number->SetValue(4, nullptr);
        QCOMPARE(back2.text(), QStringLiteral("2.0"));
    }

    void colourRules()
    {
        const QPalette saved = QGuiApplication::palette();
        const auto restore = qScopeGuard([&saved] { QApplication::setPalette(saved); });
        QPalette app = saved;
        app.setColor(QPalette::Disabled, QPalette::Text, QColor(1, 2, 3));
        app.setColor(QPalette::Active, QPalette::Highlight, QColor(4, 5, 6));
        app.setColor(QPalette::WindowText, QColor(7, 8, 9));
        QApplication::setPalette(app);
        QCoreApplication::processEvents();

        VCLabel label(nullptr, "colours", 0);
        label.SetGray(false);
        QCOMPARE(windowText(label), QColor(1, 2, 3));
        label.SetHilight();
        QCOMPARE(windowText(label), QColor(4, 5, 6));
        label.SetForeground(); // no colour set yet: the invalid one, as it stands
        QVERIFY(!windowText(label).isValid());
        QVERIFY(!label.autoFillBackground());
        label.SetColors(Qt::red, Qt::blue);
        QCOMPARE(windowText(label), QColor(Qt::red));
        QCOMPARE(label.palette().color(QPalette::Window), QColor(Qt::blue));
        QVERIFY(label.autoFillBackground());
        label.SetLuminescence(false);
        QCOMPARE(windowText(label), QColor(Qt::red));
        label.SetLuminescence(true);
        QCOMPARE(windowText(label), QColor(1, 2, 3));

        // A change of the application's colours reaches the label; a palette set from outside is dropped.
        label.setPalette(QPalette(Qt::green));
        app.setColor(QPalette::Disabled, QPalette::Text, QColor(10, 11, 12));
        QApplication::setPalette(app);
        QTRY_COMPARE(windowText(label), QColor(10, 11, 12));
        QCOMPARE(label.palette().color(QPalette::Window), QColor(Qt::blue));
        QCOMPARE(label.palette().color(QPalette::Button), app.color(QPalette::Button));
    }

    void fontOnSize()
    {
        VCLabel label(nullptr, "font", 0);
        label.resize(120, 20);
        const QString text = QStringLiteral("Field Strength");
        QFont font = label.font();
        font.setPointSize(40);
        label.SetFontOnSize(font, text);
        const int size = label.font().pointSize();
        QVERIFY2(size < 40 && size > 5, QByteArray::number(size));
        auto fits = [&](int points) {
            QFont f = label.font();
            f.setPointSize(points);
            const QRect r = QFontMetrics(f).boundingRect(label.rect(), int(label.alignment()), text);
            return r.height() <= label.height() && r.width() <= 114; // 95 % of 120
        };
        QVERIFY(fits(size));
        QVERIFY(!fits(size + 1)); // shrunk no further than needed

        label.resize(10, 20);
        label.SetFontOnSize(font, text);
        QCOMPARE(label.font().pointSize(), 5); // the smallest it goes

        // A pixel-sized font leaves the label's font as it is.
        const QFont before = label.font();
        QFont pixels = font;
        pixels.setPixelSize(60);
        label.SetFontOnSize(pixels, text);
        QCOMPARE(label.font(), before);
    }

    void lines_data()
    {
        QTest::addColumn<unsigned>("mode");
        QTest::addColumn<bool>("top");
        QTest::addColumn<bool>("bottom");
        QTest::newRow("none") << 0u << false << false;
        QTest::newRow("top") << 1u << true << false;
        QTest::newRow("bottom") << 2u << false << true;
        QTest::newRow("both bits: none") << 3u << false << false;
        QTest::newRow("bit 0 with others: none") << 5u << false << false;
    }

    void lines()
    {
        QFETCH(unsigned, mode);
        QFETCH(bool, top);
        QFETCH(bool, bottom);
        VCLabel label(nullptr, "line", mode);
        label.setPalette(QPalette(Qt::white));
        label.setAutoFillBackground(true);
        label.resize(40, 20);
        const QImage image = label.grab().toImage();
        const int x = image.width() / 2;
        QCOMPARE(image.pixelColor(x, 0) == QColor(Qt::black), top);
        QCOMPARE(image.pixelColor(x, image.height() - 1) == QColor(Qt::black), bottom);
        QCOMPARE(label.height(), 20);
        QCOMPARE(label.toolTip(), QStringLiteral("line"));
    }

    // A value removed, destroyed or rebound under the label, in each role, followed or not.
    void valueGoesAway()
    {
        VCLabel label(nullptr, "gone", 0);
        auto* number = addNumber(QStringLiteral("/n"), 1);
        add(QStringLiteral("/t"), new values::StringValue(QStringLiteral("once")));
        auto* invalid = add(QStringLiteral("/invalid"), new values::BoolValue(false));
        QVERIFY(label.SetText_ValuePath(QStringLiteral("/t"), false));
        QVERIFY(label.SetText_ValuePath(QStringLiteral("/n"), true));
        QVERIFY(label.SetNumericOffset_ValuePath(QStringLiteral("/n"), false)); // the same value twice
        QVERIFY(label.SetNoValue_ValuePath(QStringLiteral("/invalid")));
        QCOMPARE(label.text(), QStringLiteral("0.0"));

        // Removed: the label keeps its look and its enabled state, and hears no more of the value.
        number->SetState(Disabled);
        QVERIFY(!label.isEnabled());
        number->SetState(Removed);
        number->SetValue(5, nullptr);
        number->SetState(Enabled);
        QVERIFY(!label.isEnabled());
        QCOMPARE(label.text(), QStringLiteral("0.0"));
        invalid->SetState(Disabled);
        invalid->SetState(Enabled);
        QVERIFY(label.isEnabled());

        // Removed while shown unobserved: let go as well, so a redraw does not read it.
        auto* once = dynamic_cast<values::StringValue*>(tree().Find(QStringLiteral("/t")));
        once->SetState(Removed);
        QVERIFY(!once->IsAttached(&label) && !number->IsAttached(&label));
        once->SetValue(QStringLiteral("changed"), nullptr);
        label.Display();
        QCOMPARE(label.text(), QStringLiteral("0.0"));
        QVERIFY(tree().Remove(QStringLiteral("/t")));
        QVERIFY(tree().Remove(QStringLiteral("/n")));

        // Rebound to new values at the same paths.
        add(QStringLiteral("/t"), new values::StringValue(QStringLiteral("again")));
        QVERIFY(label.SetText_ValuePath(QStringLiteral("/t"), true));
        QCOMPARE(label.text(), QStringLiteral("again"));
        QVERIFY(tree().Remove(QStringLiteral("/invalid")));
        label.SetDisplayNoValue(true);
        label.SetDisplayNoValue(false);
        QCOMPARE(label.text(), QStringLiteral("again"));
    }
};

QTEST_MAIN(VCLabelTest)
#include "vclabeltest.moc"
