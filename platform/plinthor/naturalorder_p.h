#pragma once

#include <QString>
#include <QStringView>

namespace plinthor {

/**
 * Compares texts as people sort them: case ignored, other characters in the locale's order, and runs
 * of the digits 0 to 9 by their number ("item 9" before "item 10"). Returns <0, 0 or >0. Texts that
 * differ only in case or in leading zeros compare equal.
 */
inline int naturalCompare(const QString& a, const QString& b)
{
    auto isDigit = [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); };
    int i = 0;
    int j = 0;
    while (i < a.size() && j < b.size()) {
        const bool digitA = isDigit(a.at(i));
        const bool digitB = isDigit(b.at(j));
        const int startA = i;
        const int startB = j;
        while (i < a.size() && isDigit(a.at(i)) == digitA)
            ++i;
        while (j < b.size() && isDigit(b.at(j)) == digitB)
            ++j;
        if (digitA && digitB) {
            int firstA = startA;
            int firstB = startB;
            while (firstA < i - 1 && a.at(firstA) == QLatin1Char('0'))
                ++firstA;
            while (firstB < j - 1 && b.at(firstB) == QLatin1Char('0'))
                ++firstB;
            const int lengthA = i - firstA;
            const int lengthB = j - firstB;
            if (lengthA != lengthB)
                return lengthA < lengthB ? -1 : 1;
            const int byDigits = QStringView(a).mid(firstA, lengthA).compare(QStringView(b).mid(firstB, lengthB));
            if (byDigits != 0)
                return byDigits;
        } else {
            const int byText = QString::localeAwareCompare(a.mid(startA, i - startA).toCaseFolded(),
                                                           b.mid(startB, j - startB).toCaseFolded());
            if (byText != 0)
                return byText;
        }
    }
    if (i < a.size())
        return 1;
    if (j < b.size())
        return -1;
    return 0;
}

} // namespace plinthor
