#pragma once

#include <brevanbase/brevanbase_export.h>

#include <QString>

namespace Orvi {
/// True when every character of \a text is 7-bit ASCII (an empty text is ASCII).
BREVANBASE_EXPORT bool isAsciiString(const QString& text);
} // namespace Orvi
