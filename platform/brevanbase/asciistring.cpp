#include <brevanbase/asciistring.h>

#include <algorithm>

bool Orvi::isAsciiString(const QString& text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 0x80; });
}
