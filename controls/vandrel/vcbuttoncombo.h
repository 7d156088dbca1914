#pragma once

#include <vandrel/vandrel_export.h>

#include <QString>
#include <QWidget>

class QAction;
class ResortPopupMenu;
class VCButton;
class VCComboBoxButtonStyle;

/**
 * \brief A VCButton beside a narrow VCComboBoxButtonStyle, both bound to one selection
 * (values::ValueSelection): the button cycles the items, the combo drops down their list.
 *
 * The compound only builds and forwards; each part binds, writes and follows the value itself, so a
 * click on the button and a pick in the combo write the same value and each part follows the other.
 * It stands in a fixed frame of 40 by 24 pixels.
 */
class VANDREL_EXPORT VCButtonCombo : public QWidget
{
    Q_OBJECT

public:
    /**
     * \brief A compound named \a name + "Frame"; the button is named \a name, the combo \a name +
     * "Combo". \a flag: the combo keeps its additional entries usable while disabled; \a noButton:
     * the button is only a picture.
     */
    explicit VCButtonCombo(QWidget* parent = nullptr, const QString& name = QString(), bool flag = false,
                           bool noButton = false);

    /// Binds the combo, then the button, to the selection at \a path; true when both hold.
    bool SetValueSelection_ValuePath(const QString& path);
    /// The button part, which cycles the items.
    VCButton* GetButton();
    /// The combo part, which drops down the items.
    VCComboBoxButtonStyle* GetCombo();
    /// The combo's menu, or null.
    ResortPopupMenu* GetPopup();
    /// Adds \a action at the end of the combo's menu; not owned.
    void AddAction(QAction* action);
    /// Adds an entry \a text to the combo's menu that calls \a member of \a receiver.
    void AddMenuEntry(QString text, QObject* receiver, const char* member);
    /// The button's picture for items with none of their own (it shows an arrow until then).
    void SetDefaultPicture(const char* const* xpm);
    /// The button's picture for the item \a key; false without a button.
    bool SetSpecialPicture(int key, const char* const* xpm, bool down);
    /// Sets the tool-tip of both parts.
    void SetToolTipText(QString text);
    /// Sets the combo's text.
    void setCurrentItem(QString item);

public Q_SLOTS:
    /// Enables or disables the combo and the button; the frame itself stays as it is.
    virtual void setEnabled(bool enable);

protected:
    /// Reimplemented to paint nothing: the two parts alone show the compound and its state.
    void paintEvent(QPaintEvent* event) override;

private:
    VCComboBoxButtonStyle* m_pCombo;
    VCButton* m_pButton;
};
