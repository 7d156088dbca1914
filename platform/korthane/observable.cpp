#include <values/observable.h>

#include <algorithm>
#include <cstdint>

IObserver::~IObserver() = default;

// One running notification of an Observable. Frames chain through nested notifications of the same
// object, so that its destructor can tell each of them to stop touching it.
struct Observable::NotifyFrame
{
    NotifyFrame* outer;
    bool destroyed;
};

Observable::Observable() = default;

Observable::~Observable()
{
    for (NotifyFrame* frame = m_pFrames; frame; frame = frame->outer)
        frame->destroyed = true;
}

namespace {
// Below this many entries a linear search is as quick as the table and costs no memory.
constexpr size_t kIndexFrom = 32;
constexpr unsigned int kEmptySlot = ~0u;
} // namespace

size_t Observable::homeSlot(const IObserver* observer) const
{
    // Fibonacci hashing of the address; its low bits are alignment and carry nothing.
    const auto bits = std::uint64_t(reinterpret_cast<std::uintptr_t>(observer)) * 0x9E3779B97F4A7C15ull;
    return size_t(bits >> 32) & (m_index.size() - 1);
}

long Observable::find(const IObserver* observer) const
{
    if (m_index.empty()) {
        const auto it = std::find(m_observers.begin(), m_observers.end(), observer);
        return it == m_observers.end() ? -1 : long(it - m_observers.begin());
    }
    const size_t mask = m_index.size() - 1;
    for (size_t slot = homeSlot(observer); m_index[slot] != kEmptySlot; slot = (slot + 1) & mask) {
        if (m_observers[m_index[slot]] == observer)
            return long(m_index[slot]);
    }
    return -1;
}

void Observable::indexInsert(unsigned int position)
{
    const size_t mask = m_index.size() - 1;
    size_t slot = homeSlot(m_observers[position]);
    while (m_index[slot] != kEmptySlot)
        slot = (slot + 1) & mask;
    m_index[slot] = position;
}

void Observable::indexRemove(const IObserver* observer)
{
    // Backward-shift deletion: entries after the freed slot that would no longer be reached from
    // their home slot move into it, so that no tombstones accumulate.
    const size_t mask = m_index.size() - 1;
    size_t hole = homeSlot(observer);
    while (m_observers[m_index[hole]] != observer)
        hole = (hole + 1) & mask;
    for (size_t next = (hole + 1) & mask; m_index[next] != kEmptySlot; next = (next + 1) & mask) {
        const size_t home = homeSlot(m_observers[m_index[next]]);
        const bool reachable = hole <= next ? (home > hole && home <= next) : (home > hole || home <= next);
        if (!reachable) {
            m_index[hole] = m_index[next];
            hole = next;
        }
    }
    m_index[hole] = kEmptySlot;
}

void Observable::rebuildIndex()
{
    const size_t live = m_observers.size() - size_t(m_nHoles);
    if (live < kIndexFrom) {
        std::vector<unsigned int>().swap(m_index);
        return;
    }
    size_t slots = 64;
    while (slots < 4 * live)
        slots *= 2;
    m_index.assign(slots, kEmptySlot);
    for (size_t i = 0; i < m_observers.size(); ++i) {
        if (m_observers[i])
            indexInsert(unsigned(i));
    }
}

void Observable::Attach(IObserver* observer)
{
    if (!observer || find(observer) >= 0)
        return;
    m_observers.push_back(observer);
    const size_t live = m_observers.size() - size_t(m_nHoles);
    if (2 * live > m_index.size())
        rebuildIndex(); // past the threshold, or the table half full
    else
        indexInsert(unsigned(m_observers.size() - 1));
}

void Observable::Detach(IObserver* observer)
{
    if (!observer)
        return;
    const long position = find(observer);
    if (position < 0)
        return;
    if (!m_index.empty())
        indexRemove(observer);
    // Leave a hole: a notification may be walking the list by index, and moving the rest up on every
    // detach would make detaching thousands of observers quadratic.
    m_observers[size_t(position)] = nullptr;
    ++m_nHoles;
    if (!m_pFrames && 2 * size_t(m_nHoles) > m_observers.size())
        compact();
}

bool Observable::IsAttached(const IObserver* observer) const
{
    return observer && find(observer) >= 0;
}

int Observable::ObserverCount() const
{
    return int(m_observers.size()) - m_nHoles;
}

bool Observable::NotifyObservers(TChangeCode code, const IObserver* originator)
{
    // Observers attached during this notification are heard from the next one on.
    const size_t count = m_observers.size();
    if (count == 0)
        return true;
    NotifyFrame frame{m_pFrames, false};
    m_pFrames = &frame;
    for (size_t i = 0; i < count; ++i) {
        IObserver* observer = m_observers[i];
        if (!observer || observer == originator)
            continue;
        observer->Update(this, code);
        if (frame.destroyed)
            return false; // this object is gone: touch nothing
    }
    m_pFrames = frame.outer;
    if (!m_pFrames && 2 * size_t(m_nHoles) > m_observers.size())
        compact();
    return true;
}

void Observable::compact()
{
    m_observers.erase(std::remove(m_observers.begin(), m_observers.end(), nullptr), m_observers.end());
    m_nHoles = 0;
    if (!m_index.empty())
        rebuildIndex(); // the positions moved
}
