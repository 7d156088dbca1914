#include <vandrel/binding/binding.h>

#include <QtTest>

namespace {

values::Tree& tree()
{
    return *values::Tree::Instance();
}

// A minimal bound control written with the helpers, as an application would write one.
class Probe : public QWidget, public IObserver
{
public:
    Probe() { setEnabled(false); }
    ~Probe() override { DetachValue(numeric, this); DetachValue(selection, this); DetachValue(plain, this); DetachValue(multi, this); }
    void Update(Observable* source, TChangeCode code) override
    {
        codes << int(code);
        if (code != StateChanged)
            return;
        if (source == ObservableOf(numeric))
            ApplyValueState(numeric, this);
        else if (source == ObservableOf(selection))
            ApplyValueState(selection, this);
        else if (source == ObservableOf(plain))
            ApplyValueState(plain, this);
        else if (source == ObservableOf(multi))
            ApplyValueState(multi, this);
    }
    QList<int> codes;
    values::IValueNumeric* numeric = nullptr;
    values::ValueSelection* selection = nullptr;
    values::ValueBase* plain = nullptr;
    values::IValueMultiSelection* multi = nullptr;
};

// A binding body that returns true (kind 0) or throws a framework (1), standard (2) or other (3) exception.
auto throwing(int kind)
{
    return [kind]() -> bool {
        if (kind == 1)
            throw BrevanException(QStringLiteral("framework"), QStringLiteral("f.cpp"), QStringLiteral("C"), QStringLiteral("m"), 7, 3);
        if (kind == 2)
            throw std::runtime_error("standard");
        if (kind == 3)
            throw 42;
        return true;
    };
}

class CollectingHandler : public IErrorHandler
{
public:
    void ReportException(const BrevanException& e, void* parent, int code, bool log, bool fatal) override
    {
        reports << QStringLiteral("%1|%2|%3|%4|%5|%6").arg(e.GetMessage()).arg(parent == nullptr).arg(code).arg(log).arg(fatal).arg(e.GetCode());
    }
    void LogException(const BrevanException& e) override { logged << e.GetMessage() + QLatin1Char('|') + e.GetClassName() + QLatin1Char('|') + e.GetMethod(); }
    QStringList reports;
    QStringList logged;
};

} // namespace

class BindingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { tree().Clear(); }

    void findAndAttach_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("asNumeric");
        QTest::addColumn<bool>("found");
        QTest::newRow("numeric as numeric") << "/n" << true << true;
        QTest::newRow("selection as selection") << "/s" << false << true;
        QTest::newRow("selection as numeric") << "/s" << true << false;
        QTest::newRow("numeric as selection") << "/n" << false << false;
        QTest::newRow("unknown path") << "/nothing" << true << false;
    }
    void findAndAttach()
    {
        QFETCH(QString, path);
        QFETCH(bool, asNumeric);
        QFETCH(bool, found);
        auto* n = new values::IntNumeric(1, 0, 5);
        auto* s = new values::ValueSelection;
        auto* old = new values::IntNumeric(0, 0, 1);
        tree().Add(QStringLiteral("/n"), n);
        tree().Add(QStringLiteral("/s"), s);
        tree().Add(QStringLiteral("/old"), old);
        Probe probe;
        if (asNumeric) {
            probe.numeric = FindAndAttach<values::IValueNumeric>(QStringLiteral("/old"), nullptr, &probe);
            QVERIFY(old->IsAttached(&probe));
            probe.numeric = FindAndAttach<values::IValueNumeric>(path, probe.numeric, &probe);
            QCOMPARE(probe.numeric != nullptr, found);
        } else {
            probe.selection = FindAndAttach<values::ValueSelection>(path, nullptr, &probe);
            QCOMPARE(probe.selection != nullptr, found);
        }
        // The old value is let go whatever the lookup gave; the new one is attached only when found.
        QVERIFY(!old->IsAttached(&probe));
        QCOMPARE(n->IsAttached(&probe), found && path == QLatin1String("/n"));
        QCOMPARE(s->IsAttached(&probe), found && path == QLatin1String("/s"));
        QVERIFY(probe.codes.isEmpty()); // attaching tells nothing
        QVERIFY(!probe.isEnabled());
    }

    void findAndAttachEveryKind()
    {
        tree().Add(QStringLiteral("/b"), new values::BoolValue);
        tree().Add(QStringLiteral("/i"), new values::IntValue);
        tree().Add(QStringLiteral("/l"), new values::Int64Value);
        tree().Add(QStringLiteral("/t"), new values::StringValue);
        tree().Add(QStringLiteral("/in"), new values::IntNumeric(0, 0, 1));
        tree().Add(QStringLiteral("/v"), new values::CheckedStringVector);
        tree().Add(QStringLiteral("/m"), new values::StringMultiSelection(0));
        QVERIFY(FindAndAttach<values::BoolValue>(QStringLiteral("/b"), nullptr, nullptr));
        QVERIFY(!FindAndAttach<values::BoolValue>(QStringLiteral("/i"), nullptr, nullptr));
        QVERIFY(FindAndAttach<values::IntValue>(QStringLiteral("/i"), nullptr, nullptr));
        QVERIFY(FindAndAttach<values::Int64Value>(QStringLiteral("/l"), nullptr, nullptr));
        QVERIFY(!FindAndAttach<values::Int64Value>(QStringLiteral("/i"), nullptr, nullptr));
        QVERIFY(FindAndAttach<values::StringValue>(QStringLiteral("/t"), nullptr, nullptr));
        QVERIFY(FindAndAttach<values::IntNumeric>(QStringLiteral("/in"), nullptr, nullptr));
        QVERIFY(!FindAndAttach<values::IntNumeric>(QStringLiteral("/i"), nullptr, nullptr));
        QVERIFY(FindAndAttach<values::CheckedStringVector>(QStringLiteral("/v"), nullptr, nullptr));
        QVERIFY(FindAndAttach<values::StringMultiSelection>(QStringLiteral("/m"), nullptr, nullptr));
        QVERIFY(FindAndAttach<values::IValueMultiSelection>(QStringLiteral("/m"), nullptr, nullptr));
        QVERIFY(!FindAndAttach<values::IValueMultiSelection>(QStringLiteral("/v"), nullptr, nullptr));
        QVERIFY(FindAndAttach<values::ValueBase>(QStringLiteral("/v"), nullptr, nullptr));
        QVERIFY(!FindAndAttach<values::ValueBase>(QStringLiteral("/none"), nullptr, nullptr));
    }

    void syncObserverOrder()
    {
        auto* n = new values::DoubleNumeric(1, 0, 5);
        auto* s = new values::ValueSelection;
        auto* b = new values::BoolValue;
        tree().Add(QStringLiteral("/n"), n);
        tree().Add(QStringLiteral("/s"), s);
        tree().Add(QStringLiteral("/b"), b);
        Probe probe;
        const auto sync = [&probe](auto* value) {
            probe.codes.clear();
            SyncObserver(value, &probe);
            return probe.codes;
        };
        QCOMPARE(sync(static_cast<values::IValueNumeric*>(n)), (QList<int>{2, 4, 3}));
        QCOMPARE(sync(s), (QList<int>{2, 4, 7, 3}));
        QCOMPARE(sync(static_cast<values::ValueBase*>(s)), (QList<int>{2, 4, 7, 3})); // still a selection
        QCOMPARE(sync(b), (QList<int>{2, 4, 3}));
        probe.codes.clear();
        SyncObserver(static_cast<values::BoolValue*>(nullptr), &probe);
        SyncObserver(b, static_cast<IObserver*>(nullptr));
        QVERIFY(probe.codes.isEmpty());
    }

    void applyValueStateVariants()
    {
        auto* n = new values::DoubleNumeric(1, 0, 5);
        auto* m = new values::StringMultiSelection(0);
        auto* b = new values::BoolValue;
        tree().Add(QStringLiteral("/n"), n);
        tree().Add(QStringLiteral("/m"), m);
        tree().Add(QStringLiteral("/b"), b);
        Probe probe;
        probe.numeric = FindAndAttach<values::IValueNumeric>(QStringLiteral("/n"), nullptr, &probe);
        probe.multi = FindAndAttach<values::IValueMultiSelection>(QStringLiteral("/m"), nullptr, &probe);
        probe.plain = FindAndAttach<values::ValueBase>(QStringLiteral("/b"), nullptr, &probe);
        SyncObserver(probe.numeric, &probe);
        QVERIFY(probe.isEnabled()); // the first picture enables

        n->SetState(Disabled);
        QVERIFY(!probe.isEnabled());
        m->SetState(Enabled);
        m->SetState(Disabled);
        m->SetState(Enabled);
        QVERIFY(probe.isEnabled());
        b->SetState(Disabled);
        QVERIFY(!probe.isEnabled());

        // Removed: detach, forget, keep the enabled state as it was.
        tree().Remove(QStringLiteral("/n"));
        QVERIFY(!probe.numeric);
        QVERIFY(!probe.isEnabled());
        tree().Remove(QStringLiteral("/m"));
        QVERIFY(!probe.multi);
        probe.codes.clear();
        // An Update with a null source now matches the null fields; each branch tests its field.
        probe.Update(nullptr, StateChanged);
        QVERIFY(!probe.isEnabled());
    }

    void applyValueRemovalOnly()
    {
        auto* b = new values::BoolValue;
        tree().Add(QStringLiteral("/b"), b);
        Probe probe;
        values::BoolValue* field = FindAndAttach<values::BoolValue>(QStringLiteral("/b"), nullptr, &probe);
        b->SetState(Disabled);
        ApplyValueRemoval(field, &probe);
        QVERIFY(field);
        b->SetState(Removed);
        ApplyValueRemoval(field, &probe);
        QVERIFY(!field);
        QVERIFY(!b->IsAttached(&probe));
    }

    void scanChangeLog_data()
    {
        QTest::addColumn<int>("capacity");
        QTest::addColumn<QList<int>>("kinds");
        QTest::addColumn<qulonglong>("start");
        QTest::addColumn<int>("result");
        QTest::addColumn<qulonglong>("next");
        QTest::newRow("empty log") << 8 << QList<int>{} << 0ull << 0 << 0ull;
        QTest::newRow("nothing new") << 8 << QList<int>{6, 6} << 2ull << 0 << 2ull;
        QTest::newRow("reader ahead") << 8 << QList<int>{6} << 5ull << 0 << 5ull;
        QTest::newRow("only checks") << 8 << QList<int>{1, 6, 6, 6} << 1ull << 1 << 4ull;
        QTest::newRow("one check") << 8 << QList<int>{2, 6} << 1ull << 1 << 2ull;
        QTest::newRow("other kind at end") << 8 << QList<int>{6, 6, 5} << 0ull << -1 << 3ull;
        QTest::newRow("other kind first") << 8 << QList<int>{6, 3, 6} << 1ull << -1 << 3ull;
        QTest::newRow("entries lost") << 4 << QList<int>{6, 6, 6, 6, 6, 6} << 1ull << -1 << 6ull;
        QTest::newRow("oldest retained") << 4 << QList<int>{5, 5, 6, 6, 6, 6} << 2ull << 1 << 6ull;
    }
    void scanChangeLog()
    {
        QFETCH(int, capacity);
        QFETCH(QList<int>, kinds);
        QFETCH(qulonglong, start);
        QFETCH(int, result);
        QFETCH(qulonglong, next);
        values::MultiSelectionChangeLog log(capacity);
        for (int i = 0; i < kinds.size(); ++i)
            log.Add(static_cast<unsigned char>(kinds[i]), quint32(100 + i)); // keys tell the entries apart
        unsigned long long sequence = start;
        QCOMPARE(int(ScanChangeLog(&log, sequence, 6)), result);
        QCOMPARE(qulonglong(sequence), next);
        QCOMPARE(int(ScanChangeLog(&log, sequence, 6)), 0); // read once: nothing new after
        QCOMPARE(int(ScanChangeLog(nullptr, sequence, 6)), 0);
        QCOMPARE(qulonglong(sequence), next);

        // The keyed scan answers alike and gives the keys of exactly the entries read.
        std::vector<unsigned int> keys{7};
        sequence = start;
        QCOMPARE(int(ScanChangeLogKeys(&log, sequence, 6, keys)), result);
        QCOMPARE(qulonglong(sequence), next);
        std::vector<unsigned int> read;
        if (result == 1)
            for (qulonglong s = start; s < next; ++s)
                read.push_back(unsigned(100 + s));
        QCOMPARE(keys, read);
        QCOMPARE(int(ScanChangeLogKeys(&log, sequence, 6, keys)), 0);
        QVERIFY(keys.empty());
    }

    void guardedBinding_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QString>("report");
        QTest::addColumn<QString>("log");
        QTest::addColumn<QString>("trace");
        QTest::newRow("no exception") << 0 << true << QString() << QString() << QString();
        QTest::newRow("framework") << 1 << false << "framework|1|-1|1|0|3" << "framework|C|m"
                                   << "BrevanException caught in standard catch-block";
        QTest::newRow("standard") << 2 << false << "standard|1|-1|1|0|4294967295" << "standard|class|method"
                                  << "Standard C++ Exception caught in standard catch-block";
    }
    void guardedBinding()
    {
        QFETCH(int, kind);
        QFETCH(bool, result);
        QFETCH(QString, report);
        QFETCH(QString, log);
        QFETCH(QString, trace);
        CollectingHandler handler;
        ErrorHandler::SetInterface(&handler);
        // The trace names the caller's unit and line, once.
        if (!trace.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QRegularExpression::escape(trace + QStringLiteral(" (unit.cpp:77)"))));
        QCOMPARE(GuardedBinding("unit.cpp", 77, throwing(kind)), result);
        ErrorHandler::SetInterface(nullptr);
        QCOMPARE(handler.reports.value(0), report);
        QCOMPARE(handler.logged.value(0), log);
        QVERIFY(handler.reports.size() <= 1);
        // Exceptions of no known kind pass through.
        QVERIFY_EXCEPTION_THROWN(GuardedBinding("unit.cpp", 77, throwing(3)), int);

        // The library's own handler writes the exception once, although the binding logs and reports it.
        static QStringList lines;
        lines.clear();
        const QtMessageHandler previous = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& msg) {
            lines << msg;
        });
        GuardedBinding("unit.cpp", 77, throwing(kind));
        qInstallMessageHandler(previous);
        QCOMPARE(lines.filter(QStringLiteral("exception:")).size(), kind == 0 ? 0 : 1);
        QCOMPARE(lines.filter(QStringLiteral("caught")).size(), kind == 0 ? 0 : 1);
    }

    void tracesFollowTheMask()
    {
        const int saved = ErrorHandler::Instance().GetReportingMask();
        ErrorHandler::Instance().SetReportingMask(0);
        CollectingHandler handler;
        ErrorHandler::SetInterface(&handler);
        static int traces;
        traces = 0;
        const QtMessageHandler previous = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& msg) {
            if (msg.contains(QLatin1String("caught")))
                ++traces;
        });
        QVERIFY(!GuardedBinding("unit.cpp", 77, throwing(2)));
        qInstallMessageHandler(previous);
        QCOMPARE(traces, 0); // no trace with the bit clear
        QCOMPARE(handler.reports.size(), 1); // reported all the same
        ErrorHandler::SetInterface(nullptr);
        ErrorHandler::Instance().SetReportingMask(ErrorHandler::Assertions);
        QTest::ignoreMessage(QtCriticalMsg, QRegularExpression(QStringLiteral("assertion failed: 1 == 2")));
        BREVAN_ASSERT(1 == 2);
        BREVAN_ASSERT(1 == 1);
        ErrorHandler::Instance().SetReportingMask(saved);
    }
};

QTEST_MAIN(BindingTest)
#include "bindingtest.moc"
