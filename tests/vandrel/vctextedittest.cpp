#include <vandrel/vctextedit.h>

#include "observercounter.h"

#include <QLineEdit>
#include <QVBoxLayout>
#include <QtTest>

namespace {

values::Tree& tree() { return *values::Tree::Instance(); }

values::StringValue* addText(const QString& path, const QString& text)
{
    auto* value = new values::StringValue(text);
    tree().Add(path, value);
    return value;
}

// A field made the way a derived class may do it: Initialize() once more after the constructor.
class RenamedTextEdit : public VCTextEdit
{
public:
    RenamedTextEdit() { Initialize(QStringLiteral("notes")); }
};

// A window with the field and a line edit to take the focus away.
struct Form
{
    Form()
    {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(edit);
        layout->addWidget(other);
        window.resize(600, 500);
        window.show();
        QApplication::setActiveWindow(&window);
    }
    bool leaveField()
    {
        edit->setFocus();
        other->setFocus();
        return other->hasFocus();
    }
    QWidget window;
    VCTextEdit* edit = new VCTextEdit;
    QLineEdit* other = new QLineEdit;
};

} // namespace

class VCTextEditTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        tree().Clear();
        values::UndoRecorder::Instance().Clear();
    }

    void typedTextIsWrittenOnFocusLoss()
    {
        auto* notes = addText(QStringLiteral("/log/notes"), QStringLiteral("start"));
        Form form;
        QVERIFY(QTest::qWaitForWindowActive(&form.window));
        QVERIFY(!form.edit->isEnabled());
        QVERIFY(form.edit->SetText_ValuePath(QStringLiteral("/log/notes")));
        QVERIFY(form.edit->isEnabled());
        QCOMPARE(form.edit->GetText(), QStringLiteral("start"));
        Counter counter;
        counter.watch(notes);
        QSignalSpy finally(form.edit, &VCTextEdit::signalTextFinallyChanged);

        form.edit->setFocus();
        QTest::keyClick(form.edit, Qt::Key_End, Qt::ControlModifier);
        QTest::keyClicks(form.edit, QStringLiteral(" one"));
        QTest::keyClick(form.edit, Qt::Key_Return); // a new line, no commit
        QTest::keyClicks(form.edit, QStringLiteral("two"));
        QCOMPARE(notes->GetValue(), QStringLiteral("start"));
        QVERIFY(counter.codes.isEmpty());

        QVERIFY(form.leaveField());
        QCOMPARE(notes->GetValue(), QStringLiteral("start one\ntwo"));
        QCOMPARE(finally.count(), 1);
        // Written once with the field as originator: no Update came back to echo it.
        QCOMPARE(counter.codes, QList<TChangeCode>{ValueChanged});
        QCOMPARE(values::UndoRecorder::Instance().Count(), 0);

        // A fixed width and height whatever the window does; a double click selects everything.
        QCOMPARE(form.edit->width(), 260);
        QVERIFY(form.edit->height() >= 60);
        form.window.resize(900, 700);
        QCOMPARE(form.edit->width(), 260);
        QCOMPARE(form.edit->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
        form.edit->setPlainText(QStringLiteral("several words here"));
        QTest::mouseDClick(form.edit->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(10, 8));
        QCOMPARE(form.edit->textCursor().selectedText(), QStringLiteral("several words here"));
    }

    void setTextAndValueChanges()
    {
        auto* notes = addText(QStringLiteral("/notes"), QString());
        VCTextEdit edit;
        QVERIFY(edit.SetText(QStringLiteral("<b>free</b>"))); // unbound: only the display
        QCOMPARE(edit.GetText(), QStringLiteral("free"));
        QVERIFY(edit.SetText_ValuePath(QStringLiteral("/notes")));
        Counter counter;
        counter.watch(notes);

        QVERIFY(edit.SetText(QStringLiteral("<b>bold</b> text")));
        QCOMPARE(notes->GetValue(), QStringLiteral("<b>bold</b> text"));
        QCOMPARE(edit.GetText(), QStringLiteral("bold text"));
        QCOMPARE(counter.count(ValueChanged), 1);
        // A change from elsewhere is shown, and the field writes it back once more as its own.
        notes->SetValue(QStringLiteral("from elsewhere"), nullptr);
        QCOMPARE(edit.GetText(), QStringLiteral("from elsewhere"));
        QCOMPARE(counter.count(ValueChanged), 3);

        // Two fields on one value answer each other once, then stop.
        VCTextEdit second;
        QVERIFY(second.SetValueBase(notes));
        notes->SetValue(QStringLiteral("shared"), nullptr);
        QCOMPARE(edit.GetText(), QStringLiteral("shared"));
        QCOMPARE(second.GetText(), QStringLiteral("shared"));
    }

    void selectionAcrossValueChange_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("selectWhole");
        QTest::addColumn<QString>("selected");
        QTest::newRow("whole line") << "old line" << true << "new text";
        QTest::newRow("whole of two lines") << "old\nlines" << true << "";
        QTest::newRow("part") << "old line" << false << "";
    }
    void selectionAcrossValueChange()
    {
        QFETCH(QString, text);
        QFETCH(bool, selectWhole);
        QFETCH(QString, selected);
        auto* notes = addText(QStringLiteral("/notes"), text);
        VCTextEdit edit;
        QVERIFY(edit.SetText_ValuePath(QStringLiteral("/notes")));
        if (selectWhole) {
            edit.selectAll();
        } else {
            QTextCursor cursor = edit.textCursor();
            cursor.movePosition(QTextCursor::NextWord, QTextCursor::KeepAnchor);
            edit.setTextCursor(cursor);
        }
        notes->SetValue(QStringLiteral("new text"), nullptr);
        QCOMPARE(edit.textCursor().selectedText(), selected);
    }

    void stateAndBinding()
    {
        auto* notes = addText(QStringLiteral("/notes"), QStringLiteral("n"));
        auto* count = new values::IntValue(3);
        tree().Add(QStringLiteral("/count"), count);
        VCTextEdit edit;
        QCOMPARE(edit.objectName(), QStringLiteral("VCTextEdit"));
        QVERIFY(!edit.SetText_ValuePath(QStringLiteral("/count")));
        QVERIFY(!edit.SetValueBase(count));
        QVERIFY(!edit.SetValueBase(nullptr));
        QVERIFY(!edit.GetValuePtr());
        QVERIFY(!edit.isEnabled());

        QVERIFY(edit.SetValueBase(notes));
        QCOMPARE(edit.GetValuePtr(), notes);
        QVERIFY(edit.isEnabled());
        notes->SetState(Disabled);
        QVERIFY(!edit.isEnabled());
        notes->SetState(Enabled);
        QVERIFY(edit.isEnabled());

        QVERIFY(!edit.SetText_ValuePath(QStringLiteral("/none")));
        QVERIFY(!notes->IsAttached(&edit));
        QVERIFY(edit.SetText_ValuePath(QStringLiteral("/notes")));
        // Removed: the field lets go of it and keeps its look; focus loss then only signals.
        notes->SetState(Removed);
        QVERIFY(!edit.GetValuePtr());
        QVERIFY(edit.isEnabled());
        QCOMPARE(edit.GetText(), QStringLiteral("n"));
        QSignalSpy finally(&edit, &VCTextEdit::signalTextFinallyChanged);
        edit.setText(QStringLiteral("changed"));
        QFocusEvent focusOut(QEvent::FocusOut, Qt::TabFocusReason);
        QApplication::sendEvent(&edit, &focusOut);
        QCOMPARE(finally.count(), 1);
        QCOMPARE(notes->GetValue(), QStringLiteral("n"));
    }

    void destructionWritesTheText_data()
    {
        QTest::addColumn<bool>("shown");
        QTest::newRow("shown") << true;
        QTest::newRow("hidden") << false;
    }
    void destructionWritesTheText()
    {
        QFETCH(bool, shown);
        auto* notes = addText(QStringLiteral("/notes"), QStringLiteral("old"));
        auto* edit = new VCTextEdit;
        QVERIFY(edit->SetText_ValuePath(QStringLiteral("/notes")));
        edit->setVisible(shown);
        edit->setPlainText(QStringLiteral("last words"));
        delete edit;
        QCOMPARE(notes->GetValue(), QStringLiteral("last words"));
        QCOMPARE(notes->ObserverCount(), 0);
    }

    void initializeAgainWritesTwice()
    {
        auto* notes = addText(QStringLiteral("/notes"), QString());
        RenamedTextEdit edit;
        QCOMPARE(edit.objectName(), QStringLiteral("notes"));
        QVERIFY(edit.SetText_ValuePath(QStringLiteral("/notes")));
        Counter counter;
        counter.watch(notes);
        edit.setPlainText(QStringLiteral("x"));
        QFocusEvent focusOut(QEvent::FocusOut, Qt::TabFocusReason);
        QApplication::sendEvent(&edit, &focusOut);
        QCOMPARE(counter.count(ValueChanged), 2);
    }
};

QTEST_MAIN(VCTextEditTest)
#include "vctextedittest.moc"
