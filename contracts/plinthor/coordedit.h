#pragma once

#include <plinthor/coordinates.h>
#include <plinthor/plinthor_export.h>

#include <QLineEdit>

class QMenu;

namespace basecontrols {

/**
 * \brief A line edit that shows a geographic position in one of the CoordFormat text forms and reads
 * what the user types in that form.
 *
 * The position is held as two doubles, latitude and longitude in degrees (WGS 84), and shown through
 * CoordText::Format(); see CoordText for every text form and the variants that are read. It starts at
 * 0° N, 0° E in decimal degrees.
 *
 * Typed text is taken when the user presses Return or Enter, when the field loses focus (not to its own
 * context menu), and when Plinthor::endEdit() names the field or a widget that holds it. Text that
 * parses becomes the new position and is shown again in the canonical form; text that does not parse
 * is dropped and the held position shown again. While the user types, text that would be refused is
 * drawn in a warning colour. Escape drops the typed text. A position set by the program while the user
 * is typing is held and shown once the typing ends.
 *
 * The context menu offers the seven formats (the current one checked), Copy and Paste. Copy puts the
 * held position, in the current format, on the clipboard; Paste reads the clipboard's text in the
 * current format, as if typed, and leaves everything as it was when the text is refused.
 *
 * As a label (setActAsLabel()) the field is read-only, frameless, outside the focus chain and drawn in
 * the window colours; its context menu still offers the formats and Copy. Colours come from the
 * application palette (or the parent's); after the application's colours change, acceptColorChanges()
 * takes them up (connect it to Plinthor::signalColorsChanged()).
 */
class PLINTHOR_EXPORT CoordEdit : public QLineEdit
{
    Q_OBJECT
    /// Latitude in degrees, north positive.
    Q_PROPERTY(double latitude READ getLatitude WRITE setLatitude)
    /// Longitude in degrees, east positive.
    Q_PROPERTY(double longitude READ getLongitude WRITE setLongitude)
    /// The text form the position is shown and read in.
    Q_PROPERTY(CoordFormat format READ getFormat WRITE setFormat)
    /// Whether the field acts as a read-only label.
    Q_PROPERTY(bool actAsLabel READ isActingAsLabel WRITE setActAsLabel)
    /// Whether a right click opens the context menu.
    Q_PROPERTY(bool contextMenuEnabled READ isContextMenuEnabled WRITE setContextMenuEnabled)

public:
    /// A field at 0° N, 0° E in decimal degrees (GeoDecimal).
    explicit CoordEdit(QWidget* parent = nullptr);
    ~CoordEdit() override;

    /// Longitude in degrees, east positive.
    virtual double getLongitude() const;
    /// Latitude in degrees, north positive.
    virtual double getLatitude() const;
    /// The text form the position is shown and read in.
    virtual CoordFormat getFormat() const;
    /// Sets the longitude and shows the position; a value outside -180 to 180 or NaN shows no text.
    virtual void setLongitude(double longitude);
    /// Sets the latitude and shows the position; a value outside -90 to 90 or NaN shows no text.
    virtual void setLatitude(double latitude);
    /**
     * \brief Shows the position in \a format. Text the user was typing is dropped. A value outside
     * the enumeration is ignored.
     */
    virtual void setFormat(CoordFormat format);

    /// Whether the field acts as a label (see the class description).
    bool isActingAsLabel() const { return m_bActAsLabel; }
    /// Makes the field a label (read-only, frameless, no focus, window colours) or an edit field again.
    void setActAsLabel(bool actAsLabel);
    /// Whether a right click opens the context menu.
    bool isContextMenuEnabled() const { return m_bContextMenuEnabled; }
    /// Switches the context menu on (the default) or off; off, a right click shows nothing.
    void setContextMenuEnabled(bool enabled);

    /**
     * \brief The context menu: the seven formats as checkable actions whose data is the format number,
     * a separator, Copy and Paste. The caller owns it.
     */
    QMenu* createContextMenu();

public Q_SLOTS:
    /// Takes up the current colours of the parent or the application.
    void acceptColorChanges();
    /// Puts the held position, in the current format, on the clipboard.
    void copy2Clipboard();
    /// Reads the clipboard's text in the current format, as typed text; refused text changes nothing.
    void pasteClipboard();

Q_SIGNALS:
    /// The user's input (typed or pasted) gave a new position.
    void positionEdited(double latitude, double longitude);

protected:
    /**
     * \brief Takes the typed text: when it was modified and parses, it becomes the position and
     * positionEdited() is sent; otherwise the held position is shown again. Unmodified text is left
     * alone, so the held position keeps its full precision.
     */
    virtual void processLineInput();

    /// Reimplemented to take up the new parent's colours when a label changes parent.
    void changeEvent(QEvent* event) override;
    /// Reimplemented to show createContextMenu()'s menu, or nothing when the menu is switched off.
    void contextMenuEvent(QContextMenuEvent* event) override;
    /// Reimplemented to take the typed text, except when the focus goes to the field's own context menu.
    void focusOutEvent(QFocusEvent* event) override;
    /// Reimplemented to take the typed text on Return or Enter and drop it on Escape.
    void keyPressEvent(QKeyEvent* event) override;

private Q_SLOTS:
    void slotTextEdited(const QString& text);
    void slotEndEdit(QWidget* widget);

private:
    void showPosition();
    bool isEditing() const;

    double m_fLongitude;
    double m_fLatitude;
    CoordFormat m_format;
    bool m_bActAsLabel;
    bool m_bContextMenuEnabled;
    bool m_bInputRefused;
    bool m_bPositionPending;
    Qt::FocusPolicy m_editFocusPolicy;
};

} // namespace basecontrols
