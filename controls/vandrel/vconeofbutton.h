#pragma once

#include <vandrel/vcbutton.h>

/**
 * \brief A button that stands for one item of a selection (values::ValueSelection), named by its
 * string: it is in while the selection's value is that string.
 *
 * A click sets the selection to the button's string, or, when it is set already and an out string is
 * given, to the out string; each write is one undo recording with no originator, so the button redraws
 * from the value like everyone else. Several buttons on one selection make a row in which one is in.
 *
 * Without an out picture the button is checkable and shows in as checked. With an out picture it is
 * never checked and swaps between the in and the out picture. A click that wrote nothing (the button
 * was in and has no out string) leaves a checkable button unchecked until the focus leaves it.
 *
 * Unbound, the button is disabled and a click writes nothing. Bound, it is enabled and disabled by the
 * selection's state; a removed selection is let go of and the look stays.
 */
class VANDREL_EXPORT VCOneOfButton : public VCButton, public virtual UndoRecordingControlBase
{
    Q_OBJECT

public:
    /**
     * \brief A disabled, unbound button with \a text, showing \a inPicture; with a null \a outPicture
     * it is checkable. \a name becomes the object name; the tool-tip is \a name or else \a text.
     */
    VCOneOfButton(QString text, QWidget* parent, const char* const* inPicture, const char* const* outPicture,
                  const QString& name = QString());
    /// As above with pictures; this form always swaps pictures (it is never checkable).
    VCOneOfButton(QString text, QWidget* parent, QPixmap inPicture, QPixmap outPicture, const QString& name = QString());
    ~VCOneOfButton() override;

    /**
     * \brief Binds to the selection at \a path: in while its value is \a value; a click on the button
     * while in writes \a outValue, unless that is empty.
     *
     * False for an unknown path or a value that is not a selection. Strings the selection lacks are
     * reported as failed assertions when the mask asks for them; the binding stands.
     */
    bool SetSelection_ValuePath(const QString& path, const QString& value, QString outValue);
    /**
     * \brief Replaces both pictures and makes the button swap them (no longer checkable). Empty strings
     * keep the bound ones.
     */
    void SetPixmaps(QPixmap inPicture, QPixmap outPicture, QString value, QString outValue);
    /// As above from XPM tables; a null \a outPicture makes the button checkable.
    void SetPixmaps(const char* const* inPicture, const char* const* outPicture, QString value, QString outValue);

    /// The bound selection, null while unbound.
    values::ValueSelection* GetValueSelection() override;

protected:
    void Update(Observable* source, TChangeCode code) override;
    /// Reimplemented to show the value again when the focus leaves, undoing the toggle of a click that
    /// wrote nothing.
    void focusOutEvent(QFocusEvent* event) override;

protected Q_SLOTS:
    void slotButtonPressed() override;

private:
    void FreePixmaps();
    void Setup(const QString& text, const QPixmap& inPicture, QPixmap* outPicture);

    values::ValueSelection* m_OneOfValueSelection;
    QString m_Value;
    QString m_OutValue;
    QPixmap* m_pInPicture;
    QPixmap* m_pOutPicture;
};
