#pragma once

// Not installed: how a VCComboBoxButtonStyle talks to the compound control it belongs to.

#include <vandrel/vandrel_export.h>

#include <QString>

class VCComboBoxButtonStyle;

/**
 * \brief What a combo in buddy mode asks of the control that holds it: which first-selection items it
 * offers, and what to do after a pick.
 *
 * The compound control implements this and registers itself with SetComboBuddy() beside
 * VCComboBoxButtonStyle::SetOneOfButtonCombo(). While one is registered, the combo leaves out the items
 * for which isValueValid() gives false and, after each pick in a first selection, hands the selection's
 * new text to NewValueFromCombo().
 */
struct ComboBuddy
{
    virtual ~ComboBuddy() = default;
    /// Whether the first selection's item of this untranslated name gets an entry.
    virtual bool isValueValid(QString value) = 0;
    /// Told the first selection's text after each pick.
    virtual void NewValueFromCombo(QString value) = 0;
};

/// Registers \a buddy with \a combo; null takes it back. Neither owns the other.
VANDREL_EXPORT void SetComboBuddy(VCComboBoxButtonStyle* combo, ComboBuddy* buddy);
