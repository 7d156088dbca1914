#pragma once

// Not installed: what the Designer plugin asks of the form binder.

#include <vandrel/vandrel_export.h>

#include <QByteArray>
#include <QList>

struct QMetaObject;

namespace vandrel {

/// The binding properties of the control class \a meta, first binding first, followed by the argument
/// properties its calls read; empty for a class that is no Vandrel control.
VANDREL_EXPORT QList<QByteArray> BindingProperties(const QMetaObject* meta);

} // namespace vandrel
