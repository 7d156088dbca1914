#include <plinthor/undorecording.h>
#include <values/values.h>

#include <QtTest>

namespace {

values::Tree& tree()
{
    return *values::Tree::Instance();
}

class Listener : public values::IUndoRecordingsListener
{
public:
    void NotifyUndoRecordingsChanged() override { ++calls; }
    int calls = 0;
};

QStringList descriptions(values::UndoRecordingsToValueClient& client)
{
    const std::list<QString> all = client.GetUndoRecordingDescriptions();
    return QStringList(all.begin(), all.end());
}

QStringList redoDescriptions(values::UndoRecordingsToValueClient& client)
{
    const std::list<QString> all = client.GetRedoRecordingDescriptions();
    return QStringList(all.begin(), all.end());
}

template <class F>
void userEdit(const UndoRecordingControlBase& control, F&& write)
{
    GuiUndoRecordingHelper span(&control, QString());
    write();
}

} // namespace

class UndoRecorderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        tree().Clear();
        values::UndoRecorder::Instance().Clear();
        values::UndoRecorder::Instance().SetHistoryLimit(100);
    }

    void spansMakeRecordings()
    {
        auto* gain = new values::IntNumeric(10, 0, 60, 1);
        auto* mode = new values::ValueSelection;
        QVERIFY(tree().Add(QStringLiteral("/receiver/gain"), gain));
        QVERIFY(tree().Add(QStringLiteral("/receiver/mode"), mode));
        mode->AddItem(QStringLiteral("AM"), 0, 1, nullptr);
        mode->AddItem(QStringLiteral("FM"), 1, 2, nullptr);
        values::UndoRecordingsToValueClient client(QStringLiteral("/receiver"));
        Listener listener;
        client.AddUndoRecordingsListener(&listener);
        client.AddUndoRecordingsListener(&listener);

        gain->SetValue(15, nullptr); // an application write: not recorded
        QCOMPARE(descriptions(client), QStringList());

        UndoRecordingControlBase control;
        userEdit(control, [&] { gain->SetValue(20, nullptr); });
        userEdit(control, [&] { mode->SelectKey(2, nullptr); });
        QCOMPARE(descriptions(client),
                 (QStringList{QStringLiteral("/receiver/mode: AM \u2192 FM"), QStringLiteral("/receiver/gain: 15 \u2192 20")}));
        QCOMPARE(listener.calls, 2);

        // A switched-off control writes but records nothing; so does a span around no write.
        UndoRecordingControlBase off;
        off.SetUndoRecordingEnabled(false);
        userEdit(off, [&] { gain->SetValue(30, nullptr); });
        userEdit(control, [] {});
        { GuiUndoRecordingHelper nothing(nullptr, QString()); gain->SetValue(31, nullptr); }
        QCOMPARE(gain->GetValue(), 31.0);
        QCOMPARE(descriptions(client).size(), 2);
        QCOMPARE(listener.calls, 2);

        // Undo of the newest puts the selection back; the undo itself is not recorded.
        QVERIFY(client.ExecuteUndo(1));
        QCOMPARE(mode->GetCurrentKey(), 1L);
        QCOMPARE(descriptions(client), QStringList{QStringLiteral("/receiver/gain: 15 \u2192 20")});
        QCOMPARE(listener.calls, 3);
        QVERIFY(client.ExecuteUndo(1));
        QCOMPARE(gain->GetValue(), 15.0); // back to before the recorded edit
        QVERIFY(!client.ExecuteUndo(1));  // nothing left
        QVERIFY(!client.ExecuteUndo(0));
    }

    void undoOfEveryKind()
    {
        auto* flag = new values::BoolValue(false);
        auto* count = new values::IntValue(1);
        auto* stamp = new values::Int64Value(100);
        auto* text = new values::StringValue(QStringLiteral("old"));
        auto* level = new values::DoubleNumeric(0.5, 0, 1);
        auto* multi = new values::StringMultiSelection(0);
        auto* list = new values::CheckedStringVector({values::CheckedString(QStringLiteral("a"), true)});
        for (auto p : std::initializer_list<std::pair<const char*, values::ValueBase*>>{
                 {"/k/flag", flag}, {"/k/count", count}, {"/k/stamp", stamp}, {"/k/text", text},
                 {"/k/level", level}, {"/k/multi", multi}, {"/k/list", list}})
            QVERIFY(tree().Add(QString::fromLatin1(p.first), p.second));
        multi->AddItem(1, QStringLiteral("x"), true);
        multi->AddItem(2, QStringLiteral("y"));
        UndoRecordingControlBase control;
        userEdit(control, [&] { flag->SetValue(true, nullptr); });
        userEdit(control, [&] { count->SetValue(2, nullptr); });
        userEdit(control, [&] { stamp->SetValue(200, nullptr); });
        userEdit(control, [&] { text->SetValue(QStringLiteral("new"), nullptr); });
        userEdit(control, [&] { level->SetPendingValue(0.75, nullptr); level->CommitPendingValue(nullptr); });
        userEdit(control, [&] { multi->SetItemChecked(2, true, nullptr); });
        userEdit(control, [&] { multi->UncheckAll(nullptr); });
        userEdit(control, [&] { list->SetValue({}, nullptr); });
        values::UndoRecordingsToValueClient client(QStringLiteral("/k"));
        QCOMPARE(descriptions(client).size(), 8);
        QCOMPARE(descriptions(client).value(0), QStringLiteral("/k/list: 1:a; \u2192 "));
        QVERIFY(client.ExecuteUndo(8)); // all of them, newest first
        QCOMPARE(flag->GetValue(), false);
        QCOMPARE(count->GetValue(), 1);
        QCOMPARE(stamp->GetValue(), 100LL);
        QCOMPARE(text->GetValue(), QStringLiteral("old"));
        QCOMPARE(level->GetValue(), 0.5);
        QCOMPARE(multi->GetCheckedKeys(), std::vector<unsigned>{1});
        QCOMPARE(list->GetValue().size(), size_t(1));
        QVERIFY(descriptions(client).isEmpty());
    }

    void oneSpanManyWritesIsOneRecording()
    {
        auto* a = new values::IntValue(1);
        auto* b = new values::IntValue(5);
        QVERIFY(tree().Add(QStringLiteral("/s/a"), a));
        QVERIFY(tree().Add(QStringLiteral("/s/b"), b));
        UndoRecordingControlBase control;
        userEdit(control, [&] {
            a->SetValue(2, nullptr);
            b->SetValue(6, nullptr);
            a->SetValue(3, nullptr);
        });
        values::UndoRecordingsToValueClient client(QStringLiteral("/s"));
        QCOMPARE(descriptions(client), QStringList{QStringLiteral("/s/a: 1 \u2192 3 (+1)")});
        QVERIFY(client.ExecuteUndo(1));
        QCOMPARE(a->GetValue(), 1);
        QCOMPARE(b->GetValue(), 5);
    }

    void basePathsAndInterleaving()
    {
        auto* x = new values::IntValue(0);
        auto* y = new values::IntValue(0);
        QVERIFY(tree().Add(QStringLiteral("/left/x"), x));
        QVERIFY(tree().Add(QStringLiteral("/leftover/y"), y));
        UndoRecordingControlBase control;
        userEdit(control, [&] { x->SetValue(1, nullptr); });
        userEdit(control, [&] { y->SetValue(1, nullptr); });
        userEdit(control, [&] { x->SetValue(2, nullptr); });
        values::UndoRecordingsToValueClient left(QStringLiteral("/left"));
        values::UndoRecordingsToValueClient all(QStringLiteral("/"));
        QCOMPARE(descriptions(left).size(), 2); // "/leftover" is not under "/left"
        QCOMPARE(descriptions(all).size(), 3);
        QVERIFY(!left.ExecuteUndo(3));
        QCOMPARE(x->GetValue(), 2); // a refused undo changes nothing
        QVERIFY(left.ExecuteUndo(2));
        QCOMPARE(x->GetValue(), 0);
        QCOMPARE(y->GetValue(), 1); // the other branch stays
        QCOMPARE(descriptions(all).size(), 1);
    }

    void historyLimitAndRemovedValues()
    {
        auto* v = new values::IntValue(0);
        auto* w = new values::IntValue(0);
        QVERIFY(tree().Add(QStringLiteral("/h/v"), v));
        QVERIFY(tree().Add(QStringLiteral("/h/w"), w));
        values::UndoRecorder::Instance().SetHistoryLimit(3);
        UndoRecordingControlBase control;
        for (int i = 1; i <= 5; ++i)
            userEdit(control, [&] { v->SetValue(i, nullptr); });
        userEdit(control, [&] { w->SetValue(9, nullptr); });
        values::UndoRecordingsToValueClient client(QStringLiteral("/h"));
        QCOMPARE(descriptions(client), (QStringList{"/h/w: 0 \u2192 9", "/h/v: 4 \u2192 5", "/h/v: 3 \u2192 4"}));
        Listener listener;
        client.AddUndoRecordingsListener(&listener);
        // A value that leaves the tree takes its recordings with it.
        QVERIFY(tree().Remove(QStringLiteral("/h/v")));
        QCOMPARE(descriptions(client), QStringList{"/h/w: 0 \u2192 9"});
        QCOMPARE(listener.calls, 1);
    }

    // An edit whose span wrote a value that went before the span closed keeps the other writes, and
    // still counts under the path of the value that went.
    void valueGoneDuringItsSpan()
    {
        auto* a = new values::IntValue(0);
        auto* b = new values::IntValue(0);
        QVERIFY(tree().Add(QStringLiteral("/g/a"), a));
        QVERIFY(tree().Add(QStringLiteral("/g/b"), b));
        UndoRecordingControlBase control;
        userEdit(control, [&] {
            a->SetValue(1, nullptr);
            b->SetValue(2, nullptr);
            QVERIFY(tree().Remove(QStringLiteral("/g/a")));
        });
        values::UndoRecordingsToValueClient underA(QStringLiteral("/g/a"));
        values::UndoRecordingsToValueClient underB(QStringLiteral("/g/b"));
        QCOMPARE(descriptions(underB), QStringList{"/g/b: 0 → 2"});
        QCOMPARE(descriptions(underA), QStringList{"/g/b: 0 → 2"});
        QVERIFY(values::UndoRecorder::Instance().Undo(QStringLiteral("/g/a"), 1));
        QCOMPARE(b->GetValue(), 0);
    }

    void undoSurvivesObserverThatRemovesAValue()
    {
        auto* a = new values::IntValue(0);
        auto* b = new values::IntValue(0);
        QVERIFY(tree().Add(QStringLiteral("/u/a"), a));
        QVERIFY(tree().Add(QStringLiteral("/u/b"), b));
        UndoRecordingControlBase control;
        userEdit(control, [&] {
            b->SetValue(1, nullptr);
            a->SetValue(1, nullptr);
        });
        // While the undo restores a, an observer removes b, whose step is still to run.
        class Remover : public IObserver
        {
        public:
            void Update(Observable*, TChangeCode code) override
            {
                if (code == ValueChanged)
                    values::Tree::Instance()->Remove(QStringLiteral("/u/b"));
            }
        } remover;
        a->Attach(&remover);
        values::UndoRecordingsToValueClient client(QStringLiteral("/u"));
        QVERIFY(!client.ExecuteUndo(1)); // b could not be restored
        QCOMPARE(a->GetValue(), 0);
        a->Detach(&remover);
    }

    void redo()
    {
        auto* gain = new values::IntNumeric(10, 0, 60, 1);
        auto* level = new values::IntNumeric(0, 0, 60, 1);
        QVERIFY(tree().Add(QStringLiteral("/rx/gain"), gain));
        QVERIFY(tree().Add(QStringLiteral("/rx/level"), level));
        values::UndoRecordingsToValueClient client(QStringLiteral("/rx"));
        Listener listener;
        client.AddUndoRecordingsListener(&listener);
        UndoRecordingControlBase control;
        userEdit(control, [&] { gain->SetValue(20, nullptr); });
        userEdit(control, [&] { gain->SetValue(30, nullptr); });
        userEdit(control, [&] { level->SetValue(5, nullptr); });
        const QStringList edits = descriptions(client); // level 0→5, gain 20→30, gain 10→20
        QVERIFY(!client.ExecuteRedo(1));

        // Undo two, redo one: the one undone last comes back first, reading as it did.
        QVERIFY(client.ExecuteUndo(2));
        QCOMPARE(gain->GetValue(), 20.0);
        QCOMPARE(level->GetValue(), 0.0);
        QCOMPARE(redoDescriptions(client), (QStringList{edits[1], edits[0]}));
        const int heard = listener.calls;
        QVERIFY(client.ExecuteRedo(1));
        QCOMPARE(listener.calls, heard + 1);
        QCOMPARE(gain->GetValue(), 30.0);
        QCOMPARE(level->GetValue(), 0.0);
        QCOMPARE(descriptions(client), (QStringList{edits[1], edits[2]}));
        QCOMPARE(redoDescriptions(client), QStringList{edits[0]});
        QVERIFY(!client.ExecuteRedo(2)); // asks for more than there is: nothing runs
        QCOMPARE(level->GetValue(), 0.0);

        // Undo, redo, undo: the same recording goes back and forth.
        QVERIFY(client.ExecuteUndo(1));
        QVERIFY(client.ExecuteRedo(1));
        QVERIFY(client.ExecuteUndo(1));
        QCOMPARE(gain->GetValue(), 20.0);
        QCOMPARE(redoDescriptions(client), (QStringList{edits[1], edits[0]}));

        // Another branch lists only its own; a new recording drops everything a redo could bring back.
        values::UndoRecordingsToValueClient levels(QStringLiteral("/rx/level"));
        QCOMPARE(redoDescriptions(levels), QStringList{edits[0]});
        userEdit(control, [&] { gain->SetValue(40, nullptr); });
        QCOMPARE(redoDescriptions(client), QStringList());
        QVERIFY(!client.ExecuteRedo(1));

        // A value that goes takes its waiting redo with it.
        userEdit(control, [&] { level->SetValue(9, nullptr); });
        QVERIFY(client.ExecuteUndo(1));
        QCOMPARE(redoDescriptions(client).size(), 1);
        QVERIFY(tree().Remove(QStringLiteral("/rx/level")));
        QCOMPARE(redoDescriptions(client), QStringList());
        QVERIFY(!client.ExecuteRedo(1));

        // The redo list is bounded like the history.
        values::UndoRecorder::Instance().SetHistoryLimit(2);
        for (int v : {41, 42, 43})
            userEdit(control, [&] { gain->SetValue(v, nullptr); });
        QVERIFY(client.ExecuteUndo(2));
        values::UndoRecorder::Instance().SetHistoryLimit(1);
        QCOMPARE(redoDescriptions(client).size(), 1);
        QVERIFY(client.ExecuteRedo(1));
        QCOMPARE(gain->GetValue(), 42.0);
        client.RemoveUndoRecordingsListener(&listener);
    }

    void actionGroups()
    {
        auto* gain = new values::IntNumeric(10, 0, 60, 1);
        auto* level = new values::IntNumeric(0, 0, 60, 1);
        QVERIFY(tree().Add(QStringLiteral("/rx/gain"), gain));
        QVERIFY(tree().Add(QStringLiteral("/rx/level"), level));
        values::UndoRecordingsToValueClient client(QStringLiteral("/rx"));
        UndoRecordingControlBase control;
        UndoActionGroup drag;
        const auto inDrag = [&](int v) {
            GuiUndoRecordingHelper span(&control, QString(), &drag);
            gain->SetValue(v, nullptr);
        };
        drag.Begin();
        inDrag(11);
        QCOMPARE(descriptions(client), QStringList{QStringLiteral("/rx/gain: 10 \u2192 11")});
        inDrag(12);
        inDrag(13);
        // One recording; its text, read before, is made again for where the drag ended.
        QCOMPARE(descriptions(client), QStringList{QStringLiteral("/rx/gain: 10 \u2192 13")});

        // A recording of something else in between: the action goes on in a recording of its own.
        userEdit(control, [&] { level->SetValue(1, nullptr); });
        inDrag(14);
        QCOMPARE(descriptions(client).size(), 3);
        drag.End();
        inDrag(15);
        QCOMPARE(descriptions(client).size(), 4);
        drag.Begin();
        inDrag(16); // a new action never joins the one before
        QCOMPARE(descriptions(client).size(), 5);

        QVERIFY(client.ExecuteUndo(5));
        QCOMPARE(gain->GetValue(), 10.0);
        QCOMPARE(level->GetValue(), 0.0);
        // An undone action's recording takes no more writes, even with the group still open.
        inDrag(17);
        QCOMPARE(descriptions(client), QStringList{QStringLiteral("/rx/gain: 10 \u2192 17")});
    }
};

QTEST_GUILESS_MAIN(UndoRecorderTest)
#include "undorecordertest.moc"
