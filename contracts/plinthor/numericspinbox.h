#pragma once

#include <plinthor/plinthor_export.h>

#include <QSpinBox>
#include <QString>

/**
 * \brief A QSpinBox whose text a derived class maps to and from its integer.
 *
 * The box shows every number through mapValueToText() and reads the text through mapTextToValue().
 * The defaults show and read plain integers, as QSpinBox does; a derived class overrides both to
 * show names or formatted numbers.
 *
 * Reading text. The text is read when an edit ends (Return, focus loss, a step after typing), not on
 * every keystroke: keyboard tracking is off, since a mapping may be costly or act on a model.
 * mapTextToValue() reads the text itself (QAbstractSpinBox::text(), prefix and suffix included). A
 * text that it refuses leaves the number as it was and the box shows that number's text again; a
 * number outside the range is clamped to it. Every non-empty text is passed on to the mapping: the
 * box does not judge text by itself, so mappings may accept words.
 *
 * Keys. The arrows, Page Up/Down and the wheel step as in QSpinBox. Escape drops typed text that has
 * not been read yet and shows the current number again; without such text, Escape passes on (to a
 * dialog, say). With EnableWrapAround(true), a step beyond one end goes on from the other.
 */
class PLINTHOR_EXPORT NumericSpinBox : public QSpinBox
{
    Q_OBJECT

public:
    /// A box of 0 to 99 at 0, without wrap-around; \a name, when not null, becomes the object name.
    explicit NumericSpinBox(QWidget* parent = nullptr, const char* name = nullptr);
    ~NumericSpinBox() override;

protected:
    /// Handles Escape for the box and its line edit (see the class description).
    bool eventFilter(QObject* watched, QEvent* event) override;

public:
    /// Lets steps beyond the last number go on from the first, and the other way round.
    virtual void EnableWrapAround(bool enable);

protected:
    /**
     * \brief The number that the box's current text stands for. Sets \a *ok (when not null) to
     * whether the text could be read; the result is then unused.
     *
     * The default reads an integer in the C locale or the application's, without prefix and suffix.
     */
    virtual int mapTextToValue(bool* ok);
    /// The text of \a value; the default is that of QSpinBox.
    virtual QString mapValueToText(int value);

    /// Reimplemented to read through mapTextToValue(); refused text gives the current number.
    int valueFromText(const QString& text) const override;
    /// Reimplemented to show through mapValueToText().
    QString textFromValue(int value) const override;
    /// Reimplemented to accept every non-empty text (the mapping judges it when the edit ends).
    QValidator::State validate(QString& input, int& pos) const override;

private:
    bool hasUnreadText() const;
};
