#pragma once

// Not installed: what a control keeps of a bound multi-selection between rebuilds.

#include <values/values.h>

#include <algorithm>
#include <set>
#include <unordered_map>
#include <vector>

namespace vandrel {

/**
 * What a control keeps of a multi-selection between rebuilds: its keys in the sorted order the control
 * shows them, the place of each key, and the keys checked. Made at each rebuild, then kept up to date
 * from the check marks that the change log names, so that a change of one check mark costs what the
 * changed item costs, not what all of them do.
 */
struct MultiSelectionIndex
{
    const values::IValueMultiSelection* owner = nullptr; // the value it was made from; null: none
    std::vector<unsigned int> keys;
    std::unordered_map<unsigned int, int> places;
    std::set<unsigned int> checked;

    void Reset()
    {
        owner = nullptr;
        keys.clear();
        places.clear();
        checked.clear();
    }
    // Starts anew for \a multi with its keys sorted; the caller adds the check marks.
    void Begin(values::IValueMultiSelection* multi)
    {
        Reset();
        owner = multi;
        keys = SortedKeys(multi);
        places.reserve(keys.size());
        for (size_t i = 0; i < keys.size(); ++i)
            places.emplace(keys[i], int(i));
    }
    void SetChecked(unsigned int key, bool on)
    {
        if (on)
            checked.insert(key);
        else
            checked.erase(key);
    }
    /// The keys of \a multi, ascending as unsigned numbers: the order every multi-selection control shows.
    static std::vector<unsigned int> SortedKeys(values::IValueMultiSelection* multi)
    {
        std::vector<unsigned int> sorted;
        multi->GetKeys(sorted);
        std::sort(sorted.begin(), sorted.end());
        return sorted;
    }
    int PlaceOf(unsigned int key) const
    {
        const auto found = places.find(key);
        return found == places.end() ? -1 : found->second;
    }
};

} // namespace vandrel
