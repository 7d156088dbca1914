#include <plinthor/numericspinbox.h>
#include <plinthor/sortlistview.h>
#include <plinthor/suffixeddouble.h>

#include <QLineEdit>
#include <QRandomGenerator>
#include <QtTest>

#include <cmath>
#include <cstring>

// Feeds random and malformed text to the parsers of the base controls. Each parse must end in a
// clean result or a clean refusal; the seed is fixed and printed, so a failure can be replayed.
namespace {

const quint32 kSeed = 20240611u;
const qint64 kBudgetMs = 1000; // per test function

QString randomText(QRandomGenerator& random, const QString& alphabet, int maxLength)
{
    QString text;
    const int length = random.bounded(maxLength + 1);
    for (int i = 0; i < length; ++i)
        text += alphabet.at(random.bounded(alphabet.size()));
    return text;
}

// A well-formed number with a prefix: digits, a separator, an exponent, blanks and a unit. \a decimal
// and \a exponent spell the number without the prefix, whose power of 1000 goes to \a power.
QString wellFormed(QRandomGenerator& random, QString& decimal, int& exponent, int& power, bool plain)
{
    struct Prefix {
        const char* letter;
        int power;
    };
    static const Prefix frequency[] = {{"", 0}, {"k", 1}, {"K", 1}, {"m", 2}, {"M", 2}, {"g", 3}, {"G", 3}};
    static const Prefix number[] = {{"", 0}, {"p", -4}, {"n", -3}, {"u", -2}, {"m", -1},
                                    {"k", 1}, {"M", 2},  {"G", 3},  {"T", 4}};
    const Prefix& prefix = plain ? number[random.bounded(9)] : frequency[random.bounded(7)];
    power = prefix.power;
    const QString integral = QString::number(random.bounded(100000));
    const QString fraction = random.bounded(2) ? QString::number(random.bounded(1000)) : QString();
    exponent = random.bounded(2) ? random.bounded(-20, 20) : 0;
    decimal = fraction.isEmpty() ? integral : integral + QLatin1Char('.') + fraction;
    QString text = integral;
    if (!fraction.isEmpty())
        text += (random.bounded(2) ? QLatin1Char('.') : QLatin1Char(',')) + fraction;
    if (exponent != 0)
        text += QStringLiteral("e%1").arg(exponent);
    text += QString(random.bounded(3), QLatin1Char(' ')) + QLatin1String(prefix.letter);
    if (!plain && random.bounded(2))
        text += random.bounded(2) ? QStringLiteral("Hz") : QStringLiteral("hz");
    return text;
}

bool sameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

} // namespace

class TextParserFuzzTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qInfo("seed %u", kSeed); }

    void suffixedDoubleRandomText()
    {
        QRandomGenerator random(kSeed);
        const QString alphabet = QStringLiteral("0123456789.,+-eE kKmMgGtTuUnNpPhHzZ x%\t") + QChar(0x00B5) +
                                 QChar(0x03BC) + QChar(0x00A0) + QChar(0xD800);
        QElapsedTimer clock;
        clock.start();
        int accepted = 0;
        int round = 0;
        for (; round < 200000 && clock.elapsed() < kBudgetMs; ++round) {
            const bool plain = random.bounded(2);
            SuffixedDouble number(plain ? QString() : QStringLiteral("Hz"), random.bounded(2) ? 1000 : 1024, plain);
            const auto mode = static_cast<SuffixedDouble::ESuffix>(random.bounded(10));
            number.SetSuffix(mode);
            const double before = random.generateDouble() * 1e6;
            number.SetValue(before);
            const QString text = randomText(random, alphabet, 14);
            const QString context = QStringLiteral("round %1, text '%2'").arg(round).arg(text);
            if (number.SetFrequencyString(text)) {
                ++accepted;
                QVERIFY2(std::isfinite(number.GetValue()), qPrintable(context));
                // What was read can be written and read again.
                const QString shortest = number.GetShortestString(SuffixedDouble::HeldValue);
                SuffixedDouble reader(number.GetStringSuffix(), number.GetFactor(), plain);
                QVERIFY2(reader.SetFrequencyString(shortest), qPrintable(context + " -> " + shortest));
                QVERIFY2(sameBits(reader.GetValue(), number.GetValue()) ||
                             (reader.GetValue() == 0 && number.GetValue() == 0),
                         qPrintable(context + " -> " + shortest));
                QVERIFY2(!number.GetString(SuffixedDouble::HeldValue).isEmpty(), qPrintable(context));
            } else {
                QVERIFY2(sameBits(number.GetValue(), before), qPrintable(context));
                QVERIFY2(number.GetSuffix() == mode, qPrintable(context));
            }
        }
        qInfo("%d texts, %d read", round, accepted);
        QVERIFY(accepted > 0);
    }

    // Generated numbers in every accepted form read as the decimal they spell, to the last bit.
    void suffixedDoubleWellFormed()
    {
        QRandomGenerator random(kSeed + 1);
        QElapsedTimer clock;
        clock.start();
        int round = 0;
        for (; round < 100000 && clock.elapsed() < kBudgetMs; ++round) {
            const bool plain = random.bounded(2);
            SuffixedDouble number(plain ? QString() : QStringLiteral("Hz"), 1000, plain);
            QString decimal;
            int exponent = 0;
            int power = 0;
            const QString text = wellFormed(random, decimal, exponent, power, plain);
            QVERIFY2(number.SetFrequencyString(text), qPrintable(text));
            const double expected = QString(decimal + QStringLiteral("e%1").arg(exponent + 3 * power)).toDouble();
            QVERIFY2(sameBits(number.GetValue(), expected),
                     qPrintable(QStringLiteral("%1 read as %2, expected %3")
                                    .arg(text)
                                    .arg(number.GetValue(), 0, 'g', 17)
                                    .arg(expected, 0, 'g', 17)));
        }
        qInfo("%d texts", round);
    }

    // Random bit patterns reach NaNs, infinities, denormals and every exponent. The shortest text
    // reads back exactly; the display text, in whatever prefix is fixed, within its 12 digits.
    void suffixedDoubleRandomNumbers()
    {
        QRandomGenerator random(kSeed + 2);
        QElapsedTimer clock;
        clock.start();
        for (int round = 0; round < 100000 && clock.elapsed() < kBudgetMs; ++round) {
            const quint64 bits = random.generate64();
            double value;
            std::memcpy(&value, &bits, sizeof value);
            const bool plain = random.bounded(2);
            const auto mode = static_cast<SuffixedDouble::ESuffix>(random.bounded(10));
            SuffixedDouble number(plain ? QString() : QStringLiteral("Hz"), 1000, plain);
            number.SetSuffix(mode);
            const QString shortest = number.GetShortestString(value);
            const QString display = number.GetString(value);
            QVERIFY(!display.isEmpty() && !shortest.isEmpty());
            if (!std::isfinite(value))
                continue;
            SuffixedDouble reader(number.GetStringSuffix(), 1000, plain);
            QVERIFY2(reader.SetFrequencyString(shortest), qPrintable(shortest));
            QVERIFY2(reader.GetValue() == value, qPrintable(shortest + " from " + QString::number(value, 'g', 17)));
            QVERIFY2(number.SetFrequencyString(display), qPrintable(display));
            QVERIFY2(std::fabs(number.GetValue() - value) <= std::fabs(value) * 1e-11 || std::fabs(value) < 1e-290,
                     qPrintable(display + " from " + QString::number(value, 'g', 17)));
        }
    }

    void spinBoxTypedText()
    {
        QRandomGenerator random(kSeed + 3);
        const QString alphabet = QStringLiteral("0123456789+- .,eExk") + QChar(0x0663) + QChar(0xFF11);
        NumericSpinBox box;
        box.setRange(-50, 50);
        box.show();
        QVERIFY(QTest::qWaitForWindowExposed(&box));
        QElapsedTimer clock;
        clock.start();
        for (int round = 0; round < 5000 && clock.elapsed() < kBudgetMs; ++round) {
            const int before = random.bounded(-50, 51);
            box.setValue(before);
            const QString text = randomText(random, alphabet, 8);
            box.findChild<QLineEdit*>()->selectAll();
            for (QChar c : text) // typed one by one, also characters beyond ASCII
                QTest::sendKeyEvent(QTest::Click, &box, Qt::Key_unknown, QString(c), Qt::NoModifier);
            QTest::keyClick(&box, Qt::Key_Return);
            const QString context = QStringLiteral("round %1, text '%2'").arg(round).arg(text);
            bool isNumber = false;
            const int typed = text.trimmed().toInt(&isNumber);
            if (isNumber)
                QVERIFY2(box.value() == qBound(-50, typed, 50), qPrintable(context));
            else if (text.trimmed().isEmpty())
                QVERIFY2(box.value() == before, qPrintable(context));
            // Whatever was typed, the box ends showing its number.
            QVERIFY2(box.text() == QString::number(box.value()), qPrintable(context));
        }
    }

    // The sort order must be a strict weak order on any texts, or sorting misbehaves.
    void rowOrder()
    {
        QRandomGenerator random(kSeed + 5);
        const QString alphabet = QStringLiteral("0123456789.,-+eE aAbB ");
        QElapsedTimer clock;
        clock.start();
        for (int round = 0; round < 20000 && clock.elapsed() < kBudgetMs; ++round) {
            SortListViewItem a(static_cast<QTreeWidget*>(nullptr), {randomText(random, alphabet, 6)});
            SortListViewItem b(static_cast<QTreeWidget*>(nullptr), {randomText(random, alphabet, 6)});
            SortListViewItem c(static_cast<QTreeWidget*>(nullptr), {randomText(random, alphabet, 6)});
            const QString context = a.text(0) + " | " + b.text(0) + " | " + c.text(0);
            QVERIFY2(!(a < a), qPrintable(context));
            QVERIFY2(!(a < b && b < a), qPrintable(context));
            if (a < b && b < c)
                QVERIFY2(a < c, qPrintable(context));
        }
    }
};

QTEST_MAIN(TextParserFuzzTest)
#include "textparserfuzztest.moc"
