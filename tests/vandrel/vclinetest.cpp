#include <vandrel/vcline.h>

#include <QtTest>

namespace {

int gray(const QImage& image, int x, int y) { return qGray(image.pixel(x, y)); }

} // namespace

class VCLineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sunken_data()
    {
        QTest::addColumn<QColor>("window");
        QTest::newRow("light palette") << QColor(200, 200, 200);
        QTest::newRow("dark palette") << QColor(50, 50, 50);
    }

    // Dark top and left edges, light bottom and right edges, the inside left to the parent.
    void sunken()
    {
        QFETCH(QColor, window);
        QWidget parent;
        parent.setPalette(QPalette(window));
        parent.setAutoFillBackground(true);
        parent.resize(60, 40);
        VCLine line(&parent, "group");
        QCOMPARE(line.objectName(), QStringLiteral("group"));
        line.setGeometry(10, 10, 30, 12);
        const QImage image = parent.grab().toImage();
        const int bg = qGray(window.rgb());
        const int top = gray(image, 20, 10), left = gray(image, 10, 15);
        const int bottom = gray(image, 20, 21), right = gray(image, 39, 15);
        QCOMPARE(gray(image, 20, 15), bg);
        for (int edge : {top, left})
            QVERIFY2(edge < bg - 10, qPrintable(QStringLiteral("dark edge %1 on %2").arg(edge).arg(bg)));
        for (int edge : {bottom, right})
            QVERIFY2(edge > bg + 10, qPrintable(QStringLiteral("light edge %1 on %2").arg(edge).arg(bg)));
        for (int corner : {gray(image, 39, 10), gray(image, 10, 21)})
            QVERIFY(corner > top && corner < bottom);
        if (bg == 200) { // white at alpha 191 and black at alpha 91 over the light window
            QVERIFY(qAbs(bottom - (200 + 55 * 191 / 255)) <= 1);
            QVERIFY(qAbs(top - 200 * (255 - 91) / 255) <= 1);
        }

        // Two pixels high: the dark top edge right above the light bottom edge.
        line.setGeometry(10, 10, 30, 2);
        const QImage thin = parent.grab().toImage();
        QVERIFY(gray(thin, 20, 10) < bg && gray(thin, 20, 11) > bg);
        QCOMPARE(gray(thin, 20, 12), bg);
    }
};

QTEST_MAIN(VCLineTest)
#include "vclinetest.moc"
