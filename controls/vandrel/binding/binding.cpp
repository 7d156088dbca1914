#include <vandrel/binding/binding.h>

#include <orvi/translationcenter.h>

namespace {

// The walk of ScanChangeLog(), handing each entry read to \a read.
template <class Read>
signed char scanChangeLog(const values::MultiSelectionChangeLog* log, unsigned long long& nextSequence, unsigned char kind,
                          Read&& read)
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
        const values::MultiSelectionChange& change = log->GetAt(i);
        if (change.kind != kind) {
            nextSequence = log->GetNextSequence();
            return -1;
        }
        read(change);
        ++nextSequence;
    }
    return 1;
}

} // namespace

signed char ScanChangeLog(const values::MultiSelectionChangeLog* log, unsigned long long& nextSequence, unsigned char kind)
{
    return scanChangeLog(log, nextSequence, kind, [](const values::MultiSelectionChange&) {});
}

signed char ScanChangeLogKeys(const values::MultiSelectionChangeLog* log, unsigned long long& nextSequence,
                              unsigned char kind, std::vector<unsigned int>& keys)
{
    keys.clear();
    const signed char result =
        scanChangeLog(log, nextSequence, kind, [&keys](const values::MultiSelectionChange& change) { keys.push_back(change.key); });
    if (result != 1)
        keys.clear(); // a rebuild needs no keys
    return result;
}

QString TranslateItemName(const values::ValueBase* value, const QString& name)
{
    return TranslationCenter::Instance().translate(value ? value->GetTranslationNamespace() : nullptr, name, nullptr);
}
