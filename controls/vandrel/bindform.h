#pragma once

#include <vandrel/vandrel_export.h>

#include <QStringList>

class QWidget;

namespace vandrel {

/// What BindForm() made and what it could not.
struct BindFormResult
{
    /// One entry "objectName.property: path" per binding made.
    QStringList bound;
    /// One entry "objectName.property: path: reason" per binding whose call gave false, whose path was
    /// not found, or whose widget is no Vandrel control or has no such binding.
    QStringList failed;
};

/**
 * \brief Binds \a root and every widget below it from their binding properties.
 *
 * A form drawn in Designer, loaded by QUiLoader, compiled by uic or made in code carries its bindings
 * as dynamic string properties. `valuePath` binds through the control's first binding call; a further
 * binding has the property named after its call: `SetNoValue_ValuePath` gives `noValuePath`,
 * `SetSecondSelection_ValuePath` gives `secondSelectionPath`. A call that needs more than the path
 * reads it from a property of its own: `multiSelectionKey` (VCCheckBox), `oneOfValue` and
 * `oneOfOutValue` (the one-of buttons). The README lists the properties of every control.
 *
 * The bindings of one control are made in the order of its calls, the first binding first. An empty
 * property counts as not set, and a widget without binding properties is left alone. Reasons given in
 * BindFormResult::failed: "not found" (no value at the path), "wrong kind of value" (the call refused
 * the value found there), "no such binding on <class>", "not a Vandrel control", and "<property>
 * missing" for an argument property that is not set.
 */
VANDREL_EXPORT BindFormResult BindForm(QWidget* root);

} // namespace vandrel
