#pragma once

#include <vandrel/vandrel_export.h>

#include <values/values.h>

#include <QColor>
#include <QLabel>
#include <QPointer>

/**
 * \brief A read-only label that shows the text of any value, or a number scaled, wrapped and formatted.
 *
 * SetText_ValuePath() binds a number (values::IValueNumeric) or, failing that, any value, whose text is
 * shown. A number is shown as value minus the offset value, wrapped into SetWrapInto()'s range, times
 * the factor, rounded half away from zero when there are no decimals, wrapped again in the scaled
 * range, in the C locale with the set decimals, followed by a blank and the suffix. A boolean
 * (SetNoValue_ValuePath()) switches to the no-value state: "- - -", centred, or in luminescence mode the
 * last number in gray. An update trigger (SetUpdateNow_ValuePath()) takes over the refresh: the label
 * then redraws only when the trigger becomes 1 (current) or -1 (stale, gray).
 *
 * Linked labels: each change of text first hands the old text to the previous label and then the new
 * one to the copy label, so a row of labels is a history. A text equal to the one shown changes nothing.
 *
 * The label is enabled and disabled by its values' states and ignores value changes while disabled.
 * Its colours are rebuilt from the application palette by slotAcceptColorChanges(), which follows
 * Plinthor::signalColorsChanged(). A removed or destroyed value is let go, also one the label holds
 * without following it.
 */
class VANDREL_EXPORT VCLabel : public QLabel, public IObserver
{
    Q_OBJECT

public:
    /// An empty label 20 pixels high; \a name (null for none) is object name and tool-tip. \a lineMode 1
    /// draws a line along the top edge, 2 along the bottom edge.
    VCLabel(QWidget* parent, const char* name, unsigned int lineMode);
    ~VCLabel() override;

    /**
     * \brief Binds the number at \a path, or else the value there, whose text is shown, and shows it.
     *
     * A number replaces the former number and leaves a text binding in place (Display() shows both in
     * turn, the number last); anything else replaces both. With \a observe false the value is shown
     * once and its later changes and states are ignored. False for an unknown path, leaving both unbound.
     */
    bool SetText_ValuePath(const QString& path, bool observe);
    /// Binds the number subtracted from the shown number; false, and no offset, for a path without one.
    bool SetNumericOffset_ValuePath(const QString& path, bool observe);
    /// Binds the boolean that switches the no-value state; false, and none bound, for another path.
    bool SetNoValue_ValuePath(const QString& path);
    /**
     * \brief Binds the integer that triggers a refresh, and stops following the number and the text.
     *
     * Nothing is shown until the trigger changes to 1 or -1. The number and text stay bound, whether
     * or not the trigger was found.
     */
    bool SetUpdateNow_ValuePath(const QString& path);

    /// Stores the format; a bound number is shown in it at once, without offset or wrap.
    void SetFormat(int digits, int decimals, double factor);
    /// Shows \a value in the stored format; a non-empty \a suffix replaces the stored one.
    void SetFormatString(double value, QString suffix);
    /// Stores the factor and redraws.
    void SetFactor(double factor);
    /// Stores the suffix for the next text.
    void SetSuffix(QString suffix);
    /// Stores the wrap range; \a low not below \a high, or a \a step of 0, wraps nothing. A negative
    /// \a step never ends a wrap: give a positive one.
    void SetWrapInto(double low, double high, double step);
    /// Shows \a text with the suffix, or "- - -" in the no-value state.
    void SetText(QString text);
    /// Shows \a text as it is, shifting the links; hides QLabel::setText().
    virtual void setText(const QString& text);
    /// Recomputes and shows the text from the bound values.
    void Display();

    /// Enters (\a noValue true) or leaves the no-value state and shows the text again.
    void SetDisplayNoValue(bool noValue);
    /// SetDisplayNoValue() only when \a noValue differs from the state.
    void UpdateDisplayNoValue(bool noValue);
    /// True in the no-value state.
    bool GetDisplayNoValue();
    /// The alignment (Qt::Alignment bits) of "- - -".
    void SetAlignmentNoValue(int alignment);
    /// Luminescence: the no-value state keeps the last number, in gray.
    void SetLuminescence(bool luminescence);

    /// Paints in \a foreground on \a background.
    void SetColors(QColor foreground, QColor background);
    /// Paints the background in \a background from now on.
    void SetBackgroundColor(QColor background);
    /// Paints the text in the foreground colour of SetColors().
    void SetForeground();
    /// Paints the text in the palette's highlight colour.
    void SetHilight();
    /// Paints the text in the palette's disabled text colour; the argument is not used.
    void SetGray(bool);

    /// Fixes the label's height to \a height pixels.
    void SetHeight(int height);
    /// Gives the label \a font, shrunk point by point until \a text fits; a pixel-sized font is left alone.
    void SetFontOnSize(QFont font, QString text);
    /// The label that receives the text shown before each change; null for none. Not owned.
    void SetPreviousLabel(VCLabel* label);
    /// The label that receives each new text; null for none. Not owned.
    void SetCopyLabel(VCLabel* label);

    void Update(Observable* source, TChangeCode code) override;

public Q_SLOTS:
    /// Rebuilds the palette from the application's, with this label's colour rules.
    void slotAcceptColorChanges();

protected:
    /// Reimplemented to draw the line of the line mode given at construction (1 top edge, 2 bottom edge).
    void paintEvent(QPaintEvent* event) override;

private:
    void setColorRule(bool hilight, bool foreground, bool gray);
    bool holds(const Observable* value) const;
    void letGo(Observable* value);
    void forget(Observable* value);

    values::ValueNumeric<int>* m_pUpdateNowValue;
    values::IValueNumeric* m_pNumericValue;
    values::IValueNumeric* m_pNumericOffsetValue;
    values::Value<bool>* m_pNoValueValue;
    bool m_bDisplayNoValue;
    bool m_bPreviousDisplayNoValue;
    values::ValueBase* m_pTextValue;
    unsigned int m_uiLineMode;
    int m_nSavedAlignment;
    int m_nAlignmentNoValue;
    int m_nDigits;
    int m_nDecimals;
    double m_dFactor;
    double m_dWrapLow;
    double m_dWrapHigh;
    double m_dWrapStep;
    QString m_strSuffix;
    int m_nHeight;
    bool m_bLuminescence;
    double m_dLastValue;
    QColor m_colorForeground;
    QColor m_colorBackground;
    bool m_bUseBackground;
    bool m_bHilight;
    bool m_bUseForeground;
    bool m_bGray;
    // Not owned; a linked label deleted first is simply no longer linked.
    QPointer<VCLabel> m_pPreviousLabel;
    QPointer<VCLabel> m_pCopyLabel;
    // Whether the number, text and offset are followed (observe, no trigger). The label stays attached
    // to a value it does not follow, only to learn of its removal.
    bool m_bFollowNumeric;
    bool m_bFollowText;
    bool m_bFollowOffset;
};
