#pragma once

#include <vandrel/vandrel_export.h>

#include <plinthor/coordedit.h>
#include <plinthor/undorecording.h>
#include <values/values.h>

/**
 * \brief A coordinate field (basecontrols::CoordEdit) bound to a latitude, a longitude and a format.
 *
 * Latitude and longitude are numbers (values::IValueNumeric) in degrees. The field shows them and
 * follows their changes; a position the user types or pastes is written to both, with the field as
 * originator. No range test is made here: the values clamp what they are given.
 *
 * The format follows the application's position format selection (Plinthor::GetPositionFormat()) from
 * construction on, so that a format picked in one field's context menu reaches every field that follows
 * it. SetFormat_ValuePath() ties the format to another selection, or to a number, instead. Numbers and
 * keys outside 0 to 6 are ignored.
 *
 * The field is enabled and disabled by the state of each bound value, the format selection included;
 * since that selection is bound from the start, the field starts enabled. A removed value is let go.
 *
 * Undo: records only on request (SetUndoRecordingEnabled(true) or
 * UndoRecordingControlBase::SetOptionalRecordingDefault(true)); then each committed coordinate (both
 * numbers) and each format chosen through a slot is one recording.
 */
class VANDREL_EXPORT VCCoordEdit : public basecontrols::CoordEdit, public IObserver, public virtual UndoRecordingControlBase
{
    Q_OBJECT

public:
    /// \a name, when not null, becomes object name and tool-tip. The two numbers are not used.
    VCCoordEdit(QWidget* parent = nullptr, const char* name = nullptr, double = 0.0, double = 0.0);
    ~VCCoordEdit() override;

    /**
     * \brief Binds the latitude to the number at \a path and shows it.
     *
     * False for a missing tree, an unknown path or a value that is not a number; the former binding
     * then stays.
     */
    bool SetLatitude_ValuePath(const QString& path);
    /// Binds the longitude, as SetLatitude_ValuePath() does the latitude.
    bool SetLongitude_ValuePath(const QString& path);
    /**
     * \brief Ties the format to the number or selection at \a path, in place of the former format
     * binding, the application's position format included, and shows the position in its format.
     *
     * False when \a path holds neither; the field then follows no format value at all.
     */
    bool SetFormat_ValuePath(const QString& path);

    /// The latitude shown, in degrees.
    double GetLatitude();
    /// The longitude shown, in degrees.
    double GetLongitude();
    /// Shows \a latitude; the bound latitude value is not written.
    void SetLatitude(double latitude);
    /// Shows \a longitude; the bound longitude value is not written.
    void SetLongitude(double longitude);
    /// As setFormat(): shows the position in \a format and writes it to the bound format value.
    void SetFormat(CoordFormat format);
    /// Switches the context menu on or off.
    void EnableContextMenu(bool enable);
    /// Makes the field a label (basecontrols::CoordEdit::setActAsLabel()).
    void actAsLabel();

    /// Shows the position in \a format and writes the format to the bound format value.
    void setFormat(CoordFormat format) override;
    void Update(Observable* source, TChangeCode code) override;

public Q_SLOTS:
    /// setFormat() with the format's number \a id; numbers outside 0 to 6 are ignored.
    void slotSetFormat(int id);
    /// setFormat(GeoDecimal).
    void slotChangeFormatGeoDecimal();
    /// setFormat(Geo).
    void slotChangeFormatGeo();
    /// setFormat(GeoNoFrac).
    void slotChangeFormatGeoNoFrac();
    /// setFormat(Utm).
    void slotChangeFormatUtm();
    /// setFormat(UtmRef).
    void slotChangeFormatUtmRef();
    /// setFormat(RT90).
    void slotChangeFormatRT90();
    /// setFormat(SweRef99).
    void slotChangeFormatSweRef99();
    /// Puts the position, in the current format, on the clipboard.
    void slotCopy2Clipboard();
    /// Reads the clipboard's text as if typed; a position it gives is written to the bound values.
    void slotPasteClipboard();
    /// Takes up the current colours of the parent or the application.
    void slotAcceptColorChanges();

protected:
    /// Takes modified text through the base and writes the position to the bound values.
    void processLineInput() override;

private:
    bool bindCoordinate(const QString& path, values::IValueNumeric*& field);
    void setFormatNumber(long number);

    values::IValueNumeric* m_pLongitudeValue;
    values::IValueNumeric* m_pLatitudeValue;
    values::IValueNumeric* m_pFormatNumericValue;
    values::ValueSelection* m_pFormatSelection;
};
