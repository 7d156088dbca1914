#pragma once

#include <vandrel/vandrel_export.h>

#include <plinthor/undorecording.h>
#include <values/values.h>

#include <QTextEdit>

/**
 * \brief A multi-line text field bound to a text (values::Value<QString>), 260 pixels wide.
 *
 * The field writes its plain text to the value when it loses the focus, and when it is destroyed
 * (whether shown or not, unless the application is closing down), always with itself as originator.
 * A keystroke alone writes nothing; Return adds a line. Each change of the value from elsewhere
 * replaces the text, and a selection of the whole (single-line) text survives that. A double click
 * selects the whole text.
 *
 * Undo: records only on request (SetUndoRecordingEnabled(true) or
 * UndoRecordingControlBase::SetOptionalRecordingDefault(true)); then each commit by losing the focus is
 * one recording. The write of a field being destroyed is never recorded.
 *
 * Unbound, the field is disabled, and once enabled by the application losing the focus only emits
 * signalTextFinallyChanged(). Bound, it is enabled and disabled by the value's state; when the value
 * is removed it lets go of it and keeps its text.
 */
class VANDREL_EXPORT VCTextEdit : public QTextEdit, public IObserver, public virtual UndoRecordingControlBase
{
    Q_OBJECT

public:
    /// A disabled, unbound field named "VCTextEdit".
    explicit VCTextEdit(QWidget* parent = nullptr);
    /// Writes the text to the value, unless the application is closing down, then detaches.
    ~VCTextEdit() override;

    /**
     * \brief Binds to the text at \a path and shows it.
     *
     * False for an unknown path or a value that is no text: the field is then unbound.
     */
    bool SetText_ValuePath(const QString& path);
    /// Binds to \a value, already found by the caller; false (and unbound) when it is null or no text.
    bool SetValueBase(values::ValueBase* value);
    /// The bound text value, null while unbound.
    values::ValueBase* GetValuePtr() const;

    /**
     * \brief Writes \a text to the bound value (the field as originator) and shows it. Rich text
     * tags are interpreted for the display; GetText() gives the plain text. Always true.
     */
    bool SetText(const QString& text);
    /// The plain text shown.
    QString GetText() const;
    /// Stored only: the field has no messages to suppress.
    void SuppressErrorMessage(bool suppress);

    void Update(Observable* source, TChangeCode code) override;

Q_SIGNALS:
    /// The text as the user left it, on losing the focus and on destruction; written to the value.
    void signalTextFinallyChanged(QString text);

protected:
    /**
     * \brief Names the field \a name, fixes its width, disables it and connects its own signal to
     * slotSetTextFromControl(). The constructor does this with "VCTextEdit"; doing it again connects
     * a second time, so that each signal then writes twice.
     */
    virtual void Initialize(const QString& name);
    /// A double click selects all; losing the focus emits signalTextFinallyChanged() and is kept from the base.
    bool eventFilter(QObject* watched, QEvent* event) override;

protected Q_SLOTS:
    /// Writes \a text to the bound value with the field as originator; nothing while unbound.
    void slotSetTextFromControl(QString text);

private:
    bool m_bWritingValue;
    bool m_bSuppressError;
    values::Value<QString>* m_pTextValue;
    // Set while Update() shows a value: a second field on the same value answers the echo of the
    // first, and this ends that ping-pong after one round.
    bool m_bFollowingValue = false;
};
