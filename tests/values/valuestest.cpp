#include <values/values.h>

#include <QtTest>

#include "observercounter.h"

#include <cmath>
#include <limits>

namespace {

values::Tree& tree()
{
    return *values::Tree::Instance();
}

// The short names are the long class names the controls cast to.
static_assert(std::is_same<values::BoolValue, values::Value<bool, values::FormatBool<bool>,
                                                           values::StreamFormat<bool, values::FormatBool<bool>>>>::value);
static_assert(std::is_same<values::IntNumeric, values::ValueNumeric<int, values::FormatInt<int>,
                                                                    values::StreamFormat<int, values::FormatInt<int>>>>::value);
static_assert(std::is_same<values::CheckedStringVector,
                           values::ValueVector<values::CheckedString, values::FormatCheckedString,
                                               values::StreamFormat<values::CheckedString, values::FormatCheckedString>>>::value);

} // namespace

class ValuesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { tree().Clear(); }

    void treePaths_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("absolute") << "/receiver/gain" << true;
        QTest::newRow("one segment") << "/x" << true;
        QTest::newRow("result branch child") << "/result/VALUE" << true;
        QTest::newRow("empty") << "" << false;
        QTest::newRow("root") << "/" << false;
        QTest::newRow("relative") << "receiver/gain" << false;
        QTest::newRow("trailing slash") << "/receiver/" << false;
        QTest::newRow("empty segment") << "/receiver//gain" << false;
    }
    void treePaths()
    {
        QFETCH(QString, path);
        QFETCH(bool, accepted);
        auto* value = new values::IntValue(7);
        QCOMPARE(tree().Add(path, value), accepted);
        if (accepted) {
            QCOMPARE(tree().Find(path), static_cast<values::ValueBase*>(value));
            QCOMPARE(value->GetPathName(), path);
            // A taken path is refused and the caller keeps the second value.
            values::IntValue second;
            QVERIFY(!tree().Add(path, &second));
            QVERIFY(second.GetPathName().isEmpty());
        } else {
            QVERIFY(value->GetPathName().isEmpty());
            delete value;
        }
    }

    void treeAddRefusesAValueTwice()
    {
        auto* value = new values::IntValue;
        QVERIFY(tree().Add(QStringLiteral("/a"), value));
        QVERIFY(!tree().Add(QStringLiteral("/b"), value));
        QVERIFY(!tree().Add(QStringLiteral("/c"), nullptr));
        QCOMPARE(tree().Count(), 1);
    }

    void treeClearAndListing()
    {
        for (const char* p : {"/r/b", "/r/a", "/s", "/r/a/x", "/ra"})
            QVERIFY(tree().Add(QString::fromLatin1(p), new values::IntValue));
        QCOMPARE(tree().Paths(), (QStringList{"/r/a", "/r/a/x", "/r/b", "/ra", "/s"}));
        QCOMPARE(tree().PathsUnder(QStringLiteral("/r")), (QStringList{"/r/a", "/r/a/x", "/r/b"}));
        QCOMPARE(tree().PathsUnder(QStringLiteral("/r/a/")), (QStringList{"/r/a", "/r/a/x"}));
        QCOMPARE(tree().PathsUnder(QStringLiteral("/")).size(), 5);
        Counter watcher;
        watcher.watch(tree().Find(QStringLiteral("/s")));
        tree().Clear();
        QCOMPARE(tree().Count(), 0);
        QCOMPARE(watcher.codes, (QList<TChangeCode>{StateChanged, ValueDestroyed}));
    }

    void findStaysFastWithManyValues()
    {
        // A hash lookup costs the same among 1,000 and 100,000 values, a search a hundred times more;
        // comparing the two, best of several runs, holds under sanitizers and on a busy machine.
        const int count = 100000;
        QStringList paths;
        paths.reserve(count);
        for (int i = 0; i < count; ++i)
            paths << QStringLiteral("/big/group%1/value%2").arg(i / 100).arg(i % 100);
        const auto timeFinds = [&paths] {
            qint64 best = std::numeric_limits<qint64>::max();
            for (int run = 0; run < 7; ++run) {
                QElapsedTimer timer;
                timer.start();
                qint64 sum = 0;
                for (int i = 0; i < 1000; ++i)
                    sum += static_cast<values::IntValue*>(tree().Find(paths.at(i)))->GetValue();
                const qint64 ns = timer.nsecsElapsed();
                if (sum != qint64(999) * 1000 / 2)
                    return qint64(-1); // a lookup found the wrong value
                best = qMin(best, ns);
            }
            return best;
        };
        for (int i = 0; i < 1000; ++i)
            QVERIFY(tree().Add(paths.at(i), new values::IntValue(i)));
        const qint64 small = timeFinds();
        QVERIFY(small >= 0);
        for (int i = 1000; i < count; ++i)
            tree().Add(paths.at(i), new values::IntValue(i));
        QCOMPARE(tree().Count(), count);
        const qint64 big = timeFinds();
        QVERIFY(big >= 0);
        QVERIFY2(big < 10 * small + 1000000, qPrintable(QStringLiteral("%1 ns vs %2 ns").arg(big).arg(small)));
        QVERIFY(!tree().Find(QStringLiteral("/big/group1/value100")));
        QCOMPARE(static_cast<values::IntValue*>(tree().Find(paths.last()))->GetValue(), count - 1);
    }

    void stateChanges()
    {
        values::StringValue value(QStringLiteral("x"));
        Counter c;
        c.watch(&value);
        QCOMPARE(value.GetState(), int(Enabled));
        value.SetState(Disabled);
        value.SetState(Disabled); // no change: no notification
        value.SetState(42);       // not a state: refused
        QCOMPARE(value.GetState(), int(Disabled));
        value.SetState(Enabled, &c); // the originator is skipped
        QCOMPARE(value.GetState(), int(Enabled));
        QCOMPARE(c.codes, QList<TChangeCode>{StateChanged});
    }

    void plainValuesAndText_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<QString>("shown");
        QTest::newRow("bool true") << "bool" << "true" << true << "true";
        QTest::newRow("bool on") << "bool" << " On " << true << "true";
        QTest::newRow("bool 0") << "bool" << "0" << true << "false";
        QTest::newRow("bool junk") << "bool" << "maybe" << false << "false";
        QTest::newRow("int") << "int" << "-42" << true << "-42";
        QTest::newRow("int overflow") << "int" << "3000000000" << false << "0";
        QTest::newRow("int junk") << "int" << "12a" << false << "0";
        QTest::newRow("int64") << "int64" << "1700000000000000" << true << "1700000000000000";
        QTest::newRow("string") << "string" << "any text; really" << true << "any text; really";
    }
    void plainValuesAndText()
    {
        QFETCH(QString, kind);
        QFETCH(QString, text);
        QFETCH(bool, accepted);
        QFETCH(QString, shown);
        std::unique_ptr<values::ValueBase> value;
        if (kind == QLatin1String("bool"))
            value = std::make_unique<values::BoolValue>(false);
        else if (kind == QLatin1String("int"))
            value = std::make_unique<values::IntValue>(0);
        else if (kind == QLatin1String("int64"))
            value = std::make_unique<values::Int64Value>(0);
        else
            value = std::make_unique<values::StringValue>();
        Counter c;
        c.watch(value.get());
        QCOMPARE(value->SetValueFromText(text, nullptr), accepted);
        QCOMPARE(value->GetValueString(), shown);
        QCOMPARE(c.count(ValueChanged), accepted ? 1 : 0);
    }

    void numericClamping_data()
    {
        QTest::addColumn<bool>("integral");
        QTest::addColumn<double>("written");
        QTest::addColumn<double>("stored");
        QTest::addColumn<bool>("fractionalLimits");
        QTest::newRow("inside") << false << 2.5 << 2.5 << false;
        QTest::newRow("below") << false << -3.0 << -1.0 << false;
        QTest::newRow("above") << false << 99.0 << 10.0 << false;
        QTest::newRow("infinity") << false << std::numeric_limits<double>::infinity() << 10.0 << false;
        QTest::newRow("int rounds half up") << true << 2.5 << 3.0 << false;
        QTest::newRow("int rounds negative") << true << -0.5 << 0.0 << false;
        QTest::newRow("int clamps") << true << 1e12 << 10.0 << false;
        // Limits of -1.5 and 9.5 (set through the double interface): whole numbers inside them.
        QTest::newRow("int below a fractional minimum") << true << -9.0 << -1.0 << true;
        QTest::newRow("int above a fractional maximum") << true << 99.0 << 9.0 << true;
    }
    void numericClamping()
    {
        QFETCH(bool, integral);
        QFETCH(double, written);
        QFETCH(double, stored);
        QFETCH(bool, fractionalLimits);
        std::unique_ptr<values::NumericValueBase> value;
        if (integral)
            value = std::make_unique<values::IntNumeric>(0, -1, 10, 1);
        else
            value = std::make_unique<values::DoubleNumeric>(0.0, -1.0, 10.0, 0.5);
        if (fractionalLimits)
            QVERIFY(value->SetRange(-1.5, 9.5, 1, nullptr));
        QVERIFY(value->SetValue(written, nullptr));
        QCOMPARE(value->GetValue(), stored);
        QVERIFY(value->SetPendingValue(written, nullptr));
        QCOMPARE(value->GetPendingValue(), stored);
        // What is held is already fitted: writing it again tells nobody and changes nothing.
        QVERIFY(value->SetValue(value->GetValue(), nullptr));
        QCOMPARE(value->GetValue(), stored);
    }

    void numericNotifications()
    {
        values::DoubleNumeric value(1.0, 0.0, 10.0, 0.1);
        Counter c, origin;
        c.watch(&value);
        origin.watch(&value);
        QVERIFY(value.SetValue(1.0, nullptr)); // the number already held: silent
        QVERIFY(value.SetValue(50.0, nullptr)); // clamps to 10
        QVERIFY(value.SetValue(12.0, nullptr)); // clamps to 10 again: silent
        QVERIFY(!value.SetValue(std::nan(""), nullptr));
        QCOMPARE(value.GetValue(), 10.0);
        QCOMPARE(c.codes, QList<TChangeCode>{ValueChanged});

        c.codes.clear();
        origin.codes.clear();
        QVERIFY(value.SetPendingValue(4.0, &origin));
        QCOMPARE(value.GetValue(), 10.0);
        QVERIFY(value.CommitPendingValue(&origin));
        QCOMPARE(value.GetValue(), 4.0);
        QCOMPARE(c.codes, (QList<TChangeCode>{PendingValueChanged, ValueChanged}));
        QVERIFY(origin.codes.isEmpty());

        // A narrower range moves the number into it: RangeChanged, then ValueChanged.
        c.codes.clear();
        values::NumericValueBase& base = value;
        QVERIFY(base.SetRange(5.0, 8.0, 0.5));
        QCOMPARE(c.codes, (QList<TChangeCode>{RangeChanged, ValueChanged}));
        QCOMPARE(value.GetValue(), 5.0);
        QCOMPARE(value.GetStep(), 0.5);
        QVERIFY(!base.SetRange(9.0, 1.0, 0.0)); // wrong order: refused, nothing changes
        QCOMPARE(value.GetMinimum(), 5.0);
        c.codes.clear();
        QVERIFY(base.SetRange(5.0, 8.0, 0.5)); // same range: told again, the number stays
        QCOMPARE(c.codes, (QList<TChangeCode>{RangeChanged}));

        values::IntNumeric n(3, 0, 5);
        n.SetRange(0, 2, 1);
        QCOMPARE(n.GetTypedValue(), 2);
        QCOMPARE(n.GetValueString(), QStringLiteral("2"));
    }

    void selectionOperations()
    {
        values::ValueSelection sel;
        QVERIFY(sel.GetTranslationNamespace() && !*sel.GetTranslationNamespace()); // empty, never null
        sel.SetTranslationNamespace("Receiver");
        QCOMPARE(QByteArray(sel.GetTranslationNamespace()), QByteArray("Receiver"));
        QVERIFY(!sel.GetCurrentItem());
        QCOMPARE(sel.GetCurrentIndex(), -1L);
        QCOMPARE(sel.GetItemCount(), 0);
        QVERIFY(!sel.SelectNext(false, nullptr));
        Counter c;
        c.watch(&sel);
        sel.AddItem(QStringLiteral("AM"), 0.5, 10, nullptr);
        sel.AddItem(QStringLiteral("FM"), 1.5, 20, nullptr);
        sel.AddItem(QStringLiteral("USB"), 2.5, 30, nullptr);
        QCOMPARE(c.codes, (QList<TChangeCode>{ItemAdded, ItemAdded, ItemAdded}));
        QCOMPARE(sel.GetCurrentKey(), 10L); // the first item added becomes current
        QCOMPARE(sel.GetValueString(), QStringLiteral("AM"));

        QVERIFY(sel.SelectKey(30, nullptr));
        QCOMPARE(sel.GetCurrentItem()->GetName(), QStringLiteral("USB"));
        QVERIFY(!sel.SelectKey(99, nullptr));
        QCOMPARE(sel.GetCurrentKey(), 30L);
        QVERIFY(sel.SelectNext(true, nullptr));
        QCOMPARE(sel.GetCurrentKey(), 20L);
        QVERIFY(sel.SelectNext(true, nullptr));
        QCOMPARE(sel.GetCurrentIndex(), 0L);
        QVERIFY(sel.SelectNext(true, nullptr)); // round the front to the end
        QCOMPARE(sel.GetCurrentKey(), 30L);
        QVERIFY(sel.SelectNext(false, nullptr)); // and back round to the front
        QCOMPARE(sel.GetCurrentIndex(), 0L);
        QVERIFY(sel.SelectValue(1.5, nullptr, false));
        QCOMPARE(sel.GetCurrentKey(), 20L);
        QVERIFY(!sel.SelectValue(2.4, nullptr, false));
        QVERIFY(sel.SelectValue(2.4, nullptr, true)); // nearest
        QCOMPARE(sel.GetCurrentKey(), 30L);
        QVERIFY(sel.SetValueString(QStringLiteral("AM"), nullptr));
        QVERIFY(!sel.SetValueString(QStringLiteral("CW"), nullptr));
        QVERIFY(sel.SetValueFromText(QStringLiteral("FM"), nullptr));
        QVERIFY(sel.SelectIndex(2, nullptr));
        QVERIFY(!sel.SelectIndex(3, nullptr));
        QVERIFY(!sel.GetItemAt(-1));
        QCOMPARE(sel.GetItem(QStringLiteral("FM"))->GetKey(), 20L);
        QVERIFY(!sel.GetItem(QStringLiteral("fm")));

        c.codes.clear();
        sel.ClearItems(nullptr);
        QCOMPARE(c.codes, QList<TChangeCode>{ItemsCleared});
        QVERIFY(!sel.GetCurrentItem());
        QCOMPARE(sel.GetCurrentKey(), -1L);

        values::ValueSelection newest(true);
        newest.AddItem(QStringLiteral("a"), 1, 1, nullptr);
        newest.AddItem(QStringLiteral("b"), 2, 2, nullptr);
        QCOMPARE(newest.GetCurrentKey(), 2L);
    }

    void checkedStringVectorAndCommand()
    {
        using values::CheckedString;
        auto* vec = new values::CheckedStringVector({CheckedString(QStringLiteral("alpha"), true)});
        QVERIFY(tree().Add(QStringLiteral("/list"), vec));
        Counter c, origin;
        c.watch(vec);
        origin.watch(vec);
        const std::vector<CheckedString> next{CheckedString(QStringLiteral("a;b"), false), CheckedString(QStringLiteral("c\\d"), true)};
        QVERIFY(vec->SetValue(next, &origin));
        QCOMPARE(c.codes, QList<TChangeCode>{ValueChanged});
        QVERIFY(origin.codes.isEmpty());
        QCOMPARE(vec->GetValue().size(), size_t(2));
        QCOMPARE(vec->GetValue()[1].GetString(), QStringLiteral("c\\d"));
        QCOMPARE(vec->GetValueString(), QStringLiteral("0:a\\;b;1:c\\\\d;"));

        values::CheckedStringVector::CommandSetValue command(vec, {CheckedString(QStringLiteral("x"), true)}, &origin);
        QCOMPARE(command.GetCommandId(), 20);
        std::string text;
        command.AddCommandString(text, 0);
        QCOMPARE(QString::fromStdString(text), QStringLiteral("20;/list;1;1:x;"));
        std::unique_ptr<values::Command> copy(command.Clone());
        QCOMPARE(copy->GetCommandId(), 20);
        std::string copyText;
        copy->AddCommandString(copyText, -1);
        QCOMPARE(copyText, text);
        QVERIFY(copy->Execute());
        QCOMPARE(vec->GetValue().size(), size_t(1));
        QCOMPARE(vec->GetValue()[0].GetString(), QStringLiteral("x"));

        // The text form reads back.
        QVERIFY(vec->SetValueFromText(QStringLiteral("1:one;0:t\\;wo;"), nullptr));
        QCOMPARE(vec->GetValue()[1].GetString(), QStringLiteral("t;wo"));
        QVERIFY(!vec->SetValueFromText(QStringLiteral("2:bad;"), nullptr));
        QVERIFY(!vec->SetValueFromText(QStringLiteral("1:unterminated"), nullptr));
        using UShortStream = values::StreamFormat<unsigned short, values::FormatInt<unsigned short>>;
        QCOMPARE(UShortStream::ToStream(65535, -1), std::string("65535"));
    }

    void valuePtrLifecycle()
    {
        auto* value = new values::BoolValue(false);
        QVERIFY(tree().Add(QStringLiteral("/flag"), value));
        Counter target;
        {
            values::ValueObservingPtr<values::BoolValue> ptr(&target);
            ptr.Assign(value);
            QVERIFY(value->IsAttached(&ptr));
            QVERIFY(value->IsAttached(&target));
            ptr.Assign(value); // the held one: nothing
            QCOMPARE(value->ObserverCount(), 2);
            value->SetValue(true, nullptr);
            QCOMPARE(target.count(ValueChanged), 1);
            ptr.Assign(nullptr); // lets go; the tree keeps the value
            QCOMPARE(value->ObserverCount(), 0);
            QVERIFY(tree().Find(QStringLiteral("/flag")));
            ptr.Assign(value);
        } // destructor detaches both
        QCOMPARE(value->ObserverCount(), 0);

        values::ValuePtr<values::BoolValue> holder;
        holder.Assign(value);
        holder.Reset(); // also takes the value out of the tree
        QVERIFY(!holder.Get());
        QVERIFY(!tree().Find(QStringLiteral("/flag")));

        auto* other = new values::IntValue(1);
        QVERIFY(tree().Add(QStringLiteral("/other"), other));
        values::ValueObservingPtr<values::IntValue> watcher(&target);
        watcher.Assign(other);
        tree().Remove(QStringLiteral("/other")); // Removed: the holder lets go by itself
        QVERIFY(!watcher.Get());
    }

    void uniqueValues()
    {
        const QString a = values::UniqueValuesCreator::Instance().CreateValueSelection(true);
        const QString b = values::UniqueValuesCreator::Instance().CreateValueSelection(false);
        QVERIFY(a != b);
        auto* sa = dynamic_cast<values::ValueSelection*>(tree().Find(a));
        auto* sb = dynamic_cast<values::ValueSelection*>(tree().Find(b));
        QVERIFY(sa && sb);
        sa->AddItem(QStringLiteral("1"), 1, 1, nullptr);
        sa->AddItem(QStringLiteral("2"), 2, 2, nullptr);
        sb->AddItem(QStringLiteral("1"), 1, 1, nullptr);
        sb->AddItem(QStringLiteral("2"), 2, 2, nullptr);
        QCOMPARE(sa->GetCurrentKey(), 2L);
        QCOMPARE(sb->GetCurrentKey(), 1L);
    }
};

QTEST_GUILESS_MAIN(ValuesTest)
#include "valuestest.moc"
