#include <vandrel/binding/binding.h>

#include <orvi/translationcenter.h>

signed char ScanChangeLog(const values::MultiSelectionChangeLog* log, unsigned long long& nextSequence, unsigned char kind)
{
    if (!log || log->GetCount() == 0 || nextSequence >= log->GetNextSequence())
        return 0;
    const int count = log->GetCount();
    if (nextSequence < log->GetAt(0).sequence) {
        nextSequence = log->GetNextSequence(); // entries were lost
        return -1;
    }
    // Binary search for the first retained entry not below nextSequence.
    int lo = 0;
    int hi = count;
    while (lo < hi) {
        const int mid = lo + (hi - lo) / 2;
        if (log->GetAt(mid).sequence < nextSequence)
            lo = mid + 1;
        else
            hi = mid;
    }
    for (int i = lo; i < count; ++i) {
        if (log->GetAt(i).kind != kind) {
            nextSequence = log->GetNextSequence();
            return -1;
        }
        ++nextSequence;
    }
    return 1;
}

QString TranslateItemName(const values::ValueBase* value, const QString& name)
{
    return TranslationCenter::Instance().translate(value ? value->GetTranslationNamespace() : nullptr, name, nullptr);
}
