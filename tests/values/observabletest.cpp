#include <values/values.h>

#include <QtTest>

#include <atomic>
#include <cstdlib>
#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <utility>
#include <new>

// Counts heap allocations so that the test can prove a notification allocates nothing.
static std::atomic<long> g_allocations{0};
void* operator new(std::size_t size)
{
    ++g_allocations;
    if (void* p = std::malloc(size ? size : 1))
        return p;
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }

using ValueMaker = std::function<values::ValueBase*()>;
Q_DECLARE_METATYPE(ValueMaker)

namespace {

struct Call
{
    QString who;
    TChangeCode code;
};

class Recorder : public IObserver
{
public:
    Recorder(const char* name, QVector<Call>* log)
        : m_name(QString::fromLatin1(name))
        , m_log(log)
    {
    }
    void Update(Observable* source, TChangeCode code) override
    {
        lastSource = source;
        m_log->append(Call{m_name, code});
        if (onUpdate)
            onUpdate(source, code);
    }
    Observable* lastSource = nullptr;
    std::function<void(Observable*, TChangeCode)> onUpdate;

private:
    QString m_name;
    QVector<Call>* m_log;
};

// Who was told, in order, as "a b c".
QString names(const QVector<Call>& log)
{
    QStringList out;
    for (const Call& c : log)
        out << c.who;
    return out.join(QLatin1Char(' '));
}

} // namespace

class ObservableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        values::Tree::Instance()->Clear();
    }

    void notifiesInAttachOrderSkippingOriginator()
    {
        QVector<Call> log;
        Recorder a("a", &log), b("b", &log), c("c", &log);
        values::IntValue value(1);
        value.Attach(&a);
        value.Attach(&b);
        value.Attach(&c);
        value.Attach(&b); // a second attach changes nothing
        QCOMPARE(value.ObserverCount(), 3);

        value.SetValue(2, &b);
        QCOMPARE(names(log), QStringLiteral("a c"));
        QCOMPARE(log.at(0).code, ValueChanged);
        QCOMPARE(a.lastSource, static_cast<Observable*>(&value));

        log.clear();
        value.Detach(&a);
        value.Detach(&a); // unknown observer: ignored
        value.SetValue(3, nullptr);
        QCOMPARE(names(log), QStringLiteral("b c"));
    }

    void sameObservablePointerThroughEveryView()
    {
        values::DoubleNumeric numeric(1.0, 0.0, 10.0);
        values::ValueBase* base = &numeric;
        auto* view = dynamic_cast<values::IValueNumeric*>(base);
        QVERIFY(view);
        QCOMPARE(static_cast<Observable*>(view), static_cast<Observable*>(base));
        QCOMPARE(view->GetValueBase(), base);

        values::StringMultiSelection multi(0);
        values::ValueBase* mbase = &multi;
        auto* mview = dynamic_cast<values::IValueMultiSelection*>(mbase);
        auto* mset = dynamic_cast<values::IMultiSelectionSet*>(mbase);
        QVERIFY(mview && mset);
        QCOMPARE(static_cast<Observable*>(mview), static_cast<Observable*>(mbase));
        QCOMPARE(static_cast<Observable*>(mset), static_cast<Observable*>(mbase));
        QCOMPARE(mset->GetValueBase(), mbase);
        // A cast to the wrong kind is a normal null result.
        QVERIFY(!dynamic_cast<values::ValueSelection*>(mbase));
        QVERIFY(!dynamic_cast<values::IValueNumeric*>(mbase));
    }

    void observersChangingTheListDuringNotify()
    {
        QVector<Call> log;
        Recorder a("a", &log), b("b", &log), c("c", &log), late("late", &log);
        values::IntValue value(0);
        value.Attach(&a);
        value.Attach(&b);
        value.Attach(&c);
        // a detaches itself and b, and attaches a newcomer: b is skipped, the newcomer waits for the next one.
        a.onUpdate = [&](Observable*, TChangeCode) {
            value.Detach(&a);
            value.Detach(&b);
            value.Attach(&late);
        };
        value.SetValue(1, nullptr);
        QCOMPARE(names(log), QStringLiteral("a c"));
        QCOMPARE(value.ObserverCount(), 2);

        log.clear();
        value.SetValue(2, nullptr);
        QCOMPARE(names(log), QStringLiteral("c late"));
    }

    // Hundreds of observers attached, detached and attached again in a scrambled order, also from
    // inside a notification: the value must tell exactly the attached ones, in attach order.
    void manyObserversFollowAttachOrderThroughChurn()
    {
        QVector<Call> log;
        std::vector<std::unique_ptr<Recorder>> pool;
        for (int i = 0; i < 400; ++i)
            pool.push_back(std::make_unique<Recorder>(qPrintable(QString::number(i)), &log));
        values::IntValue value(0);
        std::vector<Recorder*> expected; // the model: attached observers in attach order
        const auto attach = [&](Recorder* r) {
            value.Attach(r);
            if (std::find(expected.begin(), expected.end(), r) == expected.end())
                expected.push_back(r);
        };
        const auto detach = [&](Recorder* r) {
            value.Detach(r);
            expected.erase(std::remove(expected.begin(), expected.end(), r), expected.end());
        };
        const auto expectedNames = [&](const std::vector<Recorder*>& order) {
            QStringList out;
            for (Recorder* r : order)
                out << QString::number(int(std::find_if(pool.begin(), pool.end(), [r](const std::unique_ptr<Recorder>& p) {
                                               return p.get() == r;
                                           }) - pool.begin()));
            return out.join(QLatin1Char(' '));
        };

        std::mt19937 random(7);
        for (int round = 0; round < 40; ++round) {
            for (int op = 0; op < 150; ++op) {
                Recorder* r = pool[random() % pool.size()].get();
                if (random() % 3)
                    attach(r);
                else
                    detach(r);
            }
            QCOMPARE(value.ObserverCount(), int(expected.size()));
            QCOMPARE(value.IsAttached(pool[round].get()),
                     std::find(expected.begin(), expected.end(), pool[round].get()) != expected.end());
            log.clear();
            value.SetValue(round + 1, nullptr);
            QCOMPARE(names(log), expectedNames(expected));
        }

        // One observer in the middle detaches every other later one and attaches some anew: the
        // detached ones are skipped at once, the new ones wait for the next notification.
        QVERIFY(expected.size() > 20);
        Recorder* middle = expected[expected.size() / 2];
        std::vector<Recorder*> toldNow(expected.begin(), expected.begin() + expected.size() / 2 + 1);
        std::vector<Recorder*> dropped;
        for (size_t i = expected.size() / 2 + 1; i < expected.size(); ++i)
            (i % 2 ? dropped : toldNow).push_back(expected[i]);
        bool churned = false;
        middle->onUpdate = [&](Observable*, TChangeCode) {
            if (std::exchange(churned, true))
                return;
            for (Recorder* r : dropped)
                detach(r);
            for (Recorder* r : std::vector<Recorder*>(dropped.begin(), dropped.begin() + dropped.size() / 2))
                attach(r);
        };
        log.clear();
        value.SetValue(1000, nullptr);
        QCOMPARE(names(log), expectedNames(toldNow));
        log.clear();
        value.SetValue(1001, nullptr);
        QCOMPARE(names(log), expectedNames(expected));
        QCOMPARE(value.ObserverCount(), int(expected.size()));
        for (Recorder* r : std::vector<Recorder*>(expected))
            detach(r);
        QCOMPARE(value.ObserverCount(), 0);
        log.clear();
        value.SetValue(1002, nullptr);
        QVERIFY(log.isEmpty());
    }

    void observerWritingDuringNotify()
    {
        // A writer inside Update causes a nested notification; the outer one still reaches everyone.
        QVector<Call> log;
        Recorder a("a", &log), b("b", &log);
        values::DoubleNumeric value(0, 0, 100);
        value.Attach(&a);
        value.Attach(&b);
        a.onUpdate = [&](Observable*, TChangeCode code) {
            if (code == ValueChanged && value.GetValue() < 5)
                value.SetPendingValue(value.GetValue() + 10, &a);
        };
        value.SetValue(1, nullptr);
        QCOMPARE(names(log), QStringLiteral("a b b"));
        QCOMPARE(log.at(1).code, PendingValueChanged);
        QCOMPARE(log.at(2).code, ValueChanged);
        QCOMPARE(value.GetPendingValue(), 11.0);
    }

    void observerDestroyedDuringNotify()
    {
        QVector<Call> log;
        auto* doomed = new Recorder("doomed", &log);
        Recorder killer("killer", &log), after("after", &log);
        values::IntValue value(0);
        value.Attach(&killer);
        value.Attach(doomed);
        value.Attach(&after);
        killer.onUpdate = [&](Observable*, TChangeCode) {
            if (doomed) {
                value.Detach(doomed); // what a control's destructor does
                delete doomed;
                doomed = nullptr;
            }
        };
        value.SetValue(1, nullptr);
        QCOMPARE(names(log), QStringLiteral("killer after"));
    }

    void valueRemovedDuringItsOwnNotify()
    {
        QVector<Call> log;
        Recorder a("a", &log), b("b", &log);
        auto* value = new values::IntValue(0);
        QVERIFY(values::Tree::Instance()->Add(QStringLiteral("/gone"), value));
        value->Attach(&a);
        value->Attach(&b);
        a.onUpdate = [&](Observable*, TChangeCode code) {
            if (code == ValueChanged)
                values::Tree::Instance()->Remove(QStringLiteral("/gone"));
        };
        QVERIFY(!value->SetValue(5, nullptr)); // false: the value went during the call
        // a: ValueChanged, then the removal: StateChanged and ValueDestroyed to both a and b.
        QCOMPARE(names(log), QStringLiteral("a a b a b"));
        QCOMPARE(log.at(1).code, StateChanged);
        QCOMPARE(log.at(3).code, ValueDestroyed);
        QVERIFY(!values::Tree::Instance()->Find(QStringLiteral("/gone")));
    }

    void removalAnnouncesThenDestroys()
    {
        QVector<Call> log;
        Recorder leaver("leaver", &log), stayer("stayer", &log);
        auto* value = new values::BoolValue(true);
        QVERIFY(values::Tree::Instance()->Add(QStringLiteral("/b"), value));
        value->Attach(&leaver);
        value->Attach(&stayer);
        int stateSeen = -1;
        leaver.onUpdate = [&](Observable* source, TChangeCode code) {
            if (code == StateChanged) {
                stateSeen = value->GetState();
                source->Detach(&leaver); // lets go during the notification
            }
        };
        QVERIFY(values::Tree::Instance()->Remove(QStringLiteral("/b")));
        QCOMPARE(stateSeen, int(Removed));
        QCOMPARE(names(log), QStringLiteral("leaver stayer stayer"));
        QCOMPARE(log.at(2).code, ValueDestroyed);
        QVERIFY(!values::Tree::Instance()->Remove(QStringLiteral("/b")));
    }

    void destroyedWhileEveryViewIsWhole_data()
    {
        QTest::addColumn<ValueMaker>("make");
        // Which views of the value must still answer when ValueDestroyed arrives.
        QTest::addColumn<bool>("numeric");
        QTest::addColumn<bool>("multi");
        QTest::newRow("int numeric") << ValueMaker([] { return new values::IntNumeric(1, 0, 9, 1); }) << true << false;
        QTest::newRow("double numeric") << ValueMaker([] { return new values::DoubleNumeric(1, 0, 9, 1); }) << true << false;
        QTest::newRow("multi-selection") << ValueMaker([] { return new values::StringMultiSelection(0); }) << false << true;
        QTest::newRow("selection") << ValueMaker([] { return new values::ValueSelection; }) << false << false;
        QTest::newRow("string") << ValueMaker([] { return new values::StringValue; }) << false << false;
        QTest::newRow("vector") << ValueMaker([] { return new values::CheckedStringVector; }) << false << false;
    }
    void destroyedWhileEveryViewIsWhole()
    {
        // A value deleted without leaving the tree: observers holding any view of it compare the
        // source with that view when ValueDestroyed comes, so every view must still be whole then.
        QFETCH(ValueMaker, make);
        QFETCH(bool, numeric);
        QFETCH(bool, multi);
        QVector<Call> log;
        Recorder observer("o", &log);
        values::ValueBase* value = make();
        value->Attach(&observer);
        bool sawNumeric = false, sawMulti = false, sawBase = false;
        observer.onUpdate = [&](Observable* source, TChangeCode code) {
            if (code != ValueDestroyed)
                return;
            sawBase = dynamic_cast<values::ValueBase*>(source) == value;
            sawNumeric = dynamic_cast<values::IValueNumeric*>(source) != nullptr;
            sawMulti = dynamic_cast<values::IValueMultiSelection*>(source) != nullptr;
        };
        delete value;
        QCOMPARE(log.size(), 1);
        QCOMPARE(log.at(0).code, ValueDestroyed);
        QVERIFY(sawBase);
        QCOMPARE(sawNumeric, numeric);
        QCOMPARE(sawMulti, multi);
    }

    void notifyAllocatesNothing()
    {
        class Quiet : public IObserver
        {
        public:
            void Update(Observable*, TChangeCode) override { ++calls; }
            int calls = 0;
        };
        std::vector<Quiet> quiet(1000);
        values::DoubleNumeric other(0, -1e9, 1e9);
        for (Quiet& q : quiet)
            other.Attach(&q);
        const long before = g_allocations.load();
        for (int i = 1; i <= 50; ++i)
            other.SetValue(i, nullptr);
        QCOMPARE(g_allocations.load() - before, 0L);
        QCOMPARE(quiet.front().calls, 50);
        QCOMPARE(quiet.back().calls, 50);
    }

    void transactionMergesNotifications()
    {
        QVector<Call> log;
        Recorder a("a", &log), origin("origin", &log);
        values::ValueSelection selection;
        selection.Attach(&a);
        selection.Attach(&origin);
        {
            values::ValueTransaction t = selection.CreateTransaction(ItemsChanged, &origin);
            selection.ClearItems(nullptr);
            selection.AddItem(QStringLiteral("one"), 1, 1, nullptr);
            {
                values::ValueTransaction inner = selection.CreateTransaction(ValueChanged, nullptr);
                selection.AddItem(QStringLiteral("two"), 2, 2, nullptr);
            }
            QVERIFY(log.isEmpty());
            // A change of state is not merged: it arrives at once.
            selection.SetState(Disabled, nullptr);
            QCOMPARE(names(log), QStringLiteral("a origin"));
            QCOMPARE(log.at(0).code, StateChanged);
            log.clear();
        }
        QCOMPARE(names(log), QStringLiteral("a"));
        QCOMPARE(log.at(0).code, ItemsChanged);
        QCOMPARE(selection.GetItemCount(), 2);
        log.clear();
        selection.SelectKey(2, nullptr); // back to one notification per write
        QCOMPARE(log.size(), 2);
    }

    void transactionOutlivedByNothing()
    {
        // The value goes while a transaction on it is open: closing it must not touch the value.
        auto* value = new values::IntValue(0);
        QVERIFY(values::Tree::Instance()->Add(QStringLiteral("/t"), value));
        values::ValueTransaction t = value->CreateTransaction(ValueChanged, nullptr);
        values::Tree::Instance()->Remove(QStringLiteral("/t"));
    }
};

QTEST_GUILESS_MAIN(ObservableTest)
#include "observabletest.moc"
