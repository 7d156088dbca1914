#pragma once

#include <vandrel/vandrel_export.h>

#include <values/values.h>

#include <QPixmap>
#include <QString>
#include <QWidget>

class QLabel;
class QMouseEvent;

/**
 * \brief A small lamp with a text beside it.
 *
 * The lamp shows a boolean (lit or dark, two pictures that SetTruePix() and SetFalsePix() replace) or a
 * colour index (1 red, 2 orange, 3 green, any other number gray). The two bindings replace each other.
 * The text is fixed (SetText()) or follows a string value.
 *
 * Unbound, the lamp is disabled and shows no picture. The boolean and the colour index enable and
 * disable it by their state; the text value never does. A removed value is let go and the lamp keeps
 * its look. A clickable lamp inverts its boolean on a press of any mouse button; that write is no undo
 * recording.
 */
class VANDREL_EXPORT VCLED : public QWidget, public IObserver
{
    Q_OBJECT

public:
    /// A disabled lamp named "LED" + \a name (null for none), with \a name as tool-tip.
    VCLED(QWidget* parent, const char* name, bool clickable);
    ~VCLED() override;

    /// Names the lamp "LED" + \a name, its text "LEDText" + \a name and its picture "LEDPict" + \a name.
    void setObjectName(const QString& name);

    /**
     * \brief Binds the lamp to the boolean at \a path, in place of the boolean or colour index bound
     * before; false for an unknown path or a value of another kind, which leaves the lamp with neither.
     */
    bool SetBool_ValuePath(const QString& path);
    /// Binds the lamp to the colour index at \a path, as SetBool_ValuePath() does the boolean.
    bool SetColorIndex_ValuePath(const QString& path);
    /// Binds the text to the string value at \a path; false for an unknown path or another kind.
    bool SetText_ValuePath(const QString& path);
    /// Sets the text beside the lamp.
    void SetText(QString text);
    /// Replaces the picture of a lit lamp and shows the boolean; a null pixmap is kept as it is.
    void SetTruePix(QPixmap pix);
    /// Replaces the picture of a dark lamp and shows the boolean; a null pixmap is kept as it is.
    void SetFalsePix(QPixmap pix);

    void Update(Observable* source, TChangeCode code) override;

protected:
    /// Shows the boolean's picture (false when no boolean is bound).
    void updatePix();
    /// Reimplemented to invert the bound boolean when the lamp is clickable (no originator, no undo recording).
    void mousePressEvent(QMouseEvent* event) override;

private:
    values::Value<QString>* m_pTextValue;
    values::Value<bool>* m_pBoolValue;
    values::Value<int>* m_pColorIndexValue;
    QLabel* m_pTextLabel;
    QLabel* m_pPictLabel;
    QPixmap* m_pTruePix;
    QPixmap* m_pFalsePix;
    QString m_strTrueKey;
    QString m_strFalseKey;
    QString m_strState0Key;
    QString m_strState1Key;
    QString m_strState2Key;
    QString m_strState3Key;
    bool m_bClickable;
};
