#include <vandrel/vctextedit.h>

#include <vandrel/binding/binding.h>
#include <vandrel/binding/useraction_p.h>

#include <QCoreApplication>
#include <QEvent>
#include <QSizePolicy>
#include <QTextCursor>

VCTextEdit::VCTextEdit(QWidget* parent)
    : QTextEdit(parent)
    , m_bWritingValue(false)
    , m_bSuppressError(false)
    , m_pTextValue(nullptr)
{
    FollowOptionalRecordingDefault();
    VCTextEdit::Initialize(QStringLiteral("VCTextEdit"));
}

VCTextEdit::~VCTextEdit()
{
    // What the user typed last must not be lost with the field, shown or not; at shutdown the
    // values may be gone already.
    if (!QCoreApplication::closingDown())
        emit signalTextFinallyChanged(toPlainText());
    DetachValue(m_pTextValue, this);
}

void VCTextEdit::Initialize(const QString& name)
{
    setObjectName(name);
    setMinimumHeight(60);
    setFixedWidth(260);
    setSizePolicy(QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed));
    connect(this, SIGNAL(signalTextFinallyChanged(QString)), this, SLOT(slotSetTextFromControl(QString)));
    setEnabled(false);
    installEventFilter(this);
    // Mouse events land on the viewport, not on the frame: the double click must be caught there.
    viewport()->installEventFilter(this);
}

bool VCTextEdit::SetText_ValuePath(const QString& path)
{
    DetachValue(m_pTextValue, this);
    m_pTextValue = FindAndAttach<values::Value<QString>>(path, nullptr, this);
    const bool found = m_pTextValue != nullptr;
    // Showing the text writes it back, and an observer of that write may delete the editor.
    SyncObserver(m_pTextValue, this);
    return found;
}

bool VCTextEdit::SetValueBase(values::ValueBase* value)
{
    DetachValue(m_pTextValue, this);
    m_pTextValue = dynamic_cast<values::Value<QString>*>(value);
    if (!m_pTextValue)
        return false;
    m_pTextValue->Attach(this);
    SyncObserver(m_pTextValue, this);
    return true;
}

values::ValueBase* VCTextEdit::GetValuePtr() const
{
    return m_pTextValue;
}

bool VCTextEdit::SetText(const QString& text)
{
    // Shown before it is written, so that a destructor's commit after an observer deleted the editor
    // writes this text, not the one it replaced.
    QTextEdit::setText(text);
    if (m_pTextValue)
        m_pTextValue->SetValue(text, this);
    return true;
}

QString VCTextEdit::GetText() const
{
    return toPlainText();
}

void VCTextEdit::SuppressErrorMessage(bool suppress)
{
    m_bSuppressError = suppress;
}

bool VCTextEdit::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonDblClick:
        selectAll(); // the whole text, never a word
        return true;
    case QEvent::FocusOut:
        vandrel::InUserEditSpan(this, [this] { emit signalTextFinallyChanged(toPlainText()); });
        return true;
    default:
        return QAbstractScrollArea::eventFilter(watched, event);
    }
}

void VCTextEdit::slotSetTextFromControl(QString text)
{
    m_bWritingValue = true;
    // Not a rollback: an observer of the write may delete this editor.
    if (m_pTextValue && !SurvivesWrite(this, [this, &text] { m_pTextValue->SetValue(text, this); }))
        return;
    m_bWritingValue = false;
}

void VCTextEdit::Update(Observable* source, TChangeCode code)
{
    const bool fromValue = m_pTextValue && source == ObservableOf(m_pTextValue);
    if (code == StateChanged) {
        if (fromValue)
            ApplyValueState(m_pTextValue, this);
        return;
    }
    if (code == ValueDestroyed) {
        ForgetDestroyedValue(m_pTextValue, source);
        return;
    }
    // A selection of everything is the user's choice to replace the whole text: keep it across the
    // new text. Paragraph separators make a text of several lines never match here.
    const QTextCursor cursor = textCursor();
    const bool wholeSelected = cursor.hasSelection() && cursor.selectedText() == toPlainText();
    if (code != ValueChanged || !fromValue)
        return;
    const QString text = m_pTextValue->GetValue();
    if (m_bFollowingValue) {
        QTextEdit::setText(text); // the echo of another field on this value: show, don't answer
    } else {
        // Not a rollback: the editor may not outlive the answer it writes.
        m_bFollowingValue = true;
        if (!SurvivesWrite(this, [this, &text] { SetText(text); }))
            return;
        m_bFollowingValue = false;
    }
    if (wholeSelected)
        selectAll();
}
