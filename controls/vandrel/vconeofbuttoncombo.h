#pragma once

#include <vandrel/vandrel_export.h>

#include <values/values.h>

#include <QPixmap>
#include <QString>
#include <QToolBar>

#include <list>
#include <memory>

class QObject;
class ResortPopupMenu;
class VCComboBoxButtonStyle;
class VCOneOfButton;

/**
 * \brief A VCOneOfButton beside a narrow VCComboBoxButtonStyle, both on one selection
 * (values::ValueSelection): the button toggles the selection between the strings of its current pair,
 * and the combo chooses the value, and with it the pair.
 *
 * The control keeps a list of pairs (an in string and an out string, with their pictures). The combo
 * offers only the selection's items that start or end a pair. When the selection's value becomes the in
 * string of a pair, from anywhere, the button takes over that pair and its pictures; a value that starts
 * no pair leaves the button as it is.
 *
 * The two parts bind themselves and follow the selection's state each on its own; the compound widget
 * is never disabled. A removed or destroyed selection is let go of.
 */
class VANDREL_EXPORT VCOneOfButtonCombo : public QToolBar, public IObserver
{
    Q_OBJECT

public:
    /// One pair of strings the button toggles between, with the pictures of its two states.
    struct OneOfSelection
    {
        QString m_Value;      ///< the item string of the in state
        QString m_OutValue;   ///< the item string a click writes to leave it; may be empty
        QPixmap m_InPicture;  ///< shown while the value is m_Value
        QPixmap m_OutPicture; ///< shown while the value is anything else
    };

    /**
     * \brief A 40 by 24 compound named \a name, unbound and disabled in both parts; \a flag: the combo
     * keeps its additional entries usable while disabled.
     */
    explicit VCOneOfButtonCombo(QWidget* parent = nullptr, const char* name = nullptr, bool flag = false);
    ~VCOneOfButtonCombo() override;

    /**
     * \brief Binds button and combo to the selection at \a path and makes (\a value, \a outValue) the
     * only pair. True only when the button, the combo and the compound all found the selection.
     */
    bool SetSelection_ValuePath(const QString& path, QString value, QString outValue, QPixmap inPicture,
                                QPixmap outPicture);
    /// As above with XPM tables; null tables give empty pictures.
    bool SetSelection_ValuePath(const QString& path, QString value, QString outValue, const char* const* inPicture,
                                const char* const* outPicture);
    /// Appends a pair and renews the combo's entries. True (the list is not empty).
    bool AddSelection(QString value, QString outValue, QPixmap inPicture, QPixmap outPicture);
    /// As above with XPM tables.
    bool AddSelection(QString value, QString outValue, const char* const* inPicture, const char* const* outPicture);
    /// Binds the combo's second selection; false without a combo or for an unknown path.
    bool SetSecondSelection_ValuePath(const QString& path);
    /// Told by the combo after a pick: the button takes over the pair that \a value starts, if any.
    void NewValueFromCombo(QString value);
    /// Writes \a value to the selection (as its item name), unless the selection is disabled.
    void Select(QString value);
    /// Whether \a value is the in or the out string of some pair.
    bool isValueValid(QString value);
    /// Sets the combo's text.
    void setCurrentItem(QString item);
    /// Adds an entry \a text to the combo's menu that calls \a member of \a receiver.
    void AddMenuEntry(QString text, QObject* receiver, const char* member);
    /// The combo's menu, or null.
    ResortPopupMenu* GetPopup();
    /// The button's picture for items with none of their own.
    void SetDefaultPicture(QPixmap picture);
    /// As above from an XPM table.
    void SetDefaultPicture(const char* const* xpm);
    /// Sets the tool-tip of both parts.
    void SetToolTipText(QString text);

    void Update(Observable* source, TChangeCode code) override;

private:
    struct Buddy;

    VCComboBoxButtonStyle* m_pCombo;
    VCOneOfButton* m_pButton;
    std::list<OneOfSelection> m_Selections;
    values::ValueSelection* m_pValueSelection;
    std::unique_ptr<Buddy> m_pBuddy; // how the combo reaches isValueValid() and NewValueFromCombo()
};
