#pragma once

#include <vandrel/vandrel_export.h>

#include <plinthor/undorecording.h>
#include <values/values.h>

#include <QObject>
#include <QPointer>

class QWidget;
class VCButton;

/**
 * \brief Something that a mouse wheel can turn: one notch up or one notch down.
 *
 * The application's wheel handling holds a pointer to it and calls it; Vandrel never does.
 */
class VANDREL_EXPORT IWheelConsumer
{
public:
    /// A consumer; it holds no state of its own.
    IWheelConsumer() = default;
    /// Copies the consumer.
    IWheelConsumer(const IWheelConsumer&) = default;
    /// Copies the consumer.
    IWheelConsumer& operator=(const IWheelConsumer&) = default;

    /// One notch up.
    virtual void Up() = 0;
    /// One notch down.
    virtual void Down() = 0;
};

/**
 * \brief Arrow buttons on the edges of an existing widget, moving an integer position bound to a
 * number (values::IValueNumeric).
 *
 * The object is no widget: it makes up to four small auto-repeating VCButton%s on the widget it is
 * given, keeps them at its edges when that widget is resized, and holds a position between its own
 * limits (0 to 100 by default) that the line buttons move by the single step (1) and the page buttons
 * by the page step (10). A button that cannot move the position any further is disabled.
 *
 * Every move by a button or by Up() and Down() is written to the bound number with no originator, so
 * the number's answer (clamped into its limits) comes back and sets the position. Bound, the position
 * and the limits follow the number: the lower limit is its minimum truncated toward zero, the upper
 * one its maximum rounded half up. The number's step is not used.
 *
 * Undo: records only on request (SetUndoRecordingEnabled(true) or
 * UndoRecordingControlBase::SetOptionalRecordingDefault(true)); then a button held from press to
 * release (all its repeat steps) and each Up() or Down() is one recording.
 *
 * Unbound, or after the number was removed, the buttons move the local position only. The object has
 * no parent: the application owns it and deletes it, which deletes the buttons.
 */
class VANDREL_EXPORT VCScrollButtons : public QObject, public IObserver, public IWheelConsumer, public virtual UndoRecordingControlBase
{
    Q_OBJECT

public:
    /// Where the buttons stand and which are made; a bit set for the constructor.
    enum ScrollButtonsFlags {
        ScrollButtonsTop = 1,    ///< a row along the top edge
        ScrollButtonsBottom = 2, ///< a row along the bottom edge
        ScrollButtonsLeft = 4,   ///< a column along the left edge
        ScrollButtonsRight = 8,  ///< a column along the right edge
        ScrollButtonsLine = 16,  ///< make the two line buttons
        ScrollButtonsPage = 32,  ///< make the two page buttons
    };
    Q_ENUM(ScrollButtonsFlags)

    /**
     * \brief Makes the buttons that \a flags ask for on \a parent and watches its size.
     *
     * A top or bottom bit gives left and right arrows, else they point up and down. The buttons are
     * then placed as a column when a left or right bit is set, else as a row when a top or bottom bit
     * is set, and else left at the parent's top left corner. A column leaves the top 16 pixels free.
     * \a parent is not owned, and the object itself gets no parent.
     */
    VCScrollButtons(QWidget* parent, unsigned int flags);
    /// Detaches from the number and deletes the buttons.
    ~VCScrollButtons() override;

    /**
     * \brief Binds to the number at \a path and takes over its limits and position.
     *
     * False for an unknown path or a value that is no number: the object is then unbound.
     */
    bool Set_ValuePath(const QString& path);

    /// The button one line back (left or up); null when it was not made.
    VCButton* GetMinusButton() const;
    /// The button one line forward (right or down); null when it was not made.
    VCButton* GetPlusButton() const;
    /// The button one page back; null when it was not made.
    VCButton* GetMinusPageButton() const;
    /// The button one page forward; null when it was not made.
    VCButton* GetPlusPageButton() const;

    /// The position.
    int value() const;
    /// The lower limit.
    int minValue() const;
    /// The upper limit.
    int maxValue() const;

    /// Stores the position as it is: no clamping, no write, the buttons' state stays until the next move.
    void setValue(int value);
    /// Stores the lower limit; the position and the buttons stay as they are.
    void setMinValue(int value);
    /// Stores the upper limit; the position and the buttons stay as they are.
    void setMaxValue(int value);
    /// Stores the step of the page buttons.
    void setPageStep(int step);
    /// Stores the step of the line buttons and of the wheel.
    void setSingleStep(int step);

    /// Moves the position one single step forward, at most to the upper limit. Writes nothing.
    void addLine();
    /// Moves the position one page step forward, at most to the upper limit. Writes nothing.
    void addPage();
    /// Moves the position one single step back, at least to the lower limit. Writes nothing.
    void subtractLine();
    /// Moves the position one page step back, at least to the lower limit. Writes nothing.
    void subtractPage();

    /// A wheel notch up: as a click on the plus button.
    void Up() override;
    /// A wheel notch down: as a click on the minus button.
    void Down() override;

    /// Lines the buttons up again when the watched widget is resized, and marks the start of a press
    /// on a button for undo. Never consumes an event.
    bool eventFilter(QObject* watched, QEvent* event) override;

    void Update(Observable* source, TChangeCode code) override;

protected:
    /// Places the buttons at the edges of the parent, as the layout bits say.
    void LineUpButtons();
    /// Enables, with auto-repeat, exactly the buttons that can still move the position.
    void EnableButtons();
    /// Writes \a value to the bound number with no originator; nothing while unbound.
    void internalValueChanged(int value);

protected Q_SLOTS:
    /// One single step back, written to the number.
    void slotMinusClicked();
    /// One single step forward, written to the number.
    void slotPlusClicked();
    /// One page step back, written to the number.
    void slotMinusPageClicked();
    /// One page step forward, written to the number.
    void slotPlusPageClicked();

private:
    VCButton* MakeButton(const char* name, const char* const* picture);
    void Step(int delta);
    void stepByUser(void (VCScrollButtons::*move)());

    values::IValueNumeric* m_pNumericValue;
    unsigned int m_nFlags;
    int m_nMinValue;
    int m_nMaxValue;
    int m_nValue;
    int m_nPageStep;
    int m_nSingleStep;
    QPointer<QWidget> m_pParentWidget;
    // Owned, but children of the parent too: a parent deleted first takes them along, which these notice.
    QPointer<VCButton> m_pMinusButton;
    QPointer<VCButton> m_pPlusButton;
    QPointer<VCButton> m_pMinusPageButton;
    QPointer<VCButton> m_pPlusPageButton;
    UndoActionGroup m_undoAction; // a button held down, from press to release
};
