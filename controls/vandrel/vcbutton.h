#pragma once

#include <vandrel/vandrel_export.h>

#include <plinthor/undorecording.h>
#include <values/values.h>

#include <QMap>
#include <QPixmap>
#include <QStringList>
#include <QToolButton>

#include <vector>

class VCButton;

/**
 * \brief Asked by a VCButton before each click takes effect.
 *
 * The application implements it and hands it to VCButton::SetButtonClickCallback(); the button does
 * not own it.
 */
class VANDREL_EXPORT IButtonClickCallback
{
public:
    /// A callback; it holds no state of its own.
    IButtonClickCallback() = default;
    /// Copies the callback.
    IButtonClickCallback(const IButtonClickCallback&) = default;
    /// Copies the callback.
    IButtonClickCallback& operator=(const IButtonClickCallback&) = default;
    virtual ~IButtonClickCallback();

    /// Called for each click of \a button, also each repeat tick; false forbids this click.
    virtual bool OnButtonClicked(VCButton* button) = 0;
};

/**
 * \brief A small square tool button that cycles through the items of a selection
 * (values::ValueSelection), or a plain push button with auto-repeat.
 *
 * Each click selects the next item, wrapping at the end, as one undo recording with the button as
 * originator. The button shows the picture of the current item: a special picture set for the item's
 * key, else the default picture. A special picture can hold the button down while its item is current,
 * so that a two-item selection reads as a toggle; an item with the default picture leaves the down
 * state as it was.
 *
 * Unbound, the button is disabled, and once enabled by the application its clicks change only its
 * picture. Bound, it is enabled and disabled by the state of the selection, and of a second value bound
 * with SetState_ValuePath(): the latest state change of either decides. When a value is removed the
 * button lets go of it and keeps its look.
 *
 * Held down by the mouse or by Space, Return or Enter, the button repeats its click after 500 ms and
 * then every repeat interval (setAutoRepeat(), SetRepeaterTime()), as long as it is held.
 *
 * In no-button mode the button is only a picture: it shows no press, no hover and never moves its
 * selection, but it still sends clicked() on each mouse release and on the release of any key.
 */
class VANDREL_EXPORT VCButton : public QToolButton, public IObserver, public virtual UndoRecordingControlBase
{
    Q_OBJECT
    /// The untranslated names of the selection's items (see GetItemList()).
    Q_PROPERTY(QStringList itemList READ GetItemList)
    /// The untranslated name of the current item (see GetCurrentText()).
    Q_PROPERTY(QString currentText READ GetCurrentText)

public:
    /**
     * \brief A disabled, unbound 24 by 24 button.
     *
     * \a name becomes the object name and, when not empty, the tool-tip. With \a noButton the button
     * behaves as a picture (see the class description).
     */
    explicit VCButton(QWidget* parent = nullptr, const QString& name = QString(), bool noButton = false);
    ~VCButton() override;

    /**
     * \brief Binds to the selection at \a path and shows its current item.
     *
     * False for an unknown path or a value that is not a selection: the button is then unbound and
     * keeps its items and picture.
     */
    bool SetValueSelection_ValuePath(const QString& path);
    /**
     * \brief Binds a second value at \a path whose state (not its contents) enables and disables the
     * button. False for an unknown path, which leaves no such value bound.
     */
    bool SetState_ValuePath(const QString& path);

    /// The bound selection, null while unbound.
    virtual values::ValueSelection* GetValueSelection();
    /// The untranslated name of the selection's current item; empty unbound or with no current item.
    QString GetCurrentText();
    /// The untranslated names of the selection's items in its order; empty unbound.
    QStringList GetItemList();
    /**
     * \brief Enables or disables the button. Disabling ends a running repeat; enabling shows the
     * current item's picture again.
     */
    virtual void setEnabled(bool on);

public Q_SLOTS:
    /**
     * \brief The reaction to a click: asks the callback, then, unless in no-button mode, selects the
     * next item, and for a checkable button emits ButtonToggled().
     */
    virtual void slotButtonPressed();

public:
    /// Repeats every 100 ms while held, or not at all. Hides the repeat of QAbstractButton, which stays off.
    virtual void setAutoRepeat(bool on);

    /// Sets the picture of items with no special picture and shows it unless the current item has one.
    void SetDefaultPicture(QPixmap picture);
    /// SetDefaultPicture() from an XPM table.
    void SetDefaultPicture(const char* const* xpm);
    /**
     * \brief Sets the picture shown while the item \a key is current, replacing an earlier one;
     * with \a down the button stands pressed meanwhile. Always true.
     */
    bool SetSpecialPicture(int key, QPixmap picture, bool down);
    /// SetSpecialPicture() from an XPM table.
    bool SetSpecialPicture(int key, const char* const* xpm, bool down);

    /**
     * \brief With \a on, shows a small downward arrow and no text, as the companion of a combo box.
     * Off leaves the picture as it is.
     */
    void SetBuddyMode(bool on);
    /// Sets the callback asked before each click takes effect; null for none. Not owned.
    void SetButtonClickCallback(IButtonClickCallback* callback);
    /// The time between repeat ticks in milliseconds while the button is held; 0 (the default) repeats nothing.
    void SetRepeaterTime(int milliseconds);
    /// Shows the item of \a key without writing the selection; an unknown key is ignored.
    void setCurrentItem(int key);
    /// The no-button flag, by reference, so that the caller may change it.
    bool& IsNoButton();

    void Update(Observable* source, TChangeCode code) override;

Q_SIGNALS:
    /// Emitted by a checkable button after each effective click, with its checked state.
    void ButtonToggled(bool checked);

protected:
    /// Reimplemented to run the repeat: a first delay of 500 ms, then a click every repeat interval.
    void timerEvent(QTimerEvent* event) override;
    /// Reimplemented to start the repeat; in no-button mode the button shows no press.
    void mousePressEvent(QMouseEvent* event) override;
    /// Reimplemented to stop the repeat; in no-button mode it sends clicked() instead.
    void mouseReleaseEvent(QMouseEvent* event) override;
    /// Reimplemented to click on Space, Return or Enter and start the repeat.
    void keyPressEvent(QKeyEvent* event) override;
    /// Reimplemented to stop the repeat; in no-button mode any released key sends clicked().
    void keyReleaseEvent(QKeyEvent* event) override;
    /// Reimplemented to stop the repeat and show the current item's picture and down state again.
    void focusOutEvent(QFocusEvent* event) override;
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    /// Reimplemented to show no hover in no-button mode.
    void enterEvent(QEnterEvent* event) override;
#else
    /// Reimplemented to show no hover in no-button mode.
    void enterEvent(QEvent* event) override;
#endif
    /// Reimplemented to show no hover in no-button mode.
    void leaveEvent(QEvent* event) override;

private:
    friend class VCOneOfButton; // asks the same click callback, and lets go of the same state value

    struct SpecialPicture
    {
        bool m_bDown;
        QPixmap m_Picture;
    };

    int AddItems2List();
    void RemoveItemsFromList();
    int DisplayCurrent();
    void SetItem();
    void setNextItem();
    void StartRepeater();
    void StopRepeater();
    void ShowCurrentText();

    QPixmap* m_pDefaultPicture;
    bool m_bBuddyMode;
    values::ValueSelection* m_pValueSelection;
    values::ValueBase* m_pStateValue;
    std::vector<int> m_Keys;
    int m_nCurrentIndex;
    QMap<int, SpecialPicture> m_SpecialPictures;
    int m_nRepeatTimer;
    int m_nRepeatInterval;
    int m_nDelayTimer;
    bool m_bRepeating;
    bool m_bNoButton;
    IButtonClickCallback* m_pClickCallback;
};
